// Reading MilkShape 3D files.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <fstream>
#include <tuple>

#include "model/modelclass.h"
#include "tools/ms3dwriter/ms3dwriter.h"

using namespace std;

namespace {

using Bytes = vector<uint8_t>;

bool LoadBytes(msModel &m, const Bytes &bytes) {
  const string path = "/tmp/model_loader_" + to_string(getpid());
  ofstream(path, ios::binary).write(reinterpret_cast<const char *>(bytes.data()), bytes.size());
  m.UploadTextures = false;
  bool loaded = m.Load(path.c_str());
  remove(path.c_str());
  return loaded;
}

string Text(const vector<char> &v) { return string(v.begin(), v.end()); }

template <class R> vector<MS3DCommentRecord> Comments(const vector<R> &records) {
  vector<MS3DCommentRecord> out;
  for (size_t i = 0; i < records.size(); i++)
    if (!records[i].Comment.empty()) out.push_back({int32_t(i), Text(records[i].Comment)});
  return out;
}

// The file that holds what m holds, key times back in seconds.
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
  w.CommentsSubVersion = max(m.CommentsSubVersion, 0);
  w.VertexExtraSubVersion = max(m.VertexExtraSubVersion, 0);
  w.JointExtraSubVersion = max(m.JointExtraSubVersion, 0);
  w.ModelExtraSubVersion = max(m.ModelExtraSubVersion, 0);
  w.JointSize = m.JointSize, w.TransparencyMode = m.TransparencyMode, w.AlphaRef = m.AlphaRef;
  return w.Encode();
}

// Every field set, names filling their fields, all sections.
MS3DWriter Full() {
  MS3DWriter w;
  for (int i = 0; i < 3; i++)
    w.Vertices.push_back({uint8_t(i + 1), {0.5f * i, 2, -1}, int8_t(i - 1), 3, {1, -2, 4}, {70, 20, 5}, 0xA0B0C0D0u + i});
  w.Triangles.push_back({0x1234, {2, 300, 1}, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {0.5f, 0.25f, 1}, {2, 3, 0.75f}, 4, 5});
  w.Groups.resize(2);
  w.Groups[0].Flags = 6, w.Groups[0].TriangleIndices = {0, 513}, w.Groups[0].MaterialIndex = -3;
  msMaterial &m = w.Materials.emplace_back();
  for (float *colour : {m.Ambient, m.Diffuse, m.Specular, m.Emissive}) colour[0] = 0.1f, colour[3] = 0.5f;
  m.Shininess = 12, m.Transparency = 0.5f, m.Mode = 0x81;
  w.Joints.resize(2);
  for (char *name : {w.Groups[0].Name, m.Name, w.Joints[0].Name, w.Joints[1].ParentName}) memset(name, 'n', 32);
  memset(m.Texture, 't', 128);
  memset(m.AlphaMap, 'a', 128);
  w.CurrentTime = 3, w.TotalFrames = 48;
  msJoint &root = w.Joints[0];
  root.Flags = 9, root.Rotation[1] = 0.2f, root.Position[2] = 3, root.Color[0] = 0.9f;
  // The last record of the part every file has: its size is checked there.
  w.Joints[1].RotationKeys = {{0.5f, {0.1f, 0.2f, 0.3f}}};
  w.Joints[1].PositionKeys = {{0.25f, {1, 2, 3}}, {2, {4, 5, 6}}};
  w.GroupComments = {{1, "g"}}, w.MaterialComments = {{0, "m"}}, w.JointComments = {{1, "j"}};
  w.HasModelComment = true, w.ModelComment = "model";
  w.JointSize = 2.5f, w.TransparencyMode = 2, w.AlphaRef = 0.25f;
  return w;
}

}  // namespace

