// TextFieldClass: one-line text entry with a label, and the keyboard focus table.
#pragma once
#include <cstdint>
#include <string>
#include <allegro.h>

// What a key does to a field that has the focus.
enum TextKeyAction {
  TextKeyBackspace,
  TextKeyTab,
  TextKeyLeft,
  TextKeyRight,
  TextKeyPassOn,  // back into the key buffer for whoever reads next
  TextKeyInsert,
  TextKeyDrop,  // a key with no character
};
TextKeyAction RVK_TextKeyAction(int scancode, int character);

class TextFieldClass {
public:
  int32_t Caret = 0;
  int32_t FirstVisible = 0;
  std::string PreviousText;
  std::string Text;
  uint16_t MaxLength = 0;
  std::string Label;
  int32_t X = 0, Y = 0;
  int32_t Width = 0, Height = 0;
  bool ShowCount = false;
  bool ReadOnly = false;
  uint8_t FocusId = 0;

  void Create(const char *text, const char *label, int x, int y, int width, unsigned short maxLength);
  void Run();
  const char *GetText() const;
  void ReleaseFocusId();
  // Applies one key to the text and caret (Tab moves the focus).
  void ApplyKey(TextKeyAction action, int character);
};

void RVK_ResetFocus();
unsigned char RVK_AllocFocusId();
void RVK_FreeFocusId(unsigned char id);
void RVK_NextFocus();
unsigned char RVK_GetFocus();
void RVK_SetFocus(unsigned char id);
int RVK_TextWidthForChars(FONT *font, int count);
// Whether a caret blinking with the given number of changes a second is on
// at the given clock reading.
bool RVK_BlinkOn(int32_t milliseconds, int changesPerSecond);
void DrawCaret(int x, int y, int colour);
