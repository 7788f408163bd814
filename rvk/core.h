// The RVK library core: start-up and shutdown, the frame calls, pointer,
// tooltips, palette, fonts, sound volume, error log and datafile access.
#pragma once
#include <allegro.h>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

// Formats the arguments that follow `format` in a printf-like function into
// the character array `buffer`, cut to its size.
#define RVK_FORMAT(buffer, format)                             \
  do {                                                         \
    va_list formatArgs;                                        \
    va_start(formatArgs, format);                              \
    std::vsnprintf(buffer, sizeof(buffer), format, formatArgs); \
    va_end(formatArgs);                                        \
  } while (0)

// The alpha of what covers what lies beneath.
const int RVK_Opaque = 255;

// Bits of the depth buffer the display is asked for.
const int RVK_DepthBits = 24;

// The three text sizes. All widgets measure with RVK_FontStandard.
extern FONT *RVK_FontStandard;
extern FONT *RVK_FontMedium;
extern FONT *RVK_FontSmall;

// Every colour the widgets use, made with makecol once the mode is set.
class PaletteClass {
public:
  int NoFill = 0;          // 255,0,255: a box given this as fill draws no fill
  int Black = 0;           // 0,0,0
  int White = 0;           // 255,255,255
  int MenuBlue = 0;        // 0,0,240
  int PlaceholderRed = 0;  // 230,0,0
  int Yellow = 0;          // 255,255,0
  int ViewerBackdrop = 0;  // 129,162,255
  int PanelFace = 0;       // 147,147,147
  int ButtonHover = 0;     // 55,55,255
  int BevelLight = 0;      // 211,211,211
  int BevelDark = 0;       // 107,107,107
  int TitleFace = 0;       // 3,3,255 (also slider knob upper left)
  int TitleLight = 0;      // 179,179,179 (also slider trough lower right)
  int TitleDark = 0;       // 79,79,79 (also slider trough fill)
  int StatusText = 0;      // 35,35,35
  int FieldLowerRight = 0; // 212,208,200
  int ReadOnlyText = 0;    // 128,128,128
  int TroughUpperLeft = 0; // 131,131,131
  int KnobLowerRight = 0;  // 83,83,255
  int KnobFill = 0;        // 3,3,131
  int ListFill = 0;        // 219,219,219
  int ListUpperLeft = 0;   // 111,111,111
};
extern PaletteClass RVK_Palette;
void RVK_SetupPalette();

class TooltipRecord {
public:
  std::string Text;
  int X = 0;
  int Y = 0;
};

bool RVK_Init(int width, int height, int depth, bool windowed, int framesPerSecond);
void RVK_Shutdown();
bool RVK_IsStarted();
// True once RVK_LogError has written an entry since RVK_Init.
bool RVK_HasLoggedError();

void RVK_Begin2D();
void RVK_BeginFrame();
void RVK_SetClearColour(int colour);
void RVK_End2D(int pointerStyle);
void RVK_EndFrame();
void RVK_WaitFrame();
// Time the loop spent in this frame waiting for something other than the
// frame timer, a server's poll waiting for packets: the frame trace shows
// it beside the busy time, which includes it.
void RVK_NoteWait(int64_t microseconds);
void RVK_SetFrameRate(int ticksPerSecond);
void RVK_SetClipRect(int x, int y, int w, int h);
void RVK_ClearClipRect();
bool RVK_MouseIn(int x1, int y1, int x2, int y2);
void RVK_ShowTooltip(int x, int y, const char *format, ...) __attribute__((format(printf, 3, 4)));

// Where a tooltip of the given text size lands when asked for at (x, y):
// moved so that its face stands on a screen of sw by sh.
void RVK_PlaceTooltip(int &x, int &y, int textWidth, int textHeight, int sw, int sh);

void RVK_SetSampleVolume(int volume);
void RVK_PlaySample(SAMPLE *sample);

void RVK_LogError(const char *format, ...) __attribute__((format(printf, 1, 2)));

// A request to end the program, as a signal handler makes it: every loop that
// runs frames or waits for input leaves when it sees one, so the program ends
// the ordinary way. Safe to call from a signal handler.
void RVK_RequestClose(bool requested = true);
bool RVK_CloseRequested();

void *RVK_GetDatafileObject(const char *name);
