// The game in a window, on catalogues the test writes: loading and what a
// failure releases, the scene and a character, the menu and games driven
// by real keys and clicks, and the program itself started and ended.
#include <gtest/gtest.h>
#include <allegro.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <cmath>
#include <csignal>
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
#include "netpeer/netpeer.h"
#include "rvk/core.h"
#include "support/gl_env.h"
#include "tools/ms3dwriter/ms3dwriter.h"

namespace {

typedef std::vector<float> Floats;

std::string Text(const std::string &path) {
  std::stringstream s;
  s << std::ifstream(path).rdbuf();
  return s.str();
}

// Every frame the library waits for adds a line to this trace, named before
// the window opens.
const std::string Trace = "/tmp/tumblekin-frames-" + std::to_string(getpid());
const int TraceNamed = setenv("TUMBLEKIN_FRAME_TRACE", Trace.c_str(), 1);

void Frames(int n) {
  auto lines = [] {
    std::string t = Text(Trace);
    return std::count(t.begin(), t.end(), '\n');
  };
  long until = lines() + n;
  EXPECT_TRUE(TkWaitFor([&] { return lines() >= until; }, 20000));
}
// Waits until the loop stands still in a wait for a key or button to come up.
void Stalled() {
  TkWaitFor([] {
    std::string before = Text(Trace);
    rest(200);
    return Text(Trace) == before;
  });
}
void Type(const char *keys) {
  std::system((std::string("xdotool key ") + keys).c_str());
  Frames(4);
}
// A hot key, polled once a frame: seen down, then up.
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

// A square of `size` units in the XY plane facing a camera at negative Z,
// or facing away from it unless it has both sides.
void WriteSquare(const std::string &path, float size, bool bothSides) {
  MS3DWriter w;
  w.Vertices.resize(4);
  w.Vertices[1].Position[0] = w.Vertices[2].Position[0] = w.Vertices[2].Position[1] = w.Vertices[3].Position[1] = size;
  const uint16_t order[4][3] = {{0, 1, 2}, {0, 2, 3}, {0, 2, 1}, {0, 3, 2}};
  w.Groups.resize(1);
  for (uint16_t t = 0; t < (bothSides ? 4 : 2); t++) {
    w.Triangles.push_back(msTriangle());
    for (int k = 0; k < 3; k++) w.Triangles[t].VertexIndices[k] = order[t][k], w.Triangles[t].VertexNormals[k][2] = t < 2 ? 1 : -1;
    w.Groups[0].TriangleIndices.push_back(t);
  }
  w.Save(path.c_str());
}

void WriteTga(const std::string &path, int grey) {
  BITMAP *bmp = create_bitmap_ex(32, 16, 16);
  clear_to_color(bmp, makecol32(grey, 2 * grey, 3 * grey));
  save_bitmap(path.c_str(), bmp, nullptr);
  destroy_bitmap(bmp);
}

const std::string DIRS[9] = {"characters", "eyes", "ears", "noses", "mouths", "eyebrows", "moustaches", "feet", "hats"};
const std::string SECTIONS[9] = {"character", "eyes", "ears", "nose", "mouth", "eyebrows", "moustache", "feet", "hat"};

// Entry n of catalogue `cat`: the lines given, which win over those that
// follow, then its model and thumbnail.
std::string Entry(int cat, int n, const std::string &more = "", const std::string &model = "a.ms3d") {
  bool pair = cat == 1 || cat == 2 || cat == 5 || cat == 7;
  return "[" + SECTIONS[cat] + std::to_string(n) + "]\n" + more +
         (pair ? "LeftModel = " + model + "\nRightModel = " : "model = ") + model + "\nthumb = a.tga\n";
}
void Catalogue(int cat, int count, const std::string &entries) {
  std::ofstream("data/" + DIRS[cat] + ".ini") << "[info]\ncount = " << count << "\n" << entries;
}
// The three pictures, and every catalogue with one entry; the hat a small
// square facing away.
void Mend() {
  WriteTga("data/menuback.tga", 10);
  WriteTga("data/none.tga", 20);
  WriteTga("data/connecting.tga", 30);
  for (int i = 0; i < 9; i++) Catalogue(i, 1, Entry(i, 0, "", i == 8 ? "h.ms3d" : "a.ms3d"));
}

// GL textures and display lists in use.
std::pair<int, int> LiveNames() {
  GLuint texture, list = glGenLists(1);
  glGenTextures(1, &texture);
  std::pair<int, int> live;
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
    for (std::string file : {"Tumblekin.dat", "RVK.dat", "Tumblekin.txt", "tumblekin", "data/sounds"})
      symlink((TK_GAME_DIR "/" + file).c_str(), file.c_str());
    for (const std::string &d : DIRS) {
      mkdir(("data/" + d).c_str(), 0755);
      WriteSquare("data/" + d + "/a.ms3d", 40, true);
      WriteTga("data/" + d + "/a.tga", 40);
    }
    WriteSquare("data/hats/h.ms3d", 10, false);
    ConsoleLogFile = std::fopen("console.log", "w");
    ConsoleLogOn = true;
  }
  void SetUp() override {
    Mend();
    SoundOn = false;
    Game.LoadError.clear();
  }
  void TearDown() override { UnloadGame(Game); }
  static bool Said(const std::string &line) { return Text("console.log").find(": " + line + "\n") != std::string::npos; }
};

