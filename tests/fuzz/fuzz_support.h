// What the fuzz targets share: a scratch folder to work in and files written into it.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace fuzz {

/// Makes a fresh scratch folder once per process and makes it the working folder, so the
/// readers that look for files beside the project find the ones a target writes.
inline const std::string& EnterScratchFolder() {
  static const std::string folder = [] {
    char pattern[] = "/tmp/vesk-fuzz-XXXXXX";
    const char* made = ::mkdtemp(pattern);
    if (!made || ::chdir(made) != 0) std::abort();
    ::setenv("GALT_HOME", "galt", 1);
    ::unsetenv("WDIR");
    ::unsetenv("CURRENT_PROJECT_PATH");
    return std::string(made);
  }();
  return folder;
}

/// Writes `text` to `path` (relative to the working folder), making its folders first.
inline void WriteFile(const std::string& path, const std::string& text) {
  for (size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1))
    ::mkdir(path.substr(0, slash).c_str(), 0777);
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) std::abort();
  std::fwrite(text.data(), 1, text.size(), file);
  std::fclose(file);
}

/// Splits `text` at `separator` into at most `limit` pieces (the last keeps the rest).
inline std::vector<std::string> Split(const std::string& text, const std::string& separator, size_t limit) {
  std::vector<std::string> pieces;
  size_t pos = 0;
  while (pieces.size() + 1 < limit) {
    size_t found = text.find(separator, pos);
    if (found == std::string::npos) break;
    pieces.push_back(text.substr(pos, found - pos));
    pos = found + separator.size();
  }
  pieces.push_back(text.substr(pos));
  while (pieces.size() < limit) pieces.emplace_back();
  return pieces;
}

inline std::string Text(const uint8_t* data, size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

}  // namespace fuzz
