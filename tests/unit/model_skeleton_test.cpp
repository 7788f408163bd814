// Skeleton evaluation and its maths: matrices, quaternions, slerp branches,
// Hermite position keys, vertex weights and the centring of root joints.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <tuple>
#include <vector>

#include "model/mathlib.h"
#include "model/modelclass.h"
#include "model/msmodel.h"

namespace {

const float kPi = 3.14159265358979f;

void ExpectVec(const float *v, float x, float y, float z, float tol = 1e-5f) {
  EXPECT_NEAR(v[0], x, tol);
  EXPECT_NEAR(v[1], y, tol);
  EXPECT_NEAR(v[2], z, tol);
}

void ExpectQuat(const float *got, const float *want) {
  for (int i = 0; i < 4; i++) EXPECT_NEAR(got[i], want[i], 1e-6) << i;
}

msJoint Joint(const char *name, const char *parent, float px, float py, float pz) {
  msJoint j;
  std::strcpy(j.Name, name);
  std::strcpy(j.ParentName, parent);
  const float at[3] = {px, py, pz};
  std::memcpy(j.Position, at, sizeof at);
  return j;
}

msVertex Vertex(float x, float y, float z, int8_t bone) {
  msVertex v;
  const float at[3] = {x, y, z};
  std::memcpy(v.Position, at, sizeof at);
  v.BoneId = bone;
  return v;
}

// Rz(c) Ry(b) Rx(a) multiplied out in double.
void Reference(double a, double b, double c, double m[3][3]) {
  double rx[3][3] = {{1, 0, 0}, {0, std::cos(a), -std::sin(a)}, {0, std::sin(a), std::cos(a)}};
  double ry[3][3] = {{std::cos(b), 0, std::sin(b)}, {0, 1, 0}, {-std::sin(b), 0, std::cos(b)}};
  double rz[3][3] = {{std::cos(c), -std::sin(c), 0}, {std::sin(c), std::cos(c), 0}, {0, 0, 1}};
  double zy[3][3] = {};
  for (int r = 0; r < 3; r++)
    for (int k = 0; k < 3; k++)
      for (int i = 0; i < 3; i++) zy[r][k] += rz[r][i] * ry[i][k];
  for (int r = 0; r < 3; r++)
    for (int k = 0; k < 3; k++) {
      m[r][k] = 0;
      for (int i = 0; i < 3; i++) m[r][k] += zy[r][i] * rx[i][k];
    }
}

}  // namespace

TEST(ModelMaths, AnglesMatricesAndQuaternionsAgree) {
  float zero[3] = {0, 0, 0}, m[3][4], q[4];
  AngleMatrix(zero, m);
  for (int r = 0; r < 3; r++)
    for (int c = 0; c < 4; c++) EXPECT_EQ(m[r][c], r == c ? 1.0f : 0.0f);
  AngleQuaternion(zero, q);
  EXPECT_EQ(std::vector<float>(q, q + 4), (std::vector<float>{0, 0, 0, 1}));

  const float angles[][3] = {{0.3f, -0.7f, 1.1f}, {kPi / 2, 0, 0}, {0, 0, kPi / 2}, {-2.0f, 0.4f, 2.9f}};
  for (const auto &a : angles) {
    double ref[3][3];
    Reference(a[0], a[1], a[2], ref);
    float fromQuat[3][4];
    std::memset(m, 0x7F, sizeof m);
    AngleMatrix(a, m);
    AngleQuaternion(a, q);
    fromQuat[0][3] = fromQuat[1][3] = fromQuat[2][3] = 42.0f;
    QuaternionMatrix(q, fromQuat);
    for (int r = 0; r < 3; r++) {
      EXPECT_EQ(m[r][3], 0.0f);
      // Only the rotation block is written.
      EXPECT_EQ(fromQuat[r][3], 42.0f);
      for (int c = 0; c < 3; c++) {
        EXPECT_NEAR(m[r][c], ref[r][c], 1e-6) << r << c;
        EXPECT_NEAR(fromQuat[r][c], ref[r][c], 1e-6) << r << c;
      }
    }
  }
}

