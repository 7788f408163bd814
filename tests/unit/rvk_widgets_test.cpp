// The arithmetic of the widgets, without a window: key names, button sizes
// and the hot-key cycle, toolbar layout and edge sliding, picker bar rows,
// menu rows and pulse, and the slider's knob and value.
#include <gtest/gtest.h>
#include <allegro.h>
#include <string>
#include <vector>
#include "rvk/button.h"
#include "rvk/keynames.h"
#include "rvk/menu.h"
#include "rvk/pickerbar.h"
#include "rvk/slider.h"
#include "rvk/toolbar.h"

TEST(KeyNames, TableEdgesAndOddEntries) {
  EXPECT_STREQ(RVK_GetKeyName(13), "m");
  EXPECT_STREQ(RVK_GetKeyName(1), "A");
  EXPECT_STREQ(RVK_GetKeyName(12), "L");
  EXPECT_STREQ(RVK_GetKeyName(14), "N");
  EXPECT_STREQ(RVK_GetKeyName(26), "Z");
  EXPECT_STREQ(RVK_GetKeyName(27), "0");
  EXPECT_STREQ(RVK_GetKeyName(36), "9");
  EXPECT_STREQ(RVK_GetKeyName(42), "5 (keypad)");
  EXPECT_STREQ(RVK_GetKeyName(47), "F1");
  EXPECT_STREQ(RVK_GetKeyName(51), "F5");
  EXPECT_STREQ(RVK_GetKeyName(58), "F12");
  EXPECT_STREQ(RVK_GetKeyName(KEY_ESC), "Escape");
  EXPECT_STREQ(RVK_GetKeyName(KEY_ENTER), "Enter");
  EXPECT_STREQ(RVK_GetKeyName(69), "\"");
  EXPECT_STREQ(RVK_GetKeyName(70), "\\");
  EXPECT_STREQ(RVK_GetKeyName(71), "/");
  EXPECT_STREQ(RVK_GetKeyName(74), "/");
  EXPECT_STREQ(RVK_GetKeyName(72), "Comma");
  EXPECT_STREQ(RVK_GetKeyName(85), "Down Cursor");
  EXPECT_STREQ(RVK_GetKeyName(89), "+");
  EXPECT_STREQ(RVK_GetKeyName(93), "Pause");
  EXPECT_STREQ(RVK_GetKeyName(115), "Left Shift");
  EXPECT_STREQ(RVK_GetKeyName(126), "Caps Lock");
  EXPECT_STREQ(RVK_GetKeyName(-5), "Mouse wheel down");
  EXPECT_STREQ(RVK_GetKeyName(-2), "Mouse 1");
  for (int code : {127, -6, -1, 0, 37, 41, 43, 46, 61, 86, 90, 91, 94, 114, 100000, -100000})
    EXPECT_STREQ(RVK_GetKeyName(code), "(none)") << code;
}

TEST(Button, CaptionedSizeCentresPictureAndCaption) {
  // Natural size for a 48-pixel caption in a 13-pixel font.
  ButtonSizeClass s = RVK_ButtonSize(-1, -1, 48, 13);
  EXPECT_EQ(s.Width, 88);
  EXPECT_EQ(s.Height, 34);
  EXPECT_EQ(s.IconX, 3);
  EXPECT_EQ(s.CaptionX, 37);
  EXPECT_EQ(s.IconY, 1);
  EXPECT_EQ(s.CaptionY, 10);
  // The picker bar's 122-wide button, a font taller than 32, odd halves.
  s = RVK_ButtonSize(122, -1, 33, 40);
  EXPECT_EQ(s.Width, 122);
  EXPECT_EQ(s.Height, 42);
  EXPECT_EQ(s.IconX, 27);
  EXPECT_EQ(s.CaptionX, 61);
  EXPECT_EQ(s.IconY, 5);
  EXPECT_EQ(s.CaptionY, 1);
  // A caption wider than the button puts the group's start left of it.
  s = RVK_ButtonSize(50, 20, 80, 13);
  EXPECT_EQ(s.IconX, -32);
  EXPECT_EQ(s.IconY, -6);
}

static std::vector<ButtonClass> Row(const std::vector<int> &styles) {
  std::vector<ButtonClass> row(styles.size());
  for (size_t i = 0; i < styles.size(); i++) row[i].Style = styles[i];
  return row;
}

