// TextFieldClass: one-line text entry with a label, and the keyboard focus table.
#pragma once
#include <cstdint>
#include <string>
#include <allegro.h>

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
};

void RVK_ResetFocus();
unsigned char RVK_AllocFocusId();
void RVK_FreeFocusId(unsigned char id);
void RVK_NextFocus();
unsigned char RVK_GetFocus();
int RVK_TextWidthForChars(FONT *font, int count);
void DrawCaret(int x, int y, int colour);
