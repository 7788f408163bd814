// Start-up state, the icon table, textures, tooltips, the pointer and the
// frame trace, in a real window.
#include <allegro.h>
#include <gtest/gtest.h>
#include <GL/gl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <initializer_list>
#include <string>
#include <thread>
#include <tuple>
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/texture.h"
#include "rvk/timer.h"
#include "support/gl_env.h"

static const TkPixel Black{0, 0, 0}, White{255, 255, 255};

static void ClearTo(float r, float g, float b) {
  glClearColor(r, g, b, 1);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

struct At {
  int X, Y;
  TkPixel Colour;
};

static void ExpectPixels(std::initializer_list<At> list) {
  for (const At &e : list) EXPECT_EQ(TkReadPixel(e.X, e.Y), e.Colour) << "at " << e.X << "," << e.Y;
}

TEST(Core, StartUpStateAndIconTable) {
  EXPECT_EQ(std::make_tuple(RVK_Palette.FieldLowerRight, gui_bg_color, gui_fg_color),
            std::make_tuple(makecol(212, 208, 200), makecol(147, 147, 147), makecol(35, 35, 35)));
  ASSERT_TRUE(RVK_FontStandard != nullptr && RVK_FontMedium != nullptr && RVK_FontSmall != nullptr);
  EXPECT_EQ(ConsoleTop, 600 - 10 * text_height(RVK_FontStandard) - 60);
  // The default icon and one per bitmap of the datafile, in file order.
  ASSERT_EQ(RVK_GetIconCount(), 26);
  EXPECT_EQ(std::make_pair(RVK_FindIcon("up"), RVK_FindIcon("back")), std::make_pair(1, 25));
  for (int i = 0; i < 26; i++) {
    TextureClass icon = RVK_GetIconByIndex(i);
    EXPECT_TRUE(icon.Loaded && icon.Width == 32 && icon.Height == 32 && icon.CentreX == 16) << i;
  }
  // An unknown name or index gives the white 32 by 32 default icon.
  EXPECT_EQ(RVK_FindIcon("nosuch"), 0);
  TextureClass fallback = RVK_GetIcon("nosuch");
  EXPECT_EQ(fallback.TextureName, RVK_GetDefaultIcon().TextureName);
  EXPECT_EQ(RVK_GetIconByIndex(999).TextureName, fallback.TextureName);
  ClearTo(0, 0, 0);
  RVK_BeginFrame();
  RVK_DrawTexture(fallback, 50, 50, 0, true, 255);
  RVK_DrawTexture(RVK_GetIcon("cancel"), 100, 50, 0, true, 255);
  // The cross's middle in its own red; its magenta corner lets the black through.
  ExpectPixels({{50, 50, White}, {81, 81, White}, {82, 82, Black}, {116, 66, {236, 52, 52}}, {100, 50, Black}});
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
  EXPECT_EQ(std::make_tuple(t.Width, t.Height, t.CentreX, t.CentreY, t.HasBitmap), std::make_tuple(16, 8, 8, 4, false));
  ClearTo(0, 0, 0);
  RVK_BeginFrame();
  RVK_DrawTexture(t, 100, 100, 0, false, 255);
  RVK_DrawTexture(t, 200, 100, 0, false, 128);
  // Half a turn (128 units) puts the red quarter lower right.
  RVK_DrawTexture(t, 300, 100, 128, false, 255);
  const TkPixel Red{200, 0, 0}, Green{0, 200, 0};
  ExpectPixels({{101, 101, Red}, {101, 106, Green}, {113, 101, Green}, {201, 101, {100, 0, 0}}, {313, 106, Red},
                {301, 101, Green}});

  TextureClass placeholder;
  placeholder.CreateFromBitmap(nullptr);
  EXPECT_EQ(std::make_pair(placeholder.Loaded, placeholder.Width), std::make_pair(true, 32));
  RVK_DrawTextureScaled(placeholder, 400, 100, 128, 128, 0, true, 255);
  // Texels are filtered, so the one-texel diagonal is red within a few steps;
  // lower left and upper right are white.
  TkPixel diagonal = TkReadPixel(400 + 82, 100 + 82);
  EXPECT_NEAR(diagonal.R, 230, 4);
  EXPECT_LE(std::max(diagonal.G, diagonal.B), 16);
  ExpectPixels({{400 + 10, 100 + 118, White}, {400 + 118, 100 + 10, White}});
  RVK_End2D(0);

  TextureClass kept;
  ASSERT_TRUE(kept.Load("rvk_core_test.tga", true));
  ASSERT_TRUE(kept.HasBitmap);
  EXPECT_EQ(kept.SourceBitmap->w, 16);
  kept.Free();
  EXPECT_FALSE(kept.HasBitmap || kept.Loaded);
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
    EXPECT_EQ(std::make_pair(x, y), std::make_pair(c.wantX, c.wantY)) << c.x << "," << c.y;
  }
}

