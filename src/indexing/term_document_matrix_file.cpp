// The ".tdm" file: a header line and one tab-separated line of weights per term.

#include <charconv>
#include <cmath>

#include "common/code_points.h"
#include "common/file_io.h"
#include "common/text_decoding.h"
#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

constexpr int kVersionCount = 256;

// A weight in the general number form: up to 15 significant digits, no trailing zeros, the
// exponent form ("1E-05") below 0.0001 and from 1E+15 on, "." as decimal point whatever the
// locale, and "0" for zero.
void AppendWeight(std::string& out, double value) {
  if (value == 0.0 || !std::isfinite(value)) {
    out += '0';
    return;
  }
  char digits[32];
  const auto result =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 15);
  for (char* c = digits; c != result.ptr; ++c) out += (*c == 'e') ? 'E' : *c;
}

// Lines of a text, ending in LF or CR LF.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : text_(text) {}

  // The next line without its end; false past the last line.
  bool Next(std::string_view& line) {
    if (pos_ >= text_.size()) return false;
    std::size_t end = text_.find('\n', pos_);
    if (end == std::string_view::npos) end = text_.size();
    line = text_.substr(pos_, end - pos_);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    pos_ = end + 1;
    ++number_;
    return true;
  }
  int Number() const { return number_; }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
  int number_ = 0;
};

// Tab-separated fields of one line, read in turn.
class FieldReader {
 public:
  explicit FieldReader(std::string_view line) : line_(line) {}

  bool Next(std::string_view& field) {
    if (done_) return false;
    const std::size_t tab = line_.find('\t', pos_);
    if (tab == std::string_view::npos) {
      field = line_.substr(pos_);
      done_ = true;
    } else {
      field = line_.substr(pos_, tab - pos_);
      pos_ = tab + 1;
    }
    ++count_;
    return true;
  }
  int Count() const { return count_; }

 private:
  std::string_view line_;
  std::size_t pos_ = 0;
  int count_ = 0;
  bool done_ = false;
};

std::string Quoted(std::string_view text) {
  constexpr std::size_t kShown = 40;
  std::string shown(text.substr(0, kShown));
  if (text.size() > kShown) shown += "...";
  return "\"" + shown + "\"";
}

// A whole field as a finite number ("." as decimal point, exponent form allowed).
bool ParseWeight(std::string_view field, double& value) {
  const std::string_view text = TrimSpaces(field);
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size() &&
         std::isfinite(value);
}

class TdmReader {
 public:
  TdmReader(const std::string& path, std::string_view text) : path_(path), lines_(text) {}

  // The next line, or an error saying what was still expected.
  std::string_view Line(const std::string& expected) {
    std::string_view line;
    if (!lines_.Next(line)) {
      Fail("the file ends after line " + std::to_string(lines_.Number()) + ", before " + expected);
    }
    return line;
  }

  std::string_view Field(FieldReader& fields, const std::string& what) {
    std::string_view field;
    if (!fields.Next(field)) {
      Fail("field " + std::to_string(fields.Count() + 1) + " (" + what + ") is missing");
    }
    return field;
  }

  std::int32_t WholeNumber(std::string_view field, const std::string& what) {
    const std::string_view text = TrimSpaces(field);
    std::int32_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size() ||
        value < 0) {
      Fail(what + " " + Quoted(field) + " is not a whole number of 0 or more");
    }
    return value;
  }

  // The weight of document k (1-based), the next field of a term line.
  double DocumentWeight(FieldReader& fields, DocIndex k) {
    std::string_view field;
    if (!fields.Next(field)) {
      Fail("field " + std::to_string(fields.Count() + 1) + " (the weight of document " +
           std::to_string(k) + ") is missing");
    }
    double value = 0.0;
    if (!ParseWeight(field, value)) {
      Fail("the weight of document " + std::to_string(k) + " " + Quoted(field) +
           " is not a number");
    }
    return value;
  }

  [[noreturn]] void Fail(const std::string& reason) const {
    throw TdmFileError(
        path_, lines_.Number(),
        "TDM file '" + path_ + "' line " + std::to_string(lines_.Number()) + ": " + reason);
  }

 private:
  const std::string& path_;
  LineReader lines_;
};

}  // namespace

std::string TermDocumentMatrix::FilePath() const {
  return basePath_ + "_" + std::to_string(version_) + ".tdm";
}

