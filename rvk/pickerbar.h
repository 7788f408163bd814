// PickerBarClass: the vertical strip of thumbnails from which the player picks.
#pragma once
#include <allegro.h>
#include <cstdint>
#include <vector>
#include "rvk/button.h"
#include "rvk/texture.h"

class PickerBarClass {
public:
  std::vector<IconClass> Rows;
  int32_t X = 2, Y = 0;
  int32_t Width = 126, Height = 0;
  int32_t TopRow = 0;
  int32_t MaxTopRow = 0;
  int32_t RowsY = 0;
  uint8_t Alpha = 192;
  ButtonClass UpButton, DownButton;
  int32_t ThumbWidth = 128;
  int32_t ThumbHeight = 96;
  int32_t VisibleRows = 0;
  int32_t BackgroundColour = 0;

  void Setup(int top, int bottom, int rowHeight);
  void Add(TextureClass thumbnail, const char *name);
  void AddBitmap(BITMAP *bitmap, const char *name);
  int Run();
  void Free();
};

// Rows that fit between the first row's y and the Down button's y, at a row
// height of rowHeight (0 for a bar too small or a height below 1).
int RVK_PickerVisibleRows(int downButtonY, int rowsY, int rowHeight);
// The greatest first row of a bar of `rows` rows showing `visibleRows`.
int RVK_PickerMaxTopRow(int rows, int visibleRows);
// The clip rectangle of the rows, as x, y, w, h for RVK_SetClipRect.
void RVK_PickerClipRect(const PickerBarClass &bar, int &x, int &y, int &w, int &h);
