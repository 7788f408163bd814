// The arithmetic and state of the library without a window: the palette,
// the frame timer and time stamps, buttons and their hot keys, toolbar
// layout, keeping on screen and edge sliding, picker bar and menu geometry,
// the menu's pulse, the slider's knob and value.
#include <gtest/gtest.h>
#include <allegro.h>
#include <chrono>
#include <thread>
#include <tuple>
#include "rvk/button.h"
#include "rvk/core.h"
#include "rvk/menu.h"
#include "rvk/pickerbar.h"
#include "rvk/slider.h"
#include "rvk/timer.h"
#include "rvk/toolbar.h"

class Widgets : public testing::Test {
protected:
  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    set_color_depth(32);
    RVK_FontStandard = font;  // 8 x 8 pixels a character
  }
};

TEST_F(Widgets, PaletteInItsOrder) {
  const int rgb[] = {0xFF00FF, 0x000000, 0xFFFFFF, 0x0000F0, 0xE60000, 0xFFFF00, 0x81A2FF, 0x939393,
                     0x3737FF, 0xD3D3D3, 0x6B6B6B, 0x0303FF, 0xB3B3B3, 0x4F4F4F, 0x232323, 0xD4D0C8,
                     0x808080, 0x838383, 0x5353FF, 0x030383, 0xDBDBDB, 0x6F6F6F};
  static_assert(sizeof(PaletteClass) == sizeof(rgb), "one colour a field");
  RVK_SetupPalette();
  for (size_t i = 0; i < std::size(rgb); i++)
    EXPECT_EQ((&RVK_Palette.NoFill)[i], makecol(rgb[i] >> 16, rgb[i] >> 8 & 255, rgb[i] & 255)) << i;
  EXPECT_EQ(std::make_pair(gui_bg_color, gui_fg_color), std::make_pair(makecol(147, 147, 147), makecol(35, 35, 35)));
}

static TimerClass TimerAt(int32_t clock, float earned = 0, float spent = 0) {
  TimerClass t;
  t.LastClock = clock;
  t.TicksEarned = earned;
  t.TicksSpent = spent;
  return t;
}

// Steps the timer at `now` until it wants to wait; gives the frames let go.
static int Frames(TimerClass &t, int32_t now, int rate) {
  int frames = 0;
  while (RVK_TimerStep(t, now, rate) && frames < 100) frames++;
  return frames;
}

TEST(Timer, ShortStallsAreCaughtUpLongOnesForgivenBackwardsResets) {
  TimerClass t = TimerAt(1000);
  EXPECT_EQ(Frames(t, 1022, 45), 0);  // 0.99 of a tick
  EXPECT_EQ(Frames(t, 1023, 45), 1);  // 1.035 ticks
  // A tenth of a second more: 4.5 ticks, owed one call at a time.
  EXPECT_EQ(Frames(t, 1123, 45), 4);
  EXPECT_FLOAT_EQ(t.TicksSpent, 5.0f);
  EXPECT_NEAR(t.TicksEarned, 5.535f, 1e-4);
  // A whole second: one frame at once, then the normal rate from there.
  t = TimerAt(0);
  EXPECT_EQ(Frames(t, 1000, 45), 1);
  EXPECT_EQ(std::make_tuple(t.LastClock, t.TicksEarned, t.TicksSpent), std::make_tuple(1000, 0.0f, 0.0f));
  EXPECT_EQ(Frames(t, 1023, 45), 1);
  // At 1000 ticks a second: exactly one tick owed waits, exactly five are
  // caught up, six are forgiven.
  const int owed[][3] = {{1, 0, 0}, {5, 4, 4}, {6, 1, 0}};
  for (const auto &o : owed) {
    t = TimerAt(0);
    EXPECT_EQ(Frames(t, o[0], 1000), o[1]) << o[0];
    EXPECT_EQ(t.TicksSpent, o[2]) << o[0];
  }
  t = TimerAt(1000, 3, 2);
  EXPECT_EQ(Frames(t, 900, 45), 0);
  EXPECT_EQ(std::make_tuple(t.LastClock, t.TicksEarned, t.TicksSpent), std::make_tuple(900, 0.0f, 0.0f));
  // The 64th tick spent is taken off both counts, which keeps them precise.
  t = TimerAt(0, 64.5f, 62);
  EXPECT_EQ(Frames(t, 0, 45), 2);
  EXPECT_EQ(std::make_pair(t.TicksEarned, t.TicksSpent), std::make_pair(0.5f, 0.0f));
  RVK_FrameRate = 1000;
  t.Reset();
  EXPECT_EQ(std::make_pair(t.TicksEarned, t.TicksSpent), std::make_pair(0.0f, 0.0f));
  std::this_thread::sleep_for(std::chrono::milliseconds(3));
  EXPECT_TRUE(t.Tick());
  RVK_FrameRate = RVK_ProgramFrameRate;
}

