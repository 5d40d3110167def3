#include "cli/command_line.h"

#include <charconv>
#include <string>

namespace sylvora::cli {

CommandLine::CommandLine(std::set<std::string> valueOptions, std::set<std::string> switches)
    : valueOptions_(std::move(valueOptions)), switches_(std::move(switches)) {}

bool CommandLine::Parse(const std::vector<std::string>& arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (!argument.starts_with("--")) {
      positional_.push_back(argument);
      continue;
    }
    const std::string name = argument.substr(2);
    if (switches_.contains(name)) {
      given_.insert(name);
    } else if (valueOptions_.contains(name)) {
      if (i + 1 >= arguments.size()) {
        error_ = "Option --" + name + " needs a value";
        return false;
      }
      values_[name] = arguments[++i];
      allValues_[name].push_back(values_[name]);
      given_.insert(name);
    } else {
      error_ = "Unknown option " + argument;
      return false;
    }
  }
  return true;
}

bool CommandLine::Has(const std::string& name) const { return given_.contains(name); }

std::string CommandLine::Value(const std::string& name, const std::string& fallback) const {
  const auto it = values_.find(name);
  return it == values_.end() ? fallback : it->second;
}

std::vector<std::string> CommandLine::Values(const std::string& name) const {
  const auto it = allValues_.find(name);
  return it == allValues_.end() ? std::vector<std::string>() : it->second;
}

std::optional<long long> CommandLine::Number(const std::string& name, long long fallback,
                                             long long min, long long max) {
  const auto it = values_.find(name);
  if (it == values_.end()) return fallback;
  long long value = 0;
  const std::string& text = it->second;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size() || text.empty() || value < min ||
      value > max) {
    error_ = "Option --" + name + " takes a whole number from " + std::to_string(min) + " to " +
             std::to_string(max) + ", not \"" + text + "\"";
    return std::nullopt;
  }
  return value;
}

}  // namespace sylvora::cli
