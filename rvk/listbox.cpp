// ListBoxClass: a scrolling list of text rows that wraps a text to its width,
// with an optional selection and the scroll bars it manages by itself.
#include "rvk/listbox.h"
#include <algorithm>
#include <iterator>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include "rvk/button.h"
#include "rvk/core.h"
#include "rvk/draw.h"

// ---- Text splitting ----

std::vector<std::pair<int, int>> RVK_SplitLines(const char *text, FONT *font, int maxWidth) {
  std::vector<std::pair<int, int>> rows;
  if (text == nullptr) text = "";
  int len = (int)std::strlen(text);
  // The row runs from start; width is that of its characters before measured.
  int start, end, measured, width;
  auto startRow = [&](int at) {
    start = at;
    end = at + 1;
    measured = at;
    width = 0;
  };
  startRow(0);
  if (len > 2) {
    while (end < len - 1) {
      if (text[start] == '\n') {
        rows.emplace_back(start, end - 1);
        startRow(start + 1);
        continue;
      }
      if (text[end] == '\n') {
        rows.emplace_back(start, end - 1);
        startRow(end + 1);
        continue;
      }
      // A row's width is the sum of its characters' widths, added up as the
      // row grows: measuring the row anew at each character would take time
      // in the square of its length. Rows are cut between bytes, so each
      // byte is measured as a character.
      for (; measured <= end && font != nullptr; measured++) {
        char one[2] = {text[measured], 0};
        width += text_length(font, one);
      }
      if (font == nullptr || width < maxWidth) {
        end += 1;
        continue;
      }
      // Break after the last blank of the row; a word with no blank is cut
      // where it reached the width.
      int cut = end;
      for (int i = end; i > start; i--) {
        if (text[i] == ' ') {
          cut = i;
          break;
        }
      }
      rows.emplace_back(start, cut);
      startRow(cut + 1);
    }
  }
  rows.emplace_back(start, len - 1);
  return rows;
}

const char *RVK_Substring(const char *text, int start, int end) {
  // 512 characters and the terminator.
  static char buffer[513];
  if (end - start >= 512) return nullptr;
  buffer[0] = 0;
  if (text == nullptr || end < start || start < 0) return buffer;
  int len = (int)std::strlen(text);
  if (start >= len) return buffer;
  // Characters past the end of the text are not there to copy.
  int last = end < len ? end : len - 1;
  int count = last - start + 1;
  std::memcpy(buffer, text + start, (size_t)count);
  buffer[count] = 0;
  return buffer;
}

// ---- Rows ----

void ListBoxClass::Create(int x, int y, int width, int rowsShown) {
  Selected = 0;
  X = x;
  Y = y;
  Width = width;
  RowsShown = rowsShown;
  HScroll = 0;
  TopRow = 0;
  HasHBar = false;
  HasVBar = false;
  AllowHScroll = true;
  Selectable = true;
  KeyboardOn = false;
  Activated = -1;
  LastClicked = -1;
  KeepSelectionVisible = false;
  LastWheel = mouse_z;
  UpdateSliders();
}

// A row added without fitting the bars to it.
static void AppendItem(ListBoxClass &list, const char *text, const char *iconName, const char *tag) {
  ListBoxItemClass item;
  item.Text = text != nullptr ? text : "";
  if (!item.Text.empty() && item.Text.back() == '\n') item.Text.pop_back();
  item.Icon = iconName != nullptr && iconName[0] != 0 ? RVK_GetIcon(iconName) : RVK_GetDefaultIcon();
  item.Tag = tag != nullptr ? tag : "";
  item.ColumnCount = 0;
  list.Items.push_back(item);
}

void ListBoxClass::AddItem(const char *text, const char *iconName, const char *tag) {
  AppendItem(*this, text, iconName, tag);
  UpdateSliders();
}

void ListBoxClass::AddText(const char *text) {
  if (text == nullptr) text = "";
  std::vector<std::pair<int, int>> rows = RVK_SplitLines(text, RVK_FontStandard, Width - RVK_TextHeight() - 1);
  Items.reserve(Items.size() + rows.size());
  for (const std::pair<int, int> &row : rows) {
    // A row of one character shows as a blank, like an empty line.
    std::string part = row.first == row.second ? " " : std::string(text + row.first, (size_t)(row.second - row.first + 1));
    AppendItem(*this, part.c_str(), nullptr, nullptr);
  }
  // The bars are fitted once to all the rows: fitting them after each row
  // would measure every row again each time.
  UpdateSliders();
}

bool ListBoxClass::LoadFromTextFile(const char *path) {
  std::string name = RVK_NativePath(path);
  FILE *file = std::fopen(name.c_str(), "r");
  if (file == nullptr) {
    RVK_LogError("RVK_LoadFileToListBox: The file \"%s\" could not be opened as \"r\".", path != nullptr ? path : "");
    return false;
  }
  // A file that can't tell its size gets no buffer.
  long size = std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
  std::rewind(file);
  char *buffer = size < 0 ? nullptr : (char *)std::malloc((size_t)size + 1);
  if (buffer == nullptr) {
    RVK_LogError("ListBoxClass::LoadFromTextFile: Unable to allocate %ld bytes for file buffer", size + 1);
    std::fclose(file);
    return false;
  }
  size_t read = std::fread(buffer, 1, (size_t)size, file);
  std::fclose(file);
  buffer[read] = 0;
  // Line ends become line feeds: a CR LF pair counts as one.
  size_t out = 0;
  for (size_t i = 0; i < read; i++) {
    if (buffer[i] == '\r' && buffer[i + 1] == '\n') continue;
    buffer[out++] = buffer[i];
  }
  buffer[out] = 0;
  AddText(buffer);
  std::free(buffer);
  return true;
}

