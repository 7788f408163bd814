// MenuClass: the full-screen menu. A title bar, a column of entries, and a
// bottom strip that shows the selected entry with a pulsing icon and a help
// line sliding in from the right.
#include "rvk/menu.h"
#include <algorithm>
#include "rvk/button.h"
#include "rvk/core.h"
#include "rvk/draw.h"

MenuPulseClass RVK_MenuPulse;

// ---- Geometry and pulse ----

MenuRowClass RVK_MenuRow(int index, int mediumHeight, int textHeight, int rowWidth, int textX) {
  int rh = std::max(textHeight, 32);
  MenuRowClass row;
  row.Y = mediumHeight + 10 + index * (rh + 8);
  row.X1 = 15;
  row.Y1 = row.Y;
  row.X2 = rowWidth + textX;
  row.Y2 = row.Y + rh + 8;
  return row;
}

void MenuPulseClass::Step() {
  if (Brightening) {
    Brightness += 6;
    if (Brightness >= 250) Brightening = false;
  } else {
    Brightness -= 6;
    if (Brightness <= 140) Brightening = true;
  }
  if (Growing) {
    Size += 3;
    if (Size >= 64) Growing = false;
  } else {
    Size -= 3;
    if (Size <= 8) Growing = true;
  }
}

// ---- Building ----

void MenuClass::Create(const char *title, const char *footer, const char *topRightText) {
  Title = title != nullptr ? title : "";
  Footer = footer != nullptr ? footer : "";
  TopRightText = topRightText != nullptr ? topRightText : "";
  FooterLine2.clear();
  LastMouseX = 0;
  LastMouseY = 0;
  HelpX = SCREEN_W;
  Selected = 0;
  RowWidth = 320;
  int h = RVK_TextHeight();
  TextX = std::max(h, 32) + 25;
  PulseTimer.Reset();
  Entries.clear();
  SelectSample = MoveSample = BackSample = nullptr;
}

void MenuClass::AddEntry(const char *name, const char *iconName, const char *help) {
  MenuEntryClass entry;
  entry.Name = name != nullptr ? name : "";
  entry.Help = help != nullptr ? help : "";
  entry.Icon = RVK_GetIcon(iconName);
  RowWidth = std::max(RowWidth, RVK_TextLength(entry.Name.c_str()) + 96);
  Entries.push_back(entry);
}

// ---- Running ----

bool MenuClass::Draw() {
  const PaletteClass &p = RVK_Palette;
  bool clicked = false;
  int mh = RVK_TextHeight(RVK_FontMedium);
  int h = RVK_TextHeight();
  int rh = std::max(h, 32);

  int mx = mouse_x, my = mouse_y;
  bool moved = mx != LastMouseX || my != LastMouseY;
  LastMouseX = mx;
  LastMouseY = my;

  RVK_DrawRectWH(0, 8, SCREEN_W, mh, p.MenuBlue, true, 128);
  RVK_PrintfFont(RVK_FontMedium, 15, 8, p.White, "%s", Title.c_str());
  RVK_PrintfFont(RVK_FontMedium, SCREEN_W - RVK_TextLength(TopRightText.c_str(), RVK_FontMedium) - 32, 8, p.White, "%s",
                 TopRightText.c_str());

  for (int i = 0; i < (int)Entries.size(); i++) {
    MenuRowClass row = RVK_MenuRow(i, mh, h, RowWidth, TextX);
    bool in = RVK_MouseIn(row.X1, row.Y1, row.X2, row.Y2);
    // Only a moving pointer takes the selection, so the keyboard can move
    // it away from a pointer at rest.
    if (i != Selected && moved && in) {
      Selected = i;
      moved = false;
      RVK_PlaySample(MoveSample);
      HelpX = SCREEN_W;
    }
    int text = p.Black, band = p.White;
    if (i == Selected) {
      text = p.White;
      band = p.MenuBlue;
      if (!clicked && (mouse_b & 1) && in) clicked = true;
    }
    RVK_DrawRectWH(15, row.Y + 1, RowWidth, rh + 7, band, true, 96);
    RVK_PrintfFont(RVK_FontStandard, TextX, row.Y + (rh - h + 8) / 2, text, "%s", Entries[i].Name.c_str());
    RVK_DrawTexture(Entries[i].Icon, 20, row.Y + (rh - 24) / 2, 0, true, RVK_Opaque);
  }

  RVK_DrawRectWH(0, SCREEN_H - 51, SCREEN_W, 50, makecol(192, 192, 192), true, 112);
  if (PulseTimer.Tick()) RVK_MenuPulse.Step();

  if (Selected >= 0 && Selected < (int)Entries.size()) {
    const MenuEntryClass &entry = Entries[Selected];
    int s = RVK_MenuPulse.Size;
    int b = RVK_MenuPulse.Brightness;
    RVK_PrintfFont(RVK_FontStandard, 64, SCREEN_H - 50, makecol(b, b, b), "%s", entry.Name.c_str());
    RVK_DrawTextureScaled(entry.Icon, 32 - s / 2, SCREEN_H - s / 2 - 51, s, s, 0, true, RVK_Opaque);
    if (!entry.Help.empty()) {
      RVK_Printf(HelpX, SCREEN_H - h - 4, p.White, "%s", entry.Help.c_str());
      HelpX = std::max(HelpX - 60, 64);
    }
  }

  RVK_Printf(SCREEN_W - RVK_TextLength(Footer.c_str()) - 16, SCREEN_H - 50, p.Black, "%s", Footer.c_str());
  if (!FooterLine2.empty())
    RVK_Printf(SCREEN_W - RVK_TextLength(FooterLine2.c_str()) - 16, SCREEN_H - 50 + h, p.Black, "%s",
               FooterLine2.c_str());
  return clicked;
}

int MenuClass::Run() {
  int result = -1;
  if (Draw()) {
    RVK_PlaySample(SelectSample);
    // The release counts wherever it happens.
    RVK_WaitMouseUp();
    result = Selected;
  }
  if (keypressed()) {
    int k = readkey();
    switch (k >> 8) {
      case KEY_ESC:
        RVK_PlaySample(BackSample);
        RVK_WaitKeyUp(KEY_ESC);
        result = -2;
        break;
      case KEY_ENTER:
        RVK_PlaySample(SelectSample);
        RVK_WaitKeyUp(KEY_ENTER);
        result = Selected;
        break;
      case KEY_UP:
        RVK_PlaySample(MoveSample);
        Selected--;
        HelpX = SCREEN_W;
        break;
      case KEY_DOWN:
        RVK_PlaySample(MoveSample);
        Selected++;
        HelpX = SCREEN_W;
        break;
      default:
        // Back into the buffer for whoever reads next.
        simulate_keypress(k);
        break;
    }
  }
  if (Selected < 0) Selected = (int)Entries.size() - 1;
  if (Selected >= (int)Entries.size()) Selected = 0;
  // A menu without entries has nothing to select.
  Selected = std::max(Selected, 0);
  return result;
}
