// Times what a model costs at load: reading the file, centring it and
// compiling its display lists, for the third-party models and for a large
// generated model with a skeleton. Needs an X display for its GL context.
// Usage: model_bench [MODEL_DIR]   (default tests/data/ms3d, run from the repository)
#include <allegro.h>
#include <alleggl.h>
#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "model/modelclass.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

double Ms(std::chrono::steady_clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

// A tube of 101 rings of 50 vertices (10,000 triangles) along a chain of 40
// joints, each ring weighted between two joints, animated over 60 frames.
MS3DWriter LargeModel() {
  MS3DWriter w;
  const int rings = 101, around = 50, joints = 40, frames = 60;
  const float fps = 24.0f, seconds = frames / fps;
  for (int r = 0; r < rings; r++) {
    float along = static_cast<float>(r) / (rings - 1) * joints;
    int bone = std::min(static_cast<int>(along), joints - 1);
    for (int a = 0; a < around; a++) {
      double angle = 2.0 * M_PI * a / around;
      msVertex v;
      v.Position[0] = static_cast<float>(std::cos(angle));
      v.Position[1] = along;
      v.Position[2] = static_cast<float>(std::sin(angle));
      v.BoneId = static_cast<int8_t>(bone);
      v.BoneIds[0] = static_cast<int8_t>(std::min(bone + 1, joints - 1));
      v.BoneWeights[0] = 70;
      v.BoneWeights[1] = 30;
      w.Vertices.push_back(v);
    }
  }
  msGroup g;
  for (int r = 0; r + 1 < rings; r++) {
    for (int a = 0; a < around; a++) {
      uint16_t i0 = static_cast<uint16_t>(r * around + a);
      uint16_t i1 = static_cast<uint16_t>(r * around + (a + 1) % around);
      uint16_t i2 = static_cast<uint16_t>(i0 + around), i3 = static_cast<uint16_t>(i1 + around);
      const uint16_t quads[2][3] = {{i0, i1, i3}, {i0, i3, i2}};
      for (const auto &q : quads) {
        msTriangle t;
        for (int c = 0; c < 3; c++) {
          t.VertexIndices[c] = q[c];
          const float *p = w.Vertices[q[c]].Position;
          t.VertexNormals[c][0] = p[0];
          t.VertexNormals[c][2] = p[2];
        }
        g.TriangleIndices.push_back(static_cast<uint16_t>(w.Triangles.size()));
        w.Triangles.push_back(t);
      }
    }
  }
  g.MaterialIndex = -1;
  w.Groups.push_back(g);
  w.AnimationFps = fps;
  w.TotalFrames = frames;
  for (int j = 0; j < joints; j++) {
    msJoint joint;
    std::snprintf(joint.Name, sizeof joint.Name, "bone%d", j);
    if (j > 0) std::snprintf(joint.ParentName, sizeof joint.ParentName, "bone%d", j - 1);
    joint.Position[1] = j == 0 ? 0.0f : 1.0f;
    for (int k = 0; k < 4; k++) {
      float t = seconds * k / 3;
      float sway = 0.05f * static_cast<float>(std::sin(k + j * 0.3));
      joint.RotationKeys.push_back({t, {0, sway, sway}});
      joint.PositionKeys.push_back({t, {0, 0.02f * k, 0}});
    }
    w.Joints.push_back(joint);
  }
  return w;
}

struct Timing {
  double Load = 1e30, Centre = 1e30, Lists = 1e30;
  long Corners = 0;
  int Lists_ = 0;
};

// The steps of ModelClass::Load, timed one by one; best of three runs.
bool Measure(const std::string &path, Timing &best) {
  for (int run = 0; run < 3; run++) {
    ModelClass m;
    m.Model = new msModel();
    m.ModelAllocated = true;
    auto t0 = std::chrono::steady_clock::now();
    if (!m.Model->Load(path.c_str())) {
      delete m.Model;
      return false;
    }
    auto t1 = std::chrono::steady_clock::now();
    m.Centre();
    auto t2 = std::chrono::steady_clock::now();
    if (!m.Model->Joints.empty()) {
      m.Animated = true;
      m.Model->SetupJoints();
      m.Model->SetFrame(-1.0f);
    } else {
      m.Model->SetFrame(0.0f);
    }
    m.BuildLists();
    glFinish();
    auto t3 = std::chrono::steady_clock::now();
    m.Loaded = true;
    // The corners compiled: a group that keeps its shape once, a skinned one
    // in every frame.
    long corners = 0;
    const long frames = m.ListCount() / 2;
    for (const msGroup &g : m.Model->Groups) {
      const long groupCorners = 3L * static_cast<long>(g.TriangleIndices.size());
      corners += m.Animated && GroupJoint(*m.Model, g) == GROUP_SKINNED ? groupCorners * frames : groupCorners;
    }
    best.Load = std::min(best.Load, Ms(t1 - t0));
    best.Centre = std::min(best.Centre, Ms(t2 - t1));
    best.Lists = std::min(best.Lists, Ms(t3 - t2));
    best.Lists_ = m.ListCount();
    best.Corners = corners;
    m.Unload();
  }
  return true;
}

void Report(const std::string &name, const Timing &t) {
  double perSecond = t.Lists > 0 ? t.Corners / (t.Lists / 1000.0) : 0;
  std::printf("%-46s load %9.3f ms  centre %7.3f ms  lists %9.3f ms (%4d lists)  %12.0f skinned corners/s\n",
              name.c_str(), t.Load, t.Centre, t.Lists, t.Lists_, perSecond);
}

}  // namespace

