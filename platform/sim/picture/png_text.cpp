// PNG text chunks: the picture keeps the names of the symbols it drew as
// stand-ins. Chunk layout: length (big-endian), type, data, CRC-32 of type
// and data.
#include "sim/picture/png_text.hpp"

#include <array>
#include <cstdint>

namespace sim::picture {
namespace {

constexpr std::size_t kSignature = 8;

std::uint32_t crc32(const std::string& bytes) {
  static const std::array<std::uint32_t, 256> table = [] {
    std::array<std::uint32_t, 256> t{};
    for (std::uint32_t n = 0; n < 256; ++n) {
      std::uint32_t c = n;
      for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      t[n] = c;
    }
    return t;
  }();
  std::uint32_t c = 0xFFFFFFFFu;
  for (unsigned char b : bytes) c = table[(c ^ b) & 0xFF] ^ (c >> 8);
  return c ^ 0xFFFFFFFFu;
}

void put32(std::string& out, std::uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out += char((v >> shift) & 0xFF);
}

std::uint32_t get32(const std::string& s, std::size_t at) {
  std::uint32_t v = 0;
  for (std::size_t i = 0; i < 4; ++i) v = (v << 8) | static_cast<unsigned char>(s[at + i]);
  return v;
}

}  // namespace

std::string withTextChunks(const std::string& png,
                           const std::map<std::string, std::string>& chunks) {
  if (png.size() < kSignature + 12) return png;
  std::size_t afterHeader = kSignature + 12 + get32(png, kSignature);
  std::string inserted;
  for (const auto& [key, value] : chunks) {
    std::string body = "tEXt" + key + '\0' + value;
    put32(inserted, std::uint32_t(body.size() - 4));
    inserted += body;
    put32(inserted, crc32(body));
  }
  return png.substr(0, afterHeader) + inserted + png.substr(afterHeader);
}

std::map<std::string, std::string> textChunks(const std::string& png) {
  std::map<std::string, std::string> out;
  for (std::size_t at = kSignature; at + 12 <= png.size();) {
    std::uint32_t length = get32(png, at);
    if (at + 12 + length > png.size()) break;
    if (png.compare(at + 4, 4, "tEXt") == 0) {
      std::string body = png.substr(at + 8, length);
      std::size_t nul = body.find('\0');
      if (nul != std::string::npos) out[body.substr(0, nul)] = body.substr(nul + 1);
    }
    at += 12 + length;
  }
  return out;
}

}  // namespace sim::picture
