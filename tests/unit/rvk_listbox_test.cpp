// Word wrap, the shared substring buffer, rows made from texts and files,
// scrolling and the scroll bars of a list, measured with Allegro's 8x8 font.
#include <gtest/gtest.h>
#include <allegro.h>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>
#include "rvk/core.h"
#include "rvk/listbox.h"

using Rows = std::vector<std::pair<int, int>>;

class ListBoxTest : public testing::Test {
protected:
  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    // Every widget measures with the standard font: 8 pixels a character.
    RVK_FontStandard = font;
  }
};

static std::vector<std::string> Texts(ListBoxClass &list) {
  std::vector<std::string> texts;
  for (int i = 0; i < list.GetCount(); i++) texts.push_back(list.GetItem(i).Text);
  return texts;
}

TEST_F(ListBoxTest, SplitLines) {
  ASSERT_EQ(text_length(font, "abcde"), 40);
  // A long word is cut one character past the width.
  EXPECT_EQ(RVK_SplitLines("abcdefghij", font, 36), (Rows{{0, 4}, {5, 9}}));
  // A row that ends at a blank keeps it.
  EXPECT_EQ(RVK_SplitLines("ab cd efgh", font, 48), (Rows{{0, 5}, {6, 9}}));
  // The final line feed stays in the last row and makes no row of its own.
  EXPECT_EQ(RVK_SplitLines("ab\ncd\n", font, 400), (Rows{{0, 1}, {3, 5}}));
  // An empty line is a row whose two ends are its line feed.
  EXPECT_EQ(RVK_SplitLines("ab\n\ncd", font, 400), (Rows{{0, 1}, {3, 3}, {4, 5}}));
  EXPECT_EQ(RVK_SplitLines("", font, 400), (Rows{{0, -1}}));
  EXPECT_EQ(RVK_SplitLines("ab", font, 1), (Rows{{0, 1}}));
  // The last character isn't measured: the final row may run one over.
  EXPECT_EQ(RVK_SplitLines("abcdef", font, 40), (Rows{{0, 4}, {5, 5}}));
  // No width at all still moves on, a character or two at a time.
  EXPECT_EQ(RVK_SplitLines("abcdef", font, 0), (Rows{{0, 1}, {2, 3}, {4, 5}}));
  EXPECT_EQ(RVK_SplitLines(nullptr, font, 10), (Rows{{0, -1}}));
  EXPECT_EQ(RVK_SplitLines("ab cd", nullptr, 10), (Rows{{0, 4}}));
}

TEST_F(ListBoxTest, SubstringLimits) {
  EXPECT_STREQ(RVK_Substring("hello", 1, 3), "ell");
  EXPECT_STREQ(RVK_Substring("hello", 3, 2), "");
  EXPECT_STREQ(RVK_Substring("hello", 3, 99), "lo");
  EXPECT_STREQ(RVK_Substring("hello", 7, 9), "");
  EXPECT_STREQ(RVK_Substring("hello", -3, 1), "");
  std::string big(600, 'x');
  EXPECT_EQ(RVK_Substring(big.c_str(), 0, 512), nullptr);
  EXPECT_EQ(RVK_Substring(big.c_str(), 10, 522), nullptr);
  const char *most = RVK_Substring(big.c_str(), 0, 511);
  ASSERT_NE(most, nullptr);
  EXPECT_EQ(std::string(most), std::string(512, 'x'));
}

TEST_F(ListBoxTest, AddTextMakesRowsThatFitBesideTheBar) {
  ListBoxClass list;
  list.Create(10, 20, 100, 3);  // wraps at 100 - 8 - 1 = 91: 11 characters
  list.AddText("one two three four\n\nx\nlast line\n");
  EXPECT_EQ(Texts(list), (std::vector<std::string>{"one two ", "three four", " ", " ", "last line"}));
  list.Clear();
  list.AddText("");
  EXPECT_EQ(Texts(list), (std::vector<std::string>{""}));
  list.Clear();
  list.AddItem("tagged\n", "", "");
  EXPECT_EQ(list.GetItem(0).Text, "tagged");
  EXPECT_EQ(list.GetItem(0).Tag, "");
  EXPECT_EQ(list.GetItem(0).ColumnCount, 0);
}

TEST_F(ListBoxTest, BarsFollowTheRows) {
  ListBoxClass list;
  list.Create(10, 20, 100, 3);
  for (int i = 0; i < 3; i++) list.AddItem("row", nullptr, nullptr);
  EXPECT_FALSE(list.HasVBar);
  EXPECT_FALSE(list.HasHBar);
  list.TopRow = 1;
  list.AddItem("a row that is thirty-one chars!", nullptr, nullptr);  // 248 + 3 pixels
  list.AddItem("row", nullptr, nullptr);
  EXPECT_EQ(list.TopRow, 0);
  ASSERT_TRUE(list.HasVBar);
  EXPECT_EQ(list.VBar.X, 102);
  EXPECT_EQ(list.VBar.Y, 20);
  EXPECT_EQ(list.VBar.Width, 8);
  EXPECT_EQ(list.VBar.Height, 27);
  EXPECT_EQ(list.VBar.Max, 2);
  EXPECT_TRUE(list.VBar.Vertical);
  EXPECT_EQ(list.VBar.KnobSize, 14);  // 8 x 3 / 100 x 60 percent
  EXPECT_EQ(list.VBar.Value, &list.TopRow);
  ASSERT_TRUE(list.HasHBar);
  EXPECT_EQ(list.HBar.Y, 48);
  EXPECT_EQ(list.HBar.Max, 151);
  EXPECT_EQ(list.HBar.KnobSize, 50);  // 100 / (251 / 100)
  EXPECT_EQ(list.HBar.Value, &list.HScroll);
  // A knob as wide as the bar becomes 32.
  list.AddItem("twenty-one characters", nullptr, nullptr);
  list.Items.erase(list.Items.begin() + 3);
  list.UpdateSliders();
  EXPECT_EQ(list.HBar.Max, 71);
  EXPECT_EQ(list.HBar.KnobSize, 32);  // 100 / (171 / 100) is the whole bar
  list.AllowHScroll = false;
  list.UpdateSliders();
  EXPECT_FALSE(list.HasHBar);
  list.Clear();
  EXPECT_FALSE(list.HasVBar);
  EXPECT_EQ(list.GetCount(), 0);
}

TEST_F(ListBoxTest, LoadFromTextFile) {
  const char *path = "rvk_listbox_test_input.txt";
  {
    std::ofstream out(path, std::ios::binary);
    out << "first\r\nsecond\r\n\r\nthird\n";
  }
  ListBoxClass list;
  list.Create(0, 0, 400, 5);
  ASSERT_TRUE(list.LoadFromTextFile(path));
  EXPECT_EQ(Texts(list), (std::vector<std::string>{"first", "second", " ", "third"}));
  std::remove(path);

  std::remove("RVK Error Log.txt");
  ListBoxClass missing;
  missing.Create(0, 0, 400, 5);
  EXPECT_FALSE(missing.LoadFromTextFile("no\\such\\file.txt"));
  EXPECT_EQ(missing.GetCount(), 0);
  std::ifstream log("RVK Error Log.txt");
  std::stringstream text;
  text << log.rdbuf();
  EXPECT_NE(text.str().find(">RVK_LoadFileToListBox: The file \"no\\such\\file.txt\" could not be opened as \"r\".\n\n"),
            std::string::npos);
}
