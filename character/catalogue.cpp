// The nine parts catalogues: LoadGame reads them from their .ini files with
// every model, thumbnail and picker-bar row, and the three backdrops and nine
// cues; UnloadGame releases all of it so that a reload starts from nothing.
#include "character/catalogue.h"
#include <allegro.h>
#include <string>
#include <vector>
#include "app/config.h"
#include "app/game.h"
#include "rvk/console.h"
#include "rvk/core.h"
#include "rvk/filecheck.h"
#include "rvk/texture.h"

const CatalogueInfo CATALOGUES[CATALOGUE_COUNT] = {
    {"data\\characters.ini", "character%d", "data\\characters\\", 128, nullptr,
     "No characters found in characters.ini", "Loaded %d characters", ENTRY_CHARACTER, "data\\sounds\\character.wav"},
    {"data\\eyes.ini", "eyes%d", "data\\eyes\\", 96, "No eyes", "No eyes found in eyes.ini", "Loaded %d eyes",
     ENTRY_PAIR, "data\\sounds\\eyes.wav"},
    {"data\\ears.ini", "ears%d", "data\\ears\\", 96, "No ears", "No ears found in ears.ini", "Loaded %d ears",
     ENTRY_PAIR, "data\\sounds\\ears.wav"},
    {"data\\noses.ini", "nose%d", "data\\noses\\", 96, "No nose", "No noses found in noses.ini",
     "Loaded %d noses", ENTRY_SINGLE, "data\\sounds\\nose.wav"},
    {"data\\mouths.ini", "mouth%d", "data\\mouths\\", 96, "No mouth", "No mouths found in mouths.ini",
     "Loaded %d mouths", ENTRY_SINGLE, "data\\sounds\\mouth.wav"},
    {"data\\eyebrows.ini", "eyebrows%d", "data\\eyebrows\\", 96, "No eyebrows",
     "No eyebrows found in eyebrows.ini", "Loaded %d eyebrows", ENTRY_PAIR, "data\\sounds\\eyebrows.wav"},
    {"data\\moustaches.ini", "moustache%d", "data\\moustaches\\", 96, "No moustache",
     "No moustaches found in moustaches.ini", "Loaded %d moustaches", ENTRY_SINGLE, "data\\sounds\\moustache.wav"},
    {"data\\feet.ini", "feet%d", "data\\feet\\", 96, "No feet", "No feet found in feet.ini", "Loaded %d feet",
     ENTRY_PAIR, "data\\sounds\\feet.wav"},
    {"data\\hats.ini", "hat%d", "data\\hats\\", 96, "No hat", "No hats found in hats.ini", "Loaded %d hats",
     ENTRY_HAT, "data\\sounds\\hat.wav"},
};

const char *const MENU_BACK_PICTURE = "data\\menuback.tga", *const NONE_PICTURE = "data\\none.tga",
                  *const CONNECTING_PICTURE = "data\\connecting.tga";

