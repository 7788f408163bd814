// Exact pixels of the widgets in a window: a toolbar's frame and width, a
// button at rest and under the pointer, tooltips at the screen edge and with
// percent signs, a menu entry's literal text, the picker bar's clip, the
// slider with nothing to adjust, and the text field's box. The pointer is
// placed by real X input.
#include <allegro.h>
#include <gtest/gtest.h>
#include <GL/gl.h>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>
#include "rvk/button.h"
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/menu.h"
#include "rvk/pickerbar.h"
#include "rvk/slider.h"
#include "rvk/textfield.h"
#include "rvk/toolbar.h"
#include "support/gl_env.h"
#include "rvk_xinput.h"

namespace {

const TkPixel Black{0, 0, 0};
const TkPixel Panel{147, 147, 147};
const TkPixel Hover{55, 55, 255};
const TkPixel Green{0, 200, 0};

bool MovePointer(int x, int y) {
  return TkMovePointer(x, y);
}

void StartFrame() {
  glClearColor(0, 0, 0, 1);
  RVK_BeginFrame();
}

// A 32x32 icon, transparent but for a green 8x8 block at (12, 12).
TextureClass BlockIcon() {
  static TextureClass icon;
  if (icon.Loaded) return icon;
  BITMAP *b = create_bitmap(32, 32);
  clear_to_color(b, makecol(255, 0, 255));
  rectfill(b, 12, 12, 19, 19, makecol(0, 200, 0));
  icon.CreateFromBitmap(b);
  destroy_bitmap(b);
  return icon;
}

// The red channel of a rectangle of the back buffer, row by row.
std::vector<int> Reds(int x0, int y0, int x1, int y1) {
  std::vector<int> reds;
  for (int y = y0; y <= y1; y++)
    for (int x = x0; x <= x1; x++) reds.push_back(TkReadPixel(x, y).R);
  return reds;
}

}  // namespace

TEST(WidgetPixels, ToolbarFrameAndWidth) {
  ASSERT_TRUE(MovePointer(790, 590));
  int th = text_height(RVK_FontStandard);
  ToolbarClass t;
  t.Create(100, 100, false);
  t.AddButtonEx("One", BlockIcon(), -1, false);
  t.AddButtonEx("", BlockIcon(), -1, true);
  t.AddButtonEx("Two", BlockIcon(), -1, false);
  t.SetTitle("T");
  StartFrame();
  EXPECT_EQ(t.Run(), -1);
  // Two buttons and a separator: 2 + 36 + 10 + 36 + 2.
  EXPECT_EQ(t.Width, 86);
  EXPECT_EQ(t.Height, th + 48);
  EXPECT_EQ(t.Buttons[2].X, 148);
  EXPECT_EQ(t.Buttons[2].Y, 100 + th + 8);
  int right = 100 + 86 - 1, bottom = 100 + th + 48 - 1;
  EXPECT_EQ(TkReadPixel(150, 100), (TkPixel{179, 179, 179}));          // strip's upper edge
  EXPECT_EQ(TkReadPixel(150, 100 + th + 4), (TkPixel{79, 79, 79}));   // strip's lower edge
  EXPECT_EQ(TkReadPixel(170, 102 + th), (TkPixel{3, 3, 255}));        // strip face
  EXPECT_EQ(TkReadPixel(right, 100 + th + 20), (TkPixel{107, 107, 107}));
  EXPECT_EQ(TkReadPixel(150, bottom), (TkPixel{107, 107, 107}));
  EXPECT_EQ(TkReadPixel(100, 100 + th + 20), (TkPixel{211, 211, 211}));
  EXPECT_EQ(TkReadPixel(right + 1, 100 + th + 20), Black);
  EXPECT_EQ(TkReadPixel(150, bottom + 1), Black);
  EXPECT_EQ(TkReadPixel(99, 100 + th + 20), Black);
  // The buttons' icons at their places; the separator is only 6 wide.
  EXPECT_EQ(TkReadPixel(102 + 15, 100 + th + 8 + 15), Green);
  EXPECT_EQ(TkReadPixel(148 + 15, 100 + th + 8 + 15), Green);
  EXPECT_EQ(TkReadPixel(102 + 34, 100 + th + 8 + 15), Panel);
  RVK_End2D(0);
  // A status text widens the toolbar by its length + 2.
  t.SetStatus("Status");
  t.Layout();
  EXPECT_EQ(t.Width, 86 + text_length(RVK_FontStandard, "Status") + 2);
  t.Clear();
}

