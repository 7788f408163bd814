// The button icons, drawn as shapes given by signed distance functions: each
// layer paints its fill, ringed by a dark outline of one common weight, over
// the layers before it. Pixels are sampled 4x4; a pixel at least half covered
// takes the mean colour of its covered samples, the rest is the mask colour.
#include "icons.h"
#include <algorithm>
#include <cmath>
#include <functional>

namespace {

typedef std::function<float(float, float)> Shape;

struct Vec {
  float X, Y;
};

struct Colour {
  uint8_t R, G, B;
};

const float OutlineWidth = 1.5f;
const Colour Outline = {34, 24, 48};
const Colour Blue = {52, 132, 255};
const Colour LightBlue = {130, 185, 255};
const Colour Green = {56, 200, 72};
const Colour Red = {236, 52, 52};
const Colour Yellow = {255, 214, 40};
const Colour Orange = {255, 146, 32};
const Colour Purple = {150, 90, 235};
const Colour Skin = {255, 196, 150};
const Colour SkinShade = {222, 136, 104};
const Colour Brown = {150, 90, 40};
const Colour DarkBrown = {118, 70, 32};
const Colour Teal = {32, 186, 200};
const Colour White = {255, 255, 255};
const Colour Steel = {150, 160, 190};
const Colour Silver = {214, 218, 228};
const Colour Grey = {150, 150, 162};
const Colour Dark = {52, 44, 64};

// ---- Shapes ----

Shape Circle(float cx, float cy, float r) {
  return [=](float x, float y) { return std::hypot(x - cx, y - cy) - r; };
}

Shape Ellipse(float cx, float cy, float rx, float ry) {
  return [=](float x, float y) {
    float px = (x - cx) / rx, py = (y - cy) / ry;
    float k0 = std::hypot(px, py);
    float k1 = std::hypot(px / rx, py / ry);
    if (k1 == 0) return -std::min(rx, ry);
    return k0 * (k0 - 1.0f) / k1;
  };
}

Shape Box(float cx, float cy, float hw, float hh, float radius) {
  return [=](float x, float y) {
    float qx = std::fabs(x - cx) - hw + radius;
    float qy = std::fabs(y - cy) - hh + radius;
    float outside = std::hypot(std::max(qx, 0.0f), std::max(qy, 0.0f));
    return outside + std::min(std::max(qx, qy), 0.0f) - radius;
  };
}

float SegmentDistance(float x, float y, Vec a, Vec b) {
  float ex = b.X - a.X, ey = b.Y - a.Y;
  float wx = x - a.X, wy = y - a.Y;
  float len2 = ex * ex + ey * ey;
  float t = len2 > 0 ? std::clamp((wx * ex + wy * ey) / len2, 0.0f, 1.0f) : 0.0f;
  return std::hypot(wx - ex * t, wy - ey * t);
}

// A pen stroke of radius r along the points.
Shape Stroke(std::vector<Vec> points, float r) {
  return [=](float x, float y) {
    float d = 1e9f;
    for (size_t i = 0; i + 1 < points.size(); i++) d = std::min(d, SegmentDistance(x, y, points[i], points[i + 1]));
    if (points.size() == 1) d = std::hypot(x - points[0].X, y - points[0].Y);
    return d - r;
  };
}

// A stroke whose radius goes from one point's value to the next.
Shape TaperedStroke(std::vector<Vec> points, std::vector<float> radii) {
  std::vector<Shape> dots;
  for (size_t i = 0; i + 1 < points.size(); i++) {
    for (int s = 0; s < 8; s++) {
      float t = s / 8.0f;
      dots.push_back(Circle(points[i].X + (points[i + 1].X - points[i].X) * t,
                            points[i].Y + (points[i + 1].Y - points[i].Y) * t, radii[i] + (radii[i + 1] - radii[i]) * t));
    }
  }
  dots.push_back(Circle(points.back().X, points.back().Y, radii.back()));
  return [=](float x, float y) {
    float d = 1e9f;
    for (const Shape &s : dots) d = std::min(d, s(x, y));
    return d;
  };
}

Shape Polygon(std::vector<Vec> points) {
  return [=](float x, float y) {
    float d = 1e9f;
    bool inside = false;
    for (size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
      Vec a = points[j], b = points[i];
      d = std::min(d, SegmentDistance(x, y, a, b));
      if ((a.Y > y) != (b.Y > y) && x < (b.X - a.X) * (y - a.Y) / (b.Y - a.Y) + a.X) inside = !inside;
    }
    return inside ? -d : d;
  };
}

// Points along a circle of radius r from angle a0 to a1 in degrees, with y
// downwards, so 90 degrees is straight down.
std::vector<Vec> ArcPoints(float cx, float cy, float r, float a0, float a1) {
  std::vector<Vec> points;
  const int steps = 24;
  for (int i = 0; i <= steps; i++) {
    float a = (a0 + (a1 - a0) * i / steps) * 3.14159265f / 180.0f;
    points.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
  }
  return points;
}

Shape Union(std::vector<Shape> shapes) {
  return [=](float x, float y) {
    float d = 1e9f;
    for (const Shape &s : shapes) d = std::min(d, s(x, y));
    return d;
  };
}

Shape Intersect(Shape a, Shape b) {
  return [=](float x, float y) { return std::max(a(x, y), b(x, y)); };
}

// Grows a shape by r, which also rounds its corners.
Shape Grow(Shape a, float r) {
  return [=](float x, float y) { return a(x, y) - r; };
}

Shape Above(float limit) {
  return [=](float, float y) { return y - limit; };
}

Shape MirrorY(Shape a) {
  return [=](float x, float y) { return a(x, IconSize - y); };
}

Shape Transpose(Shape a) {
  return [=](float x, float y) { return a(y, x); };
}

Shape MirrorX(Shape a) {
  return [=](float x, float y) { return a(IconSize - x, y); };
}

// An arrow head at the end of an arc, pointing along the way the arc runs.
Shape ArcHead(float cx, float cy, float r, float angle, float direction) {
  float a = angle * 3.14159265f / 180.0f;
  Vec end = {cx + r * std::cos(a), cy + r * std::sin(a)};
  Vec tangent = {-std::sin(a) * direction, std::cos(a) * direction};
  Vec normal = {std::cos(a), std::sin(a)};
  return Polygon({{end.X + tangent.X * 5.5f, end.Y + tangent.Y * 5.5f},
                  {end.X + normal.X * 5.0f - tangent.X, end.Y + normal.Y * 5.0f - tangent.Y},
                  {end.X - normal.X * 5.0f - tangent.X, end.Y - normal.Y * 5.0f - tangent.Y}});
}

// ---- Painting ----

struct Layer {
  Shape Area;
  Colour Fill;
  bool Outlined;
};

class Icon {
public:
  std::vector<Layer> Layers;

