// The server's event pump: a client joins and gets the join sequence, its
// packets are applied and relayed to the others, a client leaves.
#include "net/server.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include "app/game.h"
#include "app/parts.h"
#include "net/netstate.h"
#include "net/send.h"
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/timer.h"

static int White() { return makecol(255, 255, 255); }

// The peer's IPv4 host as ENet stores it (network byte order) and its port.
static std::string PeerAddressText(const ENetPeer *peer) {
  char text[32];
  std::snprintf(text, sizeof(text), "%x:%u", (unsigned)peer->address.host, (unsigned)peer->address.port);
  return text;
}

// ---- Peer tags ----------------------------------------------------------------

// A copy of the player's ID in decimal from malloc; the peer carries no tag
// before (every untagging frees and clears it).
void NET_TagPeer(int number, ENetPeer *peer) {
  char id[16];
  std::snprintf(id, sizeof(id), "%d", Game.Players[number].PlayerId);
  peer->data = strdup(id);
}

void NET_FreePeerTags() {
  for (int i = 1; i < MAX_PLAYERS; i++) {
    if (!ClientPeers[i]) continue;
    std::free(ClientPeers[i]->data);
    ClientPeers[i]->data = nullptr;
  }
}

// ---- Leaving and console lines --------------------------------------------

void NET_RemovePlayer(int number) {
  GameClass &game = Game;
  if (number < 0 || number >= game.GetPlayerCount()) return;
  RVK_Message("%s has left the game", game.Players[number].PlayerName.c_str());
  RVK_SetLastMessageColour(White());
  int32_t id = game.Players[number].PlayerId;
  int countBefore = game.GetPlayerCount();
  game.DeletePlayer(number);
  if (game.Mode != GAME_MODE_SERVER) return;
  // The local record is never deleted; it has no peer to let go of either.
  if (game.GetPlayerCount() == countBefore) return;
  ENetPeer *peer = ClientPeers[number];
  if (peer) {
    enet_peer_reset(peer);
    std::free(peer->data);
    peer->data = nullptr;
  }
  // The records behind it move down one number, and their peers with them.
  std::copy(ClientPeers + number + 1, ClientPeers + MAX_PLAYERS, ClientPeers + number);
  ClientPeers[MAX_PLAYERS - 1] = nullptr;
  NP_SendPacket(NP_TO_ALL, NP_UPDATE_QUIT, "%d", id);
}

void NET_HandleCommonPacket(int32_t type, PacketFieldList fields) {
  if (type != NP_CONSOLE_MESSAGE) return;
  GameClass &game = Game;
  int32_t id = std::atoi(NP_FieldText(fields, 0));
  int number = game.GetPlayerNumber(id);
  const char *text = NP_FieldText(fields, 2);
  if (number != -1)
    RVK_Message("%s: %s", game.Players[number].PlayerName.c_str(), text);
  else
    RVK_Message("%s", text);
  int colour = std::atoi(NP_FieldText(fields, 1));
  if (colour != -1) RVK_SetLastMessageColour(colour);
  if (game.Mode == GAME_MODE_SERVER)
    NP_SendPacket(NP_TO_ALL, NP_CONSOLE_MESSAGE, "%d,%d,%s", id, colour, NP_EscapeText(text).c_str());
}

// ---- Join -------------------------------------------------------------------

