// The synthetic corpus generator: layouts, dates, agreement between layouts, and the
// bundled files under data/ that it and its author made (which also pin its determinism: the
// bundled sample must equal what this build writes for the same seed; its bursts are checked
// through the command line's time line of that sample, cli/timeline_command_test.cpp).

#include "generator/corpus_generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "common/date_time.h"
#include "common/errors.h"
#include "common/leading_number.h"
#include "common/text_decoding.h"
#include "support/temp_dir.h"

namespace sylvora::bench {
namespace {

using Row = std::vector<std::string_view>;

// The pieces of `text` between the separators.
std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find(separator, start)) != std::string_view::npos;
       start = end + 1) {
    pieces.push_back(text.substr(start, end - start));
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

// The lines of `text`; a final line feed ends the last line.
std::vector<std::string_view> Lines(std::string_view text) {
  std::vector<std::string_view> lines = Split(text, '\n');
  if (lines.back().empty()) lines.pop_back();
  return lines;
}

std::vector<Row> Table(std::string_view text) {
  std::vector<Row> rows;
  for (std::string_view line : Lines(text)) rows.push_back(Split(line, '\t'));
  return rows;
}

DateTime ParseDate(std::string_view text) {
  const auto date = DateTime::Parse(text);
  EXPECT_TRUE(date.has_value()) << "not a date: \"" << text << "\"";
  return date.value_or(DateTime());
}

std::int64_t Number(std::string_view text) { return LeadingWholeNumber(text); }

struct Corpus {
  explicit Corpus(const CorpusOptions& options) : generator(options) {
    twitter = generator.WriteString(CorpusFormat::kTwitter);
    twitter11 = generator.WriteString(CorpusFormat::kTwitter11);
    monitoring = generator.WriteString(CorpusFormat::kMonitoring);
    generator.ForEachTweet([this](const GeneratedTweet& t) { tweets.push_back(t); });
  }
  CorpusGenerator generator;
  std::string twitter;
  std::string twitter11;
  std::string monitoring;
  std::vector<GeneratedTweet> tweets;  // oldest first
};

class CorpusGeneratorTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    CorpusOptions options;
    options.tweetCount = 20000;
    options.seed = 99;
    corpus_ = new Corpus(options);
  }
  static void TearDownTestSuite() {
    delete corpus_;
    corpus_ = nullptr;
  }
  static const Corpus& C() { return *corpus_; }

 private:
  static inline Corpus* corpus_ = nullptr;
};

// ---------------------------------------------------------------------------------------------

TEST_F(CorpusGeneratorTest, AllLayoutsCarryTheSameTweets) {
  const auto& tweets = C().tweets;
  const auto& users = C().generator.Users();
  const auto t11 = Table(C().twitter11);
  const auto t9 = Table(C().monitoring);
  const auto t7 = Table(C().twitter);
  ASSERT_EQ(t11.size(), tweets.size());

  for (std::size_t i = 0; i < tweets.size(); ++i) {
    const GeneratedTweet& t = tweets[i];
    const Row& r11 = t11[tweets.size() - 1 - i];
    const Row& r9 = t9[i + 1];
    ASSERT_EQ(ParseDate(r11[0]).SecondsSinceEpoch(), t.time);
    ASSERT_EQ(r11[1], users[t.user].handle);
    ASSERT_EQ(r11[2], t.text);
    ASSERT_EQ(r11[12], t.linkUrl);
    ASSERT_EQ(Number(r11[13]), t.sentPos);
    ASSERT_EQ(Number(r11[14]), t.sentNeg);
    ASSERT_EQ(ParseDate(r9[6]).SecondsSinceEpoch(), t.time / 60 * 60);
    ASSERT_EQ(r9[2], users[t.user].handle);
    ASSERT_EQ(r9[3], t.text);
    ASSERT_EQ(r9[19], t.link);
    ASSERT_EQ(Number(r9[20]), t.sentPos);
    ASSERT_EQ(Number(r9[21]), t.sentNeg);
  }

  // The six-column layout holds the same tweets once a stray tab is taken out, in time order
  // but for pairs that changed places.
  std::size_t row = 1;
  for (std::size_t i = 0; i < tweets.size(); ++i) {
    std::size_t index = i;
    if (tweets[i].swappedWithNext) index = i + 1;
    if (i > 0 && tweets[i - 1].swappedWithNext) index = i - 1;
    const GeneratedTweet& t = tweets[index];
    const Row& r = t7[row++];
    std::string text(r[2]);
    if (r.size() == 7) text += "\t" + std::string(r[3]);
    std::string expected = t.text;
    if (t.strayTab != 0) expected.insert(t.strayTab, "\t");
    ASSERT_EQ(ParseDate(r[0]).SecondsSinceEpoch(), t.time);
    ASSERT_EQ(r[1], users[t.user].handle);
    ASSERT_EQ(text, expected);
  }
}

