// Exact pixels of the widgets in a window: a toolbar's frame and width, a
// button at rest and under the pointer, tooltips at the screen edge and with
// percent signs, a menu entry's literal text, the picker bar's clip, the
// slider with nothing to adjust. The pointer is placed by real X input.
#include <allegro.h>
#include <gtest/gtest.h>
#include <GL/gl.h>
#include <initializer_list>
#include <string>
#include <tuple>
#include <vector>
#include "rvk/button.h"
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/menu.h"
#include "rvk/pickerbar.h"
#include "rvk/slider.h"
#include "rvk/toolbar.h"
#include "support/gl_env.h"
#include "rvk_xinput.h"

namespace {

const TkPixel Black{0, 0, 0}, Panel{147, 147, 147}, Hover{55, 55, 255}, Green{0, 200, 0};

struct At {
  int X, Y;
  TkPixel Colour;
};

void ExpectPixels(std::initializer_list<At> list) {
  for (const At &e : list) EXPECT_EQ(TkReadPixel(e.X, e.Y), e.Colour) << "at " << e.X << "," << e.Y;
}

// A pixel's channels, to within one step of blending.
void ExpectNearPixel(int x, int y, int r, int g, int b) {
  TkPixel p = TkReadPixel(x, y);
  EXPECT_NEAR(p.R, r, 1) << "at " << x << "," << y;
  EXPECT_NEAR(p.G, g, 1) << "at " << x << "," << y;
  EXPECT_NEAR(p.B, b, 1) << "at " << x << "," << y;
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
  ASSERT_TRUE(TkMovePointer(790, 590));
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
  EXPECT_EQ(std::make_tuple(t.Width, t.Height, t.Buttons[2].X, t.Buttons[2].Y),
            std::make_tuple(86, th + 48, 148, 100 + th + 8));
  int right = 100 + 86 - 1, bottom = 100 + th + 48 - 1, mid = 100 + th + 20, icons = 100 + th + 8 + 15;
  // The strip's upper and lower edges and face, the body's edges and what
  // lies just outside; the icons at their places, the separator only 6 wide.
  ExpectPixels({{150, 100, {179, 179, 179}}, {150, 100 + th + 4, {79, 79, 79}}, {170, 102 + th, {3, 3, 255}},
                {right, mid, {107, 107, 107}}, {150, bottom, {107, 107, 107}}, {100, mid, {211, 211, 211}},
                {right + 1, mid, Black}, {150, bottom + 1, Black}, {99, mid, Black},
                {102 + 15, icons, Green}, {148 + 15, icons, Green}, {102 + 34, icons, Panel}});
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
  ASSERT_TRUE(TkMovePointer(300, 300));
  StartFrame();
  EXPECT_FALSE(b.Run());
  ExpectPixels({{100, 100, Panel}, {132, 132, Panel}, {133, 120, Black}, {120, 133, Black}, {99, 120, Black},
                {115, 115, Green}, {111, 115, Panel}});
  RVK_End2D(0);

  // Both far edges of the button count as under the pointer.
  ASSERT_TRUE(TkMovePointer(132, 132));
  StartFrame();
  EXPECT_FALSE(b.Run());
  ExpectPixels({{101, 101, Hover}, {116, 116, Green}, {112, 116, Hover}, {134, 120, Black}});
  // The sunken edge, at alpha 128: dark above and left, light below and right.
  ExpectNearPixel(120, 100, 54, 54, 54);
  ExpectNearPixel(100, 120, 54, 54, 54);
  ExpectNearPixel(133, 120, 133, 133, 233);
  ExpectNearPixel(120, 133, 133, 133, 233);
  RVK_End2D(0);

  // Disabled: no hover, and the face is covered again at half opacity.
  b.Enabled = false;
  StartFrame();
  EXPECT_FALSE(b.Run());
  ExpectPixels({{100, 100, Panel}, {101, 101, Panel}});
  ExpectNearPixel(115, 115, 73, 174, 73);
  RVK_End2D(0);
}

TEST(WidgetPixels, TooltipStaysOnScreenAndShowsPercentSignsLiterally) {
  int th = text_height(RVK_FontStandard) + 4;
  const char *text = "50% %s - [m]";  // KEY_M's name is the small letter
  int tw = text_length(RVK_FontStandard, text) + 4;
  ButtonClass b;
  RVK_CreateButtonEx(b, "50% %s", BlockIcon(), -30, 560, KEY_M, false);
  ASSERT_TRUE(TkMovePointer(1, 570));
  StartFrame();
  b.Run();
  RVK_End2D(0);
  // Asked for at (-9, 613): moved to the left edge and up onto the screen.
  const TkPixel Face{128, 128, 128};
  ExpectPixels({{tw, 600 - th, Face}, {tw, 599, Face}, {tw + 1, 600 - th, Black}, {tw, 599 - th, Black}});
  std::vector<int> shown = Reds(6, 600 - th, tw, 599);
  // The text is the caption, a dash and the key name, drawn literally.
  StartFrame();
  RVK_ShowTooltip(0, 600 - th, "%s", text);
  RVK_End2D(0);
  EXPECT_EQ(Reds(6, 600 - th, tw, 599), shown);
}

TEST(WidgetPixels, MenuEntryTextIsLiteral) {
  ASSERT_TRUE(TkMovePointer(790, 300));
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
  EXPECT_EQ(std::make_tuple(bar.RowsY, bar.DownButton.Y, bar.VisibleRows), std::make_tuple(78, 364, 4));
  BITMAP *blue = create_bitmap(128, 64);
  clear_to_color(blue, makecol(0, 0, 200));
  for (int i = 0; i < 5; i++) bar.AddBitmap(blue, "row");
  destroy_bitmap(blue);
  EXPECT_EQ(bar.MaxTopRow, 1);

  ASSERT_TRUE(TkMovePointer(60, 78 + 2 * 66 + 20));
  StartFrame();
  EXPECT_EQ(bar.Run(), -1);
  GLint box[4];
  glGetIntegerv(GL_SCISSOR_BOX, box);
  EXPECT_EQ(std::vector<GLint>(box, box + 4), (std::vector<GLint>{2, 600 - 77 - 265 - 1, 128, 265}));
  EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
  // A row: blue at 192 over the bar's face, itself at 192 over black. At
  // x = 2 a row lies over the bar's light left edge; the hovered third row
  // has a yellow frame at 192 over that, the second none.
  TkPixel row = TkReadPixel(60, 100);
  EXPECT_NEAR(row.R, 27, 1);
  EXPECT_NEAR(row.B, 178, 1);
  TkPixel edge = TkReadPixel(2, 78 + 66 + 10);
  EXPECT_NEAR(edge.R, 46, 1);
  EXPECT_NEAR(edge.B, 197, 1);
  ExpectNearPixel(2, 78 + 2 * 66 + 10, 203, 203, 49);
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
  ASSERT_TRUE(TkMovePointer(150, 107));
  StartFrame();
  s.Run();
  RVK_End2D(0);
  // With Max 0 only the trough: no knob, no label, no tooltip.
  ExpectPixels({{150, 107, {79, 79, 79}}, {290, 107, {79, 79, 79}}, {150, 100, {131, 131, 131}},
                {150, 114, {179, 179, 179}}});
  EXPECT_EQ(Reds(100, 116, 300, 140), std::vector<int>(201 * 25, 0));

  s.Max = 10;
  StartFrame();
  s.Run();
  // Knob 5 is drawn 20 long, at (200 - 20) x 10 / 10.
  ExpectPixels({{290, 107, {3, 3, 131}}, {280, 107, {3, 3, 255}}, {300, 107, {83, 83, 255}}, {279, 107, {79, 79, 79}}});
  RVK_End2D(0);
}
