// Spoils each target's seed in a few thousand ways, the same ones in every run. For long runs build with
// clang and -DHOLLOWMERE_FUZZ=ON: the same targets then run under libFuzzer.

#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

#include "fuzz/targets.h"

namespace {

using namespace hollowmere::fuzz;

class TSpoiler {
 public:
  explicit TSpoiler(unsigned seed) : random_(seed) {}

  std::string spoil(std::string text) {
    for (std::size_t changes = 1 + below(6); changes > 0; --changes) change(text);
    return text;
  }

 private:
  std::size_t below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }

  char byte() {
    // Bytes that mean something to parsers come more often than others.
    static constexpr std::string_view marks = "\"'\\{}[](),:<>&/$.-+eE 019\r\n\t\0\x7f\x80\xc3\xff";
    return below(3) == 0 ? static_cast<char>(below(256)) : marks[below(marks.size())];
  }

  void change(std::string& text) {
    const std::size_t at = below(text.size() + 1);
    const std::size_t count = below(text.size() - at + 1);
    switch (below(6)) {
      case 0: text.insert(at, 1, byte()); break;
      case 1: text.erase(at, 1 + count / 4); break;
      case 2: text.resize(at); break;
      case 3: text.insert(at, text.substr(at, count)); break;
      case 4: text.insert(at, std::string(1 + below(300), byte())); break;
      default:
        if (at < text.size()) text[at] = byte();
    }
    if (text.size() > 4096) text.resize(4096);
  }

  std::mt19937 random_;
};

}  // namespace

int main(int argc, char** argv) {
  const std::string_view wanted = argc > 1 ? argv[1] : "";
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 3000;
  bool found = false;
  for (const TTarget& target : targets()) {
    if (!wanted.empty() && wanted != target.name) continue;
    found = true;
    target.run(target.seed);
    TSpoiler spoiler(1);
    for (int round = 0; round < rounds; ++round) target.run(spoiler.spoil(std::string(target.seed)));
    std::cout << target.name << ": " << rounds << " inputs\n";
  }
  return found ? 0 : 2;
}
