// The widgets driven by real X input on the test's own display: presses that
// fire or don't, the waits while a button or key is held, hot keys, picks,
// menu keys, focus and typing, double clicks, and the two modal screens
// closed by Enter.
#include <allegro.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <cstdio>
#include <string>
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

TextureClass Icon() {
  return RVK_GetDefaultIcon();
}

// Runs one widget call inside a frame, as the widgets are meant to run.
template <class Call>
auto InFrame(Call call) -> decltype(call()) {
  RVK_BeginFrame();
  auto result = call();
  RVK_End2D(0);
  return result;
}

void Frame() {
  RVK_BeginFrame();
  RVK_End2D(0);
}

}  // namespace

TEST(WidgetInput, ButtonWaitsForTheReleaseAndFiresOnlyOverItself) {
  ButtonClass b;
  RVK_CreateButtonEx(b, "Go", Icon(), 100, 100, -1, false);
  ASSERT_TRUE(TkMovePointer(116, 116));
  ASSERT_TRUE(TkMouseDown());
  TkLater("sleep 0.3; xdotool mouseup 1");
  int32_t start = RVK_Clock();
  EXPECT_TRUE(InFrame([&] { return b.Run(); }));
  EXPECT_GE(RVK_Clock() - start, 250);
  EXPECT_TRUE(b.Pressed);
  EXPECT_EQ(mouse_b & 1, 0);
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));
  EXPECT_FALSE(b.Pressed);

  // Pressed on the button, moved off while held: nothing fires, and the
  // wait ends when the pointer leaves, before the release.
  ASSERT_TRUE(TkMouseDown());
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
  ASSERT_TRUE(TkMouseDown());
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));
  ASSERT_TRUE(TkMouseUp());
}

TEST(WidgetInput, HotKeyFiresInThePollAfterItsRelease) {
  ASSERT_TRUE(TkMovePointer(600, 500));
  ButtonClass b;
  // Made while its key is held: quiet until the key has been up once.
  ASSERT_TRUE(TkKeyDown("m", KEY_M));
  RVK_CreateButtonEx(b, "Message", Icon(), 100, 100, KEY_M, false);
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));
  ASSERT_TRUE(TkKeyUp("m", KEY_M));
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));
  EXPECT_FALSE(InFrame([&] { return b.Run(); }));
  for (int round = 0; round < 2; round++) {
    ASSERT_TRUE(TkKeyDown("m", KEY_M));
    EXPECT_FALSE(InFrame([&] { return b.Run(); }));
    EXPECT_FALSE(InFrame([&] { return b.Run(); }));
    ASSERT_TRUE(TkKeyUp("m", KEY_M));
    EXPECT_FALSE(InFrame([&] { return b.Run(); })) << round;  // sees the release
    EXPECT_TRUE(InFrame([&] { return b.Run(); })) << round;   // fires
    EXPECT_FALSE(keypressed());                               // the buffer was emptied
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

  ASSERT_TRUE(TkMovePointer(60, 78 + 66 + 20));
  ASSERT_TRUE(TkMouseDown());
  // Moved off the bar before the release: still a pick.
  TkLater("sleep 0.2; " + TkMoveCommand(600, 300) + "; sleep 0.2; xdotool mouseup 1");
  int32_t start = RVK_Clock();
  EXPECT_EQ(InFrame([&] { return bar.Run(); }), 1);
  EXPECT_GE(RVK_Clock() - start, 350);
  EXPECT_EQ(mouse_x, 600);

  ASSERT_TRUE(TkMovePointer(60, bar.DownButton.Y + 10));
  for (int expected : {1, 2, 2}) {
    ASSERT_TRUE(TkMouseDown());
    TkLater("sleep 0.1; xdotool mouseup 1");
    EXPECT_EQ(InFrame([&] { return bar.Run(); }), -1);
    EXPECT_EQ(bar.TopRow, expected);
  }
  ASSERT_TRUE(TkMovePointer(60, bar.UpButton.Y + 10));
  ASSERT_TRUE(TkMouseDown());
  TkLater("sleep 0.1; xdotool mouseup 1");
  InFrame([&] { return bar.Run(); });
  EXPECT_EQ(bar.TopRow, 1);
  // With TopRow 1 the first row on show is row 1: a pick answers row 2.
  ASSERT_TRUE(TkMovePointer(60, 78 + 66 + 20));
  ASSERT_TRUE(TkMouseDown());
  TkLater("sleep 0.1; xdotool mouseup 1");
  EXPECT_EQ(InFrame([&] { return bar.Run(); }), 2);
  bar.Free();
}

