// The frame of a run for each plain dialect, and each one's end of definition.
#include "gen/flavours.h"

void PspiceGen::Run(SpiceProject& project, std::ostream& deck) {
  RunFrame(project, options.dialect.frame, deck);
}

void PspiceGen::WriteDefinition(SpiceBlock& block) { WriteDefinitionBody(block, "\n.ENDS\n"); }

void HspiceGen::Run(SpiceProject& project, std::ostream& deck) {
  RunFrame(project, options.dialect.frame, deck);
}

void HspiceGen::WriteDefinition(SpiceBlock& block) { WriteDefinitionBody(block, ".ENDS\n"); }

void GSpiceGen::Run(SpiceProject& project, std::ostream& deck) {
  RunFrame(project, options.dialect.frame, deck);
}

void GSpiceGen::WriteDefinition(SpiceBlock& block) { WriteDefinitionBody(block, ".ENDS\n"); }
