// Synthesised sound cues: short mono voices with envelopes, written as
// 16-bit PCM WAV at 22050 Hz.
#pragma once
#include <string>
#include <vector>

const int CUE_RATE = 22050;

class Cue {
public:
  std::vector<double> Samples;  // -1 to 1

  explicit Cue(double seconds);
  double Seconds() const { return static_cast<double>(Samples.size()) / CUE_RATE; }
  // Adds a voice from `start` for `length` seconds whose pitch glides from
  // f0 to f1 (exponentially), shaped by an attack/decay envelope. `shape`
  // 0 is a sine, 1 a soft square, 2 a triangle.
  void Voice(double start, double length, double f0, double f1, double gain, double attack, int shape = 0,
             double vibratoHz = 0, double vibratoDepth = 0);
  // Adds a burst of filtered noise (a click, a puff).
  void Noise(double start, double length, double gain, double smooth, unsigned seed);
  // Scales the whole cue to the given peak and fades its last few
  // milliseconds so that it ends at silence.
  void Finish(double peak);
  bool SaveWAV(const std::string &path) const;
};

// Builds the nine cues by their file names ("character", "eyes", ...).
Cue MakeCue(const std::string &name);
extern const char *const CUE_NAMES[9];
