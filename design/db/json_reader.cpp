// Streams a JSON design description into a DesignBuilder, one component at a time.
#include "design/db/json_reader.h"

#include <memory>
#include <unordered_set>
#include <vector>

namespace vdb {

namespace {

/// Builds small document trees from parser events, and hands the blocks and their items to the
/// builder as soon as they are complete instead of keeping them. An item of a block's component,
/// net or port list is collected in an ItemTree that is reused for the next item; the few values
/// around the items (the root, each block without its items) are document trees.
class StreamingHandler : public nlohmann::json_sax<Json> {
 public:
  StreamingHandler(const std::string& text, DesignBuilder& builder) : text_(text), builder_(builder) {}

  bool null() override { return InItem() ? Scalar(ItemTree::Kind::kNull) : Value(Json()); }
  bool boolean(bool val) override {
    if (!InItem()) return Value(Json(val));
    items_.At(Place(ItemTree::Kind::kBool)).boolean = val;
    return Done();
  }
  bool number_integer(number_integer_t val) override {
    if (!InItem()) return Value(Json(val));
    items_.At(Place(ItemTree::Kind::kInt)).bits = static_cast<uint64_t>(val);
    return Done();
  }
  bool number_unsigned(number_unsigned_t val) override {
    if (!InItem()) return Value(Json(val));
    items_.At(Place(ItemTree::Kind::kUnsigned)).bits = val;
    return Done();
  }
  bool number_float(number_float_t val, const string_t&) override {
    return InItem() ? Scalar(ItemTree::Kind::kFloat) : Value(Json(val));
  }
  bool string(string_t& val) override {
    if (!InItem()) return Value(Json(std::move(val)));
    uint32_t node = Place(ItemTree::Kind::kText);
    uint32_t begin = items_.Keep(val);
    builder_.Prefetch(val);  // while the rest of the item is read
    items_.At(node).textBegin = begin;
    items_.At(node).textLength = static_cast<uint32_t>(val.size());
    return Done();
  }
  bool binary(binary_t&) override { return InItem() ? Scalar(ItemTree::Kind::kNull) : Value(Json()); }
  bool start_object(std::size_t) override { return Open(true); }
  // A key given twice would silently replace (or, for `blocks`, mix up) what came first.
  bool key(string_t& val) override {
    if (SeenKey(stack_.back(), val)) {
      error_ = PathTo(val) + ": duplicate key";
      return false;
    }
    stack_.back().key = val;
    return true;
  }
  bool end_object() override { return Close(); }
  bool start_array(std::size_t) override { return Open(false); }
  bool end_array() override { return Close(); }
  bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& ex) override {
    error_ = Where(position) + ": not JSON: " + Reason(ex.what());
    return false;
  }

  const std::string& Error() const { return error_.empty() ? builder_.Error() : error_; }

 private:
  struct Frame {
    bool isObject;
    Json value;       // outside an item: the value being built
    uint32_t node;    // inside an item: its node
    std::string key;  // the key of the value being read, in an object
    size_t count;     // the index of the value being read, in an array
    // The keys of a large object, for finding a repeated one.
    std::unique_ptr<std::unordered_set<std::string>> keys;
  };

  // Whether the next value belongs to an item: it is one, or it lies inside one.
  bool InItem() const { return itemDepth_ != 0 || AtItem(); }

  // Whether the next value is an item of a block's component, net or port list.
  bool AtItem() const {
    if (stack_.size() != 4 || !InBlocks() || !stack_[2].isObject || stack_[3].isObject) return false;
    const std::string& list = stack_[2].key;
    return list == "components" || list == "nets" || list == "ports";
  }

  // Adds a node for the next value of an item (starting the item when it is one) and gives it.
  uint32_t Place(ItemTree::Kind kind) {
    if (itemDepth_ == 0) {
      items_.Clear();
      itemDepth_ = stack_.size();
      return items_.Add(ItemTree::kNoNode, kind, {});
    }
    const Frame& parent = stack_.back();
    return items_.Add(parent.node, kind, parent.key);
  }

  bool Scalar(ItemTree::Kind kind) {
    Place(kind);
    return Done();
  }

  // After a value of an item: hands the item over when the value was the item itself.
  bool Done() {
    if (stack_.size() != itemDepth_) {
      if (!stack_.back().isObject) stack_.back().count++;
      return true;
    }
    itemDepth_ = 0;
    const std::string& list = stack_[2].key;
    ItemKind kind = list == "components" ? ItemKind::kComponent
                    : list == "nets"     ? ItemKind::kNet
                                         : ItemKind::kPort;
    return builder_.AddItem(stack_[1].count, kind, stack_[3].count++, items_.Root());
  }

