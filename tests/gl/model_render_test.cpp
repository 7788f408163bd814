// ModelClass in a window.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <allegro.h>

#include <cmath>
#include <cstring>
#include <tuple>

#include "model/modelclass.h"
#include "support/gl_env.h"
#include "tools/ms3dwriter/ms3dwriter.h"

using namespace std;

namespace {

const TkPixel kBlack{0, 0, 0}, kWhite{255, 255, 255}, kRed{200, 40, 40}, kBlue{30, 60, 220};
const string kDir = "/tmp/model_render_" + to_string(getpid());

// A triangle facing +z about (x, y, 0), a unit wide and high.
void AddPatch(MS3DWriter &w, float x, float y, int8_t material) {
  const float corners[3][2] = {{-0.5f, -0.5f}, {0.5f, -0.5f}, {0, 0.5f}};
  w.Groups.push_back({0, {}, {uint16_t(w.Triangles.size())}, material, {}});
  msTriangle &t = w.Triangles.emplace_back();
  for (int c = 0; c < 3; c++) {
    t.VertexIndices[c] = uint16_t(w.Vertices.size());
    t.VertexNormals[c][2] = 1;
    w.Vertices.push_back({0, {x + corners[c][0], y + corners[c][1], 0}, 0});
  }
}

// A unit square facing +z, centred on (x, y, 0), in a group of its own.
void AddSquare(MS3DWriter &w, float x, float y, int8_t material) {
  uint16_t base = uint16_t(w.Vertices.size());
  const float corners[4][2] = {{-0.5f, -0.5f}, {0.5f, -0.5f}, {0.5f, 0.5f}, {-0.5f, 0.5f}};
  for (const auto &c : corners) w.Vertices.push_back({0, {x + c[0], y + c[1], 0}, 0});
  msGroup &g = w.Groups.emplace_back();
  g.MaterialIndex = material;
  const int halves[2][3] = {{0, 1, 2}, {0, 2, 3}};
  for (const auto &half : halves) {
    msTriangle tri;
    for (int c = 0; c < 3; c++) {
      tri.VertexIndices[c] = uint16_t(base + half[c]);
      tri.VertexNormals[c][2] = 1;
      tri.S[c] = corners[half[c]][0] + 0.5f, tri.T[c] = corners[half[c]][1] + 0.5f;
    }
    g.TriangleIndices.push_back(uint16_t(w.Triangles.size()));
    w.Triangles.push_back(tri);
  }
}

bool Load(ModelClass &model, const MS3DWriter &w) {
  return w.Save((kDir + "/m.ms3d").c_str()) && model.Load((kDir + "/m.ms3d").c_str());
}

// 8 x 6 units, 100 pixels each, on black; lit by GL's first light.
void BeginScene(bool lit) {
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(-4, 4, -3, 3, -10, 10);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  for (GLenum off : {GL_CULL_FACE, GL_BLEND, GL_LIGHTING}) glDisable(off);
  if (lit) glEnable(GL_LIGHTING), glEnable(GL_LIGHT0);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

using Pixels = vector<tuple<float, float, TkPixel>>;
void ExpectPixels(const Pixels &pixels) {
  for (auto [x, y, colour] : pixels) EXPECT_EQ(TkReadPixel(400 + int(x * 100), 300 - int(y * 100)), colour) << x << "," << y;
}

float Get(GLenum what) {
  float f[4];
  glGetFloatv(what, f);
  return f[what == GL_CURRENT_COLOR ? 3 : 0];
}

}  // namespace

TEST(ModelRender, FramesAndClock) {
  mkdir(kDir.c_str(), 0700);
  const tuple<float, int, int> rules[] = {{0, 60, 0},   {0.5f, 60, 1},    {29.9f, 60, 59},
                                               {30, 60, -1}, {-0.01f, 60, -1}, {NAN, 60, -1}, {0, 0, -1}};
  for (auto [frame, lists, list] : rules) EXPECT_EQ(FrameList(frame, lists), list) << frame;

  // A patch sliding from x = -2 at frame 0 to 2 at frame 29.
  MS3DWriter w;
  AddPatch(w, 0, 0, -1);
  w.AnimationFps = 8;
  w.Joints.emplace_back().PositionKeys = {{0, {-2, 0, 0}}, {29.0f / 8, {2, 0, 0}}};
  ModelClass model;
  ASSERT_TRUE(Load(model, w));
  EXPECT_EQ(make_tuple(model.Animated, model.ListCount(), model.CurrentFrame, model.Model->CurrentTime),
            make_tuple(true, 60, 0.0f, 0.0f));
  for (float frame : {0.0f, 29.9f}) {
    model.CurrentFrame = frame;
    BeginScene(false);
    model.Draw(0, 1, 0, 0, 0, 0);
    ExpectPixels({{frame ? 2.0f : -2.0f, 1, kWhite}, {frame ? -2.0f : 2.0f, 1, kBlack}});
  }
  // 500 ms at 8 fps is 4 frames; passing 30 drops back to 0.
  for (auto [from, ms, to] : {make_tuple(2.0f, 500, 6.0f), make_tuple(29.0f, 2000, 0.0f)}) {
    model.CurrentFrame = from;
    model.LastClock = ModelClock() - ms;
    model.UpdateFrame();
    EXPECT_NEAR(model.CurrentFrame, to, 0.05f);
  }
  GLuint base = model.ListBase;
  model.Unload();
  EXPECT_EQ(make_tuple(model.Loaded, model.Model, glIsList(base), glIsList(base + 59)),
            make_tuple(false, nullptr, GLboolean(0), GLboolean(0)));

  // No joints: one list, which the clock doesn't move. A triangle past the
  // end and one with a corner past the vertices are left out.
  w.Joints.clear();
  w.Triangles.push_back(w.Triangles[0]);
  w.Triangles[1].VertexIndices[1] = 900;
  w.Groups[0].TriangleIndices = {77, 1, 0};
  ASSERT_TRUE(Load(model, w));
  model.LastClock = ModelClock() - 1000;
  model.UpdateFrame();
  BeginScene(false);
  glDisable(GL_DEPTH_TEST);
  model.CallFrameList();
  EXPECT_EQ(make_tuple(model.Animated, model.ListCount(), model.CurrentFrame, glIsEnabled(GL_DEPTH_TEST)),
            make_tuple(false, 1, 0.0f, GLboolean(1)));
  ExpectPixels({{0, 0, kWhite}, {0.6f, 0, kBlack}});
  model.Unload();
}

// The lists of an animated model share what keeps its shape. Above, two
// still squares and between them one that the slide carries with half the
// weight, so it shrinks towards the origin; in the middle, one that the
// slide carries whole; below, one stretched between a still side and a
// sliding side, one that a second joint (bound a quarter turned) turns a
// quarter about its foot, and a still one. Both lists of a frame draw it.
TEST(ModelRender, SharedListsInEveryFrame) {
  MS3DWriter w;
  w.AnimationFps = 8;
  w.Joints.emplace_back().PositionKeys = {{0, {-2, 0, 0}}, {29.0f / 8, {2, 0, 0}}};
  const float quarter = 1.5707964f;
  // Named apart: an empty parent name would find a joint named "".
  strcpy(w.Joints[0].Name, "slide");
  msJoint &turn = w.Joints.emplace_back();
  strcpy(turn.Name, "turn");
  turn.Position[0] = -3, turn.Position[1] = -2.5f, turn.Rotation[2] = quarter;
  turn.RotationKeys = {{0, {0, 0, 0}}, {29.0f / 8, {0, 0, quarter}}};
  const int8_t none = -1, slide = 0, turned = 1;
  const struct {
    float X, Y;
    int8_t Left, Right;
    uint8_t Weight;
  } squares[] = {{-3, 2, none, none, 0}, {3, 2, none, none, 0},    {0, 2, slide, slide, 50},   {0, 0, slide, slide, 0},
                 {0, -2, none, slide, 0}, {-3, -2, turned, turned, 0}, {3, -2, none, none, 0}};
  for (const auto &q : squares) {
    AddSquare(w, q.X, q.Y, -1);
    // AddSquare's corners run lower left, lower right, upper right, upper left.
    for (int c = 0; c < 4; c++) {
      msVertex &v = w.Vertices[w.Vertices.size() - 4 + size_t(c)];
      v.BoneId = c == 1 || c == 2 ? q.Right : q.Left;
      v.BoneWeights[0] = q.Weight;
    }
  }
  ModelClass model;
  ASSERT_TRUE(Load(model, w)) << model.Error;
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

TEST(ModelRender, TurnsLightAndMaterials) {
  // Red, blue, green (texture missing), grey (no material) patches; a
  // blended, sphere-mapped material.
  MS3DWriter w;
  AddPatch(w, 0, 0, 0), AddPatch(w, 2, 0, 1), AddPatch(w, 2, 2, 2), AddPatch(w, 4, 0, 9);
  w.Materials.resize(4);
  const char *textures[] = {"red.tga", "sub\\blue.tga", "missing.tga", "sub\\blue.tga"};
  for (int i = 0; i < 4; i++) {
    strcpy(w.Materials[i].Texture, textures[i]);
    for (int c = 0; c < 3; c++) w.Materials[i].Diffuse[c] = i < 2 || c == 1;
  }
  msMaterial &blended = w.Materials[3];
  blended.Transparency = 0.5f, blended.Mode = MS_MODE_SPHERE_MAP, blended.Shininess = 7;
  blended.Ambient[1] = blended.Specular[0] = blended.Emissive[2] = 0.3f;
  mkdir((kDir + "/sub").c_str(), 0700);
  for (auto [file, colour] : {make_pair("/red.tga", kRed), make_pair("/sub/blue.tga", kBlue)}) {
    BITMAP *bmp = create_bitmap_ex(24, 4, 4);
    clear_to_color(bmp, makecol24(colour.R, colour.G, colour.B));
    save_bitmap((kDir + file).c_str(), bmp, nullptr);
    destroy_bitmap(bmp);
  }
  ModelClass model;
  ASSERT_TRUE(Load(model, w));
  EXPECT_EQ(make_tuple(model.BoundsMin[0], model.Size[1], model.HalfSize[0], model.CentreOffset[1]),
            make_tuple(-2.5f, 3.0f, 2.5f, -1.0f));
  const vector<msMaterial> &m = model.Model->Materials;
  EXPECT_EQ(make_tuple(!m[0].TextureId, !m[1].TextureId, string(m[1].Texture), string(m[2].Texture)),
            make_tuple(false, false, "sub\\blue.tga", ""));

  // Centred, the patches stand at (-2, -1), (0, -1), (0, 1), (2, -1). Turns
  // about z come first, then x, then y. Lit grey: 0.8 + 0.2 x 0.2.
  const tuple<float, float, float, Pixels> draws[] = {
      {0, 0, 0, {{-2, -1, kRed}, {0, -1, kBlue}, {0, 1, {0, 255, 0}}, {2, -1, {214, 214, 214}}, {-2, 1, kBlack}}},
      {128, 0, 64, {{1, 2, kRed}, {1, 0, kBlue}}},
      {0, 128, 64, {{-1, -2, kRed}, {-1, 0, kBlue}}},
  };
  for (auto [rx, ry, rz, pixels] : draws) {
    BeginScene(rx + ry + rz == 0);
    model.Draw(0, 0, 0, rx, ry, rz);
    ExpectPixels(pixels);
  }

  // Depth writes, alpha test and reference, blending, texturing, generated
  // s and t, sphere-mapped, two-sided light, colour alpha, alpha and blend
  // functions set; the texture, the colours. Some rows start opposite.
  const tuple<int, int, bool, vector<float>> states[] = {
      {-1, 0, true, {1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0}},  {3, 0, false, {0, 1, 0, 1, 1, 1, 1, 1, 1, 0.5f, 1}},
      {4, 0, false, {1, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1}},  {0, 0, true, {0, 0, 0, 0, 1, 0, 0, 1, 0, 1, 1}},
      {3, 2, true, {1, 1, 0.25f, 1, 1, 1, 1, 1, 1, 0.5f, 1}}, {3, 1, true, {0, 0, 0.25f, 1, 1, 1, 1, 1, 1, 0.5f, 1}},
  };
  model.Model->AlphaRef = 0.25f;
  for (auto [index, mode, opposite, want] : states) {
    if (opposite) {
      glDepthMask(GL_FALSE), glDisable(GL_ALPHA_TEST), glDisable(GL_TEXTURE_2D), glEnable(GL_BLEND);
      glEnable(GL_TEXTURE_GEN_S), glEnable(GL_TEXTURE_GEN_T), glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_FALSE);
    }
    model.Model->TransparencyMode = mode;
    model.SetupMaterial(index);
    vector<float> got;
    for (GLenum e : {GL_DEPTH_WRITEMASK, GL_ALPHA_TEST, GL_ALPHA_TEST_REF, GL_BLEND, GL_TEXTURE_2D, GL_TEXTURE_GEN_S,
                     GL_TEXTURE_GEN_T})
      got.push_back(Get(e));
    GLint genS, genT, func, src;
    glGetTexGeniv(GL_S, GL_TEXTURE_GEN_MODE, &genS), glGetTexGeniv(GL_T, GL_TEXTURE_GEN_MODE, &genT);
    glGetIntegerv(GL_ALPHA_TEST_FUNC, &func), glGetIntegerv(GL_BLEND_SRC, &src);
    got.insert(got.end(), {float(genS == GL_SPHERE_MAP && genT == GL_SPHERE_MAP), Get(GL_LIGHT_MODEL_TWO_SIDE),
                           Get(GL_CURRENT_COLOR), float(func == GL_GREATER && src == GL_SRC_ALPHA),
                           Get(GL_TEXTURE_BINDING_2D)});
    for (GLenum e : {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_EMISSION, GL_SHININESS}) {
      float f[4];
      glGetMaterialfv(GL_FRONT, e, f);
      got.insert(got.end(), f, f + (e == GL_SHININESS ? 1 : 4));
    }
    if (index < 0 || index > 3) {
      want.insert(want.end(), {0, 0.2f, 0.2f, 0.2f, 1, 0.8f, 0.8f, 0.8f, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0});
    } else {
      const msMaterial &mat = m[index];
      want.push_back(float(mat.TextureId));
      for (const float *v : {mat.Ambient, mat.Diffuse, mat.Specular, mat.Emissive}) want.insert(want.end(), v, v + 4);
      want.push_back(mat.Shininess);
    }
    EXPECT_EQ(got, want) << index << " " << mode;
  }
  GLuint texture = m[0].TextureId;
  model.Unload();
  EXPECT_FALSE(glIsTexture(texture));
  for (const char *f : {"/m.ms3d", "/red.tga", "/sub/blue.tga", "/sub", ""}) remove((kDir + f).c_str());
}
