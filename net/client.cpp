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

typedef void (*SetPartFunction)(PlayerClass &, int32_t, bool);

static SetPartFunction SetPartOfUpdate(int32_t type) {
  switch (type) {
    case 22: return SetCharacter;
    case 23: return SetEyes;
    case 24: return SetEars;
    case 25: return SetNose;
    case 26: return SetMouth;
    case 27: return SetEyebrows;
    case 28: return SetMoustache;
    case 29: return SetFeet;
    case 30: return SetHat;
    default: return nullptr;
  }
}

// "Update Joined": the new count first, then the newcomer's ID. A count that
// is no roster size, or that would cut off the local record, is ignored: the
// roster always holds the local player and never more than MAX_PLAYERS.
static void UpdateJoined(const PacketFieldList &fields) {
  GameClass &game = Game;
  int count = std::atoi(NP_FieldText(fields, 0));
  if (count < 1 || count > MAX_PLAYERS || count <= game.LocalPlayerNumber) return;
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

static bool VersionInfo(PacketFieldList &fields) {
  std::string server = NP_FieldText(fields, 0);
  if (server == TUMBLEKIN_VERSION) {
    RVK_Message("Client and server versions match (%s)", server.c_str());
    return true;
  }
  RVK_MessageBox("Incorrect version, client is %s, server is %s", TUMBLEKIN_VERSION, server.c_str());
  fields.clear();
  return false;
}

bool NET_ClientDispatch(int32_t type, PacketFieldList &fields) {
  GameClass &game = Game;
  switch (type) {
    case 18: UpdateJoined(fields); return true;
    case 19: UpdatePlayerId(fields); return true;
    case 51: RVK_Message("Recieved ping reply from server"); return true;
    case 53: return VersionInfo(fields);
    default: break;
  }
  if (type == 20 || (type >= 21 && type <= 33)) {
    int number = game.GetPlayerNumber(std::atoi(NP_FieldText(fields, 0)));
    if (number == -1) return true;
    PlayerClass &player = game.Players[number];
    if (type == 20) {
      if (number == 0) {
        fields.clear();
        return false;
      }
      NET_RemovePlayer(number);
    } else if (type == 21) {
      player.PlayerName = NP_FieldText(fields, 1);
    } else if (SetPartFunction setPart = SetPartOfUpdate(type)) {
      setPart(player, std::atoi(NP_FieldText(fields, 1)), false);
    } else if (type == 31) {
      player.EyesOriTarget[0] = (float)std::atof(NP_FieldText(fields, 1));
    } else if (type == 32) {
      player.EyesOriTarget[1] = (float)std::atof(NP_FieldText(fields, 1));
    } else if (type == 33) {
      player.EyebrowsY = (float)std::atof(NP_FieldText(fields, 1));
    }
    return true;
  }
  NET_HandleCommonPacket(type, fields);
  return true;
}

bool NET_ClientPoll() {
  if (!NetHost) return true;
  ENetEvent event;
  PacketFieldList fields;
  while (enet_host_service(NetHost, &event, 0) > 0) {
    if (event.type == ENET_EVENT_TYPE_DISCONNECT) return false;
    if (event.type != ENET_EVENT_TYPE_RECEIVE) continue;
    int32_t type = NP_ParsePacket(fields, event.packet->data, event.packet->dataLength);
    enet_packet_destroy(event.packet);
    bool goOn = NET_ClientDispatch(type, fields);
    fields.clear();
    if (!goOn) return false;
  }
  return true;
}
