// Fuzzes what the program hands to Allegro's picture loader: any bytes named
// as a TGA file are refused by the check or load into a bitmap, without a
// fault, a hang or an allocation beyond what the picture holds.
// The file checks are compiled in so that the fuzzer sees their branches.
#include "rvk/filecheck.cpp"
#include "support/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  FuzzStartAllegro();
  BITMAP *bitmap = RVK_LoadBitmap(FuzzFile(data, size, ".tga").c_str());
  if (bitmap) destroy_bitmap(bitmap);
  return 0;
}
