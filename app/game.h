// GameClass, the one game object, and PlayerClass, one roster record.
#pragma once
#include <allegro.h>
#include <cstdint>
#include <string>
#include <vector>
#include "character/catalogue.h"
#include "rvk/pickerbar.h"
#include "rvk/texture.h"
#include "rvk/toolbar.h"

enum {
  GAME_MODE_NONE = 0,
  GAME_MODE_SINGLE = 1,
  GAME_MODE_SERVER = 2,
  GAME_MODE_CLIENT = 3,
};

const int MAX_PLAYERS = 8;

// The version text that the menus show and a client compares with its server's.
extern const char *const TUMBLEKIN_VERSION;

class PlayerClass {
public:
  int32_t CharacterNumber = 0;
  CharacterEntry *Character = nullptr;
  std::string PlayerName;
  int32_t PlayerId = 0;
  int32_t EyesNumber = 0, EarsNumber = 0, NoseNumber = 0, MouthNumber = 0;
  int32_t EyebrowsNumber = 0, MoustacheNumber = 0, FeetNumber = 0, HatNumber = 0;
  float EyesOri[3] = {0, 0, 0};
  float EyesOriTarget[3] = {0, 0, 0};
  float EyebrowsY = 0;
};

class GameClass {
public:
  std::string LoadError;
  ToolbarClass Toolbar;
  int32_t CurrentBar = 0;
  PickerBarClass CharacterBar, EyesBar, EarsBar, NoseBar, MouthBar, EyebrowsBar, MoustacheBar, FeetBar, HatBar;
  int32_t Mode = GAME_MODE_NONE;
  int32_t NextPlayerId = 0;
  int32_t LocalPlayerNumber = 0;
  std::vector<CharacterEntry> Characters;
  std::vector<PairPartEntry> Eyes, Ears;
  std::vector<SinglePartEntry> Noses, Mouths;
  std::vector<PairPartEntry> Eyebrows;
  std::vector<SinglePartEntry> Moustaches;
  std::vector<PairPartEntry> Feet;
  std::vector<HatEntry> Hats;
  SAMPLE *CharacterSample = nullptr, *EyesSample = nullptr, *EarsSample = nullptr, *NoseSample = nullptr,
         *MouthSample = nullptr, *EyebrowsSample = nullptr, *MoustacheSample = nullptr, *FeetSample = nullptr,
         *HatSample = nullptr;
  TextureClass MenuBackTexture;
  TextureClass NoneTexture;
  TextureClass ConnectingTexture;
  std::vector<PlayerClass> Players;
  PlayerClass *LocalPlayer = nullptr;
  float CameraPosition[3] = {0, 0, 0};
  float ViewAngles[3] = {0, 0, 0};
  float IdleYaw = 0;
  float IdleYawTarget = 0;
  float IdleCameraZTarget = 0;

  int GetPlayerCount() const;
  int GetPlayerNumber(int id);
  void SetPlayerCount(int count, bool repoint);
  void SetLocalPlayer(int number);
  void SetLocalPlayerName(const char *text);
  void DeletePlayer(int number);
  void ResetView();
  void DrawMenuBackground(bool overlay);
  // The picker bar at index 0..8 in the order of CurrentBar.
  PickerBarClass &Bar(int index);
};

extern GameClass Game;

void GameLoop(GameClass &game);
void ResetPlayer(PlayerClass &player);

// ---- Pure steps of the game loop, reachable without a window ----------------

// The view keys of one frame, in their order of precedence: Left beats Right,
// Up beats Down, Z beats X. Each held key moves its angle by 2.
class ViewKeysClass {
public:
  bool Left = false, Right = false, Up = false, Down = false, Z = false, X = false;
};
void ApplyViewKeys(float (&viewAngles)[3], const ViewKeysClass &keys);

// One frame of the single-player idle motion, drawing from `random` (rand in
// the game) in the fixed order of its steps.
void IdleMotionStep(GameClass &game, int (*random)());

// After a reload the records' numbers may lie beyond the fresh catalogues and
// their Character pointers into the old one: puts both right.
void RepointAfterReload(GameClass &game);
