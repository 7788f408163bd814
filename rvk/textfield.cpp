// TextFieldClass: one-line text entry with a label, and the table of focus
// numbers by which several fields on a screen share the keyboard.
#include "rvk/textfield.h"
#include <algorithm>
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/timer.h"

// ---- Focus table ----

static bool FocusUsed[256];
static unsigned char CurrentFocus = 0;

void RVK_ResetFocus() {
  for (bool &used : FocusUsed) used = false;
  CurrentFocus = 0;
}

unsigned char RVK_AllocFocusId() {
  for (int i = 0; i < 256; i++) {
    if (!FocusUsed[i]) {
      FocusUsed[i] = true;
      return (unsigned char)i;
    }
  }
  // All numbers taken: the field shares number 0 with another.
  return 0;
}

void RVK_FreeFocusId(unsigned char id) {
  FocusUsed[id] = false;
}

void RVK_NextFocus() {
  for (int step = 1; step < 256; step++) {
    int id = (CurrentFocus + step) & 255;
    if (FocusUsed[id]) {
      CurrentFocus = (unsigned char)id;
      return;
    }
  }
}

unsigned char RVK_GetFocus() {
  return CurrentFocus;
}

void RVK_SetFocus(unsigned char id) {
  CurrentFocus = id;
}

int RVK_TextWidthForChars(FONT *font, int count) {
  return RVK_TextLength("W", font) * count;
}

// ---- Caret ----

bool RVK_BlinkOn(int32_t milliseconds, int changesPerSecond) {
  if (changesPerSecond < 1) return true;
  int64_t phase = (int64_t)milliseconds * changesPerSecond / 1000;
  return phase % 2 == 0;
}

void DrawCaret(int x, int y, int colour) {
  // Two changes a second: half a second on, half a second off, the rhythm of
  // a desktop caret, slow enough to find and quick enough to catch the eye.
  if (!RVK_BlinkOn(RVK_Clock(), 2)) return;
  RVK_DrawRect(x, y, x + 2, y + RVK_TextHeight() + 1, colour, true, RVK_Opaque);
}

// ---- Editing ----

TextKeyAction RVK_TextKeyAction(int scancode, int character) {
  switch (scancode) {
    case KEY_BACKSPACE: return TextKeyBackspace;
    case KEY_TAB: return TextKeyTab;
    case KEY_LEFT: return TextKeyLeft;
    case KEY_RIGHT: return TextKeyRight;
    case KEY_F1: case KEY_F2: case KEY_F3: case KEY_F4: case KEY_F5: case KEY_F6:
    case KEY_F7: case KEY_F8: case KEY_F9: case KEY_F10: case KEY_F11: case KEY_F12:
    case KEY_ESC: case KEY_ENTER: case KEY_PGUP: case KEY_PGDN: case KEY_UP: case KEY_DOWN:
      return TextKeyPassOn;
    default:
      // Keys with no character (Home, End, Insert, a lone Shift) are
      // dropped: a zero inserted would end the text that GetText gives.
      return (character & 0xFF) != 0 ? TextKeyInsert : TextKeyDrop;
  }
}

void TextFieldClass::ApplyKey(TextKeyAction action, int character) {
  int length = (int)Text.size();
  Caret = std::clamp(Caret, 0, length);
  switch (action) {
    case TextKeyBackspace:
      if (Caret > 0) {
        Text.erase((size_t)Caret - 1, 1);
        Caret--;
      }
      break;
    case TextKeyLeft:
      if (Caret > 0) Caret--;
      break;
    case TextKeyRight:
      if (Caret < length) Caret++;
      break;
    case TextKeyInsert:
      if (length < (int)MaxLength - 1) {
        Text.insert((size_t)Caret, 1, (char)(character & 0xFF));
        Caret++;
      }
      break;
    case TextKeyTab:
      RVK_NextFocus();
      break;
    case TextKeyPassOn:
    case TextKeyDrop:
      break;
  }
}

void TextFieldClass::Create(const char *text, const char *label, int x, int y, int width,
                            unsigned short maxLength) {
  Text = text != nullptr ? text : "";
  Label = label != nullptr ? label : "";
  X = x;
  Y = y;
  PreviousText.clear();
  FocusId = RVK_AllocFocusId();
  ReadOnly = false;
  MaxLength = maxLength;
  Width = width != -1 ? width : RVK_TextWidthForChars(RVK_FontStandard, maxLength);
  // A field never reaches into the last 20 pixels of the screen.
  if (X + Width > SCREEN_W - 20) Width = SCREEN_W - X - 20;
  Height = RVK_TextHeight() + 2;
  Caret = (int)Text.size();
  FirstVisible = 0;
  ShowCount = false;
}

const char *TextFieldClass::GetText() const {
  return Text.c_str();
}

void TextFieldClass::ReleaseFocusId() {
  RVK_FreeFocusId(FocusId);
}

// Width in pixels of the characters from `from` up to the caret; none while
// the caret stands before them.
static int SpanLength(const std::string &text, int from, int to) {
  return RVK_TextLength(text.substr((size_t)from, (size_t)std::max(to - from, 0)).c_str());
}

void TextFieldClass::Run() {
  const PaletteClass &p = RVK_Palette;
  int h = RVK_TextHeight();
  int length = (int)Text.size();
  if (Text != PreviousText) Caret = length;
  // The owner may have set the fields: keep both indices inside the text.
  Caret = std::clamp(Caret, 0, length);
  FirstVisible = std::clamp(FirstVisible, 0, length);

  RVK_DrawFieldBox(X, Y, Width, Height);
  if (!Label.empty()) {
    RVK_Printf(X, Y - h - 2, p.Black, "%s", Label.c_str());
    if (ShowCount) RVK_Printf(X, Y + h + 10, p.Black, "%d of %d character(s)", length, (int)MaxLength - 1);
  }

  if (Caret < FirstVisible)
    FirstVisible--;
  else if (SpanLength(Text, FirstVisible, Caret) > Width)
    FirstVisible++;

  RVK_DrawText(RVK_FontStandard, X + 1, Y + 1, ReadOnly ? p.ReadOnlyText : p.Black, Text.c_str() + FirstVisible);

  if (FocusId != CurrentFocus && (mouse_b & 1) && RVK_MouseIn(X, Y, X + Width, Y + Height)) CurrentFocus = FocusId;

  if (FocusId == CurrentFocus && !ReadOnly) {
    DrawCaret(X + 1 + SpanLength(Text, FirstVisible, Caret), Y + 1, p.Black);
    if (keypressed()) {
      int k = readkey();
      TextKeyAction action = RVK_TextKeyAction(k >> 8, k);
      if (action == TextKeyPassOn)
        simulate_keypress(k);
      else
        ApplyKey(action, k);
    }
  }
  PreviousText = Text;
}
