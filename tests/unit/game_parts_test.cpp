// The set-part operations (range rules, cue, what goes to the network) and
// the random draws of the face motion in each mode.
#include <gtest/gtest.h>
#include <allegro.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>
#include "app/config.h"
#include "app/game.h"
#include "app/parts.h"
#include "net/send.h"
#include "rvk/console.h"

namespace {

// The console keeps lines only while the library runs; without a window the
// test reads them from the console's log file instead.
class ConsoleLog {
public:
  void Start() {
    if (ConsoleLogFile) std::fclose(ConsoleLogFile);
    ConsoleLogFile = std::tmpfile();
    ConsoleLogOn = true;
  }
  // The texts logged since Start, without their time stamps.
  std::vector<std::string> Lines() {
    std::vector<std::string> lines;
    std::fflush(ConsoleLogFile);
    std::rewind(ConsoleLogFile);
    char buffer[2048];
    while (std::fgets(buffer, sizeof buffer, ConsoleLogFile)) {
      std::string line(buffer);
      if (!line.empty() && line.back() == '\n') line.pop_back();
      size_t at = line.find(": ");
      lines.push_back(at == std::string::npos ? line : line.substr(at + 2));
    }
    std::fseek(ConsoleLogFile, 0, SEEK_END);
    return lines;
  }
};
ConsoleLog Log;

struct PlayedCue {
  SAMPLE *Sample;
  int Volume;
};
std::vector<PlayedCue> Played;
void RecordCue(SAMPLE *sample, int volume) { Played.push_back({sample, volume}); }

SAMPLE Samples[9];

class PartsTest : public testing::Test {
protected:
  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    set_color_depth(32);
  }
  void SetUp() override {
    PlayCueSample = RecordCue;
    Played.clear();
    Log.Start();
    SoundOn = true;
    Config.SoundVolume = 192;
    Game.Mode = GAME_MODE_SINGLE;
    Game.Characters.assign(3, CharacterEntry());
    Game.Eyes.assign(2, PairPartEntry());
    Game.Ears.assign(2, PairPartEntry());
    Game.Noses.assign(1, SinglePartEntry());
    Game.Mouths.assign(1, SinglePartEntry());
    Game.Eyebrows.assign(1, PairPartEntry());
    Game.Moustaches.assign(1, SinglePartEntry());
    Game.Feet.assign(1, PairPartEntry());
    Game.Hats.assign(4, HatEntry());
    SAMPLE **fields[9] = {&Game.CharacterSample, &Game.EyesSample, &Game.EarsSample, &Game.NoseSample,
                          &Game.MouthSample, &Game.EyebrowsSample, &Game.MoustacheSample, &Game.FeetSample,
                          &Game.HatSample};
    for (int i = 0; i < 9; i++) *fields[i] = &Samples[i];
    player = PlayerClass();
  }
  void TearDown() override {
    SAMPLE **fields[9] = {&Game.CharacterSample, &Game.EyesSample, &Game.EarsSample, &Game.NoseSample,
                          &Game.MouthSample, &Game.EyebrowsSample, &Game.MoustacheSample, &Game.FeetSample,
                          &Game.HatSample};
    for (int i = 0; i < 9; i++) *fields[i] = nullptr;
    Game.Mode = GAME_MODE_NONE;
    SoundOn = false;
  }
  PlayerClass player;
};

TEST_F(PartsTest, PartRangeRules) {
  player.EyesNumber = 1;
  SetEyes(player, -2, true);  // dropped: nothing written, played or logged
  EXPECT_EQ(player.EyesNumber, 1);
  EXPECT_TRUE(Played.empty());
  EXPECT_TRUE(Log.Lines().empty());

  SetEyes(player, 2, false);  // beyond the last entry: dropped as well
  EXPECT_EQ(player.EyesNumber, 1);
  EXPECT_TRUE(Played.empty());

  SetEyes(player, -1, false);  // "no eyes" is always accepted
  EXPECT_EQ(player.EyesNumber, -1);
  ASSERT_EQ(Played.size(), 1u);
  EXPECT_EQ(Played[0].Sample, &Samples[1]);
  EXPECT_EQ(Played[0].Volume, 192);

  SetHat(player, 3, false);
  EXPECT_EQ(player.HatNumber, 3);
  SetHat(player, 4, false);
  EXPECT_EQ(player.HatNumber, 3);
  SetNose(player, 1, false);
  EXPECT_EQ(player.NoseNumber, 0);  // fresh value untouched
  SetNose(player, 0, false);

  // Each operation writes its own field and plays its own cue.
  SetEars(player, 1, false);
  SetMouth(player, -1, false);
  SetEyebrows(player, -1, false);
  SetMoustache(player, -1, false);
  SetFeet(player, -1, false);
  EXPECT_EQ(player.EarsNumber, 1);
  EXPECT_EQ(player.MouthNumber, -1);
  EXPECT_EQ(player.EyebrowsNumber, -1);
  EXPECT_EQ(player.MoustacheNumber, -1);
  EXPECT_EQ(player.FeetNumber, -1);
  std::vector<SAMPLE *> expected = {&Samples[1], &Samples[8], &Samples[3], &Samples[2],
                                    &Samples[4], &Samples[5], &Samples[6], &Samples[7]};
  ASSERT_EQ(Played.size(), expected.size());
  for (size_t i = 0; i < expected.size(); i++) EXPECT_EQ(Played[i].Sample, expected[i]) << i;
  EXPECT_TRUE(Log.Lines().empty());
}

