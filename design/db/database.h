// The opened design: the compact model, name lookups and the resolved hierarchy of each block.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "design/db/design_model.h"

namespace vdb {

/// One occurrence of a block in the tree under a root block.
struct Occurrence {
  uint32_t block;
  uint32_t parent;   // occurrence that holds it; kNone at the root
  uint32_t viaComp;  // the instance that places it; kNone at the root
};

/// Whether the walks go down into a component: a hierarchical instance that has a child.
inline bool Descends(const CompRec& comp) { return comp.child != kNone && (comp.type & 2u) != 0; }

/// The default config of a block: its occurrences depth first, and their hierarchical names,
/// each made once per separator when first asked for.
class ConfigData {
 public:
  ConfigData(const Design& design, uint32_t root);
  uint32_t Root() const { return root_; }
  const std::vector<Occurrence>& Occurrences() const { return occs_; }
  const std::string& HierarchicalName(uint32_t occ, char separator) const;

 private:
  struct Names {
    char separator;
    std::vector<std::string> text;
    std::vector<uint8_t> done;
  };
  const Design& design_;
  uint32_t root_;
  std::vector<Occurrence> occs_;
  mutable std::vector<std::unique_ptr<Names>> names_;
};

class Database {
 public:
  explicit Database(Design design);
  const Design& design() const { return design_; }
  /// The block whose stored name is `name`, else the block of the test bench `name`.
  bool FindBlock(std::string_view name, uint32_t& block) const;
  /// The default config of `block`, built on first use.
  const ConfigData& Config(uint32_t block) const;

 private:
  Design design_;
  std::unordered_map<std::string_view, uint32_t> blockByName_, benchByName_;
  mutable std::vector<std::unique_ptr<ConfigData>> configs_;
};

}  // namespace vdb
