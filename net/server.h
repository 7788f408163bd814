// The server's event pump: joins, packets from clients, lost clients.
#pragma once
#include <enet/enet.h>
#include <cstdint>
#include "app/game.h"
#include "net/packets.h"

// The longest a frame's poll spends on events, in milliseconds: a client
// that sends as fast as it can must not hold up the host's frames.
const double SERVER_POLL_BUDGET_MS = 5;

// Polls within SERVER_POLL_BUDGET_MS and notes its wait for packets that
// didn't come in the frame trace.
void NET_ServerPoll();
// One poll that handles events for at most `budgetMs` (and at least one
// event, if one is there); gives the microseconds it waited in vain.
int64_t NET_ServerPollWithin(double budgetMs);
// Handles one event of the server's host: a connect, a packet or a disconnect.
void NET_ServerHandleEvent(ENetEvent &event);
void NET_RemovePlayer(int number);
void NET_HandleCommonPacket(int32_t type, PacketFieldList fields);
void NET_TagPeer(int number, ENetPeer *peer);
void NET_FreePeerTags();

// The handling of one parsed packet from the client at roster `number`, a
// record of the roster, with the ID `id`; apart from ENet so that it can be
// driven directly.
void NET_ServerDispatch(int number, int32_t id, int32_t type, const PacketFieldList &fields);

// The set-part operations, Character to Hat, in the order of their Report
// and of their Update packets.
typedef void (*SetPartFunction)(PlayerClass &, int32_t, bool);
const int SET_PART_COUNT = 9;
// The operation that a packet of `type` names, where `characterType` is the
// type of its Character packet; null for a type outside the nine.
SetPartFunction NET_SetPartOf(int32_t type, int32_t characterType);
