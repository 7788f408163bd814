// The widget gallery: every RVK widget live in an 800x600 window, on three
// screens (drawing calls and buttons; picker bar, fields, slider and list;
// the menu), switched by the keys 1, 2, 3 or the toolbar. M opens the message
// box, T the text viewer, Esc or Quit leaves. Run from the game directory.
//
//   rvk_gallery [frames [screen]]
//
// With `frames` the gallery leaves by itself after that many frames of its
// own loop; `screen` (1 to 3) is the screen it opens on.
#include "rvk/rvk.h"
#include <allegro.h>
#include <cstdio>
#include <cstdlib>
#include <string>
// After the library's headers: X11's headers, which come with it, define
// Status as a macro.
#include <alleggl.h>

namespace {

enum GalleryButton { ButtonScreen1, ButtonScreen2, ButtonScreen3, ButtonSep1, ButtonMessage, ButtonViewer,
                     ButtonSep2, ButtonQuit };

const char *const ScreenNames[3] = {"Drawing calls", "Picker and fields", "Menu"};

const char *const ViewerText =
    "The text viewer shows a long text in a scrolling list. Rows are wrapped at the width of the list, "
    "between words where there is a blank and inside a word where there is none: "
    "Averyveryverylongwordwithoutanyblankinitatallwhichhastobecutsomewhereandcontinuesonthenextrow.\n"
    "\n"
    "An empty line stays a row of its own, as above. A percent sign such as 100% or %s is shown as it is.\n"
    "\n"
    "Scroll with the bar at the right; Enter or Done leaves.\n";

// The hot keys that the gallery's toolbar buttons carry while no text field
// has the focus; typing into a field must not switch screens.
const int GalleryKeys[] = {KEY_1, KEY_2, KEY_3, -1, KEY_M, KEY_T, -1, KEY_ESC};

class GalleryClass {
public:
  ToolbarClass Toolbar;
  int Screen = 0;
  bool Quit = false;
  bool WantMessage = false, WantViewer = false;
  unsigned char OwnFocus = 0;

  // Screen 1
  ButtonClass HelloButton, DisabledButton, ConsoleButton;
  int ConsoleCount = 0;
  // Screen 2
  PickerBarClass Picker;
  TextFieldClass NameField, PortField;
  SliderClass Volume;
  int VolumeValue = 128;
  ListBoxClass List;
  int LastActivated = -1;
  // Screen 3
  MenuClass Menu;

