// The RVK library core: start-up and shutdown, the frame calls, the pointer
// arrow, tooltips, the palette, fonts, sound volume, the error log and the
// library's own datafile.
#include "rvk/core.h"
#include <algorithm>
#include <alleggl.h>
#include <GL/gl.h>
#include <GL/glu.h>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include "rvk/console.h"
#include "rvk/datafile.h"
#include "rvk/draw.h"
#include "rvk/textfield.h"
#include "rvk/texture.h"
#include "rvk/timer.h"

FONT *RVK_FontStandard = nullptr;
FONT *RVK_FontMedium = nullptr;
FONT *RVK_FontSmall = nullptr;
PaletteClass RVK_Palette;

static const char *const ErrorLogName = "RVK Error Log.txt";
static const char *const DatafileName = "RVK.dat";

static bool Started = false;
static bool ErrorLogged = false;
// The frame state and the pointer icons, set by RVK_Init.
static bool In2D, ClipOn;
static int PointerVert, PointerHoriz, PointerMove;
static TimerClass FrameTimer;
static volatile std::sig_atomic_t CloseRequest = 0;
static std::vector<TooltipRecord> Tooltips;

// The frame trace: a file named by TUMBLEKIN_FRAME_TRACE, one line per frame:
// when the frame wait ended, the busy time before it and the share of that
// time noted as waiting (RVK_NoteWait), in microseconds.
static FILE *FrameTrace = nullptr;
static int64_t FrameReleased, FrameWaited;

// ---- Palette ----

void RVK_SetupPalette() {
  PaletteClass &p = RVK_Palette;
  p.NoFill = makecol(255, 0, 255);
  p.Black = makecol(0, 0, 0);
  p.White = makecol(255, 255, 255);
  p.MenuBlue = makecol(0, 0, 240);
  p.PlaceholderRed = makecol(230, 0, 0);
  p.Yellow = makecol(255, 255, 0);
  p.ViewerBackdrop = makecol(129, 162, 255);
  p.PanelFace = makecol(147, 147, 147);
  p.ButtonHover = makecol(55, 55, 255);
  p.BevelLight = makecol(211, 211, 211);
  p.BevelDark = makecol(107, 107, 107);
  p.TitleFace = makecol(3, 3, 255);
  p.TitleLight = makecol(179, 179, 179);
  p.TitleDark = makecol(79, 79, 79);
  p.StatusText = makecol(35, 35, 35);
  p.FieldLowerRight = makecol(212, 208, 200);
  p.ReadOnlyText = makecol(128, 128, 128);
  p.TroughUpperLeft = makecol(131, 131, 131);
  p.KnobLowerRight = makecol(83, 83, 255);
  p.KnobFill = makecol(3, 3, 131);
  p.ListFill = makecol(219, 219, 219);
  p.ListUpperLeft = makecol(111, 111, 111);
  gui_bg_color = p.PanelFace;
  gui_fg_color = p.StatusText;
}

// ---- Datafile ----

// Reads one named object of the library's datafile and hands over its data.
// With `type` other than DAT_END an object of another type counts as absent
// and is released here. The DATAFILE record itself is always released here.
static void *ReadDatafileObject(const char *name, int type) {
  if (name == nullptr || !RVK_DatafileIsSound(DatafileName)) return nullptr;
  DATAFILE *object = load_datafile_object(DatafileName, name);
  if (object == nullptr) return nullptr;
  if (type != DAT_END && object->type != type) {
    unload_datafile_object(object);
    return nullptr;
  }
  void *data = object->dat;
  // Unloading the record without its data: the caller owns the data now.
  object->dat = nullptr;
  unload_datafile_object(object);
  return data;
}

void *RVK_GetDatafileObject(const char *name) {
  return ReadDatafileObject(name, DAT_END);
}

// ---- Start and end ----

// Allegro's text mode, which takes the GL window down.
static void LeaveGraphicsMode() {
  set_gfx_mode(GFX_TEXT, 80, 25, 0, 0);
}

