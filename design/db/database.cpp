// The opened design: the compact model, name lookups and the resolved hierarchy of each block.
#include "design/db/database.h"

namespace vdb {

namespace {
// A tree whose occurrences outnumber this is cut short rather than exhausting memory.
constexpr size_t kMaxOccurrences = 200000000;
}  // namespace

ConfigData::ConfigData(const Design& design, uint32_t root) : design_(design), root_(root) {
  occs_.push_back({root, kNone, kNone});
  std::vector<std::pair<uint32_t, uint32_t>> stack{
      {0, design.blocks[root].compsBegin}};  // occurrence, position
  while (!stack.empty() && occs_.size() < kMaxOccurrences) {
    auto& [occ, pos] = stack.back();
    if (pos == design.blocks[occs_[occ].block].compsEnd) {
      stack.pop_back();
      continue;
    }
    const CompRec& comp = design.comps[pos];
    uint32_t via = pos++;
    if (!Descends(comp)) continue;
    uint32_t child = static_cast<uint32_t>(occs_.size());
    occs_.push_back({comp.child, occ, via});
    stack.emplace_back(child, design.blocks[comp.child].compsBegin);
  }
}

const std::string& ConfigData::HierarchicalName(uint32_t occ, char separator) const {
  Names* names = nullptr;
  for (auto& n : names_) {
    if (n->separator == separator) names = n.get();
  }
  if (!names) {
    names_.push_back(std::make_unique<Names>(Names{separator, {}, {}}));
    names = names_.back().get();
    names->text.resize(occs_.size());
    names->done.assign(occs_.size(), 0);
    names->done[0] = 1;
  }
  // Fill the names from the nearest named ancestor down to `occ`.
  std::vector<uint32_t> chain;
  for (uint32_t at = occ; !names->done[at]; at = occs_[at].parent) chain.push_back(at);
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    const Occurrence& o = occs_[*it];
    std::string_view label = design_.strings.View(design_.comps[o.viaComp].label);
    std::string& text = names->text[*it];
    text = names->text[o.parent];
    if (o.parent != 0) text += separator;
    text += label;
    names->done[*it] = 1;
  }
  return names->text[occ];
}

Database::Database(Design design) : design_(std::move(design)), configs_(design_.blocks.size()) {
  for (uint32_t b = 0; b < design_.blocks.size(); ++b)
    blockByName_.emplace(design_.strings.View(design_.blocks[b].name), b);
  for (auto& [name, block] : design_.testbenches) benchByName_.emplace(design_.strings.View(name), block);
}

bool Database::FindBlock(std::string_view name, uint32_t& block) const {
  auto found = blockByName_.find(name);
  if (found != blockByName_.end()) {
    block = found->second;
    return true;
  }
  auto bench = benchByName_.find(name);
  if (bench == benchByName_.end()) return false;
  block = bench->second;
  return true;
}

const ConfigData& Database::Config(uint32_t block) const {
  if (!configs_[block]) configs_[block] = std::make_unique<ConfigData>(design_, block);
  return *configs_[block];
}

}  // namespace vdb
