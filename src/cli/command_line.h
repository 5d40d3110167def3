#pragma once
// The arguments of one sylvora-cli command: positional values, "--name value" options and
// "--name" switches. Which names take a value is declared up front, so a typo is an error
// rather than a silently ignored word.

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace sylvora::cli {

// The largest count an option may give: counts are signed 32-bit numbers.
constexpr long long kWholeMax = 2147483647;

class CommandLine {
 public:
  // `valueOptions` take a value ("--unit h"); `switches` stand alone ("--radian").
  CommandLine(std::set<std::string> valueOptions, std::set<std::string> switches);

  // False, with Error(), on an unknown option or a missing value.
  bool Parse(const std::vector<std::string>& arguments);

  const std::vector<std::string>& Positional() const { return positional_; }
  bool Has(const std::string& name) const;
  // The last value given for an option, or `fallback`.
  std::string Value(const std::string& name, const std::string& fallback) const;
  // Every value given for an option, in order (an option may be repeated).
  std::vector<std::string> Values(const std::string& name) const;
  // The whole-number value of an option, or `fallback` when it is not given. The whole value
  // must be a decimal whole number from `min` to `max`: "1e12", "1abc", "1.5" and numbers out
  // of range give nullopt, with an Error() that names the option and its range.
  std::optional<long long> Number(const std::string& name, long long fallback, long long min,
                                  long long max);
  const std::string& Error() const { return error_; }

 private:
  std::set<std::string> valueOptions_;
  std::set<std::string> switches_;
  std::vector<std::string> positional_;
  std::map<std::string, std::string> values_;
  std::map<std::string, std::vector<std::string>> allValues_;
  std::set<std::string> given_;
  std::string error_;
};

}  // namespace sylvora::cli