static void LoadIcons() {
  BITMAP *blank = create_bitmap(32, 32);
  if (blank != nullptr) {
    clear_to_color(blank, RVK_Palette.White);
    RVK_AddIcon(blank, "(no texture)");
    destroy_bitmap(blank);
  }
  DATAFILE *data = RVK_LoadDatafile(DatafileName);
  if (data != nullptr) {
    for (DATAFILE *object = data; object->type != DAT_END; object++) {
      if (object->type == DAT_BITMAP) RVK_AddIcon((BITMAP *)object->dat, get_datafile_property(object, DAT_NAME));
    }
    unload_datafile(data);
  }
  PointerVert = RVK_FindIcon("vert");
  PointerHoriz = RVK_FindIcon("horiz");
  PointerMove = RVK_FindIcon("move");
}

static void OpenFrameTrace() {
  const char *name = std::getenv("TUMBLEKIN_FRAME_TRACE");
  if (name != nullptr) FrameTrace = std::fopen(name, "a");
  FrameReleased = RVK_ClockMicroseconds();
  FrameWaited = 0;
}

bool RVK_Init(int width, int height, int depth, bool windowed, int framesPerSecond) {
  if (Started) RVK_Shutdown();

  allegro_gl_clear_settings();
  allegro_gl_set(AGL_COLOR_DEPTH, depth);
  allegro_gl_set(AGL_DOUBLEBUFFER, TRUE);
  allegro_gl_set(AGL_Z_DEPTH, RVK_DepthBits);
  allegro_gl_set(AGL_WINDOWED, windowed ? TRUE : FALSE);
  allegro_gl_set(AGL_RENDERMETHOD, TRUE);
  allegro_gl_set(AGL_SUGGEST, AGL_COLOR_DEPTH | AGL_DOUBLEBUFFER | AGL_Z_DEPTH | AGL_RENDERMETHOD |
                                  (windowed ? AGL_WINDOWED : AGL_FULLSCREEN));
  // Allegro's own colour depth decides what makecol answers and what depth
  // bitmaps are made and loaded at; it follows the display's.
  set_color_depth(depth);
  if (set_gfx_mode(GFX_OPENGL, width, height, 0, 0) != 0) {
    allegro_message("RVK_Init: set_gfx_mode failed - %s", allegro_error);
    return false;
  }
  In2D = false;
  ClipOn = false;

  // Filled polygons with counter-clockwise front faces are GL's own defaults.
  glShadeModel(GL_FLAT);
  glEnable(GL_CULL_FACE);

  // Something other than a font under that name is as good as none.
  FONT *font = (FONT *)ReadDatafileObject("_font_standard", DAT_FONT);
  if (font == nullptr) {
    allegro_message("Unable to read standard font from datafile");
    LeaveGraphicsMode();
    return false;
  }
  RVK_FontStandard = allegro_gl_convert_allegro_font_ex(font, AGL_FONT_TYPE_TEXTURED, -1.0f, GL_ALPHA8);
  RVK_FontMedium = allegro_gl_convert_allegro_font_ex(font, AGL_FONT_TYPE_TEXTURED, -0.8f, GL_ALPHA8);
  RVK_FontSmall = allegro_gl_convert_allegro_font_ex(font, AGL_FONT_TYPE_TEXTURED, -0.4f, GL_ALPHA8);
  destroy_font(font);

  RVK_SetupPalette();
  RVK_SetFrameRate(framesPerSecond);
  RVK_ResetFocus();
  LoadIcons();

  // The mode's new GL context starts with both matrices at identity.
  glViewport(0, 0, width, height);
  glMatrixMode(GL_PROJECTION);
  gluPerspective(48.0, (double)SCREEN_W / (double)SCREEN_H, 1.0, 8192.0);
  glMatrixMode(GL_MODELVIEW);

  Started = true;
  ErrorLogged = false;
  RVK_InitConsole();
  OpenFrameTrace();
  return true;
}

