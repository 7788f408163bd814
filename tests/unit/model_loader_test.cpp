// Reading MilkShape 3D files: every field and section read back as written,
// files cut anywhere, damaged headers, texture paths, third-party files and
// the ms3dinfo tool.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>

#include "model/modelclass.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

using Bytes = std::vector<uint8_t>;

void Put(Bytes &b, size_t at, int32_t v, int n) {
  for (int i = 0; i < n; i++) b[at + i] = uint8_t(uint32_t(v) >> (8 * i));
}

bool LoadBytes(msModel &m, const Bytes &bytes) {
  const std::string path = "/tmp/model_loader_" + std::to_string(getpid()) + ".ms3d";
  FILE *f = std::fopen(path.c_str(), "wb");
  std::fwrite(bytes.data(), 1, bytes.size(), f);
  std::fclose(f);
  m.UploadTextures = false;
  bool loaded = m.Load(path.c_str());
  std::remove(path.c_str());
  return loaded;
}

std::string Text(const std::vector<char> &v) { return std::string(v.begin(), v.end()); }

template <class R> std::vector<MS3DCommentRecord> Comments(const std::vector<R> &records) {
  std::vector<MS3DCommentRecord> out;
  for (size_t i = 0; i < records.size(); i++)
    if (!records[i].Comment.empty()) out.push_back({int32_t(i), Text(records[i].Comment)});
  return out;
}

// The bytes of the file that holds what m holds: key times back in seconds,
// an absent section ending the file.
Bytes Written(const msModel &m) {
  MS3DWriter w;
  w.Vertices = m.Vertices, w.Triangles = m.Triangles, w.Groups = m.Groups, w.Materials = m.Materials;
  w.Joints = m.Joints;
  for (msJoint &j : w.Joints)
    for (auto *keys : {&j.RotationKeys, &j.PositionKeys})
      for (msKeyframe &k : *keys) k.Time /= m.AnimationFps;
  w.AnimationFps = m.AnimationFps, w.CurrentTime = m.CurrentTime, w.TotalFrames = m.TotalFrames;
  w.GroupComments = Comments(m.Groups), w.MaterialComments = Comments(m.Materials);
  w.JointComments = Comments(m.Joints);
  w.HasModelComment = !m.Comment.empty(), w.ModelComment = Text(m.Comment);
  w.CommentsSubVersion = std::max(m.CommentsSubVersion, 0);
  w.VertexExtraSubVersion = std::max(m.VertexExtraSubVersion, 0);
  w.JointExtraSubVersion = std::max(m.JointExtraSubVersion, 0);
  w.ModelExtraSubVersion = std::max(m.ModelExtraSubVersion, 0);
  w.JointSize = m.JointSize, w.TransparencyMode = m.TransparencyMode, w.AlphaRef = m.AlphaRef;
  return w.Encode();
}

std::tuple<int, int, int, int, float, int, float> Sections(const msModel &m) {
  return {m.CommentsSubVersion, m.VertexExtraSubVersion, m.JointExtraSubVersion, m.ModelExtraSubVersion,
          m.JointSize,          m.TransparencyMode,      m.AlphaRef};
}

