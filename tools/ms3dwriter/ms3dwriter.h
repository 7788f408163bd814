// Writes MilkShape 3D (version 4) files with all optional sections, for tests
// and for the content generator. Not part of the game.
#pragma once
#include <cstdint>
#include <string>
#include <vector>
#include "model/msmodel.h"

class MS3DCommentRecord {
public:
  int32_t Index = 0;
  std::string Text;
};

// A file to write. The records are the model's own; joint key times are in
// seconds, as the file stores them. Everything is written exactly as given,
// so tests can make files with bad indices or counts.
class MS3DWriter {
public:
  int32_t Version = 4;
  std::vector<msVertex> Vertices;
  std::vector<msTriangle> Triangles;
  std::vector<msGroup> Groups;        // TriangleIndices, MaterialIndex, Name, Flags
  std::vector<msMaterial> Materials;  // Texture and AlphaMap as stored names
  float AnimationFps = 24.0f;
  float CurrentTime = 1.0f;
  int32_t TotalFrames = 30;
  std::vector<msJoint> Joints;        // Name, ParentName, Rotation, Position, keys

  // The optional sections follow in this order. A sub-version of 0 ends the
  // file there: that section and all later ones are left out. Any other value
  // is written; the body follows only for the sub-versions a reader knows
  // (comments 1, vertex extras 1 or 2, joint extras 1, model extras 1).
  int32_t CommentsSubVersion = 1;
  std::vector<MS3DCommentRecord> GroupComments, MaterialComments, JointComments;
  bool HasModelComment = false;
  std::string ModelComment;
  int32_t VertexExtraSubVersion = 2;  // BoneIds, BoneWeights (and Extra for 2) of each vertex
  int32_t JointExtraSubVersion = 1;   // Color of each joint
  int32_t ModelExtraSubVersion = 1;
  float JointSize = 1.0f;
  int32_t TransparencyMode = 0;
  float AlphaRef = 0.5f;

  std::vector<uint8_t> Encode() const;
  bool Save(const char *path) const;
};
