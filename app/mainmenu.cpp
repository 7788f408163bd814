// The front end: the main menu and the multiplayer menu on the background
// picture, from which games start and to which they return.
#include "app/mainmenu.h"
#include "app/config.h"
#include "app/game.h"
#include "character/catalogue.h"
#include "net/host.h"
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/menu.h"
#include "rvk/messagebox.h"
#include "rvk/textviewer.h"

static const char *const TOP_RIGHT_TEXT = "Dress up together!";

// The roster of a game that is about to start: exactly one record, the local one.
static void OneLocalRecord(GameClass &game) {
  game.Players.resize(1);
  game.SetLocalPlayer(0);
}

// A reload that failed during the last game leaves catalogues empty; the user
// is told why instead of entering a game without them.
static bool CataloguesReady(GameClass &game) {
  if (CataloguesLoaded(game)) return true;
  RVK_MessageBox("%s", game.LoadError.c_str());
  return false;
}

static void NewGame(GameClass &game) {
  if (!CataloguesReady(game)) return;
  game.Mode = GAME_MODE_SINGLE;
  OneLocalRecord(game);
  // A single-player game always calls its player this, whatever the settings say.
  game.LocalPlayer->PlayerName = "Player";
  game.LocalPlayer->PlayerId = game.NextPlayerId++;
  GameLoop(game);
}

static void HostGame(GameClass &game) {
  if (!CataloguesReady(game)) return;
  if (!HostGameDialog()) return;
  if (!NET_StartServer()) return;
  game.Mode = GAME_MODE_SERVER;
  OneLocalRecord(game);
  game.SetLocalPlayerName(Config.PlayerName.c_str());
  game.LocalPlayer->PlayerId = game.NextPlayerId++;
  GameLoop(game);
  NET_ShutdownNetwork();
}

static void JoinGame(GameClass &game) {
  if (!CataloguesReady(game)) return;
  if (!ConnectGameDialog()) return;
  game.Mode = GAME_MODE_CLIENT;
  OneLocalRecord(game);
  game.LocalPlayer->PlayerName = Config.PlayerName;
  // On failure the connection routine has shut the network down itself.
  if (!NET_ConnectToServer()) return;
  GameLoop(game);
  NET_ShutdownNetwork();
}

void MainMenu() {
  GameClass &game = Game;
  MenuClass mainMenu, multiplayerMenu;
  mainMenu.Create("Main Menu", TUMBLEKIN_VERSION, TOP_RIGHT_TEXT);
  mainMenu.AddEntry("New Game", "ngame", "Play single player");
  mainMenu.AddEntry("Multiplayer", "multiplayer", "Host or join a multiplayer game");
  mainMenu.AddEntry("Help", "question", "Help");
  mainMenu.AddEntry("Exit", "exit", "Exit to Windows");
  multiplayerMenu.Create("Multiplayer", TUMBLEKIN_VERSION, TOP_RIGHT_TEXT);
  multiplayerMenu.AddEntry("Host a New Game Server", "server", "Start a new game server");
  multiplayerMenu.AddEntry("Join Existing Game", "connect", "Connect to an existing game server");
  multiplayerMenu.AddEntry("Back", "back", "Go back to main menu");

  int shown = 0;
  bool exitFlag = false;
  while (!exitFlag && !RVK_CloseRequested()) {
    RVK_BeginFrame();
    game.DrawMenuBackground(false);
    if (shown == 0) {
      // Esc (-2) and anything without a row do nothing: only "Exit" leaves.
      switch (mainMenu.Run()) {
        case 0: NewGame(game); break;
        case 1: shown = 1; break;
        case 2: RVK_ShowText("Tumblekin.txt", true, "Readme File"); break;
        case 3: exitFlag = true; break;
        default: break;
      }
    } else {
      switch (multiplayerMenu.Run()) {
        case 0: HostGame(game); break;
        case 1: JoinGame(game); break;
        case 2: shown = 0; break;
        default: break;
      }
    }
    RVK_DrawConsole();
    RVK_WaitFrame();
    RVK_EndFrame();
  }
}
