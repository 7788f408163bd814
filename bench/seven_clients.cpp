// Seven clients of a game server on 127.0.0.1, for the eight-player frame
// benchmark: each joins, gives its name and dresses differently (client k
// wears entry k of every catalogue, where the server's own player wears the
// first entries), then keeps its connection serviced until the time is up
// and reports that it quits. They speak the wire format directly and draw
// nothing, so every frame measured is the server's own.
//   seven_clients PORT SECONDS
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>
#include <unistd.h>
#include "net/packets.h"
#include "tests/netpeer/netpeer.h"

namespace {

const int CLIENTS = 7;
const int SERVICE_PAUSE_US = 5000;

// "Set Player Number" is the first packet of a join: the server has taken
// the client in.
bool Joined(const TestHost &h) {
  for (const TestHost::Packet &p : h.Received)
    if (!p.Data.empty() && p.Data[0] == NP_SET_PLAYER_NUMBER) return true;
  return false;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: seven_clients PORT SECONDS\n");
    return 2;
  }
  const uint16_t port = (uint16_t)std::atoi(argv[1]);
  const double endMs = NowMs() + std::atof(argv[2]) * 1000.0;
  if (enet_initialize() != 0) return 1;
  std::vector<std::unique_ptr<TestHost>> clients;
  for (int k = 1; k <= CLIENTS; k++) {
    clients.emplace_back(new TestHost);
    TestHost &c = *clients.back();
    // One at a time, as players join: the server answers each join in turn.
    if (!c.Start(port, false) || !PumpUntil([&] { c.Service(1); }, [&] { return Joined(c); }, 10000)) {
      std::fprintf(stderr, "seven_clients: client %d did not join the server on port %u\n", k, port);
      return 1;
    }
    c.Send(Pkt(NP_REPORT_PLAYER_NAME, {}, ("Bench" + std::to_string(k)).c_str()));
    for (int type = NP_REPORT_CHARACTER; type <= NP_REPORT_HAT; type++) c.Send(Pkt((uint8_t)type, {k}));
  }
  std::printf("%d clients joined and dressed\n", CLIENTS);
  std::fflush(stdout);
  while (NowMs() < endMs) {
    for (auto &c : clients) {
      c->Service();
      // Nothing read is kept: an hour of face motion would pile up.
      c->Received.clear();
    }
    usleep(SERVICE_PAUSE_US);
  }
  for (auto &c : clients) {
    c->Send(Pkt(NP_REPORT_QUIT));
    c->Service(10);
  }
  clients.clear();
  enet_deinitialize();
  return 0;
}
