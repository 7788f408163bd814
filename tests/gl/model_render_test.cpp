// ModelClass in a real GL context: the display list of each frame, the frame
// clock, placing and turning, the material state, and lit textured pixels.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <allegro.h>

#include <cmath>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "model/modelclass.h"
#include "support/gl_env.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

const TkPixel kBlack{0, 0, 0}, kWhite{255, 255, 255}, kRed{200, 40, 40}, kBlue{30, 60, 220};
const std::string kDir = [] {
  std::string dir = "/tmp/model_render_" + std::to_string(getpid());
  mkdir(dir.c_str(), 0700);
  mkdir((dir + "/sub").c_str(), 0700);
  return dir;
}();

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
  const std::string path = kDir + "/m.ms3d";
  return w.Save(path.c_str()) && model.Load(path.c_str());
}

// An orthographic view of 8 x 6 units, 100 pixels to the unit, origin at the
// centre, on black; lit, a white light from the viewer and no ambient light,
// so a surface facing it shows its diffuse colour times its texture.
void BeginScene(bool lit) {
  glViewport(0, 0, TK_SCREEN_W, TK_SCREEN_H);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(-4, 4, -3, 3, -10, 10);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  for (GLenum off : {GL_CULL_FACE, GL_BLEND, GL_COLOR_MATERIAL}) glDisable(off);
  glDepthMask(GL_TRUE);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
  const float none[4] = {0, 0, 0, 1}, white[4] = {1, 1, 1, 1}, ahead[4] = {0, 0, 1, 0};
  lit ? glEnable(GL_LIGHTING) : glDisable(GL_LIGHTING);
  glEnable(GL_LIGHT0);
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, none);
  glLightfv(GL_LIGHT0, GL_AMBIENT, none);
  glLightfv(GL_LIGHT0, GL_SPECULAR, none);
  glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
  glLightfv(GL_LIGHT0, GL_POSITION, ahead);
}

struct At {
  float X, Y;
  TkPixel Colour;
};

void ExpectPixels(const std::vector<At> &list, const std::string &what) {
  for (const At &e : list)
    EXPECT_EQ(TkReadPixel(400 + int(e.X * 100), 300 - int(e.Y * 100)), e.Colour) << what << " at " << e.X << "," << e.Y;
}

// A square bound to one joint that slides from x = -2 at frame 0 to x = 2 at
// frame 29, 29/8 s at 8 fps.
MS3DWriter SlidingSquare(int32_t frames) {
  MS3DWriter w;
  AddSquare(w, 0, 0, -1);
  w.AnimationFps = 8, w.TotalFrames = frames;
  w.Joints.emplace_back().PositionKeys = {{0, {-2, 0, 0}}, {29.0f / 8, {2, 0, 0}}};
  return w;
}

// Red and blue textured squares, a green one whose texture is missing, a
// grey one with no such material; and a blended, sphere-mapped material.
MS3DWriter Squares() {
  MS3DWriter w;
  AddSquare(w, 0, 0, 0), AddSquare(w, 2, 0, 1), AddSquare(w, 2, 2, 2), AddSquare(w, 4, 0, 9);
  const char *textures[] = {"red.tga", "sub\\blue.tga", "missing.tga", "sub\\blue.tga"};
  w.Materials.resize(4);
  for (int i = 0; i < 4; i++) {
    msMaterial &m = w.Materials[i];
    std::strcpy(m.Texture, textures[i]);
    for (int c = 0; c < 3; c++) {
      m.Diffuse[c] = i == 2 ? c == 1 : i < 2 ? 1 : 0.2f + 0.1f * c;
      m.Ambient[c] = i == 3 ? 0.1f * c : 0, m.Specular[c] = i == 3 ? 0.3f : 0, m.Emissive[c] = i == 3 ? 0.05f : 0;
    }
    m.Transparency = i == 3 ? 0.5f : 1;
  }
  w.Materials[3].Mode = MS_MODE_SPHERE_MAP, w.Materials[3].Shininess = 7;
  return w;
}

void SaveTexture(const std::string &path, TkPixel p) {
  BITMAP *bmp = create_bitmap_ex(24, 4, 4);
  clear_to_color(bmp, makecol24(p.R, p.G, p.B));
  ASSERT_EQ(save_bitmap(path.c_str(), bmp, nullptr), 0);
  destroy_bitmap(bmp);
}