// Every field set to something of its own, names filling their fields, two
// joints of one name, a group without triangles, all sections.
MS3DWriter Full() {
  MS3DWriter w;
  for (int i = 0; i < 3; i++)
    w.Vertices.push_back({uint8_t(i + 1), {0.5f * i, 2, -1}, int8_t(i - 1), 3, {1, -2, 4}, {70, 20, 5}, 0xA0B0C0D0u + i});
  w.Triangles.push_back({0x1234, {2, 300, 1}, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {0.5f, 0.25f, 1}, {2, 3, 0.75f}, 4, 5});
  w.Groups.resize(2);
  w.Groups[0].Flags = 6, w.Groups[0].TriangleIndices = {0, 513}, w.Groups[0].MaterialIndex = -3;
  w.Groups[1].MaterialIndex = 7;
  std::memset(w.Groups[0].Name, 'g', MS_NAME_WIDTH);
  msMaterial &m = w.Materials.emplace_back();
  for (float *colour : {m.Ambient, m.Diffuse, m.Specular, m.Emissive}) colour[0] = 0.1f, colour[2] = 0.3f, colour[3] = 0.5f;
  m.Shininess = 12, m.Transparency = 0.5f, m.Mode = 0x81;
  std::memset(m.Name, 'n', MS_NAME_WIDTH);
  std::memset(m.Texture, 't', MS_PATH_WIDTH);
  std::memset(m.AlphaMap, 'a', MS_PATH_WIDTH);
  w.CurrentTime = 3, w.TotalFrames = 48;
  w.Joints.resize(3);
  msJoint &root = w.Joints[0];
  std::memset(root.Name, 'R', MS_NAME_WIDTH);
  root.Flags = 9, root.Rotation[1] = 0.2f, root.Position[2] = 3, root.Color[0] = 0.9f;
  root.RotationKeys = {{0.5f, {0.1f, 0.2f, 0.3f}}};
  root.PositionKeys = {{0.25f, {1, 2, 3}}, {2, {4, 5, 6}}};
  std::strcpy(w.Joints[1].Name, "arm");
  std::memcpy(w.Joints[1].ParentName, root.Name, MS_NAME_WIDTH);
  w.Joints[1].Color[2] = 0.4f;
  std::strcpy(w.Joints[2].Name, "arm");
  w.GroupComments = {{1, "g1"}}, w.MaterialComments = {{0, "mat"}}, w.JointComments = {{2, "j2"}};
  w.HasModelComment = true, w.ModelComment = "model!";
  w.JointSize = 2.5f, w.TransparencyMode = 2, w.AlphaRef = 0.25f;
  return w;
}

using Edit = void (*)(MS3DWriter &);

}  // namespace

TEST(ModelLoader, FieldsAndSectionsReadBackAsWritten) {
  const struct {
    const char *What;
    Edit In, Want;
  } cases[] = {
      {"whole", [](MS3DWriter &) {}, [](MS3DWriter &) {}},
      {"alpha of every colour from the transparency",
       [](MS3DWriter &w) { w.Materials[0].Ambient[3] = w.Materials[0].Diffuse[3] = w.Materials[0].Specular[3] =
                               w.Materials[0].Emissive[3] = 0.9f; },
       [](MS3DWriter &) {}},
      {"key times in frames by the clamped fps", [](MS3DWriter &w) { w.AnimationFps = 0.5f; },
       [](MS3DWriter &w) { w.AnimationFps = 1; }},
      {"fps 0", [](MS3DWriter &w) { w.AnimationFps = 0; }, [](MS3DWriter &w) { w.AnimationFps = 1; }},
      {"vertex extras 1 without Extra, joint extras 2 unknown",
       [](MS3DWriter &w) { w.VertexExtraSubVersion = 1, w.JointExtraSubVersion = 2; },
       [](MS3DWriter &w) { w.VertexExtraSubVersion = 1, w.JointExtraSubVersion = 2; }},
      {"comments 2 unknown: nothing skipped", [](MS3DWriter &w) { w.CommentsSubVersion = 2; },
       [](MS3DWriter &w) {
         w.CommentsSubVersion = 2, w.HasModelComment = false;
         w.GroupComments = w.MaterialComments = w.JointComments = {};
       }},
      {"comments outside their lists dropped, the last one kept",
       [](MS3DWriter &w) {
         w.GroupComments = {{-1, "lost"}, {2, "lost"}, {1, ""}, {0, "first"}, {0, "kept"}};
         w.HasModelComment = false;
       },
       [](MS3DWriter &w) { w.GroupComments = {{0, "kept"}}, w.HasModelComment = false; }},
  };
  for (const auto &c : cases) {
    MS3DWriter in = Full(), want = Full();
    c.In(in);
    c.Want(want);
    msModel m;
    ASSERT_TRUE(LoadBytes(m, in.Encode())) << c.What;
    EXPECT_EQ(Written(m), want.Encode()) << c.What;
  }
}

