// Hosting and joining: the dialogs of the multiplayer menu, the start and end
// of the network layer, the server's host and the client's connection with
// its two waiting screens.
#include "net/host.h"
#include <allegro.h>
#include <cstdlib>
#include <string>
#include "app/config.h"
#include "app/game.h"
#include "net/netstate.h"
#include "net/packets.h"
#include "net/send.h"
#include "net/server.h"
#include "rvk/button.h"
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/messagebox.h"
#include "rvk/textfield.h"
#include "rvk/texture.h"

// ---- Dialogs ----------------------------------------------------------------

class DialogFieldClass {
public:
  const char *Label;
  std::string *Setting;
  unsigned short MaxLength;
  bool IsPort;
};

static const uint32_t MAX_PORT = 65535;

bool NET_ParsePort(const std::string &text, uint16_t &port) {
  uint32_t value = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + (uint32_t)(c - '0');
    // Checked at every digit, so that a long text can't overflow.
    if (value > MAX_PORT) return false;
  }
  if (value == 0) return false;
  port = (uint16_t)value;
  return true;
}

// The first port field whose text is no port, told in a box; true if all are
// ports. A bad port is refused here rather than turned into another one.
static bool PortsAreSound(const DialogFieldClass *fields, const TextFieldClass *text, int fieldCount) {
  for (int i = 0; i < fieldCount; i++) {
    uint16_t port;
    if (fields[i].IsPort && !NET_ParsePort(text[i].GetText(), port)) {
      RVK_MessageBox("%s must be a number from 1 to %u, not \"%s\"", fields[i].Label, MAX_PORT,
                     text[i].GetText());
      return false;
    }
  }
  return true;
}

// One dialog of the multiplayer menu: a 600 by 400 window with two buttons in
// its lower right corner and a column of text fields. True for the first button.
static bool RunDialog(const char *title, const char *okCaption, const char *okIcon, const DialogFieldClass *fields,
                      int fieldCount) {
  const int wx = (SCREEN_W - 600) / 2;
  const int wy = (SCREEN_H - 400) / 2;
  const int h = text_height(RVK_FontStandard);

  ButtonClass ok, cancel;
  RVK_CreateButton(ok, okCaption, okIcon, 0, 0, KEY_ENTER);
  ok.SetSize(-1, -1);
  RVK_CreateButton(cancel, "Cancel", "cancel", 0, 0, KEY_ESC);
  cancel.SetSize(-1, -1);
  // A button's face reaches from X to X + Width, so these are its far edges.
  cancel.X = wx + 590 - cancel.Width;
  cancel.Y = wy + 390 - cancel.Height;
  ok.X = cancel.X - 10 - ok.Width;
  ok.Y = cancel.Y;

  TextFieldClass text[3];
  for (int i = 0; i < fieldCount; i++)
    text[i].Create(fields[i].Setting->c_str(), fields[i].Label, wx + 10, wy + 3 * h + i * 3 * h, -1,
                   fields[i].MaxLength);

  bool result = false;
  for (;;) {
    RVK_BeginFrame();
    Game.DrawMenuBackground(true);
    RVK_DrawWindowFrame(wx, wy, wx + 600, wy + 400, 255, "%s", title);
    ok.Run();
    cancel.Run();
    for (int i = 0; i < fieldCount; i++) text[i].Run();
    RVK_DrawConsole();
    RVK_WaitFrame();
    RVK_EndFrame();
    if (ok.Pressed && PortsAreSound(fields, text, fieldCount)) {
      for (int i = 0; i < fieldCount; i++) *fields[i].Setting = text[i].GetText();
      result = true;
      break;
    }
    // A request to close the program leaves the dialog as Cancel does.
    if (cancel.Pressed || RVK_CloseRequested()) break;
  }
  for (int i = 0; i < fieldCount; i++) text[i].ReleaseFocusId();
  return result;
}

