// CSpiceGen::ProbeProcess: the probe pass over the written deck file.
#include <iostream>
#include <string>

#include "design/platform.h"
#include "gen/spice_gen.h"
#include "post/probe_pass.h"

void CSpiceGen::ProbeProcess() {
  probePass.probeScopeTail = probePass.NewProbeScope();
  if (out.IsOpen()) out.Close();
  if (circuitPath.empty()) {
    std::cout << "No Project found to ProbeProcess... \n";
    return;
  }
  // Flat decks got their print statements while written; -i and -e want none.
  if (options.flatten || options.ignorePrints || options.dialect.dracula) return;

  std::string text;
  if (!ReadWholeFile(circuitPath, text)) {
    std::cout << "Error: Could not open data file " << circuitPath << std::endl;
    return;
  }
  std::string newText = ProbeProcessText(text, probePass, PrintSettingsOf(options), std::cout);
  // The new text is written beside the deck and renamed over it, so a failure leaves
  // the deck as the generator wrote it.
  if (!ReplaceFile(circuitPath, newText))
    std::cout << "Cannot remove file '" << circuitPath << "'" << std::endl;
}
