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
