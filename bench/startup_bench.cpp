// Start-up benchmark: brings the program up as main does, with the shipped
// data in the working directory, and prints how long each stage takes and
// the resident memory after it, the catalogues' load above all. Run from the
// game directory on a display.
#include <allegro.h>
#include <GL/gl.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include "app/config.h"
#include "app/game.h"
#include "character/catalogue.h"
#include "rvk/core.h"
#include <alleggl.h>

// Resident set of this process in megabytes (of 2^20 bytes), from Linux's
// process status; 0 where there is none.
static double ResidentMB() {
  FILE *status = std::fopen("/proc/self/status", "r");
  if (status == nullptr) return 0;
  char line[256];
  double kb = 0;
  while (std::fgets(line, sizeof line, status) != nullptr)
    if (std::strncmp(line, "VmRSS:", 6) == 0) kb = std::atof(line + 6);
  std::fclose(status);
  return kb / 1024.0;
}

static double Seconds(std::chrono::steady_clock::time_point a, std::chrono::steady_clock::time_point b) {
  return std::chrono::duration<double>(b - a).count();
}

int main() {
  auto t0 = std::chrono::steady_clock::now();
  if (allegro_init() != 0) {
    std::fprintf(stderr, "allegro_init failed (no display?)\n");
    return 1;
  }
  install_timer();
  install_keyboard();
  install_mouse();
  install_allegro_gl();
  auto t1 = std::chrono::steady_clock::now();
  double rss[3];
  rss[0] = ResidentMB();
  if (!RVK_Init(800, 600, 32, true, 45)) return 1;
  allegro_gl_use_mipmapping(TRUE);
  glEnable(GL_CULL_FACE);
  glShadeModel(GL_SMOOTH);
  auto t2 = std::chrono::steady_clock::now();
  rss[1] = ResidentMB();
  bool loaded = LoadGame(Game);
  auto t3 = std::chrono::steady_clock::now();
  rss[2] = ResidentMB();
  if (!loaded) {
    std::fprintf(stderr, "LoadGame failed: %s\n", Game.LoadError.c_str());
    return 1;
  }
  std::printf("allegro start:  %7.3f s, resident %6.1f MB\n", Seconds(t0, t1), rss[0]);
  std::printf("RVK_Init:       %7.3f s, resident %6.1f MB\n", Seconds(t1, t2), rss[1]);
  std::printf("LoadGame:       %7.3f s, resident %6.1f MB (%zu bodies, %zu hats)\n", Seconds(t2, t3), rss[2],
              Game.Characters.size(), Game.Hats.size());
  std::printf("total:          %7.3f s to the end of LoadGame\n", Seconds(t0, t3));
  auto t4 = std::chrono::steady_clock::now();
  UnloadGame(Game);
  auto t5 = std::chrono::steady_clock::now();
  std::printf("UnloadGame:     %7.3f s, resident %6.1f MB\n", Seconds(t4, t5), ResidentMB());
  RVK_Shutdown();
  return 0;
}
END_OF_MAIN()
