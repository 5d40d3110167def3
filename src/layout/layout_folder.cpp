#include "layout/layout_folder.h"

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
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