TEST(Timer, TimeStampsAndElapsedHundredths) {
  auto fields = [](const TimeStampClass &s) {
    return std::vector<int>{s.Day, s.Month, s.Year, s.Hour, s.Minute, s.Second, s.Hundredths};
  };
  EXPECT_EQ(fields(RVK_TimeStampAt(1735689599990)), (std::vector<int>{31, 12, 2024, 23, 59, 59, 99}));
  EXPECT_EQ(fields(RVK_TimeStampAt(951782400005)), (std::vector<int>{29, 2, 2000, 0, 0, 0, 0}));
  EXPECT_EQ(RVK_TimeStampAt(1735689599990).ToHundredths(), 8639999);
  // From .45 of a second: the difference counts either way round and from
  // 45 hundredths on; a true answer moves the stamp to now.
  const int steps[][3] = {{90, true, 90}, {89, false, 45}, {0, true, 0}, {1, false, 45}};
  TimeStampClass stamp;
  for (const auto &s : steps) {
    stamp = RVK_TimeStampAt(1735689599450);
    TimeStampClass now = stamp;
    now.Hundredths = s[0];
    EXPECT_EQ(RVK_TimeElapsedAt(stamp, now, 45), s[1] != 0) << s[0];
    EXPECT_EQ(stamp.Hundredths, s[2]) << s[0];
  }
  int32_t before = RVK_Clock();
  RVK_GetTimeStamp(stamp);
  std::time_t seconds = std::time(nullptr);
  EXPECT_EQ(stamp.Year, 1900 + std::gmtime(&seconds)->tm_year);
  EXPECT_FALSE(RVK_TimeElapsed(stamp, 1000));
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  EXPECT_GE(RVK_Clock() - before, 60);
  EXPECT_LT(RVK_Clock() - before, 1000);
  EXPECT_GE(RVK_ClockMicroseconds() - 1000 * (int64_t)before, 60000);
  EXPECT_TRUE(RVK_TimeElapsed(stamp, 5));
}

TEST_F(Widgets, ButtonsAndTheirHotKeys) {
  ButtonClass b;
  b.Caption = "old";
  b.Pressed = b.KeyDown = true;
  b.Enabled = b.KeyWaitClear = b.KeyWaitUp = false;
  EXPECT_FALSE(RVK_CreateButtonEx(b, "Cap", TextureClass(), 5, 6, KEY_F5, true));  // a separator with no picture
  EXPECT_EQ(std::make_tuple(b.X, b.Y, b.Width, b.Height, b.Style, b.Caption, b.KeyName, b.HotKey),
            std::make_tuple(5, 6, 6, 32, 1, "", "", KEY_F5));
  TextureClass picture;
  picture.TextureName = 7;
  EXPECT_TRUE(RVK_CreateButtonEx(b, "Cap", picture, 5, 6, KEY_F5, true));
  EXPECT_EQ(std::make_tuple(b.Style, b.Caption, b.Icon.TextureName), std::make_tuple(1, "", 7u));
  b.IconX = b.IconY = 9;
  b.Alpha = 1;
  EXPECT_TRUE(RVK_CreateButton(b, "Reload", "refresh", 1, 2, KEY_F5));
  EXPECT_EQ(std::make_tuple(b.Width, b.Style, b.Caption, b.KeyName, b.IconX, b.IconY, b.Alpha, b.Enabled, b.Pressed),
            std::make_tuple(32, 0, "Reload", "F5", 0, 0, 255, true, false));
  EXPECT_TRUE(RVK_CreateButton(b, nullptr, nullptr, 1, 2, -1));
  EXPECT_EQ(std::make_tuple(b.Caption, b.KeyName, b.Style), std::make_tuple("", "", 0));
  EXPECT_FALSE(RVK_CreateButton(b, "", "seperator", 1, 2, -1));

  // The key's state at each poll, and the polls that fire: a key held at
  // creation must go up first; the button fires in the poll after the one
  // that saw the key released.
  const std::string downs = "1100110001011", fires = "0000000100010";
  std::string fired;
  for (char d : downs) fired += b.HotKeyStep(d == '1') ? '1' : '0';
  EXPECT_EQ(fired, fires);

  auto size = [&](int w, int h) {
    b.SetSize(w, h);
    return std::make_tuple(b.Width, b.Height, b.IconX, b.CaptionX, b.IconY, b.CaptionY, b.Style);
  };
  b.Caption = "Up";  // 16 x 8
  EXPECT_EQ(size(-1, -1), std::make_tuple(56, 34, 3, 37, 1, 13, 2));
  EXPECT_EQ(size(122, 50), std::make_tuple(122, 50, 36, 70, 9, 21, 2));
  // A font taller than 32, odd halves; a caption wider than the button.
  const std::tuple<int, int, int, int, ButtonSizeClass> sizes[] = {
      {122, -1, 33, 40, {122, 42, 27, 5, 61, 1}}, {50, 20, 80, 13, {50, 20, -32, -6, 2, 3}}};
  for (const auto &s : sizes) {
    ButtonSizeClass got = RVK_ButtonSize(std::get<0>(s), std::get<1>(s), std::get<2>(s), std::get<3>(s)), want = std::get<4>(s);
    EXPECT_EQ(std::make_tuple(got.Width, got.Height, got.IconX, got.IconY, got.CaptionX, got.CaptionY),
              std::make_tuple(want.Width, want.Height, want.IconX, want.IconY, want.CaptionX, want.CaptionY));
  }
}

