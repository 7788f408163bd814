// The shipped data: the generator rebuilds it byte for byte, and its cues
// are short, audible, unclipped 16-bit PCM.
#include <gtest/gtest.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <tuple>

namespace fs = std::filesystem;

namespace {

typedef std::vector<uint8_t> Bytes;

Bytes Read(const fs::path &path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The readme and every file under data/, by path, with a hash of their
// bytes; the thumbnails, rendered after the generator has run, by name only.
std::map<std::string, size_t> Content(const fs::path &root) {
  auto hash = [](const fs::path &path) {
    Bytes b = Read(path);
    return std::hash<std::string>()(std::string(b.begin(), b.end()));
  };
  std::map<std::string, size_t> files = {{"Tumblekin.txt", hash(root / "Tumblekin.txt")}};
  for (const auto &e : fs::recursive_directory_iterator(root / "data")) {
    std::string name = fs::relative(e.path(), root).string();
    if (e.is_regular_file()) files[name] = name.find("_thumb.tga") == std::string::npos ? hash(e.path()) : 0;
  }
  return files;
}

uint32_t U(const Bytes &b, size_t at, int size) {
  uint32_t v = 0;
  for (int i = size - 1; i >= 0; i--) v = v << 8 | b[at + i];
  return v;
}

}  // namespace

TEST(ContentData, GeneratorRebuildsTheShippedData) {
  char base[] = "/tmp/tumblekin-content-XXXXXX";
  const fs::path out = mkdtemp(base);
  ASSERT_EQ(std::system((std::string(TK_MAKE_CONTENT) + " '" + out.string() + "'").c_str()), 0);
  EXPECT_EQ(Content(out), Content(TK_SOURCE_DIR));
  fs::remove_all(out);
}

TEST(ContentData, CuesAreShortAudibleUnclippedPcm) {
  for (const char *name : {"character", "eyes", "ears", "nose", "mouth", "eyebrows", "moustache", "feet", "hat"}) {
    const Bytes b = Read(fs::path(TK_SOURCE_DIR) / "data" / "sounds" / (std::string(name) + ".wav"));
    ASSERT_GE(b.size(), 44u) << name;
    // One "fmt " chunk of mono 16-bit PCM at 22050 Hz, then the samples to the end.
    EXPECT_EQ(std::make_tuple(std::string(b.begin(), b.begin() + 16), U(b, 4, 4) + 8, U(b, 16, 4), U(b, 20, 2), U(b, 22, 2),
                              U(b, 24, 4), U(b, 28, 4), U(b, 32, 2), U(b, 34, 2), std::string(b.begin() + 36, b.begin() + 40), U(b, 40, 4) + 44),
              std::make_tuple(std::string("RIFF") + std::string(b.begin() + 4, b.begin() + 8) + "WAVEfmt ", b.size(), 16u, 1u, 1u,
                              22050u, 44100u, 2u, 16u, std::string("data"), b.size())) << name;
    // From 0.1 to 0.5 seconds; a peak loud enough to hear over the game, a
    // tenth below the rails where a clipped cue would sit.
    int peak = 0;
    for (size_t i = 44; i + 1 < b.size(); i += 2) peak = std::max(peak, std::abs((int16_t)U(b, i, 2)));
    EXPECT_TRUE(b.size() >= 44 + 4410 && b.size() <= 44 + 22050 && peak >= 8192 && peak <= 29491) << name;
  }
}
