// Steps of start-up that main takes in its fixed order: the heap's keeping
// of freed memory, the game's own font for the GUI, and the signals that ask
// the program to close.
#include "app/startup.h"
#include <GL/gl.h>
#include <csignal>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include "rvk/console.h"
#include "rvk/core.h"
// Last: it brings in X11 macros (Status, CurrentTime) that clash with our field names.
#include <alleggl.h>

// The software renderer takes a frame's working memory from the heap and
// frees it once the frame is on the screen. By default the C library hands a
// free stretch of more than 128 kB at the top of the heap back to the system,
// so every frame faulted its memory in again, page by page: tens of
// thousands of page faults a second, up to a third of a frame's time while
// the console is full. Above the threshold freed memory stays; a reload still
// hands back what it freed (malloc_trim doesn't heed the threshold).
static const int KEPT_FREE_HEAP = 64 << 20;

void KeepFrameMemory() {
#ifdef __GLIBC__
  mallopt(M_TRIM_THRESHOLD, KEPT_FREE_HEAP);
#endif
}

void UseGameFont(DATAFILE *datafile) {
  if (datafile[0].type != DAT_FONT) return;
  FONT *converted = allegro_gl_convert_allegro_font_ex((FONT *)datafile[0].dat, AGL_FONT_TYPE_TEXTURED, -1.0f, GL_ALPHA8);
  if (!converted) return;
  // The library's own standard font has no other user.
  allegro_gl_destroy_font(RVK_FontStandard);
  RVK_FontStandard = converted;
  ConsoleTop = SCREEN_H - ConsoleMaxLines * text_height(RVK_FontStandard) - 60;
}

static void AskToClose(int) { RVK_RequestClose(); }

void InstallCloseSignals() {
  // Zeroed: no other signal is held off while the handler runs.
  struct sigaction action = {};
  action.sa_handler = AskToClose;
  // The handler is then reset: a second signal ends a program that hangs.
  action.sa_flags = SA_RESETHAND;
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGINT, &action, nullptr);
}
