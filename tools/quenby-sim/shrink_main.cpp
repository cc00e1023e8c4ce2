// quenby-picture-shrink IN.png OUT.png WIDTH: a smaller copy of a picture,
// for the README.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

#include "sim/picture/shrink.hpp"

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: quenby-picture-shrink IN.png OUT.png WIDTH\n";
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  std::string png((std::istreambuf_iterator<char>(in)), {});
  std::string small = sim::picture::shrunk(png, std::atoi(argv[3]));
  if (small.empty()) {
    std::cerr << "quenby-picture-shrink: cannot read " << argv[1] << "\n";
    return 1;
  }
  std::ofstream(argv[2], std::ios::binary) << small;
  return 0;
}
