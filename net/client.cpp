// The client's event pump: applies the server's word on players, names and
// parts to the local roster, and ends the game when the server goes.
#include "net/client.h"
#include <cstdlib>
#include <string>
#include "app/game.h"
#include "app/parts.h"
#include "net/netstate.h"
#include "net/server.h"
#include "rvk/console.h"
#include "rvk/messagebox.h"

// "Update Joined": the new count first, then the newcomer's ID. A count that
// is no roster size, or that would cut off the local record, is ignored: the
// roster always holds the local player and never more than MAX_PLAYERS.
static void UpdateJoined(const PacketFieldList &fields) {
  GameClass &game = Game;
  int count = std::atoi(NP_FieldText(fields, 0));
  if (count > MAX_PLAYERS || count <= game.LocalPlayerNumber) return;
  game.SetPlayerCount(count, true);
  PlayerClass &last = game.Players.back();
  ResetPlayer(last);
  last.PlayerId = std::atoi(NP_FieldText(fields, 1));
}

// "Update Player ID": the first field is a roster index; one outside the
// roster is ignored.
static void UpdatePlayerId(const PacketFieldList &fields) {
  GameClass &game = Game;
  int number = std::atoi(NP_FieldText(fields, 0));
  if (number < 0 || number >= game.GetPlayerCount()) return;
  game.Players[number].PlayerId = std::atoi(NP_FieldText(fields, 1));
}

static bool VersionInfo(const PacketFieldList &fields) {
  std::string server = NP_FieldText(fields, 0);
  if (server == TUMBLEKIN_VERSION) {
    RVK_Message("Client and server versions match (%s)", server.c_str());
    return true;
  }
  RVK_MessageBox("Incorrect version, client is %s, server is %s", TUMBLEKIN_VERSION, server.c_str());
  return false;
}

bool NET_ClientDispatch(int32_t type, const PacketFieldList &fields) {
  GameClass &game = Game;
  switch (type) {
    case NP_UPDATE_JOINED: UpdateJoined(fields); return true;
    case NP_UPDATE_PLAYER_ID: UpdatePlayerId(fields); return true;
    case NP_PONG: RVK_Message("Recieved ping reply from server"); return true;
    case NP_VERSION_INFO: return VersionInfo(fields);
    default: break;
  }
  if (type >= NP_UPDATE_QUIT && type <= NP_UPDATE_EYEBROWS_Y) {
    int number = game.GetPlayerNumber(std::atoi(NP_FieldText(fields, 0)));
    if (number == -1) return true;
    PlayerClass &player = game.Players[number];
    if (type == NP_UPDATE_QUIT) {
      if (number == 0) return false;
      NET_RemovePlayer(number);
    } else if (type == NP_UPDATE_PLAYER_NAME) {
      player.PlayerName = NP_FieldText(fields, 1);
    } else if (SetPartFunction setPart = NET_SetPartOf(type, NP_UPDATE_CHARACTER)) {
      setPart(player, std::atoi(NP_FieldText(fields, 1)), false);
    } else if (type == NP_UPDATE_EYES_ORI_X) {
      player.EyesOriTarget[0] = (float)std::atof(NP_FieldText(fields, 1));
    } else if (type == NP_UPDATE_EYES_ORI_Y) {
      player.EyesOriTarget[1] = (float)std::atof(NP_FieldText(fields, 1));
    } else if (type == NP_UPDATE_EYEBROWS_Y) {
      player.EyebrowsY = (float)std::atof(NP_FieldText(fields, 1));
    }
    return true;
  }
  NET_HandleCommonPacket(type, fields);
  return true;
}

// Each packet's fields are parsed into a list of their own, so nothing of
// one packet is left over for the next.
bool NET_ClientPoll() {
  if (!NetHost) return true;
  ENetEvent event;
  while (enet_host_service(NetHost, &event, 0) > 0) {
    if (event.type == ENET_EVENT_TYPE_DISCONNECT) return false;
    if (event.type != ENET_EVENT_TYPE_RECEIVE) continue;
    PacketFieldList fields;
    int32_t type = NP_ParsePacket(fields, event.packet->data, event.packet->dataLength);
    enet_packet_destroy(event.packet);
    if (!NET_ClientDispatch(type, fields)) return false;
  }
  return true;
}
