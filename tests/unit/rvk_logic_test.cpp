// The library without a window, measured with Allegro's 8 x 8 font.
#include <allegro.h>
#include <allegro/internal/aintern.h>
#include <cstring>
#include <fstream>
#include <regex>
#include <thread>
#include "gl/rvk_xinput.h"
#include "rvk/button.h"
#include "rvk/console.h"
#include "rvk/draw.h"
#include "rvk/keynames.h"
#include "rvk/listbox.h"
#include "rvk/menu.h"
#include "rvk/pickerbar.h"
#include "rvk/slider.h"
#include "rvk/textfield.h"
#include "rvk/toolbar.h"
#include "support/joined.h"

class Logic : public testing::Test {
protected:
  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    set_color_depth(32);
    RVK_FontStandard = font;
    RVK_InitConsole();
  }
};

TEST_F(Logic, KeyNamesAndMeasures) {
  RVK_SetupPalette();
  // No fill is magenta, the one colour of the palette that is never drawn.
  EXPECT_EQ((J{gui_bg_color == RVK_Palette.PanelFace, gui_fg_color == RVK_Palette.StatusText,
              RVK_Palette.NoFill == makecol(255, 0, 255)}),
            "1 1 1");
  std::string names;
  for (int code : {-6, -5, -1, 0, 13, 14, 71, 74, 126, 127}) names += std::string(RVK_GetKeyName(code)) + ",";
  EXPECT_EQ(names, "(none),Mouse wheel down,(none),(none),m,N,/,/,Caps Lock,(none),");
  EXPECT_EQ((J{RVK_TextHeight(nullptr), RVK_TextLength("W", nullptr), RVK_TextLength("ab"), RVK_TextWidthForChars(font, 16),
              RVK_TextWidthForChars(nullptr, 16)}),
            "0 0 16 128 0");
}

static TimerClass TimerAt(int32_t clock, float earned = 0, float spent = 0) {
  TimerClass t;
  t.LastClock = clock, t.TicksEarned = earned, t.TicksSpent = spent;
  return t;
}

// Steps the timer at `now` until it wants to wait; gives the frames let go
// and the counts left.
static std::string Frames(TimerClass &t, int32_t now, int rate = 45) {
  int frames = 0;
  while (RVK_TimerStep(t, now, rate) && frames < 100) frames++;
  return (J{frames, t.TicksEarned, t.TicksSpent});
}

TEST(Timer, ShortStallsAreCaughtUpLongOnesForgivenBackwardsResets) {
  TimerClass t = TimerAt(1000);
  // Short stalls caught up a frame a call, a second's forgiven at once.
  EXPECT_EQ((J{Frames(t, 1022), Frames(t, 1023), Frames(t, 1123)}), "0 0.99 0 1 1.035 1 4 5.535 5");
  // At 1000 a second: 1, 5 and 6 ticks owed; a clock gone back; 64 spent.
  std::string owed;
  for (int ms : {1, 5, 6}) t = TimerAt(0), owed += Frames(t, ms, 1000) + ",";
  t = TimerAt(1000, 3, 2);
  std::string back = Frames(t, 900);
  t = TimerAt(0, 64.5f, 62);
  EXPECT_EQ((J{owed, back, Frames(t, 0)}), "0 1 0,4 5 4,1 0 0, 0 0 0 2 0.5 0");
  RVK_FrameRate = 1000;
  t.Reset();
  EXPECT_EQ((J{t.TicksEarned, t.TicksSpent}), "0 0");
  std::this_thread::sleep_for(std::chrono::milliseconds(3));
  EXPECT_TRUE(t.Tick());
  RVK_FrameRate = RVK_ProgramFrameRate;
}