// ---- Loading ----

TEST_F(Screen, CataloguesTakeTheirKeysAndStopAtTheirFirstBrokenEntry) {
  const char *points[14] = {"Camera", "Target", "LeftEye", "RightEye", "LeftEar", "RightEar", "Nose", "Mouth",
                            "LeftEyebrow", "RightEyebrow", "Moustache", "LeftFoot", "RightFoot", "Hat"};
  std::string keys = "scale = 2.5\n";
  Floats expected(42, 0);
  for (int i = 0; i < 14; i++) keys += points[i] + std::string("XYZ").substr(i % 3, 1) + " = " + std::to_string(i + 1) + "\n", expected[3 * i + i % 3] = i + 1;
  expected[2] = -500;  // a camera's Z when not given
  Catalogue(0, 2, Entry(0, 0, keys) + Entry(0, 1));
  // eyes1 has no left model, so eyes2 is never read.
  Catalogue(1, 3, Entry(1, 0) + "[eyes1]\nRightModel = a.ms3d\n" + Entry(1, 2));
  // A negative count ends at the first section without its model.
  Catalogue(2, -1, Entry(2, 0) + Entry(2, 1));
  // A count below the sections: the rest is ignored.
  Catalogue(3, 1, Entry(3, 0) + Entry(3, 1));
  Catalogue(8, 1, Entry(8, 0, "backfaces = 2\nOffsetX = 1.5\nOffsetZ = -2\nname = Cap\n"));
  SoundOn = true;
  ASSERT_TRUE(LoadGame(Game));
  EXPECT_EQ(Game.LoadError, "Unable to load model from data/ears/");
  for (const char *line : {"Loaded 2 characters", "Loaded 1 eyes", "Loaded 2 ears", "Loaded 1 noses"}) EXPECT_TRUE(Said(line)) << line;
  const CharacterEntry &b = Game.Characters[0], &plain = Game.Characters[1];
  const HatEntry &h = Game.Hats[0];
  EXPECT_EQ(Floats(b.CameraPos, b.CameraPos + 42), expected);
  EXPECT_EQ(std::make_tuple(b.Scale, plain.Name, plain.CameraPos[2], plain.Scale, Game.Eyes[0].Name, h.Name, h.BackFaces),
            std::make_tuple(2.5f, std::string("(no name)"), -500.0f, 1.0f, std::string(""), std::string("Cap"), true));
  EXPECT_EQ(Floats(h.Offset, h.Offset + 3), (Floats{1.5f, 0, -2}));
  std::vector<size_t> rows;
  for (int i = 0; i < 9; i++) rows.push_back(Game.Bar(i).Rows.size());
  EXPECT_EQ(rows, (std::vector<size_t>{2, 2, 3, 2, 2, 2, 2, 2, 2}));
  EXPECT_EQ(std::make_tuple(Game.CharacterBar.BackgroundColour, Game.HatBar.BackgroundColour, Game.HatBar.ThumbHeight,
                            Game.CharacterBar.ThumbHeight, Game.HatBar.Y, Game.HatBar.Height),
            std::make_tuple(makecol(151, 151, 151), makecol(51, 127, 178), 96, 128, text_height(RVK_FontStandard) + 48,
                            551 - text_height(RVK_FontStandard)));
  ASSERT_NE(Game.HatSample, nullptr);
  UnloadGame(Game);
  EXPECT_EQ(Game.HatSample, nullptr);
}

