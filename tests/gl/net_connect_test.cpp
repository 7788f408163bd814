// The way into a network game on the test's own display, driven with real X
// input: the two dialogs and their port check, then the real client against
// a fake server of the test's own (an ENet host on 127.0.0.1 in a thread):
// the waiting screens, the player number, the version box, the game's ends.
#include <gtest/gtest.h>
#include <atomic>
#include <fstream>
#include <mutex>
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

const TkPixel TITLE = {3, 3, 255}, BODY = {147, 147, 147}, FIELD = {255, 255, 255};

// A key held long enough for a frame-polled key to be seen, as a command.
std::string Press(const std::string &key) {
  return "xdotool keydown " + key + "; sleep 0.15; xdotool keyup " + key + "; sleep 0.5; ";
}

// A picture of the screen that a background script takes; the window stands
// in its upper left corner.
class Shot {
public:
  std::string Path = "/tmp/tk-net-" + std::to_string(getpid()) + "-" + std::to_string(NowMs()) + ".ppm";
  ~Shot() { std::remove(Path.c_str()); }
  std::string Take() const { return "import -window root -depth 8 ppm:" + Path + "; "; }
  std::vector<TkPixel> Pixels(int &w) const {
    std::ifstream in(Path, std::ios::binary);
    std::string magic;
    int h = 0, max = 0;
    in >> magic >> w >> h >> max;
    std::vector<TkPixel> rgb((size_t)w * h);
    in.get(), in.read((char *)rgb.data(), (std::streamsize)rgb.size() * 3);
    return rgb;
  }
  TkPixel At(int x, int y) const {
    int w = 0;
    std::vector<TkPixel> rgb = Pixels(w);
    return rgb.at((size_t)y * w + x);
  }
  int Count(TkPixel colour) const {
    int w = 0;
    std::vector<TkPixel> rgb = Pixels(w);
    return (int)std::count(rgb.begin(), rgb.end(), colour);
  }
};

class DialogTest : public testing::Test {
protected:
  int Wx = (TK_SCREEN_W - 600) / 2, Wy = (TK_SCREEN_H - 400) / 2, H = text_height(RVK_FontStandard);
  Shot Before, Box;
  void SetUp() override {
    Config.RemoteServerAddress = "127.0.0.1";
    ASSERT_EQ(std::system(("xdotool windowmove --sync " + TkWindowId() + " 0 0").c_str()), 0);
  }
  // The right edge of a field of `chars` characters, inside it.
  int FieldEnd(int chars) { return Wx + 10 + RVK_TextWidthForChars(RVK_FontStandard, chars) - 4; }
};

TEST_F(DialogTest, PortFromTheSettingsIsRefusedUntilMended) {
  Config.PlayerName = "Hana";
  Config.LocalServerPort = "80800";
  TkLater("sleep 0.8; xdotool type --delay 150 Mo; " + Before.Take() + Press("Return") + Box.Take() +
          Press("Return") + Press("Tab") + Press("BackSpace") + Press("Return"));
  EXPECT_TRUE(HostGameDialog());
  EXPECT_EQ(Config.PlayerName, "HanaMo");
  EXPECT_EQ(Config.LocalServerPort, "8080");
  // The box alone on the screen, its title strip in the title colour.
  EXPECT_EQ(Box.At(Wx + 300, Wy + 2), (TkPixel{0, 0, 0}));
  EXPECT_GT(Box.Count(TITLE), 1000);
  // The title strip across the top of the 600 by 400 window, the body below;
  // two fields, 3 text lines apart from 3 lines down.
  const struct {
    int X, Y;
    TkPixel Colour;
  } pixels[] = {{Wx + 300, Wy + 2, TITLE},           {Wx + 300, Wy + H + 10, BODY},      {Wx + 5, Wy + 300, BODY},
                {FieldEnd(16), Wy + 3 * H + H / 2, FIELD}, {FieldEnd(10), Wy + 6 * H + H / 2, FIELD},
                {FieldEnd(10), Wy + 9 * H + H / 2, BODY}};
  for (const auto &p : pixels) EXPECT_EQ(Before.At(p.X, p.Y), p.Colour) << p.X << "," << p.Y;
}

