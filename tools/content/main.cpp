// make_content: writes the game's data directory (catalogues, models,
// textures, pictures and cues) under the directory given.
//
//   make_content <directory>     writes <directory>/data/...
#include <cstdio>
#include "tools/content/content.h"

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_content <directory>\n");
    return 2;
  }
  if (!WriteContent(argv[1])) {
    std::fprintf(stderr, "make_content: could not write everything under %s\n", argv[1]);
    return 1;
  }
  return 0;
}