TEST(Toolbar, LayoutPlacesButtonsAndTakesTheWiderOfTitleAndRow) {
  std::vector<ButtonClass> row = Row({0, 1, 0, 2});
  EXPECT_EQ(RVK_ToolbarLayout(row, 100, 50, 13, 56, -1), 122);
  EXPECT_EQ(row[0].X, 102);
  EXPECT_EQ(row[1].X, 138);
  EXPECT_EQ(row[2].X, 148);
  EXPECT_EQ(row[3].X, 184);
  for (const ButtonClass &b : row) EXPECT_EQ(b.Y, 71);
  // A status text widens the row by its length + 2, a long title by itself.
  EXPECT_EQ(RVK_ToolbarLayout(row, 100, 50, 13, 56, 200), 324);
  EXPECT_EQ(RVK_ToolbarLayout(row, 100, 50, 13, 400, 200), 406);
  std::vector<ButtonClass> none;
  EXPECT_EQ(RVK_ToolbarLayout(none, 0, 0, 13, 20, 50), 56);
  EXPECT_EQ(RVK_ToolbarLayout(none, 0, 0, 13, 60, 50), 66);
  EXPECT_EQ(RVK_ToolbarLayout(none, 0, 0, 13, 0, -1), 6);
}

TEST(Toolbar, EdgeSlidingBringsBackAToolbarThatHangsOff) {
  ToolbarClass t;
  t.Width = 200;
  t.Height = 61;
  t.X = -50;
  t.Y = 100;
  RVK_ToolbarEdgeSlide(t, 0, 120, 13, 800, 600);
  EXPECT_EQ(t.X, -47);
  RVK_ToolbarEdgeSlide(t, 1, 161, 13, 800, 600);  // both far edges inside
  EXPECT_EQ(t.X, -44);
  RVK_ToolbarEdgeSlide(t, 2, 120, 13, 800, 600);
  RVK_ToolbarEdgeSlide(t, 0, 162, 13, 800, 600);
  EXPECT_EQ(t.X, -44);
  t.X = 700;
  RVK_ToolbarEdgeSlide(t, 798, 120, 13, 800, 600);
  EXPECT_EQ(t.X, 697);
  RVK_ToolbarEdgeSlide(t, 797, 120, 13, 800, 600);
  EXPECT_EQ(t.X, 697);
  t.X = 600;  // right edge exactly at the screen's: no slide
  RVK_ToolbarEdgeSlide(t, 799, 120, 13, 800, 600);
  EXPECT_EQ(t.X, 600);
  t.Y = -10;
  RVK_ToolbarEdgeSlide(t, 400, 1, 13, 800, 600);
  EXPECT_EQ(t.Y, -7);
  t.Y = 560;
  RVK_ToolbarEdgeSlide(t, 400, 598, 13, 800, 600);
  EXPECT_EQ(t.Y, 557);
  RVK_ToolbarEdgeSlide(t, 400, 597, 13, 800, 600);
  EXPECT_EQ(t.Y, 557);
}

TEST(PickerBar, VisibleRowsAndMaxTopRow) {
  // A bar from 40 to 560 with 34-high buttons: rows from 78, Down at 524.
  EXPECT_EQ(RVK_PickerVisibleRows(524, 78, 96), 4);
  EXPECT_EQ(RVK_PickerVisibleRows(524, 78, 111), 4);
  EXPECT_EQ(RVK_PickerVisibleRows(524, 78, 112), 3);
  EXPECT_EQ(RVK_PickerVisibleRows(524, 78, 0), 0);
  EXPECT_EQ(RVK_PickerVisibleRows(80, 78, 96), 0);
  EXPECT_EQ(RVK_PickerVisibleRows(60, 78, 96), 0);
  EXPECT_EQ(RVK_PickerMaxTopRow(5, 4), 1);
  EXPECT_EQ(RVK_PickerMaxTopRow(4, 4), 0);
  EXPECT_EQ(RVK_PickerMaxTopRow(2, 4), 0);
  EXPECT_EQ(RVK_PickerMaxTopRow(30, 0), 30);
  PickerBarClass bar;
  bar.X = 2;
  bar.RowsY = 78;
  bar.ThumbHeight = 96;
  bar.VisibleRows = 4;
  int x, y, w, h;
  RVK_PickerClipRect(bar, x, y, w, h);
  EXPECT_EQ(x, 2);
  EXPECT_EQ(y, 77);
  EXPECT_EQ(w, 128);
  EXPECT_EQ(h, 393);
}

