// Values and files as text, to compare many values at once.
#pragma once
#include <fstream>
#include <sstream>
#include <string>

// The values, each followed by a space.
template <class... T> std::string Str(const T &...v) {
  std::stringstream s;
  ((s << v << ' '), ...);
  return s.str();
}

// A file's bytes; none when it can't be read.
inline std::string FileText(const std::string &path) {
  std::stringstream s;
  s << std::ifstream(path).rdbuf();
  return s.str();
}
