// Random bytes on iOS: arc4random_buf, the system's cryptographic source.
#include "sys/random.hpp"

#include <stdlib.h>

namespace sys {

std::string randomBytes(std::size_t n) {
  std::string out(n, '\0');
  arc4random_buf(out.data(), n);
  return out;
}

}  // namespace sys
