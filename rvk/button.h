// ButtonClass: a push button with a picture, an optional caption and hot key.
#pragma once
#include <cstdint>
#include <string>
#include "rvk/texture.h"

class ButtonClass {
public:
  int32_t X = 0, Y = 0;
  std::string Caption;
  TextureClass Icon;
  int32_t HotKey = -1;
  std::string KeyName;
  bool Enabled = true;
  int32_t Style = 0;  // 0 icon button, 1 separator, 2 captioned button
  bool KeyWaitClear = true, KeyWaitUp = true, KeyDown = false;
  uint8_t Alpha = 255;
  int32_t Width = 32, Height = 32;
  int32_t IconX = 0, IconY = 0;
  int32_t CaptionX = 0, CaptionY = 0;
  bool Pressed = false;

  void SetSize(int width, int height);
  bool Run();
  // One poll of the hot key with the key's state: answers true when the key
  // has gone down and up again since the last firing (the caller then
  // empties the key buffer).
  bool HotKeyStep(bool down);
};

// The arithmetic of SetSize: the size of a captioned button and where its
// picture and caption stand, for a caption of the given text measures.
class ButtonSizeClass {
public:
  int32_t Width = 0, Height = 0;
  int32_t IconX = 0, IconY = 0;
  int32_t CaptionX = 0, CaptionY = 0;
};
ButtonSizeClass RVK_ButtonSize(int width, int height, int textWidth, int textHeight);

// The waits of the widgets: they stand on the thread until mouse button 1,
// or the given key, is up. Nothing is drawn meanwhile.
void RVK_WaitMouseUp();
void RVK_WaitKeyUp(int scancode);

bool RVK_CreateButtonEx(ButtonClass &button, const char *caption, TextureClass icon, int x, int y, int hotKey, bool separator);
bool RVK_CreateButton(ButtonClass &button, const char *caption, const char *iconName, int x, int y, int hotKey);