bool HostGameDialog() {
  const DialogFieldClass fields[] = {
      {"Local Player Name", &Config.PlayerName, 16, false},
      {"Local Server Port", &Config.LocalServerPort, 10, true},
  };
  return RunDialog("Host New Game Server", "Start Game", "server", fields, 2);
}

bool ConnectGameDialog() {
  const DialogFieldClass fields[] = {
      {"Player Name", &Config.PlayerName, 16, false},
      {"Server IP or Name", &Config.RemoteServerAddress, 24, false},
      {"Server Port", &Config.RemoteServerPort, 10, true},
  };
  return RunDialog("Connect to Existing Server", "Connect", "connect", fields, 3);
}

// ---- Network layer ----------------------------------------------------------

bool NET_InitNetwork() {
  if (NetworkInitialised) return true;
  if (enet_initialize() != 0) {
    RVK_MessageBox("Unable to initialise ENet");
    return false;
  }
  NP_InitPacketTable();
  RVK_Message("NET_InitNetwork: Network initialised.");
  NetworkInitialised = true;
  SavedSwitchMode = get_display_switch_mode();
  set_display_switch_mode(SWITCH_BACKGROUND);
  return true;
}

void NET_ShutdownNetwork() {
  if (!NetworkInitialised) return;
  // The game loop has set the mode back to none by now, so the tags are
  // freed whatever the mode: on a client the peer table is empty anyway.
  NET_FreePeerTags();
  if (NetHost) enet_host_destroy(NetHost);
  NetHost = nullptr;
  ServerPeer = nullptr;
  for (ENetPeer *&peer : ClientPeers) peer = nullptr;
  enet_deinitialize();
  set_display_switch_mode(SavedSwitchMode);
  NetworkInitialised = false;
}

// The dialogs let no other text through; anything else would be port 0.
static enet_uint16 PortOf(const std::string &text) {
  uint16_t port = 0;
  NET_ParsePort(text, port);
  return port;
}

bool NET_StartServer() {
  if (!NET_InitNetwork()) return false;
  ENetAddress address;
  address.host = ENET_HOST_ANY;
  address.port = PortOf(Config.LocalServerPort);
  NetHost = enet_host_create(&address, MAX_PLAYERS, 2, 0, 0);
  if (NetHost) {
    // The port asked for: ENet may note the one the system picked for port 0,
    // and the console tells the user what the settings said.
    RVK_Message("Server started on port %d", address.port);
    return true;
  }
  RVK_MessageBox("An error occurred while trying to create an ENet server host (port %d, players %d)", address.port,
                 MAX_PLAYERS);
  NET_ShutdownNetwork();
  return false;
}

// Holds the thread until Esc is up again, so that the key doesn't also act
// on the screen that comes next.
static void WaitForEscRelease() {
  for (;;) {
    if (keyboard_needs_poll()) poll_keyboard();
    if (!key[KEY_ESC] || RVK_CloseRequested()) break;
    rest(1);
  }
}

static bool CancelConnection() {
  if (ServerPeer) enet_peer_reset(ServerPeer);
  ServerPeer = nullptr;
  NET_ShutdownNetwork();
  return false;
}

// A "Set Player Number" whose number lies outside its count, or whose count
// is no roster size, is ignored like any other unexpected packet: taking a
// clamped number would make this client another player's record, and the
// wait simply goes on until a sound one comes or the user presses Esc.
static bool ApplyPlayerNumber(const PacketFieldList &fields) {
  int number = std::atoi(NP_FieldText(fields, 0));
  int count = std::atoi(NP_FieldText(fields, 1));
  if (count < 1 || count > MAX_PLAYERS || number < 0 || number >= count) return false;
  Game.SetPlayerCount(count, true);
  for (PlayerClass &player : Game.Players) ResetPlayer(player);
  Game.SetLocalPlayer(number);
  return true;
}

static void DrawTurningPicture(int x, int y, uint8_t turn) {
  RVK_DrawTexture(Game.ConnectingTexture, x, y, (float)turn, true, 255);
}

