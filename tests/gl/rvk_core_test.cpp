// Start-up state, the icon table, textures, tooltips, the pointer and the
// frame trace, in a real window.
#include <allegro.h>
#include <gtest/gtest.h>
#include <GL/gl.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/texture.h"
#include "rvk/timer.h"
#include "support/gl_env.h"

static void ClearTo(float r, float g, float b) {
  glClearColor(r, g, b, 1);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

TEST(Core, StartUpStateAndIconTable) {
  EXPECT_EQ(RVK_Palette.FieldLowerRight, makecol(212, 208, 200));
  EXPECT_EQ(gui_bg_color, makecol(147, 147, 147));
  EXPECT_EQ(gui_fg_color, makecol(35, 35, 35));
  ASSERT_TRUE(RVK_FontStandard != nullptr && RVK_FontMedium != nullptr && RVK_FontSmall != nullptr);
  EXPECT_EQ(ConsoleTop, 600 - 10 * text_height(RVK_FontStandard) - 60);
  // The default icon and one per bitmap of the datafile, in file order.
  ASSERT_EQ(RVK_GetIconCount(), 26);
  EXPECT_EQ(RVK_FindIcon("up"), 1);
  EXPECT_EQ(RVK_FindIcon("back"), 25);
  for (int i = 0; i < 26; i++) {
    TextureClass icon = RVK_GetIconByIndex(i);
    EXPECT_TRUE(icon.Loaded && icon.Width == 32 && icon.Height == 32 && icon.CentreX == 16) << i;
  }
  // An unknown name gives the white default icon.
  EXPECT_EQ(RVK_FindIcon("nosuch"), 0);
  TextureClass fallback = RVK_GetIcon("nosuch");
  EXPECT_EQ(fallback.TextureName, RVK_GetDefaultIcon().TextureName);
  EXPECT_EQ(RVK_GetIconByIndex(999).TextureName, fallback.TextureName);
  ClearTo(0, 0, 0);
  RVK_BeginFrame();
  RVK_DrawTexture(fallback, 50, 50, 0, true, 255);
  RVK_DrawTexture(RVK_GetIcon("cancel"), 100, 50, 0, true, 255);
  EXPECT_EQ(TkReadPixel(50, 50), (TkPixel{255, 255, 255}));
  EXPECT_EQ(TkReadPixel(81, 81), (TkPixel{255, 255, 255}));
  EXPECT_EQ(TkReadPixel(82, 82), (TkPixel{0, 0, 0}));
  // The cross's middle in its own red; its magenta corner lets the black through.
  EXPECT_EQ(TkReadPixel(116, 66), (TkPixel{236, 52, 52}));
  EXPECT_EQ(TkReadPixel(100, 50), (TkPixel{0, 0, 0}));
  RVK_End2D(0);
}

TEST(Core, TexturesFromFilesAndThePlaceholder) {
  // Upper left quarter red, the rest green, on a 16x8 picture.
  BITMAP *b = create_bitmap(16, 8);
  clear_to_color(b, makecol(0, 200, 0));
  rectfill(b, 0, 0, 7, 3, makecol(200, 0, 0));
  ASSERT_EQ(save_bitmap("rvk_core_test.tga", b, nullptr), 0);
  destroy_bitmap(b);

  TextureClass t;
  ASSERT_TRUE(t.Load(".\\rvk_core_test.tga"));
  EXPECT_EQ(t.Width, 16);
  EXPECT_EQ(t.Height, 8);
  EXPECT_EQ(t.CentreX, 8);
  EXPECT_EQ(t.CentreY, 4);
  EXPECT_FALSE(t.HasBitmap);
  ClearTo(0, 0, 0);
  RVK_BeginFrame();
  RVK_DrawTexture(t, 100, 100, 0, false, 255);
  EXPECT_EQ(TkReadPixel(101, 101), (TkPixel{200, 0, 0}));
  EXPECT_EQ(TkReadPixel(101, 106), (TkPixel{0, 200, 0}));
  EXPECT_EQ(TkReadPixel(113, 101), (TkPixel{0, 200, 0}));
  RVK_DrawTexture(t, 200, 100, 0, false, 128);
  EXPECT_EQ(TkReadPixel(201, 101), (TkPixel{100, 0, 0}));
  // Half a turn (128 units) puts the red quarter lower right.
  RVK_DrawTexture(t, 300, 100, 128, false, 255);
  EXPECT_EQ(TkReadPixel(313, 106), (TkPixel{200, 0, 0}));
  EXPECT_EQ(TkReadPixel(301, 101), (TkPixel{0, 200, 0}));

  TextureClass placeholder;
  placeholder.CreateFromBitmap(nullptr);
  EXPECT_TRUE(placeholder.Loaded);
  EXPECT_EQ(placeholder.Width, 32);
  RVK_DrawTextureScaled(placeholder, 400, 100, 128, 128, 0, true, 255);
  // Texels are filtered, so the one-texel diagonal is red within a few steps.
  TkPixel diagonal = TkReadPixel(400 + 82, 100 + 82);
  EXPECT_NEAR(diagonal.R, 230, 4);
  EXPECT_LE(diagonal.G, 16);
  EXPECT_LE(diagonal.B, 16);
  EXPECT_EQ(TkReadPixel(400 + 10, 100 + 118), (TkPixel{255, 255, 255}));  // lower left
  EXPECT_EQ(TkReadPixel(400 + 118, 100 + 10), (TkPixel{255, 255, 255}));  // upper right
  RVK_End2D(0);

  TextureClass kept;
  ASSERT_TRUE(kept.Load("rvk_core_test.tga", true));
  ASSERT_TRUE(kept.HasBitmap);
  EXPECT_EQ(kept.SourceBitmap->w, 16);
  kept.Free();
  EXPECT_FALSE(kept.HasBitmap);
  EXPECT_FALSE(kept.Loaded);
  t.Free();
  placeholder.Free();

  TextureClass missing;
  EXPECT_FALSE(missing.Load("data\\no such.tga"));
  EXPECT_FALSE(missing.Loaded);
  EXPECT_EQ(missing.LastError, "Unable to load bitmap from data\\no such.tga");
  std::remove("rvk_core_test.tga");
}

TEST(Core, TooltipPlacementAtTheEdges) {
  struct Case {
    int x, y, w, h, wantX, wantY;
  } cases[] = {
      {10, 10, 100, 10, 10, 10},      // inside: untouched
      {695, 100, 100, 10, 695, 100},  // right edge one short of the screen's
      {697, 100, 100, 10, 696, 100},  // over the right edge
      {100, 582, 100, 10, 100, 582},  // bottom edge one short
      {100, 590, 100, 10, 100, 586},  // over the bottom
      {799, 599, 100, 10, 696, 586},  // lower right corner
      {-5, -7, 100, 10, 0, 0},        // left and top
      {50, 50, 900, 10, 0, 50},       // wider than the screen
  };
  for (const Case &c : cases) {
    int x = c.x, y = c.y;
    RVK_PlaceTooltip(x, y, c.w, c.h, 800, 600);
    EXPECT_EQ(x, c.wantX) << c.x << "," << c.y;
    EXPECT_EQ(y, c.wantY) << c.x << "," << c.y;
  }
}

// The rightmost column in the rows y0..y1 whose pixel is the given colour.
static int RightmostOf(TkPixel colour, int x0, int x1, int y0, int y1) {
  int right = -1;
  for (int y = y0; y <= y1; y++)
    for (int x = x0; x <= x1; x++)
      if (TkReadPixel(x, y) == colour && x > right) right = x;
  return right;
}

TEST(Core, TooltipsAreDrawnLiterallyAtTheEndOfTheFrame) {
  ClearTo(0, 0, 0);
  RVK_BeginFrame();
  RVK_ShowTooltip(799, 599, "%s", "a%d");
  EXPECT_EQ(TkReadPixel(799, 599), (TkPixel{0, 0, 0}));  // queued, not drawn yet
  RVK_End2D(0);
  int tw = text_length(RVK_FontStandard, "a%d") + 4;
  int th = text_height(RVK_FontStandard) + 4;
  int x = 800 - tw, y = 600 - th;
  EXPECT_EQ(TkReadPixel(x, y), (TkPixel{128, 128, 128}));
  EXPECT_EQ(TkReadPixel(x - 1, y), (TkPixel{0, 0, 0}));
  // Drawn literally: the d's ink lies past "a%"; a number would not.
  int right = RightmostOf(TkPixel{0, 0, 0}, x + 2, 799, y + 2, y + th - 2) - (x + 2);
  EXPECT_GE(right, text_length(RVK_FontStandard, "a%"));
  EXPECT_LT(right, text_length(RVK_FontStandard, "a%d"));
  // A second frame shows no tooltip: the queue was emptied.
  ClearTo(0, 0, 0);
  RVK_BeginFrame();
  RVK_End2D(0);
  EXPECT_EQ(TkReadPixel(x, y), (TkPixel{0, 0, 0}));
}

TEST(Core, FrameCallsAndThePointer) {
  GLint depth0, depth;
  glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth0);
  RVK_End2D(1);  // outside 2D: nothing
  glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
  EXPECT_EQ(depth, depth0);
  ClearTo(0, 0, 200.0f / 255);
  RVK_Begin2D();
  RVK_Begin2D();
  position_mouse(400, 300);
  RVK_End2D(1);
  glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
  EXPECT_EQ(depth, depth0);
  EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
  ASSERT_EQ(mouse_x, 400);
  EXPECT_EQ(TkReadPixel(401, 308), (TkPixel{255, 255, 255}));  // the arrow's head
  EXPECT_EQ(TkReadPixel(407, 315), (TkPixel{0, 0, 100}));      // its shadow, 6 down and right
  EXPECT_EQ(TkReadPixel(399, 300), (TkPixel{0, 0, 200}));

  // The clip counts its bottom from the screen's height less one, which
  // puts it one row below the rectangle asked for; leaving 2D ends it.
  ClearTo(0, 0, 0);
  RVK_Begin2D();
  RVK_SetClipRect(100, 100, 10, 10);
  RVK_DrawRect(0, 0, 799, 599, makecol(255, 255, 255), true, 255);
  const TkPixel W{255, 255, 255}, B{0, 0, 0};
  EXPECT_EQ(TkReadPixel(100, 100), B);
  EXPECT_EQ(TkReadPixel(100, 101), W);
  EXPECT_EQ(TkReadPixel(109, 110), W);
  EXPECT_EQ(TkReadPixel(109, 111), B);
  EXPECT_EQ(TkReadPixel(99, 105), B);
  EXPECT_EQ(TkReadPixel(110, 105), B);
  RVK_End2D(0);
  EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
}

