// The game's rules without a window.
#include <gtest/gtest.h>
#include <cerrno>
#include "app/config.h"
#include "app/parts.h"
#include "app/scene.h"
#include "netpeer/netpeer.h"
#include "support/joined.h"

using namespace std;

namespace {

GameClass &G = Game;

// Random numbers from a script; past its end every roll misses.
vector<int> Script;
size_t Drawn;
int Scripted() { return Drawn < Script.size() ? Script[Drawn++] : (Drawn++, 1); }

// What a packet sent without a network logs.
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
    G.Characters.resize(3), G.Eyes.resize(2), G.Ears.resize(1), G.Noses.resize(1), G.Mouths.resize(1);
    G.Eyebrows.resize(1), G.Moustaches.resize(1), G.Feet.resize(1), G.Hats.resize(4), G.Players.resize(4);
    for (int i = 0; i < 4; i++) G.Players[i].PlayerId = 10 + i, G.Players[i].PlayerName = "P" + to_string(i);
    G.SetLocalPlayer(2);
  }
  string Said() {
    string lines;
    for (const string &line : Console.Lines()) lines += line + "|";
    Console.Clear();
    return lines;
  }
};

string Face(const PlayerClass &p) { return Str(p.EyesOri[0], p.EyesOri[1], p.EyesOriTarget[0], p.EyesOriTarget[1], p.EyebrowsY); }

string Parts(const PlayerClass &p) {
  return Str(p.CharacterNumber, p.EyesNumber, p.EarsNumber, p.NoseNumber, p.MouthNumber, p.EyebrowsNumber,
             p.MoustacheNumber, p.FeetNumber, p.HatNumber);
}

TEST_F(Rules, SettingsAndTheConfigOption) {
  // Without a desktop 800 by 600 is the default and the limit. Each row: the
  // video section, the size, window and sound taken, the error log's lines.
  const char *rows[][2] = {{"[sound]\nenabled = 0", "800 600 0 0 0 "}, {"width = 1\nheight = 600\nwindow = 1", "1 600 1 1 0 "},
                           {"width = 800\nheight = 1", "800 1 0 1 0 "}, {"width = 0\nheight = 601", "800 600 0 1 2 "},
                           {"width = 801\nheight = abc", "800 600 0 1 2 "}};
  for (auto &row : rows) {
    remove("RVK Error Log.txt");
    ofstream("s.ini") << "[video]\n" << row[0] << "\n";
    ConfigClass c;
    c.ConfigFileName = "s.ini";
    LoadConfig(c);
    string log = FileText("RVK Error Log.txt");
    EXPECT_EQ(Str(c.ScreenWidth, c.ScreenHeight, c.Windowed, c.SoundEnabled, std::count(log.begin(), log.end(), '>')), row[1]);
  }
  // Written at once.
  ConfigClass c;
  c.ConfigFileName = "new.ini";
  EXPECT_TRUE(SaveConfig(c));
  EXPECT_EQ(FileText("new.ini").substr(0, 69), "[video]\nwidth = 0\nheight = 0\nbpp = 0\nwindow = 0\n\n[sound]\nenabled = 0\n");
  // The last counts, even as the value of another; one at the end is ignored.
  for (auto args : {vector<const char *>{"t", "-config", "-config", "c", "x", "-config"}, {"t", "-CoNfIg", "c"}})
    EXPECT_EQ(ScanConfigOption((int)args.size(), args.data(), "T"), "c");
}

