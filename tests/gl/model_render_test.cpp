// ModelClass in a real GL context: display lists per frame, the frame clock,
// the material state left behind, and pixels of lit, textured models.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <allegro.h>

#include <GL/gl.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <tuple>
#include <vector>

#include "model/modelclass.h"
#include "support/gl_env.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

const TkPixel kBlack{0, 0, 0}, kWhite{255, 255, 255};

std::string TempDir() {
  static std::string dir;
  if (dir.empty()) {
    char tmpl[] = "/tmp/model_render_XXXXXX";
    dir = mkdtemp(tmpl);
    mkdir((dir + "/sub").c_str(), 0700);
  }
  return dir;
}

// A unit square facing +z, centred on (x, 0, 0), in one group.
void AddSquare(MS3DWriter &w, float x, int8_t material, int8_t bone) {
  uint16_t base = static_cast<uint16_t>(w.Vertices.size());
  const float corners[4][2] = {{-0.5f, -0.5f}, {0.5f, -0.5f}, {0.5f, 0.5f}, {-0.5f, 0.5f}};
  for (const auto &c : corners) w.Vertices.push_back({0, {x + c[0], c[1], 0}, bone});
  msGroup &g = w.Groups.emplace_back();
  g.MaterialIndex = material;
  for (const auto &t : {std::vector<int>{0, 1, 2}, std::vector<int>{0, 2, 3}}) {
    msTriangle tri;
    for (int c = 0; c < 3; c++) {
      tri.VertexIndices[c] = base + t[c];
      tri.VertexNormals[c][2] = 1.0f;
      tri.S[c] = corners[t[c]][0] + 0.5f;
      tri.T[c] = corners[t[c]][1] + 0.5f;
    }
    g.TriangleIndices.push_back(static_cast<uint16_t>(w.Triangles.size()));
    w.Triangles.push_back(tri);
  }
}

msMaterial Material(float r, float g, float b, float transparency, const char *texture) {
  msMaterial m;
  m.Diffuse[0] = r, m.Diffuse[1] = g, m.Diffuse[2] = b;
  m.Transparency = transparency;
  std::strcpy(m.Texture, texture);
  return m;
}

std::string Save(const MS3DWriter &w, const char *name) {
  std::string path = TempDir() + "/" + name;
  EXPECT_TRUE(w.Save(path.c_str()));
  return path;
}

void SaveTexture(const std::string &path, int r, int g, int b) {
  BITMAP *bmp = create_bitmap_ex(24, 4, 4);
  clear_to_color(bmp, makecol24(r, g, b));
  ASSERT_EQ(save_bitmap(path.c_str(), bmp, nullptr), 0);
  destroy_bitmap(bmp);
}

// An orthographic view of 8 x 6 units over the 800 x 600 window, 100 pixels
// to the unit, origin at the centre; black background; lighting as asked:
// a white light straight from the viewer and no ambient light at all, so a
// surface facing it shows its diffuse colour times its texture.
void BeginScene(bool lit) {
  glViewport(0, 0, TK_SCREEN_W, TK_SCREEN_H);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(-4, 4, -3, 3, -10, 10);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  for (GLenum off : {GL_CULL_FACE, GL_BLEND, GL_SCISSOR_TEST, GL_COLOR_MATERIAL, GL_LIGHTING}) glDisable(off);
  glDepthFunc(GL_LESS);
  glDepthMask(GL_TRUE);
  glClearColor(0, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
  if (!lit) return;
  const float none[4] = {0, 0, 0, 1}, white[4] = {1, 1, 1, 1}, ahead[4] = {0, 0, 1, 0};
  glEnable(GL_LIGHTING);
  glEnable(GL_LIGHT0);
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, none);
  glLightfv(GL_LIGHT0, GL_AMBIENT, none);
  glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
  glLightfv(GL_LIGHT0, GL_SPECULAR, none);
  glLightfv(GL_LIGHT0, GL_POSITION, ahead);
}

