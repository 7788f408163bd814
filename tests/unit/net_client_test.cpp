// The client's handling of what the server sends, driven packet by packet
// through the parser and the dispatch, without a connection.
#include <gtest/gtest.h>
#include "app/game.h"
#include "net/client.h"
#include "net/packets.h"
#include "net/server.h"
#include "netpeer/netpeer.h"

// A client at number 1 (ID 4) of a roster with the server's player (ID 0)
// and one more player (ID 6).
class ClientTest : public testing::Test {
protected:
  ConsoleCapture Console;
  void SetUp() override {
    NP_InitPacketTable();
    Game.Characters.resize(3);
    Game.Eyes.resize(4);
    Game.Ears.resize(2);
    Game.Hats.resize(2);
    Game.Mode = GAME_MODE_CLIENT;
    Game.Players.assign(3, PlayerClass());
    for (PlayerClass &p : Game.Players) ResetPlayer(p);
    Game.SetLocalPlayer(1);
    Game.Players[0].PlayerId = 0;
    Game.Players[1].PlayerId = 4;
    Game.Players[2].PlayerId = 6;
    Game.Players[2].PlayerName = "Bob";
    Console.Clear();
  }
  void TearDown() override {
    Game.Mode = GAME_MODE_NONE;
    Game.Players.clear();
    Game.LocalPlayer = nullptr;
  }
  bool Apply(const Bytes &b) {
    PacketFieldList fields;
    int32_t type = NP_ParsePacket(fields, b.data(), b.size());
    return NET_ClientDispatch(type, fields);
  }
};

TEST_F(ClientTest, AppliesTheServersWord) {
  EXPECT_TRUE(Apply(Shorts(23, {6, 2})));
  EXPECT_TRUE(Apply(Shorts(24, {6, -1})));
  EXPECT_TRUE(Apply(Shorts(30, {6, 5})));  // no such hat here: refused
  EXPECT_TRUE(Apply(Shorts(22, {6, 9})));  // no such body: number 0
  EXPECT_EQ(Game.Players[2].EyesNumber, 2);
  EXPECT_EQ(Game.Players[2].EarsNumber, -1);
  EXPECT_EQ(Game.Players[2].HatNumber, 0);
  EXPECT_EQ(Game.Players[2].CharacterNumber, 0);
  EXPECT_TRUE(Apply(FloatPkt(31, 6, 3.0f)));
  EXPECT_TRUE(Apply(FloatPkt(32, 6, -16.0f)));
  EXPECT_TRUE(Apply(FloatPkt(33, 6, 1.5f)));
  EXPECT_EQ(Game.Players[2].EyesOriTarget[0], 3.0f);
  EXPECT_EQ(Game.Players[2].EyesOriTarget[1], -16.0f);
  EXPECT_EQ(Game.Players[2].EyebrowsY, 1.5f);
  Bytes name{0x15, 0x06, 0x00};
  PutText(name, "B\rb 50%");
  name.push_back(0);
  EXPECT_TRUE(Apply(name));
  EXPECT_EQ(Game.Players[2].PlayerName, "B,b 50%");
  EXPECT_TRUE(Apply(Bytes{0x15, 0x06, 0x00, 0x00, 0x00, 0x00}));
  EXPECT_EQ(Game.Players[2].PlayerName, "");
  // The local player is untouched throughout.
  EXPECT_EQ(Game.Players[1].EyesNumber, 0);
  EXPECT_EQ(Game.Players[1].EarsNumber, 0);

  // An unknown ID: the warning, and nothing else.
  Console.Clear();
  EXPECT_TRUE(Apply(Shorts(23, {77, 1})));
  EXPECT_EQ(Console.Lines(), std::vector<std::string>{"Warning GetPlayerNumber failed to resolve player ID 77"});
  // Pong logs one line; Ping, Reports, rowless types and dropped packets nothing.
  Console.Clear();
  EXPECT_TRUE(Apply(End(Pkt(51))));
  EXPECT_TRUE(Apply(End(Pkt(50))));
  EXPECT_TRUE(Apply(Shorts(3, {1})));
  EXPECT_TRUE(Apply(Shorts(40, {0, 1})));
  EXPECT_TRUE(Apply(End(Pkt(11))));
  EXPECT_TRUE(Apply(Bytes{0x17, 0x06}));
  EXPECT_EQ(Console.Lines(), std::vector<std::string>{"Recieved ping reply from server"});
  EXPECT_EQ(Game.GetPlayerCount(), 3);
}

