#include "layout/layout_scripts.h"

#include <signal.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <thread>

namespace sylvora::testing {
namespace {

// A zombie still answers kill(pid, 0); its state letter in /proc tells it apart.
bool IsZombie(int pid) {
  std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
  std::string line;
  if (!std::getline(stat, line)) return true;
  const auto close = line.rfind(')');
  return close == std::string::npos || close + 2 >= line.size() || line[close + 2] == 'Z';
}

}  // namespace

std::string WriteScript(const TempDir& dir, std::string_view name, std::string_view body) {
  const std::string path = dir.WriteFile(name, "#!/bin/sh\n" + std::string(body) + "\n");
  ::chmod(path.c_str(), 0755);
  return path;
}

bool ProcessGone(int pid) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while (std::chrono::steady_clock::now() < end) {
    if (::kill(pid, 0) != 0 && errno == ESRCH) return true;
    if (IsZombie(pid)) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return false;
}

}  // namespace sylvora::testing
