#pragma once
// The bytes of an import file (JSON or named-column CSV), unpacked when gzip-compressed.
//
// The buffer ends in kInputPadding bytes past Size() that belong to it (spaces), because the
// JSON parser reads up to that far past the end of what it is given. The importers may write
// cells over bytes they have finished reading, so the buffer is handed over, never shared.
//
// Errors name the file: a file that cannot be read, a corrupt gzip stream, or one that ends
// before its end marker (a truncated download). Nothing is kept of a stream that fails.

#include <cstddef>
#include <string>

#include "common/large_allocation.h"

namespace sylvora {

inline constexpr std::size_t kInputPadding = 64;

struct CorpusInput {
  ByteBuffer bytes;      // Size() is the content; Capacity() >= Size() + kInputPadding
  bool gzipped = false;  // the file was gzip-compressed
};

// True when `bytes` opens with the gzip magic number.
bool LooksGzipped(const char* bytes, std::size_t size);

// Reads `path` whole (unpacking gzip). `limit` caps the content kept (0: no cap): a capped read
// looks at the start of the file only and does not report a gzip stream cut short, for
// previews. False with `error` on failure.
bool ReadCorpusInput(const std::string& path, CorpusInput& input, std::string& error,
                     std::size_t limit = 0);

// The same over bytes already in memory (tests, previews); `name` appears in messages.
bool UnpackCorpusInput(const std::string& name, const char* bytes, std::size_t size,
                       CorpusInput& input, std::string& error, std::size_t limit = 0);

}  // namespace sylvora