TEST(WidgetPixels, ButtonMovesAPixelUnderThePointer) {
  ButtonClass b;
  RVK_CreateButtonEx(b, "Go", BlockIcon(), 100, 100, -1, false);
  ASSERT_TRUE(MovePointer(300, 300));
  StartFrame();
  EXPECT_FALSE(b.Run());
  EXPECT_EQ(TkReadPixel(100, 100), Panel);
  EXPECT_EQ(TkReadPixel(132, 132), Panel);
  EXPECT_EQ(TkReadPixel(133, 120), Black);
  EXPECT_EQ(TkReadPixel(120, 133), Black);
  EXPECT_EQ(TkReadPixel(99, 120), Black);
  EXPECT_EQ(TkReadPixel(115, 115), Green);
  EXPECT_EQ(TkReadPixel(111, 115), Panel);
  RVK_End2D(0);

  // Both far edges of the button count as under the pointer.
  ASSERT_TRUE(MovePointer(132, 132));
  StartFrame();
  EXPECT_FALSE(b.Run());
  EXPECT_EQ(TkReadPixel(101, 101), Hover);
  EXPECT_EQ(TkReadPixel(116, 116), Green);
  EXPECT_EQ(TkReadPixel(112, 116), Hover);
  EXPECT_EQ(TkReadPixel(134, 120), Black);
  // The sunken edge, at alpha 128: dark above and left, light below and right.
  EXPECT_NEAR(TkReadPixel(120, 100).R, 54, 1);
  EXPECT_NEAR(TkReadPixel(100, 120).R, 54, 1);
  EXPECT_NEAR(TkReadPixel(133, 120).R, 133, 1);
  EXPECT_NEAR(TkReadPixel(120, 133).R, 133, 1);
  RVK_End2D(0);

  b.Enabled = false;
  StartFrame();
  EXPECT_FALSE(b.Run());
  // Disabled: no hover, and the face is covered again at half opacity.
  EXPECT_EQ(TkReadPixel(100, 100), Panel);
  EXPECT_EQ(TkReadPixel(101, 101), Panel);
  TkPixel dimmed = TkReadPixel(115, 115);
  EXPECT_NEAR(dimmed.R, 73, 1);
  EXPECT_NEAR(dimmed.G, 174, 1);
  RVK_End2D(0);
}

TEST(WidgetPixels, TooltipStaysOnScreenAndShowsPercentSignsLiterally) {
  int th = text_height(RVK_FontStandard) + 4;
  const char *text = "50% %s - [m]";  // KEY_M's name is the small letter
  int tw = text_length(RVK_FontStandard, text) + 4;
  ButtonClass b;
  RVK_CreateButtonEx(b, "50% %s", BlockIcon(), -30, 560, KEY_M, false);
  ASSERT_TRUE(MovePointer(1, 570));
  StartFrame();
  b.Run();
  RVK_End2D(0);
  // Asked for at (-9, 613): moved to the left edge and up onto the screen.
  EXPECT_EQ(TkReadPixel(tw, 600 - th), (TkPixel{128, 128, 128}));
  EXPECT_EQ(TkReadPixel(tw, 599), (TkPixel{128, 128, 128}));
  EXPECT_EQ(TkReadPixel(tw + 1, 600 - th), Black);
  EXPECT_EQ(TkReadPixel(tw, 599 - th), Black);
  std::vector<int> shown = Reds(6, 600 - th, tw, 599);

  StartFrame();
  RVK_ShowTooltip(0, 600 - th, "%s", text);
  RVK_End2D(0);
  EXPECT_EQ(Reds(6, 600 - th, tw, 599), shown);
}

TEST(WidgetPixels, MenuEntryTextIsLiteral) {
  ASSERT_TRUE(MovePointer(790, 300));
  const char *name = "100% %s %d";
  MenuClass menu;
  menu.Create("Title %s", "Footer", "");
  menu.AddEntry(name, "no such icon", "");
  int h = text_height(RVK_FontStandard), rh = h > 32 ? h : 32;
  int mh = text_height(RVK_FontMedium);
  int ty = mh + 10 + (rh - h + 8) / 2;
  int right = menu.TextX + text_length(RVK_FontStandard, name) + 8;
  StartFrame();
  EXPECT_FALSE(menu.Draw());
  // The selected entry's band: menu blue at 96 over black.
  EXPECT_EQ(TkReadPixel(right + 20, mh + 12), (TkPixel{0, 0, 90}));
  std::vector<int> shown = Reds(menu.TextX - 2, ty, right, ty + h - 1);
  RVK_End2D(0);

  StartFrame();
  RVK_DrawText(RVK_FontStandard, menu.TextX, ty, makecol(255, 255, 255), name);
  std::vector<int> literal = Reds(menu.TextX - 2, ty, right, ty + h - 1);
  RVK_End2D(0);
  EXPECT_EQ(shown, literal);
  int ink = 0;
  for (int r : literal) ink += r > 128;
  EXPECT_GT(ink, 20);
}