TEST_F(Rules, RosterAndView) {
  auto names = [] {
    string n;
    for (const PlayerClass &p : G.Players) n += p.PlayerName + ".";
    return Str(n, G.LocalPlayerNumber, G.LocalPlayer->PlayerName);
  };
  G.Players[3].PlayerId = 11;  // the lowest index wins
  EXPECT_EQ(Str(G.GetPlayerCount(), G.GetPlayerNumber(11), G.GetPlayerNumber(12), G.GetPlayerNumber(99)), "4 1 2 -1 ");
  EXPECT_EQ(Said(), "Warning GetPlayerNumber failed to resolve player ID 99|");
  G.SetPlayerCount(8, true);
  EXPECT_EQ(names(), "P0.P1.P2.P3..... 2 P2 ");
  G.SetPlayerCount(4, true);
  G.SetLocalPlayerName("H");
  // Ones that can't go, one after the local record and one before it.
  for (int number : {-1, 4, 2, 3, 0}) G.DeletePlayer(number);
  EXPECT_EQ(Str(names(), Said()), "P1.P2. 1 P2  DeletePlayer: Not deleting local player 2| ");
  // The view takes the body's camera.
  G.Characters[0].CameraPos[2] = -300;
  G.Characters[0].Name = "B";
  ResetPlayer(*G.LocalPlayer);
  G.IdleYaw = G.IdleYawTarget = G.IdleCameraZTarget = G.ViewAngles[0] = G.ViewAngles[2] = 9;
  G.Mode = GAME_MODE_CLIENT;
  G.ResetView();
  EXPECT_EQ(Str(G.CameraPosition[0], G.CameraPosition[1], G.CameraPosition[2], G.ViewAngles[0], G.ViewAngles[2],
                G.IdleYaw, G.IdleYawTarget, G.IdleCameraZTarget, G.Toolbar.Title),
            "0 0 -300 0 0 0 0 0 B (connected to server) ");
  for (int number : {-1, 2}) {
    G.SetLocalPlayer(number);
    EXPECT_EQ(G.LocalPlayer, nullptr);
  }
  G.ResetView();
  G.Players.clear();
  G.SetLocalPlayerName("N");
}

SAMPLE Sample;
string LastCue;
int RecordCue(const SAMPLE *s, int volume, int pan, int frequency, int loop) {
  LastCue += Str(s == &Sample, volume, pan, frequency, loop);
  return 0;
}

TEST_F(Rules, PartsTakeWhatTheirCatalogueHas) {
  void (*const set[9])(PlayerClass &, int32_t, bool) = {SetCharacter, SetEyes, SetEars, SetNose, SetMouth,
                                                          SetEyebrows,  SetMoustache, SetFeet, SetHat};
  G.CharacterSample = G.EyesSample = G.HatSample = &Sample;
  PlayCueSample = RecordCue;
  SoundOn = true;
  Config.SoundVolume = 300;
  P = {0, nullptr, "", 0, 0, 0, 0, 0, 0, 0, 0, 0, {5, 5, 5}, {5, 5, 5}, 5};
  // Each step: operation, number, its field after, the cue played. A part
  // refuses what its catalogue lacks; a body takes 0 and clears the face.
  const int steps[][4] = {{1, -2, 0, 0}, {1, -1, -1, 1}, {1, 1, 1, 1}, {1, 2, 1, 0}, {8, 4, 0, 0},
                          {8, 3, 3, 1},  {0, 2, 2, 1},   {0, 3, 0, 1}, {0, 2, 2, 1}, {0, -1, 0, 1}};
  for (const auto &s : steps) {
    string face = Face(P), field;
    LastCue.clear();
    set[s[0]](P, s[1], false);
    istringstream parts(Parts(P));
    for (int i = 0; i <= s[0]; i++) parts >> field;
    EXPECT_EQ(field + " " + LastCue + Face(P), Str(s[2]) + (s[3] ? "1 300 0 1000 0 " : "") + (s[0] ? face : "0 0 0 0 0 "));
  }
  EXPECT_EQ(Parts(P) + Str(P.Character == &G.Characters[0]), "0 1 0 0 0 0 0 0 3 1 ");
  P.NoseNumber = 7;
  ResetPlayer(P);
  G.Noses.clear();
  SetNose(P, 0, false);
  EXPECT_EQ(Parts(P) + Said(), "0 0 0 0 0 0 0 0 0 ");
  SoundOn = false;
  G.Mode = GAME_MODE_SERVER;
  for (int i = 1; i < 9; i++) set[i](P, -1, true);
  G.Mode = GAME_MODE_CLIENT;
  SetCharacter(P, 1, true);
  string tries;
  for (int type : {23, 24, 25, 26, 27, 28, 29, 30, 2}) tries += Tried(type) + "Not playing sample - sound is disabled|";
  EXPECT_EQ(Said(), tries);
  G.Mode = GAME_MODE_SINGLE;
  SoundOn = true;
  SetMouth(P, 0, true);
  EXPECT_EQ(Said(), "Not playing sample - sample is NULL|");
}

