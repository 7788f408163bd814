// make_contact_sheets: draws every body in a few outfits, and every part on
// the first body, through the game's own catalogues and DrawPlayer, each seen
// from the front and in profile, and strips of every body's and every moving
// part's animation, and writes the pictures as PNG contact sheets. Runs from
// the game directory (the datafiles and data/) on an X display; a virtual one
// will do.
//
//   make_contact_sheets <output-directory>
// The game's headers come before AllegroGL's: Xlib, which it pulls in,
// defines names such as Status as macros.
#include "app/game.h"
#include "app/scene.h"
#include "character/catalogue.h"
#include "character/drawplayer.h"
#include "rvk/core.h"
#include "rvk/draw.h"
#include <allegro.h>
#include <alleggl.h>
#include <GL/gl.h>
#include <GL/glu.h>
#include <zlib.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

// One view of a character, in sheet pixels; drawn twice as large and
// averaged down, which smooths the outlines.
const int VIEW_W = 180, VIEW_H = 190, SUPER = 2;
const int VIEWS = 2;
// The scene turned as the arrow keys turn it: the front, where the face
// shows, and the profile, where a part standing off the body or sunk into
// it shows.
const float VIEW_YAW[VIEWS] = {0, 90};
const int CELL_W = VIEW_W * VIEWS;
const int LINE_H = 14, LINES = 3, LABEL_H = LINES * LINE_H + 2;
const int CELL_H = LABEL_H + VIEW_H;
const unsigned char SKY[3] = {161, 214, 255};

// An RGB picture, rows from the top.
struct Picture {
  int W, H;
  std::vector<unsigned char> Rgb;
  Picture(int w, int h) : W(w), H(h), Rgb(static_cast<size_t>(w) * h * 3, 255) {}
};

// ---------------------------------------------------------------- PNG

void PutBE32(std::vector<unsigned char> &out, uint32_t v) {
  for (int s = 24; s >= 0; s -= 8) out.push_back(static_cast<unsigned char>(v >> s));
}

void Chunk(std::vector<unsigned char> &out, const char type[4], const std::vector<unsigned char> &data) {
  PutBE32(out, static_cast<uint32_t>(data.size()));
  size_t start = out.size();
  out.insert(out.end(), type, type + 4);
  out.insert(out.end(), data.begin(), data.end());
  PutBE32(out, static_cast<uint32_t>(crc32(0, &out[start], static_cast<uInt>(out.size() - start))));
}

// 8-bit RGB, every row filtered by its left neighbour, no chunks of time or
// text: the same picture gives the same bytes.
bool SavePNG(const Picture &p, const std::string &path) {
  std::vector<unsigned char> raw;
  const size_t stride = static_cast<size_t>(p.W) * 3;
  for (int y = 0; y < p.H; y++) {
    const unsigned char *row = &p.Rgb[y * stride];
    raw.push_back(1);
    for (size_t i = 0; i < stride; i++) raw.push_back(static_cast<unsigned char>(row[i] - (i >= 3 ? row[i - 3] : 0)));
  }
  uLongf packedSize = compressBound(raw.size());
  std::vector<unsigned char> packed(packedSize);
  if (compress2(packed.data(), &packedSize, raw.data(), raw.size(), 9) != Z_OK) return false;
  packed.resize(packedSize);
  std::vector<unsigned char> out = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'}, header;
  PutBE32(header, static_cast<uint32_t>(p.W));
  PutBE32(header, static_cast<uint32_t>(p.H));
  header.insert(header.end(), {8, 2, 0, 0, 0});
  Chunk(out, "IHDR", header);
  Chunk(out, "IDAT", packed);
  Chunk(out, "IEND", {});
  FILE *f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  bool ok = std::fwrite(out.data(), 1, out.size(), f) == out.size();
  return std::fclose(f) == 0 && ok;
}

// ---------------------------------------------------------------- drawing

// Copies the window's lower-left w x h (at `scale` window pixels to one
// sheet pixel) into the sheet at (x, y).
void ReadInto(Picture &sheet, int x, int y, int w, int h, int scale) {
  const int W = w * scale, H = h * scale;
  std::vector<unsigned char> big(static_cast<size_t>(W) * H * 3);
  glReadBuffer(GL_BACK);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, W, H, GL_RGB, GL_UNSIGNED_BYTE, big.data());
  const int n = scale * scale;
  for (int row = 0; row < h; row++) {
    for (int col = 0; col < w; col++) {
      int sum[3] = {0, 0, 0};
      for (int sy = 0; sy < scale; sy++) {
        for (int sx = 0; sx < scale; sx++) {
          // GL rows run from the bottom up.
          const unsigned char *p = &big[(static_cast<size_t>(H - 1 - (row * scale + sy)) * W + col * scale + sx) * 3];
          for (int c = 0; c < 3; c++) sum[c] += p[c];
        }
      }
      unsigned char *q = &sheet.Rgb[(static_cast<size_t>(y + row) * sheet.W + x + col) * 3];
      for (int c = 0; c < 3; c++) q[c] = static_cast<unsigned char>((sum[c] + n / 2) / n);
    }
  }
}