TEST(Toolbar, LayoutKeepingOnScreenAndEdgeSliding) {
  std::vector<ButtonClass> row(4), none;
  row[1].Style = 1;  // a separator
  row[3].Style = 2;
  EXPECT_EQ(RVK_ToolbarLayout(row, 100, 50, 13, 56, -1), 122);
  const int xs[] = {102, 138, 148, 184};
  for (size_t i = 0; i < row.size(); i++) EXPECT_EQ(std::make_pair(row[i].X, row[i].Y), std::make_pair(xs[i], 71)) << i;
  // A status text widens the row by its length + 2, a long title by itself;
  // with no buttons the width is the greater of the two.
  const int widths[][5] = {{100, 56, 200, 324, 4}, {100, 400, 200, 406, 4}, {0, 20, 50, 56, 0},
                           {0, 60, 50, 66, 0},     {0, 0, -1, 6, 0},       {100, 0, 0, 124, 4}};
  for (const auto &w : widths)
    EXPECT_EQ(RVK_ToolbarLayout(w[4] ? row : none, w[0], 50, 13, w[1], w[2]), w[3]) << w[1] << " " << w[2];

  // A 200 x 61 toolbar on an 800 x 600 screen put at (x, y): where keeping
  // on screen leaves it, and where a pointer at (mx, my) slides it.
  const struct {
    int X, Y, KeptX, KeptY, Mx, My, SlidX, SlidY;
  } steps[] = {
      {-50, 100, 0, 100, 0, 120, -47, 100},      // left edge, in the strip's rows
      {-47, 100, 0, 100, 1, 161, -44, 100},      // both far edges of the zone count
      {-44, 100, 0, 100, 2, 120, -44, 100},      // one column too far in
      {-44, 100, 0, 100, 0, 162, -44, 100},      // one row below the strip
      {0, 0, 0, 0, 0, 0, 0, 0},                  // on the screen: nothing to slide
      {700, 100, 599, 100, 798, 120, 697, 100},  // right edge
      {697, 100, 599, 100, 797, 120, 697, 100},
      {600, 100, 599, 100, 799, 120, 600, 100},  // right edge exactly at the screen's
      {599, -10, 599, 0, 400, 1, 599, -7},       // top
      {100, 560, 100, 538, 400, 598, 100, 557},  // bottom
      {100, 539, 100, 538, 400, 597, 100, 539},
      {100, 538, 100, 538, 400, 599, 100, 538},
  };
  for (const auto &s : steps) {
    ToolbarClass t;
    t.Width = 200;
    t.Height = 61;
    t.X = s.X, t.Y = s.Y;
    RVK_ToolbarKeepOnScreen(t, 800, 600);
    EXPECT_EQ(std::make_pair(t.X, t.Y), std::make_pair(s.KeptX, s.KeptY)) << s.X << "," << s.Y;
    t.X = s.X, t.Y = s.Y;
    RVK_ToolbarEdgeSlide(t, s.Mx, s.My, 13, 800, 600);
    EXPECT_EQ(std::make_pair(t.X, t.Y), std::make_pair(s.SlidX, s.SlidY)) << s.Mx << "," << s.My;
  }
}