void RVK_Shutdown() {
  if (!Started) return;
  // The textures go with the GL context when the mode changes.
  RVK_ClearIcons();
  PointerVert = PointerHoriz = PointerMove = 0;
  if (ErrorLogged)
    allegro_message("RVK generated 1 or more error messages, view \"%s\" for details", ErrorLogName);
  FONT **fonts[3] = {&RVK_FontStandard, &RVK_FontMedium, &RVK_FontSmall};
  for (FONT **slot : fonts) {
    allegro_gl_destroy_font(*slot);
    *slot = nullptr;
  }
  LeaveGraphicsMode();
  if (FrameTrace != nullptr) {
    std::fclose(FrameTrace);
    FrameTrace = nullptr;
  }
  Started = false;
}

bool RVK_IsStarted() {
  return Started;
}

bool RVK_HasLoggedError() {
  return ErrorLogged;
}

// ---- Frame ----

void RVK_Begin2D() {
  if (In2D) return;
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  // y runs downwards and integer coordinates fall on pixel centres.
  glOrtho(-0.375, SCREEN_W - 0.375, SCREEN_H - 0.375, -0.375, -1.0, 1.0);
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glLoadIdentity();
  glDisable(GL_DEPTH_TEST);
  In2D = true;
}

void RVK_BeginFrame() {
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  RVK_Begin2D();
}

void RVK_SetClearColour(int colour) {
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glClearColor(getr(colour) / 255.0f, getg(colour) / 255.0f, getb(colour) / 255.0f, 1.0f);
}

void RVK_PlaceTooltip(int &x, int &y, int textWidth, int textHeight, int sw, int sh) {
  x = std::max(std::min(x, sw - textWidth - 4), 0);
  y = std::max(std::min(y, sh - textHeight - 4), 0);
}

static void DrawTooltip(const TooltipRecord &tip) {
  int tw = RVK_TextLength(tip.Text.c_str()) + 4;
  int th = RVK_TextHeight() + 4;
  int x = tip.X, y = tip.Y;
  RVK_PlaceTooltip(x, y, tw - 4, th - 4, SCREEN_W, SCREEN_H);
  RVK_DrawRect(x + 8, y + 8, x + tw + 8, y + th + 8, RVK_Palette.Black, true, 128);
  RVK_DrawRect(x, y, x + tw, y + th, RVK_Palette.White, true, 128);
  RVK_DrawText(RVK_FontStandard, x + 2, y + 2, RVK_Palette.Black, tip.Text.c_str());
}

// One arrow of the pointer: a head and a stem, blended.
static void DrawArrow(int x, int y, int colour, int alpha) {
  RVK_BeginBlend(colour, alpha);
  glBegin(GL_POLYGON);
  glVertex2i(x, y + 10);
  glVertex2i(x + 8, y + 10);
  glVertex2i(x, y);
  glEnd();
  glBegin(GL_POLYGON);
  glVertex2i(x + 5, y + 18);
  glVertex2i(x + 8, y + 18);
  glVertex2i(x + 5, y + 10);
  glVertex2i(x + 2, y + 10);
  glEnd();
  RVK_EndBlend();
}

static void DrawPointer(int style) {
  int mx = mouse_x, my = mouse_y;
  if (style == 1) {
    bool held = (mouse_b & 3) != 0;
    int offset = held ? 3 : 6;
    DrawArrow(mx + offset, my + offset, RVK_Palette.Black, 128);
    DrawArrow(mx, my, held ? RVK_Palette.Yellow : RVK_Palette.White, RVK_Opaque);
    return;
  }
  int index;
  switch (style) {
    case 2: index = PointerVert; break;
    case 3: index = PointerHoriz; break;
    case 4: index = PointerMove; break;
    default: return;
  }
  TextureClass icon = RVK_GetIconByIndex(index);
  RVK_DrawTexture(icon, mx - icon.CentreX, my - icon.CentreY, 0, true, RVK_Opaque);
}

