// libFuzzer's side: runs the target that TIDYFOLD_FUZZ_TARGET names; see ./fuzz.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/fuzz_targets.h"

namespace {

const tidyfold::Fuzz_Target* Chosen() {
  const char* const name = std::getenv("TIDYFOLD_FUZZ_TARGET");
  for (const tidyfold::Fuzz_Target& target : tidyfold::Fuzz_Targets()) {
    if (name == nullptr) std::printf("%s\n", std::string(target.name).c_str());
    if (name != nullptr && target.name == name) return &target;
  }
  std::exit(name == nullptr ? 0 : 2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const tidyfold::Fuzz_Target* const target = Chosen();
  target->run(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
