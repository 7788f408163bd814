// For the GL tests: real X input sent with xdotool to the test's own window
// on its virtual display, each step waited for until Allegro has seen it;
// and for the library's own, the back buffer read as runs of palette
// letters, values joined for comparing at once, and quiet message boxes.
#pragma once
#include <allegro.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include "rvk/core.h"
#include "rvk/timer.h"
#include "support/gl_env.h"

// The window's X id, found by a title of our own; the title may take a
// moment to reach the server.
inline std::string TkWindowId() {
  static std::string id;
  if (!id.empty()) return id;
  set_window_title("rvk widget test window");
  for (int attempt = 0; attempt < 50 && id.empty(); attempt++) {
    char line[64] = {0};
    if (FILE *p = popen("xdotool search --name '^rvk widget test window$' 2>/dev/null | head -n 1", "r")) {
      if (std::fgets(line, sizeof(line), p) == nullptr) line[0] = 0;
      pclose(p);
    }
    id = line;
    while (!id.empty() && (id.back() == '\n' || id.back() == ' ')) id.pop_back();
    if (id.empty()) rest(100);
  }
  if (id.empty()) return id;
  std::system(("xdotool windowfocus " + id + " 2>/dev/null").c_str());
  // The window may still be moved into place: a pointer put on it before
  // would land elsewhere on it after.
  std::string position, last;
  for (int attempt = 0; attempt < 50 && (position.empty() || position != last); attempt++, rest(50)) {
    last = position;
    char line[64] = {0};
    if (FILE *p = popen(("xdotool getwindowgeometry " + id + " | grep Position").c_str(), "r")) {
      if (std::fgets(line, sizeof(line), p) == nullptr) line[0] = 0;
      pclose(p);
    }
    position = line;
  }
  return id;
}

template <class Condition>
bool TkWaitFor(Condition condition, int milliseconds = 10000) {
  for (int32_t start = RVK_Clock(); !condition(); rest(5))
    if (RVK_Clock() - start > milliseconds) return false;
  return true;
}

// The move as a shell command, for the background scripts.
inline std::string TkMoveCommand(int x, int y) {
  return "xdotool mousemove --window " + TkWindowId() + " " + std::to_string(x) + " " + std::to_string(y);
}

// Moves the real pointer; the move is sent again in case the window wasn't
// listening yet.
inline bool TkMovePointer(int x, int y) {
  for (int attempt = 0; attempt < 6; attempt++) {
    if (std::system(TkMoveCommand(x, y).c_str()) != 0) return false;
    if (TkWaitFor([&] { return mouse_x == x && mouse_y == y; }, 500)) return true;
  }
  return false;
}

// Presses or lets go of mouse button 1 where the pointer stands; Allegro may
// move its pointer on the way, so that is waited for back in place too.
inline bool TkMouse(bool down) {
  int x = mouse_x, y = mouse_y;
  std::system(down ? "xdotool mousedown 1" : "xdotool mouseup 1");
  return TkWaitFor([=] { return ((mouse_b & 1) != 0) == down && mouse_x == x && mouse_y == y; });
}

// Presses or lets go of the key xdotool calls name, Allegro scancode.
inline bool TkKey(const char *name, int scancode, bool down) {
  std::system((std::string(down ? "xdotool keydown " : "xdotool keyup ") + name).c_str());
  return TkWaitFor([=] { return (key[scancode] != 0) == down; });
}

// Runs a shell script in the background: the test goes on at once.
inline void TkLater(const std::string &script) {
  std::system(("( " + script + " ) >/dev/null 2>&1 &").c_str());
}

// Allegro's messages open xmessage, which waits for a click: the library's
// tests have one of their own that answers at once. Allegro prints the
// message as well.
inline const std::string TkQuietFolder = [] {
  std::string folder = "/tmp/rvk_quiet_" + std::to_string(getpid());
  std::filesystem::create_directories(folder);
  std::filesystem::create_symlink("/bin/true", folder + "/xmessage");
  setenv("PATH", (folder + ":" + std::getenv("PATH")).c_str(), 1);
  std::atexit([] { std::filesystem::remove_all(TkQuietFolder); });
  return folder;
}();

// Values joined by blanks, to compare many at once.
template <class... T>
std::string J(const T &...values) {
  std::ostringstream out;
  ((out << values << ' '), ...);
  std::string s = out.str();
  return s.substr(0, s.size() - 1);
}

// The colour of a pixel of the back buffer at screen coordinates as RRGGBB.
// After a flip the buffer still holds the frame flipped.
inline int Colour(int x, int y) {
  TkPixel p = TkReadPixel(x, y);
  return p.R << 16 | p.G << 8 | p.B;
}

inline std::string Hex(int x, int y) {
  char text[8];
  std::snprintf(text, sizeof(text), "%06X", Colour(x, y));
  return text;
}

// The colours along a line from (x, y) in steps of (dx, dy), n pixels, as
// runs of letters: "3.5P" is 3 black, then 5 panel grey; a colour without a
// letter is '?'.
inline std::string Scan(int x, int y, int dx, int dy, int n) {
  static const std::map<int, char> letters = {
      {0x000000, '.'}, {0xFFFFFF, 'W'}, {0x0000F0, 'B'}, {0xFFFF00, 'Y'}, {0x81A2FF, 'V'}, {0x939393, 'P'},
      {0x3737FF, 'H'}, {0xD3D3D3, 'L'}, {0x6B6B6B, 'D'}, {0x0303FF, 'T'}, {0xB3B3B3, 'l'}, {0x4F4F4F, 'd'},
      {0x232323, 'S'}, {0xD4D0C8, 'F'}, {0x808080, 'G'}, {0x838383, 't'}, {0x5353FF, 'k'}, {0x030383, 'K'},
      {0xDBDBDB, 'I'}, {0x6F6F6F, 'i'}, {0xFF0000, 'r'}, {0x00FF00, 'g'}, {0x0000FF, 'b'}, {0xE60000, 'E'},
      // menu blue at 128 and 96, white at 96, the menu's bottom strip
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

// Begins a frame on black.
inline void Frame() {
  glClearColor(0, 0, 0, 1);
  RVK_BeginFrame();
}
