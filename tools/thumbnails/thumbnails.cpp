// make_thumbnails: renders the picker-bar thumbnail of every catalogue entry
// from its own models, with the game's model code and lights, and saves it
// as TGA under the name the entry's "thumb" key gives. Runs on an X display
// (a virtual one will do) from the directory that holds data/.
//
//   make_thumbnails [data-directory]
#include <allegro.h>
#include <GL/gl.h>
#include <GL/glu.h>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>
#include "app/scene.h"
#include "model/modelclass.h"
#include <alleggl.h>

namespace {

// Pictures are drawn four times as large and averaged down, which smooths
// the outlines without relying on the driver's multisampling.
const int SUPER = 4;
// The window that the pictures are drawn in must hold the largest one.
const int WINDOW_W = 640, WINDOW_H = 640;

// Where the camera looks from: a direction from the middle of the picture,
// with -Z in front of a face and +X at the character's left (the viewer's
// left too).
struct View {
  float Side, Up;
};

struct Catalogue {
  const char *Ini, *Section, *Dir;
  bool Pair, Hat;
  View From;
};

// Face parts are seen nearly from the front, as they sit on a face; noses,
// feet and hats stick out towards the viewer, so they are turned a little
// more to show their shape rather than only their front.
const Catalogue CATALOGUES[] = {
    {"eyes.ini", "eyes", "eyes", true, false, {0.1f, 0.05f}},
    {"ears.ini", "ears", "ears", true, false, {0.15f, 0.15f}},
    {"noses.ini", "nose", "noses", false, false, {0.65f, 0.25f}},
    {"mouths.ini", "mouth", "mouths", false, false, {0.1f, 0.15f}},
    {"eyebrows.ini", "eyebrows", "eyebrows", true, false, {0.1f, 0.1f}},
    {"moustaches.ini", "moustache", "moustaches", false, false, {0.1f, 0.15f}},
    {"feet.ini", "feet", "feet", true, false, {0.6f, 0.6f}},
    {"hats.ini", "hat", "hats", false, true, {0.2f, 0.35f}},
};

const View BODY_VIEW = {0.12f, 0.15f};

// One model to draw at a place in the picture.
struct Placed {
  ModelClass *Model;
  float X, Y, Z;
};

float Dot(const float a[3], const float b[3]) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

void Normalise(float v[3]) {
  float len = std::sqrt(Dot(v, v));
  for (int c = 0; c < 3; c++) v[c] /= len;
}

void Background(int w, int h, const float inner[3], const float outer[3]) {
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(-1, 1, -1, 1, -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_TEXTURE_2D);
  // A soft radial glow: a fan around the middle.
  const int n = 48;
  float aspect = static_cast<float>(w) / h;
  glBegin(GL_TRIANGLE_FAN);
  glColor3fv(inner);
  glVertex2f(0, 0.1f);
  glColor3fv(outer);
  for (int i = 0; i <= n; i++) {
    float a = i * 6.2831853f / n;
    glVertex2f(1.5f * std::cos(a), 1.5f * aspect * std::sin(a) * 0.9f);
  }
  glEnd();
  glColor3f(1, 1, 1);
  glEnable(GL_DEPTH_TEST);
}

// Renders the models framed by the box of what they draw, seen from `from` under the
// game's two lights, and writes a w x h TGA.
bool Render(const std::vector<Placed> &models, int w, int h, const View &from, bool backFaces, const float inner[3],
            const float outer[3], const std::string &path) {
  int W = w * SUPER, H = h * SUPER;
  glViewport(0, 0, W, H);
  glClearColor(outer[0], outer[1], outer[2], 1);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  Background(w, h, inner, outer);
  glClear(GL_DEPTH_BUFFER_BIT);

  float lo[3] = {1e9f, 1e9f, 1e9f}, hi[3] = {-1e9f, -1e9f, -1e9f};
  for (const Placed &p : models) {
    const float at[3] = {p.X, p.Y, p.Z};
    // Framed by what is drawn: the triangles' corners. A model's box may
    // also hold lone vertices that only move the box centre the game uses.
    for (const msTriangle &t : p.Model->Model->Triangles) {
      for (uint16_t i : t.VertexIndices) {
        if (i >= p.Model->Model->Vertices.size()) continue;
        const float *v = p.Model->Model->Vertices[i].Position;
        for (int c = 0; c < 3; c++) {
          lo[c] = std::min(lo[c], at[c] + v[c]);
          hi[c] = std::max(hi[c], at[c] + v[c]);
        }
      }
    }
  }
  const float fov = 30;
  const float aspect = static_cast<float>(w) / h;
  const float tanY = std::tan(fov / 2 * 3.14159265f / 180), tanX = tanY * aspect;
  // The camera's own axes: forward from the eye to the middle, right, up.
  float centre[3], fwd[3] = {-from.Side, -from.Up, 1};
  for (int c = 0; c < 3; c++) centre[c] = (lo[c] + hi[c]) / 2;
  Normalise(fwd);
  float right[3] = {-fwd[2], 0, fwd[0]};  // forward x (0, 1, 0)
  Normalise(right);
  const float up[3] = {right[1] * fwd[2] - right[2] * fwd[1], right[2] * fwd[0] - right[0] * fwd[2],
                       right[0] * fwd[1] - right[1] * fwd[0]};
  // Close enough that the box fills the picture but for a margin: every
  // corner must fall inside the view, its depth counted from the eye.
  const float margin = 0.86f;
  float dist = 0;
  for (int corner = 0; corner < 8; corner++) {
    float d[3];
    for (int c = 0; c < 3; c++) d[c] = ((corner >> c) & 1 ? hi[c] : lo[c]) - centre[c];
    float x = Dot(d, right), y = Dot(d, up), z = Dot(d, fwd);
    dist = std::max(dist, std::fabs(x) / (tanX * margin) - z);
    dist = std::max(dist, std::fabs(y) / (tanY * margin) - z);
  }
  CameraClass camera;
  for (int c = 0; c < 3; c++) {
    camera.Eye[c] = centre[c] - fwd[c] * dist;
    camera.Target[c] = centre[c];
  }
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  gluPerspective(fov, aspect, dist * 0.05f, dist * 4);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  gluLookAt(camera.Eye[0], camera.Eye[1], camera.Eye[2], camera.Target[0], camera.Target[1], camera.Target[2], 0, 1,
            0);
  SetupLights();
  if (backFaces) glDisable(GL_CULL_FACE);
  for (const Placed &p : models) p.Model->Draw(p.X, p.Y, p.Z, 0, 0, 0);
  glEnable(GL_CULL_FACE);
  DisableLights();

  std::vector<unsigned char> big(static_cast<size_t>(W) * H * 3);
  glReadBuffer(GL_BACK);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, W, H, GL_RGB, GL_UNSIGNED_BYTE, big.data());
  // GL rows run from the bottom up, as a TGA with its origin at the lower
  // left stores them.
  std::vector<unsigned char> out;
  const unsigned char header[18] = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                    static_cast<unsigned char>(w & 0xFF), static_cast<unsigned char>(w >> 8),
                                    static_cast<unsigned char>(h & 0xFF), static_cast<unsigned char>(h >> 8), 24, 0};
  out.insert(out.end(), header, header + 18);
  for (int y = 0; y < h; y++) {
    for (int x = 0; x < w; x++) {
      int sum[3] = {0, 0, 0};
      for (int sy = 0; sy < SUPER; sy++) {
        for (int sx = 0; sx < SUPER; sx++) {
          const unsigned char *p = &big[(static_cast<size_t>(y * SUPER + sy) * W + x * SUPER + sx) * 3];
          for (int c = 0; c < 3; c++) sum[c] += p[c];
        }
      }
      const int n = SUPER * SUPER;
      out.push_back(static_cast<unsigned char>((sum[2] + n / 2) / n));
      out.push_back(static_cast<unsigned char>((sum[1] + n / 2) / n));
      out.push_back(static_cast<unsigned char>((sum[0] + n / 2) / n));
    }
  }
  FILE *f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  bool ok = std::fwrite(out.data(), 1, out.size(), f) == out.size();
  return std::fclose(f) == 0 && ok;
}

