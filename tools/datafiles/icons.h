// The button icons of the GUI library's datafile, drawn by code.
#pragma once
#include <string>
#include <vector>
#include "datwriter.h"

const int IconSize = 32;

struct IconPicture {
  std::string Name;
  RgbPicture Picture;
};

// Every icon the program names, 32x32, magenta where transparent.
std::vector<IconPicture> DrawIcons();
