#pragma once
// The CSV half of corpus_import.h: RFC 4180 records (fields separated by commas; a field in
// double quotes may hold commas, doubled quotes and line breaks) under a header row whose
// column names are mapped onto roles.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "common/large_allocation.h"
#include "common/progress.h"
#include "corpus/corpus_import.h"
#include "corpus/imported_rows.h"

namespace sylvora {

// Reads records from a buffer it may write: quoted fields are unquoted in place, and line
// breaks inside them become spaces (a cell holds one line), as do tabs. The cells of one record
// are views into the buffer, each over bytes of its own.
class CsvReader {
 public:
  CsvReader(char* data, std::size_t size);

  // The next record; false at the end of the input or on an error (then Error() is set).
  // A line holding nothing is a record of one empty cell.
  bool Next(std::vector<std::string_view>& cells);
  // The 1-based line on which the record last returned begins.
  std::int64_t Line() const { return recordLine_; }
  const std::string& Error() const { return error_; }
  // Whether the last error left the reader at the start of the next record, so that reading
  // may go on (a quote that runs into a following record).
  bool CanContinue() const { return canContinue_; }
  std::size_t Position() const { return pos_; }

  // A quoted cell may span lines, so a quote left open swallows the records after it until
  // some later quote closes it. With this test set, a line break inside a quoted cell that is
  // followed by a line the test accepts as a record of its own ends the record with an error
  // there (CanContinue()), and the next call reads on from that line.
  void SetRecordStartTest(std::function<bool(std::string_view line)> test) {
    recordStart_ = std::move(test);
  }

 private:
  char* data_;
  std::size_t size_;
  std::size_t pos_ = 0;
  std::int64_t line_ = 1;
  std::int64_t recordLine_ = 0;
  std::string error_;
  bool canContinue_ = false;
  std::function<bool(std::string_view line)> recordStart_;
};

// Whether `bytes` looks like a CSV with a header row (a first line with a comma and no tab);
// fills detection.header.
bool DetectCsvHeader(const char* bytes, std::size_t size, ImportDetection& detection);

// The column playing each role (per CsvRole; -1 for none) under `header`, by `columnMap`
// first and the built-in names after. False with `error` for an unknown role or column in the
// map, or a header without a column for the date-time or the text role (the message names the
// role, the names looked for and the header found).
bool MapCsvColumns(const std::string& name, const std::vector<std::string>& header,
                   const std::vector<std::pair<std::string, std::string>>& columnMap,
                   std::vector<int>& columns, std::string& error);

// Imports the records of `input` (adopted by `rows`). False with report.error.
bool ImportCsvRecords(const std::string& name, ByteBuffer&& input, const ImportOptions& options,
                      ImportedRows& rows, ImportReport& report, const ProgressCallback& progress);

}  // namespace sylvora