TEST(Timer, TimeStampsAndElapsedHundredths) {
  TimeStampClass s = RVK_TimeStampAt(1735689599990);
  EXPECT_EQ((J{+s.Day, +s.Month, s.Year, +s.Hour, +s.Minute, +s.Second, +s.Hundredths, s.ToHundredths()}),
            "31 12 2024 23 59 59 99 8639999");
  // 45 hundredths either way round elapse and move the stamp.
  std::string steps;
  for (int hundredths : {90, 89, 0, 1}) {
    TimeStampClass stamp = RVK_TimeStampAt(1735689599450), now = stamp;
    now.Hundredths = hundredths;
    bool elapsed = RVK_TimeElapsedAt(stamp, now, 45);
    steps += (J{elapsed, +stamp.Hundredths}) + ",";
  }
  EXPECT_EQ(steps, "1 90,0 45,1 0,0 45,");
  int32_t before = RVK_Clock();
  TimeStampClass stamp;
  RVK_GetTimeStamp(stamp);
  std::time_t seconds = std::time(nullptr);
  EXPECT_EQ(stamp.Year, 1900 + std::gmtime(&seconds)->tm_year);
  EXPECT_FALSE(RVK_TimeElapsed(stamp, 1000));
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  EXPECT_EQ((J{RVK_Clock() - before >= 60, RVK_Clock() - before < 1000, RVK_ClockMicroseconds() / 1000 - before >= 60,
              RVK_TimeElapsed(stamp, 5)}),
            "1 1 1 1");
}

// The lines one pass of the console draws, as text and row.
static std::string Pass(int second) {
  std::string drawn;
  RVK_ConsolePass(second, [&](const ConsoleLineClass &line, int row) { drawn += line.Text + (J{"", row}) + ","; });
  return drawn;
}

TEST_F(Logic, ConsoleAndLogs) {
  ConsoleLines.clear();
  RVK_SetLastMessageColour(7);  // an empty console: nothing to do
  ConsoleColour = 1;
  RVK_ConsoleAppend("first", 58);
  Pass(58);
  RVK_ConsoleAppend("second", 59);
  RVK_SetLastMessageColour(42);
  // Aged once a second; at 13 drawn once more, then gone.
  for (int second = 59; second < 71; second++) Pass(second % 60), Pass(second % 60);
  EXPECT_EQ((J{ConsoleLines[0].Age, ConsoleLines[1].Age, ConsoleLines[0].Colour, ConsoleLines[1].Colour, Pass(59)}),
            "12 11 1 42 first 0,second 0,");
  EXPECT_EQ((J{ConsoleLines.size(), ConsoleLines[0].Age, Pass(0), ConsoleLines.size()}), "1 12 second 0, 0");
  // Ten lines leave the last nine.
  for (int i = 0; i < 10; i++) RVK_ConsoleAppend(std::to_string(i).c_str(), 0);
  EXPECT_EQ((J{ConsoleLines.size(), ConsoleLines[0].Text}), "9 1");

  ConsoleLines.clear();
  ConsoleLogFile = std::fopen("rvk_messages.txt", "w");
  ConsoleLogOn = true;
  RVK_Message(nullptr);
  RVK_Message("%s at 100%%", "hat");
  ConsoleLogOn = false;
  RVK_Message("unseen");
  std::string dated = "[0-3][0-9]/[01][0-9]/20[0-9]{2} - [0-2][0-9]:[0-5][0-9]:[0-6][0-9]: ";
  EXPECT_TRUE(std::regex_match(FileText("rvk_messages.txt"), std::regex(dated + "hat at 100%\n")));
  std::fclose(ConsoleLogFile);
  std::remove("rvk_messages.txt");
  ConsoleLogOn = true;
  ConsoleLogFile = nullptr;
  RVK_Message("nowhere");
  ConsoleLogOn = false;
  EXPECT_TRUE(ConsoleLines.empty());
  std::remove("RVK Error Log.txt");
  EXPECT_FALSE(RVK_HasLoggedError());
  RVK_LogError("texture %d of %s at 100%%", 3, "hat");
  RVK_LogError("%s", std::string(400, 'x').c_str());
  std::string date = "[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}\n";
  EXPECT_TRUE(std::regex_match(FileText("RVK Error Log.txt"), std::regex(date + ">texture 3 of hat at 100%\n\n" + date + ">" +
                                                                     std::string(255, 'x') + "\n\n")));
  EXPECT_TRUE(RVK_HasLoggedError());
}

