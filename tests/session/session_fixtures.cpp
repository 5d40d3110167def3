#include "session_fixtures.h"

#include <gtest/gtest.h>

#include <string>

#include "common/date_time.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "support/recording_notifier.h"

namespace sylvora::testing {

std::string ExportLine(const Tweet& t) {
  // "YYYY-MM-DD HH:MM:SS" of the tweet, rewritten in the export's "Mon Sep 02 ..." form (the
  // weekday is not read).
  const DateTime at = DateAdd(TimeUnit::kMinute, t.minute,
                              DateAdd(TimeUnit::kHour, t.hour, *DateTime::FromParts(2013, 9, 2)));
  const std::string iso = at.Format();
  static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  std::string line = std::string("Mon ") + kMonths[std::stoi(iso.substr(5, 2)) - 1] + " " +
                     iso.substr(8, 2) + " " + iso.substr(11, 8) + " +0000 " + iso.substr(0, 4);
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
