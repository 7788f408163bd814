// The client's handling of the server's packets, parsed and dispatched.
#include <gtest/gtest.h>
#include <tuple>
#include "app/parts.h"
#include "net/client.h"
#include "net/send.h"
#include "netpeer/netpeer.h"

// The client is number 1 (ID 2) between the server's player (ID 0) and Bob
// (ID 8). The console holds one line, for packets to colour.
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
    for (int i = 0; i < 3; i++) ResetPlayer(Game.Players[i]), Game.Players[i].PlayerId = 2 * i * i;
    Game.SetLocalPlayer(1);
    Game.Players[2].PlayerName = "Bob";
    ConsoleLines.assign(1, ConsoleLineClass());
    Console.Clear();
  }
  void TearDown() override { Game.Mode = GAME_MODE_NONE; }
  bool Apply(const Bytes &b) {
    PacketFieldList fields;
    return NET_ClientDispatch(NP_ParsePacket(fields, b.data(), b.size()), fields);
  }
  static std::vector<int> Ids() {
    std::vector<int> ids;
    for (const PlayerClass &p : Game.Players) ids.push_back(p.PlayerId);
    return ids;
  }
};

auto Record(const PlayerClass &p) {
  return std::make_tuple(p.CharacterNumber, p.EyesNumber, p.EarsNumber, p.HatNumber, p.EyesOriTarget[0],
                         p.EyesOriTarget[1], p.EyebrowsY, p.PlayerName);
}

TEST_F(ClientTest, AppliesTheServersWordToThePlayerOfTheId) {
  EXPECT_EQ(PacketSkipPlayerId, -1);
  for (const Bytes &b : {Pkt(23, {8, 2}), Pkt(24, {8, -1}),
                         Pkt(30, {8, 1}), Pkt(30, {8, 5}),  // no such hat: refused
                         Pkt(22, {8, 2}), Pkt(22, {8, 9}),  // body 0
                         Bytes{31, 8, 0, 0, 0, 0x40, 0x40}, Bytes{32, 8, 0, 0, 0, 0x80, 0xC1},
                         Bytes{33, 8, 0, 0, 0, 0xC0, 0x3F}, Pkt(21, {8}, "B\rb 50%")})
    EXPECT_TRUE(Apply(b)) << Hex(b);
  EXPECT_EQ(Record(Game.Players[2]), std::make_tuple(0, 2, -1, 1, 3.0f, -16.0f, 1.5f, std::string("B,b 50%")));
  EXPECT_TRUE(Console.Said().empty());  // no report goes back
  EXPECT_TRUE(Apply(Pkt(21, {8}, "")));
  EXPECT_EQ(Game.Players[2].PlayerName, "");
  Console.Clear();
  for (const Bytes &b : {Pkt(23, {77, 1}), Pkt(51), Pkt(50), Pkt(3, {1}),
                         Pkt(40, {0, 1}), Pkt(11), Bytes{23, 6},
                         Pkt(53, {}, "Tumblekin v1.0")})
    EXPECT_TRUE(Apply(b)) << Hex(b);
  EXPECT_EQ(Console.Lines(), (Texts{"Warning GetPlayerNumber failed to resolve player ID 77",
                                    "Recieved ping reply from server",
                                    "Client and server versions match (Tumblekin v1.0)"}));

  // Indices and counts from the server stay inside the roster.
  for (const Bytes &b : {Pkt(18, {4, 9}), Pkt(19, {3, 11}),
                         Pkt(19, {0, 1}), Pkt(19, {-1, 12}),
                         Pkt(19, {4, 12}), Pkt(18, {0, 13}),
                         Pkt(18, {9, 13}), Pkt(18, {1, 13})})
    EXPECT_TRUE(Apply(b)) << Hex(b);
  EXPECT_EQ(Ids(), (std::vector<int>{1, 2, 8, 11}));
  EXPECT_TRUE(Apply(Pkt(18, {8, 15})));
  EXPECT_EQ(Ids().back(), 15);
  EXPECT_EQ(Game.Players.back().Character, &Game.Characters[0]);
  EXPECT_TRUE(Apply(Pkt(18, {2, 14})));
  EXPECT_EQ(Ids(), (std::vector<int>{1, 14}));
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
}

TEST_F(ClientTest, QuitAndConsoleLines) {
  EXPECT_TRUE(Apply(Pkt(52, {-1, 0x3456, 0x12}, "Bob has joined the game")));
  EXPECT_EQ(ConsoleLines.back().Colour, 0x123456);
  EXPECT_TRUE(Apply(Pkt(52, {8, -1, -1}, "hi %d")));
  EXPECT_EQ(ConsoleLines.back().Colour, 0x123456);
  Game.Players[1].PlayerName = "Me";
  EXPECT_TRUE(Apply(Pkt(20, {2})));
  EXPECT_EQ(Console.Said(), (Texts{"Warning GetPlayerNumber failed to resolve player ID -1", "Bob has joined the game",
                                   "Bob: hi %d", "Me has left the game", "DeletePlayer: Not deleting local player 1"}));
  EXPECT_EQ(ConsoleLines.back().Colour, makecol(255, 255, 255));
  for (int id : {8, 99}) EXPECT_TRUE(Apply(Pkt(20, {id})));
  EXPECT_EQ(Ids(), (std::vector<int>{0, 2}));
  EXPECT_FALSE(Apply(Pkt(20, {0})));
  EXPECT_EQ(Ids(), (std::vector<int>{0, 2}));
}
