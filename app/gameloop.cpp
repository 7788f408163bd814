// GameLoop: one game from its start in the menu to its end, in all three
// modes: network poll, scene, player list, toolbar, picker bar, view keys and
// idle motion, at the frame rate the library was started with.
#include <allegro.h>
#include <GL/gl.h>
#include <cstdlib>
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

void ApplyViewKeys(float viewAngles[3], const ViewKeysClass &keys) {
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
  if (random() % 100 == 0) {
    float bodyZ = (game.LocalPlayer && game.LocalPlayer->Character) ? game.LocalPlayer->Character->CameraPos[2] : 0;
    game.IdleCameraZTarget = (float)(random() % 64) + bodyZ - 32.0f;
  }
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
  if (number >= 0 && (size_t)number >= size) number = 0;
}

void RepointAfterReload(GameClass &game) {
  for (size_t i = 0; i < game.Players.size(); i++) {
    PlayerClass &p = game.Players[i];
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
    if (p.CharacterNumber < 0 || (size_t)p.CharacterNumber >= game.Characters.size()) p.CharacterNumber = 0;
    p.Character = game.Characters.empty() ? nullptr : &game.Characters[(size_t)p.CharacterNumber];
  }
}

// ---- Frame pieces ---------------------------------------------------------

enum { BUTTON_RELOAD = 10, BUTTON_EXIT = 12 };

static void CreateToolbar(ToolbarClass &toolbar) {
  toolbar.Create(0, 0, false);
  toolbar.AddButton("Characters", "character", -1);
  toolbar.AddButton("Eyes", "eyes", -1);
  toolbar.AddButton("Ears", "ears", -1);
  toolbar.AddButton("Noses", "nose", -1);
  toolbar.AddButton("Mouths", "mouth", -1);
  toolbar.AddButton("Eyebrows", "eyebrows", -1);
  toolbar.AddButton("Moustaches", "moustache", -1);
  toolbar.AddButton("Feet", "feet", -1);
  toolbar.AddButton("Hats", "hat", -1);
  toolbar.AddSeparator();
  toolbar.AddButton("Reload Data", "refresh", KEY_F5);
  toolbar.AddSeparator();
  toolbar.AddButton("Exit", "exit", KEY_ESC);
}

// Answers false when the game can't go on. A reload that fails has left the
// catalogues empty (LoadGame releases all on a failure), and with no body
// nothing can be drawn or picked: the user is told why and the game ends.
static bool ReloadData(GameClass &game) {
  UnloadGame(game);
  if (!LoadGame(game) || game.Characters.empty()) {
    for (size_t i = 0; i < game.Players.size(); i++) game.Players[i].Character = nullptr;
    RVK_MessageBox("%s", game.LoadError.c_str());
    return false;
  }
  RepointAfterReload(game);
  SetCharacter(*game.LocalPlayer, game.LocalPlayer->CharacterNumber, false);
  game.ResetView();
  return true;
}

static void PickRow(GameClass &game, int bar, int row) {
  PlayerClass &p = *game.LocalPlayer;
  switch (bar) {
    case 0:
      SetCharacter(p, row, true);
      game.ResetView();
      break;
    // Row 0 of the part bars is "no part", so row r is entry r - 1.
    case 1: SetEyes(p, row - 1, true); break;
    case 2: SetEars(p, row - 1, true); break;
    case 3: SetNose(p, row - 1, true); break;
    case 4: SetMouth(p, row - 1, true); break;
    case 5: SetEyebrows(p, row - 1, true); break;
    case 6: SetMoustache(p, row - 1, true); break;
    case 7: SetFeet(p, row - 1, true); break;
    case 8: SetHat(p, row - 1, true); break;
  }
}

// Waits while the key is held: the whole loop stands still meanwhile.
static void WaitForRelease(int scancode) {
  for (;;) {
    if (keyboard_needs_poll()) poll_keyboard();
    if (!key[scancode]) return;
    rest(1);
  }
}

static void DrawScene(GameClass &game, CameraClass &camera) {
  int count = game.GetPlayerCount();
  if (game.Mode == GAME_MODE_SINGLE) {
    for (int i = 0; i < 3; i++) camera.Eye[i] = game.CameraPosition[i];
    const CharacterEntry *body = game.LocalPlayer ? game.LocalPlayer->Character : nullptr;
    for (int i = 0; i < 3; i++) camera.Target[i] = body ? body->TargetPos[i] : 0;
  } else {
    NetworkCamera(count, camera);
  }
  ApplyCamera(camera);
  SetupLights();

  glPushMatrix();
  glRotatef(game.IdleYaw, 0, 1, 0);
  glRotatef(game.ViewAngles[0] * 1.40625f, 1, 0, 0);
  glRotatef(game.ViewAngles[1] * 1.40625f, 0, 1, 0);
  glRotatef(game.ViewAngles[2] * 1.40625f, 0, 0, 1);
  if (game.Mode == GAME_MODE_SINGLE) {
    if (game.LocalPlayer) DrawPlayer(*game.LocalPlayer, 0, 0, 0);
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

  while (!done) {
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
    if (button >= 0 && button <= 8) {
      game.CurrentBar = button;
    } else if (button == BUTTON_RELOAD) {
      if (game.Mode == GAME_MODE_SERVER)
        RVK_Message("Cannot reload data while hosting a server");
      else if (!ReloadData(game))
        done = true;
    } else if (button == BUTTON_EXIT) {
      done = true;
    }

    if (!game.Characters.empty()) {
      int row = game.Bar(game.CurrentBar).Run();
      if (row >= 0) PickRow(game, game.CurrentBar, row);
    }

    RVK_DrawConsole();
    RVK_WaitFrame();
    RVK_EndFrame();

    if (autoSpin)
      for (int i = 0; i < 3; i++) game.ViewAngles[i] += 2;

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
