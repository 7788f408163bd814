// The library core in a window: start-up state, icons, textures, frames, the
// pointer, clip, tooltips, drawing calls, console, start-up failure, restart.
#include <GL/gl.h>
#include <cmath>
#include <filesystem>
#include <fstream>
#include "rvk/console.h"
#include "rvk/draw.h"
#include "rvk/texture.h"
#include "rvk_xinput.h"
#include "support/joined.h"

namespace fs = std::filesystem;

TEST(Core, StartUpState) {
  GLint v[4], mode, shade;
  GLfloat m[16];
  glGetIntegerv(GL_VIEWPORT, v);
  glGetIntegerv(GL_MATRIX_MODE, &mode);
  glGetIntegerv(GL_SHADE_MODEL, &shade);
  glGetFloatv(GL_PROJECTION_MATRIX, m);
  // A perspective of 48 degrees (1 / tan 24 is 2.246) from 1 to 8192.
  EXPECT_EQ((J{v[0], v[1], v[2], v[3], mode == GL_MODELVIEW, shade == GL_FLAT, (int)glIsEnabled(GL_CULL_FACE),
              std::lround(m[5] * 1000), std::lround(m[0] * 1000), std::lround(m[10] * 1000), std::lround(m[14])}),
            "0 0 800 600 1 1 1 2246 1685 -1000 -2");
  int h = RVK_TextHeight();
  EXPECT_EQ((J{ConsoleTop + 10 * h, ConsoleLeft, ConsoleMaxLines, ConsoleLineLife, ConsoleColour == RVK_Palette.White,
              ConsoleVisible, h, RVK_TextHeight(RVK_FontMedium), RVK_TextHeight(RVK_FontSmall)}),
            "540 3 10 12 1 1 16 20 40");
  GLuint none = RVK_GetDefaultIcon().TextureName, back = RVK_GetIcon("back").TextureName;
  EXPECT_EQ((J{RVK_GetIconCount(), RVK_FindIcon("up"), RVK_FindIcon("back"), RVK_FindIcon("nosuch"), RVK_FindIcon(nullptr),
              RVK_GetIconByIndex(25).TextureName == back, RVK_GetIconByIndex(26).TextureName == none,
              RVK_GetIconByIndex(-1).TextureName == none, RVK_GetIcon("nosuch").TextureName == none, back == none}),
            "26 1 25 0 0 1 1 1 1 0");
  TextureClass icon = RVK_GetIconByIndex(7);
  EXPECT_EQ((J{icon.Width, icon.Height, icon.CentreX, icon.CentreY, icon.Loaded, icon.HasBitmap}), "32 32 16 16 1 0");
}

