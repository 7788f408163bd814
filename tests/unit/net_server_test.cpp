// The game's own server, polled in this process, with test clients that
// speak the wire format through ENet on 127.0.0.1: the join sequence byte by
// byte, reports and relays, names, the full server, players leaving.
#include <gtest/gtest.h>
#include <memory>
#include "app/config.h"
#include "app/game.h"
#include "app/parts.h"
#include "net/host.h"
#include "net/netstate.h"
#include "net/server.h"
#include "netpeer/netpeer.h"

class ServerTest : public testing::Test {
protected:
  ConsoleCapture Console;
  std::vector<std::unique_ptr<TestHost>> Clients;
  uint16_t Port = 0;

  void SetUp() override {
    Game.Characters.resize(3);
    Game.Eyes.resize(4);
    Game.Ears.resize(2);
    Game.Noses.resize(2);
    Game.Mouths.resize(2);
    Game.Feet.resize(2);
    Game.Hats.resize(2);
    Game.NextPlayerId = 0;
    static int run = 0;
    Port = TestPort(20 + 3 * run++);
    Config.LocalServerPort = std::to_string(Port);
    Config.RemoteServerAddress = "127.0.0.1";
    ASSERT_TRUE(NET_StartServer());
    Game.Mode = GAME_MODE_SERVER;
    Game.SetPlayerCount(1, false);
    Game.SetLocalPlayer(0);
    Game.SetLocalPlayerName("Host");
    Game.LocalPlayer->PlayerId = Game.NextPlayerId++;
    ResetPlayer(*Game.LocalPlayer);
  }
  void TearDown() override {
    Clients.clear();
    NET_ShutdownNetwork();
    Game.Mode = GAME_MODE_NONE;
    Game.Players.clear();
    Game.LocalPlayer = nullptr;
  }
  void Pump() {
    NET_ServerPoll();
    for (auto &c : Clients) c->Service();
  }
  void PumpFor(double ms) { PumpUntil([&] { Pump(); }, [] { return false; }, ms); }
  bool Until(const std::function<bool()> &done, double ms = 2000) { return PumpUntil([&] { Pump(); }, done, ms); }
  // A new test client that has connected and taken `packets` packets.
  TestHost &Join(size_t packets) {
    Clients.emplace_back(new TestHost);
    TestHost &c = *Clients.back();
    EXPECT_TRUE(c.StartClient(Port));
    EXPECT_TRUE(Until([&] { return c.Received.size() >= packets; }, 3000));
    PumpFor(30);
    EXPECT_EQ(c.Received.size(), packets);
    return c;
  }
  // The packets from `from` on, as hex; the server sends all on channel 1.
  static std::vector<std::string> HexFrom(const TestHost &h, size_t from) {
    for (size_t i = from; i < h.Received.size(); i++) EXPECT_EQ(h.Received[i].Channel, 1) << i;
    return ReceivedHex(h, from);
  }
};

