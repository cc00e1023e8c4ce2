// Property-list bytes to values and back. Binary lists are read by our own
// bounds-checked reader; XML goes through libplist 2.2, whose parser copes
// with any depth but whose free does not: it recurses once per level, so a
// parsed tree is measured before anything recursive touches it. Binary lists
// are written by our own writer too (the reader's counterpart, and several
// times faster than building a libplist tree); XML is written by libplist.
#include "sim/codec/plist_codec.hpp"

#include <plist/plist.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "base/utf8.hpp"
#include "sim/codec/bplist_reader.hpp"
#include "sim/codec/bplist_writer.hpp"

namespace sim {
namespace {

// Deeper nesting than this is not a settings file: no value may lie more
// than this many levels below the root (the binary reader's rule too).
constexpr std::size_t kMaxDepth = 512;

struct PlistFree {
  void operator()(plist_t p) const { plist_free(p); }
};
using PlistPtr = std::unique_ptr<void, PlistFree>;

struct CFree {
  void operator()(void* p) const { std::free(p); }
};

bool isContainer(plist_t node) {
  plist_type t = plist_get_node_type(node);
  return t == PLIST_ARRAY || t == PLIST_DICT;
}

// ---------------------------------------------------------------------------
// Walking a parsed tree without recursion.

// The children of an array or dictionary, one at a time.
class Children {
 public:
  explicit Children(plist_t node) : node_(node), dict_(plist_get_node_type(node) == PLIST_DICT) {
    if (dict_) {
      plist_dict_iter it = nullptr;
      plist_dict_new_iter(node, &it);
      iter_.reset(it);
    } else {
      size_ = plist_array_get_size(node);
    }
  }
  plist_t node() const { return node_; }
  plist_t next() {
    if (!dict_) return index_ < size_ ? plist_array_get_item(node_, index_++) : nullptr;
    if (!iter_) return nullptr;
    plist_t item = nullptr;
    plist_dict_next_item(node_, iter_.get(), nullptr, &item);  // no key: no copy
    return item;
  }

