#include "common/data_files.h"

#include <filesystem>
#include <system_error>

#include "common/file_io.h"

namespace sylvora {
namespace {

namespace fs = std::filesystem;

// True when `path` is `folder` or lies under it (both made absolute and normal first).
bool IsWithin(const fs::path& path, const fs::path& folder) {
  std::error_code error;
  const fs::path inner = fs::weakly_canonical(path, error);
  if (error) return false;
  const fs::path outer = fs::weakly_canonical(folder, error);
  if (error || outer.empty()) return false;
  auto i = inner.begin();
  for (auto o = outer.begin(); o != outer.end(); ++o, ++i) {
    if (o->empty()) continue;  // the empty last part of a path ending in "/"
    if (i == inner.end() || *i != *o) return false;
  }
  return true;
}

}  // namespace

std::string ProgramFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return error ? std::string() : program.parent_path().string();
}

std::vector<std::string> DataFolders(const std::string& programFolder) {
  std::vector<std::string> folders;
  if (programFolder.empty()) return folders;
  folders.push_back((fs::path(programFolder) / SYLVORA_DATA_FROM_PROGRAM).lexically_normal());
  if (IsWithin(programFolder, SYLVORA_BUILD_DIR)) folders.push_back(SYLVORA_SOURCE_DATA_DIR);
  return folders;
}

std::string FindDataFile(const std::string& name, const std::string& programFolder) {
  for (const std::string& folder : DataFolders(programFolder)) {
    const fs::path path = fs::path(folder) / name;
    if (FileExists(path.string())) return path.string();
  }
  return {};
}

std::string FindDataFile(const std::string& name) { return FindDataFile(name, ProgramFolder()); }

}  // namespace sylvora