TEST_F(ServerTest, JoinSequenceReportsAndRelays) {
  PlayerClass &host = Game.Players[0];
  SetCharacter(host, 1, false);
  SetEyes(host, 2, false);
  SetEars(host, -1, false);
  SetMouth(host, 1, false);
  SetMoustache(host, -1, false);
  SetFeet(host, 1, false);
  host.EyesOriTarget[0] = 3;
  host.EyesOriTarget[1] = -2;
  host.EyebrowsY = 1.5f;

  TestHost &a = Join(18);
  EXPECT_EQ(HexFrom(a, 0), (std::vector<std::string>{
                               "28 01 00 02 00 00",
                               Hex(TextPkt(53, {}, "Tumblekin v1.0")),
                               "12 02 00 01 00 00",
                               "13 00 00 00 00 00",
                               "13 01 00 01 00 00",
                               "15 00 00 04 00 48 6F 73 74 00",
                               "16 00 00 01 00 00",
                               "17 00 00 02 00 00",
                               "18 00 00 FF FF 00",
                               "19 00 00 00 00 00",
                               "1A 00 00 01 00 00",
                               "1B 00 00 00 00 00",
                               "1C 00 00 FF FF 00",
                               "1D 00 00 01 00 00",
                               "1E 00 00 00 00 00",
                               "1F 00 00 00 00 40 40 00",
                               "20 00 00 00 00 00 C0 00",
                               "21 00 00 00 00 C0 3F 00",
                           }));
  ASSERT_EQ(Game.GetPlayerCount(), 2);
  EXPECT_EQ(Game.Players[1].PlayerId, 1);
  EXPECT_EQ(Game.Players[1].PlayerName, "");
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[0]);
  EXPECT_TRUE(Console.Has("Accepted new client connection"));
  std::vector<std::string> lines = Console.Lines();
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.back().rfind("A new client connected from 100007f:", 0), 0u) << lines.back();

  // A name with a comma and a percent sign, escaped on the wire.
  a.Send(TextPkt(1, {}, "Al\r 100%"));
  ASSERT_TRUE(Until([&] { return a.Received.size() == 20; }));
  EXPECT_EQ(Game.Players[1].PlayerName, "Al, 100%");
  EXPECT_TRUE(Console.Has("Al, 100% has joined the game"));
  const std::string alName = Hex(TextPkt(21, {1}, "Al\r 100%"));
  EXPECT_EQ(HexFrom(a, 18),
            (std::vector<std::string>{Hex(ConsolePkt(-1, makecol(255, 255, 255), "Al\r 100% has joined the game")),
                                      alName}));

  // A part report changes the sender's record and isn't sent back to it.
  a.Send(Shorts(3, {3}));
  a.Send(End(Pkt(50)));
  ASSERT_TRUE(Until([&] { return a.Received.size() == 21; }));
  EXPECT_EQ(Game.Players[1].EyesNumber, 3);
  EXPECT_EQ(HexFrom(a, 20), std::vector<std::string>{"33 00"});

  // The second client gets 4 + 14 x 2 packets, the first the new count.
  TestHost &b = Join(32);
  ASSERT_TRUE(Until([&] { return a.Received.size() == 22; }));
  EXPECT_EQ(HexFrom(a, 21), std::vector<std::string>{"12 03 00 02 00 00"});
  std::vector<std::string> bs = HexFrom(b, 0);
  EXPECT_EQ(bs[0], "28 02 00 03 00 00");
  EXPECT_EQ(bs[2], "12 03 00 02 00 00");
  EXPECT_EQ(bs[5], "13 02 00 02 00 00");
  EXPECT_EQ(bs[19], alName);
  EXPECT_EQ(bs[21], "17 01 00 03 00 00");

  // Relays: as the client gave the value, to everybody but the sender.
  a.Send(Shorts(10, {99}));
  a.Send(Shorts(4, {1}));
  ASSERT_TRUE(Until([&] { return b.Received.size() == 34; }));
  EXPECT_EQ(HexFrom(b, 32), (std::vector<std::string>{"1E 01 00 63 00 00", "18 01 00 01 00 00"}));
  EXPECT_EQ(Game.Players[1].HatNumber, 0);
  EXPECT_EQ(Game.Players[1].EarsNumber, 1);

  // A console line from a client goes to all, the sender too; types without
  // a handler and malformed packets do nothing.
  Bytes message = ConsolePkt(1, -1, "hi%s");
  a.Send(End(Pkt(11)));
  a.Send(Shorts(40, {0, 1}));
  a.Send(Bytes{0x03, 0x01});
  a.Send(message);
  ASSERT_TRUE(Until([&] { return a.Received.size() == 23 && b.Received.size() == 35; }));
  PumpFor(50);
  EXPECT_EQ(HexFrom(a, 22), std::vector<std::string>{Hex(message)});
  EXPECT_EQ(HexFrom(b, 34), std::vector<std::string>{Hex(message)});
  EXPECT_TRUE(Console.Has("Al, 100%: hi%s"));
  EXPECT_EQ(Game.Players[1].EarsNumber, 1);
}

