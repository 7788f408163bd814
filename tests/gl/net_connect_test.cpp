// The dialogs and the client's connection to a fake server, with real X input.
#include <gtest/gtest.h>
#include <atomic>
#include <thread>
#include "app/config.h"
#include "net/client.h"
#include "net/host.h"
#include "net/netstate.h"
#include "net/send.h"
#include "netpeer/netpeer.h"
#include "rvk/core.h"
#include "rvk/textfield.h"
#include "support/gl_env.h"
#include "gl/rvk_xinput.h"

const TkPixel TITLE = {3, 3, 255}, BODY = {147, 147, 147}, FIELD = {255, 255, 255}, BLACK = {0, 0, 0};

// The screen as it is now; the window stands in its upper left corner.
class Shot {
public:
  int W = 0, H = 0;
  std::vector<TkPixel> Rgb;
  Shot() {
    FILE *p = popen("import -window root -depth 8 ppm:-", "r");
    if (p && std::fscanf(p, "P6 %d %d 255", &W, &H) == 2 && std::fgetc(p) != EOF) {
      Rgb.resize((size_t)W * H);
      Rgb.resize(std::fread(Rgb.data(), 3, Rgb.size(), p));
    }
    if (p) pclose(p);
  }
  TkPixel At(int x, int y) const { return (size_t)(y * W + x) < Rgb.size() ? Rgb[y * W + x] : TkPixel{}; }
  int Count(TkPixel c) const { return (int)std::count(Rgb.begin(), Rgb.end(), c); }
};

// The first picture, within 20 s, for which `shows` holds.
Shot When(const std::function<bool(const Shot &)> &shows) {
  Shot s;
  for (double end = NowMs() + 20000; !shows(s) && NowMs() < end; rest(200)) s = Shot();
  return s;
}

// A key held long enough for a frame-polled key to be seen.
void Key(const std::string &key) {
  std::system(("xdotool keydown " + key + " sleep 0.3 keyup " + key + " sleep 0.3").c_str());
}

// Runs `step` here while `drive` acts from another thread. Should keys be
// lost on a slow machine, Enter and Esc follow in turn until `step` returns,
// so that the test fails rather than hangs.
bool Driven(const std::function<void()> &drive, const std::function<bool()> &step) {
  std::atomic<bool> done{false};
  std::thread driver([&] {
    drive();
    for (int i = 0; !done; i++) i > 200 && i % 20 == 0 ? Key(i % 40 ? "Return" : "Escape") : rest(50);
  });
  bool result = step();
  done = true;
  driver.join();
  return result;
}

class DialogTest : public testing::Test {
protected:
  int Wx = (TK_SCREEN_W - 600) / 2, Wy = (TK_SCREEN_H - 400) / 2, H = text_height(RVK_FontStandard);
  std::function<bool(const Shot &)> Dialog = [&](const Shot &s) { return s.At(Wx + 300, Wy + 2) == TITLE; };
  std::function<bool(const Shot &)> Box = [&](const Shot &s) { return s.At(Wx + 300, Wy + 2) == BLACK; };
  void SetUp() override {
    Config.RemoteServerAddress = "127.0.0.1";
    ASSERT_EQ(std::system(("xdotool windowmove --sync " + TkWindowId() + " 0 0").c_str()), 0);
  }
  TkPixel FieldEnd(const Shot &s, int chars, int lines) {
    return s.At(Wx + 6 + RVK_TextWidthForChars(RVK_FontStandard, chars), Wy + lines * H + H / 2);
  }
};