TEST_F(Screen, ALoadReleasesWhatItsFailureSaysAndReloadsLeaveNothing) {
  const auto live = LiveNames();
  const int icons = RVK_GetIconCount();
  // Each row rewrites a catalogue or removes a file, then tells the text and
  // what stays: the three pictures, bodies, eyes and noses. A thumbnail that
  // fails and a right foot that fails are no failure of the load.
  const std::tuple<int, int, std::string, std::string, std::string, std::string> rows[] = {
      {1, 1, Entry(1, 0, "thumb = x.tga\n"), "", "", "111111"},
      {7, 2, Entry(7, 0) + "[feet1]\nLeftModel = a.ms3d\nRightModel = no.ms3d\n", "", "Unable to load model from data/feet/no.ms3d", "111111"},
      {0, 2, "[character0]\nthumb = a.tga\n" + Entry(0, 1), "", "No model specified for character0", "111000"},
      {0, 1, Entry(0, 0, "", "no.ms3d"), "", "Unable to load model from data/characters/no.ms3d", "111000"},
      {3, 0, "", "", "No noses found in noses.ini", "111110"},
      {4, 1, Entry(4, 0, "", "no.ms3d"), "", "Unable to load model from data/mouths/no.ms3d", "000000"},
      {8, 1, "", "data/hats.ini", "No hats found in hats.ini", "111111"},
      {-1, 0, "", "data/connecting.tga", "Unable to load bitmap from data/connecting.tga", "000000"},
      {-1, 0, "", "data/none.tga", "Unable to load bitmap from data/none.tga", "000000"},
      {-1, 0, "", "data/menuback.tga", "Unable to load bitmap from data/menuback.tga", "000000"},
  };
  for (const auto &row : rows) {
    if (std::get<0>(row) >= 0) Catalogue(std::get<0>(row), std::get<1>(row), std::get<2>(row));
    unlink(std::get<3>(row).c_str());
    Game.LoadError.clear();
    bool loaded = LoadGame(Game);
    std::string kept;
    for (bool b : {Game.MenuBackTexture.Loaded, Game.NoneTexture.Loaded, Game.ConnectingTexture.Loaded,
                   !Game.Characters.empty(), !Game.Eyes.empty(), !Game.Noses.empty(), CataloguesLoaded(Game), loaded})
      kept += b ? "1" : "0";
    EXPECT_EQ(std::make_tuple(Game.LoadError, kept), std::make_tuple(std::get<4>(row), std::get<5>(row) + (&row - rows < 2 ? "11" : "00")));
    UnloadGame(Game);
    EXPECT_EQ(std::make_tuple(LiveNames(), RVK_GetIconCount(), Game.Eyes.size(), Game.EyesBar.Rows.size(), Game.HatBar.Rows.size()),
              std::make_tuple(live, icons, 0u, 0u, 0u));
    Mend();
  }
  // A failed thumbnail stood in with the icon table's own default icon.
  EXPECT_TRUE(glIsTexture(RVK_GetDefaultIcon().TextureName));
}

// ---- Drawing ----