TEST_F(ServerTest, EighthClientIsRefusedAndIgnored) {
  for (int i = 0; i < 7; i++) Join(4 + 14 * (i + 1));
  EXPECT_EQ(Game.GetPlayerCount(), MAX_PLAYERS);
  Console.Clear();
  Clients.emplace_back(new TestHost);
  TestHost &late = *Clients.back();
  ASSERT_TRUE(late.StartClient(Port));
  ASSERT_TRUE(Until([&] { return late.Connected; }, 3000));
  PumpFor(100);
  EXPECT_TRUE(late.Received.empty());
  std::vector<std::string> lines = Console.Lines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].rfind("Refused connection attempt from 100007f:", 0), 0u) << lines[0];
  EXPECT_EQ(lines[0].substr(lines[0].size() - 16), ", server is full");
  // Its packets name no player: dropped, the roster untouched.
  late.Send(Shorts(3, {1}));
  late.Send(End(Pkt(0)));
  PumpFor(100);
  EXPECT_EQ(Game.GetPlayerCount(), MAX_PLAYERS);
  for (int i = 0; i < 7; i++) EXPECT_EQ(Clients[i]->Received.size(), (size_t)(4 + 14 * (i + 1) + (6 - i)));
}

TEST_F(ServerTest, LeavingRenumbersTheOthers) {
  TestHost &ann = Join(18);
  TestHost &bob = Join(32);
  TestHost &cid = Join(46);
  ann.Send(TextPkt(1, {}, "Ann"));
  bob.Send(TextPkt(1, {}, "Bob"));
  cid.Send(TextPkt(1, {}, "Cid"));
  PumpFor(150);
  ASSERT_EQ(Game.GetPlayerCount(), 4);
  size_t bobSeen = bob.Received.size(), cidSeen = cid.Received.size();

  // Ann's connection ends without a word.
  enet_peer_disconnect_now(ann.Peer, 0);
  ASSERT_TRUE(Until([&] { return Game.GetPlayerCount() == 3; }, 3000));
  PumpFor(50);
  EXPECT_EQ(Game.Players[1].PlayerName, "Bob");
  EXPECT_EQ(Game.Players[2].PlayerName, "Cid");
  EXPECT_TRUE(Console.Has("Connection lost to player 1 Ann"));
  EXPECT_TRUE(Console.Has("Ann has left the game"));
  EXPECT_EQ(HexFrom(bob, bobSeen), std::vector<std::string>{"14 01 00 00"});
  EXPECT_EQ(HexFrom(cid, cidSeen), std::vector<std::string>{"14 01 00 00"});

  // The server's own change still reaches both; Cid's report finds Cid.
  SetNose(Game.Players[0], 1, true);
  cid.Send(Shorts(5, {1}));
  PumpFor(150);
  EXPECT_EQ(Game.Players[2].NoseNumber, 1);
  EXPECT_EQ(HexFrom(bob, bobSeen + 1), (std::vector<std::string>{"19 00 00 01 00 00", "19 03 00 01 00 00"}));
  EXPECT_EQ(HexFrom(cid, cidSeen + 1), std::vector<std::string>{"19 00 00 01 00 00"});

  // Bob quits in order, then Cid: the last goodbye goes to nobody.
  bob.Send(End(Pkt(0)));
  ASSERT_TRUE(Until([&] { return Game.GetPlayerCount() == 2; }));
  PumpFor(50);
  EXPECT_EQ(Hex(cid.Received.back().Data), "14 02 00 00");
  ASSERT_NE(ClientPeers[1], nullptr);
  EXPECT_STREQ((const char *)ClientPeers[1]->data, "3");
  EXPECT_EQ(ClientPeers[2], nullptr);
  cid.Send(End(Pkt(0)));
  ASSERT_TRUE(Until([&] { return Game.GetPlayerCount() == 1; }));
  EXPECT_EQ(ClientPeers[1], nullptr);
  EXPECT_TRUE(Console.Has("Cid has left the game"));
}