// The join sequence: the newcomer's number and the version, the new count to
// everybody, then every record's ID and each earlier player as it stands.
static void SendJoinSequence(int number, int count, int32_t id) {
  GameClass &game = Game;
  NP_SendPacket(id, NP_SET_PLAYER_NUMBER, "%d,%d", number, count);
  NP_SendPacket(id, NP_VERSION_INFO, "%s", NP_EscapeText(TUMBLEKIN_VERSION).c_str());
  NP_SendPacket(NP_TO_ALL, NP_UPDATE_JOINED, "%d,%d", count, id);
  for (int i = 0; i < count; i++) NP_SendPacket(id, NP_UPDATE_PLAYER_ID, "%d,%d", i, game.Players[i].PlayerId);
  for (int i = 0; i < count - 1; i++) {
    // The set-part operations of a newcomer may move nothing in the roster,
    // but a copy keeps this loop independent of them anyway.
    PlayerClass p = game.Players[i];
    int32_t pid = p.PlayerId;
    NP_SendPacket(id, NP_UPDATE_PLAYER_NAME, "%d,%s", pid, NP_EscapeText(p.PlayerName.c_str()).c_str());
    // In the order of their Update packets, Character to Hat.
    const int32_t parts[] = {p.CharacterNumber, p.EyesNumber,      p.EarsNumber, p.NoseNumber, p.MouthNumber,
                             p.EyebrowsNumber,  p.MoustacheNumber, p.FeetNumber, p.HatNumber};
    for (int k = 0; k < SET_PART_COUNT; k++) NP_SendPacket(id, NP_UPDATE_CHARACTER + k, "%d,%d", pid, parts[k]);
    // Motion after the body: a receiver's SetCharacter clears the motion fields.
    NP_SendPacket(id, NP_UPDATE_EYES_ORI_X, "%d,%f", pid, (double)p.EyesOriTarget[0]);
    NP_SendPacket(id, NP_UPDATE_EYES_ORI_Y, "%d,%f", pid, (double)p.EyesOriTarget[1]);
    NP_SendPacket(id, NP_UPDATE_EYEBROWS_Y, "%d,%f", pid, (double)p.EyebrowsY);
  }
}

// A refused peer stays connected without a tag: its client keeps waiting for
// a number until the user gives up, as on any full server. It isn't reset
// here, since a reset would end that wait with a lost connection instead.
static void ServerJoin(ENetPeer *peer) {
  GameClass &game = Game;
  int count = game.GetPlayerCount();
  if (count >= MAX_PLAYERS) {
    RVK_Message("Refused connection attempt from %s, server is full", PeerAddressText(peer).c_str());
    // A slot that ENet hands out again must not carry a tag from before.
    std::free(peer->data);
    peer->data = nullptr;
    return;
  }
  RVK_Message("Accepted new client connection");
  game.SetPlayerCount(count + 1, true);
  count = game.GetPlayerCount();
  int number = count - 1;
  ResetPlayer(game.Players[number]);
  int32_t id = game.NextPlayerId++;
  game.Players[number].PlayerId = id;
  ClientPeers[number] = peer;
  NET_TagPeer(number, peer);
  SendJoinSequence(number, count, id);
  RVK_Message("A new client connected from %s", PeerAddressText(peer).c_str());
}

// ---- Receive ------------------------------------------------------------------

// The set-part operations in the order of their packets, Character to Hat.
static const SetPartFunction SetParts[SET_PART_COUNT] = {SetCharacter, SetEyes,      SetEars, SetNose, SetMouth,
                                                         SetEyebrows,  SetMoustache, SetFeet, SetHat};

SetPartFunction NET_SetPartOf(int32_t type, int32_t characterType) {
  int32_t part = type - characterType;
  return part >= 0 && part < SET_PART_COUNT ? SetParts[part] : nullptr;
}

static void ReportPlayerName(int number, int32_t id, const char *name) {
  GameClass &game = Game;
  game.Players[number].PlayerName = name;
  // A name from the wire is at most 255 characters, so the line always fits.
  char line[NP_LINE_SIZE];
  std::snprintf(line, sizeof line, "%s has joined the game", name);
  RVK_Message("%s", line);
  RVK_SetLastMessageColour(White());
  NP_SendPacket(NP_TO_ALL, NP_CONSOLE_MESSAGE, "%d,%d,%s", -1, White(), NP_EscapeText(line).c_str());
  NP_SendPacket(NP_TO_ALL, NP_UPDATE_PLAYER_NAME, "%d,%s", id, NP_EscapeText(name).c_str());
}

