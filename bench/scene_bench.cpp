// Scene benchmark: draws the frames of the two frame benchmarks as the game
// loop draws them, with the game's own camera, lights, DrawPlayer, toolbar,
// picker bar, player list and console, as many frames as asked, each
// finished and flipped, and prints the time per frame: the single-player
// scene (the most complex body in the first entry of every catalogue, as a
// new game dresses it) and the row of eight players, each in other parts.
// The animations step by a fixed amount a frame, the face motion draws from
// a fixed sequence and the console holds the lines of the load, so the same
// build does the same work on every run: under callgrind the instruction
// counts compare two builds or two sets of data on a machine too busy for
// timing, and show how the frame divides between the characters and the
// rest (set TK_SCENE_PARTS to "3d" or "2d" to draw only one of them).
// Run from the game directory on a display:
//   scene_bench [FRAMES]   (100 by default)
#include "app/game.h"
#include "app/scene.h"
#include "app/startup.h"
#include "character/catalogue.h"
#include "character/drawplayer.h"
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/toolbar.h"
#include <allegro.h>
#include <alleggl.h>
#include <GL/gl.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace {

// An animation moves on by about a frame of 24 fps in one of 45 fps.
const float FRAMES_PER_DRAW = 24.0f / 45.0f;
const float FRAME_MS = 1000.0f / 45.0f;

std::vector<ModelClass *> AllModels() {
  std::vector<ModelClass *> models;
  for (CharacterEntry &e : Game.Characters) models.push_back(&e.Model);
  for (auto *cat : {&Game.Eyes, &Game.Ears, &Game.Eyebrows, &Game.Feet})
    for (PairPartEntry &e : *cat) models.insert(models.end(), {&e.LeftModel, &e.RightModel});
  for (auto *cat : {&Game.Noses, &Game.Mouths, &Game.Moustaches})
    for (SinglePartEntry &e : *cat) models.push_back(&e.Model);
  for (HatEntry &e : Game.Hats) models.push_back(&e.Model);
  return models;
}

// Every model at `frame` of its own animation, which the clock no longer moves.
void HoldAnimations(float frame) {
  for (ModelClass *m : AllModels()) {
    m->Animated = false;
    if (m->ListCount() > 1) m->CurrentFrame = static_cast<float>(static_cast<int>(frame) % (m->ListCount() / 2));
  }
}

// The body whose model has the most triangles, as frame_bench.py picks by
// file size.
int MostComplexBody() {
  int best = 0;
  for (size_t i = 0; i < Game.Characters.size(); i++) {
    if (Game.Characters[i].Model.Model->Triangles.size() > Game.Characters[best].Model.Model->Triangles.size())
      best = static_cast<int>(i);
  }
  return best;
}

void Dress(PlayerClass &p, int body, int part) {
  p.CharacterNumber = body;
  p.Character = &Game.Characters[body];
  auto pick = [part](size_t size) { return static_cast<int32_t>(part % static_cast<int>(size)); };
  p.EyesNumber = pick(Game.Eyes.size());
  p.EarsNumber = pick(Game.Ears.size());
  p.NoseNumber = pick(Game.Noses.size());
  p.MouthNumber = pick(Game.Mouths.size());
  p.EyebrowsNumber = pick(Game.Eyebrows.size());
  p.MoustacheNumber = pick(Game.Moustaches.size());
  p.FeetNumber = pick(Game.Feet.size());
  p.HatNumber = pick(Game.Hats.size());
}

// The game loop's toolbar: the nine catalogues, Reload Data and Exit.
void CreateToolbar(ToolbarClass &toolbar) {
  const char *const icons[11] = {"character", "eyes", "ears", "nose", "mouth", "eyebrows",
                                 "moustache", "feet", "hat", "refresh", "exit"};
  toolbar.Create(0, 0, false);
  for (int i = 0; i < 11; i++) {
    if (i >= 9) toolbar.AddSeparator();
    toolbar.AddButton(icons[i], icons[i], -1);
  }
}