TEST(ModelLoader, NamesFillingTheirFieldsAreReadWhole) {
  msModel m;
  ASSERT_TRUE(LoadBytes(m, Full().Encode()));
  EXPECT_EQ(std::make_tuple(strlen(m.Joints[0].Name), strlen(m.Materials[0].Texture)), std::make_tuple(32u, 128u));
  m.SetupJoints();
  EXPECT_EQ(m.Joints[1].ParentIndex, 0);
  const std::pair<std::string, int> names[] = {
      {"arm", 1}, {"Arm", -1}, {"ar", -1}, {"", -1}, {std::string(32, 'R'), 0}, {std::string(33, 'R'), -1}};
  for (const auto &n : names) EXPECT_EQ(m.FindJointByName(n.first.c_str()), n.second) << n.first;
}

TEST(ModelLoader, AFileCutAnywhereLoadsItsWholeSectionsOrIsRefused) {
  int32_t MS3DWriter::*subs[] = {&MS3DWriter::CommentsSubVersion, &MS3DWriter::VertexExtraSubVersion,
                                 &MS3DWriter::JointExtraSubVersion, &MS3DWriter::ModelExtraSubVersion};
  // cut[k] ends after k optional sections.
  Bytes cut[5];
  for (int k = 0; k < 5; k++) {
    MS3DWriter w = Full();
    if (k < 4) w.*subs[k] = 0;
    cut[k] = w.Encode();
  }
  const msModel fresh;
  for (size_t len = 0; len <= cut[4].size(); len++) {
    msModel m;
    bool loaded = LoadBytes(m, Bytes(cut[4].begin(), cut[4].begin() + len));
    ASSERT_EQ(loaded, len >= cut[0].size()) << len;
    int k = 0;
    while (k < 4 && cut[k + 1].size() <= len) k++;
    EXPECT_EQ(Written(m), loaded ? cut[k] : Written(fresh)) << len;
    if (k < 4) {
      EXPECT_EQ(Sections(m), std::make_tuple(k ? 1 : -1, k > 1 ? 2 : -1, k > 2 ? 1 : -1, -1, 1.0f, 0, 0.5f)) << len;
    }
  }
  // Many records of one kind and nothing after them fit their counts exactly.
  for (int kind = 0; kind < 5; kind++) {
    MS3DWriter w;
    w.CommentsSubVersion = 0;
    const size_t n = 40;
    if (kind == 0) w.Vertices.resize(n);
    if (kind == 1) w.Triangles.resize(n);
    if (kind == 2) w.Groups.resize(n);
    if (kind == 3) w.Groups.resize(1), w.Groups[0].TriangleIndices.resize(n);
    if (kind == 4) w.Materials.resize(n);
    msModel m;
    EXPECT_TRUE(LoadBytes(m, w.Encode())) << kind;
  }
}

TEST(ModelLoader, DamagedHeadersAreRefusedAndNegativeCommentCountsMeanNone) {
  MS3DWriter none = Full();
  none.GroupComments = none.MaterialComments = none.JointComments = {};
  MS3DWriter mandatory = none;
  mandatory.CommentsSubVersion = 0;
  const size_t counts = mandatory.Encode().size() + 4;
  const struct {
    size_t At;
    int32_t Value;
    int Width;
    bool Loads;
  } cases[] = {
      {9, 'X', 1, false}, {10, 3, 4, false}, {10, 5, 4, false},
      {counts, -1, 4, true}, {counts + 4, INT_MIN, 4, true}, {counts + 8, -100, 4, true},
  };
  for (const auto &c : cases) {
    Bytes b = none.Encode();
    Put(b, c.At, c.Value, c.Width);
    msModel m;
    EXPECT_EQ(LoadBytes(m, b), c.Loads) << c.At;
    EXPECT_EQ(Written(m), c.Loads ? none.Encode() : Written(msModel())) << c.At;
  }
  // A directory opens like a file but is none; a missing file leaves the
  // model as it was.
  msModel m;
  EXPECT_FALSE(m.Load(TK_MS3D_DIR));
  ASSERT_TRUE(LoadBytes(m, none.Encode()));
  EXPECT_FALSE(m.Load("/nonexistent/m.ms3d"));
  EXPECT_EQ(m.Vertices.size(), 3u);
}

