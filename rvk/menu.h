// MenuClass: the full-screen menu with a pulsing icon and a sliding help line.
#pragma once
#include <allegro.h>
#include <cstdint>
#include <string>
#include <vector>
#include "rvk/texture.h"
#include "rvk/timer.h"

class MenuEntryClass {
public:
  std::string Name;
  std::string Help;
  TextureClass Icon;
};

class MenuClass {
public:
  std::string Title;
  std::string Footer;
  std::string TopRightText;
  std::string FooterLine2;
  int32_t LastMouseX = 0, LastMouseY = 0;
  int32_t HelpX = 0;
  int32_t Selected = 0;
  int32_t RowWidth = 320;
  int32_t TextX = 0;
  TimerClass PulseTimer;
  std::vector<MenuEntryClass> Entries;
  SAMPLE *SelectSample = nullptr, *MoveSample = nullptr, *BackSample = nullptr;

  void Create(const char *title, const char *footer, const char *topRightText);
  void AddEntry(const char *name, const char *iconName, const char *help);
  int Run();
  // Draws the menu for one frame; answers whether the selected entry was clicked.
  bool Draw();
};

// The pulse of the selected entry's icon and name, shared by all menus.
class MenuPulseClass {
public:
  int32_t Size = 8;
  bool Growing = true;
  uint8_t Brightness = 128;
  bool Brightening = true;

  // One tick of the pulse.
  void Step();
};
extern MenuPulseClass RVK_MenuPulse;

// Where entry `index` of a menu stands: the y of its row and its hit
// rectangle, both far edges inside.
class MenuRowClass {
public:
  int32_t Y = 0;
  int32_t X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
};
MenuRowClass RVK_MenuRow(int index, int mediumHeight, int textHeight, int rowWidth, int textX);
