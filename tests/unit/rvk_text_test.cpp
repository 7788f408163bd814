// Text without a window, measured with Allegro's 8 x 8 font: key names, the
// console and the two logs, the keys of a text field and the focus table,
// and the rows, wrap, scrolling and bars of a list box.
#include <gtest/gtest.h>
#include <allegro.h>
#include <allegro/internal/aintern.h>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <tuple>
#include "rvk/console.h"
#include "rvk/draw.h"
#include "rvk/keynames.h"
#include "rvk/listbox.h"
#include "rvk/textfield.h"

using Texts = std::vector<std::string>;
using Pairs = std::vector<std::pair<int, int>>;

static std::string Read(const char *path) {
  std::stringstream s;
  s << std::ifstream(path).rdbuf();
  return s.str();
}

static Texts Rows(ListBoxClass &list) {
  Texts texts;
  for (int i = 0; i < list.GetCount(); i++) texts.push_back(list.GetItem(i).Text);
  return texts;
}

class Text : public testing::Test {
protected:
  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    RVK_FontStandard = font;
    RVK_InitConsole();
  }
};

TEST(KeyNames, EdgesOfTheTableAndItsGaps) {
  const std::pair<int, const char *> names[] = {
      {-6, "(none)"}, {-5, "Mouse wheel down"}, {-1, "(none)"}, {0, "(none)"}, {13, "m"},    {14, "N"},
      {42, "5 (keypad)"}, {61, "(none)"},  {71, "/"},      {74, "/"},      {126, "Caps Lock"}, {127, "(none)"}};
  for (const auto &n : names) EXPECT_STREQ(RVK_GetKeyName(n.first), n.second) << n.first;
}

TEST_F(Text, MeasuresWithoutAFontAreNone) {
  EXPECT_EQ(std::make_tuple(RVK_TextHeight(nullptr), RVK_TextLength("W", nullptr), RVK_TextLength("ab")),
            std::make_tuple(0, 0, 16));
  EXPECT_EQ(std::make_pair(RVK_TextWidthForChars(font, 16), RVK_TextWidthForChars(nullptr, 16)), std::make_pair(128, 0));
}

// The lines one pass of the console draws, as text and row.
static std::vector<std::pair<std::string, int>> Pass(int second) {
  std::vector<std::pair<std::string, int>> drawn;
  RVK_ConsolePass(second, [&](const ConsoleLineClass &line, int row) { drawn.emplace_back(line.Text, row); });
  return drawn;
}

TEST_F(Text, ConsoleLinesAgeByChangesOfTheSecond) {
  ConsoleLines.clear();
  RVK_SetLastMessageColour(7);  // an empty console: nothing to do
  ConsoleColour = 1;
  RVK_ConsoleAppend("first", 58);
  EXPECT_EQ(Pass(58).size(), 1u);
  RVK_ConsoleAppend("second", 59);
  RVK_SetLastMessageColour(42);
  // Many frames within one second age a line once.
  for (int i = 0; i < 30; i++) Pass(59);
  EXPECT_EQ(std::make_tuple(ConsoleLines[0].Age, ConsoleLines[1].Age, ConsoleLines[0].Colour, ConsoleLines[1].Colour),
            std::make_tuple(1, 0, 1, 42));
  // Eleven more changes (the second wraps at 60): the first line is 12 old;
  // at 13 it is drawn once more in its place, then gone, and the second
  // moves up in the same pass.
  for (int second = 0; second < 11; second++) Pass(second);
  EXPECT_EQ(ConsoleLines[0].Age, 12);
  EXPECT_EQ(Pass(11), (std::vector<std::pair<std::string, int>>{{"first", 0}, {"second", 0}}));
  EXPECT_EQ(std::make_pair(ConsoleLines.size(), ConsoleLines[0].Age), std::make_pair((size_t)1, 12));
  Pass(12);
  EXPECT_TRUE(ConsoleLines.empty());
  // Ten lines in a row leave the last nine.
  for (int i = 0; i < 10; i++) RVK_ConsoleAppend(std::to_string(i).c_str(), 0);
  EXPECT_EQ(std::make_pair(ConsoleLines.size(), ConsoleLines[0].Text), std::make_pair((size_t)9, std::string("1")));
}

