#include "sim/codec/bplist_reader.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "base/utf8.hpp"

namespace sim {
namespace {

// Shared references can make a small file expand enormously; a settings file
// never holds this many values.
constexpr std::size_t kMaxValues = 2'000'000;
constexpr int kMaxDepth = 512;
// A count is only a claim until its items are read; damaged files claim large
// ones and fail early, so room beyond this grows as items actually arrive.
constexpr std::size_t kMaxReserve = 16;

// A refusal is sticky rather than thrown: fuzzing feeds this mostly broken
// files, and unwinding up to 512 frames of half-built containers for each of
// them cost more than reading them. Every step returns early once `failed_`
// is set, and the caller only looks at the result when it is not.
class Reader {
 public:
  // Every value but the root is reached through a reference of at least one
  // byte, so a file never holds more values than bytes unless it is built to
  // multiply itself.
  explicit Reader(std::string_view b) : b_(b), maxValues_(std::min(kMaxValues, b.size())) {}

  std::optional<base::Value> read() {
    if (b_.size() < 8 + 32 || b_.substr(0, 8) != "bplist00") return std::nullopt;
    std::size_t t = b_.size() - 32;
    offsetSize_ = byte(t + 6);
    refSize_ = byte(t + 7);
    objects_ = unsignedAt(t + 8, 8);
    std::uint64_t top = unsignedAt(t + 16, 8);
    tableAt_ = unsignedAt(t + 24, 8);
    if (offsetSize_ < 1 || offsetSize_ > 8 || refSize_ < 1 || refSize_ > 8) return std::nullopt;
    if (objects_ == 0 || top >= objects_ || tableAt_ < 8 || tableAt_ >= t) return std::nullopt;
    if (objects_ > (t - tableAt_) / offsetSize_) return std::nullopt;
    if (!withinLimits(top)) return std::nullopt;
    base::Value root = object(top, 0);
    if (failed_) return std::nullopt;
    return root;
  }

 private:
  base::Value refuse() { return fail(base::Value()); }

  template <typename T>
  T fail(T nothing) {
    failed_ = true;
    return nothing;
  }

  unsigned byte(std::size_t at) {
    if (at >= b_.size()) return fail(0u);
    return static_cast<unsigned char>(b_[at]);
  }

  std::uint64_t unsignedAt(std::size_t at, std::size_t n) {
    if (at > b_.size() || n > b_.size() - at) return fail<std::uint64_t>(0);
    auto u = [&](std::size_t k) { return std::uint64_t(static_cast<unsigned char>(b_[at + k])); };
    switch (n) {  // the widths files use, without a loop
      case 1:
        return u(0);
      case 2:
        return u(0) << 8 | u(1);
      case 4:
        return u(0) << 24 | u(1) << 16 | u(2) << 8 | u(3);
      case 8:
        return (u(0) << 24 | u(1) << 16 | u(2) << 8 | u(3)) << 32 |
               (u(4) << 24 | u(5) << 16 | u(6) << 8 | u(7));
    }
    std::uint64_t v = 0;
    for (std::size_t i = 0; i < n; ++i) v = (v << 8) | u(i);
    return v;
  }

  // The offset of an object; 0 (never a valid offset) when refused.
  std::size_t offsetOf(std::uint64_t ref) {
    if (ref >= objects_) return fail<std::size_t>(0);
    std::uint64_t off = unsignedAt(tableAt_ + ref * offsetSize_, offsetSize_);
    if (failed_ || off < 8 || off >= tableAt_) return fail<std::size_t>(0);
    return static_cast<std::size_t>(off);
  }

  // The count of a collection or string: the low nibble, or an integer object after it.
  std::uint64_t count(std::size_t& at, unsigned marker) {
    std::uint64_t n = marker & 0x0F;
    ++at;
    if (n != 0x0F) return n;
    unsigned intMarker = byte(at);
    if ((intMarker & 0xF0) != 0x10 || (intMarker & 0x0F) > 3) return fail<std::uint64_t>(0);
    std::size_t width = std::size_t(1) << (intMarker & 0x0F);
    n = unsignedAt(at + 1, width);
    at += 1 + width;
    return n;
  }

