// The arithmetic of the widgets, without a window: key names, button sizes,
// toolbar layout and edge sliding, picker bar rows, menu rows and pulse, and
// the slider's knob and value.
#include <gtest/gtest.h>
#include <allegro.h>
#include <string>
#include <tuple>
#include <vector>
#include "rvk/button.h"
#include "rvk/keynames.h"
#include "rvk/menu.h"
#include "rvk/pickerbar.h"
#include "rvk/slider.h"
#include "rvk/toolbar.h"

TEST(KeyNames, TableEdgesAndOddEntries) {
  const std::pair<int, const char *> names[] = {
      {13, "m"},      {1, "A"},           {12, "L"},          {14, "N"},         {26, "Z"},
      {27, "0"},      {36, "9"},          {42, "5 (keypad)"}, {47, "F1"},        {58, "F12"},
      {59, "Escape"}, {67, "Enter"},      {69, "\""},         {70, "\\"},        {71, "/"},
      {74, "/"},      {72, "Comma"},      {85, "Down Cursor"}, {89, "+"},        {93, "Pause"},
      {115, "Left Shift"}, {126, "Caps Lock"}, {-5, "Mouse wheel down"}, {-2, "Mouse 1"},
  };
  for (const auto &n : names) EXPECT_STREQ(RVK_GetKeyName(n.first), n.second) << n.first;
  for (int code : {127, -6, -1, 0, 37, 41, 43, 46, 61, 86, 90, 91, 94, 114, 100000, -100000})
    EXPECT_STREQ(RVK_GetKeyName(code), "(none)") << code;
}

TEST(Button, SizeCentresPictureAndCaptionAsOneGroup) {
  auto size = [](int w, int h, int tw, int th) {
    ButtonSizeClass s = RVK_ButtonSize(w, h, tw, th);
    return std::make_tuple(s.Width, s.Height, s.IconX, s.CaptionX, s.IconY, s.CaptionY);
  };
  // Natural size for a 48-pixel caption in a 13-pixel font.
  EXPECT_EQ(size(-1, -1, 48, 13), std::make_tuple(88, 34, 3, 37, 1, 10));
  // The picker bar's 122-wide button, a font taller than 32, odd halves.
  EXPECT_EQ(size(122, -1, 33, 40), std::make_tuple(122, 42, 27, 61, 5, 1));
  // A caption wider than the button puts the group's start left of it.
  EXPECT_EQ(size(50, 20, 80, 13), std::make_tuple(50, 20, -32, 2, -6, 3));
}

TEST(Toolbar, LayoutPlacesButtonsAndTakesTheWiderOfTitleAndRow) {
  std::vector<ButtonClass> row(4), none;
  row[1].Style = 1;  // a separator
  row[3].Style = 2;
  const int xs[] = {102, 138, 148, 184};
  EXPECT_EQ(RVK_ToolbarLayout(row, 100, 50, 13, 56, -1), 122);
  for (size_t i = 0; i < row.size(); i++) EXPECT_EQ(std::make_pair(row[i].X, row[i].Y), std::make_pair(xs[i], 71)) << i;
  // A status text widens the row by its length + 2, a long title by itself;
  // with no buttons the width is the greater of the two.
  EXPECT_EQ(RVK_ToolbarLayout(row, 100, 50, 13, 56, 200), 324);
  EXPECT_EQ(RVK_ToolbarLayout(row, 100, 50, 13, 400, 200), 406);
  EXPECT_EQ(RVK_ToolbarLayout(none, 0, 0, 13, 20, 50), 56);
  EXPECT_EQ(RVK_ToolbarLayout(none, 0, 0, 13, 60, 50), 66);
  EXPECT_EQ(RVK_ToolbarLayout(none, 0, 0, 13, 0, -1), 6);
}

TEST(Toolbar, EdgeSlidingBringsBackAToolbarThatHangsOff) {
  // A 200 x 61 toolbar (13-pixel font) on an 800 x 600 screen; each step
  // puts it at (x, y), points at (mx, my) and expects where it ends.
  struct Step {
    int X, Y, Mx, My, WantX, WantY;
  } steps[] = {
      {-50, 100, 0, 120, -47, 100},   // left edge, in the strip's rows
      {-47, 100, 1, 161, -44, 100},   // both far edges of the zone count
      {-44, 100, 2, 120, -44, 100},   // one column too far in
      {-44, 100, 0, 162, -44, 100},   // one row below the strip
      {700, 100, 798, 120, 697, 100}, // right edge
      {697, 100, 797, 120, 697, 100},
      {600, 100, 799, 120, 600, 100}, // right edge exactly at the screen's
      {600, -10, 400, 1, 600, -7},    // top
      {600, 560, 400, 598, 600, 557}, // bottom
      {600, 557, 400, 597, 600, 557},
  };
  for (const Step &s : steps) {
    ToolbarClass t;
    t.Width = 200;
    t.Height = 61;
    t.X = s.X;
    t.Y = s.Y;
    RVK_ToolbarEdgeSlide(t, s.Mx, s.My, 13, 800, 600);
    EXPECT_EQ(std::make_pair(t.X, t.Y), std::make_pair(s.WantX, s.WantY)) << s.Mx << "," << s.My;
  }
}

