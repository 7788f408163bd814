// The widgets in a window, driven by real X input and by Allegro's key buffer.
#include <fstream>
#include "rvk/console.h"
#include "rvk/draw.h"
#include "rvk/listbox.h"
#include "rvk/menu.h"
#include "rvk/messagebox.h"
#include "rvk/pickerbar.h"
#include "rvk/slider.h"
#include "rvk/textfield.h"
#include "rvk/textviewer.h"
#include "rvk/toolbar.h"
#include "rvk_xinput.h"

// A 32 x 32 icon, transparent but for green 8 x 8 at (12, 12).
static TextureClass Block() {
  if (RVK_FindIcon("block") == 0) {
    BITMAP *b = create_bitmap(32, 32);
    clear_to_color(b, makecol(255, 0, 255));
    rectfill(b, 12, 12, 19, 19, makecol(0, 255, 0));
    RVK_AddIcon(b, "block");
    destroy_bitmap(b);
  }
  return RVK_GetIcon("block");
}

// One frame on black: the widget's answer.
template <class Call>
auto Once(Call call) -> decltype(call()) {
  Frame();
  auto answer = call();
  RVK_End2D(0);
  return answer;
}

template <class Call>
auto Click(Call call, std::string pause = "0.1") -> decltype(call()) {
  Press();
  // Let go from when the widget is about to read the press, however slow.
  return Once([&] { return TkLater("sleep " + pause + "; xdotool mouseup 1"), call(); });
}

static void Enter(const char *down, const char *up) {
  TkLater(std::string("sleep ") + down + "; xdotool keydown Return; sleep " + up + "; xdotool keyup Return");
}

TEST(Widgets, Buttons) {
  ButtonClass b, text, separator;
  RVK_CreateButtonEx(b, "Go", Block(), 100, 100, KEY_M, false);
  RVK_CreateButtonEx(text, "Caption", Block(), 200, 100, -1, false);
  RVK_CreateButtonEx(separator, "", Block(), 400, 100, -1, true);
  text.SetSize(-1, -1);
  auto run = [&] { return separator.Run() || b.Run() || text.Run(); };
  // At rest, then hovered (both far edges count), then disabled.
  Move(300, 300);
  EXPECT_FALSE(Once(run));
  EXPECT_EQ((J{H(98, 116, 38), V(116, 98, 38), Hex(199, 120), H(198, 103, 92), H(236, 116, 10)}),
            "2.12P1?7g13P3. 2.12P1?7g13P3. A9A9A9 1.1?86P1?3. 2P2?6P");
  Move(132, 132);
  EXPECT_FALSE(Once(run));
  EXPECT_EQ((J{H(98, 116, 38), Hex(100, 116), Hex(133, 116), H(120, 172, 60), V(122, 151, 25)}),
            "2.1?12H1?7g12H1?2. 363636 8585E9 1.55G4. 2.21G2.");
  b.Enabled = false;
  EXPECT_FALSE(Once(run));
  EXPECT_EQ((J{H(98, 116, 38), Hex(116, 116)}), "2.12P8?13P3. 49C949");
  // A press fires as it comes up over the button, not after leaving it.
  Click(run);
  ASSERT_TRUE(TkWaitFor([] { return mouse_b == 0; }));
  b.Enabled = true;
  Move(132, 100);
  int32_t start = RVK_Clock();
  EXPECT_TRUE(Click(run, "0.3"));
  EXPECT_EQ((J{RVK_Clock() - start >= 250, b.Pressed, mouse_b}), "1 1 0");
  Press();
  TkLater("sleep 0.3; " + TkMoveCommand(133, 100) + "; sleep 0.5; xdotool mouseup 1");
  start = RVK_Clock();
  EXPECT_FALSE(Once(run));
  EXPECT_EQ((J{RVK_Clock() - start >= 250, b.Pressed, mouse_b & 1}), "1 0 1");
  ASSERT_TRUE(TkWaitFor([] { return mouse_b == 0; }));
  Move(403, 116);
  EXPECT_FALSE(Click(run));
  // A hot key held as the button is made must go up once first.
  Move(600, 500);
  Key("m", KEY_M, true);
  RVK_CreateButtonEx(b, "Go", Block(), 100, 100, KEY_M, false);
  std::string fired;
  for (bool down : {true, false, true, false, false, false}) {
    Key("m", KEY_M, down);
    bool answer = Once(run);
    fired += (J{answer, b.Pressed});
  }
  EXPECT_EQ((J{fired, keypressed()}), "0 00 00 00 01 10 0 0");
  clear_keybuf();
}

