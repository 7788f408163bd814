// checkdata [GAME-DIR]: checks the data directory as the game reads it and
// lists every problem at once, one line each, the file and the reason. The
// game stops at the first broken entry of a catalogue and drops the rest
// without a word; this tells a modder all of it. Exit status 0 when nothing
// is wrong, 1 otherwise.
#include <allegro.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "character/catalogue.h"
#include "model/modelclass.h"
#include "model/msmodel.h"
#include "rvk/filecheck.h"
#include "rvk/texture.h"

namespace {

int Problems = 0;

void Report(const std::string &file, const std::string &reason) {
  std::printf("%s: %s\n", file.c_str(), reason.c_str());
  Problems++;
}

// In the game a picture becomes a GL texture, and without a window there is
// no GL to make one. None is needed to know that it would work: AllegroGL
// makes a texture of any bitmap that Allegro reads (scaling sides that are no
// powers of two where the GL wants that), and the check keeps pictures within
// 4096 pixels on a side, which every GL of the last twenty years takes.
void CheckPicture(const std::string &path, const std::string &use) {
  BITMAP *bitmap = exists(path.c_str()) ? RVK_LoadBitmap(path.c_str()) : nullptr;
  if (bitmap) {
    destroy_bitmap(bitmap);
    return;
  }
  std::string why = exists(path.c_str()) ? RVK_CheckPictureFile(path.c_str()) : "missing";
  Report(path, (why.empty() ? "Allegro can't read it" : why) + use);
}

void CheckSound(const std::string &path) {
  SAMPLE *sample = exists(path.c_str()) ? RVK_LoadSample(path.c_str()) : nullptr;
  if (sample) {
    destroy_sample(sample);
    return;
  }
  std::string why = exists(path.c_str()) ? RVK_CheckSoundFile(path.c_str()) : "missing";
  Report(path, (why.empty() ? "Allegro can't read it" : why) + ": the cue stays silent");
}

// A part needs triangles to draw, and an animated one a frame count for which
// its display lists are made; its textures are pictures like any other.
void CheckModel(const std::string &path, const std::string &use) {
  msModel model;
  model.UploadTextures = false;
  if (!exists(path.c_str()) || !model.Load(path.c_str())) {
    Report(path, (exists(path.c_str()) ? "not a MilkShape 3D model that the game reads" : "missing") + use);
    return;
  }
  size_t drawn = 0;
  for (const msGroup &group : model.Groups) drawn += group.TriangleIndices.size();
  if (drawn == 0) Report(path, "has no triangles to draw" + use);
  if (!model.Joints.empty() && (model.TotalFrames < 1 || model.TotalFrames > MODEL_MAX_FRAMES))
    Report(path, "has " + std::to_string(model.TotalFrames) + " frames, so nothing of it is drawn" + use);
  for (const msMaterial &material : model.Materials) {
    if (!material.Texture[0]) continue;
    std::string texture = msTexturePath(path.c_str(), material.Texture);
    if (texture.empty()) Report(path, "the path of texture " + std::string(material.Texture) + " is too long" + use);
    if (!texture.empty()) CheckPicture(RVK_NativePath(texture.c_str()), " (texture of " + path + ")");
  }
}

bool IsNumber(const char *text, KeyKind kind) {
  char *end = nullptr;
  errno = 0;
  if (kind == KEY_FLOAT) std::strtod(text, &end);
  if (kind == KEY_INTEGER) std::strtol(text, &end, 10);
  while (end && *end == ' ') end++;
  return end && end != text && *end == '\0' && errno == 0;
}

// The keys of a section, or with none the sections (which Allegro names with
// their brackets; they are taken off).
std::vector<std::string> List(const char *section) {
  const char **names = nullptr;
  int count = section ? list_config_entries(section, &names) : list_config_sections(&names);
  std::vector<std::string> list(names, names + count);
  free_config_entries(&names);
  for (std::string &name : list)
    if (!section && name.size() >= 2) name = name.substr(1, name.size() - 2);
  return list;
}

bool Contains(const std::vector<std::string> &list, const std::string &name) {
  for (const std::string &item : list)
    if (item == name) return true;
  return false;
}

void CheckEntry(const CatalogueInfo &info, const std::string &file, const std::string &section) {
  const std::string where = "[" + section + "] ";
  std::vector<std::string> known;
  for (const CatalogueKey &key : CatalogueKeys(info.Kind)) {
    known.push_back(key.Name);
    const char *value = get_config_string(section.c_str(), key.Name.c_str(), nullptr);
    bool empty = !value || !value[0];
    std::string path = CataloguePath(info, section.c_str(), key.Name.c_str());
    std::string use = " (" + key.Name + " of " + where + "in " + file + ")";
    if (key.Kind == KEY_MODEL && empty) Report(file, where + "has no " + key.Name + ": the game stops reading here");
    if (key.Kind == KEY_MODEL && !empty) CheckModel(path, use);
    if (key.Kind == KEY_PICTURE && empty) Report(file, where + "has no " + key.Name + ": it gets no row in its bar");
    if (key.Kind == KEY_PICTURE && !empty) CheckPicture(path, use);
    if ((key.Kind == KEY_FLOAT || key.Kind == KEY_INTEGER) && value && !IsNumber(value, key.Kind))
      Report(file, where + key.Name + " is not a number: " + value);
  }
  for (const std::string &name : List(section.c_str()))
    if (!Contains(known, name)) Report(file, where + "has a key the game doesn't read: " + name);
}

void CheckCatalogue(const CatalogueInfo &info) {
  const std::string file = RVK_NativePath(info.File);
  std::string why = exists(file.c_str()) ? RVK_CheckConfigFile(file.c_str()) : "missing";
  if (!why.empty()) {
    Report(file, why);
    return;
  }
  set_config_file(file.c_str());
  const char *countText = get_config_string("info", "count", "");
  long count = IsNumber(countText, KEY_INTEGER) ? std::strtol(countText, nullptr, 10) : 0;
  if (count <= 0) Report(file, "[info] count must be a number above 0, not \"" + std::string(countText) + "\"");
  for (const std::string &name : List("info"))
    if (name != "count") Report(file, "[info] has a key the game doesn't read: " + name);

  const std::vector<std::string> sections = List(nullptr);
  unsigned int read = 0;
  for (; count <= 0 || read < (unsigned long)count; read++) {
    std::string section = CatalogueSection(info, read);
    if (!Contains(sections, section)) break;
    CheckEntry(info, file, section);
  }
  if (count > 0 && read < (unsigned long)count)
    Report(file, "[" + CatalogueSection(info, read) + "] is missing: the game stops reading here");
  for (const std::string &name : sections) {
    bool entry = false;
    for (unsigned int i = 0; i < read && !entry; i++) entry = name == CatalogueSection(info, i);
    if (!entry && name != "info") Report(file, "[" + name + "] is never read");
  }
}

}  // namespace

int main(int argc, char **argv) {
  if (argc > 2 || (argc == 2 && chdir(argv[1]) != 0)) {
    std::fprintf(stderr, "usage: checkdata [GAME-DIR]\n");
    return 2;
  }
  install_allegro(SYSTEM_NONE, &errno, atexit);
  // Pictures load at the depth of the game's window.
  set_color_depth(32);
  for (const char *picture : {MENU_BACK_PICTURE, NONE_PICTURE, CONNECTING_PICTURE})
    CheckPicture(RVK_NativePath(picture), "");
  for (const CatalogueInfo &info : CATALOGUES) {
    CheckCatalogue(info);
    CheckSound(RVK_NativePath(info.Cue));
  }
  if (Problems == 0) std::printf("No problems found.\n");
  return Problems == 0 ? 0 : 1;
}
