#include "sim/bplist_reader.hpp"

#include <cstdint>
#include <algorithm>
#include <cstring>
#include <vector>

#include "base/utf8.hpp"

namespace sim {
namespace {

struct Refused {};

// Shared references can make a small file expand enormously; a settings file
// never holds this many values.
constexpr std::size_t kMaxValues = 2'000'000;
constexpr int kMaxDepth = 512;

class Reader {
 public:
  // Every value but the root is reached through a reference of at least one
  // byte, so a file never holds more values than bytes unless it is built to
  // multiply itself.
  explicit Reader(std::string_view b) : b_(b), maxValues_(std::min(kMaxValues, b.size())) {}

  base::Value read() {
    if (b_.size() < 8 + 32 || b_.substr(0, 8) != "bplist00") throw Refused{};
    std::size_t t = b_.size() - 32;
    offsetSize_ = byte(t + 6);
    refSize_ = byte(t + 7);
    objects_ = unsignedAt(t + 8, 8);
    std::uint64_t top = unsignedAt(t + 16, 8);
    tableAt_ = unsignedAt(t + 24, 8);
    if (offsetSize_ < 1 || offsetSize_ > 8 || refSize_ < 1 || refSize_ > 8) throw Refused{};
    if (objects_ == 0 || top >= objects_ || tableAt_ < 8 || tableAt_ >= t) throw Refused{};
    if (objects_ > (t - tableAt_) / offsetSize_) throw Refused{};
    return object(top, 0);
  }

 private:
  unsigned byte(std::size_t at) const {
    if (at >= b_.size()) throw Refused{};
    return static_cast<unsigned char>(b_[at]);
  }

  std::uint64_t unsignedAt(std::size_t at, std::size_t n) const {
    if (at > b_.size() || n > b_.size() - at) throw Refused{};
    std::uint64_t v = 0;
    for (std::size_t i = 0; i < n; ++i) v = (v << 8) | static_cast<unsigned char>(b_[at + i]);
    return v;
  }

  std::size_t offsetOf(std::uint64_t ref) const {
    if (ref >= objects_) throw Refused{};
    std::uint64_t off = unsignedAt(tableAt_ + ref * offsetSize_, offsetSize_);
    if (off < 8 || off >= tableAt_) throw Refused{};
    return static_cast<std::size_t>(off);
  }

  // The count of a collection or string: the low nibble, or an integer object after it.
  std::uint64_t count(std::size_t& at, unsigned marker) const {
    std::uint64_t n = marker & 0x0F;
    ++at;
    if (n != 0x0F) return n;
    unsigned intMarker = byte(at);
    if ((intMarker & 0xF0) != 0x10 || (intMarker & 0x0F) > 3) throw Refused{};
    std::size_t width = std::size_t(1) << (intMarker & 0x0F);
    n = unsignedAt(at + 1, width);
    at += 1 + width;
    return n;
  }

  void need(std::size_t at, std::uint64_t bytes) const {
    if (at > tableAt_ || bytes > tableAt_ - at) throw Refused{};
  }

