#include "cli/import_flags.h"

#include <string_view>

namespace sylvora::cli {

void AddImportFlags(std::set<std::string>& valueOptions, std::set<std::string>& switches) {
  valueOptions.insert("map");
  switches.insert("skip-bad");
}

bool ReadImportFlags(const CommandLine& line, LoadOptions& options, std::ostream& err) {
  options.skipBad = line.Has("skip-bad");
  for (const std::string& value : line.Values("map")) {
    std::string_view rest = value;
    while (!rest.empty()) {
      const std::size_t comma = rest.find(',');
      const std::string_view pair = rest.substr(0, comma);
      const std::size_t equals = pair.find('=');
      if (equals == std::string_view::npos || equals == 0 || equals + 1 == pair.size()) {
        err << "--map takes ROLE=COLUMN, not \"" << pair << "\"\n";
        return false;
      }
      const std::string role(pair.substr(0, equals));
      if (!CsvRoleFromName(role)) {
        err << "--map: unknown role \"" << role
            << "\" (roles: date, user, text, link, positive, negative, id, name, retweets)\n";
        return false;
      }
      options.columnMap.emplace_back(role, std::string(pair.substr(equals + 1)));
      if (comma == std::string_view::npos) break;
      rest.remove_prefix(comma + 1);
    }
  }
  return true;
}

}  // namespace sylvora::cli
