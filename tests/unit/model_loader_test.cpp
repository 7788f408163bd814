// Reading MilkShape 3D files: the mandatory part, the optional sections and
// their sub-versions, key-time scaling, texture paths and damaged files.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "model/msmodel.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Writes n little-endian bytes of v at b[at].
void Put(Bytes &b, size_t at, int32_t v, int n) {
  for (int i = 0; i < n; i++) b[at + i] = (static_cast<uint32_t>(v) >> (8 * i)) & 0xFF;
}

msJoint Joint(const char *name, const char *parent) {
  msJoint j;
  std::strcpy(j.Name, name);
  std::strcpy(j.ParentName, parent);
  return j;
}

// 3 vertices, 1 triangle, 1 group, 1 material, 2 joints with keys, and all
// optional sections.
MS3DWriter FullModel() {
  MS3DWriter w;
  for (int i = 0; i < 3; i++)
    w.Vertices.push_back({1, {float(i), 2.0f * i, -1}, int8_t(i % 2), 3, {1, 0, 0}, {70, 30, 0}, 0xA0B0C0D0u + i});
  w.Triangles.push_back({8, {0, 1, 2}, {{0, 0, 0}, {0, 0, 0}, {0, 0, 1}}, {0, 0.25f, 0}, {0, 0, 0.75f}, 4});
  msGroup &g = w.Groups.emplace_back();
  std::strcpy(g.Name, "body");
  g.TriangleIndices = {0};
  g.MaterialIndex = 0;
  msMaterial &m = w.Materials.emplace_back();
  std::strcpy(m.Name, "skin");
  m.Ambient[0] = 0.1f;
  m.Transparency = 0.5f;
  m.Shininess = 12.0f;
  m.Mode = 0x80;
  w.CurrentTime = 3.0f;
  w.TotalFrames = 48;
  w.Joints = {Joint("root", ""), Joint("arm", "root")};
  w.Joints[0].RotationKeys = {{0.5f, {0.1f, 0.2f, 0.3f}}};
  w.Joints[0].PositionKeys = {{0.0f, {1, 2, 3}}, {2.0f, {4, 5, 6}}};
  w.Joints[0].Color[0] = 0.9f;
  w.Joints[1].Color[2] = 0.4f;
  w.GroupComments = {{0, "group note"}};
  w.MaterialComments = {{0, "mat"}};
  w.JointComments = {{1, "j1"}};
  w.HasModelComment = true;
  w.ModelComment = "model!";
  w.JointSize = 2.5f;
  w.TransparencyMode = 2;
  w.AlphaRef = 0.25f;
  return w;
}

bool LoadBytes(msModel &m, const Bytes &bytes) {
  static std::string path;
  if (path.empty()) {
    char tmpl[] = "/tmp/model_loader_XXXXXX";
    path = std::string(mkdtemp(tmpl)) + "/m.ms3d";
  }
  FILE *f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  std::fwrite(bytes.data(), 1, bytes.size(), f);
  std::fclose(f);
  m.UploadTextures = false;
  return m.Load(path.c_str());
}

std::string Text(const std::vector<char> &v) { return std::string(v.begin(), v.end()); }

// The optional sections' sub-versions and the model section's values.
std::tuple<int, int, int, int, float, int, float> Sections(const msModel &m) {
  return {m.CommentsSubVersion, m.VertexExtraSubVersion, m.JointExtraSubVersion, m.ModelExtraSubVersion,
          m.JointSize,          m.TransparencyMode,      m.AlphaRef};
}
const std::tuple<int, int, int, int, float, int, float> kNoSections{-1, -1, -1, -1, 1.0f, 0, 0.5f};

}  // namespace

