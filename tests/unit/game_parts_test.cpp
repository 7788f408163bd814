// The set-part operations (range rules, cue, what goes to the network) and
// the random draws of the face motion in each mode.
#include <gtest/gtest.h>
#include <allegro.h>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <tuple>
#include <vector>
#include "app/config.h"
#include "app/game.h"
#include "app/parts.h"
#include "net/send.h"
#include "netpeer/netpeer.h"

namespace {

std::vector<SAMPLE *> Played;
std::vector<int> Volumes;
void RecordCue(SAMPLE *sample, int volume) {
  Played.push_back(sample);
  Volumes.push_back(volume);
}

SAMPLE Samples[9];
SAMPLE *GameClass::*const SampleFields[9] = {
    &GameClass::CharacterSample, &GameClass::EyesSample,      &GameClass::EarsSample,
    &GameClass::NoseSample,      &GameClass::MouthSample,     &GameClass::EyebrowsSample,
    &GameClass::MoustacheSample, &GameClass::FeetSample,      &GameClass::HatSample};

// The eight part numbers in the order of the toolbar.
std::vector<int> PartsOf(const PlayerClass &p) {
  return {p.EyesNumber, p.EarsNumber, p.NoseNumber, p.MouthNumber,
          p.EyebrowsNumber, p.MoustacheNumber, p.FeetNumber, p.HatNumber};
}
auto FaceOf(const PlayerClass &p) {
  return std::make_tuple(p.EyesOri[0], p.EyesOri[1], p.EyesOri[2], p.EyesOriTarget[0], p.EyesOriTarget[1],
                         p.EyesOriTarget[2], p.EyebrowsY);
}

class PartsTest : public testing::Test {
protected:
  ConsoleCapture Console;
  PlayerClass player;

  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    set_color_depth(32);
  }
  void SetUp() override {
    PlayCueSample = RecordCue;
    Played.clear();
    Volumes.clear();
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
    for (int i = 0; i < 9; i++) Game.*SampleFields[i] = &Samples[i];
  }
  void TearDown() override {
    for (int i = 0; i < 9; i++) Game.*SampleFields[i] = nullptr;
    Game.Mode = GAME_MODE_NONE;
    SoundOn = false;
  }
};

TEST_F(PartsTest, PartRangeRules) {
  player.EyesNumber = player.EarsNumber = player.NoseNumber = player.MouthNumber = 7;
  player.EyebrowsNumber = player.MoustacheNumber = player.FeetNumber = player.HatNumber = 7;
  // Each step: the operation, its field, the number, the field after it and
  // the cue played (-1: none). A dropped call writes, plays and logs nothing.
  struct Step {
    void (*Set)(PlayerClass &, int32_t, bool);
    int32_t PlayerClass::*Field;
    int Number, After, Cue;
  } steps[] = {
      {SetEyes, &PlayerClass::EyesNumber, -2, 7, -1},
      {SetEyes, &PlayerClass::EyesNumber, 2, 7, -1},  // beyond the last entry
      {SetEyes, &PlayerClass::EyesNumber, -1, -1, 1},  // "no eyes" is always accepted
      {SetHat, &PlayerClass::HatNumber, 3, 3, 8},
      {SetHat, &PlayerClass::HatNumber, 4, 3, -1},
      {SetNose, &PlayerClass::NoseNumber, 1, 7, -1},
      {SetNose, &PlayerClass::NoseNumber, 0, 0, 3},
      {SetEars, &PlayerClass::EarsNumber, 1, 1, 2},
      {SetMouth, &PlayerClass::MouthNumber, -1, -1, 4},
      {SetEyebrows, &PlayerClass::EyebrowsNumber, -1, -1, 5},
      {SetMoustache, &PlayerClass::MoustacheNumber, -1, -1, 6},
      {SetFeet, &PlayerClass::FeetNumber, -1, -1, 7},
  };
  for (const Step &s : steps) {
    Played.clear();
    s.Set(player, s.Number, false);
    EXPECT_EQ(player.*s.Field, s.After) << s.Number;
    EXPECT_EQ(Played, s.Cue < 0 ? std::vector<SAMPLE *>{} : std::vector<SAMPLE *>{&Samples[s.Cue]}) << s.Number;
  }
  // Each operation wrote its own field only.
  EXPECT_EQ(PartsOf(player), (std::vector<int>{-1, 1, 0, -1, -1, -1, -1, 3}));
  EXPECT_EQ(Volumes, std::vector<int>(8, 192));
  EXPECT_TRUE(Console.Lines().empty());
}

