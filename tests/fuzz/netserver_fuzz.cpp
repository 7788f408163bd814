// Nine peers' connects, packets and disconnects, as ENet gives them, to the
// server, its peer table checked after each: a byte picks event and peer, a
// packet's length and bytes follow.
#include "net/netstate.cpp"
#include "net/packets.cpp"
#include "net/send.cpp"
#include "net/server.cpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  // Peers never connected at ENet's level: they refuse what they are sent.
  static ENetHost *host = (enet_initialize(), NP_InitPacketTable(), enet_host_create(nullptr, 9, 2, 0, 0));
  NET_FreePeerTags();
  for (ENetPeer *&peer : ClientPeers) peer = nullptr;
  Game.Players.assign(1, PlayerClass());
  Game.SetLocalPlayer(0);
  Game.Mode = GAME_MODE_SERVER;
  NetworkInitialised = true;
  NetHost = host;
  bool on[9] = {};
  for (size_t at = 0; at < size;) {
    int kind = data[at] >> 6, which = data[at++] % 9;
    ENetEvent event{};
    event.peer = &host->peers[which];
    if (kind == 0 && !on[which]) event.type = ENET_EVENT_TYPE_CONNECT, on[which] = true;
    if (kind == 1 && on[which]) event.type = ENET_EVENT_TYPE_DISCONNECT, on[which] = false;
    if (kind == 2 && on[which] && at < size) {
      size_t length = std::min<size_t>(data[at++], size - at);
      event.type = ENET_EVENT_TYPE_RECEIVE;
      event.packet = enet_packet_create(data + at, length, 0);
      at += length;
    }
    NET_ServerHandleEvent(event);
    // Entry i is the peer of record i, tagged with its ID.
    int count = Game.GetPlayerCount();
    if (count > MAX_PLAYERS || Game.LocalPlayer != &Game.Players[0]) __builtin_trap();
    for (int i = 1; i < MAX_PLAYERS; i++)
      if ((i < count) != (ClientPeers[i] != nullptr) ||
          (i < count && std::atoi((const char *)ClientPeers[i]->data) != Game.Players[i].PlayerId))
        __builtin_trap();
  }
  return 0;
}
