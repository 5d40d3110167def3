// The synthetic corpus generator: layouts, dates, sentiment, agreement between layouts,
// determinism, bursts, and the bundled files under data/ that it and its author made.

#include "generator/corpus_generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "common/date_time.h"
#include "common/errors.h"
#include "common/leading_number.h"
#include "support/temp_dir.h"

namespace sylvora::bench {
namespace {

using Row = std::vector<std::string_view>;

std::vector<std::string_view> Lines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {
      lines.push_back(text);
      break;
    }
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  return lines;
}

Row Columns(std::string_view line) {
  Row columns;
  std::size_t start = 0;
  while (true) {
    const std::size_t tab = line.find('\t', start);
    columns.push_back(line.substr(start, tab == std::string_view::npos ? tab : tab - start));
    if (tab == std::string_view::npos) break;
    start = tab + 1;
  }
  return columns;
}

std::vector<Row> Table(std::string_view text) {
  std::vector<Row> rows;
  for (std::string_view line : Lines(text)) rows.push_back(Columns(line));
  return rows;
}

DateTime ParseDate(std::string_view text) {
  const auto date = DateTime::Parse(text);
  EXPECT_TRUE(date.has_value()) << "not a date: \"" << text << "\"";
  return date.value_or(DateTime());
}

std::int64_t Number(std::string_view text) { return LeadingWholeNumber(text); }

bool IsValidUtf8(std::string_view s) {
  std::size_t i = 0;
  while (i < s.size()) {
    const auto c = static_cast<unsigned char>(s[i]);
    std::size_t extra = 0;
    if (c < 0x80) {
      extra = 0;
    } else if ((c & 0xE0) == 0xC0 && c >= 0xC2) {
      extra = 1;
    } else if ((c & 0xF0) == 0xE0) {
      extra = 2;
    } else if ((c & 0xF8) == 0xF0 && c <= 0xF4) {
      extra = 3;
    } else {
      return false;
    }
    if (i + extra >= s.size() && extra > 0) return false;
    for (std::size_t k = 1; k <= extra; ++k) {
      if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
    }
    i += extra + 1;
  }
  return true;
}

// The six-column loader's repairs of a record: leading spaces go, a column opening with a
// character below "-" is dropped, and while there are more than six columns and the fourth has
// no leading number, the fourth is appended to the third.
Row RepairTwitterRecord(const Row& raw, std::vector<std::string>& storage) {
  storage.assign(raw.begin(), raw.end());
  std::vector<std::string> columns;
  for (std::size_t i = 0; i < storage.size(); ++i) {
    std::string c = storage[i];
    c.erase(0, c.find_first_not_of(' ') == std::string::npos ? c.size() : c.find_first_not_of(' '));
    if (c.empty()) c = " ";
    if (static_cast<unsigned char>(c[0]) < 45) {
      // The column that moves into this place is skipped by the scan.
      if (i + 1 < storage.size()) columns.push_back(storage[++i]);
      continue;
    }
    columns.push_back(c);
  }
  while (columns.size() > 6 && LeadingNumber(columns[3]) == 0) {
    columns[2] += columns[3];
    columns.erase(columns.begin() + 3);
  }
  storage = columns;
  return Row(storage.begin(), storage.end());
}

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

TEST_F(CorpusGeneratorTest, EveryLayoutHasItsColumnCount) {
  const auto t11 = Table(C().twitter11);
  ASSERT_EQ(t11.size(), 20000u);
  for (const Row& row : t11) ASSERT_EQ(row.size(), 16u) << row[0];

  const auto t7 = Table(C().twitter);
  ASSERT_EQ(t7.size(), 20001u);
  EXPECT_EQ(Lines(C().twitter)[0], "DateTime\tUser\tTweet\tSent+\tSent-\tSentSum");
  std::size_t split = 0;
  for (std::size_t i = 1; i < t7.size(); ++i) {
    ASSERT_TRUE(t7[i].size() == 6 || t7[i].size() == 7) << Lines(C().twitter)[i];
    if (t7[i].size() == 7) ++split;
  }
  std::size_t expectedSplit = 0;
  for (const auto& t : C().tweets) expectedSplit += t.strayTab != 0 ? 1 : 0;
  EXPECT_EQ(split, expectedSplit);
  EXPECT_GE(split, 10u) << "a few tweets must be split by a stray tab";
  EXPECT_LE(split, 100u);

  const auto t9 = Table(C().monitoring);
  ASSERT_EQ(t9.size(), 20001u);
  for (const Row& row : t9) ASSERT_EQ(row.size(), 22u);
  const Row& header = t9[0];
  EXPECT_EQ(header[0], "ARTICLE_ID");
  EXPECT_EQ(header[2], "AUTHOR");
  EXPECT_EQ(header[3], "CONTENT");
  EXPECT_EQ(header[6], "PUBLISH_DATE");
  EXPECT_EQ(header[18], "ELAPSED_HOURS");
  EXPECT_EQ(header[19], "LINK");
  EXPECT_EQ(header[20], "SENT_POS");
  EXPECT_EQ(header[21], "SENT_NEG");
  for (std::string_view name : header) EXPECT_FALSE(name.empty());
}

TEST_F(CorpusGeneratorTest, FilesAreUtf8WithLineFeedsOnly) {
  for (const std::string* text : {&C().twitter, &C().twitter11, &C().monitoring}) {
    EXPECT_EQ(text->find('\r'), std::string::npos);
    ASSERT_FALSE(text->empty());
    EXPECT_EQ(text->back(), '\n');
    EXPECT_EQ(text->find("\n\n"), std::string::npos);
    EXPECT_TRUE(IsValidUtf8(*text));
  }
  for (const auto& t : C().tweets) {
    ASSERT_EQ(t.text.find('\t'), std::string::npos) << t.text;
    ASSERT_EQ(t.text.find('\n'), std::string::npos) << t.text;
    ASSERT_FALSE(t.text.empty());
    ASSERT_NE(t.text.front(), ' ');
  }
}

TEST_F(CorpusGeneratorTest, NewestFirstLayoutHasDescendingTweetDates) {
  const auto rows = Table(C().twitter11);
  std::int64_t previous = INT64_MAX;
  for (const Row& row : rows) {
    ASSERT_EQ(row[0].size(), 30u) << row[0];
    EXPECT_EQ(row[0].substr(19, 7), " +0000 ");
    const std::int64_t t = ParseDate(row[0]).SecondsSinceEpoch();
    ASSERT_LE(t, previous) << row[0];
    previous = t;
    EXPECT_GE(t, C().generator.StartTime());
    EXPECT_LT(t, C().generator.EndTime());
  }
  // Tweet IDs grow with time.
  EXPECT_GT(Number(rows.back()[3]), 0);
  EXPECT_LT(std::stoull(std::string(rows.back()[3])), std::stoull(std::string(rows.front()[3])));
}

TEST_F(CorpusGeneratorTest, MonitoringLayoutIsOldestFirstWithWholeElapsedHours) {
  const auto rows = Table(C().monitoring);
  const DateTime first = ParseDate(rows[1][6]);
  DateTime previous = first;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    ASSERT_EQ(rows[i][6].size(), 16u) << rows[i][6];  // DD/MM/YYYY HH:MM
    const DateTime date = ParseDate(rows[i][6]);
    ASSERT_GE(date, previous) << rows[i][6];
    previous = date;
    ASSERT_EQ(Number(rows[i][18]), DateDiff(TimeUnit::kHour, first, date)) << rows[i][6];
  }
}

