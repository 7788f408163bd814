// ModelClass: loads one model, centres it, compiles it into display lists
// (two per animation frame) and draws it with one glCallList. The lists of an
// animated model share what doesn't change shape: the groups that no joint
// moves, and those that one joint carries whole, are compiled once and called
// by every frame, and the second list of a frame calls the first.
#include "model/modelclass.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace {

// Rotations count 256 steps to the turn.
const float DEGREES_PER_STEP = 360.0f / 256.0f;

}  // namespace

int32_t ModelClock() {
  // Counted from the first reading, so the 32-bit value lasts for weeks.
  static const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
  auto elapsed = std::chrono::steady_clock::now() - start;
  return static_cast<int32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count());
}

ModelClass::ModelClass() { LastClock = ModelClock(); }

bool ModelClass::Load(const char *path) {
  if (Loaded) Unload();
  if (!ModelAllocated) {
    Model = new msModel();
    ModelAllocated = true;
  }
  if (!Model->Load(path)) {
    Error = std::string("Unable to load model from ") + path;
    return false;
  }
  Centre();
  // BuildLists poses the model for each list it compiles.
  Animated = !Model->Joints.empty();
  Model->SetupJoints();
  BuildLists();
  Loaded = true;
  return true;
}

void ModelClass::Unload() {
  if (!Loaded) return;
  if (ListsValid) {
    glDeleteLists(ListBase, ListRange);
    ListsValid = false;
  }
  Loaded = false;
  if (ModelAllocated) {
    Model->Clear();
    delete Model;
    Model = nullptr;
    ModelAllocated = false;
  }
}

void ModelClass::Centre() {
  ModelBox box = CentreModel(*Model);
  for (int c = 0; c < 3; c++) {
    BoundsMin[c] = box.BoundsMin[c];
    BoundsMax[c] = box.BoundsMax[c];
    Size[c] = box.Size[c];
    HalfSize[c] = box.HalfSize[c];
    CentreOffset[c] = box.CentreOffset[c];
  }
}

void ModelClass::BuildLists() {
  if (ListsValid) {
    glDeleteLists(ListBase, ListRange);
    ListsValid = false;
  }
  ListRange = 0;
  FrameLists = 0;
  if (Model->Joints.empty()) {
    ListBase = glGenLists(1);
    if (ListBase == 0) return;
    ListRange = FrameLists = 1;
    glNewList(ListBase, GL_COMPILE);
    Model->SetFrame(-1.0f);
    CurrentFrame = 0;
    Render();
    glEndList();
    ListsValid = true;
    return;
  }

  int32_t frames = Model->TotalFrames;
  if (frames > 0 && frames <= MODEL_MAX_FRAMES) {
    const std::vector<GroupShare> shares = ShareGroups(*Model);
    GLsizei shared = 0;
    for (const GroupShare &share : shares) shared = std::max(shared, static_cast<GLsizei>(share.List + 1));
    const GLsizei frameLists = 2 * frames;
    ListBase = glGenLists(frameLists + shared);
    if (ListBase != 0) {
      ListRange = frameLists + shared;
      FrameLists = frameLists;
      // What doesn't change shape is compiled once, in the bind pose, into
      // lists behind the frame lists, and every frame calls it in its place:
      // a run of still groups as it is, a group that one joint carries
      // whole under that joint's motion of the frame. The picture is the
      // same; the copies of the mesh are not.
      Model->SetFrame(-1.0f);
      for (size_t g = 0; g < shares.size(); g++) {
        if (shares[g].List < 0) continue;
        glNewList(ListBase + frameLists + static_cast<GLuint>(shares[g].List), GL_COMPILE);
        for (size_t h = g; h < shares[g].Last; h++) RenderGroup(Model->Groups[h]);
        glEndList();
      }
      for (GLsizei i = 0; i < frameLists; i += 2) {
        int k = i / 2;
        glNewList(ListBase + i, GL_COMPILE);
        Model->SetFrame(static_cast<float>(k));
        CurrentFrame = static_cast<float>(k);
        RenderFrame(shares, ListBase + frameLists);
        glEndList();
        // The second list of a frame holds the same pose: it calls the first.
        glNewList(ListBase + i + 1, GL_COMPILE);
        glCallList(ListBase + i);
        glEndList();
      }
      ListsValid = true;
    }
  }
  Model->SetFrame(0.0f);
  CurrentFrame = 0;
}

