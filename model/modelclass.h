// ModelClass: one msModel centred on its origin and compiled into display
// lists, one pair of lists per animation frame, drawn with one glCallList.
#pragma once
#include <GL/gl.h>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>
#include "model/msmodel.h"

// Groups First up to but not including Last, in file order.
struct GroupRun {
  size_t First = 0;
  size_t Last = 0;
};

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
  // Number of lists a frame can draw, from ListBase on: two per animation
  // frame, or the one of a model without joints (0 when there are none).
  int ListCount() const;

  // The whole model as Render issues it, with each run of still groups
  // replaced by a call of its list, the runs' lists numbered from runLists.
  void RenderFrame(const std::vector<GroupRun> &runs, GLuint runLists);
  // One group: its material, then its triangles in the current pose.
  void RenderGroup(const msGroup &group);

  // Number of names BuildLists reserved from ListBase, kept so that the
  // lists are deleted in the number reserved: the frame lists, then one list
  // for each run of still groups of an animated model.
  GLsizei ListRange = 0;
  GLsizei FrameLists = 0;
};

// A group is still when no corner of it is bound to a joint: skinning leaves
// it as stored at every frame.
bool GroupIsStill(const msModel &model, const msGroup &group);
// The runs of consecutive still groups of a model, in file order.
std::vector<GroupRun> StillRuns(const msModel &model);

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

// Milliseconds of a wall clock that measures elapsed time.
int32_t ModelClock();
