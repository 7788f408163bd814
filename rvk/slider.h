// SliderClass: a bar with a knob bound to an integer of its owner.
#pragma once
#include <cstdint>
#include <string>

class SliderClass {
public:
  std::string Label;
  int32_t X = 0, Y = 0;
  int32_t Width = 0, Height = 0;
  int32_t Min = 0, Max = 0;
  int32_t *Value = nullptr;
  bool Vertical = false;
  int32_t KnobSize = -1;
  int32_t Page = -1;

  void Create(const char *label, int x, int y, int width, int height, int min, int max, bool vertical, int knobSize, int *value, int page);
  void Run();
  // Length along the axis of movement.
  int Length() const;
  // Length of the knob, never below 20.
  int KnobLength() const;
  // Offset of the knob from the slider's start for a value.
  int KnobPosition(int value) const;
  // The value a press at `offset` pixels from the start along the axis
  // gives, with the knob centred on the pointer. False when the knob fills
  // the slider and there is nowhere to move it.
  bool ValueAt(int offset, int &value) const;
};