TEST(ModelLoader, FullFileRoundTripsEveryFieldAndReloadsCleanly) {
  msModel m;
  ASSERT_TRUE(LoadBytes(m, FullModel().Encode()));
  ASSERT_EQ(std::make_tuple(m.Vertices.size(), m.Triangles.size(), m.Groups.size(), m.Materials.size(),
                            m.Joints.size()),
            std::make_tuple(3u, 1u, 1u, 1u, 2u));
  const msVertex &v = m.Vertices[2];
  EXPECT_EQ(std::make_tuple(v.Flags, v.Position[1], m.Vertices[1].BoneId, v.RefCount, v.BoneIds[0], v.BoneWeights[1],
                            v.Extra),
            std::make_tuple(1, 4.0f, 1, 3, 1, 30, 0xA0B0C0D2u));
  const msTriangle &t = m.Triangles[0];
  EXPECT_EQ(std::make_tuple(t.Flags, t.VertexIndices[2], t.VertexNormals[2][2], t.S[1], t.T[2], t.SmoothingGroup),
            std::make_tuple(8, 2, 1.0f, 0.25f, 0.75f, 4));
  EXPECT_STREQ(m.Groups[0].Name, "body");
  EXPECT_EQ(m.Groups[0].TriangleIndices, std::vector<uint16_t>{0});
  const msMaterial &mat = m.Materials[0];
  EXPECT_STREQ(mat.Name, "skin");
  // The fourth element of every colour is the transparency.
  EXPECT_EQ(std::make_tuple(mat.Ambient[0], mat.Ambient[3], mat.Diffuse[3], mat.Specular[3], mat.Emissive[3],
                            mat.Shininess, mat.Mode, mat.TextureId),
            std::make_tuple(0.1f, 0.5f, 0.5f, 0.5f, 0.5f, 12.0f, 0x80, 0u));
  EXPECT_EQ(std::make_tuple(m.AnimationFps, m.CurrentTime, m.TotalFrames), std::make_tuple(24.0f, 3.0f, 48));
  // Key times are stored in seconds and held in frames.
  const msJoint &root = m.Joints[0];
  ASSERT_EQ(std::make_tuple(root.RotationKeys.size(), root.PositionKeys.size()), std::make_tuple(1u, 2u));
  EXPECT_EQ(std::make_tuple(root.RotationKeys[0].Time, root.RotationKeys[0].Value[2], root.PositionKeys[1].Time,
                            root.PositionKeys[1].Value[0], root.Color[0], m.Joints[1].Color[2]),
            std::make_tuple(12.0f, 0.3f, 48.0f, 4.0f, 0.9f, 0.4f));
  EXPECT_STREQ(m.Joints[1].ParentName, "root");
  EXPECT_EQ(std::make_tuple(Text(m.Groups[0].Comment), Text(mat.Comment), Text(m.Joints[1].Comment), Text(m.Comment)),
            std::make_tuple("group note", "mat", "j1", "model!"));
  EXPECT_EQ(Sections(m), std::make_tuple(1, 2, 1, 1, 2.5f, 2, 0.25f));

  // An unopenable file leaves the object as it was.
  EXPECT_FALSE(m.Load("/nonexistent/m.ms3d"));
  EXPECT_EQ(m.Vertices.size(), 3u);
  // Loading again replaces everything; a refused file leaves the model cleared.
  MS3DWriter small;
  small.Vertices.resize(1);
  ASSERT_TRUE(LoadBytes(m, small.Encode()));
  EXPECT_EQ(m.Vertices.size(), 1u);
  EXPECT_TRUE(m.Joints.empty() && m.Comment.empty());
  ASSERT_TRUE(LoadBytes(m, FullModel().Encode()));
  Bytes bad = FullModel().Encode();
  bad[9] = '1';
  EXPECT_FALSE(LoadBytes(m, bad));
  EXPECT_TRUE(m.Vertices.empty());
  EXPECT_EQ(m.CommentsSubVersion, -1);
  for (int32_t version : {3, 5, 0, -4}) {
    Bytes b = FullModel().Encode();
    Put(b, 10, version, 4);
    EXPECT_FALSE(LoadBytes(m, b)) << version;
  }
}

