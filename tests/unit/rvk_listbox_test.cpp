// Word wrap, the shared substring buffer, rows made from texts and files,
// scrolling and the scroll bars of a list, measured with Allegro's 8x8 font.
#include <gtest/gtest.h>
#include <allegro.h>
#include <allegro/internal/aintern.h>
#include <cstring>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>
#include "rvk/core.h"
#include "rvk/listbox.h"

using Rows = std::vector<std::pair<int, int>>;
using Texts = std::vector<std::string>;

class ListBoxTest : public testing::Test {
protected:
  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    // Every widget measures with the standard font: 8 pixels a character.
    RVK_FontStandard = font;
  }
};

static Texts TextsOf(ListBoxClass &list) {
  Texts texts;
  for (int i = 0; i < list.GetCount(); i++) texts.push_back(list.GetItem(i).Text);
  return texts;
}

TEST_F(ListBoxTest, SplitLinesAndSubstringLimits) {
  const struct {
    const char *Text;
    FONT *Font;
    int Width;
    Rows Want;
  } cases[] = {
      {"abcdefghij", font, 36, {{0, 4}, {5, 9}}},           // a long word is cut one character past the width
      {"ab cd efgh", font, 48, {{0, 5}, {6, 9}}},           // a row that ends at a blank keeps it
      {"ab\ncd\n", font, 400, {{0, 1}, {3, 5}}},            // the final line feed makes no row of its own
      {"ab\n\ncd", font, 400, {{0, 1}, {3, 3}, {4, 5}}},    // an empty line: both ends on its line feed
      {"", font, 400, {{0, -1}}},
      {"ab", font, 1, {{0, 1}}},
      {"abcdef", font, 40, {{0, 4}, {5, 5}}},               // the last character isn't measured
      {"abcdef", font, 0, {{0, 1}, {2, 3}, {4, 5}}},        // no width still moves on
      {nullptr, font, 10, {{0, -1}}},
      {"ab cd", nullptr, 10, {{0, 4}}},
  };
  for (const auto &c : cases) EXPECT_EQ(RVK_SplitLines(c.Text, c.Font, c.Width), c.Want) << (c.Text ? c.Text : "(null)") << " " << c.Width;

  const std::tuple<int, int, const char *> parts[] = {{1, 3, "ell"}, {3, 2, ""}, {3, 99, "lo"}, {7, 9, ""}, {-3, 1, ""}};
  for (const auto &p : parts)
    EXPECT_STREQ(RVK_Substring("hello", std::get<0>(p), std::get<1>(p)), std::get<2>(p)) << std::get<0>(p);
  // The buffer holds 512 characters and no more.
  std::string big(600, 'x');
  EXPECT_EQ(RVK_Substring(big.c_str(), 0, 512), nullptr);
  EXPECT_EQ(RVK_Substring(big.c_str(), 10, 522), nullptr);
  ASSERT_NE(RVK_Substring(big.c_str(), 0, 511), nullptr);
  EXPECT_EQ(std::string(RVK_Substring(big.c_str(), 0, 511)), std::string(512, 'x'));
}

TEST_F(ListBoxTest, RowsFromTextsAndFiles) {
  ListBoxClass list;
  list.Create(10, 20, 100, 3);  // wraps at 100 - 8 - 1 = 91: 11 characters
  list.AddText("one two three four\n\nx\nlast line\n");
  EXPECT_EQ(TextsOf(list), (Texts{"one two ", "three four", " ", " ", "last line"}));
  list.Clear();
  list.AddText("");
  EXPECT_EQ(TextsOf(list), (Texts{""}));
  list.Clear();
  list.AddItem("tagged\n", "", "");
  EXPECT_EQ(std::make_tuple(list.GetItem(0).Text, list.GetItem(0).Tag, list.GetItem(0).ColumnCount),
            std::make_tuple("tagged", "", 0));

  const char *path = "rvk_listbox_test_input.txt";
  std::ofstream(path, std::ios::binary) << "first\r\nsecond\r\n\r\nthird\n";
  list.Clear();
  ASSERT_TRUE(list.LoadFromTextFile(path));
  EXPECT_EQ(TextsOf(list), (Texts{"first", "second", " ", "third"}));
  std::remove(path);

  std::remove("RVK Error Log.txt");
  list.Clear();
  EXPECT_FALSE(list.LoadFromTextFile("no\\such\\file.txt"));
  EXPECT_EQ(list.GetCount(), 0);
  std::stringstream log;
  log << std::ifstream("RVK Error Log.txt").rdbuf();
  EXPECT_NE(log.str().find(">RVK_LoadFileToListBox: The file \"no\\such\\file.txt\" could not be opened as \"r\".\n\n"),
            std::string::npos);
}

TEST_F(ListBoxTest, BarsFollowTheRows) {
  ListBoxClass list;
  list.Create(10, 20, 100, 3);
  for (int i = 0; i < 3; i++) list.AddItem("row", nullptr, nullptr);
  EXPECT_FALSE(list.HasVBar || list.HasHBar);
  list.TopRow = 1;
  list.AddItem("a row that is thirty-one chars!", nullptr, nullptr);  // 248 + 3 pixels
  list.AddItem("row", nullptr, nullptr);
  EXPECT_EQ(list.TopRow, 0);
  ASSERT_TRUE(list.HasVBar && list.HasHBar);
  const SliderClass &v = list.VBar, &h = list.HBar;
  // Vertical knob: 8 x 3 / 100 x 60 percent; horizontal: 100 / (251 / 100).
  EXPECT_EQ(std::make_tuple(v.X, v.Y, v.Width, v.Height, v.Max, v.Vertical, v.KnobSize, v.Value),
            std::make_tuple(102, 20, 8, 27, 2, true, 14, &list.TopRow));
  EXPECT_EQ(std::make_tuple(h.Y, h.Max, h.KnobSize, h.Value), std::make_tuple(48, 151, 50, &list.HScroll));
  // A knob as wide as the bar becomes 32.
  list.AddItem("twenty-one characters", nullptr, nullptr);
  list.Items.erase(list.Items.begin() + 3);
  list.UpdateSliders();
  EXPECT_EQ(std::make_pair(h.Max, h.KnobSize), std::make_pair(71, 32));
  list.AllowHScroll = false;
  list.UpdateSliders();
  EXPECT_FALSE(list.HasHBar);
  list.Clear();
  EXPECT_FALSE(list.HasVBar);
  EXPECT_EQ(list.GetCount(), 0);
}

// Characters measured through the standard font.
static size_t Measured = 0;
static int CountingLength(const FONT *f, const char *text) {
  Measured += std::strlen(text);
  return font->vtable->text_length(f, text);
}

TEST_F(ListBoxTest, AddingTextMeasuresEachCharacterAFewTimesOnly) {
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
