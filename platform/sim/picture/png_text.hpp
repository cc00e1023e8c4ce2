// A PNG's text chunks (tEXt): written after the header chunk, read back by key.
#pragma once

#include <map>
#include <string>

namespace sim::picture {

// `png` with a tEXt chunk for each key (Latin-1 keys of 1 to 79 characters).
std::string withTextChunks(const std::string& png,
                           const std::map<std::string, std::string>& chunks);
// The tEXt chunks of `png`.
std::map<std::string, std::string> textChunks(const std::string& png);

}  // namespace sim::picture