void ListBoxClass::Clear() {
  Items.clear();
  Selected = 0;
  TopRow = 0;
  HScroll = 0;
  HasHBar = false;
  HasVBar = false;
}

int ListBoxClass::GetCount() const {
  return (int)Items.size();
}

ListBoxItemClass &ListBoxClass::GetItem(int index) {
  return Items[(size_t)index];
}

// ---- Scrolling ----

void ListBoxClass::ScrollUp(int n) {
  Selected = std::max(Selected - n, 0);
  TopRow = std::min(TopRow, Selected);
}

void ListBoxClass::ScrollDown(int n) {
  if (Selected < GetCount() - n) {
    Selected += n;
    if (Selected >= TopRow + RowsShown) TopRow = Selected - RowsShown + 1;
  }
}

void ListBoxClass::UpdateSliders() {
  int h = RVK_TextHeight();
  int n = GetCount();
  HasVBar = false;
  HasHBar = false;
  HScroll = 0;
  TopRow = 0;
  if (n > RowsShown) {
    HasVBar = true;
    float percent = (float)RowsShown / (float)n * 100.0f;
    int knob = (int)((float)h * (float)RowsShown / 100.0f * percent);
    VBar.Create(nullptr, X + Width - h, Y, h, (h + 1) * RowsShown, 0, n - RowsShown, true, knob, &TopRow, RowsShown);
  }
  int longest = 0;
  for (const ListBoxItemClass &item : Items) {
    int length = RVK_TextLength(item.Text.c_str());
    longest = std::max(longest, length);
  }
  longest += 3;
  // A list without width has no room for a bar.
  if (AllowHScroll && Width > 0 && longest > Width) {
    HasHBar = true;
    HBar.Create(nullptr, X, Y + (h + 1) * RowsShown + 1, Width, h, 0, longest - Width, false,
                Width / (longest / Width), &HScroll, Width);
  }
}

// ---- Running ----

void ListBoxClass::Run() {
  const PaletteClass &p = RVK_Palette;
  int h = RVK_TextHeight();
  int count = GetCount();

  if (Selectable) {
    Selected = std::max(std::min(Selected, count - 1), 0);
    // Kept among the rows on show; a selection past them can only be there
    // while rows beyond them remain.
    if (KeepSelectionVisible) Selected = std::min(std::max(Selected, TopRow), TopRow + RowsShown - 1);
  }

  int boxHeight = (h + 1) * RowsShown + 1;
  RVK_DrawBevelBox(X, Y, X + Width, Y + boxHeight, p.ListUpperLeft, p.White, p.ListFill, RVK_Opaque);
  RVK_SetClipRect(X, Y, Width, boxHeight);

  int hoverRow = -1;
  int mb = mouse_b;
  for (int r = 0; r < RowsShown; r++) {
    int i = TopRow + r;
    if (i < 0 || i >= count) break;
    int ry = Y + (h + 1) * r;
    int right = X + Width - 1 - (HasVBar ? h : 0);
    bool in = RVK_MouseIn(X + 1, ry, right, ry + h + 1);
    if (in) hoverRow = i;
    int colour = p.Black;
    if (i == Selected && Selectable) {
      RVK_DrawRect(X + 1, ry + 1, X + Width - 2, ry + h, p.Black, true, RVK_Opaque);
      colour = p.ListFill;
    } else if ((mb & 1) && in) {
      // Shown selected from the next frame on.
      Selected = i;
    }
    const ListBoxItemClass &item = Items[(size_t)i];
    RVK_DrawText(RVK_FontStandard, X - HScroll + 1, ry, colour, item.Text.c_str());
    int columns = std::clamp<int>(item.ColumnCount, 0, (int)std::size(item.ColumnTexts));
    for (int c = 0; c < columns; c++)
      RVK_DrawText(RVK_FontStandard, X - HScroll + 1 + item.ColumnOffsets[c], ry, colour,
                   item.ColumnTexts[c].c_str());
  }
  RVK_ClearClipRect();

  if (hoverRow != -1 && (mouse_b & 1)) {
    RVK_WaitMouseUp();
    if (LastClicked == Selected) {
      // Two clicks on one row within a quarter of a second.
      if (!RVK_TimeElapsed(ClickTime, 25)) Activated = Selected;
    } else {
      LastClicked = Selected;
      RVK_GetTimeStamp(ClickTime);
    }
  }

  if (KeyboardOn) {
    if (keypressed()) {
      int k = readkey();
      switch (k >> 8) {
        case KEY_UP: ScrollUp(1); break;
        case KEY_DOWN: ScrollDown(1); break;
        case KEY_PGUP:
          Selected = std::max(Selected - RowsShown, 0);
          TopRow = std::max(TopRow - RowsShown, 0);
          break;
        case KEY_PGDN:
          Selected = std::min(Selected + RowsShown, count - 1);
          // A list shorter than its box keeps its first row on top.
          TopRow = std::max(std::min(TopRow + RowsShown, count - RowsShown), 0);
          break;
        default: simulate_keypress(k); break;
      }
    }
    int wheel = mouse_z;
    if (wheel > LastWheel)
      ScrollUp(wheel - LastWheel);
    else if (wheel < LastWheel)
      ScrollDown(LastWheel - wheel);
    LastWheel = wheel;
  }

  if (HasVBar) VBar.Run();
  if (HasHBar) HBar.Run();
}
