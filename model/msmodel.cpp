// Reads MilkShape 3D (version 4) files into msModel and loads the textures
// that their materials name.
#include "model/msmodel.h"

#include <allegro.h>
#include <alleggl.h>
#include <GL/gl.h>
// Xlib, pulled in by AllegroGL, defines CurrentTime as a macro.
#undef CurrentTime

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

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
  bool Has(size_t n) {
    if (n > Left()) Short = true;
    return !Short;
  }
  // True when count records of size bytes each are all still there.
  bool HasRecords(size_t count, size_t size) {
    if (count > Left() / size) Short = true;
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
  // A 32-bit length and that many bytes of text with no terminator. A
  // negative length reads as a huge one and fails like any length that runs
  // past the end.
  bool Text(std::vector<char> &out) {
    uint32_t length = U32();
    if (!Has(length)) return false;
    out.assign(Data + Pos, Data + Pos + length);
    Pos += length;
    return true;
  }
  float F32() {
    uint32_t bits = U32();
    float f;
    std::memcpy(&f, &bits, 4);
    return f;
  }
  void Floats(float *out, int n) {
    for (int i = 0; i < n; i++) out[i] = F32();
  }
  // A text field of fixed width, read whole into an array one byte wider,
  // whose last byte keeps it terminated.
  template <size_t N> void Chars(char (&out)[N]) {
    Bytes(out, N - 1);
    out[N - 1] = '\0';
  }
};

const char MS3D_MAGIC[] = "MS3D000000";
const int32_t MS3D_VERSION = 4;
// The lowest frame rate a model plays at.
const float MS_MIN_FPS = 1.0f;

// Record sizes in the file.
const size_t VERTEX_SIZE = 15;
const size_t TRIANGLE_SIZE = 70;
const size_t GROUP_MIN_SIZE = 36;
const size_t MATERIAL_SIZE = 361;
const size_t JOINT_MIN_SIZE = 93;
const size_t KEY_SIZE = 16;
const size_t TRIANGLE_INDEX_SIZE = 2;
const size_t COMMENT_MIN_SIZE = 8;
const size_t VERTEX_WEIGHTS_SIZE = 6;
const size_t VERTEX_EXTRA_SIZE = 10;
const size_t JOINT_COLOUR_SIZE = 12;
const size_t MODEL_EXTRA_SIZE = 12;
// The flag that announces the model's own comment.
const int32_t MODEL_COMMENT_PRESENT = 1;

// ---------------------------------------------------------------------------
// Reading the parts of a file

// Reads the whole file. The size from the seek is only what the file claims:
// a directory opens and claims nearly 2^63 bytes, then yields none. So the
// buffer grows only by what has actually been read, a chunk at a time, and
// all that was claimed must arrive.
bool ReadFile(FILE *file, std::vector<uint8_t> &bytes) {
  if (std::fseek(file, 0, SEEK_END) != 0) return false;
  long size = std::ftell(file);
  if (size < 0 || std::fseek(file, 0, SEEK_SET) != 0) return false;
  uint8_t chunk[65536];
  for (size_t left = static_cast<size_t>(size); left > 0;) {
    size_t read = std::fread(chunk, 1, std::min(left, sizeof chunk), file);
    if (read == 0) return false;
    bytes.insert(bytes.end(), chunk, chunk + read);
    left -= read;
  }
  return true;
}

}  // namespace

// ---------------------------------------------------------------------------
// Texture paths

std::string msTexturePath(const char *modelPath, const char *texture) {
  std::string dir(modelPath);
  size_t cut = dir.find_last_of("\\/");
  if (cut != std::string::npos) dir.erase(cut);
  while (!dir.empty() && (dir.back() == '\\' || dir.back() == '/')) dir.pop_back();
  std::string path = dir + "/" + texture;
  // A path that overflows the work buffer is not cut to some other file's
  // name: the texture counts as one that can't be read.
  if (path.size() >= static_cast<size_t>(MS_MAX_PATH)) return std::string();
  return path;
}

