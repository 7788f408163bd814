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

void RVK_DrawText(FONT *font, int x, int y, int colour, const char *text) {
  if (font == nullptr || text == nullptr) return;
  glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  glEnable(GL_BLEND);
  glAlphaFunc(GL_GREATER, 0);
  glEnable(GL_ALPHA_TEST);
  glEnable(GL_TEXTURE_2D);
  // The text is drawn as it is: a percent sign in it is no format. AllegroGL
  // reads the text it has formatted as a format once more, so each percent
  // sign goes in doubled and comes out single.
  std::string literal;
  for (const char *c = text; *c; c++) {
    if (*c == '%') literal += '%';
    literal += *c;
  }
  allegro_gl_printf(font, x, y, 0, colour, "%s", literal.c_str());
  glDisable(GL_TEXTURE_2D);
  glDisable(GL_ALPHA_TEST);
  glDisable(GL_BLEND);
  glColor3f(1, 1, 1);
}

void RVK_Printf(int x, int y, int colour, const char *format, ...) {
  char text[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof(text), format, args);
  va_end(args);
  RVK_DrawText(RVK_FontStandard, x, y, colour, text);
}

void RVK_PrintfFont(FONT *font, int x, int y, int colour, const char *format, ...) {
  char text[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof(text), format, args);
  va_end(args);
  RVK_DrawText(font, x, y, colour, text);
}

static GLubyte AlphaByte(int alpha) {
  return (GLubyte)(alpha < 0 ? 0 : alpha > 255 ? 255 : alpha);
}

void RVK_DrawLine(int x1, int y1, int x2, int y2, int colour, int alpha) {
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  glColor4ub(getr(colour), getg(colour), getb(colour), AlphaByte(alpha));
  glBegin(GL_LINES);
  glVertex2i(x1, y1);
  glVertex2i(x2, y2);
  glEnd();
  glDisable(GL_BLEND);
  glColor3f(1, 1, 1);
}

void RVK_DrawRect(int x1, int y1, int x2, int y2, int colour, bool filled, int alpha) {
  bool blended = alpha < 255;
  if (blended) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  }
  glColor4ub(getr(colour), getg(colour), getb(colour), AlphaByte(alpha));
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
  if (blended) glDisable(GL_BLEND);
  glColor3f(1, 1, 1);
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
                   RVK_Palette.White, 255);
}

void RVK_DrawWindowFrame(int x1, int y1, int x2, int y2, int alpha, const char *titleFormat, ...) {
  char title[512];
  va_list args;
  va_start(args, titleFormat);
  std::vsnprintf(title, sizeof(title), titleFormat, args);
  va_end(args);
  int h = RVK_FontStandard != nullptr ? text_height(RVK_FontStandard) : 0;
  const PaletteClass &p = RVK_Palette;
  RVK_DrawBevelBox(x1, y1 + h + 4, x2, y2, p.BevelLight, p.BevelDark, p.PanelFace, alpha);
  RVK_DrawBevelBox(x1, y1, x2, y1 + h + 4, p.TitleLight, p.TitleDark, p.TitleFace, alpha);
  RVK_DrawText(RVK_FontStandard, x1 + 3, y1 + 3, p.White, title);
}