TEST(WidgetInput, MenuKeysWrapAndThePointerSelectsOnlyWhenItMoves) {
  ASSERT_TRUE(TkMovePointer(790, 300));
  MenuClass menu;
  menu.Create("Menu", "Footer", "");
  menu.AddEntry("First", "yes", "");
  menu.AddEntry("Second", "yes", "help");
  menu.AddEntry("Third", "yes", "");
  clear_keybuf();
  EXPECT_EQ(InFrame([&] { return menu.Run(); }), -1);
  std::system("xdotool key Up");
  ASSERT_TRUE(TkWaitFor([] { return keypressed() != 0; }));
  EXPECT_EQ(InFrame([&] { return menu.Run(); }), -1);
  EXPECT_EQ(menu.Selected, 2);
  std::system("xdotool key Down");
  ASSERT_TRUE(TkWaitFor([] { return keypressed() != 0; }));
  EXPECT_EQ(InFrame([&] { return menu.Run(); }), -1);
  EXPECT_EQ(menu.Selected, 0);

  // Esc answers -2 once the key is up again.
  ASSERT_TRUE(TkKeyDown("Escape", KEY_ESC));
  TkLater("sleep 0.3; xdotool keyup Escape");
  int32_t start = RVK_Clock();
  EXPECT_EQ(InFrame([&] { return menu.Run(); }), -2);
  EXPECT_GE(RVK_Clock() - start, 250);

  // A moving pointer selects the entry under it; a click there chooses it.
  int mh = text_height(RVK_FontMedium), h = text_height(RVK_FontStandard);
  MenuRowClass third = RVK_MenuRow(2, mh, h, menu.RowWidth, menu.TextX);
  ASSERT_TRUE(TkMovePointer(100, third.Y + 10));
  EXPECT_EQ(InFrame([&] { return menu.Run(); }), -1);
  EXPECT_EQ(menu.Selected, 2);
  EXPECT_EQ(menu.HelpX, SCREEN_W);
  // The keyboard moves away from the resting pointer, and a click on the
  // entry under it does nothing until the pointer moves.
  std::system("xdotool key Up");
  ASSERT_TRUE(TkWaitFor([] { return keypressed() != 0; }));
  InFrame([&] { return menu.Run(); });
  EXPECT_EQ(menu.Selected, 1);
  ASSERT_TRUE(TkMouseDown());
  EXPECT_EQ(InFrame([&] { return menu.Run(); }), -1);
  EXPECT_EQ(menu.Selected, 1);
  ASSERT_TRUE(TkMouseUp());
  ASSERT_TRUE(TkMovePointer(101, third.Y + 10));
  ASSERT_TRUE(TkMouseDown());
  TkLater("sleep 0.2; xdotool mouseup 1");
  EXPECT_EQ(InFrame([&] { return menu.Run(); }), 2);
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
  EXPECT_EQ(a.FocusId, 0);
  EXPECT_EQ(b.FocusId, 1);
  auto runAll = [&] {
    a.Run();
    b.Run();
    c.Run();
    return 0;
  };
  std::system("xdotool key c d e");
  ASSERT_TRUE(TkWaitFor([] { return keypressed() != 0; }));
  rest(100);
  for (int i = 0; i < 4; i++) InFrame(runAll);
  EXPECT_STREQ(a.GetText(), "abcd");  // a limit of 5 admits 4
  EXPECT_EQ(a.Caret, 4);
  // Enter is handed on, not inserted.
  std::system("xdotool key Return");
  ASSERT_TRUE(TkWaitFor([] { return keypressed() != 0; }));
  InFrame(runAll);
  EXPECT_STREQ(a.GetText(), "abcd");
  ASSERT_TRUE(keypressed());
  EXPECT_EQ(readkey() >> 8, KEY_ENTER);

  ASSERT_TRUE(TkMovePointer(150, 165));
  ASSERT_TRUE(TkMouseDown());
  InFrame(runAll);
  ASSERT_TRUE(TkMouseUp());
  EXPECT_EQ(RVK_GetFocus(), b.FocusId);
  std::system("xdotool key 7 BackSpace 8");
  ASSERT_TRUE(TkWaitFor([] { return keypressed() != 0; }));
  rest(100);
  for (int i = 0; i < 3; i++) InFrame(runAll);
  EXPECT_STREQ(b.GetText(), "8");
  EXPECT_STREQ(a.GetText(), "abcd");
  // Tab goes on to the next used number: the read-only field, which takes
  // no key.
  std::system("xdotool key Tab x");
  ASSERT_TRUE(TkWaitFor([] { return keypressed() != 0; }));
  rest(100);
  for (int i = 0; i < 2; i++) InFrame(runAll);
  EXPECT_EQ(RVK_GetFocus(), c.FocusId);
  EXPECT_STREQ(c.GetText(), "fixed");
  EXPECT_STREQ(b.GetText(), "8");
  clear_keybuf();
  a.ReleaseFocusId();
  b.ReleaseFocusId();
  c.ReleaseFocusId();
  RVK_ResetFocus();
}

TEST(WidgetInput, ListBoxSelectsAndKnowsADoubleClick) {
  ListBoxClass list;
  list.Create(100, 100, 300, 5);
  for (const char *row : {"zero", "one", "two"}) list.AddItem(row, nullptr, nullptr);
  int h = text_height(RVK_FontStandard);
  auto click = [&] {
    EXPECT_TRUE(TkMouseDown());
    TkLater("xdotool mouseup 1");
    InFrame([&] { list.Run(); return 0; });
    EXPECT_EQ(mouse_b & 1, 0);
  };
  ASSERT_TRUE(TkMovePointer(150, 100 + (h + 1) + 5));
  click();
  EXPECT_EQ(list.Selected, 1);
  EXPECT_EQ(list.Activated, -1);
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
  ASSERT_TRUE(TkKeyDown("Return", KEY_ENTER));
  TkLater("sleep 0.4; xdotool keyup Return; sleep 0.3; xdotool keydown Return; sleep 0.2; xdotool keyup Return");
  int32_t start = RVK_Clock();
  RVK_MessageBox("Saved 100%% of %s", "it");
  EXPECT_GE(RVK_Clock() - start, 850);

  // The viewer on an empty file has a working Done button.
  const char *empty = "rvk_widgetinput_empty.txt";
  FILE *f = std::fopen(empty, "w");
  ASSERT_NE(f, nullptr);
  std::fclose(f);
  TkLater("sleep 0.3; xdotool keydown Return; sleep 0.2; xdotool keyup Return");
  start = RVK_Clock();
  RVK_ShowText(empty, true, "Empty %s", "file");
  EXPECT_GE(RVK_Clock() - start, 450);
  std::remove(empty);
  alarm(0);
  Frame();
}
