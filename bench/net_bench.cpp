// Network timings on 127.0.0.1: the game's own server, polled once a frame at
// 45 frames a second, with test clients that poll once a frame too.
//   join: from a 7th client's connect event to the last packet of its join
//         sequence (4 + 14 x 7 = 102 packets) arriving;
//   pick: from one client's part report to another client's Update arriving.
// Target for both: within 2 frames (45 ms) beyond ENet's own handshake.
// With "--flood PORT SECONDS" it is instead one client that sends part reports
// to a server on 127.0.0.1:PORT as fast as ENet takes them (bench/net_flood.py).
#include <algorithm>
#include <cstdio>
#include <memory>
#include <unistd.h>
#include "app/config.h"
#include "app/game.h"
#include "net/host.h"
#include "net/server.h"
#include "tests/netpeer/netpeer.h"

static const double FRAME_MS = 1000.0 / 45.0;

class Bench {
public:
  std::vector<std::unique_ptr<TestHost>> Clients;
  uint16_t Port = 0;
  double NextFrame = 0;

  // One frame: the server's poll, every client's poll, then wait for the tick.
  void Frame() {
    NET_ServerPoll();
    for (auto &c : Clients) c->Service();
    NextFrame += FRAME_MS;
    double wait = NextFrame - NowMs();
    if (wait > 0) usleep((useconds_t)(wait * 1000));
    else NextFrame = NowMs();
  }
  bool FramesUntil(const std::function<bool()> &done, double timeoutMs) {
    double end = NowMs() + timeoutMs;
    while (NowMs() < end) {
      Frame();
      if (done()) return true;
    }
    return false;
  }
  TestHost *Join(size_t packets) {
    Clients.emplace_back(new TestHost);
    TestHost *c = Clients.back().get();
    if (!c->Start(Port, false)) return nullptr;
    if (!FramesUntil([&] { return c->Received.size() >= packets; }, 3000)) return nullptr;
    return c;
  }
};

static void Report(const char *what, std::vector<double> v) {
  std::sort(v.begin(), v.end());
  double sum = 0;
  for (double x : v) sum += x;
  std::printf("%-44s n=%zu  median %.2f ms  mean %.2f ms  max %.2f ms  (%s 45 ms)\n", what, v.size(), v[v.size() / 2],
              sum / v.size(), v.back(), v.back() <= 45.0 ? "within" : "OVER");
}

// Keeps ENet's queue of outgoing commands full, but no fuller: the rate is
// what the reliable channel carries, and the memory stays bounded.
static int Flood(uint16_t port, double seconds) {
  TestHost client;
  const size_t queued = 256;
  if (!client.Start(port, false) || !PumpUntil([&] { client.Service(1); }, [&] { return client.Connected(); }, 5000)) {
    std::printf("no server on port %d\n", port);
    return 1;
  }
  long sent = 0;
  for (double end = NowMs() + seconds * 1000; NowMs() < end; client.Service()) {
    while (enet_list_size(&client.Peer->outgoingCommands) < queued) {
      Bytes report = Pkt(NP_REPORT_EYES, {(int)(sent++ % 2)});
      enet_peer_send(client.Peer, 0, enet_packet_create(report.data(), report.size(), ENET_PACKET_FLAG_RELIABLE));
    }
  }
  std::printf("flood: %ld part reports in %.0f s (%.0f a second)\n", sent, seconds, sent / seconds);
  return 0;
}

int main(int argc, char **argv) {
  if (argc == 4 && std::string(argv[1]) == "--flood") {
    enet_initialize();
    return Flood((uint16_t)std::atoi(argv[2]), std::atof(argv[3]));
  }
  Game.Characters.resize(3);
  Game.Eyes.resize(4);
  Bench bench;
  bench.Port = TestPort(400);
  Config.LocalServerPort = std::to_string(bench.Port);
  if (!NET_StartServer()) {
    std::printf("server could not start on port %d\n", bench.Port);
    return 1;
  }
  Game.Mode = GAME_MODE_SERVER;
  Game.SetPlayerCount(1, false);
  Game.SetLocalPlayer(0);
  Game.LocalPlayer->PlayerId = Game.NextPlayerId++;
  ResetPlayer(*Game.LocalPlayer);
  bench.NextFrame = NowMs();

  for (int i = 0; i < 6; i++)
    if (!bench.Join(4 + 14 * (i + 1))) {
      std::printf("client %d did not join\n", i + 1);
      return 1;
    }

  std::vector<double> joins;
  for (int round = 0; round < 20; round++) {
    TestHost *seventh = bench.Join(102);
    if (!seventh) {
      std::printf("the 7th client did not join in round %d\n", round);
      return 1;
    }
    joins.push_back(seventh->Received.back().Time - seventh->ConnectTime);
    seventh->Send(Pkt(NP_REPORT_QUIT));
    bench.FramesUntil([] { return Game.GetPlayerCount() == 7; }, 2000);
    bench.Clients.pop_back();
    for (auto &c : bench.Clients) c->Service();
  }
  Report("join: connect to last of 102 packets", joins);

  std::vector<double> picks;
  TestHost &a = *bench.Clients[0];
  TestHost &b = *bench.Clients[1];
  for (int round = 0; round < 50; round++) {
    size_t seen = b.Received.size();
    double sent = NowMs();
    a.Send(Pkt(NP_REPORT_EYES, {round % 4}));
    if (!bench.FramesUntil([&] { return b.Received.size() > seen; }, 2000)) {
      std::printf("pick %d did not arrive\n", round);
      return 1;
    }
    picks.push_back(b.Received[seen].Time - sent);
    // The next pick starts at a different point of the frame.
    usleep((useconds_t)(round % 5) * 4000);
  }
  Report("pick: report to another client's update", picks);

  bench.Clients.clear();
  NET_ShutdownNetwork();
  return 0;
}
