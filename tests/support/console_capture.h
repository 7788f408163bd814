// The console's lines, read back from its log.
#pragma once
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>
#include "rvk/console.h"

typedef std::vector<std::string> Texts;

// The console's lines from its log; Said() leaves out the cues' (sound is off).
class ConsoleCapture {
public:
  FILE *File = std::tmpfile();
  ConsoleCapture() { ConsoleLogFile = File, ConsoleLogOn = true; }
  ~ConsoleCapture() { ConsoleLogFile = nullptr, ConsoleLogOn = false, std::fclose(File); }
  Texts Lines(bool cues = true) {
    Texts lines;
    std::rewind(File);
    for (char b[2048]; std::fgets(b, sizeof b, File);) {
      std::string line = std::strchr(b + 20, ':') + 2;  // after "dd/mm/yyyy - hh:mm:ss: "
      line.pop_back();
      if (cues || line.rfind("Not playing", 0)) lines.push_back(line);
    }
    return lines;
  }
  Texts Said() { return Lines(false); }
  void Clear() { std::rewind(File), (void)!ftruncate(fileno(File), 0); }
};
