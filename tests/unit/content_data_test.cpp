// The shipped data: the generator rebuilds it byte for byte, and its cues
// are short, audible, unclipped 16-bit PCM.
#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

namespace fs = std::filesystem;

static std::string Read(const fs::path &path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The readme and every file under data/ with a hash of its bytes; the
// thumbnails, rendered after the generator has run, by name only.
static std::map<std::string, size_t> Content(const fs::path &root) {
  std::map<std::string, size_t> files = {{"Tumblekin.txt", std::hash<std::string>()(Read(root / "Tumblekin.txt"))}};
  for (const auto &e : fs::recursive_directory_iterator(root / "data")) {
    std::string name = fs::relative(e.path(), root).string();
    if (e.is_regular_file()) files[name] = name.find("_thumb.tga") == std::string::npos ? std::hash<std::string>()(Read(e.path())) : 0;
  }
  return files;
}

TEST(ContentData, GeneratorRebuildsTheShippedData) {
  char base[] = "/tmp/tumblekin-content-XXXXXX";
  const fs::path out = mkdtemp(base);
  ASSERT_EQ(std::system((std::string(TK_MAKE_CONTENT) + " '" + out.string() + "'").c_str()), 0);
  EXPECT_EQ(Content(out), Content(TK_SOURCE_DIR));
  fs::remove_all(out);
}

TEST(ContentData, CuesAreShortAudibleUnclippedPcm) {
  for (const char *name : {"character", "eyes", "ears", "nose", "mouth", "eyebrows", "moustache", "feet", "hat"}) {
    const std::string b = Read(fs::path(TK_SOURCE_DIR) / "data/sounds" / (std::string(name) + ".wav"));
    ASSERT_GE(b.size(), 44u) << name;
    auto u = [&](size_t at, int size) {
      int v = 0;
      for (int i = size - 1; i >= 0; i--) v = v << 8 | (uint8_t)b[at + i];
      return v;
    };
    // One "fmt " chunk of mono 16-bit PCM at 22050 Hz, then the samples to
    // the end: 0.1 to 0.5 seconds, a peak loud enough to hear over the game
    // and a tenth below the rails, where a clipped cue would sit.
    int peak = 0;
    for (size_t i = 44; i + 1 < b.size(); i += 2) peak = std::max(peak, std::abs((int)(int16_t)u(i, 2)));
    EXPECT_EQ(b.substr(0, 4) + b.substr(8, 8) + b.substr(36, 4), "RIFFWAVEfmt data") << name;
    EXPECT_EQ(std::vector<int>({u(4, 4) + 8, u(16, 4), u(20, 2), u(22, 2), u(24, 4), u(28, 4), u(32, 2), u(34, 2), u(40, 4) + 44}),
              std::vector<int>({(int)b.size(), 16, 1, 1, 22050, 44100, 2, 16, (int)b.size()})) << name;
    EXPECT_TRUE(b.size() >= 44 + 4410 && b.size() <= 44 + 22050 && peak >= 8192 && peak <= 29491) << name;
  }
}