struct At {
  float X, Y;
  TkPixel Colour;
};

// Pixels at points of the scene's plane.
void ExpectPixels(std::initializer_list<At> list) {
  for (const At &e : list)
    EXPECT_EQ(TkReadPixel(400 + static_cast<int>(e.X * 100), 300 - static_cast<int>(e.Y * 100)), e.Colour)
        << "at " << e.X << "," << e.Y;
}

int GetInt(GLenum what) {
  GLint i = 0;
  glGetIntegerv(what, &i);
  return i;
}

float GetFloat(GLenum what, int at = 0) {
  GLfloat f[4] = {0, 0, 0, 0};
  glGetFloatv(what, f);
  return f[at];
}

float GetMaterial(GLenum face, GLenum what, int at) {
  GLfloat f[4] = {0, 0, 0, 0};
  glGetMaterialfv(face, what, f);
  return f[at];
}

// Which of depth writes, alpha test, blending, 2D textures, sphere-mapped S
// and T, depth test and two-sided lighting are on.
std::vector<int> Switches() {
  return {GetInt(GL_DEPTH_WRITEMASK), glIsEnabled(GL_ALPHA_TEST), glIsEnabled(GL_BLEND), glIsEnabled(GL_TEXTURE_2D),
          glIsEnabled(GL_TEXTURE_GEN_S), glIsEnabled(GL_TEXTURE_GEN_T), glIsEnabled(GL_DEPTH_TEST),
          GetInt(GL_LIGHT_MODEL_TWO_SIDE)};
}

// A square bound to one joint that slides from x = -2 at frame 0 to x = +2
// at frame 29 (29/8 s at 8 fps).
MS3DWriter SlidingSquare(int32_t frames) {
  MS3DWriter w;
  AddSquare(w, 0, -1, 0);
  w.AnimationFps = 8;
  w.TotalFrames = frames;
  msJoint &j = w.Joints.emplace_back();
  std::strcpy(j.Name, "slide");
  j.PositionKeys = {{0.0f, {-2, 0, 0}}, {29.0f / 8, {2, 0, 0}}};
  return w;
}

}  // namespace