  Icon &Add(Shape area, Colour fill, bool outlined = true) {
    Layers.push_back({area, fill, outlined});
    return *this;
  }

  RgbPicture Render() const {
    RgbPicture picture;
    picture.Width = IconSize;
    picture.Height = IconSize;
    picture.Rgb.resize((size_t)IconSize * IconSize * 3);
    for (int py = 0; py < IconSize; py++) {
      for (int px = 0; px < IconSize; px++) {
        int covered = 0, r = 0, g = 0, b = 0;
        for (int sy = 0; sy < 4; sy++) {
          for (int sx = 0; sx < 4; sx++) {
            float x = px + (sx + 0.5f) / 4, y = py + (sy + 0.5f) / 4;
            const Colour *c = nullptr;
            for (const Layer &layer : Layers) {
              float d = layer.Area(x, y);
              if (d <= 0)
                c = &layer.Fill;
              else if (layer.Outlined && d <= OutlineWidth)
                c = &Outline;
            }
            if (c == nullptr) continue;
            covered++;
            r += c->R;
            g += c->G;
            b += c->B;
          }
        }
        uint8_t *out = &picture.Rgb[((size_t)py * IconSize + px) * 3];
        if (covered < 8) {
          out[0] = 255, out[1] = 0, out[2] = 255;
          continue;
        }
        out[0] = (uint8_t)((r + covered / 2) / covered);
        out[1] = (uint8_t)((g + covered / 2) / covered);
        out[2] = (uint8_t)((b + covered / 2) / covered);
        // A painted pixel must never read as the mask colour.
        if (out[0] == 255 && out[1] == 0 && out[2] == 255) out[0] = 254;
      }
    }
    return picture;
  }
};

// ---- The icons ----

Shape UpArrow() {
  return Grow(Polygon({{16, 3.5f}, {27.5f, 15}, {20.5f, 15}, {20.5f, 28}, {11.5f, 28}, {11.5f, 15}, {4.5f, 15}}), 0.8f);
}

Shape VerticalDoubleArrow(float shaft, float head) {
  return Grow(Polygon({{16, 2},
                       {16 + head, 8.5f},
                       {16 + shaft, 8.5f},
                       {16 + shaft, 23.5f},
                       {16 + head, 23.5f},
                       {16, 30},
                       {16 - head, 23.5f},
                       {16 - shaft, 23.5f},
                       {16 - shaft, 8.5f},
                       {16 - head, 8.5f}}),
              0.5f);
}

Icon Person(float cx, float headY, float headR, float bodyY, float bodyRx, float bodyRy, float cut, Colour body) {
  Icon icon;
  icon.Add(Intersect(Ellipse(cx, bodyY, bodyRx, bodyRy), Above(cut)), body);
  icon.Add(Circle(cx, headY, headR), Skin);
  return icon;
}

Icon Join(Icon a, const Icon &b) {
  a.Layers.insert(a.Layers.end(), b.Layers.begin(), b.Layers.end());
  return a;
}

Shape Moustache() {
  Shape left = TaperedStroke({{16, 15}, {12, 15}, {8, 17}, {5, 18.5f}, {2.8f, 17}, {2.8f, 14.2f}},
                             {3.6f, 3.6f, 3.0f, 2.2f, 1.5f, 1.1f});
  return Union({left, MirrorX(left)});
}

}  // namespace

