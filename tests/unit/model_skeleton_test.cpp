// Skeleton evaluation and its maths.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>

#include "model/mathlib.h"
#include "model/modelclass.h"

using namespace std;

namespace {

void ExpectNear(const float *got, const vector<double> &want, double tol = 1e-5) {
  for (size_t i = 0; i < want.size(); i++) EXPECT_NEAR(got[i], want[i], tol) << "element " << i;
}

msJoint Joint(const char *name, const char *parent, vector<msKeyframe> positionKeys = {},
              array<float, 6> bind = {}) {
  msJoint j;
  strcpy(j.Name, name);
  strcpy(j.ParentName, parent);
  j.PositionKeys = positionKeys;
  memcpy(j.Rotation, &bind[0], sizeof j.Rotation);
  memcpy(j.Position, &bind[3], sizeof j.Position);
  return j;
}

// The skinned position and normal of a vertex.
vector<float> Skinned(const msModel &m, const msVertex &v, const float (&normal)[3]) {
  float out[2][3];
  m.TransformVertex(v, out[0]);
  m.TransformNormal(v, normal, out[1]);
  return vector<float>(out[0], out[0] + 6);
}

}  // namespace

TEST(ModelMaths, Slerp) {
  using Quat = array<float, 4>;
  auto x = [](double angle) { return Quat{float(sin(angle / 2)), 0, 0, float(cos(angle / 2))}; };
  const Quat p = x(0.4), q = x(1), far = x(-1.85), big = {1e20f, 2, 3, 4}, against = {-1e20f, 1e20f, 0, 0};
  const float c = sin(0.375 * M_PI), s = sin(0.125 * M_PI);
  const struct {
    Quat P, Q;
    float T;
    Quat Out, QAfter;
  } cases[] = {
      {p, q, 0.3f, x(0.58), q},
      // The longer way round: q is negated in place.
      {x(2.24), far, 0.5f, x(3.33659265), {-far[0], 0, 0, -far[3]}},
      // Both distances overflow, q stays, cosom is -infinity: p turns through
      // (-p.y, p.x, -p.w, p.z), whose fourth element stays.
      {big, against, 1, {-2, 1e20f, -4, 3}, against},
      {big, against, 0.25f, {c * 1e20f, s * 1e20f, 3 * c - 4 * s, 3}, against},
  };
  auto f = [](auto &a) -> float(&)[4] { return *reinterpret_cast<float(*)[4]>(a.data()); };
  for (auto c : cases) {
    array<float, 5> out = {0, 0, 0, 0, 7};
    QuaternionSlerp(f(c.P), f(c.Q), c.T, f(out));
    for (int i = 0; i < 4; i++) EXPECT_FLOAT_EQ(out[i], c.Out[i]) << c.T << " " << i;
    EXPECT_EQ(make_pair(c.Q, out[4]), make_pair(c.QAfter, 7.0f)) << c.T;
  }
}