 private:
  plist_t node_;
  bool dict_;
  std::unique_ptr<void, CFree> iter_;
  std::uint32_t index_ = 0, size_ = 0;
};

// True when no value lies more than kMaxDepth levels below the root.
bool shallowEnough(plist_t root) {
  if (!isContainer(root)) return true;
  std::vector<Children> path;
  path.emplace_back(root);
  while (!path.empty()) {
    plist_t child = path.back().next();
    if (!child) {
      path.pop_back();
      continue;
    }
    if (path.size() > kMaxDepth) return false;  // the child's level
    if (isContainer(child)) path.emplace_back(child);
  }
  return true;
}

void removeFromParent(plist_t node) {
  plist_t parent = plist_get_parent(node);
  if (plist_get_node_type(parent) == PLIST_ARRAY) {
    plist_array_remove_item(parent, plist_array_get_item_index(node));
  } else {
    char* key = nullptr;
    plist_dict_get_item_key(node, &key);
    std::unique_ptr<char, CFree> owned(key);
    // The XML reader replaces a repeated key, so the key names this node.
    if (key) plist_dict_remove_item(parent, key);
  }
}

// Frees a tree too deep for libplist's recursive free: working bottom-up,
// every subtree that reaches kMaxDepth levels is cut off and freed on its own,
// so no single free recurses further than that.
void freeDeepTree(plist_t root) {
  struct Frame {
    Children children;
    std::size_t height = 1;
  };
  std::vector<plist_t> cuts;
  std::vector<Frame> path;
  path.push_back({Children(root)});
  while (!path.empty()) {
    plist_t child = path.back().children.next();
    if (child && isContainer(child)) {
      path.push_back({Children(child)});
    } else if (!child) {
      Frame done = std::move(path.back());
      path.pop_back();
      if (path.empty()) break;
      if (done.height >= kMaxDepth)
        cuts.push_back(done.children.node());
      else
        path.back().height = std::max(path.back().height, done.height + 1);
    }
  }
  // Post-order: a cut subtree's own deep parts were cut before it.
  for (plist_t node : cuts) removeFromParent(node);
  plist_free(root);
}

// ---------------------------------------------------------------------------
// libplist nodes to values.

// Foundation refuses a property list whose text is not UTF-8; so does this
// reader, rather than carry bytes it could never write back.
struct Malformed {};

std::string checkedText(std::string text) {
  if (!base::isValidUtf8(text)) throw Malformed{};
  return text;
}

// libplist 2.2 keeps facts its getters do not hand out: whether an integer
// is an unsigned one above INT64_MAX (it then writes it 16 bytes wide), and
// a date's seconds beyond the getter's 32 bits (before 1933 or after 2069).
// Its binary writer still has them: the node is object 0, at offset 8.
std::string binaryImage(plist_t node) {
  char* out = nullptr;
  uint32_t len = 0;
  plist_to_bin(node, &out, &len);
  std::string image(out ? out : "", out ? len : 0);
  plist_to_bin_free(out);
  return image;
}

std::int64_t integerOf(plist_t node) {
  uint64_t u = 0;
  plist_get_uint_val(node, &u);
  if (u <= static_cast<uint64_t>(std::numeric_limits<std::int64_t>::max()))
    return static_cast<std::int64_t>(u);
  std::string image = binaryImage(node);
  if (image.size() > 8 && static_cast<unsigned char>(image[8]) == 0x14)
    return std::numeric_limits<std::int64_t>::max();
  return static_cast<std::int64_t>(u);  // a negative number, kept in the unsigned node
}

double dateOf(plist_t node) {
  std::string image = binaryImage(node);
  if (image.size() >= 17 && static_cast<unsigned char>(image[8]) == 0x33) {
    std::uint64_t bits = 0;
    for (int k = 9; k < 17; ++k) bits = (bits << 8) | static_cast<unsigned char>(image[k]);
    double seconds = 0;
    std::memcpy(&seconds, &bits, sizeof seconds);
    return seconds;
  }
  int32_t sec = 0, usec = 0;
  plist_get_date_val(node, &sec, &usec);
  return double(sec) + double(usec) / 1e6;
}

// `depth` is the node's level below the root. It is bounded by the check
// above; the guard keeps it so should that change.
std::optional<base::Value> toValue(plist_t node, std::size_t depth) {
  if (!node) return std::nullopt;
  if (depth > kMaxDepth) throw Malformed{};
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      uint8_t b = 0;
      plist_get_bool_val(node, &b);
      return base::Value(b != 0);
    }
    case PLIST_UINT:
      return base::Value(static_cast<long long>(integerOf(node)));
    case PLIST_REAL: {
      double d = 0;
      plist_get_real_val(node, &d);
      return base::Value(d);
    }
    case PLIST_STRING: {
      // The pointer form: the copying getter asserts on a string with a NUL
      // inside, which a raw NUL byte in the text produces.
      uint64_t length = 0;
      const char* s = plist_get_string_ptr(node, &length);
      return base::Value(checkedText(std::string(s ? s : "", s ? length : 0)));
    }
    case PLIST_DATA: {
      uint64_t length = 0;
      const auto* d = reinterpret_cast<const uint8_t*>(plist_get_data_ptr(node, &length));
      return base::Value(d ? base::Data(d, d + length) : base::Data{});
    }
    case PLIST_DATE:
      return base::Value(base::Date{dateOf(node)});
    case PLIST_ARRAY: {
      base::Array out;
      uint32_t n = plist_array_get_size(node);
      out.reserve(n);
      for (uint32_t i = 0; i < n; ++i)
        if (auto v = toValue(plist_array_get_item(node, i), depth + 1))
          out.push_back(std::move(*v));
      return base::Value(std::move(out));
    }
    case PLIST_DICT: {
      base::Dictionary out;
      plist_dict_iter it = nullptr;
      plist_dict_new_iter(node, &it);
      std::unique_ptr<void, CFree> ownedIter(it);
      while (it) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, it, &key, &item);
        std::unique_ptr<char, CFree> ownedKey(key);
        if (!item) break;
        if (!key) continue;
        std::string k = checkedText(key);
        if (auto v = toValue(item, depth + 1)) out.emplace_back(std::move(k), std::move(*v));
      }
      return base::Value(std::move(out));
    }
    default:  // UIDs and anything newer: not a settings value
      return std::nullopt;
  }
}