// What a body may take up with the parts on it, in the body's scaled
// coordinates: the box of the body and of every entry of the catalogues
// that `kinds` names (a bit for each, in the order of the picker bars) at
// their anchors.
struct Frame {
  float Lo[3], Hi[3];
  void Grow(const float at[3], const ModelClass &m, float scale) {
    for (int c = 0; c < 3; c++) {
      Lo[c] = std::min(Lo[c], (at[c] - m.HalfSize[c]) * scale);
      Hi[c] = std::max(Hi[c], (at[c] + m.HalfSize[c]) * scale);
    }
  }
};

Frame BodyFrame(const CharacterEntry &b, unsigned kinds) {
  const float s = b.Scale;
  Frame f;
  for (int c = 0; c < 3; c++) {
    f.Lo[c] = -b.Model.HalfSize[c] * s;
    f.Hi[c] = b.Model.HalfSize[c] * s;
  }
  auto pairs = [&](const std::vector<PairPartEntry> &cat, const float *left, const float *right) {
    for (const PairPartEntry &e : cat) {
      f.Grow(left, e.LeftModel, s);
      f.Grow(right, e.RightModel, s);
    }
  };
  auto singles = [&](const std::vector<SinglePartEntry> &cat, const float *at) {
    for (const SinglePartEntry &e : cat) f.Grow(at, e.Model, s);
  };
  if (kinds & 1) pairs(Game.Eyes, b.LeftEye, b.RightEye);
  if (kinds & 2) pairs(Game.Ears, b.LeftEar, b.RightEar);
  if (kinds & 4) singles(Game.Noses, b.Nose);
  if (kinds & 8) singles(Game.Mouths, b.Mouth);
  if (kinds & 16) pairs(Game.Eyebrows, b.LeftEyebrow, b.RightEyebrow);
  if (kinds & 32) singles(Game.Moustaches, b.Moustache);
  if (kinds & 64) pairs(Game.Feet, b.LeftFoot, b.RightFoot);
  for (const HatEntry &h : Game.Hats) {
    const float at[3] = {b.Hat[0] + h.Offset[0], b.Hat[1] + h.Offset[1], b.Hat[2] + h.Offset[2]};
    if (kinds & 128) f.Grow(at, h.Model, s);
  }
  return f;
}

// One character from the height and angle of its body's single-player
// camera, but closer and on the middle of the picture, near enough that
// the frame of `kinds` just fits; the scene is turned by `yaw`.
void DrawView(PlayerClass &player, unsigned kinds, float yaw) {
  const CharacterEntry &body = *player.Character;
  const Frame f = BodyFrame(body, kinds);
  const float halfH = (f.Hi[1] - f.Lo[1]) / 2, midY = (f.Hi[1] + f.Lo[1]) / 2;
  // Turned about Y, x and z take each other's place.
  float halfW = 0;
  for (int c : {0, 2}) halfW = std::max(halfW, std::max(-f.Lo[c], f.Hi[c]));
  const float tanY = std::tan(24 * 3.14159265f / 180), tanX = tanY * VIEW_W / VIEW_H, margin = 0.92f;
  const float dist = std::max(halfH / tanY, halfW / tanX) / margin + halfW;
  const float rise = body.CameraPos[1] - body.TargetPos[1], run = body.TargetPos[2] - body.CameraPos[2];
  const float up = rise / std::sqrt(rise * rise + run * run), back = std::sqrt(1 - up * up);
  glViewport(0, 0, VIEW_W * SUPER, VIEW_H * SUPER);
  glClearColor(SKY[0] / 255.0f, SKY[1] / 255.0f, SKY[2] / 255.0f, 1);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  gluPerspective(48.0, static_cast<double>(VIEW_W) / VIEW_H, 1.0, 4000.0);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  gluLookAt(0, midY + dist * up, -dist * back, 0, midY, 0, 0, 1, 0);
  SetupLights();
  glPushMatrix();
  glRotatef(yaw, 0, 1, 0);
  DrawPlayer(player, 0, 0, 0);
  glPopMatrix();
  DisableLights();
}

