// The game's server with test clients on 127.0.0.1.
#include <gtest/gtest.h>
#include <deque>
#include "app/config.h"
#include "app/parts.h"
#include "net/host.h"
#include "net/netstate.h"
#include "net/send.h"
#include "net/server.h"
#include "netpeer/netpeer.h"

class ServerTest : public testing::Test {
protected:
  ConsoleCapture Console;
  std::deque<TestHost> Clients;
  uint16_t Port = 0;

  void SetUp() override {
    CountEnetBlocks();
    Port = TestPort(20);
    Game.Characters.resize(3);
    Game.Eyes.resize(4);
    Game.Ears.resize(2);
    Game.Noses.resize(2);
    Game.Hats.resize(2);
    Game.NextPlayerId = 0;
    Config.LocalServerPort = std::to_string(Port);
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
    EXPECT_EQ(Held, 0);
  }
  bool Until(const std::function<bool()> &done, double ms = 3000) {
    return PumpUntil([&] { NET_ServerPoll(); for (auto &c : Clients) c.Service(); }, done, ms);
  }
  // A new client, once it has its `packets` packets.
  TestHost &Join(size_t packets) {
    TestHost &c = Clients.emplace_back();
    EXPECT_TRUE(c.Start(Port, false) && Until([&] { return c.Received.size() >= packets; }));
    Until([] { return false; }, 60);
    EXPECT_EQ(c.Received.size(), packets);
    return c;
  }
  // The packets of `c` from the `from`th on, once there are `n`.
  Texts Next(TestHost &c, size_t from, size_t n) {
    EXPECT_TRUE(Until([&] { return c.Received.size() >= from + n; }));
    return c.Seen(from);
  }
};

TEST_F(ServerTest, JoinReportsRelaysAndLeaving) {
  PlayerClass &host = Game.Players[0];
  SetCharacter(host, 1, false);
  SetEyes(host, 2, false);
  SetEars(host, -1, false);
  SetHat(host, 1, false);
  host.EyesOriTarget[0] = 3;
  host.EyesOriTarget[1] = -2;
  host.EyebrowsY = 1.5f;
  EXPECT_TRUE(NP_SendPacket(NP_TO_ALL, NP_UPDATE_QUIT, ""));  // to nobody
  TestHost &a = Join(18);
  EXPECT_EQ(a.Seen(), (Texts{"1: 28 01 00 02 00 00", "1: 35 0E 00 54 75 6D 62 6C 65 6B 69 6E 20 76 31 2E 30 00",
                             "1: 12 02 00 01 00 00", "1: 13 00 00 00 00 00", "1: 13 01 00 01 00 00",
                             "1: 15 00 00 04 00 48 6F 73 74 00", "1: 16 00 00 01 00 00", "1: 17 00 00 02 00 00",
                             "1: 18 00 00 FF FF 00", "1: 19 00 00 00 00 00", "1: 1A 00 00 00 00 00",
                             "1: 1B 00 00 00 00 00", "1: 1C 00 00 00 00 00", "1: 1D 00 00 00 00 00",
                             "1: 1E 00 00 01 00 00", "1: 1F 00 00 00 00 40 40 00", "1: 20 00 00 00 00 00 C0 00",
                             "1: 21 00 00 00 00 C0 3F 00"}));
  EXPECT_EQ(Game.LocalPlayer, &Game.Players[0]);
  EXPECT_EQ(Console.Said(), (Texts{"NET_InitNetwork: Network initialised.", "Server started on port " +
                                   std::to_string(Port), "Accepted new client connection",
                                   "A new client connected from 100007f:" + a.LocalPort()}));
  // A name goes back to its sender too, a part not; Ping gets Pong.
  for (const Bytes &p : {Pkt(1, {}, "Al\r 100%"), Pkt(3, {3}), Pkt(50)}) a.Send(p);
  const int white = makecol(255, 255, 255);
  EXPECT_EQ(Next(a, 18, 3),
            (Texts{"1: " + Hex(Pkt(52, {-1, white & 0xFFFF, white >> 16}, "Al\r 100% has joined the game")),
                   "1: " + Hex(Pkt(21, {1}, "Al\r 100%")), "1: 33 00"}));
  EXPECT_EQ(Console.Said().back(), "Al, 100% has joined the game");
  EXPECT_EQ(Game.Players[1].PlayerName + std::to_string(Game.Players[1].EyesNumber), "Al, 100%3");

  TestHost &b = Join(32);
  EXPECT_EQ(Next(a, 21, 1), Texts{"1: 12 03 00 02 00 00"});
  // Parts relayed as sent, a console line to all.
  for (const Bytes &p : {Pkt(10, {99}), Pkt(4, {1}), Pkt(40, {0, 1}), Pkt(52, {1, -1, -1}, "hi%s")})
    a.Send(p);
  const std::string hi = "1: " + Hex(Pkt(52, {1, -1, -1}, "hi%s"));
  EXPECT_EQ(Next(b, 32, 3), (Texts{"1: 1E 01 00 63 00 00", "1: 18 01 00 01 00 00", hi}));
  EXPECT_EQ(Next(a, 22, 1), Texts{hi});

  // Al quits: B moves down to 1, still reached and found; then B is lost.
  a.Send(Pkt(0));
  EXPECT_EQ(Next(b, 35, 1), Texts{"1: 14 01 00 00"});
  EXPECT_STREQ((const char *)ClientPeers[1]->data, "2");
  EXPECT_EQ(ClientPeers[2], nullptr);
  SetNose(Game.Players[0], 1, true);
  b.Send(Pkt(5, {1}));
  EXPECT_EQ(Next(b, 36, 1), Texts{"1: 19 00 00 01 00 00"});
  EXPECT_TRUE(Until([] { return Game.Players[1].NoseNumber == 1; }));
  enet_peer_disconnect_now(b.Peer, 0);
  EXPECT_TRUE(Until([] { return Game.GetPlayerCount() == 1; }));
  EXPECT_EQ(ClientPeers[1], nullptr);
  Texts said = Console.Said();
  EXPECT_EQ(Texts(said.end() - 3, said.end()), (Texts{"Al, 100% has left the game", "Connection lost to player 1 ", " has left the game"}));
}