// One frame as the game loop draws it: camera, lights, every player, then
// the player list of a network game, the toolbar, the picker bar, the
// console and the flip; finished, so the time is all in it.
void DrawFrame(std::vector<PlayerClass> &players, bool single) {
  static const char *parts = std::getenv("TK_SCENE_PARTS");
  const bool draw3d = parts == nullptr || std::string(parts) != "2d";
  const bool draw2d = parts == nullptr || std::string(parts) != "3d";
  RVK_SetClearColour(makecol(161, 214, 255));
  CameraClass camera;
  const int count = static_cast<int>(players.size());
  if (single) {
    const CharacterEntry &body = *players[0].Character;
    for (int i = 0; i < 3; i++) {
      camera.Eye[i] = body.CameraPos[i];
      camera.Target[i] = body.TargetPos[i];
    }
  } else {
    NetworkCamera(count, camera);
  }
  ApplyCamera(camera);
  SetupLights();
  glPushMatrix();
  for (int i = 0; i < count && draw3d; i++)
    DrawPlayer(players[static_cast<size_t>(i)], single ? 0 : RowPositionX(count, i), 0, 0);
  glPopMatrix();
  DisableLights();
  RVK_Begin2D();
  if (draw2d) {
    const int h = text_height(RVK_FontStandard);
    for (int i = 0; i < count && !single; i++) {
      const PlayerClass &p = players[static_cast<size_t>(i)];
      RVK_Printf(5, 48 + 2 * h + i * h, makecol(255, 255, 255), "%d: %s - %s (ID %d)", i + 1, "Player",
                 p.Character->Name.c_str(), i);
    }
    Game.Toolbar.Run();
    Game.Bar(0).Run();
    // The lines of the load stay, as in the first seconds of a game.
    for (ConsoleLineClass &line : ConsoleLines) line.Age = 0;
    RVK_DrawConsole();
  }
  RVK_EndFrame();
  glFinish();
}

// Frames that don't count: the renderer compiles its shaders on first use.
void WarmUp(std::vector<PlayerClass> &players, bool single, int frames) {
  for (int f = 0; f < frames; f++) {
    HoldAnimations(f * FRAMES_PER_DRAW);
    DrawFrame(players, single);
  }
}

// The frames that count, timed; under callgrind the place to dump the counts:
//   valgrind --tool=callgrind --dump-before='*MeasuredFrames*' --dump-after='*MeasuredFrames*' ...
// gives a file for each scene's measured frames, drawing threads included.
// Kept out of line so that callgrind sees it.
[[gnu::noinline]] std::vector<double> MeasuredFrames(std::vector<PlayerClass> &players, bool single, int frames, double &cpuMs) {
  std::vector<double> ms;
  std::clock_t cpu0 = std::clock();
  for (int f = 0; f < frames; f++) {
    HoldAnimations(f * FRAMES_PER_DRAW);
    auto t0 = std::chrono::steady_clock::now();
    DrawFrame(players, single);
    ms.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
  }
  cpuMs = (std::clock() - cpu0) * 1000.0 / CLOCKS_PER_SEC / frames;
  return ms;
}

void Measure(const char *name, std::vector<PlayerClass> &players, bool single, int frames) {
  double cpu = 0;
  Game.Toolbar.SetTitle(single ? "%s" : "%s (server mode)", players[0].Character->Name.c_str());
  WarmUp(players, single, frames);
  std::vector<double> ms = MeasuredFrames(players, single, frames, cpu);
  std::sort(ms.begin(), ms.end());
  std::printf("%-28s median %6.2f ms (%4.1f %% of the frame), fastest %6.2f ms, processor %6.2f ms a frame\n", name,
              ms[ms.size() / 2], ms[ms.size() / 2] / FRAME_MS * 100, ms[0], cpu);
}

}  // namespace

int main(int argc, char **argv) {
  const int frames = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100;
  KeepFrameMemory();
  if (allegro_init() != 0 || install_allegro_gl() != 0) {
    std::fprintf(stderr, "scene_bench: allegro_init failed\n");
    return 1;
  }
  install_timer();
  if (!RVK_Init(800, 600, 32, true, 45)) return 1;
  allegro_gl_use_mipmapping(TRUE);
  glEnable(GL_CULL_FACE);
  glShadeModel(GL_SMOOTH);
  if (!LoadGame(Game)) {
    std::fprintf(stderr, "scene_bench: %s\n", Game.LoadError.c_str());
    return 1;
  }
  std::srand(1);
  CreateToolbar(Game.Toolbar);

  Game.Mode = GAME_MODE_SINGLE;
  std::vector<PlayerClass> one(1);
  Dress(one[0], MostComplexBody(), 0);
  Measure("single player, fully dressed", one, true, frames);

  Game.Mode = GAME_MODE_SERVER;
  std::vector<PlayerClass> eight(MAX_PLAYERS);
  for (int i = 0; i < MAX_PLAYERS; i++) Dress(eight[static_cast<size_t>(i)], i % static_cast<int>(Game.Characters.size()), i);
  Measure("eight players in a row", eight, false, frames);

  Game.Toolbar.Clear();
  UnloadGame(Game);
  RVK_Shutdown();
  return 0;
}
END_OF_MAIN()
