#pragma once
// Whole-file reading and buffered writing with errors a user can act on. Every message names
// the file and the reason ("Cannot open '/data/x.txt': No such file or directory").

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "common/large_allocation.h"

namespace sylvora {

// True when `path` names an existing entry that is not a folder and whose attributes can be
// read; any error gives false.
bool FileExists(const std::string& path);

// Reads the whole file into `bytes`. On failure returns false and sets `error`.
bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error);

// The same into a buffer that is not zero-filled first (for files of hundreds of megabytes).
bool ReadWholeFile(const std::string& path, ByteBuffer& bytes, std::string& error);

// Reads at most `limit` bytes from the start of a file.
bool ReadFilePrefix(const std::string& path, std::size_t limit, std::string& bytes,
                    std::string& error);

// Writes a file through a large buffer. Open() creates or replaces the file; Close() flushes
// and reports any write error that happened on the way. The destructor closes silently.
class FileWriter {
 public:
  FileWriter() = default;
  ~FileWriter();
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

  bool Open(const std::string& path, std::string& error);
  void Write(std::string_view text);
  // Writes `text` followed by a carriage return and line feed.
  void WriteLine(std::string_view text);
  bool Close(std::string& error);

 private:
  void Flush();

  std::FILE* file_ = nullptr;
  std::string path_;
  std::string buffer_;
  bool failed_ = false;
  int errorNumber_ = 0;
};

}  // namespace sylvora