TEST_F(PartsTest, SetCharacterClampsAndClearsTheFace) {
  player.EyesOri[0] = 3;
  player.EyesOri[1] = -2;
  player.EyesOriTarget[0] = 7;
  player.EyesOriTarget[1] = 4;
  player.EyebrowsY = 1.5f;
  player.EyesNumber = 1;
  SetEyes(player, 0, false);  // a new part leaves the face alone
  EXPECT_EQ(FaceOf(player), std::make_tuple(3.0f, -2.0f, 0.0f, 7.0f, 4.0f, 0.0f, 1.5f));

  SetCharacter(player, 2, false);
  EXPECT_EQ(player.CharacterNumber, 2);
  EXPECT_EQ(player.Character, &Game.Characters[2]);
  EXPECT_EQ(FaceOf(player), std::make_tuple(0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f));
  EXPECT_EQ(player.EyesNumber, 0);  // parts stay
  // Out of range, either way: body 0, and the cue all the same.
  for (int number : {-1, 3}) {
    SetCharacter(player, 2, false);
    SetCharacter(player, number, false);
    EXPECT_EQ(player.CharacterNumber, 0) << number;
    EXPECT_EQ(player.Character, &Game.Characters[0]) << number;
  }
  EXPECT_EQ(Played, (std::vector<SAMPLE *>{&Samples[1], &Samples[0], &Samples[0], &Samples[0], &Samples[0],
                                          &Samples[0]}));

  player.HatNumber = -1;
  player.FeetNumber = 7;
  ResetPlayer(player);
  EXPECT_EQ(player.Character, &Game.Characters[0]);
  EXPECT_EQ(PartsOf(player), std::vector<int>(8, 0));
  EXPECT_EQ(Played.size(), 7u);  // the body's cue only
}

TEST_F(PartsTest, CueVolumeAndConsoleLines) {
  Config.SoundVolume = 0;  // still played, and silently
  SetMouth(player, 0, false);
  Config.SoundVolume = 300;  // the cue gets the whole value
  SetMouth(player, 0, false);
  EXPECT_EQ(Volumes, (std::vector<int>{0, 300}));
  EXPECT_TRUE(Console.Lines().empty());

  Game.MouthSample = nullptr;
  SetMouth(player, -1, false);
  SoundOn = false;
  SetCharacter(player, 1, false);
  EXPECT_EQ(player.MouthNumber, -1);
  EXPECT_EQ(player.CharacterNumber, 1);
  EXPECT_EQ(Console.Lines(), (std::vector<std::string>{"Not playing sample - sample is NULL",
                                                       "Not playing sample - sound is disabled"}));
  EXPECT_EQ(Played.size(), 2u);
}

TEST(PartAnnouncementTable, ByModeAndAnnounce) {
  for (int mode : {GAME_MODE_NONE, GAME_MODE_SINGLE, GAME_MODE_SERVER, GAME_MODE_CLIENT}) {
    EXPECT_FALSE(PartAnnouncement(mode, false, 3, 23).Send) << mode;
  }
  for (int mode : {GAME_MODE_NONE, GAME_MODE_SINGLE}) EXPECT_FALSE(PartAnnouncement(mode, true, 3, 23).Send) << mode;
  auto tuple = [](const PartPacketClass &p) {
    return std::make_tuple(p.Send, p.Destination, (int)p.Type, p.WithPlayerId);
  };
  EXPECT_EQ(tuple(PartAnnouncement(GAME_MODE_SERVER, true, 3, 23)), std::make_tuple(true, (int)NP_TO_ALL, 23, true));
  EXPECT_EQ(tuple(PartAnnouncement(GAME_MODE_CLIENT, true, 10, 30)),
            std::make_tuple(true, (int)NP_TO_SERVER, 10, false));
}

