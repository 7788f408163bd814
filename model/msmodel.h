// msModel: the in-memory form of one MilkShape 3D (.ms3d, version 4) file,
// its reader with texture loading, and its skeleton evaluation.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

// Xlib (pulled in by AllegroGL) defines CurrentTime as a macro, which would
// take the place of the field of that name.
#ifdef CurrentTime
#undef CurrentTime
#endif

// Widths of the text fields in the file. A text that fills its field has no
// terminator there; the fields in memory are one byte wider, so such a text
// keeps every character and still ends in one.
const int MS_NAME_WIDTH = 32;
const int MS_PATH_WIDTH = 128;

// Bits of msMaterial::Mode.
const uint8_t MS_MODE_BLENDED = 0x40;
const uint8_t MS_MODE_SPHERE_MAP = 0x80;

struct msVertex {
  uint8_t Flags = 0;
  float Position[3] = {0, 0, 0};
  int8_t BoneId = -1;
  uint8_t RefCount = 0;
  int8_t BoneIds[3] = {0, 0, 0};
  uint8_t BoneWeights[3] = {0, 0, 0};
  uint32_t Extra = 0;
};

struct msTriangle {
  uint16_t Flags = 0;
  uint16_t VertexIndices[3] = {0, 0, 0};
  float VertexNormals[3][3] = {};
  float S[3] = {0, 0, 0};
  float T[3] = {0, 0, 0};
  uint8_t SmoothingGroup = 0;
  uint8_t GroupIndex = 0;
};

struct msGroup {
  uint8_t Flags = 0;
  char Name[MS_NAME_WIDTH + 1] = {};
  std::vector<uint16_t> TriangleIndices;
  int8_t MaterialIndex = -1;
  std::vector<char> Comment;
};

struct msMaterial {
  char Name[MS_NAME_WIDTH + 1] = {};
  float Ambient[4] = {0, 0, 0, 0};
  float Diffuse[4] = {0, 0, 0, 0};
  float Specular[4] = {0, 0, 0, 0};
  float Emissive[4] = {0, 0, 0, 0};
  float Shininess = 0;
  float Transparency = 1;
  uint8_t Mode = 0;
  char Texture[MS_PATH_WIDTH + 1] = {};
  char AlphaMap[MS_PATH_WIDTH + 1] = {};
  uint32_t TextureId = 0;
  std::vector<char> Comment;
};

struct msKeyframe {
  float Time = 0;
  float Value[3] = {0, 0, 0};
};

struct msTangent {
  float TangentIn[3] = {0, 0, 0};
  float TangentOut[3] = {0, 0, 0};
};

struct msJoint {
  uint8_t Flags = 0;
  char Name[MS_NAME_WIDTH + 1] = {};
  char ParentName[MS_NAME_WIDTH + 1] = {};
  float Rotation[3] = {0, 0, 0};
  float Position[3] = {0, 0, 0};
  std::vector<msKeyframe> RotationKeys;
  std::vector<msKeyframe> PositionKeys;
  std::vector<msTangent> Tangents;
  std::vector<char> Comment;
  float Color[3] = {0, 0, 0};
  int32_t ParentIndex = -1;
  float LocalSkeleton[3][4] = {};
  float GlobalSkeleton[3][4] = {};
  float Local[3][4] = {};
  float Global[3][4] = {};
};

class msModel {
public:
  std::vector<msVertex> Vertices;
  std::vector<msTriangle> Triangles;
  std::vector<msGroup> Groups;
  std::vector<msMaterial> Materials;
  float AnimationFps = 24.0f;
  float CurrentTime = 1.0f;
  int32_t TotalFrames = 30;
  std::vector<msJoint> Joints;
  std::vector<char> Comment;
  float JointSize = 1.0f;
  int32_t TransparencyMode = 0;
  float AlphaRef = 0.5f;

  msModel() = default;
  virtual ~msModel();

  bool Load(const char *path);
  void Clear();
  int FindJointByName(const char *name) const;
  int GetNumMaterials() const;

  // Skeleton evaluation.
  void SetupJoints();
  void SetupTangents();
  void SetFrame(float frame);
  void EvaluateJoint(int index, float frame);
  void TransformVertex(const msVertex &vertex, float (&out)[3]) const;
  void TransformNormal(const msVertex &vertex, const float (&normal)[3], float (&out)[3]) const;
  void GetVertexBonesAndWeights(const msVertex &vertex, int (&bones)[4], int (&weights)[4]) const;

  // When false, Load reads textures' paths but uploads nothing (tools that
  // have no GL context); the material keeps its name and TextureId stays 0.
  bool UploadTextures = true;
  // Optional sections found by the last Load: sub-version, or -1 when absent.
  int32_t CommentsSubVersion = -1;
  int32_t VertexExtraSubVersion = -1;
  int32_t JointExtraSubVersion = -1;
  int32_t ModelExtraSubVersion = -1;
};

// Size of the work buffer in which a texture's path is put together.
const int MS_MAX_PATH = 260;

// The path of a texture named in a model file: the model's directory, one
// "/", then the stored name unchanged. Empty when the result would not fit
// the work buffer (terminator included).
std::string msTexturePath(const char *modelPath, const char *texture);
