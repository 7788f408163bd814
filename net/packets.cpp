// The packet table and the wire format: rows from parameter descriptions, the
// encoder of one argument line and the decoder of one received packet.
#include "net/packets.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

PacketTableRow PacketTable[PACKET_TYPE_COUNT];

// ---- Rows -------------------------------------------------------------------

static uint8_t FieldCodeForLetter(char letter) {
  switch (letter) {
    case 'c': return FIELD_CHAR;
    case 's': return FIELD_SHORT;
    case 'i': return FIELD_INT;
    case 'f': return FIELD_FLOAT;
    case 't': return FIELD_TEXT;
    default: return 0;
  }
}

void NP_RegisterPacket(int type, const char *name, const char *description) {
  PacketTableRow &row = PacketTable[type];
  row = PacketTableRow();
  row.Name = name;
  int count = 0;
  // A field begins at the start and behind each comma, one blank skipped.
  // The last byte of FieldTypes stays the terminating zero: 31 fields at most.
  for (const char *p = description; count < PACKET_FIELD_TYPES_SIZE - 1; p += p[1] == ' ' ? 2 : 1) {
    if (uint8_t code = FieldCodeForLetter(*p)) row.FieldTypes[count++] = code;
    p = std::strchr(p, ',');
    if (!p) break;
  }
}

int NP_FieldCount(uint8_t type) {
  return type < PACKET_TYPE_COUNT ? (int)std::strlen((const char *)PacketTable[type].FieldTypes) : 0;
}

// Each row's type, name and parameter description; only the first letter of
// each parameter counts, the names after it are documentation.
static const struct {
  int Type;
  const char *Name, *Description;
} PacketRows[] = {
    {NP_REPORT_QUIT, "Report Quit", ""},
    {NP_REPORT_PLAYER_NAME, "Report Player Name", "text PlayerName"},
    {NP_REPORT_CHARACTER, "Report Character", "short int ChracterNumber"},
    {NP_REPORT_EYES, "Report Eyes", "short int EyesNumber"},
    {NP_REPORT_EARS, "Report Ears", "short int EarsNumber"},
    {NP_REPORT_NOSE, "Report Nose", "short int NoseNumber"},
    {NP_REPORT_MOUTH, "Report Mouth", "short int MouthNumber"},
    {NP_REPORT_EYEBROWS, "Report Eyebrows", "short int EyebrowsNumber"},
    {NP_REPORT_MOUSTACHE, "Report Moustache", "short int MoustacheNumber"},
    {NP_REPORT_FEET, "Report Feet", "short int FeetNumber"},
    {NP_REPORT_HAT, "Report Hat", "short int HatNumber"},
    {NP_UPDATE_JOINED, "Update Joined", "short int PlayerId, short int PlayerCount"},
    {NP_UPDATE_PLAYER_ID, "Update Player ID", "short int PlayerId, short int NewPlayerId"},
    {NP_UPDATE_QUIT, "Update Quit", "short int PlayerId"},
    {NP_UPDATE_PLAYER_NAME, "Update Player Name", "short int PlayerId, text PlayerName"},
    {NP_UPDATE_CHARACTER, "Update Character", "short int PlayerId, short int CharacterNumber"},
    {NP_UPDATE_EYES, "Update Eyes", "short int PlayerId, short int EyesNumber"},
    {NP_UPDATE_EARS, "Update Ears", "short int PlayerId, short int EarsNumber"},
    {NP_UPDATE_NOSE, "Update Nose", "short int PlayerId, short int NoseNumber"},
    {NP_UPDATE_MOUTH, "Update Mouth", "short int PlayerId, short int MouthNumber"},
    {NP_UPDATE_EYEBROWS, "Update Eyebrows", "short int PlayerId, short int EyebrowsNumber"},
    {NP_UPDATE_MOUSTACHE, "Update Moustache", "short int PlayerId, short int MoustacheNumber"},
    {NP_UPDATE_FEET, "Update Feet", "short int PlayerId, short int FeetNumber"},
    {NP_UPDATE_HAT, "Update Hat", "short int PlayerId, short int HatNumber"},
    {NP_UPDATE_EYES_ORI_X, "Update Eyes Ori X", "short int PlayerId, float x"},
    {NP_UPDATE_EYES_ORI_Y, "Update Eyes Ori Y", "short int PlayerId, float y"},
    {NP_UPDATE_EYEBROWS_Y, "Update Eyebrows Y", "short int PlayerId, float y"},
    {NP_SET_PLAYER_NUMBER, "Set Player Number", "short int NewPlayerNumber, short int PlayerCount"},
    {NP_PING, "Ping", ""},
    {NP_PONG, "Pong", ""},
    {NP_CONSOLE_MESSAGE, "Console Message", "short int PlayerId, int TextColour, text message"},
    {NP_VERSION_INFO, "Version Info", "text info"},
};

void NP_InitPacketTable() {
  for (int type = 0; type < PACKET_TYPE_COUNT; type++) NP_RegisterPacket(type, "", "");
  for (const auto &row : PacketRows) NP_RegisterPacket(row.Type, row.Name, row.Description);
}

