// Feeds arbitrary bytes to the list box as the text viewer feeds it the
// readme: read from a file, wrapped to a width (the first byte) and fitted
// with scroll bars.
#include <allegro.h>
#include <sys/mman.h>
#include <unistd.h>
#include <cstdint>
#include <cstdio>
#include "rvk/core.h"
// Compiled into the harness so that libFuzzer sees the list's branches.
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
