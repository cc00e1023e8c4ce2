// Property-list values and Foundation's number readings of them.
#include "base/value.hpp"

#include <cctype>
#include <climits>
#include <cmath>
#include <cstdio>

namespace base {
namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

long saturate(double d) {
  if (std::isnan(d)) return 0;
  if (d >= 9223372036854775807.0) return LONG_MAX;
  if (d <= -9223372036854775808.0) return LONG_MIN;
  return static_cast<long>(d);
}

void describeInto(std::string& out, const Value& v);

void quoted(std::string& out, const std::string& s) {
  out += '"';
  for (char c : s) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  out += '"';
}

void describeInto(std::string& out, const Value& v) {
  using T = Value::Type;
  switch (v.type()) {
    case T::Null:
      out += "null";
      break;
    case T::Bool:
      out += *v.asBool() ? "true" : "false";
      break;
    case T::Integer:
      out += std::to_string(*v.asInteger());
      break;
    case T::Real: {
      char buf[40];
      std::snprintf(buf, sizeof buf, "%g", *v.asReal());
      out += buf;
      break;
    }
    case T::String:
      quoted(out, *v.asString());
      break;
    case T::Data:
      out += "<" + std::to_string(v.asData()->size()) + " bytes>";
      break;
    case T::Date: {
      char buf[48];
      // Down to the second; %g keeps six digits, a quarter of an hour here.
      std::snprintf(buf, sizeof buf, "date(%.15g)", v.asDate()->seconds);
      out += buf;
      break;
    }
    case T::Array: {
      out += '[';
      bool first = true;
      for (const Value& e : *v.asArray()) {
        if (!first) out += ", ";
        first = false;
        describeInto(out, e);
      }
      out += ']';
      break;
    }
    case T::Dictionary: {
      out += '{';
      bool first = true;
      for (const auto& [k, e] : *v.asDictionary()) {
        if (!first) out += "; ";
        first = false;
        out += k + " = ";
        describeInto(out, e);
      }
      out += '}';
      break;
    }
  }
}

}  // namespace

long integerValueOfString(std::string_view s) {
  std::size_t i = 0;
  while (i < s.size() && isBlank(s[i])) ++i;
  bool negative = false;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) negative = s[i++] == '-';
  unsigned long long magnitude = 0;
  bool overflow = false;
  for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
    if (magnitude > (ULLONG_MAX - 9) / 10)
      overflow = true;
    else
      magnitude = magnitude * 10 + unsigned(s[i] - '0');
  }
  if (negative) {
    if (overflow || magnitude > static_cast<unsigned long long>(LONG_MAX) + 1) return LONG_MIN;
    return magnitude == static_cast<unsigned long long>(LONG_MAX) + 1
               ? LONG_MIN
               : -static_cast<long>(magnitude);
  }
  if (overflow || magnitude > static_cast<unsigned long long>(LONG_MAX)) return LONG_MAX;
  return static_cast<long>(magnitude);
}

bool boolValueOfString(std::string_view s) {
  std::size_t i = 0;
  while (i < s.size() && isBlank(s[i])) ++i;
  if (i >= s.size()) return false;
  char c = s[i];
  if (c == 'Y' || c == 'y' || c == 'T' || c == 't') return true;
  if (c == '+' || c == '-') ++i;
  while (i < s.size() && s[i] == '0') ++i;
  return i < s.size() && s[i] >= '1' && s[i] <= '9';
}

std::optional<long> Value::integerValue() const {
  switch (type()) {
    case Type::Bool:
      return *asBool() ? 1 : 0;
    case Type::Integer:
      return static_cast<long>(*asInteger());
    case Type::Real:
      return saturate(*asReal());
    case Type::String:
      return integerValueOfString(*asString());
    default:
      return std::nullopt;
  }
}

std::optional<bool> Value::boolValue() const {
  switch (type()) {
    case Type::Bool:
      return *asBool();
    case Type::Integer:
      return *asInteger() != 0;
    case Type::Real:
      return *asReal() != 0.0;
    case Type::String:
      return boolValueOfString(*asString());
    default:
      return std::nullopt;
  }
}

const Value* Value::find(std::string_view key) const {
  const base::Dictionary* d = asDictionary();
  if (!d) return nullptr;
  for (const auto& [k, v] : *d)
    if (k == key) return &v;
  return nullptr;
}

void Value::set(std::string key, Value v) {
  if (isNull()) v_ = base::Dictionary{};
  base::Dictionary* d = asDictionary();
  if (!d) return;
  for (auto& [k, e] : *d) {
    if (k == key) {
      e = std::move(v);
      return;
    }
  }
  d->emplace_back(std::move(key), std::move(v));
}

std::string describe(const Value& v) {
  std::string out;
  describeInto(out, v);
  return out;
}

}  // namespace base
