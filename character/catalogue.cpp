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
#include "rvk/texture.h"

namespace {

// One catalogue's file, its section names, directory and texts.
struct CatalogueInfo {
  const char *File;
  const char *Section;  // printf format with the running number
  const char *Directory;
  int RowHeight;
  const char *NoneText;  // caption of row 0, null for the bodies (no such row)
  const char *EmptyText;
  const char *LogText;
};

const CatalogueInfo CHARACTERS = {"data\\characters.ini", "character%d", "data\\characters\\", 128, nullptr,
                                  "No characters found in characters.ini", "Loaded %d characters"};
const CatalogueInfo EYES = {"data\\eyes.ini", "eyes%d", "data\\eyes\\", 96, "No eyes", "No eyes found in eyes.ini",
                            "Loaded %d eyes"};
const CatalogueInfo EARS = {"data\\ears.ini", "ears%d", "data\\ears\\", 96, "No ears", "No ears found in ears.ini",
                            "Loaded %d ears"};
const CatalogueInfo NOSES = {"data\\noses.ini", "nose%d", "data\\noses\\", 96, "No nose",
                             "No noses found in noses.ini", "Loaded %d noses"};
const CatalogueInfo MOUTHS = {"data\\mouths.ini", "mouth%d", "data\\mouths\\", 96, "No mouth",
                              "No mouths found in mouths.ini", "Loaded %d mouths"};
const CatalogueInfo EYEBROWS = {"data\\eyebrows.ini", "eyebrows%d", "data\\eyebrows\\", 96, "No eyebrows",
                                "No eyebrows found in eyebrows.ini", "Loaded %d eyebrows"};
const CatalogueInfo MOUSTACHES = {"data\\moustaches.ini", "moustache%d", "data\\moustaches\\", 96, "No moustache",
                                  "No moustaches found in moustaches.ini", "Loaded %d moustaches"};
const CatalogueInfo FEET = {"data\\feet.ini", "feet%d", "data\\feet\\", 96, "No feet", "No feet found in feet.ini",
                            "Loaded %d feet"};
const CatalogueInfo HATS = {"data\\hats.ini", "hat%d", "data\\hats\\", 96, "No hat", "No hats found in hats.ini",
                            "Loaded %d hats"};

// Files are named as the catalogues write them, with backslashes, and opened
// by the native form; messages show the path as it was opened.
std::string DataPath(const char *directory, const char *name) {
  return RVK_NativePath((std::string(directory) + (name ? name : "")).c_str());
}

bool LoadModel(ModelClass &model, const CatalogueInfo &info, const char *key, const char *section,
               std::string &error) {
  std::string path = DataPath(info.Directory, get_config_string(section, key, ""));
  // An empty key names the directory itself. A directory opens like a file
  // on some systems and then reports an absurd size, so it is refused here
  // with the text the model loader gives for any file it can't read.
  int attributes = 0;
  if (file_exists(path.c_str(), FA_ALL, &attributes) && (attributes & FA_DIREC)) {
    model.Error = "Unable to load model from " + path;
    error = model.Error;
    return false;
  }
  if (model.Load(path.c_str())) return true;
  error = model.Error;
  // A failed Load keeps its msModel for a next Load that never comes: the
  // entry is dropped, so the msModel goes with it.
  if (model.ModelAllocated) delete model.Model;
  return false;
}

// ---- Models of each entry type ----

bool LoadModels(CharacterEntry &e, const CatalogueInfo &info, const char *section, std::string &error) {
  const char *name = get_config_string(section, "model", "");
  if (!name || !name[0]) {
    error = std::string("No model specified for ") + section;
    return false;
  }
  return LoadModel(e.Model, info, "model", section, error);
}

bool LoadModels(PairPartEntry &e, const CatalogueInfo &info, const char *section, std::string &error) {
  if (!LoadModel(e.LeftModel, info, "LeftModel", section, error)) return false;
  if (!LoadModel(e.RightModel, info, "RightModel", section, error)) {
    e.LeftModel.Unload();
    return false;
  }
  return true;
}

bool LoadModels(SinglePartEntry &e, const CatalogueInfo &info, const char *section, std::string &error) {
  return LoadModel(e.Model, info, "model", section, error);
}

bool LoadModels(HatEntry &e, const CatalogueInfo &info, const char *section, std::string &error) {
  return LoadModel(e.Model, info, "model", section, error);
}

// ---- Keys beyond models, thumbnail and name ----

// Every coordinate defaults to 0 but a camera's Z.
void ReadPoint(const char *section, const std::string &prefix, float *point, float zDefault = 0) {
  point[0] = get_config_float(section, (prefix + "X").c_str(), 0);
  point[1] = get_config_float(section, (prefix + "Y").c_str(), 0);
  point[2] = get_config_float(section, (prefix + "Z").c_str(), zDefault);
}

void ReadKeys(CharacterEntry &e, const char *section) {
  e.Scale = get_config_float(section, "scale", 1.0f);
  ReadPoint(section, "Camera", e.CameraPos, -500.0f);
  ReadPoint(section, "Target", e.TargetPos);
  ReadPoint(section, "LeftEye", e.LeftEye);
  ReadPoint(section, "RightEye", e.RightEye);
  ReadPoint(section, "LeftEar", e.LeftEar);
  ReadPoint(section, "RightEar", e.RightEar);
  ReadPoint(section, "Nose", e.Nose);
  ReadPoint(section, "Mouth", e.Mouth);
  ReadPoint(section, "LeftEyebrow", e.LeftEyebrow);
  ReadPoint(section, "RightEyebrow", e.RightEyebrow);
  ReadPoint(section, "Moustache", e.Moustache);
  ReadPoint(section, "LeftFoot", e.LeftFoot);
  ReadPoint(section, "RightFoot", e.RightFoot);
  ReadPoint(section, "Hat", e.Hat);
}

void ReadKeys(HatEntry &e, const char *section) {
  ReadPoint(section, "Offset", e.Offset);
  e.BackFaces = get_config_int(section, "backfaces", 0) != 0;
}

void ReadKeys(PairPartEntry &, const char *) {}
void ReadKeys(SinglePartEntry &, const char *) {}

const char *DefaultName(const CharacterEntry &) { return "(no name)"; }
template <class Entry> const char *DefaultName(const Entry &) { return ""; }

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
  for (size_t i = 0; i < entries.size(); i++) UnloadEntry(entries[i]);
  entries.clear();
}

