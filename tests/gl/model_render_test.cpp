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

// A unit square facing +z about (x, y, 0), in a group of its own: the
// corners on the left bound to one joint, those on the right to another,
// first weight as given.
void AddSquare(MS3DWriter &w, float x, float y, int8_t material, int8_t left = -1, int8_t right = -1,
               uint8_t weight = 0) {
  const uint16_t v = uint16_t(w.Vertices.size()), t = uint16_t(w.Triangles.size());
  for (int c = 0; c < 4; c++)
    w.Vertices.push_back({0, {x + (c % 3 ? .5f : -.5f), y + (c > 1 ? .5f : -.5f), 0}, c % 3 ? right : left, 0, {}, {weight}});
  w.Groups.push_back({0, {}, {t, uint16_t(t + 1)}, material, {}});
  for (int s : {0, 1}) w.Triangles.push_back({0, {v, uint16_t(v + 1 + s), uint16_t(v + 2 + s)}, {{0, 0, 1}, {0, 0, 1}, {0, 0, 1}}});
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

  // A joint sliding from x = -2 at frame 0 to 2 at frame 29, one turning a
  // quarter about (-3, -2.5), bound a quarter turned. Above, two still
  // squares and one that the slide carries with half the weight, so it
  // shrinks towards the origin; in the middle, one that the slide carries
  // whole; below, one stretched between a still side and a sliding side,
  // one that the turn carries, a still one.
  MS3DWriter w;
  w.AnimationFps = 8;
  w.Joints.resize(2);
  w.Joints[0].PositionKeys = {{0, {-2, 0, 0}}, {29.0f / 8, {2, 0, 0}}};
  // Named apart: an empty parent name would find a joint named "".
  strcpy(w.Joints[0].Name, "slide");
  msJoint &turn = w.Joints[1];
  const float quarter = 1.5707964f;
  turn.Position[0] = -3, turn.Position[1] = -2.5f, turn.Rotation[2] = quarter;
  turn.RotationKeys = {{0, {0, 0, 0}}, {29.0f / 8, {0, 0, quarter}}};
  const struct {
    float X, Y;
    int8_t Left, Right;
    uint8_t Weight;
  } squares[] = {{-3, 2, -1, -1, 0}, {3, 2, -1, -1, 0}, {0, 2, 0, 0, 50}, {0, 0, 0, 0, 0},
                 {0, -2, -1, 0, 0},  {-3, -2, 1, 1, 0}, {3, -2, -1, -1, 0}};
  for (const auto &q : squares) AddSquare(w, q.X, q.Y, -1, q.Left, q.Right, q.Weight);
  ModelClass model;
  ASSERT_TRUE(Load(model, w));
  EXPECT_EQ(make_tuple(model.Animated, model.ListCount(), model.CurrentFrame, model.Model->CurrentTime),
            make_tuple(true, 60, 0.0f, 0.0f));
  // Both lists of a frame draw it; still groups and those carried whole are
  // drawn from four shared lists.
  for (float frame : {0.0f, 0.5f, 29.0f, 29.9f}) {
    model.CurrentFrame = frame;
    BeginScene(false);
    model.Draw(0, 0, 0, 0, 0, 0);
    const float x = frame > 1 ? 2 : -2;
    ExpectPixels({{-3, 2, kWhite}, {3, 2, kWhite}, {3, -2, kWhite}, {x, 0, kWhite}, {-x, 0, kBlack},
                  {x > 0 ? 1.5f : -1, -2, kWhite}, {x > 0 ? -1 : 1.5f, -2, kBlack}, {-3, -1.8f, x > 0 ? kBlack : kWhite},
                  {-3.6f, -2.4f, x > 0 ? kWhite : kBlack}, {x / 2, 1, kWhite}, {-x / 2, 1, kBlack}});
  }
  // 500 ms at 8 fps is 4 frames; passing 30 drops back to 0.
  for (auto [from, ms, to] : {make_tuple(2.0f, 500, 6.0f), make_tuple(29.0f, 2000, 0.0f)}) {
    model.CurrentFrame = from;
    model.LastClock = ModelClock() - ms;
    model.UpdateFrame();
    EXPECT_NEAR(model.CurrentFrame, to, 0.05f);
  }
  GLuint base = model.ListBase;
  EXPECT_TRUE(glIsList(base + 63));
  model.Unload();
  EXPECT_EQ(make_tuple(model.Loaded, model.Model, glIsList(base), glIsList(base + 63)),
            make_tuple(false, nullptr, GLboolean(0), GLboolean(0)));

  // No joints: one list, which the clock doesn't move. A triangle past the
  // end and one with a corner past the vertices are left out.
  MS3DWriter one;
  AddSquare(one, 0, 0, -1);
  one.Triangles[1].VertexIndices[1] = 900;
  one.Groups[0].TriangleIndices = {77, 1, 0};
  ASSERT_TRUE(Load(model, one));
  model.LastClock = ModelClock() - 1000;
  model.UpdateFrame();
  BeginScene(false);
  glDisable(GL_DEPTH_TEST);
  model.CallFrameList();
  EXPECT_EQ(make_tuple(model.Animated, model.ListCount(), model.CurrentFrame, glIsEnabled(GL_DEPTH_TEST)),
            make_tuple(false, 1, 0.0f, GLboolean(1)));
  ExpectPixels({{0.3f, -0.3f, kWhite}, {-0.3f, 0.3f, kBlack}});
  model.Unload();
}

TEST(ModelRender, TurnsLightAndMaterials) {
  // Red, blue, green (texture missing), grey (no material) squares; a
  // blended, sphere-mapped material.
  MS3DWriter w;
  AddSquare(w, 0, 0, 0), AddSquare(w, 2, 0, 1), AddSquare(w, 2, 2, 2), AddSquare(w, 4, 0, 9);
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

  // Centred, the squares stand at (-2, -1), (0, -1), (0, 1), (2, -1), drawn
  // one to the right. Turns about z come first, then x, then y. Lit grey:
  // 0.8 + 0.2 x 0.2.
  const tuple<float, float, float, Pixels> draws[] = {
      {0, 0, 0, {{-1, -1, kRed}, {1, -1, kBlue}, {1, 1, {0, 255, 0}}, {3, -1, {214, 214, 214}}, {-1, 1, kBlack}}},
      {128, 0, 64, {{2, 2, kRed}, {2, 0, kBlue}}},
      {0, 128, 64, {{0, -2, kRed}, {0, 0, kBlue}}},
  };
  for (auto [rx, ry, rz, pixels] : draws) {
    BeginScene(rx + ry + rz == 0);
    model.Draw(1, 0, 0, rx, ry, rz);
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
