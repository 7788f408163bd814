// The network layer's own state, with static lifetime.
#include "net/netstate.h"

bool NetworkInitialised = false;
int32_t SavedSwitchMode;
ENetHost *NetHost = nullptr;
ENetPeer *ServerPeer = nullptr;
ENetPeer *ClientPeers[MAX_PLAYERS] = {nullptr};
