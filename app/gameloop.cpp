// GameLoop: one game from its start in the menu to its end, in all three
// modes: network poll, scene, player list, toolbar, picker bar, view keys and
// idle motion, at the frame rate the library was started with.
#include <allegro.h>
#include <GL/gl.h>
#include <algorithm>
#include <cstdlib>
#include <iterator>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include "app/game.h"
#include "app/parts.h"
#include "app/scene.h"
#include "character/catalogue.h"
#include "character/drawplayer.h"
#include "net/client.h"
#include "net/send.h"
#include "net/server.h"
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/messagebox.h"

// ---- Pure steps -----------------------------------------------------------

void ApplyViewKeys(float (&viewAngles)[3], const ViewKeysClass &keys) {
  if (keys.Left)
    viewAngles[1] += 2;
  else if (keys.Right)
    viewAngles[1] -= 2;
  if (keys.Up)
    viewAngles[0] -= 2;
  else if (keys.Down)
    viewAngles[0] += 2;
  if (keys.Z)
    viewAngles[2] += 2;
  else if (keys.X)
    viewAngles[2] -= 2;
}

void IdleMotionStep(GameClass &game, int (*random)()) {
  if (random() % 300 == 0) game.IdleYawTarget = (float)(random() % 60 - 15);
  if (game.IdleYaw > game.IdleYawTarget)
    game.IdleYaw -= 0.25f;
  else if (game.IdleYaw < game.IdleYawTarget)
    game.IdleYaw += 0.25f;
  if (random() % 100 == 0)
    game.IdleCameraZTarget = (float)(random() % 64) + game.LocalPlayer->Character->CameraPos[2] - 32.0f;
  // Summed in 32-bit float: the Z may never meet its target exactly and then
  // jitters around it by one step.
  if (game.CameraPosition[2] > game.IdleCameraZTarget)
    game.CameraPosition[2] -= 0.05f;
  else if (game.CameraPosition[2] < game.IdleCameraZTarget)
    game.CameraPosition[2] += 0.05f;
}

// Catalogues that shrank take a part number beyond their end back to their
// first entry, which a successful load always has; "none" (-1) stays none.
static void ClampPart(int32_t &number, size_t size) {
  if (number >= (int32_t)size) number = 0;
}

void RepointAfterReload(GameClass &game) {
  for (PlayerClass &p : game.Players) {
    ClampPart(p.EyesNumber, game.Eyes.size());
    ClampPart(p.EarsNumber, game.Ears.size());
    ClampPart(p.NoseNumber, game.Noses.size());
    ClampPart(p.MouthNumber, game.Mouths.size());
    ClampPart(p.EyebrowsNumber, game.Eyebrows.size());
    ClampPart(p.MoustacheNumber, game.Moustaches.size());
    ClampPart(p.FeetNumber, game.Feet.size());
    ClampPart(p.HatNumber, game.Hats.size());
    if (&p == game.LocalPlayer) continue;  // SetCharacter does the local record
    // The other records of a client belong to their owners: their numbers
    // are kept (only drawn from body 0 when this catalogue lacks theirs), no
    // cue plays and their faces go on, since nothing about them changed.
    if ((size_t)p.CharacterNumber >= game.Characters.size()) p.CharacterNumber = 0;
    p.Character = &game.Characters[(size_t)p.CharacterNumber];
  }
}

// ---- Frame pieces ---------------------------------------------------------

// The toolbar of the game screen; a null caption is a separator, which takes
// an index like a button. Buttons 0 to 8 show the picker bar of that index.
struct ToolbarEntry {
  const char *Caption, *Icon;
  int HotKey;
};
const ToolbarEntry TOOLBAR[] = {
    {"Characters", "character", -1}, {"Eyes", "eyes", -1},         {"Ears", "ears", -1},
    {"Noses", "nose", -1},           {"Mouths", "mouth", -1},      {"Eyebrows", "eyebrows", -1},
    {"Moustaches", "moustache", -1}, {"Feet", "feet", -1},         {"Hats", "hat", -1},
    {nullptr, nullptr, -1},          {"Reload Data", "refresh", KEY_F5}, {nullptr, nullptr, -1},
    {"Exit", "exit", KEY_ESC},
};
enum { BUTTON_LAST_BAR = 8, BUTTON_RELOAD = 10, BUTTON_EXIT = 12 };

static void CreateToolbar(ToolbarClass &toolbar) {
  toolbar.Create(0, 0, false);
  for (const ToolbarEntry &e : TOOLBAR) {
    if (e.Caption)
      toolbar.AddButton(e.Caption, e.Icon, e.HotKey);
    else
      toolbar.AddSeparator();
  }
}

// The catalogues come back in pieces of other sizes than the ones they
// freed, and the C library keeps freed pages for itself, the more so since
// KeepFrameMemory; handing them back once the new catalogues stand, the old
// ones' and the load's scratch alike, keeps a game that reloads again and
// again at the memory of one load.
static void ReleaseFreedMemory() {
#ifdef __GLIBC__
  malloc_trim(0);
#endif
}

// Answers false when the game can't go on: the user has been told why.
static bool ReloadData(GameClass &game) {
  UnloadGame(game);
  const bool loaded = LoadGame(game);
  ReleaseFreedMemory();
  if (!loaded) {
    RVK_MessageBox("%s", game.LoadError.c_str());
    return false;
  }
  RepointAfterReload(game);
  SetCharacter(*game.LocalPlayer, game.LocalPlayer->CharacterNumber, false);
  game.ResetView();
  return true;
}

// The set-part operation of each picker bar, in the order of CurrentBar.
static void (*const BAR_OPERATIONS[])(PlayerClass &, int32_t, bool) = {
    SetCharacter, SetEyes, SetEars, SetNose, SetMouth, SetEyebrows, SetMoustache, SetFeet, SetHat,
};