// The caption on white above a cell `w` wide: a title in black and the rest
// in grey.
void DrawLabel(Picture &sheet, int x, int y, const std::vector<std::string> &lines, int w = CELL_W) {
  glViewport(0, 0, SCREEN_W, SCREEN_H);
  glClearColor(1, 1, 1, 1);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  RVK_Begin2D();
  for (size_t i = 0; i < lines.size() && i < LINES; i++) {
    const int colour = i == 0 ? makecol(20, 20, 30) : makecol(80, 80, 90);
    RVK_Printf(4, SCREEN_H - LABEL_H + 1 + static_cast<int>(i) * LINE_H, colour, "%s", lines[i].c_str());
  }
  RVK_End2D(0);
  ReadInto(sheet, x, y, w, LABEL_H, 1);
}

void FrameCell(Picture &sheet, int x, int y, int w);

// A cell: the caption, then the character from each side, framed to hold
// the parts of `kinds`, so that all cells of a body share one scale.
void DrawCell(Picture &sheet, int x, int y, PlayerClass &player, unsigned kinds,
              const std::vector<std::string> &caption) {
  DrawLabel(sheet, x, y, caption);
  for (int v = 0; v < VIEWS; v++) {
    // A fresh face for every view: eyes straight ahead, brows at rest.
    player.EyesOri[0] = player.EyesOri[1] = player.EyesOriTarget[0] = player.EyesOriTarget[1] = 0;
    player.EyebrowsY = 0;
    DrawView(player, kinds, VIEW_YAW[v]);
    ReadInto(sheet, x + v * VIEW_W, y + LABEL_H, VIEW_W, VIEW_H, SUPER);
  }
  FrameCell(sheet, x, y, CELL_W);
}

// A thin frame at the right and bottom keeps neighbouring cells apart.
void FrameCell(Picture &sheet, int x, int y, int w) {
  for (int i = 0; i < w; i++) {
    unsigned char *p = &sheet.Rgb[(static_cast<size_t>(y + CELL_H - 1) * sheet.W + x + i) * 3];
    p[0] = p[1] = p[2] = 200;
  }
  for (int j = 0; j < CELL_H; j++) {
    unsigned char *p = &sheet.Rgb[(static_cast<size_t>(y + j) * sheet.W + x + w - 1) * 3];
    p[0] = p[1] = p[2] = 200;
  }
}

// ---------------------------------------------------------------- outfits

// The eight part numbers of a record in the order of the picker bars.
int32_t *PartNumber(PlayerClass &p, int kind) {
  int32_t *numbers[8] = {&p.EyesNumber,     &p.EarsNumber,      &p.NoseNumber, &p.MouthNumber,
                         &p.EyebrowsNumber, &p.MoustacheNumber, &p.FeetNumber, &p.HatNumber};
  return numbers[kind];
}

const char *const KIND_NAMES[8] = {"eyes", "ears", "noses", "mouths", "eyebrows", "moustaches", "feet", "hats"};

size_t CatalogueSize(int kind) {
  const size_t sizes[8] = {Game.Eyes.size(),     Game.Ears.size(),       Game.Noses.size(), Game.Mouths.size(),
                           Game.Eyebrows.size(), Game.Moustaches.size(), Game.Feet.size(),  Game.Hats.size()};
  return sizes[kind];
}

std::string PartName(int kind, int32_t n) {
  if (n < 0) return "-";
  switch (kind) {
  case 0: return Game.Eyes[n].Name;
  case 1: return Game.Ears[n].Name;
  case 2: return Game.Noses[n].Name;
  case 3: return Game.Mouths[n].Name;
  case 4: return Game.Eyebrows[n].Name;
  case 5: return Game.Moustaches[n].Name;
  case 6: return Game.Feet[n].Name;
  default: return Game.Hats[n].Name;
  }
}

PlayerClass Plain(int body) {
  PlayerClass p;
  p.CharacterNumber = body;
  p.Character = &Game.Characters[body];
  for (int k = 0; k < 8; k++) *PartNumber(p, k) = -1;
  return p;
}

// Outfit 0 is the plain body. The others step through each catalogue at a
// different pace per kind, so that across the sheet every part meets
// several bodies and several neighbours.
PlayerClass Outfit(int body, int outfit) {
  PlayerClass p = Plain(body);
  if (outfit == 0) return p;
  for (int k = 0; k < 8; k++) {
    size_t n = CatalogueSize(k);
    *PartNumber(p, k) = static_cast<int32_t>((body + (outfit - 1) * (3 + k) + k) % n);
  }
  return p;
}

