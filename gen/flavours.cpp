// The frame of a run for each plain dialect, and each one's end of definition.
#include "gen/flavours.h"

namespace {

// What sets the frames of the plain dialects apart.
struct Frame {
  bool rootAsDefinition = false;
  bool globals = false;
  bool optionsLine = false;
  bool endMark = true;
};

void RunFrame(CSpiceGen& gen, SpiceProject& project, const Frame& frame) {
  SpiceBlock& root = project.Root();
  gen.OpenWirelist(project);
  gen.WriteHeader(root);
  for (SpiceBlock& block : project.SubBlocks()) gen.WriteDefinition(block);
  if (frame.rootAsDefinition) {
    gen.WriteDefinition(root);
  } else {
    gen.BeginBlock(root);
    gen.WriteComponents(root);
  }
  if (gen.dictionary) gen.WriteDictionary(0);
  gen.WriteInitialConditions(root);
  if (frame.globals) gen.WriteGlobals();
  gen.WriteModelIncludes();
  if (frame.optionsLine)
    gen.out << ".OPTIONS INGOLD=2 CSDF=2"
            << "\n";
  if (frame.endMark)
    gen.out << "*.END"
            << "\n";
}

}  // namespace

void PspiceGen::Run(SpiceProject& project) { RunFrame(*this, project, Frame{}); }

void PspiceGen::WriteDefinition(SpiceBlock& block) { WriteDefinitionBody(block, "\n.ENDS\n"); }

void HspiceGen::Run(SpiceProject& project) {
  Frame frame;
  frame.rootAsDefinition = dracula;
  frame.globals = !dracula;
  frame.optionsLine = !dracula;
  frame.endMark = !dracula;
  RunFrame(*this, project, frame);
}

void HspiceGen::WriteDefinition(SpiceBlock& block) { WriteDefinitionBody(block, ".ENDS\n"); }

void GSpiceGen::Run(SpiceProject& project) {
  Frame frame;
  frame.globals = true;
  RunFrame(*this, project, frame);
}

void GSpiceGen::WriteDefinition(SpiceBlock& block) { WriteDefinitionBody(block, ".ENDS\n"); }
