// Property-list bytes to values and back, in XML or binary form: binary lists
// by our own reader and writer (bplist_reader, bplist_writer), XML through
// libplist. Untrusted input: anything that is not a well-formed property list
// decodes to nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/value.hpp"
#include "sys/files.hpp"

namespace sim {

std::optional<base::Value> decodePlist(std::string_view bytes);
// Null values inside collections are left out (property lists have no null);
// a null root encodes as an empty dictionary.
std::string encodePlist(const base::Value& value, sys::PlistFormat format);

}  // namespace sim
