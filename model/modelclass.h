// ModelClass: one msModel centred on its origin and compiled into display
// lists, one pair of lists per animation frame, drawn with one glCallList.
#pragma once
#include <GL/gl.h>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>
#include "model/msmodel.h"

// How the frame lists of an animated model draw one group: compiled into
// every frame, or from a list shared by all frames, called as it is (a run of
// still groups, which the run's first group holds) or under the motion of
// the one joint that carries the group whole.
struct GroupShare {
  int Joint = -1;       // GROUP_STILL, GROUP_SKINNED or the joint's index
  int List = -1;        // number of the shared list, -1 when there is none
  size_t Last = 0;      // the groups from this one up to Last are in its list
  bool InRun = false;   // in the list of an earlier still group
};
const int GROUP_STILL = -1;
const int GROUP_SKINNED = -2;

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
  // Calls the display list of CurrentFrame, if it has one: the one rule by
  // which Draw and the character drawing pick a model's frame.
  void CallFrameList() const;

  // The whole model as Render issues it in the current pose, with the groups
  // that have a shared list drawn from it; those lists are numbered from
  // sharedLists.
  void RenderFrame(const std::vector<GroupShare> &shares, GLuint sharedLists);
  // One group: its material, then its triangles in the current pose.
  void RenderGroup(const msGroup &group);

  // Number of names BuildLists reserved from ListBase, kept so that the
  // lists are deleted in the number reserved: the frame lists, then the
  // shared lists of an animated model.
  GLsizei ListRange = 0;
  GLsizei FrameLists = 0;
};

// GROUP_STILL when skinning leaves every corner of the group as stored, the
// index of the joint when one joint alone carries every corner with all the
// weight, else GROUP_SKINNED.
int GroupJoint(const msModel &model, const msGroup &group);
// How every group of a model is drawn in its frame lists.
std::vector<GroupShare> ShareGroups(const msModel &model);
// The joint's motion from the bind pose to its current pose, as a GL matrix.
void JointMotion(const msJoint &joint, float matrix[16]);

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
