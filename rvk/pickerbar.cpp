// PickerBarClass: a vertical strip of thumbnails between two scroll buttons;
// a click on a thumbnail answers its row. The bar owns its thumbnails.
#include "rvk/pickerbar.h"
#include <algorithm>
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/draw.h"

// ---- Geometry ----

int RVK_PickerVisibleRows(int downButtonY, int rowsY, int rowHeight) {
  if (rowHeight < 1) return 0;
  int rows = (downButtonY - rowsY - 2) / rowHeight;
  return std::max(rows, 0);
}

int RVK_PickerMaxTopRow(int rows, int visibleRows) {
  int top = rows - visibleRows;
  return std::max(top, 0);
}

void RVK_PickerClipRect(const PickerBarClass &bar, int &x, int &y, int &w, int &h) {
  x = bar.X;
  y = bar.RowsY - 1;
  // The width is X + Width, as the bar has always clipped: the thumbnails
  // run two pixels past the frame and are cut only well to the right of it.
  w = bar.X + bar.Width;
  h = (bar.ThumbHeight + 2) * bar.VisibleRows + 1;
}

// ---- Building ----

void PickerBarClass::Setup(int top, int bottom, int rowHeight) {
  X = 2;
  Y = top;
  Width = 126;
  Height = bottom - top;
  RVK_CreateButton(UpButton, "Up", "up", 4, top + 2, -1);
  UpButton.SetSize(Width - 4, -1);
  RVK_CreateButton(DownButton, "Down", "down", X + 2, 0, -1);
  DownButton.SetSize(Width - 4, -1);
  DownButton.Y = Y + Height - DownButton.Height - 2;
  Alpha = 192;
  UpButton.Alpha = 192;
  DownButton.Alpha = 192;
  RowsY = UpButton.Y + UpButton.Height + 2;
  TopRow = 0;
  MaxTopRow = 0;
  ThumbWidth = 128;
  ThumbHeight = rowHeight;
  BackgroundColour = RVK_Palette.NoFill;
  VisibleRows = RVK_PickerVisibleRows(DownButton.Y, RowsY, rowHeight);
}

void PickerBarClass::AddBitmap(BITMAP *bitmap, const char *name) {
  // The thumbnail is made at the depth of the source, because stretch_blit
  // can't convert between depths; the background follows it there.
  int depth = bitmap != nullptr ? bitmap_color_depth(bitmap) : get_color_depth();
  BITMAP *thumb = ThumbWidth > 0 && ThumbHeight > 0 ? create_bitmap_ex(depth, ThumbWidth, ThumbHeight) : nullptr;
  if (thumb == nullptr) {
    RVK_Message("add: Cannot create temp bitmap");
    return;
  }
  int background = BackgroundColour;
  if (depth != get_color_depth())
    background = makecol_depth(depth, getr(BackgroundColour), getg(BackgroundColour), getb(BackgroundColour));
  clear_to_color(thumb, background);
  // A missing picture leaves a thumbnail of background alone.
  if (bitmap != nullptr)
    stretch_blit(bitmap, thumb, 0, 0, bitmap->w, bitmap->h, (ThumbWidth - bitmap->w) / 2,
                 (ThumbHeight - bitmap->h) / 2, ThumbWidth, ThumbHeight);
  IconClass row;
  row.CreateFromBitmap(thumb);
  row.Name = name != nullptr ? name : "";
  Rows.push_back(row);
  destroy_bitmap(thumb);
  MaxTopRow = RVK_PickerMaxTopRow((int)Rows.size(), VisibleRows);
}

void PickerBarClass::Add(TextureClass thumbnail, const char *name) {
  if (!thumbnail.HasBitmap || thumbnail.SourceBitmap == nullptr) {
    RVK_Message("add: cannot add texture to picker bar because no source bitmap is stored");
    return;
  }
  AddBitmap(thumbnail.SourceBitmap, name);
}

void PickerBarClass::Free() {
  for (IconClass &row : Rows) row.Free();
  Rows.clear();
}

// ---- Running ----

int PickerBarClass::Run() {
  if (Rows.empty()) return -1;
  const PaletteClass &p = RVK_Palette;
  RVK_DrawBevelBox(X, Y, X + Width, Y + Height, p.BevelLight, p.BevelDark, p.PanelFace, Alpha);
  if (UpButton.Enabled && UpButton.Run() && TopRow > 0) TopRow--;
  if (DownButton.Enabled && DownButton.Run() && TopRow < MaxTopRow) TopRow++;

  int cx, cy, cw, ch;
  RVK_PickerClipRect(*this, cx, cy, cw, ch);
  RVK_SetClipRect(cx, cy, cw, ch);
  int picked = -1;
  int y = RowsY;
  // TopRow is the caller's field too: a value out of range shows from row 0.
  int first = std::max(TopRow, 0);
  for (int r = first; r < first + VisibleRows && r < (int)Rows.size(); r++) {
    RVK_DrawTexture(Rows[r], X, y, 0, true, Alpha);
    if (picked == -1 && RVK_MouseIn(X, y, X + Width, y + ThumbHeight + 1)) {
      RVK_DrawRect(X, y, X + Width, y + ThumbHeight + 1, p.Yellow, false, Alpha);
      RVK_ShowTooltip(X + Width + 2, y, "%s", Rows[r].Name.c_str());
      // The pick counts wherever the button comes up.
      if (mouse_b & 1) {
        RVK_WaitMouseUp();
        picked = r;
      }
    }
    y += ThumbHeight + 2;
  }
  RVK_ClearClipRect();
  return picked;
}