std::vector<float> Get(GLenum what, int n = 1) {
  float f[4];
  glGetFloatv(what, f);
  return std::vector<float>(f, f + n);
}

}  // namespace

TEST(ModelRender, EachFrameHasItsListAndTheClockStepsThem) {
  const std::tuple<float, int, int> rules[] = {{0, 60, 0},       {0.49f, 60, 0},   {0.5f, 60, 1},       {29.9f, 60, 59},
                                               {30, 60, -1},     {-0.01f, 60, -1}, {NAN, 60, -1},       {0, 0, -1}};
  for (const auto &r : rules) EXPECT_EQ(FrameList(std::get<0>(r), std::get<1>(r)), std::get<2>(r)) << std::get<0>(r);

  ModelClass model;
  ASSERT_TRUE(Load(model, SlidingSquare(30))) << model.Error;
  EXPECT_EQ(std::make_tuple(model.Animated, model.ListCount(), model.CurrentFrame, model.Model->CurrentTime),
            std::make_tuple(true, 60, 0.0f, 0.0f));
  // Lists 58 and 59 both hold frame 29.
  const std::tuple<float, float, std::vector<At>> frames[] = {
      {0, 0, {{-2, 0, kWhite}, {2, 0, kBlack}}},
      {29.9f, 0, {{2, 0, kWhite}, {-2, 0, kBlack}}},
      // Frame 14 of 29 eases to x = -0.103; the draw lifts it by 1.5.
      {14.5f, 1.5f, {{-0.55f, 1.5f, kWhite}, {0.35f, 1.5f, kWhite}, {-0.7f, 1.5f, kBlack}, {0.45f, 1.5f, kBlack}}},
  };
  for (const auto &f : frames) {
    model.CurrentFrame = std::get<0>(f);
    BeginScene(false);
    model.Draw(0, std::get<1>(f), 0, 0, 0, 0);
    ExpectPixels(std::get<2>(f), "frame");
  }
  // 500 ms at 8 fps is 4 frames; passing 30 drops back to 0.
  const std::tuple<float, int, float> steps[] = {{2, 500, 6}, {29, 2000, 0}};
  for (const auto &s : steps) {
    model.CurrentFrame = std::get<0>(s);
    model.LastClock = ModelClock() - std::get<1>(s);
    model.UpdateFrame();
    EXPECT_NEAR(model.CurrentFrame, std::get<2>(s), 0.05f);
  }
  GLuint base = model.ListBase;
  model.Unload();
  EXPECT_EQ(std::make_tuple(model.Loaded, model.Model, glIsList(base), glIsList(base + 59)),
            std::make_tuple(false, nullptr, GLboolean(0), GLboolean(0)));

  // No frames, no lists: nothing drawn, though depth testing is switched on.
  ASSERT_TRUE(Load(model, SlidingSquare(0)));
  EXPECT_EQ(model.ListCount(), 0);
  BeginScene(false);
  glDisable(GL_DEPTH_TEST);
  model.Draw(0, 0, 0, 0, 0, 0);
  ExpectPixels({{-2, 0, kBlack}}, "no frames");
  EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));

  // Without joints one list, which the clock doesn't move. Before the
  // square's triangles stand one past the end and one with a corner past the
  // vertices; both are left out whole.
  MS3DWriter still = SlidingSquare(30);
  still.Joints.clear();
  still.Triangles.push_back(still.Triangles[0]);
  still.Triangles[2].VertexIndices[1] = 900;
  still.Groups[0].TriangleIndices.insert(still.Groups[0].TriangleIndices.begin(), {77, 2});
  ASSERT_TRUE(Load(model, still));
  model.LastClock = ModelClock() - 5000;
  model.UpdateFrame();
  EXPECT_EQ(std::make_tuple(model.Animated, model.ListCount(), model.CurrentFrame), std::make_tuple(false, 1, 0.0f));
  BeginScene(false);
  glDisable(GL_DEPTH_TEST);
  model.CallFrameList();
  EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
  ExpectPixels({{0.3f, -0.3f, kWhite}, {-0.3f, 0.3f, kWhite}, {0.6f, 0, kBlack}}, "still");
  model.Unload();

  EXPECT_FALSE(model.Load("/nonexistent/x.ms3d"));
  EXPECT_EQ(std::make_tuple(model.Error, model.ModelAllocated, model.Loaded),
            std::make_tuple("Unable to load model from /nonexistent/x.ms3d", true, false));
}

