// Writing a document set as a tab-separated table or as RIS-style records.

#include <string>

#include "common/file_io.h"
#include "corpus/document_set.h"

namespace sylvora {

bool DocumentSet::ExportTSV(const std::string& fileName, bool colHeaders) const {
  FileWriter writer;
  std::string error;
  if (!writer.Open(fileName, error)) return Fail(error);
  if (colHeaders) {
    for (const auto& name : fieldNames_) {
      writer.Write(name);
      writer.Write("\t");
    }
    writer.WriteLine("");
  }
  for (DocIndex d = 0; d < docCount_; ++d) {
    for (std::size_t f = 0; f < columns_.size(); ++f) {
      if (f > 0) writer.Write("\t");
      writer.Write(columns_[f][d]);
    }
    writer.WriteLine("");
  }
  return writer.Close(error) || Fail(error);
}

bool DocumentSet::ExportRIS(const std::string& fileName) const {
  const std::pair<const char*, FieldIndex> roles[] = {{"AuthorField", authorField_},
                                                      {"DateTimeField", dateTimeField_},
                                                      {"TitleField", titleField_},
                                                      {"ContentField", contentField_}};
  for (const auto& [role, field] : roles) {
    if (field >= columns_.size() && docCount_ > 0) {
      return Fail(std::string("Cannot export RIS: the role ") + role + " names field " +
                  std::to_string(field) + ", but the set has " + std::to_string(FieldCount()) +
                  " fields");
    }
  }
  FileWriter writer;
  std::string error;
  if (!writer.Open(fileName, error)) return Fail(error);
  for (DocIndex d = 0; d < docCount_; ++d) {
    const auto line = [&](std::string_view tag, std::string_view value) {
      writer.Write(tag);
      writer.WriteLine(value);
    };
    line("TY - ", "");
    line("AN - ", "");
    line("AU - ", columns_[authorField_][d]);
    line("PY - ", columns_[dateTimeField_][d]);
    line("TI - ", columns_[titleField_][d]);
    line("T2 - ", "");
    line("AB - ", columns_[contentField_][d]);
    line("DO - ", "");
    line("UR - ", "");
    line("ER - ", "");
    line("", "");
  }
  return writer.Close(error) || Fail(error);
}

}  // namespace sylvora
