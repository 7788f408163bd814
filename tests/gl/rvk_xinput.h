// The GL tests' X input; for the library's, pixels read as letters.
#pragma once
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include "rvk/core.h"
#include "support/gl_env.h"
#include "support/xinput.h"

inline void Move(int x, int y) { EXPECT_TRUE(TkMovePointer(x, y)) << x << "," << y; }
inline void Press(bool down = true) { EXPECT_TRUE(TkMouse(down)); }
inline void Key(const char *name, int code, bool down) { EXPECT_TRUE(TkKey(name, code, down)) << name; }

// Values joined by blanks; braces evaluate them in order.
struct J {
  std::string Text;
  template <class... T>
  J(T... values) {
    std::ostringstream out;
    ((out << values << ' '), ...);
    Text = out.str().substr(0, out.str().size() - 1);
  }
  operator std::string() const { return Text; }
};
inline bool operator==(const J &a, const J &b) { return a.Text == b.Text; }
inline std::ostream &operator<<(std::ostream &out, const J &j) { return out << j.Text; }
inline std::string operator+(const J &j, const std::string &s) { return j.Text + s; }
inline std::string operator+(const std::string &s, const J &j) { return s + j.Text; }

inline int Colour(int x, int y) {
  TkPixel p = TkReadPixel(x, y);
  return p.R << 16 | p.G << 8 | p.B;
}

inline std::string Hex(int x, int y) {
  char text[8];
  std::snprintf(text, sizeof(text), "%06X", Colour(x, y));
  return text;
}

// Colours along a line as runs of letters: "3.5P" is 3 black, 5 grey.
inline std::string Scan(int x, int y, int dx, int dy, int n) {
  static const std::map<int, char> letters = {
      {0x000000, '.'}, {0xFFFFFF, 'W'}, {0x0000F0, 'B'}, {0xFFFF00, 'Y'}, {0x81A2FF, 'V'}, {0x939393, 'P'},
      {0x3737FF, 'H'}, {0xD3D3D3, 'L'}, {0x6B6B6B, 'D'}, {0x0303FF, 'T'}, {0xB3B3B3, 'l'}, {0x4F4F4F, 'd'},
      {0x232323, 'S'}, {0xD4D0C8, 'F'}, {0x808080, 'G'}, {0x838383, 't'}, {0x5353FF, 'k'}, {0x030383, 'K'},
      {0xDBDBDB, 'I'}, {0x6F6F6F, 'i'}, {0xFF0000, 'r'}, {0x00FF00, 'g'}, {0x0000FF, 'b'}, {0xE60000, 'E'},
      {0x000078, 'm'}, {0x00005A, 'n'}, {0x606060, 'w'}, {0x545454, 's'}};
  std::string out;
  char last = 0;
  for (int i = 0, run = 0; i <= n; i++, run++) {
    char c = 0;
    if (i < n) {
      auto found = letters.find(Colour(x + i * dx, y + i * dy));
      c = found == letters.end() ? '?' : found->second;
    }
    if (c != last && run > 0) out += std::to_string(run) + last, run = 0;
    last = c;
  }
  return out;
}

inline std::string H(int x, int y, int n) { return Scan(x, y, 1, 0, n); }
inline std::string V(int x, int y, int n) { return Scan(x, y, 0, 1, n); }

inline void Frame() {
  glClearColor(0, 0, 0, 1);
  RVK_BeginFrame();
}
