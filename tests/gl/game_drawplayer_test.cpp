// DrawPlayer in a real window: the body and a hat at its anchor, the scale
// that moves everything, the hat's back faces, and the GL state left behind.
#include <gtest/gtest.h>
#include <allegro.h>
#include <GL/gl.h>
#include <cstdio>
#include <string>
#include <vector>
#include "app/game.h"
#include "app/scene.h"
#include "character/drawplayer.h"
#include "support/gl_env.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

const TkPixel SKY = {161, 214, 255};

// Loads a square of the given size in the XY plane, with its corner at the
// origin (the loader centres it). `sides` 1 makes it face away from a camera
// at negative Z, 2 makes it visible from both sides.
void LoadSquare(ModelClass &model, float size, int sides) {
  MS3DWriter w;
  const float corners[4][2] = {{0, 0}, {size, 0}, {size, size}, {0, size}};
  w.Vertices.resize(4);
  for (int i = 0; i < 4; i++) {
    w.Vertices[i].Position[0] = corners[i][0];
    w.Vertices[i].Position[1] = corners[i][1];
  }
  const int order[4][3] = {{0, 1, 2}, {0, 2, 3}, {0, 2, 1}, {0, 3, 2}};
  w.Groups.resize(1);
  for (int t = 0; t < 2 * sides; t++) {
    msTriangle tri;
    for (int k = 0; k < 3; k++) {
      tri.VertexIndices[k] = (uint16_t)order[t][k];
      tri.VertexNormals[k][2] = t < 2 ? 1.0f : -1.0f;
    }
    w.Triangles.push_back(tri);
    w.Groups[0].TriangleIndices.push_back((uint16_t)t);
  }
  std::string path = std::string(testing::TempDir()) + "/tumblekin-square.ms3d";
  ASSERT_TRUE(w.Save(path.c_str()));
  ASSERT_TRUE(model.Load(path.c_str()));
  std::remove(path.c_str());
}

// One frame of the scene with the single-player camera at Z -500; gives the
// model-view matrix that DrawPlayer was handed.
std::vector<float> Draw(PlayerClass &player) {
  glClearColor(161 / 255.0f, 214 / 255.0f, 1.0f, 1.0f);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  CameraClass camera;
  camera.Eye[2] = -500;
  ApplyCamera(camera);
  SetupLights();
  float before[16];
  glGetFloatv(GL_MODELVIEW_MATRIX, before);
  DrawPlayer(player, 0, 0, 0);
  DisableLights();
  return std::vector<float>(before, before + 16);
}

// Sky ('.') or something drawn ('#') at x 400 on each of the rows `ys`.
std::string Column(const std::vector<int> &ys) {
  std::string column;
  for (int y : ys) column += TkReadPixel(400, y) == SKY ? '.' : '#';
  return column;
}

// At 500 units a 48-degree view shows 300 / (500 tan 24) = 1.348 pixels a unit.
TEST(DrawPlayerTest, HatAnchorScaleRowAndStateLeftBehind) {
  Game.Characters.assign(1, CharacterEntry());
  Game.Hats.assign(1, HatEntry());
  LoadSquare(Game.Characters[0].Model, 40, 2);
  LoadSquare(Game.Hats[0].Model, 10, 1);
  Game.Characters[0].Hat[1] = 60;
  PlayerClass player;
  player.Character = &Game.Characters[0];
  player.EyesNumber = player.EarsNumber = player.NoseNumber = player.MouthNumber = -1;
  player.EyebrowsNumber = player.MoustacheNumber = player.FeetNumber = -1;
  glEnable(GL_CULL_FACE);
  struct Step {
    int Mode;
    bool BackFaces;
    float OffsetY;
    int Hat;
    float Scale;
    std::vector<int> Ys;
    const char *Column;
  } steps[] = {
      // The body, 40 units: y 273..327; the hat faces away and is culled.
      {GAME_MODE_SINGLE, false, 0, 0, 1, {300, 250, 219}, "#.."},
      // The inside shows: the hat at 60 units up, y 212..226.
      {GAME_MODE_SINGLE, true, 0, 0, 1, {219, 205}, "#."},
      // The offset adds to the anchor: 80 units up.
      {GAME_MODE_SINGLE, true, 20, 0, 1, {219, 192, 300}, ".##"},
      // No hat: the body alone.
      {GAME_MODE_SINGLE, true, 20, -1, 1, {192, 300}, ".#"},
      // Scale 2: body 80 units, hat anchor at 120.
      {GAME_MODE_SINGLE, true, 0, 0, 2, {250, 138, 219}, "##."},
      // In a network game the body's bottom stands on y: drawn at y = 0 its
      // centre is 20 units up, at screen y 300 - 27 = 273.
      {GAME_MODE_SERVER, false, 0, -1, 1, {260, 318}, "#."},
      {GAME_MODE_SINGLE, false, 0, -1, 1, {318}, "#"},
  };
  for (const Step &s : steps) {
    Game.Mode = s.Mode;
    Game.Hats[0].BackFaces = s.BackFaces;
    Game.Hats[0].Offset[1] = s.OffsetY;
    player.HatNumber = s.Hat;
    Game.Characters[0].Scale = s.Scale;
    std::vector<float> before = Draw(player);
    EXPECT_EQ(Column(s.Ys), s.Column) << "step " << (&s - steps);
    // Culling back on, no normalising, the matrix as it was.
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_NORMALIZE));
    float after[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, after);
    EXPECT_EQ(std::vector<float>(after, after + 16), before);
  }
  // The body's frame picks its list by the model's own rule: frame 0.5 is
  // list 1, which a model without joints doesn't have.
  Game.Characters[0].Model.CurrentFrame = 0.5f;
  Draw(player);
  EXPECT_EQ(Column({300}), ".");
  Game.Characters[0].Model.Unload();
  Game.Hats[0].Model.Unload();
  Game.Characters.clear();
  Game.Hats.clear();
  Game.Mode = GAME_MODE_NONE;
}

}  // namespace
