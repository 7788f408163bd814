// Skeleton evaluation and its maths: matrices, quaternions, slerp branches,
// Hermite position keys, vertex weights and the centring of root joints.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <tuple>
#include <vector>

#include "model/mathlib.h"
#include "model/modelclass.h"
#include "model/msmodel.h"

namespace {

const float kPi = 3.14159265358979f;

// The floats from got on, each within tol of its wanted value.
void ExpectNear(const float *got, std::initializer_list<double> want, double tol = 1e-5) {
  int i = 0;
  for (double w : want) EXPECT_NEAR(got[i++], w, tol) << "element " << i - 1;
}

msJoint Joint(const char *name, const char *parent, float px, float py, float pz) {
  msJoint j;
  std::strcpy(j.Name, name);
  std::strcpy(j.ParentName, parent);
  j.Position[0] = px, j.Position[1] = py, j.Position[2] = pz;
  return j;
}

msVertex Vertex(float x, float y, float z, int8_t bone) { return msVertex{0, {x, y, z}, bone}; }

}  // namespace

TEST(ModelMaths, AnglesMatricesAndQuaternionsAgree) {
  float zero[3] = {0, 0, 0}, m[3][4], q[4];
  AngleMatrix(zero, m);
  ExpectNear(&m[0][0], {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}, 0);
  AngleQuaternion(zero, q);
  ExpectNear(q, {0, 0, 0, 1}, 0);

  const float angles[][3] = {{0.3f, -0.7f, 1.1f}, {kPi / 2, 0, 0}, {0, 0, kPi / 2}, {-2.0f, 0.4f, 2.9f}};
  for (const auto &a : angles) {
    // Rz(c) Ry(b) Rx(a) multiplied out in double.
    double sa = std::sin(a[0]), ca = std::cos(a[0]), sb = std::sin(a[1]), cb = std::cos(a[1]);
    double sc = std::sin(a[2]), cc = std::cos(a[2]);
    std::initializer_list<double> ref = {cb * cc, sa * sb * cc - ca * sc, ca * sb * cc + sa * sc, 0,
                                         cb * sc, sa * sb * sc + ca * cc, ca * sb * sc - sa * cc, 0,
                                         -sb,     sa * cb,                ca * cb,                0};
    std::memset(m, 0x7F, sizeof m);
    AngleMatrix(a, m);
    ExpectNear(&m[0][0], ref, 1e-6);
    // QuaternionMatrix writes only the rotation block.
    float fromQuat[3][4];
    fromQuat[0][3] = fromQuat[1][3] = fromQuat[2][3] = 0.0f;
    AngleQuaternion(a, q);
    QuaternionMatrix(q, fromQuat);
    ExpectNear(&fromQuat[0][0], ref, 1e-6);
    fromQuat[0][3] = 42.0f;
    QuaternionMatrix(q, fromQuat);
    EXPECT_EQ(fromQuat[0][3], 42.0f);
  }
}

TEST(ModelMaths, ConcatTransformsAppliesSecondThenFirst) {
  float a[3][4] = {{1, 0, 0, 1}, {0, 1, 0, 2}, {0, 0, 1, 3}};
  float b[3][4] = {{1, 0, 0, 4}, {0, 1, 0, 5}, {0, 0, 1, 6}};
  float out[3][4];
  ConcatTransforms(a, b, out);
  ExpectNear(&out[0][0], {1, 0, 0, 5, 0, 1, 0, 7, 0, 0, 1, 9}, 0);
  // A quarter turn about Z with a shift along X, after a shift along X:
  // the second shift is turned onto Y.
  float turn[3][4] = {{0, -1, 0, 1}, {1, 0, 0, 0}, {0, 0, 1, 0}};
  float shift[3][4] = {{1, 0, 0, 1}, {0, 1, 0, 0}, {0, 0, 1, 0}};
  ConcatTransforms(turn, shift, out);
  ExpectNear(&out[0][0], {0, -1, 0, 1, 1, 0, 0, 1, 0, 0, 1, 0}, 0);
  ConcatTransforms(shift, turn, out);
  EXPECT_EQ(std::make_tuple(out[0][3], out[1][3]), std::make_tuple(2.0f, 0.0f));
}

