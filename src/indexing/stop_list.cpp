#include "indexing/stop_list.h"

#include "common/code_points.h"
#include "common/file_io.h"
#include "common/text_decoding.h"
#include "indexing/indexing_errors.h"

namespace sylvora {

void StopList::Load(const std::string& path, std::size_t minLen) {
  std::string text;
  std::string error;
  if (!ReadWholeFile(path, text, error)) {
    throw StopListError(path, "Stop list unusable: " + error);
  }
  if (text.find('\0') != std::string::npos) {
    throw StopListError(path,
                        "The stop list '" + path + "' is not a text file (it holds a NUL byte)");
  }
  DecodeText(text);

  std::vector<std::string> words;
  std::size_t lineNumber = 0;
  std::size_t pos = 0;
  while (pos < text.size()) {
    const std::size_t end = text.find_first_of("\r\n", pos);
    const std::string_view line = std::string_view(text).substr(
        pos, end == std::string::npos ? std::string::npos : end - pos);
    ++lineNumber;
    if (CodePointCount(line) >= minLen) {
      if (words.size() == kMaxWords) {
        throw StopListError(path, "The stop list '" + path + "' has more than " +
                                      std::to_string(kMaxWords) + " words of at least " +
                                      std::to_string(minLen) + " characters (line " +
                                      std::to_string(lineNumber) + " is one too many)");
      }
      words.emplace_back(line);
    }
    if (end == std::string::npos) break;
    pos = end + 1;
    if (text[end] == '\r' && pos < text.size() && text[pos] == '\n') ++pos;
  }

  words_ = std::move(words);
  lookup_.clear();
  lookup_.insert(words_.begin(), words_.end());
  loaded_ = true;
}

}  // namespace sylvora
