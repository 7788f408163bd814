// Reading MilkShape 3D files: the mandatory part, the optional sections and
// their sub-versions, key-time scaling, texture paths and damaged files.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "model/msmodel.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

std::string TempPath(const char *name) {
  static std::string dir;
  if (dir.empty()) {
    char tmpl[] = "/tmp/model_loader_XXXXXX";
    dir = mkdtemp(tmpl);
  }
  return dir + "/" + name;
}

void SaveBytes(const std::string &path, const std::vector<uint8_t> &bytes) {
  FILE *f = std::fopen(path.c_str(), "wb");
  ASSERT_NE(f, nullptr);
  if (!bytes.empty()) {
    ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), f), bytes.size());
  }
  std::fclose(f);
}

void PutU16(std::vector<uint8_t> &b, size_t at, uint16_t v) {
  b[at] = v & 0xFF;
  b[at + 1] = v >> 8;
}

void PutI32(std::vector<uint8_t> &b, size_t at, int32_t v) {
  for (int i = 0; i < 4; i++) b[at + i] = (static_cast<uint32_t>(v) >> (8 * i)) & 0xFF;
}

msJoint Joint(const char *name, const char *parent) {
  msJoint j;
  std::strcpy(j.Name, name);
  std::strcpy(j.ParentName, parent);
  return j;
}

// A small model with every kind of record: 3 vertices, 1 triangle, 1 group,
// 1 material, 2 joints with keys, and all optional sections.
MS3DWriter FullModel() {
  MS3DWriter w;
  for (int i = 0; i < 3; i++) {
    msVertex v;
    v.Flags = 1;
    v.Position[0] = static_cast<float>(i);
    v.Position[1] = 2.0f * i;
    v.Position[2] = -1.0f;
    v.BoneId = static_cast<int8_t>(i % 2);
    v.RefCount = 3;
    v.BoneIds[0] = 1;
    v.BoneWeights[0] = 70;
    v.BoneWeights[1] = 30;
    v.Extra = 0xA0B0C0D0u + i;
    w.Vertices.push_back(v);
  }
  msTriangle t;
  t.Flags = 8;
  t.VertexIndices[0] = 0;
  t.VertexIndices[1] = 1;
  t.VertexIndices[2] = 2;
  t.VertexNormals[2][2] = 1.0f;
  t.S[1] = 0.25f;
  t.T[2] = 0.75f;
  t.SmoothingGroup = 4;
  t.GroupIndex = 0;
  w.Triangles.push_back(t);
  msGroup g;
  std::strcpy(g.Name, "body");
  g.TriangleIndices = {0};
  g.MaterialIndex = 0;
  w.Groups.push_back(g);
  msMaterial m;
  std::strcpy(m.Name, "skin");
  m.Ambient[0] = 0.1f;
  m.Diffuse[1] = 0.6f;
  m.Transparency = 0.5f;
  m.Shininess = 12.0f;
  m.Mode = 0x80;
  w.Materials.push_back(m);
  w.AnimationFps = 24.0f;
  w.CurrentTime = 3.0f;
  w.TotalFrames = 48;
  msJoint root = Joint("root", "");
  root.RotationKeys.push_back({0.5f, {0.1f, 0.2f, 0.3f}});
  root.PositionKeys.push_back({0.0f, {1, 2, 3}});
  root.PositionKeys.push_back({2.0f, {4, 5, 6}});
  root.Color[0] = 0.9f;
  w.Joints.push_back(root);
  msJoint arm = Joint("arm", "root");
  arm.Color[2] = 0.4f;
  w.Joints.push_back(arm);
  w.GroupComments.push_back({0, "group note"});
  w.MaterialComments.push_back({0, "mat"});
  w.JointComments.push_back({1, "j1"});
  w.HasModelComment = true;
  w.ModelComment = "model!";
  w.JointSize = 2.5f;
  w.TransparencyMode = 2;
  w.AlphaRef = 0.25f;
  return w;
}

bool LoadBytes(msModel &m, const std::vector<uint8_t> &bytes, const char *name = "m.ms3d") {
  std::string path = TempPath(name);
  SaveBytes(path, bytes);
  m.UploadTextures = false;
  return m.Load(path.c_str());
}

std::string Text(const std::vector<char> &v) { return std::string(v.begin(), v.end()); }

}  // namespace

