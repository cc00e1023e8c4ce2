// A driver for fuzz targets where libFuzzer is not available (g++): it runs
// every file of the given corpus folders, then a bounded number of seeded
// mutations of them. It takes libFuzzer's -runs=N and -seed=N, so the same
// command line works for both builds.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void run(const std::string& input) {
  if (const char* dump = std::getenv("FUZZ_LAST_INPUT"))
    std::ofstream(dump, std::ios::binary) << input;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

std::string mutate(std::string s, std::mt19937_64& rng, const std::vector<std::string>& corpus) {
  auto pick = [&](std::size_t n) { return n ? std::size_t(rng() % n) : 0; };
  int edits = 1 + int(rng() % 4);
  for (int e = 0; e < edits; ++e) {
    switch (rng() % 6) {
      case 0:  // flip a bit
        if (!s.empty()) s[pick(s.size())] ^= char(1 << (rng() % 8));
        break;
      case 1:  // truncate
        s.resize(pick(s.size() + 1));
        break;
      case 2:  // overwrite a byte with an interesting value
        if (!s.empty()) s[pick(s.size())] = "\x00\xff\x7f\x80\x01<>/"[rng() % 8];
        break;
      case 3:  // duplicate a slice
        if (!s.empty()) {
          std::size_t a = pick(s.size()), n = pick(s.size() - a) + 1;
          s.insert(pick(s.size()), s.substr(a, n));
        }
        break;
      case 4:  // splice with another input
        if (!corpus.empty()) {
          const std::string& o = corpus[pick(corpus.size())];
          s = s.substr(0, pick(s.size() + 1)) + o.substr(pick(o.size() + 1));
        }
        break;
      default:  // erase a slice
        if (!s.empty()) {
          std::size_t a = pick(s.size());
          s.erase(a, pick(s.size() - a) + 1);
        }
    }
  }
  return s;
}

}  // namespace

int main(int argc, char** argv) {
  long runs = 1000;
  std::uint64_t seed = 1;
  std::vector<std::string> corpus;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if (a.rfind("-runs=", 0) == 0)
      runs = std::atol(a.c_str() + 6);
    else if (a.rfind("-seed=", 0) == 0)
      seed = std::strtoull(a.c_str() + 6, nullptr, 10);
    else if (a[0] == '-')
      continue;  // other libFuzzer flags mean nothing here
    else {
      std::vector<std::filesystem::path> files;
      if (std::filesystem::is_directory(a)) {
        for (const auto& entry : std::filesystem::directory_iterator(a))
          files.push_back(entry.path());
      } else {
        files.push_back(a);
      }
      for (const auto& f : files) {
        std::ifstream in(f, std::ios::binary);
        std::ostringstream s;
        s << in.rdbuf();
        corpus.push_back(s.str());
      }
    }
  }
  for (const std::string& c : corpus) run(c);
  std::mt19937_64 rng(seed);
  for (long i = 0; i < runs; ++i) {
    std::string base = corpus.empty() ? std::string() : corpus[rng() % corpus.size()];
    run(mutate(base, rng, corpus));
  }
  std::printf("fuzz: %zu corpus inputs and %ld mutations ran clean (seed %llu)\n", corpus.size(),
              runs, static_cast<unsigned long long>(seed));
  return 0;
}