TEST_F(DialogTest, PortFromTheSettingsIsRefusedUntilMended) {
  Config.PlayerName = "Hana";
  Config.LocalServerPort = "80800";
  Shot dialog, box;
  EXPECT_TRUE(Driven(
      [&] {
        dialog = When(Dialog);
        std::system("xdotool type --delay 150 Mo");
        Key("Return");
        box = When(Box);
        Key("Return");
        When(Dialog);
        Key("Tab");
        Key("BackSpace");
        Key("Return");
      },
      HostGameDialog));
  EXPECT_EQ(Config.PlayerName, "HanaMo");
  EXPECT_EQ(Config.LocalServerPort, "8080");
  // The box alone; the dialog's title, body and two fields.
  EXPECT_GT(box.Count(TITLE), 1000);
  EXPECT_EQ((std::vector<TkPixel>{dialog.At(Wx + 300, Wy + 2), dialog.At(Wx + 5, Wy + H + 10), FieldEnd(dialog, 16, 3),
                                  FieldEnd(dialog, 10, 6), FieldEnd(dialog, 10, 9)}),
            (std::vector<TkPixel>{TITLE, BODY, FIELD, FIELD, BODY}));
  EXPECT_FALSE(dialog.At(Wx - 2, Wy + 300) == BODY);
}

TEST_F(DialogTest, ConnectDialogRefusesPortZeroAndCancelLeavesSettings) {
  Config.PlayerName = "Ivo";
  Config.RemoteServerPort = "0";
  Shot dialog;
  EXPECT_FALSE(Driven(
      [&] {
        dialog = When(Dialog);
        std::system("xdotool type --delay 150 xyz");
        Key("Return");
        When(Box);
        Key("Return");
        When(Dialog);
        Key("Escape");
      },
      ConnectGameDialog));
  EXPECT_EQ(Config.PlayerName + Config.RemoteServerAddress + Config.RemoteServerPort, "Ivo127.0.0.10");
  EXPECT_EQ(FieldEnd(dialog, 10, 9), FIELD);
}

TEST(PortTest, PortsAreNumbersFromOneTo65535) {
  const struct {
    const char *Text;
    int Port;
  } rows[] = {{"1", 1},   {"65535", 65535}, {"08030", 8030}, {"0", 7},  {"65536", 7}, {"99999", 7},
              {"", 7},    {"abc", 7},       {"80a", 7},      {" 80", 7}, {"-1", 7},   {"4294967297", 7}};
  for (const auto &row : rows) {
    uint16_t port = 7;
    EXPECT_EQ(NET_ParsePort(row.Text, port), row.Port != 7) << row.Text;
    EXPECT_EQ(port, row.Port) << row.Text;
  }
}

// Serves one client from a thread: sends the first `Release` packets of its
// script (an empty one hangs up) and keeps what arrives.
class FakeServer {
public:
  TestHost Host;
  std::vector<Bytes> Script;
  std::atomic<size_t> Release{0}, Count{0};
  std::atomic<bool> Stop{false};
  std::thread Thread;
  void Start(uint16_t port, const std::vector<Bytes> &script, size_t release) {
    Script = script;
    Release = release;
    ASSERT_TRUE(Host.Start(port, true));
    Thread = std::thread([this] {
      for (size_t sent = 0; !Stop; Count = Host.Received.size()) {
        Host.Service(2);
        for (; Host.Connected() && sent < Release; sent++)
          Script[sent].empty() ? enet_peer_disconnect(Host.Peer, 0) : Host.Send(Script[sent], 1);
      }
    });
  }
  void Finish() {
    Stop = true;
    if (Thread.joinable()) Thread.join();
  }
  ~FakeServer() { Finish(); }
};

class ConnectTest : public testing::Test {
protected:
  ConsoleCapture Console;
  FakeServer Server;
  uint16_t Port = TestPort(200);

  void SetUp() override {
    Game.Characters.resize(2);
    Game.Eyes.resize(3);
    Config.RemoteServerAddress = "127.0.0.1";
    Config.RemoteServerPort = std::to_string(Port);
    Config.PlayerName = "Zed, Jr";
    Game.Mode = GAME_MODE_CLIENT;
    Game.SetPlayerCount(1, false);
    Game.SetLocalPlayer(0);
  }
  void TearDown() override {
    Server.Finish();
    NET_ShutdownNetwork();
    Game.Mode = GAME_MODE_NONE;
  }
  bool Connect() {
    return Driven([] {}, NET_ConnectToServer);
  }
  // Polls once a frame until the game ends (false) or `ms` have passed.
  static bool PollFor(double ms) {
    for (double end = NowMs() + ms; NowMs() < end; rest(22))
      if (!NET_ClientPoll()) return false;
    return true;
  }
};

