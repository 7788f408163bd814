// The server's event pump: joins, packets from clients, lost clients.
#pragma once
#include <cstdint>
#include "net/packets.h"

struct _ENetPeer;

void NET_ServerPoll();
void NET_RemovePlayer(int number);
void NET_HandleCommonPacket(int32_t type, PacketFieldList fields);
void NET_TagPeer(int number, struct _ENetPeer *peer);
void NET_FreePeerTags();

// The handling of one parsed packet from the client at roster `number`
// (its ID `id`), apart from ENet so that it can be driven directly.
void NET_ServerDispatch(int number, int32_t id, int32_t type, const PacketFieldList &fields);