TEST(ModelMaths, ConcatTransformsAppliesSecondThenFirst) {
  float a[3][4] = {{1, 0, 0, 1}, {0, 1, 0, 2}, {0, 0, 1, 3}};
  float b[3][4] = {{1, 0, 0, 4}, {0, 1, 0, 5}, {0, 0, 1, 6}};
  float out[3][4];
  ConcatTransforms(a, b, out);
  EXPECT_EQ(std::make_tuple(out[0][3], out[1][3], out[2][3]), std::make_tuple(5.0f, 7.0f, 9.0f));
  // A quarter turn about Z with a shift along X, after a shift along X:
  // the second shift is turned onto Y.
  float turn[3][4] = {{0, -1, 0, 1}, {1, 0, 0, 0}, {0, 0, 1, 0}};
  float shift[3][4] = {{1, 0, 0, 1}, {0, 1, 0, 0}, {0, 0, 1, 0}};
  ConcatTransforms(turn, shift, out);
  EXPECT_EQ(std::make_tuple(out[0][3], out[1][3], out[0][1]), std::make_tuple(1.0f, 1.0f, -1.0f));
  ConcatTransforms(shift, turn, out);
  EXPECT_EQ(std::make_tuple(out[0][3], out[1][3]), std::make_tuple(2.0f, 0.0f));
}

TEST(ModelMaths, SlerpBranches) {
  float a04[3] = {0, 0, 0.4f}, a10[3] = {0, 0, 1.0f}, a07[3] = {0, 0, 0.7f};
  float p[4], q[4], mid[4], out[4];
  AngleQuaternion(a04, p);
  AngleQuaternion(a10, q);
  AngleQuaternion(a07, mid);
  const float *want[3] = {p, q, mid}, at[3] = {0, 1, 0.5f};
  for (int k = 0; k < 3; k++) {
    QuaternionSlerp(p, q, at[k], out);
    ExpectQuat(out, want[k]);
  }

  // The longer way round is turned into the shorter one by negating q.
  float negq[4] = {-q[0], -q[1], -q[2], -q[3]};
  QuaternionSlerp(p, negq, 0.5f, out);
  ExpectQuat(out, mid);
  QuaternionSlerp(p, negq, 1.0f, out);
  ExpectQuat(out, q);
  // The flip is made in the caller's quaternion.
  EXPECT_EQ(std::vector<float>(negq, negq + 4), std::vector<float>(q, q + 4));

  // A quaternion and its own negative: q flips, and the almost-equal branch
  // gives p without dividing by zero. Identical ones do the same.
  float negp[4] = {-p[0], -p[1], -p[2], -p[3]};
  QuaternionSlerp(p, negp, 0.3f, out);
  ExpectQuat(out, p);
  float same[4] = {p[0], p[1], p[2], p[3]};
  QuaternionSlerp(p, same, 0.3f, out);
  ExpectQuat(out, p);

  // cosom exactly 1.0 fails the strict test: the linear blend is used (the
  // sine branch would divide by sin(0)).
  float unit[4] = {0, 0, 0, 1}, stretched[4] = {0, 0, 0.5f, 1};
  QuaternionSlerp(unit, stretched, 0.5f, out);
  EXPECT_EQ(std::vector<float>(out, out + 4), (std::vector<float>{0, 0, 0.25f, 1}));

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
  ExpectVec(t[0].TangentIn, 15, -30, 0);
  ExpectVec(t[0].TangentOut, -5, 10, 0);
  ExpectVec(t[1].TangentIn, 0, 20.0f / 3, 0);
  ExpectVec(t[1].TangentOut, 0, 40.0f / 3, 0);
  ExpectVec(t[2].TangentIn, 20, 0, 0);
  ExpectVec(t[2].TangentOut, -30, 0, 0);
  ASSERT_EQ(m.Joints[1].Tangents.size(), 2u);
  ExpectVec(m.Joints[1].Tangents[1].TangentIn, 0, 0, 0, 0);
  // Equal times on both sides of a key: no tangent rather than infinity.
  ExpectVec(m.Joints[2].Tangents[1].TangentIn, 0, 0, 0, 0);
  ExpectVec(m.Joints[2].Tangents[1].TangentOut, 0, 0, 0, 0);

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
  EXPECT_EQ(m.Joints[0].Local[1][3], 20.0f);
  EXPECT_EQ(m.CurrentTime, 50.0f);
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
  EXPECT_NEAR(m.Joints[0].Global[0][0], std::cos(0.75 * M_PI), 1e-6);
  EXPECT_NEAR(m.Joints[0].Global[1][0], std::sin(0.75 * M_PI), 1e-6);
  // A joint without keys keeps its bind pose.
  for (int r = 0; r < 3; r++)
    for (int c = 0; c < 4; c++) EXPECT_NEAR(m.Joints[2].Local[r][c], m.Joints[2].LocalSkeleton[r][c], 1e-7);
  // A single position key applies before its time too, and the child
  // follows its parent: (1, 0, 2) in the parent's frame, turned by 135 degrees.
  float c135 = static_cast<float>(std::cos(0.75 * M_PI)), s135 = static_cast<float>(std::sin(0.75 * M_PI));
  EXPECT_NEAR(m.Joints[1].Global[0][3], 1 + c135, 1e-5);
  EXPECT_NEAR(m.Joints[1].Global[1][3], s135, 1e-5);
  EXPECT_NEAR(m.Joints[1].Global[2][3], 2.0f, 1e-6);
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
    int Bones[4];
    int Percent[4];
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
    EXPECT_EQ(std::vector<int>(bones, bones + 4), std::vector<int>(c.Bones, c.Bones + 4)) << int(c.BoneId);
    EXPECT_EQ(std::vector<int>(weights, weights + 4), std::vector<int>(c.Percent, c.Percent + 4)) << int(c.BoneId);
    float out[3];
    m.TransformVertex(v, out);
    ExpectVec(out, c.Expect[0], c.Expect[1], c.Expect[2]);
  }
  // In the bind pose every vertex stays where it is stored.
  m.SetFrame(-1);
  float out[3];
  m.TransformVertex(Vertex(1, 1, 1, 0), out);
  ExpectVec(out, 1, 1, 1, 0);
}

