// Fuzzes the settings file: any bytes read as the settings, written back and
// read again give the same settings, without fault.
#include "app/config.h"
// The file checks are compiled in so that the fuzzer sees their branches.
#include "rvk/filecheck.cpp"
#include "support/fuzz_file.h"

static bool Same(const ConfigClass &a, const ConfigClass &b) {
  return a.ScreenWidth == b.ScreenWidth && a.ScreenHeight == b.ScreenHeight && a.ColourDepth == b.ColourDepth &&
         a.Windowed == b.Windowed && a.SoundEnabled == b.SoundEnabled && a.SoundVolume == b.SoundVolume &&
         a.PlayerName == b.PlayerName && a.LocalServerPort == b.LocalServerPort &&
         a.RemoteServerAddress == b.RemoteServerAddress && a.RemoteServerPort == b.RemoteServerPort;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  FuzzStartAllegro();
  ConfigClass read, reread;
  read.ConfigFileName = reread.ConfigFileName = FuzzFile(data, size, ".ini");
  LoadConfig(read);
  SaveConfig(read);
  LoadConfig(reread);
  if (!Same(read, reread)) __builtin_trap();
  return 0;
}