bool LoadModel(ModelClass &m, const std::string &path) {
  if (m.Load(path.c_str())) return true;
  std::fprintf(stderr, "make_thumbnails: %s\n", m.Error.c_str());
  return false;
}

std::string Key(const char *section, const char *key) { return get_config_string(section, key, ""); }

// A body is shown with a face only: the first eyes and mouth. Without a face
// the plain bodies read as coloured pebbles; fully dressed, the hat and feet
// of the first entries would hide the shape and make all eight look alike.
bool Bodies(const std::string &data) {
  ModelClass eyeL, eyeR, mouth;
  set_config_file((data + "/eyes.ini").c_str());
  bool face = LoadModel(eyeL, data + "/eyes/" + Key("eyes0", "LeftModel")) &&
              LoadModel(eyeR, data + "/eyes/" + Key("eyes0", "RightModel"));
  set_config_file((data + "/mouths.ini").c_str());
  face = face && LoadModel(mouth, data + "/mouths/" + Key("mouth0", "model"));
  set_config_file((data + "/characters.ini").c_str());
  int count = get_config_int("info", "count", 0);
  bool ok = true;
  const float inner[3] = {1.0f, 0.97f, 0.88f}, outer[3] = {0.86f, 0.80f, 0.68f};
  for (int i = 0; i < count; i++) {
    char section[32];
    std::snprintf(section, sizeof section, "character%d", i);
    ModelClass body;
    if (!LoadModel(body, data + "/characters/" + Key(section, "model"))) {
      ok = false;
      continue;
    }
    std::vector<Placed> list = {{&body, 0, 0, 0}};
    auto anchor = [&](const char *name, float out[3]) {
      const char *axes[3] = {"X", "Y", "Z"};
      for (int c = 0; c < 3; c++) out[c] = get_config_float(section, (std::string(name) + axes[c]).c_str(), 0);
    };
    float le[3], re[3], mo[3];
    anchor("LeftEye", le);
    anchor("RightEye", re);
    anchor("Mouth", mo);
    if (face) {
      list.push_back({&eyeL, le[0], le[1], le[2]});
      list.push_back({&eyeR, re[0], re[1], re[2]});
      list.push_back({&mouth, mo[0], mo[1], mo[2]});
    }
    ok = Render(list, 128, 128, BODY_VIEW, false, inner, outer, data + "/characters/" + Key(section, "thumb")) && ok;
    body.Unload();
  }
  eyeL.Unload();
  eyeR.Unload();
  mouth.Unload();
  return ok;
}

