// The settings file: keys, defaults, bools written back as 0 or 1, and the
// command-line option that picks the file.
#include <gtest/gtest.h>
#include <allegro.h>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include "app/config.h"

namespace {

std::string TempPath(const char *name) {
  return std::string(testing::TempDir()) + "/" + name;
}

std::string ReadFile(const std::string &path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
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
  EXPECT_EQ(config.ScreenWidth, 800);
  EXPECT_EQ(config.ScreenHeight, 600);
  EXPECT_EQ(config.ColourDepth, 32);
  EXPECT_FALSE(config.Windowed);
  EXPECT_TRUE(config.SoundEnabled);
  EXPECT_EQ(config.SoundVolume, 192);
  EXPECT_EQ(config.PlayerName, "Player");
  EXPECT_EQ(config.LocalServerPort, "8030");
  EXPECT_EQ(config.RemoteServerAddress, "192.168.0.2");
  EXPECT_EQ(config.RemoteServerPort, "8030");

  // Another file becomes current in between, as the catalogues do.
  set_config_file(TempPath("other.ini").c_str());
  config.RemoteServerAddress = "127.0.0.1";
  SaveConfig(config);
  set_config_file(TempPath("other.ini").c_str());  // flush ours by moving away

  set_config_file(config.ConfigFileName.c_str());
  EXPECT_EQ(get_config_int("video", "width", -1), 800);
  EXPECT_EQ(get_config_int("video", "height", -1), 600);
  EXPECT_EQ(get_config_int("video", "bpp", -1), 32);
  EXPECT_STREQ(get_config_string("video", "window", "?"), "0");
  EXPECT_STREQ(get_config_string("sound", "enabled", "?"), "1");
  EXPECT_EQ(get_config_int("sound", "SoundVolume", -1), 192);
  EXPECT_STREQ(get_config_string("network", "PlayerName", "?"), "Player");
  EXPECT_STREQ(get_config_string("network", "LocalServerPort", "?"), "8030");
  EXPECT_STREQ(get_config_string("network", "RemoteServerAddress", "?"), "127.0.0.1");
  EXPECT_STREQ(get_config_string("network", "RemoteServerPort", "?"), "8030");
  std::string text = ReadFile(config.ConfigFileName);
  int lines = 0;
  for (char c : text) lines += c == '=';
  EXPECT_EQ(lines, 10) << text;
}

TEST_F(ConfigTest, NonZeroBoolsReadTrueAndWriteBackAsOne) {
  std::string path = TempPath("sevens.ini");
  {
    std::ofstream out(path);
    out << "[video]\nwidth = 640\nheight = 480\nbpp = 16\nwindow = 7\n[sound]\nenabled = -3\nSoundVolume = 300\n"
           "[network]\nPlayerName = Ann 100%\nRemoteServerAddress = 127.0.0.1\n";
  }
  ConfigClass config;
  config.ConfigFileName = path;
  LoadConfig(config);
  EXPECT_EQ(config.ScreenWidth, 640);
  EXPECT_EQ(config.ScreenHeight, 480);
  EXPECT_EQ(config.ColourDepth, 16);
  EXPECT_TRUE(config.Windowed);
  EXPECT_TRUE(config.SoundEnabled);
  EXPECT_EQ(config.SoundVolume, 300);
  EXPECT_EQ(config.PlayerName, "Ann 100%");
  SaveConfig(config);
  set_config_file(TempPath("other.ini").c_str());
  set_config_file(path.c_str());
  EXPECT_STREQ(get_config_string("video", "window", "?"), "1");
  EXPECT_STREQ(get_config_string("sound", "enabled", "?"), "1");
  EXPECT_EQ(get_config_int("sound", "SoundVolume", -1), 300);
  EXPECT_STREQ(get_config_string("network", "PlayerName", "?"), "Ann 100%");
}

TEST(ConfigVolume, GuiGetsTheLowEightBits) {
  EXPECT_EQ(GuiSampleVolume(300), 44);
  EXPECT_EQ(GuiSampleVolume(255), 255);
  EXPECT_EQ(GuiSampleVolume(256), 0);
  EXPECT_EQ(GuiSampleVolume(192), 192);
}

TEST(ConfigOption, ScanTakesTheLaterOptionInAnyCase) {
  const char *none[] = {"tumblekin"};
  EXPECT_EQ(ScanConfigOption(1, none, "Tumblekin.ini"), "Tumblekin.ini");

  const char *caps[] = {"tumblekin", "-CONFIG", "a.ini"};
  EXPECT_EQ(ScanConfigOption(3, caps, "Tumblekin.ini"), "a.ini");
  const char *mixed[] = {"tumblekin", "-CoNfIg", "b.ini"};
  EXPECT_EQ(ScanConfigOption(3, mixed, "Tumblekin.ini"), "b.ini");

  const char *two[] = {"tumblekin", "-config", "first.ini", "-window", "stray", "-Config", "second.ini"};
  EXPECT_EQ(ScanConfigOption(7, two, "Tumblekin.ini"), "second.ini");

  // Not the option: no dash, a longer word, a prefix.
  const char *others[] = {"tumblekin", "config", "x.ini", "-configure", "y.ini", "-conf", "z.ini"};
  EXPECT_EQ(ScanConfigOption(7, others, "Tumblekin.ini"), "Tumblekin.ini");

  // The value itself is inspected: "-config -config c.ini" ends with c.ini.
  const char *chained[] = {"tumblekin", "-config", "-config", "c.ini"};
  EXPECT_EQ(ScanConfigOption(4, chained, "Tumblekin.ini"), "c.ini");

  // A trailing option with no value changes nothing.
  const char *last[] = {"tumblekin", "-config", "d.ini", "-config"};
  EXPECT_EQ(ScanConfigOption(4, last, "Tumblekin.ini"), "d.ini");
  const char *onlyLast[] = {"tumblekin", "-config"};
  EXPECT_EQ(ScanConfigOption(2, onlyLast, "Tumblekin.ini"), "Tumblekin.ini");
}

}  // namespace
