// The dictionary of each block (net name to node text) and the -x side file.
#include <iostream>
#include <string_view>

#include "design/platform.h"
#include "gen/spice_gen.h"

void CSpiceGen::AddDictionaryLine(std::string_view line) {
  // Nets with internal names ("$...") show only in a verbose dictionary.
  if (!options.probeAll && !options.verbose && line.size() > 2 && line[2] == '$' && line[0] != '$' &&
      line[1] != '$')
    return;
  dictionaryLines.Add(line);
}

void CSpiceGen::WriteDictionary(int flag) {
  if (!options.flatten) out << "\n";
  out << (flag == 0 ? "* Dictionary " : "* CROSS-REFERENCE ") << std::to_string(dictionaryLines.Size())
      << "\n";
  bool groundNamed = false;
  dictionaryLines.ForEachNewestFirst([&](std::string_view entry) {
    out << entry << "\n";
    if (entry.find("GND") != std::string::npos) groundNamed = true;
  });
  dictionaryLines.Clear();
  if (options.flatten) WriteFlatProbes();
  if (flag != 0 || groundSeen || groundNamed) return;
  static const char kWarning[] = "*Warning : No ground node (Label a net GND)";
  std::cout << kWarning << "\n";
  // No line end in the deck: the next output continues this line.
  out << kWarning;
}

void CSpiceGen::OpenCrossReference(std::string group) {
  if (!options.crossReference) return;
  const std::string path = group + ".xrf";
  size_t slash = path.find_last_of("\\/");
  if (slash != std::string::npos) MakeFolder(path.substr(0, slash));
  xrefOut.Open(FileSystemPath(path));
  xrefOut << "V 2 0 0\n";
  // Nothing else is ever written to it, so it is complete now.
  xrefOut.Commit();
}