TEST_F(Text, MessageLogAndErrorLog) {
  ConsoleLines.clear();
  ConsoleLogFile = std::fopen("rvk_messages.txt", "w");
  ConsoleLogOn = true;
  RVK_Message(nullptr);
  RVK_Message("%s at 100%%", "hat");
  ConsoleLogOn = false;
  RVK_Message("unseen");
  // Read while the stream is open: each line is flushed at once.
  std::string dated = "[0-3][0-9]/[01][0-9]/20[0-9]{2} - [0-2][0-9]:[0-5][0-9]:[0-6][0-9]: ";
  EXPECT_TRUE(std::regex_match(Read("rvk_messages.txt"), std::regex(dated + "hat at 100%\n"))) << Read("rvk_messages.txt");
  std::fclose(ConsoleLogFile);
  std::remove("rvk_messages.txt");
  ConsoleLogOn = true;
  ConsoleLogFile = nullptr;
  RVK_Message("nowhere");
  ConsoleLogOn = false;
  // Without a started library a message leaves no line.
  EXPECT_TRUE(ConsoleLines.empty());

  std::remove("RVK Error Log.txt");
  EXPECT_FALSE(RVK_HasLoggedError());
  RVK_LogError("texture %d of %s at 100%%", 3, "hat");
  RVK_LogError("%s", std::string(400, 'x').c_str());
  EXPECT_TRUE(RVK_HasLoggedError());
  // A date line, the message cut to 255 characters, an empty line.
  std::string date = "[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}\n";
  EXPECT_TRUE(std::regex_match(Read("RVK Error Log.txt"), std::regex(date + ">texture 3 of hat at 100%\n\n" + date + ">" +
                                                                     std::string(255, 'x') + "\n\n")));
}

TEST(Focus, AllocationReuseWrapAndExhaustion) {
  auto next = [] {
    RVK_NextFocus();
    return (int)RVK_GetFocus();
  };
  RVK_ResetFocus();
  for (int i = 0; i < 3; i++) EXPECT_EQ(RVK_AllocFocusId(), i);
  RVK_FreeFocusId(1);
  // 1 is free and skipped; past the last used number Tab starts from 0 again.
  EXPECT_EQ(next(), 2);
  EXPECT_EQ(next(), 0);
  // A focus on a free number moves to the next used one above it, or wraps;
  // a single field keeps the focus; with nothing used it stays.
  RVK_SetFocus(200);
  EXPECT_EQ(next(), 0);
  RVK_FreeFocusId(2);
  EXPECT_EQ(next(), 0);
  RVK_FreeFocusId(0);
  RVK_SetFocus(9);
  EXPECT_EQ(next(), 9);
  // All 256 used: the next field shares 0; a freed number is handed out again.
  RVK_ResetFocus();
  for (int i = 0; i < 256; i++) RVK_AllocFocusId();
  EXPECT_EQ(RVK_AllocFocusId(), 0);
  RVK_SetFocus(255);
  EXPECT_EQ(next(), 0);
  RVK_FreeFocusId(77);
  EXPECT_EQ(RVK_AllocFocusId(), 77);
  RVK_ResetFocus();
  EXPECT_EQ(std::make_pair((int)RVK_GetFocus(), (int)RVK_AllocFocusId()), std::make_pair(0, 0));
}

TEST(TextField, KeysEditUpToTheLimitAndStopAtTheEnds) {
  const std::tuple<int, int, TextKeyAction> keys[] = {
      {KEY_BACKSPACE, 8, TextKeyBackspace}, {KEY_TAB, 9, TextKeyTab},     {KEY_LEFT, 0, TextKeyLeft},
      {KEY_RIGHT, 0, TextKeyRight},         {KEY_F1, 0, TextKeyPassOn},   {KEY_F12, 0, TextKeyPassOn},
      {KEY_ESC, 27, TextKeyPassOn},         {KEY_ENTER, 13, TextKeyPassOn}, {KEY_PGUP, 0, TextKeyPassOn},
      {KEY_PGDN, 0, TextKeyPassOn},         {KEY_UP, 0, TextKeyPassOn},   {KEY_DOWN, 0, TextKeyPassOn},
      {KEY_A, 'a', TextKeyInsert},          {KEY_HOME, 0, TextKeyDrop},   {KEY_INSERT, 0x100, TextKeyDrop}};
  for (const auto &k : keys) EXPECT_EQ(RVK_TextKeyAction(std::get<0>(k), std::get<1>(k)), std::get<2>(k)) << std::get<0>(k);

  TextFieldClass f;
  f.MaxLength = 16;
  auto state = [&] { return std::make_pair(f.Text, f.Caret); };
  for (char c = 'a'; c < 'a' + 20; c++) f.ApplyKey(TextKeyInsert, 0x1E00 | c);
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklmno"), 15));  // a limit of 16 admits 15
  f.ApplyKey(TextKeyRight, 0);
  EXPECT_EQ(f.Caret, 15);
  f.ApplyKey(TextKeyLeft, 0);
  f.ApplyKey(TextKeyLeft, 0);
  f.ApplyKey(TextKeyBackspace, 0);
  f.ApplyKey(TextKeyRight, 0);
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklno"), 13));
  f.ApplyKey(TextKeyInsert, 'Z');
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklnZo"), 14));
  f.Caret = 0;
  f.ApplyKey(TextKeyBackspace, 0);
  f.ApplyKey(TextKeyLeft, 0);
  f.ApplyKey(TextKeyDrop, 0);
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklnZo"), 0));
  // A caret set outside the text by its owner is brought back first.
  f.Caret = 99;
  f.ApplyKey(TextKeyBackspace, 0);
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklnZ"), 14));
  f.Caret = -5;
  f.ApplyKey(TextKeyInsert, 'y');
  EXPECT_EQ(state(), std::make_pair(std::string("yabcdefghijklnZ"), 1));
  RVK_ResetFocus();
  RVK_AllocFocusId();
  RVK_AllocFocusId();
  f.ApplyKey(TextKeyTab, 0);
  EXPECT_EQ(RVK_GetFocus(), 1);
}

