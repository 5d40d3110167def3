#pragma once
// The errors the indexing layer raises. Everything else in this layer reports failure through
// its result (0, "", -1, false) and leaves its object usable; these three are raised because
// going on would build an index from bad input.
//
//  * StopListError   the stop-word list cannot be read, is not text, or holds more words than
//                    an index keeps. Raised by TermDocumentMatrix::Preprocess before any text
//                    is touched.
//  * TdmVersionError error number 5000, "TDM file version does not exist (try lower number)":
//                    LoadTDM was asked for a file that does not exist, or for an index that
//                    already has terms.
//  * TdmFileError    a TDM file that exists but cannot be read, or does not hold what its
//                    header promises (a missing line, a missing field, text where a number
//                    belongs). The message names the file, the line and the value at fault.
//
// All derive from sylvora::Error; catch that to handle any of them.

#include <string>
#include <utility>

#include "common/errors.h"

namespace sylvora {

class StopListError : public Error {
 public:
  StopListError(std::string path, const std::string& message)
      : Error(message), path_(std::move(path)) {}
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

class TdmVersionError : public Error {
 public:
  static constexpr int kNumber = 5000;
  static constexpr const char* kDescription = "TDM file version does not exist (try lower number)";

  explicit TdmVersionError(std::string path) : Error(kDescription), path_(std::move(path)) {}
  int Number() const { return kNumber; }
  // The file that was asked for.
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

class TdmFileError : public Error {
 public:
  // `line` is the 1-based line at fault, 0 when the whole file is.
  TdmFileError(std::string path, int line, const std::string& message)
      : Error(message), path_(std::move(path)), line_(line) {}
  const std::string& Path() const { return path_; }
  int Line() const { return line_; }

 private:
  std::string path_;
  int line_;
};

}  // namespace sylvora