namespace {

const CatalogueInfo &CHARACTERS = CATALOGUES[0], &EYES = CATALOGUES[1], &EARS = CATALOGUES[2],
                    &NOSES = CATALOGUES[3], &MOUTHS = CATALOGUES[4], &EYEBROWS = CATALOGUES[5],
                    &MOUSTACHES = CATALOGUES[6], &FEET = CATALOGUES[7], &HATS = CATALOGUES[8];

const char *const MODEL_KEY = "model", *const LEFT_MODEL_KEY = "LeftModel", *const RIGHT_MODEL_KEY = "RightModel",
                  *const THUMB_KEY = "thumb", *const NAME_KEY = "name", *const SCALE_KEY = "scale";

// A body's points, each read as three keys: the prefix and "X", "Y", "Z".
// A fresh entry holds the defaults.
struct PointKey {
  const char *Prefix;
  float (CharacterEntry::*Point)[3];
};
const PointKey CHARACTER_POINTS[] = {
    {"Camera", &CharacterEntry::CameraPos},       {"Target", &CharacterEntry::TargetPos},
    {"LeftEye", &CharacterEntry::LeftEye},         {"RightEye", &CharacterEntry::RightEye},
    {"LeftEar", &CharacterEntry::LeftEar},         {"RightEar", &CharacterEntry::RightEar},
    {"Nose", &CharacterEntry::Nose},               {"Mouth", &CharacterEntry::Mouth},
    {"LeftEyebrow", &CharacterEntry::LeftEyebrow}, {"RightEyebrow", &CharacterEntry::RightEyebrow},
    {"Moustache", &CharacterEntry::Moustache},     {"LeftFoot", &CharacterEntry::LeftFoot},
    {"RightFoot", &CharacterEntry::RightFoot},     {"Hat", &CharacterEntry::Hat},
};
const char *const HAT_OFFSET = "Offset", *const HAT_BACKFACES = "backfaces";
const char *const AXES[3] = {"X", "Y", "Z"};

void ReadPoint(const char *section, const char *prefix, float (&point)[3]) {
  for (int i = 0; i < 3; i++) point[i] = get_config_float(section, (std::string(prefix) + AXES[i]).c_str(), point[i]);
}

void AddPointKeys(std::vector<CatalogueKey> &keys, const char *prefix) {
  for (const char *axis : AXES) keys.push_back({std::string(prefix) + axis, KEY_FLOAT});
}

bool LoadModel(ModelClass &model, const CatalogueInfo &info, const char *key, const char *section,
               std::string &error) {
  // An empty key names the directory itself, which the loader refuses.
  if (model.Load(CataloguePath(info, section, key).c_str())) return true;
  error = model.Error;
  // A failed Load keeps its msModel for a next Load that never comes: the
  // entry is dropped, so the msModel goes with it.
  if (model.ModelAllocated) delete model.Model;
  return false;
}

// ---- Models of each entry type ----

bool LoadModels(CharacterEntry &e, const CatalogueInfo &info, const char *section, std::string &error) {
  const char *name = get_config_string(section, MODEL_KEY, "");
  if (!name || !name[0]) {
    error = std::string("No model specified for ") + section;
    return false;
  }
  return LoadModel(e.Model, info, MODEL_KEY, section, error);
}

bool LoadModels(PairPartEntry &e, const CatalogueInfo &info, const char *section, std::string &error) {
  if (!LoadModel(e.LeftModel, info, LEFT_MODEL_KEY, section, error)) return false;
  if (!LoadModel(e.RightModel, info, RIGHT_MODEL_KEY, section, error)) {
    e.LeftModel.Unload();
    return false;
  }
  return true;
}

bool LoadModels(SinglePartEntry &e, const CatalogueInfo &info, const char *section, std::string &error) {
  return LoadModel(e.Model, info, MODEL_KEY, section, error);
}

bool LoadModels(HatEntry &e, const CatalogueInfo &info, const char *section, std::string &error) {
  return LoadModel(e.Model, info, MODEL_KEY, section, error);
}

// ---- Release ----

// A thumbnail that failed to load is a copy of the icon table's default icon;
// that texture belongs to the table and must outlive any reload.
void FreeThumbnail(TextureClass &thumbnail) {
  if (thumbnail.Loaded && thumbnail.TextureName == RVK_GetDefaultIcon().TextureName) return;
  thumbnail.Free();
}

void UnloadEntry(CharacterEntry &e) { e.Model.Unload(); FreeThumbnail(e.Thumbnail); }
void UnloadEntry(PairPartEntry &e) { e.LeftModel.Unload(); e.RightModel.Unload(); FreeThumbnail(e.Thumbnail); }
void UnloadEntry(SinglePartEntry &e) { e.Model.Unload(); FreeThumbnail(e.Thumbnail); }
void UnloadEntry(HatEntry &e) { e.Model.Unload(); FreeThumbnail(e.Thumbnail); }

template <class Entry> void UnloadCatalogue(std::vector<Entry> &entries) {
  for (Entry &e : entries) UnloadEntry(e);
  entries.clear();
}

// ---- One catalogue ----

// Answers whether the catalogue ended up with at least one entry.
template <class Entry>
bool LoadCatalogue(GameClass &game, std::vector<Entry> &entries, PickerBarClass &bar, const CatalogueInfo &info,
                   int background) {
  RVK_SetConfigFile(RVK_NativePath(info.File).c_str());
  int count = ReadCatalogueCount();
  // A missing file reads as a count of 0. The load ends there, and what it
  // has taken so far stays: the menu goes on showing its backdrop.
  if (count == 0) {
    game.LoadError = info.EmptyText;
    return false;
  }
  bar.Setup(text_height(RVK_FontStandard) + 48, SCREEN_H - 1, info.RowHeight);
  bar.BackgroundColour = background;
  if (info.NoneText) bar.Add(game.NoneTexture, info.NoneText);

  // A negative count is read as a huge unsigned one: the loop then ends at
  // the first section without its model, like any count beyond the file.
  const unsigned int total = (unsigned int)count;
  for (unsigned int i = 0; i < total; i++) {
    std::string name = CatalogueSection(info, i);
    const char *section = name.c_str();
    entries.push_back(Entry());
    Entry &e = entries.back();
    std::string error;
    if (!LoadModels(e, info, section, error)) {
      game.LoadError = error;
      entries.pop_back();
      break;
    }
    std::string thumb = CataloguePath(info, section, THUMB_KEY);
    if (!e.Thumbnail.Load(thumb.c_str(), true)) e.Thumbnail = RVK_GetDefaultIcon();
    ReadEntryKeys(e, section);
    bar.Add(e.Thumbnail, e.Name.c_str());
  }
  if (entries.empty()) {
    // Bodies come first: without one only the backdrops are taken, and they
    // stay. A later catalogue without entries releases everything.
    if (info.NoneText) UnloadGame(game);
    return false;
  }
  RVK_Message(info.LogText, (int)entries.size());
  return true;
}

bool LoadTexture(GameClass &game, TextureClass &texture, const char *file, bool keepBitmap) {
  std::string path = RVK_NativePath(file);
  if (texture.Load(path.c_str(), keepBitmap)) return true;
  game.LoadError = "Unable to load bitmap from " + path;
  return false;
}

SAMPLE *LoadCue(const char *file) { return RVK_LoadSample(RVK_NativePath(file).c_str()); }

void DestroyCue(SAMPLE *&sample) {
  if (sample) destroy_sample(sample);
  sample = nullptr;
}

// The cue of each catalogue, in their order.
SAMPLE *GameClass::*const CUES[CATALOGUE_COUNT] = {
    &GameClass::CharacterSample, &GameClass::EyesSample,      &GameClass::EarsSample,
    &GameClass::NoseSample,      &GameClass::MouthSample,     &GameClass::EyebrowsSample,
    &GameClass::MoustacheSample, &GameClass::FeetSample,      &GameClass::HatSample,
};

}  // namespace

