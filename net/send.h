// NP_SendPacket: the one way out of the program to the network.
#pragma once
#include <cstdint>
#include "net/packets.h"

enum {
  NP_TO_SERVER = -1,
  NP_TO_ALL = -2,
  NP_TO_DEFAULT = -3,
};

// A one-shot setting: the next NP_SendPacket leaves out the client with this
// ID from a send to all, and resets it to -1.
extern int32_t PacketSkipPlayerId;

// Formats the arguments into a comma-separated line, encodes it by the packet
// table and sends it reliably to a player ID, the server or all clients.
// False when nothing was sent because the game isn't networked or the network
// layer can't make the packet.
bool NP_SendPacket(int32_t destination, uint8_t packetType, const char *format, ...);
