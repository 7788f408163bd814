// The client's handling of what the server sends, driven packet by packet
// through the parser and the dispatch, without a connection.
#include <gtest/gtest.h>
#include <tuple>
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

// The parts, face targets and name of a record.
auto Record(const PlayerClass &p) {
  return std::make_tuple(p.CharacterNumber, p.EyesNumber, p.EarsNumber, p.HatNumber, p.EyesOriTarget[0],
                         p.EyesOriTarget[1], p.EyebrowsY, p.PlayerName);
}
std::vector<int> Ids() {
  std::vector<int> ids;
  for (const PlayerClass &p : Game.Players) ids.push_back(p.PlayerId);
  return ids;
}

TEST_F(ClientTest, AppliesTheServersWord) {
  const Bytes packets[] = {
      Shorts(23, {6, 2}), Shorts(24, {6, -1}), Shorts(30, {6, 1}),
      Shorts(30, {6, 5}),  // no such hat here: refused
      Shorts(22, {6, 2}),
      Shorts(22, {6, 9}),  // no such body: number 0
      FloatPkt(31, 6, 3.0f), FloatPkt(32, 6, -16.0f), FloatPkt(33, 6, 1.5f), TextPkt(21, {6}, "B\rb 50%")};
  for (const Bytes &b : packets) EXPECT_TRUE(Apply(b)) << Hex(b);
  EXPECT_EQ(Record(Game.Players[2]), std::make_tuple(0, 2, -1, 1, 3.0f, -16.0f, 1.5f, std::string("B,b 50%")));
  EXPECT_TRUE(Apply(TextPkt(21, {6}, "")));
  EXPECT_EQ(Game.Players[2].PlayerName, "");
  // The local player is untouched throughout.
  EXPECT_EQ(Record(Game.Players[1]), std::make_tuple(0, 0, 0, 0, 0.0f, 0.0f, 0.0f, std::string()));

  // An unknown ID: the warning, and nothing else.
  Console.Clear();
  EXPECT_TRUE(Apply(Shorts(23, {77, 1})));
  EXPECT_EQ(Console.Lines(), std::vector<std::string>{"Warning GetPlayerNumber failed to resolve player ID 77"});
  // Pong and a matching version log one line each; Ping, Reports, rowless
  // types and dropped packets nothing.
  Console.Clear();
  for (const Bytes &b : {End(Pkt(51)), End(Pkt(50)), Shorts(3, {1}), Shorts(40, {0, 1}), End(Pkt(11)),
                         Bytes{0x17, 0x06}, TextPkt(53, {}, "Tumblekin v1.0")})
    EXPECT_TRUE(Apply(b)) << Hex(b);
  EXPECT_EQ(Console.Lines(), (std::vector<std::string>{"Recieved ping reply from server",
                                                       "Client and server versions match (Tumblekin v1.0)"}));
  EXPECT_EQ(Ids(), (std::vector<int>{0, 4, 6}));
}

TEST_F(ClientTest, JoinedAndPlayerIdKeepInsideTheRoster) {
  EXPECT_TRUE(Apply(Shorts(18, {4, 8})));
  EXPECT_EQ(Ids(), (std::vector<int>{0, 4, 6, 8}));
  EXPECT_TRUE(Apply(Shorts(19, {3, 11})));
  // Out of range: ignored.
  for (int n : {-1, 4, 300}) EXPECT_TRUE(Apply(Shorts(19, {n, 12})));
  for (int c : {0, -3, 9, 1}) EXPECT_TRUE(Apply(Shorts(18, {c, 13})));
  EXPECT_EQ(Ids(), (std::vector<int>{0, 4, 6, 11}));
  EXPECT_EQ(Game.Players[3].PlayerName, "");
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
}

TEST_F(ClientTest, QuitAndConsoleLines) {
  Game.Players[0].PlayerName = "Host";
  // A console line of the server's own: the warning for ID -1, then the line.
  EXPECT_TRUE(Apply(ConsolePkt(-1, -1, "Bob has joined the game")));
  EXPECT_TRUE(Apply(ConsolePkt(6, 0x123456, "hi %d")));
  EXPECT_EQ(Console.Lines(), (std::vector<std::string>{"Warning GetPlayerNumber failed to resolve player ID -1",
                                                       "Bob has joined the game", "Bob: hi %d"}));
  EXPECT_EQ(ConsoleLines.size(), 0u);  // the library isn't started: no screen lines

  // The local player's own ID: the line, then the refusal; the record stays.
  Console.Clear();
  Game.Players[1].PlayerName = "Me";
  EXPECT_TRUE(Apply(Shorts(20, {4})));
  EXPECT_EQ(Console.Lines(),
            (std::vector<std::string>{"Me has left the game", "DeletePlayer: Not deleting local player 1"}));
  EXPECT_EQ(Ids(), (std::vector<int>{0, 4, 6}));

  // A lower-numbered player leaves: the local player moves down with its ID.
  Game.Players.insert(Game.Players.begin() + 1, PlayerClass());
  Game.Players[1].PlayerId = 2;
  Game.SetLocalPlayer(2);
  EXPECT_TRUE(Apply(Shorts(20, {2})));
  EXPECT_TRUE(Apply(Shorts(20, {99})));  // nobody: dropped
  EXPECT_EQ(Ids(), (std::vector<int>{0, 4, 6}));
  EXPECT_EQ(Game.LocalPlayerNumber, 1);
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);

  // The server's own player: the end, its fields emptied.
  PacketFieldList fields;
  Bytes quit = Shorts(20, {0});
  EXPECT_FALSE(NET_ClientDispatch(NP_ParsePacket(fields, quit.data(), quit.size()), fields));
  EXPECT_TRUE(fields.empty());
  EXPECT_EQ(Ids(), (std::vector<int>{0, 4, 6}));
}
