// Fuzzes the reading of a catalogue: any bytes as a catalogue's .ini file give
// its count and, entry by entry, the files and keys that LoadGame reads,
// without fault. The first byte picks the catalogue. Models and pictures are
// not loaded: they need a window here, and have harnesses of their own.
#include "character/catalogue.h"
// The file checks are compiled in so that the fuzzer sees their branches.
#include "rvk/filecheck.cpp"
#include "support/fuzz_file.h"

template <class Entry> void ReadEntry(const char *section) {
  Entry entry;
  ReadEntryKeys(entry, section);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 1) return 0;
  FuzzStartAllegro();
  const CatalogueInfo &info = CATALOGUES[data[0] % CATALOGUE_COUNT];
  RVK_SetConfigFile(FuzzFile(data + 1, size - 1, ".ini").c_str());
  const std::vector<CatalogueKey> keys = CatalogueKeys(info.Kind);
  // As in the game, a count read as unsigned ends at the first entry that
  // names no model.
  for (unsigned int i = 0; i < (unsigned int)ReadCatalogueCount(); i++) {
    std::string section = CatalogueSection(info, i);
    if (!get_config_string(section.c_str(), keys[0].Name.c_str(), "")[0]) break;
    for (const CatalogueKey &key : keys)
      if (key.Kind == KEY_MODEL || key.Kind == KEY_PICTURE) CataloguePath(info, section.c_str(), key.Name.c_str());
    if (info.Kind == ENTRY_CHARACTER) ReadEntry<CharacterEntry>(section.c_str());
    if (info.Kind == ENTRY_PAIR) ReadEntry<PairPartEntry>(section.c_str());
    if (info.Kind == ENTRY_SINGLE) ReadEntry<SinglePartEntry>(section.c_str());
    if (info.Kind == ENTRY_HAT) ReadEntry<HatEntry>(section.c_str());
  }
  return 0;
}