TEST(Widgets, Toolbar) {
  ToolbarClass t;
  t.Create(790, 590, false);
  t.AddButtonEx("One", Block(), -1, false);
  t.AddButtonEx("", Block(), -1, true);
  t.AddButtonEx("Two", Block(), KEY_F9, false);
  EXPECT_EQ((J{t.X, t.Y, t.HomeX, t.HomeY, t.Width, t.Height}), "717 535 717 535 82 64");  // kept on the screen
  t.SetTitle("%s", "T");
  t.SetStatus("S%d", 1);
  t.X = t.Y = 100;
  auto run = [&] { return t.Run(); };
  Move(790, 590);
  EXPECT_EQ(Once(run), -1);
  EXPECT_EQ((J{t.Width, H(98, 140, 130), V(150, 98, 70), H(99, 160, 140), H(204, 146, 12)}),
            "104 2.1L13P1?7g28P1?7g2P1?7g35P1D24. 2.1l19T1d16P7?19P1D4. 1.1L102P1D35. 8.4?");
  // Dragged by the strip; moved away by its owner, it is lost.
  auto hint = [&](int x, int y) { return H(x, y, 90); };
  Move(110, 105);
  Once(run);
  std::string drag = hint(124, 115);
  Press();
  Once(run);
  Move(130, 125);
  Once(run);
  EXPECT_EQ((J{t.X, t.Y, t.Dragging, drag, hint(144, 135)}), "120 120 1 1T34?44T1d10. 1T61?17T1d10.");
  t.X += 300;
  Once(run);
  Press(false);
  EXPECT_EQ((J{t.X, t.Dragging}), "420 0");
  t.Fixed = true;
  t.X = 100;
  Press();
  Once(run);
  std::string fixed = hint(144, 135);
  Press(false);
  Once(run);
  EXPECT_EQ((J{fixed, hint(144, 135)}), "1T59?30G 59T1d30.");
  t.X = -50;
  Move(0, 130);
  Once(run);
  EXPECT_EQ(t.X, -47);
  t.Buttons[0].HotKey = KEY_F9;
  std::string answers;
  for (bool down : {false, true, false, false}) {
    Key("F9", KEY_F9, down);
    answers += std::to_string(Once(run)) + " ";
  }
  EXPECT_EQ((J{answers, t.Buttons[2].Pressed}), "-1 -1 -1 0  1");
  // Drop-down: its title's box until the pointer comes.
  t.DropDown = true;
  t.HomeX = t.HomeY = 200;
  t.X = t.Y = 1000;
  Move(600, 500);
  Once(run);
  std::string far = J{t.X, t.Y};
  t.X = t.Y = -10;
  EXPECT_EQ(Once(run), -1);
  EXPECT_EQ((J{far, t.X, t.Y, H(0, 8, 12), V(5, 0, 21)}), "790 581 0 0 1L4P2?2P1D2. 1L3P1?1S7?5P1D2.");
  Move(5, 5);
  Once(run);
  EXPECT_EQ((J{t.X, t.Y, t.Collapsed, Hex(250, 250)}), "200 200 0 939393");
  Move(600, 500);
  int answer = Once(run);
  EXPECT_EQ((J{answer, t.Collapsed, Hex(250, 250)}), "-1 1 000000");
  t.Centre();
  t.Clear();
  EXPECT_EQ((J{t.X, t.Y, t.Buttons.size()}), "348 268 0");
}