TEST_F(PartsTest, SetCharacterClampsAndClearsTheFace) {
  player.EyesOri[0] = 3;
  player.EyesOri[1] = -2;
  player.EyesOriTarget[0] = 7;
  player.EyesOriTarget[1] = 4;
  player.EyebrowsY = 1.5f;
  player.EyesNumber = 1;

  SetEyes(player, 0, false);  // a new part leaves the face alone
  EXPECT_EQ(player.EyesOri[0], 3.0f);
  EXPECT_EQ(player.EyebrowsY, 1.5f);

  SetCharacter(player, 2, false);
  EXPECT_EQ(player.CharacterNumber, 2);
  EXPECT_EQ(player.Character, &Game.Characters[2]);
  for (int i = 0; i < 3; i++) {
    EXPECT_EQ(player.EyesOri[i], 0.0f);
    EXPECT_EQ(player.EyesOriTarget[i], 0.0f);
  }
  EXPECT_EQ(player.EyebrowsY, 0.0f);
  EXPECT_EQ(player.EyesNumber, 0);  // parts stay

  SetCharacter(player, -1, false);
  EXPECT_EQ(player.CharacterNumber, 0);
  EXPECT_EQ(player.Character, &Game.Characters[0]);
  SetCharacter(player, 2, false);
  SetCharacter(player, 3, false);
  EXPECT_EQ(player.CharacterNumber, 0);
  ASSERT_EQ(Played.size(), 5u);
  EXPECT_EQ(Played[1].Sample, &Samples[0]);
  EXPECT_EQ(Played[4].Sample, &Samples[0]);

  player.HatNumber = -1;
  player.FeetNumber = 7;
  ResetPlayer(player);
  EXPECT_EQ(player.CharacterNumber, 0);
  EXPECT_EQ(player.Character, &Game.Characters[0]);
  EXPECT_EQ(player.HatNumber, 0);
  EXPECT_EQ(player.FeetNumber, 0);
  EXPECT_EQ(player.EyesNumber, 0);
  EXPECT_EQ(Played.size(), 6u);  // the body's cue only
}

TEST_F(PartsTest, CueConsoleLines) {
  Config.SoundVolume = 0;  // still played, and silently
  SetMouth(player, 0, false);
  ASSERT_EQ(Played.size(), 1u);
  EXPECT_EQ(Played[0].Volume, 0);
  EXPECT_TRUE(Log.Lines().empty());

  Config.SoundVolume = 300;  // the cue gets the whole value
  SetMouth(player, 0, false);
  EXPECT_EQ(Played[1].Volume, 300);

  Game.MouthSample = nullptr;
  SetMouth(player, -1, false);
  EXPECT_EQ(player.MouthNumber, -1);
  EXPECT_EQ(Log.Lines(), std::vector<std::string>{"Not playing sample - sample is NULL"});

  SoundOn = false;
  SetCharacter(player, 1, false);
  EXPECT_EQ(player.CharacterNumber, 1);
  EXPECT_EQ(Log.Lines(), (std::vector<std::string>{"Not playing sample - sample is NULL",
                                                   "Not playing sample - sound is disabled"}));
  EXPECT_EQ(Played.size(), 2u);
}

TEST(PartAnnouncementTable, ByModeAndAnnounce) {
  for (int mode : {GAME_MODE_NONE, GAME_MODE_SINGLE})
    EXPECT_FALSE(PartAnnouncement(mode, true, 3, 23).Send) << mode;
  EXPECT_FALSE(PartAnnouncement(GAME_MODE_SERVER, false, 3, 23).Send);
  EXPECT_FALSE(PartAnnouncement(GAME_MODE_CLIENT, false, 3, 23).Send);

  PartPacketClass server = PartAnnouncement(GAME_MODE_SERVER, true, 3, 23);
  EXPECT_TRUE(server.Send);
  EXPECT_EQ(server.Destination, NP_TO_ALL);
  EXPECT_EQ(server.Type, 23);
  EXPECT_TRUE(server.WithPlayerId);

  PartPacketClass client = PartAnnouncement(GAME_MODE_CLIENT, true, 10, 30);
  EXPECT_TRUE(client.Send);
  EXPECT_EQ(client.Destination, NP_TO_SERVER);
  EXPECT_EQ(client.Type, 10);
  EXPECT_FALSE(client.WithPlayerId);
}