TEST(ModelLoader, WriterLaysOutHeaderAndRecordsLittleEndian) {
  MS3DWriter w;
  msVertex v;
  v.Flags = 7;
  v.Position[0] = 1.0f;
  v.BoneId = -3;
  v.RefCount = 9;
  w.Vertices.push_back(v);
  w.CommentsSubVersion = 0;
  std::vector<uint8_t> b = w.Encode();
  // magic, version 4, one vertex (15 bytes), three empty counts, animation
  // (12 bytes), no joints, and nothing after: sub-version 0 ends the file.
  ASSERT_EQ(b.size(), 10u + 4 + 2 + 15 + 2 + 2 + 2 + 12 + 2);
  EXPECT_EQ(std::string(b.begin(), b.begin() + 10), "MS3D000000");
  EXPECT_EQ(std::vector<uint8_t>(b.begin() + 10, b.begin() + 16), (std::vector<uint8_t>{4, 0, 0, 0, 1, 0}));
  EXPECT_EQ(b[16], 7);
  EXPECT_EQ(std::vector<uint8_t>(b.begin() + 17, b.begin() + 21), (std::vector<uint8_t>{0, 0, 0x80, 0x3F}));
  EXPECT_EQ(b[29], 0xFD);
  EXPECT_EQ(b[30], 9);
  // 24.0f, 1.0f, 30
  EXPECT_EQ(std::vector<uint8_t>(b.begin() + 37, b.begin() + 49),
            (std::vector<uint8_t>{0, 0, 0xC0, 0x41, 0, 0, 0x80, 0x3F, 30, 0, 0, 0}));
}

TEST(ModelLoader, FullFileRoundTripsEveryField) {
  msModel m;
  ASSERT_TRUE(LoadBytes(m, FullModel().Encode()));
  ASSERT_EQ(m.Vertices.size(), 3u);
  EXPECT_EQ(m.Vertices[2].Flags, 1);
  EXPECT_EQ(m.Vertices[2].Position[1], 4.0f);
  EXPECT_EQ(m.Vertices[1].BoneId, 1);
  EXPECT_EQ(m.Vertices[2].RefCount, 3);
  EXPECT_EQ(m.Vertices[2].BoneIds[0], 1);
  EXPECT_EQ(m.Vertices[2].BoneWeights[1], 30);
  EXPECT_EQ(m.Vertices[2].Extra, 0xA0B0C0D2u);
  ASSERT_EQ(m.Triangles.size(), 1u);
  EXPECT_EQ(m.Triangles[0].Flags, 8);
  EXPECT_EQ(m.Triangles[0].VertexIndices[2], 2);
  EXPECT_EQ(m.Triangles[0].VertexNormals[2][2], 1.0f);
  EXPECT_EQ(m.Triangles[0].S[1], 0.25f);
  EXPECT_EQ(m.Triangles[0].T[2], 0.75f);
  EXPECT_EQ(m.Triangles[0].SmoothingGroup, 4);
  ASSERT_EQ(m.Groups.size(), 1u);
  EXPECT_STREQ(m.Groups[0].Name, "body");
  EXPECT_EQ(m.Groups[0].TriangleIndices, std::vector<uint16_t>{0});
  EXPECT_EQ(m.Groups[0].MaterialIndex, 0);
  EXPECT_EQ(Text(m.Groups[0].Comment), "group note");
  ASSERT_EQ(m.GetNumMaterials(), 1);
  const msMaterial &mat = m.Materials[0];
  EXPECT_STREQ(mat.Name, "skin");
  // The fourth element of every colour is the transparency.
  EXPECT_EQ(mat.Ambient[0], 0.1f);
  EXPECT_EQ(mat.Ambient[3], 0.5f);
  EXPECT_EQ(mat.Diffuse[3], 0.5f);
  EXPECT_EQ(mat.Specular[3], 0.5f);
  EXPECT_EQ(mat.Emissive[3], 0.5f);
  EXPECT_EQ(mat.Shininess, 12.0f);
  EXPECT_EQ(mat.Mode, 0x80);
  EXPECT_EQ(mat.TextureId, 0u);
  EXPECT_EQ(Text(mat.Comment), "mat");
  EXPECT_EQ(m.AnimationFps, 24.0f);
  EXPECT_EQ(m.CurrentTime, 3.0f);
  EXPECT_EQ(m.TotalFrames, 48);
  ASSERT_EQ(m.Joints.size(), 2u);
  // Key times are stored in seconds and held in frames.
  ASSERT_EQ(m.Joints[0].RotationKeys.size(), 1u);
  EXPECT_EQ(m.Joints[0].RotationKeys[0].Time, 12.0f);
  EXPECT_EQ(m.Joints[0].RotationKeys[0].Value[2], 0.3f);
  ASSERT_EQ(m.Joints[0].PositionKeys.size(), 2u);
  EXPECT_EQ(m.Joints[0].PositionKeys[1].Time, 48.0f);
  EXPECT_EQ(m.Joints[0].PositionKeys[1].Value[0], 4.0f);
  EXPECT_EQ(m.Joints[0].Color[0], 0.9f);
  EXPECT_EQ(m.Joints[1].Color[2], 0.4f);
  EXPECT_STREQ(m.Joints[1].ParentName, "root");
  EXPECT_EQ(Text(m.Joints[1].Comment), "j1");
  EXPECT_EQ(Text(m.Comment), "model!");
  EXPECT_EQ(m.JointSize, 2.5f);
  EXPECT_EQ(m.TransparencyMode, 2);
  EXPECT_EQ(m.AlphaRef, 0.25f);
  EXPECT_EQ(m.CommentsSubVersion, 1);
  EXPECT_EQ(m.VertexExtraSubVersion, 2);
  EXPECT_EQ(m.JointExtraSubVersion, 1);
  EXPECT_EQ(m.ModelExtraSubVersion, 1);

  // Loading again replaces everything; a failed load leaves the model cleared.
  MS3DWriter small;
  small.Vertices.resize(1);
  ASSERT_TRUE(LoadBytes(m, small.Encode()));
  EXPECT_EQ(m.Vertices.size(), 1u);
  EXPECT_TRUE(m.Joints.empty());
  EXPECT_TRUE(m.Comment.empty());
  std::vector<uint8_t> v3 = FullModel().Encode();
  PutI32(v3, 10, 3);
  EXPECT_FALSE(LoadBytes(m, v3));
  EXPECT_TRUE(m.Vertices.empty());
  EXPECT_EQ(m.AnimationFps, 24.0f);
  EXPECT_EQ(m.CommentsSubVersion, -1);
}

