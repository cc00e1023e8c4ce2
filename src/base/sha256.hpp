// SHA-256 (FIPS 180-4) of a byte string, for the salted names the system
// keeps where anyone holding the phone could read them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace base {

std::array<std::uint8_t, 32> sha256(std::string_view bytes);
// The digest as 64 lowercase hexadecimal digits.
std::string sha256Hex(std::string_view bytes);
// Lowercase hexadecimal digits of `bytes`.
std::string hexString(std::string_view bytes);

}  // namespace base
