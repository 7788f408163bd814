// Real X input for the GL tests: the pointer, buttons and keys sent with
// xdotool to the test's own window on its virtual display, each waited for
// until Allegro has seen it.
#pragma once
#include <allegro.h>
#include <cstdio>
#include <cstdlib>
#include <string>
#include "rvk/timer.h"

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
  for (int attempt = 0, same = 0; attempt < 50 && same < 4; attempt++, rest(50)) {
    last = position;
    char line[64] = {0};
    if (FILE *p = popen(("xdotool getwindowgeometry " + id + " | grep Position").c_str(), "r")) {
      if (std::fgets(line, sizeof(line), p) == nullptr) line[0] = 0;
      pclose(p);
    }
    position = line;
    same = !position.empty() && position == last ? same + 1 : 0;
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
// listening yet, or moved on after the pointer had reached its spot.
inline bool TkMovePointer(int x, int y) {
  auto there = [&] { return mouse_x == x && mouse_y == y; };
  for (int attempt = 0; attempt < 6; attempt++) {
    if (std::system(TkMoveCommand(x, y).c_str()) != 0) return false;
    if (TkWaitFor(there, 500) && (rest(50), there())) return true;
  }
  return false;
}

// Presses or lets go of mouse button 1 where the pointer stands; Allegro may
// move its pointer on the way, so that is waited for back in place too. On a
// busy machine the window can still be moving into place, carrying the spot
// away from under the pointer: then the pointer is put back and the button
// sent again.
inline bool TkMouse(bool down) {
  int x = mouse_x, y = mouse_y;
  for (int attempt = 0; attempt < 3; attempt++) {
    std::system(down ? "xdotool mousedown 1" : "xdotool mouseup 1");
    if (TkWaitFor([=] { return ((mouse_b & 1) != 0) == down && mouse_x == x && mouse_y == y; }, 3000)) return true;
    TkMovePointer(x, y);
  }
  return false;
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
