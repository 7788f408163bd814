// The focus table and the editing of a text field by keys, without a window.
#include <gtest/gtest.h>
#include <allegro.h>
#include <tuple>
#include "rvk/textfield.h"

static int Next() {
  RVK_NextFocus();
  return RVK_GetFocus();
}

TEST(Focus, AllocationReuseWrapAndExhaustion) {
  RVK_ResetFocus();
  for (int i = 0; i < 3; i++) EXPECT_EQ(RVK_AllocFocusId(), i);
  RVK_FreeFocusId(1);
  EXPECT_EQ(RVK_AllocFocusId(), 1);
  RVK_FreeFocusId(1);
  // 1 is free and skipped; past the last used number Tab starts from 0 again.
  EXPECT_EQ(Next(), 2);
  EXPECT_EQ(Next(), 0);

  // A single field keeps the focus on Tab; a focus on a free number moves
  // to the next used one above it, or wraps; with nothing used it stays.
  RVK_ResetFocus();
  EXPECT_EQ(RVK_AllocFocusId(), 0);
  EXPECT_EQ(Next(), 0);
  RVK_SetFocus(200);
  EXPECT_EQ(Next(), 0);
  RVK_FreeFocusId(0);
  EXPECT_EQ(Next(), 0);

  // All 256 used: the next field shares 0; a freed number is handed out again.
  RVK_ResetFocus();
  for (int i = 0; i < 256; i++) EXPECT_EQ(RVK_AllocFocusId(), i);
  EXPECT_EQ(RVK_AllocFocusId(), 0);
  RVK_SetFocus(255);
  EXPECT_EQ(Next(), 0);
  RVK_FreeFocusId(77);
  EXPECT_EQ(RVK_AllocFocusId(), 77);
  RVK_ResetFocus();
  EXPECT_EQ(RVK_AllocFocusId(), 0);
}

TEST(TextField, EditingStopsAtTheLimitAndTheEnds) {
  TextFieldClass f;
  f.MaxLength = 16;
  auto state = [&] { return std::make_pair(f.Text, f.Caret); };
  for (char c = 'a'; c < 'a' + 20; c++) f.ApplyKey(TextKeyInsert, (KEY_A << 8) | c);
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklmno"), 15));  // 15 characters
  f.ApplyKey(TextKeyRight, 0);
  EXPECT_EQ(f.Caret, 15);
  f.ApplyKey(TextKeyLeft, 0);
  f.ApplyKey(TextKeyLeft, 0);
  f.ApplyKey(TextKeyBackspace, 0);
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklno"), 12));
  f.ApplyKey(TextKeyInsert, 'Z');
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklZno"), 13));
  // Backspace and Left at position 0 do nothing.
  f.Caret = 0;
  f.ApplyKey(TextKeyBackspace, 0);
  f.ApplyKey(TextKeyLeft, 0);
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklZno"), 0));
  // A caret set past the text by its owner is brought back first.
  f.Caret = 99;
  f.ApplyKey(TextKeyBackspace, 0);
  EXPECT_EQ(state(), std::make_pair(std::string("abcdefghijklZn"), 14));
  // A limit of 0 or 1 admits nothing; the character is the low byte only.
  TextFieldClass g;
  for (int limit : {1, 0}) {
    g.MaxLength = limit;
    g.ApplyKey(TextKeyInsert, 'x');
    EXPECT_EQ(g.Text, "") << limit;
  }
  g.MaxLength = 5;
  g.ApplyKey(TextKeyInsert, 0x1E00 | 'q');
  EXPECT_EQ(g.Text, "q");
}

TEST(TextField, CaretBlinksTwiceASecondAndWidthCountsW) {
  const int blinks[][2] = {{0, 1}, {499, 1}, {500, 0}, {999, 0}, {1000, 1}};
  for (const auto &b : blinks) EXPECT_EQ(RVK_BlinkOn(b[0], 2), b[1] != 0) << b[0];
  install_allegro(SYSTEM_NONE, &errno, atexit);
  EXPECT_EQ(text_length(font, "W"), 8);
  EXPECT_EQ(RVK_TextWidthForChars(font, 16), 128);
  EXPECT_EQ(RVK_TextWidthForChars(nullptr, 16), 0);
}
