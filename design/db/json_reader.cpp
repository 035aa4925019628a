// Streams a JSON design description into a DesignBuilder, one component at a time.
#include "design/db/json_reader.h"

#include <memory>
#include <unordered_set>
#include <vector>

namespace vdb {

namespace {

/// Builds small document trees from parser events, and hands the blocks and their items to the
/// builder as soon as they are complete instead of keeping them.
class StreamingHandler : public nlohmann::json_sax<Json> {
 public:
  StreamingHandler(const std::string& text, DesignBuilder& builder) : text_(text), builder_(builder) {}

  bool null() override { return Value(Json()); }
  bool boolean(bool val) override { return Value(Json(val)); }
  bool number_integer(number_integer_t val) override { return Value(Json(val)); }
  bool number_unsigned(number_unsigned_t val) override { return Value(Json(val)); }
  bool number_float(number_float_t val, const string_t&) override { return Value(Json(val)); }
  bool string(string_t& val) override { return Value(Json(std::move(val))); }
  bool binary(binary_t&) override { return Value(Json()); }
  bool start_object(std::size_t) override {
    stack_.push_back(Frame{Json::object(), {}, 0, nullptr});
    return true;
  }
  // A key given twice would silently replace (or, for `blocks`, mix up) what came first.
  bool key(string_t& val) override {
    if (SeenKey(stack_.back(), val)) {
      error_ = PathTo(val) + ": duplicate key";
      return false;
    }
    stack_.back().key = val;
    return true;
  }
  bool end_object() override { return Pop(); }
  bool start_array(std::size_t) override {
    stack_.push_back(Frame{Json::array(), {}, 0, nullptr});
    return true;
  }
  bool end_array() override { return Pop(); }
  bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& ex) override {
    error_ = Where(position) + ": not JSON: " + Reason(ex.what());
    return false;
  }

  const std::string& Error() const { return error_.empty() ? builder_.Error() : error_; }

 private:
  struct Frame {
    Json value;
    std::string key;  // the key of the value being read, in an object
    size_t count;     // the index of the value being read, in an array
    // The keys of a large object, for finding a repeated one.
    std::unique_ptr<std::unordered_set<std::string>> keys;
  };

  // Small objects are searched; a large one gets a set of its keys, so that an object with
  // many members (groups, symbols, attributes) is still read in linear time.
  static bool SeenKey(Frame& frame, const std::string& key) {
    const Json::object_t& members = frame.value.get_ref<const Json::object_t&>();
    if (!frame.keys && members.size() < kSearchedKeys) {
      for (const auto& member : members)
        if (member.first == key) return true;
      return false;
    }
    if (!frame.keys) {
      frame.keys = std::make_unique<std::unordered_set<std::string>>();
      for (const auto& member : members) frame.keys->insert(member.first);
    }
    return !frame.keys->insert(key).second;
  }

  static constexpr size_t kSearchedKeys = 16;

  bool Pop() {
    Json done = std::move(stack_.back().value);
    stack_.pop_back();
    return Value(std::move(done));
  }

  bool InBlocks() const { return stack_[0].value.is_object() && stack_[0].key == "blocks" && stack_[1].value.is_array(); }

  // Places a complete value in its parent, unless it is a block or an item of one.
  bool Value(Json value) {
    if (stack_.empty()) return builder_.EndRoot(value);
    if (stack_.size() == 2 && InBlocks()) return builder_.EndBlock(stack_[1].count++, value);
    if (stack_.size() == 4 && InBlocks() && stack_[2].value.is_object() && stack_[3].value.is_array()) {
      const std::string& list = stack_[2].key;
      ItemKind kind = list == "components" ? ItemKind::kComponent
                      : list == "nets"     ? ItemKind::kNet
                                           : ItemKind::kPort;
      if (list == "components" || list == "nets" || list == "ports")
        return builder_.AddItem(stack_[1].count, kind, stack_[3].count++, value);
    }
    Frame& parent = stack_.back();
    if (parent.value.is_object()) {
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
      if (frame.value.is_object()) {
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