// The names of four parts of a record, from kind `first` on.
std::string OutfitParts(PlayerClass &p, int first) {
  std::string s;
  for (int k = first; k < first + 4; k++) s += (k > first ? ", " : "") + PartName(k, *PartNumber(p, k));
  return s;
}

const int OUTFITS = 4;

bool BodiesSheet(const std::string &dir) {
  const int bodies = static_cast<int>(Game.Characters.size());
  Picture sheet(CELL_W * OUTFITS, CELL_H * bodies);
  for (int b = 0; b < bodies; b++) {
    for (int o = 0; o < OUTFITS; o++) {
      PlayerClass p = Outfit(b, o);
      std::string title = Game.Characters[b].Name + (o == 0 ? ", plain" : ", outfit " + std::to_string(o));
      if (o == 0)
        DrawCell(sheet, o * CELL_W, b * CELL_H, p, 0xFF, {title});
      else
        DrawCell(sheet, o * CELL_W, b * CELL_H, p, 0xFF, {title, OutfitParts(p, 0), OutfitParts(p, 4)});
    }
  }
  return SavePNG(sheet, dir + "/bodies.png");
}

// Every entry of one catalogue, alone on the plain first body.
bool PartSheet(const std::string &dir, int kind) {
  const int columns = 3, n = static_cast<int>(CatalogueSize(kind));
  const int rows = (n + columns - 1) / columns;
  Picture sheet(CELL_W * columns, CELL_H * rows);
  for (int i = 0; i < n; i++) {
    PlayerClass p = Plain(0);
    *PartNumber(p, kind) = i;
    const std::string where = std::string(KIND_NAMES[kind]) + " " + std::to_string(i) + " on " + Game.Characters[0].Name;
    DrawCell(sheet, (i % columns) * CELL_W, (i / columns) * CELL_H, p, 1u << kind, {PartName(kind, i), where});
  }
  return SavePNG(sheet, dir + "/" + KIND_NAMES[kind] + ".png");
}

// ---------------------------------------------------------------- motion

// Frames of a strip, spread evenly over the animation's loop.
const int STRIP_FRAMES = 8;

// Every model of the catalogues held at `frame` of its own loop.
void HoldFrame(int frame, int strip) {
  auto hold = [=](ModelClass &m) {
    if (m.ListCount() > 1) m.CurrentFrame = static_cast<float>(frame * m.Model->TotalFrames / strip);
  };
  for (CharacterEntry &e : Game.Characters) hold(e.Model);
  for (auto *cat : {&Game.Eyes, &Game.Ears, &Game.Eyebrows, &Game.Feet}) {
    for (PairPartEntry &e : *cat) {
      hold(e.LeftModel);
      hold(e.RightModel);
    }
  }
  for (auto *cat : {&Game.Noses, &Game.Mouths, &Game.Moustaches}) {
    for (SinglePartEntry &e : *cat) hold(e.Model);
  }
  for (HatEntry &e : Game.Hats) hold(e.Model);
}

// The model of entry `n` of catalogue `kind` (the left one of a pair).
const ModelClass &PartModel(int kind, int32_t n) {
  const ModelClass *m;
  switch (kind) {
  case 0: m = &Game.Eyes[n].LeftModel; break;
  case 1: m = &Game.Ears[n].LeftModel; break;
  case 2: m = &Game.Noses[n].Model; break;
  case 3: m = &Game.Mouths[n].Model; break;
  case 4: m = &Game.Eyebrows[n].LeftModel; break;
  case 5: m = &Game.Moustaches[n].Model; break;
  case 6: m = &Game.Feet[n].LeftModel; break;
  default: m = &Game.Hats[n].Model; break;
  }
  return *m;
}

// Whether a model moves by itself: it has lists for more than one frame.
bool Moves(const ModelClass &m) { return m.ListCount() > 2; }

// A strip looks from the side where the model moves: from behind when what
// its joints carry lies mostly behind its middle (a tail), else from the
// front.
float StripYaw(const ModelClass &m) {
  const msModel &model = *m.Model;
  double z = 0;
  int bound = 0;
  for (const msVertex &v : model.Vertices) {
    if (v.BoneId < 0 || v.BoneId >= static_cast<int>(model.Joints.size())) continue;
    z += v.Position[2];
    bound++;
  }
  return bound > 0 && z / bound > m.HalfSize[2] / 2 ? 180.0f : VIEW_YAW[0];
}

