// The packet table and the wire format: rows, bytes, texts, dropped packets;
// the client's handling of the server's packets.
#include <gtest/gtest.h>
#include <tuple>
#include "app/parts.h"
#include "net/client.h"
#include "netpeer/netpeer.h"

class PacketTest : public testing::Test {
protected:
  void SetUp() override { NP_InitPacketTable(); }
};

TEST_F(PacketTest, DescriptionsGiveFieldsByFirstLetter) {
  std::string many;
  for (int i = 0; i < 40; i++) many += "s,";
  const std::string rows[][2] = {{"xylophone,short a, Int b,float c,  text d", "\2\4"}, {many, std::string(31, '\2')}};
  for (const auto &row : rows) {
    NP_RegisterPacket(12, "Row", row[0].c_str());
    EXPECT_EQ((const char *)PacketTable[12].FieldTypes, row[1]) << row[0];
  }
  NP_InitPacketTable();
  EXPECT_EQ(PacketTable[NP_CONSOLE_MESSAGE].Name + PacketTable[12].Name, "Console Message");
}

TEST_F(PacketTest, ArgumentLinesEncodeToTheWireBytes) {
  NP_RegisterPacket(12, "Char", "char c");
  const struct {
    int Type;
    std::string Line, Hex;
    int Size;
  } rows[] = {
      {NP_REPORT_HAT, "abc", "0A 00 00 00"},
      {NP_UPDATE_QUIT, "65537", "14 01 00 00"},
      {NP_UPDATE_PLAYER_NAME, "7,", "15 07 00 00 00 00"},
      {NP_VERSION_INFO, std::string(300, 'v'), Hex(Pkt(53, {}, std::string(255, 'v').c_str()))},
      {12, "-2", "0C FE 00"},
      // Buffers that just hold the packet, and one byte less.
      {NP_PONG, "", "33 00", 2},
      {NP_PONG, "", "", 1},
      {NP_UPDATE_EYES, "1,2", "17 01 00 02 00 00", 6},
      {NP_UPDATE_EYES, "1,2", "", 5},
      {NP_UPDATE_PLAYER_NAME, "7,Al", "15 07 00 02 00 41 6C 00", 8},
      {NP_UPDATE_PLAYER_NAME, "7,Al", "", 7},
  };
  for (const auto &row : rows) {
    uint8_t b[NP_PACKET_SIZE];
    int length = NP_EncodePacket(row.Type, row.Line.c_str(), b, row.Size ? row.Size : NP_PACKET_SIZE);
    EXPECT_EQ(Hex(Bytes(b, b + length)), row.Hex) << row.Line;
  }
}

TEST_F(PacketTest, BytesDecodeToTextsOrAreDroppedWhole) {
  NP_RegisterPacket(12, "Char", "char c");
  NP_RegisterPacket(13, "Texts", "text a, text b");
  const struct {
    Bytes Packet;
    int32_t Type;
    Texts Fields;
  } rows[] = {
      {{12, 0xFE}, 12, {"-2"}},
      {{0x14, 5, 0, 0, 0x99}, 20, {"5"}},
      // A zero byte ends a text, but all its bytes are passed over.
      {{13, 3, 0, 'a', 0, '\r', 1, 0, '\r'}, 13, {"a", ","}},
      {{0x35, 2, 0, 'a', 'b'}, 53, {"ab"}},
      {Pkt(53, {}, std::string(255, 'v').c_str()), 53, {std::string(255, 'v')}},
      {{54, 1, 0}, 54, {}},
      {{}, -1, {}},
      {{50}, 50, {}},
      {{0x17, 7, 0, 0xFF}, -1, {}},
      {{0x35, 2, 0, 'a'}, -1, {}},
      {{0x15, 7, 0, 5}, -1, {}},
      {Pkt(53, {}, std::string(256, 'v').c_str()), -1, {}},
  };
  for (const auto &row : rows) {
    Texts list = {"stale"};
    EXPECT_EQ(NP_ParsePacket(list, row.Packet.data(), row.Packet.size()), row.Type) << Hex(row.Packet);
    EXPECT_EQ(list, row.Fields) << Hex(row.Packet);
  }
}

TEST_F(PacketTest, PiecesOfTheLineAndEscapedCommas) {
  const std::string y(700, 'y');
  const struct {
    const char *Line;
    int Index;
    std::string Piece;
  } rows[] = {{"5,7", 0, "5"}, {"5,7", 1, "7"},   {"5,7", 2, ""},
              {"a,b", -1, ""}, {nullptr, 0, ""}, {y.c_str(), 0, std::string(512, 'y')}};
  for (const auto &row : rows) EXPECT_EQ(NP_GetField(row.Line, row.Index), row.Piece) << row.Index;
  EXPECT_EQ(NP_EscapeText(nullptr), "");
  EXPECT_STREQ(NP_FieldText({"a"}, 1), "");
}

// Client 1 (ID 2) between the server's player (ID 0) and Bob (ID 8); one
// console line for packets to colour.
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
  for (const Bytes &b : {Pkt(23, {8, 2}), Pkt(24, {8, -1}),
                         Pkt(30, {8, 1}), Pkt(30, {8, 5}),  // no such hat
                         Pkt(22, {8, 9}), Pkt(22, {8, 2}),  // body 0
                         Bytes{31, 8, 0, 0, 0, 0x40, 0x40}, Bytes{32, 8, 0, 0, 0, 0x80, 0xC1},
                         Bytes{33, 8, 0, 0, 0, 0xC0, 0x3F}, Pkt(21, {8}, "B\rb 50%")})
    EXPECT_TRUE(Apply(b));
  EXPECT_EQ(Record(Game.Players[2]), std::make_tuple(2, 2, -1, 1, 3.0f, -16.0f, 1.5f, std::string("B,b 50%")));
  EXPECT_TRUE(Console.Said().empty());  // no report goes back
  for (const Bytes &b : {Pkt(23, {77, 1}), Pkt(51), Pkt(40, {0, 1}), Bytes{23, 6}, Pkt(53, {}, "Tumblekin v1.0")})
    EXPECT_TRUE(Apply(b));
  EXPECT_EQ(Console.Said(), (Texts{"Warning GetPlayerNumber failed to resolve player ID 77",
                                    "Recieved ping reply from server",
                                    "Client and server versions match (Tumblekin v1.0)"}));

  // Indices and counts past the roster are ignored.
  for (const Bytes &b : {Pkt(18, {4, 9}), Pkt(19, {3, 11}),
                         Pkt(19, {0, 1}), Pkt(19, {-1, 12}),
                         Pkt(19, {4, 12}),
                         Pkt(18, {9, 13}), Pkt(18, {1, 13})})
    EXPECT_TRUE(Apply(b));
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
