// Fuzzes the MS3D reader and the skeleton code: any bytes, read as a model
// file, must load or be refused without touching memory out of bounds, and a
// loaded model must centre, pose and skin without fault. No GL is involved.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "model/modelclass.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const std::string path = "/tmp/msmodel_fuzz_" + std::to_string(getpid()) + ".ms3d";
  FILE *f = std::fopen(path.c_str(), "wb");
  if (!f) return 0;
  std::fwrite(data, 1, size, f);
  std::fclose(f);

  msModel model;
  model.UploadTextures = false;
  if (!model.Load(path.c_str())) return 0;
  for (const msMaterial &m : model.Materials) msTexturePath(path.c_str(), m.Texture);
  CentreModel(model);
  model.SetupJoints();
  const float last = static_cast<float>(model.TotalFrames > 64 ? 64 : model.TotalFrames);
  volatile float sink = 0;
  for (float frame : {-1.0f, 0.0f, 1.5f, last}) {
    model.SetFrame(frame);
    for (const msTriangle &t : model.Triangles) {
      for (int c = 0; c < 3; c++) {
        if (t.VertexIndices[c] >= model.Vertices.size()) continue;
        float out[3];
        model.TransformVertex(model.Vertices[t.VertexIndices[c]], out);
        model.TransformNormal(model.Vertices[t.VertexIndices[c]], t.VertexNormals[c], out);
        sink = sink + out[1];
      }
    }
  }
  return 0;
}
