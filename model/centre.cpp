// Centring of a model on the origin, shared by ModelClass and the tools.
#include "model/modelclass.h"

ModelBox CentreModel(msModel &model) {
  ModelBox box;
  // An empty model has no box: everything stays 0 and nothing moves.
  if (model.Vertices.empty()) return box;
  float lo[3], hi[3];
  for (int c = 0; c < 3; c++) lo[c] = hi[c] = model.Vertices[0].Position[c];
  for (const msVertex &v : model.Vertices) {
    for (int c = 0; c < 3; c++) {
      if (v.Position[c] < lo[c]) lo[c] = v.Position[c];
      if (v.Position[c] > hi[c]) hi[c] = v.Position[c];
    }
  }
  for (int c = 0; c < 3; c++) {
    box.Size[c] = hi[c] - lo[c];
    box.CentreOffset[c] = -lo[c] - box.Size[c] * 0.5f;
  }
  for (msVertex &v : model.Vertices) {
    for (int c = 0; c < 3; c++) v.Position[c] += box.CentreOffset[c];
  }
  for (msJoint &j : model.Joints) {
    if (model.FindJointByName(j.ParentName) != -1) continue;
    for (int c = 0; c < 3; c++) j.Position[c] += box.CentreOffset[c];
  }
  for (int c = 0; c < 3; c++) {
    box.BoundsMin[c] = lo[c] + box.CentreOffset[c];
    box.BoundsMax[c] = hi[c] + box.CentreOffset[c];
    box.HalfSize[c] = box.Size[c] * 0.5f;
  }
  return box;
}
