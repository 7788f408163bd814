// The packet table and the wire format: rows, encoded bytes, decoded texts and
// the packets that the parser drops.
#include <gtest/gtest.h>
#include <cstring>
#include "net/packets.h"
#include "netpeer/netpeer.h"

class PacketTest : public testing::Test {
protected:
  void SetUp() override { NP_InitPacketTable(); }

  static std::string Encode(uint8_t type, const char *line) {
    uint8_t buffer[NP_PACKET_SIZE];
    int length = NP_EncodePacket(type, line, buffer, sizeof(buffer));
    return Hex(Bytes(buffer, buffer + (length > 0 ? length : 0)));
  }
  static int32_t Parse(PacketFieldList &list, const Bytes &b) { return NP_ParsePacket(list, b.data(), b.size()); }
  static std::vector<uint8_t> Codes(int type) {
    const uint8_t *codes = PacketTable[type].FieldTypes;
    return std::vector<uint8_t>(codes, codes + std::strlen((const char *)codes));
  }
};

TEST_F(PacketTest, TableHasItsRowsAndFieldCodes) {
  const uint8_t S = FIELD_SHORT;
  struct Row {
    int Type;
    const char *Name;
    std::vector<uint8_t> Codes;
  } rows[] = {
      {0, "Report Quit", {}},
      {1, "Report Player Name", {FIELD_TEXT}},
      {2, "Report Character", {S}},
      {10, "Report Hat", {S}},
      {18, "Update Joined", {S, S}},
      {19, "Update Player ID", {S, S}},
      {20, "Update Quit", {S}},
      {21, "Update Player Name", {S, FIELD_TEXT}},
      {30, "Update Hat", {S, S}},
      {31, "Update Eyes Ori X", {S, FIELD_FLOAT}},
      {33, "Update Eyebrows Y", {S, FIELD_FLOAT}},
      {40, "Set Player Number", {S, S}},
      {50, "Ping", {}},
      {51, "Pong", {}},
      {52, "Console Message", {S, FIELD_INT, FIELD_TEXT}},
      {53, "Version Info", {FIELD_TEXT}},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(PacketTable[row.Type].Name, row.Name);
    EXPECT_EQ(Codes(row.Type), row.Codes) << row.Name;
  }
  // 11..17, 34..39 and 41..49 are empty rows; the other 32 have names.
  EXPECT_EQ(PACKET_TYPE_COUNT, 54);
  for (int t = 0; t < PACKET_TYPE_COUNT; t++) {
    bool empty = (t >= 11 && t <= 17) || (t >= 34 && t <= 39) || (t >= 41 && t <= 49);
    EXPECT_EQ(PacketTable[t].Name.empty(), empty) << t;
    if (empty) {
      EXPECT_EQ(PacketTable[t].FieldTypes[0], 0) << t;
    }
  }
}

TEST_F(PacketTest, DescriptionsGiveFieldsByFirstLetter) {
  NP_RegisterPacket(12, "All", "char a, short b, int c, float d, text e");
  EXPECT_EQ(Codes(12), (std::vector<uint8_t>{FIELD_CHAR, FIELD_SHORT, FIELD_INT, FIELD_FLOAT, FIELD_TEXT}));
  // An unknown letter gives no field; a comma without a blank starts a field too;
  // registering again clears what was there.
  NP_RegisterPacket(12, "Odd", "xylophone,short a, Int b,float c");
  const uint8_t *odd = PacketTable[12].FieldTypes;
  EXPECT_EQ(std::vector<uint8_t>(odd, odd + 5), (std::vector<uint8_t>{FIELD_SHORT, FIELD_FLOAT, 0, 0, 0}));
  // 40 fields are cut to 31, the last byte stays the terminator.
  std::string many;
  for (int i = 0; i < 40; i++) many += i ? ", s" : "s";
  NP_RegisterPacket(13, "Many", many.c_str());
  EXPECT_EQ(NP_FieldCount(13), 31);
  EXPECT_EQ(PacketTable[13].FieldTypes[31], 0);
  NP_RegisterPacket(54, "Beyond", "short a");  // out of the table: ignored
  NP_RegisterPacket(-1, "Before", "short a");
}

TEST_F(PacketTest, EncodesTheWireBytes) {
  NP_RegisterPacket(12, "Char", "char c");
  struct Case {
    uint8_t Type;
    const char *Line, *Hex;
  } cases[] = {
      {3, "3", "03 03 00 00"},
      {23, "7,-1", "17 07 00 FF FF 00"},
      {21, "7,Al", "15 07 00 02 00 41 6C 00"},
      {21, "7,", "15 07 00 00 00 00"},
      {0, "", "00 00"},
      {50, "whatever", "32 00"},
      {11, "1,2", "0B 00"},
      {200, "1", "C8 00"},
      // The count comes first in "Update Joined", whatever its description says.
      {18, "3,9", "12 03 00 09 00 00"},
      {52, "-1,16777215,Hi", "34 FF FF FF FF FF 00 02 00 48 69 00"},
      {31, "2,1.500000", "1F 02 00 00 00 C0 3F 00"},
      // The low 16 bits of a player ID; a missing piece and a word are 0.
      {20, "65537", "14 01 00 00"},
      {20, "", "14 00 00 00"},
      {22, "5", "16 05 00 00 00 00"},
      {23, "9", "17 09 00 00 00 00"},
      {2, "abc", "02 00 00 00"},
      {12, "-2", "0C FE 00"},
  };
  for (const Case &c : cases) EXPECT_EQ(Encode(c.Type, c.Line), c.Hex) << (int)c.Type << " " << c.Line;
}

