// ToolbarClass: a draggable window strip holding a row of buttons.
#pragma once
#include <cstdint>
#include <string>
#include <vector>
#include "rvk/button.h"

class ToolbarClass {
public:
  std::vector<ButtonClass> Buttons;
  std::string Title;
  std::string Status;
  int32_t X = 0, Y = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  bool Fixed = false;
  bool HasStatus = false;
  bool Dragging = false;
  int32_t DragX = 0, DragY = 0;
  uint8_t Alpha = 255;
  bool DropDown = false;
  bool Collapsed = true;
  int32_t HomeX = 0, HomeY = 0;

  void Create(int x, int y, bool fixed);
  void SetTitle(const char *format, ...) __attribute__((format(printf, 2, 3)));
  void SetStatus(const char *format, ...) __attribute__((format(printf, 2, 3)));
  void AddButtonEx(const char *caption, TextureClass icon, int hotKey, bool separator);
  void AddButton(const char *caption, const char *iconName, int hotKey);
  void AddSeparator();
  void Layout();
  void Centre();
  int Run();
  void Clear();
};
