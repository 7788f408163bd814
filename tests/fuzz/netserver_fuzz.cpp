// Feeds the server's event handling a stream of connects, packets and
// disconnects of nine peers, as ENet would give them, and checks the peer
// table against the roster after every event. Each byte picks an event and
// a peer; a packet's length and bytes follow its byte.
#include "app/game.h"
#include "net/netstate.h"
#include "net/server.h"

// Compiled in so that libFuzzer sees their branches (see netpacket_fuzz).
#include "net/client.cpp"
#include "net/netstate.cpp"
#include "net/packets.cpp"
#include "net/send.cpp"
#include "net/server.cpp"

// The peers of a host that never sends: none of them is connected at ENet's
// level, so whatever the server sends them is refused on the spot.
static ENetHost *Peers() {
  enet_initialize();
  NP_InitPacketTable();
  Game.Characters.resize(2);
  Game.Eyes.resize(2);
  Game.Hats.resize(2);
  return enet_host_create(nullptr, MAX_PLAYERS + 1, 2, 0, 0);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static ENetHost *host = Peers();
  for (size_t i = 0; i < host->peerCount; i++) std::free(host->peers[i].data), host->peers[i].data = nullptr;
  for (ENetPeer *&peer : ClientPeers) peer = nullptr;
  Game.Players.assign(1, PlayerClass());
  Game.SetLocalPlayer(0);
  Game.Mode = GAME_MODE_SERVER;
  NetworkInitialised = true;
  NetHost = host;
  bool connected[MAX_PLAYERS + 1] = {};
  for (size_t at = 0; at < size;) {
    int kind = data[at] >> 6, which = data[at++] % (MAX_PLAYERS + 1);
    ENetEvent event{};
    event.peer = &host->peers[which];
    if (kind == 0 && !connected[which]) {
      event.type = ENET_EVENT_TYPE_CONNECT;
    } else if (kind == 1 && connected[which]) {
      event.type = ENET_EVENT_TYPE_DISCONNECT;
    } else if (kind == 2 && connected[which] && at < size) {
      size_t length = std::min((size_t)data[at++], size - at);
      event.type = ENET_EVENT_TYPE_RECEIVE;
      event.packet = enet_packet_create(data + at, length, ENET_PACKET_FLAG_RELIABLE);
      at += length;
    }
    connected[which] = event.type == ENET_EVENT_TYPE_CONNECT || (connected[which] && event.type != ENET_EVENT_TYPE_DISCONNECT);
    NET_ServerHandleEvent(event);
    // Entry i of the table is the peer of record i, tagged with its ID.
    int count = Game.GetPlayerCount();
    if (count < 1 || count > MAX_PLAYERS || Game.LocalPlayer != &Game.Players[0]) __builtin_trap();
    for (int i = 1; i < MAX_PLAYERS; i++) {
      ENetPeer *peer = ClientPeers[i];
      if ((i < count) != (peer != nullptr)) __builtin_trap();
      if (peer && (!peer->data || std::atoi((const char *)peer->data) != Game.Players[i].PlayerId)) __builtin_trap();
    }
  }
  return 0;
}