// ---- Reading without loading ----

std::vector<CatalogueKey> CatalogueKeys(EntryKind kind) {
  std::vector<CatalogueKey> keys;
  if (kind == ENTRY_PAIR) {
    keys = {{LEFT_MODEL_KEY, KEY_MODEL}, {RIGHT_MODEL_KEY, KEY_MODEL}};
  } else {
    keys = {{MODEL_KEY, KEY_MODEL}};
  }
  keys.push_back({THUMB_KEY, KEY_PICTURE});
  keys.push_back({NAME_KEY, KEY_TEXT});
  if (kind == ENTRY_CHARACTER) {
    keys.push_back({SCALE_KEY, KEY_FLOAT});
    for (const PointKey &p : CHARACTER_POINTS) AddPointKeys(keys, p.Prefix);
  } else if (kind == ENTRY_HAT) {
    AddPointKeys(keys, HAT_OFFSET);
    keys.push_back({HAT_BACKFACES, KEY_INTEGER});
  }
  return keys;
}

int ReadCatalogueCount() { return get_config_int("info", "count", 0); }

std::string CatalogueSection(const CatalogueInfo &info, unsigned int i) {
  char section[64];
  snprintf(section, sizeof section, info.Section, i);
  return section;
}

// Files are named as the catalogues write them, with backslashes, and opened
// by the native form; messages show the path as it was opened.
std::string CataloguePath(const CatalogueInfo &info, const char *section, const char *key) {
  return RVK_NativePath((std::string(info.Directory) + get_config_string(section, key, "")).c_str());
}

