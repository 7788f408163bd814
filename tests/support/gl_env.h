// Shared by the GL tests: the window size gl_main opens, pixel read-back,
// the screen as X shows it, and Allegro's messages kept from waiting.
#pragma once
#include <GL/gl.h>
#include <unistd.h>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

// Allegro's messages open xmessage, which waits for a click that no test
// gives: ours answers at once.
inline const std::string TkQuietFolder = [] {
  std::string folder = "/tmp/tk_quiet_" + std::to_string(getpid());
  // A run ended by a signal leaves its folder, which a later process may meet
  // under the same number.
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  std::filesystem::create_symlink("/bin/true", folder + "/xmessage");
  setenv("PATH", (folder + ":" + std::getenv("PATH")).c_str(), 1);
  std::atexit([] { std::filesystem::remove_all(TkQuietFolder); });
  return folder;
}();

const int TK_SCREEN_W = 800;
const int TK_SCREEN_H = 600;

struct TkPixel {
  uint8_t R, G, B;
  bool operator==(const TkPixel &o) const { return R == o.R && G == o.G && B == o.B; }
};

// Reads the back buffer at screen coordinates (origin upper left, y down).
inline TkPixel TkReadPixel(int x, int y) {
  uint8_t rgba[4] = {0, 0, 0, 0};
  glReadBuffer(GL_BACK);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(x, TK_SCREEN_H - 1 - y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
  return TkPixel{rgba[0], rgba[1], rgba[2]};
}

// The screen now, read through X: safe beside a loop that draws. The test
// window stands at its upper left.
class TkShot {
public:
  int W = 0, H = 0;
  std::vector<TkPixel> Rgb;
  TkShot() {
    FILE *p = popen("import -window root -depth 8 ppm:-", "r");
    if (p && std::fscanf(p, "P6 %d %d 255", &W, &H) == 2 && std::fgetc(p) != EOF) {
      Rgb.resize((size_t)W * H);
      Rgb.resize(std::fread(Rgb.data(), 3, Rgb.size(), p));
    }
    if (p) pclose(p);
  }
  TkPixel At(int x, int y) const { return (size_t)(y * W + x) < Rgb.size() ? Rgb[y * W + x] : TkPixel{}; }
  // Pixels in a colour, in the whole screen or in a rectangle of it.
  long Count(TkPixel colour, int x = 0, int y = 0, int w = 1 << 16, int h = 1 << 16) const {
    long n = 0;
    for (int j = y; j < std::min(H, y + h); j++)
      for (int i = x; i < std::min(W, x + w); i++) n += At(i, j) == colour;
    return n;
  }
};
