// NP_SendPacket: formats an argument line, encodes it by the packet table
// and queues one reliable ENet packet on one peer or on all client peers.
#include "net/send.h"
#include <cstdarg>
#include <cstdio>
#include "app/game.h"
#include "net/netstate.h"
#include "net/packets.h"
#include "rvk/console.h"

int32_t PacketSkipPlayerId = -1;

bool NP_SendPacket(int32_t destination, uint8_t packetType, const char *format, ...) {
  GameClass &game = Game;
  bool server = game.Mode == GAME_MODE_SERVER;
  if (!server && game.Mode != GAME_MODE_CLIENT) return false;

  int32_t skipId = PacketSkipPlayerId;
  PacketSkipPlayerId = -1;

  if (!NetworkInitialised) {
    RVK_Message("Can not send packet, network is not initialised (packet type=%d)", packetType);
    return false;
  }
  if (server && game.GetPlayerCount() == 1) return true;
  if (destination == NP_TO_DEFAULT) destination = server ? NP_TO_ALL : NP_TO_SERVER;

  // vsnprintf cuts a line over 511 characters; callers keep far below it.
  char line[NP_LINE_SIZE];
  va_list args;
  va_start(args, format);
  std::vsnprintf(line, sizeof(line), format, args);
  va_end(args);
  // Fields that don't fit into a packet are reported as a packet that can't
  // be made; no row of the table comes near the limit.
  uint8_t data[NP_PACKET_SIZE];
  int length = NP_EncodePacket(packetType, line, data, sizeof(data));
  ENetPacket *packet = length ? enet_packet_create(data, (size_t)length, ENET_PACKET_FLAG_RELIABLE) : nullptr;
  if (!packet) {
    RVK_Message("NP_SendPacket: Unable to create packet!");
    return false;
  }

  enet_uint8 channel = server ? 1 : 0;
  if (destination == NP_TO_ALL) {
    if (server) {
      for (int number = 1; number < game.GetPlayerCount(); number++) {
        if (game.Players[number].PlayerId != skipId) enet_peer_send(ClientPeers[number], channel, packet);
      }
    } else {
      RVK_Message("Client attempted to send a packet to all other clients");
    }
  } else if (destination == NP_TO_SERVER) {
    if (!server) {
      if (ServerPeer) enet_peer_send(ServerPeer, channel, packet);
    } else {
      RVK_Message("Server attempted to send a packet to itself!");
    }
  } else {
    int number = game.GetPlayerNumber(destination);
    if (number == -1) {
      RVK_Message("Packets destination player ID is invalid %d (packet type %d)", destination, packetType);
    } else if (server) {
      // Number 0 is the server's own player: its entry stays empty.
      if (ClientPeers[number]) enet_peer_send(ClientPeers[number], channel, packet);
    }
    // A client sends to its server only: a player ID names no peer there.
  }

  if ((packetType == NP_REPORT_QUIT || packetType == NP_UPDATE_QUIT) && NetHost) enet_host_flush(NetHost);
  // A packet that no peer took is ours to free; one that a peer queued is
  // freed by ENet once every peer is done with it.
  if (packet->referenceCount == 0) enet_packet_destroy(packet);
  return true;
}
