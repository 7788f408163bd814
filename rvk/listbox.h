// ListBoxClass: a scrolling list of text rows with word wrap and scroll bars.
#pragma once
#include <allegro.h>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>
#include "rvk/slider.h"
#include "rvk/texture.h"
#include "rvk/timer.h"

class ListBoxItemClass {
public:
  std::string Text;
  TextureClass Icon;
  std::string Tag;
  int16_t ColumnCount = 0;
  std::string ColumnTexts[8];
  int16_t ColumnOffsets[8] = {};
};

class ListBoxClass {
public:
  std::vector<ListBoxItemClass> Items;
  int32_t Selected = 0;
  int32_t X = 0, Y = 0;
  int32_t Width = 0;
  int32_t RowsShown = 0;
  int32_t HScroll = 0;
  int32_t TopRow = 0;
  SliderClass VBar, HBar;
  bool HasHBar = false, HasVBar = false;
  bool AllowHScroll = true;
  bool Selectable = true;
  bool KeyboardOn = false;
  int32_t Activated = -1;
  int32_t LastClicked = -1;
  TimeStampClass ClickTime;
  bool KeepSelectionVisible = false;
  int32_t LastWheel = 0;

  ListBoxClass() = default;
  ListBoxClass(const ListBoxClass &) = delete;  // the bars point into the list
  ListBoxClass &operator=(const ListBoxClass &) = delete;

  void Create(int x, int y, int width, int rowsShown);
  void AddItem(const char *text, const char *iconName, const char *tag);
  void AddText(const char *text);
  bool LoadFromTextFile(const char *path);
  void Clear();
  void Run();
  void ScrollUp(int n);
  void ScrollDown(int n);
  void UpdateSliders();
  int GetCount() const;
  ListBoxItemClass &GetItem(int index);
};

std::vector<std::pair<int, int>> RVK_SplitLines(const char *text, FONT *font, int maxWidth);
const char *RVK_Substring(const char *text, int start, int end);
