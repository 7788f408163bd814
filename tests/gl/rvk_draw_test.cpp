// Exact pixels of the shape calls, literal text, the console on screen, and
// the GL state every drawing call leaves behind.
#include <allegro.h>
#include <gtest/gtest.h>
#include <GL/gl.h>
#include <functional>
#include <string>
#include <tuple>
#include <vector>
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/texture.h"
#include "support/gl_env.h"

static const TkPixel Black{0, 0, 0}, White{255, 255, 255};

static void StartFrame() {
  glClearColor(0, 0, 0, 1);
  RVK_BeginFrame();
}

static int RightmostInk(int x0, int y0, int x1, int y1, TkPixel background) {
  int right = -1;
  for (int y = y0; y <= y1; y++)
    for (int x = x0; x <= x1; x++)
      if (!(TkReadPixel(x, y) == background) && x > right) right = x;
  return right;
}

struct Expected {
  int X, Y;
  TkPixel Colour;
};

static void ExpectPixels(std::initializer_list<Expected> list) {
  for (const Expected &e : list) EXPECT_EQ(TkReadPixel(e.X, e.Y), e.Colour) << "at " << e.X << "," << e.Y;
}

TEST(Draw, RectanglesIncludeBothFarEdges) {
  StartFrame();
  int white = makecol(255, 255, 255);
  const TkPixel Half{128, 128, 128}, Red{255, 0, 0};
  // One pixel from (x, y) to (x, y); a width of 5 and height of 3.
  RVK_DrawRect(10, 10, 10, 10, white, true, 255);
  RVK_DrawRectWH(20, 10, 5, 3, white, true, 255);
  ExpectPixels({{10, 10, White}, {9, 10, Black}, {11, 10, Black}, {10, 9, Black}, {10, 11, Black}, {11, 11, Black},
                {20, 10, White}, {24, 12, White}, {25, 12, Black}, {24, 13, Black}, {19, 10, Black}});
  RVK_DrawRect(40, 10, 50, 16, white, false, 255);
  ExpectPixels({{40, 10, White}, {45, 10, White}, {50, 10, White}, {40, 16, White}, {50, 16, White}, {40, 13, White},
                {50, 13, White}, {41, 11, Black}, {51, 10, Black}, {40, 17, Black}, {40, 9, Black}, {39, 16, Black}});
  // Blended: each outline pixel is drawn once, corners included.
  RVK_DrawRect(60, 10, 70, 16, white, false, 128);
  ExpectPixels({{60, 10, Half}, {65, 10, Half}, {70, 10, Half}, {60, 16, Half}, {70, 16, Half}, {60, 13, Half}});
  RVK_DrawLine(80, 20, 89, 20, makecol(255, 0, 0), 255);
  ExpectPixels({{80, 20, Red}, {88, 20, Red}, {80, 21, Black}});
  RVK_End2D(0);
}

TEST(Draw, BevelFieldAndWindowFrame) {
  StartFrame();
  const TkPixel Red{255, 0, 0}, Green{0, 255, 0}, Field{212, 208, 200};
  RVK_DrawBevelBox(10, 10, 30, 30, makecol(255, 0, 0), makecol(0, 255, 0), makecol(0, 0, 255), 255);
  // The no-fill marker leaves the inside alone.
  RVK_DrawBevelBox(40, 10, 60, 30, makecol(255, 0, 0), makecol(0, 255, 0), RVK_Palette.NoFill, 255);
  RVK_DrawFieldBox(100, 10, 50, 20);
  ExpectPixels({{20, 10, Red}, {10, 20, Red}, {20, 30, Green}, {30, 20, Green}, {20, 20, {0, 0, 255}},
                {50, 20, Black}, {50, 10, Red}, {100, 10, Black}, {120, 11, Black}, {120, 20, White},
                {120, 29, Field}, {149, 20, Field}});

  // The strip is drawn last: its lower edge lies on the body's upper edge.
  int h = text_height(RVK_FontStandard);
  RVK_DrawWindowFrame(200, 10, 400, 200, 255, "%s", "");
  ExpectPixels({{300, 10, {179, 179, 179}}, {300, 12, {3, 3, 255}}, {300, 10 + h + 4, {79, 79, 79}},
                {300, 10 + h + 5, {147, 147, 147}}, {200, 100, {211, 211, 211}}, {300, 100, {147, 147, 147}},
                {300, 200, {107, 107, 107}}});
  RVK_End2D(0);
}

TEST(Draw, PercentSignsAreDrawnLiterally) {
  // "a%d" drawn literally ends with the d's ink past "a%"; formatted, it
  // would show a number instead.
  FONT *f = RVK_FontStandard;
  int low = text_length(f, "a%"), high = text_length(f, "a%d");
  auto expectLiteral = [&](int right, int at) {
    EXPECT_GE(right, low) << "at y " << at;
    EXPECT_LT(right, high) << "at y " << at;
  };
  std::function<void(int y)> calls[] = {
      [](int y) { RVK_DrawText(RVK_FontStandard, 10, y, makecol(255, 255, 255), "a%d"); },
      [](int y) { RVK_Printf(10, y, makecol(255, 255, 255), "%s", "a%d"); },
      [](int y) { RVK_PrintfFont(RVK_FontStandard, 10, y, makecol(255, 255, 255), "%s", "a%d"); },
      [](int y) { RVK_Printf(10, y, makecol(255, 255, 255), "a%%d"); },
  };
  int y = 10;
  for (auto &call : calls) {
    StartFrame();
    call(y);
    expectLiteral(RightmostInk(10, y, 200, y + 20, Black) - 10, y);
    RVK_End2D(0);
    y += 30;
  }
  // A title, and a console line.
  StartFrame();
  RVK_DrawWindowFrame(300, 10, 500, 100, 255, "%s", "a%d");
  expectLiteral(RightmostInk(303, 12, 480, 12 + text_height(f), TkPixel{3, 3, 255}) - 303, 12);
  ConsoleLines.clear();
  RVK_Message("%s", "a%d");
  ASSERT_EQ(ConsoleLines.size(), 1u);
  EXPECT_EQ(ConsoleLines[0].Text, "a%d");
  RVK_DrawConsole();
  expectLiteral(RightmostInk(ConsoleLeft, ConsoleTop, 200, ConsoleTop + text_height(f) - 1, Black) - ConsoleLeft,
                ConsoleTop);
  RVK_End2D(0);
  ConsoleLines.clear();
}

