#pragma once
// The checks of each reader, declared here and defined beside the layer they read for.

#include <vector>

#include "checks/fuzz_check.h"

namespace sylvora::fuzz {

std::vector<FuzzTarget> CommonTargets();    // text decoding, numbers, dates
std::vector<FuzzTarget> CorpusTargets();    // corpus files of every format family
std::vector<FuzzTarget> IndexingTargets();  // stop list, TDM file
std::vector<FuzzTarget> NetworkTargets();   // matrix file, Graphviz plain output
std::vector<FuzzTarget> AppTargets();       // link service reply, settings file, event file
std::vector<FuzzTarget> ImportTargets();    // JSON and named-column CSV exports

inline std::vector<FuzzTarget> AllTargets() {
  std::vector<FuzzTarget> all;
  for (auto part : {CommonTargets(), CorpusTargets(), IndexingTargets(), NetworkTargets(),
                    AppTargets(), ImportTargets()}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

}  // namespace sylvora::fuzz