TEST_F(CorpusGeneratorTest, SixColumnLayoutIsOldestFirstButForAFewSwappedNeighbours) {
  const auto rows = Table(C().twitter);
  std::vector<std::int64_t> times;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    ASSERT_EQ(rows[i][0].size(), 18u) << rows[i][0];  // YYYYMMDDTHH:MM:SSZ
    ASSERT_EQ(rows[i][0].back(), 'Z');
    times.push_back(ParseDate(rows[i][0]).SecondsSinceEpoch());
  }
  std::size_t descents = 0;
  std::size_t hourDescents = 0;
  for (std::size_t i = 1; i < times.size(); ++i) {
    if (times[i] >= times[i - 1]) continue;
    ++descents;
    if (times[i] / 3600 != times[i - 1] / 3600) ++hourDescents;
    // Putting the pair back in place restores the order around it.
    std::swap(times[i], times[i - 1]);
    if (i >= 2) {
      EXPECT_LE(times[i - 2], times[i - 1]);
    }
    if (i + 1 < times.size()) {
      EXPECT_LE(times[i], times[i + 1]);
    }
  }
  EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
  EXPECT_GE(descents, 5u);
  EXPECT_LT(descents, times.size() / 50);
  EXPECT_GE(hourDescents, 3u) << "the disorder must show at the resolution of hours";
}