TEST_F(ClientTest, JoinedAndPlayerIdKeepInsideTheRoster) {
  EXPECT_TRUE(Apply(Shorts(18, {4, 8})));
  ASSERT_EQ(Game.GetPlayerCount(), 4);
  EXPECT_EQ(Game.Players[3].PlayerId, 8);
  EXPECT_EQ(Game.Players[3].PlayerName, "");
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_TRUE(Apply(Shorts(19, {3, 11})));
  EXPECT_EQ(Game.Players[3].PlayerId, 11);
  // Out of range: ignored.
  for (int n : {-1, 4, 300}) EXPECT_TRUE(Apply(Shorts(19, {n, 12})));
  for (int c : {0, -3, 9, 1}) EXPECT_TRUE(Apply(Shorts(18, {c, 13})));
  EXPECT_EQ(Game.GetPlayerCount(), 4);
  for (const PlayerClass &p : Game.Players) EXPECT_NE(p.PlayerId, 12);
  for (const PlayerClass &p : Game.Players) EXPECT_NE(p.PlayerId, 13);
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
}

TEST_F(ClientTest, QuitAndConsoleLines) {
  Game.Players[0].PlayerName = "Host";
  // A console line of the server's own: the warning for ID -1, then the line.
  Bytes line{0x34, 0xFF, 0xFF};
  PutInt(line, -1);
  PutText(line, "Bob has joined the game");
  line.push_back(0);
  EXPECT_TRUE(Apply(line));
  Bytes named{0x34, 0x06, 0x00};
  PutInt(named, 0x123456);
  PutText(named, "hi %d");
  named.push_back(0);
  EXPECT_TRUE(Apply(named));
  EXPECT_EQ(Console.Lines(), (std::vector<std::string>{"Warning GetPlayerNumber failed to resolve player ID -1",
                                                       "Bob has joined the game", "Bob: hi %d"}));
  EXPECT_EQ(ConsoleLines.size(), 0u);  // the library isn't started: no screen lines

  // The local player's own ID: the line, then the refusal; the record stays.
  Console.Clear();
  Game.Players[1].PlayerName = "Me";
  EXPECT_TRUE(Apply(Shorts(20, {4})));
  EXPECT_EQ(Console.Lines(), (std::vector<std::string>{"Me has left the game", "DeletePlayer: Not deleting local player 1"}));
  EXPECT_EQ(Game.GetPlayerCount(), 3);

  // A lower-numbered player leaves: the local player moves down with its ID.
  Game.Players.insert(Game.Players.begin() + 1, PlayerClass());
  Game.Players[1].PlayerId = 2;
  Game.SetLocalPlayer(2);
  EXPECT_TRUE(Apply(Shorts(20, {2})));
  ASSERT_EQ(Game.GetPlayerCount(), 3);
  EXPECT_EQ(Game.LocalPlayerNumber, 1);
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_EQ(Game.LocalPlayer->PlayerId, 4);

  EXPECT_TRUE(Apply(Shorts(20, {99})));  // nobody: dropped
  EXPECT_EQ(Game.GetPlayerCount(), 3);
  PacketFieldList fields;
  Bytes quit = Shorts(20, {0});
  int32_t type = NP_ParsePacket(fields, quit.data(), quit.size());
  EXPECT_FALSE(NET_ClientDispatch(type, fields));  // the server's own player: the end
  EXPECT_TRUE(fields.empty());
  EXPECT_EQ(Game.GetPlayerCount(), 3);
}

TEST_F(ClientTest, MatchingVersionIsLogged) {
  Bytes version{0x35};
  PutText(version, "Tumblekin v1.0");
  version.push_back(0);
  EXPECT_TRUE(Apply(version));
  EXPECT_EQ(Console.Lines(), std::vector<std::string>{"Client and server versions match (Tumblekin v1.0)"});
}
