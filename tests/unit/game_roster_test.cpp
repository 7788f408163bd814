// Roster operations of GameClass: lookups, growing and cutting, and deleting
// around the local record.
#include <gtest/gtest.h>
#include <allegro.h>
#include <cerrno>
#include <string>
#include <vector>
#include "app/game.h"
#include "netpeer/netpeer.h"

namespace {

class RosterTest : public testing::Test {
protected:
  ConsoleCapture Console;
  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    set_color_depth(32);
  }
  void SetUp() override {
    Game.Players.clear();
    Game.LocalPlayer = nullptr;
    Game.LocalPlayerNumber = 0;
  }
  // A roster of `count` records with names "P0", "P1", ... and IDs 10, 11, ...
  void MakeRoster(int count, int local) {
    Game.SetPlayerCount(count, false);
    for (int i = 0; i < count; i++) {
      Game.Players[i].PlayerId = 10 + i;
      Game.Players[i].PlayerName = "P" + std::to_string(i);
    }
    Game.SetLocalPlayer(local);
  }
  static std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const PlayerClass &p : Game.Players) names.push_back(p.PlayerName);
    return names;
  }
};

TEST_F(RosterTest, LookupAndResizeKeepTheLocalRecord) {
  EXPECT_EQ(Game.GetPlayerCount(), 0);
  MakeRoster(4, 0);
  Game.Players[3].PlayerId = 11;  // a duplicate: the lowest index wins
  EXPECT_EQ(Game.GetPlayerNumber(11), 1);
  EXPECT_EQ(Game.GetPlayerNumber(12), 2);
  EXPECT_TRUE(Console.Lines().empty());
  EXPECT_EQ(Game.GetPlayerNumber(99), -1);
  EXPECT_EQ(Console.Lines(), std::vector<std::string>{"Warning GetPlayerNumber failed to resolve player ID 99"});

  MakeRoster(2, 1);
  Game.Players[1].EyesNumber = 5;
  Game.SetPlayerCount(8, true);
  ASSERT_EQ(Names(), (std::vector<std::string>{"P0", "P1", "", "", "", "", "", ""}));
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_EQ(Game.LocalPlayer->EyesNumber, 5);
  EXPECT_EQ(Game.Players[7].EyesOri[0], 0.0f);
  EXPECT_EQ(Game.Players[7].EyebrowsY, 0.0f);
  Game.SetPlayerCount(2, true);
  Game.SetLocalPlayerName("Host");
  EXPECT_EQ(Names(), (std::vector<std::string>{"Host", "P1"}));
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
}

TEST_F(RosterTest, DeleteKeepsTheLocalRecord) {
  MakeRoster(4, 2);
  Game.LocalPlayer->HatNumber = 3;
  // A record before the local one: the local record moves up by one, with
  // its ID and parts.
  Game.DeletePlayer(0);
  EXPECT_EQ(Names(), (std::vector<std::string>{"P1", "P2", "P3"}));
  EXPECT_EQ(Game.LocalPlayerNumber, 1);
  ASSERT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_EQ(Game.LocalPlayer->PlayerId, 12);
  EXPECT_EQ(Game.LocalPlayer->HatNumber, 3);
  // A record after it: the local record stays where it was.
  Game.DeletePlayer(2);
  EXPECT_EQ(Names(), (std::vector<std::string>{"P1", "P2"}));
  EXPECT_EQ(Game.LocalPlayerNumber, 1);
  // The local record itself is never deleted; numbers that name no record
  // remove nothing.
  Game.DeletePlayer(1);
  Game.DeletePlayer(-1);
  Game.DeletePlayer(2);
  EXPECT_EQ(Names(), (std::vector<std::string>{"P1", "P2"}));
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_EQ(Console.Lines(), std::vector<std::string>{"DeletePlayer: Not deleting local player 1"});
}

}  // namespace