TEST(ModelLoader, OptionalSectionsFollowTheirSubVersions) {
  msModel m;
  // A file that ends right after the joints keeps the defaults.
  MS3DWriter w = FullModel();
  w.CommentsSubVersion = 0;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_TRUE(m.Groups[0].Comment.empty());
  EXPECT_EQ(std::make_tuple(m.Vertices[2].BoneWeights[0], m.Vertices[2].BoneIds[0]), std::make_tuple(0, 0));
  EXPECT_EQ(Sections(m), kNoSections);

  // Vertex section 1 has no Extra; joint section 2 isn't understood, so the
  // colours stay unread and the next four bytes are the model section's.
  w = FullModel();
  w.VertexExtraSubVersion = 1;
  w.JointExtraSubVersion = 2;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_EQ(std::make_tuple(m.Vertices[2].BoneWeights[0], m.Vertices[2].Extra, m.Joints[0].Color[0]),
            std::make_tuple(70, 0u, 0.0f));
  EXPECT_EQ(Sections(m), std::make_tuple(1, 1, 2, 1, 2.5f, 2, 0.25f));

  // A comment section of sub-version 2 isn't skipped: the vertex section's
  // sub-version is read from the four bytes right behind it.
  w = FullModel();
  w.CommentsSubVersion = 2;
  w.VertexExtraSubVersion = 1;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_EQ(std::make_tuple(m.CommentsSubVersion, m.VertexExtraSubVersion), std::make_tuple(2, 1));
  EXPECT_TRUE(m.Groups[0].Comment.empty() && m.Comment.empty());
  EXPECT_EQ(m.Vertices[1].BoneWeights[1], 30);

  // Comments whose index is outside their list are read and dropped.
  w = FullModel();
  w.GroupComments = {{-1, "lost"}, {1, "also lost"}, {0, ""}, {0, "kept"}};
  w.MaterialComments = {{0, ""}};
  w.JointComments = {{2, "x"}, {0, "first"}};
  w.HasModelComment = false;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_EQ(std::make_tuple(Text(m.Groups[0].Comment), Text(m.Materials[0].Comment), Text(m.Joints[0].Comment),
                            Text(m.Joints[1].Comment), Text(m.Comment)),
            std::make_tuple("kept", "", "first", "", ""));
  // The reader stayed in step: the sections after the comments are intact.
  EXPECT_EQ(std::make_tuple(m.Vertices[0].Extra, m.AlphaRef), std::make_tuple(0xA0B0C0D0u, 0.25f));
}

TEST(ModelLoader, KeyTimesScaleByTheClampedFps) {
  // 24 frames a second is the full model's own, checked with its fields.
  const std::pair<float, float> cases[] = {{0.0f, 1.0f}, {0.5f, 1.0f}, {1.0f, 1.0f}, {-3.0f, 1.0f}, {1.5f, 1.5f}};
  for (auto [stored, used] : cases) {
    MS3DWriter w = FullModel();
    w.AnimationFps = stored;
    msModel m;
    ASSERT_TRUE(LoadBytes(m, w.Encode()));
    EXPECT_EQ(std::make_tuple(m.AnimationFps, m.Joints[0].RotationKeys[0].Time, m.Joints[0].PositionKeys[1].Time),
              std::make_tuple(used, 0.5f * used, 2.0f * used))
        << stored;
  }
}

TEST(ModelLoader, TexturePathIsModelDirectorySlashStoredName) {
  const std::string dir(250, 'd'), tooLong(300, 'x');
  const std::tuple<std::string, const char *, std::string> cases[] = {
      {"data\\eyes\\a.ms3d", "b.tga", "data\\eyes/b.tga"},
      {"data/eyes/a.ms3d", ".\\sub\\b.tga", "data/eyes/.\\sub\\b.tga"},
      {"a.ms3d", "b.tga", "a.ms3d/b.tga"},  // no separator: the whole path is the directory
      {"data\\\\/a.ms3d", "b.tga", "data/b.tga"},
      {"/a.ms3d", "b.tga", "/b.tga"},
      // 259 characters fit the 260-byte buffer, 260 don't.
      {dir + "/m.ms3d", "12345678", dir + "/12345678"},
      {dir + "/m.ms3d", "123456789", ""},
      {tooLong, "b", ""},
  };
  for (const auto &c : cases)
    EXPECT_EQ(msTexturePath(std::get<0>(c).c_str(), std::get<1>(c)), std::get<2>(c)) << std::get<1>(c);
}