TEST(Menu, RowRectanglesGrowWithATallFont) {
  MenuRowClass r = RVK_MenuRow(0, 10, 13, 320, 57);
  EXPECT_EQ(r.Y, 20);
  EXPECT_EQ(r.X1, 15);
  EXPECT_EQ(r.Y1, 20);
  EXPECT_EQ(r.X2, 377);
  EXPECT_EQ(r.Y2, 60);
  r = RVK_MenuRow(2, 10, 13, 320, 57);
  EXPECT_EQ(r.Y, 100);
  EXPECT_EQ(r.Y2, 140);
  r = RVK_MenuRow(3, 32, 40, 400, 65);
  EXPECT_EQ(r.Y, 42 + 3 * 48);
  EXPECT_EQ(r.Y2, 42 + 3 * 48 + 48);
  EXPECT_EQ(r.X2, 465);
}

TEST(Menu, PulseTurnsAtItsBounds) {
  MenuPulseClass p;
  std::vector<int> sizes, lights;
  for (int i = 0; i < 45; i++) {
    p.Step();
    sizes.push_back(p.Size);
    lights.push_back(p.Brightness);
  }
  EXPECT_EQ(sizes[0], 11);
  EXPECT_EQ(sizes[18], 65);  // 64 or above: stop growing
  EXPECT_EQ(sizes[19], 62);
  EXPECT_EQ(sizes[37], 8);  // 8 or below: grow again
  EXPECT_EQ(sizes[38], 11);
  EXPECT_EQ(lights[0], 134);
  EXPECT_EQ(lights[20], 254);  // never past 255
  EXPECT_EQ(lights[21], 248);
  EXPECT_EQ(lights[39], 140);
  EXPECT_EQ(lights[40], 146);
}

static SliderClass Slider(int length, int min, int max, bool vertical, int knob, int page) {
  SliderClass s;
  static int value = 0;
  s.Create("Size", 10, 20, vertical ? 12 : length, vertical ? length : 12, min, max, vertical, knob, &value, page);
  return s;
}

TEST(Slider, KnobLengthFromSizeOrPage) {
  EXPECT_EQ(Slider(200, 0, 10, false, 5, -1).KnobLength(), 20);
  EXPECT_EQ(Slider(200, 0, 10, false, 60, -1).KnobLength(), 60);
  SliderClass full = Slider(100, 0, 10, true, 100, -1);
  EXPECT_EQ(full.KnobSize, 32);
  EXPECT_EQ(full.KnobLength(), 32);
  EXPECT_EQ(Slider(100, 0, 10, true, 150, -1).KnobSize, 32);
  EXPECT_EQ(Slider(100, 0, 10, true, 99, -1).KnobSize, 99);
  EXPECT_EQ(Slider(200, 0, 39, false, -1, 10).KnobLength(), 50);
  EXPECT_EQ(Slider(200, 0, 39, false, -1, -1).KnobLength(), 20);
  // A range (Max - Min + 1) of 0 counts as 1.
  EXPECT_EQ(Slider(200, 1, 0, false, -1, 1).KnobLength(), 200);
}

TEST(Slider, KnobPositionAndValueFromThePointer) {
  SliderClass s = Slider(200, 0, 39, false, -1, 10);  // knob 50, room 150
  EXPECT_EQ(s.KnobPosition(0), 0);
  EXPECT_EQ(s.KnobPosition(20), 76);
  EXPECT_EQ(s.KnobPosition(39), 150);
  int v = -99;
  ASSERT_TRUE(s.ValueAt(0, v));
  EXPECT_EQ(v, 0);  // left of the knob's half length: Min
  ASSERT_TRUE(s.ValueAt(200, v));
  EXPECT_EQ(v, 39);  // far end: Max
  ASSERT_TRUE(s.ValueAt(100, v));
  EXPECT_EQ(v, 19);  // 50 percent of 39, truncated
  ASSERT_TRUE(s.ValueAt(26, v));
  EXPECT_EQ(v, 0);  // 1 pixel is 0 percent
  ASSERT_TRUE(s.ValueAt(28, v));
  EXPECT_EQ(v, 0);  // 2 percent of 39 is 0.78
  ASSERT_TRUE(s.ValueAt(31, v));
  EXPECT_EQ(v, 1);  // 4 percent: 1.56
  // A positive Min still clamps the low end.
  SliderClass m = Slider(200, 5, 39, false, 50, -1);
  ASSERT_TRUE(m.ValueAt(30, v));
  EXPECT_EQ(v, 5);
  // A knob that fills the slider leaves nowhere to go.
  SliderClass stuck = Slider(32, 0, 10, false, 40, -1);
  v = 7;
  EXPECT_FALSE(stuck.ValueAt(16, v));
  EXPECT_EQ(v, 7);
  EXPECT_EQ(Slider(10, 0, 10, false, -1, -1).KnobPosition(10), -10);
}