bool NET_ConnectToServer() {
  if (!NET_InitNetwork()) return false;
  NetHost = enet_host_create(nullptr, 1, 2, 0, 0);
  if (!NetHost) {
    RVK_MessageBox("Unable to create Enet client");
    NET_ShutdownNetwork();
    return false;
  }
  const char *name = Config.RemoteServerAddress.c_str();
  ENetAddress address;
  address.port = PortOf(Config.RemoteServerPort);
  // A name that doesn't resolve aims the attempt at port 0 of this machine:
  // nothing can listen there, so the attempt runs and never succeeds, and no
  // other machine is ever reached by chance through an address left over.
  if (enet_address_set_host(&address, name) != 0) {
    enet_address_set_host(&address, "127.0.0.1");
    address.port = 0;
  }
  ServerPeer = enet_host_connect(NetHost, &address, 2, 0);
  if (!ServerPeer) {
    RVK_MessageBox("No available peers for initiating an ENet connection.");
    NET_ShutdownNetwork();
    return false;
  }
  // The port as the user gave it, also when the attempt was aimed elsewhere.
  const int shownPort = PortOf(Config.RemoteServerPort);

  const int px = (SCREEN_W - Game.ConnectingTexture.Width) / 2;
  const int py = (SCREEN_H - Game.ConnectingTexture.Height) / 2;
  const int white = makecol(255, 255, 255);
  uint8_t turn = 0;
  ENetEvent event;

  for (bool connected = false; !connected;) {
    RVK_BeginFrame();
    Game.DrawMenuBackground(true);
    RVK_Printf(10, 10, white, "Connecting to %s:%d...", name, shownPort);
    RVK_Printf(10, SCREEN_H - text_height(RVK_FontStandard) - 2, white, "Press escape to cancel...");
    DrawTurningPicture(px, py, turn);
    RVK_DrawConsole();
    RVK_WaitFrame();
    RVK_EndFrame();
    turn++;
    if (enet_host_service(NetHost, &event, 1) > 0) {
      if (event.type == ENET_EVENT_TYPE_CONNECT) {
        RVK_Message("Connection to %s:%d established", name, shownPort);
        connected = true;
      } else if (event.type == ENET_EVENT_TYPE_RECEIVE) {
        enet_packet_destroy(event.packet);
      }
    }
    if (keyboard_needs_poll()) poll_keyboard();
    if (key[KEY_ESC] || RVK_CloseRequested()) {
      WaitForEscRelease();
      return CancelConnection();
    }
  }

  enet_host_flush(NetHost);

  PacketFieldList fields;
  for (bool numbered = false; !numbered;) {
    RVK_BeginFrame();
    Game.DrawMenuBackground(true);
    RVK_Printf(10, 10, white, "Waiting for player number from server, press escape to cancel...");
    DrawTurningPicture(px, py, turn);
    RVK_DrawConsole();
    RVK_WaitFrame();
    RVK_EndFrame();
    if (keyboard_needs_poll()) poll_keyboard();
    if (key[KEY_ESC] || RVK_CloseRequested()) {
      WaitForEscRelease();
      return CancelConnection();
    }
    if (enet_host_service(NetHost, &event, 1) > 0) {
      if (event.type == ENET_EVENT_TYPE_DISCONNECT) return CancelConnection();
      if (event.type == ENET_EVENT_TYPE_RECEIVE) {
        int32_t type = NP_ParsePacket(fields, event.packet->data, event.packet->dataLength);
        if (type == NP_SET_PLAYER_NUMBER && ApplyPlayerNumber(fields))
          numbered = true;
        else
          // A packet that the parser dropped is named by its own type byte.
          RVK_Message("Ignored unexpected packet (type %d)", event.packet->dataLength ? event.packet->data[0] : type);
        fields.clear();
        enet_packet_destroy(event.packet);
      }
    }
    turn++;
  }

  NP_SendPacket(NP_TO_SERVER, NP_REPORT_PLAYER_NAME, "%s", NP_EscapeText(Config.PlayerName.c_str()).c_str());
  return true;
}
