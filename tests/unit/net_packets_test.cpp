// The packet table and the wire format: rows, bytes, texts, dropped packets.
#include <gtest/gtest.h>
#include "net/packets.h"
#include "netpeer/netpeer.h"

class PacketTest : public testing::Test {
protected:
  void SetUp() override { NP_InitPacketTable(); }
};

TEST_F(PacketTest, DescriptionsGiveFieldsByFirstLetter) {
  std::string many;
  for (int i = 0; i < 40; i++) many += "s,";
  const std::string rows[][2] = {{"char a, short b, int c, float d, text e", "\1\2\3\4\x7F"},
                                 {"xylophone,short a, Int b,float c,  text d", "\2\4"},
                                 {"", ""},
                                 {many, std::string(31, '\2')}};
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
      {NP_UPDATE_JOINED, "3,9", "12 03 00 09 00 00"},
      {NP_UPDATE_QUIT, "65537", "14 01 00 00"},
      {NP_UPDATE_QUIT, "", "14 00 00 00"},
      {NP_UPDATE_PLAYER_NAME, "7,", "15 07 00 00 00 00"},
      {NP_UPDATE_PLAYER_NAME, "7,A\r b", "15 07 00 04 00 41 0D 20 62 00"},
      {NP_UPDATE_EYES, "7,-1", "17 07 00 FF FF 00"},
      {NP_UPDATE_EYEBROWS_Y, "2,-0.25", "21 02 00 00 00 80 BE 00"},
      {NP_PING, "x", "32 00"},
      {NP_CONSOLE_MESSAGE, "-1,16777215,Hi", "34 FF FF FF FF FF 00 02 00 48 69 00"},
      {NP_VERSION_INFO, std::string(300, 'v'), Hex(Pkt(53, {}, std::string(255, 'v').c_str()))},
      {11, "1,2", "0B 00"},
      {200, "1", "C8 00"},
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
      {Pkt(23, {7, -1}), 23, {"7", "-1"}},
      {Pkt(21, {7}, "A\r b"), 21, {"7", "A, b"}},
      {{0x1F, 2, 0, 0, 0, 0xC0, 0x3F}, 31, {"2", "1.500000"}},
      {Pkt(52, {-1, -1, -1}, "x"), 52, {"-1", "-1", "x"}},
      {{12, 0xFE}, 12, {"-2"}},
      {{0x14, 5, 0, 0, 0x99}, 20, {"5"}},
      // A zero byte ends a text, but all its bytes are passed over.
      {{13, 3, 0, 'a', 0, '\r', 1, 0, '\r'}, 13, {"a", ","}},
      {{0x35, 2, 0, 'a', 'b'}, 53, {"ab"}},
      {Pkt(53, {}, std::string(255, 'v').c_str()), 53, {std::string(255, 'v')}},
      {{0, 0}, 0, {}},
      {{11, 0}, 11, {}},
      {{54, 1, 0}, 54, {}},
      {{}, -1, {}},
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
  } rows[] = {{"5,7", 0, "5"},   {"5,7", 1, "7"},   {"5,7", 2, ""},    {"", 0, ""},
              {"a,,c", 1, ""},   {"a,,c", 2, "c"},  {"a,b", -1, ""},   {nullptr, 0, ""},
              {"a,b,", 2, ""},   {"a,b,", 3, ""},   {y.c_str(), 0, std::string(512, 'y')}};
  for (const auto &row : rows) EXPECT_EQ(NP_GetField(row.Line, row.Index), row.Piece) << row.Index;
  EXPECT_EQ(NP_EscapeText("Ann, the 1st,"), "Ann\r the 1st\r");
  EXPECT_EQ(NP_EscapeText(nullptr), "");
  EXPECT_STREQ(NP_FieldText({"a"}, 1), "");
}
