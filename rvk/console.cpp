// The on-screen console: lines of the game's reports near the lower left,
// each leaving by age, with a bracket down the left edge.
#include "rvk/console.h"
#include <allegro.h>
#include <cstdarg>
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/timer.h"

// The settings take their values in RVK_Init; the console shows nothing
// before it.
std::vector<ConsoleLineClass> ConsoleLines;
int32_t ConsoleTop;
int32_t ConsoleLeft;
int32_t ConsoleMaxLines;
int32_t ConsoleLineLife;
int32_t ConsoleColour;
bool ConsoleVisible;
FILE *ConsoleLogFile;
bool ConsoleLogOn;

static int CurrentSecond() {
  TimeStampClass now;
  RVK_GetTimeStamp(now);
  return now.Second;
}

void RVK_InitConsole() {
  // The message log stays as it is: it has no opening call, and a stream set
  // by the application before start-up would otherwise be lost.
  ConsoleMaxLines = 10;
  ConsoleLeft = 3;
  ConsoleTop = SCREEN_H - ConsoleMaxLines * RVK_TextHeight() - 60;
  ConsoleColour = RVK_Palette.White;
  ConsoleLineLife = 12;
  ConsoleVisible = true;
}

void RVK_ConsoleAppend(const char *text, int second) {
  ConsoleLineClass line;
  line.Text = text;
  line.Colour = ConsoleColour;
  line.Age = 0;
  line.LastSecond = second;
  ConsoleLines.push_back(line);
  if ((int32_t)ConsoleLines.size() >= ConsoleMaxLines) ConsoleLines.erase(ConsoleLines.begin());
}

void RVK_ConsolePass(int second, const std::function<void(const ConsoleLineClass &, int)> &draw) {
  size_t i = 0;
  while (i < ConsoleLines.size()) {
    ConsoleLineClass &line = ConsoleLines[i];
    if (line.LastSecond != second) {
      line.Age++;
      line.LastSecond = second;
    }
    if (draw) draw(line, (int)i);
    if (line.Age > ConsoleLineLife) {
      // The next line takes this index and is handled in this same pass.
      ConsoleLines.erase(ConsoleLines.begin() + i);
      continue;
    }
    i++;
  }
}

void RVK_Message(const char *format, ...) {
  if (format == nullptr) return;
  char text[1024];
  RVK_FORMAT(text, format);
  if (ConsoleLogOn && ConsoleLogFile != nullptr) {
    TimeStampClass now;
    RVK_GetTimeStamp(now);
    std::fprintf(ConsoleLogFile, "%02d/%02d/%02d - %02d:%02d:%02d: %s\n", now.Day, now.Month, now.Year, now.Hour,
                 now.Minute, now.Second, text);
    std::fflush(ConsoleLogFile);
  }
  if (RVK_IsStarted() && format[0] != 0) RVK_ConsoleAppend(text, CurrentSecond());
}

void RVK_SetLastMessageColour(int colour) {
  if (!ConsoleLines.empty()) ConsoleLines.back().Colour = colour;
}

void RVK_DrawConsole() {
  int h = RVK_TextHeight();
  RVK_ConsolePass(CurrentSecond(), [h](const ConsoleLineClass &line, int row) {
    if (ConsoleVisible) RVK_Printf(ConsoleLeft, ConsoleTop + row * h, line.Colour, "%s", line.Text.c_str());
  });
  if (ConsoleLines.empty() || !ConsoleVisible) return;
  int top = ConsoleTop;
  int bottom = ConsoleTop + (int)ConsoleLines.size() * h;
  RVK_DrawLine(1, top, 1, bottom, ConsoleColour, RVK_Opaque);
  RVK_DrawLine(1, top, 3, top, ConsoleColour, RVK_Opaque);
  RVK_DrawLine(1, bottom, 3, bottom, ConsoleColour, RVK_Opaque);
}
