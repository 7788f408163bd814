// The menu backdrop, the "no part" sign, the connecting badge and the
// stand-in thumbnails.
#include <algorithm>
#include <cmath>
#include "tools/content/content.h"

namespace {

RGB C(int r, int g, int b) { return RGB(r / 255.0, g / 255.0, b / 255.0); }

// A little round critter for the backdrop: body, belly, eyes and a smile.
void Critter(Image &img, double x, double y, double r, const RGB &body, double look) {
  img.Ellipse(x + r * 0.1, y + r * 0.95, r * 0.9, r * 0.16, C(60, 120, 50), 0.35);  // shadow
  img.Ellipse(x - r * 0.45, y + r * 0.85, r * 0.32, r * 0.16, Mix(body, RGB(0, 0, 0), 0.3));
  img.Ellipse(x + r * 0.45, y + r * 0.85, r * 0.32, r * 0.16, Mix(body, RGB(0, 0, 0), 0.3));
  img.Shape([=](double px, double py) { return DistCircle(px, py, x, y, r); },
            [=](double px, double py) {
              double k = ((px - x) * -0.5 + (py - y) * 0.8) / r;  // light from the upper left
              return Mix(body, RGB(0, 0, 0), std::max(0.0, k) * 0.25);
            });
  img.Circle(x - r * 0.35, y - r * 0.45, r * 0.16, RGB(1, 1, 1), 0.45);
  for (int s = -1; s <= 1; s += 2) {
    double ex = x + s * r * 0.33, ey = y - r * 0.15;
    img.Ellipse(ex, ey, r * 0.2, r * 0.25, RGB(1, 1, 1));
    img.Circle(ex + look * r * 0.07, ey + r * 0.04, r * 0.11, C(25, 20, 35));
    img.Circle(ex + look * r * 0.07 + r * 0.04, ey - r * 0.02, r * 0.04, RGB(1, 1, 1));
  }
  img.Shape([=](double px, double py) {
    // A smile: the lower part of a ring.
    double d = std::fabs(DistCircle(px, py, x, y + r * 0.12, r * 0.3)) - r * 0.045;
    return py < y + r * 0.2 ? std::max(d, y + r * 0.2 - py) : d;
  }, C(120, 30, 50));
  img.Circle(x - r * 0.62, y + r * 0.12, r * 0.12, C(255, 120, 140), 0.5);
  img.Circle(x + r * 0.62, y + r * 0.12, r * 0.12, C(255, 120, 140), 0.5);
}

// Area-averaging reduction to a smaller size.
Image Shrink(const Image &src, int w, int h) {
  Image out(w, h);
  double sx = static_cast<double>(src.W) / w, sy = static_cast<double>(src.H) / h;
  for (int y = 0; y < h; y++) {
    for (int x = 0; x < w; x++) {
      double x0 = x * sx, x1 = x0 + sx, y0 = y * sy, y1 = y0 + sy;
      RGB sum;
      double area = 0;
      for (int yy = static_cast<int>(y0); yy < y1 && yy < src.H; yy++) {
        double wy = std::min<double>(yy + 1, y1) - std::max<double>(yy, y0);
        for (int xx = static_cast<int>(x0); xx < x1 && xx < src.W; xx++) {
          double wx = std::min<double>(xx + 1, x1) - std::max<double>(xx, x0);
          const RGB &p = src.Pixels[static_cast<size_t>(yy) * src.W + xx];
          sum = RGB(sum.r + p.r * wx * wy, sum.g + p.g * wx * wy, sum.b + p.b * wx * wy);
          area += wx * wy;
        }
      }
      out.At(x, y) = RGB(sum.r / area, sum.g / area, sum.b / area);
    }
  }
  return out;
}

}  // namespace

