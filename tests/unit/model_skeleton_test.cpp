// Skeleton evaluation and its maths: rotations, products, slerp and its
// fallbacks, key tangents, skinned vertices and normals, and centring.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "model/mathlib.h"
#include "model/modelclass.h"

namespace {

const float kQuarter = 1.57079633f;

void ExpectNear(const float *got, const std::vector<double> &want, double tol = 1e-5) {
  for (size_t i = 0; i < want.size(); i++) EXPECT_NEAR(got[i], want[i], tol) << "element " << i;
}

msJoint Joint(const char *name, const char *parent, std::vector<msKeyframe> positionKeys = {}) {
  msJoint j;
  std::strcpy(j.Name, name);
  std::strcpy(j.ParentName, parent);
  j.PositionKeys = positionKeys;
  return j;
}

// The skinned position and normal of a vertex, with a guard behind each.
std::vector<float> Skinned(const msModel &m, const msVertex &v, const float (&normal)[3]) {
  struct {
    float V[3], GuardV = 7, N[3], GuardN = 7;
  } o;
  m.TransformVertex(v, o.V);
  m.TransformNormal(v, normal, o.N);
  return {o.V[0], o.V[1], o.V[2], o.GuardV, o.N[0], o.N[1], o.N[2], o.GuardN};
}

}  // namespace

TEST(ModelMaths, RotationsAgreeWithEachOther) {
  float m[3][4], q[4], r[3][4];
  const float angles[][3] = {{kQuarter, 0, 0}, {0, kQuarter, 0}, {0, 0, kQuarter}, {0, 0, 0}};
  const std::vector<double> quarter[] = {{1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0},
                                         {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 0},
                                         {0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0},
                                         {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}};
  for (int i = 0; i < 4; i++) {
    std::memset(m, 0x7F, sizeof m);
    AngleMatrix(angles[i], m);
    ExpectNear(&m[0][0], quarter[i], 1e-7);
  }
  AngleQuaternion(angles[3], q);
  ExpectNear(q, {0, 0, 0, 1}, 0);
  // Any angles: Rz Ry Rx as one matrix, and the same rotation by quaternion;
  // QuaternionMatrix leaves the translation column alone.
  const float a[3] = {0.3f, -0.7f, 1.1f}, x[3] = {a[0], 0, 0}, y[3] = {0, a[1], 0}, z[3] = {0, 0, a[2]};
  float mx[3][4], my[3][4], mz[3][4], zy[3][4];
  AngleMatrix(x, mx), AngleMatrix(y, my), AngleMatrix(z, mz), AngleMatrix(a, m);
  ConcatTransforms(mz, my, zy);
  ConcatTransforms(zy, mx, r);
  ExpectNear(&r[0][0], std::vector<double>(&m[0][0], &m[0][0] + 12), 1e-6);
  AngleQuaternion(a, q);
  r[0][3] = r[1][3] = r[2][3] = 5;
  QuaternionMatrix(q, r);
  for (int i = 0; i < 3; i++) m[i][3] = 5;
  ExpectNear(&r[0][0], std::vector<double>(&m[0][0], &m[0][0] + 12), 1e-6);
}

TEST(ModelMaths, ConcatTransformsIsTheProductWithAnImpliedLastRow) {
  const float a[3][4] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}, b[3][4] = {{2, 0, 1, 1}, {0, 1, 0, 2}, {1, 0, 3, 3}};
  float out[3][4];
  ConcatTransforms(a, b, out);
  ExpectNear(&out[0][0], {5, 2, 10, 18, 17, 6, 26, 46, 29, 10, 42, 74}, 0);
}