TEST_F(DialogTest, PortsAreNumbersFromOneTo65535) {
  const struct {
    const char *Text;
    int Port;
  } rows[] = {{"1", 1},      {"65535", 65535}, {"08030", 8030}, {"0", -1},  {"65536", -1},
              {"99999", -1}, {"", -1},         {"abc", -1},     {"80a", -1}, {" 80", -1},
              {"-1", -1},    {"4294967297", -1}};
  for (const auto &row : rows) {
    uint16_t port = 7;
    EXPECT_EQ(NET_ParsePort(row.Text, port), row.Port > 0) << row.Text;
    EXPECT_EQ(port, row.Port > 0 ? row.Port : 7) << row.Text;
  }
}

TEST_F(DialogTest, ConnectDialogCancelLeavesSettings) {
  Config.PlayerName = "Ivo";
  Config.RemoteServerPort = "4001";
  TkLater("sleep 0.8; xdotool type --delay 150 xyz; " + Before.Take() + Press("Escape"));
  EXPECT_FALSE(ConnectGameDialog());
  EXPECT_EQ(Config.PlayerName, "Ivo");
  EXPECT_EQ(Config.RemoteServerAddress, "127.0.0.1");
  EXPECT_EQ(Config.RemoteServerPort, "4001");
  // The third field stands 9 text lines down.
  EXPECT_EQ(Before.At(FieldEnd(10), Wy + 9 * H + H / 2), FIELD);
  TkLater("sleep 0.8; " + Press("Return"));
  EXPECT_TRUE(ConnectGameDialog());
}

// Serves one client: sends what the test queues once the client is there,
// keeps what arrives, and can close the connection.
class FakeServer {
public:
  TestHost Host;
  std::thread Thread;
  std::atomic<bool> Stop{false}, Hangup{false};
  std::atomic<size_t> Count{0};
  std::mutex Lock;
  std::vector<Bytes> Outbox;