TEST(Core, TexturesIconsAndThePlaceholder) {
  // 16 x 8: upper left quarter red, the rest green, magenta at (15, 7).
  BITMAP *b = create_bitmap(16, 8);
  clear_to_color(b, makecol(0, 255, 0));
  rectfill(b, 0, 0, 7, 3, makecol(255, 0, 0));
  putpixel(b, 15, 7, makecol(255, 0, 255));
  ASSERT_EQ(save_bitmap("rvk_draw_test.tga", b, nullptr), 0);
  destroy_bitmap(b);
  TextureClass t, kept, missing, placeholder;
  ASSERT_TRUE(t.Load(".\\rvk_draw_test.tga"));
  ASSERT_TRUE(kept.Load("rvk_draw_test.tga", true));
  EXPECT_FALSE(missing.Load("data\\no such.tga"));
  EXPECT_EQ((J{t.Width, t.Height, t.CentreX, t.CentreY, t.HasBitmap, kept.HasBitmap, kept.SourceBitmap->w, missing.Loaded,
              missing.LastError}),
            "16 8 8 4 0 1 16 0 Unable to load bitmap from data\\no such.tga");
  placeholder.CreateFromBitmap(nullptr);
  for (GLuint name : {t.TextureName, placeholder.TextureName}) {
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  }
  glClearColor(0, 0, 1, 1);
  RVK_BeginFrame();
  RVK_DrawTexture(t, 100, 100, 0, false, RVK_Opaque);
  RVK_DrawTexture(t, 200, 100, 0, true, RVK_Opaque);
  RVK_DrawTexture(t, 300, 100, 128, false, RVK_Opaque);  // half a turn
  RVK_DrawTextureScaled(t, 400, 100, 32, 4, 0, false, 128);
  RVK_DrawTexture(placeholder, 500, 100, 0, true, RVK_Opaque);
  EXPECT_EQ(H(98, 100, 20), "2b8r8g2b");
  EXPECT_EQ(H(98, 107, 20), "2b15g1.2b");
  EXPECT_EQ(H(198, 107, 20), "2b15g3b");
  EXPECT_EQ(H(298, 100, 20), "2b1.15g2b");
  EXPECT_EQ(H(298, 107, 20), "2b8g8r2b");
  EXPECT_EQ((J{Hex(401, 100), Hex(431, 103), Hex(416, 104)}), "80007F 00807F 0000FF");
  EXPECT_EQ((J{Scan(500, 100, 1, 1, 33), Scan(530, 100, -1, 1, 32), H(500, 116, 32)}), "32E1b 15W1E15W1b 16W1E15W");
  RVK_End2D(0);
  kept.Free();
  placeholder.Free();
  EXPECT_EQ((J{kept.HasBitmap, kept.Loaded, (int)glIsTexture(kept.TextureName), (int)glIsTexture(t.TextureName)}), "0 0 0 1");
  t.Free();
  std::remove("rvk_draw_test.tga");
}

TEST(Core, FramesPointerClipAndTooltips) {
  GLint depth[2];
  glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth[0]);
  RVK_End2D(1);  // outside 2D: nothing
  Move(400, 300);
  EXPECT_EQ((J{RVK_MouseIn(400, 300, 400, 300), RVK_MouseIn(401, 0, 500, 500), RVK_MouseIn(0, 301, 500, 500),
              RVK_MouseIn(0, 0, 399, 500), RVK_MouseIn(0, 0, 500, 299)}),
            "1 0 0 0 0");
  RVK_SetClearColour(makecol(0, 0, 255));
  RVK_BeginFrame();
  RVK_Begin2D();
  RVK_ShowTooltip(100, 100, "%s", "a%d");
  RVK_ShowTooltip(799, 599, "%s", "a%d");
  EXPECT_EQ(Hex(100, 100), "0000FF");  // queued, not drawn yet
  RVK_End2D(1);
  glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth[1]);
  EXPECT_EQ((J{depth[1] - depth[0], (int)glIsEnabled(GL_DEPTH_TEST)}), "0 1");
  EXPECT_EQ((J{V(400, 299, 30), H(398, 309, 16), H(398, 314, 16)}),
            "2b9W19b 2b8W1?5b 6b3W6?1b");
  int tw = RVK_TextLength("a%d") + 4, th = RVK_TextHeight() + 4;
  EXPECT_EQ((J{Hex(100, 100), Hex(100 + tw, 100 + th), Hex(101 + tw, 100), Hex(100, 101 + th), Hex(108 + tw, 108 + th),
              Hex(109 + tw, 108 + th), Hex(108, 109 + th)}),
            "8080FF 8080BF 0000FF 0000FF 00007F 0000FF 0000FF");
  EXPECT_EQ((J{H(798 - tw, 600 - th, tw + 2), V(799, 598 - th, th + 2)}), "2b" + std::to_string(tw) + "? 2b" + std::to_string(th) + "?");
  RVK_BeginFrame();
  RVK_End2D(0);  // no pointer, and the tooltips are gone
  EXPECT_EQ((J{Hex(100, 100), Hex(400, 305)}), "0000FF 0000FF");

  Press();
  RVK_BeginFrame();
  RVK_End2D(1);
  EXPECT_EQ((J{V(400, 299, 30), H(398, 309, 16), H(398, 316, 16)}), "2b9Y19b 2b8Y6b 7b3Y2?4b");
  Press(false);
  const char *styles[] = {"vert", "horiz", "move"};
  for (int style = 2; style <= 5; style++) {
    RVK_BeginFrame();
    RVK_End2D(style);
    std::string drawn = H(380, 300, 40) + V(400, 280, 40);
    RVK_BeginFrame();
    if (style < 5) RVK_DrawTexture(RVK_GetIcon(styles[style - 2]), 384, 284, 0, true, RVK_Opaque);
    EXPECT_EQ(drawn, H(380, 300, 40) + V(400, 280, 40)) << style;
    RVK_End2D(0);
  }

  // The clip's bottom counts from the height less one: a row low.
  RVK_SetClearColour(makecol(0, 0, 0));
  RVK_BeginFrame();
  RVK_SetClipRect(50, 50, 5, 5);
  RVK_SetClipRect(100, 100, 10, 10);
  RVK_DrawRect(0, 0, 799, 599, RVK_Palette.White, true, RVK_Opaque);
  EXPECT_EQ((J{V(105, 99, 14), H(98, 105, 14), Hex(52, 52)}), "2.10W2. 2.10W2. 000000");
  RVK_End2D(0);
  EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
  RVK_ClearClipRect();
}

