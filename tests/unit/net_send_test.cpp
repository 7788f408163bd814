// Sending: refusals and their reports, the one-shot skip ID, destinations,
// channels and the flush of the two goodbyes, over real ENet on 127.0.0.1.
#include <gtest/gtest.h>
#include "app/game.h"
#include "net/netstate.h"
#include "net/packets.h"
#include "net/send.h"
#include "netpeer/netpeer.h"

// The network layer's state is set up by hand around hosts of the test's own:
// "Game" is the server with clients A (ID 5) and B (ID 9), or client A.
class SendTest : public testing::Test {
protected:
  TestHost Server, A, B;
  ConsoleCapture Console;

  void SetUp() override {
    ASSERT_EQ(enet_initialize(), 0);
    NP_InitPacketTable();
    uint16_t port = TestPort(1);
    ASSERT_TRUE(Server.StartServer(port));
    // A first, so that it is the server's first peer.
    for (TestHost *c : {&A, &B}) {
      ASSERT_TRUE(c->StartClient(port));
      size_t peers = Server.Peers.size() + 1;
      ASSERT_TRUE(PumpUntil([&] { Server.Service(1); c->Service(); },
                            [&] { return c->Connected && Server.Peers.size() == peers; }, 3000));
    }
    Game.Players.assign(3, PlayerClass());
    Game.Players[1].PlayerId = 5;
    Game.Players[2].PlayerId = 9;
    Game.SetLocalPlayer(0);
    Game.Mode = GAME_MODE_SERVER;
    NetworkInitialised = true;
    NetHost = Server.Host;
    ClientPeers[1] = Server.Peers[0];
    ClientPeers[2] = Server.Peers[1];
    PacketSkipPlayerId = -1;
  }
  void TearDown() override {
    NetworkInitialised = false;
    NetHost = nullptr;
    ServerPeer = nullptr;
    for (ENetPeer *&p : ClientPeers) p = nullptr;
    Game.Mode = GAME_MODE_NONE;
    Game.Players.clear();
    Game.LocalPlayer = nullptr;
  }
  // Lets everything that was queued arrive: all three hosts serviced.
  void Settle(double ms = 150) {
    PumpUntil([&] { Server.Service(1); A.Service(); B.Service(); }, [] { return false; }, ms);
  }
  static std::vector<int> Channels(const TestHost &h) {
    std::vector<int> channels;
    for (const ReceivedPacket &p : h.Received) channels.push_back(p.Channel);
    return channels;
  }
};

TEST_F(SendTest, RefusalsBeforeThePacketIsMade) {
  PacketSkipPlayerId = 5;
  for (int mode : {GAME_MODE_SINGLE, GAME_MODE_NONE}) {
    Game.Mode = mode;
    EXPECT_FALSE(NP_SendPacket(NP_TO_ALL, 23, "%d,%d", 0, 1));
    EXPECT_FALSE(NP_SendPacket(NP_TO_DEFAULT, 3, "%d", 1));
  }
  EXPECT_EQ(PacketSkipPlayerId, 5);
  EXPECT_TRUE(Console.Lines().empty());

  Game.Mode = GAME_MODE_SERVER;
  NetworkInitialised = false;
  EXPECT_FALSE(NP_SendPacket(NP_TO_ALL, 23, "%d,%d", 0, 1));
  EXPECT_EQ(PacketSkipPlayerId, -1);
  EXPECT_EQ(Console.Lines(),
            std::vector<std::string>{"Can not send packet, network is not initialised (packet type=23)"});

  // Alone on the server: true, the skip ID spent, nothing goes anywhere.
  NetworkInitialised = true;
  Game.Players.resize(1);
  PacketSkipPlayerId = 5;
  EXPECT_TRUE(NP_SendPacket(NP_TO_ALL, 20, ""));
  EXPECT_EQ(PacketSkipPlayerId, -1);
  Settle();
  EXPECT_TRUE(A.Received.empty());
  EXPECT_TRUE(B.Received.empty());
}

