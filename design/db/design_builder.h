// Turns the pieces of a JSON design description into the compact design, checking every field.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <unordered_map>
#include <vector>

#include "design/db/design_model.h"
#include "design/db/item_tree.h"

namespace vdb {

using Json = nlohmann::ordered_json;
using Item = ItemTree::Value;

enum class ItemKind { kComponent, kNet, kPort };

using TextPairs = std::vector<std::pair<std::string, std::string>>;

/// A component given field by field rather than as a JSON object, for readers of other formats
/// that build many components: the same record as AddItem makes of the equal object, with its
/// `definition` given, each pin on one net.
struct ComponentFields {
  std::string label, name, child;  // child "": no child block
  uint32_t type = 1;
  TextPairs attributes, definition;
  TextPairs pins;  // pin name, net label
};

/// Receives a description in document order: the items of each block, then the block itself
/// (with its item lists emptied), then the root (with `blocks` emptied). Every call returns false
/// on bad input, with Error() saying "WHERE: WHAT".
class DesignBuilder {
 public:
  explicit DesignBuilder(Design& design) : d_(design) {}

  bool AddItem(size_t block, ItemKind kind, size_t index, const Item& item);
  bool AddItem(size_t block, ItemKind kind, size_t index, const Json& item);
  bool AddComponentFields(size_t block, size_t index, const ComponentFields& fields);
  bool EndBlock(size_t block, const Json& value);
  bool EndRoot(const Json& root);
  /// Resolves names across the document; `snapshot` (when not empty) overrides the description's.
  bool Finish(const std::string& snapshot);

  const std::string& Error() const { return error_; }
  /// Tells that `text` is to be interned soon, with the item it is part of.
  void Prefetch(std::string_view text) const { d_.strings.Prefetch(text); }

  /// Where an item or pin sits in the description: a list entry inside an outer place, made into
  /// text (blocks[1].components[4].pins[0]) only when one of its fields is bad.
  struct Where {
    static constexpr size_t kNoIndex = ~size_t(0);
    const Where* outer;
    const char* list;  // the list's key, or a plain name when `index` is kNoIndex
    size_t index;
    std::string Text() const;
  };

 private:
  bool Fail(const std::string& where, const std::string& what);
  void OpenBlock(size_t block);
  bool AddComponent(const Where& at, const Item& item);
  bool AddNet(const Where& at, const Item& item);
  bool AddPort(const Where& at, const Item& item);
  bool AddPin(const Where& at, const Item& item);
  bool ReadLinks(const Where& at, const Item& item, uint32_t& bus, uint32_t& width, uint32_t& begin,
                 uint32_t& count, uint8_t& connected);
  template <class Value>
  bool ReadAttributes(const Where& at, const Value& item, const char* key, uint32_t& list);
  uint32_t InternPairs(const TextPairs& pairs);
  bool ReadGroupAndNumber(const Where& at, const Item& item, uint32_t& groupName, int32_t& number,
                          uint8_t& hasNumber);
  void ResolveBlockLinks(size_t block);
  uint32_t NetOfLabel(size_t block, uint32_t label);
  bool ReadGroups(const Json& root);
  bool ReadSymbols(const Json& root);
  bool ResolveBlockNames();
  bool ResolveComponents();
  bool ResolveNets();
  bool ResolveTestbenches();
  bool CheckHierarchy();
  std::string CompWhere(uint32_t comp) const;
  std::string NetWhere(uint32_t net) const;

  Design& d_;
  std::string error_;
  std::vector<uint32_t> compChild_, compGroup_, netGroup_;  // names, resolved by Finish
  std::vector<uint32_t> declaredNets_;                      // per block: nets that `nets` declares
  std::unordered_map<uint32_t, uint32_t> netOfLabel_;       // current block: label to net
  std::unordered_map<uint32_t, uint32_t> blockOfName_, groupOfName_, symbolOfName_;
  std::vector<std::pair<uint32_t, std::string>> testbenchTargets_;
  std::string snapshot_;
  std::vector<uint32_t> pairs_;  // the attribute list being read
  ItemTree jsonItem_;            // an item given as a document value, copied
};

}  // namespace vdb
