#include "common/file_io.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <vector>

#include "common/parallel.h"

namespace sylvora {
namespace {

constexpr std::size_t kWriteBuffer = 1 << 20;

std::string Describe(std::string_view action, const std::string& path, int errorNumber) {
  return std::string(action) + " '" + path + "': " + std::strerror(errorNumber);
}

// Opens a file that is not a folder for reading; nullptr with `error` set otherwise.
std::FILE* OpenForReading(const std::string& path, struct stat& info, std::string& error) {
  if (::stat(path.c_str(), &info) != 0) {
    error = Describe("Cannot open", path, errno);
    return nullptr;
  }
  if (S_ISDIR(info.st_mode)) {
    error = "Cannot read '" + path + "': it is a folder";
    return nullptr;
  }
  // A device or pipe (/dev/zero, a FIFO) may never end: only regular files are read.
  if (!S_ISREG(info.st_mode)) {
    error = "Cannot read '" + path + "': it is not a regular file";
    return nullptr;
  }
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) error = Describe("Cannot open", path, errno);
  return file;
}

bool ReadOpenFile(std::FILE* file, const std::string& path, const struct stat& info,
                  std::size_t limit, ByteBuffer& bytes, std::string& error);

// Below this a file is read in one go.
constexpr std::size_t kMinBytesPerReader = std::size_t{8} << 20;

// Reads the first `size` bytes of a large file by ranges on the cores at once: filling fresh
// memory costs more than the copy, as the kernel clears each new page in the thread that first
// writes it. Returns how many bytes from the start were read without a gap; an error or a
// file that shrank stops there, and the ordinary reading after it says what went wrong.
std::size_t ReadByRanges(std::FILE* file, char* data, std::size_t size) {
  const std::vector<std::size_t> bounds = SplitRange(size, WorkerCount(), kMinBytesPerReader);
  if (bounds.size() < 3) return 0;
  const int descriptor = ::fileno(file);
  std::vector<std::size_t> got(bounds.size() - 1, 0);
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    std::size_t at = begin;
    while (at < end) {
      const ssize_t n = ::pread(descriptor, data + at, end - at, static_cast<off_t>(at));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      at += static_cast<std::size_t>(n);
    }
    got[part] = at - begin;
  });
  std::size_t filled = 0;
  for (std::size_t part = 0; part < got.size(); ++part) {
    filled += got[part];
    if (got[part] < bounds[part + 1] - bounds[part]) break;
  }
  return filled;
}

// Reads up to `limit` bytes into a buffer that is not zero-filled first. A file too large for
// memory is an error like any other, not an abort.
bool ReadUpTo(const std::string& path, std::size_t limit, ByteBuffer& bytes, std::string& error) {
  struct stat info {};
  std::FILE* file = OpenForReading(path, info, error);
  if (file == nullptr) return false;
  try {
    return ReadOpenFile(file, path, info, limit, bytes, error);
  } catch (const std::bad_alloc&) {
    std::fclose(file);
    bytes = ByteBuffer();
    error = "Cannot read '" + path + "': it does not fit in memory";
    return false;
  }
}

bool ReadOpenFile(std::FILE* file, const std::string& path, const struct stat& info,
                  std::size_t limit, ByteBuffer& bytes, std::string& error) {
  // Room for the known size and a little more, so that a file growing meanwhile is noticed.
  const std::size_t known = S_ISREG(info.st_mode) ? static_cast<std::size_t>(info.st_size) : 0;
  bytes = ByteBuffer(std::min(limit, known + 65536));
  std::size_t filled = ReadByRanges(file, bytes.Data(), std::min(limit, known));
  bool ok = true;
  if (filled > 0 && ::fseeko(file, static_cast<off_t>(filled), SEEK_SET) != 0) {
    error = Describe("Cannot read", path, errno);
    ok = false;
  }
  while (ok && filled < limit) {
    if (filled == bytes.Capacity()) {
      ByteBuffer larger(std::min(limit, bytes.Capacity() * 2));
      std::memcpy(larger.Data(), bytes.Data(), filled);
      bytes = std::move(larger);
    }
    const std::size_t got = std::fread(bytes.Data() + filled, 1, bytes.Capacity() - filled, file);
    filled += got;
    if (got == 0) {
      if (std::ferror(file)) {
        error = Describe("Cannot read", path, errno);
        ok = false;
      }
      break;
    }
  }
  std::fclose(file);
  bytes.SetSize(filled);
  return ok;
}

bool ReadUpTo(const std::string& path, std::size_t limit, std::string& bytes, std::string& error) {
  ByteBuffer buffer;
  const bool ok = ReadUpTo(path, limit, buffer, error);
  bytes.assign(buffer.Data() == nullptr ? "" : buffer.Data(), buffer.Size());
  return ok;
}

}  // namespace

bool ReadWholeFile(const std::string& path, ByteBuffer& bytes, std::string& error) {
  return ReadUpTo(path, static_cast<std::size_t>(-1), bytes, error);
}

bool FileExists(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && !S_ISDIR(info.st_mode);
}

bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error) {
  return ReadUpTo(path, static_cast<std::size_t>(-1), bytes, error);
}

bool ReadFilePrefix(const std::string& path, std::size_t limit, std::string& bytes,
                    std::string& error) {
  return ReadUpTo(path, limit, bytes, error);
}

FileWriter::~FileWriter() {
  if (file_ != nullptr) std::fclose(file_);
}

bool FileWriter::Open(const std::string& path, std::string& error) {
  path_ = path;
  file_ = std::fopen(path.c_str(), "wb");
  if (file_ == nullptr) {
    error = Describe("Cannot create", path, errno);
    return false;
  }
  buffer_.reserve(kWriteBuffer);
  return true;
}

void FileWriter::Write(std::string_view text) {
  if (buffer_.size() + text.size() > kWriteBuffer) Flush();
  if (text.size() >= kWriteBuffer) {
    if (!failed_ && std::fwrite(text.data(), 1, text.size(), file_) != text.size()) {
      failed_ = true;
      errorNumber_ = errno;
    }
    return;
  }
  buffer_.append(text);
}

void FileWriter::WriteLine(std::string_view text) {
  Write(text);
  Write("\r\n");
}

void FileWriter::Flush() {
  if (file_ == nullptr || buffer_.empty()) return;
  if (!failed_ && std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) {
    failed_ = true;
    errorNumber_ = errno;
  }
  buffer_.clear();
}

bool FileWriter::Close(std::string& error) {
  if (file_ == nullptr) return !failed_;
  Flush();
  if (std::fclose(file_) != 0 && !failed_) {
    failed_ = true;
    errorNumber_ = errno;
  }
  file_ = nullptr;
  if (failed_) error = Describe("Cannot write", path_, errorNumber_);
  return !failed_;
}

}  // namespace sylvora