// The lists of an animated model share what keeps its shape. Above, two
// still squares and between them one that the slide carries with half the
// weight, so it shrinks towards the origin; in the middle, one that the
// slide carries whole; below, one stretched between a still side and a
// sliding side, one that a second joint (bound a quarter turned) turns a
// quarter about its foot, and a still one. Both lists of a frame draw it.
TEST(ModelRender, SharedListsInEveryFrame) {
  MS3DWriter w = SlidingSquare(30);
  w.Groups.clear(), w.Triangles.clear(), w.Vertices.clear();
  const float quarter = 1.5707964f;
  // Named apart: an empty parent name would find a joint named "".
  std::strcpy(w.Joints[0].Name, "slide");
  msJoint &turn = w.Joints.emplace_back();
  std::strcpy(turn.Name, "turn");
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
    BeginScene(false);
    glCallList(model.ListBase + list);
    const bool last = list >= 58;
    const float x = last ? 2.0f : -2.0f;
    ExpectPixels({{-3, 2, kWhite}, {3, 2, kWhite}, {3, -2, kWhite}, {x, 0, kWhite}, {-x, 0, kBlack},
                  {last ? 1.5f : -1.0f, -2, kWhite}, {last ? -1.0f : 1.5f, -2, kBlack},
                  {-3, -1.8f, last ? kBlack : kWhite}, {-3.6f, -2.4f, last ? kWhite : kBlack}, {x / 2, 1, kWhite},
                  {-x / 2, 1, kBlack}},
                 "list " + std::to_string(list));
  }
  // Two runs of still squares and the two carried whole have shared lists,
  // which go with the others.
  GLuint base = model.ListBase;
  EXPECT_TRUE(glIsList(base + 60) && glIsList(base + 63));
  model.Unload();
  EXPECT_FALSE(glIsList(base + 60) || glIsList(base + 63));
}