bool TermDocumentMatrix::SaveTDM(std::int32_t scheme, bool normalise, bool dense, bool newVersion) {
  const std::uint8_t previousVersion = version_;
  const auto fail = [&](std::string reason) {
    version_ = previousVersion;
    lastError_ = std::move(reason);
    return false;
  };
  if (newVersion) {
    int version = 0;
    while (version < kVersionCount) {
      version_ = static_cast<std::uint8_t>(version);
      if (!FileExists(FilePath())) break;
      ++version;
    }
    if (version == kVersionCount) {
      return fail("Every TDM file version 0 to 255 of '" + basePath_ + "' exists already");
    }
  }

  FileWriter writer;
  std::string error;
  if (!writer.Open(FilePath(), error)) return fail(error);
  const std::int32_t termCount = TermCount();
  writer.WriteLine(std::to_string(termCount) + "\t" + std::to_string(docCount_) + "\tWeight=" +
                   std::to_string(scheme) + "\tNormalise=" + (normalise ? "True" : "False"));
  if (!dense) {
    // The matrix row by row: entries rowStart[t] .. rowStart[t + 1] - 1 of rowDocs and
    // rowValues are term t's documents (ascending) and cells.
    const std::int32_t columns = std::min(docCount_, matrix_.ColCount());
    std::vector<std::size_t> rowStart(static_cast<std::size_t>(termCount) + 2, 0);
    for (std::int32_t d = 1; d <= columns; ++d) {
      for (const std::int32_t t : matrix_.Vector(d)->ElementIndexes()) {
        if (t >= 1 && t <= termCount) ++rowStart[static_cast<std::size_t>(t) + 1];
      }
    }
    for (std::size_t t = 1; t < rowStart.size(); ++t) rowStart[t] += rowStart[t - 1];
    std::vector<std::int32_t> rowDocs(rowStart.back());
    std::vector<float> rowValues(rowStart.back());
    std::vector<std::size_t> fill(rowStart.begin(), rowStart.end() - 1);
    std::vector<std::int32_t> maximum(static_cast<std::size_t>(columns) + 1, 0);
    for (std::int32_t d = 1; d <= columns; ++d) {
      const SparseVectorSingle& column = *matrix_.Vector(d);
      const auto elements = column.ElementIndexes();
      const auto values = column.ElementValues();
      for (std::size_t k = 0; k < elements.size(); ++k) {
        if (elements[k] < 1 || elements[k] > termCount) continue;
        const std::size_t at = fill[static_cast<std::size_t>(elements[k])]++;
        rowDocs[at] = d;
        rowValues[at] = values[k];
      }
      if (normalise) maximum[static_cast<std::size_t>(d)] = DocumentMaximum(d);
    }

    std::string line;
    for (std::int32_t t = 1; t <= termCount; ++t) {
      line = Term(t);
      std::size_t next = rowStart[static_cast<std::size_t>(t)];
      const std::size_t end = rowStart[static_cast<std::size_t>(t) + 1];
      for (std::int32_t d = 1; d <= docCount_; ++d) {
        line += '\t';
        if (next < end && rowDocs[next] == d) {
          AppendWeight(line, WeightedCell(rowValues[next], t, scheme, normalise,
                                          maximum[static_cast<std::size_t>(d)]));
          ++next;
        } else {
          line += '0';
        }
      }
      writer.WriteLine(line);
    }
  }
  if (!writer.Close(error)) return fail(error);
  return true;
}

void TermDocumentMatrix::LoadTDM(bool dfField) {
  const std::string path = FilePath();
  if (!terms_.empty() || !FileExists(path)) throw TdmVersionError(path);
  std::string text, error;
  if (!ReadWholeFile(path, text, error)) throw TdmFileError(path, 0, error);
  if (text.find('\0') != std::string::npos) {
    throw TdmFileError(path, 0, "TDM file '" + path + "' is not a text file (it holds a NUL byte)");
  }
  DecodeText(text);

  TdmReader reader(path, text);
  std::int32_t termCount = 0;
  DocIndex docCount = docCount_;
  if (!text.empty()) {
    FieldReader header(reader.Line("the header"));
    termCount = reader.WholeNumber(reader.Field(header, "term count"), "the term count");
    const std::int32_t fileDocs =
        reader.WholeNumber(reader.Field(header, "document count"), "the document count");
    docCount = std::min(docCount, fileDocs);
  }

  std::vector<std::string> terms;
  std::vector<std::int32_t> docFreq;
  SparseMatrixSingle matrix;
  matrix.Reset(termCount, docCount);
  for (std::int32_t t = 1; t <= termCount; ++t) {
    FieldReader fields(
        reader.Line("term " + std::to_string(t) + " of " + std::to_string(termCount)));
    terms.emplace_back(reader.Field(fields, "the term"));
    docFreq.push_back(dfField ? reader.WholeNumber(reader.Field(fields, "document frequency"),
                                                   "the document frequency")
                              : 0);
    for (DocIndex k = 1; k <= docCount; ++k) {
      matrix.SetValue(t, k, static_cast<float>(reader.DocumentWeight(fields, k)));
    }
  }

  terms_ = std::move(terms);
  docFreq_ = std::move(docFreq);
  globalFreq_.assign(terms_.size(), 0);
  matrix_ = std::move(matrix);
  docCount_ = docCount;
}

}  // namespace sylvora