TEST_F(Logic, FocusAndTextFieldKeys) {
  auto next = [] {
    RVK_NextFocus();
    return std::to_string(RVK_GetFocus()) + ",";
  };
  RVK_ResetFocus();
  for (int i = 0; i < 3; i++) RVK_AllocFocusId();
  RVK_FreeFocusId(1);
  std::string focus = next();
  focus += next();
  RVK_FreeFocusId(2);
  focus += next();
  RVK_SetFocus(200);
  focus += next();
  RVK_FreeFocusId(0);
  RVK_SetFocus(9);
  focus += next();
  RVK_ResetFocus();
  for (int i = 0; i < 256; i++) RVK_AllocFocusId();
  focus += std::to_string(RVK_AllocFocusId()) + ",";
  RVK_SetFocus(255);
  focus += next();
  RVK_FreeFocusId(77);
  EXPECT_EQ((J{focus, +RVK_AllocFocusId()}), "2,0,0,0,9,0,0, 77");
  RVK_ResetFocus();
  EXPECT_EQ((J{+RVK_GetFocus(), +RVK_AllocFocusId()}), "0 0");

  EXPECT_EQ((J{RVK_TextKeyAction(KEY_A, 'a'), RVK_TextKeyAction(KEY_HOME, 0), RVK_TextKeyAction(KEY_INSERT, 0x100)}),
            (J{TextKeyInsert, TextKeyDrop, TextKeyDrop}));
  TextFieldClass f;
  f.MaxLength = 16;
  std::string states;
  auto key = [&](TextKeyAction action, int c = 0) {
    f.ApplyKey(action, c);
    states += f.Text + (J{"", f.Caret}) + ",";
  };
  for (char c = 'a'; c < 'a' + 16; c++) f.ApplyKey(TextKeyInsert, 0x1E00 | c);
  key(TextKeyRight), key(TextKeyLeft), key(TextKeyBackspace), key(TextKeyInsert, 'Z');
  f.Caret = 0;
  key(TextKeyBackspace), key(TextKeyLeft);
  f.Caret = 99;
  key(TextKeyBackspace);
  f.Caret = -5;
  key(TextKeyInsert, 'y');
  EXPECT_EQ(states,
            "abcdefghijklmno 15,abcdefghijklmno 14,abcdefghijklmo 13,abcdefghijklmZo 14,abcdefghijklmZo 0,"
            "abcdefghijklmZo 0,abcdefghijklmZ 14,yabcdefghijklmZ 1,");
}

static std::string Rows(ListBoxClass &list) {
  std::string rows;
  for (int i = 0; i < list.GetCount(); i++) rows += list.GetItem(i).Text + "|";
  return rows;
}

