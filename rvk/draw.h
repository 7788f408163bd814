// Text and shape drawing in 2D mode. Every call leaves the GL colour white and
// blending, alpha test and texturing off.
#pragma once
#include <allegro.h>
#include "rvk/core.h"

// The measures of a text; 0 while there is no font, before start-up.
int RVK_TextHeight(FONT *font = RVK_FontStandard);
int RVK_TextLength(const char *text, FONT *font = RVK_FontStandard);

// Blending with the usual function in the given colour and alpha, and its
// end, which leaves the colour white.
void RVK_BeginBlend(int colour, int alpha);
void RVK_EndBlend();

void RVK_DrawText(FONT *font, int x, int y, int colour, const char *text);
void RVK_Printf(int x, int y, int colour, const char *format, ...) __attribute__((format(printf, 4, 5)));
void RVK_PrintfFont(FONT *font, int x, int y, int colour, const char *format, ...) __attribute__((format(printf, 5, 6)));

void RVK_DrawLine(int x1, int y1, int x2, int y2, int colour, int alpha);
void RVK_DrawRect(int x1, int y1, int x2, int y2, int colour, bool filled, int alpha);
void RVK_DrawRectWH(int x, int y, int w, int h, int colour, bool filled, int alpha);
void RVK_DrawBevelBox(int x1, int y1, int x2, int y2, int upperLeft, int lowerRight, int fill, int alpha);
void RVK_DrawFieldBox(int x, int y, int w, int h);
void RVK_DrawWindowFrame(int x1, int y1, int x2, int y2, int alpha, const char *titleFormat, ...) __attribute__((format(printf, 6, 7)));