TEST(Widgets, PickerBar) {
  PickerBarClass bar;
  bar.Setup(40, 400, 64);
  bar.Alpha = bar.UpButton.Alpha = bar.DownButton.Alpha = RVK_Opaque;
  bar.BackgroundColour = makecol(0, 0, 255);
  BITMAP *small = create_bitmap(64, 32), *full = create_bitmap(128, 64);
  clear_to_color(small, makecol(255, 0, 0));
  clear_to_color(full, makecol(0, 255, 0));
  bar.AddBitmap(small, "half");
  for (const char *name : {"b", "c", "d", "e"}) bar.AddBitmap(full, name);
  TextureClass kept;
  kept.SourceBitmap = full;
  kept.HasBitmap = true;
  bar.Add(kept, "f");
  kept.HasBitmap = false;
  bar.Add(kept, "none");
  EXPECT_EQ((J{bar.Rows.size(), bar.MaxTopRow, ConsoleLines.back().Text}),
            "6 2 add: cannot add texture to picker bar because no source bitmap is stored");
  destroy_bitmap(small);
  destroy_bitmap(full);
  auto run = [&] { return bar.Run(); };
  Move(60, 164);
  EXPECT_EQ(Once(run), -1);
  EXPECT_EQ((J{V(60, 38, 365), H(0, 100, 140), H(0, 164, 140)}),
            "2.1L1?7P24?3P1?1P1?15b1?47r2P1Y63g1P1Y64g2P64g23P1?17P3?14P1?1P1D2. 2.1?31b1?95r10. 2.1Y125g1Y1g10G");
  // Picked at the release, also off the bar.
  Press();
  TkLater("sleep 0.2; " + TkMoveCommand(600, 300) + "; sleep 0.2; xdotool mouseup 1");
  EXPECT_EQ((J{Once(run), mouse_x}), "1 600");
  std::string tops;
  for (int y : {bar.DownButton.Y, bar.DownButton.Y, bar.DownButton.Y, bar.UpButton.Y}) {
    Move(60, y + 10);
    Click(run);
    tops += std::to_string(bar.TopRow);
  }
  Move(60, 164);
  EXPECT_EQ((J{tops, Click(run)}), "1221 2");
  bar.Free();
  EXPECT_EQ((J{Once(run), bar.Rows.size(), Hex(60, 100)}), "-1 0 000000");
  bar.Setup(40, 400, 0);
  bar.AddBitmap(nullptr, "none");
  EXPECT_EQ((J{bar.Rows.size(), ConsoleLines.back().Text}), "0 add: Cannot create temp bitmap");
}

TEST(Widgets, Menu) {
  Block();
  MenuClass menu;
  menu.Create("Title", "Footer", "Top");
  for (const char *help : {"", "help", ""}) menu.AddEntry("Entry", "block", help);
  menu.FooterLine2 = "Line 2";
  RVK_MenuPulse.Size = 64;
  RVK_MenuPulse.Brightness = 200;
  auto run = [&] {
    menu.PulseTimer.LastClock = RVK_Clock() + 1000;  // no pulse in this frame
    return menu.Run();
  };
  Move(790, 300);
  EXPECT_EQ(Once(run), -1);
  EXPECT_EQ((J{V(10, 0, 600), V(16, 0, 160), H(0, 46, 400), V(30, 530, 70)}),
            "8.20m521.50s1. 8.20m3.39n1.39w1.39w10. 15.18n7?18n1W1n4?10n2?259n65. 11.1?14g1?42s1.");
  EXPECT_EQ((J{H(740, 20, 60), H(775, 556, 25), H(775, 572, 25), H(60, 556, 10), H(10, 12, 14), V(18, 6, 12)}),
            "6m2?3m3?2m3?1m3?2m3?32m 4?1s1?1.2?16s 6s2?17s 5s2?3s 7m7? 2.4m2?4m");
  // The help slides in by 60 a frame to 64; Up and Down wrap round.
  std::string answers;
  for (int k : {+KEY_DOWN, 0, +KEY_ENTER, +KEY_UP, +KEY_UP, +KEY_DOWN, +KEY_ESC, +KEY_X}) {
    if (k != 0) simulate_keypress(k << 8);
    int answer = Once(run);
    answers += (J{answer, menu.Selected, menu.HelpX}) + ",";
  }
  EXPECT_EQ((J{answers, readkey() >> 8 == KEY_X}),
            "-1 1 800,-1 1 740,1 1 680,-1 0 800,-1 2 800,-1 0 800,-2 0 800,-1 0 800, 1");
  menu.Selected = 1;
  menu.HelpX = 100;
  Once(run);
  EXPECT_EQ((J{menu.HelpX, H(99, 590, 5)}), "64 2s2?1s");
  // The pointer selects only as it moves.
  Move(300, 80);
  Once(run);
  simulate_keypress(KEY_DOWN << 8);
  Once(run);
  Press();
  int still = Once(run);
  Press(false);
  Move(301, 80);
  EXPECT_EQ((J{still, menu.Selected, Click(run)}), "-1 2 1");
  menu.PulseTimer.LastClock = RVK_Clock() - 30;
  Once([&] { return menu.Draw(); });
  EXPECT_EQ((J{RVK_MenuPulse.Size, +RVK_MenuPulse.Brightness}), "67 206");
}