TEST_F(Rules, ReloadTakesNumbersPastTheEndBackToTheFirst) {
  PlayerClass &a = G.Players[0], &b = G.Players[1];
  a.CharacterNumber = 3, a.EyesNumber = 2, a.FeetNumber = -1, a.HatNumber = 4;
  b.CharacterNumber = 2, b.EyesNumber = 1, b.HatNumber = 3;
  RepointAfterReload(G);
  EXPECT_EQ(Parts(a) + Parts(b) + Str(a.Character == &G.Characters[0], b.Character == &G.Characters[2]),
            "0 0 0 0 0 0 0 -1 0 2 1 0 0 0 0 0 0 3 1 1 ");
}

TEST_F(Rules, FaceMotion) {
  // Each step: the mode, the eyebrows before, the rolls offered and taken,
  // the face after. The brows lift to 1.5 and fall by 0.25 at once.
  const tuple<int, float, vector<int>, size_t, const char *> steps[] = {
      {GAME_MODE_SINGLE, 0, {150, 63, 200, 0, 400}, 5, "1 -1 15 -16 1.25 "},
      {GAME_MODE_CLIENT, 1, {}, 0, "2 -2 15 -16 0.75 "},
      // At 0 only a server rolls for a second lift.
      {GAME_MODE_SINGLE, 0.25f, {}, 3, "3 -3 15 -16 0 "},
      {GAME_MODE_SERVER, 0.25f, {1, 1, 1, 4}, 4, "4 -4 15 -16 1 "},
      {GAME_MODE_SERVER, 1.25f, {0, 0, 0, 15}, 5, "3 -3 -16 -1 1 "},
  };
  for (const auto &[mode, brows, rolls, taken, face] : steps) {
    G.Mode = mode;
    P.EyebrowsY = brows;
    Script = rolls, Drawn = 0;
    UpdateFaceMotion(P, Scripted);
    EXPECT_EQ(Str(Drawn) + Face(P), Str(taken) + face);
  }
  EXPECT_EQ(Said(), Tried(33) + Tried(31) + Tried(32));
  // A target within a step is passed and swung around.
  G.Mode = GAME_MODE_CLIENT;
  P.EyesOri[0] = 0;
  P.EyesOriTarget[0] = 0.5f;
  string walk;
  for (int i = 0; i < 3; i++) UpdateFaceMotion(P, Scripted), walk += Str(P.EyesOri[0]);
  EXPECT_EQ(walk, "1 0 1 ");
}

TEST(RulesFrame, RowCameraAndViewKeys) {
  CameraClass c;
  for (float &f : c.Target) f = 7;
  NetworkCamera(3, c);
  EXPECT_EQ(Str(RowPositionX(3, 0), RowPositionX(3, 1), RowPositionX(3, 2), c.Eye[0], c.Eye[1], c.Eye[2], c.Target[0],
                c.Target[1], c.Target[2], c.Up[0], c.Up[1], c.Up[2]),
            "170 0 -170 0 50 -450 0 50 0 0 1 0 ");
  // Left beats Right, Up Down, Z X; 256 doesn't wrap.
  const pair<ViewKeysClass, const char *> keys[] = {
      {{1, 1, 1, 1, 1, 1}, "253 257 257 "}, {{0, 1, 0, 1, 0, 1}, "257 253 253 "}, {{}, "255 255 255 "}};
  for (const auto &k : keys) {
    float a[3] = {255, 255, 255};
    ApplyViewKeys(a, k.first);
    EXPECT_EQ(Str(a[0], a[1], a[2]), k.second);
  }
}

}  // namespace