TEST_F(SendTest, SkipIdLeavesOutOneClientOnce) {
  PacketSkipPlayerId = 5;
  EXPECT_TRUE(NP_SendPacket(NP_TO_ALL, 23, "%d,%d", 5, -1));
  EXPECT_EQ(PacketSkipPlayerId, -1);
  EXPECT_TRUE(NP_SendPacket(NP_TO_DEFAULT, 24, "%d,%d", 0, 2));
  Settle();
  EXPECT_EQ(ReceivedHex(A), std::vector<std::string>{"18 00 00 02 00 00"});
  EXPECT_EQ(ReceivedHex(B), (std::vector<std::string>{"17 05 00 FF FF 00", "18 00 00 02 00 00"}));
  EXPECT_EQ(Channels(B), (std::vector<int>{1, 1}));

  // A relay from the only client goes to nobody and still answers true.
  Game.Players.resize(2);
  PacketSkipPlayerId = 5;
  EXPECT_TRUE(NP_SendPacket(NP_TO_ALL, 23, "%d,%d", 5, 1));
  Settle();
  EXPECT_EQ(ReceivedHex(A), std::vector<std::string>{"18 00 00 02 00 00"});
  EXPECT_TRUE(Console.Lines().empty());
}

TEST_F(SendTest, DestinationsByIdAndTheirRefusals) {
  EXPECT_TRUE(NP_SendPacket(9, 51, ""));
  EXPECT_TRUE(NP_SendPacket(77, 51, ""));
  EXPECT_TRUE(NP_SendPacket(0, 51, ""));  // the server's own player has no peer
  EXPECT_TRUE(NP_SendPacket(NP_TO_SERVER, 51, ""));
  Settle();
  EXPECT_TRUE(A.Received.empty());
  EXPECT_EQ(ReceivedHex(B), std::vector<std::string>{"33 00"});
  EXPECT_EQ(Console.Lines(), (std::vector<std::string>{"Warning GetPlayerNumber failed to resolve player ID 77",
                                                       "Packets destination player ID is invalid 77 (packet type 51)",
                                                       "Server attempted to send a packet to itself!"}));
  // A peer that is gone refuses the packet; the call doesn't mind.
  enet_peer_reset(ClientPeers[2]);
  EXPECT_TRUE(NP_SendPacket(9, 51, ""));
}

TEST_F(SendTest, ServerGoodbyeIsFlushedAtOnce) {
  // Nothing services the server's host after these calls.
  EXPECT_TRUE(NP_SendPacket(NP_TO_ALL, 23, "%d,%d", 0, 4));
  PumpUntil([&] { A.Service(1); }, [] { return false; }, 150);
  EXPECT_TRUE(A.Received.empty());
  EXPECT_TRUE(NP_SendPacket(NP_TO_ALL, 20, "%d", 5));
  ASSERT_TRUE(PumpUntil([&] { A.Service(1); B.Service(); },
                        [&] { return A.Received.size() == 2 && B.Received.size() == 2; }, 1000));
  EXPECT_EQ(ReceivedHex(A), (std::vector<std::string>{"17 00 00 04 00 00", "14 05 00 00"}));
}

TEST_F(SendTest, ClientSendsToServerOnChannelZero) {
  Game.Mode = GAME_MODE_CLIENT;
  NetHost = A.Host;
  ServerPeer = A.Peer;
  EXPECT_TRUE(NP_SendPacket(NP_TO_DEFAULT, 3, "%d", 3));
  PumpUntil([&] { Server.Service(1); }, [] { return false; }, 150);
  EXPECT_TRUE(Server.Received.empty());  // not flushed: waits for the client's poll
  EXPECT_TRUE(NP_SendPacket(NP_TO_SERVER, 0, ""));
  ASSERT_TRUE(PumpUntil([&] { Server.Service(1); }, [&] { return Server.Received.size() == 2; }, 1000));
  EXPECT_EQ(ReceivedHex(Server), (std::vector<std::string>{"03 03 00 00", "00 00"}));
  EXPECT_EQ(Channels(Server), (std::vector<int>{0, 0}));

  EXPECT_TRUE(NP_SendPacket(NP_TO_ALL, 3, "%d", 1));
  EXPECT_TRUE(NP_SendPacket(9, 3, "%d", 1));  // a client sends to its server only
  EXPECT_EQ(Console.Lines(), std::vector<std::string>{"Client attempted to send a packet to all other clients"});
  Settle();
  EXPECT_EQ(Server.Received.size(), 2u);

  // A name longer than a text field goes out cut to 255 bytes.
  std::string name(300, 'n');
  EXPECT_TRUE(NP_SendPacket(NP_TO_SERVER, 1, "%s", name.c_str()));
  ASSERT_TRUE(PumpUntil([&] { Server.Service(1); A.Service(); }, [&] { return Server.Received.size() == 3; }, 1000));
  EXPECT_EQ(ReceivedHex(Server, 2), std::vector<std::string>{Hex(TextPkt(1, {}, std::string(255, 'n')))});
}