  void Setup();
  void Free();
  void RunFrame();
  void Show(int screen);

private:
  void FillPicker();
  void SetHotKeys(bool on);
  void DrawScreen1();
  void RunScreen1();
  void RunScreen2();
  void RunScreen3();
};

// A thumbnail made in code: a coloured shape and its number, at a size that
// varies so the bar's scaling shows.
BITMAP *MakeThumbnail(int n) {
  int w = n % 3 == 0 ? 128 : n % 3 == 1 ? 96 : 64;
  int h = n % 3 == 0 ? 64 : 48;
  BITMAP *b = create_bitmap(w, h);
  if (b == nullptr) return nullptr;
  clear_to_color(b, makecol(255, 0, 255));
  int colour = makecol((n * 67) % 256, (n * 131 + 80) % 256, (n * 29 + 160) % 256);
  switch (n % 4) {
    case 0: circlefill(b, w / 2, h / 2, h / 2 - 2, colour); break;
    case 1: rectfill(b, 4, 4, w - 5, h - 5, colour); break;
    case 2: triangle(b, w / 2, 2, 2, h - 3, w - 3, h - 3, colour); break;
    default: ellipsefill(b, w / 2, h / 2, w / 2 - 2, h / 4, colour); break;
  }
  textprintf_centre_ex(b, font, w / 2, h / 2 - 4, makecol(0, 0, 0), -1, "%d", n);
  return b;
}

void GalleryClass::FillPicker() {
  Picker.Setup(Toolbar.Y + Toolbar.Height + 6, SCREEN_H - 4, 64);
  Picker.BackgroundColour = makecol(60, 60, 70);
  for (int n = 1; n <= 36; n++) {
    BITMAP *b = MakeThumbnail(n);
    char name[64];
    std::snprintf(name, sizeof(name), n == 7 ? "Thumbnail %d (100%% literal)" : "Thumbnail %d", n);
    Picker.AddBitmap(b, name);
    if (b != nullptr) destroy_bitmap(b);
  }
}

void GalleryClass::Setup() {
  int h = text_height(RVK_FontStandard);
  // The gallery holds focus number 0 itself, so no field takes keys until
  // it is clicked, and Tab past the last field gives the keys back.
  OwnFocus = RVK_AllocFocusId();

  Toolbar.Create(0, 0, false);
  Toolbar.SetTitle("RVK Gallery");
  Toolbar.AddButton("Screen 1", "ngame", KEY_1);
  Toolbar.AddButton("Screen 2", "character", KEY_2);
  Toolbar.AddButton("Screen 3", "question", KEY_3);
  Toolbar.AddSeparator();
  Toolbar.AddButton("Message box", "yes", KEY_M);
  Toolbar.AddButton("Text viewer", "back", KEY_T);
  Toolbar.AddSeparator();
  Toolbar.AddButton("Quit", "exit", KEY_ESC);
  Toolbar.SetStatus("%s", ScreenNames[0]);

  RVK_CreateButton(HelloButton, "Say hello", "question", 420, 320, -1);
  HelloButton.SetSize(-1, -1);
  RVK_CreateButton(DisabledButton, "Disabled", "cancel", 580, 320, -1);
  DisabledButton.SetSize(-1, -1);
  DisabledButton.Enabled = false;
  RVK_CreateButton(ConsoleButton, "Add console line", "refresh", 420, 380, KEY_C);

  FillPicker();
  int x = 150;
  int y = Toolbar.Y + Toolbar.Height + h + 12;
  NameField.Create("Tumblekin", "Player name (100% literal)", x, y, -1, 16);
  PortField.Create("8030", "Server port", x + 200, y, -1, 6);
  PortField.ShowCount = true;
  Volume.Create("Volume", x, y + 2 * h + 30, 300, 14, 0, 255, false, -1, &VolumeValue, 32);
  List.Create(x, y + 3 * h + 64, SCREEN_W - x - 20, 6);
  List.AddText(ViewerText);
  List.AddItem("A row added whole, far too long for the list, so that the horizontal scroll bar appears below it "
               "and the row can be read to its end by dragging that bar.",
               nullptr, "long");
  for (int i = 1; i <= 12; i++) {
    char row[64];
    std::snprintf(row, sizeof(row), "Row %d - double-click me", i);
    List.AddItem(row, nullptr, nullptr);
  }

  Menu.Create("RVK Gallery", "Tumblekin v1.0", "100% menu");
  Menu.AddEntry("Show a message box", "yes", "Opens the modal message box; Enter or OK closes it");
  Menu.AddEntry("Show the text viewer", "question", "Opens the modal text viewer on a long wrapped text");
  Menu.AddEntry("Back to screen 1", "back", "");
  Menu.AddEntry("Quit", "exit", "Leaves the gallery (100% of the time)");

  RVK_Message("The console: lines fade out by age");
  RVK_Message("A red line");
  RVK_SetLastMessageColour(makecol(255, 64, 64));
  RVK_Message("A yellow line, 100%% literal: %s", "%d %s");
  RVK_SetLastMessageColour(makecol(255, 255, 0));
  RVK_Message("A green line");
  RVK_SetLastMessageColour(makecol(64, 255, 64));
}

void GalleryClass::Free() {
  Toolbar.Clear();
  Picker.Free();
  NameField.ReleaseFocusId();
  PortField.ReleaseFocusId();
  RVK_FreeFocusId(OwnFocus);
  List.Clear();
}

void GalleryClass::SetHotKeys(bool on) {
  for (size_t i = 0; i < Toolbar.Buttons.size() && i < sizeof(GalleryKeys) / sizeof(GalleryKeys[0]); i++) {
    ButtonClass &b = Toolbar.Buttons[i];
    int want = on || GalleryKeys[i] == KEY_ESC ? GalleryKeys[i] : -1;
    if (b.HotKey == want) continue;
    b.HotKey = want;
    // A key given back starts its cycle afresh: it must be seen up first.
    b.KeyWaitClear = true;
    b.KeyWaitUp = true;
    b.KeyDown = false;
  }
}

void GalleryClass::Show(int screen) {
  Screen = screen;
  Toolbar.SetStatus("%s", ScreenNames[screen]);
  Toolbar.Layout();
  // The status is drawn after a 36-pixel step for every button, separators
  // too, so it runs 26 pixels past the frame for each separator.
  Toolbar.X = SCREEN_W - Toolbar.Width - 60;
  // The menu has its title bar at the top: the toolbar stands aside.
  Toolbar.Y = screen == 2 ? 260 : 4;
  // The picker bar takes the left edge of screen 2.
  ConsoleLeft = screen == 1 ? Picker.X + Picker.Width + 8 : 3;
}

void GalleryClass::DrawScreen1() {
  const PaletteClass &p = RVK_Palette;
  RVK_DrawRectWH(0, 0, SCREEN_W, SCREEN_H, makecol(40, 70, 110), true, 255);
  // Left column: text in the three fonts, lines and rectangles; the console
  // takes the lower left corner.
  int y = 84;
  FONT *fonts[3] = {RVK_FontStandard, RVK_FontMedium, RVK_FontSmall};
  const char *names[3] = {"Standard", "Medium", "Small"};
  for (int i = 0; i < 3; i++) {
    RVK_PrintfFont(fonts[i], 12, y, p.White, "%s font: 100%% literal", names[i]);
    y += text_height(fonts[i]) + 4;
  }
  y += 6;
  for (int i = 0; i < 8; i++)
    RVK_DrawLine(12, y + i * 4, 180, y + i * 12, makecol(255 - i * 30, i * 30, 128), 255);
  RVK_DrawRect(200, y, 250, y + 50, p.Yellow, false, 255);
  RVK_DrawRect(260, y, 310, y + 50, p.ButtonHover, true, 255);
  RVK_DrawRect(285, y + 25, 345, y + 85, p.PlaceholderRed, true, 128);
  // Right column: boxes, a window frame and loose buttons.
  int x = 420;
  y = 110;
  RVK_DrawBevelBox(x, y, x + 100, y + 40, p.BevelLight, p.BevelDark, p.PanelFace, 255);
  RVK_DrawBevelBox(x + 120, y, x + 220, y + 40, p.BevelDark, p.BevelLight, p.PanelFace, 255);
  RVK_Printf(x + 6, y + 10, p.Black, "raised");
  RVK_Printf(x + 126, y + 10, p.Black, "sunken");
  RVK_DrawFieldBox(x + 240, y + 8, 120, text_height(RVK_FontStandard) + 2);
  RVK_DrawWindowFrame(x, y + 60, x + 360, y + 180, 255, "A window frame, %s", "100% literal");
  RVK_Printf(x + 10, y + 100, p.Black, "Its body is a raised bevel box.");
  RVK_DrawTexture(RVK_GetIcon("no such icon"), x + 10, y + 130, 0, true, 255);
  RVK_Printf(x + 50, y + 138, p.Black, "an unknown icon: the default");
}

void GalleryClass::RunScreen1() {
  DrawScreen1();
  if (HelloButton.Run()) RVK_Message("Hello from the gallery");
  DisabledButton.Run();
  if (ConsoleButton.Run()) {
    RVK_Message("Console line %d", ++ConsoleCount);
    RVK_SetLastMessageColour(makecol(128 + (ConsoleCount * 40) % 128, 200, 255));
  }
}

void GalleryClass::RunScreen2() {
  const PaletteClass &p = RVK_Palette;
  RVK_DrawRectWH(0, 0, SCREEN_W, SCREEN_H, makecol(200, 200, 190), true, 255);
  int picked = Picker.Run();
  if (picked != -1) RVK_Message("Picked %s", Picker.Rows[picked].Name.c_str());
  NameField.Run();
  PortField.Run();
  Volume.Run();
  List.Run();
  if (List.Activated != LastActivated) {
    LastActivated = List.Activated;
    if (LastActivated >= 0 && LastActivated < List.GetCount())
      RVK_Message("Activated: %s", List.GetItem(LastActivated).Text.c_str());
  }
  RVK_Printf(NameField.X + 400, NameField.Y, p.Black, "Tab: next field");
}

void GalleryClass::RunScreen3() {
  RVK_DrawRectWH(0, 0, SCREEN_W, SCREEN_H, makecol(90, 120, 60), true, 255);
  switch (Menu.Run()) {
    case 0: WantMessage = true; break;
    case 1: WantViewer = true; break;
    case 2: Show(0); break;
    case 3:
    case -2: Quit = true; break;
    default: break;
  }
}

void GalleryClass::RunFrame() {
  SetHotKeys(Screen != 1 || RVK_GetFocus() == OwnFocus);
  RVK_BeginFrame();
  switch (Screen) {
    case 0: RunScreen1(); break;
    case 1: RunScreen2(); break;
    default: RunScreen3(); break;
  }
  switch (Toolbar.Run()) {
    case ButtonScreen1: Show(0); break;
    case ButtonScreen2: Show(1); break;
    case ButtonScreen3: Show(2); break;
    case ButtonMessage: WantMessage = true; break;
    case ButtonViewer: WantViewer = true; break;
    case ButtonQuit: Quit = true; break;
    default: break;
  }
  RVK_DrawConsole();
  RVK_WaitFrame();
  RVK_EndFrame();
  // The modal screens run between frames, as the game's callers do.
  if (WantMessage) {
    WantMessage = false;
    RVK_MessageBox("This is the message box: %s. Press Enter or click OK.", "100% literal, %s stays");
  }
  if (WantViewer) {
    WantViewer = false;
    RVK_ShowText(ViewerText, false, "Text viewer - %s", "100% literal");
  }
}

}  // namespace

int main(int argc, char **argv) {
  long frames = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 0;
  int screen = argc > 2 ? std::atoi(argv[2]) - 1 : 0;
  if (screen < 0 || screen > 2) screen = 0;
  if (allegro_init() != 0) {
    std::fprintf(stderr, "rvk_gallery: Allegro could not start\n");
    return 1;
  }
  install_timer();
  install_keyboard();
  install_mouse();
  install_allegro_gl();
  set_window_title("RVK Gallery");
  if (!RVK_Init(800, 600, 32, true, 45)) {
    allegro_exit();
    return 1;
  }
  static GalleryClass gallery;
  gallery.Setup();
  gallery.Show(screen);
  for (long frame = 0; !gallery.Quit && (frames <= 0 || frame < frames); frame++) gallery.RunFrame();
  gallery.Free();
  RVK_Shutdown();
  allegro_exit();
  return 0;
}
END_OF_MAIN()
