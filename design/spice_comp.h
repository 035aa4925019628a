// SpiceComp: what a generator sees of one placed component.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "design/deck_naming.h"
#include "design/model_data.h"
#include "design/node_names.h"
#include "design/spice_net.h"
#include "design/tessel.h"
#include "design/wire_options.h"

/// One pin entry: the key it is found under (pin name, or "D[3]" for a bus bit) and
/// what is connected there. Kept once, in pin order; lookup by key finds the last entry.
struct PinEntry {
  std::string key;
  SpiceNet net;
};

/// One text kept once for the whole run. Attribute keys and values are few distinct texts
/// repeated over many components, so tables hold pointers to the one copy.
const std::string* InternText(const std::string& text);

/// Upper-case attribute key to value, sorted by key. Reading never adds entries; an
/// empty value counts as absent everywhere. The list itself is kept once for all tables
/// that hold the same attributes, as the components of one symbol mostly do.
class AttributeTable {
 public:
  using Pair = std::pair<const std::string*, const std::string*>;
  using List = std::vector<Pair>;
  using Entry = std::pair<const std::string&, const std::string&>;
  /// The entries in key order, each read as a pair of key and value.
  class EntryList {
   public:
    class Iterator {
     public:
      explicit Iterator(const Pair* at) : at_(at) {}
      Entry operator*() const { return Entry(*at_->first, *at_->second); }
      Iterator& operator++() {
        ++at_;
        return *this;
      }
      bool operator!=(const Iterator& other) const { return at_ != other.at_; }

     private:
      const Pair* at_;
    };
    explicit EntryList(const List& entries) : entries_(entries) {}
    Iterator begin() const { return Iterator(entries_.data()); }
    Iterator end() const { return Iterator(entries_.data() + entries_.size()); }
    size_t size() const { return entries_.size(); }
    Entry operator[](size_t i) const { return Entry(*entries_[i].first, *entries_[i].second); }

   private:
    const List& entries_;
  };

  AttributeTable();
  /// A view, so that callers with a literal key build no string.
  const std::string& Get(std::string_view upperKey) const;
  void Set(const std::string& upperKey, const std::string& value);
  /// Stores only when the present value is empty (definition level).
  void SetIfEmpty(const std::string& upperKey, const std::string& value);
  EntryList Entries() const { return EntryList(*list_); }
  bool Empty() const { return list_->empty(); }

  /// Several changes at once: a copy of the list to change with SetIn and SetIfEmptyIn,
  /// then Assign.
  List Copy() const { return *list_; }
  static void SetIn(List& list, const std::string& upperKey, const std::string& value);
  static void SetIfEmptyIn(List& list, const std::string& upperKey, const std::string& value);
  void Assign(List list);

 private:
  const List* list_;
};

/// What GatherAttributes made of one distinct attribute list, for a flat walk that meets
/// the same list on many components.
struct GatheredAttributes {
  AttributeTable attrs;
  std::vector<std::string> bareKeys;
  bool hasAttributes = false;
};
using GatheredAttributesCache = std::unordered_map<uint64_t, GatheredAttributes>;

/// What a placed component is, as its deck line needs to know.
enum CompKind : int32_t {
  kOtherComp = 0,
  kPrimitive = 1,
  kInstance = 2,         // a hierarchical instance: an X line calling its block
  kStoppedInstance = 3,  // an instance whose LEVEL a -l switch names: written as a primitive
};

class SpiceComp;
/// The model mapping of HDL models (model/), handed to the loader by run/.
using ModelMapper = void (*)(SpiceComp& comp);

