// The widgets driven by real X input on the test's own display: presses that
// fire or don't, the waits while a button or key is held, hot keys, picks,
// menu keys, focus and typing, double clicks, and the two modal screens
// closed by Enter.
#include <allegro.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <cstdio>
#include <string>
#include <tuple>
#include <vector>
#include "rvk/button.h"
#include "rvk/core.h"
#include "rvk/listbox.h"
#include "rvk/menu.h"
#include "rvk/messagebox.h"
#include "rvk/pickerbar.h"
#include "rvk/textfield.h"
#include "rvk/textviewer.h"
#include "rvk/timer.h"
#include "support/gl_env.h"
#include "rvk_xinput.h"

namespace {

// Runs one widget call inside a frame, as the widgets are meant to run.
template <class Call>
auto InFrame(Call call) -> decltype(call()) {
  RVK_BeginFrame();
  auto result = call();
  RVK_End2D(0);
  return result;
}

// The answers of a button's next polls, one frame each.
std::vector<bool> Polls(ButtonClass &b, int n) {
  std::vector<bool> answers;
  for (int i = 0; i < n; i++) answers.push_back(InFrame([&] { return b.Run(); }));
  return answers;
}

// Types the keys xdotool names and waits until Allegro has the first.
bool Type(const std::string &keys) {
  std::system(("xdotool key " + keys).c_str());
  return TkWaitFor([] { return keypressed() != 0; });
}

// Presses button 1 and lets go of it after a pause, while the call runs.
template <class Call>
auto Click(Call call, const char *pause = "0.1") -> decltype(call()) {
  EXPECT_TRUE(TkMouse(true));
  TkLater(std::string("sleep ") + pause + "; xdotool mouseup 1");
  return InFrame(call);
}

}  // namespace

TEST(WidgetInput, ButtonWaitsForTheReleaseAndFiresOnlyOverItself) {
  ButtonClass b;
  RVK_CreateButtonEx(b, "Go", RVK_GetDefaultIcon(), 100, 100, -1, false);
  ASSERT_TRUE(TkMovePointer(116, 116));
  int32_t start = RVK_Clock();
  EXPECT_TRUE(Click([&] { return b.Run(); }, "0.3"));
  EXPECT_GE(RVK_Clock() - start, 250);
  EXPECT_TRUE(b.Pressed);
  EXPECT_EQ(mouse_b & 1, 0);
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));
  EXPECT_FALSE(b.Pressed);

  // Pressed on the button, moved off while held: nothing fires, and the
  // wait ends when the pointer leaves, before the release.
  ASSERT_TRUE(TkMouse(true));
  TkLater("sleep 0.2; " + TkMoveCommand(300, 300) + "; sleep 0.4; xdotool mouseup 1");
  start = RVK_Clock();
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));
  EXPECT_GE(RVK_Clock() - start, 150);
  EXPECT_NE(mouse_b & 1, 0);
  ASSERT_TRUE(TkWaitFor([] { return (mouse_b & 1) == 0; }));
  ASSERT_TRUE(TkMovePointer(116, 116));
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));

  // A disabled button ignores a press and doesn't wait.
  b.Enabled = false;
  ASSERT_TRUE(TkMouse(true));
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));
  ASSERT_TRUE(TkMouse(false));
}

TEST(WidgetInput, HotKeyFiresInThePollAfterItsRelease) {
  ASSERT_TRUE(TkMovePointer(600, 500));
  ButtonClass b;
  // Made while its key is held: quiet until the key has been up once.
  ASSERT_TRUE(TkKey("m", KEY_M, true));
  RVK_CreateButtonEx(b, "Message", RVK_GetDefaultIcon(), 100, 100, KEY_M, false);
  EXPECT_EQ(Polls(b, 2), std::vector<bool>(2, false));
  ASSERT_TRUE(TkKey("m", KEY_M, false));
  EXPECT_EQ(Polls(b, 2), std::vector<bool>(2, false));
  for (int round = 0; round < 2; round++) {
    ASSERT_TRUE(TkKey("m", KEY_M, true));
    EXPECT_EQ(Polls(b, 2), std::vector<bool>(2, false)) << round;
    ASSERT_TRUE(TkKey("m", KEY_M, false));
    // The first poll sees the release, the next fires, with the key buffer
    // emptied, and then it is quiet again.
    EXPECT_EQ(Polls(b, 2), (std::vector<bool>{false, true})) << round;
    EXPECT_FALSE(keypressed());
    EXPECT_FALSE(InFrame([&] { return b.Run(); })) << round;
  }
}

