// The focus table and the editing of a text field by keys, without a window.
#include <gtest/gtest.h>
#include <allegro.h>
#include "rvk/textfield.h"

TEST(Focus, AllocationReuseWrapAndExhaustion) {
  RVK_ResetFocus();
  EXPECT_EQ(RVK_AllocFocusId(), 0);
  EXPECT_EQ(RVK_AllocFocusId(), 1);
  EXPECT_EQ(RVK_AllocFocusId(), 2);
  RVK_FreeFocusId(1);
  EXPECT_EQ(RVK_AllocFocusId(), 1);
  RVK_FreeFocusId(1);
  EXPECT_EQ(RVK_GetFocus(), 0);
  RVK_NextFocus();
  EXPECT_EQ(RVK_GetFocus(), 2);  // 1 is free and skipped
  RVK_NextFocus();
  EXPECT_EQ(RVK_GetFocus(), 0);  // past the last used number: from 0 again

  // A single field keeps the focus on Tab; a focus on a free number moves
  // to the next used one above it, or wraps.
  RVK_ResetFocus();
  EXPECT_EQ(RVK_AllocFocusId(), 0);
  RVK_NextFocus();
  EXPECT_EQ(RVK_GetFocus(), 0);
  RVK_SetFocus(200);
  RVK_NextFocus();
  EXPECT_EQ(RVK_GetFocus(), 0);
  RVK_FreeFocusId(0);
  RVK_NextFocus();
  EXPECT_EQ(RVK_GetFocus(), 0);  // nothing used: it stays

  RVK_ResetFocus();
  for (int i = 0; i < 256; i++) EXPECT_EQ(RVK_AllocFocusId(), i);
  EXPECT_EQ(RVK_AllocFocusId(), 0);  // all used
  RVK_SetFocus(255);
  RVK_NextFocus();
  EXPECT_EQ(RVK_GetFocus(), 0);
  RVK_FreeFocusId(77);
  EXPECT_EQ(RVK_AllocFocusId(), 77);
  RVK_ResetFocus();
  EXPECT_EQ(RVK_AllocFocusId(), 0);
}

TEST(TextField, EditingStopsAtTheLimitAndTheEnds) {
  TextFieldClass f;
  f.MaxLength = 16;
  for (char c = 'a'; c < 'a' + 20; c++) f.ApplyKey(TextKeyInsert, (KEY_A << 8) | c);
  EXPECT_EQ(f.Text, "abcdefghijklmno");  // 15 characters
  EXPECT_EQ(f.Caret, 15);
  f.ApplyKey(TextKeyRight, 0);
  EXPECT_EQ(f.Caret, 15);
  f.ApplyKey(TextKeyLeft, 0);
  f.ApplyKey(TextKeyLeft, 0);
  f.ApplyKey(TextKeyBackspace, 0);
  EXPECT_EQ(f.Text, "abcdefghijklno");
  EXPECT_EQ(f.Caret, 12);
  f.ApplyKey(TextKeyInsert, 'Z');
  EXPECT_EQ(f.Text, "abcdefghijklZno");
  EXPECT_EQ(f.Caret, 13);
  f.Caret = 0;
  f.ApplyKey(TextKeyBackspace, 0);
  f.ApplyKey(TextKeyLeft, 0);
  EXPECT_EQ(f.Text, "abcdefghijklZno");
  EXPECT_EQ(f.Caret, 0);
  // A caret set past the text by its owner is brought back first.
  f.Caret = 99;
  f.ApplyKey(TextKeyBackspace, 0);
  EXPECT_EQ(f.Text, "abcdefghijklZn");
  EXPECT_EQ(f.Caret, 14);
  // A limit of 0 or 1 admits nothing; the character is the low byte only.
  TextFieldClass g;
  g.MaxLength = 1;
  g.ApplyKey(TextKeyInsert, 'x');
  EXPECT_EQ(g.Text, "");
  g.MaxLength = 0;
  g.ApplyKey(TextKeyInsert, 'x');
  EXPECT_EQ(g.Text, "");
  g.MaxLength = 5;
  g.ApplyKey(TextKeyInsert, 0x1E00 | 'q');
  EXPECT_EQ(g.Text, "q");
}

TEST(TextField, CaretBlinksTwiceASecondAndWidthCountsW) {
  EXPECT_TRUE(RVK_BlinkOn(0, 2));
  EXPECT_TRUE(RVK_BlinkOn(499, 2));
  EXPECT_FALSE(RVK_BlinkOn(500, 2));
  EXPECT_FALSE(RVK_BlinkOn(999, 2));
  EXPECT_TRUE(RVK_BlinkOn(1000, 2));
  install_allegro(SYSTEM_NONE, &errno, atexit);
  EXPECT_EQ(RVK_TextWidthForChars(font, 16), 16 * text_length(font, "W"));
  EXPECT_EQ(RVK_TextWidthForChars(font, 16), 128);
  EXPECT_EQ(RVK_TextWidthForChars(nullptr, 16), 0);
}