TEST_F(Logic, ListBoxWrapRowsFilesScrollingAndBars) {
  // Text, wrap width and rows (first-last).
  const std::pair<const char *, int> texts[] = {
      {"abcdefghij", 33}, {"abcdefghij", 32}, {"ab cd efgh", 48}, {"a bc defgh", 48}, {"ab\ncd\n", 400},
      {"ab\n\ncd", 400},  {"\n\nab", 400},    {"abcdef", 0},      {"", 400},        {"ab", 1},
      {nullptr, 10}};
  std::string split;
  for (const auto &t : texts)
    for (auto [first, last] : RVK_SplitLines(t.first, font, t.second)) split += (J{first, last}) + ",";
  EXPECT_EQ((J{split, RVK_SplitLines("ab cd", nullptr, 0).back().second}),
            "0 4,5 9,0 3,4 7,8 9,0 5,6 9,0 4,5 9,0 1,3 5,0 1,3 3,4 5,0 0,1 1,2 3,0 1,2 3,4 5,0 -1,0 1,0 -1, 4");
  std::string parts;
  for (auto [from, to] : {std::pair{1, 3}, {1, 1}, {3, 2}, {3, 99}, {5, 9}, {-3, 1}}) parts += RVK_Substring("hello", from, to) + std::string(",");
  std::string big(600, 'x');
  EXPECT_EQ((J{parts, std::string(RVK_Substring(nullptr, 0, 1)), RVK_Substring(big.c_str(), 10, 522) == nullptr,
              std::strlen(RVK_Substring(big.c_str(), 0, 511))}),
            "ell,e,,lo,,,  1 512");

  ListBoxClass list;
  list.Create(10, 20, 100, 3);  // wraps at 100 - 8 - 1 = 91: 11 characters
  list.AddText("one two three four\n\nx\nlast line\n");
  std::string rows = Rows(list);
  list.Clear();
  list.AddText(nullptr);
  list.AddItem("tagged\n", "", "tag");
  list.AddItem(nullptr, nullptr, nullptr);
  EXPECT_EQ((J{rows, Rows(list), list.GetItem(1).Tag, list.GetItem(2).Tag.size()}),
            "one two |three four| | |last line| |tagged|| tag 0");
  std::ofstream("rvk_text.txt", std::ios::binary) << "first\r\nsecond\r\n\r\nthird\rx\r";
  list.Clear();
  EXPECT_TRUE(list.LoadFromTextFile(".\\rvk_text.txt"));
  rows = Rows(list);
  // Sparse, too large for memory; missing.
  std::filesystem::resize_file("rvk_text.txt", 1LL << 40);
  std::remove("RVK Error Log.txt");
  list.Clear();
  EXPECT_EQ((J{rows, list.LoadFromTextFile("rvk_text.txt"), list.LoadFromTextFile("no\\such.txt"), list.GetCount()}),
            "first|second| |third\rx\r| 0 0 0");
  EXPECT_TRUE(std::regex_search(FileText("RVK Error Log.txt"),
                                std::regex(">ListBoxClass::LoadFromTextFile: Unable to allocate 1099511627777 bytes for file "
                                           "buffer\n\n.*\n>RVK_LoadFileToListBox: The file \"no\\\\such.txt\" could not be "
                                           "opened as \"r\".\n")));
  std::remove("rvk_text.txt");

  // By n from a selection and top row.
  for (int i = 0; i < 6; i++) list.AddItem("row", nullptr, nullptr);
  const int steps[][3] = {{1, 2, 0}, {1, 1, 0}, {2, 3, 3}, {3, 3, 0}, {1, 5, 3}, {-1, 3, 3}, {-2, 3, 1}, {-4, 2, 2}};
  std::string scrolled;
  for (const auto &s : steps) {
    list.Selected = s[1], list.TopRow = s[2];
    s[0] > 0 ? list.ScrollDown(s[0]) : list.ScrollUp(-s[0]);
    scrolled += (J{list.Selected, list.TopRow}) + ",";
  }
  EXPECT_EQ(scrolled, "3 1,2 0,5 3,3 0,5 3,2 2,1 1,0 0,");

  // Bars past 3 rows and past the width, a row at the width and past it.
  list.Clear();
  list.Create(10, 20, 99, 3);
  for (const char *text : {"row", "row", "row", "a row that is thirty-one chars!", "row"}) {
    list.TopRow = list.HScroll = 1;
    list.AddItem(text, nullptr, nullptr);
  }
  const SliderClass &v = list.VBar, &h = list.HBar;
  std::string bars = (J{list.TopRow, list.HScroll, v.X, v.Y, v.Width, v.Height, v.Min, v.Max, v.Vertical, v.KnobSize,
                       v.Value == &list.TopRow, v.Page, h.X, h.Y, h.Width, h.Height, h.Max, h.Vertical, h.KnobSize,
                       h.Value == &list.HScroll, h.Page});
  for (int n : {12, 13}) {
    list.Items[3].Text = std::string(n, 'w');
    list.UpdateSliders();
    bars += (J{"", list.HasHBar, h.Max, h.KnobSize});
  }
  list.AllowHScroll = false;
  list.UpdateSliders();
  bars += (J{"", list.HasHBar});
  list.Items.resize(3);
  list.AllowHScroll = true;
  for (int width : {1, 0}) {
    list.Width = width;
    list.UpdateSliders();
    bars += (J{"", list.HasVBar, list.HasHBar});
  }
  EXPECT_EQ(bars, "0 0 101 20 8 27 0 2 1 14 1 3 10 48 99 8 152 0 49 1 99 0 152 49 1 8 32 0 0 1 0 0");
}