TEST(ModelMaths, SlerpBranches) {
  float a04[3] = {0, 0, 0.4f}, a10[3] = {0, 0, 1.0f}, a07[3] = {0, 0, 0.7f};
  float p[4], q[4], mid[4], out[4];
  AngleQuaternion(a04, p);
  AngleQuaternion(a10, q);
  AngleQuaternion(a07, mid);
  auto expectQuat = [&](const float *want) { ExpectNear(out, {want[0], want[1], want[2], want[3]}, 1e-6); };
  const float *want[3] = {p, q, mid}, at[3] = {0, 1, 0.5f};
  for (int k = 0; k < 3; k++) {
    QuaternionSlerp(p, q, at[k], out);
    expectQuat(want[k]);
  }

  // The longer way round is turned into the shorter one by negating q, in
  // the caller's quaternion.
  float negq[4] = {-q[0], -q[1], -q[2], -q[3]};
  QuaternionSlerp(p, negq, 0.5f, out);
  expectQuat(mid);
  QuaternionSlerp(p, negq, 1.0f, out);
  expectQuat(q);
  EXPECT_EQ(std::vector<float>(negq, negq + 4), std::vector<float>(q, q + 4));

  // A quaternion and its own negative: q flips, and the almost-equal branch
  // gives p without dividing by zero. Identical ones do the same.
  float negp[4] = {-p[0], -p[1], -p[2], -p[3]}, same[4] = {p[0], p[1], p[2], p[3]};
  QuaternionSlerp(p, negp, 0.3f, out);
  expectQuat(p);
  QuaternionSlerp(p, same, 0.3f, out);
  expectQuat(p);

  // cosom exactly 1.0 fails the strict test: the linear blend is used (the
  // sine branch would divide by sin(0)).
  float unit[4] = {0, 0, 0, 1}, stretched[4] = {0, 0, 0.5f, 1};
  QuaternionSlerp(unit, stretched, 0.5f, out);
  ExpectNear(out, {0, 0, 0.25f, 1}, 0);

  // The opposite branch: both distance sums overflow to infinity, so q is
  // not negated, and cosom is -infinity. The result turns p through the
  // quaternion at right angles to it; the fourth element is p.z.
  float big[4] = {1e20f, 0, 3, 0}, against[4] = {-1e20f, 1e20f, 0, 0};
  QuaternionSlerp(big, against, 0.5f, out);
  float s = static_cast<float>(std::sin(0.25 * M_PI));
  EXPECT_EQ(against[0], -1e20f);
  EXPECT_FLOAT_EQ(out[0], s * 1e20f);
  EXPECT_FLOAT_EQ(out[1], s * 1e20f);
  EXPECT_FLOAT_EQ(out[2], s * 3.0f);
  EXPECT_EQ(out[3], 3.0f);
}

TEST(ModelSkeleton, TangentsCloseTheLoopOfPositionKeys) {
  msModel m;
  const std::vector<msKeyframe> keys[3] = {{{0, {0, 0, 0}}, {10, {10, 0, 0}}, {30, {0, 20, 0}}},
                                           {{0, {0, 0, 0}}, {10, {10, 0, 0}}},
                                           {{0, {0, 0, 0}}, {5, {1, 1, 1}}, {0, {4, 0, 0}}}};
  for (const auto &k : keys) m.Joints.emplace_back(Joint("j", "", 0, 0, 0)).PositionKeys = k;
  m.SetupJoints();

  const std::vector<msTangent> &t = m.Joints[0].Tangents;
  ASSERT_EQ(t.size(), 3u);
  const std::vector<double> want[3][2] = {
      {{15, -30, 0}, {-5, 10, 0}}, {{0, 20.0 / 3, 0}, {0, 40.0 / 3, 0}}, {{20, 0, 0}, {-30, 0, 0}}};
  for (int k = 0; k < 3; k++) {
    for (int c = 0; c < 3; c++) {
      EXPECT_NEAR(t[k].TangentIn[c], want[k][0][c], 1e-5) << k;
      EXPECT_NEAR(t[k].TangentOut[c], want[k][1][c], 1e-5) << k;
    }
  }
  // Two keys get no tangents; equal times on both sides of a key give none
  // rather than infinity.
  ASSERT_EQ(m.Joints[1].Tangents.size(), 2u);
  ExpectNear(m.Joints[1].Tangents[1].TangentIn, {0, 0, 0}, 0);
  ExpectNear(m.Joints[2].Tangents[1].TangentIn, {0, 0, 0}, 0);
  ExpectNear(m.Joints[2].Tangents[1].TangentOut, {0, 0, 0}, 0);

  // Hermite between keys 0 and 1 at t = 0.5.
  m.SetFrame(5);
  EXPECT_NEAR(m.Joints[0].Local[0][3], 4.375f, 1e-5);
  EXPECT_NEAR(m.Joints[0].Local[1][3], 0.125f * 10 - 0.125f * 20.0f / 3, 1e-5);
  // Two keys ease in and out: a quarter of the way in time is 15.625% of the way.
  m.SetFrame(2.5f);
  EXPECT_NEAR(m.Joints[1].Local[0][3], 1.5625f, 1e-6);
  // On a key: that key's value; on the last key: the last value; after and
  // before the keys: the end values.
  m.SetFrame(10);
  EXPECT_NEAR(m.Joints[0].Local[0][3], 10.0f, 1e-6);
  EXPECT_EQ(m.Joints[1].Local[0][3], 10.0f);
  m.SetFrame(50);
  EXPECT_EQ(std::make_tuple(m.Joints[0].Local[1][3], m.CurrentTime), std::make_tuple(20.0f, 50.0f));
}