TEST(WidgetInput, PickerBarPicksOnReleaseAndScrolls) {
  PickerBarClass bar;
  bar.Setup(40, 400, 64);
  BITMAP *picture = create_bitmap(64, 32);
  clear_to_color(picture, makecol(200, 40, 40));
  for (int i = 0; i < 6; i++) bar.AddBitmap(picture, "row");
  destroy_bitmap(picture);
  ASSERT_EQ(bar.MaxTopRow, 2);
  auto run = [&] { return bar.Run(); };

  ASSERT_TRUE(TkMovePointer(60, 78 + 66 + 20));
  ASSERT_TRUE(TkMouse(true));
  // Moved off the bar before the release: still a pick.
  TkLater("sleep 0.2; " + TkMoveCommand(600, 300) + "; sleep 0.2; xdotool mouseup 1");
  int32_t start = RVK_Clock();
  EXPECT_EQ(InFrame(run), 1);
  EXPECT_GE(RVK_Clock() - start, 350);
  EXPECT_EQ(mouse_x, 600);

  // Down twice reaches the last row; a third press changes nothing.
  ASSERT_TRUE(TkMovePointer(60, bar.DownButton.Y + 10));
  for (int expected : {1, 2, 2}) {
    EXPECT_EQ(Click(run), -1);
    EXPECT_EQ(bar.TopRow, expected);
  }
  ASSERT_TRUE(TkMovePointer(60, bar.UpButton.Y + 10));
  Click(run);
  EXPECT_EQ(bar.TopRow, 1);
  // With TopRow 1 the first row on show is row 1: a pick answers row 2.
  ASSERT_TRUE(TkMovePointer(60, 78 + 66 + 20));
  EXPECT_EQ(Click(run), 2);
  bar.Free();
}

TEST(WidgetInput, MenuKeysWrapAndThePointerSelectsOnlyWhenItMoves) {
  ASSERT_TRUE(TkMovePointer(790, 300));
  MenuClass menu;
  menu.Create("Menu", "Footer", "");
  menu.AddEntry("First", "yes", "");
  menu.AddEntry("Second", "yes", "help");
  menu.AddEntry("Third", "yes", "");
  auto run = [&] { return menu.Run(); };
  clear_keybuf();
  EXPECT_EQ(InFrame(run), -1);
  // Up on the first entry selects the last, Down on the last the first.
  for (auto [keyName, selected] : {std::make_pair("Up", 2), std::make_pair("Down", 0)}) {
    ASSERT_TRUE(Type(keyName));
    EXPECT_EQ(InFrame(run), -1);
    EXPECT_EQ(menu.Selected, selected);
  }

  // Esc answers -2 once the key is up again.
  ASSERT_TRUE(TkKey("Escape", KEY_ESC, true));
  TkLater("sleep 0.3; xdotool keyup Escape");
  int32_t start = RVK_Clock();
  EXPECT_EQ(InFrame(run), -2);
  EXPECT_GE(RVK_Clock() - start, 250);

  // A moving pointer selects the entry under it; its empty help shows no line.
  MenuRowClass third =
      RVK_MenuRow(2, text_height(RVK_FontMedium), text_height(RVK_FontStandard), menu.RowWidth, menu.TextX);
  ASSERT_TRUE(TkMovePointer(100, third.Y + 10));
  EXPECT_EQ(InFrame(run), -1);
  EXPECT_EQ(menu.Selected, 2);
  EXPECT_EQ(menu.HelpX, SCREEN_W);
  // The keyboard moves away from the resting pointer, and a click on the
  // entry under it does nothing until the pointer moves; then it chooses.
  ASSERT_TRUE(Type("Up"));
  InFrame(run);
  EXPECT_EQ(menu.Selected, 1);
  ASSERT_TRUE(TkMouse(true));
  EXPECT_EQ(InFrame(run), -1);
  EXPECT_EQ(menu.Selected, 1);
  ASSERT_TRUE(TkMouse(false));
  ASSERT_TRUE(TkMovePointer(101, third.Y + 10));
  EXPECT_EQ(Click(run, "0.2"), 2);
  EXPECT_EQ(mouse_b & 1, 0);
}