TEST_F(CorpusGeneratorTest, SentimentIsNeverZeroAndSumsUp) {
  for (const Row& row : Table(C().twitter11)) {
    const auto pos = Number(row[13]);
    const auto neg = Number(row[14]);
    ASSERT_GE(pos, 1);
    ASSERT_LE(pos, 5);
    ASSERT_LE(neg, -1);
    ASSERT_GE(neg, -5);
    ASSERT_EQ(Number(row[15]), pos + neg);
  }
  const auto t7 = Table(C().twitter);
  for (std::size_t i = 1; i < t7.size(); ++i) {
    const Row& row = t7[i];
    const std::size_t s = row.size() - 3;
    ASSERT_GE(Number(row[s]), 1);
    ASSERT_LE(Number(row[s + 1]), -1);
    ASSERT_EQ(Number(row[s + 2]), Number(row[s]) + Number(row[s + 1]));
  }
  const auto t9 = Table(C().monitoring);
  for (std::size_t i = 1; i < t9.size(); ++i) {
    ASSERT_GE(Number(t9[i][20]), 1);
    ASSERT_LE(Number(t9[i][21]), -1);
  }
  // Both strengths vary.
  std::set<std::int64_t> positives;
  std::set<std::int64_t> negatives;
  for (const auto& t : C().tweets) positives.insert(t.sentPos), negatives.insert(t.sentNeg);
  EXPECT_EQ(positives.size(), 5u);
  EXPECT_EQ(negatives.size(), 5u);
}

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

TEST_F(CorpusGeneratorTest, SixColumnRepairsExerciseOnlyTheTweetsMeantForThem) {
  const auto t7 = Table(C().twitter);
  std::vector<std::string> storage;
  std::size_t joined = 0;
  std::size_t dropped = 0;
  for (std::size_t i = 1; i < t7.size(); ++i) {
    const Row& raw = t7[i];
    const Row repaired = RepairTwitterRecord(raw, storage);
    const char opening = raw[2].empty() ? ' ' : raw[2][0];
    if (opening == '"' || opening == '#') {
      // The loader drops the tweet column; the sentiment moves one place to the left.
      ++dropped;
      ASSERT_EQ(repaired.size(), raw.size() - 1);
      ASSERT_EQ(repaired[2], raw[3]);
      continue;
    }
    ASSERT_EQ(repaired.size(), 6u) << Lines(C().twitter)[i];
    if (raw.size() == 7) {
      ++joined;
      ASSERT_EQ(repaired[2], std::string(raw[2]) + std::string(raw[3]));
    } else {
      ASSERT_EQ(repaired[2], raw[2]);
    }
    ASSERT_NE(Number(repaired[3]), 0);
  }
  EXPECT_GE(joined, 10u);
  // About 1% of tweets open with a quote or "#".
  EXPECT_GE(dropped, C().tweets.size() / 200);
  EXPECT_LE(dropped, C().tweets.size() / 50);
}

