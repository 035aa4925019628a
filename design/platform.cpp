// Operating-system services on Linux: backslash paths, case-insensitive lookup, files.
#include "design/platform.h"

#include <dirent.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

bool Exists(const std::string& path) {
  struct stat info;
  return ::stat(path.c_str(), &info) == 0;
}

// The entry of `folder` whose name equals `name` ignoring case, or "" when none does.
std::string FindIgnoringCase(const std::string& folder, const std::string& name) {
  DIR* dir = ::opendir(folder.empty() ? "." : folder.c_str());
  if (!dir) return "";
  std::string found;
  while (dirent* entry = ::readdir(dir)) {
    if (::strcasecmp(entry->d_name, name.c_str()) == 0) {
      found = entry->d_name;
      break;
    }
  }
  ::closedir(dir);
  return found;
}

}  // namespace

std::string FileSystemPath(const std::string& path) {
  std::string spelled = path;
  for (char& c : spelled)
    if (c == '\\') c = '/';
  if (spelled.empty() || Exists(spelled)) return spelled;

  // Resolve element by element; stop matching once an element is missing.
  std::string result = spelled[0] == '/' ? "/" : "";
  size_t pos = spelled[0] == '/' ? 1 : 0;
  bool matching = true;
  while (pos <= spelled.size()) {
    size_t slash = spelled.find('/', pos);
    if (slash == std::string::npos) slash = spelled.size();
    std::string element = spelled.substr(pos, slash - pos);
    pos = slash + 1;
    if (element.empty()) continue;
    std::string candidate = result + element;
    if (matching && !Exists(candidate) && element != "." && element != "..") {
      std::string actual = FindIgnoringCase(result.empty() ? "." : result, element);
      if (actual.empty())
        matching = false;
      else
        candidate = result + actual;
    }
    result = candidate;
    if (slash < spelled.size()) result += '/';
  }
  return result;
}

namespace {

bool HasDriveLetter(const std::string& path) {
  return path.size() >= 2 && path[1] == ':' && std::isalpha(static_cast<unsigned char>(path[0]));
}

}  // namespace

std::string RelativePath(const std::string& path, const std::string& folder) {
  namespace fs = std::filesystem;
  const std::string target = FileSystemPath(path);
  if (target.empty() || target[0] == '/' || HasDriveLetter(target)) return target;
  std::error_code error;
  fs::path here = fs::current_path(error);
  if (error) here = "/";
  const std::string start = FileSystemPath(folder);
  const fs::path from = (start.empty() ? here : here / start).lexically_normal();
  const fs::path to = (here / target).lexically_normal();
  fs::path relative = to.lexically_relative(from);
  if (relative.empty()) return to.generic_string();
  return relative.generic_string();
}

bool FileExists(const std::string& path) {
  struct stat info;
  return ::stat(FileSystemPath(path).c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool PathExists(const std::string& path) { return Exists(FileSystemPath(path)); }

void MakeFolder(const std::string& path) {
  if (path.empty()) return;
  ::mkdir(FileSystemPath(path).c_str(), 0777);
}

bool ReadWholeFile(const std::string& path, std::string& text) {
  std::ifstream in(FileSystemPath(path), std::ios::binary);
  if (!in) return false;
  std::ostringstream buffer;
  buffer << in.rdbuf();
  text = buffer.str();
  return true;
}

bool ReplaceFile(const std::string& path, const std::string& text) {
  std::string target = FileSystemPath(path);
  std::string temporary = target + ".vesk-new";
  std::FILE* file = std::fopen(temporary.c_str(), "wb");
  if (!file) return false;
  bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  written = (std::fclose(file) == 0) && written;
  if (!written || std::rename(temporary.c_str(), target.c_str()) != 0) {
    std::remove(temporary.c_str());
    return false;
  }
  return true;
}

std::string GetEnv(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string ExpandPercentEnvironment(const std::string& text) {
  std::string result;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t open = text.find('%', pos);
    size_t close = open == std::string::npos ? std::string::npos : text.find('%', open + 1);
    if (close == std::string::npos) {
      result.append(text, pos, std::string::npos);
      break;
    }
    result.append(text, pos, open - pos);
    std::string name = text.substr(open + 1, close - open - 1);
    const char* value = name.empty() ? nullptr : std::getenv(name.c_str());
    if (value) {
      result += value;
      pos = close + 1;
    } else {
      // An unset reference stays as written; its closing % may open the next one.
      result.append(text, open, close - open);
      pos = close;
    }
  }
  return result;
}