TEST_F(Screen, LightsTurnsBackgroundAndTheGameFont) {
  CameraClass camera;
  camera.Eye[2] = -500;
  ApplyCamera(camera);
  float m[16];
  glGetFloatv(GL_PROJECTION_MATRIX, m);
  for (float &v : m) v = std::round(v * 1000) / 1000;
  // 48 degrees of height over 800 by 600, near 1 and far 4000.
  EXPECT_EQ(Floats(m, m + 16), (Floats{1.685f, 0, 0, 0, 0, 2.246f, 0, 0, 0, 0, -1.001f, -1, 0, 0, -2.001f, 0}));
  SetupLights();
  // Each light as placed under the camera alone, turned half about Y.
  Floats lights;
  for (GLenum light : {GL_LIGHT0, GL_LIGHT1}) {
    for (GLenum what : {GL_POSITION, GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR}) {
      float v[4];
      glGetLightfv(light, what, v);
      lights.insert(lights.end(), v, v + 4);
    }
    lights.push_back(glIsEnabled(light) && glIsEnabled(GL_LIGHTING));
  }
  EXPECT_EQ(lights, (Floats{1, .5f, 1, 0, .5f, .5f, .5f, 1, 1, 1, 1, 1, .5f, .5f, .5f, 1, 1,
                            -1, .5f, -1, 0, .5f, .5f, .5f, 1, 1, 1, 1, 1, .5f, .5f, .5f, 1, 1}));
  DisableLights();
  EXPECT_FALSE(glIsEnabled(GL_LIGHT0) || glIsEnabled(GL_LIGHT1) || glIsEnabled(GL_LIGHTING));
  // A quarter turn by the idle yaw (90 degrees) and each view angle (64 steps):
  // where the X axis and the Y axis go.
  const std::pair<Floats, Floats> turns[] = {{{90, 0, 0, 0}, {0, 0, -1, 0, 1, 0}}, {{0, 64, 0, 0}, {1, 0, 0, 0, 0, 1}},
                                             {{0, 0, 64, 0}, {0, 0, -1, 0, 1, 0}}, {{0, 0, 0, 64}, {0, 1, 0, -1, 0, 0}}};
  for (const auto &t : turns) {
    glLoadIdentity();
    RotateScene(t.first[0], &t.first[1]);
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    for (int i = 0; i < 6; i++) EXPECT_NEAR(m[i / 3 * 4 + i % 3], t.second[i], 1e-6) << t.first[0] << i;
  }
  // The menu's picture over the whole screen, tinted blue at half for dialogs.
  ASSERT_TRUE(LoadGame(Game));
  const std::pair<bool, TkPixel> backs[] = {{false, {10, 20, 30}}, {true, {5, 10, 135}}};
  for (const auto &b : backs) {
    RVK_BeginFrame();
    Game.DrawMenuBackground(b.first);
    EXPECT_TRUE(TkReadPixel(0, 0) == b.second && TkReadPixel(799, 599) == b.second) << b.first;
    RVK_End2D(0);
  }
  // The game's font takes the place of the library's, whose lists go, and
  // moves the console up by its lines.
  DATAFILE data[2] = {{RVK_GetDatafileObject("_font_standard"), DAT_FONT, 0, nullptr}, {nullptr, DAT_END, 0, nullptr}};
  const int lists = LiveNames().second;
  FONT *before = RVK_FontStandard;
  ConsoleTop = 0;
  UseGameFont(data);
  EXPECT_EQ(std::make_tuple(RVK_FontStandard != before, LiveNames().second, ConsoleTop),
            std::make_tuple(true, lists, 540 - 10 * text_height(RVK_FontStandard)));
  data[0].type = DAT_BITMAP;
  UseGameFont(data);
  destroy_font((FONT *)data[0].dat);
}

// At 500 units a 48-degree view shows 300 / (500 tan 24) = 1.348 pixels a unit.
TEST_F(Screen, DrawPlayerPutsTheHatOnItsAnchorAndScalesAll) {
  ASSERT_TRUE(LoadGame(Game));
  Game.Characters[0].Hat[1] = 60;
  // Each step: the mode, the hat's back faces, its offset up, the hat
  // number, the body's scale, then sky or drawn at x 400 on the rows given.
  const std::tuple<int, bool, float, int, float, std::vector<int>, std::string> steps[] = {
      // The body, 40 units: y 273..327; the hat faces away and is culled.
      {GAME_MODE_SINGLE, false, 0, 0, 1, {300, 250, 219}, "#.."},
      // The inside shows: the hat at 60 units up, y 212..226.
      {GAME_MODE_SINGLE, true, 0, 0, 1, {219, 205}, "#."},
      // The offset adds to the anchor: 80 units up.
      {GAME_MODE_SINGLE, true, 20, 0, 1, {219, 192, 300}, ".##"},
      {GAME_MODE_SINGLE, true, 20, -1, 1, {192, 300}, ".#"},
      // Scale 2: body 80 units, hat anchor at 120.
      {GAME_MODE_SINGLE, true, 0, 0, 2, {250, 138, 219}, "##."},
      // In a network game the body stands on y: its centre 20 units up.
      {GAME_MODE_SERVER, false, 0, -1, 1, {260, 318}, "#."},
  };
  for (const auto &s : steps) {
    Game.Mode = std::get<0>(s);
    Game.Hats[0].BackFaces = std::get<1>(s);
    Game.Hats[0].Offset[1] = std::get<2>(s);
    Game.Characters[0].Scale = std::get<4>(s);
    PlayerClass player{0, &Game.Characters[0], "", 0, -1, -1, -1, -1, -1, -1, -1, std::get<3>(s)};
    // The colour is taken at the next clear.
    RVK_SetClearColour(makecol(161, 214, 255));
    RVK_SetClearColour(makecol(161, 214, 255));
    CameraClass camera;
    camera.Eye[2] = -500;
    ApplyCamera(camera);
    float before[16], after[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, before);
    DrawPlayer(player, 0, 0, 0);
    glGetFloatv(GL_MODELVIEW_MATRIX, after);
    std::string column;
    for (int y : std::get<5>(s)) column += TkReadPixel(400, y) == TkPixel{161, 214, 255} ? '.' : '#';
    EXPECT_EQ(column, std::get<6>(s)) << &s - steps;
    // Culling back on, no normalising, the matrix as it was.
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE) && !glIsEnabled(GL_NORMALIZE) && Floats(after, after + 16) == Floats(before, before + 16));
  }
  Game.Mode = GAME_MODE_NONE;
}

