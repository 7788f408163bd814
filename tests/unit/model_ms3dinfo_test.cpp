// ms3dinfo on the third-party models and on an animated model made here:
// counts, sections, centring, skinned vertices and the refusal of bad files.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

const std::string kTool = std::string(TK_BUILD_DIR) + "/tools/ms3dinfo/ms3dinfo";

struct ToolRun {
  int Status = -1;
  std::string Out, Err;
};

// Runs the tool; stdout through a pipe, stderr through a file.
ToolRun Info(const std::string &args) {
  static const std::string errPath = "/tmp/ms3dinfo_err_" + std::to_string(getpid());
  ToolRun run;
  FILE *p = popen((kTool + " " + args + " 2>" + errPath).c_str(), "r");
  if (!p) return run;
  char buf[4096];
  for (size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) run.Out.append(buf, n);
  int status = pclose(p);
  run.Status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  if (FILE *f = std::fopen(errPath.c_str(), "rb")) {
    for (size_t n; (n = std::fread(buf, 1, sizeof buf, f)) > 0;) run.Err.append(buf, n);
    std::fclose(f);
  }
  std::remove(errPath.c_str());
  return run;
}

// Checks the numbers of the array that follows "key": in the output.
void ExpectNumbers(const std::string &json, const std::string &key, const std::vector<double> &want) {
  std::vector<double> got;
  size_t at = json.find("\"" + key + "\": ");
  for (const char *s = at == std::string::npos ? "" : json.c_str() + at + key.size() + 4; got.size() < want.size() && *s;) {
    if (*s == '-' || (*s >= '0' && *s <= '9')) {
      char *end;
      got.push_back(std::strtod(s, &end));
      s = end;
    } else {
      s++;
    }
  }
  ASSERT_EQ(got.size(), want.size()) << key;
  for (size_t i = 0; i < want.size(); i++)
    EXPECT_NEAR(got[i], want[i], 1e-5 * std::max(1.0, std::abs(want[i]))) << key << " " << i;
}

}  // namespace

TEST(Ms3dInfo, ThirdPartyModels) {
  ASSERT_EQ(access(kTool.c_str(), X_OK), 0) << "build the ms3dinfo target first";
  // The spheres carry a vertex section of a sub-version the reader doesn't
  // know, so the bytes after it are taken as the following sub-versions.
  struct Case {
    const char *File;
    int Vertices, Triangles, Groups, Materials;
    std::vector<double> Size, Offset;
    const char *Textures, *Sections;
  } cases[] = {
      {"twospheres.ms3d", 124, 240, 2, 0, {230, 194.5, 188}, {-52, -83.75, 0}, "[]",
       "\"sections\": {\"comments\": 1, \"vertex_extra\": 3, "},
      {"twospheres_withmats.ms3d", 124, 240, 2, 2, {230, 194.5, 188}, {-52, -83.75, 0}, "[\"\", \"\"]", ""},
      {"jeep1.ms3d", 1190, 2032, 7, 1, {11.0584736, 7.6395893, 16.6458778}, {0, -3.8092890, 0.2138748},
       "[\".\\\\jeep1.jpg\"]", "\"sections\": {},\n  \"animation_fps\": 1,\n  \"current_time\": "},
  };
  for (const Case &c : cases) {
    ToolRun r = Info(std::string(TK_MS3D_DIR) + "/" + c.File);
    ASSERT_EQ(r.Status, 0) << c.File << r.Err;
    const std::string &j = r.Out;
    for (const std::string &line :
         {"\"vertices\": " + std::to_string(c.Vertices), "\"triangles\": " + std::to_string(c.Triangles),
          "\"groups\": " + std::to_string(c.Groups), "\"materials\": " + std::to_string(c.Materials),
          std::string("\"joints\": 0"), std::string("\"textures\": ") + c.Textures, std::string("\"joint_list\": []")})
      EXPECT_NE(j.find(line + ",\n"), std::string::npos) << c.File << " " << line;
    EXPECT_NE(j.find(c.Sections), std::string::npos) << c.File << j;
    ExpectNumbers(j, "size", c.Size);
    ExpectNumbers(j, "centre_offset", c.Offset);
    const std::vector<double> half = {c.Size[0] / 2, c.Size[1] / 2, c.Size[2] / 2};
    ExpectNumbers(j, "half_size", half);
    ExpectNumbers(j, "bounds_max", half);
    EXPECT_EQ(j.find("\"frame\""), std::string::npos);
  }
}