// One row of a strip: the character from the front at STRIP_FRAMES points
// of its loop, so the motion reads from left to right.
void DrawStrip(Picture &sheet, int y, PlayerClass &player, unsigned kinds, const std::string &title, float yaw) {
  for (int f = 0; f < STRIP_FRAMES; f++) {
    HoldFrame(f, STRIP_FRAMES);
    const std::string when = std::to_string(f) + "/" + std::to_string(STRIP_FRAMES) + " of the loop" +
                             (yaw == 180.0f ? ", from behind" : "");
    DrawLabel(sheet, f * VIEW_W, y, f == 0 ? std::vector<std::string>{title, when} : std::vector<std::string>{"", when},
              VIEW_W);
    player.EyesOri[0] = player.EyesOri[1] = player.EyesOriTarget[0] = player.EyesOriTarget[1] = 0;
    player.EyebrowsY = 0;
    DrawView(player, kinds, yaw);
    ReadInto(sheet, f * VIEW_W, y + LABEL_H, VIEW_W, VIEW_H, SUPER);
    FrameCell(sheet, f * VIEW_W, y, VIEW_W);
  }
  HoldFrame(0, STRIP_FRAMES);
}

// The motion: a strip for every body, then one for every part that moves,
// worn on the first body.
bool AnimationSheet(const std::string &dir) {
  std::vector<std::pair<int, int32_t>> parts;
  for (int k = 0; k < 8; k++) {
    for (int32_t n = 0; n < static_cast<int32_t>(CatalogueSize(k)); n++)
      if (Moves(PartModel(k, n))) parts.push_back({k, n});
  }
  const int bodies = static_cast<int>(Game.Characters.size());
  Picture sheet(VIEW_W * STRIP_FRAMES, CELL_H * (bodies + static_cast<int>(parts.size())));
  for (int b = 0; b < bodies; b++) {
    PlayerClass p = Plain(b);
    DrawStrip(sheet, b * CELL_H, p, 0, Game.Characters[b].Name, StripYaw(Game.Characters[b].Model));
  }
  for (size_t i = 0; i < parts.size(); i++) {
    PlayerClass p = Plain(0);
    *PartNumber(p, parts[i].first) = parts[i].second;
    const int kind = parts[i].first;
    DrawStrip(sheet, (bodies + static_cast<int>(i)) * CELL_H, p, 1u << kind,
              PartName(kind, parts[i].second) + ", " + KIND_NAMES[kind], StripYaw(PartModel(kind, parts[i].second)));
  }
  return SavePNG(sheet, dir + "/animation.png");
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_contact_sheets <output-directory>\n");
    return 2;
  }
  const std::string dir = argv[1];
  if (allegro_init() != 0 || install_allegro_gl() != 0) {
    std::fprintf(stderr, "make_contact_sheets: allegro_init failed\n");
    return 1;
  }
  install_timer();
  if (!RVK_Init(800, 600, 32, true, 45)) {
    std::fprintf(stderr, "make_contact_sheets: no window (no display, or no RVK.dat here?)\n");
    return 1;
  }
  allegro_gl_use_mipmapping(TRUE);
  glEnable(GL_CULL_FACE);
  glShadeModel(GL_SMOOTH);
  if (!LoadGame(Game)) {
    std::fprintf(stderr, "make_contact_sheets: %s\n", Game.LoadError.c_str());
    RVK_Shutdown();
    return 1;
  }
  // Every model stays on its first frame, so that the sheets are the same
  // on every run; the face motion draws from a fixed sequence.
  Game.Mode = GAME_MODE_SINGLE;
  for (CharacterEntry &e : Game.Characters) e.Model.Animated = false;
  for (auto *cat : {&Game.Eyes, &Game.Ears, &Game.Eyebrows, &Game.Feet}) {
    for (PairPartEntry &e : *cat) e.LeftModel.Animated = e.RightModel.Animated = false;
  }
  for (auto *cat : {&Game.Noses, &Game.Mouths, &Game.Moustaches}) {
    for (SinglePartEntry &e : *cat) e.Model.Animated = false;
  }
  for (HatEntry &e : Game.Hats) e.Model.Animated = false;
  std::srand(1);

  bool ok = BodiesSheet(dir);
  for (int kind = 0; kind < 8; kind++) ok = PartSheet(dir, kind) && ok;
  ok = AnimationSheet(dir) && ok;
  UnloadGame(Game);
  RVK_Shutdown();
  allegro_exit();
  if (!ok) std::fprintf(stderr, "make_contact_sheets: could not write the sheets under %s\n", dir.c_str());
  return ok ? 0 : 1;
}
END_OF_MAIN()