int ModelClass::ListCount() const { return ListsValid ? FrameLists : 0; }

int GroupJoint(const msModel &model, const msGroup &group) {
  // Skinning leaves a vertex where it is stored when its first joint is
  // none or out of range, at every frame alike; it moves one with its first
  // joint alone, and whole, when that joint has all the weight.
  const int joints = static_cast<int>(model.Joints.size());
  int joint = GROUP_STILL;
  bool first = true;
  for (uint16_t t : group.TriangleIndices) {
    if (t >= model.Triangles.size()) continue;
    for (uint16_t v : model.Triangles[t].VertexIndices) {
      if (v >= model.Vertices.size()) continue;
      int bones[4], weights[4];
      model.GetVertexBonesAndWeights(model.Vertices[v], bones, weights);
      int own = GROUP_STILL;
      if (bones[0] >= 0 && bones[0] < joints) {
        const bool alone = weights[0] == 100 && (weights[1] <= 0 || bones[1] < 0 || bones[1] >= joints);
        own = alone ? bones[0] : GROUP_SKINNED;
      }
      if (own == GROUP_SKINNED || (!first && own != joint)) return GROUP_SKINNED;
      joint = own;
      first = false;
    }
  }
  return joint;
}

std::vector<GroupShare> ShareGroups(const msModel &model) {
  std::vector<GroupShare> shares(model.Groups.size());
  int lists = 0;
  size_t run = 0;  // the group before, or the first of its run of still groups
  for (size_t g = 0; g < shares.size(); g++) {
    GroupShare &share = shares[g];
    share.Joint = GroupJoint(model, model.Groups[g]);
    share.Last = g + 1;
    if (share.Joint == GROUP_STILL && g > 0 && shares[g - 1].Joint == GROUP_STILL) {
      share.InRun = true;
      shares[run].Last = g + 1;
      continue;
    }
    run = g;
    if (share.Joint != GROUP_SKINNED) share.List = lists++;
  }
  return shares;
}

void ModelClass::Render() {
  glEnable(GL_DEPTH_TEST);
  for (const msGroup &group : Model->Groups) RenderGroup(group);
  SetupMaterial(-1);
}

void JointMotion(const msJoint &joint, float matrix[16]) {
  // Global times the inverse of GlobalSkeleton; both are rotations with a
  // translation, so the inverse is the transposed rotation.
  float rotation[3][3];
  for (int r = 0; r < 3; r++) {
    for (int c = 0; c < 3; c++) {
      rotation[r][c] = joint.Global[r][0] * joint.GlobalSkeleton[c][0] + joint.Global[r][1] * joint.GlobalSkeleton[c][1] +
                       joint.Global[r][2] * joint.GlobalSkeleton[c][2];
      matrix[c * 4 + r] = rotation[r][c];
    }
  }
  for (int r = 0; r < 3; r++) {
    matrix[12 + r] = joint.Global[r][3] - (rotation[r][0] * joint.GlobalSkeleton[0][3] +
                                           rotation[r][1] * joint.GlobalSkeleton[1][3] +
                                           rotation[r][2] * joint.GlobalSkeleton[2][3]);
    matrix[r * 4 + 3] = 0;
  }
  matrix[15] = 1;
}

void ModelClass::RenderFrame(const std::vector<GroupShare> &shares, GLuint sharedLists) {
  glEnable(GL_DEPTH_TEST);
  for (size_t g = 0; g < shares.size(); g++) {
    const GroupShare &share = shares[g];
    if (share.InRun) continue;
    if (share.List < 0) {
      RenderGroup(Model->Groups[g]);
      continue;
    }
    const GLuint list = sharedLists + static_cast<GLuint>(share.List);
    if (share.Joint == GROUP_STILL) {
      glCallList(list);
      continue;
    }
    float motion[16];
    JointMotion(Model->Joints[static_cast<size_t>(share.Joint)], motion);
    glPushMatrix();
    glMultMatrixf(motion);
    glCallList(list);
    glPopMatrix();
  }
  SetupMaterial(-1);
}