TEST(ModelRender, ListsPerFrameAndTheFrameClock) {
  ModelClass model;
  ASSERT_TRUE(model.Load(Save(SlidingSquare(30), "slide.ms3d").c_str())) << model.Error;
  // Two lists a frame; after loading, the joints hold frame 0.
  EXPECT_EQ(std::make_tuple(model.Animated, model.ListCount(), model.CurrentFrame, model.Model->CurrentTime),
            std::make_tuple(true, 60, 0.0f, 0.0f));
  EXPECT_TRUE(glIsList(model.ListBase + 59));

  BeginScene(false);
  model.Draw(0, 0, 0, 0, 0, 0);
  ExpectPixels({{-2, 0, kWhite}, {2, 0, kBlack}});
  // 29.9 draws list 59, which holds frame 29, as does list 58.
  model.CurrentFrame = 29.9f;
  BeginScene(false);
  model.Draw(0, 0, 0, 0, 0, 0);
  ExpectPixels({{2, 0, kWhite}, {-2, 0, kBlack}, {0, 0, kBlack}});
  BeginScene(false);
  glCallList(model.ListBase + 58);
  ExpectPixels({{2, 0, kWhite}});
  // Frame 14 of 29 eases to x = -0.103; the draw lifts it by 1.5.
  model.CurrentFrame = 14.5f;
  BeginScene(false);
  model.Draw(0, 1.5f, 0, 0, 0, 0);
  ExpectPixels({{-0.55f, 1.5f, kWhite}, {0.35f, 1.5f, kWhite}, {-0.7f, 1.5f, kBlack}, {0.45f, 1.5f, kBlack},
                {0, 0, kBlack}});

  // 500 ms at 8 fps is 4 frames; passing 30 drops back to 0.
  model.CurrentFrame = 2;
  model.LastClock = ModelClock() - 500;
  model.UpdateFrame();
  EXPECT_NEAR(model.CurrentFrame, 6.0f, 0.05f);
  model.CurrentFrame = 29;
  model.LastClock = ModelClock() - 2000;
  model.UpdateFrame();
  EXPECT_EQ(model.CurrentFrame, 0.0f);

  GLuint base = model.ListBase;
  model.Unload();
  EXPECT_EQ(std::make_tuple(model.Loaded, model.Model, glIsList(base), glIsList(base + 59)),
            std::make_tuple(false, nullptr, GLboolean(false), GLboolean(false)));

  // No frames: no lists, nothing drawn.
  ASSERT_TRUE(model.Load(Save(SlidingSquare(0), "still.ms3d").c_str()));
  EXPECT_EQ(model.ListCount(), 0);
  BeginScene(false);
  model.Draw(0, 0, 0, 0, 0, 0);
  ExpectPixels({{-2, 0, kBlack}});
  model.Unload();

  // Without joints: one list, and the clock doesn't move it. Ahead of the
  // square's two triangles: a triangle index past the end and a triangle
  // with a corner past the vertices; both are left out whole.
  MS3DWriter plain;
  AddSquare(plain, 0, -1, -1);
  msTriangle stray = plain.Triangles[0];
  stray.VertexIndices[1] = 900;
  plain.Triangles.push_back(stray);
  plain.Groups[0].TriangleIndices.insert(plain.Groups[0].TriangleIndices.begin(), {77, 2});
  ASSERT_TRUE(model.Load(Save(plain, "plain.ms3d").c_str()));
  EXPECT_EQ(std::make_pair(model.Animated, model.ListCount()), std::make_pair(false, 1));
  model.LastClock = ModelClock() - 5000;
  model.UpdateFrame();
  EXPECT_EQ(model.CurrentFrame, 0.0f);
  // Both halves of the square, turned a quarter about Z around (1, 0).
  BeginScene(false);
  model.Draw(1, 0, 0, 0, 0, 64);
  ExpectPixels({{1.3f, 0.3f, kWhite}, {0.7f, -0.3f, kWhite}, {0.4f, 0, kBlack}});
  model.Unload();

  EXPECT_FALSE(model.Load("/nonexistent/dir/x.ms3d"));
  EXPECT_EQ(model.Error, "Unable to load model from /nonexistent/dir/x.ms3d");
  EXPECT_EQ(std::make_pair(model.ModelAllocated, model.Loaded), std::make_pair(true, false));
  ASSERT_TRUE(model.Load(Save(plain, "plain.ms3d").c_str()));
  model.Unload();
}

