// For harnesses of file readers: Allegro started without a display, and the
// fuzzer's bytes in a file of this process.
#pragma once
#include <allegro.h>
#include <unistd.h>
#include <cstdio>
#include <string>

inline void FuzzStartAllegro() {
  static bool started = false;
  if (!started) install_allegro(SYSTEM_NONE, &errno, atexit);
  // Pictures load at the depth of the game's window.
  set_color_depth(32);
  started = true;
}

inline std::string FuzzFile(const uint8_t *data, size_t size, const char *ending) {
  std::string path = "/tmp/tk_fuzz_" + std::to_string(getpid()) + ending;
  FILE *f = fopen(path.c_str(), "wb");
  fwrite(data, 1, size, f);
  fclose(f);
  return path;
}
