// The game in a window on catalogues of its own, driven by real input, and
// the program itself.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <atomic>
#include <cmath>
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
#include "support/joined.h"
#include "tools/ms3dwriter/ms3dwriter.h"

using namespace std;

namespace {

GameClass &G = Game;

const TkPixel SKY{161, 214, 255};

// A line for each frame the library waits for.
const string Trace = "/tmp/tumblekin-frames-" + to_string(getpid());
const int TraceNamed = setenv("TUMBLEKIN_FRAME_TRACE", Trace.c_str(), 1);

long Lines() {
  string t = FileText(Trace);
  return std::count(t.begin(), t.end(), '\n');
}
void Frames(int n) {
  long until = Lines() + n;
  EXPECT_TRUE(TkWaitFor([&] { return Lines() >= until; }, 20000));
}
// Until the loop waits for a key or button to come up.
void Stalled() {
  TkWaitFor([] {
    long n = Lines();
    rest(500);
    return Lines() == n;
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

// A square facing -Z, or away.
void WriteSquare(const string &path, float size, bool facing) {
  MS3DWriter w;
  w.Vertices.resize(4);
  w.Vertices[1].Position[0] = w.Vertices[2].Position[0] = w.Vertices[2].Position[1] = w.Vertices[3].Position[1] = size;
  w.Triangles.resize(2);
  for (int t = 0; t < 2; t++)
    for (int k = 0; k < 3; k++) w.Triangles[t].VertexIndices[facing ? 2 - k : k] = k ? k + t : 0;
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

string Entry(int cat, int n, const string &more = "", const string &model = "a.ms3d") {
  return "[" + CatalogueSection(CATALOGUES[cat], n) + "]\n" + more + "LeftModel = " + model + "\nRightModel = " +
         model + "\nmodel = " + model + "\nthumb = a.tga\n";
}
void Catalogue(int cat, int count, const string &entries) {
  ofstream(RVK_NativePath(CATALOGUES[cat].File)) << "[info]\ncount = " << count << "\n" << entries;
}
void Mend() {
  WriteTga("data/menuback.tga", 10);
  WriteTga("data/none.tga", 20);
  WriteTga("data/connecting.tga", 30);
  for (int i = 0; i < 9; i++) Catalogue(i, 1, Entry(i, 0, "", i == 8 ? "h.ms3d" : "a.ms3d"));
}

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
    for (const CatalogueInfo &c : CATALOGUES) {
      string dir = RVK_NativePath(c.Directory);
      mkdir(dir.c_str(), 0755);
      WriteSquare(dir + "a.ms3d", c.NoneText ? 10 : 40, true);
      WriteTga(dir + "a.tga", 40);
    }
    WriteSquare("data/hats/h.ms3d", 10, false);
    ConsoleLogFile = fopen("console.log", "w");
    ConsoleLogOn = true;
  }
  void SetUp() override { Mend(); }
  void TearDown() override { UnloadGame(G); }
  static bool Said(const string &line) { return FileText("console.log").find(": " + line + "\n") != string::npos; }
};

TEST_F(Screen, CataloguesStopAtABrokenEntry) {
  Catalogue(0, 2, Entry(0, 0, "scale = 2.5\nCameraX = 1\nCameraY = 2\nHatZ = 3\n") + Entry(0, 1));
  // eyes1 has no left model: eyes2 is never read.
  Catalogue(1, 3, Entry(1, 0) + "[eyes1]\nRightModel = a.ms3d\n" + Entry(1, 2));
  Catalogue(3, 1, Entry(3, 0) + Entry(3, 1));
  Catalogue(7, 3, Entry(7, 0) + Entry(7, 1) + Entry(7, 2));
  Catalogue(8, 2, Entry(8, 0, "backfaces = 2\nOffsetX = 1.5\nOffsetZ = -2\nname = Cap\n") + Entry(8, 1));
  SoundOn = true;
  ASSERT_TRUE(LoadGame(G));
  const CharacterEntry &b = G.Characters[0];
  const HatEntry &h = G.Hats[0];
  const PickerBarClass &hats = G.HatBar;
  string rows;
  for (int i = 0; i < 9; i++) rows += to_string(G.Bar(i).Rows.size());
  EXPECT_EQ(Str(b.CameraPos[0], b.CameraPos[1], b.CameraPos[2], b.Hat[2], b.Scale, G.Characters[1].Name, G.Eyes[0].Name, h.Name, h.BackFaces, G.Hats[1].BackFaces, h.Offset[0], h.Offset[1], h.Offset[2], rows,
                G.LoadError, Said("Loaded 1 noses")),
            "1 2 -500 3 2.5 (no name)  Cap 1 0 1.5 0 -2 222222243 Unable to load model from data/eyes/ 1 ");
  EXPECT_EQ(Str(G.CharacterBar.BackgroundColour == makecol(151, 151, 151), hats.BackgroundColour == makecol(51, 127, 178),
                hats.Y - text_height(RVK_FontStandard), hats.Y + hats.Height),
            "1 1 48 599 ");
  ASSERT_TRUE(G.CharacterSample);
  UnloadGame(G);
  SoundOn = false;
  EXPECT_FALSE(G.CharacterSample);
}

TEST_F(Screen, FailedLoadsReleaseTheirShare) {
  const auto live = LiveNames();
  const int icons = RVK_GetIconCount();
  // Each row rewrites a catalogue (-1 removes a picture, -2 the hats), then
  // the text and what stays: pictures, bodies, eyes, noses, all, the answer,
  // the feet.
  const string model = "Unable to load model from data/", bitmap = "Unable to load bitmap from data/";
  const tuple<int, int, string, string, string> rows[] = {
      {1, 1, Entry(1, 0, "thumb = x.tga\n"), "", "111111111"},
      {7, 2, Entry(7, 0) + "[feet1]\nLeftModel = a.ms3d\nRightModel = no.ms3d\n", model + "feet/no.ms3d", "111111111"},
      {0, 2, "[character0]\n" + Entry(0, 1), "No model specified for character0", "111000000"},
      {0, 1, Entry(0, 0, "", "no.ms3d"), model + "characters/no.ms3d", "111000000"},
      {3, 0, "", "No noses found in noses.ini", "111110000"},
      {4, 1, Entry(4, 0, "", "no.ms3d"), model + "mouths/no.ms3d", "000000000"},
      {-2, 1, "", "No hats found in hats.ini", "111111001"},
      {-1, 0, "connecting", bitmap + "connecting.tga", "000000000"},
      {-1, 0, "none", bitmap + "none.tga", "000000000"},
      {-1, 0, "menuback", bitmap + "menuback.tga", "000000000"},
  };
  for (const auto &[cat, count, text, error, kept] : rows) {
    cat >= 0 ? Catalogue(cat, count, text) : (void)unlink(("data/" + (cat < -1 ? "hats.ini" : text + ".tga")).c_str());
    G.LoadError.clear();
    bool loaded = LoadGame(G);
    string now = error + " ";
    for (bool b : {G.MenuBackTexture.Loaded, G.NoneTexture.Loaded, G.ConnectingTexture.Loaded,
                   !G.Characters.empty(), !G.Eyes.empty(), !G.Noses.empty(), CataloguesLoaded(G), loaded})
      now += b ? "1" : "0";
    now += to_string(G.Feet.size());
    EXPECT_EQ(G.LoadError + " " + kept, now);
    UnloadGame(G);
    EXPECT_TRUE(LiveNames() == live && RVK_GetIconCount() == icons);
    Mend();
  }
  // The failed thumbnail was the icon table's own.
  EXPECT_TRUE(glIsTexture(RVK_GetDefaultIcon().TextureName));
}

TEST_F(Screen, LightsTurnsBackdropAndFont) {
  CameraClass camera;
  camera.Eye[2] = -500;
  ApplyCamera(camera);
  // As the camera alone places them: turned half about Y.
  SetupLights();
  float m[16];
  string s;
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
  // Where X and Y go in a quarter turn by the idle yaw or a view angle.
  const struct { float yaw, angles[3]; const char *axes; } turns[] = {
      {90, {}, "0 0 -1 0 1 0 "}, {0, {64}, "1 0 0 0 0 1 "}, {0, {0, 64}, "0 0 -1 0 1 0 "}, {0, {0, 0, 64}, "0 1 0 -1 0 0 "}};
  for (const auto &t : turns) {
    glLoadIdentity();
    RotateScene(t.yaw, t.angles);
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    s.clear();
    for (int i : {0, 1, 2, 4, 5, 6}) s += Str(std::round(m[i]) + 0);
    EXPECT_EQ(s, t.axes);
  }
  // Tinted blue at half for dialogs.
  ASSERT_TRUE(LoadGame(G));
  for (const auto &b : {make_pair(false, TkPixel{10, 20, 30}), make_pair(true, TkPixel{5, 10, 135})}) {
    RVK_BeginFrame();
    G.DrawMenuBackground(b.first);
    EXPECT_TRUE(TkReadPixel(0, 0) == b.second && TkReadPixel(400, 300) == b.second && TkReadPixel(799, 599) == b.second);
    RVK_End2D(0);
  }
  // The library's font and its lists go.
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

// `p` seen by a single player's camera where the columns and rows cross;
// then whether culling is on, normalising off and the matrix as it was.
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

TEST_F(Screen, DrawPlayer) {
  ASSERT_TRUE(LoadGame(G));
  CharacterEntry &body = G.Characters[0];
  HatEntry &hat = G.Hats[0];
  body.Hat[1] = 60;
  // Each step: the mode, the hat's back faces, offset up and number (no
  // other part), the body's scale, the rows read at x 400 and what they
  // show. A 48-degree view shows 1.348 pixels a unit at 500.
  const tuple<int, bool, float, int, float, vector<int>, string> steps[] = {
      // The body: y 273..327; the hat faces away.
      {GAME_MODE_SINGLE, false, 0, 0, 1, {300, 250, 219}, "#.. 1"},
      // Its inside shows: y 212..226; the offset adds 20.
      {GAME_MODE_SINGLE, true, 0, 0, 1, {219, 205}, "#. 1"},
      {GAME_MODE_SINGLE, true, 20, 0, 1, {219, 192, 300}, ".## 1"},
      {GAME_MODE_SINGLE, true, 20, -1, 1, {192, 300}, ".# 1"},
      {GAME_MODE_SINGLE, true, 0, 0, 2, {250, 138, 219}, "##. 1"},
      // In a network game the body stands on y.
      {GAME_MODE_SERVER, false, 0, -1, 1, {260, 318}, "#. 1"},
  };
  for (const auto &[mode, backFaces, offset, number, scale, ys, shown] : steps) {
    G.Mode = mode, hat.BackFaces = backFaces, hat.Offset[1] = offset, body.Scale = scale;
    PlayerClass p{0, &body, "", 0, -1, -1, -1, -1, -1, -1, -1, number};
    EXPECT_EQ(Draw(p, {400}, ys), shown);
  }
  // Frame 0.5 is list 1, which a model without joints lacks.
  G.Mode = GAME_MODE_SINGLE, body.Model.CurrentFrame = 0.5f;
  PlayerClass bare{0, &body, "", 0, -1, -1, -1, -1, -1, -1, -1, -1};
  EXPECT_EQ(Draw(bare, {400}, {300}), ". 1");
  body.Model.CurrentFrame = 0;
  // Every part on its anchor 120 units up on a client's row: the eyes turned
  // half about X, then about Y, face away; the brows are lifted off it.
  G.Mode = GAME_MODE_CLIENT;
  body.Scale = 1;
  hat.BackFaces = true;
  float *anchors[12] = {body.LeftEye, body.RightEye, body.LeftEar, body.RightEar, body.Nose, body.Mouth,
                        body.LeftEyebrow, body.RightEyebrow, body.Moustache, body.LeftFoot, body.RightFoot, body.Hat};
  vector<int> xs;
  for (int i = 0; i < 12; i++) anchors[i][0] = 30 * i - 165, anchors[i][1] = 100, xs.push_back(622 - 40.44f * i);
  for (float turn : {0, 1, 2}) {
    const float x = 128 * (turn == 1), y = 128 * (turn == 2);
    PlayerClass p{0, &body, "", 0, 0, 0, 0, 0, 0, 0, 0, 0, {x, y}, {x, y}, 10 * turn};
    EXPECT_EQ(Str(Draw(p, xs, {138}), p.EyebrowsY), Str(turn ? "..####..#### 1" : "############ 1", turn ? 10 * turn - 0.25f : 0));
  }
  // A moving body and part take their frames as they are drawn.
  for (ModelClass *m : {&body.Model, &hat.Model}) m->Animated = true, m->LastClock = ModelClock() - 100;
  PlayerClass worn{0, &body, "", 0, -1, -1, -1, -1, -1, -1, -1, 0};
  DrawPlayer(worn, 0, 0, 0);
  EXPECT_TRUE(body.Model.CurrentFrame > 0 && hat.Model.CurrentFrame > 0);
  G.Mode = GAME_MODE_NONE;
}

TEST_F(Screen, GameFramesAndGoodbyes) {
  ASSERT_TRUE(LoadGame(G));
  G.Characters[0].TargetPos[1] = 30;
  TkWindowId();
  auto play = [](int mode, int players, function<void()> close) {
    G.Mode = mode;
    G.Players.resize(players);
    G.SetLocalPlayer(0);
    G.Players.back().Character = &G.Characters[0];
    G.Players.back().PlayerName = "Bo";
    thread closer(close);
    GameLoop(G);
    closer.join();
    RVK_RequestClose(false);
  };
  // Looked at from above its middle, the body stands lower; closed while R is held.
  play(GAME_MODE_SINGLE, 1, [] {
    Frames(3);
    TkKey("r", KEY_R, true);
    Stalled();
    RVK_RequestClose();
    TkKey("r", KEY_R, false);
  });
  EXPECT_TRUE(TkReadPixel(400, 300) == SKY && !(TkReadPixel(400, 340) == SKY));
  // Two bodies 170 apart, 350 away; the list's second line, and no third.
  play(GAME_MODE_SERVER, 2, [] {
    Frames(3);
    RVK_RequestClose();
  });
  auto white = [](int y) {
    uint32_t p[40 * 16];
    glReadPixels(131, 584 - y, 40, 16, GL_RGBA, GL_UNSIGNED_BYTE, p);
    return std::count(p, p + 40 * 16, 0xFFFFFFFF) > 0;
  };
  // The console's fresh lines, the loads', are marked at its left.
  const TkPixel WHITE{255, 255, 255};
  EXPECT_EQ(Str(TkReadPixel(236, 358) == SKY, TkReadPixel(400, 358) == SKY, TkReadPixel(564, 358) == SKY, white(96),
                white(112), TkReadPixel(1, ConsoleTop + 1) == WHITE),
            "0 1 0 1 0 1 ");
  // While it stands, boxes, dialogs and games end at once; each game says
  // goodbye, the try naming its packet.
  glEnable(GL_LIGHTING);
  RVK_RequestClose();
  RVK_MessageBox("Gone");
  RVK_ShowText("Gone", false, "Gone");
  EXPECT_FALSE(HostGameDialog() || ConnectGameDialog());
  play(GAME_MODE_CLIENT, 1, [] {});
  const string tried = "Can not send packet, network is not initialised (packet type=";
  EXPECT_EQ(Str(Said(tried + "20)"), Said(tried + "0)"), !!glIsEnabled(GL_LIGHTING), G.Toolbar.Buttons.size(), G.GetPlayerCount()), "1 1 0 0 0 ");
}

TEST_F(Screen, MenuAndGames) {
  Catalogue(0, 2, Entry(0, 0) + Entry(0, 1));
  ASSERT_TRUE(LoadGame(G));
  TkWindowId();
  Config.PlayerName = "Ann";
  Config.LocalServerPort = to_string(TestPort(0));
  Config.RemoteServerAddress = "127.0.0.1";
  Config.RemoteServerPort = to_string(TestPort(1));
  atomic<bool> left{false};
  bool closed = false;
  thread journey([&] {
    auto in = [](int mode) { return TkWaitFor([=] { return G.Mode == mode; }, 20000); };
    auto local = [] { return Str(G.GetPlayerCount(), G.LocalPlayer->PlayerName, G.LocalPlayer->PlayerId, G.Toolbar.Title); };
    [&] {
      Frames(2);
      // Help shows the readme in a list on the viewer's backdrop until Done.
      Type("Down Down Return");
      const TkPixel backdrop{129, 162, 255};
      EXPECT_TRUE(TkWaitFor([&] {
        TkShot shot;
        return shot.Count(backdrop) > 10000 && shot.Count(TkPixel{219, 219, 219}) > 300000;
      }));
      Press("Return", KEY_ENTER);
      EXPECT_TRUE(TkWaitFor([&] { return TkShot().Count(backdrop) == 0; }));
      // Back on the menu, its title and the words at the top right.
      EXPECT_GT(TkShot().Count(TkPixel{255, 255, 255}, 0, 8, 800, 16), 200);
      Type("Up Up");
      Type("Return");
      ASSERT_TRUE(in(GAME_MODE_SINGLE));
      EXPECT_EQ(local(), "1 Player 0 (no name) ");
      // The second body, then the hat bar and its "No hat".
      Click(60, G.CharacterBar.RowsY + 194);
      Click(G.Toolbar.Buttons[8].X + 16, G.Toolbar.Buttons[8].Y + 16);
      Click(60, G.HatBar.RowsY + 48);
      EXPECT_EQ(Str(G.LocalPlayer->CharacterNumber, G.LocalPlayer->HatNumber, G.CurrentBar), "1 -1 8 ");
      // A reload takes the body back to one the catalogues have.
      Catalogue(0, 1, Entry(0, 0));
      Press("F5", KEY_F5);
      EXPECT_TRUE(G.Characters.size() == 1 && G.LocalPlayer->Character == &G.Characters[0]);
      TkMovePointer(790, 590);
      Press("Escape", KEY_ESC);
      ASSERT_TRUE(in(GAME_MODE_NONE));
      Type("Down Return Return");
      Press("Return", KEY_ENTER);
      ASSERT_TRUE(in(GAME_MODE_SERVER));
      EXPECT_EQ(local(), "1 Ann 1 (no name) (server mode) ");
      Press("F5", KEY_F5);
      EXPECT_TRUE(Said("Cannot reload data while hosting a server"));
      Press("Escape", KEY_ESC);
      ASSERT_TRUE(in(GAME_MODE_NONE));
      // Joining where no one listens.
      Type("Down Return");
      Press("Return", KEY_ENTER);
      ASSERT_TRUE(in(GAME_MODE_CLIENT));
      EXPECT_EQ(G.LocalPlayer->PlayerName, "Ann");
      Press("Escape", KEY_ESC, true);
      system("xdotool key Down Return Down Down Return");
    }();
    if (!TkWaitFor([&] { return left.load(); }, 10000)) closed = true, RVK_RequestClose();
  });
  MainMenu();
  left = true;
  journey.join();
  RVK_RequestClose(false);
  EXPECT_EQ(Str(closed, TkReadPixel(790, 300) == TkPixel{10, 20, 30}, TkReadPixel(1, ConsoleTop + 1) == TkPixel{255, 255, 255}, G.NextPlayerId), "0 1 1 2 ");
}

// Runs the program in `dir` with no helper programs, its messages on its
// output, and the shell command `then` once it draws a frame; answers its
// exit status. One that doesn't end is killed.
int Launch(const string &dir, const string &args, const string &then = "") {
  unlink("frames"), unlink("status");
  system(("cd " + dir + " && (env -i DISPLAY=$DISPLAY TUMBLEKIN_FRAME_TRACE=../frames PATH=/nonexistent ../tumblekin " + args +
          " >../output.txt 2>&1 & echo $! >../pid; wait $!; echo $? >../status) &").c_str());
  auto ended = [] { return FileText("status") != ""; };
  if (then != "" && TkWaitFor([] { return FileText("frames") != ""; }, 30000)) system(then.c_str());
  if (!TkWaitFor(ended, 30000)) system("kill -9 $(cat pid)"), TkWaitFor(ended);
  return stoi(FileText("status"));
}

TEST_F(Screen, TheProgram) {
  const string ini = "[video]\nwidth = 0\nheight = 99999\nwindow = 7\n\n[sound]\nenabled = 0\n\n[network]\n"
                     "PlayerName = Ann\nRemoteServerAddress = 127.0.0.1\n";
  system("mkdir bare nodata c; ln -s ../Tumblekin.dat ../RVK.dat nodata; ln -s ../Tumblekin.dat ../RVK.dat ../data ../Tumblekin.txt c");
  for (string dir : {"bare", "nodata", "c"}) ofstream(dir + "/s.ini") << ini;
  EXPECT_EQ(Launch("bare", "-config s.ini"), 1);
  EXPECT_EQ(FileText("output.txt") + FileText("bare/s.ini"), "Unable to load Tumblekin.dat\n" + ini);
  // SIGTERM and SIGINT end it the ordinary way, also from the box of a failed
  // load, once its window has its name; settings it can't write are told.
  const string signal = "xdotool search --sync --name ^Tumblekin$ getwindowname >name.txt; kill -";
  EXPECT_EQ(Launch("nodata", "-config nodir/x.ini", signal + "TERM $(cat pid)"), 0);
  const string lost = "Unable to write the settings to nodir/x.ini";
  EXPECT_NE(FileText("output.txt").find(lost + "\nRVK generated 1 or more error messages"), string::npos);
  EXPECT_NE(FileText("nodata/RVK Error Log.txt").find(">" + lost), string::npos);
  // Sizes the display can't take became the desktop's.
  EXPECT_EQ(Launch("c", "-CONFIG s.ini", signal + "INT $(cat pid)"), 0);
  EXPECT_EQ(FileText("c/s.ini") + FileText("output.txt") + FileText("name.txt"),
            "[video]\nwidth = 1024\nheight = 768\nwindow = 1\nbpp = 32\n\n[sound]\nenabled = 0\nSoundVolume = 192\n\n[network]\n"
            "PlayerName = Ann\nRemoteServerAddress = 127.0.0.1\nLocalServerPort = 8030\nRemoteServerPort = 8030\nTumblekin\n");
  unlink(Trace.c_str());
}

}  // namespace