  base::Value object(std::uint64_t ref, int depth) {
    if (depth > kMaxDepth || ++values_ > maxValues_) throw Refused{};
    std::size_t at = offsetOf(ref);
    unsigned marker = byte(at);
    switch (marker >> 4) {
      case 0x0:
        if (marker == 0x08) return base::Value(false);
        if (marker == 0x09) return base::Value(true);
        throw Refused{};  // null and fill bytes hold no settings value
      case 0x1: {
        unsigned p = marker & 0x0F;
        if (p > 4) throw Refused{};
        std::size_t width = std::size_t(1) << p;
        if (width == 16) {  // 128-bit: only the low 64 bits can be a settings value
          std::uint64_t high = unsignedAt(at + 1, 8), low = unsignedAt(at + 9, 8);
          if (high == 0 && low > std::uint64_t(INT64_MAX))
            return base::Value(static_cast<long long>(INT64_MAX));
          if (high != 0 && high != ~std::uint64_t(0)) throw Refused{};
          return base::Value(static_cast<long long>(low));
        }
        std::uint64_t v = unsignedAt(at + 1, width);
        // 1, 2 and 4-byte integers are unsigned; 8-byte ones are signed.
        return base::Value(static_cast<long long>(v));
      }
      case 0x2: {
        unsigned p = marker & 0x0F;
        if (p == 2) {
          std::uint32_t bits = static_cast<std::uint32_t>(unsignedAt(at + 1, 4));
          float f;
          std::memcpy(&f, &bits, 4);
          return base::Value(static_cast<double>(f));
        }
        if (p != 3) throw Refused{};
        return base::Value(realAt(at + 1));
      }
      case 0x3:
        if (marker != 0x33) throw Refused{};
        return base::Value(base::Date{realAt(at + 1)});
      case 0x4: {
        std::uint64_t n = count(at, marker);
        need(at, n);
        const auto* p = reinterpret_cast<const std::uint8_t*>(b_.data() + at);
        return base::Value(base::Data(p, p + n));
      }
      case 0x5: {
        std::uint64_t n = count(at, marker);
        need(at, n);
        std::string s(b_.substr(at, n));
        for (char c : s)
          if (static_cast<unsigned char>(c) > 0x7F) throw Refused{};
        return base::Value(std::move(s));
      }
      case 0x6: {
        std::uint64_t n = count(at, marker);
        if (n > (tableAt_ - at) / 2) throw Refused{};
        return base::Value(utf16(at, n));
      }
      case 0xA: {
        std::uint64_t n = count(at, marker);
        if (n > (tableAt_ - at) / refSize_) throw Refused{};
        base::Array items;
        items.reserve(std::size_t(n));
        for (std::uint64_t i = 0; i < n; ++i)
          items.push_back(object(unsignedAt(at + i * refSize_, refSize_), depth + 1));
        return base::Value(std::move(items));
      }
      case 0xD: {
        std::uint64_t n = count(at, marker);
        if (n > (tableAt_ - at) / refSize_ / 2) throw Refused{};
        base::Dictionary entries;
        entries.reserve(std::size_t(n));
        for (std::uint64_t i = 0; i < n; ++i) {
          base::Value key = object(unsignedAt(at + i * refSize_, refSize_), depth + 1);
          if (!key.isString()) throw Refused{};
          base::Value value = object(unsignedAt(at + (n + i) * refSize_, refSize_), depth + 1);
          entries.emplace_back(*key.asString(), std::move(value));
        }
        return base::Value(std::move(entries));
      }
      default:
        throw Refused{};  // UIDs and sets are not settings values
    }
  }

  double realAt(std::size_t at) const {
    std::uint64_t bits = unsignedAt(at, 8);
    double d;
    std::memcpy(&d, &bits, 8);
    return d;
  }

  std::string utf16(std::size_t at, std::uint64_t units) const {
    std::string out;
    for (std::uint64_t i = 0; i < units; ++i) {
      char32_t u = char32_t(unsignedAt(at + 2 * i, 2));
      if (u >= 0xD800 && u <= 0xDBFF) {
        if (i + 1 >= units) throw Refused{};
        char32_t low = char32_t(unsignedAt(at + 2 * (i + 1), 2));
        if (low < 0xDC00 || low > 0xDFFF) throw Refused{};
        u = 0x10000 + ((u - 0xD800) << 10) + (low - 0xDC00);
        ++i;
      } else if (u >= 0xDC00 && u <= 0xDFFF) {
        throw Refused{};
      }
      base::appendUtf8(out, u);
    }
    return out;
  }

  std::string_view b_;
  unsigned offsetSize_ = 0, refSize_ = 0;
  std::uint64_t objects_ = 0, tableAt_ = 0;
  std::size_t values_ = 0;
  std::size_t maxValues_;
};

}  // namespace

std::optional<base::Value> readBinaryPlist(std::string_view bytes) {
  try {
    return Reader(bytes).read();
  } catch (const Refused&) {
    return std::nullopt;
  }
}

}  // namespace sim
