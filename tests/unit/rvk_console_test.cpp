// The console's ageing by the clock's second and its recolouring,
// without a window; and the error log's entries, read back from the file.
#include <gtest/gtest.h>
#include <cstdio>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>
#include "rvk/console.h"
#include "rvk/core.h"

// The lines one pass draws, as text and row.
static std::vector<std::pair<std::string, int>> Pass(int second) {
  std::vector<std::pair<std::string, int>> drawn;
  RVK_ConsolePass(second, [&](const ConsoleLineClass &line, int row) { drawn.emplace_back(line.Text, row); });
  return drawn;
}

TEST(Console, LinesAgeByChangesOfTheSecondAndLeaveAfterThirteen) {
  ConsoleLines.clear();
  RVK_ConsoleAppend("first", 58);
  EXPECT_EQ(Pass(58).size(), 1u);
  RVK_ConsoleAppend("second", 59);
  // Many frames within one second age a line once.
  for (int i = 0; i < 30; i++) Pass(59);
  EXPECT_EQ(std::make_pair(ConsoleLines[0].Age, ConsoleLines[1].Age), std::make_pair(1, 0));
  // Eleven more changes (the second wraps at 60): the first line is 12 old;
  // at 13 it is drawn once more in its place, then gone, and the second
  // moves up in the same pass.
  for (int second = 0; second < 11; second++) Pass(second);
  ASSERT_EQ(ConsoleLines.size(), 2u);
  EXPECT_EQ(ConsoleLines[0].Age, 12);
  EXPECT_EQ(Pass(11), (std::vector<std::pair<std::string, int>>{{"first", 0}, {"second", 0}}));
  ASSERT_EQ(ConsoleLines.size(), 1u);
  EXPECT_EQ(ConsoleLines[0].Age, 12);
  Pass(12);
  EXPECT_TRUE(ConsoleLines.empty());
}

TEST(Console, RecolouringAndMessagesBeforeStart) {
  ConsoleLines.clear();
  RVK_SetLastMessageColour(7);  // an empty console: nothing to do
  EXPECT_TRUE(ConsoleLines.empty());
  ConsoleColour = 1;
  RVK_ConsoleAppend("a", 0);
  RVK_ConsoleAppend("b", 0);
  RVK_SetLastMessageColour(42);
  EXPECT_EQ(std::make_pair(ConsoleLines[0].Colour, ConsoleLines[1].Colour), std::make_pair(1, 42));
  // Without a started library a message leaves no line.
  ASSERT_FALSE(RVK_IsStarted());
  RVK_Message("%s", "unseen");
  EXPECT_EQ(ConsoleLines.size(), 2u);
}

TEST(ErrorLog, EntriesAreDateLineMessageAndEmptyLine) {
  std::remove("RVK Error Log.txt");
  EXPECT_FALSE(RVK_HasLoggedError());
  RVK_LogError("texture %d of %s at 100%%", 3, "hat");
  RVK_LogError("%s", std::string(400, 'x').c_str());
  EXPECT_TRUE(RVK_HasLoggedError());
  std::ifstream in("RVK Error Log.txt", std::ios::binary);
  std::stringstream all;
  all << in.rdbuf();
  const std::string date = "[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}\n";
  // A long message is cut to 255 characters.
  std::regex form(date + ">texture 3 of hat at 100%\n\n" + date + ">" + std::string(255, 'x') + "\n\n");
  EXPECT_TRUE(std::regex_match(all.str(), form)) << all.str();
}
