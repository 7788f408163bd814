// Fuzzes the reading of a catalogue: any bytes as the .ini file of the
// catalogue that the first byte picks give its count and, entry by entry, the
// files and keys that LoadGame reads, without fault. Models and pictures need
// a window here; they have harnesses of their own.
#include "character/catalogue.h"
// The file checks are compiled in so that the fuzzer sees their branches.
#include "rvk/filecheck.cpp"
#include "support/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 1) return 0;
  FuzzStartAllegro();
  const CatalogueInfo &info = CATALOGUES[data[0] % CATALOGUE_COUNT];
  RVK_SetConfigFile(FuzzFile(data + 1, size - 1, ".ini").c_str());
  const std::vector<CatalogueKey> keys = CatalogueKeys(info.Kind);
  // As in the game, the count is unsigned and the first entry without its
  // model ends the catalogue.
  for (unsigned int i = 0; i < (unsigned int)ReadCatalogueCount(); i++) {
    std::string section = CatalogueSection(info, i);
    const char *name = section.c_str();
    if (!get_config_string(name, keys[0].Name.c_str(), "")[0]) break;
    for (const CatalogueKey &key : keys) CataloguePath(info, name, key.Name.c_str());
    CharacterEntry body;
    PairPartEntry pair;
    SinglePartEntry single;
    HatEntry hat;
    if (info.Kind == ENTRY_CHARACTER) ReadEntryKeys(body, name);
    if (info.Kind == ENTRY_PAIR) ReadEntryKeys(pair, name);
    if (info.Kind == ENTRY_SINGLE) ReadEntryKeys(single, name);
    if (info.Kind == ENTRY_HAT) ReadEntryKeys(hat, name);
  }
  return 0;
}