TEST(ModelSkeleton, VerticesAndNormalsLeaveTheBindPoseThroughTheJoint) {
  msModel m;
  m.Joints.emplace_back(Joint("turned", "", 0, 0, 0)).Rotation[2] = kPi / 2;
  m.Joints.emplace_back(Joint("spin", "", 2, 0, 0)).RotationKeys = {{0, {0, 0, kPi / 2}}};
  m.SetupJoints();
  m.SetFrame(0);
  // A joint at rest gives back the vertex, whatever its bind rotation.
  float out[3];
  m.TransformVertex(Vertex(3, -1, 2, 0), out);
  ExpectVec(out, 3, -1, 2);
  const float n[3] = {0.6f, 0.8f, 0};
  m.TransformNormal(Vertex(3, -1, 2, 0), n, out);
  ExpectVec(out, 0.6f, 0.8f, 0);
  // A quarter turn about the joint at (2, 0, 0): (3, 0, 0) goes to (2, 1, 0),
  // and the normal turns without the joint's translation.
  m.TransformVertex(Vertex(3, 0, 0, 1), out);
  ExpectVec(out, 2, 1, 0);
  const float x[3] = {1, 0, 0};
  m.TransformNormal(Vertex(3, 0, 0, 1), x, out);
  ExpectVec(out, 0, 1, 0);
  // Unbound vertices keep the normal passed in.
  m.TransformNormal(Vertex(3, 0, 0, -1), x, out);
  ExpectVec(out, 1, 0, 0, 0);
}

TEST(ModelSkeleton, CentringMovesVerticesAndRootJointsOnly) {
  msModel m;
  m.Vertices = {Vertex(0, 0, 0, 1), Vertex(10, 4, 2, 1), Vertex(3, 3, 1, -1)};
  m.Joints.push_back(Joint("root", "", 1, 1, 1));
  m.Joints.push_back(Joint("child", "root", 1, 0, 0));
  m.Joints.push_back(Joint("orphan", "missing", 2, 2, 2));
  ModelBox box = CentreModel(m);
  ExpectVec(box.CentreOffset, -5, -2, -1, 0);
  ExpectVec(box.Size, 10, 4, 2, 0);
  ExpectVec(box.HalfSize, 5, 2, 1, 0);
  ExpectVec(box.BoundsMin, -5, -2, -1, 0);
  ExpectVec(box.BoundsMax, 5, 2, 1, 0);
  ExpectVec(m.Vertices[1].Position, 5, 2, 1, 0);
  ExpectVec(m.Joints[0].Position, -4, -1, 0, 0);
  ExpectVec(m.Joints[1].Position, 1, 0, 0, 0);
  ExpectVec(m.Joints[2].Position, -3, 0, 1, 0);
  // The skeleton moved with the mesh: at rest, bound vertices stay put.
  m.SetupJoints();
  m.SetFrame(0);
  float out[3];
  m.TransformVertex(m.Vertices[1], out);
  ExpectVec(out, 5, 2, 1);

  msModel empty;
  box = CentreModel(empty);
  ExpectVec(box.CentreOffset, 0, 0, 0, 0);
  ExpectVec(box.BoundsMax, 0, 0, 0, 0);
}
