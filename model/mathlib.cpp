// Euler angles, 3x4 matrices and quaternions for the skeleton code. Values are
// stored as float; sines and cosines are taken in double and rounded on store.
#include "model/mathlib.h"

#include <cmath>

// Rz(a2) Ry(a1) Rx(a0) for column vectors, in the rotation block only; the
// caller owns the translation column.
void AngleMatrix(const float (&angles)[3], float (&matrix)[3][4]) {
  double sx = std::sin(static_cast<double>(angles[0])), cx = std::cos(static_cast<double>(angles[0]));
  double sy = std::sin(static_cast<double>(angles[1])), cy = std::cos(static_cast<double>(angles[1]));
  double sz = std::sin(static_cast<double>(angles[2])), cz = std::cos(static_cast<double>(angles[2]));
  matrix[0][0] = static_cast<float>(cy * cz);
  matrix[0][1] = static_cast<float>(sx * sy * cz - cx * sz);
  matrix[0][2] = static_cast<float>(cx * sy * cz + sx * sz);
  matrix[1][0] = static_cast<float>(cy * sz);
  matrix[1][1] = static_cast<float>(sx * sy * sz + cx * cz);
  matrix[1][2] = static_cast<float>(cx * sy * sz - sx * cz);
  matrix[2][0] = static_cast<float>(-sy);
  matrix[2][1] = static_cast<float>(sx * cy);
  matrix[2][2] = static_cast<float>(cx * cy);
}

// The same rotation as AngleMatrix, as a quaternion (x, y, z, w).
void AngleQuaternion(const float (&angles)[3], float (&quaternion)[4]) {
  double a0 = static_cast<double>(angles[0]) * 0.5;
  double a1 = static_cast<double>(angles[1]) * 0.5;
  double a2 = static_cast<double>(angles[2]) * 0.5;
  double sx = std::sin(a0), cx = std::cos(a0);
  double sy = std::sin(a1), cy = std::cos(a1);
  double sz = std::sin(a2), cz = std::cos(a2);
  quaternion[0] = static_cast<float>(sx * cy * cz - cx * sy * sz);
  quaternion[1] = static_cast<float>(cx * sy * cz + sx * cy * sz);
  quaternion[2] = static_cast<float>(cx * cy * sz - sx * sy * cz);
  quaternion[3] = static_cast<float>(cx * cy * cz + sx * sy * sz);
}

// Fills the rotation block only; the caller owns the translation column.
void QuaternionMatrix(const float (&quaternion)[4], float (&matrix)[3][4]) {
  float x = quaternion[0], y = quaternion[1], z = quaternion[2], w = quaternion[3];
  matrix[0][0] = 1.0f - 2.0f * y * y - 2.0f * z * z;
  matrix[0][1] = 2.0f * x * y - 2.0f * w * z;
  matrix[0][2] = 2.0f * x * z + 2.0f * w * y;
  matrix[1][0] = 2.0f * x * y + 2.0f * w * z;
  matrix[1][1] = 1.0f - 2.0f * x * x - 2.0f * z * z;
  matrix[1][2] = 2.0f * y * z - 2.0f * w * x;
  matrix[2][0] = 2.0f * x * z - 2.0f * w * y;
  matrix[2][1] = 2.0f * y * z + 2.0f * w * x;
  matrix[2][2] = 1.0f - 2.0f * x * x - 2.0f * y * y;
}

// out = first x second, both with an implied last row (0, 0, 0, 1).
void ConcatTransforms(const float (&first)[3][4], const float (&second)[3][4], float (&out)[3][4]) {
  for (int r = 0; r < 3; r++) {
    for (int c = 0; c < 4; c++) {
      out[r][c] = first[r][0] * second[0][c] + first[r][1] * second[1][c] + first[r][2] * second[2][c];
    }
    out[r][3] += first[r][3];
  }
}

// Spherical interpolation from p to q along the shorter way; q is negated in
// place when that way goes through -q.
void QuaternionSlerp(const float (&p)[4], float (&q)[4], float t, float (&out)[4]) {
  float a = 0, b = 0;
  for (int i = 0; i < 4; i++) {
    a += (p[i] - q[i]) * (p[i] - q[i]);
    b += (p[i] + q[i]) * (p[i] + q[i]);
  }
  if (b < a) {
    for (int i = 0; i < 4; i++) q[i] = -q[i];
  }

  float cosom = p[0] * q[0] + p[1] * q[1] + p[2] * q[2] + p[3] * q[3];
  float sp, sq;
  if (1.0 + cosom > 1e-8) {
    if (1.0 - cosom > 1e-8) {
      double omega = std::acos(static_cast<double>(cosom));
      double sinom = std::sin(omega);
      sp = static_cast<float>(std::sin((1.0 - t) * omega) / sinom);
      sq = static_cast<float>(std::sin(t * omega) / sinom);
    } else {
      sp = 1.0f - t;
      sq = t;
    }
    for (int i = 0; i < 4; i++) out[i] = sp * p[i] + sq * q[i];
  } else {
    // Opposite rotations: turn through a quaternion at right angles to p.
    out[0] = -p[1];
    out[1] = p[0];
    out[2] = -p[3];
    out[3] = p[2];
    sp = static_cast<float>(std::sin((1.0 - t) * 0.5 * M_PI));
    sq = static_cast<float>(std::sin(t * 0.5 * M_PI));
    for (int i = 0; i < 3; i++) out[i] = sp * p[i] + sq * out[i];
  }
}
