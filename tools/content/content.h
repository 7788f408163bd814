// The shipped content: the nine catalogues with their models and textures,
// the pictures and the cues, as the generator makes them.
#pragma once
#include <string>
#include <vector>
#include "tools/content/geometry.h"
#include "tools/content/image.h"

// A texture written beside the models of a catalogue.
struct TextureFile {
  std::string Name;
  Image Picture;
};

// Where on a body each kind of part sits, in the body's centred coordinates.
struct AnchorSet {
  Vec3 LeftEye, RightEye, LeftEar, RightEar, Nose, Mouth, LeftEyebrow, RightEyebrow, Moustache, LeftFoot, RightFoot,
      Hat;
};

struct BodyContent {
  std::string File, Thumb, Name;
  double Scale = 1;
  Vec3 Camera, Target;
  AnchorSet Anchors;
  ModelSpec Model;
};

// One part entry: one model (noses, mouths, moustaches, hats) or a left and
// a right model (eyes, ears, eyebrows, feet).
struct PartContent {
  std::string Name, Thumb;
  std::string LeftFile, RightFile;  // a single part uses LeftFile only
  ModelSpec Left, Right;
  Vec3 Offset;                      // hats only
  bool BackFaces = false;           // hats only
};

struct Catalogue {
  std::string IniName;   // "eyes.ini"
  std::string Section;   // "eyes"
  std::string Dir;       // "eyes"
  bool Pair = false;
  bool Hat = false;
  std::vector<PartContent> Parts;
  std::vector<TextureFile> Textures;
};

struct BodyCatalogue {
  std::vector<BodyContent> Bodies;
  std::vector<TextureFile> Textures;
};

BodyCatalogue MakeBodies();
// The eight part catalogues in the game's order: eyes, ears, noses, mouths,
// eyebrows, moustaches, feet, hats.
std::vector<Catalogue> MakeParts();

Image MakeMenuBack();
Image MakeNoneSign();
Image MakeConnectingBadge();
// A plain stand-in thumbnail, replaced by a rendered one later.
Image MakePlaceholderThumb(int w, int h, const std::string &caption);

// The player's readme, listing the shipped characters and parts.
std::string MakeReadme();

// Writes everything under `root` (which gets Tumblekin.txt, and data/ with its
// subdirectories).
bool WriteContent(const std::string &root);
