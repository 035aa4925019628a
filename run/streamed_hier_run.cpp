// When a hierarchical run may load its root's components beside the rest of the walk.
#include "run/streamed_hier_run.h"

bool MayStreamHierarchy(const WireOptions& options) {
  return options.flatten == 0 && PassesMayStream(options);
}
