// The structure check of Allegro datafiles, made before Allegro's loader is
// given a file, and the loading behind it.
#include "rvk/datafile.h"
#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>
#include "rvk/core.h"

namespace {

// Four characters as the big-endian number a datafile stores for them.
constexpr uint32_t Id(const char (&name)[5]) {
  return (uint32_t)(uint8_t)name[0] << 24 | (uint32_t)(uint8_t)name[1] << 16 | (uint32_t)(uint8_t)name[2] << 8 |
         (uint8_t)name[3];
}

const uint32_t PlainMagic = Id("slh.");
const uint32_t PackedMagic = Id("slh!");
const uint32_t DatafileMagic = Id("ALL.");
const uint32_t PropertyId = Id("prop");
// DAT_END stands for no type: as an object's type Allegro calls a loader
// that isn't there.
const uint32_t NoType = 0xFFFFFFFF;
// Types that Allegro reads with a reader of its own, which nothing here
// vouches for; a nested datafile among them, whose objects the library
// wouldn't look at anyway. Every other type but fonts and pictures is kept
// as plain bytes.
const uint32_t UncheckedTypes[] = {Id("FILE"), Id("SAMP"), Id("MIDI"), Id("PAT "), Id("FLIC"),
                                   Id("PAL "), Id("RLE "), Id("CMP "), Id("XCMP")};
const uint32_t FontType = Id("FONT");
const uint32_t BitmapType = Id("BMP ");

// A reading position in the bytes that knows how many are left.
class Cursor {
public:
  const unsigned char *At;
  const unsigned char *End;

  size_t Left() const { return (size_t)(End - At); }

  // A big-endian number of `bytes` bytes; false, and nothing read but a
  // value of 0, when fewer are left.
  bool Read(uint32_t &value, size_t bytes) {
    value = 0;
    if (Left() < bytes) return false;
    for (; bytes > 0; bytes--) value = value << 8 | *At++;
    return true;
  }

  bool Skip(uint64_t bytes) {
    if (Left() < bytes) return false;
    At += bytes;
    return true;
  }
};

// Bytes a stored pixel takes at a bitmap's depth; 0 for no depth Allegro
// writes. 32 bits are stored without their alpha, -32 with it.
size_t StoredPixelBytes(int bits) {
  switch (bits) {
    case 8: return 1;
    case 15:
    case 16: return 2;
    case 24:
    case 32: return 3;
    case -32: return 4;
    default: return 0;
  }
}

// A font as the grabber writes it: ranges of glyphs, each glyph's size and
// pixels inside the object. Monochrome and 8-bit colour ranges are what
// Allegro reads, and not both in one font.
std::string FontProblem(Cursor c) {
  uint32_t format, ranges;
  c.Read(format, 2);
  c.Read(ranges, 2);
  if (format != 0) return "is a font in an old format";
  if (ranges == 0) return "is a font without characters";
  std::optional<bool> monochrome;
  for (uint32_t r = 0; r < ranges; r++) {
    uint32_t flag, first, last;
    if (!c.Read(flag, 1) || !c.Read(first, 4) || !c.Read(last, 4)) return "is a font cut short";
    bool mono = flag == 1 || flag == 255;
    if (!mono && flag != 0) return "is a font in a colour depth other than 8 bits";
    if (monochrome && *monochrome != mono) return "is a font that mixes monochrome and colour";
    monochrome = mono;
    if (last < first) return "is a font with a range that ends before it starts";
    // Each glyph takes at least its size, so a range longer than the object
    // ends the loop at the object's end.
    for (uint64_t g = first; g <= last; g++) {
      uint32_t w, h;
      if (!c.Read(w, 2) || !c.Read(h, 2)) return "is a font cut short";
      if (!c.Skip(mono ? (uint64_t)(w + 7) / 8 * h : (uint64_t)w * h)) return "is a font cut short";
    }
  }
  return "";
}

std::string BitmapProblem(Cursor c) {
  uint32_t bits, w, h;
  if (!c.Read(bits, 2) || !c.Read(w, 2) || !c.Read(h, 2)) return "is a picture cut short";
  size_t pixel = StoredPixelBytes((int16_t)bits);
  if (pixel == 0) return "is a picture of an unknown colour depth";
  if (w == 0 || h == 0) return "is a picture without pixels";
  if (!c.Skip((uint64_t)w * h * pixel)) return "is a picture cut short";
  return "";
}

// One object, its properties before it. Moves the cursor past it.
std::string ObjectProblem(Cursor &c) {
  uint32_t type;
  for (;;) {
    if (!c.Read(type, 4)) return "is missing: the file ends before it";
    if (type != PropertyId) break;
    uint32_t id, length;
    if (!c.Read(id, 4) || !c.Read(length, 4) || !c.Skip(length)) return "has a property cut short";
    // Allegro ends an object's property list at this id, and loses the rest.
    if (id == NoType) return "has a property without a type";
  }
  if (type == NoType) return "has no type";
  for (uint32_t unchecked : UncheckedTypes)
    if (type == unchecked) return "is of a type that is not read here";
  uint32_t stored, size;
  if (!c.Read(stored, 4) || !c.Read(size, 4)) return "is cut short";
  if ((int32_t)size < 0) return "is compressed; save the file uncompressed";
  if (stored != size) return "gives two different sizes";
  if (c.Left() < size) return "is cut short";
  Cursor payload{c.At, c.At + size};
  c.At += size;
  if (type == FontType) return FontProblem(payload);
  if (type == BitmapType) return BitmapProblem(payload);
  return "";
}

bool ReadFile(const char *path, std::vector<unsigned char> &bytes) {
  FILE *file = std::fopen(path, "rb");
  if (file == nullptr) return false;
  unsigned char block[4096];
  size_t got;
  while ((got = std::fread(block, 1, sizeof(block), file)) != 0) bytes.insert(bytes.end(), block, block + got);
  std::fclose(file);
  return true;
}

}  // namespace

std::string RVK_DatafileProblem(const unsigned char *data, size_t size) {
  Cursor c{data, data + size};
  uint32_t magic, kind, count;
  c.Read(magic, 4);
  if (magic == PackedMagic) return "the file is packed; save it uncompressed";
  if (!c.Read(kind, 4) || magic != PlainMagic || kind != DatafileMagic) return "the file is no Allegro datafile";
  if (!c.Read(count, 4)) return "the file ends before its object count";
  // Objects past the count are never read: only the counted ones matter.
  for (uint32_t i = 0; i < count; i++) {
    std::string problem = ObjectProblem(c);
    if (!problem.empty()) return "object " + std::to_string(i) + " " + problem;
  }
  return "";
}

bool RVK_DatafileIsSound(const char *path) {
  std::vector<unsigned char> bytes;
  // A file that isn't there is Allegro's to fail on, with nothing to report.
  if (!ReadFile(path, bytes)) return false;
  std::string problem = RVK_DatafileProblem(bytes.data(), bytes.size());
  if (problem.empty()) return true;
  RVK_LogError("The datafile \"%s\" can't be read: %s.", path, problem.c_str());
  return false;
}

DATAFILE *RVK_LoadDatafile(const char *path) {
  return RVK_DatafileIsSound(path) ? load_datafile(path) : nullptr;
}