namespace {

// Loads a material's texture, or empties its name when that fails.
void LoadMaterialTexture(msMaterial &material, const char *modelPath, bool upload) {
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
// The mandatory part: each reader checks that its count of records fits in
// what is left before it allocates, and fails once anything ran short.

bool ReadVertices(ByteCursor &in, std::vector<msVertex> &vertices) {
  uint16_t count = in.U16();
  if (!in.HasRecords(count, VERTEX_SIZE)) return false;
  vertices.resize(count);
  for (msVertex &v : vertices) {
    v.Flags = in.U8();
    in.Floats(v.Position, 3);
    v.BoneId = in.I8();
    v.RefCount = in.U8();
  }
  return true;
}

bool ReadTriangles(ByteCursor &in, std::vector<msTriangle> &triangles) {
  uint16_t count = in.U16();
  if (!in.HasRecords(count, TRIANGLE_SIZE)) return false;
  triangles.resize(count);
  for (msTriangle &t : triangles) {
    t.Flags = in.U16();
    for (uint16_t &index : t.VertexIndices) index = in.U16();
    for (float(&normal)[3] : t.VertexNormals) in.Floats(normal, 3);
    in.Floats(t.S, 3);
    in.Floats(t.T, 3);
    t.SmoothingGroup = in.U8();
    t.GroupIndex = in.U8();
  }
  return true;
}

bool ReadGroups(ByteCursor &in, std::vector<msGroup> &groups) {
  uint16_t count = in.U16();
  if (!in.HasRecords(count, GROUP_MIN_SIZE)) return false;
  groups.resize(count);
  for (msGroup &g : groups) {
    g.Flags = in.U8();
    in.Chars(g.Name);
    uint16_t n = in.U16();
    if (!in.HasRecords(n, TRIANGLE_INDEX_SIZE)) return false;
    g.TriangleIndices.resize(n);
    for (uint16_t &index : g.TriangleIndices) index = in.U16();
    g.MaterialIndex = in.I8();
  }
  return true;
}

// Each material's texture is loaded as soon as its record is read.
bool ReadMaterials(ByteCursor &in, std::vector<msMaterial> &materials, const char *path, bool upload) {
  uint16_t count = in.U16();
  if (!in.HasRecords(count, MATERIAL_SIZE)) return false;
  materials.resize(count);
  for (msMaterial &m : materials) {
    in.Chars(m.Name);
    in.Floats(m.Ambient, 4);
    in.Floats(m.Diffuse, 4);
    in.Floats(m.Specular, 4);
    in.Floats(m.Emissive, 4);
    m.Shininess = in.F32();
    m.Transparency = in.F32();
    m.Mode = in.U8();
    in.Chars(m.Texture);
    in.Chars(m.AlphaMap);
    m.Ambient[3] = m.Diffuse[3] = m.Specular[3] = m.Emissive[3] = m.Transparency;
    LoadMaterialTexture(m, path, upload);
  }
  return true;
}

// The joints' key times are read in seconds and kept in frames, by the
// frame rate as clamped here.
bool ReadAnimation(ByteCursor &in, msModel &model) {
  model.AnimationFps = std::max(in.F32(), MS_MIN_FPS);
  model.CurrentTime = in.F32();
  model.TotalFrames = in.I32();
  return !in.Short;
}

void ReadKeys(ByteCursor &in, std::vector<msKeyframe> &keys, uint16_t count, float fps) {
  keys.resize(count);
  for (msKeyframe &key : keys) {
    key.Time = in.F32() * fps;
    in.Floats(key.Value, 3);
  }
}

bool ReadJoints(ByteCursor &in, std::vector<msJoint> &joints, float fps) {
  uint16_t count = in.U16();
  if (!in.HasRecords(count, JOINT_MIN_SIZE)) return false;
  joints.resize(count);
  for (msJoint &j : joints) {
    j.Flags = in.U8();
    in.Chars(j.Name);
    in.Chars(j.ParentName);
    in.Floats(j.Rotation, 3);
    in.Floats(j.Position, 3);
    uint16_t nr = in.U16();
    uint16_t np = in.U16();
    if (!in.HasRecords(static_cast<size_t>(nr) + np, KEY_SIZE)) return false;
    ReadKeys(in, j.RotationKeys, nr, fps);
    ReadKeys(in, j.PositionKeys, np, fps);
  }
  return true;
}

// ---------------------------------------------------------------------------
// The optional sections

// A comment, held with the record field it belongs to (none when its index
// is outside its list) until the whole section has been read.
struct PendingComment {
  std::vector<char> *Target = nullptr;
  std::vector<char> Text;
};

template <class Record>
bool ReadCommentList(ByteCursor &in, std::vector<Record> &records, std::vector<PendingComment> &out) {
  // A negative count is taken as no comments, and the reader goes on.
  int32_t count = std::max(in.I32(), 0);
  if (!in.HasRecords(static_cast<size_t>(count), COMMENT_MIN_SIZE)) return false;
  for (int32_t i = 0; i < count; i++) {
    PendingComment &c = out.emplace_back();
    int32_t index = in.I32();
    if (index >= 0 && static_cast<size_t>(index) < records.size()) c.Target = &records[index].Comment;
    if (!in.Text(c.Text)) return false;
  }
  return true;
}

// Comments, sub-version 1: the groups', the materials' and the joints', then
// the model's. Nothing is applied unless the whole section is there.
bool ReadComments(ByteCursor &in, msModel &model) {
  std::vector<PendingComment> comments;
  if (!ReadCommentList(in, model.Groups, comments) || !ReadCommentList(in, model.Materials, comments) ||
      !ReadCommentList(in, model.Joints, comments)) {
    return false;
  }
  std::vector<char> modelComment;
  bool hasModelComment = in.I32() == MODEL_COMMENT_PRESENT;
  if (in.Short || (hasModelComment && !in.Text(modelComment))) return false;
  for (PendingComment &c : comments) {
    if (c.Target) *c.Target = std::move(c.Text);
  }
  model.Comment = std::move(modelComment);
  return true;
}

// Vertex extras: sub-version 2 has Extra, 1 has not.
bool ReadVertexExtras(ByteCursor &in, std::vector<msVertex> &vertices, bool withExtra) {
  if (!in.HasRecords(vertices.size(), withExtra ? VERTEX_EXTRA_SIZE : VERTEX_WEIGHTS_SIZE)) return false;
  for (msVertex &v : vertices) {
    for (int8_t &id : v.BoneIds) id = in.I8();
    for (uint8_t &weight : v.BoneWeights) weight = in.U8();
    if (withExtra) v.Extra = in.U32();
  }
  return true;
}

bool ReadJointColours(ByteCursor &in, std::vector<msJoint> &joints) {
  if (!in.HasRecords(joints.size(), JOINT_COLOUR_SIZE)) return false;
  for (msJoint &j : joints) in.Floats(j.Color, 3);
  return true;
}

bool ReadModelExtras(ByteCursor &in, msModel &model) {
  if (!in.Has(MODEL_EXTRA_SIZE)) return false;
  model.JointSize = in.F32();
  model.TransparencyMode = in.I32();
  model.AlphaRef = in.F32();
  return true;
}

// The sub-version that opens the next optional section; false at the end.
bool NextSection(ByteCursor &in, int32_t &sub) {
  sub = in.I32();
  return !in.Short;
}

}  // namespace

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
    if (std::strcmp(Joints[i].Name, name) == 0) return static_cast<int>(i);
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
  std::unique_ptr<FILE, int (*)(FILE *)> file(std::fopen(path, "rb"), std::fclose);
  if (!file) return false;
  Clear();
  std::vector<uint8_t> bytes;
  if (!ReadFile(file.get(), bytes)) return false;