TEST_F(Text, SplitLinesAndSubstring) {
  const struct {
    const char *Text;
    FONT *Font;
    int Width;
    Pairs Want;
  } cases[] = {
      {"abcdefghij", font, 36, {{0, 4}, {5, 9}}},         // a long word is cut one character past the width
      {"abcdefghij", font, 33, {{0, 4}, {5, 9}}},
      {"abcdefghij", font, 32, {{0, 3}, {4, 7}, {8, 9}}},  // at the width exactly
      {"ab cd efgh", font, 48, {{0, 5}, {6, 9}}},          // a row that ends at a blank keeps it
      {"a bc defgh", font, 48, {{0, 4}, {5, 9}}},          // the last blank of the row
      {"ab\ncd\n", font, 400, {{0, 1}, {3, 5}}},           // the final line feed makes no row of its own
      {"ab\n\ncd", font, 400, {{0, 1}, {3, 3}, {4, 5}}},   // an empty line: both ends on its line feed
      {"\n\nab", font, 400, {{0, 0}, {1, 1}, {2, 3}}},
      {"abcdef", font, 40, {{0, 4}, {5, 5}}},              // the last character isn't measured
      {"abcdef", font, 0, {{0, 1}, {2, 3}, {4, 5}}},       // no width still moves on
      {"", font, 400, {{0, -1}}},
      {"ab", font, 1, {{0, 1}}},
      {nullptr, font, 10, {{0, -1}}},
      {"ab cd", nullptr, 0, {{0, 4}}},
  };
  for (const auto &c : cases)
    EXPECT_EQ(RVK_SplitLines(c.Text, c.Font, c.Width), c.Want) << (c.Text ? c.Text : "(null)") << " " << c.Width;

  const std::tuple<int, int, const char *> parts[] = {{1, 3, "ell"}, {3, 2, ""}, {3, 99, "lo"}, {5, 9, ""}, {-3, 1, ""}};
  for (const auto &p : parts)
    EXPECT_STREQ(RVK_Substring("hello", std::get<0>(p), std::get<1>(p)), std::get<2>(p)) << std::get<0>(p);
  EXPECT_STREQ(RVK_Substring(nullptr, 0, 1), "");
  // The buffer holds 512 characters and no more.
  std::string big(600, 'x');
  EXPECT_EQ(RVK_Substring(big.c_str(), 10, 522), nullptr);
  EXPECT_EQ(RVK_Substring(big.c_str(), 0, 511), std::string(512, 'x'));
}

TEST_F(Text, RowsFromTextsAndFiles) {
  ListBoxClass list;
  list.Create(10, 20, 100, 3);  // wraps at 100 - 8 - 1 = 91: 11 characters
  list.AddText("one two three four\n\nx\nlast line\n");
  EXPECT_EQ(Rows(list), (Texts{"one two ", "three four", " ", " ", "last line"}));
  list.Clear();
  list.AddText(nullptr);
  list.AddItem("tagged\n", "", "tag");
  list.AddItem(nullptr, nullptr, nullptr);
  EXPECT_EQ(Rows(list), (Texts{"", "tagged", ""}));
  EXPECT_EQ(std::make_tuple(list.GetItem(1).Tag, list.GetItem(2).Tag, list.GetItem(1).ColumnCount),
            std::make_tuple("tag", "", 0));

  std::ofstream("rvk_text_test.txt", std::ios::binary) << "first\r\nsecond\r\n\r\nthird\rx\r";
  list.Clear();
  ASSERT_TRUE(list.LoadFromTextFile(".\\rvk_text_test.txt"));
  EXPECT_EQ(Rows(list), (Texts{"first", "second", " ", "third\rx\r"}));
  // A file too large for memory (a sparse one), and one that isn't there.
  std::filesystem::resize_file("rvk_text_test.txt", 1LL << 40);
  std::remove("RVK Error Log.txt");
  list.Clear();
  EXPECT_FALSE(list.LoadFromTextFile("rvk_text_test.txt"));
  EXPECT_FALSE(list.LoadFromTextFile("no\\such\\file.txt"));
  EXPECT_EQ(list.GetCount(), 0);
  std::string log = Read("RVK Error Log.txt");
  EXPECT_NE(log.find(">ListBoxClass::LoadFromTextFile: Unable to allocate 1099511627777 bytes for file buffer\n"),
            std::string::npos);
  EXPECT_NE(log.find(">RVK_LoadFileToListBox: The file \"no\\such\\file.txt\" could not be opened as \"r\".\n"),
            std::string::npos);
  std::remove("rvk_text_test.txt");
}

