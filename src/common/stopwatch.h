#pragma once
// Wall-clock timing of workflow stages, for the stage times that reports and the CLI print.

#include <chrono>
#include <string>
#include <vector>

namespace sylvora {

struct StageTiming {
  std::string stage;
  double seconds = 0.0;
};

class Stopwatch {
 public:
  Stopwatch() : start_(std::chrono::steady_clock::now()) {}

  // Seconds since construction or the last Lap().
  double Lap() {
    const auto now = std::chrono::steady_clock::now();
    const double seconds = std::chrono::duration<double>(now - start_).count();
    start_ = now;
    return seconds;
  }

 private:
  std::chrono::steady_clock::time_point start_;
};

// Collects the time of each named stage of a workflow.
class StageClock {
 public:
  void Finish(std::string stage) { stages_.push_back({std::move(stage), watch_.Lap()}); }
  const std::vector<StageTiming>& Stages() const { return stages_; }

 private:
  Stopwatch watch_;
  std::vector<StageTiming> stages_;
};

}  // namespace sylvora
