#include "session_fixtures.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "support/recording_notifier.h"

namespace sylvora::testing {

std::string ExportLine(const Tweet& t) {
  char date[64];
  std::snprintf(date, sizeof date, "Mon Sep %02d %02d:%02d:00 +0000 2013", 2 + t.hour / 24,
                t.hour % 24, t.minute);
  std::string line = date;
  for (const std::string& cell :
       {t.user, t.text, std::string("123"), "Real " + t.user, std::string("10"), std::string("20"),
        std::string("0"), std::string("UTC"), std::string(""), std::string("99"), std::string("0"),
        std::string(""), t.pos, t.neg, std::string("1")}) {
    line += "\t" + cell;
  }
  return line + "\n";
}

std::string StopListPath() { return (SourceDir() / "data" / "common_words.txt").string(); }

void LoadAndIndex(Session& session, const TempDir& dir, const std::vector<Tweet>& tweets) {
  std::string content;
  for (const Tweet& t : tweets) content += ExportLine(t);
  LoadOptions load;
  load.path = dir.WriteFile("corpus.txt", content);
  load.minDocLen = 0;
  RecordingNotifier quiet;
  const LoadReport loaded = LoadCorpus(session, load, quiet);
  ASSERT_TRUE(loaded.loaded) << loaded.error;
  IndexOptions index;
  index.stopListPath = StopListPath();
  index.minDocFrequency = 1;
  index.maxDocFrequency = 1e9;
  index.secondaryMinDocFrequency = 1;
  const IndexReport indexed = BuildIndexes(session, index);
  ASSERT_TRUE(indexed.indexed) << indexed.error;
}

}  // namespace sylvora::testing
