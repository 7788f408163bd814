// RGB canvas with signed-distance shapes and the TGA writer.
#include "tools/content/image.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

RGB Mix(const RGB &a, const RGB &b, double t) {
  return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

Image::Image(int w, int h, const RGB &fill) : W(w), H(h), Pixels(static_cast<size_t>(w) * h, fill) {}

void Image::Blend(int x, int y, const RGB &c, double a) {
  if (x < 0 || y < 0 || x >= W || y >= H || a <= 0) return;
  RGB &p = At(x, y);
  p = Mix(p, c, std::min(a, 1.0));
}

void Image::Shape(const std::function<double(double, double)> &d, const std::function<RGB(double, double)> &c,
                  double alpha) {
  ShapeIn(0, 0, W, H, d, c, alpha);
}

void Image::ShapeIn(double x0, double y0, double x1, double y1, const std::function<double(double, double)> &d,
                    const std::function<RGB(double, double)> &c, double alpha) {
  int xa = std::max(0, static_cast<int>(std::floor(x0)) - 1), xb = std::min(W, static_cast<int>(std::ceil(x1)) + 1);
  int ya = std::max(0, static_cast<int>(std::floor(y0)) - 1), yb = std::min(H, static_cast<int>(std::ceil(y1)) + 1);
  for (int y = ya; y < yb; y++) {
    for (int x = xa; x < xb; x++) {
      double px = x + 0.5, py = y + 0.5;
      double dist = d(px, py);
      if (dist >= 0.5) continue;
      double cover = std::min(1.0, 0.5 - dist);
      Blend(x, y, c(px, py), cover * alpha);
    }
  }
}

void Image::Shape(const std::function<double(double, double)> &d, const RGB &c, double alpha) {
  Shape(d, [c](double, double) { return c; }, alpha);
}

double DistCircle(double x, double y, double cx, double cy, double r) { return std::hypot(x - cx, y - cy) - r; }

double DistSegment(double x, double y, double x0, double y0, double x1, double y1, double halfWidth) {
  double dx = x1 - x0, dy = y1 - y0;
  double len2 = dx * dx + dy * dy;
  double t = len2 > 0 ? ((x - x0) * dx + (y - y0) * dy) / len2 : 0;
  t = std::min(1.0, std::max(0.0, t));
  return std::hypot(x - (x0 + t * dx), y - (y0 + t * dy)) - halfWidth;
}

double DistStar(double x, double y, double cx, double cy, double r, double inner, int points, double turn) {
  // Distance to a star polygon, as the largest signed distance to the edge
  // lines of its sector: exact enough for anti-aliasing at the outline.
  const double pi = 3.14159265358979323846;
  double a = std::atan2(y - cy, x - cx) - turn;
  double sector = 2 * pi / points;
  double local = std::fmod(std::fmod(a, sector) + sector, sector) - sector / 2;
  double rr = std::hypot(x - cx, y - cy);
  double px = rr * std::cos(local), py = std::fabs(rr * std::sin(local));
  // Edge from the tip (r, 0) to the notch (inner cos(s/2), inner sin(s/2)).
  double tx = r, ty = 0, nx = inner * std::cos(sector / 2), ny = inner * std::sin(sector / 2);
  double ex = nx - tx, ey = ny - ty;
  double len = std::hypot(ex, ey);
  // Outward normal of the edge.
  double ox = -ey / len, oy = ex / len;
  if (ox * (0 - tx) + oy * (0 - ty) > 0) {
    ox = -ox;
    oy = -oy;
  }
  return (px - tx) * ox + (py - ty) * oy;
}

void Image::Circle(double cx, double cy, double r, const RGB &c, double alpha) {
  ShapeIn(cx - r, cy - r, cx + r, cy + r, [=](double x, double y) { return DistCircle(x, y, cx, cy, r); },
          [c](double, double) { return c; }, alpha);
}

void Image::Ellipse(double cx, double cy, double rx, double ry, const RGB &c, double alpha) {
  double k = std::min(rx, ry);
  ShapeIn(cx - rx, cy - ry, cx + rx, cy + ry, [=](double x, double y) {
    double dx = (x - cx) / rx, dy = (y - cy) / ry;
    return (std::sqrt(dx * dx + dy * dy) - 1) * k;
  }, [c](double, double) { return c; }, alpha);
}

void Image::Ring(double cx, double cy, double r, double width, const RGB &c, double alpha) {
  double e = r + width;
  ShapeIn(cx - e, cy - e, cx + e, cy + e,
          [=](double x, double y) { return std::fabs(DistCircle(x, y, cx, cy, r)) - width / 2; },
          [c](double, double) { return c; }, alpha);
}

void Image::Line(double x0, double y0, double x1, double y1, double width, const RGB &c, double alpha) {
  ShapeIn(std::min(x0, x1) - width, std::min(y0, y1) - width, std::max(x0, x1) + width, std::max(y0, y1) + width,
          [=](double x, double y) { return DistSegment(x, y, x0, y0, x1, y1, width / 2); },
          [c](double, double) { return c; }, alpha);
}

void Image::RoundRect(double x0, double y0, double x1, double y1, double radius, const RGB &c, double alpha) {
  double cx = (x0 + x1) / 2, cy = (y0 + y1) / 2, hx = (x1 - x0) / 2 - radius, hy = (y1 - y0) / 2 - radius;
  ShapeIn(x0, y0, x1, y1, [=](double x, double y) {
    double qx = std::fabs(x - cx) - hx, qy = std::fabs(y - cy) - hy;
    double outside = std::hypot(std::max(qx, 0.0), std::max(qy, 0.0));
    return outside + std::min(std::max(qx, qy), 0.0) - radius;
  }, [c](double, double) { return c; }, alpha);
}

void Image::Star(double cx, double cy, double r, double inner, int points, double turn, const RGB &c, double alpha) {
  ShapeIn(cx - r, cy - r, cx + r, cy + r,
          [=](double x, double y) { return DistStar(x, y, cx, cy, r, inner, points, turn); },
          [c](double, double) { return c; }, alpha);
}

void Image::VerticalGradient(const RGB &top, const RGB &bottom) {
  for (int y = 0; y < H; y++) {
    RGB c = Mix(top, bottom, H > 1 ? static_cast<double>(y) / (H - 1) : 0);
    for (int x = 0; x < W; x++) At(x, y) = c;
  }
}

static uint8_t Byte(double v) {
  double s = std::floor(v * 255.0 + 0.5);
  return static_cast<uint8_t>(std::min(255.0, std::max(0.0, s)));
}

bool Image::SaveTGA(const std::string &path) const {
  FILE *f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  // Uncompressed true-colour, 24 bits, rows from the bottom up (origin at
  // the lower left, the form every TGA reader takes).
  uint8_t header[18] = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                        static_cast<uint8_t>(W & 0xFF), static_cast<uint8_t>(W >> 8),
                        static_cast<uint8_t>(H & 0xFF), static_cast<uint8_t>(H >> 8), 24, 0};
  std::fwrite(header, 1, sizeof header, f);
  std::vector<uint8_t> row(static_cast<size_t>(W) * 3);
  for (int y = H - 1; y >= 0; y--) {
    for (int x = 0; x < W; x++) {
      const RGB &p = Pixels[static_cast<size_t>(y) * W + x];
      row[x * 3 + 0] = Byte(p.b);
      row[x * 3 + 1] = Byte(p.g);
      row[x * 3 + 2] = Byte(p.r);
    }
    std::fwrite(row.data(), 1, row.size(), f);
  }
  return std::fclose(f) == 0;
}

uint32_t Dice::Next() {
  // xorshift32
  State ^= State << 13;
  State ^= State >> 17;
  State ^= State << 5;
  return State;
}

double Dice::Unit() { return (Next() >> 8) / 16777216.0; }

double Dice::Range(double lo, double hi) { return lo + (hi - lo) * Unit(); }
