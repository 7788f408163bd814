// GameClass: the roster operations, the view reset and the front-end backdrop.
#include "app/game.h"
#include <algorithm>
#include <iterator>
#include "app/parts.h"
#include "rvk/console.h"
#include "rvk/draw.h"
#include "rvk/texture.h"

GameClass Game;

const char *const TUMBLEKIN_VERSION = "Tumblekin v1.0";

// ---- Roster ---------------------------------------------------------------

int GameClass::GetPlayerCount() const { return (int)Players.size(); }

int GameClass::GetPlayerNumber(int id) {
  for (size_t i = 0; i < Players.size(); i++)
    if (Players[i].PlayerId == id) return (int)i;
  RVK_Message("Warning GetPlayerNumber failed to resolve player ID %d", id);
  return -1;
}

// LocalPlayer is null rather than dangling while LocalPlayerNumber names no
// record (e.g. a roster emptied at the end of a game).
static PlayerClass *RecordAt(std::vector<PlayerClass> &players, int number) {
  if (number < 0 || number >= (int)players.size()) return nullptr;
  return &players[number];
}

void GameClass::SetPlayerCount(int count, bool repoint) {
  Players.resize((size_t)count);
  if (repoint) LocalPlayer = RecordAt(Players, LocalPlayerNumber);
}

void GameClass::SetLocalPlayer(int number) {
  LocalPlayerNumber = number;
  LocalPlayer = RecordAt(Players, number);
}

void GameClass::SetLocalPlayerName(const char *text) {
  if (Players.empty()) return;
  Players[0].PlayerName = text ? text : "";
}

void GameClass::DeletePlayer(int number) {
  if (number == LocalPlayerNumber) {
    RVK_Message("DeletePlayer: Not deleting local player %d", number);
    return;
  }
  // A number from the wire that names no record removes nothing.
  if (number < 0 || number >= (int)Players.size()) return;
  Players.erase(Players.begin() + number);
  if (number < LocalPlayerNumber) LocalPlayerNumber--;
  LocalPlayer = RecordAt(Players, LocalPlayerNumber);
}

// ---- View -----------------------------------------------------------------

void GameClass::ResetView() {
  IdleYaw = 0;
  IdleYawTarget = 0;
  // The camera's Z creeps towards 0 until the idle motion picks its first target.
  IdleCameraZTarget = 0;
  for (float &angle : ViewAngles) angle = 0;
  if (!LocalPlayer || !LocalPlayer->Character) return;
  const CharacterEntry &entry = *LocalPlayer->Character;
  std::copy(std::begin(entry.CameraPos), std::end(entry.CameraPos), CameraPosition);
  if (Mode == GAME_MODE_SERVER)
    Toolbar.SetTitle("%s (server mode)", entry.Name.c_str());
  else if (Mode == GAME_MODE_CLIENT)
    Toolbar.SetTitle("%s (connected to server)", entry.Name.c_str());
  else
    Toolbar.SetTitle("%s", entry.Name.c_str());
}

void GameClass::DrawMenuBackground(bool overlay) {
  RVK_DrawTextureScaled(MenuBackTexture, 0, 0, SCREEN_W, SCREEN_H, 0, false, 255);
  if (overlay) RVK_DrawRect(0, 0, SCREEN_W - 1, SCREEN_H - 1, makecol(0, 0, 240), true, 128);
}

PickerBarClass &GameClass::Bar(int index) {
  switch (index) {
    case 1: return EyesBar;
    case 2: return EarsBar;
    case 3: return NoseBar;
    case 4: return MouthBar;
    case 5: return EyebrowsBar;
    case 6: return MoustacheBar;
    case 7: return FeetBar;
    case 8: return HatBar;
    default: return CharacterBar;
  }
}

void ResetPlayer(PlayerClass &player) {
  SetCharacter(player, 0, false);
  player.EyesNumber = player.EarsNumber = player.NoseNumber = player.MouthNumber = 0;
  player.EyebrowsNumber = player.MoustacheNumber = player.FeetNumber = player.HatNumber = 0;
}
