// Checks of TGA pictures, WAV sounds and configuration text before Allegro
// reads them, and the loaders that every such file goes through.
#include "rvk/filecheck.h"
#include <cstdio>
#include <algorithm>
#include <cstring>
#include <strings.h>
#include <vector>
#include "rvk/core.h"

namespace {

// A file bigger than this is not read at all. It holds the largest picture
// allowed below at 32 bits with room to spare, minutes of sound, and any
// configuration file.
const size_t MEDIA_MAX_BYTES = 80u << 20;

// Largest picture side: more than any screen the menu background fills or any
// skin a model wears, and small enough that no header can make one bitmap
// cost more than 64 MB.
const uint32_t PICTURE_MAX_SIDE = 4096;

const size_t TGA_HEADER_SIZE = 18;
const int TGA_MAPPED = 1, TGA_TRUECOLOUR = 2, TGA_GREY = 3, TGA_RLE = 8;
const uint8_t TGA_PACKET_RUN = 0x80, TGA_PACKET_COUNT = 0x7F;
// Allegro reads colour-mapped pictures only into a whole palette: a shorter
// map leaves entries it reads unset, and 15-bit entries go wrong.
const uint32_t TGA_MAP_LENGTH = 256;

const size_t CONFIG_MAX_LINE = 200;

const uint16_t WAV_PCM = 1;
const uint32_t WAV_FORMAT_SIZE = 16;
const uint32_t WAV_MAX_RATE = 192000;

uint32_t Le16(const uint8_t *p) { return p[0] | (p[1] << 8); }
uint32_t Le32(const uint8_t *p) { return Le16(p) | (Le16(p + 2) << 16); }

std::string Reason(const char *format, int a, int b) {
  char text[128];
  snprintf(text, sizeof text, format, a, b);
  return text;
}

// The kinds of TGA that Allegro's loader reads correctly.
std::string CheckTgaKind(const uint8_t *h) {
  int type = h[2] & ~TGA_RLE, bits = h[16];
  bool ok = false;
  if (type == TGA_MAPPED) {
    int entryBits = h[7];
    ok = h[1] == 1 && bits == 8 && Le16(h + 3) == 0 && Le16(h + 5) == TGA_MAP_LENGTH &&
         (entryBits == 16 || entryBits == 24 || entryBits == 32);
  } else if (type == TGA_TRUECOLOUR) {
    ok = h[1] == 0 && (bits == 15 || bits == 16 || bits == 24 || bits == 32);
  } else if (type == TGA_GREY) {
    ok = h[1] == 0 && bits == 8;
  }
  if (!ok) return Reason("a kind of TGA that is not read (type %d, %d bits)", h[2], bits);
  return "";
}

// Allegro decodes run-length data row by row and writes a packet that runs
// past the end of a row beyond the bitmap, so no packet may cross a row.
std::string CheckTgaPackets(const uint8_t *data, size_t size, size_t pos, uint32_t w, uint32_t h,
                            size_t pixelBytes) {
  for (uint32_t y = 0; y < h; y++) {
    for (uint32_t left = w; left > 0;) {
      if (pos >= size) return "cut short";
      uint8_t packet = data[pos++];
      uint32_t n = (packet & TGA_PACKET_COUNT) + 1u;
      if (n > left) return Reason("a run-length packet crosses the end of row %d", (int)y, 0);
      size_t bytes = packet & TGA_PACKET_RUN ? pixelBytes : n * pixelBytes;
      if (bytes > size - pos) return "cut short";
      pos += bytes;
      left -= n;
    }
  }
  return "";
}

// Bytes in the UTF-8 sequence that this byte starts; 0 when it starts none.
size_t Utf8Length(uint8_t lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF8 ? 4 : 0;
}

// Whether a sequence of that length has its continuation bytes and is the
// shortest form of a code point that is no surrogate.
bool Utf8Complete(const uint8_t *p, size_t length) {
  static const uint32_t SMALLEST[5] = {0, 0, 0x80, 0x800, 0x10000};
  uint32_t code = length == 1 ? p[0] : p[0] & (0x7F >> length);
  for (size_t k = 1; k < length; k++) {
    if ((p[k] & 0xC0) != 0x80) return false;
    code = (code << 6) | (p[k] & 0x3F);
  }
  return code >= SMALLEST[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

// A line whose first character past blanks is "[" must be "[name]", the name
// without blanks, brackets or equals signs, then only blanks or a comment.
bool SectionLineReadsBack(const std::string &line) {
  size_t open = line.find_first_not_of(" \t");
  if (open == std::string::npos || line[open] != '[') return true;
  size_t close = line.find_first_of(" \t[]=\r\n", open + 1);
  if (close == std::string::npos || line[close] != ']') return false;
  size_t rest = line.find_first_not_of(" \t\r\n", close + 1);
  return rest == std::string::npos || line[rest] == '#';
}

// Allegro reads a setting's name up to the first blank or equals sign and its
// value from the first character past them, and writes the setting back as
// "name = value" without the value's trailing blanks; comments and lines
// that start with an equals sign stay as they were. The longer of a line's
// length as read and as written, so that a file accepted now is still
// accepted after the program has written it.
size_t WrittenLength(const std::string &line) {
  const char *blanks = " \t\r\n", *separators = " \t\r\n=";
  size_t first = line.find_first_not_of(blanks);
  if (first == std::string::npos || line[first] == '#' || line[first] == '[' || line[first] == '=') return line.size();
  size_t nameEnd = std::min(line.find_first_of(separators, first), line.size());
  size_t value = line.find_first_not_of(separators, nameEnd);
  size_t valueLength = value == std::string::npos ? 0 : line.find_last_not_of(blanks) + 1 - value;
  return std::max(line.size(), nameEnd - first + strlen(" = ") + valueLength);
}

std::string ReadWhole(const char *path, std::vector<uint8_t> &bytes) {
  FILE *file = fopen(path, "rb");
  if (!file) return "can't be opened";
  uint8_t block[65536];
  size_t got = 0;
  while (bytes.size() <= MEDIA_MAX_BYTES && (got = fread(block, 1, sizeof block, file)) > 0)
    bytes.insert(bytes.end(), block, block + got);
  bool failed = ferror(file);
  fclose(file);
  if (failed) return "can't be read";
  if (bytes.size() > MEDIA_MAX_BYTES) return "too big";
  return "";
}

bool HasExtension(const char *path, const char *extension) {
  size_t length = strlen(path), tail = strlen(extension);
  return length >= tail && strcasecmp(path + length - tail, extension) == 0;
}

}  // namespace

std::string RVK_CheckTga(const uint8_t *data, size_t size) {
  if (size < TGA_HEADER_SIZE) return "cut short";
  std::string kind = CheckTgaKind(data);
  if (!kind.empty()) return kind;
  uint32_t w = Le16(data + 12), h = Le16(data + 14);
  if (w == 0 || h == 0) return "has no pixels";
  if (w > PICTURE_MAX_SIDE || h > PICTURE_MAX_SIDE)
    return Reason("larger than %d pixels on a side", PICTURE_MAX_SIDE, 0);
  size_t pos = TGA_HEADER_SIZE + data[0];
  if ((data[2] & ~TGA_RLE) == TGA_MAPPED) pos += TGA_MAP_LENGTH * ((data[7] + 7) / 8);
  if (pos > size) return "cut short";
  size_t pixelBytes = (data[16] + 7) / 8;
  if (data[2] & TGA_RLE) return CheckTgaPackets(data, size, pos, w, h, pixelBytes);
  if ((size_t)w * h * pixelBytes > size - pos) return "cut short";
  return "";
}

// Allegro's reader walks chunks until the file ends, takes each "data" chunk
// it meets, and knows no padding; so the whole file is walked here, one
// format and one data chunk are allowed, only the last chunk may have an odd
// length (with its pad byte), and nothing else may follow it.
std::string RVK_CheckWav(const uint8_t *data, size_t size) {
  if (size < 12 || memcmp(data, "RIFF", 4) != 0 || memcmp(data + 8, "WAVE", 4) != 0) return "not a WAV sound";
  int formats = 0, sounds = 0;
  size_t pos = 12, pad = 0;
  while (size - pos > pad) {
    if (pad || size - pos < 8) return "cut short, or a chunk of odd length before the end";
    const uint8_t *chunk = data + pos;
    uint32_t length = Le32(chunk + 4);
    if (length > size - pos - 8) return "cut short";
    pos += 8 + (size_t)length;
    pad = length % 2;
    if (memcmp(chunk, "fmt ", 4) == 0) {
      if (formats++ > 0 || sounds > 0) return "more than one format, or one after the sound";
      if (length < WAV_FORMAT_SIZE) return "cut short";
      uint32_t channels = Le16(chunk + 10), rate = Le32(chunk + 12), bits = Le16(chunk + 22);
      if (Le16(chunk + 8) != WAV_PCM) return "not plain PCM sound";
      if (channels != 1 && channels != 2) return Reason("%d channels; only mono and stereo are played", channels, 0);
      if (bits != 8 && bits != 16) return Reason("%d-bit samples; only 8 and 16 bits are played", bits, 0);
      if (rate == 0 || rate > WAV_MAX_RATE) return "an unusable sample rate";
    } else if (memcmp(chunk, "data", 4) == 0) {
      if (formats == 0 || sounds++ > 0) return "more than one sound, or one before its format";
    }
  }
  return sounds == 1 ? "" : "no sound data";
}

// Strict UTF-8: no stray or missing continuation bytes, no overlong forms,
// surrogates or code points beyond U+10FFFF. Allegro also writes some lines
// back in a form that it then reads differently, so that the settings written
// are not the settings read: lines holding control characters other than
// tabs (a carriage return only before a line feed), and section lines other
// than a plain "[name]". Those are refused, and so are long lines, as read or
// as written back: Allegro's reader writes past a buffer on lines of about
// 250 bytes that hold characters beyond ASCII.
std::string RVK_CheckConfigText(const uint8_t *data, size_t size) {
  int line = 1;
  size_t lineStart = 0;
  for (size_t i = 0; i < size; i += Utf8Length(data[i])) {
    uint8_t c = data[i];
    size_t length = Utf8Length(c);
    if (length == 0 || length > size - i || !Utf8Complete(data + i, length))
      return Reason("not UTF-8 text (line %d)", line, 0);
    bool lineEnd = c == '\n' || (c == '\r' && i + 1 < size && data[i + 1] == '\n');
    if ((c < ' ' || c == 0x7F) && c != '\t' && !lineEnd) return Reason("a control character (line %d)", line, 0);
    if (c != '\n' && i + length < size) continue;
    std::string text((const char *)data + lineStart, (c == '\n' ? i : i + length) - lineStart);
    if (!SectionLineReadsBack(text)) return Reason("a section line other than a plain [name] (line %d)", line, 0);
    if (WrittenLength(text) > CONFIG_MAX_LINE)
      return Reason("a line longer than %d bytes as read or as written back (line %d)", (int)CONFIG_MAX_LINE, line);
    line++;
    lineStart = i + 1;
  }
  return "";
}

std::string RVK_CheckPictureFile(const char *path) {
  if (!HasExtension(path, ".tga")) return "not a TGA picture";
  std::vector<uint8_t> bytes;
  std::string why = ReadWhole(path, bytes);
  return why.empty() ? RVK_CheckTga(bytes.data(), bytes.size()) : why;
}

std::string RVK_CheckSoundFile(const char *path) {
  std::vector<uint8_t> bytes;
  std::string why = ReadWhole(path, bytes);
  return why.empty() ? RVK_CheckWav(bytes.data(), bytes.size()) : why;
}

std::string RVK_CheckConfigFile(const char *path) {
  if (!exists(path)) return "";
  std::vector<uint8_t> bytes;
  std::string why = ReadWhole(path, bytes);
  return why.empty() ? RVK_CheckConfigText(bytes.data(), bytes.size()) : why;
}

BITMAP *RVK_LoadBitmap(const char *path) {
  return RVK_CheckPictureFile(path).empty() ? load_bitmap(path, nullptr) : nullptr;
}

SAMPLE *RVK_LoadSample(const char *path) {
  return RVK_CheckSoundFile(path).empty() ? load_wav(path) : nullptr;
}

void RVK_SetConfigFile(const char *path) {
  std::string why = RVK_CheckConfigFile(path);
  if (why.empty()) {
    set_config_file(path);
    return;
  }
  RVK_LogError("%s is not read or written: %s", path, why.c_str());
  set_config_data("", 0);
}