TEST(Draw, ShapesIncludeBothFarEdges) {
  int red = makecol(255, 0, 0), green = makecol(0, 255, 0), blue = makecol(0, 0, 255);
  Frame();
  RVK_DrawRect(10, 10, 10, 10, RVK_Palette.White, true, RVK_Opaque);
  RVK_DrawRectWH(20, 10, 5, 3, RVK_Palette.White, true, RVK_Opaque);
  RVK_DrawRect(40, 10, 50, 16, RVK_Palette.White, false, 128);
  RVK_DrawLine(60, 10, 69, 10, red, RVK_Opaque);
  RVK_DrawBevelBox(10, 20, 30, 40, red, green, blue, RVK_Opaque);
  RVK_DrawBevelBox(40, 20, 60, 40, red, green, RVK_Palette.NoFill, RVK_Opaque);
  RVK_DrawFieldBox(100, 10, 50, 20);
  RVK_DrawWindowFrame(200, 10, 400, 200, RVK_Opaque, "%s", "");
  EXPECT_EQ((J{H(8, 10, 20), V(10, 8, 6), V(24, 8, 6)}), "2.1W9.5W3. 2.1W3. 2.3W1.");
  EXPECT_EQ((J{H(38, 10, 40), H(38, 13, 14), V(45, 8, 10)}), "2.11G9.9r9. 2.1G9.1G1. 2.1G5.1G1.");
  EXPECT_EQ((J{H(8, 30, 56), V(20, 18, 24), H(8, 20, 25)}),
            "2.1r19b1g9.1r19.1g3. 2.1r19b1g1. 2.20r1g2.");
  EXPECT_EQ((J{H(99, 20, 52), V(120, 9, 22)}), "3.47W1F1. 3.17W1F1.");
  EXPECT_EQ((J{V(300, 9, 193), H(199, 100, 203)}), "1.1l19T1d169P1D1. 1.1L199P1D1.");
  RVK_End2D(0);
}

