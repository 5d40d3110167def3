#include "corpus/corpus_input.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>

#include "common/file_io.h"

namespace sylvora {
namespace {

void Pad(ByteBuffer& buffer) {
  std::memset(buffer.Data() + buffer.Size(), ' ', buffer.Capacity() - buffer.Size());
}

// A buffer of `capacity` content bytes plus padding, holding the first `size` bytes of `old`.
ByteBuffer Regrow(ByteBuffer& old, std::size_t size, std::size_t capacity) {
  ByteBuffer larger(capacity + kInputPadding);
  if (size > 0) std::memcpy(larger.Data(), old.Data(), size);
  larger.SetSize(size);
  return larger;
}

// The length a gzip member says it unpacks to (modulo 4 GiB), from its last four bytes.
std::size_t StatedLength(const unsigned char* bytes, std::size_t size) {
  if (size < 18) return 0;
  const unsigned char* t = bytes + size - 4;
  return static_cast<std::size_t>(t[0]) | static_cast<std::size_t>(t[1]) << 8 |
         static_cast<std::size_t>(t[2]) << 16 | static_cast<std::size_t>(t[3]) << 24;
}

bool Gunzip(const std::string& name, const char* bytes, std::size_t size, CorpusInput& input,
            std::string& error, std::size_t limit) {
  z_stream stream{};
  if (inflateInit2(&stream, 15 + 16) != Z_OK) {
    error = "Cannot unpack '" + name + "': zlib could not start";
    return false;
  }
  const auto* in = reinterpret_cast<const unsigned char*>(bytes);
  std::size_t capacity = std::max<std::size_t>(StatedLength(in, size), size * 4) + 4096;
  if (limit > 0) capacity = std::min(capacity, limit);
  ByteBuffer out(capacity + kInputPadding);
  std::size_t produced = 0;
  std::size_t consumed = 0;
  bool finished = false;
  int status = Z_OK;
  while (true) {
    if (limit > 0 && produced >= limit) {
      finished = true;
      break;
    }
    if (produced == capacity) {
      capacity = limit > 0 ? std::min(capacity * 2, limit) : capacity * 2;
      out = Regrow(out, produced, capacity);
    }
    const std::size_t inChunk = std::min<std::size_t>(size - consumed, 1u << 30);
    const std::size_t outChunk = std::min<std::size_t>(capacity - produced, 1u << 30);
    stream.next_in = const_cast<unsigned char*>(in + consumed);
    stream.avail_in = static_cast<uInt>(inChunk);
    stream.next_out = reinterpret_cast<unsigned char*>(out.Data() + produced);
    stream.avail_out = static_cast<uInt>(outChunk);
    status = inflate(&stream, Z_NO_FLUSH);
    consumed += inChunk - stream.avail_in;
    produced += outChunk - stream.avail_out;
    if (status == Z_STREAM_END) {
      // Concatenated members unpack one after the other; trailing zero bytes are tolerated.
      const std::size_t rest = size - consumed;
      if (rest >= 2 && LooksGzipped(bytes + consumed, rest)) {
        inflateReset(&stream);
        continue;
      }
      finished = true;
      break;
    }
    if (status == Z_BUF_ERROR && consumed == size) {
      // Input ended inside the stream: a preview reads only the start of the file.
      finished = limit > 0;
      break;
    }
    if (status != Z_OK && status != Z_BUF_ERROR) break;
  }
  const std::string reason = stream.msg != nullptr ? stream.msg : "";
  inflateEnd(&stream);
  if (!finished) {
    if (status == Z_BUF_ERROR || status == Z_OK) {
      error = "'" + name + "' is a truncated gzip stream: it ends after " +
              std::to_string(produced) + " unpacked bytes without its end marker";
    } else {
      error = "'" + name + "' is not a valid gzip stream (" +
              (reason.empty() ? std::string("corrupt data") : reason) + ") after " +
              std::to_string(produced) + " unpacked bytes";
    }
    return false;
  }
  out.SetSize(std::min(produced, limit > 0 ? limit : produced));
  Pad(out);
  input.bytes = std::move(out);
  input.gzipped = true;
  return true;
}

}  // namespace

bool LooksGzipped(const char* bytes, std::size_t size) {
  return size >= 2 && static_cast<unsigned char>(bytes[0]) == 0x1F &&
         static_cast<unsigned char>(bytes[1]) == 0x8B;
}

bool UnpackCorpusInput(const std::string& name, const char* bytes, std::size_t size,
                       CorpusInput& input, std::string& error, std::size_t limit) {
  if (LooksGzipped(bytes, size)) return Gunzip(name, bytes, size, input, error, limit);
  const std::size_t kept = limit > 0 ? std::min(size, limit) : size;
  ByteBuffer copy(kept + kInputPadding);
  if (kept > 0) std::memcpy(copy.Data(), bytes, kept);
  copy.SetSize(kept);
  Pad(copy);
  input.bytes = std::move(copy);
  input.gzipped = false;
  return true;
}

bool ReadCorpusInput(const std::string& path, CorpusInput& input, std::string& error,
                     std::size_t limit) {
  ByteBuffer raw;
  if (limit > 0) {
    std::string prefix;
    if (!ReadFilePrefix(path, limit, prefix, error)) return false;
    return UnpackCorpusInput(path, prefix.data(), prefix.size(), input, error, limit);
  }
  if (!ReadWholeFile(path, raw, error)) return false;
  if (LooksGzipped(raw.Data(), raw.Size())) {
    return Gunzip(path, raw.Data(), raw.Size(), input, error, limit);
  }
  // Plain files are used where they were read, when the buffer has room for the padding.
  if (raw.Capacity() < raw.Size() + kInputPadding) raw = Regrow(raw, raw.Size(), raw.Size());
  Pad(raw);
  input.bytes = std::move(raw);
  input.gzipped = false;
  return true;
}

}  // namespace sylvora