TEST(ModelRender, PlacedTurnedLitAndTextured) {
  SaveTexture(kDir + "/red.tga", kRed);
  SaveTexture(kDir + "/sub/blue.tga", kBlue);
  ModelClass model;
  ASSERT_TRUE(Load(model, Squares()));
  std::vector<float> box;
  for (const float *v : {model.BoundsMin, model.BoundsMax, model.Size, model.HalfSize, model.CentreOffset})
    box.insert(box.end(), v, v + 3);
  EXPECT_EQ(box, (std::vector<float>{-2.5f, -1.5f, 0, 2.5f, 1.5f, 0, 5, 3, 0, 2.5f, 1.5f, 0, -2, -1, 0}));
  const std::vector<msMaterial> &m = model.Model->Materials;
  EXPECT_TRUE(m[0].TextureId && m[1].TextureId && m[3].TextureId);
  EXPECT_EQ(std::make_tuple(std::string(m[1].Texture), std::string(m[2].Texture), m[2].TextureId),
            std::make_tuple("sub\\blue.tga", "", 0u));

  // Centred, the squares stand at (-2, -1), (0, -1), (0, 1) and (2, -1). A
  // turn about y comes first, then x, then z.
  const struct {
    bool Lit;
    float X, Y, Rx, Ry, Rz;
    std::vector<At> Pixels;
  } draws[] = {
      {true, 0, 0, 0, 0, 0, {{-2, -1, kRed}, {0, -1, kBlue}, {0, 1, {0, 255, 0}}, {2, -1, {204, 204, 204}}, {-2, 1, kBlack}}},
      {false, 1, 0.5f, 0, 0, 0, {{-1, -0.5f, kRed}, {1, -0.5f, kBlue}}},
      {false, 0, 0, 0, 0, 64, {{1, -2, kRed}, {1, 0, kBlue}}},
      {false, 0, 0, 128, 0, 0, {{-2, 1, kRed}, {0, 1, kBlue}}},
      {false, 0, 0, 0, 128, 0, {{2, -1, kRed}, {0, -1, kBlue}}},
      {false, 0, 0, 0, 128, 64, {{-1, -2, kRed}, {-1, 0, kBlue}}},
  };
  for (const auto &d : draws) {
    BeginScene(d.Lit);
    model.Draw(d.X, d.Y, 0, d.Rx, d.Ry, d.Rz);
    ExpectPixels(d.Pixels, "draw");
  }

  // The state each material leaves. Some rows start from the opposite of
  // what they set: depth writes, alpha test, texturing and two-sided light
  // off, blending and texture generation on.
  const struct {
    int Index, Mode;
    bool Opposite;
    std::vector<float> Switches;
    int Material;
  } states[] = {
      {-1, 0, true, {1, 0, 0, 0, 0, 0, 0, 0, 0, 1}, -1},
      {3, 0, false, {0, 1, 0, 1, 1, 1, 1, 1, 1, 0.5f}, 3},
      {4, 0, false, {1, 0, 0, 0, 0, 0, 0, 1, 1, 1}, -1},
      {0, 0, true, {0, 0, 0, 0, 1, 0, 0, 1, 0, 1}, 0},
      {3, 2, true, {1, 1, 0.25f, 1, 1, 1, 1, 1, 1, 0.5f}, 3},
      {3, 1, true, {0, 0, 0.25f, 1, 1, 1, 1, 1, 1, 0.5f}, 3},
  };
  model.Model->AlphaRef = 0.25f;
  for (const auto &s : states) {
    if (s.Opposite) {
      glDepthMask(GL_FALSE), glDisable(GL_ALPHA_TEST), glDisable(GL_TEXTURE_2D), glEnable(GL_BLEND);
      glEnable(GL_TEXTURE_GEN_S), glEnable(GL_TEXTURE_GEN_T);
      glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_FALSE);
    }
    model.Model->TransparencyMode = s.Mode;
    model.SetupMaterial(s.Index);
    GLint genS, genT, func, src;
    glGetTexGeniv(GL_S, GL_TEXTURE_GEN_MODE, &genS), glGetTexGeniv(GL_T, GL_TEXTURE_GEN_MODE, &genT);
    glGetIntegerv(GL_ALPHA_TEST_FUNC, &func), glGetIntegerv(GL_BLEND_SRC, &src);
    std::vector<float> got = {Get(GL_DEPTH_WRITEMASK)[0], Get(GL_ALPHA_TEST)[0], Get(GL_ALPHA_TEST_REF)[0],
                              Get(GL_BLEND)[0], Get(GL_TEXTURE_2D)[0], Get(GL_TEXTURE_GEN_S)[0],
                              Get(GL_TEXTURE_GEN_T)[0], float(genS == GL_SPHERE_MAP && genT == GL_SPHERE_MAP),
                              Get(GL_LIGHT_MODEL_TWO_SIDE)[0],
                              Get(GL_CURRENT_COLOR, 4)[3]};
    EXPECT_EQ(got, s.Switches) << s.Index << " " << s.Mode;
    const msMaterial def = [] {
      msMaterial d;
      for (int c = 0; c < 3; c++) d.Ambient[c] = 0.2f, d.Diffuse[c] = 0.8f;
      d.Ambient[3] = d.Diffuse[3] = d.Specular[3] = d.Emissive[3] = 1;
      return d;
    }();
    const msMaterial &want = s.Material < 0 ? def : m[s.Material];
    std::vector<float> colours, wanted;
    for (GLenum what : {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_EMISSION, GL_SHININESS}) {
      float f[4];
      glGetMaterialfv(GL_FRONT, what, f);
      colours.insert(colours.end(), f, f + (what == GL_SHININESS ? 1 : 4));
    }
    for (const float *v : {want.Ambient, want.Diffuse, want.Specular, want.Emissive}) wanted.insert(wanted.end(), v, v + 4);
    wanted.push_back(want.Shininess);
    EXPECT_EQ(colours, wanted) << s.Index;
    GLint bound;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(GLuint(bound), s.Material < 0 ? 0 : want.TextureId);
    if (s.Index == 3) {
      EXPECT_EQ(std::make_pair(func, src), std::make_pair(GL_GREATER, GL_SRC_ALPHA));
    }
  }
  GLuint texture = m[0].TextureId;
  model.Unload();
  EXPECT_FALSE(glIsTexture(texture));
  for (const char *f : {"/m.ms3d", "/red.tga", "/sub/blue.tga", "/sub", ""}) std::remove((kDir + f).c_str());
}
