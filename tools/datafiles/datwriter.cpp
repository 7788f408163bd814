// Encodes Allegro 4 datafiles. Every number is big-endian; nothing is
// compressed, so the files load by both load_datafile and
// load_datafile_object (which skips objects by their stored size).
#include "datwriter.h"
#include <cstdio>

static void PutU8(Bytes &out, uint32_t v) {
  out.push_back((uint8_t)v);
}

static void PutU16(Bytes &out, uint32_t v) {
  out.push_back((uint8_t)(v >> 8));
  out.push_back((uint8_t)v);
}

static void PutU32(Bytes &out, uint32_t v) {
  out.push_back((uint8_t)(v >> 24));
  out.push_back((uint8_t)(v >> 16));
  out.push_back((uint8_t)(v >> 8));
  out.push_back((uint8_t)v);
}

Bytes EncodeFont(const GlyphRange &range) {
  Bytes out;
  PutU16(out, 0);  // the proportional font format
  PutU16(out, 1);  // one range
  PutU8(out, 1);   // monochrome
  PutU32(out, range.First);
  // The last character is inclusive.
  PutU32(out, range.First + (uint32_t)range.Glyphs.size() - 1);
  for (const Glyph &g : range.Glyphs) {
    PutU16(out, (uint32_t)g.Width);
    PutU16(out, (uint32_t)g.Height);
    int rowBytes = (g.Width + 7) / 8;
    for (int y = 0; y < g.Height; y++) {
      for (int b = 0; b < rowBytes; b++) {
        uint8_t bits = 0;
        for (int i = 0; i < 8; i++) {
          int x = b * 8 + i;
          // The leftmost pixel is the highest bit.
          if (x < g.Width && g.Ink[(size_t)y * g.Width + x]) bits |= (uint8_t)(0x80 >> i);
        }
        out.push_back(bits);
      }
    }
  }
  return out;
}

Bytes EncodeBitmap(const RgbPicture &picture) {
  Bytes out;
  PutU16(out, 32);
  PutU16(out, (uint32_t)picture.Width);
  PutU16(out, (uint32_t)picture.Height);
  out.insert(out.end(), picture.Rgb.begin(), picture.Rgb.end());
  return out;
}

Bytes EncodeDatafile(const std::vector<DatObject> &objects) {
  Bytes out;
  PutU32(out, DatId('s', 'l', 'h', '.'));  // an unpacked file
  PutU32(out, DatId('A', 'L', 'L', '.'));
  PutU32(out, (uint32_t)objects.size());
  for (const DatObject &o : objects) {
    // Properties come before the object they describe.
    if (!o.Name.empty()) {
      PutU32(out, DatId('p', 'r', 'o', 'p'));
      PutU32(out, DatId('N', 'A', 'M', 'E'));
      PutU32(out, (uint32_t)o.Name.size());
      out.insert(out.end(), o.Name.begin(), o.Name.end());
    }
    PutU32(out, o.Type);
    PutU32(out, (uint32_t)o.Payload.size());  // as stored
    PutU32(out, (uint32_t)o.Payload.size());  // as loaded
    out.insert(out.end(), o.Payload.begin(), o.Payload.end());
  }
  return out;
}

bool WriteFile(const std::string &path, const Bytes &bytes) {
  FILE *f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) return false;
  bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  return std::fclose(f) == 0 && ok;
}
