#pragma once
// The property checks behind every fuzz target. A check takes one input of arbitrary bytes,
// feeds it to one reader of outside bytes, and returns "" when everything the reader produced
// is consistent, or a sentence naming what is not. Crashes, hangs and leaks are found by the
// fuzzer and the sanitizers; the checks catch wrong results that do not crash.
//
// The same checks run twice: inside libFuzzer executables (fuzz_<name>, the fuzz preset), and
// in the ordinary test suite over the seed and regression inputs kept under tests/fuzz/.

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace sylvora::fuzz {

using Check = std::function<std::string(std::string_view input)>;

struct FuzzTarget {
  std::string_view name;  // also the folder of its seeds and regression inputs
  Check check;
};

// Every target, in a fixed order.
std::span<const FuzzTarget> Targets();

// The target of that name; nullptr when there is none.
const FuzzTarget* FindTarget(std::string_view name);

// A per-process scratch folder for readers that only take file paths; made on first use and
// removed at exit.
const std::string& ScratchFolder();

// Writes `bytes` to ScratchFolder() + "/" + name and returns the full path.
std::string WriteScratchFile(std::string_view name, std::string_view bytes);

}  // namespace sylvora::fuzz
