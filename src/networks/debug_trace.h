#pragma once
// The proximity networks' diagnostic trace: timing and failure lines meant for a developer
// ("MST computed in 0.25 secs", "MST missing node 7"), never shown to a user. It is off unless
// a sink is set; while off, no line is even formatted.
//
// A trace is a value: a ProximityMatrix holds one and hands it on to the matrices that its
// transforms return. Copying a trace shares its sink. Calling Line from several threads is as
// safe as the sink is.

#include <concepts>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace sylvora {

class DebugTrace {
 public:
  using Sink = std::function<void(std::string_view line)>;

  // Off.
  DebugTrace() = default;
  explicit DebugTrace(Sink sink) : sink_(std::move(sink)) {}

  bool Enabled() const { return static_cast<bool>(sink_); }

  // Writes one line made of `parts` (texts, whole numbers, or floating-point numbers written
  // in the general number form), when a sink is set.
  template <typename... Parts>
  void Line(const Parts&... parts) const {
    if (!sink_) return;
    std::string line;
    (Append(line, parts), ...);
    sink_(line);
  }

 private:
  static void Append(std::string& line, std::string_view text) { line += text; }
  static void Append(std::string& line, const char* text) { line += text; }
  static void Append(std::string& line, const std::string& text) { line += text; }
  template <std::integral Number>
  static void Append(std::string& line, Number number) {
    line += std::to_string(number);
  }
  static void Append(std::string& line, double number);

  Sink sink_;
};

}  // namespace sylvora
