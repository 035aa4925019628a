// The few services of the operating system that the program uses, on Linux.
//
// Paths inside the program keep the backslashes they are written with; where such a
// path touches the file system each "\" is read as "/", and a path that does not exist
// as spelled is looked up folder by folder ignoring case, as the designers' Windows
// projects expect ("sym" beside "Sym/Models_Info.xml").
#pragma once

#include <cstdio>
#include <string>

/// The path to hand to the file system for `path`: "\" read as "/", then each element
/// that does not exist as spelled matched ignoring case. Elements that are not found
/// stay as spelled, so new files and folders are created as written.
std::string FileSystemPath(const std::string& path);

/// `path` as seen from `folder`, with "/": both are relative to the working folder (in "\" or
/// "/" form) or absolute. "sym\A.mod" from "genhdl\TOP" gives "../../sym/A.mod", from ""
/// gives "sym/A.mod". The elements of `path` that exist take their spelling on disk. An
/// absolute path (a drive letter too) stays absolute, with "/".
std::string RelativePath(const std::string& path, const std::string& folder);

/// True when a file (not a folder) exists at `path`.
bool FileExists(const std::string& path);
/// True when a file or folder exists at `path`.
bool PathExists(const std::string& path);

/// Creates one folder; an existing one or a failure is no error. True when it made one.
bool MakeFolder(const std::string& path);

/// Reads a whole file; false when it does not open.
bool ReadWholeFile(const std::string& path, std::string& text);

/// Replaces the file at `path` by `text` without ever losing it: the text is written
/// to a file beside it and renamed over it. False (old file intact) on any failure,
/// which is reported as a write failure.
bool ReplaceFile(const std::string& path, const std::string& text);

/// A file written under a temporary name beside its place and renamed over it once
/// complete, so a file already there is never half-written or lost. Any failure is
/// printed once ("Error: cannot write <path>: <reason>") and counted; the temporary
/// file then goes and the old file stays.
class ReplacingFile {
 public:
  ReplacingFile() = default;
  ~ReplacingFile() { Abandon(); }
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;

  /// Starts the file that will replace `fsPath` (a file-system path); false on failure.
  bool Open(const std::string& fsPath);
  bool IsOpen() const { return file_ != nullptr; }
  /// Appends; after a failure further writes are dropped.
  void Write(const char* data, size_t size);
  /// Completes the file and renames it over its place; false (old file intact) on failure.
  bool Commit();
  /// Drops the temporary file; the old file stays.
  void Abandon();

 private:
  void Fail(int error);
  void Fail(const char* reason);
  std::FILE* file_ = nullptr;
  std::string target_, temporary_;
  bool failed_ = false;
  long long written_ = 0;
  int fault_ = 0;  // an injected fault for this file (see platform.cpp)
};

/// How many writes have failed in this process.
int WriteFailureCount();

/// Files are written only inside the working folder (the project) and inside the folders
/// given here: a name from a design or a mapping file that climbs out ("..\..\x", "/tmp/x")
/// is refused as a write failure. The user's own output folder is allowed this way.
void AllowWritesUnder(const std::string& folder);
/// True when `fsPath` lies in the working folder or in an allowed folder (read lexically).
bool WritableLocation(const std::string& fsPath);

/// Waits until no other run holds the working folder, then holds it until this process
/// ends: two runs in one project folder write their files one after the other, so each
/// deck, parameter file and side file comes whole from one run.
void HoldWorkingFolder();

/// Expands %NAME% references as the Windows call does: a set variable is replaced,
/// an unset one stays as written.
std::string ExpandPercentEnvironment(const std::string& text);

/// The value of an environment variable, or "" when unset.
std::string GetEnv(const char* name);
