// Parametric meshes with smooth normals, and their encoding as MS3D models.
#include "tools/content/geometry.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include "tools/ms3dwriter/ms3dwriter.h"

double Dot(const Vec3 &a, const Vec3 &b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec3 Cross(const Vec3 &a, const Vec3 &b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double Length(const Vec3 &a) { return std::sqrt(Dot(a, a)); }
Vec3 Normalise(const Vec3 &a) {
  double l = Length(a);
  return l > 1e-12 ? a * (1.0 / l) : Vec3(0, 1, 0);
}

bool CastRay(const Mesh &m, const Vec3 &origin, const Vec3 &dir, Vec3 &hit) {
  // Edges count as inside, with a little to spare: a ray straight up through
  // a pole meets only the corners of the triangles there, and rounding
  // would let it slip between them.
  const double edge = 1e-7;
  double best = 1e30;
  for (size_t i = 0; i + 2 < m.Indices.size(); i += 3) {
    const Vec3 &a = m.Vertices[m.Indices[i]].P, &b = m.Vertices[m.Indices[i + 1]].P,
               &c = m.Vertices[m.Indices[i + 2]].P;
    Vec3 e1 = b - a, e2 = c - a, p = Cross(dir, e2);
    double det = Dot(e1, p);
    if (std::fabs(det) < 1e-12) continue;
    Vec3 s = origin - a;
    double u = Dot(s, p) / det;
    if (u < -edge || u > 1 + edge) continue;
    Vec3 q = Cross(s, e1);
    double v = Dot(dir, q) / det;
    if (v < -edge || u + v > 1 + edge) continue;
    double t = Dot(e2, q) / det;
    if (t > 1e-6 && t < best) best = t;
  }
  if (best >= 1e30) return false;
  hit = origin + dir * best;
  return true;
}

// ---------------------------------------------------------------- transforms

Mesh &Mesh::Scale(double sx, double sy, double sz) {
  for (MeshVertex &v : Vertices) {
    v.P = {v.P.x * sx, v.P.y * sy, v.P.z * sz};
    v.N = Normalise({v.N.x / sx, v.N.y / sy, v.N.z / sz});
  }
  // A mirror turns the winding inside out: swap two corners to keep it.
  if (sx * sy * sz < 0) {
    for (size_t i = 0; i + 2 < Indices.size(); i += 3) std::swap(Indices[i + 1], Indices[i + 2]);
  }
  return *this;
}

static Vec3 RotateVec(const Vec3 &p, char axis, double c, double s) {
  switch (axis) {
  case 'x': return {p.x, c * p.y - s * p.z, s * p.y + c * p.z};
  case 'y': return {c * p.x + s * p.z, p.y, -s * p.x + c * p.z};
  default: return {c * p.x - s * p.y, s * p.x + c * p.y, p.z};
  }
}

Mesh &Mesh::Rotate(char axis, double degrees) {
  double a = degrees * PI / 180.0, c = std::cos(a), s = std::sin(a);
  for (MeshVertex &v : Vertices) {
    v.P = RotateVec(v.P, axis, c, s);
    v.N = RotateVec(v.N, axis, c, s);
  }
  return *this;
}

Mesh &Mesh::Move(double x, double y, double z) {
  for (MeshVertex &v : Vertices) v.P = v.P + Vec3(x, y, z);
  return *this;
}

Mesh &Mesh::Bind(int bone) {
  for (MeshVertex &v : Vertices) v.Bone = bone;
  return *this;
}

Mesh &Mesh::ProjectFront(double cx, double cy, double halfW, double halfH) {
  // +X is the character's left, which the viewer in front sees on the left
  // of the picture, so s grows towards -X.
  for (MeshVertex &v : Vertices) {
    v.S = 0.5 - (v.P.x - cx) / (2 * halfW);
    v.T = 0.5 + (v.P.y - cy) / (2 * halfH);
  }
  return *this;
}

void Mesh::Append(const Mesh &o) {
  int base = static_cast<int>(Vertices.size());
  Vertices.insert(Vertices.end(), o.Vertices.begin(), o.Vertices.end());
  for (int i : o.Indices) Indices.push_back(base + i);
}

Vec3 Mesh::Min() const {
  Vec3 m(1e30, 1e30, 1e30);
  for (const MeshVertex &v : Vertices) m = {std::min(m.x, v.P.x), std::min(m.y, v.P.y), std::min(m.z, v.P.z)};
  return m;
}

Vec3 Mesh::Max() const {
  Vec3 m(-1e30, -1e30, -1e30);
  for (const MeshVertex &v : Vertices) m = {std::max(m.x, v.P.x), std::max(m.y, v.P.y), std::max(m.z, v.P.z)};
  return m;
}

// ---------------------------------------------------------------- surfaces

// Where a surface's grid lines of one direction put their steps: `At` maps an
// even share t of the line to the surface's own parameter, so that each step
// covers an equal share of the bending. A straight stretch takes long steps,
// a tight bend short ones: the edges keep to the surface equally well
// everywhere, with the fewest steps.
class Spacing {
public:
  std::vector<double> Cumulative;  // bending up to each of FINE_STEPS + 1 points

  double At(double t) const {
    const double target = t * Cumulative.back();
    size_t i = static_cast<size_t>(std::upper_bound(Cumulative.begin(), Cumulative.end(), target) - Cumulative.begin());
    if (i == 0) return 0;
    if (i >= Cumulative.size()) return 1;
    const double w = Cumulative[i] - Cumulative[i - 1];
    return (static_cast<double>(i - 1) + (w > 0 ? (target - Cumulative[i - 1]) / w : 0)) / (Cumulative.size() - 1);
  }
};

// The angle by which the path a, b, c turns at b; 0 where a step has no length.
static double Turn(const Vec3 &a, const Vec3 &b, const Vec3 &c) {
  const Vec3 in = b - a, out = c - b;
  const double li = Length(in), lo = Length(out);
  if (li < 1e-12 || lo < 1e-12) return 0;
  return std::acos(std::min(1.0, std::max(-1.0, Dot(in, out) / (li * lo))));
}

// The points of one grid line, `line` along the other direction.
static Vec3 LinePoint(const SurfaceFn &f, bool alongU, double step, double line) {
  return alongU ? f(step, line) : f(line, step);
}

// How many steps a stretch of a grid line needs: a bend of angle a over a
// length s keeps to SURFACE_TOLERANCE with about sqrt(a s / 8 tolerance)
// steps, and turns no more than MAX_STEP_TURN a step with a / MAX_STEP_TURN.
// Over `lines` + 1 lines of the other direction the most demanding one
// counts; a share spread evenly keeps a long straight stretch from one
// single edge.
static Spacing BendSpacing(const SurfaceFn &f, bool alongU, int lines) {
  std::vector<double> need(FINE_STEPS, 0.0);
  std::vector<Vec3> p(FINE_STEPS + 1);
  for (int l = 0; l <= lines; l++) {
    const double line = static_cast<double>(l) / lines;
    for (int k = 0; k <= FINE_STEPS; k++) p[k] = LinePoint(f, alongU, static_cast<double>(k) / FINE_STEPS, line);
    for (int k = 0; k < FINE_STEPS; k++) {
      const double s = Length(p[k + 1] - p[k]);
      double a = 0;
      for (int end : {k, k + 1}) {
        if (end > 0 && end < FINE_STEPS) a += 0.5 * Turn(p[end - 1], p[end], p[end + 1]);
      }
      need[k] = std::max(need[k], std::max(std::sqrt(a * s / (8 * SURFACE_TOLERANCE)), a / MAX_STEP_TURN));
    }
  }
  double total = 0;
  for (double n : need) total += n;
  Spacing spacing;
  spacing.Cumulative.push_back(0);
  for (double n : need) spacing.Cumulative.push_back(spacing.Cumulative.back() + n + EVEN_SHARE * total / FINE_STEPS);
  return spacing;
}

// Distance from p to the segment from a to b.
static double SegmentDistance(const Vec3 &p, const Vec3 &a, const Vec3 &b) {
  const Vec3 ab = b - a;
  const double len2 = Dot(ab, ab);
  const double t = len2 > 1e-24 ? std::min(1.0, std::max(0.0, Dot(p - a, ab) / len2)) : 0.0;
  return Length(p - (a + ab * t));
}

// Whether the n-step edges of every grid line of one direction, over
// `lines` + 1 lines of the other, keep to the surface: no surface point a
// quarter, a half or three quarters through a step stands further than
// SURFACE_TOLERANCE from its edge, and no edge turns from the next by more
// than MAX_STEP_TURN unless one of the two is too short for its shading to
// show.
static bool StepsKeepTo(const SurfaceFn &f, const Spacing &spacing, int n, bool alongU, int lines) {
  std::vector<Vec3> corner(static_cast<size_t>(n) + 1);
  for (int l = 0; l <= lines; l++) {
    const double line = static_cast<double>(l) / lines;
    for (int i = 0; i <= n; i++) corner[i] = LinePoint(f, alongU, spacing.At(static_cast<double>(i) / n), line);
    for (int i = 0; i < n; i++) {
      const double from = spacing.At(static_cast<double>(i) / n), to = spacing.At(static_cast<double>(i + 1) / n);
      for (double q : {0.25, 0.5, 0.75}) {
        if (SegmentDistance(LinePoint(f, alongU, from + q * (to - from), line), corner[i], corner[i + 1]) >
            SURFACE_TOLERANCE)
          return false;
      }
      if (i + 1 < n && Length(corner[i + 1] - corner[i]) > SHADED_STEP &&
          Length(corner[i + 2] - corner[i + 1]) > SHADED_STEP &&
          Turn(corner[i], corner[i + 1], corner[i + 2]) > MAX_STEP_TURN)
        return false;
    }
  }
  return true;
}

// The fewest steps, at most `n`, that keep to the surface: a small or flat
// shape needs fewer than a large round one, and a star's points or a
// crown's teeth keep all they need. Even numbers only, as the shapes come
// symmetric: a grid with as many steps on each side of the middle keeps a
// left part the mirror of the right one, and a body's anchors level.
static int StepsFor(const SurfaceFn &f, const Spacing &spacing, int n, bool alongU, int lines) {
  for (int k = MIN_STEPS; k < n; k += 2)
    if (StepsKeepTo(f, spacing, k, alongU, lines)) return k;
  return n;
}

Mesh Surface(int nu, int nv, const SurfaceFn &f, bool closed, bool flip) {
  Mesh m;
  const int lines = std::max(nu, nv);
  const Spacing su = BendSpacing(f, true, lines), sv = BendSpacing(f, false, lines);
  nu = StepsFor(f, su, nu, true, lines);
  nv = StepsFor(f, sv, nv, false, lines);
  // Derivatives by central differences; at a pole the u derivative vanishes,
  // so the normal is taken a little way off it.
  const double h = 1e-4;
  auto normalAt = [&](double u, double v) {
    double vv = std::min(std::max(v, 2e-3), 1 - 2e-3);
    Vec3 du = f(u + h, vv) - f(u - h, vv);
    Vec3 dv = f(u, std::min(vv + h, 1.0)) - f(u, std::max(vv - h, 0.0));
    return Normalise(Cross(dv, du));
  };
  for (int j = 0; j <= nv; j++) {
    for (int i = 0; i <= nu; i++) {
      double u = su.At(static_cast<double>(i) / nu), v = sv.At(static_cast<double>(j) / nv);
      MeshVertex mv;
      mv.P = f(u, v);
      mv.N = normalAt(u, v);
      mv.S = u;
      mv.T = v;
      m.Vertices.push_back(mv);
    }
  }
  auto at = [nu](int i, int j) { return j * (nu + 1) + i; };
  for (int j = 0; j < nv; j++) {
    for (int i = 0; i < nu; i++) {
      int a = at(i, j), b = at(i + 1, j), c = at(i + 1, j + 1), d = at(i, j + 1);
      // Wound so that the triangle faces along dv x du.
      const int quad[6] = {a, d, c, a, c, b};
      for (int k = 0; k < 6; k += 3) {
        const Vec3 &p0 = m.Vertices[quad[k]].P, &p1 = m.Vertices[quad[k + 1]].P, &p2 = m.Vertices[quad[k + 2]].P;
        if (Length(Cross(p1 - p0, p2 - p0)) < 1e-9) continue;  // collapsed at a pole
        m.Indices.insert(m.Indices.end(), quad + k, quad + k + 3);
      }
    }
  }
  bool outwards = !flip;
  if (closed) {
    double volume = 0;
    for (size_t t = 0; t + 2 < m.Indices.size(); t += 3) {
      volume += Dot(m.Vertices[m.Indices[t]].P,
                    Cross(m.Vertices[m.Indices[t + 1]].P, m.Vertices[m.Indices[t + 2]].P));
    }
    outwards = volume > 0;
  }
  if (!outwards) {
    for (MeshVertex &v : m.Vertices) v.N = -v.N;
    for (size_t t = 0; t + 2 < m.Indices.size(); t += 3) std::swap(m.Indices[t + 1], m.Indices[t + 2]);
  }
  return m;
}

static double SignedPow(double x, double e) {
  double a = std::pow(std::fabs(x), e);
  return x < 0 ? -a : a;
}

Mesh SuperEllipsoid(double rx, double ry, double rz, double e1, double e2, int nu, int nv) {
  return Surface(nu, nv, [=](double u, double v) {
    double lat = -PI / 2 + v * PI, lon = u * 2 * PI;
    double cl = SignedPow(std::cos(lat), e1), sl = SignedPow(std::sin(lat), e1);
    return Vec3(rx * cl * SignedPow(std::cos(lon), e2), ry * sl, rz * cl * SignedPow(std::sin(lon), e2));
  }, true);
}

Mesh Sphere(double r, int nu, int nv) { return SuperEllipsoid(r, r, r, 1, 1, nu, nv); }

Mesh Marker(double x, double y, double z) {
  Mesh m;
  MeshVertex v;
  v.P = Vec3(x, y, z);
  v.N = Vec3(0, 1, 0);
  m.Vertices.push_back(v);
  return m;
}

Mesh Lathe(const std::function<void(double v, double &r, double &y)> &profile, int nu, int nv, double sx, double sz,
           double e2, bool closed) {
  return Surface(nu, nv, [=](double u, double v) {
    double r = 0, y = 0;
    profile(v, r, y);
    double lon = u * 2 * PI;
    return Vec3(r * sx * SignedPow(std::cos(lon), e2), y, r * sz * SignedPow(std::sin(lon), e2));
  }, closed, false);
}

Mesh Tube(const std::function<Vec3(double v)> &centre, const std::function<double(double v)> &rad, int nu, int nv,
          const Vec3 &side) {
  return Surface(nu, nv, [=](double u, double v) {
    const double h = 1e-3;
    Vec3 t = Normalise(centre(std::min(v + h, 1.0)) - centre(std::max(v - h, 0.0)));
    Vec3 a = Normalise(Cross(t, side));
    Vec3 b = Cross(a, t);
    double lon = u * 2 * PI;
    return centre(v) + (a * std::cos(lon) + b * std::sin(lon)) * rad(v);
  }, true);
}

double Capsule(double v, double r, double endFrac) {
  double d = std::min(v, 1 - v) / endFrac;
  if (d >= 1) return r;
  return r * std::sqrt(std::max(0.0, 1 - (1 - d) * (1 - d)));
}

Mesh Torus(double R, double r, int nu, int nv) {
  return Surface(nv, nu, [=](double u, double v) {
    double a = v * 2 * PI, b = u * 2 * PI;
    double rr = R + r * std::cos(b);
    return Vec3(rr * std::cos(a), r * std::sin(b), rr * std::sin(a));
  }, true);
}

// ---------------------------------------------------------------- models

MaterialSpec Colour(const std::string &name, int r, int g, int b, float specular, float shininess) {
  MaterialSpec m;
  m.Name = name;
  m.Diffuse[0] = r / 255.0f;
  m.Diffuse[1] = g / 255.0f;
  m.Diffuse[2] = b / 255.0f;
  m.Specular = specular;
  m.Shininess = shininess;
  return m;
}

int ModelSpec::AddMaterial(const MaterialSpec &m) {
  Materials.push_back(m);
  return static_cast<int>(Materials.size()) - 1;
}

int ModelSpec::Add(const Mesh &m, int material) {
  Groups.push_back(m);
  Groups.back().Material = material;
  return static_cast<int>(Groups.size()) - 1;
}

int ModelSpec::AddJoint(const JointSpec &j) {
  Joints.push_back(j);
  return static_cast<int>(Joints.size()) - 1;
}

Vec3 ModelSpec::Min() const {
  Vec3 m(1e30, 1e30, 1e30);
  for (const Mesh &g : Groups) {
    Vec3 a = g.Min();
    m = {std::min(m.x, a.x), std::min(m.y, a.y), std::min(m.z, a.z)};
  }
  return m;
}

Vec3 ModelSpec::Max() const {
  Vec3 m(-1e30, -1e30, -1e30);
  for (const Mesh &g : Groups) {
    Vec3 a = g.Max();
    m = {std::max(m.x, a.x), std::max(m.y, a.y), std::max(m.z, a.z)};
  }
  return m;
}

Vec3 ModelSpec::Centre() {
  Vec3 lo = Min(), hi = Max();
  Vec3 shift = -(lo + (hi - lo) * 0.5);
  for (Mesh &g : Groups) g.Move(shift);
  for (JointSpec &j : Joints) {
    if (j.Parent.empty()) j.Position = j.Position + shift;
  }
  return shift;
}

// The one joint that every vertex of a mesh is bound to, -1 for none, or
// MIXED_JOINTS.
static const int MIXED_JOINTS = -2;
static int MeshJoint(const Mesh &m) {
  int joint = m.Vertices.empty() ? -1 : m.Vertices[0].Bone;
  for (const MeshVertex &v : m.Vertices) {
    if (v.Bone != joint) return MIXED_JOINTS;
  }
  return joint;
}

static void CopyName(char *dst, size_t width, const std::string &s) {
  std::memset(dst, 0, width);
  std::memcpy(dst, s.data(), std::min(s.size(), width - 1));
}

bool ModelSpec::Save(const std::string &path) const {
  MS3DWriter w;
  w.AnimationFps = Fps;
  w.CurrentTime = 0;
  w.TotalFrames = Frames;
  w.CommentsSubVersion = 1;
  w.VertexExtraSubVersion = 2;
  w.JointExtraSubVersion = 1;
  w.ModelExtraSubVersion = 1;
  w.TransparencyMode = 0;
  for (const MaterialSpec &s : Materials) {
    msMaterial m;
    CopyName(m.Name, sizeof m.Name, s.Name);
    for (int c = 0; c < 3; c++) {
      m.Ambient[c] = s.Diffuse[c] * s.Ambient;
      m.Diffuse[c] = s.Diffuse[c];
      m.Specular[c] = s.Specular;
      m.Emissive[c] = s.Diffuse[c] * s.Emissive;
    }
    m.Ambient[3] = m.Diffuse[3] = m.Specular[3] = m.Emissive[3] = s.Transparency;
    m.Shininess = s.Shininess;
    m.Transparency = s.Transparency;
    CopyName(m.Texture, sizeof m.Texture, s.Texture);
    w.Materials.push_back(m);
  }
  // Meshes of one opaque material that one joint carries, or none, share a
  // group: the game draws a group at a time, with its material set up before
  // it, opaque meshes look the same whatever their order, and a group that
  // moves whole with a joint is compiled once for all frames. A see-through
  // mesh keeps its own group and its place, and nothing moves past it.
  std::vector<size_t> open;  // groups since the last see-through one
  std::vector<int> groupJoint;
  for (const Mesh &g : Groups) {
    const int joint = MeshJoint(g);
    const bool opaque = g.Material < 0 || Materials[static_cast<size_t>(g.Material)].Transparency >= 1;
    size_t groupIndex = w.Groups.size();
    for (size_t o : open) {
      if (opaque && w.Groups[o].MaterialIndex == g.Material && groupJoint[o] == joint && joint != MIXED_JOINTS)
        groupIndex = o;
    }
    if (groupIndex == w.Groups.size()) {
      msGroup grp;
      CopyName(grp.Name, sizeof grp.Name, "group" + std::to_string(groupIndex));
      grp.MaterialIndex = static_cast<int8_t>(g.Material);
      w.Groups.push_back(grp);
      groupJoint.push_back(joint);
      if (opaque)
        open.push_back(groupIndex);
      else
        open.clear();
    }
    msGroup &grp = w.Groups[groupIndex];
    uint16_t base = static_cast<uint16_t>(w.Vertices.size());
    for (const MeshVertex &v : g.Vertices) {
      msVertex mv;
      mv.Position[0] = static_cast<float>(v.P.x);
      mv.Position[1] = static_cast<float>(v.P.y);
      mv.Position[2] = static_cast<float>(v.P.z);
      mv.BoneId = static_cast<int8_t>(v.Bone);
      mv.BoneIds[0] = mv.BoneIds[1] = mv.BoneIds[2] = -1;
      w.Vertices.push_back(mv);
    }
    for (size_t i = 0; i + 2 < g.Indices.size(); i += 3) {
      msTriangle t;
      t.Flags = 0;
      t.SmoothingGroup = 1;
      t.GroupIndex = static_cast<uint8_t>(groupIndex);
      for (int c = 0; c < 3; c++) {
        const MeshVertex &v = g.Vertices[g.Indices[i + c]];
        t.VertexIndices[c] = static_cast<uint16_t>(base + g.Indices[i + c]);
        t.VertexNormals[c][0] = static_cast<float>(v.N.x);
        t.VertexNormals[c][1] = static_cast<float>(v.N.y);
        t.VertexNormals[c][2] = static_cast<float>(v.N.z);
        t.S[c] = static_cast<float>(v.S);
        // Textures are uploaded upright: t counts from the picture's bottom.
        t.T[c] = static_cast<float>(v.T);
      }
      grp.TriangleIndices.push_back(static_cast<uint16_t>(w.Triangles.size()));
      w.Triangles.push_back(t);
    }
  }
  for (const JointSpec &j : Joints) {
    msJoint mj;
    CopyName(mj.Name, sizeof mj.Name, j.Name);
    CopyName(mj.ParentName, sizeof mj.ParentName, j.Parent);
    mj.Position[0] = static_cast<float>(j.Position.x);
    mj.Position[1] = static_cast<float>(j.Position.y);
    mj.Position[2] = static_cast<float>(j.Position.z);
    mj.Color[0] = 1;
    mj.Color[1] = 0.8f;
    mj.Color[2] = 0.2f;
    // Key times are stored in seconds.
    for (const KeySpec &k : j.Rotations) {
      msKeyframe key;
      key.Time = static_cast<float>(k.Frame / Fps);
      key.Value[0] = static_cast<float>(k.Value.x);
      key.Value[1] = static_cast<float>(k.Value.y);
      key.Value[2] = static_cast<float>(k.Value.z);
      mj.RotationKeys.push_back(key);
    }
    for (const KeySpec &k : j.Positions) {
      msKeyframe key;
      key.Time = static_cast<float>(k.Frame / Fps);
      key.Value[0] = static_cast<float>(k.Value.x);
      key.Value[1] = static_cast<float>(k.Value.y);
      key.Value[2] = static_cast<float>(k.Value.z);
      mj.PositionKeys.push_back(key);
    }
    w.Joints.push_back(mj);
  }
  if (Joints.empty()) w.TotalFrames = 1;
  return w.Save(path.c_str());
}