// ---- One catalogue ----

// Answers whether the catalogue ended up with at least one entry.
template <class Entry>
bool LoadCatalogue(GameClass &game, std::vector<Entry> &entries, PickerBarClass &bar, const CatalogueInfo &info,
                   int background) {
  set_config_file(RVK_NativePath(info.File).c_str());
  int count = get_config_int("info", "count", 0);
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
    char section[64];
    snprintf(section, sizeof section, info.Section, i);
    entries.push_back(Entry());
    Entry &e = entries.back();
    std::string error;
    if (!LoadModels(e, info, section, error)) {
      game.LoadError = error;
      entries.pop_back();
      break;
    }
    std::string thumb = DataPath(info.Directory, get_config_string(section, "thumb", ""));
    if (!e.Thumbnail.Load(thumb.c_str(), true)) e.Thumbnail = RVK_GetDefaultIcon();
    e.Name = get_config_string(section, "name", DefaultName(e));
    ReadKeys(e, section);
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

SAMPLE *LoadCue(const char *file) { return load_wav(RVK_NativePath(file).c_str()); }

void DestroyCue(SAMPLE *&sample) {
  if (sample) destroy_sample(sample);
  sample = nullptr;
}

}  // namespace

bool LoadGame(GameClass &game) {
  if (!LoadTexture(game, game.MenuBackTexture, "data\\menuback.tga", false)) return false;
  if (!LoadTexture(game, game.NoneTexture, "data\\none.tga", true)) {
    game.MenuBackTexture.Free();
    return false;
  }
  if (!LoadTexture(game, game.ConnectingTexture, "data\\connecting.tga", false)) {
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

  if (SoundOn) {
    // A cue that can't be read stays null; playing it says so on the console.
    game.CharacterSample = LoadCue("data\\sounds\\character.wav");
    game.EyesSample = LoadCue("data\\sounds\\eyes.wav");
    game.EarsSample = LoadCue("data\\sounds\\ears.wav");
    game.NoseSample = LoadCue("data\\sounds\\nose.wav");
    game.MouthSample = LoadCue("data\\sounds\\mouth.wav");
    game.EyebrowsSample = LoadCue("data\\sounds\\eyebrows.wav");
    game.MoustacheSample = LoadCue("data\\sounds\\moustache.wav");
    game.FeetSample = LoadCue("data\\sounds\\feet.wav");
    game.HatSample = LoadCue("data\\sounds\\hat.wav");
  }
  return true;
}

bool CataloguesLoaded(const GameClass &game) {
  const size_t sizes[9] = {game.Characters.size(), game.Eyes.size(),     game.Ears.size(),
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
  if (SoundOn) {
    DestroyCue(game.CharacterSample);
    DestroyCue(game.EyesSample);
    DestroyCue(game.EarsSample);
    DestroyCue(game.NoseSample);
    DestroyCue(game.MouthSample);
    DestroyCue(game.EyebrowsSample);
    DestroyCue(game.MoustacheSample);
    DestroyCue(game.FeetSample);
    DestroyCue(game.HatSample);
  }
}
