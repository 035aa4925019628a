// CSpiceGen::PostProcess: the last pass over the written deck.
#include "post/post_process.h"

#include "gen/spice_gen.h"

void CSpiceGen::PostProcess() {
  PostSettings settings{options, config, internalNames, currentInstance};
  PostProcessFile(circuitPath, settings);
}