void RVK_End2D(int pointerStyle) {
  if (!In2D) return;
  for (const TooltipRecord &tip : Tooltips) DrawTooltip(tip);
  Tooltips.clear();
  DrawPointer(pointerStyle);
  if (ClipOn) RVK_ClearClipRect();
  glPopMatrix();
  glEnable(GL_DEPTH_TEST);
  In2D = false;
}

void RVK_EndFrame() {
  RVK_End2D(1);
  allegro_gl_flip();
}

// The wait spins on the frame timer, giving the processor away for a moment
// between readings: the drawing threads of a software renderer and the X
// server need it to finish the frame, and a reading at most a fraction of a
// millisecond late costs the timer nothing, since it counts earned ticks
// rather than the moments it is asked.
static void SpinOnFrameTimer() {
  while (!FrameTimer.Tick()) {
    struct timespec pause = {0, 250000};
    nanosleep(&pause, nullptr);
  }
}

void RVK_WaitFrame() {
  // The frame is drawn, but a renderer may hold its commands until the flip
  // after the wait: handed over now, they are carried out while we wait.
  glFlush();
  if (FrameTrace == nullptr) {
    SpinOnFrameTimer();
    return;
  }
  int64_t entered = RVK_ClockMicroseconds();
  SpinOnFrameTimer();
  int64_t released = RVK_ClockMicroseconds();
  std::fprintf(FrameTrace, "%lld %lld %lld\n", (long long)released, (long long)(entered - FrameReleased),
               (long long)FrameWaited);
  // Flushed at once so that a reader sees the frames while the program runs.
  std::fflush(FrameTrace);
  FrameReleased = released;
  FrameWaited = 0;
}

void RVK_NoteWait(int64_t microseconds) { FrameWaited += microseconds; }

void RVK_SetFrameRate(int ticksPerSecond) {
  RVK_FrameRate = ticksPerSecond;
  FrameTimer.Reset();
}

void RVK_SetClipRect(int x, int y, int w, int h) {
  RVK_ClearClipRect();
  glScissor(x, SCREEN_H - y - h - 1, w, h);
  glEnable(GL_SCISSOR_TEST);
  ClipOn = true;
}

void RVK_ClearClipRect() {
  if (!ClipOn) return;
  glDisable(GL_SCISSOR_TEST);
  ClipOn = false;
}

bool RVK_MouseIn(int x1, int y1, int x2, int y2) {
  int mx = mouse_x, my = mouse_y;
  return x1 <= mx && mx <= x2 && y1 <= my && my <= y2;
}

void RVK_ShowTooltip(int x, int y, const char *format, ...) {
  char text[512];
  RVK_FORMAT(text, format);
  TooltipRecord tip;
  tip.Text = text;
  tip.X = x;
  tip.Y = y;
  Tooltips.push_back(tip);
}

// ---- Sound ----

// The library has no call that turns its own sound on: the game plays its
// cues itself. So its samples stay silent and no volume is kept for them.
void RVK_SetSampleVolume(int) {}

void RVK_PlaySample(SAMPLE *) {}

// ---- Close request ----

void RVK_RequestClose(bool requested) {
  CloseRequest = requested ? 1 : 0;
}

bool RVK_CloseRequested() {
  return CloseRequest != 0;
}

// ---- Error log ----

void RVK_LogError(const char *format, ...) {
  char text[256];
  RVK_FORMAT(text, format);
  FILE *log = std::fopen(ErrorLogName, "a");
  if (log == nullptr) {
    allegro_message(
        "RVK_LogError: RVK was unable to write the following error to the log file (the log file could not be opened):\n%s",
        text);
    return;
  }
  // Opened and closed for every entry, so an entry survives whatever follows.
  std::time_t now = std::time(nullptr);
  const char *date = std::ctime(&now);
  std::fprintf(log, "%s>%s\n\n", date != nullptr ? date : "\n", text);
  std::fclose(log);
  ErrorLogged = true;
}
