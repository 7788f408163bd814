// The nine parts catalogues: entry types, the catalogues' tables, LoadGame
// and UnloadGame.
#pragma once
#include <string>
#include <vector>
#include "model/modelclass.h"
#include "rvk/texture.h"

class CharacterEntry {
public:
  ModelClass Model;
  std::string Name;
  TextureClass Thumbnail;
  float Scale = 1.0f;
  float CameraPos[3] = {0, 0, -500};
  float TargetPos[3] = {0, 0, 0};
  float LeftEye[3] = {0, 0, 0}, RightEye[3] = {0, 0, 0};
  float LeftEar[3] = {0, 0, 0}, RightEar[3] = {0, 0, 0};
  float Nose[3] = {0, 0, 0};
  float Mouth[3] = {0, 0, 0};
  float LeftEyebrow[3] = {0, 0, 0}, RightEyebrow[3] = {0, 0, 0};
  float Moustache[3] = {0, 0, 0};
  float LeftFoot[3] = {0, 0, 0}, RightFoot[3] = {0, 0, 0};
  float Hat[3] = {0, 0, 0};
};

class PairPartEntry {
public:
  ModelClass LeftModel;
  ModelClass RightModel;
  std::string Name;
  TextureClass Thumbnail;
};

class SinglePartEntry {
public:
  ModelClass Model;
  std::string Name;
  TextureClass Thumbnail;
};

class HatEntry {
public:
  ModelClass Model;
  std::string Name;
  TextureClass Thumbnail;
  float Offset[3] = {0, 0, 0};
  bool BackFaces = false;
};

// ---- The catalogues' tables and the reading of an entry's keys ----
// These need no window: the data checker reads catalogues with them.

enum EntryKind { ENTRY_CHARACTER, ENTRY_PAIR, ENTRY_SINGLE, ENTRY_HAT };

// One catalogue's file, its section names, directory and texts.
struct CatalogueInfo {
  const char *File;
  const char *Section;  // printf format with the running number
  const char *Directory;
  int RowHeight;
  const char *NoneText;  // caption of row 0, null for the bodies (no such row)
  const char *EmptyText;
  const char *LogText;
  EntryKind Kind;
  const char *Cue;  // the sound of a change of this part
};

// The nine, in load order.
const int CATALOGUE_COUNT = 9;
extern const CatalogueInfo CATALOGUES[CATALOGUE_COUNT];

// The front end's pictures.
extern const char *const MENU_BACK_PICTURE, *const NONE_PICTURE, *const CONNECTING_PICTURE;

enum KeyKind { KEY_MODEL, KEY_PICTURE, KEY_TEXT, KEY_FLOAT, KEY_INTEGER };
class CatalogueKey {
public:
  std::string Name;
  KeyKind Kind;
};
// Every key an entry of this kind reads: its model files first, then "thumb",
// "name" and the rest.
std::vector<CatalogueKey> CatalogueKeys(EntryKind kind);

// From the current configuration file: "count" of section "info", the name
// of section i, and the paths that an entry's file keys name.
int ReadCatalogueCount();
std::string CatalogueSection(const CatalogueInfo &info, unsigned int i);
std::string CataloguePath(const CatalogueInfo &info, const char *section, const char *key);

// The caption and the keys beyond files, into a fresh entry.
void ReadEntryKeys(CharacterEntry &e, const char *section);
void ReadEntryKeys(PairPartEntry &e, const char *section);
void ReadEntryKeys(SinglePartEntry &e, const char *section);
void ReadEntryKeys(HatEntry &e, const char *section);

class GameClass;
bool LoadGame(GameClass &game);
void UnloadGame(GameClass &game);
// True when every catalogue holds an entry, as after a LoadGame that succeeded.
bool CataloguesLoaded(const GameClass &game);