TEST(Core, TooltipsAreDrawnLiterallyAtTheEndOfTheFrame) {
  ClearTo(0, 0, 0);
  RVK_BeginFrame();
  RVK_ShowTooltip(799, 599, "%s", "a%d");
  EXPECT_EQ(TkReadPixel(799, 599), Black);  // queued, not drawn yet
  RVK_End2D(0);
  int tw = text_length(RVK_FontStandard, "a%d") + 4;
  int th = text_height(RVK_FontStandard) + 4;
  int x = 800 - tw, y = 600 - th;
  ExpectPixels({{x, y, {128, 128, 128}}, {x - 1, y, Black}});
  // Drawn literally: the d's ink (black on the face) lies past "a%"; a
  // number would not.
  int right = -1;
  for (int py = y + 2; py <= y + th - 2; py++)
    for (int px = x + 2; px <= 799; px++)
      if (TkReadPixel(px, py) == Black) right = std::max(right, px - (x + 2));
  EXPECT_GE(right, text_length(RVK_FontStandard, "a%"));
  EXPECT_LT(right, text_length(RVK_FontStandard, "a%d"));
  // A second frame shows no tooltip: the queue was emptied.
  ClearTo(0, 0, 0);
  RVK_BeginFrame();
  RVK_End2D(0);
  EXPECT_EQ(TkReadPixel(x, y), Black);
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
  // The arrow's head, its shadow 6 down and right, and the background.
  ExpectPixels({{401, 308, White}, {407, 315, {0, 0, 100}}, {399, 300, {0, 0, 200}}});

  // The clip counts its bottom from the screen's height less one, which
  // puts it one row below the rectangle asked for; leaving 2D ends it.
  ClearTo(0, 0, 0);
  RVK_Begin2D();
  RVK_SetClipRect(100, 100, 10, 10);
  RVK_DrawRect(0, 0, 799, 599, makecol(255, 255, 255), true, 255);
  ExpectPixels({{100, 100, Black}, {100, 101, White}, {109, 110, White}, {109, 111, Black}, {99, 105, Black},
                {110, 105, Black}});
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
  for (; in >> stamp >> busy; previous = stamp, lines++) {
    EXPECT_GE(busy, 5000);
    EXPECT_TRUE(previous < 0 || stamp - previous >= busy) << stamp - previous << " < " << busy;
  }
  EXPECT_EQ(lines, 6);
  EXPECT_GE(previous - started, 6 * 22222);
  std::remove(trace);
}

// The game run in a folder of its own with one of its datafiles cut to half,
// and an xmessage that answers at once: Allegro prints its message too.
TEST(Core, CutDatafilesTakeTheOrdinaryFailurePaths) {
  namespace fs = std::filesystem;
  const struct {
    const char *Cut, *Message;
    int Status;
  } cases[] = {{"Tumblekin.dat", "Unable to load Tumblekin.dat\n", 1},
               {"RVK.dat", "Unable to read standard font from datafile\n", 0}};
  for (const auto &c : cases) {
    fs::path dir = fs::temp_directory_path() / ("rvk_core_test_" + std::to_string(getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir / "bin");
    fs::create_symlink("/bin/true", dir / "bin/xmessage");
    for (const char *name : {"Tumblekin.dat", "RVK.dat"}) fs::copy_file(name, dir / name);
    fs::resize_file(dir / c.Cut, fs::file_size(dir / c.Cut) / 2);
    const std::string settings = "[network]\nRemoteServerAddress = 127.0.0.1\n";
    std::ofstream(dir / "Tumblekin.ini") << settings;
    std::string run = "cd " + dir.string() + " && PATH=bin:$PATH timeout -s KILL 60 " + fs::absolute("tumblekin").string() + " 2>/dev/null";
    FILE *game = popen(run.c_str(), "r");
    std::string printed;
    for (int ch; (ch = std::fgetc(game)) != EOF;) printed += (char)ch;
    int status = pclose(game);
    EXPECT_EQ(std::make_pair(WEXITSTATUS(status), printed), std::make_pair(c.Status, std::string(c.Message))) << c.Cut;
    std::stringstream after;
    after << std::ifstream(dir / "Tumblekin.ini").rdbuf();
    EXPECT_EQ(after.str(), settings);
    fs::remove_all(dir);
  }
}
