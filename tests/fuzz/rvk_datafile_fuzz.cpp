// Any bytes to the datafile check, and what it passes to Allegro's loader.
#include <allegro.h>
#include <sys/mman.h>
#include <unistd.h>
#include <cstdint>
#include <cstdio>
// Compiled in, so that libFuzzer sees its branches.
#include "rvk/datafile.cpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static int fd = -1;
  static char path[64];
  if (fd < 0) {
    install_allegro(SYSTEM_NONE, &errno, atexit);
    set_color_depth(32);
    fd = memfd_create("datafile", 0);
    std::snprintf(path, sizeof(path), "/proc/self/fd/%d", fd);
  }
  if (!RVK_DatafileProblem(data, size).empty()) return 0;
  if (ftruncate(fd, 0) != 0 || pwrite(fd, data, size, 0) != (ssize_t)size) return 0;
  if (DATAFILE *all = load_datafile(path)) unload_datafile(all);
  // By name, Allegro skips the objects before by their first size field.
  if (DATAFILE *one = load_datafile_object(path, "f")) unload_datafile_object(one);
  return 0;
}
