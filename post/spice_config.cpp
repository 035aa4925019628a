// Built-in defaults of the configuration fields that are not plain initialisers.
#include "post/spice_config.h"

#include <cctype>
#include <sstream>

const char* const kDefaultUParNames = "M L W S D LP PL WP PW LN NL WN NW PSN PDN NPS NPD PSP PDP";
const char* const kDefaultPParNames = "AS AD ADP AND ASP ASN";

namespace {

void AddWords(const char* list, std::set<std::string>& names) {
  std::istringstream words(list);
  std::string word;
  while (words >> word) names.insert(word);
}

}  // namespace

SpiceConfig::SpiceConfig() {
  AddWords(kDefaultUParNames, uParNames);
  AddWords(kDefaultPParNames, pParNames);
}

bool SpiceConfig::WindowsPaths() const {
  if (paths.size() != 7) return false;
  static const char kWindows[] = "WINDOWS";
  for (size_t i = 0; i < paths.size(); ++i)
    if (std::toupper(static_cast<unsigned char>(paths[i])) != kWindows[i]) return false;
  return true;
}