  ByteCursor in(bytes.data(), bytes.size());
  char magic[sizeof MS3D_MAGIC - 1];
  in.Bytes(magic, sizeof magic);
  if (std::memcmp(magic, MS3D_MAGIC, sizeof magic) != 0 || in.I32() != MS3D_VERSION) return false;
  if (!ReadVertices(in, Vertices) || !ReadTriangles(in, Triangles) || !ReadGroups(in, Groups) ||
      !ReadMaterials(in, Materials, path, UploadTextures) || !ReadAnimation(in, *this) ||
      !ReadJoints(in, Joints, AnimationFps)) {
    Clear();
    return false;
  }

  // The optional sections, strictly in order. A sub-version that isn't
  // understood ends its section right behind it.
  int32_t sub;
  if (!NextSection(in, sub) || (sub == 1 && !ReadComments(in, *this))) return true;
  CommentsSubVersion = sub;
  if (!NextSection(in, sub) || ((sub == 1 || sub == 2) && !ReadVertexExtras(in, Vertices, sub == 2))) return true;
  VertexExtraSubVersion = sub;
  if (!NextSection(in, sub) || (sub == 1 && !ReadJointColours(in, Joints))) return true;
  JointExtraSubVersion = sub;
  if (!NextSection(in, sub) || (sub == 1 && !ReadModelExtras(in, *this))) return true;
  ModelExtraSubVersion = sub;
  return true;
}
