// The on-screen console: the game's running commentary near the lower left.
#pragma once
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

class ConsoleLineClass {
public:
  std::string Text;
  int32_t Colour = 0;
  int32_t Age = 0;
  int32_t LastSecond = 0;
};

extern std::vector<ConsoleLineClass> ConsoleLines;
extern int32_t ConsoleTop;
extern int32_t ConsoleLeft;
extern int32_t ConsoleMaxLines;
extern int32_t ConsoleLineLife;
extern int32_t ConsoleColour;
extern bool ConsoleVisible;
extern FILE *ConsoleLogFile;
extern bool ConsoleLogOn;

void RVK_Message(const char *format, ...) __attribute__((format(printf, 1, 2)));
void RVK_SetLastMessageColour(int colour);
void RVK_DrawConsole();
// Sets the console's values as RVK_Init does (lines are kept).
void RVK_InitConsole();

// The parts of the console that need no window, given the clock's second:
// appending a line (with the line limit), and one pass of ageing in which
// `draw` sees each line with its row before a line too old is removed.
void RVK_ConsoleAppend(const char *text, int second);
void RVK_ConsolePass(int second, const std::function<void(const ConsoleLineClass &, int)> &draw);