TEST_F(CorpusGeneratorTest, TweetsLookLikeTweets) {
  std::size_t retweets = 0, mentions = 0, hashtags = 0, shortLinks = 0, longLinks = 0,
              secureLinks = 0, withLink = 0, expanded = 0, nonAscii = 0;
  for (const auto& t : C().tweets) {
    retweets += t.text.starts_with("RT @") ? 1 : 0;
    mentions += t.text.find('@') != std::string::npos ? 1 : 0;
    hashtags += t.text.find('#') != std::string::npos ? 1 : 0;
    shortLinks += t.text.find("http://t.co/") != std::string::npos ? 1 : 0;
    longLinks += t.text.find("http://www.") != std::string::npos ? 1 : 0;
    secureLinks += t.text.find("https://") != std::string::npos ? 1 : 0;
    nonAscii += std::any_of(t.text.begin(), t.text.end(),
                            [](char c) { return static_cast<unsigned char>(c) >= 0x80; })
                    ? 1
                    : 0;
    if (!t.link.empty()) {
      ++withLink;
      EXPECT_NE(t.text.find(t.link), std::string::npos);
    }
    if (!t.linkUrl.empty()) {
      ++expanded;
      EXPECT_TRUE(t.linkUrl.starts_with("http://")) << t.linkUrl;
      EXPECT_FALSE(t.link.empty());
    }
  }
  const std::size_t n = C().tweets.size();
  EXPECT_GT(retweets, n / 10);
  EXPECT_LT(retweets, n / 3);
  EXPECT_GT(mentions, n / 5);
  EXPECT_GT(hashtags, n / 4);
  EXPECT_GT(shortLinks, n / 20);
  EXPECT_GT(longLinks, n / 50);
  EXPECT_GT(secureLinks, n / 100);
  EXPECT_GT(nonAscii, n / 100);
  EXPECT_GT(expanded, withLink / 5);
  EXPECT_LT(expanded, withLink / 2);
}

TEST_F(CorpusGeneratorTest, UsersHaveSkewedActivity) {
  const auto& users = C().generator.Users();
  EXPECT_GE(users.size(), 1500u);
  std::set<std::string> handles;
  for (const auto& user : users) {
    EXPECT_LE(user.handle.size(), 15u);
    EXPECT_TRUE(std::all_of(user.handle.begin(), user.handle.end(), [](char c) {
      return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    })) << user.handle;
    EXPECT_TRUE(handles.insert(user.handle).second) << user.handle;
  }
  std::map<std::uint32_t, int> perUser;
  for (const auto& t : C().tweets) ++perUser[t.user];
  std::vector<int> counts;
  for (const auto& [user, count] : perUser) counts.push_back(count);
  std::sort(counts.rbegin(), counts.rend());
  int top = 0;
  for (std::size_t i = 0; i < counts.size() / 10; ++i) top += counts[i];
  EXPECT_GT(top, static_cast<int>(C().tweets.size()) * 2 / 5)
      << "the busiest tenth of users writes most tweets";
  EXPECT_GT(counts.front(), 20 * counts[counts.size() / 2]);
}

