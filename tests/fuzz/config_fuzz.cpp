// Fuzzes the settings file: any bytes read as the settings, written back and
// read again give the same settings, without fault.
#include <tuple>
#include "app/config.h"
// The file checks are compiled in so that the fuzzer sees their branches.
#include "rvk/filecheck.cpp"
#include "support/fuzz_file.h"

static auto Fields(const ConfigClass &c) {
  return std::tie(c.ScreenWidth, c.ScreenHeight, c.ColourDepth, c.Windowed, c.SoundEnabled, c.SoundVolume,
                  c.PlayerName, c.LocalServerPort, c.RemoteServerAddress, c.RemoteServerPort);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  FuzzStartAllegro();
  ConfigClass read, reread;
  read.ConfigFileName = reread.ConfigFileName = FuzzFile(data, size, ".ini");
  LoadConfig(read);
  SaveConfig(read);
  LoadConfig(reread);
  if (Fields(read) != Fields(reread)) __builtin_trap();
  return 0;
}
