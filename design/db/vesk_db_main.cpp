// vesk-db: builds a project's design database from a JSON description or a SPICE netlist, or
// describes it back.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>

#include "design/db/design_import.h"
#include "design/platform.h"
#include "expr/text.h"

#ifndef VESK_VERSION
#define VESK_VERSION "0.0"
#endif

namespace fs = std::filesystem;

namespace {

constexpr int kBadInput = 2;
constexpr int kUsageError = 1;

// The report of bad input is one line: control characters that names may hold are shown escaped.
std::string OneLine(const std::string& text) {
  std::string line;
  for (char ch : text) {
    unsigned char c = static_cast<unsigned char>(ch);
    if (c == '\n') {
      line += "\\n";
    } else if (c == '\r') {
      line += "\\r";
    } else if (c == '\t') {
      line += "\\t";
    } else if (c < 0x20 || c == 0x7F) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\x%02X", c);
      line += escaped;
    } else {
      line += ch;
    }
  }
  return line;
}

void Report(const std::string& text) { std::cerr << "vesk-db: " << OneLine(text) << "\n"; }

int Usage() {
  std::cerr << "usage: vesk-db import [--project DIR] [--snapshot NAME] FILE.json\n"
               "       vesk-db import-spice [--project DIR] [--top NAME] FILE\n"
               "       vesk-db export [DIR]\n"
               "       vesk-db --version\n";
  return kUsageError;
}

// The command line of both imports: `--project DIR`, one option `option` with a value, and the
// file. False on anything else.
bool ParseImportArguments(int argc, char** argv, const char* option, std::string& project, std::string& value,
                          std::string& file) {
  for (int i = 2; i < argc; ++i) {
    bool hasValue = i + 1 < argc;
    if (!std::strcmp(argv[i], "--project") && hasValue) {
      project = argv[++i];
    } else if (!std::strcmp(argv[i], option) && hasValue) {
      value = argv[++i];
    } else if (file.empty() && std::strncmp(argv[i], "--", 2) != 0) {
      file = argv[i];
    } else {
      return false;
    }
  }
  return !file.empty();
}

int Import(int argc, char** argv) {
  std::string project, snapshot, file;
  if (!ParseImportArguments(argc, argv, "--snapshot", project, snapshot, file)) return Usage();
  std::string text, error;
  if (!ReadWholeFile(file, text)) {
    Report(file + ": (file): cannot read the file");
    return kBadInput;
  }
  if (!ImportDesign(text, project, error, snapshot)) {
    Report(file + ": " + error);
    return kBadInput;
  }
  return 0;
}

// The top block's name when --top gives none: the file's name without folder and extension,
// upper-cased.
std::string TopFromFile(const std::string& file) {
  size_t slash = file.find_last_of('/');
  std::string stem = slash == std::string::npos ? file : file.substr(slash + 1);
  size_t dot = stem.find_last_of('.');
  if (dot != std::string::npos && dot > 0) stem.resize(dot);
  return UpperText(stem);
}

// vesk writes <TOP>.cir into the project folder, finding files there ignoring case: a netlist
// of that name there would be overwritten by the first deck.
void WarnOfDeckOverNetlist(const std::string& file, const std::string& project, const std::string& top) {
  std::error_code error;
  fs::path netlist(file);
  fs::path folder = project.empty() ? fs::path(".") : fs::path(project);
  fs::path netlistFolder = netlist.has_parent_path() ? netlist.parent_path() : fs::path(".");
  if (!fs::equivalent(folder, netlistFolder, error)) return;
  std::string deck = top + ".cir";
  if (!EqualsIgnoringCase(netlist.filename().string(), deck)) return;
  std::cout << "Warning: vesk writes the deck " << deck << " over the netlist " << file
            << "; keep the netlist under another name\n";
}

int ImportSpice(int argc, char** argv) {
  std::string project, top, file;
  if (!ParseImportArguments(argc, argv, "--top", project, top, file)) return Usage();
  if (top.empty()) top = TopFromFile(file);
  std::string text, error, written;
  if (!ReadWholeFile(file, text)) {
    Report(file + ":0: cannot read the file");
    return kBadInput;
  }
  if (top.empty()) {
    Report(file + ":0: no name for the top block: give --top NAME");
    return kBadInput;
  }
  if (!ImportSpiceDesign(text, file, project, top, written, error)) {
    Report(error);
    return kBadInput;
  }
  std::cout << written;
  WarnOfDeckOverNetlist(file, project, top);
  return 0;
}

int Export(int argc, char** argv) {
  if (argc > 3) return Usage();
  std::string project = argc == 3 ? argv[2] : "";
  std::string text, error;
  if (!ExportDesign(project, text, error)) {
    Report(error);
    return kBadInput;
  }
  std::cout << text;
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return Usage();
  if (!std::strcmp(argv[1], "--version")) {
    std::cout << "vesk-db " << VESK_VERSION << "\n";
    return 0;
  }
  if (!std::strcmp(argv[1], "import")) return Import(argc, argv);
  if (!std::strcmp(argv[1], "import-spice")) return ImportSpice(argc, argv);
  if (!std::strcmp(argv[1], "export")) return Export(argc, argv);
  return Usage();
}
