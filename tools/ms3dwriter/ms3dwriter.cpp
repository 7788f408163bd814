// Encodes an MS3DWriter's records as a MilkShape 3D version 4 file: packed,
// little-endian records, the mandatory part followed by the optional sections.
#include "tools/ms3dwriter/ms3dwriter.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

// Appends values in the file's byte order whatever the host's is.
class ByteSink {
public:
  std::vector<uint8_t> Bytes;

  void U8(uint8_t v) { Bytes.push_back(v); }
  void I8(int8_t v) { Bytes.push_back(static_cast<uint8_t>(v)); }
  void U16(uint16_t v) {
    U8(static_cast<uint8_t>(v & 0xFF));
    U8(static_cast<uint8_t>(v >> 8));
  }
  void U32(uint32_t v) {
    for (int i = 0; i < 4; i++) U8(static_cast<uint8_t>((v >> (8 * i)) & 0xFF));
  }
  void I32(int32_t v) { U32(static_cast<uint32_t>(v)); }
  void F32(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    U32(bits);
  }
  void Floats(const float *v, int n) {
    for (int i = 0; i < n; i++) F32(v[i]);
  }
  // A fixed-width text field, written as stored: all of its bytes.
  void Chars(const char *v, int width) {
    for (int i = 0; i < width; i++) U8(static_cast<uint8_t>(v[i]));
  }
  void Text(const std::string &s) { Bytes.insert(Bytes.end(), s.begin(), s.end()); }
};

// The file's counts are 16 bits wide; a longer list is written up to that
// limit so the file stays consistent with its own counts.
uint16_t CountOf(size_t size) { return static_cast<uint16_t>(std::min<size_t>(size, 65535)); }

void PutComments(ByteSink &out, const std::vector<MS3DCommentRecord> &list) {
  out.I32(static_cast<int32_t>(list.size()));
  for (const MS3DCommentRecord &c : list) {
    out.I32(c.Index);
    out.I32(static_cast<int32_t>(c.Text.size()));
    out.Text(c.Text);
  }
}

void PutKeys(ByteSink &out, const std::vector<msKeyframe> &keys, uint16_t count) {
  for (uint16_t i = 0; i < count; i++) {
    out.F32(keys[i].Time);
    out.Floats(keys[i].Value, 3);
  }
}

}  // namespace

std::vector<uint8_t> MS3DWriter::Encode() const {
  ByteSink out;
  out.Chars("MS3D000000", 10);
  out.I32(Version);

  uint16_t nv = CountOf(Vertices.size());
  out.U16(nv);
  for (uint16_t i = 0; i < nv; i++) {
    const msVertex &v = Vertices[i];
    out.U8(v.Flags);
    out.Floats(v.Position, 3);
    out.I8(v.BoneId);
    out.U8(v.RefCount);
  }

  uint16_t nt = CountOf(Triangles.size());
  out.U16(nt);
  for (uint16_t i = 0; i < nt; i++) {
    const msTriangle &t = Triangles[i];
    out.U16(t.Flags);
    for (int c = 0; c < 3; c++) out.U16(t.VertexIndices[c]);
    for (int c = 0; c < 3; c++) out.Floats(t.VertexNormals[c], 3);
    out.Floats(t.S, 3);
    out.Floats(t.T, 3);
    out.U8(t.SmoothingGroup);
    out.U8(t.GroupIndex);
  }

  uint16_t ng = CountOf(Groups.size());
  out.U16(ng);
  for (uint16_t i = 0; i < ng; i++) {
    const msGroup &g = Groups[i];
    out.U8(g.Flags);
    out.Chars(g.Name, 32);
    uint16_t n = CountOf(g.TriangleIndices.size());
    out.U16(n);
    for (uint16_t k = 0; k < n; k++) out.U16(g.TriangleIndices[k]);
    out.I8(g.MaterialIndex);
  }

  uint16_t nm = CountOf(Materials.size());
  out.U16(nm);
  for (uint16_t i = 0; i < nm; i++) {
    const msMaterial &m = Materials[i];
    out.Chars(m.Name, 32);
    out.Floats(m.Ambient, 4);
    out.Floats(m.Diffuse, 4);
    out.Floats(m.Specular, 4);
    out.Floats(m.Emissive, 4);
    out.F32(m.Shininess);
    out.F32(m.Transparency);
    out.U8(m.Mode);
    out.Chars(m.Texture, 128);
    out.Chars(m.AlphaMap, 128);
  }

  out.F32(AnimationFps);
  out.F32(CurrentTime);
  out.I32(TotalFrames);

  uint16_t nj = CountOf(Joints.size());
  out.U16(nj);
  for (uint16_t i = 0; i < nj; i++) {
    const msJoint &j = Joints[i];
    out.U8(j.Flags);
    out.Chars(j.Name, 32);
    out.Chars(j.ParentName, 32);
    out.Floats(j.Rotation, 3);
    out.Floats(j.Position, 3);
    uint16_t nr = CountOf(j.RotationKeys.size());
    uint16_t np = CountOf(j.PositionKeys.size());
    out.U16(nr);
    out.U16(np);
    PutKeys(out, j.RotationKeys, nr);
    PutKeys(out, j.PositionKeys, np);
  }

  // Optional sections: a sub-version of 0 stops the file before that section.
  if (CommentsSubVersion == 0) return out.Bytes;
  out.I32(CommentsSubVersion);
  if (CommentsSubVersion == 1) {
    PutComments(out, GroupComments);
    PutComments(out, MaterialComments);
    PutComments(out, JointComments);
    out.I32(HasModelComment ? 1 : 0);
    if (HasModelComment) {
      out.I32(static_cast<int32_t>(ModelComment.size()));
      out.Text(ModelComment);
    }
  }

  if (VertexExtraSubVersion == 0) return out.Bytes;
  out.I32(VertexExtraSubVersion);
  if (VertexExtraSubVersion == 1 || VertexExtraSubVersion == 2) {
    for (uint16_t i = 0; i < nv; i++) {
      const msVertex &v = Vertices[i];
      for (int k = 0; k < 3; k++) out.I8(v.BoneIds[k]);
      for (int k = 0; k < 3; k++) out.U8(v.BoneWeights[k]);
      if (VertexExtraSubVersion == 2) out.U32(v.Extra);
    }
  }

  if (JointExtraSubVersion == 0) return out.Bytes;
  out.I32(JointExtraSubVersion);
  if (JointExtraSubVersion == 1) {
    for (uint16_t i = 0; i < nj; i++) out.Floats(Joints[i].Color, 3);
  }

  if (ModelExtraSubVersion == 0) return out.Bytes;
  out.I32(ModelExtraSubVersion);
  if (ModelExtraSubVersion == 1) {
    out.F32(JointSize);
    out.I32(TransparencyMode);
    out.F32(AlphaRef);
  }
  return out.Bytes;
}

bool MS3DWriter::Save(const char *path) const {
  std::vector<uint8_t> bytes = Encode();
  FILE *f = std::fopen(path, "wb");
  if (!f) return false;
  bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  if (std::fclose(f) != 0) ok = false;
  return ok;
}
