// Any bytes as a readme file in the list box, at a width from the first byte.
#include <allegro.h>
#include <sys/mman.h>
#include <unistd.h>
#include <cstdint>
#include <cstdio>
#include "rvk/core.h"
// Compiled in, so that libFuzzer sees its branches.
#include "rvk/listbox.cpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static int fd = -1;
  static char path[64];
  if (fd < 0) {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    RVK_FontStandard = font;
    fd = memfd_create("readme", 0);
    std::snprintf(path, sizeof(path), "/proc/self/fd/%d", fd);
  }
  if (size == 0 || ftruncate(fd, 0) != 0 || pwrite(fd, data + 1, size - 1, 0) != (ssize_t)(size - 1)) return 0;
  ListBoxClass list;
  list.Create(5, 40, data[0], 20);
  list.LoadFromTextFile(path);
  return 0;
}
