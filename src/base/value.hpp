// A property-list value: what the settings file holds and what the system keeps
// of it in memory. Plain data with no platform behind it. The number readers
// follow Foundation's integerValue / boolValue rules, because the settings file
// is read the way the host's Foundation would read it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace base {

class Value;

using Array = std::vector<Value>;
// Insertion order is kept so that a written file lists its keys in the order
// they were set; lookups are by exact key.
using Dictionary = std::vector<std::pair<std::string, Value>>;
using Data = std::vector<std::uint8_t>;

// Seconds since 2001-01-01 00:00:00 UTC, as NSDate and CFAbsoluteTime count.
struct Date {
  double seconds = 0;
  bool operator==(const Date&) const = default;
};

class Value {
 public:
  // The kinds keep the property-list names, alike the aliases above; being
  // scoped, they cannot be mistaken for them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
  enum class Type { Null, Bool, Integer, Real, String, Data, Date, Array, Dictionary };
#pragma GCC diagnostic pop

  Value() = default;  // null
  Value(std::nullptr_t) {}
  Value(bool b) : v_(b) {}
  Value(int i) : v_(std::int64_t{i}) {}
  Value(long i) : v_(std::int64_t{i}) {}
  Value(long long i) : v_(std::int64_t{i}) {}
  Value(double d) : v_(d) {}
  Value(const char* s) : v_(std::string(s)) {}
  Value(std::string s) : v_(std::move(s)) {}
  Value(std::string_view s) : v_(std::string(s)) {}
  Value(base::Data d) : v_(std::move(d)) {}
  Value(base::Date d) : v_(d) {}
  Value(base::Array a) : v_(std::move(a)) {}
  Value(base::Dictionary d) : v_(std::move(d)) {}

  Type type() const { return static_cast<Type>(v_.index()); }
  bool isNull() const { return type() == Type::Null; }
  bool isBool() const { return type() == Type::Bool; }
  bool isInteger() const { return type() == Type::Integer; }
  bool isReal() const { return type() == Type::Real; }
  bool isNumber() const { return isBool() || isInteger() || isReal(); }
  bool isString() const { return type() == Type::String; }
  bool isData() const { return type() == Type::Data; }
  bool isDate() const { return type() == Type::Date; }
  bool isArray() const { return type() == Type::Array; }
  bool isDictionary() const { return type() == Type::Dictionary; }

  // Typed access; nullptr when the value is of another type.
  const bool* asBool() const { return std::get_if<bool>(&v_); }
  const std::int64_t* asInteger() const { return std::get_if<std::int64_t>(&v_); }
  const double* asReal() const { return std::get_if<double>(&v_); }
  const std::string* asString() const { return std::get_if<std::string>(&v_); }
  const base::Data* asData() const { return std::get_if<base::Data>(&v_); }
  const base::Date* asDate() const { return std::get_if<base::Date>(&v_); }
  const base::Array* asArray() const { return std::get_if<base::Array>(&v_); }
  base::Array* asArray() { return std::get_if<base::Array>(&v_); }
  const base::Dictionary* asDictionary() const { return std::get_if<base::Dictionary>(&v_); }
  base::Dictionary* asDictionary() { return std::get_if<base::Dictionary>(&v_); }

  // Foundation's integerValue: numbers (bool 0/1, reals truncated toward zero
  // and saturated) and strings (leading blanks, optional sign, digits up to the
  // first non-digit, saturating; no digits gives 0). Every other type does not
  // answer the selector: nullopt.
  std::optional<long> integerValue() const;
  // Foundation's boolValue: numbers are YES when non-zero; a string is YES when,
  // after leading blanks, it starts with "Y", "y", "T" or "t", or with an
  // optional sign, any zeros and then a digit 1-9. Other types: nullopt.
  std::optional<bool> boolValue() const;

  // Dictionary lookup by exact key; nullptr when absent or not a dictionary.
  const Value* find(std::string_view key) const;
  // Sets or replaces a key of a dictionary value (a null value becomes an
  // empty dictionary first). Keeps the position of a replaced key.
  void set(std::string key, Value v);

  bool operator==(const Value& o) const { return v_ == o.v_; }

 private:
  std::variant<std::monostate, bool, std::int64_t, double, std::string, base::Data, base::Date,
               base::Array, base::Dictionary>
      v_;
};

// The string rules on their own, for callers that hold a raw string.
long integerValueOfString(std::string_view s);
bool boolValueOfString(std::string_view s);

// A short human-readable rendering for logs and the simulator: strings in
// double quotes, arrays as [a, b], dictionaries as {k = v; ...}.
std::string describe(const Value& v);

}  // namespace base
