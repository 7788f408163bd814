// Fuzzes what the program hands to Allegro's WAV loader: any bytes are refused
// by the check or load into a sample, without a fault, a hang or an
// allocation beyond what the file holds.
// The file checks are compiled in so that the fuzzer sees their branches.
#include "rvk/filecheck.cpp"
#include "support/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  FuzzStartAllegro();
  SAMPLE *sample = RVK_LoadSample(FuzzFile(data, size, ".wav").c_str());
  if (sample) destroy_sample(sample);
  return 0;
}