TEST(Widgets, TextFields) {
  RVK_ResetFocus();
  clear_keybuf();
  TextFieldClass a, b, c;
  a.Create("ab", "Name", 100, 100, -1, 5);
  b.Create("fixed", "", 700, 200, 200, 16);
  c.Create("", "", 100, 300, 40, 30);
  a.ShowCount = b.ReadOnly = true;
  EXPECT_EQ((J{a.Width, a.Height, b.Width, +a.FocusId, +b.FocusId, +c.FocusId, a.Caret, a.GetText()}), "60 18 80 0 1 2 2 ab");
  auto run = [&] {
    RVK_DrawRect(0, 0, 799, 599, RVK_Palette.PanelFace, true, RVK_Opaque);
    a.Run(), b.Run(), c.Run();
    return 0;
  };
  Move(10, 10);
  ASSERT_TRUE(TkWaitFor([] { return RVK_Clock() % 1000 < 300; }));
  Once(run);
  EXPECT_EQ((J{H(98, 109, 64), V(102, 80, 67), H(700, 209, 8), V(117, 99, 22)}),
            "3P1.1W1?2w1?2W1w1?3W1w1W3.40W1F2P 5P1?2.6?7P1.4W2?2W1?2w4W1F11P3?3P2?1.9P 1P1.2?2W1?1W 2P18.2P");
  // A limit of 5 admits 4; Enter is handed on; a read-only field takes none.
  for (int k : {KEY_C << 8 | 'c', KEY_D << 8 | 'd', KEY_E << 8 | 'e', KEY_ENTER << 8 | 13, KEY_TAB << 8 | 9, KEY_X << 8 | 'x'})
    simulate_keypress(k);
  for (int i = 0; i < 6; i++) Once(run);
  EXPECT_EQ((J{a.Text, a.Caret, +RVK_GetFocus(), b.Text, readkey() >> 8 == KEY_X, readkey() >> 8 == KEY_ENTER}),
            "abcd 4 1 fixed 1 1");
  // Past the width, the first shown moves on one a frame.
  Move(110, 305);
  Click(run);
  for (int i = 0; i < 8; i++) simulate_keypress(KEY_W << 8 | 'W');
  std::string firsts;
  for (int i = 0; i < 10; i++) Once(run), firsts += std::to_string(c.FirstVisible);
  c.Caret = 1;
  Once(run);
  a.Text = "xyz";
  Once(run);
  a.ReleaseFocusId();
  EXPECT_EQ((J{c.Text.size(), firsts, c.FirstVisible, a.Caret, +RVK_AllocFocusId()}), "8 0000123455 3 3 0");
  clear_keybuf();
}

TEST(Widgets, ListBox) {
  ListBoxClass list;
  list.Create(100, 100, 300, 3);
  for (const char *row : {"zero", "one", "two", "three", "a row long enough to need the bar below it, and then some"})
    list.AddItem(row, nullptr, nullptr);
  ListBoxItemClass &one = list.GetItem(1);
  one.ColumnCount = 1;
  one.ColumnTexts[0] = "col";
  one.ColumnOffsets[0] = 200;
  list.GetItem(2).ColumnTexts[0] = "unseen";
  list.Selected = 9;
  auto run = [&] { return list.Run(), 0; };
  Move(600, 500);
  Once(run);
  EXPECT_EQ((J{list.Selected, V(150, 98, 68), H(98, 108, 14), H(380, 108, 28), H(299, 125, 8), H(290, 144, 60), V(250, 151, 19)}),
            "4 2.1i51I1t13d 2.1i2I4?1I4? 4I1T15K1k7. 3I2?3I 60I 1I1t15d1l1.");
  std::string clicks;
  // Clicks at the rows' edges; a double click, and two slow ones.
  for (auto [x, y] : {std::pair{101, 117}, {383, 133}, {150, 139}, {-150, 139}, {150, 139}}) {
    Move(std::abs(x), y);
    rest(x < 0 ? 400 : 0);
    Click(run, "0");
    clicks += (J{list.Selected, list.Activated, list.LastClicked}) + ",";
  }
  Once(run);
  EXPECT_EQ((J{clicks, H(98, 142, 6)}), "1 -1 1,1 1 1,2 1 2,2 1 2,2 2 2, 2.1i1.2?");
  list.KeyboardOn = list.KeepSelectionVisible = true;
  list.Selected = 0;
  std::string moves;
  for (int k : {+KEY_DOWN, +KEY_DOWN, +KEY_DOWN, +KEY_UP, +KEY_PGDN, +KEY_PGUP, +KEY_X, 0, -2, 1, -10, -11, -20, -21}) {
    if (k > 1) simulate_keypress(k << 8);
    if (k == -2 || k == 1) position_mouse_z(mouse_z + k);
    if (k <= -10) list.KeepSelectionVisible = k > -20, list.Selected = k % 2 ? 4 : 0, list.TopRow = k % 2 ? 0 : 2;
    Once(run);
    moves += (J{list.Selected, list.TopRow}) + ",";
  }
  EXPECT_EQ((J{moves, readkey() >> 8 == KEY_X}), "1 0,2 0,3 1,2 1,4 2,1 0,1 0,1 0,3 1,2 1,2 2,2 0,0 2,4 0, 1");
}