TEST(Draw, ConsoleLinesAndBracket) {
  RVK_DrawText(nullptr, 0, 0, 0, "no font");
  RVK_DrawText(RVK_FontStandard, 0, 0, 0, nullptr);
  ConsoleLines.clear();
  RVK_Message(std::string().c_str());
  EXPECT_TRUE(ConsoleLines.empty());
  RVK_Message("%s", "");
  RVK_Message("%s", std::string(3000, 'w').c_str());
  RVK_SetLastMessageColour(makecol(255, 0, 0));
  EXPECT_EQ((J{ConsoleLines.size(), ConsoleLines[0].Text.size(), ConsoleLines[1].Text.size(), ConsoleLines[0].Age}), "2 0 1023 0");
  int h = RVK_TextHeight(), top = ConsoleTop;
  Frame();
  RVK_DrawConsole();
  EXPECT_EQ((J{V(1, top - 1, 2 * h + 3), H(0, top, 4), H(0, top + 2 * h, 4),
              Hex(5, top + h + 8).substr(2), Hex(5, top + h + 8) != "000000"}),
            "1.33W1. 1.2W1. 1.2W1. 0000 1");
  RVK_End2D(0);
  ConsoleVisible = false;
  Frame();
  RVK_DrawConsole();
  EXPECT_EQ(Scan(0, top, 1, 1, 2 * h), std::to_string(2 * h) + ".");
  RVK_End2D(0);
  ConsoleVisible = true;
  ConsoleLines.clear();
  Frame();
  RVK_DrawConsole();
  EXPECT_EQ(V(1, top, 4), "4.");
  RVK_End2D(0);
}

static fs::path Folder(const char *name) {
  fs::path dir = fs::temp_directory_path() / (name + std::to_string(getpid()));
  fs::remove_all(dir);
  fs::create_directories(dir);
  return dir;
}

TEST(Core, DatafileObjectsStartUpFailureAndRestart) {
  BITMAP *back = (BITMAP *)RVK_GetDatafileObject("back");
  FONT *font = (FONT *)RVK_GetDatafileObject("_font_standard");
  EXPECT_EQ((J{back->w, text_height(font), RVK_GetDatafileObject("nosuch")}), "32 15 0");
  destroy_bitmap(back);
  destroy_font(font);
  // An RVK.dat whose "_font_standard" is a picture: no font, no start.
  std::string data = FileText("RVK.dat");
  data[data.find("_font_standard") + 13] = 'X';
  data.replace(data.find(std::string("\0\0\0\2up", 6)), 6, std::string("\0\0\0\16_font_standard", 18));
  fs::path dir = Folder("rvk_draw_test_");
  std::ofstream(dir / "RVK.dat", std::ios::binary) << data;
  fs::path here = fs::current_path();
  fs::current_path(dir);
  bool started = RVK_Init(800, 600, 32, true, 45);
  EXPECT_EQ((J{started, RVK_IsStarted(), screen == nullptr}), "0 0 1");
  fs::current_path(here);
  fs::remove_all(dir);

  std::remove("rvk.trace");
  setenv("TUMBLEKIN_FRAME_TRACE", "rvk.trace", 1);
  ASSERT_TRUE(RVK_Init(800, 600, 32, true, 45));
  int64_t begun = RVK_ClockMicroseconds();
  ASSERT_TRUE(RVK_Init(800, 600, 32, true, 45));  // afresh: the icons not doubled
  EXPECT_EQ((J{RVK_GetIconCount(), RVK_IsStarted()}), "26 1");
  for (int i = 0; i < 6; i++) RVK_BeginFrame(), rest(5), RVK_NoteWait(i == 2 ? 700 : 0), RVK_WaitFrame(), RVK_EndFrame();
  unsetenv("TUMBLEKIN_FRAME_TRACE");
  RVK_Shutdown();
  RVK_Shutdown();
  EXPECT_EQ((J{RVK_IsStarted(), RVK_GetIconCount(), RVK_FontStandard, RVK_FontMedium, RVK_FontSmall, screen == nullptr}),
            "0 0 0 0 0 1");
  ASSERT_TRUE(RVK_Init(800, 600, 32, true, 45));
  // What holds under any load: busy at least the rest, at most 45 a second.
  std::ifstream lines("rvk.trace");
  long long stamp, busy, waited, last = begun, count = 0;
  std::string noted;
  for (; lines >> stamp >> busy >> waited; last = stamp, count++) {
    EXPECT_TRUE(busy >= 5000 && stamp - last >= busy) << count;
    noted += std::to_string(waited) + " ";
  }
  EXPECT_EQ((J{count, last - begun >= 6 * 22222, noted}), "6 1 0 0 700 0 0 0 ");
  std::remove("rvk.trace");
}