// The lists of an animated model share what keeps its shape. Above, two
// still squares and between them one that the slide carries with half the
// weight, so it shrinks towards the origin; in the middle, one that the
// slide carries whole; below, one stretched between a still side and a
// sliding side, one that a second joint (bound a quarter turned) turns a
// quarter about its foot, and a still one.
TEST(ModelRender, SharedListsInEveryFrame) {
  MS3DWriter w = SlidingSquare(30);
  w.Groups.clear();
  w.Triangles.clear();
  w.Vertices.clear();
  const float quarter = 1.5707964f;
  msJoint &turn = w.Joints.emplace_back();
  std::strcpy(turn.Name, "turn");
  turn.Position[0] = -3, turn.Position[1] = -2.5f, turn.Rotation[2] = quarter;
  turn.RotationKeys = {{0.0f, {0, 0, 0}}, {29.0f / 8, {0, 0, quarter}}};
  // x, y, and the joints of the left and the right side of each square.
  const int8_t none = -1, slide = 0, turned = 1;
  const struct {
    float X, Y;
    int8_t Left, Right;
    uint8_t Weight;
  } squares[7] = {{-3, 2, none, none, 0}, {3, 2, none, none, 0}, {0, 2, slide, slide, 50}, {0, 0, slide, slide, 0},
                  {0, -2, none, slide, 0}, {-3, -2, turned, turned, 0}, {3, -2, none, none, 0}};
  for (const auto &q : squares) {
    AddSquare(w, q.X, -1, q.Left);
    // AddSquare's corners run lower left, lower right, upper right, upper left.
    for (int c = 0; c < 4; c++) {
      msVertex &v = w.Vertices[w.Vertices.size() - 4 + static_cast<size_t>(c)];
      v.Position[1] += q.Y;
      v.BoneWeights[0] = q.Weight;
      if (c == 1 || c == 2) v.BoneId = q.Right;
    }
  }
  ModelClass model;
  ASSERT_TRUE(model.Load(Save(w, "shared.ms3d").c_str())) << model.Error;
  EXPECT_EQ(model.ListCount(), 60);
  for (GLuint list : {0u, 1u, 58u, 59u}) {
    SCOPED_TRACE(list);
    BeginScene(false);
    glCallList(model.ListBase + list);
    const bool last = list >= 58;
    const float x = last ? 2.0f : -2.0f;
    ExpectPixels({{-3, 2, kWhite}, {3, 2, kWhite}, {3, -2, kWhite}, {x, 0, kWhite}, {-x, 0, kBlack},
                  {last ? 1.5f : -1.0f, -2, kWhite}, {last ? -1.0f : 1.5f, -2, kBlack},
                  {-3, -1.8f, last ? kBlack : kWhite}, {-3.6f, -2.4f, last ? kWhite : kBlack}, {x / 2, 1, kWhite},
                  {-x / 2, 1, kBlack}});
  }
  // Two runs of still squares and the two carried whole have shared lists,
  // which go with the others.
  GLuint base = model.ListBase;
  EXPECT_TRUE(glIsList(base + 60) && glIsList(base + 63));
  model.Unload();
  EXPECT_FALSE(glIsList(base + 60) || glIsList(base + 63));
}

TEST(ModelRender, MaterialStateLeftBehind) {
  MS3DWriter w;
  AddSquare(w, -2, 0, -1);
  AddSquare(w, 2, 1, -1);
  w.Materials.push_back(Material(1, 1, 1, 0.5f, ""));
  w.Materials.push_back(Material(1, 1, 1, 1.0f, ""));
  w.Materials[1].Mode = 0x80;
  w.Materials[1].Shininess = 7;
  w.Materials[1].Ambient[1] = 0.3f;
  w.TransparencyMode = 0;
  ModelClass model;
  ASSERT_TRUE(model.Load(Save(w, "state.ms3d").c_str()));

  glDepthMask(GL_TRUE);
  glEnable(GL_DEPTH_TEST);
  // Blended, mode 0: depth writes off and alpha test on; an opaque material
  // after it leaves both as they are. Texturing is on for every material,
  // bound to no texture where it has none.
  model.SetupMaterial(0);
  EXPECT_EQ(Switches(), (std::vector<int>{0, 1, 1, 1, 0, 0, 1, 1}));
  EXPECT_EQ(std::make_tuple(GetInt(GL_BLEND_SRC), GetInt(GL_ALPHA_TEST_FUNC), GetFloat(GL_CURRENT_COLOR, 3)),
            std::make_tuple(GL_SRC_ALPHA, GL_GREATER, 0.5f));
  model.SetupMaterial(1);
  EXPECT_EQ(Switches(), (std::vector<int>{0, 1, 0, 1, 1, 1, 1, 0}));
  GLint mode = 0;
  glGetTexGeniv(GL_T, GL_TEXTURE_GEN_MODE, &mode);
  EXPECT_EQ(std::make_tuple(mode, GetMaterial(GL_FRONT, GL_AMBIENT, 1), GetMaterial(GL_FRONT, GL_AMBIENT, 3),
                            GetMaterial(GL_BACK, GL_SHININESS, 0)),
            std::make_tuple(GL_SPHERE_MAP, 0.3f, 1.0f, 7.0f));

  // Mode 2 writes depth and tests alpha against AlphaRef; mode 1 does neither.
  model.Model->TransparencyMode = 2;
  model.Model->AlphaRef = 0.25f;
  model.SetupMaterial(0);
  EXPECT_EQ(std::make_tuple(GetInt(GL_DEPTH_WRITEMASK), GetFloat(GL_ALPHA_TEST_REF)), std::make_tuple(1, 0.25f));
  model.SetupMaterial(-1);
  glDepthMask(GL_FALSE);
  model.Model->TransparencyMode = 1;
  model.SetupMaterial(0);
  EXPECT_EQ(std::make_tuple(GetInt(GL_DEPTH_WRITEMASK), glIsEnabled(GL_ALPHA_TEST)), std::make_tuple(0, GLboolean(0)));

  // The compiled list ends in the default state; the two-sided lighting of
  // the last material stays.
  glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
  BeginScene(true);
  model.Draw(0, 0, 0, 0, 0, 0);
  EXPECT_EQ(Switches(), (std::vector<int>{1, 0, 0, 0, 0, 0, 1, 0}));
  EXPECT_EQ(std::make_tuple(GetInt(GL_TEXTURE_BINDING_2D), GetMaterial(GL_FRONT, GL_AMBIENT, 0),
                            GetMaterial(GL_BACK, GL_DIFFUSE, 0), GetMaterial(GL_BACK, GL_DIFFUSE, 3),
                            GetFloat(GL_CURRENT_COLOR, 3)),
            std::make_tuple(0, 0.2f, 0.8f, 1.0f, 1.0f));
  model.Unload();
}