TEST_F(CorpusGeneratorTest, BurstsRaiseTheVolumeOfTheirHours) {
  const auto& bursts = C().generator.Bursts();
  ASSERT_EQ(bursts.size(), 3u);
  std::map<std::int64_t, int> perHour;
  for (const auto& t : C().tweets) ++perHour[t.time / 3600 * 3600];
  const std::int64_t start = C().generator.StartTime();
  const int days = C().generator.Options().days;

  for (const CorpusBurst& burst : bursts) {
    SCOPED_TRACE(burst.name);
    EXPECT_GE(burst.peak, burst.onset);
    // The same clock hour on every day of the corpus: the burst's stands far above the median.
    std::vector<int> sameHour;
    for (int d = 0; d < days; ++d) {
      sameHour.push_back(perHour[start + d * 86400 + (burst.peak - start) % 86400]);
    }
    std::sort(sameHour.begin(), sameHour.end());
    const int median = sameHour[sameHour.size() / 2];
    EXPECT_GT(perHour[burst.peak], 3 * median);

    // Its hashtag lives mostly in the three days from its onset.
    const std::string tag = "#" + burst.hashtag;
    int inside = 0;
    int outside = 0;
    for (const auto& t : C().tweets) {
      if (t.text.find(tag) == std::string::npos) continue;
      (t.time >= burst.onset - 6 * 3600 && t.time < burst.onset + 72 * 3600 ? inside : outside)++;
    }
    EXPECT_GT(inside, 50);
    EXPECT_GT(inside, 3 * outside);
  }
}

TEST_F(CorpusGeneratorTest, NightsAreQuietAndEveningsBusy) {
  std::vector<int> byClockHour(24, 0);
  for (const auto& t : C().tweets) ++byClockHour[static_cast<std::size_t>(t.time % 86400 / 3600)];
  EXPECT_GT(byClockHour[20], 3 * byClockHour[4]);
  EXPECT_GT(byClockHour[20], byClockHour[10]);
}

// ---------------------------------------------------------------------------------------------

TEST(CorpusGenerator, SameSeedSameBytesOtherSeedOtherBytes) {
  CorpusOptions options;
  options.tweetCount = 3000;
  options.seed = 4242;
  const CorpusGenerator a(options);
  const CorpusGenerator b(options);
  for (auto format :
       {CorpusFormat::kTwitter, CorpusFormat::kTwitter11, CorpusFormat::kMonitoring}) {
    EXPECT_EQ(a.WriteString(format), b.WriteString(format));
  }
  options.seed = 4243;
  const CorpusGenerator c(options);
  EXPECT_NE(a.WriteString(CorpusFormat::kTwitter11), c.WriteString(CorpusFormat::kTwitter11));
}

TEST(CorpusGenerator, ProducingTweetsTwiceGivesTheSameTweets) {
  CorpusOptions options;
  options.tweetCount = 9000;  // more than one block
  const CorpusGenerator generator(options);
  std::vector<std::string> forward;
  generator.ForEachTweet([&](const GeneratedTweet& t) { forward.push_back(t.text); });
  std::vector<std::string> backward;
  generator.ForEachTweet([&](const GeneratedTweet& t) { backward.push_back(t.text); }, true);
  std::reverse(backward.begin(), backward.end());
  EXPECT_EQ(forward, backward);
}

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

TEST(CorpusGenerator, EmptyCorpusHasOnlyHeaders) {
  CorpusOptions options;
  options.tweetCount = 0;
  const CorpusGenerator generator(options);
  EXPECT_EQ(generator.WriteString(CorpusFormat::kTwitter11), "");
  EXPECT_EQ(Lines(generator.WriteString(CorpusFormat::kTwitter)).size(), 1u);
  EXPECT_EQ(Lines(generator.WriteString(CorpusFormat::kMonitoring)).size(), 1u);
}

TEST(CorpusGenerator, FormatCodesAndFileNames) {
  EXPECT_EQ(CorpusFormatFromCode(7), CorpusFormat::kTwitter);
  EXPECT_EQ(CorpusFormatFromCode(8), CorpusFormat::kTwitter11);
  EXPECT_EQ(CorpusFormatFromCode(9), CorpusFormat::kMonitoring);
  EXPECT_FALSE(CorpusFormatFromCode(6).has_value());
  EXPECT_EQ(CorpusFileSuffix(CorpusFormat::kTwitter), "_twitter.txt");
  EXPECT_EQ(CorpusFileSuffix(CorpusFormat::kTwitter11), "_twitter11.txt");
  EXPECT_EQ(CorpusFileSuffix(CorpusFormat::kMonitoring), "_radian6.txt");
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
