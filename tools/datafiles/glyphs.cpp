// Rasterises a TrueType font with FreeType into monochrome glyphs. Glyphs are
// rendered in grey and cut at half coverage: at these sizes that keeps the
// strokes even where hinted monochrome rendering drops or doubles pixels.
#include "glyphs.h"
#include <ft2build.h>
#include FT_FREETYPE_H

// Ink from a grey coverage of at least this much (of 255).
static const int InkThreshold = 112;

bool RasteriseFont(const std::string &fontFile, int pixelSize, uint32_t first, uint32_t last, GlyphRange &range,
                   std::string &error) {
  FT_Library library;
  if (FT_Init_FreeType(&library) != 0) {
    error = "FreeType could not start";
    return false;
  }
  FT_Face face;
  if (FT_New_Face(library, fontFile.c_str(), 0, &face) != 0) {
    error = "cannot read the font " + fontFile;
    FT_Done_FreeType(library);
    return false;
  }
  FT_Set_Pixel_Sizes(face, 0, (FT_UInt)pixelSize);
  int ascender = (int)((face->size->metrics.ascender + 63) >> 6);
  int descender = (int)((-face->size->metrics.descender + 63) >> 6);
  int height = ascender + descender;

  range.First = first;
  range.Glyphs.clear();
  bool ok = true;
  for (uint32_t c = first; c <= last; c++) {
    if (FT_Load_Char(face, c, FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT) != 0) {
      error = "the font has no glyph for character " + std::to_string(c);
      ok = false;
      break;
    }
    FT_GlyphSlot slot = face->glyph;
    Glyph g;
    g.Width = (int)((slot->advance.x + 32) >> 6);
    if (g.Width < 1) g.Width = 1;
    g.Height = height;
    g.Ink.assign((size_t)g.Width * g.Height, 0);
    const FT_Bitmap &bm = slot->bitmap;
    if (bm.rows > 0 && bm.pixel_mode != FT_PIXEL_MODE_GRAY) {
      error = "FreeType rendered character " + std::to_string(c) + " in an unexpected pixel mode";
      ok = false;
      break;
    }
    // Ink left of the cell (a negative bearing) is moved in rather than lost.
    int left = slot->bitmap_left < 0 ? 0 : slot->bitmap_left;
    for (int by = 0; by < (int)bm.rows; by++) {
      int y = ascender - slot->bitmap_top + by;
      if (y < 0 || y >= g.Height) continue;
      for (int bx = 0; bx < (int)bm.width; bx++) {
        int x = left + bx;
        if (x >= g.Width) continue;
        if (bm.buffer[by * bm.pitch + bx] >= InkThreshold) g.Ink[(size_t)y * g.Width + x] = 1;
      }
    }
    range.Glyphs.push_back(g);
  }
  FT_Done_Face(face);
  FT_Done_FreeType(library);
  return ok;
}