  void Start(uint16_t port) {
    ASSERT_TRUE(Host.Start(port, true));
    Thread = std::thread([this] {
      while (!Stop) {
        Host.Service(2);
        Count = Host.Received.size();
        std::lock_guard<std::mutex> guard(Lock);
        for (size_t i = 0; Host.Connected() && i < Outbox.size(); i++) Host.Send(Outbox[i], 1);
        if (Host.Connected()) Outbox.clear();
        if (Host.Connected() && Hangup.exchange(false)) enet_peer_disconnect(Host.Peer, 0);
      }
    });
  }
  void Queue(const Bytes &b) {
    std::lock_guard<std::mutex> guard(Lock);
    Outbox.push_back(b);
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
  uint16_t Port = 0;

  void SetUp() override {
    static int run = 0;
    Port = TestPort(200 + 3 * run++);
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
  // Polls as the game loop does, once a frame, until the game ends (false)
  // or `ms` have passed.
  bool PollFor(double ms) {
    for (double end = NowMs() + ms; NowMs() < end; rest(22))
      if (!NET_ClientPoll()) return false;
    return true;
  }
};

TEST_F(ConnectTest, NumberedJoinThenServerGoodbye) {
  Server.Start(Port);
  // Before the number: a stray packet, a dropped one and a number outside
  // its count are logged and passed over.
  for (const Bytes &b : {Pkt(PACKET_PONG), Bytes{PACKET_UPDATE_PLAYER_NAME, 7}, Pkt(PACKET_SET_PLAYER_NUMBER, {2, 2}),
                         Pkt(PACKET_SET_PLAYER_NUMBER, {1, 2}), Pkt(PACKET_VERSION_INFO, {}, "Tumblekin v1.0"),
                         Pkt(PACKET_UPDATE_PLAYER_ID, {1, 7}), Pkt(PACKET_UPDATE_EYES, {0, 2})})
    Server.Queue(b);
  ASSERT_TRUE(NET_ConnectToServer());
  EXPECT_EQ(Game.GetPlayerCount(), 2);
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_TRUE(PollFor(500));
  EXPECT_EQ(Game.Players[0].EyesNumber, 2);
  EXPECT_EQ(Game.Players[1].PlayerId, 7);
  const std::string port = std::to_string(Port);
  EXPECT_EQ(Console.Said(), (Texts{"NET_InitNetwork: Network initialised.",
                                    "Connection to 127.0.0.1:" + port + " established",
                                    "Ignored unexpected packet (type 51)", "Ignored unexpected packet (type 21)",
                                    "Ignored unexpected packet (type 40)",
                                    "Client and server versions match (Tumblekin v1.0)"}));
  // The local player's pick goes out as a Report; the server's goodbye
  // (ID field 0) ends the game; the game loop's goodbye is flushed at once.
  NP_SendPacket(NP_TO_DEFAULT, PACKET_REPORT_EYES, "%d", 1);
  NP_SendPacket(NP_TO_ALL, PACKET_REPORT_EYES, "%d", 2);
  NP_SendPacket(7, PACKET_REPORT_EYES, "%d", 2);  // a client sends to its server only
  EXPECT_EQ(Console.Lines().back(), "Client attempted to send a packet to all other clients");
  Server.Queue(Pkt(PACKET_UPDATE_QUIT, {0}));
  EXPECT_FALSE(PollFor(3000));
  NP_SendPacket(NP_TO_SERVER, PACKET_REPORT_QUIT, "");
  PumpUntil([] { rest(5); }, [&] { return Server.Count == 3; }, 2000);
  Server.Finish();
  EXPECT_EQ(Server.Host.Seen(), (Texts{"0: 01 07 00 5A 65 64 0D 20 4A 72 00", "0: 03 01 00 00", "0: 00 00"}));
}

TEST_F(ConnectTest, DifferentVersionShowsTheBoxAndEnds) {
  Server.Start(Port);
  for (const Bytes &b : {Pkt(PACKET_SET_PLAYER_NUMBER, {1, 2}), Pkt(PACKET_VERSION_INFO, {}, "Tumblekin v1.01"),
                         Pkt(PACKET_UPDATE_PLAYER_ID, {1, 3})})
    Server.Queue(b);
  ASSERT_TRUE(NET_ConnectToServer());
  Shot box;
  TkLater("sleep 1; " + box.Take() + Press("Return"));
  double start = NowMs();
  EXPECT_FALSE(PollFor(8000));
  EXPECT_GT(NowMs() - start, 900.0);  // the box held the thread until Enter
  EXPECT_GT(box.Count(TITLE), 100);
  EXPECT_EQ(Game.Players[1].PlayerId, 0);  // nothing behind the version was applied
}

TEST_F(ConnectTest, LostConnectionEndsTheGame) {
  Server.Start(Port);
  Server.Queue(Pkt(PACKET_SET_PLAYER_NUMBER, {1, 2}));
  ASSERT_TRUE(NET_ConnectToServer());
  EXPECT_TRUE(PollFor(200));
  Server.Hangup = true;
  EXPECT_FALSE(PollFor(3000));
}

TEST_F(ConnectTest, EscapeOnTheFirstScreenCancels) {
  // Nobody listens on this port: the first screen turns until Esc.
  TkLater("sleep 0.6; " + Press("Escape"));
  double start = NowMs();
  EXPECT_FALSE(NET_ConnectToServer());
  EXPECT_GT(NowMs() - start, 500.0);
  EXPECT_FALSE(NetworkInitialised);
  EXPECT_EQ(NetHost, nullptr);
}
