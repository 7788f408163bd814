// Roster operations of GameClass: lookups, growing and cutting, deleting
// around the local record, and the records' reset.
#include <gtest/gtest.h>
#include <allegro.h>
#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>
#include "app/config.h"
#include "app/game.h"
#include "app/parts.h"
#include "rvk/console.h"

namespace {

// The console keeps lines only while the library runs; without a window the
// test reads them from the console's log file instead.
class ConsoleLog {
public:
  void Start() {
    if (ConsoleLogFile) std::fclose(ConsoleLogFile);
    ConsoleLogFile = std::tmpfile();
    ConsoleLogOn = true;
  }
  // The texts logged since Start, without their time stamps.
  std::vector<std::string> Lines() {
    std::vector<std::string> lines;
    std::fflush(ConsoleLogFile);
    std::rewind(ConsoleLogFile);
    char buffer[2048];
    while (std::fgets(buffer, sizeof buffer, ConsoleLogFile)) {
      std::string line(buffer);
      if (!line.empty() && line.back() == '\n') line.pop_back();
      size_t at = line.find(": ");
      lines.push_back(at == std::string::npos ? line : line.substr(at + 2));
    }
    std::fseek(ConsoleLogFile, 0, SEEK_END);
    return lines;
  }
};
ConsoleLog Log;

std::string LastConsoleLine() {
  std::vector<std::string> lines = Log.Lines();
  return lines.empty() ? std::string() : lines.back();
}

class RosterTest : public testing::Test {
protected:
  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    set_color_depth(32);
  }
  void SetUp() override {
    Game.Players.clear();
    Game.LocalPlayer = nullptr;
    Game.LocalPlayerNumber = 0;
    Game.Mode = GAME_MODE_NONE;
    Log.Start();
  }
  // A roster of `count` records with IDs 10, 11, ... and names "P0", "P1", ...
  void MakeRoster(int count, int local) {
    Game.SetPlayerCount(count, false);
    for (int i = 0; i < count; i++) {
      Game.Players[i].PlayerId = 10 + i;
      Game.Players[i].PlayerName = "P" + std::to_string(i);
    }
    Game.SetLocalPlayer(local);
  }
};

TEST_F(RosterTest, CountAndLookup) {
  EXPECT_EQ(Game.GetPlayerCount(), 0);
  MakeRoster(4, 0);
  EXPECT_EQ(Game.GetPlayerCount(), 4);
  Game.Players[3].PlayerId = 11;  // a duplicate: the lowest index wins
  EXPECT_EQ(Game.GetPlayerNumber(11), 1);
  EXPECT_EQ(Game.GetPlayerNumber(12), 2);
  EXPECT_TRUE(Log.Lines().empty());
  EXPECT_EQ(Game.GetPlayerNumber(99), -1);
  EXPECT_EQ(LastConsoleLine(), "Warning GetPlayerNumber failed to resolve player ID 99");
}

TEST_F(RosterTest, SetPlayerCountGrowsWithFreshRecordsAndRepoints) {
  MakeRoster(2, 1);
  Game.Players[1].EyesNumber = 5;
  Game.SetPlayerCount(8, true);
  ASSERT_EQ(Game.GetPlayerCount(), 8);
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_EQ(Game.LocalPlayer->EyesNumber, 5);
  EXPECT_EQ(Game.Players[7].PlayerName, "");
  EXPECT_EQ(Game.Players[7].EyesOri[0], 0.0f);
  EXPECT_EQ(Game.Players[7].EyebrowsY, 0.0f);
  Game.SetPlayerCount(2, true);
  EXPECT_EQ(Game.GetPlayerCount(), 2);
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  Game.SetLocalPlayerName("Host");
  EXPECT_EQ(Game.Players[0].PlayerName, "Host");
  EXPECT_EQ(Game.Players[1].PlayerName, "P1");
}

TEST_F(RosterTest, DeleteKeepsTheLocalRecord) {
  MakeRoster(4, 2);
  Game.LocalPlayer->HatNumber = 3;

  // A record before the local one: the local record moves up by one.
  Game.DeletePlayer(0);
  ASSERT_EQ(Game.GetPlayerCount(), 3);
  EXPECT_EQ(Game.LocalPlayerNumber, 1);
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_EQ(Game.LocalPlayer->PlayerId, 12);
  EXPECT_EQ(Game.LocalPlayer->HatNumber, 3);
  EXPECT_EQ(Game.Players[0].PlayerName, "P1");
  EXPECT_EQ(Game.Players[2].PlayerName, "P3");

  // A record after it: the local record stays where it was.
  Game.DeletePlayer(2);
  ASSERT_EQ(Game.GetPlayerCount(), 2);
  EXPECT_EQ(Game.LocalPlayerNumber, 1);
  EXPECT_EQ(Game.LocalPlayer->PlayerId, 12);

  // The local record itself is never deleted.
  Game.DeletePlayer(1);
  EXPECT_EQ(Game.GetPlayerCount(), 2);
  EXPECT_EQ(LastConsoleLine(), "DeletePlayer: Not deleting local player 1");

  // Numbers that name no record remove nothing.
  Game.DeletePlayer(-1);
  Game.DeletePlayer(2);
  EXPECT_EQ(Game.GetPlayerCount(), 2);
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
}

}  // namespace
