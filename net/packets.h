// The packet table and the wire format: one table row per packet type says
// which binary fields it carries, and a comma-separated argument line is
// turned into those fields and back.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

enum {
  FIELD_CHAR = 1,
  FIELD_SHORT = 2,
  FIELD_INT = 3,
  FIELD_FLOAT = 4,
  FIELD_TEXT = 127,
};

// The packet types, one name for each row of the packet table.
enum {
  NP_REPORT_QUIT = 0,
  NP_REPORT_PLAYER_NAME = 1,
  NP_REPORT_CHARACTER = 2,
  NP_REPORT_EYES = 3,
  NP_REPORT_EARS = 4,
  NP_REPORT_NOSE = 5,
  NP_REPORT_MOUTH = 6,
  NP_REPORT_EYEBROWS = 7,
  NP_REPORT_MOUSTACHE = 8,
  NP_REPORT_FEET = 9,
  NP_REPORT_HAT = 10,
  NP_UPDATE_JOINED = 18,
  NP_UPDATE_PLAYER_ID = 19,
  NP_UPDATE_QUIT = 20,
  NP_UPDATE_PLAYER_NAME = 21,
  NP_UPDATE_CHARACTER = 22,
  NP_UPDATE_EYES = 23,
  NP_UPDATE_EARS = 24,
  NP_UPDATE_NOSE = 25,
  NP_UPDATE_MOUTH = 26,
  NP_UPDATE_EYEBROWS = 27,
  NP_UPDATE_MOUSTACHE = 28,
  NP_UPDATE_FEET = 29,
  NP_UPDATE_HAT = 30,
  NP_UPDATE_EYES_ORI_X = 31,
  NP_UPDATE_EYES_ORI_Y = 32,
  NP_UPDATE_EYEBROWS_Y = 33,
  NP_SET_PLAYER_NUMBER = 40,
  NP_PING = 50,
  NP_PONG = 51,
  NP_CONSOLE_MESSAGE = 52,
  NP_VERSION_INFO = 53,
};

// The Report of a part (Character to Hat) is answered by its Update this
// many types further on.
const int NP_REPORT_TO_UPDATE = NP_UPDATE_CHARACTER - NP_REPORT_CHARACTER;

const int PACKET_TYPE_COUNT = 54;
const int PACKET_FIELD_TYPES_SIZE = 32;

// The sizes that sending works in: the formatted argument line (with its
// terminator), one text field (with its terminator) and one whole packet.
const int NP_LINE_SIZE = 512;
const int NP_TEXT_FIELD_SIZE = 256;
const int NP_MAX_TEXT_LENGTH = 255;
const int NP_PACKET_SIZE = 384;

// What NP_ParsePacket answers for a packet it drops as malformed: no packet
// type has this number, so every dispatcher passes it over.
const int32_t NP_PACKET_DROPPED = -1;

class PacketTableRow {
public:
  uint8_t FieldTypes[PACKET_FIELD_TYPES_SIZE] = {0};
  std::string Name;
};

extern PacketTableRow PacketTable[PACKET_TYPE_COUNT];

// The received fields of one packet as texts, in wire order.
typedef std::vector<std::string> PacketFieldList;

// The field at `index` as a text, or the empty text for a list that is
// shorter: the parser always gives a row's full count, this keeps the
// dispatchers safe when they are called directly.
const char *NP_FieldText(const PacketFieldList &fields, size_t index);

void NP_InitPacketTable();
void NP_RegisterPacket(int type, const char *name, const char *description);
// Number of fields in a row (0 for a type without a row).
int NP_FieldCount(uint8_t type);

// Decodes `length` bytes of a received packet into `list` and gives its type.
int32_t NP_ParsePacket(PacketFieldList &list, const uint8_t *data, size_t length);

// The comma-separated piece `index` of `line`, in one static buffer that the
// next call overwrites.
const char *NP_GetField(const char *line, int32_t index);
std::string NP_EscapeText(const char *text);

// Encodes the argument line for a packet of `type` into `buffer`: the type
// byte, the row's fields, the closing zero. Gives the length, or 0 when the
// fields would not fit into `size` bytes.
int NP_EncodePacket(uint8_t type, const char *line, uint8_t *buffer, int size);
