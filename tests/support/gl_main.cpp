// Entry point of the GL tests: brings up Allegro and an RVK window on the
// virtual display, runs the tests, and takes the window down again.
// GoogleTest first: Xlib, pulled in by AllegroGL, defines None as a macro.
#include <gtest/gtest.h>
#include <allegro.h>
#include <alleggl.h>
#include <cstdio>
#include "rvk/core.h"
#include "support/gl_env.h"

int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  if (allegro_init() != 0) {
    std::fprintf(stderr, "allegro_init failed (no display?)\n");
    return 1;
  }
  install_timer();
  install_keyboard();
  install_mouse();
  install_allegro_gl();
  if (!RVK_Init(TK_SCREEN_W, TK_SCREEN_H, 32, true, 45)) {
    std::fprintf(stderr, "RVK_Init failed\n");
    return 1;
  }
  int result = RUN_ALL_TESTS();
  RVK_Shutdown();
  allegro_exit();
  return result;
}
END_OF_MAIN()
