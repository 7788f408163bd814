// For harnesses that hand the fuzzer's bytes to a reader of files: Allegro
// started without a display, and the bytes written to a file of this process.
#pragma once
#include <allegro.h>
#include <unistd.h>
#include <cstdint>
#include <cstdio>
#include <string>

inline void FuzzStartAllegro() {
  static bool started = false;
  if (started) return;
  install_allegro(SYSTEM_NONE, &errno, atexit);
  // Pictures load at the depth of the game's window.
  set_color_depth(32);
  started = true;
}

// The path of a file holding the bytes, named with the given ending.
inline std::string FuzzFile(const uint8_t *data, size_t size, const char *ending) {
  std::string path = "/tmp/tk_fuzz_" + std::to_string(getpid()) + ending;
  FILE *f = fopen(path.c_str(), "wb");
  if (f) {
    fwrite(data, 1, size, f);
    fclose(f);
  }
  return path;
}