TEST(ModelLoader, CutFilesKeepWholeSections) {
  // A file as written, and as read back if that differs.
  using Edit = void (*)(MS3DWriter &);
  const pair<Edit, Edit> cases[] = {
      {[](MS3DWriter &) {}, nullptr},
      // Key times in frames by the fps raised to 1.
      {[](MS3DWriter &w) { w.AnimationFps = 0.5f; }, [](MS3DWriter &w) { w.AnimationFps = 1; }},
      // Vertex extras 1 have no Extra; unknown sections end at once.
      {[](MS3DWriter &w) { w.VertexExtraSubVersion = 1, w.JointExtraSubVersion = 2; }, nullptr},
      {[](MS3DWriter &w) { w.CommentsSubVersion = 2; }, nullptr},
      // Comments outside their lists are dropped; the last stays.
      {[](MS3DWriter &w) { w.GroupComments = {{-1, "x"}, {2, "x"}, {1, ""}, {0, "a"}, {0, "b"}}; },
       [](MS3DWriter &w) { w.GroupComments = {{0, "b"}}; }},
  };
  int32_t MS3DWriter::*subs[] = {&MS3DWriter::CommentsSubVersion, &MS3DWriter::VertexExtraSubVersion,
                                 &MS3DWriter::JointExtraSubVersion, &MS3DWriter::ModelExtraSubVersion};
  for (const auto &c : cases) {
    // What the file holds up to the end of its k-th optional section.
    MS3DWriter in = Full(), want[5];
    c.first(in);
    size_t end[5];
    for (int k = 0; k < 5; k++) {
      MS3DWriter cut = in;
      want[k] = Full();
      (c.second ? c.second : c.first)(want[k]);
      if (k < 4) cut.*subs[k] = want[k].*subs[k] = 0;
      end[k] = cut.Encode().size();
    }
    const Bytes file = in.Encode();
    // One model for all: what a shorter file lacks is not left behind.
    msModel m;
    for (size_t len = file.size() + 1; len-- > 0;) {
      bool loaded = LoadBytes(m, Bytes(file.begin(), file.begin() + len));
      ASSERT_EQ(loaded, len >= end[0]) << len;
      int k = 0;
      while (k < 4 && end[k + 1] <= len) k++;
      ASSERT_EQ(Written(m), loaded ? want[k].Encode() : Written(msModel())) << len;
      if (k < 4) {
        ASSERT_EQ(make_tuple(m.CommentsSubVersion, m.VertexExtraSubVersion, m.JointExtraSubVersion,
                                  m.ModelExtraSubVersion, m.JointSize, m.TransparencyMode, m.AlphaRef),
                  make_tuple(k ? in.CommentsSubVersion : -1, k > 1 ? in.VertexExtraSubVersion : -1,
                                  k > 2 ? in.JointExtraSubVersion : -1, -1, 1.0f, 0, 0.5f))
            << len;
      }
    }
  }
  // The child finds its parent of a 32-character name.
  msModel m;
  LoadBytes(m, Full().Encode());
  m.SetupJoints();
  EXPECT_EQ(m.Joints[1].ParentIndex, 0);
}

TEST(ModelLoader, DamagedFilesAndCounts) {
  MS3DWriter none = Full();
  none.GroupComments = none.MaterialComments = none.JointComments = {};
  MS3DWriter mandatory = none;
  mandatory.CommentsSubVersion = 0;
  const size_t counts = mandatory.Encode().size() + 4;
  const tuple<size_t, int32_t, int> cases[] = {
      {9, 'X', 1}, {10, 3, 4}, {counts, -1, 4}, {counts + 8, INT_MIN, 4}};
  for (const auto &[at, value, width] : cases) {
    Bytes b = none.Encode();
    for (int i = 0; i < width; i++) b[at + i] = uint8_t(uint32_t(value) >> (8 * i));
    msModel m;
    EXPECT_EQ(LoadBytes(m, b), at >= counts) << at;
    EXPECT_EQ(Written(m), at >= counts ? none.Encode() : Written(msModel())) << at;
  }
  // A directory opens like a file, but is refused.
  msModel m;
  EXPECT_FALSE(m.Load(TK_MS3D_DIR));
  FILE *p = popen(TK_BUILD_DIR "/tools/ms3dinfo/ms3dinfo " TK_MS3D_DIR " 2>&1", "r");
  char out[200] = {};
  fread(out, 1, sizeof out - 1, p);
  EXPECT_EQ(make_pair(WEXITSTATUS(pclose(p)), string(out)),
            make_pair(1, string("ms3dinfo: unable to load model from " TK_MS3D_DIR "\n")));
}

TEST(ModelLoader, TexturePaths) {
  const string dir(250, 'd');
  const tuple<string, const char *, string> cases[] = {
      {"data\\eyes\\/a.ms3d", "b.tga", "data\\eyes/b.tga"},
      // 259 characters and the terminator fill the work buffer.
      {dir + "/m.ms3d", "12345678", dir + "/12345678"},
      {dir + "/m.ms3d", "123456789", ""},
  };
  for (const auto &[model, texture, path] : cases) EXPECT_EQ(msTexturePath(model.c_str(), texture), path) << texture;
}

TEST(ModelLoader, ThirdPartyModels) {
  // The spheres' vertex section is of an unknown sub-version, so the bytes
  // behind it are read as sub-versions.
  const pair<const char *, vector<int>> cases[] = {
      {"/twospheres_withmats.ms3d", {124, 240, 2, 2, 1, 3, 16777215, 0}},
      {"/jeep1.ms3d", {1190, 2032, 7, 1, -1, -1, -1, -1}},
  };
  for (const auto &[file, counts] : cases) {
    msModel m;
    m.UploadTextures = false;
    EXPECT_TRUE(m.Load((TK_MS3D_DIR + string(file)).c_str())) << file;
    EXPECT_EQ(vector<int>({int(m.Vertices.size()), int(m.Triangles.size()), int(m.Groups.size()),
                                int(m.Materials.size()), m.CommentsSubVersion, m.VertexExtraSubVersion,
                                m.JointExtraSubVersion, m.ModelExtraSubVersion}),
              counts);
  }
}
