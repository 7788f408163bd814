// ModelClass: loads one model, centres it, compiles it into display lists
// (two per animation frame) and draws it with one glCallList.
#include "model/modelclass.h"

#include <chrono>

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
  if (!Model->Joints.empty()) {
    Animated = true;
    Model->SetupJoints();
    Model->SetFrame(-1.0f);
  } else {
    Animated = false;
    Model->SetFrame(0.0f);
  }
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
  if (Model->Joints.empty()) {
    ListBase = glGenLists(1);
    if (ListBase == 0) return;
    ListRange = 1;
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
    ListBase = glGenLists(2 * frames);
    if (ListBase != 0) {
      ListRange = 2 * frames;
      for (GLsizei i = 0; i < ListRange; i++) {
        int k = i / 2;
        glNewList(ListBase + i, GL_COMPILE);
        Model->SetFrame(static_cast<float>(k));
        CurrentFrame = static_cast<float>(k);
        Render();
        glEndList();
      }
      ListsValid = true;
    }
  }
  Model->SetFrame(0.0f);
  CurrentFrame = 0;
}

int ModelClass::ListCount() const { return ListsValid ? ListRange : 0; }

void ModelClass::Render() {
  const msModel &m = *Model;
  glEnable(GL_DEPTH_TEST);
  for (const msGroup &group : m.Groups) {
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
  SetupMaterial(-1);
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
