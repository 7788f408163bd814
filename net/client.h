// The client's event pump: applies what the server sends and tells the game
// loop when the game is over.
#pragma once
#include <cstdint>
#include "net/packets.h"

bool NET_ClientPoll();

// The handling of one parsed packet from the server; false when the game is
// over. Apart from ENet so that it can be driven directly.
bool NET_ClientDispatch(int32_t type, const PacketFieldList &fields);