TEST(Draw, ConsoleLinesAndBracket) {
  ConsoleLines.clear();
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-zero-length"
  RVK_Message("");
#pragma GCC diagnostic pop
  EXPECT_TRUE(ConsoleLines.empty());
  // An empty text is a line; ten messages leave the last nine.
  RVK_Message("%s", "");
  ASSERT_EQ(ConsoleLines.size(), 1u);
  EXPECT_EQ(ConsoleLines[0].Text, "");
  for (int i = 0; i < 10; i++) RVK_Message("message %d", i);
  ASSERT_EQ(ConsoleLines.size(), 9u);
  EXPECT_EQ(ConsoleLines[0].Text, "message 1");
  // A line of 1023 characters stays whole in the console and is drawn cut.
  RVK_Message("%s", std::string(3000, 'w').c_str());
  EXPECT_EQ(ConsoleLines.back().Text.size(), 1023u);
  RVK_SetLastMessageColour(makecol(255, 0, 0));

  int h = text_height(RVK_FontStandard);
  int n = (int)ConsoleLines.size();
  StartFrame();
  RVK_DrawConsole();
  // The bracket spans the lines; the recoloured last line shows red ink.
  ExpectPixels({{1, ConsoleTop, White}, {2, ConsoleTop, White}, {1, ConsoleTop + n * h - 1, White},
                {2, ConsoleTop + n * h, White}, {1, ConsoleTop - 1, Black}});
  bool red = false;
  for (int x = ConsoleLeft; x < 100 && !red; x++)
    for (int y = ConsoleTop + (n - 1) * h; y < ConsoleTop + n * h; y++)
      if (TkReadPixel(x, y) == (TkPixel{255, 0, 0})) red = true;
  EXPECT_TRUE(red);
  RVK_End2D(0);

  ConsoleLines.clear();
  StartFrame();
  RVK_DrawConsole();
  EXPECT_EQ(TkReadPixel(1, ConsoleTop), Black);
  RVK_End2D(0);
}

// The colour left behind, and whether blending, alpha test and texturing are on.
static std::tuple<std::vector<float>, GLboolean, GLboolean, GLboolean> State() {
  std::vector<float> colour(4);
  glGetFloatv(GL_CURRENT_COLOR, colour.data());
  return {colour, glIsEnabled(GL_BLEND), glIsEnabled(GL_ALPHA_TEST), glIsEnabled(GL_TEXTURE_2D)};
}

TEST(Draw, EveryCallLeavesWhiteAndStatesOff) {
  int red = makecol(255, 0, 0);
  TextureClass cancel = RVK_GetIcon("cancel");
  struct Call {
    const char *Name;
    std::function<void()> Run;
  } calls[] = {
      {"DrawText", [] { RVK_DrawText(RVK_FontStandard, 5, 5, makecol(0, 255, 0), "text"); }},
      {"Printf", [] { RVK_Printf(5, 5, makecol(0, 255, 0), "%d", 5); }},
      {"PrintfFont", [] { RVK_PrintfFont(RVK_FontMedium, 5, 5, makecol(0, 255, 0), "%d", 5); }},
      {"DrawLine", [=] { RVK_DrawLine(0, 0, 9, 9, red, 100); }},
      {"DrawRect filled", [=] { RVK_DrawRect(0, 0, 9, 9, red, true, 100); }},
      {"DrawRect outline", [=] { RVK_DrawRect(0, 0, 9, 9, red, false, 255); }},
      {"DrawRectWH", [=] { RVK_DrawRectWH(0, 0, 9, 9, red, true, 255); }},
      {"DrawBevelBox", [=] { RVK_DrawBevelBox(0, 0, 9, 9, red, red, red, 50); }},
      {"DrawFieldBox", [] { RVK_DrawFieldBox(0, 0, 20, 20); }},
      {"DrawWindowFrame", [] { RVK_DrawWindowFrame(0, 0, 99, 99, 128, "t"); }},
      {"DrawTexture", [=] { RVK_DrawTexture(cancel, 0, 0, 10, true, 100); }},
  };
  StartFrame();
  for (const Call &call : calls) {
    glColor4ub(10, 20, 30, 40);
    call.Run();
    EXPECT_EQ(State(), std::make_tuple(std::vector<float>(4, 1.0f), GL_FALSE, GL_FALSE, GL_FALSE)) << call.Name;
    // A texture drawn next at alpha 255 shows its true colours.
    RVK_DrawTexture(cancel, 200, 200, 0, true, 255);
    EXPECT_EQ(TkReadPixel(216, 216), (TkPixel{236, 52, 52})) << call.Name;
  }
  RVK_End2D(0);
}
