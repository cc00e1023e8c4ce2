// Random bytes from the device's seeded source, so a seed replays a run.
#include "sim/process.hpp"
#include "sys/random.hpp"

namespace sys {

std::string randomBytes(std::size_t n) {
  std::mt19937_64& source = sim::currentProcess().device().random();
  std::string out(n, '\0');
  for (char& c : out) c = static_cast<char>(source() & 0xff);
  return out;
}

}  // namespace sys
