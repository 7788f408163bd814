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
};

bool RVK_CreateButtonEx(ButtonClass &button, const char *caption, TextureClass icon, int x, int y, int hotKey, bool separator);
bool RVK_CreateButton(ButtonClass &button, const char *caption, const char *iconName, int x, int y, int hotKey);
