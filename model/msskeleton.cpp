// Skeleton evaluation of msModel: bind pose, keyframe interpolation and the
// skinning of vertices and normals by up to four weighted joints.
#include <algorithm>
#include <cstring>

#include "model/mathlib.h"
#include "model/msmodel.h"

namespace {

void CopyMatrix(const float (&from)[3][4], float (&to)[3][4]) { std::memcpy(to, from, sizeof to); }

// Where a frame falls among keys: between key I and key I + 1, the lowest
// such pair, at fraction T; or, with I at -1, on the end key End (the first
// when the frame is before it, else the last).
struct KeySpan {
  int I = -1;
  float T = 0;
  const msKeyframe *End = nullptr;
};

KeySpan FindSpan(const std::vector<msKeyframe> &keys, float frame) {
  KeySpan span;
  for (size_t i = 0; i + 1 < keys.size(); i++) {
    if (keys[i].Time <= frame && frame < keys[i + 1].Time) {
      span.I = static_cast<int>(i);
      span.T = (frame - keys[i].Time) / (keys[i + 1].Time - keys[i].Time);
      return span;
    }
  }
  span.End = frame >= keys.back().Time ? &keys.back() : &keys.front();
  return span;
}

// A joint is posed relative to its parent only when the parent stands before
// it: SetupJoints and SetFrame run through the list once, so a parent that
// comes later (or the joint itself) has no pose yet for this pass. Such a
// joint is posed as a root, so every pose depends on its frame alone.
bool HasPosedParent(const msJoint &joint, size_t index) {
  return joint.ParentIndex >= 0 && static_cast<size_t>(joint.ParentIndex) < index;
}

}  // namespace

void msModel::SetupJoints() {
  for (msJoint &joint : Joints) joint.ParentIndex = FindJointByName(joint.ParentName);
  for (size_t i = 0; i < Joints.size(); i++) {
    msJoint &joint = Joints[i];
    AngleMatrix(joint.Rotation, joint.LocalSkeleton);
    for (int r = 0; r < 3; r++) joint.LocalSkeleton[r][3] = joint.Position[r];
    if (HasPosedParent(joint, i)) {
      ConcatTransforms(Joints[joint.ParentIndex].GlobalSkeleton, joint.LocalSkeleton, joint.GlobalSkeleton);
    } else {
      CopyMatrix(joint.LocalSkeleton, joint.GlobalSkeleton);
    }
  }
  SetupTangents();
}

// Tangents of the position keys, the keys taken as a closed loop.
void msModel::SetupTangents() {
  for (msJoint &joint : Joints) {
    size_t n = joint.PositionKeys.size();
    joint.Tangents.assign(n, msTangent());
    if (n <= 2) continue;
    for (size_t k = 0; k < n; k++) {
      size_t p = k == 0 ? n - 1 : k - 1;
      size_t x = k == n - 1 ? 0 : k + 1;
      const msKeyframe &kp = joint.PositionKeys[p];
      const msKeyframe &kk = joint.PositionKeys[k];
      const msKeyframe &kx = joint.PositionKeys[x];
      float d1 = kk.Time - kp.Time;
      float d2 = kx.Time - kk.Time;
      // Keys at equal times leave nothing to divide by; such a key gets no
      // tangent, so the curve through it flattens instead of jumping to
      // infinity.
      if (d1 + d2 == 0.0f) continue;
      for (int c = 0; c < 3; c++) {
        float delta = kx.Value[c] - kp.Value[c];
        joint.Tangents[k].TangentIn[c] = delta * d1 / (d1 + d2);
        joint.Tangents[k].TangentOut[c] = delta * d2 / (d1 + d2);
      }
    }
  }
}

void msModel::SetFrame(float frame) {
  if (frame < 0.0f) {
    for (msJoint &joint : Joints) {
      CopyMatrix(joint.LocalSkeleton, joint.Local);
      CopyMatrix(joint.GlobalSkeleton, joint.Global);
    }
  } else {
    for (size_t i = 0; i < Joints.size(); i++) EvaluateJoint(static_cast<int>(i), frame);
  }
  CurrentTime = frame;
}