class SpiceComp {
 public:
  /// Hierarchical load: exclusion, internal name, model mapping, pins, kind, deck name.
  /// `aliases` are the shunt aliases of the block; `mapper` (may be null) maps HDL models;
  /// `gathered` keeps the attributes of each attribute-list pair for the next component.
  void Load(const Tessel::IteratorT<const Tessel::IComp>& comp, const WireOptions& options,
            const std::string& instancePath, const NetAliasTable& aliases, ModelMapper mapper,
            const DeckNaming& naming, GatheredAttributesCache* gathered = nullptr);
  /// Load without the pins: nothing else of the load reads them, so LoadPins may follow later,
  /// on another thread. False when the component is excluded, which then takes no pins.
  bool LoadAllButPins(const Tessel::IteratorT<const Tessel::IComp>& comp, const WireOptions& options,
                      const std::string& instancePath, ModelMapper mapper, const DeckNaming& naming,
                      GatheredAttributesCache* gathered = nullptr);
  /// Flat load: attributes, flat pins through the pin-node table, kind, deck name.
  /// `gathered` (may be null) keeps the attributes of each list already read.
  void LoadFlat(const Tessel::IteratorT<const Tessel::IComp>& comp, const WireOptions& options,
                const DeckNaming& naming, const PinNodeTable& pinNodes,
                GatheredAttributesCache* gathered = nullptr);

  /// The value under the upper-cased key, or an empty string.
  std::string Attribute(const std::string& key) const;
  const AttributeTable& Attributes() const { return attrs; }
  /// Instance-level keys that stand without a value, in key order.
  std::vector<std::string> BareAttributes() const;
  const std::vector<PinEntry>& PinNets() const { return pinNets; }
  /// The entry under `key`, or nullptr.
  const SpiceNet* FindPin(std::string_view key) const;

  const std::string& Label() const { return label; }
  const std::string& RefName() const { return refName; }
  const std::string& Name() const { return name; }
  const std::string& InstancePath() const { return instancePath; }
  const std::string& InternalName() const { return internalName; }
  std::string QualifiedName() const;
  bool HasAttributes() const { return hasAttributes; }
  CompKind Kind() const { return kind; }
  const std::string& ChildBlockName() const { return childBlockName; }
  int32_t PinCount() const { return pinCount; }
  bool IsHdlModel() const;

  /// Model data of the mapping (Kelpo hierarchical walk); empty data otherwise.
  const ModelData& Model() const;
  ModelData& MutableModel();
  bool HasModelPins() const { return model && model->hasModelPins; }
  const std::string& ModelPinList() const;

  AttributeTable attrs;
  std::vector<std::string> bareKeys;  // instance keys with empty values, in arrival order
  std::vector<PinEntry> pinNets;
  CompKind kind = kOtherComp;
  bool hasAttributes = false;
  bool excluded = false;
  int32_t pinCount = 0;
  std::string childBlockName;
  std::string label;
  std::string refName;
  std::string name;
  std::string partitionName;
  std::string internalName;
  std::string instancePath;
  std::string hierName;
  std::shared_ptr<ModelData> model;
  Tessel::IUIDManager* uidManager = nullptr;

  void GatherAttributes(const Tessel::IComp& comp);
  /// GatherAttributes on a component with no attributes yet, through `gathered`.
  void GatherAttributesOnce(const Tessel::IComp& comp, GatheredAttributesCache* gathered);
  void LoadPins(const Tessel::IComp& comp, const NetAliasTable& aliases);
  void LoadPinsFlat(const Tessel::IComp& comp, const PinNodeTable& pinNodes);
  void LoadPinsFlat(const Tessel::IComp& comp, const PinNodeTable& pinNodes, const FlatScope& scope);
  void DecideKind(const Tessel::IComp& comp, const WireOptions& options);
  /// The deck name (refName) by the deck's naming rules.
  void FormDeckName(const WireOptions& options, const DeckNaming& naming);
  void AddPin(std::string key, SpiceNet&& net);
  void ExpandBusPin(const std::string& pinName, Tessel::IteratorT<const Tessel::INet> nets,
                    const NetAliasTable& aliases);

 private:
  // Index of pin keys for components with many pins; built on first use and shared by
  // copies, whose pin lists are the same.
  mutable std::shared_ptr<const std::unordered_map<std::string, size_t>> pinIndex_;
  mutable size_t pinIndexCount_ = 0;  // pinNets.size() when the index was built
};

/// The internal name "$<group id>I<number>" of a component, or "" when it is in no group.
std::string ComponentInternalName(const Tessel::IComp& comp, Tessel::IUIDManager* uidManager);

/// "(lib)_TOP" -> "TOP"; other names stay.
std::string StripBlockPrefix(const std::string& name);
