#include "sim/plist_codec.hpp"

#include <plist/plist.h>

#include "base/utf8.hpp"
#include "sim/bplist_reader.hpp"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

namespace sim {
namespace {

// Deeper nesting than this is not a settings file; refusing it keeps a
// hostile file from exhausting the stack.
constexpr int kMaxDepth = 512;

struct PlistFree {
  void operator()(plist_t p) const { plist_free(p); }
};
using PlistPtr = std::unique_ptr<void, PlistFree>;

// Foundation refuses a property list whose text is not UTF-8; so does this
// reader, rather than carry bytes it could never write back.
struct Malformed {};

std::string checkedText(std::string text) {
  if (!base::isValidUtf8(text)) throw Malformed{};
  return text;
}

std::optional<base::Value> toValue(plist_t node, int depth) {
  if (!node || depth > kMaxDepth) return std::nullopt;
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      uint8_t b = 0;
      plist_get_bool_val(node, &b);
      return base::Value(b != 0);
    }
    case PLIST_UINT: {
      uint64_t u = 0;
      plist_get_uint_val(node, &u);
      // libplist keeps signed 64-bit integers in its unsigned node.
      return base::Value(static_cast<long long>(static_cast<int64_t>(u)));
    }
    case PLIST_REAL: {
      double d = 0;
      plist_get_real_val(node, &d);
      return base::Value(d);
    }
    case PLIST_STRING: {
      uint64_t length = 0;
      const char* s = plist_get_string_ptr(node, &length);
      return base::Value(checkedText(std::string(s ? s : "", s ? length : 0)));
    }
    case PLIST_DATA: {
      char* d = nullptr;
      uint64_t len = 0;
      plist_get_data_val(node, &d, &len);
      base::Data data(reinterpret_cast<uint8_t*>(d), reinterpret_cast<uint8_t*>(d) + (d ? len : 0));
      std::free(d);
      return base::Value(std::move(data));
    }
    case PLIST_DATE: {
      int32_t sec = 0, usec = 0;
      plist_get_date_val(node, &sec, &usec);
      return base::Value(base::Date{double(sec) + double(usec) / 1e6});
    }
    case PLIST_ARRAY: {
      base::Array out;
      uint32_t n = plist_array_get_size(node);
      out.reserve(n);
      for (uint32_t i = 0; i < n; ++i)
        if (auto v = toValue(plist_array_get_item(node, i), depth + 1)) out.push_back(std::move(*v));
      return base::Value(std::move(out));
    }
    case PLIST_DICT: {
      base::Dictionary out;
      plist_dict_iter it = nullptr;
      plist_dict_new_iter(node, &it);
      std::unique_ptr<void, decltype(&std::free)> ownedIt(it, &std::free);
      while (it) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, it, &key, &item);
        if (!item) {
          std::free(key);
          break;
        }
        std::unique_ptr<char, decltype(&std::free)> ownedKey(key, &std::free);
        if (key) {
          std::string k = checkedText(key);  // keys come NUL-terminated
          if (auto v = toValue(item, depth + 1)) out.emplace_back(std::move(k), std::move(*v));
        }
      }
      return base::Value(std::move(out));
    }
    default:
      return std::nullopt;
  }
}

plist_t fromValue(const base::Value& v) {
  using T = base::Value::Type;
  switch (v.type()) {
    case T::Null: return nullptr;
    case T::Bool: return plist_new_bool(*v.asBool() ? 1 : 0);
    case T::Integer: return plist_new_uint(static_cast<uint64_t>(*v.asInteger()));
    case T::Real: return plist_new_real(*v.asReal());
    case T::String: return plist_new_string(v.asString()->c_str());
    case T::Data: {
      const base::Data& d = *v.asData();
      return plist_new_data(reinterpret_cast<const char*>(d.data()), d.size());
    }
    case T::Date: {
      double s = v.asDate()->seconds;
      double whole = s < 0 ? -static_cast<double>(static_cast<int64_t>(-s)) : static_cast<double>(static_cast<int64_t>(s));
      return plist_new_date(static_cast<int32_t>(whole), static_cast<int32_t>((s - whole) * 1e6));
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
        if (plist_t item = fromValue(e)) plist_dict_set_item(d, k.c_str(), item);
      return d;
    }
  }
  return nullptr;
}

}  // namespace

std::optional<base::Value> decodePlist(std::string_view bytes) {
  if (bytes.empty() || bytes.size() > std::numeric_limits<uint32_t>::max()) return std::nullopt;
  if (plist_is_binary(bytes.data(), uint32_t(bytes.size()))) return readBinaryPlist(bytes);
  plist_t root = nullptr;
  // The XML parser reads to a terminator; give it its own terminated copy.
  std::string text(bytes);
  plist_from_xml(text.c_str(), uint32_t(text.size()), &root);
  PlistPtr owner(root);
  if (!root) return std::nullopt;
  try {
    return toValue(root, 0);
  } catch (const Malformed&) {
    return std::nullopt;
  }
}

std::string encodePlist(const base::Value& value, sys::PlistFormat format) {
  plist_t root = fromValue(value);
  if (!root) root = plist_new_dict();
  PlistPtr owner(root);
  char* out = nullptr;
  uint32_t len = 0;
  std::string bytes;
  if (format == sys::PlistFormat::Binary) {
    plist_to_bin(root, &out, &len);
    if (out) bytes.assign(out, len);
    plist_to_bin_free(out);
  } else {
    plist_to_xml(root, &out, &len);
    if (out) bytes.assign(out, len);
    plist_to_xml_free(out);
  }
  return bytes;
}

}  // namespace sim