void msModel::EvaluateJoint(int index, float frame) {
  msJoint &joint = Joints[index];

  float pos[3] = {0, 0, 0};
  const std::vector<msKeyframe> &pk = joint.PositionKeys;
  if (!pk.empty()) {
    KeySpan span = FindSpan(pk, frame);
    if (span.I >= 0) {
      const msKeyframe &k0 = pk[span.I];
      const msKeyframe &k1 = pk[span.I + 1];
      float t = span.T, t2 = t * t, t3 = t2 * t;
      float h1 = 2 * t3 - 3 * t2 + 1;
      float h2 = -2 * t3 + 3 * t2;
      float h3 = t3 - 2 * t2 + t;
      float h4 = t3 - t2;
      // Tangents are made by SetupTangents; without them the curve has none.
      bool tangents = joint.Tangents.size() == pk.size();
      for (int c = 0; c < 3; c++) {
        float out = tangents ? joint.Tangents[span.I].TangentOut[c] : 0.0f;
        float in = tangents ? joint.Tangents[span.I + 1].TangentIn[c] : 0.0f;
        pos[c] = h1 * k0.Value[c] + h2 * k1.Value[c] + h3 * out + h4 * in;
      }
    } else {
      std::memcpy(pos, span.End->Value, sizeof pos);
    }
  }

  float q[4] = {0.0f, 0.0f, 0.0f, 1.0f};
  const std::vector<msKeyframe> &rk = joint.RotationKeys;
  if (!rk.empty()) {
    KeySpan span = FindSpan(rk, frame);
    if (span.I >= 0) {
      float q1[4], q2[4];
      AngleQuaternion(rk[span.I].Value, q1);
      AngleQuaternion(rk[span.I + 1].Value, q2);
      QuaternionSlerp(q1, q2, span.T, q);
    } else {
      AngleQuaternion(span.End->Value, q);
    }
  }

  float m[3][4];
  QuaternionMatrix(q, m);
  for (int r = 0; r < 3; r++) m[r][3] = pos[r];
  ConcatTransforms(joint.LocalSkeleton, m, joint.Local);
  if (HasPosedParent(joint, static_cast<size_t>(index))) {
    ConcatTransforms(Joints[joint.ParentIndex].Global, joint.Local, joint.Global);
  } else {
    CopyMatrix(joint.Local, joint.Global);
  }
}

void msModel::GetVertexBonesAndWeights(const msVertex &vertex, int (&bones)[4], int (&weights)[4]) const {
  bones[0] = vertex.BoneId;
  for (int k = 0; k < 3; k++) bones[k + 1] = vertex.BoneIds[k];
  if (vertex.BoneWeights[0] == 0 && vertex.BoneWeights[1] == 0 && vertex.BoneWeights[2] == 0) {
    weights[0] = 100;
    weights[1] = weights[2] = weights[3] = 0;
    return;
  }
  for (int k = 0; k < 3; k++) weights[k] = vertex.BoneWeights[k];
  weights[3] = 100 - (weights[0] + weights[1] + weights[2]);
}

namespace {

// d times the transpose of the joint's bind rotation: from the bind pose into
// the joint's own space.
void IntoJointSpace(const float (&m)[3][4], const float (&d)[3], float (&p)[3]) {
  for (int c = 0; c < 3; c++) p[c] = d[0] * m[0][c] + d[1] * m[1][c] + d[2] * m[2][c];
}

// A vertex's position (a point, which the joints also move) or one of its
// normals (a direction, which they only turn) in the current pose.
void Skin(const msModel &model, const msVertex &vertex, const float (&value)[3], bool point, float (&out)[3]) {
  int bones[4], weights[4];
  model.GetVertexBonesAndWeights(vertex, bones, weights);
  int joints = static_cast<int>(model.Joints.size());
  if (bones[0] < 0 || bones[0] >= joints || model.CurrentTime < 0.0f) {
    std::memcpy(out, value, sizeof out);
    return;
  }
  int count = 0;
  while (count < 4 && weights[count] > 0 && bones[count] >= 0 && bones[count] < joints) count++;
  // A vertex whose first weight is 0 still follows its first joint, wholly.
  if (count == 0) {
    count = 1;
    weights[0] = 100;
  }
  float result[3] = {0, 0, 0};
  for (int k = 0; k < count; k++) {
    const msJoint &joint = model.Joints[bones[k]];
    float d[3], p[3];
    for (int c = 0; c < 3; c++) d[c] = point ? value[c] - joint.GlobalSkeleton[c][3] : value[c];
    IntoJointSpace(joint.GlobalSkeleton, d, p);
    float weight = static_cast<float>(weights[k] / 100.0);
    for (int r = 0; r < 3; r++) {
      const float *g = joint.Global[r];
      result[r] += (g[0] * p[0] + g[1] * p[1] + g[2] * p[2] + (point ? g[3] : 0.0f)) * weight;
    }
  }
  std::memcpy(out, result, sizeof result);
}

}  // namespace

void msModel::TransformVertex(const msVertex &vertex, float (&out)[3]) const {
  Skin(*this, vertex, vertex.Position, true, out);
}

void msModel::TransformNormal(const msVertex &vertex, const float (&normal)[3], float (&out)[3]) const {
  Skin(*this, vertex, normal, false, out);
}
