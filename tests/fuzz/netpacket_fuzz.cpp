// Any bytes through the packet parser into a dispatch: the first byte picks
// the server's or the client's and the sender, the rest is the packet.
#include "net/client.cpp"
#include "net/netstate.cpp"
#include "net/packets.cpp"
#include "net/send.cpp"
#include "net/server.cpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static bool ready = (NP_InitPacketTable(), Game.Characters.resize(3), Game.Eyes.resize(2), true);
  if (size < 1 || !ready) return 0;
  if (Game.GetPlayerCount() < 2) {
    Game.Players.assign(4, PlayerClass());
    for (int i = 0; i < 4; i++) Game.Players[i].PlayerId = i * 3;
  }
  PacketFieldList fields;
  int32_t type = NP_ParsePacket(fields, data + 1, size - 1);
  int number = data[0] % 8 % Game.GetPlayerCount();
  Game.Mode = data[0] & 0x80 ? GAME_MODE_SERVER : GAME_MODE_CLIENT;
  Game.SetLocalPlayer(Game.Mode == GAME_MODE_SERVER ? 0 : 1);
  if (Game.Mode == GAME_MODE_SERVER) NET_ServerDispatch(number, Game.Players[number].PlayerId, type, fields);
  // A differing version opens a box, which needs a window.
  if (Game.Mode == GAME_MODE_CLIENT && type != NP_VERSION_INFO) NET_ClientDispatch(type, fields);
  if (Game.GetPlayerCount() > MAX_PLAYERS || Game.LocalPlayer != &Game.Players[Game.LocalPlayerNumber])
    __builtin_trap();
  return 0;
}