TEST_F(PacketTest, LongTextIsCutAndTightBufferIsRefused) {
  std::string line = "7," + std::string(300, 'x');
  EXPECT_EQ(Encode(21, line.c_str()), Hex(TextPkt(21, {7}, std::string(255, 'x'))));
  uint8_t small[5], exact[6];
  EXPECT_EQ(NP_EncodePacket(21, "7,Al", small, sizeof(small)), 0);
  EXPECT_EQ(NP_EncodePacket(21, "7,", small, sizeof(small)), 0);
  EXPECT_EQ(NP_EncodePacket(21, "7,", exact, sizeof(exact)), 6);
}

TEST_F(PacketTest, DecodesFieldsAsTexts) {
  NP_RegisterPacket(12, "Char", "char c");
  struct Case {
    Bytes Packet;
    int32_t Type;
    PacketFieldList Fields;
  };
  std::vector<Case> cases = {
      {{0x17, 0x07, 0x00, 0xFF, 0xFF, 0x00}, 23, {"7", "-1"}},
      {{0x15, 0x07, 0x00, 0x00, 0x00, 0x00}, 21, {"7", ""}},
      {FloatPkt(31, 2, 1.5f), 31, {"2", "1.500000"}},
      {FloatPkt(33, 2, -0.25f), 33, {"2", "-0.250000"}},
      {ConsolePkt(-1, -1, "x"), 52, {"-1", "-1", "x"}},
      {{0x0C, 0xFE}, 12, {"-2"}},
      // Bytes behind the last field, and a missing closing zero, don't matter.
      {{0x14, 0x05, 0x00, 0x00, 0x99, 0x98}, 20, {"5"}},
      {{0x14, 0x05, 0x00}, 20, {"5"}},
  };
  // Fieldless and rowless types leave the list empty; so does 54 and up.
  for (uint8_t type : {0, 11, 17, 50, 54, 200, 255}) cases.push_back({{type, 0}, type, {}});
  for (const Case &c : cases) {
    PacketFieldList list = {"stale"};
    EXPECT_EQ(Parse(list, c.Packet), c.Type) << Hex(c.Packet);
    EXPECT_EQ(list, c.Fields) << Hex(c.Packet);
  }
}

TEST_F(PacketTest, CommaTravelsAsCarriageReturn) {
  std::string escaped = NP_EscapeText("Ann, the 1st,");
  EXPECT_EQ(escaped, "Ann\r the 1st\r");
  EXPECT_EQ(NP_EscapeText(nullptr), "");
  std::string line = "7," + escaped;
  EXPECT_EQ(Encode(21, line.c_str()), "15 07 00 0D 00 41 6E 6E 0D 20 74 68 65 20 31 73 74 0D 00");
  PacketFieldList list;
  EXPECT_EQ(Parse(list, TextPkt(21, {7}, escaped)), 21);
  EXPECT_EQ(list, (PacketFieldList{"7", "Ann, the 1st,"}));
  // A zero byte among the n bytes ends the text; the next field is still read
  // behind all n bytes.
  NP_RegisterPacket(12, "Two texts", "text a, text b");
  EXPECT_EQ(Parse(list, Bytes{0x0C, 0x03, 0x00, 'a', 0x00, 0x0D, 0x01, 0x00, 0x0D, 0x00}), 12);
  EXPECT_EQ(list, (PacketFieldList{"a", ","}));
}

TEST_F(PacketTest, GetFieldPicksPieces) {
  struct Case {
    const char *Line;
    int Index;
    const char *Piece;
  } cases[] = {{"5,7", 0, "5"}, {"5,7", 1, "7"},  {"5,7", 2, ""},  {"", 0, ""},
               {"a,,c", 1, ""}, {"a,,c", 2, "c"}, {"a,b", -1, ""}, {nullptr, 0, ""}};
  for (const Case &c : cases) EXPECT_STREQ(NP_GetField(c.Line, c.Index), c.Piece) << c.Index;
  std::string longPiece(700, 'y');
  EXPECT_EQ(std::strlen(NP_GetField(longPiece.c_str(), 0)), 512u);
}

TEST_F(PacketTest, MalformedPacketsAreDroppedWhole) {
  std::vector<Bytes> bad = {
      {},                                              // nothing at all
      {0x17},                                          // no fields
      {0x17, 0x07, 0x00, 0xFF},                        // second short cut
      {0x1F, 0x07, 0x00, 0x00, 0x00, 0xC0},            // float cut
      {0x34, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},            // int cut
      {0x15, 0x07, 0x00, 0x05, 0x00, 'A', 'l', 0x00},  // text past the end
      {0x15, 0x07, 0x00, 0x05},                        // length cut
      TextPkt(53, {}, std::string(256, 'v')),          // a text of 256 bytes
  };
  for (const Bytes &b : bad) {
    PacketFieldList list = {"stale"};
    EXPECT_EQ(NP_ParsePacket(list, b.empty() ? nullptr : b.data(), b.size()), NP_PACKET_DROPPED) << Hex(b);
    EXPECT_TRUE(list.empty()) << Hex(b);
  }
  // 255 bytes is the most a text may have.
  PacketFieldList list;
  EXPECT_EQ(Parse(list, TextPkt(53, {}, std::string(255, 'v'))), 53);
  EXPECT_EQ(list, PacketFieldList{std::string(255, 'v')});
}
