// Writes the game's two Allegro datafiles: "Tumblekin.dat", whose first
// object is the game's font, and "RVK.dat", with the GUI library's standard
// font "_font_standard" and one 32x32 bitmap per icon. The output is the same
// byte for byte on every run.
//
// Usage: makedatafiles FONT.ttf OUTPUT_DIR [--preview SHEET.ppm]
// With --preview it also writes a contact sheet of the icons and a line of
// text, on the panel grey of the GUI, to look at.
#include <cstdio>
#include <cstring>
#include <string>
#include "datwriter.h"
#include "glyphs.h"
#include "icons.h"

// The standard font's size in pixels (an em); DejaVu Sans then has lines of
// 15 pixels, clear at 800x600 and small enough for the 600-pixel-high screen.
static const int FontPixelSize = 12;

static void Put(RgbPicture &sheet, int x, int y, uint8_t r, uint8_t g, uint8_t b) {
  if (x < 0 || y < 0 || x >= sheet.Width || y >= sheet.Height) return;
  uint8_t *p = &sheet.Rgb[((size_t)y * sheet.Width + x) * 3];
  p[0] = r, p[1] = g, p[2] = b;
}

static bool WritePreview(const std::string &path, const std::vector<IconPicture> &icons, const GlyphRange &font) {
  const int scale = 3, gap = 8;
  const char *sample = "The quick brown fox jumps over the lazy dog. 0123456789 !?%&()[]{}<>@#$";
  int textScale = 2;
  int lineHeight = font.Glyphs.empty() ? 0 : font.Glyphs[0].Height;
  RgbPicture sheet;
  sheet.Width = gap + (int)icons.size() * (IconSize * scale + gap);
  sheet.Height = gap + IconSize * scale + gap + lineHeight * textScale + gap + lineHeight + gap;
  sheet.Rgb.assign((size_t)sheet.Width * sheet.Height * 3, 147);
  for (size_t i = 0; i < icons.size(); i++) {
    const RgbPicture &icon = icons[i].Picture;
    int ox = gap + (int)i * (IconSize * scale + gap);
    for (int y = 0; y < icon.Height * scale; y++) {
      for (int x = 0; x < icon.Width * scale; x++) {
        const uint8_t *c = &icon.Rgb[((size_t)(y / scale) * icon.Width + x / scale) * 3];
        if (c[0] == 255 && c[1] == 0 && c[2] == 255) continue;
        Put(sheet, ox + x, gap + y, c[0], c[1], c[2]);
      }
    }
  }
  // The sample line twice: enlarged, and at the size the game shows it.
  int baseY[2] = {gap + IconSize * scale + gap, gap + IconSize * scale + gap + lineHeight * textScale + gap};
  int scales[2] = {textScale, 1};
  for (int row = 0; row < 2; row++) {
    int x = gap;
    for (const char *s = sample; *s; s++) {
      size_t index = (size_t)(unsigned char)*s - font.First;
      if (index >= font.Glyphs.size()) continue;
      const Glyph &g = font.Glyphs[index];
      for (int y = 0; y < g.Height * scales[row]; y++)
        for (int gx = 0; gx < g.Width * scales[row]; gx++)
          if (g.Ink[(size_t)(y / scales[row]) * g.Width + gx / scales[row]]) Put(sheet, x + gx, baseY[row] + y, 0, 0, 0);
      x += g.Width * scales[row];
    }
  }
  std::string header = "P6\n" + std::to_string(sheet.Width) + " " + std::to_string(sheet.Height) + "\n255\n";
  Bytes bytes(header.begin(), header.end());
  bytes.insert(bytes.end(), sheet.Rgb.begin(), sheet.Rgb.end());
  return WriteFile(path, bytes);
}

int main(int argc, char **argv) {
  if (argc != 3 && !(argc == 5 && std::strcmp(argv[3], "--preview") == 0)) {
    std::fprintf(stderr, "usage: %s FONT.ttf OUTPUT_DIR [--preview SHEET.ppm]\n", argv[0]);
    return 2;
  }
  std::string fontFile = argv[1];
  std::string outDir = argv[2];

  GlyphRange font;
  std::string error;
  if (!RasteriseFont(fontFile, FontPixelSize, 32, 126, font, error)) {
    std::fprintf(stderr, "makedatafiles: %s\n", error.c_str());
    return 1;
  }
  Bytes fontPayload = EncodeFont(font);
  std::vector<IconPicture> icons = DrawIcons();

  std::vector<DatObject> game = {{DAT_ID_FONT, "", fontPayload}};
  std::vector<DatObject> library = {{DAT_ID_FONT, "_font_standard", fontPayload}};
  for (const IconPicture &icon : icons) library.push_back({DAT_ID_BITMAP, icon.Name, EncodeBitmap(icon.Picture)});

  const std::string gamePath = outDir + "/Tumblekin.dat";
  const std::string libraryPath = outDir + "/RVK.dat";
  if (!WriteFile(gamePath, EncodeDatafile(game)) || !WriteFile(libraryPath, EncodeDatafile(library))) {
    std::fprintf(stderr, "makedatafiles: cannot write the datafiles into %s\n", outDir.c_str());
    return 1;
  }
  if (argc == 5 && !WritePreview(argv[4], icons, font)) {
    std::fprintf(stderr, "makedatafiles: cannot write %s\n", argv[4]);
    return 1;
  }
  return 0;
}
