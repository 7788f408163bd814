// DrawPlayer in a real window: the body and a hat at its anchor, the scale
// that moves everything, the hat's back faces, and the GL state left behind.
#include <gtest/gtest.h>
#include <allegro.h>
#include <GL/gl.h>
#include <stdlib.h>
#include <unistd.h>
#include <string>
#include "app/game.h"
#include "app/scene.h"
#include "character/drawplayer.h"
#include "support/gl_env.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

const TkPixel SKY = {161, 214, 255};

// A square of the given size in the XY plane, with its corner at the origin
// (the loader centres it). `sides` 1 makes it face away from a camera at
// negative Z, 2 makes it visible from both sides.
void WriteSquare(const std::string &path, float size, int sides) {
  MS3DWriter w;
  const float corners[4][2] = {{0, 0}, {size, 0}, {size, size}, {0, size}};
  w.Vertices.resize(4);
  for (int i = 0; i < 4; i++) {
    w.Vertices[i].Position[0] = corners[i][0];
    w.Vertices[i].Position[1] = corners[i][1];
  }
  const int order[4][3] = {{0, 1, 2}, {0, 2, 3}, {0, 2, 1}, {0, 3, 2}};
  for (int t = 0; t < 2 * sides; t++) {
    msTriangle tri;
    for (int k = 0; k < 3; k++) {
      tri.VertexIndices[k] = (uint16_t)order[t][k];
      tri.VertexNormals[k][2] = t < 2 ? 1.0f : -1.0f;
    }
    w.Triangles.push_back(tri);
  }
  w.Groups.resize(1);
  for (int t = 0; t < 2 * sides; t++) w.Groups[0].TriangleIndices.push_back((uint16_t)t);
  ASSERT_TRUE(w.Save(path.c_str()));
}

class DrawPlayerTest : public testing::Test {
protected:
  void SetUp() override {
    char base[] = "/tmp/tumblekin-draw-XXXXXX";
    ASSERT_NE(mkdtemp(base), nullptr);
    dir = base;
    WriteSquare(dir + "/body.ms3d", 40, 2);
    WriteSquare(dir + "/hat.ms3d", 10, 1);
    Game.Characters.assign(1, CharacterEntry());
    Game.Hats.assign(1, HatEntry());
    ASSERT_TRUE(Game.Characters[0].Model.Load((dir + "/body.ms3d").c_str()));
    ASSERT_TRUE(Game.Hats[0].Model.Load((dir + "/hat.ms3d").c_str()));
    Game.Characters[0].Hat[1] = 60;
    Game.Mode = GAME_MODE_SINGLE;
    player = PlayerClass();
    player.CharacterNumber = 0;
    player.Character = &Game.Characters[0];
    player.EyesNumber = player.EarsNumber = player.NoseNumber = player.MouthNumber = -1;
    player.EyebrowsNumber = player.MoustacheNumber = player.FeetNumber = -1;
    player.HatNumber = 0;
    glEnable(GL_CULL_FACE);
  }
  void TearDown() override {
    Game.Characters[0].Model.Unload();
    Game.Hats[0].Model.Unload();
    Game.Characters.clear();
    Game.Hats.clear();
    Game.Mode = GAME_MODE_NONE;
    std::string cmd = "rm -rf '" + dir + "'";
    ASSERT_EQ(system(cmd.c_str()), 0);
  }
  // One frame of the scene with the single-player camera at Z -500.
  void Draw() {
    glClearColor(161 / 255.0f, 214 / 255.0f, 1.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    CameraClass camera;
    camera.Eye[2] = -500;
    ApplyCamera(camera);
    SetupLights();
    glGetFloatv(GL_MODELVIEW_MATRIX, before);
    DrawPlayer(player, 0, 0, 0);
    DisableLights();
  }
  std::string dir;
  PlayerClass player;
  float before[16];
};

// At 500 units a 48-degree view shows 300 / (500 tan 24) = 1.348 pixels a unit.
TEST_F(DrawPlayerTest, HatSitsOnItsAnchorAndScaleMovesEverything) {
  Draw();
  EXPECT_FALSE(TkReadPixel(400, 300) == SKY);  // body, 40 units: y 273..327
  EXPECT_EQ(TkReadPixel(400, 250), SKY);  // between body and hat
  EXPECT_EQ(TkReadPixel(400, 219), SKY);  // the hat faces away and is culled
  EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
  EXPECT_FALSE(glIsEnabled(GL_NORMALIZE));
  float after[16];
  glGetFloatv(GL_MODELVIEW_MATRIX, after);
  for (int i = 0; i < 16; i++) EXPECT_EQ(after[i], before[i]);

  Game.Hats[0].BackFaces = true;  // the inside shows; culling comes back on
  Draw();
  EXPECT_FALSE(TkReadPixel(400, 219) == SKY);  // hat at 60 units up: y 212..226
  EXPECT_EQ(TkReadPixel(400, 205), SKY);
  EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));

  Game.Hats[0].Offset[1] = 20;  // the offset adds to the anchor: 80 units up
  Draw();
  EXPECT_EQ(TkReadPixel(400, 219), SKY);
  EXPECT_FALSE(TkReadPixel(400, 192) == SKY);

  player.HatNumber = -1;  // no hat: the body alone
  Draw();
  EXPECT_EQ(TkReadPixel(400, 192), SKY);
  EXPECT_FALSE(TkReadPixel(400, 300) == SKY);

  player.HatNumber = 0;
  Game.Hats[0].Offset[1] = 0;
  Game.Characters[0].Scale = 2.0f;  // body 80 units, hat anchor at 120
  Draw();
  EXPECT_FALSE(TkReadPixel(400, 250) == SKY);
  EXPECT_FALSE(TkReadPixel(400, 138) == SKY);
  EXPECT_EQ(TkReadPixel(400, 219), SKY);
  EXPECT_FALSE(glIsEnabled(GL_NORMALIZE));
  glGetFloatv(GL_MODELVIEW_MATRIX, after);
  for (int i = 0; i < 16; i++) EXPECT_EQ(after[i], before[i]);
}

TEST_F(DrawPlayerTest, NetworkRowStandsTheBodyOnItsPosition) {
  // In a network game the body's bottom stands on y: drawn at y = 0 its
  // centre is 20 units up, at screen y 300 - 27 = 273.
  Game.Mode = GAME_MODE_SERVER;
  player.HatNumber = -1;
  Draw();
  EXPECT_FALSE(TkReadPixel(400, 260) == SKY);
  EXPECT_EQ(TkReadPixel(400, 318), SKY);
  Game.Mode = GAME_MODE_SINGLE;
  Draw();
  EXPECT_FALSE(TkReadPixel(400, 318) == SKY);
}

}  // namespace
