// Each row: a file's bytes and why the checks refuse them (empty: they pass).
#include <gtest/gtest.h>
#include <string>
#include "rvk/filecheck.h"

static std::string Tga(int type, int w, int bits, const std::string &pixels, int mapLength = 0) {
  std::string h(18, '\0');
  h[1] = mapLength > 0, h[2] = type, h[5] = mapLength & 255, h[6] = mapLength >> 8, h[7] = 24;
  h[12] = w & 255, h[13] = w >> 8, h[14] = 1, h[16] = bits;
  return h + std::string(mapLength * 3, 'm') + pixels;
}

static std::string Wav(const std::string &chunks) { return std::string("RIFF\0\0\0\0WAVE", 12) + chunks; }
static std::string Chunk(const char *id, const std::string &body) {
  return id + std::string{(char)body.size(), 0, 0, 0} + body;
}
static std::string Format(int channels, int bits) {
  return Chunk("fmt ", std::string{1, 0, (char)channels, 0, 0x11, 0x2B, 0, 0, 0, 0, 0, 0, 0, 0, (char)bits, 0});
}

TEST(FileCheck, EachKindOfFileIsRefusedForItsReason) {
  const std::string pcm = Format(1, 8);
  const struct {
    std::string (*Check)(const uint8_t *, size_t);
    std::string Bytes, Reason;
  } rows[] = {
      {RVK_CheckTga, Tga(2, 2, 24, "rgbrgb"), ""},
      {RVK_CheckTga, Tga(2, 2, 24, "rgbrg"), "cut short"},
      {RVK_CheckTga, Tga(2, 4096, 8, ""), "a kind of TGA that is not read (type 2, 8 bits)"},
      {RVK_CheckTga, Tga(3, 4096, 8, std::string(4096, 'g')), ""},
      {RVK_CheckTga, Tga(3, 4097, 8, std::string(4097, 'g')), "larger than 4096 pixels on a side"},
      {RVK_CheckTga, Tga(3, 0, 8, ""), "has no pixels"},
      {RVK_CheckTga, Tga(1, 1, 8, "i", 256), ""},
      {RVK_CheckTga, Tga(1, 1, 8, "i", 255), "a kind of TGA that is not read (type 1, 8 bits)"},
      {RVK_CheckTga, Tga(11, 2, 8, "\x81g"), ""},
      {RVK_CheckTga, Tga(11, 2, 8, "\x82g"), "a run-length packet crosses the end of row 0"},
      {RVK_CheckTga, Tga(10, 2, 32, "\x01rgbargb"), "cut short"},
      {RVK_CheckWav, Wav(pcm + Chunk("data", "ab")), ""},
      {RVK_CheckWav, Wav(pcm + Chunk("data", "abc") + "p"), ""},
      {RVK_CheckWav, Wav(pcm + Chunk("data", "abc")).substr(0, 46), "cut short"},
      {RVK_CheckWav, Wav(Chunk("odd ", "x") + "p" + pcm + Chunk("data", "ab")),
       "cut short, or a chunk of odd length before the end"},
      {RVK_CheckWav, Wav(Chunk("data", "ab") + pcm), "more than one sound, or one before its format"},
      {RVK_CheckWav, Wav(pcm + pcm), "more than one format, or one after the sound"},
      {RVK_CheckWav, Wav(pcm), "no sound data"},
      {RVK_CheckWav, Wav(Format(3, 8)), "3 channels; only mono and stereo are played"},
      {RVK_CheckWav, Wav(Format(2, 24)), "24-bit samples; only 8 and 16 bits are played"},
      {RVK_CheckWav, std::string("RIFF\0\0\0\0WAVf", 12), "not a WAV sound"},
      {RVK_CheckConfigText, "[a]\nb = [c d] \xc3\xa9\t\xf4\x8f\xbf\xbf\r\n" + std::string(197, 'a'), ""},
      {RVK_CheckConfigText, "#" + std::string(199, 'a') + "\n k\t=" + std::string(196, 'v'), ""},
      {RVK_CheckConfigText, "\nk v =" + std::string(194, 'w'), "a line longer than 200 bytes as read or as written back (line 2)"},
      {RVK_CheckConfigText, "#" + std::string(200, 'a'), "a line longer than 200 bytes as read or as written back (line 1)"},
      {RVK_CheckConfigText, "a\n\xc0\x80", "not UTF-8 text (line 2)"},
      {RVK_CheckConfigText, "\xf4\x90\x80\x80", "not UTF-8 text (line 1)"},
      {RVK_CheckConfigText, "\xed\xa0\x80", "not UTF-8 text (line 1)"},
      {RVK_CheckConfigText, "\xe2\x82", "not UTF-8 text (line 1)"},
      {RVK_CheckConfigText, "a\x7f", "a control character (line 1)"},
      {RVK_CheckConfigText, "\r[a]", "a control character (line 1)"},
      {RVK_CheckConfigText, " [a\tb]", "a section line other than a plain [name] (line 1)"},
      {RVK_CheckConfigText, "[a] #c\n[a]=", "a section line other than a plain [name] (line 2)"},
  };
  for (const auto &row : rows)
    EXPECT_EQ(row.Check((const uint8_t *)row.Bytes.data(), row.Bytes.size()), row.Reason) << row.Bytes;
}