TEST(ModelSkeleton, JointsPoseRelativeToBindAndParent) {
  msModel m;
  msJoint root = Joint("root", "", 1, 0, 0);
  root.Rotation[2] = kPi / 2;
  root.RotationKeys = {{0, {0, 0, 0}}, {10, {0, 0, kPi / 2}}};
  m.Joints.push_back(root);
  m.Joints.emplace_back(Joint("child", "root", 1, 0, 0)).PositionKeys = {{4, {0, 0, 2}}};
  m.Joints.push_back(Joint("bare", "nobody", 3, 4, 5));
  m.SetupJoints();
  EXPECT_EQ(std::make_tuple(m.Joints[0].ParentIndex, m.Joints[1].ParentIndex, m.Joints[2].ParentIndex),
            std::make_tuple(-1, 0, -1));
  // The child's bind position is turned by its parent.
  EXPECT_NEAR(m.Joints[1].GlobalSkeleton[0][3], 1.0f, 1e-6);
  EXPECT_NEAR(m.Joints[1].GlobalSkeleton[1][3], 1.0f, 1e-6);

  m.SetFrame(-1);
  EXPECT_EQ(std::memcmp(m.Joints[1].Global, m.Joints[1].GlobalSkeleton, sizeof(float) * 12), 0);
  EXPECT_EQ(m.CurrentTime, -1.0f);

  // Halfway between the rotation keys the root has turned a further eighth.
  m.SetFrame(5);
  double c135 = std::cos(0.75 * M_PI), s135 = std::sin(0.75 * M_PI);
  EXPECT_NEAR(m.Joints[0].Global[0][0], c135, 1e-6);
  EXPECT_NEAR(m.Joints[0].Global[1][0], s135, 1e-6);
  // A joint without keys keeps its bind pose.
  ExpectNear(&m.Joints[2].Local[0][0], {1, 0, 0, 3, 0, 1, 0, 4, 0, 0, 1, 5}, 1e-7);
  // A single position key applies before its time too, and the child
  // follows its parent: (1, 0, 2) in the parent's frame, turned by 135 degrees.
  ExpectNear(&m.Joints[1].Global[0][3], {1 + c135});
  ExpectNear(&m.Joints[1].Global[1][3], {s135});
  ExpectNear(&m.Joints[1].Global[2][3], {2}, 1e-6);
}

TEST(ModelSkeleton, VertexWeightsAndBoneCounts) {
  msModel m;
  for (msKeyframe shift : {msKeyframe{0, {10, 0, 0}}, msKeyframe{0, {0, 10, 0}}, msKeyframe{0, {0, 0, 10}}})
    m.Joints.emplace_back(Joint("j", "", 0, 0, 0)).PositionKeys = {shift};
  m.SetupJoints();
  m.SetFrame(0);

  struct Case {
    int8_t BoneId;
    int8_t BoneIds[3];
    uint8_t Weights[3];
    float Expect[3];
    std::vector<int> Bones, Percent;
  } cases[] = {
      {0, {0, 0, 0}, {0, 0, 0}, {11, 1, 1}, {0, 0, 0, 0}, {100, 0, 0, 0}},
      {static_cast<int8_t>(200), {1, 0, 0}, {0, 0, 0}, {1, 1, 1}, {-56, 1, 0, 0}, {100, 0, 0, 0}},
      {0, {1, 0, 0}, {0, 50, 0}, {11, 1, 1}, {0, 1, 0, 0}, {0, 50, 0, 50}},
      {0, {1, 2, 0}, {60, 30, 10}, {7, 4, 2}, {0, 1, 2, 0}, {60, 30, 10, 0}},
      {0, {-1, 0, 0}, {50, 50, 0}, {5.5f, 0.5f, 0.5f}, {0, -1, 0, 0}, {50, 50, 0, 0}},
      {1, {0, 0, 0}, {100, 50, 0}, {6.5f, 11.5f, 1.5f}, {1, 0, 0, 0}, {100, 50, 0, -50}},
      {3, {0, 0, 0}, {0, 0, 0}, {1, 1, 1}, {3, 0, 0, 0}, {100, 0, 0, 0}},
  };
  for (const Case &c : cases) {
    msVertex v = Vertex(1, 1, 1, c.BoneId);
    std::memcpy(v.BoneIds, c.BoneIds, 3);
    std::memcpy(v.BoneWeights, c.Weights, 3);
    int bones[4], weights[4];
    m.GetVertexBonesAndWeights(v, bones, weights);
    EXPECT_EQ(std::vector<int>(bones, bones + 4), c.Bones) << int(c.BoneId);
    EXPECT_EQ(std::vector<int>(weights, weights + 4), c.Percent) << int(c.BoneId);
    float out[3];
    m.TransformVertex(v, out);
    ExpectNear(out, {c.Expect[0], c.Expect[1], c.Expect[2]});
  }
  // In the bind pose every vertex stays where it is stored.
  m.SetFrame(-1);
  float out[3];
  m.TransformVertex(Vertex(1, 1, 1, 0), out);
  ExpectNear(out, {1, 1, 1}, 0);
}

