#include "layout/layout_folder.h"

#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <vector>

namespace sylvora {
namespace {

std::string MakeFolder() {
  std::string base = "/tmp";
  if (const char* tmp = std::getenv("TMPDIR"); tmp != nullptr && *tmp != '\0') base = tmp;
  std::string pattern = base + "/sylvora-layout-XXXXXX";
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  if (::mkdtemp(buffer.data()) == nullptr) return {};
  return std::string(buffer.data());
}

// Owns the folder for the life of the process.
class FolderOwner {
 public:
  FolderOwner() : path_(MakeFolder()) {}
  ~FolderOwner() {
    if (path_.empty()) return;
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  FolderOwner(const FolderOwner&) = delete;
  FolderOwner& operator=(const FolderOwner&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace

const std::string& DefaultLayoutFolder() {
  static const FolderOwner owner;
  return owner.Path();
}

}  // namespace sylvora

namespace sylvora {

std::string DefaultGraphvizFolder() {
  namespace fs = std::filesystem;
  std::error_code error;
  if (const char* path = std::getenv("PATH"); path != nullptr) {
    std::string_view rest = path;
    while (!rest.empty()) {
      const std::size_t colon = rest.find(':');
      const std::string folder(rest.substr(0, colon));
      rest = colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
      if (folder.empty()) continue;
      const std::string program = folder + "/sfdp";
      if (fs::is_regular_file(program, error) && ::access(program.c_str(), X_OK) == 0) {
        return folder;
      }
    }
  }
  const fs::path self = fs::read_symlink("/proc/self/exe", error);
  return (error ? fs::current_path(error) : self.parent_path()).string() + "/bin";
}

}  // namespace sylvora