bool Parts(const std::string &data, const Catalogue &cat) {
  set_config_file((data + "/" + cat.Ini).c_str());
  int count = get_config_int("info", "count", 0);
  bool ok = true;
  const float inner[3] = {0.93f, 0.97f, 1.0f}, outer[3] = {0.62f, 0.78f, 0.92f};
  const std::string dir = data + "/" + cat.Dir + "/";
  for (int i = 0; i < count; i++) {
    char section[32];
    std::snprintf(section, sizeof section, "%s%d", cat.Section, i);
    std::string thumb = dir + Key(section, "thumb");
    ModelClass left, right;
    if (cat.Pair) {
      if (!LoadModel(left, dir + Key(section, "LeftModel")) || !LoadModel(right, dir + Key(section, "RightModel"))) {
        ok = false;
        continue;
      }
      // The pair as it sits on a face: the left one at +X, which the
      // viewer in front sees on the left, with a gap between them.
      float gap = std::max(left.Size[0], right.Size[0]) * 0.62f + 1;
      std::vector<Placed> list = {{&left, gap, 0, 0}, {&right, -gap, 0, 0}};
      ok = Render(list, 128, 96, cat.From, false, inner, outer, thumb) && ok;
    } else {
      if (!LoadModel(left, dir + Key(section, "model"))) {
        ok = false;
        continue;
      }
      bool back = cat.Hat && get_config_int(section, "backfaces", 0) != 0;
      ok = Render({{&left, 0, 0, 0}}, 128, 96, cat.From, back, inner, outer, thumb) && ok;
    }
    left.Unload();
    right.Unload();
  }
  return ok;
}

// A window of our own: the GUI library's start-up would want its datafile,
// and nothing here draws text. Set up as the game's is: depth buffer,
// double buffering, counter-clockwise fronts culled at the back.
bool OpenWindow() {
  allegro_gl_clear_settings();
  allegro_gl_set(AGL_COLOR_DEPTH, 32);
  allegro_gl_set(AGL_DOUBLEBUFFER, 1);
  allegro_gl_set(AGL_Z_DEPTH, 24);
  allegro_gl_set(AGL_WINDOWED, TRUE);
  allegro_gl_set(AGL_RENDERMETHOD, 1);
  allegro_gl_set(AGL_SUGGEST, AGL_COLOR_DEPTH | AGL_DOUBLEBUFFER | AGL_Z_DEPTH | AGL_RENDERMETHOD | AGL_WINDOWED);
  set_color_depth(32);
  if (set_gfx_mode(GFX_OPENGL, WINDOW_W, WINDOW_H, 0, 0) != 0) return false;
  glPolygonMode(GL_FRONT, GL_FILL);
  glEnable(GL_CULL_FACE);
  glFrontFace(GL_CCW);
  glShadeModel(GL_SMOOTH);
  allegro_gl_use_mipmapping(TRUE);
  return true;
}

}  // namespace

int main(int argc, char **argv) {
  std::string data = argc > 1 ? argv[1] : "data";
  if (allegro_init() != 0 || install_allegro_gl() != 0) {
    std::fprintf(stderr, "make_thumbnails: allegro_init failed\n");
    return 1;
  }
  if (!OpenWindow()) {
    std::fprintf(stderr, "make_thumbnails: no OpenGL window (no display?): %s\n", allegro_error);
    return 1;
  }
  bool ok = Bodies(data);
  for (const Catalogue &cat : CATALOGUES) ok = Parts(data, cat) && ok;
  set_gfx_mode(GFX_TEXT, 0, 0, 0, 0);
  allegro_exit();
  return ok ? 0 : 1;
}
END_OF_MAIN()
