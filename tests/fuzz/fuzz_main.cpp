// libFuzzer entry of one target: SYLVORA_FUZZ_TARGET names the check this executable runs.
// A failed check aborts, so that the fuzzer keeps the input that broke it.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "checks/fuzz_check.h"

namespace {

const sylvora::fuzz::FuzzTarget& Target() {
  static const sylvora::fuzz::FuzzTarget* target = sylvora::fuzz::FindTarget(SYLVORA_FUZZ_TARGET);
  if (target == nullptr) {
    std::fprintf(stderr, "no fuzz target named %s\n", SYLVORA_FUZZ_TARGET);
    std::abort();
  }
  return *target;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string failure =
      Target().check(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!failure.empty()) {
    std::fprintf(stderr, "fuzz check %s failed: %s\n", SYLVORA_FUZZ_TARGET, failure.c_str());
    std::abort();
  }
  return 0;
}
