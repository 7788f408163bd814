// The packet table and the wire format: rows from parameter descriptions, the
// encoder of one argument line and the decoder of one received packet.
#include "net/packets.h"
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
  if (type < 0 || type >= PACKET_TYPE_COUNT) return;
  PacketTableRow &row = PacketTable[type];
  std::memset(row.FieldTypes, 0, sizeof(row.FieldTypes));
  row.Name = name ? name : "";
  if (!description) return;
  int count = 0;
  const char *p = description;
  bool fieldStart = true;
  // The last byte of FieldTypes stays the terminating zero: 31 fields at most.
  while (*p && count < PACKET_FIELD_TYPES_SIZE - 1) {
    if (fieldStart) {
      uint8_t code = FieldCodeForLetter(*p);
      if (code) row.FieldTypes[count++] = code;
      fieldStart = false;
    }
    if (*p == ',') {
      fieldStart = true;
      if (p[1] == ' ') p++;
    }
    p++;
  }
}

int NP_FieldCount(int type) {
  if (type < 0 || type >= PACKET_TYPE_COUNT) return 0;
  int count = 0;
  while (count < PACKET_FIELD_TYPES_SIZE && PacketTable[type].FieldTypes[count]) count++;
  return count;
}

void NP_InitPacketTable() {
  for (int type = 0; type < PACKET_TYPE_COUNT; type++) NP_RegisterPacket(type, "", "");
  NP_RegisterPacket(0, "Report Quit", "");
  NP_RegisterPacket(1, "Report Player Name", "text PlayerName");
  NP_RegisterPacket(2, "Report Character", "short int ChracterNumber");
  NP_RegisterPacket(3, "Report Eyes", "short int EyesNumber");
  NP_RegisterPacket(4, "Report Ears", "short int EarsNumber");
  NP_RegisterPacket(5, "Report Nose", "short int NoseNumber");
  NP_RegisterPacket(6, "Report Mouth", "short int MouthNumber");
  NP_RegisterPacket(7, "Report Eyebrows", "short int EyebrowsNumber");
  NP_RegisterPacket(8, "Report Moustache", "short int MoustacheNumber");
  NP_RegisterPacket(9, "Report Feet", "short int FeetNumber");
  NP_RegisterPacket(10, "Report Hat", "short int HatNumber");
  NP_RegisterPacket(18, "Update Joined", "short int PlayerId, short int PlayerCount");
  NP_RegisterPacket(19, "Update Player ID", "short int PlayerId, short int NewPlayerId");
  NP_RegisterPacket(20, "Update Quit", "short int PlayerId");
  NP_RegisterPacket(21, "Update Player Name", "short int PlayerId, text PlayerName");
  NP_RegisterPacket(22, "Update Character", "short int PlayerId, short int CharacterNumber");
  NP_RegisterPacket(23, "Update Eyes", "short int PlayerId, short int EyesNumber");
  NP_RegisterPacket(24, "Update Ears", "short int PlayerId, short int EarsNumber");
  NP_RegisterPacket(25, "Update Nose", "short int PlayerId, short int NoseNumber");
  NP_RegisterPacket(26, "Update Mouth", "short int PlayerId, short int MouthNumber");
  NP_RegisterPacket(27, "Update Eyebrows", "short int PlayerId, short int EyebrowsNumber");
  NP_RegisterPacket(28, "Update Moustache", "short int PlayerId, short int MoustacheNumber");
  NP_RegisterPacket(29, "Update Feet", "short int PlayerId, short int FeetNumber");
  NP_RegisterPacket(30, "Update Hat", "short int PlayerId, short int HatNumber");
  NP_RegisterPacket(31, "Update Eyes Ori X", "short int PlayerId, float x");
  NP_RegisterPacket(32, "Update Eyes Ori Y", "short int PlayerId, float y");
  NP_RegisterPacket(33, "Update Eyebrows Y", "short int PlayerId, float y");
  NP_RegisterPacket(40, "Set Player Number", "short int NewPlayerNumber, short int PlayerCount");
  NP_RegisterPacket(50, "Ping", "");
  NP_RegisterPacket(51, "Pong", "");
  NP_RegisterPacket(52, "Console Message", "short int PlayerId, int TextColour, text message");
  NP_RegisterPacket(53, "Version Info", "text info");
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

static void PutLE(uint8_t *p, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; i++) p[i] = (uint8_t)(value >> (8 * i));
}

static uint32_t GetLE(const uint8_t *p, int bytes) {
  uint32_t value = 0;
  for (int i = 0; i < bytes; i++) value |= (uint32_t)p[i] << (8 * i);
  return value;
}

