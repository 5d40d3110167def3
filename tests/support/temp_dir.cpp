#include "support/temp_dir.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace sylvora::testing {

TempDir::TempDir() {
  std::random_device seed;
  const auto base = std::filesystem::temp_directory_path();
  for (int attempt = 0; attempt < 100; ++attempt) {
    auto candidate = base / ("sylvora-test-" + std::to_string(seed()));
    if (std::filesystem::create_directory(candidate)) {
      path_ = candidate;
      return;
    }
  }
  throw std::runtime_error("cannot create a temporary folder in " + base.string());
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::WriteFile(std::string_view name, std::string_view bytes) const {
  const auto file = path_ / name;
  std::ofstream out(file, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return file.string();
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::filesystem::path SourceDir() {
  if (const char* dir = std::getenv("SYLVORA_SOURCE_DIR"); dir != nullptr && *dir != '\0') {
    return dir;
  }
  std::error_code error;
  auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  for (; !error && !folder.empty() && folder != folder.root_path(); folder = folder.parent_path()) {
    if (std::filesystem::exists(folder / "data" / "common_words.txt") &&
        std::filesystem::is_directory(folder / "tests")) {
      return folder;
    }
  }
  return SYLVORA_CONFIGURED_SOURCE_DIR;
}

}  // namespace sylvora::testing
