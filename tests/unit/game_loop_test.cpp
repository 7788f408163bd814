// The arithmetic of the game loop: the multiplayer row and camera, the view
// keys' precedence, the idle motion, and the records after a reload.
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <utility>
#include <vector>
#include "app/game.h"
#include "app/scene.h"

namespace {

TEST(GameRow, PositionsAndCamera) {
  struct Row {
    std::vector<float> Xs;
    float EyeZ;
  } rows[] = {{{0}, -250}, {{85, -85}, -350}, {{595, 425, 255, 85, -85, -255, -425, -595}, -950}};
  for (const Row &row : rows) {
    int count = (int)row.Xs.size();
    std::vector<float> xs;
    for (int i = 0; i < count; i++) xs.push_back(RowPositionX(count, i));
    EXPECT_EQ(xs, row.Xs);
    CameraClass c;
    NetworkCamera(count, c);
    EXPECT_EQ(std::vector<float>(c.Eye, c.Eye + 3), (std::vector<float>{0, 50, row.EyeZ}));
    EXPECT_EQ(std::vector<float>(c.Target, c.Target + 3), (std::vector<float>{0, 50, 0}));
    EXPECT_EQ(std::vector<float>(c.Up, c.Up + 3), (std::vector<float>{0, 1, 0}));
  }
}

TEST(GameViewKeys, PrecedenceAndUnboundedAngles) {
  // The keys held (Left, Right, Up, Down, Z, X) and the angles after one frame.
  const std::pair<std::string, std::vector<float>> cases[] = {
      {"L", {0, 2, 0}},  {"R", {0, -2, 0}}, {"LR", {0, 2, 0}},  // Left beats Right
      {"U", {-2, 0, 0}}, {"D", {2, 0, 0}},  {"UD", {-2, 0, 0}},  // Up beats Down
      {"Z", {0, 0, 2}},  {"X", {0, 0, -2}}, {"ZX", {0, 0, 2}},  // Z beats X
      {"LRUDZX", {-2, 2, 2}}};
  for (const auto &c : cases) {
    float angles[3] = {0, 0, 0};
    ViewKeysClass keys;
    const std::string &held = c.first;
    keys.Left = held.find('L') != std::string::npos, keys.Right = held.find('R') != std::string::npos;
    keys.Up = held.find('U') != std::string::npos, keys.Down = held.find('D') != std::string::npos;
    keys.Z = held.find('Z') != std::string::npos, keys.X = held.find('X') != std::string::npos;
    ApplyViewKeys(angles, keys);
    EXPECT_EQ(std::vector<float>(angles, angles + 3), c.second) << held;
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
  CharacterEntry body;
  body.CameraPos[2] = -400;
  game.Players.resize(1);
  game.Players[0].Character = &body;
  game.SetLocalPlayer(0);
  game.CameraPosition[2] = -400;
  game.IdleCameraZTarget = 0;
  // Each step: the draws offered, how many were taken, then the yaw target,
  // yaw, camera Z target and camera Z after it.
  struct Step {
    std::vector<int> Draws;
    size_t Taken;
    float YawTarget, Yaw, ZTarget, Z;
  } steps[] = {
      // rand()%300 == 0, then 59 % 60 - 15 = 44; rand()%100 == 0, then 63 % 64 + (-400) - 32 = -369.
      {{300, 59, 200, 63}, 4, 44, 0.25f, -369, -399.95f},
      // Neither roll hits: two draws only, and both values walk on.
      {{1, 1}, 2, 44, 0.5f, -369, -399.90f},
      // The lowest targets: -15 degrees and 32 below the body's camera Z.
      {{0, 0, 0, 0}, 4, -15, 0.25f, -432, -399.95f},
  };
  for (const Step &s : steps) {
    Draws = s.Draws;
    DrawIndex = 0;
    IdleMotionStep(game, NextDraw);
    EXPECT_EQ(DrawIndex, s.Taken);
    EXPECT_EQ(std::make_tuple(game.IdleYawTarget, game.IdleYaw, game.IdleCameraZTarget),
              std::make_tuple(s.YawTarget, s.Yaw, s.ZTarget));
    EXPECT_FLOAT_EQ(game.CameraPosition[2], s.Z);
  }
  // At its target the yaw stays.
  game.IdleYaw = -15.0f;
  Draws = {1, 1};
  DrawIndex = 0;
  IdleMotionStep(game, NextDraw);
  EXPECT_EQ(game.IdleYaw, -15.0f);
}

TEST(GameReload, RecordsBeyondTheFreshCataloguesAreRepointed) {
  GameClass game;
  game.Characters.resize(2);
  game.Eyes.resize(3);
  game.Ears.resize(1);
  game.SetPlayerCount(3, false);
  game.SetLocalPlayer(0);
  PlayerClass &other = game.Players[1], &far = game.Players[2];
  other.CharacterNumber = 1;
  other.EyesNumber = 2;
  other.EarsNumber = 4;
  other.HatNumber = -1;
  other.EyesOriTarget[0] = 5;
  far.CharacterNumber = 6;
  game.LocalPlayer->CharacterNumber = 9;
  RepointAfterReload(game);
  EXPECT_EQ(std::make_tuple(other.Character, other.EyesNumber, other.EarsNumber, other.HatNumber),
            std::make_tuple(&game.Characters[1], 2, 0, -1));
  EXPECT_EQ(other.EyesOriTarget[0], 5.0f);
  EXPECT_EQ(std::make_tuple(far.CharacterNumber, far.Character), std::make_tuple(0, &game.Characters[0]));
  // The local record is left to SetCharacter.
  EXPECT_EQ(std::make_tuple(game.LocalPlayer->CharacterNumber, game.LocalPlayer->Character),
            std::make_tuple(9, (CharacterEntry *)nullptr));
}

}  // namespace
