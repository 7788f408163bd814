// Rasterises a TrueType font into the monochrome glyphs of a datafile font.
#pragma once
#include <string>
#include "datwriter.h"

// Renders characters first..last of the font file at the given pixel size.
// Every glyph is as high as the font's line and as wide as its advance, with
// the baseline in the same row for all. False with a reason on failure.
bool RasteriseFont(const std::string &fontFile, int pixelSize, uint32_t first, uint32_t last, GlyphRange &range,
                   std::string &error);
