#pragma once
// StopList: the words an index leaves out ("the", "and", ...), read from a text file of one
// word per line.
//
// Reading. The file is decoded like every input file (UTF-8 when valid, else Windows-1252).
// Lines end in CR LF, a bare LF or a bare CR. A line shorter than `minLen` characters is
// skipped; every other line is kept whole, with no trimming and no change of case, in file
// order. At most kMaxWords words are kept.
//
// Errors. Load throws StopListError (indexing_errors.h), naming the file and the reason, when
// the file cannot be read, holds a NUL byte (it is not a text file), or has more than
// kMaxWords usable lines; the list is then left as it was. A file without a usable line
// gives an empty list, which removes nothing.
//
// Cost: Load is linear in the file size; Contains is one hash look-up. Copies are deep.

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace sylvora {

class StopList {
 public:
  static constexpr std::size_t kMaxWords = 1000;

  // Replaces the list by the words of the file at `path`. Throws StopListError.
  void Load(const std::string& path, std::size_t minLen);

  // True once Load has succeeded (also for a file without usable lines).
  bool Loaded() const { return loaded_; }
  std::size_t Count() const { return words_.size(); }
  // The words in file order (0-based).
  const std::vector<std::string>& Words() const { return words_; }
  bool Contains(std::string_view word) const { return lookup_.find(word) != lookup_.end(); }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
      return std::hash<std::string_view>{}(text);
    }
  };

  std::vector<std::string> words_;
  std::unordered_set<std::string, Hash, std::equal_to<>> lookup_;
  bool loaded_ = false;
};

}  // namespace sylvora
