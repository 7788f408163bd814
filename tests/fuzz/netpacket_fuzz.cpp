// Feeds arbitrary bytes to the packet parser and the parsed packet to the
// server's or the client's dispatch. The first byte picks the side and the
// sending player's number; the rest is the packet as ENet would deliver it.
#include <cstddef>
#include <cstdint>
#include "app/game.h"
#include "net/client.h"
#include "net/packets.h"
#include "net/server.h"

// The network layer's sources are compiled into the harness itself so that
// libFuzzer sees their branches; the libraries of a fuzz build carry no
// coverage instrumentation.
#include "net/client.cpp"
#include "net/netstate.cpp"
#include "net/packets.cpp"
#include "net/send.cpp"
#include "net/server.cpp"

static void SetUpGame() {
  NP_InitPacketTable();
  Game.Characters.resize(3);
  Game.Eyes.resize(2);
  Game.Ears.resize(2);
  Game.Noses.resize(2);
  Game.Mouths.resize(2);
  Game.Eyebrows.resize(2);
  Game.Moustaches.resize(2);
  Game.Feet.resize(2);
  Game.Hats.resize(2);
}

// A roster of four with the local record at number 1, as on a client.
static void FreshRoster() {
  Game.Players.assign(4, PlayerClass());
  for (int i = 0; i < 4; i++) {
    ResetPlayer(Game.Players[i]);
    Game.Players[i].PlayerId = i * 3;
  }
  Game.SetLocalPlayer(1);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static bool ready = false;
  if (!ready) {
    SetUpGame();
    ready = true;
  }
  if (size < 1) return 0;
  bool server = data[0] & 0x80;
  int number = data[0] & 0x07;
  if (Game.GetPlayerCount() < 2 || Game.GetPlayerCount() > MAX_PLAYERS || !Game.LocalPlayer) FreshRoster();

  PacketFieldList fields;
  int32_t type = NP_ParsePacket(fields, data + 1, size - 1);
  if (server) {
    Game.Mode = GAME_MODE_SERVER;
    Game.SetLocalPlayer(0);
    int count = Game.GetPlayerCount();
    NET_ServerDispatch(number % count, Game.Players[number % count].PlayerId, type, fields);
  } else {
    Game.Mode = GAME_MODE_CLIENT;
    // A differing version opens a modal box that needs a window; the
    // comparison itself is a plain text compare.
    if (type != 53) NET_ClientDispatch(type, fields);
  }
  // The roster rules hold after every packet.
  if (Game.GetPlayerCount() > MAX_PLAYERS) __builtin_trap();
  if (Game.LocalPlayer && Game.LocalPlayer != &Game.Players[Game.LocalPlayerNumber]) __builtin_trap();
  return 0;
}