// ---- Playing ----

TEST_F(Screen, MenuAndGamesDrivenByKeysAndClicks) {
  Catalogue(0, 2, Entry(0, 0) + Entry(0, 1));
  ASSERT_TRUE(LoadGame(Game));
  TkWindowId();
  Config.PlayerName = "Ann";
  Config.LocalServerPort = std::to_string(TestPort(0));
  Config.RemoteServerAddress = "127.0.0.1";
  Config.RemoteServerPort = std::to_string(TestPort(1));
  bool closed = false;
  std::thread journey([&] {
    auto in = [](int mode) { return TkWaitFor([=] { return Game.Mode == mode; }, 20000); };
    [&] {
      Frames(2);
      Type("Return");
      ASSERT_TRUE(in(GAME_MODE_SINGLE));
      EXPECT_EQ(std::make_tuple(Game.GetPlayerCount(), Game.LocalPlayer->PlayerName, Game.LocalPlayer->PlayerId, Game.Toolbar.Title),
                std::make_tuple(1, std::string("Player"), 0, std::string("(no name)")));
      // The second body from its bar, then the hat bar and its "No hat".
      Click(60, Game.CharacterBar.RowsY + 194);
      Click(Game.Toolbar.Buttons[8].X + 16, Game.Toolbar.Buttons[8].Y + 16);
      Click(60, Game.HatBar.RowsY + 48);
      EXPECT_EQ(std::make_tuple(Game.LocalPlayer->CharacterNumber, Game.LocalPlayer->HatNumber, Game.CurrentBar), std::make_tuple(1, -1, 8));
      // A reload reads the catalogues anew and takes the body back to one they have.
      Catalogue(0, 1, Entry(0, 0));
      Press("F5", KEY_F5);
      EXPECT_EQ(std::make_tuple(Game.Characters.size(), Game.LocalPlayer->Character), std::make_tuple(1u, &Game.Characters[0]));
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
      // Hosting: a client joins (and takes an ID), F5 is refused, and the
      // client hears the server leave.
      Type("Down Return Return");
      Press("Return", KEY_ENTER);
      ASSERT_TRUE(in(GAME_MODE_SERVER));
      EXPECT_EQ(std::make_tuple(Game.LocalPlayer->PlayerName, Game.LocalPlayer->PlayerId, Game.Toolbar.Title),
                std::make_tuple(std::string("Ann"), 1, std::string("(no name) (server mode)")));
      TestHost client;
      client.StartClient(TestPort(0));
      EXPECT_TRUE(PumpUntil([&] { client.Service(5); }, [] { return Game.GetPlayerCount() == 2; }, 10000));
      Press("F5", KEY_F5);
      EXPECT_TRUE(Said("Cannot reload data while hosting a server"));
      Press("Escape", KEY_ESC);
      EXPECT_TRUE(PumpUntil([&] { client.Service(5); }, [&] { return !client.Received.empty() && Hex(client.Received.back().Data) == "14 00 00 00"; }, 10000));
      ASSERT_TRUE(in(GAME_MODE_NONE));
      // Joining a port where no one listens, given up with Esc.
      Type("Down Return");
      Press("Return", KEY_ENTER);
      ASSERT_TRUE(in(GAME_MODE_CLIENT));
      EXPECT_EQ(Game.LocalPlayer->PlayerName, "Ann");
      Press("Escape", KEY_ESC, true);
      // Back, a new game, and a request to close while R is held.
      Type("Down Return Up Return");
      ASSERT_TRUE(in(GAME_MODE_SINGLE));
      TkKey("r", KEY_R, true);
      Stalled();
      closed = Game.LocalPlayer->PlayerId == 3;
    }();
    RVK_RequestClose();
    TkKey("r", KEY_R, false);
  });
  MainMenu();
  journey.join();
  RVK_RequestClose(false);
  EXPECT_EQ(std::make_tuple(closed, Game.Mode, Game.GetPlayerCount(), Game.NextPlayerId), std::make_tuple(true, 0, 0, 4));
}