  bool fits(std::size_t at, std::uint64_t bytes) const {
    return at <= tableAt_ && bytes <= tableAt_ - at;
  }

  // Where the object `ref` starts, counted against the limits; 0 when refused.
  std::size_t enter(std::uint64_t ref, int depth) {
    if (failed_ || depth > kMaxDepth || ++values_ > maxValues_) return fail<std::size_t>(0);
    return offsetOf(ref);
  }

  base::Value object(std::uint64_t ref, int depth) {
    std::size_t at = enter(ref, depth);
    if (failed_) return base::Value();
    unsigned marker = byte(at);
    switch (marker >> 4) {
      case 0x0:
        if (marker == 0x08) return base::Value(false);
        if (marker == 0x09) return base::Value(true);
        return refuse();  // null and fill bytes hold no settings value
      case 0x1: {
        unsigned p = marker & 0x0F;
        if (p > 4) return refuse();
        std::size_t width = std::size_t(1) << p;
        if (width == 16) {  // 128-bit: only the low 64 bits can be a settings value
          std::uint64_t high = unsignedAt(at + 1, 8), low = unsignedAt(at + 9, 8);
          if (failed_) return base::Value();
          if (high == 0 && low > std::uint64_t(INT64_MAX))
            return base::Value(static_cast<long long>(INT64_MAX));
          if (high != 0 && high != ~std::uint64_t(0)) return refuse();
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
        if (p != 3) return refuse();
        return base::Value(realAt(at + 1));
      }
      case 0x3:
        if (marker != 0x33) return refuse();
        return base::Value(base::Date{realAt(at + 1)});
      case 0x4: {
        std::uint64_t n = count(at, marker);
        if (failed_ || !fits(at, n)) return refuse();
        const auto* p = reinterpret_cast<const std::uint8_t*>(b_.data() + at);
        return base::Value(base::Data(p, p + n));
      }
      case 0x5:
      case 0x6: {
        std::string s;
        if (!text(at, marker, s)) return refuse();
        return base::Value(std::move(s));
      }
      case 0xA: {
        std::uint64_t n = count(at, marker);
        if (failed_ || n > (tableAt_ - at) / refSize_) return refuse();
        base::Array items;
        items.reserve(std::size_t(std::min<std::uint64_t>(n, kMaxReserve)));
        for (std::uint64_t i = 0; i < n && !failed_; ++i)
          items.push_back(object(unsignedAt(at + i * refSize_, refSize_), depth + 1));
        if (failed_) return base::Value();
        return base::Value(std::move(items));
      }
      case 0xD: {
        std::uint64_t n = count(at, marker);
        if (failed_ || n > (tableAt_ - at) / refSize_ / 2) return refuse();
        base::Dictionary entries;
        entries.reserve(std::size_t(std::min<std::uint64_t>(n, kMaxReserve)));
        for (std::uint64_t i = 0; i < n && !failed_; ++i) {
          std::string key;
          if (!keyAt(unsignedAt(at + i * refSize_, refSize_), depth + 1, key)) break;
          base::Value value = object(unsignedAt(at + (n + i) * refSize_, refSize_), depth + 1);
          entries.emplace_back(std::move(key), std::move(value));
        }
        if (failed_) return base::Value();
        return base::Value(std::move(entries));
      }
      default:
        return refuse();  // UIDs and sets are not settings values
    }
  }

  // How many values the file unfolds to through its shared references, and
  // how deep, from the containers' references alone: a file built to multiply
  // itself past the limits is refused before any of it is built. Reading
  // would refuse it anyway, having built up to the limit first.
  bool withinLimits(std::uint64_t top) {
    shape_.assign(std::size_t(objects_), Shape{});
    Shape s = measure(top, 0);
    return !failed_ && s.values <= maxValues_ && s.height <= std::size_t(kMaxDepth);
  }

  struct Shape {
    std::size_t values = 0, height = 0;  // values = 0: not measured yet
    bool open = false;                   // on the path being measured: a cycle
  };

  Shape measure(std::uint64_t ref, std::size_t depth) {
    if (failed_ || depth > std::size_t(kMaxDepth) || ref >= objects_) return fail(Shape{});
    Shape& memo = shape_[std::size_t(ref)];
    if (memo.open) return fail(Shape{});  // unfolds without end
    if (memo.values) return memo;
    std::size_t at = offsetOf(ref);
    unsigned marker = byte(at);
    Shape s{1, 0, false};
    unsigned kind = marker >> 4;
    if (!failed_ && (kind == 0xA || kind == 0xD)) {
      std::uint64_t n = count(at, marker);
      std::uint64_t refs = kind == 0xD ? 2 * n : n;
      if (failed_ || n > (tableAt_ - at) / refSize_ / (kind == 0xD ? 2 : 1)) return fail(Shape{});
      shape_[std::size_t(ref)].open = true;
      for (std::uint64_t i = 0; i < refs && !failed_; ++i) {
        Shape child = measure(unsignedAt(at + i * refSize_, refSize_), depth + 1);
        s.values = std::min(s.values + child.values, maxValues_ + 1);
        s.height = std::max(s.height, child.height + 1);
      }
      shape_[std::size_t(ref)].open = false;
    }
    if (failed_) return Shape{};
    shape_[std::size_t(ref)] = s;
    return s;
  }

  // A dictionary key: counted like any value, and it must be a string.
  bool keyAt(std::uint64_t ref, int depth, std::string& out) {
    std::size_t at = enter(ref, depth);
    if (failed_) return false;
    unsigned marker = byte(at);
    if ((marker >> 4) != 0x5 && (marker >> 4) != 0x6) return fail(false);
    return text(at, marker, out) || fail(false);
  }

  // An ASCII (0x5) or UTF-16 (0x6) string at `at`.
  bool text(std::size_t at, unsigned marker, std::string& out) {
    std::uint64_t n = count(at, marker);
    if (failed_) return false;
    if ((marker >> 4) == 0x6) {
      if (n > (tableAt_ - at) / 2) return false;
      return utf16(at, n, out);
    }
    if (!fits(at, n)) return false;
    std::string_view s = b_.substr(at, n);
    if (!base::isAscii(s)) return false;
    out.assign(s);
    return true;
  }

  double realAt(std::size_t at) {
    std::uint64_t bits = unsignedAt(at, 8);
    double d;
    std::memcpy(&d, &bits, 8);
    return d;
  }

  bool utf16(std::size_t at, std::uint64_t units, std::string& out) {
    out.reserve(std::size_t(units) * 3);  // a unit is at most three bytes of UTF-8
    for (std::uint64_t i = 0; i < units; ++i) {
      char32_t u = char32_t(unsignedAt(at + 2 * i, 2));
      if (u >= 0xD800 && u <= 0xDBFF) {
        if (i + 1 >= units) return false;
        char32_t low = char32_t(unsignedAt(at + 2 * (i + 1), 2));
        if (low < 0xDC00 || low > 0xDFFF) return false;
        u = 0x10000 + ((u - 0xD800) << 10) + (low - 0xDC00);
        ++i;
      } else if (u >= 0xDC00 && u <= 0xDFFF) {
        return false;
      }
      if (failed_) return false;
      base::appendUtf8(out, u);
    }
    return true;
  }

  std::string_view b_;
  unsigned offsetSize_ = 0, refSize_ = 0;
  std::uint64_t objects_ = 0, tableAt_ = 0;
  std::size_t values_ = 0;
  std::size_t maxValues_;
  bool failed_ = false;
  std::vector<Shape> shape_;  // by object reference
};

}  // namespace

std::optional<base::Value> readBinaryPlist(std::string_view bytes) { return Reader(bytes).read(); }

}  // namespace sim
