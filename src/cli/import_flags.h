#pragma once
// The flags every corpus-reading command shares for JSON and CSV files:
//   --map ROLE=COLUMN   (repeatable, or comma-separated) which CSV column plays a role
//   --skip-bad          skip bad records (counted) instead of failing

#include <ostream>
#include <set>
#include <string>

#include "cli/command_line.h"
#include "session/corpus_load.h"

namespace sylvora::cli {

inline constexpr const char* kImportFlagsUsage =
    "  --map ROLE=COLUMN  CSV column for a role (date, user, text, link, positive, negative,\n"
    "                     id, name, retweets); repeat it or separate pairs with commas\n"
    "  --skip-bad         skip bad JSON lines or CSV records, reporting how many\n";

// Adds "map" to the value options and "skip-bad" to the switches.
void AddImportFlags(std::set<std::string>& valueOptions, std::set<std::string>& switches);

// Reads the flags into `options`; false with a message on `err` for a malformed --map.
bool ReadImportFlags(const CommandLine& line, LoadOptions& options, std::ostream& err);

}  // namespace sylvora::cli