TEST(ModelLoader, RefusesOnlyUnopenableWrongMagicAndWrongVersion) {
  msModel m;
  ASSERT_TRUE(LoadBytes(m, FullModel().Encode()));
  // An unopenable file leaves the object as it was.
  EXPECT_FALSE(m.Load(TempPath("does-not-exist.ms3d").c_str()));
  EXPECT_EQ(m.Vertices.size(), 3u);
  std::vector<uint8_t> bad = FullModel().Encode();
  bad[9] = '1';
  EXPECT_FALSE(LoadBytes(m, bad));
  for (int32_t version : {3, 5, 0, -4}) {
    std::vector<uint8_t> b = FullModel().Encode();
    PutI32(b, 10, version);
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
  EXPECT_EQ(m.Vertices[2].BoneWeights[0], 0);
  EXPECT_EQ(m.Vertices[2].BoneIds[0], 0);
  EXPECT_EQ(m.JointSize, 1.0f);
  EXPECT_EQ(m.TransparencyMode, 0);
  EXPECT_EQ(m.AlphaRef, 0.5f);
  EXPECT_EQ(m.CommentsSubVersion, -1);
  EXPECT_EQ(m.VertexExtraSubVersion, -1);

  // Vertex section 1 has no Extra; joint section 2 isn't understood, so the
  // colours stay unread and the next four bytes are the model section's.
  w = FullModel();
  w.VertexExtraSubVersion = 1;
  w.JointExtraSubVersion = 2;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_EQ(m.Vertices[2].BoneWeights[0], 70);
  EXPECT_EQ(m.Vertices[2].Extra, 0u);
  EXPECT_EQ(m.Joints[0].Color[0], 0.0f);
  EXPECT_EQ(m.JointExtraSubVersion, 2);
  EXPECT_EQ(m.ModelExtraSubVersion, 1);
  EXPECT_EQ(m.JointSize, 2.5f);

  // A comment section of sub-version 2 isn't skipped: the vertex section's
  // sub-version is read from the four bytes right behind it.
  w = FullModel();
  w.CommentsSubVersion = 2;
  w.VertexExtraSubVersion = 1;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_EQ(m.CommentsSubVersion, 2);
  EXPECT_EQ(m.VertexExtraSubVersion, 1);
  EXPECT_TRUE(m.Groups[0].Comment.empty());
  EXPECT_TRUE(m.Comment.empty());
  EXPECT_EQ(m.Vertices[1].BoneWeights[1], 30);
}

TEST(ModelLoader, CommentsOutsideTheirListsAreReadAndDropped) {
  MS3DWriter w = FullModel();
  w.GroupComments = {{-1, "lost"}, {1, "also lost"}, {0, ""}, {0, "kept"}};
  w.MaterialComments = {{0, ""}};
  w.JointComments = {{2, "x"}, {0, "first"}};
  w.HasModelComment = false;
  msModel m;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_EQ(Text(m.Groups[0].Comment), "kept");
  EXPECT_TRUE(m.Materials[0].Comment.empty());
  EXPECT_EQ(Text(m.Joints[0].Comment), "first");
  EXPECT_TRUE(m.Joints[1].Comment.empty());
  EXPECT_TRUE(m.Comment.empty());
  // The reader stayed in step: the sections after the comments are intact.
  EXPECT_EQ(m.Vertices[0].Extra, 0xA0B0C0D0u);
  EXPECT_EQ(m.AlphaRef, 0.25f);
}

TEST(ModelLoader, KeyTimesScaleByTheClampedFps) {
  struct Case {
    float Stored, Fps;
  } cases[] = {{0.0f, 1.0f}, {0.5f, 1.0f}, {1.0f, 1.0f}, {-3.0f, 1.0f}, {1.5f, 1.5f}, {30.0f, 30.0f}};
  for (const Case &c : cases) {
    MS3DWriter w = FullModel();
    w.AnimationFps = c.Stored;
    msModel m;
    ASSERT_TRUE(LoadBytes(m, w.Encode()));
    EXPECT_EQ(m.AnimationFps, c.Fps) << c.Stored;
    EXPECT_EQ(m.Joints[0].RotationKeys[0].Time, 0.5f * c.Fps) << c.Stored;
    EXPECT_EQ(m.Joints[0].PositionKeys[1].Time, 2.0f * c.Fps) << c.Stored;
  }
}

TEST(ModelLoader, TexturePathIsModelDirectorySlashStoredName) {
  EXPECT_EQ(msTexturePath("data\\eyes\\a.ms3d", "b.tga"), "data\\eyes/b.tga");
  EXPECT_EQ(msTexturePath("data/eyes/a.ms3d", ".\\sub\\b.tga"), "data/eyes/.\\sub\\b.tga");
  EXPECT_EQ(msTexturePath("a.ms3d", "b.tga"), "a.ms3d/b.tga");
  EXPECT_EQ(msTexturePath("data\\\\/a.ms3d", "b.tga"), "data/b.tga");
  EXPECT_EQ(msTexturePath("/a.ms3d", "b.tga"), "/b.tga");
  // 259 characters fit the 260-byte buffer, 260 don't.
  std::string dir(250, 'd');
  EXPECT_EQ(msTexturePath((dir + "/m.ms3d").c_str(), "12345678").size(), 259u);
  EXPECT_EQ(msTexturePath((dir + "/m.ms3d").c_str(), "123456789"), "");
  EXPECT_EQ(msTexturePath(std::string(300, 'x').c_str(), "b"), "");

  // Without uploading, the stored name is kept as it is.
  MS3DWriter w = FullModel();
  std::strcpy(w.Materials[0].Texture, ".\\skin.tga");
  msModel m;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_STREQ(m.Materials[0].Texture, ".\\skin.tga");
}

TEST(ModelLoader, NamesThatFillTheirWidthStayTerminated) {
  MS3DWriter w = FullModel();
  std::memset(w.Joints[0].Name, 'R', sizeof w.Joints[0].Name);
  std::memset(w.Joints[1].ParentName, 'R', sizeof w.Joints[1].ParentName);
  std::memset(w.Materials[0].Texture, 't', sizeof w.Materials[0].Texture);
  std::memset(w.Groups[0].Name, 'g', sizeof w.Groups[0].Name);
  msModel m;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_EQ(std::string(m.Joints[0].Name), std::string(31, 'R'));
  EXPECT_EQ(std::string(m.Materials[0].Texture), std::string(127, 't'));
  EXPECT_EQ(std::string(m.Groups[0].Name), std::string(31, 'g'));
  EXPECT_EQ(m.Joints[1].Color[2], 0.4f);
  // The cut parent name still finds its parent, cut the same way.
  EXPECT_EQ(m.FindJointByName(m.Joints[1].ParentName), 0);
}

TEST(ModelLoader, FindJointByNameTakesTheFirstExactMatch) {
  MS3DWriter w = FullModel();
  w.Joints.push_back(Joint("arm", "root"));
  msModel m;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  EXPECT_EQ(m.FindJointByName("arm"), 1);
  EXPECT_EQ(m.FindJointByName("root"), 0);
  EXPECT_EQ(m.FindJointByName("Arm"), -1);
  EXPECT_EQ(m.FindJointByName("ar"), -1);
  EXPECT_EQ(m.FindJointByName(""), -1);
  EXPECT_EQ(m.FindJointByName(std::string(40, 'a').c_str()), -1);
}

TEST(ModelLoader, GroupWithNoTrianglesStillReadsItsMaterial) {
  MS3DWriter w = FullModel();
  msGroup empty;
  empty.MaterialIndex = 5;
  w.Groups.insert(w.Groups.begin(), empty);
  msModel m;
  ASSERT_TRUE(LoadBytes(m, w.Encode()));
  ASSERT_EQ(m.Groups.size(), 2u);
  EXPECT_TRUE(m.Groups[0].TriangleIndices.empty());
  EXPECT_EQ(m.Groups[0].MaterialIndex, 5);
  EXPECT_EQ(m.Groups[1].MaterialIndex, 0);
  // The group comment with index 0 now lands on the empty group.
  EXPECT_EQ(Text(m.Groups[0].Comment), "group note");
}

TEST(ModelLoader, EveryTruncationLoadsOrRefusesSafely) {
  MS3DWriter full = FullModel();
  std::vector<uint8_t> bytes = full.Encode();
  MS3DWriter mandatory = FullModel();
  mandatory.CommentsSubVersion = 0;
  size_t mandatorySize = mandatory.Encode().size();
  for (size_t len = 0; len <= bytes.size(); len++) {
    msModel m;
    bool loaded = LoadBytes(m, std::vector<uint8_t>(bytes.begin(), bytes.begin() + len));
    // Cut inside the mandatory part: refused and cleared. Cut later: loaded.
    EXPECT_EQ(loaded, len >= mandatorySize) << len;
    if (!loaded) {
      EXPECT_TRUE(m.Vertices.empty() && m.Joints.empty()) << len;
      continue;
    }
    EXPECT_EQ(m.Joints.size(), 2u);
    EXPECT_EQ(m.Joints[0].PositionKeys.size(), 2u);
    // A section cut short is dropped whole.
    bool all = len == bytes.size();
    EXPECT_EQ(m.ModelExtraSubVersion, all ? 1 : -1) << len;
    EXPECT_EQ(m.JointSize, all ? 2.5f : 1.0f) << len;
    if (m.CommentsSubVersion == -1) {
      EXPECT_TRUE(m.Comment.empty() && m.Groups[0].Comment.empty()) << len;
    }
    if (m.VertexExtraSubVersion == -1) {
      EXPECT_EQ(m.Vertices[2].Extra, 0u) << len;
    }
  }
}

TEST(ModelLoader, HugeCountsAndBadLengthsNeverReadPastTheEnd) {
  MS3DWriter w = FullModel();
  std::vector<uint8_t> b = w.Encode();
  msModel m;
  // Vertex count 65535 in a file of a few hundred bytes.
  std::vector<uint8_t> c = b;
  PutU16(c, 14, 0xFFFF);
  EXPECT_FALSE(LoadBytes(m, c));
  // Triangle count.
  c = b;
  PutU16(c, 16 + 3 * 15, 0xFFFF);
  EXPECT_FALSE(LoadBytes(m, c));
  // A group's triangle count.
  c = b;
  size_t groups = 16 + 3 * 15 + 2 + 70;
  PutU16(c, groups + 2 + 33, 0xFFFF);
  EXPECT_FALSE(LoadBytes(m, c));
  // A joint's key counts.
  size_t joints = groups + 2 + 38 + 2 + 361 + 12;
  c = b;
  PutU16(c, joints + 2 + 89, 0xFFFF);
  EXPECT_FALSE(LoadBytes(m, c));

  // Comment counts and lengths that overrun, or are negative, drop the
  // comment section (and all after it); the model still loads.
  MS3DWriter cut = FullModel();
  cut.CommentsSubVersion = 0;
  size_t comments = cut.Encode().size();
  for (int32_t bad : {0x7FFFFFFF, -1, -100}) {
    c = b;
    PutI32(c, comments + 4, bad);
    ASSERT_TRUE(LoadBytes(m, c)) << bad;
    EXPECT_EQ(m.CommentsSubVersion, -1);
    EXPECT_TRUE(m.Groups[0].Comment.empty());
    c = b;
    PutI32(c, comments + 4 + 4 + 4, bad);  // first group comment's length
    ASSERT_TRUE(LoadBytes(m, c)) << bad;
    EXPECT_EQ(m.CommentsSubVersion, -1);
    EXPECT_EQ(m.JointSize, 1.0f);
  }
}