// ---- Face motion ----

// The face motion of one record as the game defines it, drawing from rand()
// in the same order; the test compares the two over many frames.
void ReferenceStep(PlayerClass &f, int mode) {
  bool client = mode == GAME_MODE_CLIENT, server = mode == GAME_MODE_SERVER;
  if (!client) {
    if (rand() % 150 == 0) f.EyesOriTarget[0] = (float)(rand() % 32 - 16);
    if (rand() % 200 == 0) f.EyesOriTarget[1] = (float)(rand() % 32 - 16);
  }
  for (int i = 0; i < 2; i++) {
    if (f.EyesOri[i] < f.EyesOriTarget[i]) f.EyesOri[i] += 1;
    else if (f.EyesOri[i] > f.EyesOriTarget[i]) f.EyesOri[i] -= 1;
  }
  if (!client && rand() % 400 == 0) f.EyebrowsY = 1.5f;
  if (f.EyebrowsY > 0) {
    f.EyebrowsY -= 0.25f;
    if (f.EyebrowsY == 0 && server && rand() % 4 == 0) f.EyebrowsY = 1.0f;
  }
}

TEST_F(PartsTest, FaceMotionDrawsInItsOrderPerMode) {
  for (int mode : {GAME_MODE_SINGLE, GAME_MODE_SERVER}) {
    Game.Mode = mode;
    PlayerClass p, reference;
    int targetsSeen = 0, liftsSeen = 0, secondLifts = 0;
    for (unsigned frame = 0; frame < 9000; frame++) {
      // Both sides start each frame from the same seed.
      srand(7919 + frame);
      float oldTarget = p.EyesOriTarget[0] + p.EyesOriTarget[1], oldBrows = p.EyebrowsY;
      UpdateFaceMotion(p);
      int after = rand();
      srand(7919 + frame);
      ReferenceStep(reference, mode);
      ASSERT_EQ(after, rand()) << "mode " << mode << " frame " << frame;
      ASSERT_EQ(FaceOf(p), FaceOf(reference)) << "mode " << mode << " frame " << frame;
      ASSERT_GE(p.EyesOriTarget[0], -16.0f);
      ASSERT_LE(p.EyesOriTarget[0], 15.0f);
      targetsSeen += p.EyesOriTarget[0] + p.EyesOriTarget[1] != oldTarget;
      liftsSeen += p.EyebrowsY == 1.25f;
      secondLifts += p.EyebrowsY == 1.0f && oldBrows == 0.25f;
    }
    // The comparison above only means something if the rare draws happened.
    EXPECT_GT(targetsSeen, 10) << mode;
    EXPECT_GT(liftsSeen, 3) << mode;
    EXPECT_EQ(secondLifts > 0, mode == GAME_MODE_SERVER) << secondLifts;
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
  for (int i = 0; i < 6; i++) UpdateFaceMotion(p);
  EXPECT_EQ(rand(), first);
  // 1.0 falls to 0 in four steps of 0.25 and stays there.
  EXPECT_EQ(FaceOf(p), std::make_tuple(3.0f, -2.0f, 0.0f, 3.0f, -2.0f, 0.0f, 0.0f));
  // After two steps towards 3 the eye stands at 2.
  p.EyesOri[0] = 0;
  UpdateFaceMotion(p);
  UpdateFaceMotion(p);
  EXPECT_EQ(p.EyesOri[0], 2.0f);
}

}  // namespace