TEST(ModelRender, LitTexturedPixels) {
  SaveTexture(TempDir() + "/red.tga", 200, 40, 40);
  SaveTexture(TempDir() + "/sub/blue.tga", 30, 60, 220);
  MS3DWriter w;
  AddSquare(w, -2, 0, -1);    // textured, found next to the model
  AddSquare(w, 0, 1, -1);     // texture in a subdirectory named with '\'
  AddSquare(w, 2, 2, -1);     // texture missing: lit colour only
  AddSquare(w, 3.5f, 9, -1);  // no such material: default grey
  w.Materials = {Material(1, 1, 1, 1, "red.tga"), Material(1, 1, 1, 1, "sub\\blue.tga"),
                 Material(0, 1, 0, 1, "missing.tga")};
  ModelClass model;
  ASSERT_TRUE(model.Load(Save(w, "lit.ms3d").c_str()));
  const std::vector<msMaterial> &m = model.Model->Materials;
  EXPECT_TRUE(m[0].TextureId != 0 && m[1].TextureId != 0);
  EXPECT_EQ(std::make_tuple(std::string(m[1].Texture), m[2].TextureId, std::string(m[2].Texture)),
            std::make_tuple("sub\\blue.tga", 0u, ""));
  // Centring: the squares span x from -2.5 to 4.0.
  EXPECT_EQ(model.CentreOffset[0], -0.75f);

  // The default material is diffuse 0.8 under a white light.
  BeginScene(true);
  model.Draw(0.75f, 0, 0, 0, 0, 0);
  ExpectPixels({{-2, 0, {200, 40, 40}}, {0, 0, {30, 60, 220}}, {2, 0, {0, 255, 0}}, {3.5f, 0, {204, 204, 204}},
                {-1, 0, kBlack}});
  // Turned a quarter about Y the squares face away from the light's plane.
  BeginScene(true);
  model.Draw(0.75f, 0, 0, 0, 64, 0);
  ExpectPixels({{-2, 0, kBlack}});

  GLuint texture = m[0].TextureId;
  EXPECT_TRUE(glIsTexture(texture));
  model.Unload();
  EXPECT_FALSE(glIsTexture(texture));
}