void ModelClass::RenderGroup(const msGroup &group) {
  const msModel &m = *Model;
  SetupMaterial(group.MaterialIndex);
  glBegin(GL_TRIANGLES);
  for (uint16_t t : group.TriangleIndices) {
    // A triangle or corner that points outside the model is left out whole,
    // so the triangles after it keep their corners together.
    if (t >= m.Triangles.size()) continue;
    const msTriangle &tri = m.Triangles[t];
    if (tri.VertexIndices[0] >= m.Vertices.size() || tri.VertexIndices[1] >= m.Vertices.size() ||
        tri.VertexIndices[2] >= m.Vertices.size()) {
      continue;
    }
    for (int c = 0; c < 3; c++) {
      const msVertex &v = m.Vertices[tri.VertexIndices[c]];
      float normal[3], position[3];
      m.TransformNormal(v, tri.VertexNormals[c], normal);
      m.TransformVertex(v, position);
      glTexCoord2f(tri.S[c], tri.T[c]);
      glNormal3fv(normal);
      glVertex3fv(position);
    }
  }
  glEnd();
}

void ModelClass::SetupMaterial(int index) {
  if (index < 0 || index >= Model->GetNumMaterials()) {
    glDepthMask(GL_TRUE);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_TEXTURE_GEN_S);
    glDisable(GL_TEXTURE_GEN_T);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glBindTexture(GL_TEXTURE_2D, 0);
    static const float ambient[4] = {0.2f, 0.2f, 0.2f, 1.0f};
    static const float diffuse[4] = {0.8f, 0.8f, 0.8f, 1.0f};
    static const float black[4] = {0.0f, 0.0f, 0.0f, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, ambient);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, diffuse);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, black);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 0.0f);
    return;
  }

  const msMaterial &mat = Model->Materials[index];
  glEnable(GL_TEXTURE_2D);
  if (mat.Transparency < 1.0f || (mat.Mode & MS_MODE_BLENDED)) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(1.0f, 1.0f, 1.0f, mat.Transparency);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
    if (Model->TransparencyMode == 0) {
      glDepthMask(GL_FALSE);
      glEnable(GL_ALPHA_TEST);
      glAlphaFunc(GL_GREATER, 0.0f);
    } else if (Model->TransparencyMode == 2) {
      glDepthMask(GL_TRUE);
      glEnable(GL_ALPHA_TEST);
      glAlphaFunc(GL_GREATER, Model->AlphaRef);
    }
  } else {
    glDisable(GL_BLEND);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_FALSE);
  }
  if (mat.Mode & MS_MODE_SPHERE_MAP) {
    glEnable(GL_TEXTURE_GEN_S);
    glEnable(GL_TEXTURE_GEN_T);
    glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
    glTexGeni(GL_T, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
  } else {
    glDisable(GL_TEXTURE_GEN_S);
    glDisable(GL_TEXTURE_GEN_T);
  }
  glBindTexture(GL_TEXTURE_2D, mat.TextureId);
  glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, mat.Ambient);
  glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, mat.Diffuse);
  glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, mat.Specular);
  glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, mat.Emissive);
  glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, mat.Shininess);
}

void ModelClass::Draw(float x, float y, float z, float rx, float ry, float rz) {
  if (!Loaded) return;
  glEnable(GL_DEPTH_TEST);
  glPushMatrix();
  glTranslatef(x, y, z);
  if (ry != 0.0f) glRotatef(ry * DEGREES_PER_STEP, 0.0f, -1.0f, 0.0f);
  if (rx != 0.0f) glRotatef(rx * DEGREES_PER_STEP, 1.0f, 0.0f, 0.0f);
  if (rz != 0.0f) glRotatef(rz * DEGREES_PER_STEP, 0.0f, 0.0f, 1.0f);
  CallFrameList();
  glPopMatrix();
}

int FrameList(float frame, int listCount) {
  double list = 2.0 * frame;
  if (!(list >= 0.0 && list < listCount)) return -1;
  return static_cast<int>(list);
}

void ModelClass::CallFrameList() const {
  int list = FrameList(CurrentFrame, ListCount());
  if (list >= 0) glCallList(ListBase + static_cast<GLuint>(list));
}

void ModelClass::UpdateFrame() {
  if (!Loaded || !Animated) return;
  int32_t now = ModelClock();
  int32_t delta = now - LastClock;
  LastClock = now;
  CurrentFrame = static_cast<float>(CurrentFrame + delta / 1000.0 * Model->AnimationFps);
  if (CurrentFrame >= Model->TotalFrames) CurrentFrame = 0;
}
