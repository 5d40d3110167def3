#include "fuzz_check.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "checks/target_list.h"

namespace sylvora::fuzz {
namespace {

class Scratch {
 public:
  Scratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sylvora-fuzz-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make " + pattern);
    path_ = pattern;
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace

std::span<const FuzzTarget> Targets() {
  static const std::vector<FuzzTarget> targets = AllTargets();
  return targets;
}

const FuzzTarget* FindTarget(std::string_view name) {
  const auto targets = Targets();
  const auto it = std::find_if(targets.begin(), targets.end(),
                               [&](const FuzzTarget& t) { return t.name == name; });
  return it == targets.end() ? nullptr : &*it;
}

const std::string& ScratchFolder() {
  static const Scratch scratch;
  return scratch.Path();
}

std::string WriteScratchFile(std::string_view name, std::string_view bytes) {
  const std::string path = ScratchFolder() + "/" + std::string(name);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + path);
  return path;
}

}  // namespace sylvora::fuzz