TEST(Core, RestartShutdownAndFrameTrace) {
  const char *trace = "rvk_core_test.trace";
  std::remove(trace);
  setenv("TUMBLEKIN_FRAME_TRACE", trace, 1);
  // Starting while started starts afresh: the icon table is not doubled.
  int64_t started = RVK_ClockMicroseconds();
  ASSERT_TRUE(RVK_Init(800, 600, 32, true, 45));
  EXPECT_EQ(RVK_GetIconCount(), 26);
  for (int i = 0; i < 6; i++) {
    RVK_BeginFrame();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    RVK_WaitFrame();
    RVK_EndFrame();
  }
  unsetenv("TUMBLEKIN_FRAME_TRACE");
  RVK_Shutdown();
  RVK_Shutdown();
  EXPECT_FALSE(RVK_IsStarted());
  EXPECT_EQ(RVK_GetIconCount(), 0);
  ASSERT_TRUE(RVK_Init(800, 600, 32, true, 45));

  // Timing on a shared machine varies, so only what holds under any load is
  // checked: the busy time is the frame's own work (at least the 5 ms
  // sleep) and ends when the frame is let go, which is where the line is
  // stamped; and frames never run ahead of 45 a second.
  std::ifstream in(trace);
  long long stamp, busy, previous = -1;
  int lines = 0;
  while (in >> stamp >> busy) {
    EXPECT_GE(busy, 5000);
    if (previous >= 0) {
      EXPECT_GE(stamp - previous, busy);
    }
    previous = stamp;
    lines++;
  }
  EXPECT_EQ(lines, 6);
  EXPECT_GE(previous - started, 6 * 22222);
  std::remove(trace);
}
