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
  // Calls the display list of CurrentFrame, if it has one: the one rule by
  // which Draw and the character drawing pick a model's frame.
  void CallFrameList() const;

  // Number of names BuildLists reserved from ListBase, kept so that the
  // lists are deleted in the number reserved.
  GLsizei ListRange = 0;
};

// Frames compiled at most: each frame is two full copies of the mesh, so a
// longer animation is taken as a damaged file and gets no lists.
const int32_t MODEL_MAX_FRAMES = 65535;

// The box of a model and the shift that centres it on the origin.
struct ModelBox {
  float BoundsMin[3] = {0, 0, 0};
  float BoundsMax[3] = {0, 0, 0};
  float Size[3] = {0, 0, 0};
  float HalfSize[3] = {0, 0, 0};
  float CentreOffset[3] = {0, 0, 0};
};

// Moves the model so its bounding box is centred on the origin: every vertex
// and every root joint (the others move with their parents). No GL involved.
ModelBox CentreModel(msModel &model);

// The display list that shows a frame, counted from the first: lists 2k and
// 2k + 1 both hold frame k. -1 when none of the listCount lists does (a model
// without lists, or a frame that a damaged file made unusable).
int FrameList(float frame, int listCount);

// Milliseconds of a wall clock that measures elapsed time.
int32_t ModelClock();
