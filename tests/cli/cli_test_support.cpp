#include "cli_test_support.h"

#include <sstream>

#include "support/temp_dir.h"

namespace sylvora::cli {

CommandRun RunCommand(Command command, const std::vector<std::string>& arguments) {
  std::ostringstream out, err;
  const int code = command(arguments, out, err);
  return {code, out.str(), err.str()};
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::string DataFile(const char* name) { return (testing::SourceDir() / "data" / name).string(); }

std::string StopList() { return DataFile("common_words.txt"); }

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::string part;
  std::istringstream stream(text);
  while (std::getline(stream, part, separator)) parts.push_back(part);
  if (!text.empty() && text.back() == separator) parts.push_back("");
  return parts;
}

}  // namespace sylvora::cli