// ---------------------------------------------------------------------------
// Values to libplist nodes, for XML.

// Text that is not UTF-8 would make the whole file unreadable to the reader
// above; the bad bytes become U+FFFD instead.
std::string writableText(const std::string& s) {
  if (base::isValidUtf8(s)) return s;
  std::string out;
  for (std::size_t i = 0; i < s.size();) base::appendUtf8(out, base::decodeUtf8(s, i));
  return out;
}

plist_t dateNode(double seconds) {
  // libplist takes whole seconds and microseconds as 32-bit numbers.
  constexpr double kLow = std::numeric_limits<int32_t>::min(),
                   kHigh = std::numeric_limits<int32_t>::max();
  if (seconds != seconds) seconds = 0;
  seconds = std::clamp(seconds, kLow, kHigh);
  double whole = seconds < 0 ? -static_cast<double>(static_cast<int64_t>(-seconds))
                             : static_cast<double>(static_cast<int64_t>(seconds));
  return plist_new_date(static_cast<int32_t>(whole), static_cast<int32_t>((seconds - whole) * 1e6));
}

plist_t fromValue(const base::Value& v) {
  using T = base::Value::Type;
  switch (v.type()) {
    case T::Null:
      return nullptr;
    case T::Bool:
      return plist_new_bool(*v.asBool() ? 1 : 0);
    case T::Integer:
      return plist_new_uint(static_cast<uint64_t>(*v.asInteger()));
    case T::Real:
      return plist_new_real(*v.asReal());
    case T::String:
      return plist_new_string(writableText(*v.asString()).c_str());
    case T::Data: {
      const base::Data& d = *v.asData();
      return plist_new_data(reinterpret_cast<const char*>(d.data()), d.size());
    }
    case T::Date: {
      // XML holds whole seconds and libplist would drop the fraction toward
      // zero, moving a date before 2001 into the next second.
      return dateNode(std::floor(v.asDate()->seconds));
    }
    case T::Array: {
      plist_t a = plist_new_array();
      for (const base::Value& e : *v.asArray())
        if (plist_t item = fromValue(e)) plist_array_append_item(a, item);
      return a;
    }
    case T::Dictionary: {
      plist_t d = plist_new_dict();
      for (const auto& [k, e] : *v.asDictionary())
        if (plist_t item = fromValue(e)) plist_dict_set_item(d, writableText(k).c_str(), item);
      return d;
    }
  }
  return nullptr;
}

}  // namespace

std::optional<base::Value> decodePlist(std::string_view bytes) {
  if (bytes.empty() || bytes.size() > std::numeric_limits<uint32_t>::max()) return std::nullopt;
  plist_t root = nullptr;
  if (plist_is_binary(bytes.data(), uint32_t(bytes.size()))) return readBinaryPlist(bytes);
  // The XML parser reads to a terminator; give it its own terminated copy.
  std::string text(bytes);
  plist_from_xml(text.c_str(), uint32_t(text.size()), &root);
  if (!root) return std::nullopt;
  if (!shallowEnough(root)) {
    freeDeepTree(root);
    return std::nullopt;
  }
  PlistPtr owner(root);
  try {
    return toValue(root, 0);
  } catch (const Malformed&) {
    return std::nullopt;
  }
}

std::string encodePlist(const base::Value& value, sys::PlistFormat format) {
  if (format == sys::PlistFormat::Binary) return writeBinaryPlist(value);
  plist_t root = fromValue(value);
  if (!root) root = plist_new_dict();
  PlistPtr owner(root);
  char* out = nullptr;
  uint32_t len = 0;
  std::string bytes;
  plist_to_xml(root, &out, &len);
  if (out) bytes.assign(out, len);
  plist_to_xml_free(out);
  return bytes;
}

}  // namespace sim