TEST_F(ServerTest, FullServerWhatSendingRefusesAndAPollsBudget) {
  for (size_t i = 1; i <= 7; i++) Join(4 + 14 * i);
  Console.Clear();
  TestHost &late = Clients.emplace_back(), &a = Clients[0];
  ASSERT_TRUE(late.Start(Port, false) && Until([&] { return Console.Lines().size() == 1; }));
  late.Send(Pkt(3, {1}));
  ASSERT_TRUE(Until([&] { return Console.Lines().size() == 2; }));
  enet_peer_disconnect_now(late.Peer, 0);
  ASSERT_TRUE(Until([&] { return Console.Lines().size() == 3; }));
  const std::string from = " from 100007f:" + late.LocalPort() + ", ";
  EXPECT_EQ(Console.Lines(), (Texts{"Refused connection attempt" + from + "server is full",
                                    "Ignored packet" + from + "which is not in the game",
                                    "Connection closed" + from + "which was not in the game"}));
  EXPECT_TRUE(late.Received.empty());
  EXPECT_EQ(Game.GetPlayerCount(), MAX_PLAYERS);

  Console.Clear();
  Game.Mode = GAME_MODE_SINGLE;
  EXPECT_FALSE(NP_SendPacket(NP_TO_ALL, NP_PONG, ""));
  Game.Mode = GAME_MODE_SERVER;
  NetworkInitialised = false;
  EXPECT_FALSE(NP_SendPacket(NP_TO_ALL, NP_UPDATE_EYES, ""));
  NetworkInitialised = true;
  for (int to : {(int)NP_TO_SERVER, 77, 0}) EXPECT_TRUE(NP_SendPacket(to, NP_PONG, ""));
  NP_RegisterPacket(12, "Long", "text a, text b");
  EXPECT_FALSE(NP_SendPacket(NP_TO_ALL, 12, "%s,%s", std::string(255, 'a').c_str(), std::string(255, 'b').c_str()));
  EXPECT_EQ(Console.Lines(), (Texts{"Can not send packet, network is not initialised (packet type=23)",
                                    "Server attempted to send a packet to itself!",
                                    "Warning GetPlayerNumber failed to resolve player ID 77",
                                    "Packets destination player ID is invalid 77 (packet type 51)",
                                    "NP_SendPacket: Unable to create packet!"}));
  // Unserviced, the host sends only once a goodbye flushes it.
  EXPECT_TRUE(NP_SendPacket(NP_TO_DEFAULT, NP_UPDATE_EYES, "%d,%d", 0, 4));
  EXPECT_TRUE(NP_SendPacket(1, NP_PONG, ""));
  PumpUntil([&] { a.Service(1); }, [] { return false; }, 150);
  EXPECT_EQ(a.Received.size(), 24u);
  EXPECT_TRUE(NP_SendPacket(NP_TO_ALL, NP_UPDATE_QUIT, "%d", 5));
  EXPECT_TRUE(PumpUntil([&] { a.Service(1); }, [&] { return a.Received.size() == 27; }, 2000));
  EXPECT_EQ(a.Seen(24), (Texts{"1: 17 00 00 04 00 00", "1: 33 00", "1: 14 05 00 00"}));

  for (int i = 0; i < 10; i++) a.Send(Pkt(1, {}, std::to_string(i).c_str()));
  // A poll with no time to spare takes one event: the names come in order.
  std::string names = "-";
  PumpUntil([&] { NET_ServerPollWithin(0), a.Service(); },
            [&] {
              char name = (Game.Players[1].PlayerName + "-")[0];
              if (name != names.back()) names += name;
              return name == '9';
            },
            3000);
  EXPECT_EQ(names, "-0123456789");
  // With nothing left, a poll gives the time it waited in vain; one that
  // may not wait gives none.
  EXPECT_GE(NET_ServerPollWithin(SERVER_POLL_BUDGET_MS), 4000);
  EXPECT_EQ(NET_ServerPollWithin(0), 0);
}
