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

// Places the buttons in a row from x + 2 at the height of a toolbar at y
// and answers the toolbar's width: the wider of the title (+6) and the row
// with the status text (statusLength -1 when there is no status).
int RVK_ToolbarLayout(std::vector<ButtonClass> &buttons, int x, int y, int textHeight, int titleLength,
                      int statusLength);
// Moves a toolbar that sticks out past the right or lower edge back in, then
// one that lies before the left or upper edge (AddButtonEx).
void RVK_ToolbarKeepOnScreen(ToolbarClass &toolbar, int screenW, int screenH);
// One frame of edge sliding for a pointer at (mx, my) pressed against a
// screen edge beside a toolbar that hangs off it: 3 pixels back.
void RVK_ToolbarEdgeSlide(ToolbarClass &toolbar, int mx, int my, int textHeight, int screenW, int screenH);
