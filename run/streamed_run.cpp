// When a run may write its deck during the walk, and the folders of a deck not written.
#include "run/streamed_run.h"

#include <unistd.h>

bool MayStream(const WireOptions& options) {
  return options.flatten != 0 && options.dialect.flavour != DeckFlavour::kKelpo &&
         !options.dialect.hdlModels && !options.crossReference;
}

void RemoveMadeFolders(const std::vector<std::string>& made) {
  for (auto folder = made.rbegin(); folder != made.rend(); ++folder) ::rmdir(FileSystemPath(*folder).c_str());
}
