// The settings file: ten keys read at start and written back at exit, and the
// command-line scan that picks the file.
#include "app/config.h"
#include <allegro.h>
#include <cstring>
#include <strings.h>
#include <unistd.h>
#include "rvk/core.h"
#include "rvk/filecheck.h"

ConfigClass Config;
bool SoundOn = false;

int GuiSampleVolume(int soundVolume) { return soundVolume & 0xFF; }

std::string ScanConfigOption(int argc, const char *const argv[], const char *defaultName) {
  std::string name = defaultName;
  for (int i = 1; i < argc; i++) {
    if (strcasecmp(argv[i], "-config") != 0) continue;
    // "-config" as the very last argument names no file: it is ignored like
    // any other stray argument, and the file chosen so far stays.
    if (i + 1 >= argc) break;
    name = argv[i + 1];
    // The scan goes on with the value itself, which a later option may follow.
  }
  return name;
}

// Without a desktop to ask, a window of this size is what the program opens.
static const int FALLBACK_WIDTH = 800;
static const int FALLBACK_HEIGHT = 600;

// The desktop's size is the most a display offers: a window beyond it can't
// be seen whole, X waits for ever to map one beyond its own limits, and the
// software renderer runs out of memory for one far beyond. A size that isn't
// positive (0 also stands for text that is no number) or exceeds the desktop
// is replaced by the desktop's size, which is also what a missing key gives.
static int32_t ReadScreenSize(const char *key, int desktopSize) {
  int value = get_config_int("video", key, desktopSize);
  if (value >= 1 && value <= desktopSize) return value;
  RVK_LogError("Settings: \"%s = %s\" is no size this display can show; %d is used instead", key,
               get_config_string("video", key, ""), desktopSize);
  return desktopSize;
}

void LoadConfig(ConfigClass &config) {
  int desktopWidth, desktopHeight;
  if (get_desktop_resolution(&desktopWidth, &desktopHeight) != 0) {
    desktopWidth = FALLBACK_WIDTH;
    desktopHeight = FALLBACK_HEIGHT;
  }
  RVK_SetConfigFile(config.ConfigFileName.c_str());
  config.ScreenWidth = ReadScreenSize("width", desktopWidth);
  config.ScreenHeight = ReadScreenSize("height", desktopHeight);
  config.ColourDepth = get_config_int("video", "bpp", 32);
  config.Windowed = get_config_int("video", "window", 0) != 0;
  config.SoundEnabled = get_config_int("sound", "enabled", 1) != 0;
  config.SoundVolume = get_config_int("sound", "SoundVolume", 192);
  config.PlayerName = get_config_string("network", "PlayerName", "Player");
  config.LocalServerPort = get_config_string("network", "LocalServerPort", "8030");
  config.RemoteServerAddress = get_config_string("network", "RemoteServerAddress", "192.168.0.2");
  config.RemoteServerPort = get_config_string("network", "RemoteServerPort", "8030");
}

bool SaveConfig(ConfigClass &config) {
  // The catalogues were the current configuration since LoadGame: select ours again.
  RVK_SetConfigFile(config.ConfigFileName.c_str());
  set_config_int("video", "width", config.ScreenWidth);
  set_config_int("video", "height", config.ScreenHeight);
  set_config_int("video", "bpp", config.ColourDepth);
  set_config_int("video", "window", config.Windowed ? 1 : 0);
  set_config_int("sound", "enabled", config.SoundEnabled ? 1 : 0);
  set_config_int("sound", "SoundVolume", config.SoundVolume);
  set_config_string("network", "PlayerName", config.PlayerName.c_str());
  set_config_string("network", "LocalServerPort", config.LocalServerPort.c_str());
  set_config_string("network", "RemoteServerAddress", config.RemoteServerAddress.c_str());
  set_config_string("network", "RemoteServerPort", config.RemoteServerPort.c_str());
  flush_config_file();
  // Allegro drops a file it can't write without a word: one that isn't there
  // to be written now wasn't written either.
  return access(config.ConfigFileName.c_str(), W_OK) == 0;
}
