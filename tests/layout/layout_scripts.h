#pragma once
// Small shell scripts that stand in for a Graphviz program, so that every way a layout run
// can go wrong happens on cue.

#include <string>
#include <string_view>

#include "support/temp_dir.h"

namespace sylvora::testing {

// Writes an executable script `name` (a "#!/bin/sh" line, then `body`) into `dir` and returns
// its path.
std::string WriteScript(const TempDir& dir, std::string_view name, std::string_view body);

// True when process `pid` has ended (or ends within 10 s).
bool ProcessGone(int pid);

}  // namespace sylvora::testing