void NET_ServerDispatch(int number, int32_t id, int32_t type, const PacketFieldList &fields) {
  GameClass &game = Game;
  if (type == NP_REPORT_QUIT) {
    NET_RemovePlayer(number);
  } else if (type == NP_REPORT_PLAYER_NAME) {
    ReportPlayerName(number, id, NP_FieldText(fields, 0));
  } else if (SetPartFunction setPart = NET_SetPartOf(type, NP_REPORT_CHARACTER)) {
    int32_t value = std::atoi(NP_FieldText(fields, 0));
    PacketSkipPlayerId = id;
    NP_SendPacket(NP_TO_ALL, (uint8_t)(type + NP_REPORT_TO_UPDATE), "%d,%d", id, value);
    setPart(game.Players[number], value, false);
  } else if (type == NP_PING) {
    NP_SendPacket(id, NP_PONG, "");
  } else {
    NET_HandleCommonPacket(type, fields);
  }
}

// The roster number of the peer's player, or -1 when its event is dropped:
// a peer without a tag was refused. A tag names a record, as it is freed with
// it; one that didn't would be told as the unknown ID that it is.
static int NumberOfPeer(ENetPeer *peer, bool receive) {
  if (!peer->data) {
    RVK_Message(receive ? "Ignored packet from %s, which is not in the game"
                        : "Connection closed from %s, which was not in the game",
                PeerAddressText(peer).c_str());
    return -1;
  }
  int32_t id = std::atoi((const char *)peer->data);
  int number = Game.GetPlayerNumber(id);
  if (number == -1) RVK_Message("Server received invalid player id %d for \"receive\" packet", id);
  return number;
}

static void ServerReceive(ENetPeer *peer, ENetPacket *packet) {
  PacketFieldList fields;
  int32_t type = NP_ParsePacket(fields, packet->data, packet->dataLength);
  enet_packet_destroy(packet);
  int number = NumberOfPeer(peer, true);
  if (number != -1) NET_ServerDispatch(number, Game.Players[number].PlayerId, type, fields);
}

static void ServerDisconnect(ENetPeer *peer) {
  int number = NumberOfPeer(peer, false);
  if (number == -1) return;
  RVK_Message("Connection lost to player %d %s", number, Game.Players[number].PlayerName.c_str());
  NET_RemovePlayer(number);
}

// ---- Poll ---------------------------------------------------------------------

void NET_ServerHandleEvent(ENetEvent &event) {
  switch (event.type) {
    case ENET_EVENT_TYPE_CONNECT: ServerJoin(event.peer); break;
    case ENET_EVENT_TYPE_RECEIVE: ServerReceive(event.peer, event.packet); break;
    case ENET_EVENT_TYPE_DISCONNECT: ServerDisconnect(event.peer); break;
    default: RVK_Message("Unknown enet event type %d", (int)event.type); break;
  }
}

static double NowMs() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Only the first call waits for an event, up to the whole budget; the budget
// is then spent on handling events, and those left over when it runs out
// stay in ENet's queues, in their order, for the next frame's poll.
int64_t NET_ServerPollWithin(double budgetMs) {
  if (!NetHost) return 0;
  const double start = NowMs();
  ENetEvent event;
  for (auto wait = (enet_uint32)budgetMs;; wait = 0) {
    const int64_t asked = RVK_ClockMicroseconds();
    if (enet_host_service(NetHost, &event, wait) <= 0) {
      // Nothing came: a call that could wait spent its time waiting.
      return wait > 0 ? RVK_ClockMicroseconds() - asked : 0;
    }
    NET_ServerHandleEvent(event);
    if (NowMs() - start >= budgetMs) return 0;
  }
}

void NET_ServerPoll() { RVK_NoteWait(NET_ServerPollWithin(SERVER_POLL_BUDGET_MS)); }
