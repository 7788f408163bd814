// ButtonClass: the push button with a picture, an optional caption and an
// optional hot key, drawn and polled in one Run per frame.
#include "rvk/button.h"
#include <algorithm>
#include <GL/gl.h>
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/keynames.h"

// ---- Waits ----

// Allegro's input thread changes mouse_b and key[] behind our back; giving up
// the processor while spinning lets it run on a busy machine.
// A request to close ends the wait as if the button or key had come up.
void RVK_WaitMouseUp() {
  while ((mouse_b & 1) && !RVK_CloseRequested()) rest(0);
}

void RVK_WaitKeyUp(int scancode) {
  while (key[scancode] && !RVK_CloseRequested()) rest(0);
}

// ---- Creation and size ----

bool RVK_CreateButtonEx(ButtonClass &button, const char *caption, TextureClass icon, int x, int y, int hotKey,
                        bool separator) {
  button.X = x;
  button.Y = y;
  button.HotKey = hotKey;
  button.Icon = icon;
  button.Width = separator ? 6 : 32;
  button.Height = 32;
  button.IconX = 0;
  button.IconY = 0;
  button.Enabled = true;
  button.Pressed = false;
  button.Alpha = 255;
  button.KeyWaitClear = true;
  button.KeyWaitUp = true;
  button.KeyDown = false;
  if (separator) {
    button.Style = 1;
    button.Caption.clear();
    button.KeyName.clear();
    // Without its picture a separator still stands in a row as one, with
    // nothing on it that can be pressed.
    if (icon.TextureName != RVK_GetDefaultIcon().TextureName) return true;
    RVK_LogError("RVK_CreateButtonEx: Seperator buttons must have an icon");
    return false;
  }
  button.Style = 0;
  button.Caption = caption != nullptr ? caption : "";
  button.KeyName = hotKey != -1 ? RVK_GetKeyName(hotKey) : "";
  return true;
}

bool RVK_CreateButton(ButtonClass &button, const char *caption, const char *iconName, int x, int y, int hotKey) {
  TextureClass icon = iconName != nullptr ? RVK_GetIcon(iconName) : RVK_GetDefaultIcon();
  bool separator = iconName != nullptr && std::string(iconName) == "seperator";
  return RVK_CreateButtonEx(button, caption, icon, x, y, hotKey, separator);
}

ButtonSizeClass RVK_ButtonSize(int width, int height, int textWidth, int textHeight) {
  ButtonSizeClass s;
  s.Width = width != -1 ? width : textWidth + 40;
  s.Height = height != -1 ? height : std::max(textHeight + 2, 34);
  // Picture and caption stand centred as one group, 34 apart.
  s.IconX = (s.Width - textWidth - 34) / 2;
  s.CaptionX = s.IconX + 34;
  s.IconY = (s.Height - 32) / 2;
  s.CaptionY = (s.Height - textHeight) / 2;
  return s;
}

void ButtonClass::SetSize(int width, int height) {
  ButtonSizeClass s = RVK_ButtonSize(width, height, RVK_TextLength(Caption.c_str()), RVK_TextHeight());
  Width = s.Width;
  Height = s.Height;
  IconX = s.IconX;
  IconY = s.IconY;
  CaptionX = s.CaptionX;
  CaptionY = s.CaptionY;
  Style = 2;
}

// ---- Polling ----

bool ButtonClass::HotKeyStep(bool down) {
  if (KeyWaitClear) {
    // A key already held when the button was made must be let go first.
    if (!down) KeyWaitClear = false;
  } else if (!KeyDown) {
    if (down) KeyDown = true;
  } else if (KeyWaitUp) {
    if (!down) KeyWaitUp = false;
  } else {
    // Seen down, then seen up: this poll fires.
    KeyDown = false;
    KeyWaitUp = true;
    return true;
  }
  return false;
}

bool ButtonClass::Run() {
  const PaletteClass &p = RVK_Palette;
  bool separator = Style == 1;
  bool hover = Enabled && RVK_MouseIn(X, Y, X + Width, Y + Height);
  bool lifted = hover && !separator;
  int x = lifted ? X + 1 : X;
  int y = lifted ? Y + 1 : Y;

  RVK_DrawRect(x, y, x + Width, y + Height, lifted ? p.ButtonHover : p.PanelFace, true, Alpha);
  RVK_DrawTexture(Icon, x + IconX, y + IconY, 0, true, Alpha);
  if (Style == 2) RVK_Printf(x + CaptionX, y + CaptionY, p.Black, "%s", Caption.c_str());
  if (!Enabled) RVK_DrawRect(x, y, x + Width, y + Height, p.PanelFace, true, Alpha / 2);
  if (lifted) {
    RVK_DrawBevelBox(x - 1, y - 1, x + Width, y + Height, p.BevelDark, p.BevelLight, p.NoFill, 128);
    if (Style == 0) {
      if (HotKey != -1)
        RVK_ShowTooltip(x + 20, y + 52, "%s - [%s]", Caption.c_str(), KeyName.c_str());
      else
        RVK_ShowTooltip(x + 20, y + 52, "%s", Caption.c_str());
    }
  } else if (Style == 2) {
    RVK_DrawBevelBox(x - 1, y - 1, x + Width, y + Height, p.BevelLight, p.BevelDark, p.NoFill,
                     (int)(Alpha * 0.8));
  }

  Pressed = false;
  if (separator || !Enabled) return false;

  if (hover && (mouse_b & 1)) {
    // The press counts only if the button comes up over the button.
    while (mouse_b & 1) {
      if (!RVK_MouseIn(X, Y, X + Width, Y + Height) || RVK_CloseRequested()) return false;
      rest(0);
    }
    Pressed = true;
    return true;
  }

  // A code outside key[] is a key that is never down.
  if (HotKey != -1) {
    bool down = (unsigned)HotKey < KEY_MAX && key[HotKey];
    if (HotKeyStep(down)) {
      clear_keybuf();
      Pressed = true;
    }
  }
  return Pressed;
}