TEST_F(Text, ScrollingKeepsTheSelectionOnShow) {
  ListBoxClass list;
  list.Create(0, 0, 100, 3);
  for (int i = 0; i < 6; i++) list.AddItem("row", nullptr, nullptr);
  // Each step from the selection and top row given, and where they end.
  const struct {
    bool Down;
    int N, Selected, TopRow, WantSelected, WantTopRow;
  } steps[] = {{true, 1, 2, 0, 3, 1}, {true, 1, 1, 0, 2, 0}, {true, 2, 3, 3, 5, 3}, {true, 3, 3, 0, 3, 0},
               {true, 1, 5, 3, 5, 3}, {false, 1, 3, 3, 2, 2}, {false, 2, 3, 1, 1, 1}, {false, 4, 2, 2, 0, 0}};
  for (const auto &s : steps) {
    list.Selected = s.Selected;
    list.TopRow = s.TopRow;
    s.Down ? list.ScrollDown(s.N) : list.ScrollUp(s.N);
    EXPECT_EQ(std::make_pair(list.Selected, list.TopRow), std::make_pair(s.WantSelected, s.WantTopRow))
        << s.Down << s.N << s.Selected << s.TopRow;
  }
}

TEST_F(Text, BarsFollowTheRows) {
  ListBoxClass list;
  list.Create(10, 20, 99, 3);
  for (int i = 0; i < 3; i++) list.AddItem("row", nullptr, nullptr);
  EXPECT_FALSE(list.HasVBar || list.HasHBar);
  list.TopRow = 1;
  list.HScroll = 5;
  list.AddItem("a row that is thirty-one chars!", nullptr, nullptr);  // 248 + 3 pixels
  list.AddItem("row", nullptr, nullptr);
  EXPECT_EQ(std::make_pair(list.TopRow, list.HScroll), std::make_pair(0, 0));
  ASSERT_TRUE(list.HasVBar && list.HasHBar);
  const SliderClass &v = list.VBar, &h = list.HBar;
  // Vertical knob: 8 x 3 / 100 x 60 percent; horizontal: 99 / (251 / 99).
  EXPECT_EQ(std::make_tuple(v.X, v.Y, v.Width, v.Height, v.Min, v.Max, v.Vertical, v.KnobSize, v.Value, v.Page),
            std::make_tuple(101, 20, 8, 27, 0, 2, true, 14, &list.TopRow, 3));
  EXPECT_EQ(std::make_tuple(h.X, h.Y, h.Width, h.Height, h.Min, h.Max, h.Vertical, h.KnobSize, h.Value, h.Page),
            std::make_tuple(10, 48, 99, 8, 0, 152, false, 49, &list.HScroll, 99));
  // The longest row at the width (12 characters and 3) and past it; a knob
  // as long as the bar becomes 32.
  list.Items[3].Text = std::string(12, 'w');
  list.UpdateSliders();
  EXPECT_FALSE(list.HasHBar);
  list.Items[3].Text = std::string(13, 'w');
  list.UpdateSliders();
  EXPECT_EQ(std::make_pair(h.Max, h.KnobSize), std::make_pair(8, 32));
  list.AllowHScroll = false;
  list.UpdateSliders();
  EXPECT_FALSE(list.HasHBar);
  list.Items.resize(3);
  list.UpdateSliders();
  EXPECT_FALSE(list.HasVBar);
  // A list one pixel wide has a bar, one without width none.
  for (int width : {1, 0}) {
    list.Width = width;
    list.AllowHScroll = true;
    list.UpdateSliders();
    EXPECT_EQ(list.HasHBar, width == 1);
  }
  list.Selected = list.HScroll = list.TopRow = 2;
  list.HasHBar = list.HasVBar = true;
  list.Clear();
  EXPECT_EQ(std::make_tuple(list.GetCount(), list.Selected, list.TopRow, list.HScroll, list.HasHBar, list.HasVBar),
            std::make_tuple(0, 0, 0, 0, false, false));
}

// Characters measured through the standard font.
static size_t Measured = 0;
static int CountingLength(const FONT *f, const char *text) {
  Measured += std::strlen(text);
  return font->vtable->text_length(f, text);
}

TEST_F(Text, AddingTextMeasuresEachCharacterAFewTimesOnly) {
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
