// ToolbarClass: a small window with a title strip and a row of buttons; it
// can be dragged by its strip and slides back from a screen edge.
#include "rvk/toolbar.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include "rvk/core.h"
#include "rvk/draw.h"

// ---- Geometry ----

int RVK_ToolbarLayout(std::vector<ButtonClass> &buttons, int x, int y, int textHeight, int titleLength,
                      int statusLength) {
  int cx = x + 2;
  for (ButtonClass &b : buttons) {
    b.X = cx;
    b.Y = y + textHeight + 8;
    cx += b.Style == 1 ? 10 : 36;
  }
  int row = cx - x + 2;
  if (statusLength >= 0) row += statusLength + 2;
  int title = titleLength + 6;
  return title > row ? title : row;
}

void RVK_ToolbarKeepOnScreen(ToolbarClass &t, int screenW, int screenH) {
  if (t.X + t.Width >= screenW) t.X = screenW - t.Width - 1;
  t.X = std::max(t.X, 0);
  if (t.Y + t.Height >= screenH) t.Y = screenH - t.Height - 1;
  t.Y = std::max(t.Y, 0);
}

static bool In(int mx, int my, int x1, int y1, int x2, int y2) {
  return x1 <= mx && mx <= x2 && y1 <= my && my <= y2;
}

void RVK_ToolbarEdgeSlide(ToolbarClass &t, int mx, int my, int textHeight, int screenW, int screenH) {
  int bottom = t.Y + textHeight + 48;
  if (In(mx, my, 0, t.Y, 1, bottom) && t.X < 0)
    t.X += 3;
  else if (In(mx, my, screenW - 2, t.Y, screenW - 1, bottom) && t.X + t.Width > screenW)
    t.X -= 3;
  if (In(mx, my, 0, 0, screenW - 1, 1) && t.Y < 0)
    t.Y += 3;
  else if (In(mx, my, 0, screenH - 2, screenW - 1, screenH - 1) && t.Y + t.Height > screenH)
    t.Y -= 3;
}

// ---- Building ----

void ToolbarClass::Create(int x, int y, bool fixed) {
  X = x;
  Y = y;
  Fixed = fixed;
  Title = "Toolbar";
  Status.clear();
  HasStatus = false;
  Alpha = 255;
  Width = 0;
  Height = RVK_TextHeight() + 48;
  Dragging = false;
  DropDown = false;
  Collapsed = true;
  HomeX = X;
  HomeY = Y;
}

void ToolbarClass::SetTitle(const char *format, ...) {
  char text[512];
  RVK_FORMAT(text, format);
  Title = text;
}

void ToolbarClass::SetStatus(const char *format, ...) {
  char text[512];
  RVK_FORMAT(text, format);
  Status = text;
  HasStatus = true;
}

void ToolbarClass::AddButtonEx(const char *caption, TextureClass icon, int hotKey, bool separator) {
  Buttons.emplace_back();
  // A separator without its picture stays in the row all the same.
  RVK_CreateButtonEx(Buttons.back(), caption, icon, 1, 1, hotKey, separator);
  Width += separator ? 10 : 36;
  RVK_ToolbarKeepOnScreen(*this, SCREEN_W, SCREEN_H);
  HomeX = X;
  HomeY = Y;
}

void ToolbarClass::AddButton(const char *caption, const char *iconName, int hotKey) {
  bool named = iconName != nullptr && iconName[0] != 0;
  TextureClass icon = named ? RVK_GetIcon(iconName) : RVK_GetDefaultIcon();
  AddButtonEx(caption, icon, hotKey, named && std::string(iconName) == "seperator");
}

void ToolbarClass::AddSeparator() {
  AddButtonEx("", RVK_GetIcon("seperator"), -1, true);
}

void ToolbarClass::Layout() {
  Width = RVK_ToolbarLayout(Buttons, X, Y, RVK_TextHeight(), RVK_TextLength(Title.c_str()), HasStatus ? RVK_TextLength(Status.c_str()) : -1);
}

void ToolbarClass::Centre() {
  Layout();
  X = (SCREEN_W - Width) / 2;
  Y = (SCREEN_H - Height) / 2;
}

void ToolbarClass::Clear() {
  Buttons.clear();
}

// ---- Running ----

enum ToolbarHint { HintNone, HintDrag, HintFixed, HintPosition };

int ToolbarClass::Run() {
  const PaletteClass &p = RVK_Palette;
  int th = RVK_TextHeight();
  ToolbarHint hint = HintNone;

  if (DropDown) {
    if (!Collapsed) {
      if (!RVK_MouseIn(X, Y, X + Width, Y + Height)) {
        Collapsed = true;
        // No button ran in this frame, so none can have fired in it.
        return -1;
      }
    } else {
      int tw = RVK_TextLength(Title.c_str()) + 2;
      if (!RVK_MouseIn(X, Y, X + tw, Y + th + 2)) {
        X = std::min(std::max(X, 0), SCREEN_W - tw - 1);
        Y = std::min(std::max(Y, 0), SCREEN_H - th - 3);
        RVK_DrawBevelBox(X, Y, X + tw, Y + th + 2, p.BevelLight, p.BevelDark, p.PanelFace, Alpha);
        RVK_Printf(X + 1, Y + 1, p.Black, "%s", Title.c_str());
        return -1;
      }
      Collapsed = false;
      X = HomeX;
      Y = HomeY;
    }
  }

  // One reading of the pointer for the whole step, so that a drag moves the
  // toolbar by exactly what DragX, DragY will be measured against next time.
  int mx = mouse_x, my = mouse_y, mb = mouse_b;
  if (mb == 0) RVK_ToolbarEdgeSlide(*this, mx, my, th, SCREEN_W, SCREEN_H);

  if (!Fixed) {
    if (mb == 0) Dragging = false;
    if (Dragging) {
      X += mx - DragX;
      Y += my - DragY;
      hint = HintPosition;
    }
    if (!In(mx, my, X + 1, Y + 1, X + Width - 1, Y + th + 2)) {
      // A pointer that outruns the strip loses the toolbar.
      Dragging = false;
    } else if (mb & 1) {
      Dragging = true;
      DragX = mx;
      DragY = my;
    } else {
      hint = HintDrag;
    }
  } else if (In(mx, my, X + 1, Y + 1, X + Width - 1, Y + th + 2) && (mb & 1)) {
    hint = HintFixed;
  }

  Layout();
  RVK_DrawWindowFrame(X, Y, X + Width - 1, Y + Height - 1, Alpha, "%s", Title.c_str());
  if (HasStatus)
    RVK_Printf(X + 2 + 36 * (int)Buttons.size(), Y + Height - th - 10, p.StatusText, "%s", Status.c_str());
  for (int i = (int)Buttons.size() - 1; i >= 0; i--) Buttons[i].Run();

  for (size_t i = 0; i < Buttons.size(); i++)
    if (Buttons[i].Pressed) return (int)i;
  switch (hint) {
    case HintDrag: RVK_ShowTooltip(mx + 15, Y + 15, "Drag"); break;
    case HintFixed: RVK_ShowTooltip(mx + 15, Y + 15, "This toolbar can not be dragged!"); break;
    case HintPosition: RVK_ShowTooltip(mx + 15, Y + 15, "%d, %d", X, Y); break;
    case HintNone: break;
  }
  return -1;
}
