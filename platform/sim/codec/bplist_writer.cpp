#include "sim/codec/bplist_writer.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/utf8.hpp"

namespace sim {
namespace {

// Bytes needed to hold `v` as an unsigned big-endian number: 1, 2, 4 or 8.
unsigned widthFor(std::uint64_t v) {
  if (v <= 0xFF) return 1;
  if (v <= 0xFFFF) return 2;
  if (v <= 0xFFFFFFFF) return 4;
  return 8;
}

// The marker of an integer object `width` bytes wide (1, 2, 4 or 8).
char integerMarker(unsigned width) {
  return static_cast<char>(0x10 | (width == 1 ? 0 : width == 2 ? 1 : width == 4 ? 2 : 3));
}

void appendBigEndian(std::string& out, std::uint64_t v, unsigned width) {
  for (unsigned i = width; i-- > 0;) out.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

void appendReal(std::string& out, unsigned char marker, double d) {
  std::uint64_t bits;
  std::memcpy(&bits, &d, 8);
  out.push_back(static_cast<char>(marker));
  appendBigEndian(out, bits, 8);
}

// A marker with its count: in the low nibble, or 0xF and an integer after it.
void appendHeader(std::string& out, unsigned kind, std::uint64_t n) {
  if (n < 15) {
    out.push_back(static_cast<char>((kind << 4) | n));
    return;
  }
  out.push_back(static_cast<char>((kind << 4) | 0xF));
  unsigned w = widthFor(n);
  out.push_back(integerMarker(w));
  appendBigEndian(out, n, w);
}

void appendText(std::string& out, std::string_view s) {
  if (base::isAscii(s)) {
    appendHeader(out, 0x5, s.size());
    out.append(s);
    return;
  }
  std::u16string units;
  for (std::size_t i = 0; i < s.size();) {
    char32_t cp = base::decodeUtf8(s, i);  // bad bytes come back as U+FFFD
    if (cp >= 0x10000) {
      cp -= 0x10000;
      units.push_back(char16_t(0xD800 + (cp >> 10)));
      units.push_back(char16_t(0xDC00 + (cp & 0x3FF)));
    } else {
      units.push_back(char16_t(cp));
    }
  }
  appendHeader(out, 0x6, units.size());
  for (char16_t u : units) appendBigEndian(out, u, 2);
}

// Whole seconds and microseconds, as the platform's files keep dates.
double storedDate(double seconds) {
  constexpr double kLow = std::numeric_limits<std::int32_t>::min(),
                   kHigh = std::numeric_limits<std::int32_t>::max();
  if (std::isnan(seconds)) seconds = 0;
  seconds = std::clamp(seconds, kLow, kHigh);
  double whole = std::trunc(seconds);
  auto micro = static_cast<std::int32_t>((seconds - whole) * 1e6);
  return whole + micro / 1e6;
}

class Writer {
 public:
  std::string write(const base::Value& root) {
    static const base::Value kEmpty{base::Dictionary{}};
    items_.reserve(64);
    refs_.reserve(64);
    add(root.isNull() ? kEmpty : root);
    refWidth_ = widthFor(items_.size() - 1);

    std::string out;
    out.reserve(256);
    out = "bplist00";
    std::vector<std::uint64_t> offsets;
    offsets.reserve(items_.size());
    for (const Item& item : items_) {
      offsets.push_back(out.size());
      emit(item, out);
    }
    std::uint64_t tableAt = out.size();
    unsigned offsetWidth = widthFor(tableAt);
    for (std::uint64_t o : offsets) appendBigEndian(out, o, offsetWidth);
    out.append(6, '\0');
    out.push_back(static_cast<char>(offsetWidth));
    out.push_back(static_cast<char>(refWidth_));
    appendBigEndian(out, items_.size(), 8);
    appendBigEndian(out, 0, 8);  // the root is the first object
    appendBigEndian(out, tableAt, 8);
    return out;
  }

 private:
  // A value, or a dictionary key (value null), with the objects it refers to:
  // `count` references from `first` in refs_ (arrays: items; dictionaries:
  // keys, then values).
  struct Item {
    const base::Value* value = nullptr;
    std::string_view key;
    std::size_t first = 0, count = 0;
  };

  std::uint64_t add(const base::Value& v) {
    std::uint64_t ref = items_.size();
    items_.push_back(Item{&v, {}, 0, 0});
    std::vector<std::uint64_t> refs;
    if (const base::Array* a = v.asArray()) {
      refs.reserve(a->size());
      for (const base::Value& e : *a)
        if (!e.isNull()) refs.push_back(add(e));
    } else if (const base::Dictionary* d = v.asDictionary()) {
      refs = dictionaryRefs(*d);
    }
    items_[ref].first = refs_.size();
    items_[ref].count = refs.size();
    refs_.insert(refs_.end(), refs.begin(), refs.end());
    return ref;
  }

  std::vector<std::uint64_t> dictionaryRefs(const base::Dictionary& d) {
    // Each key once, in the place it first appears, with the last value given for it.
    std::vector<std::pair<std::string_view, const base::Value*>> entries;
    entries.reserve(d.size());
    std::unordered_map<std::string_view, std::size_t> place;  // for long dictionaries only
    for (const auto& [k, v] : d) {
      if (v.isNull()) continue;
      std::size_t at = entries.size();
      if (d.size() <= kLinearKeys) {
        std::string_view key = k;
        at = std::find_if(entries.begin(), entries.end(),
                          [key](auto& e) { return e.first == key; }) -
             entries.begin();
      } else {
        at = place.emplace(k, at).first->second;
      }
      if (at == entries.size())
        entries.emplace_back(k, &v);
      else
        entries[at].second = &v;
    }
    std::vector<std::uint64_t> refs(entries.size() * 2);
    for (std::size_t i = 0; i < entries.size(); ++i) {
      refs[i] = items_.size();
      items_.push_back(Item{nullptr, entries[i].first, 0, 0});
      refs[entries.size() + i] = add(*entries[i].second);
    }
    return refs;
  }

  static constexpr std::size_t kLinearKeys = 32;

  void emit(const Item& item, std::string& out) const {
    if (!item.value) return appendText(out, item.key);
    using T = base::Value::Type;
    const base::Value& v = *item.value;
    switch (v.type()) {
      case T::Null:
        break;  // never added
      case T::Bool:
        out.push_back(*v.asBool() ? '\x09' : '\x08');
        break;
      case T::Integer: {
        // 1, 2 and 4-byte integers are unsigned; negative ones take 8 bytes.
        long long n = *v.asInteger();
        unsigned w = n < 0 ? 8 : widthFor(static_cast<std::uint64_t>(n));
        out.push_back(integerMarker(w));
        appendBigEndian(out, static_cast<std::uint64_t>(n), w);
        break;
      }
      case T::Real:
        appendReal(out, 0x23, *v.asReal());
        break;
      case T::Date:
        appendReal(out, 0x33, storedDate(v.asDate()->seconds));
        break;
      case T::Data: {
        const base::Data& d = *v.asData();
        appendHeader(out, 0x4, d.size());
        out.append(reinterpret_cast<const char*>(d.data()), d.size());
        break;
      }
      case T::String:
        appendText(out, *v.asString());
        break;
      case T::Array:
      case T::Dictionary:
        appendHeader(out, v.isArray() ? 0xA : 0xD, v.isArray() ? item.count : item.count / 2);
        for (std::size_t i = 0; i < item.count; ++i)
          appendBigEndian(out, refs_[item.first + i], refWidth_);
        break;
    }
  }

  std::vector<Item> items_;
  std::vector<std::uint64_t> refs_;
  unsigned refWidth_ = 1;
};

}  // namespace

std::string writeBinaryPlist(const base::Value& root) { return Writer().write(root); }

}  // namespace sim
