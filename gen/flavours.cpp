// The frame of a run for each plain dialect, and each one's end of definition.
#include "gen/flavours.h"

void PspiceGen::Run(SpiceProject& project) { RunFrame(project, DeckFrame{}); }

void PspiceGen::WriteDefinition(SpiceBlock& block) { WriteDefinitionBody(block, "\n.ENDS\n"); }

void HspiceGen::Run(SpiceProject& project) {
  DeckFrame frame;
  frame.rootAsDefinition = dracula;
  frame.globals = dracula ? DeckFrame::kNoGlobals : DeckFrame::kGlobalsBeforeIncludes;
  frame.optionsLine = !dracula;
  frame.endMark = !dracula;
  RunFrame(project, frame);
}

void HspiceGen::WriteDefinition(SpiceBlock& block) { WriteDefinitionBody(block, ".ENDS\n"); }

void GSpiceGen::Run(SpiceProject& project) {
  DeckFrame frame;
  frame.globals = DeckFrame::kGlobalsBeforeIncludes;
  RunFrame(project, frame);
}

void GSpiceGen::WriteDefinition(SpiceBlock& block) { WriteDefinitionBody(block, ".ENDS\n"); }
