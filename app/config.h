// The settings file: ten keys in the sections "video", "sound" and "network".
#pragma once
#include <cstdint>
#include <string>

class ConfigClass {
public:
  std::string ConfigFileName;
  int32_t ScreenWidth = 0;
  int32_t ScreenHeight = 0;
  int32_t ColourDepth = 0;
  bool Windowed = false;
  bool SoundEnabled = false;
  int32_t SoundVolume = 0;
  std::string PlayerName;
  std::string LocalServerPort;
  std::string RemoteServerAddress;
  std::string RemoteServerPort;
};

extern ConfigClass Config;
// True while Allegro's sound system runs.
extern bool SoundOn;

void LoadConfig(ConfigClass &config);
// Answers false when the file could not be written.
bool SaveConfig(ConfigClass &config);
// The settings file named by the arguments: the last "-config NAME" wins.
// The GUI's sample volume takes the low 8 bits of the setting; the game's own
// cues get the whole value.
int GuiSampleVolume(int soundVolume);
std::string ScanConfigOption(int argc, const char *const argv[], const char *defaultName);