TEST(ModelLoader, NamesJointLookupAndEmptyGroups) {
  MS3DWriter w = FullModel();
  std::memset(w.Joints[0].Name, 'R', sizeof w.Joints[0].Name);
  std::memset(w.Joints[1].ParentName, 'R', sizeof w.Joints[1].ParentName);
  std::memset(w.Materials[0].Texture, 't', sizeof w.Materials[0].Texture);
  std::memset(w.Groups[0].Name, 'g', sizeof w.Groups[0].Name);
  w.Joints.push_back(Joint("arm", "x"));
  w.Joints.push_back(Joint("arm", "y"));
  w.Groups.insert(w.Groups.begin(), msGroup());
  w.Groups[0].MaterialIndex = 5;
  msModel m;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  // Names that fill their width stay terminated, and the reader stays in step.
  EXPECT_EQ(std::make_tuple(std::string(m.Joints[0].Name), std::string(m.Materials[0].Texture),
                            std::string(m.Groups[1].Name), m.Joints[1].Color[2]),
            std::make_tuple(std::string(31, 'R'), std::string(127, 't'), std::string(31, 'g'), 0.4f));
  // The cut parent name still finds its parent, cut the same way; the first
  // exact match wins.
  EXPECT_EQ(m.FindJointByName(m.Joints[1].ParentName), 0);
  const std::string longName(40, 'a');
  const std::pair<const char *, int> names[] = {{"arm", 1}, {"Arm", -1}, {"ar", -1}, {"", -1}, {longName.c_str(), -1}};
  for (const auto &c : names) EXPECT_EQ(m.FindJointByName(c.first), c.second) << c.first;
  // A group without triangles still reads its material; comment 0 lands on it.
  ASSERT_EQ(m.Groups.size(), 2u);
  EXPECT_TRUE(m.Groups[0].TriangleIndices.empty());
  EXPECT_EQ(std::make_tuple(m.Groups[0].MaterialIndex, m.Groups[1].MaterialIndex, Text(m.Groups[0].Comment)),
            std::make_tuple(5, 0, "group note"));
}

TEST(ModelLoader, EveryTruncationLoadsOrRefusesSafely) {
  Bytes bytes = FullModel().Encode();
  MS3DWriter mandatory = FullModel();
  mandatory.CommentsSubVersion = 0;
  size_t mandatorySize = mandatory.Encode().size();
  for (size_t len = 0; len <= bytes.size(); len++) {
    msModel m;
    bool loaded = LoadBytes(m, Bytes(bytes.begin(), bytes.begin() + len));
    // Cut inside the mandatory part: refused and cleared. Cut later: loaded.
    ASSERT_EQ(loaded, len >= mandatorySize) << len;
    if (!loaded) {
      EXPECT_TRUE(m.Vertices.empty() && m.Joints.empty()) << len;
      continue;
    }
    EXPECT_EQ(std::make_tuple(m.Joints.size(), m.Joints[0].PositionKeys.size()), std::make_tuple(2u, 2u)) << len;
    // A section cut short is dropped whole.
    bool all = len == bytes.size();
    EXPECT_EQ(std::make_tuple(m.ModelExtraSubVersion, m.JointSize), std::make_tuple(all ? 1 : -1, all ? 2.5f : 1.0f))
        << len;
    EXPECT_TRUE(m.CommentsSubVersion != -1 || (m.Comment.empty() && m.Groups[0].Comment.empty())) << len;
    EXPECT_TRUE(m.VertexExtraSubVersion != -1 || m.Vertices[2].Extra == 0u) << len;
  }
}

TEST(ModelLoader, HugeCountsAndBadLengthsNeverReadPastTheEnd) {
  const Bytes b = FullModel().Encode();
  msModel m;
  // 65535 vertices, triangles, triangles of a group, keys of a joint.
  size_t groups = 16 + 3 * 15 + 2 + 70, joints = groups + 2 + 38 + 2 + 361 + 12;
  for (size_t at : {size_t{14}, size_t{16 + 3 * 15}, groups + 2 + 33, joints + 2 + 89}) {
    Bytes c = b;
    Put(c, at, 0xFFFF, 2);
    EXPECT_FALSE(LoadBytes(m, c)) << at;
  }
  // Comment counts and lengths that overrun, or are negative, drop the
  // comment section (and all after it); the model still loads.
  MS3DWriter cut = FullModel();
  cut.CommentsSubVersion = 0;
  size_t comments = cut.Encode().size();
  for (int32_t bad : {0x7FFFFFFF, -1, -100}) {
    for (size_t at : {comments + 4, comments + 12}) {  // group comment count, first length
      Bytes c = b;
      Put(c, at, bad, 4);
      ASSERT_TRUE(LoadBytes(m, c)) << bad;
      EXPECT_EQ(Sections(m), kNoSections) << bad << " " << at;
      EXPECT_TRUE(m.Groups[0].Comment.empty());
    }
  }
}
