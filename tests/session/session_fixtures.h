#pragma once
// Small hand-made corpora for the workflow tests: tweets written as lines of the sixteen-column
// export, loaded and indexed with every term kept.

#include <string>
#include <vector>

#include "session/session.h"
#include "support/temp_dir.h"

namespace sylvora::testing {

struct Tweet {
  int hour = 0;  // hours after 2013-09-02 00:00 (UTC)
  std::string text;
  std::string pos = "2";
  std::string neg = "-1";
  std::string user = "ann";
  int minute = 0;
};

// One line of the sixteen-column export, with its line feed.
std::string ExportLine(const Tweet& t);

// The bundled stop list.
std::string StopListPath();

// Loads `tweets` from a file in `dir` into `session` and builds its indexes, every term kept.
// Fails the calling test when either step fails.
void LoadAndIndex(Session& session, const TempDir& dir, const std::vector<Tweet>& tweets);

}  // namespace sylvora::testing
