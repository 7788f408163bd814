// The shipped data: the generator rebuilds it byte for byte, and its cues
// are short, audible, unclipped 16-bit PCM.
#include <gtest/gtest.h>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::vector<uint8_t> ReadFile(const fs::path &path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Every file under `root/data` and the readme beside it, by relative path.
std::map<std::string, fs::path> ContentFiles(const fs::path &root) {
  std::map<std::string, fs::path> files = {{"Tumblekin.txt", root / "Tumblekin.txt"}};
  for (const auto &e : fs::recursive_directory_iterator(root / "data")) {
    if (e.is_regular_file()) files[fs::relative(e.path(), root).string()] = e.path();
  }
  return files;
}

bool IsThumbnail(const std::string &name) {
  const std::string tail = "_thumb.tga";
  return name.size() > tail.size() && name.compare(name.size() - tail.size(), tail.size(), tail) == 0;
}

uint32_t U32(const std::vector<uint8_t> &b, size_t at) {
  return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | static_cast<uint32_t>(b[at + 3]) << 24;
}
uint16_t U16(const std::vector<uint8_t> &b, size_t at) { return static_cast<uint16_t>(b[at] | b[at + 1] << 8); }

}  // namespace

// Thumbnails are rendered after the generator has run, so only their names
// are compared; every other file must come out exactly as committed.
TEST(ContentData, GeneratorRebuildsTheShippedDataByteForByte) {
  char base[] = "/tmp/tumblekin-content-XXXXXX";
  ASSERT_NE(mkdtemp(base), nullptr);
  const fs::path out = base;
  ASSERT_EQ(std::system((std::string(TK_MAKE_CONTENT) + " '" + out.string() + "'").c_str()), 0);

  const auto made = ContentFiles(out), shipped = ContentFiles(TK_SOURCE_DIR);
  std::vector<std::string> madeNames, shippedNames, differing;
  for (const auto &f : made) madeNames.push_back(f.first);
  for (const auto &f : shipped) shippedNames.push_back(f.first);
  EXPECT_EQ(madeNames, shippedNames);
  size_t compared = 0;
  for (const auto &f : made) {
    if (IsThumbnail(f.first) || !shipped.count(f.first)) continue;
    compared++;
    if (ReadFile(f.second) != ReadFile(shipped.at(f.first))) differing.push_back(f.first);
  }
  EXPECT_EQ(differing, std::vector<std::string>());
  // A thumbnail for each of the 8 bodies and 66 parts; the rest are the
  // catalogues, models, textures, pictures, cues and the readme.
  EXPECT_EQ(std::make_pair(made.size() - compared, compared), std::make_pair(size_t(74), size_t(148)));
  fs::remove_all(out);
}

TEST(ContentData, CuesAreShortAudibleUnclippedPcm) {
  for (const char *name : {"character", "eyes", "ears", "nose", "mouth", "eyebrows", "moustache", "feet", "hat"}) {
    SCOPED_TRACE(name);
    const std::vector<uint8_t> b = ReadFile(fs::path(TK_SOURCE_DIR) / "data" / "sounds" / (std::string(name) + ".wav"));
    ASSERT_GE(b.size(), 44u);
    // One "fmt " chunk of plain PCM, then the samples to the end of the file.
    EXPECT_EQ(std::string(b.begin(), b.begin() + 4), "RIFF");
    EXPECT_EQ(U32(b, 4), b.size() - 8);
    EXPECT_EQ(std::string(b.begin() + 8, b.begin() + 16), "WAVEfmt ");
    EXPECT_EQ(std::make_tuple(U32(b, 16), U16(b, 20), U16(b, 22), U32(b, 24), U32(b, 28), U16(b, 32), U16(b, 34)),
              std::make_tuple(16u, uint16_t(1), uint16_t(1), 22050u, 44100u, uint16_t(2), uint16_t(16)));
    EXPECT_EQ(std::string(b.begin() + 36, b.begin() + 40), "data");
    const uint32_t bytes = U32(b, 40);
    ASSERT_EQ(bytes, b.size() - 44);
    ASSERT_EQ(bytes % 2, 0u);

    const size_t count = bytes / 2;
    EXPECT_GE(count, 2205u);   // 0.1 s
    EXPECT_LE(count, 11025u);  // 0.5 s
    int peak = 0;
    for (size_t i = 0; i < count; i++) peak = std::max(peak, std::abs(static_cast<int16_t>(U16(b, 44 + 2 * i))));
    // Loud enough to hear over the game (a quarter of full scale), and a
    // tenth below the rails, where a clipped cue would sit.
    EXPECT_GE(peak, 8192);
    EXPECT_LE(peak, 29491);
  }
}
