// The entry of libFuzzer; HOLLOWMERE_FUZZ_TARGET names the target.

#include <cstdint>
#include <cstdlib>

#include "fuzz/targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const char* wanted = std::getenv("HOLLOWMERE_FUZZ_TARGET");
  for (const auto& target : hollowmere::fuzz::targets())
    if (wanted && target.name == wanted) target.run({reinterpret_cast<const char*>(data), size});
  return 0;
}
