// The few services of the operating system that the program uses, on Linux.
//
// Paths inside the program keep the backslashes they are written with; where such a
// path touches the file system each "\" is read as "/", and a path that does not exist
// as spelled is looked up folder by folder ignoring case, as the designers' Windows
// projects expect ("sym" beside "Sym/Models_Info.xml").
#pragma once

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

/// Creates one folder; an existing one or a failure is no error.
void MakeFolder(const std::string& path);

/// Reads a whole file; false when it does not open.
bool ReadWholeFile(const std::string& path, std::string& text);

/// Replaces the file at `path` by `text` without ever losing it: the text is written
/// to a file beside it and renamed over it. False (old file intact) on any failure.
bool ReplaceFile(const std::string& path, const std::string& text);

/// Expands %NAME% references as the Windows call does: a set variable is replaced,
/// an unset one stays as written.
std::string ExpandPercentEnvironment(const std::string& text);

/// The value of an environment variable, or "" when unset.
std::string GetEnv(const char* name);
