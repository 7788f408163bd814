// The real client against a fake server of the test's own (an ENet host on
// 127.0.0.1 in a thread): the waiting screens, the player number, the
// version check with its box, and the ways a client's game ends.
#include <gtest/gtest.h>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <thread>
#include "app/config.h"
#include "app/game.h"
#include "net/client.h"
#include "net/host.h"
#include "net/netstate.h"
#include "net/send.h"
#include "netpeer/netpeer.h"

// Serves one client: sends what the test queues once the client is there,
// keeps what arrives, and can close the connection.
class FakeServer {
public:
  TestHost Host;
  std::thread Thread;
  std::atomic<bool> Stop{false}, Hangup{false};
  std::mutex Lock;
  std::vector<Bytes> Outbox;
  std::atomic<size_t> ReceivedCount{0};

  bool Start(uint16_t port) {
    if (!Host.StartServer(port)) return false;
    Thread = std::thread([this] {
      while (!Stop) {
        Host.Service(2);
        ReceivedCount = Host.Received.size();
        if (!Host.Connected) continue;
        std::lock_guard<std::mutex> guard(Lock);
        for (const Bytes &b : Outbox) Host.Send(b, 1);
        Outbox.clear();
        if (Hangup) {
          enet_peer_disconnect(Host.Peer, 0);
          Hangup = false;
        }
      }
    });
    return true;
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

// Presses a key on this test's own virtual display now and then, long enough
// for a frame-polled key to be seen, and takes a screenshot before the first.
class KeyPresser {
public:
  std::thread Thread;
  std::atomic<bool> Stop{false};
  std::string Shot;

  KeyPresser(const char *keyName, int firstDelayMs) {
    std::string key = keyName;
    Shot = std::string("/tmp/tk-net-shot-") + std::to_string(getpid()) + ".ppm";
    Thread = std::thread([this, key, firstDelayMs] {
      usleep(firstDelayMs * 1000);
      std::system(("import -window root -depth 8 ppm:" + Shot + " 2>/dev/null").c_str());
      for (int i = 0; i < 10 && !Stop; i++) {
        std::system(("xdotool keydown " + key + "; sleep 0.15; xdotool keyup " + key).c_str());
        usleep(600 * 1000);
      }
    });
  }
  void Finish() {
    Stop = true;
    if (Thread.joinable()) Thread.join();
  }
  ~KeyPresser() {
    Finish();
    std::remove(Shot.c_str());
  }
  // Pixels of the screenshot with exactly this colour.
  int CountColour(uint8_t r, uint8_t g, uint8_t b) const {
    std::ifstream in(Shot, std::ios::binary);
    std::string magic;
    int w = 0, h = 0, max = 0;
    if (!(in >> magic >> w >> h >> max)) return -1;
    in.get();
    std::vector<char> rgb((size_t)w * h * 3);
    in.read(rgb.data(), (std::streamsize)rgb.size());
    int count = 0;
    for (size_t i = 0; i + 2 < rgb.size(); i += 3)
      count += (uint8_t)rgb[i] == r && (uint8_t)rgb[i + 1] == g && (uint8_t)rgb[i + 2] == b;
    return count;
  }
};

class ClientConnectTest : public testing::Test {
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
    Game.LocalPlayer->PlayerName = Config.PlayerName;
  }
  void TearDown() override {
    Server.Finish();
    NET_ShutdownNetwork();
    Game.Mode = GAME_MODE_NONE;
    Game.Players.clear();
    Game.LocalPlayer = nullptr;
  }
  bool Connect() {
    // Nothing of this test may leave the machine.
    if (Config.RemoteServerAddress != "127.0.0.1") return false;
    return NET_ConnectToServer();
  }
  // Polls as the game loop does, once a frame, until it ends or time is up.
  bool PollFor(double ms, const std::function<bool()> &until) {
    double end = NowMs() + ms;
    while (NowMs() < end) {
      if (!NET_ClientPoll()) return false;
      if (until()) return true;
      rest(22);
    }
    return true;
  }
};

TEST_F(ClientConnectTest, NumberedJoinThenServerGoodbye) {
  ASSERT_TRUE(Server.Start(Port));
  // Before the number: a stray packet and a number outside its count are ignored.
  for (const Bytes &b : {End(Pkt(51)), Shorts(40, {2, 2}), Shorts(40, {1, 2}), TextPkt(53, {}, "Tumblekin v1.0"),
                         Shorts(18, {2, 7}), Shorts(19, {0, 0}), Shorts(19, {1, 7}), TextPkt(21, {0}, "Host"),
                         Shorts(23, {0, 2})})
    Server.Queue(b);
  ASSERT_TRUE(Connect());
  ASSERT_EQ(Game.GetPlayerCount(), 2);
  EXPECT_EQ(Game.LocalPlayerNumber, 1);
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_TRUE(Console.Has("Connection to 127.0.0.1:" + std::to_string(Port) + " established"));
  EXPECT_TRUE(Console.Has("Ignored unexpected packet (type 51)"));
  EXPECT_TRUE(Console.Has("Ignored unexpected packet (type 40)"));

  EXPECT_TRUE(PollFor(2000, [] { return Game.Players[0].EyesNumber == 2; }));
  EXPECT_EQ(Game.Players[0].PlayerName, "Host");
  EXPECT_EQ(Game.Players[1].PlayerId, 7);
  EXPECT_TRUE(Console.Has("Client and server versions match (Tumblekin v1.0)"));
  // The local player's own pick goes out as a Report on channel 0.
  NP_SendPacket(NP_TO_DEFAULT, 3, "%d", 1);
  EXPECT_TRUE(PollFor(300, [] { return false; }));

  Server.Queue(End(Shorts(20, {0})));  // the server's goodbye, its ID field 0
  EXPECT_FALSE(PollFor(2000, [] { return false; }));
  NP_SendPacket(NP_TO_SERVER, 0, "");  // the game loop's goodbye, flushed at once
  double end = NowMs() + 1000;
  while (Server.ReceivedCount < 3 && NowMs() < end) rest(5);
  Server.Finish();
  EXPECT_EQ(ReceivedHex(Server.Host),
            (std::vector<std::string>{"01 07 00 5A 65 64 0D 20 4A 72 00", "03 01 00 00", "00 00"}));
  for (const ReceivedPacket &p : Server.Host.Received) EXPECT_EQ(p.Channel, 0);
}

TEST_F(ClientConnectTest, DifferentVersionShowsTheBoxAndEnds) {
  ASSERT_TRUE(Server.Start(Port));
  Server.Queue(Shorts(40, {1, 2}));
  Server.Queue(TextPkt(53, {}, "Tumblekin v1.01"));
  Server.Queue(Shorts(18, {2, 3}));
  ASSERT_TRUE(Connect());
  KeyPresser enter("Return", 800);
  double start = NowMs();
  bool goOn = PollFor(8000, [] { return false; });
  double waited = NowMs() - start;
  enter.Finish();
  EXPECT_FALSE(goOn);
  EXPECT_GT(waited, 700.0);  // the box held the thread until Enter
  EXPECT_LT(waited, 7000.0);
  // The box's blue title strip stood on the screen.
  EXPECT_GT(enter.CountColour(3, 3, 255), 100);
  EXPECT_FALSE(Console.Has("Client and server versions match (Tumblekin v1.01)"));
  EXPECT_EQ(Game.Players[1].PlayerId, 0);  // nothing behind the version was applied
}

TEST_F(ClientConnectTest, LostConnectionEndsTheGame) {
  ASSERT_TRUE(Server.Start(Port));
  Server.Queue(Shorts(40, {1, 2}));
  ASSERT_TRUE(Connect());
  EXPECT_TRUE(PollFor(200, [] { return false; }));
  Server.Hangup = true;
  EXPECT_FALSE(PollFor(3000, [] { return false; }));
}

TEST_F(ClientConnectTest, EscapeOnTheFirstScreenCancels) {
  // Nobody listens on this port: the first screen turns until Esc.
  KeyPresser esc("Escape", 600);
  double start = NowMs();
  EXPECT_FALSE(Connect());
  esc.Finish();
  EXPECT_GT(NowMs() - start, 500.0);
  EXPECT_FALSE(NetworkInitialised);
  EXPECT_EQ(NetHost, nullptr);
}
