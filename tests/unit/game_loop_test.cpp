// The arithmetic of the game loop: the multiplayer row and camera, the view
// keys' precedence, the idle motion, and the records after a reload.
#include <gtest/gtest.h>
#include <vector>
#include "app/game.h"
#include "app/scene.h"

namespace {

TEST(GameRow, PositionsAndCamera) {
  CameraClass camera;
  EXPECT_FLOAT_EQ(RowPositionX(1, 0), 0.0f);
  NetworkCamera(1, camera);
  EXPECT_FLOAT_EQ(camera.Eye[2], -250.0f);

  EXPECT_FLOAT_EQ(RowPositionX(2, 0), 85.0f);
  EXPECT_FLOAT_EQ(RowPositionX(2, 1), -85.0f);
  NetworkCamera(2, camera);
  EXPECT_FLOAT_EQ(camera.Eye[2], -350.0f);

  const float eight[8] = {595, 425, 255, 85, -85, -255, -425, -595};
  for (int i = 0; i < 8; i++) EXPECT_FLOAT_EQ(RowPositionX(8, i), eight[i]) << i;
  NetworkCamera(8, camera);
  EXPECT_FLOAT_EQ(camera.Eye[0], 0.0f);
  EXPECT_FLOAT_EQ(camera.Eye[1], 50.0f);
  EXPECT_FLOAT_EQ(camera.Eye[2], -950.0f);
  EXPECT_FLOAT_EQ(camera.Target[0], 0.0f);
  EXPECT_FLOAT_EQ(camera.Target[1], 50.0f);
  EXPECT_FLOAT_EQ(camera.Target[2], 0.0f);
  EXPECT_FLOAT_EQ(camera.Up[1], 1.0f);
}

TEST(GameViewKeys, PrecedenceAndUnboundedAngles) {
  struct Case {
    bool Left, Right, Up, Down, Z, X;
    float Expected[3];
  } cases[] = {
      {true, false, false, false, false, false, {0, 2, 0}},
      {false, true, false, false, false, false, {0, -2, 0}},
      {true, true, false, false, false, false, {0, 2, 0}},    // Left beats Right
      {false, false, true, false, false, false, {-2, 0, 0}},
      {false, false, false, true, false, false, {2, 0, 0}},
      {false, false, true, true, false, false, {-2, 0, 0}},   // Up beats Down
      {false, false, false, false, true, false, {0, 0, 2}},
      {false, false, false, false, false, true, {0, 0, -2}},
      {false, false, false, false, true, true, {0, 0, 2}},    // Z beats X
      {true, true, true, true, true, true, {-2, 2, 2}},
  };
  for (const Case &c : cases) {
    float angles[3] = {0, 0, 0};
    ViewKeysClass keys;
    keys.Left = c.Left, keys.Right = c.Right, keys.Up = c.Up, keys.Down = c.Down, keys.Z = c.Z, keys.X = c.X;
    ApplyViewKeys(angles, keys);
    for (int i = 0; i < 3; i++) EXPECT_EQ(angles[i], c.Expected[i]);
  }
  // No wrap at 256.
  float angles[3] = {0, 255, 0};
  ViewKeysClass left;
  left.Left = true;
  ApplyViewKeys(angles, left);
  ApplyViewKeys(angles, left);
  EXPECT_EQ(angles[1], 259.0f);
}

std::vector<int> Draws;
size_t DrawIndex = 0;
int NextDraw() { return DrawIndex < Draws.size() ? Draws[DrawIndex++] : 1; }

TEST(GameIdleMotion, StepsAndTargets) {
  GameClass game;
  PlayerClass player;
  CharacterEntry body;
  body.CameraPos[2] = -400;
  player.Character = &body;
  game.Players.push_back(player);
  game.SetLocalPlayer(0);
  game.CameraPosition[2] = -400;
  game.IdleCameraZTarget = 0;

  // rand()%300 == 0, then 59 % 60 - 15 = 44; rand()%100 == 0, then 63 % 64 + (-400) - 32 = -369.
  Draws = {300, 59, 200, 63};
  DrawIndex = 0;
  IdleMotionStep(game, NextDraw);
  EXPECT_EQ(DrawIndex, 4u);
  EXPECT_EQ(game.IdleYawTarget, 44.0f);
  EXPECT_EQ(game.IdleYaw, 0.25f);
  EXPECT_EQ(game.IdleCameraZTarget, -369.0f);
  EXPECT_FLOAT_EQ(game.CameraPosition[2], -399.95f);

  // Neither roll hits: two draws only, and both values walk on.
  Draws = {1, 1};
  DrawIndex = 0;
  IdleMotionStep(game, NextDraw);
  EXPECT_EQ(DrawIndex, 2u);
  EXPECT_EQ(game.IdleYaw, 0.5f);
  EXPECT_FLOAT_EQ(game.CameraPosition[2], -399.90f);

  // The lowest targets: -15 degrees and 32 below the body's camera Z.
  Draws = {0, 0, 0, 0};
  DrawIndex = 0;
  IdleMotionStep(game, NextDraw);
  EXPECT_EQ(game.IdleYawTarget, -15.0f);
  EXPECT_EQ(game.IdleYaw, 0.25f);
  EXPECT_EQ(game.IdleCameraZTarget, -432.0f);
  EXPECT_FLOAT_EQ(game.CameraPosition[2], -399.95f);

  // At its target the yaw stays.
  game.IdleYaw = -15.0f;
  Draws = {1, 1};
  DrawIndex = 0;
  IdleMotionStep(game, NextDraw);
  EXPECT_EQ(game.IdleYaw, -15.0f);
}

TEST(GameReload, RecordsBeyondTheFreshCataloguesAreRepointed) {
  GameClass game;
  game.Characters.assign(2, CharacterEntry());
  game.Eyes.assign(3, PairPartEntry());
  game.Ears.assign(1, PairPartEntry());
  game.Noses.assign(1, SinglePartEntry());
  game.Mouths.assign(1, SinglePartEntry());
  game.Eyebrows.assign(1, PairPartEntry());
  game.Moustaches.assign(1, SinglePartEntry());
  game.Feet.assign(1, PairPartEntry());
  game.Hats.assign(1, HatEntry());
  game.SetPlayerCount(3, false);
  game.SetLocalPlayer(0);
  PlayerClass &other = game.Players[1];
  other.CharacterNumber = 1;
  other.EyesNumber = 2;
  other.EarsNumber = 4;
  other.HatNumber = -1;
  other.EyesOriTarget[0] = 5;
  PlayerClass &far = game.Players[2];
  far.CharacterNumber = 6;
  game.LocalPlayer->CharacterNumber = 9;
  game.LocalPlayer->Character = nullptr;
  RepointAfterReload(game);
  EXPECT_EQ(other.Character, &game.Characters[1]);
  EXPECT_EQ(other.EyesNumber, 2);
  EXPECT_EQ(other.EarsNumber, 0);
  EXPECT_EQ(other.HatNumber, -1);
  EXPECT_EQ(other.EyesOriTarget[0], 5.0f);
  EXPECT_EQ(far.CharacterNumber, 0);
  EXPECT_EQ(far.Character, &game.Characters[0]);
  // The local record is left to SetCharacter.
  EXPECT_EQ(game.LocalPlayer->CharacterNumber, 9);
  EXPECT_EQ(game.LocalPlayer->Character, nullptr);
}

}  // namespace