int NP_EncodePacket(uint8_t type, const char *line, uint8_t *buffer, int size) {
  if (!buffer || size < 2) return 0;
  int at = 0;
  buffer[at++] = type;
  if (type < PACKET_TYPE_COUNT) {
    const uint8_t *codes = PacketTable[type].FieldTypes;
    for (int i = 0; i < PACKET_FIELD_TYPES_SIZE && codes[i]; i++) {
      const char *piece = NP_GetField(line, i);
      int room = size - 1 - at;  // one byte stays for the closing zero
      switch (codes[i]) {
        case FIELD_CHAR:
          if (room < 1) return 0;
          buffer[at] = (uint8_t)std::atoi(piece);
          at += 1;
          break;
        case FIELD_SHORT:
          if (room < 2) return 0;
          PutLE(buffer + at, (uint32_t)std::atoi(piece), 2);
          at += 2;
          break;
        case FIELD_INT:
          if (room < 4) return 0;
          PutLE(buffer + at, (uint32_t)std::atoi(piece), 4);
          at += 4;
          break;
        case FIELD_FLOAT: {
          if (room < 4) return 0;
          float value = (float)std::atof(piece);
          uint32_t bits;
          std::memcpy(&bits, &value, 4);
          PutLE(buffer + at, bits, 4);
          at += 4;
          break;
        }
        case FIELD_TEXT: {
          // A text over the limit of one text field is cut to its first 255
          // bytes, so that a long name from the settings still goes out.
          size_t length = std::strlen(piece);
          if (length > (size_t)NP_MAX_TEXT_LENGTH) length = NP_MAX_TEXT_LENGTH;
          if (room < 2 + (int)length) return 0;
          PutLE(buffer + at, (uint32_t)length, 2);
          std::memcpy(buffer + at + 2, piece, length);
          at += 2 + (int)length;
          break;
        }
        default:
          return 0;
      }
    }
  }
  buffer[at++] = 0;
  return at;
}

// ---- Decoding ---------------------------------------------------------------

// Every read is checked against `length` first. A packet that is shorter than
// its row, or whose text is over 255 bytes or runs past the end, is dropped
// whole: the list is left empty and the answer is NP_PACKET_DROPPED, a type
// that no dispatcher handles, so it has no effect at all.
int32_t NP_ParsePacket(PacketFieldList &list, const uint8_t *data, size_t length) {
  list.clear();
  if (!data || length < 1) return NP_PACKET_DROPPED;
  int32_t type = data[0];
  int count = NP_FieldCount(type);
  if (count == 0) return type;
  list.resize((size_t)count);
  size_t at = 1;
  char text[NP_TEXT_FIELD_SIZE];
  char number[64];
  const uint8_t *codes = PacketTable[type].FieldTypes;
  for (int i = 0; i < count; i++) {
    switch (codes[i]) {
      case FIELD_CHAR:
        if (length - at < 1) goto drop;
        std::snprintf(number, sizeof(number), "%d", (int)(int8_t)data[at]);
        at += 1;
        list[i] = number;
        break;
      case FIELD_SHORT:
        if (length - at < 2) goto drop;
        std::snprintf(number, sizeof(number), "%d", (int)(int16_t)GetLE(data + at, 2));
        at += 2;
        list[i] = number;
        break;
      case FIELD_INT:
        if (length - at < 4) goto drop;
        std::snprintf(number, sizeof(number), "%d", (int)(int32_t)GetLE(data + at, 4));
        at += 4;
        list[i] = number;
        break;
      case FIELD_FLOAT: {
        if (length - at < 4) goto drop;
        uint32_t bits = GetLE(data + at, 4);
        float value;
        std::memcpy(&value, &bits, 4);
        std::snprintf(number, sizeof(number), "%f", (double)value);
        at += 4;
        list[i] = number;
        break;
      }
      case FIELD_TEXT: {
        if (length - at < 2) goto drop;
        size_t n = GetLE(data + at, 2);
        at += 2;
        if (n > (size_t)NP_MAX_TEXT_LENGTH || length - at < n) goto drop;
        std::memcpy(text, data + at, n);
        text[n] = 0;
        for (size_t k = 0; k < n && text[k]; k++)
          if (text[k] == 0x0D) text[k] = ',';
        // A zero byte among the n bytes ends the text; the position moves on by n.
        at += n;
        list[i] = text;
        break;
      }
      default:
        goto drop;
    }
  }
  return type;
drop:
  list.clear();
  return NP_PACKET_DROPPED;
}
