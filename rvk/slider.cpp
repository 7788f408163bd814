// SliderClass: a trough and a knob bound to an integer of the owner's; with a
// label a value slider, without one the scroll bar of a list.
#include "rvk/slider.h"
#include <algorithm>
#include "rvk/core.h"
#include "rvk/draw.h"

void SliderClass::Create(const char *label, int x, int y, int width, int height, int min, int max, bool vertical,
                         int knobSize, int *value, int page) {
  Label = label != nullptr ? label : "";
  X = x;
  Y = y;
  Width = width;
  Height = height;
  Min = min;
  Max = max;
  Vertical = vertical;
  Value = value;
  Page = page;
  // A knob as long as the slider would leave it no room to move.
  KnobSize = knobSize >= (vertical ? height : width) ? 32 : knobSize;
}

int SliderClass::Length() const {
  return Vertical ? Height : Width;
}

int SliderClass::KnobLength() const {
  int k = KnobSize;
  // Without a page (-1) the computed length is below the least one.
  if (KnobSize == -1) {
    int range = Max - Min + 1;
    if (range == 0) range = 1;
    k = (int)(((float)Page / (float)range * 100.0f) / 100.0f * (float)Length());
  }
  return std::max(k, 20);
}

int SliderClass::KnobPosition(int value) const {
  if (Max < 1) return 0;
  return (int)((int64_t)(Length() - KnobLength()) * value / Max);
}

bool SliderClass::ValueAt(int offset, int &value) const {
  int k = KnobLength();
  int room = Length() - k;
  // A knob as long as the slider has nowhere to go: the press changes nothing.
  if (room <= 0) return false;
  int m = offset - k / 2;
  int q = (int)((int64_t)m * 100 / room);
  float f = (float)Max * (float)q / 100.0f;
  value = (int)std::min(std::max(f, (float)Min), (float)Max);
  return true;
}

void SliderClass::Run() {
  const PaletteClass &p = RVK_Palette;
  RVK_DrawBevelBox(X, Y, X + Width, Y + Height, p.TroughUpperLeft, p.TitleLight, p.TitleDark, RVK_Opaque);
  if (Max < 1) return;

  int k = KnobLength();
  // Without a bound integer the slider shows 0 and changes nothing.
  int value = Value != nullptr ? *Value : 0;
  if (!Label.empty()) RVK_Printf(X, Y + Height + 2, p.Black, "%s - %d", Label.c_str(), value);
  int pos = KnobPosition(value);
  if (Vertical)
    RVK_DrawBevelBox(X, Y + pos, X + Width, Y + pos + k, p.TitleFace, p.KnobLowerRight, p.KnobFill, RVK_Opaque);
  else
    RVK_DrawBevelBox(X + pos, Y, X + pos + k, Y + Height, p.TitleFace, p.KnobLowerRight, p.KnobFill, RVK_Opaque);

  int mx = mouse_x, my = mouse_y;
  if (!(X <= mx && mx <= X + Width && Y <= my && my <= Y + Height)) return;
  if (mouse_b & 1) {
    int chosen;
    if (Value != nullptr && ValueAt(Vertical ? my - Y : mx - X, chosen)) *Value = chosen;
  } else if (!Label.empty()) {
    RVK_ShowTooltip(mx + 10, Y + Height + 10, "Click to adjust %s", Label.c_str());
  }
}