void ReadEntryKeys(CharacterEntry &e, const char *section) {
  e.Name = get_config_string(section, NAME_KEY, "(no name)");
  e.Scale = get_config_float(section, SCALE_KEY, e.Scale);
  for (const PointKey &p : CHARACTER_POINTS) ReadPoint(section, p.Prefix, e.*p.Point);
}

void ReadEntryKeys(HatEntry &e, const char *section) {
  e.Name = get_config_string(section, NAME_KEY, "");
  ReadPoint(section, HAT_OFFSET, e.Offset);
  e.BackFaces = get_config_int(section, HAT_BACKFACES, 0) != 0;
}

void ReadEntryKeys(PairPartEntry &e, const char *section) { e.Name = get_config_string(section, NAME_KEY, ""); }
void ReadEntryKeys(SinglePartEntry &e, const char *section) { e.Name = get_config_string(section, NAME_KEY, ""); }

bool LoadGame(GameClass &game) {
  if (!LoadTexture(game, game.MenuBackTexture, MENU_BACK_PICTURE, false)) return false;
  if (!LoadTexture(game, game.NoneTexture, NONE_PICTURE, true)) {
    game.MenuBackTexture.Free();
    return false;
  }
  if (!LoadTexture(game, game.ConnectingTexture, CONNECTING_PICTURE, false)) {
    game.MenuBackTexture.Free();
    game.NoneTexture.Free();
    return false;
  }

  const int grey = makecol(151, 151, 151);
  const int blue = makecol(51, 127, 178);
  bool ok = LoadCatalogue(game, game.Characters, game.CharacterBar, CHARACTERS, grey) &&
            LoadCatalogue(game, game.Eyes, game.EyesBar, EYES, blue) &&
            LoadCatalogue(game, game.Ears, game.EarsBar, EARS, blue) &&
            LoadCatalogue(game, game.Noses, game.NoseBar, NOSES, blue) &&
            LoadCatalogue(game, game.Mouths, game.MouthBar, MOUTHS, blue) &&
            LoadCatalogue(game, game.Eyebrows, game.EyebrowsBar, EYEBROWS, blue) &&
            LoadCatalogue(game, game.Moustaches, game.MoustacheBar, MOUSTACHES, blue) &&
            LoadCatalogue(game, game.Feet, game.FeetBar, FEET, blue) &&
            LoadCatalogue(game, game.Hats, game.HatBar, HATS, blue);
  if (!ok) return false;

  // A cue that can't be read stays null; playing it says so on the console.
  if (SoundOn)
    for (int i = 0; i < CATALOGUE_COUNT; i++) game.*CUES[i] = LoadCue(CATALOGUES[i].Cue);
  return true;
}

bool CataloguesLoaded(const GameClass &game) {
  const size_t sizes[CATALOGUE_COUNT] = {game.Characters.size(), game.Eyes.size(),     game.Ears.size(),
                                         game.Noses.size(),      game.Mouths.size(),   game.Eyebrows.size(),
                                         game.Moustaches.size(), game.Feet.size(),     game.Hats.size()};
  for (size_t size : sizes)
    if (size == 0) return false;
  return true;
}

void UnloadGame(GameClass &game) {
  game.CharacterBar.Free();
  game.EyesBar.Free();
  game.EarsBar.Free();
  game.NoseBar.Free();
  game.MouthBar.Free();
  game.EyebrowsBar.Free();
  game.MoustacheBar.Free();
  game.FeetBar.Free();
  game.HatBar.Free();
  game.MenuBackTexture.Free();
  game.NoneTexture.Free();
  game.ConnectingTexture.Free();
  UnloadCatalogue(game.Characters);
  UnloadCatalogue(game.Eyes);
  UnloadCatalogue(game.Ears);
  UnloadCatalogue(game.Noses);
  UnloadCatalogue(game.Mouths);
  UnloadCatalogue(game.Eyebrows);
  UnloadCatalogue(game.Moustaches);
  UnloadCatalogue(game.Feet);
  UnloadCatalogue(game.Hats);
  if (SoundOn)
    for (SAMPLE *GameClass::*cue : CUES) DestroyCue(game.*cue);
}