TEST(ModelLoader, TexturePathIsModelDirectorySlashStoredName) {
  const std::string dir(250, 'd');
  const std::tuple<std::string, const char *, std::string> cases[] = {
      {"data\\eyes\\a.ms3d", "b.tga", "data\\eyes/b.tga"},
      {"data/eyes/a.ms3d", ".\\sub\\b.tga", "data/eyes/.\\sub\\b.tga"},
      {"a.ms3d", "b.tga", "a.ms3d/b.tga"},
      {"data\\\\/a.ms3d", "b.tga", "data/b.tga"},
      {"/a.ms3d", "b.tga", "/b.tga"},
      // The work buffer holds 259 characters and the terminator.
      {dir + "/m.ms3d", "12345678", dir + "/12345678"},
      {dir + "/m.ms3d", "123456789", ""},
      {dir + "/abcdefgh", "b", dir + "/b"},
      {dir + "/abcdefghi", "b", ""},
  };
  for (const auto &c : cases)
    EXPECT_EQ(msTexturePath(std::get<0>(c).c_str(), std::get<1>(c)), std::get<2>(c)) << std::get<1>(c);
}

TEST(ModelLoader, ThirdPartyModels) {
  const struct {
    const char *File;
    std::vector<size_t> Counts;
    std::vector<int> Sections;
    std::vector<float> Size, Offset;
  } cases[] = {
      {"twospheres.ms3d", {124, 240, 2, 0}, {1, 3, 16777215, 0}, {230, 194.5f, 188}, {-52, -83.75f, 0}},
      {"twospheres_withmats.ms3d", {124, 240, 2, 2}, {1, 3, 16777215, 0}, {230, 194.5f, 188}, {-52, -83.75f, 0}},
      {"jeep1.ms3d", {1190, 2032, 7, 1}, {-1, -1, -1, -1}, {11.0584736f, 7.6395893f, 16.6458778f},
       {0, -3.809289f, 0.2138748f}},
  };
  for (const auto &c : cases) {
    msModel m;
    m.UploadTextures = false;
    ASSERT_TRUE(m.Load((std::string(TK_MS3D_DIR) + "/" + c.File).c_str())) << c.File;
    EXPECT_EQ(std::vector<size_t>({m.Vertices.size(), m.Triangles.size(), m.Groups.size(), m.Materials.size()}),
              c.Counts);
    EXPECT_EQ(std::vector<int>({m.CommentsSubVersion, m.VertexExtraSubVersion, m.JointExtraSubVersion,
                                m.ModelExtraSubVersion}),
              c.Sections);
    ModelBox box = CentreModel(m);
    for (int i = 0; i < 3; i++) {
      EXPECT_NEAR(box.Size[i], c.Size[i], 1e-4) << c.File;
      EXPECT_NEAR(box.CentreOffset[i], c.Offset[i], 1e-5) << c.File;
    }
  }
}

TEST(ModelLoader, Ms3dInfoPrintsAModelAndRefusesWhatIsNone) {
  const std::string tool = std::string(TK_BUILD_DIR) + "/tools/ms3dinfo/ms3dinfo ";
  const std::string jeep = std::string(TK_MS3D_DIR) + "/jeep1.ms3d";
  const std::tuple<std::string, int, std::string> cases[] = {
      {jeep, 0, "\"triangles\": 2032,\n  \"groups\": 7,\n"},
      {TK_MS3D_DIR, 1, "ms3dinfo: unable to load model from " TK_MS3D_DIR "\n"},
      {"", 2, "usage: ms3dinfo FILE [--frame K]\n"},
  };
  for (const auto &c : cases) {
    FILE *p = popen((tool + std::get<0>(c) + " 2>&1").c_str(), "r");
    std::string out;
    char buf[4096];
    for (size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
    EXPECT_EQ(WEXITSTATUS(pclose(p)), std::get<1>(c)) << std::get<0>(c);
    EXPECT_NE(out.find(std::get<2>(c)), std::string::npos) << out;
  }
}