TEST(ModelSkeleton, VerticesAndNormalsLeaveTheBindPoseThroughTheJoint) {
  msModel m;
  m.Joints.emplace_back(Joint("turned", "", 0, 0, 0)).Rotation[2] = kPi / 2;
  m.Joints.emplace_back(Joint("spin", "", 2, 0, 0)).RotationKeys = {{0, {0, 0, kPi / 2}}};
  m.SetupJoints();
  m.SetFrame(0);
  // A joint at rest gives back the vertex and normal, whatever its bind
  // rotation. A quarter turn about the joint at (2, 0, 0) takes (3, 0, 0) to
  // (2, 1, 0), and turns the normal without the joint's translation.
  // Unbound vertices keep the normal passed in.
  const float n[3] = {0.6f, 0.8f, 0}, x[3] = {1, 0, 0};
  float out[3];
  m.TransformVertex(Vertex(3, -1, 2, 0), out);
  ExpectNear(out, {3, -1, 2});
  m.TransformNormal(Vertex(3, -1, 2, 0), n, out);
  ExpectNear(out, {0.6f, 0.8f, 0});
  m.TransformVertex(Vertex(3, 0, 0, 1), out);
  ExpectNear(out, {2, 1, 0});
  m.TransformNormal(Vertex(3, 0, 0, 1), x, out);
  ExpectNear(out, {0, 1, 0});
  m.TransformNormal(Vertex(3, 0, 0, -1), x, out);
  ExpectNear(out, {1, 0, 0}, 0);
}

TEST(ModelSkeleton, CentringMovesVerticesAndRootJointsOnly) {
  msModel m;
  m.Vertices = {Vertex(0, 0, 0, 1), Vertex(10, 4, 2, 1), Vertex(3, 3, 1, -1)};
  m.Joints = {Joint("root", "", 1, 1, 1), Joint("child", "root", 1, 0, 0), Joint("orphan", "missing", 2, 2, 2)};
  ModelBox box = CentreModel(m);
  ExpectNear(box.CentreOffset, {-5, -2, -1}, 0);
  ExpectNear(box.Size, {10, 4, 2}, 0);
  ExpectNear(box.HalfSize, {5, 2, 1}, 0);
  ExpectNear(box.BoundsMin, {-5, -2, -1}, 0);
  ExpectNear(box.BoundsMax, {5, 2, 1}, 0);
  ExpectNear(m.Vertices[1].Position, {5, 2, 1}, 0);
  ExpectNear(m.Joints[0].Position, {-4, -1, 0}, 0);
  ExpectNear(m.Joints[1].Position, {1, 0, 0}, 0);
  ExpectNear(m.Joints[2].Position, {-3, 0, 1}, 0);
  // The skeleton moved with the mesh: at rest, bound vertices stay put.
  m.SetupJoints();
  m.SetFrame(0);
  float out[3];
  m.TransformVertex(m.Vertices[1], out);
  ExpectNear(out, {5, 2, 1});

  msModel empty;
  box = CentreModel(empty);
  ExpectNear(box.CentreOffset, {0, 0, 0}, 0);
  ExpectNear(box.BoundsMax, {0, 0, 0}, 0);
}
