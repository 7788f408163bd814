// Text and shape drawing in 2D mode. Every call leaves the GL colour white
// and blending, alpha test and texturing off, so a texture drawn next shows
// its true colours.
#include "rvk/draw.h"
#include <alleggl.h>
#include <GL/gl.h>
#include <cstdarg>
#include <cstdio>
#include <string>
#include "rvk/core.h"

int RVK_TextHeight(FONT *font) {
  return font != nullptr ? text_height(font) : 0;
}

int RVK_TextLength(const char *text, FONT *font) {
  return font != nullptr ? text_length(font, text) : 0;
}

void RVK_BeginBlend(int colour, int alpha) {
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  glColor4ub(getr(colour), getg(colour), getb(colour), alpha);
}

void RVK_EndBlend() {
  glDisable(GL_BLEND);
  glColor3f(1.0f, 1.0f, 1.0f);
}

void RVK_DrawText(FONT *font, int x, int y, int colour, const char *text) {
  if (font == nullptr || text == nullptr) return;
  // Blended, the glyphs' empty texels leave what lies beneath; AllegroGL
  // gives the text its colour itself.
  RVK_BeginBlend(colour, RVK_Opaque);
  glEnable(GL_TEXTURE_2D);
  // The text is drawn as it is: a percent sign in it is no format. AllegroGL
  // reads the text it has formatted as a format once more, so each percent
  // sign goes in doubled and comes out single.
  std::string literal;
  for (const char *c = text; *c; c++) {
    if (*c == '%') literal += '%';
    literal += *c;
  }
  allegro_gl_printf(font, x, y, 0.0f, colour, "%s", literal.c_str());
  glDisable(GL_TEXTURE_2D);
  RVK_EndBlend();
}

void RVK_Printf(int x, int y, int colour, const char *format, ...) {
  char text[512];
  RVK_FORMAT(text, format);
  RVK_DrawText(RVK_FontStandard, x, y, colour, text);
}

void RVK_PrintfFont(FONT *font, int x, int y, int colour, const char *format, ...) {
  char text[512];
  RVK_FORMAT(text, format);
  RVK_DrawText(font, x, y, colour, text);
}

void RVK_DrawLine(int x1, int y1, int x2, int y2, int colour, int alpha) {
  RVK_BeginBlend(colour, alpha);
  glBegin(GL_LINES);
  glVertex2i(x1, y1);
  glVertex2i(x2, y2);
  glEnd();
  RVK_EndBlend();
}

void RVK_DrawRect(int x1, int y1, int x2, int y2, int colour, bool filled, int alpha) {
  // Blended at any alpha: an opaque colour blends to itself.
  RVK_BeginBlend(colour, alpha);
  if (filled) {
    // Both far edges are inside the rectangle.
    glBegin(GL_QUADS);
    glVertex2i(x1, y2 + 1);
    glVertex2i(x2 + 1, y2 + 1);
    glVertex2i(x2 + 1, y1);
    glVertex2i(x1, y1);
    glEnd();
  } else {
    // Lines leave out their last pixel: the verticals take the corners, so
    // no pixel is drawn twice.
    glBegin(GL_LINES);
    glVertex2i(x1 + 1, y1);
    glVertex2i(x2, y1);
    glVertex2i(x1 + 1, y2);
    glVertex2i(x2, y2);
    glVertex2i(x1, y1);
    glVertex2i(x1, y2 + 1);
    glVertex2i(x2, y1);
    glVertex2i(x2, y2 + 1);
    glEnd();
  }
  RVK_EndBlend();
}

void RVK_DrawRectWH(int x, int y, int w, int h, int colour, bool filled, int alpha) {
  RVK_DrawRect(x, y, x + w - 1, y + h - 1, colour, filled, alpha);
}

void RVK_DrawBevelBox(int x1, int y1, int x2, int y2, int upperLeft, int lowerRight, int fill, int alpha) {
  if (fill != RVK_Palette.NoFill) RVK_DrawRect(x1, y1, x2, y2, fill, true, alpha);
  RVK_DrawLine(x1, y1, x2, y1, upperLeft, alpha);
  RVK_DrawLine(x1, y1, x1, y2, upperLeft, alpha);
  RVK_DrawLine(x1, y2, x2, y2, lowerRight, alpha);
  RVK_DrawLine(x2, y1, x2, y2, lowerRight, alpha);
}

void RVK_DrawFieldBox(int x, int y, int w, int h) {
  RVK_DrawBevelBox(x + 1, y + 1, x + w - 1, y + h - 1, RVK_Palette.Black, RVK_Palette.FieldLowerRight,
                   RVK_Palette.White, RVK_Opaque);
}

void RVK_DrawWindowFrame(int x1, int y1, int x2, int y2, int alpha, const char *titleFormat, ...) {
  char title[512];
  RVK_FORMAT(title, titleFormat);
  int h = RVK_TextHeight();
  const PaletteClass &p = RVK_Palette;
  RVK_DrawBevelBox(x1, y1 + h + 4, x2, y2, p.BevelLight, p.BevelDark, p.PanelFace, alpha);
  RVK_DrawBevelBox(x1, y1, x2, y1 + h + 4, p.TitleLight, p.TitleDark, p.TitleFace, alpha);
  RVK_DrawText(RVK_FontStandard, x1 + 3, y1 + 3, p.White, title);
}