static void PickRow(GameClass &game, int bar, int row) {
  // Row 0 of the part bars is "no part", so their row r is entry r - 1.
  BAR_OPERATIONS[bar](*game.LocalPlayer, bar == 0 ? row : row - 1, true);
  // The view resets on a change of body only.
  if (bar == 0) game.ResetView();
}

// Waits while the key is held: the whole loop stands still meanwhile.
static void WaitForRelease(int scancode) {
  for (;;) {
    if (keyboard_needs_poll()) poll_keyboard();
    if (!key[scancode] || RVK_CloseRequested()) return;
    rest(1);
  }
}

static void DrawScene(GameClass &game, CameraClass &camera) {
  int count = game.GetPlayerCount();
  if (game.Mode == GAME_MODE_SINGLE) {
    std::copy(std::begin(game.CameraPosition), std::end(game.CameraPosition), camera.Eye);
    const CharacterEntry &body = *game.LocalPlayer->Character;
    std::copy(std::begin(body.TargetPos), std::end(body.TargetPos), camera.Target);
  } else {
    NetworkCamera(count, camera);
  }
  ApplyCamera(camera);
  SetupLights();

  glPushMatrix();
  RotateScene(game.IdleYaw, game.ViewAngles);
  if (game.Mode == GAME_MODE_SINGLE) {
    DrawPlayer(*game.LocalPlayer, 0, 0, 0);
  } else {
    for (int i = 0; i < count; i++) DrawPlayer(game.Players[(size_t)i], RowPositionX(count, i), 0, 0);
  }
  glPopMatrix();
  DisableLights();
}

static void DrawPlayerList(GameClass &game) {
  int h = text_height(RVK_FontStandard);
  int white = makecol(255, 255, 255);
  for (size_t i = 0; i < game.Players.size(); i++) {
    const PlayerClass &p = game.Players[i];
    const char *body = p.Character ? p.Character->Name.c_str() : "";
    RVK_Printf(5, 48 + 2 * h + (int)i * h, white, "%d: %s - %s (ID %d)", (int)i + 1, p.PlayerName.c_str(), body,
               p.PlayerId);
  }
}

// ---- The loop -------------------------------------------------------------

void GameLoop(GameClass &game) {
  bool autoSpin = false;
  bool done = false;
  CameraClass camera;

  game.CurrentBar = 0;
  CreateToolbar(game.Toolbar);
  if (game.LocalPlayer) {
    SetCharacter(*game.LocalPlayer, 0, false);
    PlayerClass &p = *game.LocalPlayer;
    p.EyesNumber = p.EarsNumber = p.NoseNumber = p.MouthNumber = 0;
    p.EyebrowsNumber = p.MoustacheNumber = p.FeetNumber = p.HatNumber = 0;
  }
  game.ResetView();

  // A roster without its local record can't be played; the menu never hands
  // one over, and this keeps a faulty hand-over from reaching the frame.
  if (!game.LocalPlayer) done = true;

  while (!done && !RVK_CloseRequested()) {
    if (game.Mode == GAME_MODE_SERVER) {
      NET_ServerPoll();
    } else if (game.Mode == GAME_MODE_CLIENT) {
      if (!NET_ClientPoll()) {
        RVK_MessageBox("Server shutdown");
        done = true;
      }
    }
    // A poll may have moved the roster; the local record is always there.
    if (!game.LocalPlayer) break;

    RVK_SetClearColour(makecol(161, 214, 255));
    DrawScene(game, camera);
    RVK_Begin2D();

    if (game.Mode == GAME_MODE_SERVER || game.Mode == GAME_MODE_CLIENT) DrawPlayerList(game);

    int button = game.Toolbar.Run();
    if (button >= 0 && button <= BUTTON_LAST_BAR) {
      game.CurrentBar = button;
    } else if (button == BUTTON_RELOAD) {
      if (game.Mode == GAME_MODE_SERVER)
        RVK_Message("Cannot reload data while hosting a server");
      else if (!ReloadData(game))
        break;
    } else if (button == BUTTON_EXIT) {
      done = true;
    }

    int row = game.Bar(game.CurrentBar).Run();
    if (row >= 0) PickRow(game, game.CurrentBar, row);

    RVK_DrawConsole();
    RVK_WaitFrame();
    RVK_EndFrame();

    if (autoSpin)
      for (float &angle : game.ViewAngles) angle += 2;

    if (keyboard_needs_poll()) poll_keyboard();
    ViewKeysClass keys;
    keys.Left = key[KEY_LEFT];
    keys.Right = key[KEY_RIGHT];
    keys.Up = key[KEY_UP];
    keys.Down = key[KEY_DOWN];
    keys.Z = key[KEY_Z];
    keys.X = key[KEY_X];
    ApplyViewKeys(game.ViewAngles, keys);
    if (key[KEY_R]) {
      WaitForRelease(KEY_R);
      game.ResetView();
    }
    if (key[KEY_A]) {
      WaitForRelease(KEY_A);
      autoSpin = !autoSpin;
    }

    if (game.Mode == GAME_MODE_SINGLE) IdleMotionStep(game, rand);
  }

  if (game.Mode == GAME_MODE_SERVER)
    NP_SendPacket(NP_TO_ALL, NP_UPDATE_QUIT, "");
  else if (game.Mode == GAME_MODE_CLIENT)
    NP_SendPacket(NP_TO_SERVER, NP_REPORT_QUIT, "");
  game.Toolbar.Clear();
  game.Players.clear();
  game.LocalPlayer = nullptr;
  clear_keybuf();
  game.Mode = GAME_MODE_NONE;
  DisableLights();
}
