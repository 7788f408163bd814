// Tumblekin's entry point: brings the libraries up in their fixed order, reads
// the settings, loads the catalogues, runs the menu, and takes it all down.
#include <allegro.h>
#include <GL/gl.h>
#include <cstdlib>
#include <ctime>
#include "app/config.h"
#include "app/game.h"
#include "app/mainmenu.h"
#include "character/catalogue.h"
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/datafile.h"
#include "rvk/messagebox.h"
// Last: it brings in X11 macros (Status, CurrentTime) that clash with our field names.
#include <alleggl.h>

static const char *const DATAFILE_NAME = "Tumblekin.dat";

int main(int argc, char **argv) {
  srand((unsigned)time(nullptr));
  // Without Allegro nothing can be shown, not even a message.
  if (allegro_init() != 0) return 1;
  install_timer();
  install_keyboard();
  set_keyboard_rate(900, 50);

  DATAFILE *datafile = RVK_LoadDatafile(DATAFILE_NAME);
  if (!datafile) {
    allegro_message("Unable to load %s", DATAFILE_NAME);
    return 1;
  }

  install_mouse();
  install_allegro_gl();

  Config.ConfigFileName = ScanConfigOption(argc, argv, "Tumblekin.ini");
  LoadConfig(Config);

  SoundOn = false;
  if (Config.SoundEnabled) {
    if (install_sound(DIGI_AUTODETECT, MIDI_AUTODETECT, "") == 0) {
      RVK_SetSampleVolume(GuiSampleVolume(Config.SoundVolume));
      SoundOn = true;
    } else {
      allegro_message("%s", allegro_error);
    }
  }

  // Named before the window opens, so it never shows the executable's name,
  // and again after, for drivers that only name a window that exists.
  set_window_title("Tumblekin");
  if (!RVK_Init(Config.ScreenWidth, Config.ScreenHeight, Config.ColourDepth, Config.Windowed, 45)) return 0;
  set_window_title("Tumblekin");

  // The datafile's first object is the standard font of the whole GUI.
  FONT *converted = nullptr;
  if (datafile[0].type == DAT_FONT)
    converted = allegro_gl_convert_allegro_font_ex((FONT *)datafile[0].dat, AGL_FONT_TYPE_TEXTURED, -1.0f, GL_ALPHA8);
  // A datafile whose first object is no font (or a font AllegroGL can't
  // convert) leaves the library's own standard font in place.
  if (converted) {
    RVK_FontStandard = converted;
    ConsoleTop = SCREEN_H - ConsoleMaxLines * text_height(RVK_FontStandard) - 60;
  }

  allegro_gl_use_mipmapping(TRUE);
  glEnable(GL_CULL_FACE);
  glShadeModel(GL_SMOOTH);

  if (LoadGame(Game)) {
    MainMenu();
    UnloadGame(Game);
  } else {
    RVK_MessageBox("%s", Game.LoadError.c_str());
  }

  SaveConfig(Config);
  RVK_Shutdown();
  unload_datafile(datafile);
  if (SoundOn) remove_sound();
  return 0;
}
END_OF_MAIN()