TEST(PickerBar, VisibleRowsMaxTopRowAndClip) {
  // A bar from 40 to 560 with 34-high buttons: rows from 78, Down at 524.
  const int rows[][4] = {{524, 78, 96, 4}, {524, 78, 111, 4}, {524, 78, 112, 3},
                         {524, 78, 0, 0},  {80, 78, 96, 0},   {60, 78, 96, 0}};
  for (const auto &r : rows) EXPECT_EQ(RVK_PickerVisibleRows(r[0], r[1], r[2]), r[3]) << r[0] << " " << r[2];
  const int tops[][3] = {{5, 4, 1}, {4, 4, 0}, {2, 4, 0}, {30, 0, 30}};
  for (const auto &t : tops) EXPECT_EQ(RVK_PickerMaxTopRow(t[0], t[1]), t[2]) << t[0] << " " << t[1];
  PickerBarClass bar;
  bar.X = 2;
  bar.RowsY = 78;
  bar.ThumbHeight = 96;
  bar.VisibleRows = 4;
  int x, y, w, h;
  RVK_PickerClipRect(bar, x, y, w, h);
  EXPECT_EQ(std::make_tuple(x, y, w, h), std::make_tuple(2, 77, 128, 393));
}

TEST(Menu, RowRectanglesGrowWithATallFontAndThePulseTurns) {
  auto row = [](int i, int mh, int h, int width, int textX) {
    MenuRowClass r = RVK_MenuRow(i, mh, h, width, textX);
    return std::make_tuple(r.Y, r.X1, r.Y1, r.X2, r.Y2);
  };
  EXPECT_EQ(row(0, 10, 13, 320, 57), std::make_tuple(20, 15, 20, 377, 60));
  EXPECT_EQ(row(2, 10, 13, 320, 57), std::make_tuple(100, 15, 100, 377, 140));
  EXPECT_EQ(row(3, 32, 40, 400, 65), std::make_tuple(186, 15, 186, 465, 234));

  // Create leaves no sample of an earlier life behind.
  MenuClass menu;
  menu.SelectSample = menu.MoveSample = menu.BackSample = (SAMPLE *)&menu;
  menu.Create("", "", "");
  EXPECT_TRUE(!menu.SelectSample && !menu.MoveSample && !menu.BackSample);

  MenuPulseClass p;
  std::vector<int> sizes, lights;
  for (int i = 0; i < 45; i++) {
    p.Step();
    sizes.push_back(p.Size);
    lights.push_back(p.Brightness);
  }
  // Size stops growing at 64 or above and grows again at 8 or below; the
  // brightness never passes 255.
  EXPECT_EQ(std::vector<int>({sizes[0], sizes[18], sizes[19], sizes[37], sizes[38]}),
            std::vector<int>({11, 65, 62, 8, 11}));
  EXPECT_EQ(std::vector<int>({lights[0], lights[20], lights[21], lights[39], lights[40]}),
            std::vector<int>({134, 254, 248, 140, 146}));
}

static SliderClass Slider(int length, int min, int max, int knob, int page, bool vertical = false) {
  SliderClass s;
  static int value = 0;
  s.Create("Size", 10, 20, vertical ? 12 : length, vertical ? length : 12, min, max, vertical, knob, &value, page);
  return s;
}

TEST(Slider, KnobLengthFromSizeOrPage) {
  EXPECT_EQ(Slider(200, 0, 10, 5, -1).KnobLength(), 20);
  EXPECT_EQ(Slider(200, 0, 10, 60, -1).KnobLength(), 60);
  // A knob as long as the slider, or longer, becomes 32.
  SliderClass full = Slider(100, 0, 10, 100, -1, true);
  EXPECT_EQ(std::make_pair(full.KnobSize, full.KnobLength()), std::make_pair(32, 32));
  EXPECT_EQ(Slider(100, 0, 10, 150, -1, true).KnobSize, 32);
  EXPECT_EQ(Slider(100, 0, 10, 99, -1, true).KnobSize, 99);
  EXPECT_EQ(Slider(200, 0, 39, -1, 10).KnobLength(), 50);
  EXPECT_EQ(Slider(200, 0, 39, -1, -1).KnobLength(), 20);
  // A range (Max - Min + 1) of 0 counts as 1.
  EXPECT_EQ(Slider(200, 1, 0, -1, 1).KnobLength(), 200);
}

TEST(Slider, KnobPositionAndValueFromThePointer) {
  SliderClass s = Slider(200, 0, 39, -1, 10);  // knob 50, room 150
  EXPECT_EQ(std::make_tuple(s.KnobPosition(0), s.KnobPosition(20), s.KnobPosition(39)), std::make_tuple(0, 76, 150));
  // Left of the knob's half length: Min; far end: Max; between, the percent
  // of the room (truncated) times the range.
  const int values[][2] = {{0, 0}, {200, 39}, {100, 19}, {26, 0}, {28, 0}, {31, 1}};
  for (const auto &c : values) {
    int v = -99;
    ASSERT_TRUE(s.ValueAt(c[0], v));
    EXPECT_EQ(v, c[1]) << c[0];
  }
  // A positive Min still clamps the low end.
  int v = -99;
  ASSERT_TRUE(Slider(200, 5, 39, 50, -1).ValueAt(30, v));
  EXPECT_EQ(v, 5);
  // A knob that fills the slider leaves nowhere to go.
  v = 7;
  EXPECT_FALSE(Slider(32, 0, 10, 40, -1).ValueAt(16, v));
  EXPECT_EQ(v, 7);
  EXPECT_EQ(Slider(10, 0, 10, -1, -1).KnobPosition(10), -10);
}
