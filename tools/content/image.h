// Pictures for the content generator: an RGB canvas with anti-aliased shapes,
// written as uncompressed 24-bit TGA.
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct RGB {
  double r = 0, g = 0, b = 0;
  RGB() = default;
  RGB(double R, double G, double B) : r(R), g(G), b(B) {}
};
RGB Mix(const RGB &a, const RGB &b, double t);

class Image {
public:
  int W = 0, H = 0;
  std::vector<RGB> Pixels;  // row 0 at the top

  Image(int w, int h, const RGB &fill = RGB());
  RGB &At(int x, int y) { return Pixels[static_cast<size_t>(y) * W + x]; }
  // Blends colour c over the pixel with coverage a (0 to 1).
  void Blend(int x, int y, const RGB &c, double a);
  // Fills where the signed distance d(x, y) (negative inside) is below 0,
  // anti-aliased over one pixel; the colour may vary with the position.
  void Shape(const std::function<double(double x, double y)> &d, const std::function<RGB(double x, double y)> &c,
             double alpha = 1.0);
  void Shape(const std::function<double(double x, double y)> &d, const RGB &c, double alpha = 1.0);
  // The same, looking only at the pixels of the box (x0, y0)-(x1, y1).
  void ShapeIn(double x0, double y0, double x1, double y1, const std::function<double(double x, double y)> &d,
               const std::function<RGB(double x, double y)> &c, double alpha = 1.0);
  void Circle(double cx, double cy, double r, const RGB &c, double alpha = 1.0);
  void Ellipse(double cx, double cy, double rx, double ry, const RGB &c, double alpha = 1.0);
  void Ring(double cx, double cy, double r, double width, const RGB &c, double alpha = 1.0);
  void Line(double x0, double y0, double x1, double y1, double width, const RGB &c, double alpha = 1.0);
  void RoundRect(double x0, double y0, double x1, double y1, double radius, const RGB &c, double alpha = 1.0);
  void Star(double cx, double cy, double r, double inner, int points, double turn, const RGB &c, double alpha = 1.0);
  void VerticalGradient(const RGB &top, const RGB &bottom);
  bool SaveTGA(const std::string &path) const;
};

// Signed distances used by the shapes, exposed for compound shapes.
double DistCircle(double x, double y, double cx, double cy, double r);
double DistSegment(double x, double y, double x0, double y0, double x1, double y1, double halfWidth);
double DistStar(double x, double y, double cx, double cy, double r, double inner, int points, double turn);

// A small deterministic random source: the same numbers on every run and
// every machine, unlike rand().
class Dice {
public:
  explicit Dice(uint32_t seed) : State(seed ? seed : 1) {}
  uint32_t Next();
  double Unit();                     // 0 to below 1
  double Range(double lo, double hi);
private:
  uint32_t State;
};
