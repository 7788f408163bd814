// The nine part cues, synthesised from a few enveloped voices each.
#include "tools/content/sound.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {
const double TAU = 6.28318530717958647692;
}

const char *const CUE_NAMES[9] = {"character", "eyes", "ears", "nose", "mouth", "eyebrows", "moustache", "feet", "hat"};

Cue::Cue(double seconds) : Samples(static_cast<size_t>(seconds * CUE_RATE + 0.5), 0.0) {}

void Cue::Voice(double start, double length, double f0, double f1, double gain, double attack, int shape,
                double vibratoHz, double vibratoDepth) {
  size_t first = static_cast<size_t>(start * CUE_RATE);
  size_t count = static_cast<size_t>(length * CUE_RATE);
  double phase = 0;
  for (size_t i = 0; i < count && first + i < Samples.size(); i++) {
    double t = static_cast<double>(i) / CUE_RATE;
    double k = t / length;
    double f = f0 * std::pow(f1 / f0, k);
    if (vibratoHz > 0) f *= 1 + vibratoDepth * std::sin(TAU * vibratoHz * t);
    phase += f / CUE_RATE;
    phase -= std::floor(phase);
    double s;
    switch (shape) {
    case 1: s = std::tanh(4 * std::sin(TAU * phase)) * 0.8; break;
    case 2: s = 4 * std::fabs(phase - 0.5) - 1; break;
    default: s = std::sin(TAU * phase); break;
    }
    // A short linear attack, then an exponential-looking decay to silence
    // at the end of the voice: no clicks at either end.
    double env = t < attack ? t / attack : std::pow(1 - std::min(1.0, (t - attack) / (length - attack)), 2.0);
    Samples[first + i] += s * env * gain;
  }
}

void Cue::Noise(double start, double length, double gain, double smooth, unsigned seed) {
  size_t first = static_cast<size_t>(start * CUE_RATE);
  size_t count = static_cast<size_t>(length * CUE_RATE);
  uint32_t state = seed ? seed : 1;
  double low = 0;
  for (size_t i = 0; i < count && first + i < Samples.size(); i++) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    double white = (state >> 8) / 8388608.0 - 1.0;
    low += (white - low) * smooth;
    double k = static_cast<double>(i) / count;
    double env = std::min(1.0, k * 20) * (1 - k) * (1 - k);
    Samples[first + i] += low * env * gain;
  }
}

void Cue::Finish(double peak) {
  double top = 0;
  for (double s : Samples) top = std::max(top, std::fabs(s));
  if (top > 0) {
    for (double &s : Samples) s *= peak / top;
  }
  size_t fade = std::min(Samples.size(), static_cast<size_t>(0.004 * CUE_RATE));
  for (size_t i = 0; i < fade; i++) Samples[Samples.size() - 1 - i] *= static_cast<double>(i) / fade;
  if (!Samples.empty()) Samples[0] = 0;
}

static void PutU32(std::vector<uint8_t> &b, uint32_t v) {
  for (int i = 0; i < 4; i++) b.push_back(static_cast<uint8_t>(v >> (8 * i)));
}
static void PutU16(std::vector<uint8_t> &b, uint16_t v) {
  b.push_back(static_cast<uint8_t>(v));
  b.push_back(static_cast<uint8_t>(v >> 8));
}

bool Cue::SaveWAV(const std::string &path) const {
  std::vector<uint8_t> b;
  uint32_t dataBytes = static_cast<uint32_t>(Samples.size() * 2);
  b.insert(b.end(), {'R', 'I', 'F', 'F'});
  PutU32(b, 36 + dataBytes);
  b.insert(b.end(), {'W', 'A', 'V', 'E', 'f', 'm', 't', ' '});
  PutU32(b, 16);
  PutU16(b, 1);  // PCM
  PutU16(b, 1);  // mono
  PutU32(b, CUE_RATE);
  PutU32(b, CUE_RATE * 2);
  PutU16(b, 2);
  PutU16(b, 16);
  b.insert(b.end(), {'d', 'a', 't', 'a'});
  PutU32(b, dataBytes);
  for (double s : Samples) {
    double v = std::floor(std::max(-1.0, std::min(1.0, s)) * 32767.0 + 0.5);
    PutU16(b, static_cast<uint16_t>(static_cast<int16_t>(v)));
  }
  FILE *f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  bool ok = std::fwrite(b.data(), 1, b.size(), f) == b.size();
  return std::fclose(f) == 0 && ok;
}

Cue MakeCue(const std::string &name) {
  if (name == "character") {
    // A springy boing: a falling-then-rising glide with a wobble.
    Cue c(0.45);
    c.Voice(0.0, 0.45, 140, 420, 0.8, 0.01, 0, 9, 0.12);
    c.Voice(0.0, 0.30, 280, 840, 0.25, 0.01, 2, 9, 0.12);
    c.Finish(0.7);
    return c;
  }
  if (name == "eyes") {
    // A bright double blink: two quick high ticks.
    Cue c(0.2);
    c.Voice(0.0, 0.06, 2400, 2000, 0.7, 0.002);
    c.Voice(0.08, 0.07, 3000, 2600, 0.6, 0.002);
    c.Finish(0.6);
    return c;
  }
  if (name == "ears") {
    // A soft flap: a low thump with a puff of air.
    Cue c(0.25);
    c.Voice(0.0, 0.18, 330, 180, 0.8, 0.005, 2);
    c.Noise(0.0, 0.16, 0.5, 0.15, 7);
    c.Finish(0.65);
    return c;
  }
  if (name == "nose") {
    // A round pop: a fast downward sweep.
    Cue c(0.16);
    c.Voice(0.0, 0.14, 900, 220, 1.0, 0.003);
    c.Finish(0.7);
    return c;
  }
  if (name == "mouth") {
    // A cheerful "mwah": a rising two-note chirp.
    Cue c(0.3);
    c.Voice(0.0, 0.14, 392, 440, 0.7, 0.01, 1);
    c.Voice(0.12, 0.18, 523, 587, 0.7, 0.01, 1);
    c.Finish(0.6);
    return c;
  }
  if (name == "eyebrows") {
    // A questioning upward slide.
    Cue c(0.22);
    c.Voice(0.0, 0.22, 500, 1100, 0.8, 0.01, 2);
    c.Finish(0.6);
    return c;
  }
  if (name == "moustache") {
    // A bristly brush: noise over a low hum.
    Cue c(0.3);
    c.Noise(0.0, 0.3, 0.9, 0.5, 99);
    c.Voice(0.0, 0.28, 160, 150, 0.4, 0.02, 1, 14, 0.05);
    c.Finish(0.55);
    return c;
  }
  if (name == "feet") {
    // Two little steps: low-high thumps.
    Cue c(0.32);
    c.Voice(0.0, 0.1, 220, 110, 0.9, 0.003);
    c.Noise(0.0, 0.06, 0.3, 0.3, 3);
    c.Voice(0.15, 0.1, 260, 130, 0.9, 0.003);
    c.Noise(0.15, 0.06, 0.3, 0.3, 5);
    c.Finish(0.65);
    return c;
  }
  // The hat: a jolly whistle with a little trill.
  Cue c(0.4);
  c.Voice(0.0, 0.4, 1200, 1800, 0.8, 0.03, 0, 11, 0.03);
  c.Finish(0.55);
  return c;
}
