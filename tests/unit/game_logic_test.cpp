// The game's rules without a window: screen sizes, the roster, the set-part
// operations, the face and idle motion, and a frame's arithmetic.
#include <gtest/gtest.h>
#include <allegro.h>
#include <unistd.h>
#include <cerrno>
#include <fstream>
#include <sstream>
#include "app/config.h"
#include "app/game.h"
#include "app/parts.h"
#include "app/scene.h"
#include "netpeer/netpeer.h"

using namespace std;

namespace {

typedef vector<float> Floats;

// Values joined by spaces, to compare many at once.
template <class... T> string Str(const T &...v) {
  stringstream s;
  ((s << v << ' '), ...);
  return s.str().substr(0, s.str().size() - 1);
}

// Random numbers from a script; past its end every roll misses.
vector<int> Script;
size_t Drawn;
int Scripted() {
  size_t i = Drawn++;
  return i < Script.size() ? Script[i] : 1;
}

// What NP_SendPacket logs for a packet while no network is up.
string Tried(int type) { return "Can not send packet, network is not initialised (packet type=" + to_string(type) + ")|"; }

class Rules : public testing::Test {
protected:
  ConsoleCapture Console;
  PlayerClass P;
  static void SetUpTestSuite() {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    char dir[] = "/tmp/tumblekin-rules-XXXXXX";
    ASSERT_EQ(chdir(mkdtemp(dir)), 0);
  }
  void SetUp() override {
    Game = GameClass();
    Game.Characters.resize(3), Game.Eyes.resize(2), Game.Ears.resize(1), Game.Noses.resize(1), Game.Mouths.resize(1);
    Game.Eyebrows.resize(1), Game.Moustaches.resize(1), Game.Feet.resize(1), Game.Hats.resize(4), Game.Players.resize(4);
    for (int i = 0; i < 4; i++) Game.Players[i].PlayerId = 10 + i, Game.Players[i].PlayerName = "P" + to_string(i);
    Game.SetLocalPlayer(2);
  }
  // The console's lines since the last call.
  string Said() {
    string lines;
    for (const string &line : Console.Lines()) lines += line + "|";
    Console.Clear();
    return lines;
  }
};

Floats Face(const PlayerClass &p) { return {p.EyesOri[0], p.EyesOri[1], p.EyesOriTarget[0], p.EyesOriTarget[1], p.EyebrowsY}; }

vector<int> Numbers(const PlayerClass &p) {
  return {p.CharacterNumber, p.EyesNumber,      p.EarsNumber, p.NoseNumber, p.MouthNumber,
          p.EyebrowsNumber,  p.MoustacheNumber, p.FeetNumber, p.HatNumber};
}
string Parts(const PlayerClass &p) {
  string s;
  for (int n : Numbers(p)) s += (s.empty() ? "" : " ") + to_string(n);
  return s;
}

TEST_F(Rules, ScreenSizesTheDisplayCantTakeBecomeTheDefault) {
  // Without a desktop to ask, 800 by 600 is the default and the limit. Each
  // row: the video section, then the size and window taken and the error
  // log's lines.
  const char *rows[][2] = {{"", "800 600 0 0"}, {"width = 1\nheight = 600\nwindow = 1", "1 600 1 0"},
                           {"width = 800\nheight = 1", "800 1 0 0"}, {"width = 0\nheight = 601", "800 600 0 2"},
                           {"width = 801\nheight = abc", "800 600 0 2"}};
  for (auto &row : rows) {
    remove("RVK Error Log.txt");
    ofstream("s.ini") << "[video]\n" << row[0] << "\n";
    ConfigClass config;
    config.ConfigFileName = "s.ini";
    LoadConfig(config);
    stringstream in;
    in << ifstream("RVK Error Log.txt").rdbuf();
    string log = in.str();
    EXPECT_EQ(Str(config.ScreenWidth, config.ScreenHeight, config.Windowed, std::count(log.begin(), log.end(), '>')), row[1]);
  }
  // Written only where it can be, and at once.
  ConfigClass written, lost;
  written.ConfigFileName = "new.ini";
  lost.ConfigFileName = "nodir/x.ini";
  EXPECT_TRUE(SaveConfig(written));
  EXPECT_EQ(Str(access("new.ini", R_OK), SaveConfig(lost)), "0 0");
  // The last option counts, even as the value of another; one at the end is ignored.
  for (auto args : {vector<const char *>{"-config", "-config", "c", "x", "-config"}, {"-CoNfIg", "c"}}) {
    args.insert(args.begin(), "tumblekin");
    EXPECT_EQ(ScanConfigOption((int)args.size(), args.data(), "T"), "c");
  }
}

TEST_F(Rules, RosterKeepsTheLocalRecordThroughResizesAndDeletes) {
  auto names = [] {
    string n;
    for (const PlayerClass &p : Game.Players) n += p.PlayerName + ".";
    return Str(n, Game.LocalPlayerNumber, Game.LocalPlayer->PlayerName);
  };
  Game.Players[3].PlayerId = 11;  // a duplicate: the lowest index wins
  EXPECT_EQ(Str(Game.GetPlayerCount(), Game.GetPlayerNumber(11), Game.GetPlayerNumber(12)), "4 1 2");
  EXPECT_EQ(Said(), "");
  EXPECT_EQ(Game.GetPlayerNumber(99), -1);
  EXPECT_EQ(Said(), "Warning GetPlayerNumber failed to resolve player ID 99|");
  Game.SetPlayerCount(8, true);
  EXPECT_EQ(names(), "P0.P1.P2.P3..... 2 P2");
  Game.SetPlayerCount(4, true);
  Game.SetLocalPlayerName("H");
  // Deleting ones that can't go, one after the local record and one before it.
  for (int number : {-1, 4, 2, 3, 0}) Game.DeletePlayer(number);
  EXPECT_EQ(Str(names(), Said()), "P1.P2. 1 P2 DeletePlayer: Not deleting local player 2|");
  for (int number : {-1, 2}) {
    Game.SetLocalPlayer(number);
    EXPECT_EQ(Game.LocalPlayer, nullptr);
  }
  Game.Players.clear();
  Game.SetLocalPlayerName("N");
}

TEST_F(Rules, ResetViewTakesTheBodysCamera) {
  Game.Characters[0].CameraPos[2] = -300;
  ResetPlayer(*Game.LocalPlayer);
  Game.IdleYaw = Game.IdleYawTarget = Game.IdleCameraZTarget = Game.ViewAngles[0] = Game.ViewAngles[2] = 9;
  Game.ResetView();
  EXPECT_EQ(Str(Game.CameraPosition[0], Game.CameraPosition[1], Game.CameraPosition[2], Game.ViewAngles[0],
                Game.ViewAngles[2], Game.IdleYaw, Game.IdleYawTarget, Game.IdleCameraZTarget),
            "0 0 -300 0 0 0 0 0");
  Game.LocalPlayer = nullptr;
  Game.ResetView();
}

SAMPLE Sample;
string LastCue;
int RecordCue(const SAMPLE *s, int volume, int pan, int frequency, int loop) {
  LastCue += Str(s == &Sample, volume, pan, frequency, loop);
  return 0;
}

TEST_F(Rules, PartsTakeNumbersOfTheirCatalogueAndPlayTheirCue) {
  void (*const set[9])(PlayerClass &, int32_t, bool) = {SetCharacter, SetEyes, SetEars, SetNose, SetMouth,
                                                          SetEyebrows,  SetMoustache, SetFeet, SetHat};
  Game.CharacterSample = Game.EyesSample = Game.HatSample = &Sample;
  PlayCueSample = RecordCue;
  SoundOn = true;
  Config.SoundVolume = 300;
  P = {0, nullptr, "", 0, 0, 0, 0, 0, 0, 0, 0, 0, {5, 5, 5}, {5, 5, 5}, 5};
  // Each step: operation, number, its field after, the cue played. A part
  // refuses what its catalogue lacks; a body takes 0 instead and clears the face.
  const int steps[][4] = {{1, -2, 0, 0}, {1, -1, -1, 1}, {1, 1, 1, 1}, {1, 2, 1, 0}, {8, 4, 0, 0},
                          {8, 3, 3, 1},  {0, 2, 2, 1},   {0, 3, 0, 1}, {0, 2, 2, 1}, {0, -1, 0, 1}};
  for (const auto &s : steps) {
    Floats face = Face(P);
    LastCue.clear();
    set[s[0]](P, s[1], false);
    EXPECT_EQ(Str(Numbers(P)[s[0]], LastCue), Str(s[2], s[3] ? "1 300 0 1000 0" : "")) << &s - steps;
    EXPECT_EQ(Face(P), s[0] ? face : Floats(5, 0));
  }
  EXPECT_EQ(Str(Parts(P), P.Character == &Game.Characters[0]), "0 1 0 0 0 0 0 0 3 1");
  P.NoseNumber = 7;
  ResetPlayer(P);
  Game.Noses.clear();
  SetNose(P, 0, false);
  EXPECT_EQ(Str(Parts(P), Said()), "0 0 0 0 0 0 0 0 0 ");
  // A pick tells the network; with none up the try says which packet it was.
  SoundOn = false;
  Game.Mode = GAME_MODE_SERVER;
  for (int i = 1; i < 9; i++) set[i](P, -1, true);
  Game.Mode = GAME_MODE_CLIENT;
  SetCharacter(P, 1, true);
  string tries;
  for (int type : {23, 24, 25, 26, 27, 28, 29, 30, 2}) tries += Tried(type) + "Not playing sample - sound is disabled|";
  EXPECT_EQ(Said(), tries);
  Game.Mode = GAME_MODE_SINGLE;
  SoundOn = true;
  SetMouth(P, 0, true);
  EXPECT_EQ(Said(), "Not playing sample - sample is NULL|");
}

TEST_F(Rules, FaceMotionDrawsInItsOrderAndStepsOnePerFrame) {
  // Each step: the mode, the eyebrows before, the rolls offered and taken,
  // then the eyes (x, y), their targets (x, y) and the eyebrows. Hits: 150 %
  // 150, x target 63 % 32 - 16; 200 % 200, y target 0 - 16; 400 % 400
  // lifts the brows to 1.5, and they fall by 0.25 at once.
  const tuple<int, float, vector<int>, size_t, Floats> steps[] = {
      {GAME_MODE_SINGLE, 0, {150, 63, 200, 0, 400}, 5, {1, -1, 15, -16, 1.25f}},
      {GAME_MODE_CLIENT, 1, {}, 0, {2, -2, 15, -16, 0.75f}},
      // At 0 only a server rolls for a second lift.
      {GAME_MODE_SINGLE, 0.25f, {}, 3, {3, -3, 15, -16, 0}},
      {GAME_MODE_SERVER, 0.25f, {1, 1, 1, 4}, 4, {4, -4, 15, -16, 1}},
      {GAME_MODE_SERVER, 1.25f, {0, 0, 0, 15}, 5, {3, -3, -16, -1, 1}},
  };
  for (const auto &[mode, brows, rolls, taken, face] : steps) {
    Game.Mode = mode;
    P.EyebrowsY = brows;
    Script = rolls, Drawn = 0;
    UpdateFaceMotion(P, Scripted);
    EXPECT_EQ(Str(Drawn, Face(P) == face), Str(taken, 1)) << mode << brows;
  }
  // A server tells each lift and new target.
  EXPECT_EQ(Said(), Tried(33) + Tried(31) + Tried(32));
  // A target within a step is passed and swung around, one step a frame.
  Game.Mode = GAME_MODE_CLIENT;
  P.EyesOri[0] = 0;
  P.EyesOriTarget[0] = 0.5f;
  string walk;
  for (int i = 0; i < 3; i++) UpdateFaceMotion(P, Scripted), walk += Str(P.EyesOri[0]);
  EXPECT_EQ(walk, "101");
}

TEST(RulesFrame, RowCameraAndViewKeys) {
  // 170 units apart, centred, record 0 at the highest x; the eye 100 back for each.
  const pair<int, const char *> rows[] = {{1, "0|0 50 -250 0 50 0 0 1 0"}, {2, "85 -85|0 50 -350 0 50 0 0 1 0"},
                                          {8, "595 425 255 85 -85 -255 -425 -595|0 50 -950 0 50 0 0 1 0"}};
  for (auto [count, row] : rows) {
    stringstream s;
    for (int i = 0; i < count; i++) s << (i ? " " : "") << RowPositionX(count, i);
    CameraClass c;
    for (float &f : c.Target) f = 7;
    NetworkCamera(count, c);
    s << "|" << Str(c.Eye[0], c.Eye[1], c.Eye[2], c.Target[0], c.Target[1], c.Target[2], c.Up[0], c.Up[1], c.Up[2]);
    EXPECT_EQ(s.str(), row);
  }
  // Left beats Right, Up beats Down, Z beats X, and 256 doesn't wrap.
  const pair<ViewKeysClass, const char *> keys[] = {
      {{1, 1, 1, 1, 1, 1}, "253 257 257"}, {{0, 1, 0, 1, 0, 1}, "257 253 253"}, {{}, "255 255 255"}};
  for (const auto &k : keys) {
    float a[3] = {255, 255, 255};
    ApplyViewKeys(a, k.first);
    EXPECT_EQ(Str(a[0], a[1], a[2]), k.second);
  }
}

TEST_F(Rules, IdleMotionTurnsAndDriftsTowardsItsTargets) {
  Game.Characters[0].CameraPos[2] = -400;
  ResetPlayer(*Game.LocalPlayer);
  Game.CameraPosition[2] = -400;
  // Each step: the rolls, then the yaw target, yaw, camera Z target and camera
  // Z. Hits: 300 % 300, then 119 % 60 - 15; 200 % 100, then 127 % 64 - 400 - 32;
  // then the lowest targets, -15 degrees and 32 below the body's camera.
  const pair<vector<int>, Floats> steps[] = {{{300, 119, 200, 127}, {44, 0.25f, -369, -399.95f}},
                                             {{0, 60, 0, 64}, {-15, 0, -432, -400}}};
  for (const auto &[rolls, after] : steps) {
    Script = rolls, Drawn = 0;
    IdleMotionStep(Game, Scripted);
    Floats now{Game.IdleYawTarget, Game.IdleYaw, Game.IdleCameraZTarget, Game.CameraPosition[2]};
    for (int i = 0; i < 4; i++) EXPECT_NEAR(now[i], after[i], 0.001f) << i;
    EXPECT_EQ(Drawn, 4u);
  }
  // Two misses; at their targets both stay.
  Game.IdleYaw = -15;
  Game.CameraPosition[2] = -432;
  Script = {}, Drawn = 0;
  IdleMotionStep(Game, Scripted);
  EXPECT_EQ(Str(Drawn, Game.IdleYaw, Game.CameraPosition[2]), "2 -15 -432");
}

TEST_F(Rules, ReloadTakesNumbersBeyondTheCataloguesToTheirFirst) {
  PlayerClass &other = Game.Players[1], &far = Game.Players[3];
  other = {2, nullptr, "", 0, 2, 1, 1, 1, 1, 1, 1, 4};
  far = {3, nullptr, "", 0, 1, 0, 0, 0, 0, 0, 0, -1};
  Game.LocalPlayer->CharacterNumber = 9;
  RepointAfterReload(Game);
  // The local record is left to SetCharacter.
  EXPECT_EQ(Str(Parts(other), Parts(far), Game.LocalPlayer->CharacterNumber, !Game.LocalPlayer->Character,
                other.Character == &Game.Characters[2], far.Character == &Game.Characters[0]),
            "2 0 0 0 0 0 0 0 0 0 1 0 0 0 0 0 0 -1 9 1 1 1");
}

}  // namespace
