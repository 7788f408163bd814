// Short names of Allegro key codes and of the four mouse inputs, as button
// tooltips show them ("F5", "Escape").
#include "rvk/keynames.h"
#include <iterator>

static const char *const NoName = "(none)";

// The named codes run from -5 to 126; the table is indexed by code + 5.
static const int FirstCode = -5;
static const char *const KeyNames[] = {
    // -5 to -1: the mouse inputs, then -1 for "no key"
    "Mouse wheel down", "Mouse wheel up", "Mouse 2", "Mouse 1", nullptr,
    // 0
    nullptr,
    // 1 to 26: the letters; code 13 has always been shown as a small "m"
    "A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "m",
    "N", "O", "P", "Q", "R", "S", "T", "U", "V", "W", "X", "Y", "Z",
    // 27 to 36: the digits
    "0", "1", "2", "3", "4", "5", "6", "7", "8", "9",
    // 37 to 46: the keypad; only its 5 has a name
    nullptr, nullptr, nullptr, nullptr, nullptr, "5 (keypad)", nullptr, nullptr, nullptr, nullptr,
    // 47 to 58
    "F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8", "F9", "F10", "F11", "F12",
    // 59 to 70
    "Escape", "~", nullptr, "=", "Back Space", "Tab", "{", "}", "Enter", ":", "\"", "\\",
    // 71 to 81
    "/", "Comma", "Stop", "/", "Space", "Insert", "Del", "Home", "End", "Page Up", "Page Down",
    // 82 to 86
    "Left Cursor", "Right Cursor", "Up Cursor", "Down Cursor", nullptr,
    // 87 to 93
    "*", "-", "+", nullptr, nullptr, "Print Screen", "Pause",
    // 94 to 114
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    // 115 to 126
    "Left Shift", "Right Shift", "Left Control", "Right Control", "Alt", "Alt Gr", "Left Win",
    "Right Win", "Menu", "Scroll Lock", "Num Lock", "Caps Lock",
};
static const int KeyNameCount = (int)std::size(KeyNames);

const char *RVK_GetKeyName(int code) {
  int index = code - FirstCode;
  if (index < 0 || index >= KeyNameCount || KeyNames[index] == nullptr) return NoName;
  return KeyNames[index];
}
