// Encodes Allegro 4 datafiles: the file header, objects with a NAME property,
// FONT payloads of monochrome glyphs and 32-bit BITMAP payloads.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

typedef std::vector<uint8_t> Bytes;

// Four ASCII characters as the big-endian number a datafile stores.
constexpr uint32_t DatId(char a, char b, char c, char d) {
  return (uint32_t)(uint8_t)a << 24 | (uint32_t)(uint8_t)b << 16 | (uint32_t)(uint8_t)c << 8 | (uint8_t)d;
}
const uint32_t DAT_ID_FONT = DatId('F', 'O', 'N', 'T');
const uint32_t DAT_ID_BITMAP = DatId('B', 'M', 'P', ' ');

// One glyph: Width x Height pixels, row-major, 1 = ink.
struct Glyph {
  int Width = 0;
  int Height = 0;
  std::vector<uint8_t> Ink;
};

// A run of consecutive characters starting at First, one glyph each.
struct GlyphRange {
  uint32_t First = 32;
  std::vector<Glyph> Glyphs;
};

// A picture of Width x Height, 3 bytes R, G, B per pixel, top row first.
struct RgbPicture {
  int Width = 0;
  int Height = 0;
  std::vector<uint8_t> Rgb;
};

struct DatObject {
  uint32_t Type = 0;
  std::string Name;  // empty: no NAME property
  Bytes Payload;
};

Bytes EncodeFont(const GlyphRange &range);
// Stored with bits = 32, which a datafile keeps as 3 bytes per pixel.
Bytes EncodeBitmap(const RgbPicture &picture);
Bytes EncodeDatafile(const std::vector<DatObject> &objects);
bool WriteFile(const std::string &path, const Bytes &bytes);