// ---------------------------------------------------------------------------------------------

TEST(CorpusGenerator, WritesFilesAndReportsTheirSize) {
  const testing::TempDir dir;
  CorpusOptions options;
  options.tweetCount = 500;
  const CorpusGenerator generator(options);
  const auto path = dir.Path() / "small_twitter11.txt";
  const std::uint64_t bytes = generator.WriteFile(CorpusFormat::kTwitter11, path);
  const std::string content = testing::ReadFile(path);
  EXPECT_EQ(bytes, content.size());
  EXPECT_EQ(content, generator.WriteString(CorpusFormat::kTwitter11));

  const auto other = dir.Path() / "bench_radian6.txt";
  const std::uint64_t otherBytes = WriteSyntheticCorpus(CorpusFormat::kMonitoring, other, 500);
  EXPECT_EQ(otherBytes, testing::ReadFile(other).size());
  EXPECT_EQ(testing::ReadFile(other), generator.WriteString(CorpusFormat::kMonitoring));

  EXPECT_THROW(generator.WriteFile(CorpusFormat::kTwitter, dir.Path() / "no" / "such.txt"), Error);
}

TEST(CorpusGenerator, RejectsOptionsOutOfRange) {
  CorpusOptions options;
  options.days = 3;
  EXPECT_THROW(CorpusGenerator{options}, RangeError);
  options = {};
  options.userCount = 10;
  EXPECT_THROW(CorpusGenerator{options}, RangeError);
  options = {};
  options.startMonth = 13;
  EXPECT_THROW(CorpusGenerator{options}, RangeError);
}

// ---------------------------------------------------------------------------------------------
// The bundled files.

TEST(BundledData, SampleCorpusIsWhatTheGeneratorWrites) {
  // data/README.md gives the command; these are its options.
  CorpusOptions options;
  options.tweetCount = 5000;
  options.seed = kDefaultCorpusSeed;
  const CorpusGenerator generator(options);
  const auto data = testing::SourceDir() / "data";
  for (auto format : {CorpusFormat::kTwitter, CorpusFormat::kTwitter11, CorpusFormat::kMonitoring,
                      CorpusFormat::kTwitterV2Json, CorpusFormat::kNamedCsv}) {
    const auto path = data / ("sample" + std::string(CorpusFileSuffix(format)));
    const std::string bundled = testing::ReadFile(path);
    EXPECT_FALSE(bundled.empty()) << path;
    // JSON spells out every key: it is the one file allowed past 2 MiB.
    EXPECT_LT(bundled.size(), (format == CorpusFormat::kTwitterV2Json ? 3u : 2u) << 20) << path;
    EXPECT_TRUE(bundled == generator.WriteString(format))
        << path << " differs from the generator's output; regenerate it as data/README.md says";
  }
}

TEST(BundledData, StopListIsOneLowerCaseAsciiWordPerLine) {
  const std::string list = testing::ReadFile(testing::SourceDir() / "data" / "common_words.txt");
  ASSERT_FALSE(list.empty());
  EXPECT_EQ(list.back(), '\n');
  const auto lines = Lines(list);
  EXPECT_GE(lines.size(), 300u);
  EXPECT_LE(lines.size(), 1000u);
  std::set<std::string_view> words;
  for (std::string_view word : lines) {
    ASSERT_FALSE(word.empty());
    EXPECT_TRUE(std::all_of(word.begin(), word.end(), [](char c) { return c >= 'a' && c <= 'z'; }))
        << "\"" << word << "\"";
    EXPECT_TRUE(words.insert(word).second) << "duplicate: " << word;
  }
  for (std::string_view noise : {"rt", "via", "amp", "the", "and", "you", "http"}) {
    EXPECT_EQ(words.count(noise), 1u) << noise;
  }
}

}  // namespace
}  // namespace sylvora::bench
