// The bodies: eight cartoon shapes, each with its skin, its little limbs or
// tail that move, its camera and the anchors of all the parts.
#include <algorithm>
#include <cmath>
#include "tools/content/content.h"

namespace {

RGB C(int r, int g, int b) { return RGB(r / 255.0, g / 255.0, b / 255.0); }

// ---------------------------------------------------------------- skins
// Skins are mapped with s around the body (the front at s = 0.75) and t from
// the bottom to the top, so patterns wrap at the left and right edges.

void WrapCircle(Image &img, double cx, double cy, double r, const RGB &c, double alpha = 1.0) {
  for (int k = -1; k <= 1; k++) img.Circle(cx + k * img.W, cy, r, c, alpha);
}

Image SpotSkin(const RGB &base, const RGB &spot, uint32_t seed, int count, double rmin, double rmax) {
  Image img(128, 128, base);
  Dice dice(seed);
  for (int i = 0; i < count; i++) {
    double x = dice.Range(0, 128), y = dice.Range(14, 114), r = dice.Range(rmin, rmax);
    // Spots are stretched across s near the poles, so they shrink there.
    WrapCircle(img, x, y, r * (0.55 + 0.45 * std::sin((y / 128.0) * 3.14159)), spot);
  }
  return img;
}

Image StripeSkin(const RGB &base, const RGB &stripe, int bands) {
  Image img(128, 128, base);
  for (int y = 0; y < 128; y++) {
    double phase = std::sin((y + 0.5) / 128.0 * bands * 2 * PI);
    double a = std::min(1.0, std::max(0.0, (phase - 0.35) * 4));
    for (int x = 0; x < 128; x++) img.Blend(x, y, stripe, a);
  }
  return img;
}

Image SparkleSkin(const RGB &base, uint32_t seed) {
  Image img(128, 128, base);
  Dice dice(seed);
  for (int i = 0; i < 160; i++) {
    double x = dice.Range(0, 128), y = dice.Range(4, 124);
    WrapCircle(img, x, y, dice.Range(0.7, 1.6), Mix(base, RGB(1, 1, 1), dice.Range(0.5, 0.9)));
  }
  return img;
}

// A lighter tummy patch on the front, under the face.
void Tummy(Image &img, const RGB &c, double t, double halfH) {
  double cy = 128 * (1 - t);
  img.Ellipse(96, cy, 17, halfH, c, 0.9);
}

// ---------------------------------------------------------------- limbs

struct LimbStyle {
  double ShoulderX, ShoulderY, ShoulderZ;
  double Length = 22, Radius = 6, Hand = 8.5;
  double Droop = 40;  // degrees below the horizontal
};

// Adds two little arms with round hands, each on its own joint, swinging
// in a loop; `wave` makes the left one wave high.
void AddArms(ModelSpec &m, const LimbStyle &s, int armMat, int handMat, bool wave, int frames) {
  for (int side = 0; side < 2; side++) {
    double sx = side == 0 ? 1 : -1;  // 0 is the character's left, +X
    double a = s.Droop * PI / 180;
    Vec3 root(sx * s.ShoulderX, s.ShoulderY, s.ShoulderZ);
    Vec3 dir(sx * std::cos(a), -std::sin(a), -0.15);
    dir = Normalise(dir);
    Vec3 start = root - dir * 8;
    Vec3 end = root + dir * s.Length;
    double len = s.Length + 8, r = s.Radius;
    Mesh arm = Tube([=](double v) { return start + (end - start) * v; }, [=](double v) { return Capsule(v, r, 0.2); },
                    12, 8, Vec3(0, 0, 1));
    (void)len;
    Mesh hand = Sphere(s.Hand, 16, 12);
    hand.Move(end + dir * (s.Hand * 0.5));
    JointSpec j;
    j.Name = side == 0 ? "arm_left" : "arm_right";
    j.Position = root;
    double swing = wave && side == 0 ? 0.9 : 0.3;
    double f = frames;
    double phase = side == 0 ? 1 : -1;
    j.Rotations = {{0, {0, 0, 0}},
                   {f * 0.25, {0.1, 0, sx * swing * phase * (wave && side == 0 ? 1 : 1)}},
                   {f * 0.5, {0, 0, 0}},
                   {f * 0.75, {-0.1, 0, -sx * swing * 0.6}},
                   {f, {0, 0, 0}}};
    if (wave && side == 0) {
      j.Rotations = {{0, {0, 0, 0.7}}, {f * 0.25, {0, 0, 1.2}}, {f * 0.5, {0, 0, 0.7}}, {f * 0.75, {0, 0, 1.2}},
                     {f, {0, 0, 0.7}}};
    }
    int joint = m.AddJoint(j);
    arm.Bind(joint);
    hand.Bind(joint);
    m.Add(arm, armMat);
    m.Add(hand, handMat);
  }
}

// ---------------------------------------------------------------- anchors

// Where the face and the other parts go, in the body's building
// coordinates; rays from inside find the surface.
struct Layout {
  double EyeX, EyeY;
  double BrowLift = 17;
  double NoseY, MouthY;
  double EarY, EarAngle = 50;  // rays from (0, EarY, 0), this many degrees above the horizontal
  double FootX, FootZ = -8;
  double HatZ = 0;
};

Vec3 SkinPoint(const Mesh &shell, const Vec3 &from, const Vec3 &dir) {
  Vec3 hit;
  if (!CastRay(shell, from, Normalise(dir), hit)) return from;
  return hit;
}

Vec3 Clamp(const Vec3 &p, const Vec3 &lo, const Vec3 &hi) {
  return {std::min(std::max(p.x, lo.x), hi.x), std::min(std::max(p.y, lo.y), hi.y),
          std::min(std::max(p.z, lo.z), hi.z)};
}

// Centres the model, then places every anchor on the shell: face parts a
// little in front of the skin (-Z is towards the viewer), ears just under
// the skin so their roots hide, feet on the underside (the feet hang from
// there) and the hat on the top.
void Finish(BodyContent &b, const Mesh &shellIn, const Layout &l) {
  Vec3 shift = b.Model.Centre();
  Mesh shell = shellIn;
  shell.Move(shift);
  auto at = [&](double x, double y) { return Vec3(x, y, 0) + shift; };
  const Vec3 fwd(0, 0, -1);
  AnchorSet &a = b.Anchors;
  a.LeftEye = SkinPoint(shell, at(l.EyeX, l.EyeY), fwd) + Vec3(0, 0, -3);
  a.RightEye = SkinPoint(shell, at(-l.EyeX, l.EyeY), fwd) + Vec3(0, 0, -3);
  a.LeftEyebrow = SkinPoint(shell, at(l.EyeX, l.EyeY + l.BrowLift), fwd) + Vec3(0, 0, -2);
  a.RightEyebrow = SkinPoint(shell, at(-l.EyeX, l.EyeY + l.BrowLift), fwd) + Vec3(0, 0, -2);
  a.Nose = SkinPoint(shell, at(0, l.NoseY), fwd) + Vec3(0, 0, -3);
  a.Mouth = SkinPoint(shell, at(0, l.MouthY), fwd) + Vec3(0, 0, -1);
  a.Moustache = SkinPoint(shell, at(0, (l.NoseY * 0.6 + l.MouthY * 0.4)), fwd) + Vec3(0, 0, -3);
  double e = l.EarAngle * PI / 180;
  Vec3 earL = SkinPoint(shell, at(0, l.EarY), Vec3(std::cos(e), std::sin(e), 0));
  Vec3 earR = SkinPoint(shell, at(0, l.EarY), Vec3(-std::cos(e), std::sin(e), 0));
  a.LeftEar = earL + Normalise(Vec3(std::cos(e), std::sin(e), 0)) * -3;
  a.RightEar = earR + Normalise(Vec3(-std::cos(e), std::sin(e), 0)) * -3;
  a.LeftFoot = SkinPoint(shell, Vec3(l.FootX, 0, l.FootZ) + shift, Vec3(0, -1, 0));
  a.RightFoot = SkinPoint(shell, Vec3(-l.FootX, 0, l.FootZ) + shift, Vec3(0, -1, 0));
  // The top is found a hair off the axis: where a surface closes at a pole,
  // its last ring of vertices can leave a pinhole that a ray along the axis
  // would pass through.
  Vec3 top = SkinPoint(shell, Vec3(0.01, 0, l.HatZ + 0.01) + shift, Vec3(0, 1, 0));
  a.Hat = Vec3(shift.x, top.y, l.HatZ + shift.z);
  // Every anchor stays inside the body's box, where the game expects it.
  Vec3 lo = b.Model.Min(), hi = b.Model.Max();
  for (Vec3 *p : {&a.LeftEye, &a.RightEye, &a.LeftEar, &a.RightEar, &a.Nose, &a.Mouth, &a.LeftEyebrow,
                  &a.RightEyebrow, &a.Moustache, &a.LeftFoot, &a.RightFoot, &a.Hat}) {
    *p = Clamp(*p, lo, hi);
  }
  // The camera frames the body with a hat above and feet below, a little to
  // the right of the middle of the screen so the picker bar at the left
  // edge doesn't cover it (+X is at the left of the screen).
  double height = hi.y - lo.y + 60;
  double dist = height * 1.55 * b.Scale;
  double midY = (hi.y + 22 + lo.y - 12) * 0.5 * b.Scale;
  b.Target = Vec3(0.11 * dist, midY, 0);
  b.Camera = Vec3(0.11 * dist, midY + 0.12 * dist, -dist);
}

MaterialSpec Skin(const std::string &name, const std::string &texture, float specular = 0.25f,
                  float shininess = 30) {
  MaterialSpec m;
  m.Name = name;
  m.Texture = texture;
  m.Specular = specular;
  m.Shininess = shininess;
  m.Ambient = 0.55f;
  return m;
}

const int FRAMES = 48;

// ---------------------------------------------------------------- bodies

BodyContent Egg(std::vector<TextureFile> &tex) {
  BodyContent b;
  b.File = "eggbert.ms3d";
  b.Name = "Eggbert";
  tex.push_back({"eggbert_skin.tga", SpotSkin(C(255, 216, 70), C(255, 150, 40), 11, 26, 4, 9)});
  Mesh shell = Lathe([](double v, double &r, double &y) {
    double t = v * PI;
    y = -std::cos(t) * 56;
    r = 44 * std::sin(t) * (1 + 0.12 * std::cos(t));
  });
  b.Model.Frames = FRAMES;
  int skin = b.Model.AddMaterial(Skin("egg skin", "eggbert_skin.tga"));
  int glove = b.Model.AddMaterial(Colour("glove", 255, 255, 255, 0.3f, 30));
  b.Model.Add(shell, skin);
  LimbStyle s{44, -12, 0};
  AddArms(b.Model, s, skin, glove, true, FRAMES);
  Layout l;
  l.EyeX = 15;
  l.EyeY = 14;
  l.NoseY = 2;
  l.MouthY = -14;
  l.EarY = 14;
  l.EarAngle = 35;
  l.FootX = 20;
  Finish(b, shell, l);
  return b;
}

BodyContent Pear(std::vector<TextureFile> &tex) {
  BodyContent b;
  b.File = "pearla.ms3d";
  b.Name = "Pearla";
  tex.push_back({"pearla_skin.tga", SpotSkin(C(160, 215, 70), C(200, 235, 110), 23, 40, 1.5, 3.5)});
  Mesh shell = Lathe([](double v, double &r, double &y) {
    double t = v * PI;
    y = -std::cos(t) * 54;
    double k = y / 54;
    r = std::sin(t) * (37 - 11 * k) * (1 - 0.1 * std::exp(-((y - 8) / 14) * ((y - 8) / 14)));
  });
  b.Model.Frames = FRAMES;
  int skin = b.Model.AddMaterial(Skin("pear skin", "pearla_skin.tga", 0.35f, 50));
  int glove = b.Model.AddMaterial(Colour("leafy hand", 90, 170, 60, 0.2f, 20));
  b.Model.Add(shell, skin);
  LimbStyle s{38, -22, 0};
  s.Droop = 30;
  AddArms(b.Model, s, skin, glove, false, FRAMES);
  Layout l;
  l.EyeX = 11;
  l.EyeY = 24;
  l.BrowLift = 15;
  l.NoseY = 13;
  l.MouthY = 1;
  l.EarY = 24;
  l.EarAngle = 40;
  l.FootX = 22;
  Finish(b, shell, l);
  return b;
}

BodyContent Bean(std::vector<TextureFile> &tex) {
  BodyContent b;
  b.File = "beanbo.ms3d";
  b.Name = "Beanbo";
  Image skin(128, 128, C(236, 64, 92));
  // A soft highlight stripe gives the jelly-bean shine.
  for (int y = 0; y < 128; y++) {
    for (int x = 0; x < 128; x++) {
      double d = std::fabs(x - 80.0) / 10.0;
      skin.Blend(x, y, C(255, 150, 170), 0.45 * std::exp(-d * d));
    }
  }
  tex.push_back({"beanbo_skin.tga", skin});
  Mesh shell = Tube([](double v) { return Vec3(0, -52 + 104 * v, -14 * std::sin(PI * v)); },
                    [](double v) { return 36 * std::pow(std::sin(PI * v), 0.45) * (1 + 0.08 * std::cos(PI * v)); },
                    36, 32, Vec3(1, 0, 0));
  b.Model.Frames = FRAMES;
  int mat = b.Model.AddMaterial(Skin("bean skin", "beanbo_skin.tga", 0.7f, 90));
  int glove = b.Model.AddMaterial(Colour("glove", 255, 255, 255, 0.3f, 30));
  b.Model.Add(shell, mat);
  LimbStyle s{35, -14, -4};
  AddArms(b.Model, s, mat, glove, false, FRAMES);
  Layout l;
  l.EyeX = 13;
  l.EyeY = 20;
  l.NoseY = 8;
  l.MouthY = -6;
  l.EarY = 20;
  l.EarAngle = 40;
  l.FootX = 18;
  l.FootZ = -4;
  Finish(b, shell, l);
  return b;
}

BodyContent Cube(std::vector<TextureFile> &tex) {
  BodyContent b;
  b.File = "cubix.ms3d";
  b.Name = "Cubix";
  tex.push_back({"cubix_skin.tga", StripeSkin(C(80, 165, 245), C(150, 210, 255), 5)});
  Mesh shell = SuperEllipsoid(46, 50, 40, 0.3, 0.3, 40, 32);
  b.Model.Frames = FRAMES;
  b.Scale = 0.95;
  int mat = b.Model.AddMaterial(Skin("cube skin", "cubix_skin.tga", 0.4f, 50));
  int glove = b.Model.AddMaterial(Colour("glove", 255, 220, 60, 0.3f, 30));
  b.Model.Add(shell, mat);
  LimbStyle s{43, -18, 0};
  s.Droop = 25;
  AddArms(b.Model, s, mat, glove, false, FRAMES);
  Layout l;
  l.EyeX = 17;
  l.EyeY = 16;
  l.NoseY = 3;
  l.MouthY = -14;
  l.EarY = 18;
  l.EarAngle = 45;
  l.FootX = 22;
  Finish(b, shell, l);
  return b;
}

BodyContent Blob(std::vector<TextureFile> &tex) {
  BodyContent b;
  b.File = "blobbo.ms3d";
  b.Name = "Blobbo";
  Image skin = SpotSkin(C(150, 95, 225), C(175, 125, 240), 5, 18, 3, 7);
  Tummy(skin, C(215, 190, 255), 0.3, 30);
  tex.push_back({"blobbo_skin.tga", skin});
  Mesh shell = Lathe([](double v, double &r, double &y) {
    double t = v * PI;
    y = -std::cos(t) * 46;
    r = 50 * std::pow(std::sin(t), 0.8) * (1 + 0.1 * std::cos(t));
  }, 40, 32, 1.0, 0.88);
  b.Model.Frames = FRAMES;
  int mat = b.Model.AddMaterial(Skin("blob skin", "blobbo_skin.tga", 0.35f, 40));
  int tip = b.Model.AddMaterial(Colour("tail tip", 255, 200, 80, 0.4f, 40));
  b.Model.Add(shell, mat);
  // The tail: a tapering curl at the back, wagging from side to side.
  Mesh tail = Tube([](double v) { return Vec3(0, -28 + 30 * v + 14 * v * v, 38 + 34 * v); },
                   [](double v) { return Capsule(v, 9 - 4 * v, 0.15); }, 14, 16, Vec3(1, 0, 0));
  Mesh tuft = Sphere(8, 14, 10);
  tuft.Move(0, 16, 73);
  JointSpec j;
  j.Name = "tail";
  j.Position = Vec3(0, -28, 38);
  j.Rotations = {{0, {0, 0.5, 0}}, {12, {0.1, 0, 0}}, {24, {0, -0.5, 0}}, {36, {0.1, 0, 0}}, {48, {0, 0.5, 0}}};
  int tj = b.Model.AddJoint(j);
  tail.Bind(tj);
  tuft.Bind(tj);
  b.Model.Add(tail, mat);
  b.Model.Add(tuft, tip);
  Layout l;
  l.EyeX = 16;
  l.EyeY = 14;
  l.NoseY = 2;
  l.MouthY = -12;
  l.EarY = 10;
  l.EarAngle = 45;
  l.FootX = 22;
  Finish(b, shell, l);
  return b;
}

BodyContent Gumdrop(std::vector<TextureFile> &tex) {
  BodyContent b;
  b.File = "gumdrop.ms3d";
  b.Name = "Gumdrop";
  tex.push_back({"gumdrop_skin.tga", SparkleSkin(C(40, 200, 180), 77)});
  Mesh shell = Lathe([](double v, double &r, double &y) {
    double t = v * PI;
    double c = std::cos(t), s = std::sin(t);
    if (t < PI / 2) {
      // The lower half has upright sides and a rounded flat bottom.
      r = 46 * std::pow(s, 0.35);
      y = -38 * std::pow(c, 0.45);
    } else {
      r = 46 * s;
      y = -c * 66;
    }
  }, 36, 40);
  b.Model.Frames = FRAMES;
  int mat = b.Model.AddMaterial(Skin("gum skin", "gumdrop_skin.tga", 0.6f, 70));
  int glove = b.Model.AddMaterial(Colour("glove", 255, 255, 255, 0.3f, 30));
  b.Model.Add(shell, mat);
  LimbStyle s{44, -14, 0};
  AddArms(b.Model, s, mat, glove, false, FRAMES);
  Layout l;
  l.EyeX = 14;
  l.EyeY = 22;
  l.NoseY = 9;
  l.MouthY = -6;
  l.EarY = 18;
  l.EarAngle = 50;
  l.FootX = 22;
  Finish(b, shell, l);
  return b;
}

BodyContent Puff(std::vector<TextureFile> &tex) {
  BodyContent b;
  b.File = "puffball.ms3d";
  b.Name = "Puffball";
  tex.push_back({"puffball_skin.tga", SpotSkin(C(255, 135, 185), C(255, 240, 245), 3, 22, 5, 7)});
  Mesh shell = Sphere(47, 40, 30);
  b.Model.Frames = FRAMES;
  b.Scale = 1.05;
  int mat = b.Model.AddMaterial(Skin("puff skin", "puffball_skin.tga", 0.3f, 40));
  int wingMat = b.Model.AddMaterial(Colour("wing", 255, 250, 210, 0.2f, 20));
  b.Model.Add(shell, mat);
  // Two little wings flap at the sides.
  for (int side = 0; side < 2; side++) {
    double sx = side == 0 ? 1 : -1;
    Mesh wing = SuperEllipsoid(16, 11, 3.5, 1, 1, 16, 12);
    wing.Rotate('z', sx * 25).Move(sx * 56, -2, 6);
    JointSpec j;
    j.Name = side == 0 ? "wing_left" : "wing_right";
    j.Position = Vec3(sx * 42, -4, 6);
    j.Rotations = {{0, {0, 0, 0}}, {6, {0, 0, sx * 0.6}}, {12, {0, 0, 0}}, {18, {0, 0, sx * 0.6}}, {24, {0, 0, 0}},
                   {48, {0, 0, 0}}};
    int wj = b.Model.AddJoint(j);
    wing.Bind(wj);
    b.Model.Add(wing, wingMat);
  }
  Layout l;
  l.EyeX = 15;
  l.EyeY = 14;
  l.NoseY = 2;
  l.MouthY = -14;
  l.EarY = 10;
  l.EarAngle = 50;
  l.FootX = 20;
  Finish(b, shell, l);
  return b;
}

BodyContent Spud(std::vector<TextureFile> &tex) {
  BodyContent b;
  b.File = "spud.ms3d";
  b.Name = "Spud";
  tex.push_back({"spud_skin.tga", SpotSkin(C(205, 155, 95), C(170, 118, 70), 41, 30, 1.5, 3.5)});
  Mesh shell = Surface(40, 32, [](double u, double v) {
    double lat = -PI / 2 + v * PI, lon = u * 2 * PI;
    double bump = 1 + 0.05 * std::sin(3 * lon + 1) * std::cos(lat) + 0.04 * std::sin(2 * lat + 2 * lon);
    return Vec3(43 * std::cos(lat) * std::cos(lon) * bump, 54 * std::sin(lat) * bump,
                37 * std::cos(lat) * std::sin(lon) * bump);
  }, true);
  b.Model.Frames = FRAMES;
  int mat = b.Model.AddMaterial(Skin("spud skin", "spud_skin.tga", 0.1f, 10));
  int glove = b.Model.AddMaterial(Colour("glove", 120, 200, 90, 0.2f, 20));
  b.Model.Add(shell, mat);
  LimbStyle s{40, -16, 0};
  AddArms(b.Model, s, mat, glove, true, FRAMES);
  Layout l;
  l.EyeX = 14;
  l.EyeY = 16;
  l.NoseY = 3;
  l.MouthY = -13;
  l.EarY = 16;
  l.EarAngle = 40;
  l.FootX = 19;
  Finish(b, shell, l);
  return b;
}

}  // namespace

BodyCatalogue MakeBodies() {
  BodyCatalogue cat;
  cat.Bodies.push_back(Egg(cat.Textures));
  cat.Bodies.push_back(Pear(cat.Textures));
  cat.Bodies.push_back(Bean(cat.Textures));
  cat.Bodies.push_back(Cube(cat.Textures));
  cat.Bodies.push_back(Blob(cat.Textures));
  cat.Bodies.push_back(Gumdrop(cat.Textures));
  cat.Bodies.push_back(Puff(cat.Textures));
  cat.Bodies.push_back(Spud(cat.Textures));
  for (BodyContent &b : cat.Bodies) {
    b.Thumb = b.File.substr(0, b.File.size() - 5) + "_thumb.tga";
  }
  return cat;
}
