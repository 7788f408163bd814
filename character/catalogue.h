// The nine parts catalogues: entry types, LoadGame and UnloadGame.
#pragma once
#include <string>
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

class GameClass;
bool LoadGame(GameClass &game);
void UnloadGame(GameClass &game);
// True when every catalogue holds an entry, as after a LoadGame that succeeded.
bool CataloguesLoaded(const GameClass &game);