TEST(WidgetPixels, PickerBarClipsItsRowsAndFramesTheHoveredOne) {
  PickerBarClass bar;
  bar.Setup(40, 400, 64);
  EXPECT_EQ(bar.RowsY, 78);
  EXPECT_EQ(bar.DownButton.Y, 364);
  EXPECT_EQ(bar.VisibleRows, 4);
  BITMAP *blue = create_bitmap(128, 64);
  clear_to_color(blue, makecol(0, 0, 200));
  for (int i = 0; i < 5; i++) bar.AddBitmap(blue, "row");
  destroy_bitmap(blue);
  EXPECT_EQ(bar.MaxTopRow, 1);

  ASSERT_TRUE(MovePointer(60, 78 + 2 * 66 + 20));
  StartFrame();
  EXPECT_EQ(bar.Run(), -1);
  GLint box[4];
  glGetIntegerv(GL_SCISSOR_BOX, box);
  EXPECT_EQ(box[0], 2);
  EXPECT_EQ(box[1], 600 - 77 - 265 - 1);
  EXPECT_EQ(box[2], 128);
  EXPECT_EQ(box[3], 265);
  EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
  // A row: blue at 192 over the bar's face, itself at 192 over black.
  TkPixel row = TkReadPixel(60, 100);
  EXPECT_NEAR(row.R, 27, 1);
  EXPECT_NEAR(row.B, 178, 1);
  // At x = 2 a row lies over the bar's light left edge; the hovered third
  // row has a yellow frame at 192 over that, the second none.
  TkPixel edge = TkReadPixel(2, 78 + 66 + 10);
  EXPECT_NEAR(edge.R, 46, 1);
  EXPECT_NEAR(edge.B, 197, 1);
  TkPixel frame = TkReadPixel(2, 78 + 2 * 66 + 10);
  EXPECT_NEAR(frame.R, 203, 1);
  EXPECT_NEAR(frame.G, 203, 1);
  EXPECT_NEAR(frame.B, 49, 1);
  RVK_End2D(0);
  bar.Free();
  StartFrame();
  EXPECT_EQ(bar.Run(), -1);
  EXPECT_EQ(TkReadPixel(60, 100), Black);  // an empty bar draws nothing
  RVK_End2D(0);
}

TEST(WidgetPixels, SliderTroughKnobAndNothingToAdjust) {
  int value = 10;
  SliderClass s;
  s.Create("Vol", 100, 100, 200, 14, 0, 0, false, 5, &value, -1);
  ASSERT_TRUE(MovePointer(150, 107));
  StartFrame();
  s.Run();
  RVK_End2D(0);
  EXPECT_EQ(TkReadPixel(150, 107), (TkPixel{79, 79, 79}));
  EXPECT_EQ(TkReadPixel(290, 107), (TkPixel{79, 79, 79}));
  EXPECT_EQ(TkReadPixel(150, 100), (TkPixel{131, 131, 131}));
  EXPECT_EQ(TkReadPixel(150, 114), (TkPixel{179, 179, 179}));
  EXPECT_EQ(Reds(100, 116, 300, 140), std::vector<int>(201 * 25, 0));  // no label, no tooltip

  s.Max = 10;
  StartFrame();
  s.Run();
  // Knob 5 is drawn 20 long, at (200 - 20) x 10 / 10.
  EXPECT_EQ(TkReadPixel(290, 107), (TkPixel{3, 3, 131}));
  EXPECT_EQ(TkReadPixel(280, 107), (TkPixel{3, 3, 255}));
  EXPECT_EQ(TkReadPixel(300, 107), (TkPixel{83, 83, 255}));
  EXPECT_EQ(TkReadPixel(279, 107), (TkPixel{79, 79, 79}));
  RVK_End2D(0);
}