int main(int argc, char **argv) {
  std::string dir = argc > 1 ? argv[1] : "tests/data/ms3d";
  if (allegro_init() != 0) {
    std::fprintf(stderr, "model_bench: allegro_init failed (no display?)\n");
    return 1;
  }
  install_allegro_gl();
  allegro_gl_set(AGL_COLOR_DEPTH, 32);
  allegro_gl_set(AGL_DOUBLEBUFFER, 1);
  allegro_gl_set(AGL_Z_DEPTH, 24);
  allegro_gl_set(AGL_WINDOWED, TRUE);
  allegro_gl_set(AGL_RENDERMETHOD, 1);
  allegro_gl_set(AGL_SUGGEST, AGL_COLOR_DEPTH | AGL_DOUBLEBUFFER | AGL_Z_DEPTH | AGL_RENDERMETHOD | AGL_WINDOWED);
  set_color_depth(32);
  if (set_gfx_mode(GFX_OPENGL, 640, 480, 0, 0) != 0) {
    std::fprintf(stderr, "model_bench: no GL window: %s\n", allegro_error);
    return 1;
  }
  allegro_gl_use_mipmapping(TRUE);

  std::vector<std::string> files;
  if (DIR *d = opendir(dir.c_str())) {
    while (dirent *e = readdir(d)) {
      std::string name = e->d_name;
      if (name.size() > 5 && name.compare(name.size() - 5, 5, ".ms3d") == 0) files.push_back(name);
    }
    closedir(d);
  }
  std::sort(files.begin(), files.end());
  for (const std::string &name : files) {
    Timing t;
    if (!Measure(dir + "/" + name, t)) {
      std::printf("%-46s refused\n", name.c_str());
      continue;
    }
    Report(name, t);
  }

  char tmpl[] = "/tmp/model_bench_XXXXXX";
  std::string generated = std::string(mkdtemp(tmpl)) + "/large.ms3d";
  MS3DWriter large = LargeModel();
  large.Save(generated.c_str());
  Timing t;
  if (Measure(generated, t)) {
    Report("generated (10000 tris, 40 joints, 60 frames)", t);
  }
  std::remove(generated.c_str());
  rmdir(generated.substr(0, generated.size() - 11).c_str());
  set_gfx_mode(GFX_TEXT, 0, 0, 0, 0);
  return 0;
}
END_OF_MAIN()