TEST(WidgetInput, FieldsTakeFocusByClickAndTypeOneKeyPerFrame) {
  ASSERT_TRUE(TkMovePointer(600, 500));
  clear_keybuf();
  RVK_ResetFocus();
  TextFieldClass a, b, c;
  a.Create("ab", "Name", 100, 100, 200, 5);
  b.Create("", "Port", 100, 160, 200, 6);
  c.Create("fixed", "Read only", 100, 220, 200, 16);
  c.ReadOnly = true;
  EXPECT_EQ(std::make_tuple(a.FocusId, b.FocusId), std::make_tuple(0, 1));
  // Types the keys, then runs the fields for that many frames.
  auto typeAndRun = [&](const char *keys, int frames) {
    ASSERT_TRUE(Type(keys));
    rest(100);
    for (int i = 0; i < frames; i++) InFrame([&] { return a.Run(), b.Run(), c.Run(), 0; });
  };
  typeAndRun("c d e", 4);
  EXPECT_STREQ(a.GetText(), "abcd");  // a limit of 5 admits 4
  EXPECT_EQ(a.Caret, 4);
  // Enter is handed on, not inserted.
  typeAndRun("Return", 1);
  EXPECT_STREQ(a.GetText(), "abcd");
  ASSERT_TRUE(keypressed());
  EXPECT_EQ(readkey() >> 8, KEY_ENTER);

  ASSERT_TRUE(TkMovePointer(150, 165));
  ASSERT_TRUE(TkMouse(true));
  InFrame([&] { return a.Run(), b.Run(), c.Run(), 0; });
  ASSERT_TRUE(TkMouse(false));
  EXPECT_EQ(RVK_GetFocus(), b.FocusId);
  typeAndRun("7 BackSpace 8", 3);
  EXPECT_STREQ(b.GetText(), "8");
  EXPECT_STREQ(a.GetText(), "abcd");
  // Tab goes on to the next used number: the read-only field, which takes
  // no key.
  typeAndRun("Tab x", 2);
  EXPECT_EQ(RVK_GetFocus(), c.FocusId);
  EXPECT_STREQ(c.GetText(), "fixed");
  EXPECT_STREQ(b.GetText(), "8");
  clear_keybuf();
  RVK_ResetFocus();
}

TEST(WidgetInput, ListBoxSelectsAndKnowsADoubleClick) {
  ListBoxClass list;
  list.Create(100, 100, 300, 5);
  for (const char *row : {"zero", "one", "two"}) list.AddItem(row, nullptr, nullptr);
  int h = text_height(RVK_FontStandard);
  auto click = [&] {
    Click([&] { return list.Run(), 0; }, "0");
    EXPECT_EQ(mouse_b & 1, 0);
  };
  ASSERT_TRUE(TkMovePointer(150, 100 + (h + 1) + 5));
  click();
  EXPECT_EQ(std::make_pair(list.Selected, list.Activated), std::make_pair(1, -1));
  click();
  EXPECT_EQ(list.Activated, 1);
  // Two slow clicks don't; the second starts a new timing for a third.
  ASSERT_TRUE(TkMovePointer(150, 100 + 2 * (h + 1) + 5));
  click();
  EXPECT_EQ(list.Selected, 2);
  rest(400);
  click();
  EXPECT_EQ(list.Activated, 1);
  click();
  EXPECT_EQ(list.Activated, 2);
}

TEST(WidgetInput, MessageBoxClosesAfterAReleasedEnterThatWasHeldAtOpening) {
  ASSERT_TRUE(TkMovePointer(10, 590));
  alarm(20);  // a box that never closes fails the test instead of hanging it
  ASSERT_TRUE(TkKey("Return", KEY_ENTER, true));
  TkLater("sleep 0.4; xdotool keyup Return; sleep 0.3; xdotool keydown Return; sleep 0.2; xdotool keyup Return");
  int32_t start = RVK_Clock();
  RVK_MessageBox("Saved 100%% of %s", "it");
  EXPECT_GE(RVK_Clock() - start, 850);

  // The viewer on an empty file has a working Done button.
  const char *empty = "rvk_widgetinput_empty.txt";
  std::fclose(std::fopen(empty, "w"));
  TkLater("sleep 0.3; xdotool keydown Return; sleep 0.2; xdotool keyup Return");
  start = RVK_Clock();
  RVK_ShowText(empty, true, "Empty %s", "file");
  EXPECT_GE(RVK_Clock() - start, 450);
  std::remove(empty);
  alarm(0);
  InFrame([] { return 0; });
}
