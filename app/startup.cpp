// Steps of start-up that main takes in its fixed order: the game's own font
// for the GUI, and the signals that ask the program to close.
#include "app/startup.h"
#include <GL/gl.h>
#include <csignal>
#include "rvk/console.h"
#include "rvk/core.h"
// Last: it brings in X11 macros (Status, CurrentTime) that clash with our field names.
#include <alleggl.h>

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