std::vector<IconPicture> DrawIcons() {
  std::vector<std::pair<std::string, Icon>> icons;
  auto add = [&](const char *name, const Icon &icon) { icons.push_back({name, icon}); };

  add("up", Icon().Add(UpArrow(), Blue));
  add("down", Icon().Add(MirrorY(UpArrow()), Blue));
  add("seperator", Icon().Add(Box(16, 16, 1.2f, 13, 1.0f), Grey));
  add("vert", Icon().Add(VerticalDoubleArrow(3, 6.5f), Yellow));
  add("horiz", Icon().Add(Transpose(VerticalDoubleArrow(3, 6.5f)), Yellow));
  // Heads narrow enough that the four stay apart at the corners.
  add("move", Icon().Add(Union({VerticalDoubleArrow(2.2f, 5), Transpose(VerticalDoubleArrow(2.2f, 5))}), Yellow));
  add("yes", Icon().Add(Stroke({{6.5f, 17}, {13, 23.5f}, {25.5f, 8}}, 3.2f), Green));
  add("cancel", Icon().Add(Union({Stroke({{8, 8}, {24, 24}}, 3.4f), Stroke({{24, 8}, {8, 24}}, 3.4f)}), Red));

  Icon server;
  server.Add(Box(16, 16, 9.5f, 13.5f, 2), Steel);
  for (float y : {9.0f, 16.0f, 23.0f}) {
    server.Add(Box(14, y, 5, 1.3f, 0.6f), Dark, false);
    server.Add(Circle(22.5f, y, 1.7f), y < 20 ? Green : Yellow, false);
  }
  add("server", server);

  add("connect", Icon()
                     .Add(Stroke({{16, 21}, {16, 25.5f}, {19.5f, 29}, {28, 29}}, 1.8f), Grey)
                     .Add(Box(11.5f, 6.5f, 1.6f, 4.5f, 0.6f), Silver)
                     .Add(Box(20.5f, 6.5f, 1.6f, 4.5f, 0.6f), Silver)
                     .Add(Box(16, 14.5f, 8.5f, 5.5f, 2.5f), Orange)
                     .Add(Box(16, 21, 3.5f, 2.5f, 1), Orange));

  add("character", Icon()
                       .Add(Intersect(Ellipse(16, 24.5f, 10.5f, 8), Above(30.5f)), Purple)
                       .Add(Circle(16, 10, 7), Skin)
                       .Add(Circle(13.3f, 9.3f, 1.2f), Dark, false)
                       .Add(Circle(18.7f, 9.3f, 1.2f), Dark, false)
                       .Add(Stroke(ArcPoints(16, 10.5f, 3.3f, 35, 145), 0.6f), Dark, false));

  Shape almond = Intersect(Circle(16, 5, 17.5f), Circle(16, 27, 17.5f));
  add("eyes", Icon()
                  .Add(almond, White)
                  .Add(Intersect(Circle(16, 16, 5.8f), almond), Blue, false)
                  .Add(Circle(16, 16, 2.6f), Dark, false)
                  .Add(Circle(17.9f, 14.1f, 1.2f), White, false));

  add("ears", Icon()
                  .Add(Union({Ellipse(17, 13.5f, 9, 11), Ellipse(14.5f, 22, 6, 7.5f)}), Skin)
                  .Add(Ellipse(17.5f, 14, 3, 4), SkinShade, false)
                  .Add(Stroke({{11.5f, 11}, {13.5f, 6.5f}, {18.5f, 5.5f}, {22.5f, 8.5f}, {23, 14}, {20, 19},
                               {18, 23}, {14.5f, 25.5f}},
                              1.1f),
                       SkinShade, false));

  add("nose", Icon()
                  .Add(Union({Stroke({{16, 4}, {16, 16}}, 4), Circle(16, 20, 7), Circle(9.5f, 22.5f, 4.5f),
                              Circle(22.5f, 22.5f, 4.5f)}),
                       Skin)
                  .Add(Ellipse(11.8f, 24.6f, 1.9f, 1.2f), Dark, false)
                  .Add(Ellipse(20.2f, 24.6f, 1.9f, 1.2f), Dark, false)
                  .Add(Circle(18.5f, 17, 1.7f), White, false));

  add("mouth", Icon()
                   .Add(Union({Intersect(Union({Ellipse(11.5f, 14.5f, 7.5f, 4.5f), Ellipse(20.5f, 14.5f, 7.5f, 4.5f)}),
                                         Above(17.5f)),
                               Intersect(Ellipse(16, 17, 12, 6.5f), [](float, float y) { return 16.0f - y; })}),
                        Red)
                   .Add(Stroke({{4.5f, 16.5f}, {10, 17.5f}, {16, 17}, {22, 17.5f}, {27.5f, 16.5f}}, 0.8f), Dark, false)
                   .Add(Ellipse(16, 20.3f, 4, 1.3f), {255, 150, 160}, false));

  add("eyebrows", Icon()
                      .Add(Circle(9.5f, 21, 4.2f), White)
                      .Add(Circle(22.5f, 21, 4.2f), White)
                      .Add(Circle(9.5f, 22, 1.9f), Dark, false)
                      .Add(Circle(22.5f, 22, 1.9f), Dark, false)
                      .Add(Stroke({{4, 12.5f}, {8.5f, 8.5f}, {14, 10}}, 2.3f), DarkBrown)
                      .Add(Stroke({{18, 10}, {23.5f, 8.5f}, {28, 12.5f}}, 2.3f), DarkBrown));

  add("moustache", Icon().Add(Circle(16, 8.5f, 5), Skin).Add(Moustache(), Brown));

  Shape shoe = Union({Box(11, 14, 5.5f, 8, 2.5f), Ellipse(19, 20.5f, 11, 6)});
  add("feet", Icon()
                  .Add(shoe, Blue)
                  .Add(Intersect(Ellipse(26, 21, 5, 5.5f), shoe), LightBlue, false)
                  .Add(Stroke({{11, 10.5f}, {15.5f, 13}}, 0.8f), White, false)
                  .Add(Stroke({{12, 15}, {17, 17.5f}}, 0.8f), White, false)
                  .Add(Box(16.5f, 26.5f, 14, 2.4f, 2), White));

  Shape crown = Box(16, 13, 8.5f, 10, 2);
  add("hat", Icon()
                 .Add(Ellipse(16, 24.5f, 14.5f, 4), Purple)
                 .Add(crown, Purple)
                 .Add(Intersect(Box(16, 19, 20, 2.3f, 0), crown), Yellow, false));

  add("refresh", Icon().Add(Union({Stroke(ArcPoints(16, 16, 10, 200, 325), 2.4f), ArcHead(16, 16, 10, 325, 1),
                                   Stroke(ArcPoints(16, 16, 10, 20, 145), 2.4f), ArcHead(16, 16, 10, 145, 1)}),
                             Teal));

  add("exit", Icon()
                  .Add(Box(12.5f, 16, 8.5f, 13.5f, 1.5f), Brown)
                  .Add(Box(12.5f, 10, 5, 4, 1), DarkBrown, false)
                  .Add(Box(12.5f, 22, 5, 5, 1), DarkBrown, false)
                  .Add(Circle(18, 17, 1.6f), Yellow, false)
                  .Add(Grow(Polygon({{18, 13}, {23.5f, 13}, {23.5f, 8.5f}, {30, 16}, {23.5f, 23.5f}, {23.5f, 19},
                                     {18, 19}}),
                            0.5f),
                       Green));

  add("ngame", Icon().Add(Grow(Polygon({{10, 6.5f}, {25.5f, 16}, {10, 25.5f}}), 2.5f), Green));

  add("multiplayer", Join(Person(21, 9.5f, 5, 23, 8, 7.5f, 27.5f, Blue), Person(11, 13, 5.5f, 27, 9, 8, 30.5f, Orange)));

  add("question", Icon()
                      .Add(Circle(16, 16, 14), Blue)
                      .Add(Stroke([] {
                        std::vector<Vec> p = ArcPoints(16, 11.5f, 4.5f, 180, 400);
                        p.push_back({16, 17.5f});
                        p.push_back({16, 19.5f});
                        return p;
                      }(),
                                  1.9f),
                           White, false)
                      .Add(Circle(16, 24, 2.1f), White, false));

  add("back", Icon().Add(
                  Grow(Polygon({{3.5f, 16}, {14, 5.5f}, {14, 11.5f}, {27.5f, 11.5f}, {27.5f, 20.5f}, {14, 20.5f}, {14, 26.5f}}),
                       0.8f),
                  Orange));

  std::vector<IconPicture> pictures;
  for (const auto &entry : icons) pictures.push_back({entry.first, entry.second.Render()});
  return pictures;
}
