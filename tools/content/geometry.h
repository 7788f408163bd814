// Mesh building for the content generator: parametric surfaces with smooth
// normals, transforms, materials and joints, written out as MS3D models.
#pragma once
#include <functional>
#include <string>
#include <vector>

struct Vec3 {
  double x = 0, y = 0, z = 0;
  Vec3() = default;
  Vec3(double X, double Y, double Z) : x(X), y(Y), z(Z) {}
  Vec3 operator+(const Vec3 &o) const { return {x + o.x, y + o.y, z + o.z}; }
  Vec3 operator-(const Vec3 &o) const { return {x - o.x, y - o.y, z - o.z}; }
  Vec3 operator*(double k) const { return {x * k, y * k, z * k}; }
  Vec3 operator-() const { return {-x, -y, -z}; }
};
// Nearest point where a ray from `origin` along `dir` meets the mesh.
bool CastRay(const class Mesh &m, const Vec3 &origin, const Vec3 &dir, Vec3 &hit);
double Dot(const Vec3 &a, const Vec3 &b);
Vec3 Cross(const Vec3 &a, const Vec3 &b);
double Length(const Vec3 &a);
Vec3 Normalise(const Vec3 &a);

const double PI = 3.14159265358979323846;

struct MeshVertex {
  Vec3 P, N;
  double S = 0, T = 0;
  int Bone = -1;
};

// One group of a model: triangles over its own vertices, one material.
class Mesh {
public:
  std::vector<MeshVertex> Vertices;
  std::vector<int> Indices;  // three per triangle, counter-clockwise seen from the front
  int Material = -1;

  Mesh &Scale(double sx, double sy, double sz);
  Mesh &Rotate(char axis, double degrees);
  Mesh &Move(double x, double y, double z);
  Mesh &Move(const Vec3 &v) { return Move(v.x, v.y, v.z); }
  Mesh &Bind(int bone);
  // Replaces the texture coordinates by a projection onto the XY plane
  // seen from the front (-Z): s runs from screen left to right.
  Mesh &ProjectFront(double cx, double cy, double halfW, double halfH);
  void Append(const Mesh &o);
  Vec3 Min() const;
  Vec3 Max() const;
};

// How far, in model units, the flat triangles of a surface may stand off the
// true surface. A body a hundred units tall fills about 260 of the game's 600
// rows, so this is about half a pixel: the outlines stay as round as the
// screen can show, and the triangles that couldn't show are not drawn.
const double SURFACE_TOLERANCE = 0.2;
// The shading of a surface is worked out at its corners and blended across
// its triangles, so a step that turns too far shows as a band; a step
// shorter than SHADED_STEP model units (a few pixels) is too small for it.
const double MAX_STEP_TURN = 20 * PI / 180;
const double SHADED_STEP = 2.0;
// Fewest steps a grid line is given, whatever its size.
const int MIN_STEPS = 6;
// How finely a surface is walked to find where it bends, and the share of
// the steps spread evenly whatever the bending.
const int FINE_STEPS = 256;
const double EVEN_SHARE = 0.15;

// A surface p(u, v) over the unit square, u running around, v along. The
// grid has at most nu x nv cells, as few as keep within SURFACE_TOLERANCE,
// with short steps where the surface bends and long ones where it runs
// straight; s and t are still u and v. Normals come from the surface's own
// derivatives.
// Closed surfaces are oriented outwards by their signed volume; open ones
// face the side given by `flip` (false: the side of dp/dv x dp/du).
using SurfaceFn = std::function<Vec3(double u, double v)>;
Mesh Surface(int nu, int nv, const SurfaceFn &f, bool closed, bool flip = false);

// Superellipsoid of radii (rx, ry, rz): e1 shapes the profile from pole to
// pole, e2 the cross-section (1 and 1 is an ellipsoid, small values square).
Mesh SuperEllipsoid(double rx, double ry, double rz, double e1, double e2, int nu = 32, int nv = 24);
Mesh Sphere(double r, int nu = 32, int nv = 24);
// A lone vertex that no triangle uses: it draws nothing but widens the
// model's box, and so moves the box centre that the game puts on an anchor.
Mesh Marker(double x, double y, double z);
// Solid of revolution about Y: profile(v) gives radius and height, v from 0
// (bottom) to 1 (top); radius 0 at both ends closes it.
Mesh Lathe(const std::function<void(double v, double &r, double &y)> &profile, int nu = 36, int nv = 32,
           double sx = 1, double sz = 1, double e2 = 1, bool closed = true);
// A tube along a curve with radius rad(v); a radius of 0 at the ends closes
// it. `side` is a direction that is never along the curve.
Mesh Tube(const std::function<Vec3(double v)> &centre, const std::function<double(double v)> &rad, int nu, int nv,
          const Vec3 &side = Vec3(0, 0, -1));
// Radius profile of a tube with rounded ends of length `endFrac` of the curve.
double Capsule(double v, double r, double endFrac = 0.12);
// A torus about the Y axis, major radius R, minor r.
Mesh Torus(double R, double r, int nu = 36, int nv = 16);

struct MaterialSpec {
  std::string Name;
  float Diffuse[3] = {1, 1, 1};
  float Ambient = 0.6f;  // ambient colour as a share of the diffuse
  float Specular = 0.3f;
  float Shininess = 40;
  float Emissive = 0;    // share of the diffuse given off as emission
  float Transparency = 1;
  std::string Texture;
};

struct KeySpec {
  double Frame;
  Vec3 Value;
};

struct JointSpec {
  std::string Name, Parent;
  Vec3 Position;
  std::vector<KeySpec> Rotations, Positions;
};

class ModelSpec {
public:
  std::vector<MaterialSpec> Materials;
  std::vector<Mesh> Groups;
  std::vector<JointSpec> Joints;
  float Fps = 24;
  int Frames = 48;

  int AddMaterial(const MaterialSpec &m);
  // Adds a mesh as a group with the given material; gives the group index.
  int Add(const Mesh &m, int material);
  int AddJoint(const JointSpec &j);
  Vec3 Min() const;
  Vec3 Max() const;
  // Shifts everything so that the bounding box is centred on the origin,
  // computed as the game does, and gives the shift.
  Vec3 Centre();
  bool Save(const std::string &path) const;
};

MaterialSpec Colour(const std::string &name, int r, int g, int b, float specular = 0.3f, float shininess = 40);