TEST_F(ConnectTest, NumberedJoinThenServerGoodbye) {
  // Before the number: a stray packet, a dropped one, a number beyond its count.
  Server.Start(Port,
               {Pkt(NP_PONG), Bytes{NP_UPDATE_PLAYER_NAME, 7}, Pkt(NP_SET_PLAYER_NUMBER, {2, 2}),
                Pkt(NP_SET_PLAYER_NUMBER, {1, 2}), Pkt(NP_VERSION_INFO, {}, "Tumblekin v1.0"),
                Pkt(NP_UPDATE_PLAYER_ID, {1, 7}), Pkt(NP_UPDATE_EYES, {0, 2}), Pkt(NP_UPDATE_QUIT, {0})},
               7);
  ASSERT_TRUE(Connect());
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_TRUE(PollFor(500));
  EXPECT_EQ(Game.Players[0].EyesNumber, 2);
  EXPECT_EQ(Game.Players[1].PlayerId, 7);
  EXPECT_EQ(Console.Said(), (Texts{"NET_InitNetwork: Network initialised.",
                                   "Connection to 127.0.0.1:" + std::to_string(Port) + " established",
                                   "Ignored unexpected packet (type 51)", "Ignored unexpected packet (type 21)",
                                   "Ignored unexpected packet (type 40)",
                                   "Client and server versions match (Tumblekin v1.0)"}));
  // A pick goes to the server only; the goodbyes end the game, flushed at once.
  NP_SendPacket(NP_TO_DEFAULT, NP_REPORT_EYES, "%d", 1);
  NP_SendPacket(7, NP_REPORT_EYES, "%d", 2);
  NP_SendPacket(NP_TO_ALL, NP_REPORT_EYES, "%d", 2);
  EXPECT_EQ(Console.Lines().back(), "Client attempted to send a packet to all other clients");
  Server.Release = 8;
  EXPECT_FALSE(PollFor(3000));
  NP_SendPacket(NP_TO_SERVER, NP_REPORT_QUIT, "");
  PumpUntil([] { rest(5); }, [&] { return Server.Count == 3; }, 2000);
  Server.Finish();
  EXPECT_EQ(Server.Host.Seen(), (Texts{"0: 01 07 00 5A 65 64 0D 20 4A 72 00", "0: 03 01 00 00", "0: 00 00"}));
}

TEST_F(ConnectTest, DifferentVersionShowsTheBoxAndEnds) {
  Server.Start(Port,
               {Pkt(NP_SET_PLAYER_NUMBER, {1, 2}), Pkt(NP_VERSION_INFO, {}, "Tumblekin v1.01"),
                Pkt(NP_UPDATE_PLAYER_ID, {1, 3})},
               3);
  ASSERT_TRUE(Connect());
  Shot box;
  EXPECT_FALSE(Driven([&] { box = When([](const Shot &s) { return s.Count(TITLE) > 1000; }), Key("Return"); },
                      [] { return PollFor(8000); }));
  EXPECT_GT(box.Count(TITLE), 1000);
  EXPECT_EQ(Game.Players[1].PlayerId, 0);  // nothing behind the version applied
}

TEST_F(ConnectTest, LostConnectionEndsTheGame) {
  Server.Start(Port, {Pkt(NP_SET_PLAYER_NUMBER, {1, 2}), {}}, 1);
  ASSERT_TRUE(Connect());
  EXPECT_TRUE(PollFor(200));
  Server.Release = 2;
  EXPECT_FALSE(PollFor(3000));
}

TEST_F(ConnectTest, EscapeOnTheFirstScreenCancels) {
  // Nobody listens on this port: the first screen turns until Esc.
  EXPECT_FALSE(Driven([] { Key("Escape"); }, NET_ConnectToServer));
  EXPECT_FALSE(NetworkInitialised);
  EXPECT_EQ(NetHost, nullptr);
}
