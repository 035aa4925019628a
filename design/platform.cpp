// Operating-system services on Linux: backslash paths, case-insensitive lookup, files.
#include "design/platform.h"

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

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

bool MakeFolder(const std::string& path) {
  if (path.empty()) return false;
  const std::string fsPath = FileSystemPath(path);
  // No folder outside the places files may be written; the file's write reports it.
  return WritableLocation(fsPath) && ::mkdir(fsPath.c_str(), 0777) == 0;
}

bool ReadWholeFile(const std::string& path, std::string& text) {
  std::FILE* file = std::fopen(FileSystemPath(path).c_str(), "rb");
  if (!file) return false;
  // Read straight into the text, sized from the file: a deck can be tens of megabytes.
  text.clear();
  struct stat info;
  if (::fstat(::fileno(file), &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0) {
    text.resize(static_cast<size_t>(info.st_size));
    text.resize(std::fread(&text[0], 1, text.size(), file));
  }
  char block[1 << 16];  // what a growing or special file holds beyond its stated size
  for (size_t got; (got = std::fread(block, 1, sizeof block, file)) > 0;) text.append(block, got);
  std::fclose(file);
  return true;
}

namespace {

int writeFailures = 0;

// Faults for tests of the write paths, set in the environment as
// VESK_WRITE_FAULT=<kind>:<name ending>[:<n>[+]]: the n-th file opened for writing whose path
// ends so (also the later ones with "+", every one without n) fails as a folder that cannot
// be written ("folder"), a disk that fills halfway through ("full") or a refused rename ("rename").
enum Fault { kNoFault, kFolderFault, kFullFault, kRenameFault };

Fault InjectedFault(const std::string& path) {
  static const std::string setting = GetEnv("VESK_WRITE_FAULT");
  static int matches = 0;
  if (setting.empty()) return kNoFault;
  size_t colon = setting.find(':');
  if (colon == std::string::npos) return kNoFault;
  std::string kind = setting.substr(0, colon), ending = setting.substr(colon + 1);
  int wanted = 0;
  bool later = false;
  if (size_t last = ending.rfind(':'); last != std::string::npos) {
    wanted = std::atoi(ending.c_str() + last + 1);
    later = ending.back() == '+';
    ending.resize(last);
  }
  if (path.size() < ending.size() || path.compare(path.size() - ending.size(), ending.size(), ending) != 0)
    return kNoFault;
  ++matches;
  if (wanted != 0 && matches != wanted && !(later && matches > wanted)) return kNoFault;
  if (kind == "folder") return kFolderFault;
  if (kind == "full") return kFullFault;
  if (kind == "rename") return kRenameFault;
  return kNoFault;
}

}  // namespace

int WriteFailureCount() { return writeFailures; }

namespace {

std::vector<std::string>& AllowedFolders() {
  static std::vector<std::string> folders;
  return folders;
}

// `path` made absolute against the working folder, with "." and ".." resolved by name.
std::string AbsoluteByName(const std::string& path) {
  std::string full = path;
  if (full.empty() || full[0] != '/') {
    char cwd[4096];
    full = std::string(::getcwd(cwd, sizeof cwd) ? cwd : ".") + "/" + full;
  }
  std::vector<std::string> elements;
  size_t pos = 0;
  while (pos <= full.size()) {
    size_t slash = full.find('/', pos);
    if (slash == std::string::npos) slash = full.size();
    std::string element = full.substr(pos, slash - pos);
    pos = slash + 1;
    if (element.empty() || element == ".") continue;
    if (element == "..") {
      if (!elements.empty()) elements.pop_back();
    } else {
      elements.push_back(element);
    }
  }
  std::string result;
  for (const std::string& element : elements) result += "/" + element;
  return result.empty() ? "/" : result;
}

bool Within(const std::string& path, const std::string& folder) {
  return folder == "/" || path == folder ||
         (path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
          path[folder.size()] == '/');
}

}  // namespace

void AllowWritesUnder(const std::string& folder) {
  if (!folder.empty()) AllowedFolders().push_back(AbsoluteByName(FileSystemPath(folder)));
}

bool WritableLocation(const std::string& fsPath) {
  const std::string path = AbsoluteByName(fsPath);
  if (Within(path, AbsoluteByName("."))) return true;
  for (const std::string& folder : AllowedFolders())
    if (Within(path, folder)) return true;
  return false;
}

bool ReplacingFile::Open(const std::string& fsPath) {
  Abandon();
  target_ = fsPath;
  failed_ = false;
  written_ = 0;
  fault_ = InjectedFault(fsPath);
  // The process id keeps two runs in one folder off each other's temporary file.
  temporary_ = fsPath + ".vesk-" + std::to_string(::getpid());
  if (!WritableLocation(fsPath)) {
    Fail("outside the project folder");
    return false;
  }
  if (fault_ == kFolderFault) {
    Fail(EACCES);
    return false;
  }
  file_ = std::fopen(temporary_.c_str(), "wb");
  if (!file_) Fail(errno);
  return file_ != nullptr;
}

void ReplacingFile::Write(const char* data, size_t size) {
  if (!file_ || failed_ || size == 0) return;
  if (fault_ == kFullFault) {
    std::fwrite(data, 1, size / 2, file_);
    Fail(ENOSPC);
    return;
  }
  if (std::fwrite(data, 1, size, file_) != size) Fail(errno ? errno : EIO);
  written_ += static_cast<long long>(size);
}

bool ReplacingFile::Commit() {
  if (!file_) return false;
  if (fault_ == kFullFault && !failed_) Fail(ENOSPC);
  bool flushed = std::fflush(file_) == 0;
  int error = errno;
  if (!flushed && !failed_) Fail(error);
  bool closed = std::fclose(file_) == 0;
  error = errno;
  file_ = nullptr;
  if (!closed && !failed_) Fail(error);
  if (!failed_ && fault_ == kRenameFault) Fail(EACCES);
  if (!failed_ && std::rename(temporary_.c_str(), target_.c_str()) != 0) Fail(errno);
  if (failed_) {
    std::remove(temporary_.c_str());
    return false;
  }
  return true;
}

void ReplacingFile::Abandon() {
  if (!file_) return;
  std::fclose(file_);
  file_ = nullptr;
  std::remove(temporary_.c_str());
}

void ReplacingFile::Fail(int error) { Fail(std::strerror(error)); }

void ReplacingFile::Fail(const char* reason) {
  if (failed_) return;
  failed_ = true;
  ++writeFailures;
  std::cout << "Error: cannot write " << target_ << ": " << reason << std::endl;
}

void HoldWorkingFolder() {
  // Once a process: a second lock through another descriptor would wait for the first.
  static bool held = false;
  if (held) return;
  held = true;
  // The descriptor stays open on purpose: the lock goes with the process.
  int folder = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder >= 0) ::flock(folder, LOCK_EX);
}

bool ReplaceFile(const std::string& path, const std::string& text) {
  ReplacingFile file;
  if (!file.Open(FileSystemPath(path))) return false;
  file.Write(text.data(), text.size());
  return file.Commit();
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
