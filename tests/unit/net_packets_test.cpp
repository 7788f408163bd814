// The packet table and the wire format: rows, encoded bytes, decoded texts and
// the packets that the parser drops.
#include <gtest/gtest.h>
#include <cstring>
#include "net/packets.h"
#include "netpeer/netpeer.h"

class PacketTest : public testing::Test {
protected:
  void SetUp() override { NP_InitPacketTable(); }

  static Bytes Encode(uint8_t type, const char *line) {
    uint8_t buffer[NP_PACKET_SIZE];
    int length = NP_EncodePacket(type, line, buffer, sizeof(buffer));
    return Bytes(buffer, buffer + (length > 0 ? length : 0));
  }
  static int32_t Parse(PacketFieldList &list, const Bytes &b) { return NP_ParsePacket(list, b.data(), b.size()); }
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
    std::vector<uint8_t> codes;
    for (int i = 0; PacketTable[row.Type].FieldTypes[i]; i++) codes.push_back(PacketTable[row.Type].FieldTypes[i]);
    EXPECT_EQ(codes, row.Codes) << row.Name;
  }
  int named = 0;
  for (int t = 0; t < PACKET_TYPE_COUNT; t++) {
    if (!PacketTable[t].Name.empty()) named++;
    bool empty = (t >= 11 && t <= 17) || (t >= 34 && t <= 39) || (t >= 41 && t <= 49);
    EXPECT_EQ(PacketTable[t].Name.empty(), empty) << t;
    if (empty) {
      EXPECT_EQ(PacketTable[t].FieldTypes[0], 0) << t;
    }
  }
  EXPECT_EQ(named, 32);
  EXPECT_EQ(PACKET_TYPE_COUNT, 54);
}

TEST_F(PacketTest, DescriptionsGiveFieldsByFirstLetter) {
  NP_RegisterPacket(12, "All", "char a, short b, int c, float d, text e");
  const uint8_t all[] = {FIELD_CHAR, FIELD_SHORT, FIELD_INT, FIELD_FLOAT, FIELD_TEXT, 0};
  EXPECT_EQ(0, std::memcmp(PacketTable[12].FieldTypes, all, sizeof(all)));
  // An unknown letter gives no field; a comma without a blank starts a field too;
  // registering again clears what was there.
  NP_RegisterPacket(12, "Odd", "xylophone,short a, Int b,float c");
  const uint8_t odd[] = {FIELD_SHORT, FIELD_FLOAT, 0, 0, 0};
  EXPECT_EQ(0, std::memcmp(PacketTable[12].FieldTypes, odd, sizeof(odd)));
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
  EXPECT_EQ(Hex(Encode(3, "3")), "03 03 00 00");
  EXPECT_EQ(Hex(Encode(23, "7,-1")), "17 07 00 FF FF 00");
  EXPECT_EQ(Hex(Encode(21, "7,Al")), "15 07 00 02 00 41 6C 00");
  EXPECT_EQ(Hex(Encode(21, "7,")), "15 07 00 00 00 00");
  EXPECT_EQ(Hex(Encode(0, "")), "00 00");
  EXPECT_EQ(Hex(Encode(50, "whatever")), "32 00");
  EXPECT_EQ(Hex(Encode(11, "1,2")), "0B 00");
  EXPECT_EQ(Hex(Encode(200, "1")), "C8 00");
  // The count comes first in "Update Joined", whatever its description says.
  EXPECT_EQ(Hex(Encode(18, "3,9")), "12 03 00 09 00 00");
  EXPECT_EQ(Hex(Encode(52, "-1,16777215,Hi")), "34 FF FF FF FF FF 00 02 00 48 69 00");
  EXPECT_EQ(Hex(Encode(31, "2,1.500000")), "1F 02 00 00 00 C0 3F 00");
  // The low 16 bits of a player ID; a missing piece and a word are 0.
  EXPECT_EQ(Hex(Encode(20, "65537")), "14 01 00 00");
  EXPECT_EQ(Hex(Encode(20, "")), "14 00 00 00");
  EXPECT_EQ(Hex(Encode(22, "5")), "16 05 00 00 00 00");
  EXPECT_EQ(Hex(Encode(2, "abc")), "02 00 00 00");
  NP_RegisterPacket(12, "Char", "char c");
  EXPECT_EQ(Hex(Encode(12, "-2")), "0C FE 00");
}

TEST_F(PacketTest, LongTextIsCutAndTightBufferIsRefused) {
  std::string line = "7," + std::string(300, 'x');
  Bytes b = Encode(21, line.c_str());
  ASSERT_EQ(b.size(), 6u + 255u);
  EXPECT_EQ(b[3], 0xFF);
  EXPECT_EQ(b[4], 0x00);
  EXPECT_EQ(b[5 + 254], 'x');
  EXPECT_EQ(b.back(), 0);
  uint8_t small[5];
  EXPECT_EQ(NP_EncodePacket(21, "7,Al", small, sizeof(small)), 0);
  EXPECT_EQ(NP_EncodePacket(21, "7,", small, sizeof(small)), 0);
  uint8_t exact[6];
  EXPECT_EQ(NP_EncodePacket(21, "7,", exact, sizeof(exact)), 6);
}

