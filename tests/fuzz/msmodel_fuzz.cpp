// Any bytes load or are refused; a loaded model centres, poses and skins.
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
  CentreModel(model);
  model.SetupJoints();
  const float last = static_cast<float>(model.TotalFrames > 64 ? 64 : model.TotalFrames);
  volatile float sink = 0;
  for (float frame : {-1.0f, 0.0f, 1.5f, last}) {
    model.SetFrame(frame);
    for (const msVertex &v : model.Vertices) {
      float out[3];
      model.TransformVertex(v, out);
      model.TransformNormal(v, v.Position, out);
      sink = sink + out[1];
    }
  }
  return 0;
}
