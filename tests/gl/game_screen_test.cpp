// The game in a window on catalogues of its own: loading, the scene, a
// character, games and the menu by real keys and clicks, the program run.
#include <gtest/gtest.h>
#include <allegro.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <atomic>
#include <cmath>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>
#include "app/config.h"
#include "app/mainmenu.h"
#include "app/parts.h"
#include "app/scene.h"
#include "app/startup.h"
#include "character/drawplayer.h"
#include "gl/rvk_xinput.h"
#include "net/host.h"
#include "netpeer/netpeer.h"
#include "rvk/core.h"
#include "rvk/messagebox.h"
#include "rvk/textviewer.h"
#include "support/gl_env.h"
#include "tools/ms3dwriter/ms3dwriter.h"

using namespace std;

namespace {

// Values joined by spaces, to compare many at once.
template <class... T> string Str(const T &...v) {
  stringstream s;
  ((s << v << ' '), ...);
  return s.str();
}

string Text(const string &path) {
  stringstream s;
  s << ifstream(path).rdbuf();
  return s.str();
}

const TkPixel SKY{161, 214, 255};

// Each frame the library waits for adds a line to this trace.
const string Trace = "/tmp/tumblekin-frames-" + to_string(getpid());
const int TraceNamed = setenv("TUMBLEKIN_FRAME_TRACE", Trace.c_str(), 1);

void Frames(int n, const string &trace = Trace) {
  auto lines = [&] {
    string t = Text(trace);
    return std::count(t.begin(), t.end(), '\n');
  };
  long until = lines() + n;
  EXPECT_TRUE(TkWaitFor([&] { return lines() >= until; }, 20000));
}
// Until no frame comes: the loop waits for a key or button to come up.
void Stalled() {
  TkWaitFor([] {
    string before = Text(Trace);
    rest(500);
    return Text(Trace) == before;
  });
}
void Type(const char *keys) {
  system((string("xdotool key ") + keys).c_str());
  Frames(4);
}
void Press(const char *name, int scancode, bool waits = false) {
  TkKey(name, scancode, true);
  waits ? Stalled() : Frames(2);
  TkKey(name, scancode, false);
  Frames(3);
}
void Click(int x, int y) {
  TkMovePointer(x, y);
  Frames(2);
  TkMouse(true);
  Stalled();
  TkMouse(false);
  Frames(3);
}

// A square in the XY plane facing a camera at negative Z, or away from it.
void WriteSquare(const string &path, float size, bool facing) {
  MS3DWriter w;
  w.Vertices.resize(4);
  w.Vertices[1].Position[0] = w.Vertices[2].Position[0] = w.Vertices[2].Position[1] = w.Vertices[3].Position[1] = size;
  w.Triangles.resize(2);
  for (int k = 0; k < 3; k++) w.Triangles[0].VertexIndices[facing ? 2 - k : k] = k, w.Triangles[1].VertexIndices[facing ? 2 - k : k] = k ? k + 1 : 0;
  w.Groups.resize(1);
  w.Groups[0].TriangleIndices = {0, 1};
  w.Save(path.c_str());
}

void WriteTga(const string &path, int grey) {
  BITMAP *bmp = create_bitmap_ex(32, 16, 16);
  clear_to_color(bmp, makecol32(grey, 2 * grey, 3 * grey));
  save_bitmap(path.c_str(), bmp, nullptr);
  destroy_bitmap(bmp);
}

const string DIRS[9] = {"characters", "eyes", "ears", "noses", "mouths", "eyebrows", "moustaches", "feet", "hats"};

// Entry n of a catalogue: the lines given, which win over its own after them.
string Entry(int cat, int n, const string &more = "", const string &model = "a.ms3d") {
  const string section[9] = {"character", "eyes", "ears", "nose", "mouth", "eyebrows", "moustache", "feet", "hat"};
  return "[" + section[cat] + to_string(n) + "]\n" + more + "LeftModel = " + model + "\nRightModel = " + model +
         "\nmodel = " + model + "\nthumb = a.tga\n";
}
void Catalogue(int cat, int count, const string &entries) {
  ofstream("data/" + DIRS[cat] + ".ini") << "[info]\ncount = " << count << "\n" << entries;
}
// The pictures and one entry in each catalogue; the hat small and facing away.
void Mend() {
  WriteTga("data/menuback.tga", 10);
  WriteTga("data/none.tga", 20);
  WriteTga("data/connecting.tga", 30);
  for (int i = 0; i < 9; i++) Catalogue(i, 1, Entry(i, 0, "", i == 8 ? "h.ms3d" : "a.ms3d"));
}

// GL textures and display lists in use.
pair<int, int> LiveNames() {
  GLuint texture, list = glGenLists(1);
  glGenTextures(1, &texture);
  pair<int, int> live;
  for (GLuint i = 1; i < texture || i < list; i++) live.first += glIsTexture(i), live.second += glIsList(i);
  glDeleteTextures(1, &texture);
  glDeleteLists(list, 1);
  return live;
}

class Screen : public testing::Test {
protected:
  static void SetUpTestSuite() {
    char dir[] = "/tmp/tumblekin-screen-XXXXXX";
    ASSERT_EQ(chdir(mkdtemp(dir)), 0);
    mkdir("data", 0755);
    for (string file : {"Tumblekin.dat", "RVK.dat", "Tumblekin.txt", "tumblekin", "data/sounds"})
      symlink((TK_GAME_DIR "/" + file).c_str(), file.c_str());
    for (const string &d : DIRS) {
      mkdir(("data/" + d).c_str(), 0755);
      WriteSquare("data/" + d + "/a.ms3d", d == "characters" ? 40 : 10, true);
      WriteTga("data/" + d + "/a.tga", 40);
    }
    WriteSquare("data/hats/h.ms3d", 10, false);
    ConsoleLogFile = fopen("console.log", "w");
    ConsoleLogOn = true;
  }
  void SetUp() override { Mend(); }
  void TearDown() override { UnloadGame(Game); }
  static bool Said(const string &line) { return Text("console.log").find(": " + line + "\n") != string::npos; }
};

TEST_F(Screen, CataloguesTakeTheirKeysAndStopAtTheirFirstBrokenEntry) {
  Catalogue(0, 2, Entry(0, 0, "scale = 2.5\nCameraX = 1\nCameraY = 2\nHatZ = 3\n") + Entry(0, 1));
  // eyes1 has no left model, so eyes2 is never read; the count takes one nose.
  Catalogue(1, 3, Entry(1, 0) + "[eyes1]\nRightModel = a.ms3d\n" + Entry(1, 2));
  Catalogue(3, 1, Entry(3, 0) + Entry(3, 1));
  Catalogue(6, 2, Entry(6, 0) + Entry(6, 1));
  Catalogue(7, 3, Entry(7, 0) + Entry(7, 1) + Entry(7, 2));
  Catalogue(8, 1, Entry(8, 0, "backfaces = 2\nOffsetX = 1.5\nOffsetZ = -2\nname = Cap\n"));
  SoundOn = true;
  ASSERT_TRUE(LoadGame(Game));
  const CharacterEntry &b = Game.Characters[0], &plain = Game.Characters[1];
  const HatEntry &h = Game.Hats[0];
  const PickerBarClass &bodies = Game.CharacterBar, &hats = Game.HatBar;
  string rows;
  for (int i = 0; i < 9; i++) rows += to_string(Game.Bar(i).Rows.size());
  EXPECT_EQ(Str(b.CameraPos[0], b.CameraPos[1], b.CameraPos[2], b.Hat[2], b.Scale, plain.Name, plain.CameraPos[2], plain.Scale,
                Game.Eyes[0].Name, h.Name, h.BackFaces, h.Offset[0], h.Offset[1], h.Offset[2], rows, Game.LoadError),
            "1 2 -500 3 2.5 (no name) -500 1  Cap 1 1.5 0 -2 222222342 Unable to load model from data/eyes/ ");
  // The bars stand below the toolbar to the foot of the screen.
  EXPECT_EQ(Str(Said("Loaded 1 noses"), bodies.BackgroundColour == makecol(151, 151, 151), hats.BackgroundColour == makecol(51, 127, 178),
                hats.ThumbHeight, bodies.ThumbHeight, hats.Y - text_height(RVK_FontStandard), hats.Y + hats.Height),
            "1 1 1 96 128 48 599 ");
  ASSERT_TRUE(Game.CharacterSample);
  UnloadGame(Game);
  SoundOn = false;
  EXPECT_FALSE(Game.CharacterSample);
}

TEST_F(Screen, ALoadReleasesWhatItsFailureSaysAndReloadsLeaveNothing) {
  const auto live = LiveNames();
  const int icons = RVK_GetIconCount();
  // Each row rewrites a catalogue (a negative one removes its file, -1 a
  // picture), then tells the text, what stays (pictures, bodies, eyes,
  // noses, all) and the answer. A thumbnail or right foot that fails is none.
  const tuple<int, int, string, string, string> rows[] = {
      {1, 1, Entry(1, 0, "thumb = x.tga\n"), "", "11111111"},
      {7, 2, Entry(7, 0) + "[feet1]\nLeftModel = a.ms3d\nRightModel = no.ms3d\n", "Unable to load model from data/feet/no.ms3d", "11111111"},
      {0, 2, "[character0]\n" + Entry(0, 1), "No model specified for character0", "11100000"},
      {0, 1, Entry(0, 0, "", "no.ms3d"), "Unable to load model from data/characters/no.ms3d", "11100000"},
      {3, 0, "", "No noses found in noses.ini", "11111000"},
      {4, 1, Entry(4, 0, "", "no.ms3d"), "Unable to load model from data/mouths/no.ms3d", "00000000"},
      {-8, 1, "", "No hats found in hats.ini", "11111100"},
      {-1, 0, "connecting", "Unable to load bitmap from data/connecting.tga", "00000000"},
      {-1, 0, "none", "Unable to load bitmap from data/none.tga", "00000000"},
      {-1, 0, "menuback", "Unable to load bitmap from data/menuback.tga", "00000000"},
  };
  for (const auto &[cat, count, text, error, kept] : rows) {
    cat >= 0 ? Catalogue(cat, count, text) : (void)unlink(("data/" + (cat < -1 ? "hats.ini" : text + ".tga")).c_str());
    Game.LoadError.clear();
    bool loaded = LoadGame(Game);
    string now;
    for (bool b : {Game.MenuBackTexture.Loaded, Game.NoneTexture.Loaded, Game.ConnectingTexture.Loaded,
                   !Game.Characters.empty(), !Game.Eyes.empty(), !Game.Noses.empty(), CataloguesLoaded(Game), loaded})
      now += b ? "1" : "0";
    EXPECT_EQ(Game.LoadError + " " + now, error + " " + kept);
    UnloadGame(Game);
    EXPECT_TRUE(LiveNames() == live && RVK_GetIconCount() == icons);
    Mend();
  }
  // The failed thumbnail stood in with the icon table's own default icon.
  EXPECT_TRUE(glIsTexture(RVK_GetDefaultIcon().TextureName));
}

TEST_F(Screen, LightsTurnsBackgroundAndTheGameFont) {
  CameraClass camera;
  camera.Eye[2] = -500;
  ApplyCamera(camera);
  float m[16];
  glGetFloatv(GL_PROJECTION_MATRIX, m);
  string s;
  for (float v : m) s += Str(std::round(v * 1000) / 1000);
  // 48 degrees of height over 800 by 600, near 1 and far 4000.
  EXPECT_EQ(s, "1.685 0 0 0 0 2.246 0 0 0 0 -1.001 -1 0 0 -2.001 0 ");
  // Each light as the camera alone places it (turned half about Y), and on.
  SetupLights();
  s.clear();
  for (GLenum light : {GL_LIGHT0, GL_LIGHT1}) {
    for (GLenum what : {GL_POSITION, GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR}) {
      float v[4];
      glGetLightfv(light, what, v);
      s += Str(v[0], v[1], v[2], v[3]);
    }
    s += Str(glIsEnabled(light) && glIsEnabled(GL_LIGHTING));
  }
  EXPECT_EQ(s, "1 0.5 1 0 0.5 0.5 0.5 1 1 1 1 1 0.5 0.5 0.5 1 1 -1 0.5 -1 0 0.5 0.5 0.5 1 1 1 1 1 0.5 0.5 0.5 1 1 ");
  DisableLights();
  EXPECT_FALSE(glIsEnabled(GL_LIGHT0) || glIsEnabled(GL_LIGHT1) || glIsEnabled(GL_LIGHTING));
  // Where the X and Y axes go in a quarter turn by the idle yaw or a view angle.
  const pair<vector<float>, string> turns[] = {{{90, 0, 0, 0}, "0 0 -1 0 1 0 "}, {{0, 64, 0, 0}, "1 0 0 0 0 1 "},
                                               {{0, 0, 64, 0}, "0 0 -1 0 1 0 "}, {{0, 0, 0, 64}, "0 1 0 -1 0 0 "}};
  for (const auto &[angles, axes] : turns) {
    glLoadIdentity();
    RotateScene(angles[0], &angles[1]);
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    s.clear();
    for (int i : {0, 1, 2, 4, 5, 6}) s += Str(std::round(m[i]) + 0);
    EXPECT_EQ(s, axes);
  }
  // The menu's picture over the whole screen, tinted blue at half for dialogs.
  ASSERT_TRUE(LoadGame(Game));
  for (const auto &b : {make_pair(false, TkPixel{10, 20, 30}), make_pair(true, TkPixel{5, 10, 135})}) {
    RVK_BeginFrame();
    Game.DrawMenuBackground(b.first);
    EXPECT_TRUE(TkReadPixel(0, 0) == b.second && TkReadPixel(799, 599) == b.second) << b.first;
    RVK_End2D(0);
  }
  // The game's font replaces the library's, whose lists go; the console moves.
  DATAFILE data[2] = {{RVK_GetDatafileObject("_font_standard"), DAT_FONT, 0, nullptr}, {nullptr, DAT_END, 0, nullptr}};
  const int lists = LiveNames().second;
  FONT *before = RVK_FontStandard;
  ConsoleTop = 0;
  UseGameFont(data);
  EXPECT_EQ(Str(RVK_FontStandard != before, LiveNames().second - lists, ConsoleTop + 10 * text_height(RVK_FontStandard)), "1 0 540 ");
  data[0].type = DAT_BITMAP;
  UseGameFont(data);
  destroy_font((FONT *)data[0].dat);
}

// Draws `p` as a single player's camera sees it and reads where the columns
// and rows given cross; then whether culling is back on, normalising off and
// the matrix as it was.
string Draw(PlayerClass &p, const vector<int> &xs, const vector<int> &ys) {
  RVK_SetClearColour(makecol(161, 214, 255));
  RVK_SetClearColour(makecol(161, 214, 255));  // taken at the next clear
  CameraClass camera;
  camera.Eye[2] = -500;
  ApplyCamera(camera);
  float before[16], after[16];
  glGetFloatv(GL_MODELVIEW_MATRIX, before);
  DrawPlayer(p, 0, 0, 0);
  glGetFloatv(GL_MODELVIEW_MATRIX, after);
  string drawn;
  for (int x : xs)
    for (int y : ys) drawn += TkReadPixel(x, y) == SKY ? '.' : '#';
  return drawn + (glIsEnabled(GL_CULL_FACE) && !glIsEnabled(GL_NORMALIZE) && !memcmp(before, after, sizeof before) ? " 1" : " 0");
}

// At 500 units a 48-degree view shows 300 / (500 tan 24) = 1.348 pixels a unit.
TEST_F(Screen, DrawPlayerPutsEveryPartOnItsAnchorAndScalesAll) {
  ASSERT_TRUE(LoadGame(Game));
  CharacterEntry &body = Game.Characters[0];
  HatEntry &hat = Game.Hats[0];
  body.Hat[1] = 60;
  // Each step: the mode, the hat's back faces, offset up and number (no
  // other part), the body's scale, then the rows read at x 400 and what
  // they show.
  const tuple<int, bool, float, int, float, vector<int>, string> steps[] = {
      // The body, 40 units: y 273..327; the hat faces away and is culled.
      {GAME_MODE_SINGLE, false, 0, 0, 1, {300, 250, 219}, "#.. 1"},
      // Its inside shows: 60 units up, y 212..226; the offset adds 20.
      {GAME_MODE_SINGLE, true, 0, 0, 1, {219, 205}, "#. 1"},
      {GAME_MODE_SINGLE, true, 20, 0, 1, {219, 192, 300}, ".## 1"},
      {GAME_MODE_SINGLE, true, 20, -1, 1, {192, 300}, ".# 1"},
      // Scale 2: body 80 units, hat anchor at 120.
      {GAME_MODE_SINGLE, true, 0, 0, 2, {250, 138, 219}, "##. 1"},
      // In a network game the body stands on y: its centre 20 units up.
      {GAME_MODE_SERVER, false, 0, -1, 1, {260, 318}, "#. 1"},
  };
  for (const auto &[mode, backFaces, offset, number, scale, ys, shown] : steps) {
    Game.Mode = mode, hat.BackFaces = backFaces, hat.Offset[1] = offset, body.Scale = scale;
    PlayerClass p{0, &body, "", 0, -1, -1, -1, -1, -1, -1, -1, number};
    EXPECT_EQ(Draw(p, {400}, ys), shown) << mode << number << scale;
  }
  // Every part on its anchor in a row 100 units above the middle (120 on a
  // client's row, y 138): the eyes turned half about X, then about Y, face
  // away; the brows are lifted off it.
  Game.Mode = GAME_MODE_CLIENT;
  body.Scale = 1;
  hat.BackFaces = true;
  float *anchors[12] = {body.LeftEye, body.RightEye, body.LeftEar, body.RightEar, body.Nose, body.Mouth,
                        body.LeftEyebrow, body.RightEyebrow, body.Moustache, body.LeftFoot, body.RightFoot, body.Hat};
  vector<int> xs;
  for (int i = 0; i < 12; i++) anchors[i][0] = 30 * i - 165, anchors[i][1] = 100, xs.push_back(622 - 40.44f * i);
  for (float turn : {0, 1, 2}) {
    const float x = 128 * (turn == 1), y = 128 * (turn == 2);
    PlayerClass p{0, &body, "", 0, 0, 0, 0, 0, 0, 0, 0, 0, {x, y}, {x, y}, 10 * turn};
    EXPECT_EQ(Str(Draw(p, xs, {138}), p.EyebrowsY), Str(turn ? "..####..#### 1" : "############ 1", turn ? 10 * turn - 0.25f : 0)) << turn;
  }
  // The body's list follows the model's own rule for its frame: frame 0.5
  // is list 1, which a model without joints doesn't have.
  Game.Mode = GAME_MODE_SINGLE;
  Game.Characters[0].Model.CurrentFrame = 0.5f;
  RVK_SetClearColour(makecol(161, 214, 255));
  RVK_SetClearColour(makecol(161, 214, 255));
  CameraClass camera;
  camera.Eye[2] = -500;
  ApplyCamera(camera);
  PlayerClass bare{0, &Game.Characters[0], "", 0, -1, -1, -1, -1, -1, -1, -1, -1};
  DrawPlayer(bare, 0, 0, 0);
  EXPECT_EQ(TkReadPixel(400, 300), (TkPixel{161, 214, 255}));
  Game.Mode = GAME_MODE_NONE;
}

// Games closed on request, and the frame each left on the screen.
TEST_F(Screen, GameFramesAndGoodbyes) {
  ASSERT_TRUE(LoadGame(Game));
  Game.Characters[0].TargetPos[1] = 30;
  TkWindowId();
  auto play = [](int mode, int players, function<void()> close) {
    Game.Mode = mode;
    Game.Players.resize(players);
    Game.SetLocalPlayer(0);
    Game.Players.back().Character = &Game.Characters[0];
    Game.Players.back().PlayerName = "Bo";
    thread closer(close);
    GameLoop(Game);
    closer.join();
    RVK_RequestClose(false);
  };
  // Alone, looked at from 30 units above its middle, the body stands lower;
  // the request comes while R is held.
  play(GAME_MODE_SINGLE, 1, [] {
    Frames(3);
    TkKey("r", KEY_R, true);
    Stalled();
    RVK_RequestClose();
    TkKey("r", KEY_R, false);
  });
  EXPECT_TRUE(TkReadPixel(400, 300) == SKY && !(TkReadPixel(400, 340) == SKY));
  // A server's two bodies 170 units apart about the middle, 350 units away;
  // the list's second line shows right of the bar, and no third.
  play(GAME_MODE_SERVER, 2, [] {
    Frames(3);
    RVK_RequestClose();
  });
  auto white = [](int y) {
    uint32_t p[40 * 16];
    glReadPixels(131, 584 - y, 40, 16, GL_RGBA, GL_UNSIGNED_BYTE, p);
    return std::count(p, p + 40 * 16, 0xFFFFFFFF) > 0;
  };
  EXPECT_EQ(Str(TkReadPixel(236, 358) == SKY, TkReadPixel(400, 358) == SKY, TkReadPixel(564, 358) == SKY, white(96), white(112)), "0 1 0 1 0 ");
  // With the request standing the boxes and dialogs end at once, and so does
  // a client's game; each game says goodbye (with no network up, the try says
  // which packet it was).
  glEnable(GL_LIGHTING);
  RVK_RequestClose();
  RVK_MessageBox("Gone");
  RVK_ShowText("Gone", false, "Gone");
  EXPECT_FALSE(HostGameDialog() || ConnectGameDialog());
  play(GAME_MODE_CLIENT, 1, [] {});
  const string tried = "Can not send packet, network is not initialised (packet type=";
  EXPECT_EQ(Str(Said(tried + "20)"), Said(tried + "0)"), !!glIsEnabled(GL_LIGHTING), Game.Toolbar.Buttons.size(), Game.GetPlayerCount()), "1 1 0 0 0 ");
}

TEST_F(Screen, MenuAndGamesDrivenByKeysAndClicks) {
  Catalogue(0, 2, Entry(0, 0) + Entry(0, 1));
  ASSERT_TRUE(LoadGame(Game));
  TkWindowId();
  Config.PlayerName = "Ann";
  Config.LocalServerPort = to_string(TestPort(0));
  Config.RemoteServerAddress = "127.0.0.1";
  Config.RemoteServerPort = to_string(TestPort(1));
  atomic<bool> left{false};
  bool closed = false;
  thread journey([&] {
    auto in = [](int mode) { return TkWaitFor([=] { return Game.Mode == mode; }, 20000); };
    auto local = [] { return Str(Game.GetPlayerCount(), Game.LocalPlayer->PlayerName, Game.LocalPlayer->PlayerId, Game.Toolbar.Title); };
    [&] {
      Frames(2);
      Type("Return");
      ASSERT_TRUE(in(GAME_MODE_SINGLE));
      EXPECT_EQ(local(), "1 Player 0 (no name) ");
      // The second body from its bar, then the hat bar and its "No hat".
      Click(60, Game.CharacterBar.RowsY + 194);
      Click(Game.Toolbar.Buttons[8].X + 16, Game.Toolbar.Buttons[8].Y + 16);
      Click(60, Game.HatBar.RowsY + 48);
      EXPECT_EQ(Str(Game.LocalPlayer->CharacterNumber, Game.LocalPlayer->HatNumber, Game.CurrentBar), "1 -1 8 ");
      // A reload takes the body back to one that the new catalogues have.
      Catalogue(0, 1, Entry(0, 0));
      Press("F5", KEY_F5);
      EXPECT_TRUE(Game.Characters.size() == 1 && Game.LocalPlayer->Character == &Game.Characters[0]);
      // A turns all three angles alike by itself; R takes them back.
      Press("a", KEY_A, true);
      Frames(20);
      float spun = Game.ViewAngles[0];
      EXPECT_TRUE(spun > 20 && Game.ViewAngles[1] == spun && Game.ViewAngles[2] == spun);
      Press("r", KEY_R, true);
      EXPECT_LT(Game.ViewAngles[1], 20);
      TkMovePointer(790, 590);
      Press("Escape", KEY_ESC);
      ASSERT_TRUE(in(GAME_MODE_NONE));
      // Hosting, where F5 is refused.
      Type("Down Return Return");
      Press("Return", KEY_ENTER);
      ASSERT_TRUE(in(GAME_MODE_SERVER));
      EXPECT_EQ(local(), "1 Ann 1 (no name) (server mode) ");
      Press("F5", KEY_F5);
      EXPECT_TRUE(Said("Cannot reload data while hosting a server"));
      Press("Escape", KEY_ESC);
      ASSERT_TRUE(in(GAME_MODE_NONE));
      // Joining a port where no one listens, given up with Esc.
      Type("Down Return");
      Press("Return", KEY_ENTER);
      ASSERT_TRUE(in(GAME_MODE_CLIENT));
      EXPECT_EQ(Game.LocalPlayer->PlayerName, "Ann");
      Press("Escape", KEY_ESC, true);
      // Back, and "Exit".
      system("xdotool key Down Return Down Down Return");
    }();
    // Whatever went wrong, the menu is left.
    if (!TkWaitFor([&] { return left.load(); }, 10000)) closed = true, RVK_RequestClose();
  });
  MainMenu();
  left = true;
  journey.join();
  RVK_RequestClose(false);
  // The menu's last frame shows its picture beside the entries.
  EXPECT_EQ(Str(closed, TkReadPixel(790, 300) == TkPixel{10, 20, 30}, Game.NextPlayerId), "0 1 2 ");
}

// Runs the program in `dir`, Allegro's messages on its output, `then` once a
// frame is drawn; answers its exit status. One that draws nothing or doesn't
// end is ended.
int Launch(const char *dir, vector<const char *> args, function<void(pid_t)> then = nullptr) {
  unlink("frames");
  args.insert(args.begin(), "tumblekin");
  args.push_back(nullptr);
  string display = string("DISPLAY=") + getenv("DISPLAY");
  const char *env[] = {display.c_str(), "PATH=/nonexistent", "TUMBLEKIN_FRAME_TRACE=../frames", "ALSA_CONFIG_PATH=/dev/null", nullptr};
  pid_t pid = fork();
  if (pid == 0) {
    int out = open("output.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (chdir(dir) == 0 && dup2(out, 1) == 1 && dup2(out, 2) == 2) execve("../tumblekin", (char **)args.data(), (char **)env);
    _exit(127);
  }
  if (then) TkWaitFor([] { return !Text("frames").empty(); }, 30000) ? then(pid) : (void)kill(pid, SIGKILL);
  int status = 0;
  if (!TkWaitFor([&] { return waitpid(pid, &status, WNOHANG) == pid; }, 30000)) kill(pid, SIGKILL), waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST_F(Screen, TheProgramKeepsItsSettingsAndEndsOnASignal) {
  const string ini = "[video]\nwidth = 0\nheight = 99999\nwindow = 7\n\n[sound]\nenabled = 0\n\n[network]\n"
                     "PlayerName = Ann\nRemoteServerAddress = 127.0.0.1\n";
  // "bare" has none of the game's files, "nodata" its datafiles only.
  for (string dir : {"bare", "nodata", "c"}) {
    mkdir(dir.c_str(), 0755);
    ofstream(dir + "/s.ini") << ini;
    for (string file : {"Tumblekin.dat", "RVK.dat", "data", "Tumblekin.txt"})
      if (dir == "c" || (dir == "nodata" && file.find(".dat") != string::npos)) symlink(("../" + file).c_str(), (dir + "/" + file).c_str());
  }
  // Without "Tumblekin.dat" it ends at once with 1, the settings untouched.
  EXPECT_EQ(Launch("bare", {"-config", "s.ini"}), 1);
  EXPECT_EQ(Text("output.txt") + Text("bare/s.ini"), "Unable to load Tumblekin.dat\n" + ini);
  // Sizes the display can't take become the desktop's; "Exit" is chosen by keys.
  const string saved = "[video]\nwidth = 1024\nheight = 768\nwindow = 1\nbpp = 32\n\n[sound]\nenabled = 0\n"
                       "SoundVolume = 192\n\n[network]\nPlayerName = Ann\nRemoteServerAddress = 127.0.0.1\n"
                       "LocalServerPort = 8030\nRemoteServerPort = 8030\n";
  auto exit = [](pid_t) { system("xdotool search --sync --onlyvisible --name '^Tumblekin$' windowfocus --sync key Up Return"); };
  EXPECT_EQ(Launch("c", {"-config", "s.ini"}, exit), 0);
  EXPECT_EQ(Text("c/s.ini"), saved);
  // SIGTERM and SIGINT end it the ordinary way, also from the box that says
  // the catalogues can't be loaded; settings it can't write are told.
  auto signal = [](int number) { return [=](pid_t pid) { kill(pid, number); }; };
  EXPECT_EQ(Launch("nodata", {"-config", "nodir/x.ini"}, signal(SIGTERM)), 0);
  const string lost = "Unable to write the settings to nodir/x.ini";
  EXPECT_NE(Text("output.txt").find(lost + "\nRVK generated 1 or more error messages"), string::npos);
  EXPECT_NE(Text("nodata/RVK Error Log.txt").find(">" + lost), string::npos);
  ofstream("c/s.ini") << ini;
  EXPECT_EQ(Launch("c", {"-CONFIG", "s.ini"}, signal(SIGINT)), 0);
  EXPECT_EQ(Text("c/s.ini") + Text("output.txt"), saved);
  unlink(Trace.c_str());
}

}  // namespace