TEST(ModelMaths, SlerpEndsShorterWayAndFallbacks) {
  using Quat = std::array<float, 4>;
  auto z = [](double angle) { return Quat{0, 0, float(std::sin(angle / 2)), float(std::cos(angle / 2))}; };
  const Quat p = z(0.4), q = z(1), big = {1e20f, 2, 3, 4}, against = {-1e20f, 1e20f, 0, 0};
  const float s = std::sin(0.25f * M_PI);
  const struct {
    Quat P, Q;
    float T;
    Quat Out, QAfter;
  } cases[] = {
      {p, q, 0, p, q},
      {p, q, 1, q, q},
      {p, q, 0.3f, z(0.58), q},
      // The longer way round: q is negated in place.
      {p, {-q[0], -q[1], -q[2], -q[3]}, 0.5f, z(0.7), q},
      // cosom exactly 1 fails the strict test: a linear blend.
      {{0, 0, 0, 1}, {0, 0, 0.5f, 1}, 0.25f, {0, 0, 0.125f, 1}, {0, 0, 0.5f, 1}},
      // Both distances overflow, so q stays, and cosom is -infinity: p turns
      // through (-p.y, p.x, -p.w, p.z), the fourth element staying p.z.
      {big, against, 0, {1e20f, 2, 3, 3}, against},
      {big, against, 1, {-2, 1e20f, -4, 3}, against},
      {big, against, 0.5f, {s * 1e20f, s * 1e20f, -s, 3}, against},
  };
  for (const auto &c : cases) {
    float pp[4], qq[4], out[5] = {0, 0, 0, 0, 7};
    std::copy(c.P.begin(), c.P.end(), pp);
    std::copy(c.Q.begin(), c.Q.end(), qq);
    QuaternionSlerp(pp, qq, c.T, reinterpret_cast<float(&)[4]>(out));
    for (int i = 0; i < 4; i++) {
      EXPECT_FLOAT_EQ(out[i], c.Out[i]) << c.T << " " << i;
      EXPECT_EQ(qq[i], c.QAfter[i]) << c.T;
    }
    EXPECT_EQ(out[4], 7);
  }
}

TEST(ModelSkeleton, TangentsCloseTheLoopOfPositionKeys) {
  msModel m;
  m.Joints = {Joint("j", "", {{1, {2, 1, 0}}, {10, {10, 0, 0}}, {30, {0, 20, 0}}}),
              Joint("j", "", {{0, {0, 0, 0}}, {10, {10, 0, 0}}}),
              Joint("j", "", {{0, {2, 0, 0}}, {5, {1, 1, 1}}, {0, {4, 0, 0}}})};
  m.SetupJoints();
  std::vector<float> got;
  for (const msJoint &j : m.Joints)
    for (const msTangent &t : j.Tangents) got.insert(got.end(), {t.TangentIn[0], t.TangentIn[1], t.TangentOut[0], t.TangentOut[1]});
  // Two keys have none; equal times about a key give it none rather than
  // infinity.
  ExpectNear(got.data(), {14.5, -29, -4.5, 9, -18. / 29, 171. / 29, -40. / 29, 380. / 29, 160. / 9, -20. / 9,
                          -232. / 9, 29. / 9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -3, 1, 0, 0, 0, 0, 1, -1, 0, 0},
             1e-5);
  ASSERT_EQ(got.size(), 32u);
  // Two keys ease in and out: a quarter of the time is 15.625 % of the way.
  // Equal times of the first and last key: at 5 no pair spans the frame, and
  // the last key holds.
  m.SetFrame(2.5f);
  EXPECT_NEAR(m.Joints[1].Local[0][3], 1.5625f, 1e-6);
  m.SetFrame(5);
  ExpectNear(&m.Joints[2].Local[0][3], {4}, 0);
}

TEST(ModelSkeleton, SkinnedVertexAndNormalFollowTheKeys) {
  msModel m;
  m.Joints = {Joint("root", "", {{0, {1, -1, 2}}, {10, {10, 0, 0}}, {30, {0, 20, 0}}}),
              Joint("child", "root", {{4, {1, -2, 0.5f}}})};
  const float rotation[2][3] = {{0.3f, -0.7f, 1.1f}, {0.2f, 0.4f, -0.5f}}, position[2][3] = {{1, 2, 3}, {0.5f, -1, 2}};
  for (int i = 0; i < 2; i++) {
    std::memcpy(m.Joints[i].Rotation, rotation[i], sizeof rotation[i]);
    std::memcpy(m.Joints[i].Position, position[i], sizeof position[i]);
  }
  m.Joints[0].RotationKeys = {{0, {0, 0, 0}}, {10, {0.4f, -0.2f, 0.9f}}};
  m.Joints[1].RotationKeys = {{2, {0, 0, 0}}, {8, {0, 0, 3.5f}}};
  m.SetupJoints();
  const msVertex v{0, {2, 1, -1}, 1, 0, {0, 0, 0}, {60, 40, 0}};
  const float normal[3] = {0.36f, 0.48f, 0.8f};
  // Worked out apart from the program, from the bind pose and the keys.
  const std::pair<float, std::vector<double>> frames[] = {
      {-1, {2, 1, -1, 0.36, 0.48, 0.8}},
      {0, {4.50041, -0.241393, 0.381957, 0.36, 0.48, 0.8}},
      {4, {3.67645, 2.27442, 2.35656, 0.457806, 0.52581, 0.603429}},
      {10, {4.15369, 9.40924, 7.75302, 0.43583, 0.00516968, 0.292227}},
      {25, {-15.8468, 6.11831, 4.93092, 0.43583, 0.00516968, 0.292227}},
      {30, {-18.0708, 7.8663, 5.83137, 0.43583, 0.00516968, 0.292227}},
  };
  for (const auto &f : frames) {
    m.SetFrame(f.first);
    std::vector<float> got = Skinned(m, v, normal);
    std::vector<double> want = f.second;
    want.insert(want.begin() + 3, 7);
    want.push_back(7);
    ExpectNear(got.data(), want, 1e-4);
    EXPECT_EQ(m.CurrentTime, f.first);
  }
  EXPECT_EQ(std::make_pair(m.Joints[0].ParentIndex, m.Joints[1].ParentIndex), std::make_pair(-1, 0));
}

