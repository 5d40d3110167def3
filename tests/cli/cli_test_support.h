#pragma once
// What the command tests share: a command run with its exit code and both outputs captured,
// text search, and the repository's data files.

#include <ostream>
#include <string>
#include <vector>

namespace sylvora::cli {

struct CommandRun {
  int code;
  std::string out;
  std::string err;
};

using Command = int (*)(const std::vector<std::string>&, std::ostream&, std::ostream&);

CommandRun RunCommand(Command command, const std::vector<std::string>& arguments);
bool Has(const std::string& text, const std::string& part);
// A file of the repository's data folder, and its stop list.
std::string DataFile(const char* name);
std::string StopList();
// `text` cut at each `separator` (a trailing one gives a last empty part).
std::vector<std::string> Split(const std::string& text, char separator);

}  // namespace sylvora::cli
