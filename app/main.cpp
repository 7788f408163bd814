// Tumblekin's entry point: brings the libraries up in their fixed order, reads
// the settings, loads the catalogues, runs the menu, and takes it all down.
#include <allegro.h>
#include <GL/gl.h>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include "app/config.h"
#include "app/game.h"
#include "app/mainmenu.h"
#include "app/startup.h"
#include "character/catalogue.h"
#include "rvk/core.h"
#include "rvk/datafile.h"
#include "rvk/messagebox.h"
// Last: it brings in X11 macros (Status, CurrentTime) that clash with our field names.
#include <alleggl.h>

static const char *const DATAFILE_NAME = "Tumblekin.dat";

int main(int argc, char **argv) {
  KeepFrameMemory();
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
  // Allegro's own handlers end the program on the spot: ours let it close
  // through its loops, so that the settings are written.
  InstallCloseSignals();

  Config.ConfigFileName = ScanConfigOption(argc, argv, "Tumblekin.ini");
  LoadConfig(Config);

  if (Config.SoundEnabled) {
    SoundOn = install_sound(DIGI_AUTODETECT, MIDI_AUTODETECT, "") == 0;
    if (SoundOn)
      RVK_SetSampleVolume(GuiSampleVolume(Config.SoundVolume));
    else
      allegro_message("%s", allegro_error);
  }

  // Named before the window opens: AllegroGL names its window then, and
  // otherwise shows the executable's name.
  set_window_title("Tumblekin");
  if (!RVK_Init(Config.ScreenWidth, Config.ScreenHeight, Config.ColourDepth, Config.Windowed, 45)) return 0;

  UseGameFont(datafile);
  allegro_gl_use_mipmapping(TRUE);
  // Back faces are culled since RVK_Init; models are shaded smoothly.
  glShadeModel(GL_SMOOTH);

  if (LoadGame(Game)) {
    MainMenu();
    UnloadGame(Game);
  } else {
    RVK_MessageBox("%s", Game.LoadError.c_str());
  }

  if (!SaveConfig(Config)) {
    std::string text = "Unable to write the settings to " + Config.ConfigFileName;
    RVK_LogError("%s", text.c_str());
    std::fprintf(stderr, "%s\n", text.c_str());
  }
  RVK_Shutdown();
  unload_datafile(datafile);
  if (SoundOn) remove_sound();
  return 0;
}
END_OF_MAIN()
