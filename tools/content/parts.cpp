// The eight part catalogues: eyes, ears, noses, mouths, eyebrows,
// moustaches, feet and hats. Every part is built around the point where it
// meets the body, which becomes the centre of its bounding box, because the
// game draws a part with its box centre on the body's anchor.
#include <cmath>
#include "tools/content/content.h"

namespace {

RGB C(int r, int g, int b) { return RGB(r / 255.0, g / 255.0, b / 255.0); }

// A model being built, with a material for each colour asked for.
class Kit {
public:
  ModelSpec M;
  int Mat(const std::string &name, int r, int g, int b, float spec = 0.3f, float shin = 40) {
    for (size_t i = 0; i < M.Materials.size(); i++) {
      if (M.Materials[i].Name == name) return static_cast<int>(i);
    }
    return M.AddMaterial(Colour(name, r, g, b, spec, shin));
  }
  int Tex(const std::string &name, const std::string &texture, float spec = 0.4f, float shin = 60) {
    MaterialSpec m;
    m.Name = name;
    m.Texture = texture;
    m.Specular = spec;
    m.Shininess = shin;
    m.Ambient = 0.6f;
    return M.AddMaterial(m);
  }
  void Add(const Mesh &m, int mat) { M.Add(m, mat); }
};

// A tube through a curve given as a function of v in [0, 1].
Mesh Curve(const std::function<Vec3(double)> &c, double r, double endFrac = 0.12, int nv = 24,
           const Vec3 &side = Vec3(0, 0, -1)) {
  return Tube(c, [=](double v) { return Capsule(v, r, endFrac); }, 10, nv, side);
}

// How far back a face part's ends bend to follow a round face.
double FaceBend(double x) { return x * x / 100.0; }

PartContent Single(const std::string &name, const std::string &file, const Kit &k) {
  PartContent p;
  p.Name = name;
  p.LeftFile = file + ".ms3d";
  p.Left = k.M;
  p.Thumb = file + "_thumb.tga";
  return p;
}

// A pair from one builder called with side +1 (the character's left, +X)
// and -1 (the right).
PartContent Pair(const std::string &name, const std::string &file, const std::function<Kit(double side)> &make) {
  PartContent p;
  p.Name = name;
  p.LeftFile = file + "_left.ms3d";
  p.RightFile = file + "_right.ms3d";
  p.Left = make(1).M;
  p.Right = make(-1).M;
  p.Thumb = file + "_thumb.tga";
  return p;
}

// A small key loop of rotations about one axis for one joint.
std::vector<KeySpec> Swing(char axis, const std::vector<double> &angles, double frames) {
  std::vector<KeySpec> keys;
  for (size_t i = 0; i < angles.size(); i++) {
    double f = frames * i / (angles.size() - 1);
    Vec3 v = axis == 'x' ? Vec3(angles[i], 0, 0) : axis == 'y' ? Vec3(0, angles[i], 0) : Vec3(0, 0, angles[i]);
    keys.push_back({f, v});
  }
  return keys;
}

// ---------------------------------------------------------------- eyes

// Eye pictures: white with an iris in the middle, seen from the front.
Image EyePicture(const RGB &iris, const RGB &irisDark, double irisR, int pupilKind) {
  Image img(128, 128, C(252, 252, 250));
  const double c = 64;
  if (irisR > 0) {
    img.Circle(c, c, irisR + 2, irisDark);
    img.Shape([=](double x, double y) { return DistCircle(x, y, c, c, irisR); },
              [=](double x, double y) {
                double d = std::hypot(x - c, y - c) / irisR;
                return Mix(iris, irisDark, d * d * 0.8);
              });
  }
  RGB black = C(20, 18, 30);
  switch (pupilKind) {
  case 0: img.Circle(c, c, irisR * 0.5, black); break;
  case 1: img.Ellipse(c, c, irisR * 0.18, irisR * 0.85, black); break;           // slit
  case 2:                                                                          // heart
    img.Shape([=](double x, double y) {
      double px = (x - c) / (irisR * 0.6), py = (y - c) / (irisR * 0.6) + 0.2;
      double a = DistCircle(px, py, -0.35, -0.25, 0.42), b = DistCircle(px, py, 0.35, -0.25, 0.42);
      double v = DistSegment(px, py, 0, 0.75, -0.66, 0.0, 0.05);
      double w = DistSegment(px, py, 0, 0.75, 0.66, 0.0, 0.05);
      double tri = std::max(std::max(-(py + 0.3), (std::fabs(px) * 1.15 + py - 0.75)), -1.0);
      (void)v;
      (void)w;
      return std::min(std::min(a, b), tri) * irisR * 0.6;
    }, C(200, 20, 80));
    break;
  case 3:                                                                          // spiral
    img.Shape([=](double x, double y) {
      double dx = x - c, dy = y - c, r = std::hypot(dx, dy);
      if (r > irisR + 4) return 10.0;
      double a = std::atan2(dy, dx);
      double turns = r / 9.0 - a / (2 * PI);
      double f = turns - std::floor(turns);
      return (std::fabs(f - 0.5) - 0.22) * 9.0;
    }, black);
    break;
  default: break;
  }
  // Highlights at the upper right of the viewer's picture.
  img.Circle(c + irisR * 0.38, c - irisR * 0.4, irisR * 0.22, C(255, 255, 255));
  img.Circle(c - irisR * 0.3, c + irisR * 0.35, irisR * 0.09, C(255, 255, 255), 0.8);
  return img;
}

Mesh EyeBall(double r) { return Sphere(r, 28, 20).ProjectFront(0, 0, r, r); }

// An eyelid: the upper part of a slightly larger sphere, tilted by `tilt`.
Mesh Lid(double r, double from, double tilt) {
  Mesh m = Surface(24, 10, [=](double u, double v) {
    double lat = from + v * (PI / 2 - from), lon = u * 2 * PI;
    return Vec3(r * std::cos(lat) * std::cos(lon), r * std::sin(lat), r * std::cos(lat) * std::sin(lon));
  }, false);
  m.Rotate('z', tilt);
  return m;
}

Catalogue Eyes() {
  Catalogue cat{"eyes.ini", "eyes", "eyes", true, false, {}, {}};
  cat.Textures.push_back({"eye_googly.tga", EyePicture(C(25, 20, 35), C(25, 20, 35), 30, 0)});
  cat.Textures.push_back({"eye_blue.tga", EyePicture(C(80, 170, 255), C(20, 70, 170), 30, 0)});
  cat.Textures.push_back({"eye_brown.tga", EyePicture(C(170, 110, 50), C(90, 50, 20), 28, 0)});
  cat.Textures.push_back({"eye_button.tga", EyePicture(C(30, 26, 40), C(10, 8, 15), 70, 0)});
  cat.Textures.push_back({"eye_cat.tga", EyePicture(C(170, 230, 60), C(60, 140, 20), 34, 1)});
  cat.Textures.push_back({"eye_heart.tga", EyePicture(C(255, 170, 210), C(230, 90, 150), 32, 2)});
  cat.Textures.push_back({"eye_dizzy.tga", EyePicture(C(250, 250, 250), C(250, 250, 250), 40, 3)});
  cat.Textures.push_back({"eye_green.tga", EyePicture(C(90, 200, 140), C(20, 110, 70), 27, 0)});

  auto plain = [](const std::string &tex, double r) {
    return [=](double) {
      Kit k;
      k.Add(EyeBall(r), k.Tex("eye", tex, 0.6f, 80));
      return k;
    };
  };
  cat.Parts.push_back(Pair("Googly", "googly", plain("eye_googly.tga", 11)));
  cat.Parts.push_back(Pair("Sparkly", "sparkly", plain("eye_blue.tga", 10)));
  cat.Parts.push_back(Pair("Sleepy", "sleepy", [](double) {
    Kit k;
    k.Add(EyeBall(10), k.Tex("eye", "eye_brown.tga", 0.6f, 80));
    k.Add(Lid(10.8, 0.15, 0), k.Mat("lid", 190, 150, 230, 0.3f, 30));
    return k;
  }));
  cat.Parts.push_back(Pair("Button", "button", plain("eye_button.tga", 7)));
  cat.Parts.push_back(Pair("Kitty", "kitty", plain("eye_cat.tga", 10)));
  cat.Parts.push_back(Pair("Smitten", "smitten", plain("eye_heart.tga", 10.5)));
  cat.Parts.push_back(Pair("Dizzy", "dizzy", plain("eye_dizzy.tga", 10.5)));
  cat.Parts.push_back(Pair("Goggles", "goggles", [](double) {
    Kit k;
    k.Add(EyeBall(9), k.Tex("eye", "eye_green.tga", 0.6f, 80));
    Mesh rim = Torus(11, 2.4, 28, 10);
    rim.Rotate('x', 90).Move(0, 0, -3);
    k.Add(rim, k.Mat("brass", 225, 170, 60, 0.8f, 90));
    // The lens: a clear blue dome the eye shows through.
    Mesh lens = SuperEllipsoid(11, 11, 4, 1, 1, 24, 14);
    lens.Move(0, 0, -6);
    MaterialSpec glass = Colour("lens", 150, 210, 255, 0.9f, 110);
    glass.Transparency = 0.35f;
    k.Add(lens, k.M.AddMaterial(glass));
    return k;
  }));
  cat.Parts.push_back(Pair("Grumpy", "grumpy", [](double side) {
    Kit k;
    k.Add(EyeBall(10), k.Tex("eye", "eye_brown.tga", 0.6f, 80));
    // The lid slopes down towards the middle of the face.
    k.Add(Lid(10.8, 0.35, side * 18), k.Mat("lid", 120, 200, 110, 0.3f, 30));
    return k;
  }));
  return cat;
}

// ---------------------------------------------------------------- ears

// The root of an ear: a marker below it that lowers the box centre, so that
// the ear stands out of the head instead of sinking half into it.
Mesh Root(double y) { return Marker(0, y, 0); }

Catalogue Ears() {
  Catalogue cat{"ears.ini", "ears", "ears", true, false, {}, {}};
  cat.Parts.push_back(Pair("Teddy", "teddy", [](double side) {
    Kit k;
    Mesh ear = SuperEllipsoid(13, 13, 7, 1, 1, 20, 14);
    ear.Append(Root(-26));
    k.Add(ear, k.Mat("fur", 150, 95, 55, 0.15f, 15));
    Mesh inner = SuperEllipsoid(8, 8, 3, 1, 1, 16, 10);
    inner.Move(0, 1, -5);
    k.Add(inner, k.Mat("inner", 240, 170, 150, 0.15f, 15));
    (void)side;
    return k;
  }));
  cat.Parts.push_back(Pair("Kitty", "kitty", [](double side) {
    Kit k;
    int fur = k.Mat("fur", 255, 160, 60, 0.2f, 20);
    auto cone = [](double h, double r) {
      return Lathe([=](double v, double &rr, double &y) {
        double t = v * PI;
        y = -std::cos(t) * h / 2;
        rr = r * std::pow(std::sin(t), 0.7) * (1 - 0.85 * v);
      }, 20, 16, 1.0, 0.45);
    };
    Mesh outer = cone(30, 13);
    outer.Move(0, 14, 0);
    Mesh inner = cone(20, 8);
    inner.Move(0, 12, -3.5);
    Mesh root = Root(-19);
    root.Append(outer);
    root.Rotate('z', -side * 14);
    inner.Rotate('z', -side * 14);
    k.Add(root, fur);
    k.Add(inner, k.Mat("inner", 255, 190, 200, 0.2f, 20));
    return k;
  }));
  cat.Parts.push_back(Pair("Bunny", "bunny", [](double side) {
    Kit k;
    int fur = k.Mat("fur", 250, 250, 250, 0.2f, 20);
    Mesh ear = SuperEllipsoid(8, 24, 5, 1, 1, 20, 20);
    ear.Move(0, 22, 0);
    Mesh inner = SuperEllipsoid(4.5, 18, 2, 1, 1, 16, 14);
    inner.Move(0, 22, -4);
    ear.Append(Root(-19));
    // The ear twitches now and then about its base.
    JointSpec j;
    j.Name = "ear";
    j.Position = Vec3(0, 0, 0);
    j.Rotations = Swing('z', {0, 0, 0, -side * 0.25, 0, -side * 0.25, 0, 0}, 72);
    int jt = k.M.AddJoint(j);
    ear.Bind(jt);
    inner.Bind(jt);
    ear.Rotate('z', -side * 8);
    inner.Rotate('z', -side * 8);
    k.Add(ear, fur);
    k.Add(inner, k.Mat("inner", 255, 180, 200, 0.2f, 20));
    k.M.Frames = 72;
    return k;
  }));
  cat.Parts.push_back(Pair("Mousy", "mousy", [](double side) {
    Kit k;
    int fur = k.Mat("fur", 160, 160, 175, 0.2f, 20);
    Mesh disc = SuperEllipsoid(18, 18, 4, 1, 1, 24, 16);
    disc.Move(0, 10, 0);
    Mesh inner = SuperEllipsoid(12, 12, 2, 1, 1, 20, 12);
    inner.Move(0, 10, -3.2);
    Mesh root = Root(-30);
    root.Append(disc);
    root.Rotate('z', -side * 10);
    inner.Rotate('z', -side * 10);
    k.Add(root, fur);
    k.Add(inner, k.Mat("inner", 255, 175, 190, 0.2f, 20));
    return k;
  }));
  cat.Parts.push_back(Pair("Elfin", "elfin", [](double side) {
    Kit k;
    Mesh ear = Lathe([](double v, double &r, double &y) {
      double t = v * PI;
      y = -std::cos(t) * 16;
      r = 8 * std::pow(std::sin(t), 0.6) * (1 - 0.8 * v);
    }, 20, 16, 1.0, 0.4);
    ear.Rotate('z', -side * 55).Move(side * 4, 2, 0);
    k.Add(ear, k.Mat("skin", 255, 205, 170, 0.2f, 20));
    return k;
  }));
  cat.Parts.push_back(Pair("Puppy", "puppy", [](double side) {
    Kit k;
    Mesh ear = SuperEllipsoid(9, 21, 5, 1, 1, 20, 18);
    ear.Rotate('z', side * 25).Move(side * 6, -4, 0);
    JointSpec j;
    j.Name = "flop";
    j.Position = Vec3(0, 12, 0);
    j.Rotations = Swing('z', {0, side * 0.15, 0, -side * 0.1, 0}, 48);
    ear.Bind(k.M.AddJoint(j));
    k.Add(ear, k.Mat("fur", 120, 80, 50, 0.15f, 15));
    return k;
  }));
  cat.Parts.push_back(Pair("Boppers", "boppers", [](double side) {
    Kit k;
    Mesh stalk = Curve([=](double v) { return Vec3(side * 8 * v * v, -10 + 34 * v, 0); }, 1.8, 0.05, 16);
    Mesh ball = Sphere(6, 16, 12);
    ball.Move(side * 8, 26, 0);
    JointSpec j;
    j.Name = "bop";
    j.Position = Vec3(0, -8, 0);
    j.Rotations = Swing('z', {0, -side * 0.2, 0, side * 0.2, 0}, 36);
    int jt = k.M.AddJoint(j);
    stalk.Bind(jt);
    ball.Bind(jt);
    k.M.Frames = 36;
    stalk.Append(Root(-17));
    k.Add(stalk, k.Mat("stalk", 60, 60, 70, 0.4f, 40));
    k.Add(ball, k.Mat("bobble", 255, 90, 150, 0.7f, 90));
    return k;
  }));
  cat.Textures.push_back({"fin.tga", [] {
    Image img(64, 64, C(80, 200, 230));
    for (int i = 0; i < 6; i++) img.Line(4 + i * 11, 0, 4 + i * 11, 64, 3, C(40, 140, 200));
    return img;
  }()});
  cat.Parts.push_back(Pair("Fins", "fins", [](double side) {
    Kit k;
    Mesh fin = SuperEllipsoid(12, 16, 2.5, 1, 1.4, 20, 16);
    fin.Rotate('z', -side * 30).Move(side * 6, 4, 0);
    fin.ProjectFront(0, 0, 20, 20);
    k.Add(fin, k.Tex("fin", "fin.tga", 0.6f, 70));
    return k;
  }));
  return cat;
}

// ---------------------------------------------------------------- noses

Catalogue Noses() {
  Catalogue cat{"noses.ini", "nose", "noses", false, false, {}, {}};
  {
    Kit k;
    k.Add(Sphere(8, 20, 14), k.Mat("nose", 255, 150, 150, 0.5f, 60));
    cat.Parts.push_back(Single("Button", "button", k));
  }
  {
    Kit k;
    k.Add(Sphere(11, 24, 18), k.Mat("clown", 235, 30, 40, 0.9f, 100));
    cat.Parts.push_back(Single("Clown", "clown", k));
  }
  {
    Kit k;
    // Pointing at the viewer (-Z); the root behind it hides in the face.
    Mesh carrot = Lathe([](double v, double &r, double &y) {
      double t = v * PI;
      y = -std::cos(t) * 20;
      r = 7 * std::pow(std::sin(t), 0.6) * (1.0 - 0.8 * v);
    }, 18, 20);
    carrot.Rotate('x', -90);
    for (MeshVertex &mv : carrot.Vertices) mv.T = 0.5 + mv.P.z / 40;
    k.Add(carrot, k.Tex("carrot", "carrot.tga", 0.3f, 30));
    cat.Textures.push_back({"carrot.tga", [] {
      Image img(64, 64, C(255, 140, 30));
      for (int i = 0; i < 7; i++) img.Line(0, 6 + i * 9, 64, 8 + i * 9, 1.5, C(220, 100, 20));
      return img;
    }()});
    cat.Parts.push_back(Single("Carrot", "carrot", k));
  }
  {
    Kit k;
    Mesh snout = SuperEllipsoid(10, 8, 6, 0.35, 1, 24, 16);
    snout.Rotate('x', 90);
    int pink = k.Mat("snout", 255, 160, 180, 0.4f, 40);
    k.Add(snout, pink);
    for (int s = -1; s <= 1; s += 2) {
      Mesh hole = SuperEllipsoid(2.2, 3.2, 1.2, 1, 1, 12, 8);
      hole.Move(s * 4, 0, -7.8);
      k.Add(hole, k.Mat("nostril", 140, 50, 80, 0.2f, 10));
    }
    cat.Parts.push_back(Single("Piggy", "piggy", k));
  }
  {
    Kit k;
    Mesh beak = Lathe([](double v, double &r, double &y) {
      double t = v * PI;
      y = -std::cos(t) * 13;
      r = 9 * std::pow(std::sin(t), 0.5) * (1 - 0.9 * v);
    }, 20, 16, 1.0, 0.7);
    beak.Rotate('x', -90);
    k.Add(beak, k.Mat("beak", 255, 190, 30, 0.5f, 50));
    cat.Parts.push_back(Single("Beak", "beak", k));
  }
  {
    Kit k;
    Mesh n = Surface(24, 12, [](double u, double v) {
      double a = u * 2 * PI, lat = -PI / 2 + v * PI;
      double r = 6 * (1 + 0.22 * std::cos(3 * a + PI / 2));
      return Vec3(r * std::cos(lat) * std::cos(a), r * std::cos(lat) * std::sin(a), 4 * std::sin(lat));
    }, true);
    k.Add(n, k.Mat("kitty nose", 255, 120, 160, 0.6f, 60));
    cat.Parts.push_back(Single("Kitty", "kitty", k));
  }
  {
    Kit k;
    Mesh n = SuperEllipsoid(13, 11, 10, 1, 1, 24, 18);
    Mesh tip = Sphere(7, 16, 12);
    tip.Move(0, -4, -6);
    n.Append(tip);
    k.Add(n, k.Mat("honker", 225, 165, 120, 0.2f, 20));
    cat.Parts.push_back(Single("Honker", "honker", k));
  }
  {
    Kit k;
    Mesh star = Surface(60, 10, [](double u, double v) {
      double a = u * 2 * PI, p = v * PI;
      double r = 10 * (1 + 0.32 * std::cos(5 * a + PI / 2)) * std::pow(std::sin(p), 0.3);
      return Vec3(r * std::cos(a), r * std::sin(a), -4 * std::cos(p));
    }, true);
    k.Add(star, k.Mat("gold", 255, 210, 50, 0.9f, 100));
    cat.Parts.push_back(Single("Starry", "starry", k));
  }
  return cat;
}

// ---------------------------------------------------------------- mouths

// A curve across the face, x from -w to w, bending back to follow the face.
Mesh FaceCurve(double w, double r, const std::function<double(double x)> &y, double endFrac = 0.12) {
  return Curve([=](double v) {
    double x = -w + 2 * w * v;
    return Vec3(x, y(x), FaceBend(x));
  }, r, endFrac, 28, Vec3(0, 0, -1));
}

Catalogue Mouths() {
  Catalogue cat{"mouths.ini", "mouth", "mouths", false, false, {}, {}};
  const int lipR = 150, lipG = 30, lipB = 50;
  {
    Kit k;
    k.Add(FaceCurve(17, 2.4, [](double x) { return x * x / 36 - 4; }), k.Mat("lip", lipR, lipG, lipB, 0.4f, 40));
    cat.Parts.push_back(Single("Smile", "smile", k));
  }
  {
    Kit k;
    // A wide open grin: a dark mouth with a row of teeth and a tongue.
    Mesh hole = Surface(28, 14, [](double u, double v) {
      double a = u * 2 * PI, lat = -PI / 2 + v * PI;
      double x = 17 * std::cos(a) * std::cos(lat), y = 10 * std::sin(a) * std::cos(lat);
      if (y > 0) y *= 0.25;
      return Vec3(x, y - 2, FaceBend(x) + 3 * std::sin(lat));
    }, true);
    k.Add(hole, k.Mat("mouth", 90, 20, 40, 0.3f, 30));
    Mesh teeth = SuperEllipsoid(12, 2.2, 1.5, 0.4, 0.4, 16, 8);
    teeth.Move(0, -0.5, -3.2);
    k.Add(teeth, k.Mat("teeth", 255, 255, 250, 0.6f, 60));
    Mesh tongue = SuperEllipsoid(7, 3, 1.5, 1, 1, 16, 10);
    tongue.Move(0, -7, -2.6);
    k.Add(tongue, k.Mat("tongue", 255, 110, 130, 0.4f, 40));
    cat.Parts.push_back(Single("Big grin", "grin", k));
  }
  {
    Kit k;
    Mesh lips = Torus(6, 2.6, 24, 10);
    lips.Rotate('x', 90);
    k.Add(lips, k.Mat("lip", lipR, lipG, lipB, 0.4f, 40));
    Mesh inside = SuperEllipsoid(6, 6, 1.5, 1, 1, 16, 8);
    inside.Move(0, 0, 1);
    k.Add(inside, k.Mat("mouth", 60, 10, 30, 0.2f, 10));
    cat.Parts.push_back(Single("Oh!", "oh", k));
  }
  {
    Kit k;
    k.Add(FaceCurve(15, 2.3, [](double x) { return x * x / 34 - 3; }), k.Mat("lip", lipR, lipG, lipB, 0.4f, 40));
    Mesh tongue = SuperEllipsoid(5, 6.5, 2, 1, 1, 16, 12);
    tongue.Rotate('z', -12).Move(-5, -6, -1);
    k.Add(tongue, k.Mat("tongue", 255, 110, 140, 0.5f, 50));
    cat.Parts.push_back(Single("Cheeky", "cheeky", k));
  }
  {
    Kit k;
    k.Add(FaceCurve(16, 2.2, [](double x) { return x * x / 40 - 3; }), k.Mat("lip", lipR, lipG, lipB, 0.4f, 40));
    for (int s = -1; s <= 1; s += 2) {
      Mesh fang = Lathe([](double v, double &r, double &y) {
        double t = v * PI;
        y = std::cos(t) * 3.5;
        r = 2.2 * std::pow(std::sin(t), 0.6) * (1 - 0.85 * v);
      }, 12, 10);
      fang.Move(s * 6, -4.6, -1.5 + FaceBend(6));
      k.Add(fang, k.Mat("fang", 255, 255, 255, 0.8f, 80));
    }
    cat.Parts.push_back(Single("Vampire", "vampire", k));
  }
  {
    Kit k;
    Mesh lips = Torus(3.6, 2, 20, 10);
    lips.Rotate('x', 90).Move(-4, 0, 0);
    k.Add(lips, k.Mat("lip", lipR, lipG, lipB, 0.4f, 40));
    Mesh inside = SuperEllipsoid(3.4, 3.4, 1.2, 1, 1, 12, 8);
    inside.Move(-4, 0, 0.8);
    k.Add(inside, k.Mat("mouth", 60, 10, 30, 0.2f, 10));
    cat.Parts.push_back(Single("Whistle", "whistle", k));
  }
  {
    Kit k;
    int red = k.Mat("lipstick", 230, 30, 70, 0.8f, 80);
    Mesh upper = Tube([](double v) {
      double x = -12 + 24 * v;
      return Vec3(x, 1.8 - 1.2 * std::exp(-x * x / 6) + x * x / 200, FaceBend(x));
    }, [](double v) { return Capsule(v, 2.8, 0.3) * (0.8 + 0.2 * std::sin(PI * v)); }, 12, 24, Vec3(0, 0, -1));
    Mesh lower = Tube([](double v) {
      double x = -11 + 22 * v;
      return Vec3(x, -2.4 + x * x / 80, FaceBend(x));
    }, [](double v) { return Capsule(v, 3.4, 0.35); }, 12, 24, Vec3(0, 0, -1));
    k.Add(upper, red);
    k.Add(lower, red);
    cat.Parts.push_back(Single("Kissy", "kissy", k));
  }
  {
    Kit k;
    k.Add(FaceCurve(15, 2.2, [](double x) { return x * x / 60 - 1; }), k.Mat("lip", lipR, lipG, lipB, 0.4f, 40));
    for (int s = -1; s <= 1; s += 2) {
      Mesh tooth = SuperEllipsoid(2.6, 3.4, 1.4, 0.5, 0.5, 12, 10);
      tooth.Move(s * 2.8, -3.8, -0.8);
      k.Add(tooth, k.Mat("tooth", 255, 255, 245, 0.6f, 60));
    }
    cat.Parts.push_back(Single("Bucky", "bucky", k));
  }
  return cat;
}

// ---------------------------------------------------------------- eyebrows

Catalogue Eyebrows() {
  Catalogue cat{"eyebrows.ini", "eyebrows", "eyebrows", true, false, {}, {}};
  auto brow = [](double w, double r, const std::function<double(double x, double side)> &y, int cr, int cg, int cb) {
    return [=](double side) {
      Kit k;
      k.Add(Curve([=](double v) {
        double x = -w + 2 * w * v;
        return Vec3(x, y(x, side), FaceBend(x) * 0.6);
      }, r, 0.2, 20), k.Mat("brow", cr, cg, cb, 0.2f, 20));
      return k;
    };
  };
  cat.Parts.push_back(Pair("Bushy", "bushy", brow(9, 3.2, [](double x, double) { return -x * x / 30; }, 80, 50, 30)));
  cat.Parts.push_back(Pair("Arched", "arched", brow(8, 1.4, [](double x, double) { return 2 - x * x / 16; }, 30, 25, 30)));
  // The inner end of a brow is at -X for the left one and +X for the right.
  cat.Parts.push_back(Pair("Cross", "cross", brow(8, 2.4, [](double x, double s) { return 0.45 * x * s; }, 40, 30, 30)));
  cat.Parts.push_back(Pair("Worried", "worried", brow(8, 2.0, [](double x, double s) {
    return -0.35 * x * s - x * x / 60;
  }, 90, 60, 40)));
  cat.Parts.push_back(Pair("Dots", "dots", [](double) {
    Kit k;
    k.Add(SuperEllipsoid(4.5, 3, 2, 1, 1, 14, 10), k.Mat("brow", 40, 30, 30, 0.2f, 20));
    return k;
  }));
  cat.Parts.push_back(Pair("Wavy", "wavy", brow(9, 1.6, [](double x, double) { return 1.6 * std::sin(x * 0.7); },
                                              120, 70, 200)));
  cat.Parts.push_back(Pair("Fuzzy", "fuzzy", [](double) {
    Kit k;
    int fur = k.Mat("fuzz", 60, 170, 80, 0.1f, 10);
    Mesh all;
    for (int i = 0; i < 5; i++) {
      double x = -8 + 4 * i;
      Mesh puff = Sphere(3.4 - 0.3 * std::fabs(i - 2), 12, 8);
      puff.Move(x, -x * x / 40, FaceBend(x) * 0.6);
      all.Append(puff);
    }
    k.Add(all, fur);
    return k;
  }));
  cat.Parts.push_back(Pair("Zappy", "zappy", [](double side) {
    Kit k;
    // A lightning zigzag, its sharp end at the outer side.
    Mesh bolt = Curve([=](double v) {
      double x = (-9 + 18 * v) * side;
      double zig = std::fmod(v * 3, 1.0);
      double y = (zig < 0.5 ? zig : 1 - zig) * 6 - 1.5;
      return Vec3(x, y, FaceBend(x) * 0.6);
    }, 1.6, 0.1, 36);
    k.Add(bolt, k.Mat("bolt", 40, 30, 120, 0.6f, 60));
    return k;
  }));
  return cat;
}

// ---------------------------------------------------------------- moustaches

Catalogue Moustaches() {
  Catalogue cat{"moustaches.ini", "moustache", "moustaches", false, false, {}, {}};
  auto hair = [](Kit &k, int r, int g, int b) { return k.Mat("hair", r, g, b, 0.15f, 15); };
  {
    Kit k;
    // A handlebar: across the lip, the ends curling up.
    Mesh m = Tube([](double v) {
      double t = -1 + 2 * v;
      double x = 20 * t;
      double curl = std::max(0.0, std::fabs(t) - 0.6) / 0.4;
      double y = -2 + curl * curl * 9 - 1.5 * std::exp(-x * x / 40);
      return Vec3(x - (t > 0 ? 1 : -1) * curl * curl * 4, y, FaceBend(x));
    }, [](double v) { return Capsule(v, 3.2 * (0.4 + 0.6 * std::sin(PI * v)), 0.08); }, 10, 40, Vec3(0, 0, -1));
    k.Add(m, hair(k, 70, 40, 25));
    cat.Parts.push_back(Single("Handlebar", "handlebar", k));
  }
  {
    Kit k;
    // A walrus: bushy lobes that twitch.
    int h = hair(k, 200, 190, 180);
    Mesh all;
    for (int i = 0; i < 5; i++) {
      double x = -14 + 7 * i;
      Mesh lobe = SuperEllipsoid(6, 7 - 0.6 * std::fabs(i - 2), 4, 1, 1, 14, 10);
      lobe.Move(x, -2 - 0.5 * std::fabs(i - 2), FaceBend(x));
      all.Append(lobe);
    }
    JointSpec j;
    j.Name = "twitch";
    j.Rotations = Swing('z', {0, 0, 0.08, -0.08, 0, 0, 0, 0}, 40);
    all.Bind(k.M.AddJoint(j));
    k.M.Frames = 40;
    k.Add(all, h);
    cat.Parts.push_back(Single("Walrus", "walrus", k));
  }
  {
    Kit k;
    k.Add(FaceCurve(13, 1.2, [](double x) { return -x * x / 120; }, 0.15), hair(k, 30, 20, 20));
    cat.Parts.push_back(Single("Pencil", "pencil", k));
  }
  {
    Kit k;
    k.Add(Tube([](double v) {
      double x = -16 + 32 * v;
      return Vec3(x, -std::fabs(x) * 0.35, FaceBend(x));
    }, [](double v) { return Capsule(v, 4.2, 0.15); }, 12, 30, Vec3(0, 0, -1)), hair(k, 150, 65, 30));
    cat.Parts.push_back(Single("Chevron", "chevron", k));
  }
  {
    Kit k;
    int h = hair(k, 50, 35, 30);
    for (int s = -1; s <= 1; s += 2) {
      Mesh curl = Tube([=](double v) {
        // From the middle outwards, rolling up into a spiral.
        double a = v * 2.6 * PI;
        double r = 7 * (1 - 0.7 * v);
        double x = s * (3 + 9 * v + r * std::sin(a) * 0.6);
        double y = -r * std::cos(a) * 0.6 + 2;
        return Vec3(x, y, FaceBend(x));
      }, [](double v) { return Capsule(v, 2.0, 0.06); }, 10, 40, Vec3(0, 0, -1));
      k.Add(curl, h);
    }
    cat.Parts.push_back(Single("Curly", "curly", k));
  }
  {
    Kit k;
    k.Add(SuperEllipsoid(6, 3.5, 3, 0.4, 0.4, 16, 10), hair(k, 25, 20, 20));
    cat.Parts.push_back(Single("Toothbrush", "toothbrush", k));
  }
  {
    Kit k;
    k.Add(Tube([](double v) {
      double a = -PI / 2 + v * PI;  // an upside-down U round the mouth
      double x = 15 * std::sin(a) * 1.1;
      double y = 4 * std::cos(a) * 1.0 - 9 * (1 - std::cos(a)) ;
      return Vec3(x, y, FaceBend(x));
    }, [](double v) { return Capsule(v, 2.8, 0.08); }, 10, 40, Vec3(0, 0, -1)), hair(k, 110, 70, 40));
    cat.Parts.push_back(Single("Horseshoe", "horseshoe", k));
  }
  {
    Kit k;
    int h = k.Mat("whisker", 60, 60, 70, 0.3f, 30);
    for (int s = -1; s <= 1; s += 2) {
      for (int i = -1; i <= 1; i++) {
        double a = i * 0.28;
        k.Add(Curve([=](double v) {
          double x = s * (4 + 18 * v);
          double y = std::tan(a) * 18 * v + 1.5 * v * v;
          return Vec3(x, y, FaceBend(x) * 0.8);
        }, 0.7, 0.05, 16), h);
      }
    }
    Mesh dot = Sphere(2.5, 12, 8);
    dot.Move(0, 0, -1);
    k.Add(dot, k.Mat("dot", 250, 130, 160, 0.5f, 50));
    cat.Parts.push_back(Single("Whiskers", "whiskers", k));
  }
  return cat;
}

// ---------------------------------------------------------------- feet

// Feet hang from the body. The game puts a part's box centre on its anchor,
// which lies on the body's underside; a marker high above the foot raises
// that centre to just below the top of the foot, so the foot shows beneath
// the body with only its top tucked into it.
void Hang(ModelSpec &m, double tuck = 3) {
  Vec3 lo = m.Min(), hi = m.Max();
  double top = hi.y - tuck;
  m.Groups.back().Append(Marker((lo.x + hi.x) / 2, 2 * top - lo.y, (lo.z + hi.z) / 2));
}

Catalogue Feet() {
  Catalogue cat{"feet.ini", "feet", "feet", true, false, {}, {}};
  // A shoe shape: toe at -Z, heel at +Z, sole at the bottom.
  auto shoe = [](double w, double h, double l) {
    Mesh m = SuperEllipsoid(w, h, l, 0.7, 0.9, 24, 16);
    for (MeshVertex &v : m.Vertices) {
      if (v.P.y < 0) v.P.y *= 0.55;  // flatter underneath
    }
    return m;
  };
  cat.Parts.push_back(Pair("Sneakers", "sneakers", [=](double) {
    Kit k;
    k.Add(shoe(11, 8, 17).Move(0, 2, -2), k.Mat("canvas", 235, 50, 60, 0.3f, 30));
    k.Add(SuperEllipsoid(12, 2.4, 18, 0.4, 0.8, 24, 10).Move(0, -2.5, -2), k.Mat("sole", 250, 250, 250, 0.4f, 40));
    Mesh lace = Torus(3, 1, 12, 6);
    lace.Move(0, 8, -6);
    k.Add(lace, k.Mat("lace", 250, 250, 250, 0.4f, 40));
    return k;
  }));
  cat.Parts.push_back(Pair("Flippers", "flippers", [](double side) {
    Kit k;
    Mesh f = Surface(24, 12, [](double u, double v) {
      double a = u * 2 * PI, lat = -PI / 2 + v * PI;
      double x = std::cos(a) * std::cos(lat), z = std::sin(a) * std::cos(lat);
      double flare = 1 + 0.7 * std::max(0.0, -z);  // wider at the toes
      return Vec3(x * 11 * flare, 3 * std::sin(lat), z * 20 - 4);
    }, true);
    f.Rotate('y', side * 8);
    k.Add(f, k.Mat("rubber", 60, 200, 90, 0.6f, 60));
    return k;
  }));
  cat.Parts.push_back(Pair("Paws", "paws", [](double) {
    Kit k;
    k.Add(SuperEllipsoid(12, 7, 13, 0.8, 1, 20, 14), k.Mat("fur", 170, 110, 60, 0.15f, 15));
    for (int i = -1; i <= 1; i++) {
      Mesh toe = Sphere(3.4, 12, 8);
      toe.Move(i * 6, 3, -11 + std::fabs(i) * 2);
      k.Add(toe, k.Mat("toe", 150, 95, 50, 0.15f, 15));
    }
    return k;
  }));
  cat.Parts.push_back(Pair("Wellies", "wellies", [=](double) {
    Kit k;
    int rubber = k.Mat("rubber", 255, 210, 30, 0.7f, 70);
    Mesh leg = SuperEllipsoid(9, 11, 9, 0.25, 1, 20, 12);
    leg.Move(0, 8, 4);
    k.Add(leg, rubber);
    k.Add(shoe(10, 6, 15).Move(0, -2, -2), rubber);
    return k;
  }));
  cat.Parts.push_back(Pair("Birdy", "birdy", [](double side) {
    Kit k;
    int orange = k.Mat("scaly", 255, 150, 30, 0.5f, 50);
    for (int i = -1; i <= 1; i++) {
      double a = i * 0.45 + side * 0.05;
      k.Add(Curve([=](double v) { return Vec3(std::sin(a) * 18 * v, -1 + 2 * v * (1 - v), -std::cos(a) * 18 * v + 4); },
                  2.4, 0.1, 14), orange);
    }
    k.Add(Sphere(5, 12, 8).Move(0, 1, 4), orange);
    return k;
  }));
  cat.Parts.push_back(Pair("Clogs", "clogs", [=](double) {
    Kit k;
    Mesh clog = SuperEllipsoid(11, 8, 18, 0.5, 0.8, 24, 16);
    for (MeshVertex &v : clog.Vertices) {
      if (v.P.z < 0) v.P.y += v.P.z * v.P.z / 60;  // turned-up toe
    }
    k.Add(clog, k.Mat("wood", 225, 175, 110, 0.3f, 30));
    Mesh flower = Sphere(3, 10, 8);
    flower.Move(0, 9, -9);
    k.Add(flower, k.Mat("tulip", 240, 60, 90, 0.5f, 50));
    return k;
  }));
  cat.Parts.push_back(Pair("Skates", "skates", [=](double) {
    Kit k;
    k.Add(shoe(10, 9, 15).Move(0, 4, 0), k.Mat("boot", 120, 200, 255, 0.4f, 40));
    int wheel = k.Mat("wheel", 255, 90, 160, 0.7f, 70);
    for (int i = 0; i < 2; i++) {
      Mesh w = SuperEllipsoid(4.5, 4.5, 3.5, 1, 1, 14, 10);
      w.Rotate('y', 90).Move(0, -4.5, -9 + 18 * i);
      k.Add(w, wheel);
    }
    return k;
  }));
  cat.Parts.push_back(Pair("Slippers", "slippers", [=](double) {
    Kit k;
    k.Add(shoe(11, 7, 16), k.Mat("fluff", 255, 180, 210, 0.1f, 10));
    Mesh pom = Sphere(6, 14, 10);
    pom.Move(0, 6, -8);
    k.Add(pom, k.Mat("pom", 255, 255, 255, 0.1f, 10));
    return k;
  }));
  for (PartContent &p : cat.Parts) {
    Hang(p.Left);
    Hang(p.Right);
  }
  return cat;
}

// ---------------------------------------------------------------- hats

// Hats are built with their brim at y = 0 and rise from there; the entry's
// offset lifts the box centre so that the brim sits just below the crown
// of the head, whatever the hat's height.
PartContent HatEntryOf(const std::string &name, const std::string &file, Kit &k, double sink = 5) {
  Vec3 lo = k.M.Min(), hi = k.M.Max();
  PartContent p = Single(name, file, k);
  p.Offset = Vec3(0, (hi.y - lo.y) / 2 - sink, 0);
  return p;
}

Mesh Disc(double r, double h) { return SuperEllipsoid(r, h, r, 0.25, 1, 32, 10); }

Catalogue Hats() {
  Catalogue cat{"hats.ini", "hat", "hats", false, true, {}, {}};
  {
    Kit k;
    int felt = k.Mat("felt", 40, 40, 50, 0.5f, 40);
    k.Add(Disc(30, 2).Move(0, 1, 0), felt);
    k.Add(SuperEllipsoid(18, 17, 18, 0.15, 1, 32, 16).Move(0, 18, 0), felt);
    k.Add(SuperEllipsoid(18.6, 3.5, 18.6, 0.2, 1, 32, 8).Move(0, 6, 0), k.Mat("band", 230, 40, 60, 0.5f, 50));
    cat.Parts.push_back(HatEntryOf("Top hat", "tophat", k));
  }
  {
    Kit k;
    cat.Textures.push_back({"party.tga", [] {
      Image img(128, 128, C(255, 230, 80));
      for (int i = -4; i < 12; i++) img.Line(i * 16.0, 128, i * 16.0 + 64, 0, 7, C(80, 180, 255));
      Dice d(5);
      for (int i = 0; i < 30; i++) img.Circle(d.Range(0, 128), d.Range(0, 128), 2.2, C(255, 80, 140));
      return img;
    }()});
    Mesh cone = Lathe([](double v, double &r, double &y) {
      double t = std::min(1.0, v * 1.15);
      r = v < 0.1 ? 17 * v / 0.1 : 17 * (1 - (v - 0.1) / 0.9);
      y = v < 0.1 ? 0 : 44 * (v - 0.1) / 0.9;
      (void)t;
    }, 32, 24);
    k.Add(cone, k.Tex("party", "party.tga", 0.4f, 40));
    k.Add(Sphere(6, 14, 10).Move(0, 46, 0), k.Mat("pompom", 255, 80, 140, 0.2f, 20));
    cat.Parts.push_back(HatEntryOf("Party", "party", k, 3));
  }
  {
    Kit k;
    // A beanie with a propeller that spins.
    Mesh dome = Surface(32, 12, [](double u, double v) {
      double lat = v * PI / 2, lon = u * 2 * PI;
      return Vec3(21 * std::cos(lat) * std::cos(lon), 15 * std::sin(lat), 21 * std::cos(lat) * std::sin(lon));
    }, false);
    Mesh base = SuperEllipsoid(21.5, 2.5, 21.5, 0.4, 1, 32, 8);
    int red = k.Mat("red", 230, 50, 50, 0.4f, 40);
    int yellow = k.Mat("yellow", 255, 210, 40, 0.4f, 40);
    k.Add(dome, red);
    k.Add(base, yellow);
    k.Add(SuperEllipsoid(1.5, 4, 1.5, 1, 1, 8, 6).Move(0, 17, 0), yellow);
    Mesh blades;
    for (int i = 0; i < 2; i++) {
      Mesh b = SuperEllipsoid(12, 1.2, 3.5, 1, 1, 16, 8);
      b.Rotate('x', i == 0 ? 15 : -15).Move(i == 0 ? 11 : -11, 21, 0);
      blades.Append(b);
    }
    JointSpec j;
    j.Name = "propeller";
    j.Position = Vec3(0, 21, 0);
    for (int i = 0; i <= 8; i++) j.Rotations.push_back({i * 3.0, Vec3(0, i * PI / 4, 0)});
    blades.Bind(k.M.AddJoint(j));
    k.M.Frames = 24;
    k.Add(blades, k.Mat("blue", 60, 130, 255, 0.6f, 60));
    cat.Parts.push_back(HatEntryOf("Propeller", "propeller", k, 4));
  }
  {
    Kit k;
    // A crown: a thick band with five points.
    Mesh band = Surface(80, 16, [](double u, double v) {
      double a = u * 2 * PI, b = v * 2 * PI;
      double spike = std::pow(std::fabs(std::cos(2.5 * a)), 3.0);
      double h = 7 + 9 * spike;
      double cb = std::cos(b), sb = std::sin(b);
      double r = 17 + 1.8 * (cb > 0 ? std::pow(cb, 0.4) : -std::pow(-cb, 0.4));
      double y = h * (1 + (sb > 0 ? std::pow(sb, 0.4) : -std::pow(-sb, 0.4)));
      return Vec3(r * std::cos(a), y, r * std::sin(a));
    }, true);
    k.Add(band, k.Mat("gold", 255, 200, 40, 0.9f, 100));
    for (int i = 0; i < 5; i++) {
      double a = -PI / 2 + i * 2 * PI / 5;
      Mesh gem = Sphere(2.6, 12, 8);
      gem.Move(19 * std::cos(a), 7, 19 * std::sin(a));
      k.Add(gem, k.Mat(i % 2 ? "sapphire" : "ruby", i % 2 ? 40 : 230, i % 2 ? 90 : 20, i % 2 ? 230 : 60, 1.0f, 120));
    }
    cat.Parts.push_back(HatEntryOf("Crown", "crown", k, 6));
  }
  {
    Kit k;
    int leather = k.Mat("leather", 160, 100, 50, 0.3f, 30);
    Mesh brim = Surface(36, 10, [](double u, double v) {
      double a = u * 2 * PI, b = v * 2 * PI;
      double r = 4 + 32 * (0.5 + 0.5 * std::cos(b)) ;
      double x = r * std::cos(a), z = r * std::sin(a) * 0.85;
      double y = 1.2 * std::sin(b) + x * x / 160;
      return Vec3(x, y, z);
    }, true);
    k.Add(brim, leather);
    Mesh crown = SuperEllipsoid(15, 14, 13, 0.45, 1, 28, 14);
    for (MeshVertex &v : crown.Vertices) {
      if (v.P.y > 8) v.P.y -= 4 * std::exp(-v.P.x * v.P.x / 30);  // the dent on top
    }
    crown.Move(0, 11, 0);
    k.Add(crown, leather);
    k.Add(SuperEllipsoid(15.4, 2.4, 13.4, 0.3, 1, 28, 8).Move(0, 4, 0), k.Mat("band", 70, 40, 20, 0.3f, 30));
    cat.Parts.push_back(HatEntryOf("Cowboy", "cowboy", k, 4));
  }
  {
    Kit k;
    int white = k.Mat("cotton", 252, 252, 252, 0.2f, 20);
    k.Add(SuperEllipsoid(18, 7, 18, 0.3, 1, 32, 10).Move(0, 7, 0), white);
    Mesh puff = Surface(40, 20, [](double u, double v) {
      double lat = -PI / 2 + v * PI, lon = u * 2 * PI;
      double bump = 1 + 0.08 * std::cos(6 * lon) * std::cos(lat);
      return Vec3(24 * std::cos(lat) * std::cos(lon) * bump, 14 * std::sin(lat),
                  24 * std::cos(lat) * std::sin(lon) * bump);
    }, true);
    puff.Move(0, 24, 0);
    k.Add(puff, white);
    cat.Parts.push_back(HatEntryOf("Chef", "chef", k, 4));
  }
  {
    Kit k;
    int purple = k.Mat("velvet", 120, 60, 180, 0.3f, 30);
    k.Add(Disc(30, 1.8).Move(0, 1, 0), purple);
    // A cone that bends over at its tip.
    Mesh cone = Tube([](double v) { return Vec3(0, 2 + 44 * v, 10 * v * v * v); },
                     [](double v) { return 17 * std::pow(1 - v, 1.1) + 0.01; }, 24, 24, Vec3(1, 0, 0));
    k.Add(cone, purple);
    k.Add(SuperEllipsoid(17, 3, 17, 0.3, 1, 28, 8).Move(0, 5, 0), k.Mat("band", 255, 200, 40, 0.6f, 60));
    cat.Parts.push_back(HatEntryOf("Witch", "witch", k, 3));
  }
  {
    Kit k;
    // A glass fishbowl with a goldfish inside: the glass is see-through and
    // shows its inner side too.
    int ring = k.Mat("ring", 60, 140, 230, 0.7f, 70);
    k.Add(SuperEllipsoid(16, 2.5, 16, 0.3, 1, 28, 8).Move(0, 1, 0), ring);
    Mesh water = Surface(28, 10, [](double u, double v) {
      double lat = -PI / 2 + v * (PI / 2 + 0.5), lon = u * 2 * PI;
      return Vec3(19 * std::cos(lat) * std::cos(lon), 19 + 19 * std::sin(lat), 19 * std::cos(lat) * std::sin(lon));
    }, false);
    Mesh fish = SuperEllipsoid(5, 3.4, 2, 1, 1, 14, 10);
    Mesh tail = SuperEllipsoid(2.5, 3.5, 1, 1, 1, 10, 8);
    tail.Move(6, 0, 0);
    fish.Append(tail);
    fish.Move(0, 20, 0);
    JointSpec j;
    j.Name = "fish";
    j.Position = Vec3(0, 20, 0);
    j.Rotations = Swing('y', {0, PI / 2, PI, 1.5 * PI, 2 * PI}, 60);
    j.Positions = {{0, {0, 0, 0}}, {15, {0, 2, 0}}, {30, {0, 0, 0}}, {45, {0, -2, 0}}, {60, {0, 0, 0}}};
    Mesh swim = fish;
    swim.Move(0, 0, -8);
    swim.Bind(k.M.AddJoint(j));
    k.M.Frames = 60;
    k.Add(swim, k.Mat("goldfish", 255, 140, 20, 0.7f, 70));
    MaterialSpec glass = Colour("glass", 190, 230, 255, 1.0f, 120);
    glass.Transparency = 0.3f;
    k.Add(water, k.M.AddMaterial(glass));
    PartContent p = HatEntryOf("Fishbowl", "fishbowl", k, 4);
    p.BackFaces = true;
    cat.Parts.push_back(p);
  }
  {
    Kit k;
    // A beret, worn at a slant: its entry moves it over to the left side.
    Mesh beret = Surface(36, 14, [](double u, double v) {
      double lat = -PI / 2 + v * PI, lon = u * 2 * PI;
      double y = std::sin(lat);
      return Vec3(22 * std::cos(lat) * std::cos(lon), y > 0 ? 8 * y : 3 * y, 22 * std::cos(lat) * std::sin(lon));
    }, true);
    beret.Rotate('z', 14);
    k.Add(beret, k.Mat("beret", 220, 40, 60, 0.2f, 20));
    k.Add(SuperEllipsoid(1.5, 3, 1.5, 1, 1, 8, 6).Rotate('z', 14).Move(-2, 9, 0), k.Mat("stalk", 60, 20, 30, 0.2f, 20));
    PartContent p = HatEntryOf("Beret", "beret", k, 3);
    p.Offset.x = 6;
    cat.Parts.push_back(p);
  }
  return cat;
}

}  // namespace

std::vector<Catalogue> MakeParts() {
  return {Eyes(), Ears(), Noses(), Mouths(), Eyebrows(), Moustaches(), Feet(), Hats()};
}