  bool Open(bool isObject) {
    if (InItem()) {
      uint32_t node = Place(isObject ? ItemTree::Kind::kObject : ItemTree::Kind::kArray);
      stack_.push_back(Frame{isObject, Json(), node, {}, 0, nullptr});
    } else {
      stack_.push_back(Frame{isObject, isObject ? Json::object() : Json::array(), 0, {}, 0, nullptr});
    }
    return true;
  }

  bool Close() {
    if (itemDepth_ != 0) {
      stack_.pop_back();
      return Done();
    }
    Json done = std::move(stack_.back().value);
    stack_.pop_back();
    return Value(std::move(done));
  }

  // Small objects are searched; a large one gets a set of its keys, so that an object with
  // many members (groups, symbols, attributes) is still read in linear time.
  bool SeenKey(Frame& frame, const std::string& key) const {
    size_t members = 0;
    if (itemDepth_ != 0) {
      members = ItemTree::Value(&items_, frame.node).size();
    } else {
      members = frame.value.get_ref<const Json::object_t&>().size();
    }
    if (!frame.keys && members < kSearchedKeys) {
      if (itemDepth_ != 0) return items_.HasKey(frame.node, key);
      for (const auto& member : frame.value.get_ref<const Json::object_t&>())
        if (member.first == key) return true;
      return false;
    }
    if (!frame.keys) {
      frame.keys = std::make_unique<std::unordered_set<std::string>>();
      if (itemDepth_ != 0) {
        for (ItemTree::Value m = ItemTree::Value(&items_, frame.node).First(); m.Valid(); m = m.Next())
          frame.keys->emplace(m.Key());
      } else {
        for (const auto& member : frame.value.get_ref<const Json::object_t&>())
          frame.keys->insert(member.first);
      }
    }
    return !frame.keys->insert(key).second;
  }

  static constexpr size_t kSearchedKeys = 16;

  bool InBlocks() const { return stack_[0].isObject && stack_[0].key == "blocks" && !stack_[1].isObject; }

  // Places a complete value outside the items in its parent, unless it is a block.
  bool Value(Json value) {
    if (stack_.empty()) return builder_.EndRoot(value);
    if (stack_.size() == 2 && InBlocks()) return builder_.EndBlock(stack_[1].count++, value);
    Frame& parent = stack_.back();
    if (parent.isObject) {
      // The key is known to be new: append without the map's own search.
      Json::object_t& members = parent.value.get_ref<Json::object_t&>();
      members.Json::object_t::Container::emplace_back(parent.key, std::move(value));
    } else {
      parent.value.push_back(std::move(value));
      parent.count++;
    }
    return true;
  }

  // The JSON path of `key` in the innermost object, as blocks[0].components[2].label.
  std::string PathTo(const std::string& key) const {
    std::string path;
    for (size_t i = 0; i + 1 < stack_.size(); ++i) {
      const Frame& frame = stack_[i];
      if (frame.isObject) {
        path += (path.empty() ? "" : ".") + frame.key;
      } else {
        path += "[" + std::to_string(frame.count) + "]";
      }
    }
    return path.empty() ? key : path + "." + key;
  }

  std::string Where(size_t position) const {
    size_t line = 1, column = 1;
    for (size_t i = 0; i + 1 < position && i < text_.size(); ++i) {
      if (text_[i] == '\n') {
        ++line;
        column = 1;
      } else {
        ++column;
      }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
  }

  static std::string Reason(const std::string& what) {
    // The library's text reads "[json.exception...] parse error at line L, column C: REASON".
    size_t colon = what.find(": ");
    return colon == std::string::npos ? what : what.substr(colon + 2);
  }

  const std::string& text_;
  DesignBuilder& builder_;
  std::vector<Frame> stack_;
  ItemTree items_;        // the item being read
  size_t itemDepth_ = 0;  // while an item is read: the depth of its list; 0 otherwise
  std::string error_;
};

}  // namespace

bool ReadDescription(const std::string& text, DesignBuilder& builder, std::string& error) {
  StreamingHandler handler(text, builder);
  bool ok = Json::sax_parse(text, &handler, nlohmann::detail::input_format_t::json, true);
  if (!ok) error = handler.Error();
  return ok;
}

}  // namespace vdb
