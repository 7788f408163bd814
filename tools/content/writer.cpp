// Writes the content into a data directory: models, textures, catalogues,
// stand-in thumbnails, pictures and cues.
#include <sys/stat.h>
#include <cstdio>
#include <sstream>
#include "tools/content/content.h"
#include "tools/content/sound.h"

namespace {

bool MakeDir(const std::string &path) { return mkdir(path.c_str(), 0755) == 0 || errno == EEXIST; }

bool WriteText(const std::string &path, const std::string &text) {
  FILE *f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  bool ok = std::fwrite(text.data(), 1, text.size(), f) == text.size();
  return std::fclose(f) == 0 && ok;
}

// Numbers in the catalogues: enough digits to place a part to a hundredth
// of a unit, and the same text on every run.
std::string Num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  std::string s = buf;
  if (s == "-0.00") s = "0.00";
  return s;
}

void Key(std::ostringstream &o, const std::string &name, const std::string &value) {
  o << name << " = " << value << "\n";
}

void Anchor(std::ostringstream &o, const std::string &name, const Vec3 &v) {
  Key(o, name + "X", Num(v.x));
  Key(o, name + "Y", Num(v.y));
  Key(o, name + "Z", Num(v.z));
}

bool WriteTextures(const std::string &dir, const std::vector<TextureFile> &textures) {
  bool ok = true;
  for (const TextureFile &t : textures) ok = t.Picture.SaveTGA(dir + "/" + t.Name) && ok;
  return ok;
}

bool WriteBodies(const std::string &data) {
  BodyCatalogue cat = MakeBodies();
  std::string dir = data + "/characters";
  bool ok = MakeDir(dir) && WriteTextures(dir, cat.Textures);
  std::ostringstream o;
  o << "# Bodies: the model, its thumbnail and caption, the scale, the camera of\n"
       "# the single-player view, and where on the body each part sits.\n\n";
  o << "[info]\n";
  Key(o, "count", std::to_string(cat.Bodies.size()));
  for (size_t i = 0; i < cat.Bodies.size(); i++) {
    const BodyContent &b = cat.Bodies[i];
    ok = b.Model.Save(dir + "/" + b.File) && ok;
    ok = MakePlaceholderThumb(128, 128, b.Name).SaveTGA(dir + "/" + b.Thumb) && ok;
    o << "\n[character" << i << "]\n";
    Key(o, "model", b.File);
    Key(o, "thumb", b.Thumb);
    Key(o, "name", b.Name);
    Key(o, "scale", Num(b.Scale));
    Key(o, "CameraX", Num(b.Camera.x));
    Key(o, "CameraY", Num(b.Camera.y));
    Key(o, "CameraZ", Num(b.Camera.z));
    Key(o, "TargetX", Num(b.Target.x));
    Key(o, "TargetY", Num(b.Target.y));
    Key(o, "TargetZ", Num(b.Target.z));
    const AnchorSet &a = b.Anchors;
    Anchor(o, "LeftEye", a.LeftEye);
    Anchor(o, "RightEye", a.RightEye);
    Anchor(o, "LeftEar", a.LeftEar);
    Anchor(o, "RightEar", a.RightEar);
    Anchor(o, "Nose", a.Nose);
    Anchor(o, "Mouth", a.Mouth);
    Anchor(o, "LeftEyebrow", a.LeftEyebrow);
    Anchor(o, "RightEyebrow", a.RightEyebrow);
    Anchor(o, "Moustache", a.Moustache);
    Anchor(o, "LeftFoot", a.LeftFoot);
    Anchor(o, "RightFoot", a.RightFoot);
    Anchor(o, "Hat", a.Hat);
  }
  return WriteText(data + "/characters.ini", o.str()) && ok;
}

bool WritePartCatalogue(const std::string &data, const Catalogue &cat) {
  std::string dir = data + "/" + cat.Dir;
  bool ok = MakeDir(dir) && WriteTextures(dir, cat.Textures);
  std::ostringstream o;
  o << "[info]\n";
  Key(o, "count", std::to_string(cat.Parts.size()));
  for (size_t i = 0; i < cat.Parts.size(); i++) {
    const PartContent &p = cat.Parts[i];
    ok = p.Left.Save(dir + "/" + p.LeftFile) && ok;
    if (cat.Pair) ok = p.Right.Save(dir + "/" + p.RightFile) && ok;
    ok = MakePlaceholderThumb(128, 96, p.Name).SaveTGA(dir + "/" + p.Thumb) && ok;
    o << "\n[" << cat.Section << i << "]\n";
    if (cat.Pair) {
      Key(o, "LeftModel", p.LeftFile);
      Key(o, "RightModel", p.RightFile);
    } else {
      Key(o, "model", p.LeftFile);
    }
    Key(o, "thumb", p.Thumb);
    Key(o, "name", p.Name);
    if (cat.Hat) {
      Key(o, "OffsetX", Num(p.Offset.x));
      Key(o, "OffsetY", Num(p.Offset.y));
      Key(o, "OffsetZ", Num(p.Offset.z));
      Key(o, "backfaces", p.BackFaces ? "1" : "0");
    }
  }
  return WriteText(data + "/" + cat.IniName, o.str()) && ok;
}

}  // namespace

bool WriteContent(const std::string &root) {
  std::string data = root + "/data";
  bool ok = MakeDir(root) && MakeDir(data) && MakeDir(data + "/sounds");
  if (!ok) return false;
  ok = WriteText(root + "/Tumblekin.txt", MakeReadme()) && ok;
  ok = WriteBodies(data) && ok;
  for (const Catalogue &cat : MakeParts()) ok = WritePartCatalogue(data, cat) && ok;
  ok = MakeMenuBack().SaveTGA(data + "/menuback.tga") && ok;
  ok = MakeNoneSign().SaveTGA(data + "/none.tga") && ok;
  ok = MakeConnectingBadge().SaveTGA(data + "/connecting.tga") && ok;
  for (const char *name : CUE_NAMES) ok = MakeCue(name).SaveWAV(data + "/sounds/" + name + ".wav") && ok;
  return ok;
}
