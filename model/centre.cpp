// Centring of a model on the origin, shared by ModelClass and the tools.
#include <algorithm>

#include "model/modelclass.h"

ModelBox CentreModel(msModel &model) {
  ModelBox box;
  // An empty model has no box: everything stays 0 and nothing moves.
  if (model.Vertices.empty()) return box;
  const msVertex &first = model.Vertices.front();
  for (int c = 0; c < 3; c++) {
    float lo = first.Position[c], hi = lo;
    for (const msVertex &v : model.Vertices) {
      lo = std::min(lo, v.Position[c]);
      hi = std::max(hi, v.Position[c]);
    }
    box.Size[c] = hi - lo;
    box.HalfSize[c] = box.Size[c] * 0.5f;
    box.CentreOffset[c] = -lo - box.HalfSize[c];
    box.BoundsMin[c] = lo + box.CentreOffset[c];
    box.BoundsMax[c] = hi + box.CentreOffset[c];
    for (msVertex &v : model.Vertices) v.Position[c] += box.CentreOffset[c];
  }
  // Only root joints move: the others are placed relative to their parents.
  for (msJoint &j : model.Joints) {
    if (model.FindJointByName(j.ParentName) != -1) continue;
    for (int c = 0; c < 3; c++) j.Position[c] += box.CentreOffset[c];
  }
  return box;
}
