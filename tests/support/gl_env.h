// Shared by the GL tests: the window size gl_main opens and pixel read-back.
#pragma once
#include <GL/gl.h>
#include <cstdint>

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