// ---- Texts ------------------------------------------------------------------

const char *NP_FieldText(const PacketFieldList &fields, size_t index) {
  return index < fields.size() ? fields[index].c_str() : "";
}

const char *NP_GetField(const char *line, int32_t index) {
  static char field[NP_LINE_SIZE + 1];
  field[0] = 0;
  if (!line || index < 0) return field;
  const char *p = line;
  for (int32_t i = 0; i < index; i++) {
    p = std::strchr(p, ',');
    if (!p) return field;
    p++;
  }
  size_t length = std::strcspn(p, ",");
  // A piece longer than the buffer is cut; no sender makes one.
  if (length > (size_t)NP_LINE_SIZE) length = NP_LINE_SIZE;
  std::memcpy(field, p, length);
  field[length] = 0;
  return field;
}

std::string NP_EscapeText(const char *text) {
  std::string result = text ? text : "";
  for (char &c : result)
    if (c == ',') c = 0x0D;
  return result;
}

// ---- Encoding ---------------------------------------------------------------

// The bytes of a field on the wire; a text has its bytes behind these two,
// which hold its length.
static size_t FieldSize(uint8_t code) {
  switch (code) {
    case FIELD_CHAR: return 1;
    case FIELD_SHORT:
    case FIELD_TEXT: return 2;
    default: return 4;
  }
}

static void PutLE(uint8_t *p, uint32_t value, size_t bytes) {
  for (size_t i = 0; i < bytes; i++) p[i] = (uint8_t)(value >> (8 * i));
}

static uint32_t GetLE(const uint8_t *p, size_t bytes) {
  uint32_t value = 0;
  for (size_t i = 0; i < bytes; i++) value |= (uint32_t)p[i] << (8 * i);
  return value;
}

int NP_EncodePacket(uint8_t type, const char *line, uint8_t *buffer, int size) {
  // Room for the type byte and the closing zero, and then for every field.
  if (size < 2) return 0;
  size_t at = 0;
  buffer[at++] = type;
  for (int i = 0; i < NP_FieldCount(type); i++) {
    uint8_t code = PacketTable[type].FieldTypes[i];
    const char *piece = NP_GetField(line, i);
    // A text over the limit of one text field is cut to its first 255
    // bytes, so that a long name from the settings still goes out.
    size_t length = code == FIELD_TEXT ? std::min(std::strlen(piece), (size_t)NP_MAX_TEXT_LENGTH) : 0;
    if (at + FieldSize(code) + length >= (size_t)size) return 0;
    float real = (float)std::atof(piece);
    uint32_t value = (uint32_t)std::atoi(piece);
    if (code == FIELD_FLOAT) std::memcpy(&value, &real, sizeof value);
    if (code == FIELD_TEXT) value = (uint32_t)length;
    PutLE(buffer + at, value, FieldSize(code));
    at += FieldSize(code);
    std::memcpy(buffer + at, piece, length);
    at += length;
  }
  buffer[at++] = 0;
  return (int)at;
}

// ---- Decoding ---------------------------------------------------------------

// Every read is checked against `length` first. A packet that is shorter than
// its row, or whose text is over 255 bytes or runs past the end, is dropped
// whole: the list is left empty and the answer is NP_PACKET_DROPPED, a type
// that no dispatcher handles, so it has no effect at all.
int32_t NP_ParsePacket(PacketFieldList &list, const uint8_t *data, size_t length) {
  list.clear();
  if (length < 1) return NP_PACKET_DROPPED;
  int32_t type = data[0];
  size_t at = 1;
  for (int i = 0; i < NP_FieldCount(type); i++) {
    uint8_t code = PacketTable[type].FieldTypes[i];
    size_t size = FieldSize(code);
    bool whole = length - at >= size;
    uint32_t value = whole ? GetLE(data + at, size) : 0;
    // A text's bytes must be there too, and no more than a text field holds.
    if (whole && code == FIELD_TEXT) whole = value <= NP_MAX_TEXT_LENGTH && length - at - size >= value;
    if (!whole) {
      list.clear();
      return NP_PACKET_DROPPED;
    }
    at += size;
    char text[NP_TEXT_FIELD_SIZE];
    float real;
    std::memcpy(&real, &value, sizeof real);
    if (code == FIELD_CHAR) std::snprintf(text, sizeof text, "%d", (int)(int8_t)value);
    if (code == FIELD_SHORT) std::snprintf(text, sizeof text, "%d", (int)(int16_t)value);
    if (code == FIELD_INT) std::snprintf(text, sizeof text, "%d", (int)value);
    if (code == FIELD_FLOAT) std::snprintf(text, sizeof text, "%f", (double)real);
    if (code == FIELD_TEXT) {
      // A zero byte among the n bytes ends the text; the position moves on by n.
      std::memcpy(text, data + at, value);
      text[value] = 0;
      std::replace(text, text + value, '\r', ',');
      at += value;
    }
    list.push_back(text);
  }
  return type;
}
