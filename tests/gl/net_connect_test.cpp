// The dialogs and the client's connection, driven by real X input.
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
#include "support/xinput.h"

const TkPixel TITLE = {3, 3, 255}, BODY = {147, 147, 147}, FIELD = {255, 255, 255}, EDGE = {115, 115, 115};

// The screen now, with the dialogs' marks.
class Shot : public TkShot {
public:
  // Inside the right end of a field `chars` wide, `lines` lines below the top
  // of the dialog at (100, 100).
  TkPixel Field(int chars, int lines) const {
    int h = text_height(RVK_FontStandard);
    return At(106 + RVK_TextWidthForChars(RVK_FontStandard, chars), 100 + lines * h + h / 2);
  }
  // A message box alone; a dialog; one with three fields.
  bool Box() const { return Count(TITLE) > 1000 && At(400, 102) == TkPixel{}; }
  bool Dialog() const { return At(400, 102) == TITLE; }
  bool Connect() const { return Dialog() && Field(10, 9) == FIELD; }
};

// The first picture, within `ms`, that `shows`.
Shot When(bool (Shot::*shows)() const, double ms = 20000) {
  Shot s;
  for (double end = NowMs() + ms; !(s.*shows)() && NowMs() < end; rest(200)) s = Shot();
  return s;
}

// A key held for a frame to see.
void Key(const std::string &key) {
  std::system(("xdotool keydown " + key + " sleep 0.5 keyup " + key + " sleep 0.3").c_str());
}

// Runs `step` while `drive` acts from a thread, then Enter and Esc in turn:
// lost keys fail the test, not hang it.
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

// `key` until the screen `shows`, nine times at most: a busy machine may miss
// a key between frames.
Shot Press(const char *key, bool (Shot::*shows)() const) {
  Shot s;
  for (int i = 0; i < 9 && !(s.*shows)(); i++) Key(key), s = When(shows, 4000);
  return s;
}

void Refused() {
  EXPECT_TRUE(Press("Return", &Shot::Box).Box());
  Press("Return", &Shot::Dialog);
}

TEST(DialogTest, PortsAreRefusedInABoxUntilMended) {
  ASSERT_EQ(std::system(("xdotool windowmove --sync " + TkWindowId() + " 0 0").c_str()), 0);
  Config.PlayerName = "Hana";
  Config.LocalServerPort = "80800";  // from the settings file
  Shot dialog;
  EXPECT_TRUE(Driven(
      [&] {
        dialog = When(&Shot::Dialog);
        std::system("xdotool type --delay 150 Mo");
        Refused();
        Key("Tab"), Key("BackSpace"), Key("Return");
      },
      HostGameDialog));
  EXPECT_EQ(Config.PlayerName + Config.LocalServerPort, "HanaMo8080");
  EXPECT_EQ((std::vector<TkPixel>{dialog.At(105, 300), dialog.Field(16, 3), dialog.Field(10, 6),
                                  dialog.At(600, 480), dialog.At(690, 480)}),
            (std::vector<TkPixel>{BODY, FIELD, FIELD, EDGE, EDGE}));
  Config.RemoteServerPort = "0";
  EXPECT_FALSE(Driven([] { When(&Shot::Connect), Refused(), Key("Escape"); }, ConnectGameDialog));
  EXPECT_FALSE(Driven([] { Key("Escape"); }, NET_ConnectToServer) || NetworkInitialised);

  uint16_t port;
  for (const char *bad : {"0", "65536", "8:"}) EXPECT_FALSE(NET_ParsePort(bad, port));
  for (const char *good : {"9", "65535"}) EXPECT_TRUE(NET_ParsePort(good, port) && port == std::atoi(good));
}

// Sends one client the first `Release` packets of its script from a thread
// (an empty one hangs up).
class FakeServer {
public:
  TestHost Host;
  std::vector<Bytes> Script;
  std::atomic<size_t> Release, Count{0};
  std::atomic<bool> Stop{false};
  std::thread Thread;
  FakeServer(const std::vector<Bytes> &script, size_t release) : Script(script), Release(release) {
    EXPECT_TRUE(Host.Start(TestPort(200), true));
    Thread = std::thread([this] {
      for (size_t sent = 0; !Stop; Count = Host.Received.size()) {
        Host.Service(2);
        for (; Host.Connected() && sent < Release; sent++)
          Script[sent].empty() ? enet_peer_disconnect(Host.Peer, 0) : Host.Send(Script[sent], 1);
      }
    });
  }
  ~FakeServer() {
    Stop = true;
    if (Thread.joinable()) Thread.join();
  }
};

// Polls for `ms`; false once the game ends.
bool PollFor(double ms) {
  for (double end = NowMs() + ms; NowMs() < end; rest(22))
    if (!NET_ClientPoll()) return false;
  return true;
}

TEST(ConnectTest, NumberedJoinADifferentVersionAndTheEnd) {
  ConsoleCapture Console;
  Game.Eyes.resize(3);
  Config.RemoteServerAddress = "127.0.0.1";
  Config.RemoteServerPort = std::to_string(TestPort(200));
  Config.PlayerName = "Zed, Jr";
  Game.Mode = GAME_MODE_CLIENT;
  Game.SetPlayerCount(1, false);
  Game.SetLocalPlayer(0);
  // ENet's blocks all freed at the end.
  CountEnetBlocks();
  struct Freed {
    ~Freed() { EXPECT_EQ(Held, 0); }
  } freed;
  // Before the number: a stray, a dropped one and a number past its count.
  FakeServer server({Pkt(51), Bytes{21, 7}, Pkt(40, {2, 2}), Pkt(40, {1, 2}), Pkt(23, {0, 2}),
                     Pkt(53, {}, "Tumblekin v1.01"), Pkt(19, {1, 3}), {}},
                    5);
  ASSERT_TRUE(Driven([] {}, NET_ConnectToServer));
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[1]);
  EXPECT_TRUE(PumpUntil([] { EXPECT_TRUE(PollFor(22)); }, [] { return Game.Players[0].EyesNumber == 2; }, 9000));
  EXPECT_EQ(Console.Said(), (Texts{"NET_InitNetwork: Network initialised.",
                                   "Connection to 127.0.0.1:" + Config.RemoteServerPort + " established",
                                   "Ignored unexpected packet (type 51)", "Ignored unexpected packet (type 21)",
                                   "Ignored unexpected packet (type 40)"}));
  NP_SendPacket(NP_TO_DEFAULT, NP_REPORT_EYES, "%d", 1);
  NP_SendPacket(0, NP_REPORT_EYES, "%d", 2);
  NP_SendPacket(NP_TO_ALL, NP_REPORT_EYES, "%d", 2);
  EXPECT_EQ(Console.Lines().back(), "Client attempted to send a packet to all other clients");
  // A version a character off: a box, the end, nothing behind it applied.
  server.Release = 7;
  EXPECT_FALSE(Driven([] { EXPECT_TRUE(When(&Shot::Box).Box()); Key("Return"); }, [] { return PollFor(8000); }));
  EXPECT_EQ(Game.Players[1].PlayerId, 0);
  NP_SendPacket(NP_TO_SERVER, NP_REPORT_QUIT, "");
  PumpUntil([] { rest(5); }, [&] { return server.Count == 3; }, 9000);
  EXPECT_EQ(server.Host.Seen(), (Texts{"0: 01 07 00 5A 65 64 0D 20 4A 72 00", "0: 03 01 00 00", "0: 00 00"}));
  server.Release = 8;
  EXPECT_FALSE(PollFor(9000));
  NET_ShutdownNetwork();
}
