// The player's readme, "Tumblekin.txt", shown by Help on the main menu. The
// list of characters and parts comes from the same tables as the data, so
// the readme never names a body that isn't shipped.
//
// The viewer wraps long lines at blanks, so a paragraph is one line; lines
// end in a line feed alone, and no line is a single character (the viewer
// would show it blank). Its font is proportional: nothing is lined up in
// columns.
#include <sstream>
#include "tools/content/content.h"

namespace {

const char *const kIntro =
    "TUMBLEKIN\n"
    "\n"
    "Tumblekin is a little dress-up toy. Pick a body, then give it eyes, ears, a nose, a mouth, eyebrows, a "
    "moustache, feet and a hat, and watch your character look about, raise its eyebrows and wiggle while you "
    "decide. Every change has its own sound. Up to eight friends can dress up together over the network and "
    "see each other's characters side by side.\n"
    "\n"
    "\n"
    "GETTING STARTED\n"
    "\n"
    "Choose \"New Game\" on the main menu. Your character starts with the first body and the first of every "
    "part.\n"
    "\n"
    "The toolbar at the top has a button for each kind of part: Characters, Eyes, Ears, Noses, Mouths, "
    "Eyebrows, Moustaches, Feet and Hats. Press one and the bar on the left shows its pictures; click a "
    "picture to put it on. The first picture of every part bar, the crossed circle, takes that part away. "
    "When the bar holds more pictures than fit, use the arrow buttons at its ends to scroll.\n"
    "\n"
    "You can drag the toolbar by its title strip to any place you like. Rest the mouse pointer on a button to "
    "see what it does and which key presses it.\n"
    "\n"
    "\n"
    "KEYS IN THE GAME\n"
    "\n"
    "  Left and Right arrows: turn the character\n"
    "  Up and Down arrows: tip it forwards and backwards\n"
    "  Z and X: roll it\n"
    "  R: put the view back as it was\n"
    "  A: spin round and round (A again stops)\n"
    "  F5: reload the catalogues from the data folder\n"
    "  Esc: leave the game for the main menu\n"
    "\n"
    "\n"
    "PLAYING TOGETHER\n"
    "\n"
    "One player hosts: \"Multiplayer\", then \"Host a New Game Server\". Type your name and the port (8030 "
    "unless you choose another) and press \"Start Game\".\n"
    "\n"
    "The others join: \"Multiplayer\", then \"Join Existing Game\". Type your name, the address of the "
    "host's computer and its port, and press \"Connect\". Everyone sees every character in one row, with "
    "the list of players below the toolbar, and every change anyone makes shows on all screens.\n"
    "\n"
    "A game has room for eight players. The host can't reload the data while hosting. When "
    "the host leaves, the game ends for everyone.\n"
    "\n"
    "\n"
    "SETTINGS\n"
    "\n"
    "Tumblekin keeps its settings in Tumblekin.ini beside the program, written when you leave. Start the "
    "program with -config and a file name to use another settings file.\n"
    "\n"
    "  [video]: width, height, bpp (colour depth) and window (1 for a window, 0 for the full screen)\n"
    "  [sound]: enabled (1 or 0) and SoundVolume (0 to 255)\n"
    "  [network]: PlayerName, LocalServerPort, RemoteServerAddress and RemoteServerPort\n"
    "\n"
    "\n"
    "YOUR OWN PARTS\n"
    "\n"
    "Everything you can pick lives in the data folder: characters.ini lists the bodies, and eyes.ini, "
    "ears.ini, noses.ini, mouths.ini, eyebrows.ini, moustaches.ini, feet.ini and hats.ini list the parts. "
    "Each entry names a MilkShape 3D model (.ms3d), a thumbnail picture (.tga, 128 by 128 for bodies, 128 "
    "by 96 for parts) and the name shown in the tooltip. Eyes, ears, eyebrows and feet come as a left and "
    "a right model. A body says where on it each part sits, how large it is drawn, and where the camera "
    "looks from. Add an entry, raise the count in [info], press F5, and your part is in the bar.\n"
    "\n"
    "\n";

void List(std::ostringstream &o, const std::string &title, const std::vector<std::string> &names) {
  o << "  " << title << ":";
  for (size_t i = 0; i < names.size(); i++) o << (i == 0 ? " " : ", ") << names[i];
  o << "\n";
}

}  // namespace

std::string MakeReadme() {
  std::ostringstream o;
  o << kIntro;
  o << "WHAT'S IN THE BOX\n"
       "\n";
  std::vector<std::string> names;
  for (const BodyContent &b : MakeBodies().Bodies) names.push_back(b.Name);
  List(o, "Characters", names);
  static const char *const kTitles[] = {"Eyes",     "Ears",       "Noses", "Mouths",
                                        "Eyebrows", "Moustaches", "Feet",  "Hats"};
  std::vector<Catalogue> parts = MakeParts();
  for (size_t c = 0; c < parts.size() && c < 8; c++) {
    names.clear();
    for (const PartContent &p : parts[c].Parts) names.push_back(p.Name);
    List(o, kTitles[c], names);
  }
  o << "\n"
       "Have fun!\n";
  return o.str();
}