TEST(Ms3dInfo, AnimatedModelAtAFrameAndRefusedFiles) {
  MS3DWriter w;
  w.Vertices = {{0, {0, 2, 0}, 0}, {0, {4, 2, 0}, 0}};
  msTriangle &t = w.Triangles.emplace_back();
  t.VertexIndices[1] = 1;
  t.VertexIndices[2] = 7;  // no such vertex
  t.VertexNormals[0][0] = 1;
  std::strcpy(w.Materials.emplace_back().Texture, "a\"b.tga");
  w.Joints.resize(2);
  std::strcpy(w.Joints[0].Name, "ro\\ot");
  w.Joints[0].PositionKeys = {{0.0f, {0, 0, 0}}, {1.0f, {0, 10, 0}}};
  w.Joints[0].RotationKeys = {{0.0f, {0, 0, 1.57079633f}}};
  std::strcpy(w.Joints[1].Name, "leaf");
  std::strcpy(w.Joints[1].ParentName, "ro\\ot");
  w.AnimationFps = 10;
  w.CommentsSubVersion = 1;
  w.VertexExtraSubVersion = 1;
  w.JointExtraSubVersion = 0;
  std::string path = "/tmp/ms3dinfo_anim_" + std::to_string(getpid()) + ".ms3d";
  ASSERT_TRUE(w.Save(path.c_str()));

  ToolRun r = Info(path + " --frame 10");
  ASSERT_EQ(r.Status, 0) << r.Err;
  const std::string &j = r.Out;
  EXPECT_NE(j.find("\"sections\": {\"comments\": 1, \"vertex_extra\": 1},\n"), std::string::npos) << j;
  EXPECT_NE(j.find("\"animation_fps\": 10,\n  \"current_time\": 1,\n  \"total_frames\": 30,\n"), std::string::npos);
  EXPECT_NE(j.find("\"textures\": [\"a\\\"b.tga\"],\n"), std::string::npos) << j;
  EXPECT_NE(j.find("{\"name\": \"ro\\\\ot\", \"parent_index\": -1, \"rotation_keys\": 1, \"position_keys\": 2}"),
            std::string::npos)
      << j;
  EXPECT_NE(j.find("{\"name\": \"leaf\", \"parent_index\": 0, \"rotation_keys\": 0, \"position_keys\": 0}"),
            std::string::npos);
  ExpectNumbers(j, "centre_offset", {-2, -2, 0});
  EXPECT_NE(j.find("\"frame\": 10,\n"), std::string::npos);
  // Centred, the vertices are (-2, 0, 0) and (2, 0, 0), and the root joint
  // moved to (-2, -2, 0). At frame 10 (1 s at 10 fps) it has risen by 10 and
  // turned a quarter about Z: offsets (0, 2) and (4, 2) from the joint become
  // (-2, 0) and (-2, 4) from (-2, 8).
  ExpectNumbers(j, "transformed_vertices", {-4, 8, 0, -4, 12, 0});
  ExpectNumbers(j, "transformed_normals", {0, 1, 0, 0, 0, 0});
  EXPECT_NE(j.find("\"transformed_normals\": [[["), std::string::npos);
  EXPECT_NE(j.find("], null]]\n}"), std::string::npos) << j;

  // The bind pose: stored (centred) positions.
  ExpectNumbers(Info(path + " --frame -1").Out, "transformed_vertices", {-2, 0, 0, 2, 0, 0});

  w.Version = 0x01000004;
  ASSERT_TRUE(w.Save(path.c_str()));
  r = Info(path);
  EXPECT_EQ(std::make_tuple(r.Status, r.Out, r.Err),
            std::make_tuple(1, std::string(), "ms3dinfo: unable to load model from " + path + "\n"));
  EXPECT_EQ(Info(path + ".missing").Status, 1);
  std::remove(path.c_str());
}