// ---- The program ----

// Runs the program in `dir` with Allegro's messages on its output (no
// window to show them) and calls `then` once its first frame is drawn;
// answers its exit status.
int Launch(const char *dir, std::vector<const char *> args, std::function<void(pid_t)> then = nullptr) {
  unlink("frames");
  args.insert(args.begin(), "tumblekin");
  args.push_back(nullptr);
  std::string display = std::string("DISPLAY=") + getenv("DISPLAY");
  const char *env[] = {display.c_str(), "PATH=/nonexistent", "TUMBLEKIN_FRAME_TRACE=../frames", "ALSA_CONFIG_PATH=/dev/null", nullptr};
  pid_t pid = fork();
  if (pid == 0) {
    int out = open("output.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (chdir(dir) == 0 && dup2(out, 1) == 1 && dup2(out, 2) == 2) execve("../tumblekin", (char **)args.data(), (char **)env);
    _exit(127);
  }
  if (then && TkWaitFor([] { return !Text("frames").empty(); }, 30000)) then(pid);
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST_F(Screen, TheProgramKeepsItsSettingsAndEndsOnASignal) {
  const std::string ini = "[video]\nwidth = 0\nheight = 99999\nwindow = 7\n\n[sound]\nenabled = 0\n\n[network]\n"
                          "PlayerName = Ann\nRemoteServerAddress = 127.0.0.1\n";
  // a: no "Tumblekin.dat", b: no "RVK.dat", c: all there.
  for (std::string dir : {"a", "b", "c"}) {
    mkdir(dir.c_str(), 0755);
    std::ofstream(dir + "/s.ini") << ini;
    for (std::string file : {"data", "Tumblekin.txt", "Tumblekin.dat", "RVK.dat"})
      if (dir > "b" || (dir == "b" && file[0] == 'T')) symlink(("../" + file).c_str(), (dir + "/" + file).c_str());
  }
  // It ends at once with 1, or with 0 when no window opens; neither touches the settings.
  EXPECT_EQ(Launch("a", {"-config", "s.ini"}), 1);
  EXPECT_EQ(Text("output.txt"), "Unable to load Tumblekin.dat\n");
  EXPECT_EQ(Launch("b", {"-config", "s.ini"}), 0);
  EXPECT_EQ(Text("a/s.ini") + Text("b/s.ini"), ini + ini);
  // Sizes the display can't take become the desktop's; Exit is chosen by keys.
  const std::string saved = "[video]\nwidth = 1024\nheight = 768\nwindow = 1\nbpp = 32\n\n[sound]\nenabled = 0\n"
                            "SoundVolume = 192\n\n[network]\nPlayerName = Ann\nRemoteServerAddress = 127.0.0.1\n"
                            "LocalServerPort = 8030\nRemoteServerPort = 8030\n";
  auto exit = [](pid_t) { std::system("xdotool search --sync --onlyvisible --name '^Tumblekin$' windowfocus --sync key Up Return"); };
  EXPECT_EQ(Launch("c", {"-config", "s.ini"}, exit), 0);
  EXPECT_EQ(Text("c/s.ini"), saved);
  // SIGTERM and SIGINT end it the ordinary way, its settings written or,
  // when they can't be, told about.
  auto signal = [](int number) { return [=](pid_t pid) { kill(pid, number); }; };
  EXPECT_EQ(Launch("c", {"-config", "nodir/x.ini"}, signal(SIGTERM)), 0);
  EXPECT_NE(Text("output.txt").find("Unable to write the settings to nodir/x.ini\nRVK generated 1 or more error messages"), std::string::npos);
  std::ofstream("c/s.ini") << ini;
  EXPECT_EQ(Launch("c", {"-CONFIG", "s.ini"}, signal(SIGINT)), 0);
  EXPECT_EQ(std::make_tuple(Text("c/s.ini"), Text("output.txt")), std::make_tuple(saved, std::string()));
  std::string log, line, size = "\" is no size this display can show; ";
  for (std::stringstream in(Text("c/RVK Error Log.txt")); std::getline(in, line);) log += line[0] == '>' ? line : "";
  const std::string sizes = ">Settings: \"width = 0" + size + "1024 is used instead>Settings: \"height = 99999" + size + "768 is used instead";
  EXPECT_EQ(log, sizes + ">Unable to write the settings to nodir/x.ini" + sizes);
  unlink(Trace.c_str());
}

}  // namespace