TEST_F(Widgets, PickerBarSetupRowsAndClip) {
  PickerBarClass bar;
  bar.TopRow = bar.MaxTopRow = 3;
  bar.Setup(40, 400, 64);
  const ButtonClass &up = bar.UpButton, &down = bar.DownButton;
  EXPECT_EQ(std::make_tuple(bar.X, bar.Y, bar.Width, bar.Height, bar.RowsY, bar.VisibleRows, bar.TopRow, bar.MaxTopRow),
            std::make_tuple(2, 40, 126, 360, 78, 4, 0, 0));
  EXPECT_EQ(std::make_tuple(up.X, up.Y, up.Width, up.Height, up.Caption, down.X, down.Y, down.Caption, down.Style),
            std::make_tuple(4, 42, 122, 34, "Up", 4, 364, "Down", 2));
  EXPECT_EQ(std::make_tuple(bar.Alpha, up.Alpha, down.Alpha, bar.ThumbWidth, bar.ThumbHeight, bar.BackgroundColour),
            std::make_tuple(192, 192, 192, 128, 64, RVK_Palette.NoFill));
  // Down at 524 and rows from 78: rows of the height given, at least 0.
  const int rows[][4] = {{524, 78, 96, 4}, {524, 78, 111, 4}, {524, 78, 112, 3}, {524, 78, 1, 444},
                         {524, 78, 0, 0},  {80, 78, 96, 0},   {60, 78, 96, 0}};
  for (const auto &r : rows) EXPECT_EQ(RVK_PickerVisibleRows(r[0], r[1], r[2]), r[3]) << r[0] << " " << r[2];
  const int tops[][3] = {{5, 4, 1}, {4, 4, 0}, {2, 4, 0}, {30, 0, 30}};
  for (const auto &t : tops) EXPECT_EQ(RVK_PickerMaxTopRow(t[0], t[1]), t[2]) << t[0] << " " << t[1];
  bar.ThumbHeight = 96;
  int x, y, w, h;
  RVK_PickerClipRect(bar, x, y, w, h);
  EXPECT_EQ(std::make_tuple(x, y, w, h), std::make_tuple(2, 77, 128, 393));
}

TEST_F(Widgets, MenuCreateRowsAndPulse) {
  MenuClass menu;
  menu.FooterLine2 = "old";
  menu.LastMouseX = menu.LastMouseY = menu.HelpX = menu.Selected = 5;
  menu.SelectSample = menu.MoveSample = menu.BackSample = (SAMPLE *)&menu;
  menu.Entries.resize(2);
  menu.Create("Title", "Footer", "Top");
  EXPECT_EQ(std::make_tuple(menu.Title, menu.Footer, menu.TopRightText, menu.FooterLine2, menu.LastMouseX, menu.LastMouseY,
                            menu.HelpX, menu.Selected, menu.RowWidth, menu.TextX, menu.Entries.size()),
            std::make_tuple("Title", "Footer", "Top", "", 0, 0, SCREEN_W, 0, 320, 57, 0u));
  EXPECT_TRUE(!menu.SelectSample && !menu.MoveSample && !menu.BackSample);
  // A band widens to a name's length + 96 when that is more than it has.
  menu.AddEntry(std::string(28, 'n').c_str(), "nosuch", "help");
  EXPECT_EQ(menu.RowWidth, 320);
  menu.AddEntry(std::string(29, 'n').c_str(), nullptr, nullptr);
  EXPECT_EQ(std::make_tuple(menu.RowWidth, menu.Entries[0].Help, menu.Entries[1].Name.size(), menu.Entries[1].Help),
            std::make_tuple(328, "help", 29u, ""));

  auto row = [](int i, int mh, int h, int width, int textX) {
    MenuRowClass r = RVK_MenuRow(i, mh, h, width, textX);
    return std::make_tuple(r.Y, r.X1, r.Y1, r.X2, r.Y2);
  };
  EXPECT_EQ(row(0, 10, 13, 320, 57), std::make_tuple(20, 15, 20, 377, 60));
  EXPECT_EQ(row(2, 10, 32, 320, 57), std::make_tuple(100, 15, 100, 377, 140));
  EXPECT_EQ(row(3, 32, 40, 400, 65), std::make_tuple(186, 15, 186, 465, 234));

  // Size stops growing at 64 or above and grows again at 8 or below; the
  // brightness turns at 250 and 140.
  MenuPulseClass p;
  std::vector<int> sizes, lights;
  for (int i = 0; i < 45; i++) {
    p.Step();
    sizes.push_back(p.Size);
    lights.push_back(p.Brightness);
  }
  EXPECT_EQ(std::vector<int>({sizes[0], sizes[17], sizes[18], sizes[19], sizes[36], sizes[37], sizes[38]}),
            std::vector<int>({11, 62, 65, 62, 11, 8, 11}));
  EXPECT_EQ(std::vector<int>({lights[0], lights[19], lights[20], lights[21], lights[38], lights[39], lights[40]}),
            std::vector<int>({134, 248, 254, 248, 146, 140, 146}));
}

