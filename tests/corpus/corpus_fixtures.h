#pragma once
// Small helpers for corpus tests: building sets from literal rows and loading literal files.

#include <string>
#include <vector>

#include "corpus/document_set.h"
#include "support/temp_dir.h"

namespace sylvora::testing {

// A set in format `dType`'s layout holding `rows` (each a list of cells).
DocumentSet MakeSet(const std::vector<std::vector<std::string>>& rows, int dType = 7);

// All cells of one field, top to bottom.
std::vector<std::string> Column(const DocumentSet& set, FieldIndex field);

// Tab-joins cells into one line.
std::string Tsv(const std::vector<std::string>& cells);

}  // namespace sylvora::testing
