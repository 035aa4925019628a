// The command line and the ini file vesk.ini: help, usage text, switch clusters, search path.
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "design/platform.h"
#include "expr/text.h"
#include "gen/spice_gen.h"

namespace {

constexpr size_t kIniLimit = 512;
constexpr size_t kFolderLimit = 255;

const char* const kUsageLines[] = {
    "Usage:  vesk <switches> groupname levelname\n\n",
    "where <switches> are one or more of the following:\n",
    "  -a        Alien Simulator (no defaults)\n",
    "  -b        No warning for Parameterized Attributes\n",
    "  -cnn      Set max chars in name to nn\n",
    "  -d        Write DICTIONARY (Default)\n",
    "  -e        Wirelist to Dracula\n",
    "  -f        Flatten the wirelist (Default)\n",
    "  -g<fname> Specify Header file name\n",
    "  -h        Hierarchical wirelist:  not flat\n",
    "  -i        Ignore .PRINTs or .PROBEs\n",
    "  -j        No GUI, execute from the command line\n",
    "  -k<fname> Specify Config file name\n",
    "  -lXX      Use XX as additional LEVEL= match\n",
    "  -m        Metasoftware's HSPICE wirelist\n",
    "  -n        Use node names, not numbers\n",
    "  -oXX      Use XX as first choice ORDER=\n",
    "  -p        Wirelist to Pspice (Default)\n",
    "  -q        Quiet ... No Dictionary\n",
    "  -r        Write out a ratings file\n",
    "  -s        Berkeley SPICE wirelist.\n",
    "  -t        Wirelist to AT&T\n",
    "  -v        Write a VERBOSE dictionary\n",
    "  -w        Use .Print instead of .Probe\n",
    "  -x        Write cross reference file\n",
    "  -yXX      Use XX as first choice PREFIX=\n",
    "  -z        Ignore reading in .MOD files\n",
    "  -#        Use node numbers (Default)\n",
    "  -9        Fennic-Analog Dependencies\n",
    "  -@<fname> Parameterized Attribute file name\n",
    "  -.<fext>  Change circuit file ext from default=cir\n",
    "  -!<fname> Change circuit file name from default=proj\n",
    "  -=<name>  Change from \"LOAD\" attribute to \"name\".\n",
    "  -+        Do not sort Dracula wirelist\n",
    "  -_        Norvane Kelpo wirelist\n",
    "  -$        De-replicate the hierarchy\n",
    "  -%        Specify folder of output file\n",
};

// Tokens separated by runs of blanks; every other character, line ends included, is text.
std::vector<std::string> SplitAtBlanks(const std::string& text) {
  std::vector<std::string> tokens;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t start = text.find_first_not_of(' ', pos);
    if (start == std::string::npos) break;
    size_t end = text.find(' ', start);
    if (end == std::string::npos) end = text.size();
    tokens.push_back(text.substr(start, end - start));
    pos = end;
  }
  return tokens;
}

// Reads the ini file as a text-mode read would: line ends as "\n", at most 512 characters.
bool ReadIniText(const std::string& path, std::string& text) {
  std::FILE* file = std::fopen(FileSystemPath(path).c_str(), "r");
  if (!file) return false;
  char raw[2 * kIniLimit];
  size_t count = std::fread(raw, 1, sizeof raw, file);
  std::fclose(file);
  text.clear();
  for (size_t i = 0; i < count && text.size() < kIniLimit; ++i) {
    if (raw[i] == '\r' && i + 1 < count && raw[i + 1] == '\n') continue;
    text += raw[i];
  }
  return true;
}

bool IsFolder(const std::string& path) { return PathExists(path) && !FileExists(path); }

std::string AbsolutePath(const std::string& path) {
  std::string fsPath = FileSystemPath(path);
  if (!fsPath.empty() && fsPath[0] == '/') return fsPath;
  char cwd[4096];
  if (!::getcwd(cwd, sizeof cwd)) return fsPath;
  return std::string(cwd) + "/" + fsPath;
}

// The WDIR folders, each followed by the same folder without "latest".
std::vector<std::string> SearchList() {
  std::vector<std::string> list;
  std::string wdir = GetEnv("WDIR");
  size_t pos = 0;
  while (!wdir.empty() && pos <= wdir.size()) {
    size_t end = wdir.find(';', pos);
    if (end == std::string::npos) end = wdir.size();
    std::string folder = wdir.substr(pos, std::min(end - pos, kFolderLimit));
    pos = end + 1;
    if (folder.empty()) continue;
    list.push_back(folder + "\\latest");
    list.push_back(folder);
  }
  return list;
}

}  // namespace

void CSpiceGen::PrintUsage() {
  for (const char* line : kUsageLines) std::cout << line;
  std::cout.flush();
}

int CSpiceGen::CheckHelp(int argc, const char* const* argv) {
  if (argc <= 1) {
    PrintUsage();
    return 1;
  }
  for (int i = 1; i < argc; ++i) {
    if (StartsWith(argv[i], "-?") || StartsWith(argv[i], "-help")) {
      PrintUsage();
      return 1;
    }
  }
  return 0;
}

void CSpiceGen::AddLevel(std::string name) {
  options.levels->insert(options.levels->begin(), std::move(name));
}

int CSpiceGen::FindOnSearchPath(const std::string& name, std::string& path) {
  if (name.find_first_of("*?") != std::string::npos) return 1;
  std::vector<std::string> candidates = {"latest\\" + name, name};
  for (const std::string& entry : SearchList())
    if (IsFolder(entry)) candidates.push_back(entry + "\\" + name);
  for (const std::string& candidate : candidates) {
    if (!FileExists(candidate)) continue;
    path = AbsolutePath(candidate);
    return 0;
  }
  return 1;
}

void CSpiceGen::ParseArguments(const char** group, int argc, const char* const* argv) {
  options.SetDefaults();
  std::string iniPath;
  if (FindOnSearchPath("vesk.ini", iniPath) == 0) {
    std::string text;
    if (ReadIniText(iniPath, text)) {
      for (const std::string& token : SplitAtBlanks(Trim(text))) ParseSwitches(token);
    } else {
      std::cerr << "Could not open ini file!" << std::endl;
    }
  }
  bool haveGroup = false;
  for (int i = 1; i < argc; ++i) {
    options.optionsString += argv[i];
    options.optionsString += ' ';
    if (argv[i][0] == '-') {
      ParseSwitches(argv[i]);
    } else if (!haveGroup) {
      haveGroup = true;
      if (group) *group = argv[i];
    } else {
      AddLevel(argv[i]);
    }
  }
}