TEST(ModelSkeleton, Tangents) {
  msModel m;
  m.Joints = {Joint("j", "", {{1, {2, 1, 0}}, {10, {10, 0, 0}}, {30, {0, 20, 0}}}),
              Joint("j", "", {{0, {2, 0, 0}}, {5, {1, 1, 1}}, {0, {4, 0, 0}}}),
              Joint("j", "", {{0, {2, 0, 0}}, {INFINITY, {1, 1, 1}}})};
  m.SetupJoints();
  vector<float> got;
  for (const msJoint &j : m.Joints)
    for (const msTangent &t : j.Tangents) got.insert(got.end(), {t.TangentIn[0], t.TangentIn[1], t.TangentOut[0], t.TangentOut[1]});
  // Equal times about a key leave it without tangents; two keys have none.
  ASSERT_EQ(got.size(), 32u);
  ExpectNear(got.data(), {14.5, -29, -4.5, 9, -18. / 29, 171. / 29, -40. / 29, 380. / 29, 160. / 9, -20. / 9,
                          -232. / 9, 29. / 9, 0, 0, -3, 1, 0, 0, 0, 0, 1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  // No pair of keys spans 5, not below the last key's time.
  m.SetFrame(5);
  EXPECT_EQ(m.Joints[1].Local[0][3], 4);
}

TEST(ModelSkeleton, SkinnedByTheKeys) {
  msModel m;
  m.Joints = {Joint("root", "", {{0, {1, -1, 2}}, {10, {10, 0, 0}}, {30, {0, 20, 0}}}, {0.3f, -0.7f, 1.1f, 1, 2, 3}),
              Joint("child", "root", {{4, {1, -2, 0.5f}}}, {0.2f, 0.4f, -0.5f, 0.5f, -1, 2})};
  m.Joints[0].RotationKeys = {{0, {0, 0, 0}}, {10, {0.4f, -0.2f, 0.9f}}};
  m.Joints[1].RotationKeys = {{2, {0, 0, 0}}, {8, {0, 0, 3.5f}}};
  m.SetupJoints();
  const msVertex v{0, {2, 1, -1}, 1, 0, {0, 0, 0}, {60, 40, 0}};
  const float normal[3] = {0.36f, 0.48f, 0.8f};
  // Worked out apart from the program.
  const pair<float, vector<double>> frames[] = {
      {-1, {2, 1, -1, 0.36, 0.48, 0.8}},
      {0, {4.50041, -0.241393, 0.381957, 0.36, 0.48, 0.8}},
      {4, {3.67645, 2.27442, 2.35656, 0.457806, 0.52581, 0.603429}},
      {10, {4.15369, 9.40924, 7.75302, 0.43583, 0.00516968, 0.292227}},
      {25, {-15.8468, 6.11831, 4.93092, 0.43583, 0.00516968, 0.292227}},
      {30, {-18.0708, 7.8663, 5.83137, 0.43583, 0.00516968, 0.292227}},
  };
  for (const auto &[frame, want] : frames) {
    m.SetFrame(frame);
    ExpectNear(Skinned(m, v, normal).data(), want, 1e-4);
  }
}

TEST(ModelSkeleton, BonesAndWeights) {
  msModel m;
  // Joints shifting by 10 along x, not at all (no keys), along z (its own
  // parent: a root).
  m.Joints = {Joint("a", "", {{0, {10, 0, 0}}}), Joint("b", ""), Joint("s", "s", {{0, {0, 0, 10}}})};
  m.SetupJoints();
  m.SetFrame(0);
  // Bone and weight bytes, the four weights, where (1, 1, 1) goes.
  const struct {
    int8_t BoneId, BoneIds[3];
    uint8_t Weights[3];
    vector<int> Percent;
    vector<double> Position;
  } cases[] = {
      {0, {0, 0, 0}, {0, 0, 0}, {100, 0, 0, 0}, {11, 1, 1}},
      {int8_t(200), {1, 0, 0}, {0, 0, 0}, {100, 0, 0, 0}, {1, 1, 1}},
      {3, {0, 0, 0}, {0, 0, 0}, {100, 0, 0, 0}, {1, 1, 1}},
      {0, {1, 0, 0}, {0, 50, 0}, {0, 50, 0, 50}, {11, 1, 1}},
      {0, {1, 2, 1}, {60, 30, 5}, {60, 30, 5, 5}, {7, 1, 1.5}},
      {0, {-1, 0, 0}, {50, 50, 0}, {50, 50, 0, 0}, {5.5, 0.5, 0.5}},
      {2, {0, 0, 0}, {100, 50, 0}, {100, 50, 0, -50}, {6.5, 1.5, 11.5}},
  };
  for (const auto &c : cases) {
    msVertex v{0, {1, 1, 1}, c.BoneId};
    memcpy(v.BoneIds, c.BoneIds, 3);
    memcpy(v.BoneWeights, c.Weights, 3);
    int bones[4], weights[4];
    m.GetVertexBonesAndWeights(v, bones, weights);
    EXPECT_EQ(vector<int>(weights, weights + 4), c.Percent);
    ExpectNear(Skinned(m, v, v.Position).data(), c.Position);
  }
}

TEST(ModelSkeleton, Centring) {
  msModel m;
  m.Vertices.resize(3);
  const float at[3][3] = {{0, 0, 0}, {10, -4, 2}, {3, 3, 1}};
  for (int i = 0; i < 3; i++) memcpy(m.Vertices[i].Position, at[i], sizeof at[i]);
  m.Joints = {Joint("root", ""), Joint("child", "root"), Joint("orphan", "missing")};
  for (msJoint &j : m.Joints) j.Position[0] = j.Position[1] = j.Position[2] = 1;
  ModelBox box = CentreModel(m);
  vector<float> got;
  for (const float *v : {box.Size, box.HalfSize, box.CentreOffset, box.BoundsMin, box.BoundsMax, m.Vertices[1].Position,
                         m.Joints[0].Position, m.Joints[1].Position, m.Joints[2].Position})
    got.insert(got.end(), v, v + 3);
  ExpectNear(got.data(), {10, 7, 2, 5, 3.5, 1, -5, 0.5, -1, -5, -3.5, -1, 5, 3.5, 1, 5, -3.5, 1, -4, 1.5, 0, 1, 1, 1, -4, 1.5, 0},
             0);
  msModel empty;
  box = CentreModel(empty);
  ExpectNear(box.CentreOffset, {0, 0, 0}, 0);
}
