// ModelClass: one msModel centred on its origin and compiled into display
// lists, one pair of lists per animation frame, drawn with one glCallList.
#pragma once
#include <GL/gl.h>
#include <cstdint>
#include <string>
#include "model/msmodel.h"

class ModelClass {
public:
  msModel *Model = nullptr;
  bool ModelAllocated = false;
  std::string Error;
  bool Loaded = false;
  int32_t LastClock = 0;
  float CurrentFrame = 0;
  bool Animated = false;
  float BoundsMin[3] = {0, 0, 0};
  float BoundsMax[3] = {0, 0, 0};
  float Size[3] = {0, 0, 0};
  float HalfSize[3] = {0, 0, 0};
  GLuint ListBase = 0;
  bool ListsValid = false;
  float CentreOffset[3] = {0, 0, 0};

  ModelClass();

  bool Load(const char *path);
  void Unload();
  void Draw(float x, float y, float z, float rx, float ry, float rz);
  void UpdateFrame();

  void Centre();
  void BuildLists();
  void Render();
  void SetupMaterial(int index);
  // Number of display lists BuildLists made (0 when there are none).
  int ListCount() const;
};

// Milliseconds of a wall clock that measures elapsed time.
int32_t ModelClock();
