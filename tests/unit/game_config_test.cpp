// The settings file: keys, defaults, bools written back as 0 or 1, and the
// command-line option that picks the file.
#include <gtest/gtest.h>
#include <allegro.h>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>
#include "app/config.h"

namespace {

std::string TempPath(const char *name) { return std::string(testing::TempDir()) + "/" + name; }

auto Record(const ConfigClass &c) {
  return std::make_tuple(c.ScreenWidth, c.ScreenHeight, c.ColourDepth, c.Windowed, c.SoundEnabled, c.SoundVolume,
                         c.PlayerName, c.LocalServerPort, c.RemoteServerAddress, c.RemoteServerPort);
}

// The ten keys as the file holds them, and how many "=" lines it has.
std::vector<std::string> StoredKeys(const std::string &path, int &keyLines) {
  set_config_file(TempPath("other.ini").c_str());  // moving away flushes ours
  set_config_file(path.c_str());
  const char *keys[10][2] = {{"video", "width"},        {"video", "height"},
                             {"video", "bpp"},          {"video", "window"},
                             {"sound", "enabled"},      {"sound", "SoundVolume"},
                             {"network", "PlayerName"}, {"network", "LocalServerPort"},
                             {"network", "RemoteServerAddress"}, {"network", "RemoteServerPort"}};
  std::vector<std::string> values;
  for (auto &k : keys) values.push_back(get_config_string(k[0], k[1], "?"));
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  keyLines = 0;
  for (char c : text.str()) keyLines += c == '=';
  return values;
}

class ConfigTest : public testing::Test {
protected:
  static void SetUpTestSuite() { install_allegro(SYSTEM_NONE, &errno, atexit); }
};

TEST_F(ConfigTest, MissingFileGivesDefaultsAndSaveWritesAllTenKeys) {
  ConfigClass config;
  config.ConfigFileName = TempPath("missing-settings.ini");
  std::remove(config.ConfigFileName.c_str());
  LoadConfig(config);
  // Without a desktop to ask, the size falls back to 800 by 600.
  EXPECT_EQ(Record(config), std::make_tuple(800, 600, 32, false, true, 192, std::string("Player"),
                                            std::string("8030"), std::string("192.168.0.2"), std::string("8030")));
  // Another file becomes current in between, as the catalogues do.
  set_config_file(TempPath("other.ini").c_str());
  config.RemoteServerAddress = "127.0.0.1";
  SaveConfig(config);
  int keyLines = 0;
  EXPECT_EQ(StoredKeys(config.ConfigFileName, keyLines),
            (std::vector<std::string>{"800", "600", "32", "0", "1", "192", "Player", "8030", "127.0.0.1", "8030"}));
  EXPECT_EQ(keyLines, 10);
}

TEST_F(ConfigTest, NonZeroBoolsReadTrueAndWriteBackAsOne) {
  std::string path = TempPath("sevens.ini");
  std::ofstream(path) << "[video]\nwidth = 640\nheight = 480\nbpp = 16\nwindow = 7\n[sound]\nenabled = -3\n"
                         "SoundVolume = 300\n[network]\nPlayerName = Ann 100%\nRemoteServerAddress = 127.0.0.1\n";
  ConfigClass config;
  config.ConfigFileName = path;
  LoadConfig(config);
  EXPECT_EQ(Record(config), std::make_tuple(640, 480, 16, true, true, 300, std::string("Ann 100%"),
                                            std::string("8030"), std::string("127.0.0.1"), std::string("8030")));
  SaveConfig(config);
  int keyLines = 0;
  EXPECT_EQ(StoredKeys(path, keyLines),
            (std::vector<std::string>{"640", "480", "16", "1", "1", "300", "Ann 100%", "8030", "127.0.0.1", "8030"}));
}

TEST(ConfigVolume, GuiGetsTheLowEightBits) {
  const int cases[][2] = {{300, 44}, {255, 255}, {256, 0}, {192, 192}};
  for (auto &c : cases) EXPECT_EQ(GuiSampleVolume(c[0]), c[1]) << c[0];
}

TEST(ConfigOption, ScanTakesTheLaterOptionInAnyCase) {
  struct Case {
    std::vector<const char *> Args;
    const char *Expected;
  } cases[] = {
      {{}, "Tumblekin.ini"},
      {{"-CONFIG", "a.ini"}, "a.ini"},
      {{"-CoNfIg", "b.ini"}, "b.ini"},
      {{"-config", "first.ini", "-window", "stray", "-Config", "second.ini"}, "second.ini"},
      // Not the option: no dash, a longer word, a prefix.
      {{"config", "x.ini", "-configure", "y.ini", "-conf", "z.ini"}, "Tumblekin.ini"},
      // The value itself is inspected: "-config -config c.ini" ends with c.ini.
      {{"-config", "-config", "c.ini"}, "c.ini"},
      // A trailing option with no value changes nothing.
      {{"-config", "d.ini", "-config"}, "d.ini"},
      {{"-config"}, "Tumblekin.ini"},
  };
  for (Case &c : cases) {
    c.Args.insert(c.Args.begin(), "tumblekin");
    EXPECT_EQ(ScanConfigOption((int)c.Args.size(), c.Args.data(), "Tumblekin.ini"), c.Expected) << c.Args.size();
  }
}

}  // namespace