// ---- Face motion ----

// The face motion of one record as the game defines it, drawing from rand()
// in the same order; the test compares the two over many frames.
struct Face {
  float Ori[2] = {0, 0}, Target[2] = {0, 0}, Brows = 0;
};
void ReferenceStep(Face &f, int mode) {
  bool client = mode == GAME_MODE_CLIENT, server = mode == GAME_MODE_SERVER;
  if (!client) {
    if (rand() % 150 == 0) f.Target[0] = (float)(rand() % 32 - 16);
    if (rand() % 200 == 0) f.Target[1] = (float)(rand() % 32 - 16);
  }
  for (int i = 0; i < 2; i++) {
    if (f.Ori[i] < f.Target[i]) f.Ori[i] += 1;
    else if (f.Ori[i] > f.Target[i]) f.Ori[i] -= 1;
  }
  if (!client && rand() % 400 == 0) f.Brows = 1.5f;
  if (f.Brows > 0) {
    f.Brows -= 0.25f;
    if (f.Brows == 0 && server && rand() % 4 == 0) f.Brows = 1.0f;
  }
}

TEST_F(PartsTest, FaceMotionDrawsInItsOrderPerMode) {
  for (int mode : {GAME_MODE_SINGLE, GAME_MODE_SERVER}) {
    Game.Mode = mode;
    PlayerClass p;
    Face f;
    int targetsSeen = 0, liftsSeen = 0, secondLifts = 0;
    for (unsigned seed = 1; seed <= 3; seed++) {
      for (int frame = 0; frame < 3000; frame++) {
        // Both sides start each frame from the same seed.
        unsigned s = seed * 7919 + frame;
        srand(s);
        float oldTarget = p.EyesOriTarget[0] + p.EyesOriTarget[1];
        float oldBrows = p.EyebrowsY;
        UpdateFaceMotion(p);
        int after = rand();
        srand(s);
        ReferenceStep(f, mode);
        ASSERT_EQ(after, rand()) << "mode " << mode << " frame " << frame;
        ASSERT_EQ(p.EyesOriTarget[0], f.Target[0]);
        ASSERT_EQ(p.EyesOriTarget[1], f.Target[1]);
        ASSERT_EQ(p.EyesOri[0], f.Ori[0]);
        ASSERT_EQ(p.EyesOri[1], f.Ori[1]);
        ASSERT_EQ(p.EyebrowsY, f.Brows);
        ASSERT_EQ(p.EyesOri[2], 0.0f);
        ASSERT_EQ(p.EyesOriTarget[2], 0.0f);
        ASSERT_GE(p.EyesOriTarget[0], -16.0f);
        ASSERT_LE(p.EyesOriTarget[0], 15.0f);
        if (p.EyesOriTarget[0] + p.EyesOriTarget[1] != oldTarget) targetsSeen++;
        if (p.EyebrowsY == 1.25f) liftsSeen++;
        if (p.EyebrowsY == 1.0f && oldBrows == 0.25f) secondLifts++;
      }
    }
    // The comparison above only means something if the rare draws happened.
    EXPECT_GT(targetsSeen, 10) << mode;
    EXPECT_GT(liftsSeen, 3) << mode;
    if (mode == GAME_MODE_SINGLE)
      EXPECT_EQ(secondLifts, 0);
    else
      EXPECT_GT(secondLifts, 0);
  }
}

TEST_F(PartsTest, ClientFaceDrawsNoRandomNumbersAndFollowsItsTargets) {
  Game.Mode = GAME_MODE_CLIENT;
  PlayerClass p;
  p.EyesOriTarget[0] = 3;
  p.EyesOriTarget[1] = -2;
  p.EyebrowsY = 1.0f;
  srand(42);
  int first = rand();
  srand(42);
  for (int i = 0; i < 5; i++) UpdateFaceMotion(p);
  EXPECT_EQ(rand(), first);
  EXPECT_EQ(p.EyesOri[0], 3.0f);
  EXPECT_EQ(p.EyesOri[1], -2.0f);
  EXPECT_EQ(p.EyebrowsY, 0.0f);  // 1.0 falls in four steps of 0.25
  UpdateFaceMotion(p);
  EXPECT_EQ(p.EyebrowsY, 0.0f);

  // After two steps towards 3 the eye stands at 2.
  p.EyesOri[0] = 0;
  UpdateFaceMotion(p);
  UpdateFaceMotion(p);
  EXPECT_EQ(p.EyesOri[0], 2.0f);
}

}  // namespace