Image MakeMenuBack() {
  const int w = 1024, h = 768;
  Image img(w, h);
  img.VerticalGradient(C(90, 170, 250), C(200, 235, 255));
  // The sun with soft rays.
  img.Shape([](double x, double y) {
    double a = std::atan2(y - 120, x - 860);
    double r = std::hypot(x - 860, y - 120);
    return (std::cos(a * 12) > 0.3 && r > 80 && r < 260) ? -1.0 : 1.0;
  }, C(255, 245, 180), 0.25);
  img.Circle(860, 120, 78, C(255, 220, 90));
  img.Circle(860, 120, 66, C(255, 236, 120));
  // Clouds.
  const double clouds[4][3] = {{160, 110, 1.0}, {460, 70, 0.8}, {620, 190, 0.6}, {300, 240, 0.5}};
  for (const auto &c : clouds) {
    double s = c[2];
    for (int i = 0; i < 5; i++) {
      double dx = (i - 2) * 34 * s, dy = -std::cos((i - 2) * 0.7) * 22 * s;
      img.Circle(c[0] + dx, c[1] + dy, (34 - std::abs(i - 2) * 6) * s, RGB(1, 1, 1), 0.95);
    }
  }
  // Rolling hills, the far ones paler.
  auto hill = [&](double base, double amp, double freq, double phase, const RGB &top, const RGB &bottom) {
    img.Shape([=](double x, double y) { return base - amp * std::sin(x * freq + phase) - y; },
              [=](double, double y) { return Mix(top, bottom, std::min(1.0, (y - base + amp) / (h - base + amp))); });
  };
  hill(520, 40, 0.006, 1.0, C(150, 215, 120), C(120, 190, 100));
  hill(590, 50, 0.0045, 3.0, C(110, 200, 90), C(80, 165, 70));
  hill(660, 30, 0.008, 0.2, C(90, 185, 75), C(60, 150, 55));
  // Flowers dotted over the front hill.
  Dice dice(2024);
  for (int i = 0; i < 70; i++) {
    double x = dice.Range(0, w), y = dice.Range(680, h);
    RGB petal = i % 3 == 0 ? C(255, 255, 255) : i % 3 == 1 ? C(255, 150, 200) : C(255, 230, 90);
    for (int p = 0; p < 5; p++) {
      double a = p * 2 * PI / 5;
      img.Circle(x + 4 * std::cos(a), y + 4 * std::sin(a), 3, petal);
    }
    img.Circle(x, y, 2.4, C(255, 180, 40));
  }
  // A row of critters standing on the hills.
  Critter(img, 150, 600, 58, C(255, 210, 70), 0.5);
  Critter(img, 300, 640, 44, C(150, 95, 225), -0.6);
  Critter(img, 770, 630, 52, C(40, 200, 180), 0.8);
  Critter(img, 910, 600, 40, C(236, 64, 92), -0.4);
  // Confetti falling from the sky.
  const RGB confetti[6] = {C(255, 90, 120), C(255, 200, 40), C(80, 200, 255), C(120, 220, 100), C(200, 120, 255),
                           C(255, 150, 60)};
  for (int i = 0; i < 140; i++) {
    double x = dice.Range(0, w), y = dice.Range(0, 520), a = dice.Range(0, PI);
    double len = dice.Range(5, 10);
    const RGB &c = confetti[i % 6];
    if (i % 4 == 0) {
      img.Circle(x, y, dice.Range(2.5, 4.5), c);
    } else {
      img.Line(x - std::cos(a) * len, y - std::sin(a) * len, x + std::cos(a) * len, y + std::sin(a) * len, 4, c);
    }
  }
  // Drawn at 1024 x 768 and shipped at 800 x 600: the menu stretches it
  // over the screen anyway, and the smaller file loads faster.
  return Shrink(img, 800, 600);
}

Image MakeNoneSign() {
  // A friendly "nothing here": a soft round tile with a crossed-out circle.
  Image img(128, 96, C(51, 127, 178));
  img.RoundRect(14, 6, 114, 90, 18, C(235, 245, 255));
  img.Ring(64, 48, 28, 9, C(230, 60, 80));
  img.Line(44, 68, 84, 28, 9, C(230, 60, 80));
  return img;
}

Image MakeConnectingBadge() {
  // A round badge on the mask colour: a smiling critter with a ring of
  // coloured dots, so the turning reads at a glance.
  Image img(128, 128, RGB(1, 0, 1));
  // Shapes are drawn hard-edged against the mask colour: blended edge
  // pixels would be neither masked nor badge and show as a pink fringe.
  auto solid = [&](double cx, double cy, double r, const RGB &c) {
    for (int y = 0; y < 128; y++) {
      for (int x = 0; x < 128; x++) {
        if (std::hypot(x + 0.5 - cx, y + 0.5 - cy) <= r) img.At(x, y) = c;
      }
    }
  };
  solid(64, 64, 60, C(255, 255, 255));
  solid(64, 64, 55, C(255, 200, 60));
  const RGB dots[6] = {C(255, 90, 120), C(80, 200, 255), C(120, 220, 100), C(200, 120, 255), C(255, 150, 60),
                       C(255, 255, 255)};
  for (int i = 0; i < 12; i++) {
    double a = i * 2 * PI / 12;
    img.Circle(64 + 46 * std::cos(a), 64 + 46 * std::sin(a), i % 2 ? 4 : 5.5, dots[i % 6]);
  }
  Critter(img, 64, 62, 28, C(80, 170, 250), 0.9);
  return img;
}

Image MakePlaceholderThumb(int w, int h, const std::string &caption) {
  Image img(w, h, C(230, 240, 250));
  // A coloured blob whose hue comes from the caption, so entries differ.
  unsigned hash = 2166136261u;
  for (char c : caption) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  RGB c(0.4 + (hash & 0xFF) / 510.0, 0.4 + ((hash >> 8) & 0xFF) / 510.0, 0.4 + ((hash >> 16) & 0xFF) / 510.0);
  img.Circle(w / 2.0, h / 2.0, h * 0.35, c);
  return img;
}