static size_t Measured = 0;
static int CountingLength(const FONT *f, const char *text) {
  Measured += std::strlen(text);
  return font->vtable->text_length(f, text);
}

TEST_F(Logic, AddingTextMeasuresEachCharacterAFewTimesOnly) {
  FONT_VTABLE table = *font->vtable;
  table.text_length = CountingLength;
  FONT counting = *font;
  counting.vtable = &table;
  RVK_FontStandard = &counting;
  std::string text;
  for (int i = 0; i < 2000; i++) text += "A readme line that the list wraps once at its width\n";
  ListBoxClass list;
  list.Create(0, 0, 200, 10);
  list.AddText(text.c_str());
  RVK_FontStandard = font;
  EXPECT_EQ(list.GetCount(), 6000);
  EXPECT_LE(Measured, 3 * text.size());
}

TEST_F(Logic, WidgetsAtTheirEdges) {
  ButtonClass b;
  b.Caption = "old";
  b.Pressed = b.KeyDown = true;
  b.Enabled = b.KeyWaitClear = b.KeyWaitUp = false;
  bool made = RVK_CreateButtonEx(b, "Cap", TextureClass(), 5, 6, KEY_F5, true);
  std::string buttons = (J{made, b.Width, b.Style, b.Caption.size(), b.KeyName.size(), b.Enabled, b.Pressed, b.KeyDown,
                          b.KeyWaitClear, b.KeyWaitUp});
  b.IconX = b.IconY = 9, b.Alpha = 1;
  made = RVK_CreateButton(b, nullptr, nullptr, 1, 2, -1);
  buttons += (J{"", made, b.Style, b.Caption.size(), b.KeyName.size(), b.IconX, b.IconY, +b.Alpha, RVK_CreateButton(b, "", "seperator", 1, 2, -1)});
  ButtonSizeClass s = RVK_ButtonSize(122, -1, 33, 40);  // a font taller than 32
  EXPECT_EQ((J{buttons, s.Width, s.Height, s.IconX, s.IconY, s.CaptionX, s.CaptionY}), "0 6 1 0 0 1 0 0 1 1 1 0 0 0 0 0 255 0 122 42 27 5 61 1");

  // A 200 x 61 toolbar at (x, y) kept on 800 x 600, and slid by a pointer
  // at (mx, my) pressed against an edge: how far each moved it.
  std::vector<ButtonClass> none;
  std::string toolbars = (J{RVK_ToolbarLayout(none, 0, 0, 13, -10, 0), RVK_ToolbarLayout(none, 0, 0, 13, 20, -1)}) + ",";
  const int moves[][8] = {{-50, 100, 0, 100, 1, 161, -47, 100}, {-47, 100, 0, 100, 2, 120, -47, 100},
                          {-47, 100, 0, 100, 0, 162, -47, 100}, {0, 0, 0, 0, 0, 0, 0, 0},
                          {700, 100, 599, 100, 798, 120, 697, 100}, {600, 100, 599, 100, 799, 120, 600, 100},
                          {599, -10, 599, 0, 400, 1, 599, -7},   {100, 539, 100, 538, 400, 598, 100, 539},
                          {100, 538, 100, 538, 400, 599, 100, 538}};
  for (const auto &m : moves) {
    ToolbarClass t;
    t.Width = 200, t.Height = 61;
    t.X = m[0], t.Y = m[1];
    RVK_ToolbarKeepOnScreen(t, 800, 600);
    toolbars += (J{t.X - m[2], t.Y - m[3]});
    t.X = m[0], t.Y = m[1];
    RVK_ToolbarEdgeSlide(t, m[4], m[5], 13, 800, 600);
    toolbars += (J{"", t.X - m[6], t.Y - m[7]}) + ",";
  }
  EXPECT_EQ(toolbars, "6 26,0 0 0 0,0 0 0 0,0 0 0 0,0 0 0 0,0 0 0 0,0 0 0 0,0 0 0 0,0 0 0 0,0 0 0 0,");

  PickerBarClass bar;
  bar.TopRow = bar.MaxTopRow = 3;
  bar.Setup(40, 400, 64);
  EXPECT_EQ((J{RVK_PickerVisibleRows(524, 78, 1), RVK_PickerVisibleRows(524, 78, 0), RVK_PickerVisibleRows(60, 78, 96),
              RVK_PickerMaxTopRow(4, 4), RVK_PickerMaxTopRow(2, 4), bar.TopRow, bar.MaxTopRow, +bar.Alpha,
              +bar.UpButton.Alpha, +bar.DownButton.Alpha, bar.BackgroundColour == RVK_Palette.NoFill}),
            "444 0 0 0 0 0 0 192 192 192 1");

  // A menu made again keeps nothing; the pulse turns at 64 and 8, 250 and 140.
  MenuClass menu;
  menu.FooterLine2 = "old";
  menu.LastMouseX = menu.LastMouseY = menu.HelpX = menu.Selected = 5;
  menu.SelectSample = menu.MoveSample = menu.BackSample = (SAMPLE *)&menu;
  menu.Entries.resize(2);
  menu.Create("Title", "Footer", "Top");
  std::string menus = (J{menu.Title, menu.Footer, menu.TopRightText, menu.FooterLine2.size(), menu.LastMouseX, menu.LastMouseY,
                        menu.HelpX, menu.Selected, menu.RowWidth, menu.TextX, menu.Entries.size(), menu.SelectSample,
                        menu.MoveSample, menu.BackSample});
  menu.AddEntry(std::string(28, 'n').c_str(), "nosuch", "help");
  menu.AddEntry(std::string(29, 'n').c_str(), nullptr, nullptr);
  MenuPulseClass p;
  std::string pulse;
  for (int i = 0; i < 41; i++, p.Step())
    if (i == 17 || i == 18 || i == 20 || i == 21 || i == 37 || i == 38 || i == 39 || i == 40) pulse += (J{"", p.Size, +p.Brightness});
  EXPECT_EQ((J{menus, menu.RowWidth, menu.Entries[0].Help, menu.Entries[1].Help.size(), pulse}),
            "Title Footer Top 0 0 0 0 0 320 57 0 0 0 0 328 help 0  59 230 62 236 62 248 59 254 11 158 8 152 11 146 14 140");

  auto slider = [](int length, int min, int max, int knob, int page) {
    static int value = 0;
    SliderClass s;
    s.Create("Size", 10, 20, length, 12, min, max, false, knob, &value, page);
    return s;
  };
  std::string knobs;
  for (auto k : {slider(100, 0, 10, 100, -1), slider(100, 0, 10, 99, -1), slider(200, 0, 39, -1, 5),
                 slider(200, 0, 79, -1, 8), slider(200, 1, 0, -1, 1)})
    knobs += (J{k.KnobLength(), ""});
  int v[] = {-9, -9, 7};
  bool moved[] = {slider(200, 5, 39, 50, -1).ValueAt(30, v[0]), slider(21, 0, 10, 20, -1).ValueAt(21, v[1]),
                  slider(32, 0, 10, 40, -1).ValueAt(16, v[2])};
  SliderClass unnamed;
  unnamed.Create(nullptr, 0, 0, 10, 10, 0, 1, true, -1, nullptr, -1);
  EXPECT_EQ((J{knobs, moved[0], v[0], moved[1], v[1], moved[2], v[2], slider(100, 0, 1, 20, -1).KnobPosition(1),
              slider(100, 0, 0, 20, -1).KnobPosition(0), unnamed.Label.size()}),
            "32 99 25 20 200  1 5 1 10 0 7 80 0 0");
}
