// The network layer's own state, shared by its files and by nothing else.
#pragma once
#include <enet/enet.h>
#include <cstdint>
#include "app/game.h"

extern bool NetworkInitialised;
extern int32_t SavedSwitchMode;
extern ENetHost *NetHost;
extern ENetPeer *ServerPeer;
// On the server, the peer of each client record by player number; entry 0,
// the server's own player, stays empty.
extern ENetPeer *ClientPeers[MAX_PLAYERS];
