// ms3dinfo FILE [--frame K]: loads one MilkShape 3D file as the game prepares
// a model (read, centre, set up the skeleton) and prints it as one JSON object.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "model/modelclass.h"
#include "model/msmodel.h"

namespace {

// JSON has no NaN or infinity; a damaged file can hold them, so they print
// as null.
void PrintFloat(float v) {
  if (std::isfinite(v)) {
    std::printf("%.9g", static_cast<double>(v));
  } else {
    std::printf("null");
  }
}

void PrintVector(const float v[3]) {
  std::printf("[");
  for (int c = 0; c < 3; c++) {
    if (c) std::printf(", ");
    PrintFloat(v[c]);
  }
  std::printf("]");
}

// Names in model files are bytes of no stated encoding; bytes outside ASCII
// print as the code points of the same value, so the output stays valid JSON.
void PrintString(const char *s) {
  std::putchar('"');
  for (const unsigned char *p = reinterpret_cast<const unsigned char *>(s); *p; p++) {
    unsigned char ch = *p;
    if (ch == '"') {
      std::printf("\\\"");
    } else if (ch == '\\') {
      std::printf("\\\\");
    } else if (ch == '\n') {
      std::printf("\\n");
    } else if (ch == '\r') {
      std::printf("\\r");
    } else if (ch == '\t') {
      std::printf("\\t");
    } else if (ch < 0x20 || ch >= 0x7F) {
      std::printf("\\u%04x", ch);
    } else {
      std::putchar(ch);
    }
  }
  std::putchar('"');
}

void PrintKey(const char *key) {
  std::printf(",\n  ");
  PrintString(key);
  std::printf(": ");
}

void PrintSections(const msModel &m) {
  const struct {
    const char *Name;
    int32_t SubVersion;
  } sections[] = {{"comments", m.CommentsSubVersion},
                  {"vertex_extra", m.VertexExtraSubVersion},
                  {"joint_extra", m.JointExtraSubVersion},
                  {"model_extra", m.ModelExtraSubVersion}};
  std::printf("{");
  bool first = true;
  for (const auto &s : sections) {
    if (s.SubVersion < 0) continue;
    std::printf("%s", first ? "" : ", ");
    PrintString(s.Name);
    std::printf(": %d", s.SubVersion);
    first = false;
  }
  std::printf("}");
}

int Usage() {
  std::fprintf(stderr, "usage: ms3dinfo FILE [--frame K]\n");
  return 2;
}

}  // namespace

int main(int argc, char **argv) {
  const char *path = nullptr;
  bool hasFrame = false;
  float frame = 0;
  for (int i = 1; i < argc; i++) {
    if (std::strcmp(argv[i], "--frame") == 0) {
      if (i + 1 >= argc) return Usage();
      char *end = nullptr;
      frame = std::strtof(argv[++i], &end);
      if (end == argv[i] || *end != '\0') return Usage();
      hasFrame = true;
    } else if (!path) {
      path = argv[i];
    } else {
      return Usage();
    }
  }
  if (!path) return Usage();

  msModel model;
  model.UploadTextures = false;
  if (!model.Load(path)) {
    std::fprintf(stderr, "ms3dinfo: unable to load model from %s\n", path);
    return 1;
  }
  ModelBox box = CentreModel(model);
  if (!model.Joints.empty()) model.SetupJoints();
  float loadedTime = model.CurrentTime;

  std::printf("{\n  \"vertices\": %zu", model.Vertices.size());
  PrintKey("triangles");
  std::printf("%zu", model.Triangles.size());
  PrintKey("groups");
  std::printf("%zu", model.Groups.size());
  PrintKey("materials");
  std::printf("%zu", model.Materials.size());
  PrintKey("joints");
  std::printf("%zu", model.Joints.size());
  PrintKey("sections");
  PrintSections(model);
  PrintKey("animation_fps");
  PrintFloat(model.AnimationFps);
  PrintKey("current_time");
  PrintFloat(loadedTime);
  PrintKey("total_frames");
  std::printf("%d", model.TotalFrames);
  PrintKey("joint_size");
  PrintFloat(model.JointSize);
  PrintKey("transparency_mode");
  std::printf("%d", model.TransparencyMode);
  PrintKey("alpha_ref");
  PrintFloat(model.AlphaRef);

  PrintKey("textures");
  std::printf("[");
  for (size_t i = 0; i < model.Materials.size(); i++) {
    std::printf("%s", i ? ", " : "");
    PrintString(model.Materials[i].Texture);
  }
  std::printf("]");

  PrintKey("joint_list");
  std::printf("[");
  for (size_t i = 0; i < model.Joints.size(); i++) {
    const msJoint &j = model.Joints[i];
    std::printf("%s\n    {\"name\": ", i ? "," : "");
    PrintString(j.Name);
    std::printf(", \"parent_index\": %d, \"rotation_keys\": %zu, \"position_keys\": %zu}", j.ParentIndex,
                j.RotationKeys.size(), j.PositionKeys.size());
  }
  std::printf("%s]", model.Joints.empty() ? "" : "\n  ");

  PrintKey("size");
  PrintVector(box.Size);
  PrintKey("half_size");
  PrintVector(box.HalfSize);
  PrintKey("centre_offset");
  PrintVector(box.CentreOffset);
  PrintKey("bounds_min");
  PrintVector(box.BoundsMin);
  PrintKey("bounds_max");
  PrintVector(box.BoundsMax);

  if (hasFrame) {
    model.SetFrame(frame);
    PrintKey("frame");
    PrintFloat(frame);
    PrintKey("transformed_vertices");
    std::printf("[");
    for (size_t i = 0; i < model.Vertices.size(); i++) {
      float out[3];
      model.TransformVertex(model.Vertices[i], out);
      std::printf("%s", i ? ", " : "");
      PrintVector(out);
    }
    std::printf("]");
    // A corner whose vertex index is outside the model has no vertex to
    // skin it by and prints as null.
    PrintKey("transformed_normals");
    std::printf("[");
    for (size_t t = 0; t < model.Triangles.size(); t++) {
      const msTriangle &tri = model.Triangles[t];
      std::printf("%s[", t ? ", " : "");
      for (int c = 0; c < 3; c++) {
        std::printf("%s", c ? ", " : "");
        if (tri.VertexIndices[c] >= model.Vertices.size()) {
          std::printf("null");
          continue;
        }
        float out[3];
        model.TransformNormal(model.Vertices[tri.VertexIndices[c]], tri.VertexNormals[c], out);
        PrintVector(out);
      }
      std::printf("]");
    }
    std::printf("]");
  }
  std::printf("\n}\n");
  return 0;
}