TEST_F(PacketTest, DecodesFieldsAsTexts) {
  PacketFieldList list;
  EXPECT_EQ(Parse(list, Bytes{0x17, 0x07, 0x00, 0xFF, 0xFF, 0x00}), 23);
  EXPECT_EQ(list, (PacketFieldList{"7", "-1"}));
  EXPECT_EQ(Parse(list, Bytes{0x15, 0x07, 0x00, 0x00, 0x00, 0x00}), 21);
  EXPECT_EQ(list, (PacketFieldList{"7", ""}));
  EXPECT_EQ(Parse(list, Encode(31, "2,1.5")), 31);
  EXPECT_EQ(list, (PacketFieldList{"2", "1.500000"}));
  EXPECT_EQ(Parse(list, Encode(33, "2,-0.25")), 33);
  EXPECT_EQ(list, (PacketFieldList{"2", "-0.250000"}));
  EXPECT_EQ(Parse(list, Encode(52, "-1,-1,x")), 52);
  EXPECT_EQ(list, (PacketFieldList{"-1", "-1", "x"}));
  NP_RegisterPacket(12, "Char", "char c");
  EXPECT_EQ(Parse(list, Bytes{0x0C, 0xFE}), 12);
  EXPECT_EQ(list, (PacketFieldList{"-2"}));
  // Fieldless and rowless types leave the list empty; so does 54 and up.
  for (uint8_t type : {0, 11, 17, 50, 54, 200, 255}) {
    list = {"stale"};
    EXPECT_EQ(Parse(list, Bytes{type, 0x00}), type);
    EXPECT_TRUE(list.empty()) << (int)type;
  }
  // Bytes behind the last field, and a missing closing zero, don't matter.
  EXPECT_EQ(Parse(list, Bytes{0x14, 0x05, 0x00, 0x00, 0x99, 0x98}), 20);
  EXPECT_EQ(list, (PacketFieldList{"5"}));
  EXPECT_EQ(Parse(list, Bytes{0x14, 0x05, 0x00}), 20);
  EXPECT_EQ(list, (PacketFieldList{"5"}));
}

TEST_F(PacketTest, CommaTravelsAsCarriageReturn) {
  std::string escaped = NP_EscapeText("Ann, the 1st,");
  EXPECT_EQ(escaped, "Ann\r the 1st\r");
  EXPECT_EQ(NP_EscapeText(nullptr), "");
  std::string line = "7," + escaped;
  Bytes b = Encode(21, line.c_str());
  EXPECT_EQ(Hex(b), "15 07 00 0D 00 41 6E 6E 0D 20 74 68 65 20 31 73 74 0D 00");
  PacketFieldList list;
  EXPECT_EQ(Parse(list, b), 21);
  EXPECT_EQ(list, (PacketFieldList{"7", "Ann, the 1st,"}));
  // A zero byte among the n bytes ends the text; the next field is still read
  // behind all n bytes.
  NP_RegisterPacket(12, "Two texts", "text a, text b");
  Bytes z{0x0C, 0x03, 0x00, 'a', 0x00, 0x0D, 0x01, 0x00, 0x0D, 0x00};
  EXPECT_EQ(Parse(list, z), 12);
  EXPECT_EQ(list, (PacketFieldList{"a", ","}));
}

TEST_F(PacketTest, GetFieldPicksPieces) {
  EXPECT_STREQ(NP_GetField("5,7", 0), "5");
  EXPECT_STREQ(NP_GetField("5,7", 1), "7");
  EXPECT_STREQ(NP_GetField("5,7", 2), "");
  EXPECT_STREQ(NP_GetField("", 0), "");
  EXPECT_STREQ(NP_GetField("a,,c", 1), "");
  EXPECT_STREQ(NP_GetField("a,,c", 2), "c");
  EXPECT_STREQ(NP_GetField("a,b", -1), "");
  EXPECT_STREQ(NP_GetField(nullptr, 0), "");
  std::string longPiece(700, 'y');
  EXPECT_EQ(std::strlen(NP_GetField(longPiece.c_str(), 0)), 512u);
  // A description with two fields and a line with one: the second is 0.
  EXPECT_EQ(Hex(Encode(23, "9")), "17 09 00 00 00 00");
}

TEST_F(PacketTest, MalformedPacketsAreDroppedWhole) {
  PacketFieldList list;
  std::vector<Bytes> bad = {
      {},                                    // nothing at all
      {0x17},                                // no fields
      {0x17, 0x07, 0x00, 0xFF},              // second short cut
      {0x1F, 0x07, 0x00, 0x00, 0x00, 0xC0},  // float cut
      {0x34, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},  // int cut
      {0x15, 0x07, 0x00, 0x05, 0x00, 'A', 'l', 0x00},  // text past the end
      {0x15, 0x07, 0x00, 0x05},                        // length cut
  };
  Bytes over{0x35, 0x00, 0x01};  // "Version Info" of 256 bytes
  over.insert(over.end(), 256, 'v');
  over.push_back(0);
  bad.push_back(over);
  for (const Bytes &b : bad) {
    list = {"stale"};
    EXPECT_EQ(NP_ParsePacket(list, b.empty() ? nullptr : b.data(), b.size()), NP_PACKET_DROPPED) << Hex(b);
    EXPECT_TRUE(list.empty()) << Hex(b);
  }
  // 255 bytes is the most a text may have.
  Bytes most{0x35, 0xFF, 0x00};
  most.insert(most.end(), 255, 'v');
  EXPECT_EQ(Parse(list, most), 53);
  EXPECT_EQ(list[0], std::string(255, 'v'));
}