TEST(ModelSkeleton, BonesAndWeightsOfAVertex) {
  msModel m;
  // A joint that shifts by 10 along x, one without keys that stays in its
  // bind pose, and one that shifts along z, which names itself as its parent
  // and is posed as a root.
  m.Joints = {Joint("a", "", {{0, {10, 0, 0}}}), Joint("b", ""), Joint("s", "s", {{0, {0, 0, 10}}})};
  m.SetupJoints();
  m.SetFrame(0);
  const struct {
    int8_t BoneId, BoneIds[3];
    uint8_t Weights[3];
    std::vector<int> Bones, Percent;
    std::vector<double> Position;
  } cases[] = {
      {0, {0, 0, 0}, {0, 0, 0}, {0, 0, 0, 0}, {100, 0, 0, 0}, {11, 1, 1}},
      {int8_t(200), {1, 0, 0}, {0, 0, 0}, {-56, 1, 0, 0}, {100, 0, 0, 0}, {1, 1, 1}},
      {3, {0, 0, 0}, {0, 0, 0}, {3, 0, 0, 0}, {100, 0, 0, 0}, {1, 1, 1}},
      {0, {1, 0, 0}, {0, 50, 0}, {0, 1, 0, 0}, {0, 50, 0, 50}, {11, 1, 1}},
      {0, {1, 2, 0}, {60, 30, 10}, {0, 1, 2, 0}, {60, 30, 10, 0}, {7, 1, 2}},
      {0, {1, 2, 1}, {60, 30, 5}, {0, 1, 2, 1}, {60, 30, 5, 5}, {7, 1, 1.5}},
      {0, {-1, 0, 0}, {50, 50, 0}, {0, -1, 0, 0}, {50, 50, 0, 0}, {5.5, 0.5, 0.5}},
      {2, {0, 0, 0}, {100, 50, 0}, {2, 0, 0, 0}, {100, 50, 0, -50}, {6.5, 1.5, 11.5}},
  };
  const float normal[3] = {0, 0.6f, 0.8f};
  for (const auto &c : cases) {
    msVertex v{0, {1, 1, 1}, c.BoneId};
    std::memcpy(v.BoneIds, c.BoneIds, 3);
    std::memcpy(v.BoneWeights, c.Weights, 3);
    int bones[4], weights[4];
    m.GetVertexBonesAndWeights(v, bones, weights);
    EXPECT_EQ(std::vector<int>(bones, bones + 4), c.Bones);
    EXPECT_EQ(std::vector<int>(weights, weights + 4), c.Percent);
    ExpectNear(Skinned(m, v, normal).data(), c.Position);
  }
}

TEST(ModelSkeleton, CentringMovesVerticesAndRootJoints) {
  msModel m;
  m.Vertices.resize(3);
  const float at[3][3] = {{0, 0, 0}, {10, -4, 2}, {3, 3, 1}};
  for (int i = 0; i < 3; i++) std::memcpy(m.Vertices[i].Position, at[i], sizeof at[i]);
  m.Joints = {Joint("root", ""), Joint("child", "root"), Joint("orphan", "missing")};
  for (msJoint &j : m.Joints) j.Position[0] = j.Position[1] = j.Position[2] = 1;
  ModelBox box = CentreModel(m);
  std::vector<float> got;
  for (const float *v : {box.Size, box.HalfSize, box.CentreOffset, box.BoundsMin, box.BoundsMax, m.Vertices[1].Position,
                         m.Joints[0].Position, m.Joints[1].Position, m.Joints[2].Position})
    got.insert(got.end(), v, v + 3);
  ExpectNear(got.data(), {10, 7, 2, 5, 3.5, 1, -5, 0.5, -1, -5, -3.5, -1, 5, 3.5, 1, 5, -3.5, 1, -4, 1.5, 0, 1, 1, 1, -4, 1.5, 0},
             0);
  msModel empty;
  box = CentreModel(empty);
  ExpectNear(box.CentreOffset, {0, 0, 0}, 0);
}