TEST(Widgets, Sliders) {
  int value = 10, level = 0;
  SliderClass across, down, empty;
  across.Create("Vol", 100, 100, 200, 14, 0, 10, false, 5, &value, -1);
  down.Create(nullptr, 400, 100, 14, 200, 0, 3, true, -1, &level, 1);
  empty.Create("Nil", 100, 200, 200, 14, 0, 0, false, -1, &value, -1);
  auto run = [&] {
    RVK_DrawRect(0, 0, 799, 599, RVK_Palette.PanelFace, true, RVK_Opaque);
    return across.Run(), down.Run(), empty.Run(), 0;
  };
  Move(150, 107);
  Once(run);
  EXPECT_EQ((J{H(98, 107, 205), V(407, 98, 205), H(98, 207, 205), H(98, 124, 8), V(165, 110, 40)}),
            "2P1t179d1T19K1k2P 2P1T49K1k149d1l2P 2P1t199d1l2P 4P2?1P1? 4d1l9P21?5P");
  std::string values, knob;
  // The last press is on the vertical slider's top edge.
  for (auto [x, y] : {std::pair{100, 107}, {110, 107}, {200, 107}, {300, 107}, {407, 250}, {150, 207}, {407, 100}}) {
    Move(x, y);
    Press();
    Once(run);
    Press(false);
    values += (J{value, level}) + ",";
    if (y == 207) Once(run), knob = V(407, 98, 205);
  }
  EXPECT_EQ((J{values, knob}), "0 0,0 0,5 0,10 0,10 2,10 2,10 0, 2P1t99d1T49K1k49d1l2P");
}

TEST(Widgets, MessageBoxAndTextViewer) {
  Move(10, 590);
  alarm(60);  // a box that never closes fails instead of hanging
  // Enter held as the box opens must first go up once.
  Key("Return", KEY_ENTER, true);
  TkLater("sleep 0.4; xdotool keyup Return");
  Enter("0.7", "0.2");
  int32_t start = RVK_Clock();
  RVK_MessageBox("Saved 100%% of %s", "it");
  EXPECT_EQ((J{RVK_Clock() - start >= 850, H(0, 300, 800), V(400, 0, 600)}),
            "1 327.1L21P10?112P1D328. 268.1l19T1d19P10S13P1D268.");
  std::ofstream("rvk_viewer.txt") << "first line\n\nthird line\n";
  Enter("0.5", "0.2");
  start = RVK_Clock();
  RVK_ShowText("rvk_viewer.txt", true, "Read %s", "me");
  EXPECT_EQ((J{RVK_Clock() - start >= 650, H(0, 300, 800), V(400, 0, 600), H(0, 72, 12), H(0, 106, 12), H(0, 10, 12), H(55, 10, 8)}),
            "1 5V1i789I1W4V 64V1i527I1W7V 5V1i1I2?2I1? 5V1i1I2?3I 1l3T7?1T 1?2T1d4V");
  std::remove("rvk_viewer.txt");
  Enter("0.5", "0.2");
  RVK_ShowText("A text\nof two lines", false, "%s", "Text");
  EXPECT_EQ((J{H(0, 72, 12), H(0, 89, 12)}), "5V1i1I3?1I1? 5V1i1I2?2I1?");
  Enter("0.5", "0.2");
  RVK_ShowText("no such.txt", true, "%s", "");
  EXPECT_EQ(H(0, 300, 800), "302V1L21P10?162P1D303V");
  alarm(0);
  std::remove("RVK Error Log.txt");
}
