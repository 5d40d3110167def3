#pragma once
// A fresh folder for one test, removed with everything in it when the object goes.

#include <filesystem>
#include <string>
#include <string_view>

namespace sylvora::testing {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& Path() const { return path_; }

  // Writes `bytes` to a file of that name in the folder and returns its full path.
  std::string WriteFile(std::string_view name, std::string_view bytes) const;

 private:
  std::filesystem::path path_;
};

// The whole content of a file (empty when it cannot be read).
std::string ReadFile(const std::filesystem::path& path);

// The repository's root folder (for data/ files): SYLVORA_SOURCE_DIR when set, else the nearest
// folder above the test binary that holds data/ and tests/, else the folder the build was
// configured from. A binary run by hand from the build folder finds the same files as under CTest.
std::filesystem::path SourceDir();

}  // namespace sylvora::testing
