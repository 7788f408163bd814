// Reads MilkShape 3D (version 4) files into msModel and loads the textures
// that their materials name.
#include "model/msmodel.h"

#include <allegro.h>
#include <alleggl.h>
#include <GL/gl.h>
// Xlib, pulled in by AllegroGL, defines CurrentTime as a macro.
#undef CurrentTime

#include <cstdio>
#include <cstring>

#include "rvk/filecheck.h"

namespace {

// ---------------------------------------------------------------------------
// Byte cursor

// Reads little-endian values from the file's bytes. Every read first checks
// what is left; a read past the end sets Short, yields zeros and moves nothing.
class ByteCursor {
public:
  ByteCursor(const uint8_t *data, size_t size) : Data(data), Size(size) {}

  const uint8_t *Data;
  size_t Size;
  size_t Pos = 0;
  bool Short = false;

  size_t Left() const { return Size - Pos; }
  bool AtEnd() const { return Pos >= Size; }
  bool Has(size_t n) {
    if (n > Left()) Short = true;
    return !Short;
  }
  // True when count records of size bytes each are all still there.
  bool HasRecords(size_t count, size_t size) {
    if (size != 0 && count > Left() / size) Short = true;
    return !Short;
  }
  void Bytes(void *out, size_t n) {
    if (!Has(n)) {
      std::memset(out, 0, n);
      return;
    }
    std::memcpy(out, Data + Pos, n);
    Pos += n;
  }
  uint8_t U8() {
    uint8_t b = 0;
    Bytes(&b, 1);
    return b;
  }
  int8_t I8() { return static_cast<int8_t>(U8()); }
  uint16_t U16() {
    uint8_t b[2];
    Bytes(b, 2);
    return static_cast<uint16_t>(b[0] | (b[1] << 8));
  }
  uint32_t U32() {
    uint8_t b[4];
    Bytes(b, 4);
    return static_cast<uint32_t>(b[0]) | (static_cast<uint32_t>(b[1]) << 8) |
           (static_cast<uint32_t>(b[2]) << 16) | (static_cast<uint32_t>(b[3]) << 24);
  }
  int32_t I32() { return static_cast<int32_t>(U32()); }
  float F32() {
    uint32_t bits = U32();
    float f;
    std::memcpy(&f, &bits, 4);
    return f;
  }
  void Floats(float *out, int n) {
    for (int i = 0; i < n; i++) out[i] = F32();
  }
  // A text field of fixed width. A name that fills the width has no
  // terminator in the file; the last byte is made one so that the field is
  // always a terminated string, which cuts such a name by one character.
  void Chars(char *out, size_t width) {
    Bytes(out, width);
    out[width - 1] = '\0';
  }
};

// Record sizes in the file.
const size_t VERTEX_SIZE = 15;
const size_t TRIANGLE_SIZE = 70;
const size_t GROUP_MIN_SIZE = 36;
const size_t MATERIAL_SIZE = 361;
const size_t JOINT_MIN_SIZE = 93;
const size_t KEY_SIZE = 16;
const size_t COMMENT_MIN_SIZE = 8;

// ---------------------------------------------------------------------------
// Reading the parts of a file

bool ReadFile(FILE *file, std::vector<uint8_t> &bytes) {
  if (std::fseek(file, 0, SEEK_END) != 0) return false;
  long size = std::ftell(file);
  if (size < 0 || std::fseek(file, 0, SEEK_SET) != 0) return false;
  bytes.resize(static_cast<size_t>(size));
  return size == 0 || std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

void ReadKeys(ByteCursor &in, std::vector<msKeyframe> &keys, uint16_t count, float fps) {
  keys.resize(count);
  for (msKeyframe &key : keys) {
    key.Time = in.F32() * fps;
    in.Floats(key.Value, 3);
  }
}

// One list of comments. Comments are collected apart and applied only when
// the whole section has been read.
struct PendingComment {
  int List;
  int32_t Index;
  std::vector<char> Text;
};

bool ReadCommentList(ByteCursor &in, int list, std::vector<PendingComment> &out) {
  int32_t count = in.I32();
  if (in.Short || count < 0 || !in.HasRecords(static_cast<size_t>(count), COMMENT_MIN_SIZE)) return false;
  for (int32_t i = 0; i < count; i++) {
    PendingComment c;
    c.List = list;
    c.Index = in.I32();
    int32_t length = in.I32();
    if (in.Short || length < 0 || !in.Has(static_cast<size_t>(length))) return false;
    c.Text.assign(in.Data + in.Pos, in.Data + in.Pos + length);
    in.Pos += static_cast<size_t>(length);
    out.push_back(std::move(c));
  }
  return true;
}

}  // namespace

// ---------------------------------------------------------------------------
// Texture paths

std::string msTexturePath(const char *modelPath, const char *texture) {
  size_t length = std::strlen(modelPath);
  if (length >= static_cast<size_t>(MS_MAX_PATH)) return std::string();
  std::string dir(modelPath, length);
  size_t cut = dir.find_last_of("\\/");
  if (cut != std::string::npos) dir.erase(cut);
  while (!dir.empty() && (dir.back() == '\\' || dir.back() == '/')) dir.pop_back();
  std::string path = dir + "/" + texture;
  // A path that overflows the work buffer is not cut to some other file's
  // name: the texture counts as one that can't be read.
  if (path.size() >= static_cast<size_t>(MS_MAX_PATH)) return std::string();
  return path;
}

// Loads a material's texture, or empties its name when that fails.
static void LoadMaterialTexture(msMaterial &material, const char *modelPath, bool upload) {
  if (material.Texture[0] == '\0' || !upload) return;
  std::string path = msTexturePath(modelPath, material.Texture);
  // Stored names and catalogue paths use Windows separators; here '\' is no
  // separator, so each one is opened as '/'.
  for (char &ch : path) {
    if (ch == '\\') ch = '/';
  }
  BITMAP *bitmap = path.empty() ? nullptr : RVK_LoadBitmap(path.c_str());
  if (!bitmap) {
    material.Texture[0] = '\0';
    return;
  }
  material.TextureId = allegro_gl_make_texture(bitmap);
  destroy_bitmap(bitmap);
}

// ---------------------------------------------------------------------------
// msModel

msModel::~msModel() { Clear(); }

void msModel::Clear() {
  for (msMaterial &m : Materials) {
    if (m.TextureId != 0) glDeleteTextures(1, &m.TextureId);
    m.TextureId = 0;
  }
  Vertices.clear();
  Triangles.clear();
  Groups.clear();
  Materials.clear();
  Joints.clear();
  Comment.clear();
  AnimationFps = 24.0f;
  CurrentTime = 1.0f;
  TotalFrames = 30;
  JointSize = 1.0f;
  TransparencyMode = 0;
  AlphaRef = 0.5f;
  CommentsSubVersion = -1;
  VertexExtraSubVersion = -1;
  JointExtraSubVersion = -1;
  ModelExtraSubVersion = -1;
}

int msModel::FindJointByName(const char *name) const {
  for (size_t i = 0; i < Joints.size(); i++) {
    if (std::strncmp(Joints[i].Name, name, sizeof Joints[i].Name) == 0 &&
        std::strlen(name) < sizeof Joints[i].Name) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

int msModel::GetNumMaterials() const { return static_cast<int>(Materials.size()); }

// Everything up to and including the joints must be there: a file cut short
// inside it, or whose counts promise more records than it holds, is refused
// (false) and the model is left cleared. After that the optional sections are
// read while bytes remain; a section that is cut short is dropped whole, it
// and all after it count as absent, and the load still succeeds.
bool msModel::Load(const char *path) {
  FILE *file = std::fopen(path, "rb");
  if (!file) return false;
  Clear();
  std::vector<uint8_t> bytes;
  bool read = ReadFile(file, bytes);
  std::fclose(file);
  auto refuse = [this]() {
    Clear();
    return false;
  };
  if (!read) return refuse();

  ByteCursor in(bytes.data(), bytes.size());
  char magic[10];
  in.Bytes(magic, sizeof magic);
  if (in.Short || std::memcmp(magic, "MS3D000000", sizeof magic) != 0) return false;
  int32_t version = in.I32();
  if (in.Short || version != 4) return false;

  uint16_t count = in.U16();
  if (!in.HasRecords(count, VERTEX_SIZE)) return refuse();
  Vertices.resize(count);
  for (msVertex &v : Vertices) {
    v.Flags = in.U8();
    in.Floats(v.Position, 3);
    v.BoneId = in.I8();
    v.RefCount = in.U8();
  }

  count = in.U16();
  if (!in.HasRecords(count, TRIANGLE_SIZE)) return refuse();
  Triangles.resize(count);
  for (msTriangle &t : Triangles) {
    t.Flags = in.U16();
    for (int c = 0; c < 3; c++) t.VertexIndices[c] = in.U16();
    for (int c = 0; c < 3; c++) in.Floats(t.VertexNormals[c], 3);
    in.Floats(t.S, 3);
    in.Floats(t.T, 3);
    t.SmoothingGroup = in.U8();
    t.GroupIndex = in.U8();
  }

  count = in.U16();
  if (!in.HasRecords(count, GROUP_MIN_SIZE)) return refuse();
  Groups.resize(count);
  for (msGroup &g : Groups) {
    g.Flags = in.U8();
    in.Chars(g.Name, sizeof g.Name);
    uint16_t n = in.U16();
    if (!in.HasRecords(n, 2)) return refuse();
    g.TriangleIndices.resize(n);
    for (uint16_t &index : g.TriangleIndices) index = in.U16();
    g.MaterialIndex = in.I8();
    if (in.Short) return refuse();
  }

  count = in.U16();
  if (!in.HasRecords(count, MATERIAL_SIZE)) return refuse();
  Materials.resize(count);
  for (msMaterial &m : Materials) {
    in.Chars(m.Name, sizeof m.Name);
    in.Floats(m.Ambient, 4);
    in.Floats(m.Diffuse, 4);
    in.Floats(m.Specular, 4);
    in.Floats(m.Emissive, 4);
    m.Shininess = in.F32();
    m.Transparency = in.F32();
    m.Mode = in.U8();
    in.Chars(m.Texture, sizeof m.Texture);
    in.Chars(m.AlphaMap, sizeof m.AlphaMap);
    m.Ambient[3] = m.Diffuse[3] = m.Specular[3] = m.Emissive[3] = m.Transparency;
    LoadMaterialTexture(m, path, UploadTextures);
  }

  if (!in.Has(12)) return refuse();
  AnimationFps = in.F32();
  if (AnimationFps < 1.0f) AnimationFps = 1.0f;
  CurrentTime = in.F32();
  TotalFrames = in.I32();

  count = in.U16();
  if (!in.HasRecords(count, JOINT_MIN_SIZE)) return refuse();
  Joints.resize(count);
  for (msJoint &j : Joints) {
    j.Flags = in.U8();
    in.Chars(j.Name, sizeof j.Name);
    in.Chars(j.ParentName, sizeof j.ParentName);
    in.Floats(j.Rotation, 3);
    in.Floats(j.Position, 3);
    uint16_t nr = in.U16();
    uint16_t np = in.U16();
    if (in.Short || !in.HasRecords(static_cast<size_t>(nr) + np, KEY_SIZE)) return refuse();
    ReadKeys(in, j.RotationKeys, nr, AnimationFps);
    ReadKeys(in, j.PositionKeys, np, AnimationFps);
  }

  // Comments. A sub-version other than 1 ends the section right behind it.
  if (in.AtEnd()) return true;
  int32_t sub = in.I32();
  if (in.Short) return true;
  if (sub == 1) {
    std::vector<PendingComment> comments;
    bool whole = ReadCommentList(in, 0, comments) && ReadCommentList(in, 1, comments) &&
                 ReadCommentList(in, 2, comments);
    int32_t hasModelComment = whole ? in.I32() : 0;
    std::vector<char> modelComment;
    if (whole && !in.Short && hasModelComment == 1) {
      int32_t length = in.I32();
      if (in.Short || length < 0 || !in.Has(static_cast<size_t>(length))) {
        whole = false;
      } else {
        modelComment.assign(in.Data + in.Pos, in.Data + in.Pos + length);
        in.Pos += static_cast<size_t>(length);
      }
    }
    if (!whole || in.Short) return true;
    // A comment whose index is outside its list was read and is dropped.
    for (PendingComment &c : comments) {
      if (c.Index < 0) continue;
      size_t index = static_cast<size_t>(c.Index);
      if (c.List == 0 && index < Groups.size()) Groups[index].Comment = std::move(c.Text);
      if (c.List == 1 && index < Materials.size()) Materials[index].Comment = std::move(c.Text);
      if (c.List == 2 && index < Joints.size()) Joints[index].Comment = std::move(c.Text);
    }
    if (hasModelComment == 1) Comment = std::move(modelComment);
  }
  CommentsSubVersion = sub;

  // Vertex extras: sub-version 2 has Extra, 1 has not.
  if (in.AtEnd()) return true;
  sub = in.I32();
  if (in.Short) return true;
  if (sub == 1 || sub == 2) {
    size_t size = sub == 2 ? 10 : 6;
    if (!in.HasRecords(Vertices.size(), size)) return true;
    for (msVertex &v : Vertices) {
      for (int k = 0; k < 3; k++) v.BoneIds[k] = in.I8();
      for (int k = 0; k < 3; k++) v.BoneWeights[k] = in.U8();
      if (sub == 2) v.Extra = in.U32();
    }
  }
  VertexExtraSubVersion = sub;

  // Joint extras: the colour of each joint.
  if (in.AtEnd()) return true;
  sub = in.I32();
  if (in.Short) return true;
  if (sub == 1) {
    if (!in.HasRecords(Joints.size(), 12)) return true;
    for (msJoint &j : Joints) in.Floats(j.Color, 3);
  }
  JointExtraSubVersion = sub;

  // Model extras.
  if (in.AtEnd()) return true;
  sub = in.I32();
  if (in.Short) return true;
  if (sub == 1) {
    if (!in.Has(12)) return true;
    JointSize = in.F32();
    TransparencyMode = in.I32();
    AlphaRef = in.F32();
  }
  ModelExtraSubVersion = sub;
  return true;
}