static SliderClass Slider(int length, int min, int max, int knob, int page, bool vertical = false) {
  static int value = 0;
  SliderClass s;
  s.Create("Size", 10, 20, vertical ? 12 : length, vertical ? length : 12, min, max, vertical, knob, &value, page);
  return s;
}

TEST(Slider, KnobFromSizeOrPageAndValueFromThePointer) {
  // Length, min, max, knob size and page: the knob's length.
  const int knobs[][6] = {{200, 0, 10, 5, -1, 20},  {200, 0, 10, 60, -1, 60}, {100, 0, 10, 100, -1, 32},
                          {100, 0, 10, 99, -1, 99}, {200, 0, 39, -1, 10, 50}, {200, 0, 39, -1, -1, 20},
                          {200, 0, 39, -1, 5, 25},  {200, 0, 79, -1, 8, 20},  {200, 1, 0, -1, 1, 200}};
  for (const auto &k : knobs)
    EXPECT_EQ(Slider(k[0], k[1], k[2], k[3], k[4], k[1] == 1).KnobLength(), k[5]) << k[0] << " " << k[3] << " " << k[4];
  SliderClass s = Slider(200, 0, 39, -1, 10);  // knob 50, room 150
  EXPECT_EQ(std::make_tuple(s.Label, s.X, s.Y, s.Min, s.Page, s.KnobPosition(0), s.KnobPosition(20), s.KnobPosition(39)),
            std::make_tuple("Size", 10, 20, 0, 10, 0, 76, 150));
  // Left of the knob's half length: Min; far end: Max; between, the percent
  // of the room (truncated) times the range.
  const int values[][2] = {{0, 0}, {200, 39}, {100, 19}, {26, 0}, {28, 0}, {31, 1}, {175, 39}, {174, 38}};
  for (const auto &c : values) {
    int v = -99;
    ASSERT_TRUE(s.ValueAt(c[0], v));
    EXPECT_EQ(v, c[1]) << c[0];
  }
  int v = -99;
  ASSERT_TRUE(Slider(200, 5, 39, 50, -1).ValueAt(30, v));
  EXPECT_EQ(v, 5);
  ASSERT_TRUE(Slider(21, 0, 10, 20, -1).ValueAt(21, v));  // a room of one pixel
  EXPECT_EQ(v, 10);
  // A knob that fills the slider leaves nowhere to go.
  v = 7;
  EXPECT_FALSE(Slider(32, 0, 10, 40, -1).ValueAt(16, v));
  EXPECT_EQ(v, 7);
  EXPECT_EQ(std::make_tuple(Slider(10, 0, 10, -1, -1).KnobPosition(10), Slider(100, 0, 1, 20, -1).KnobPosition(1),
                            Slider(100, 0, 0, 20, -1).KnobPosition(0)),
            std::make_tuple(-10, 80, 0));
  SliderClass unnamed;
  unnamed.Label = "x";
  unnamed.Create(nullptr, 0, 0, 10, 10, 0, 1, true, -1, nullptr, -1);
  EXPECT_EQ(unnamed.Label, "");
}
