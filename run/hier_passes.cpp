// PassesMayStream: the cases where the passes of a hierarchical deck run on the text as written.
#include "run/hier_passes.h"

#include <filesystem>
#include <system_error>

#include "design/platform.h"
#include "expr/text.h"

namespace {

// Whether a file whose name ends in "-param.txt" (in any case) lies anywhere under `folder`.
bool HasParameterSections(const std::string& folder) {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::recursive_directory_iterator it(FileSystemPath(folder), error), end;
  if (error) return false;
  for (; it != end; it.increment(error)) {
    if (error) return true;  // a folder that cannot be read: the classic run decides
    const std::string name = LowerText(it->path().filename().string());
    if (name.size() >= 10 && name.compare(name.size() - 10, 10, "-param.txt") == 0) return true;
  }
  return error.value() != 0;
}

}  // namespace

bool PassesMayStream(const WireOptions& options) {
  return options.flatten == 0 && options.dialect.flavour != DeckFlavour::kKelpo &&
         !options.dialect.hdlModels && !options.crossReference && !HasParameterSections("sym");
}
