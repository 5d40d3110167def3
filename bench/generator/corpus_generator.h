#pragma once
// A synthetic tweet corpus for the sample data, the tests and the benchmarks.
//
// The corpus tells one made-up story over a few weeks: the storm Marisol approaches the coastal
// town of Port Wrenna, the town's Harbour Lights music festival is cancelled, the storm makes
// landfall at night and the town loses power. Volume follows a daily rhythm (quiet nights,
// evening peaks) and rises sharply in three bursts, each with its own words and hashtags, over
// a background of everyday chatter. About 1,500 users post with Zipf-like activity; tweets carry
// hashtags, @mentions, replies, retweets ("RT @user: ..."), short (http://t.co/...), long
// (http://www....) and https links, emoji and the odd accented name or curly apostrophe, all as
// UTF-8. Every tweet has a positive strength 1..5 and a negative strength -1..-5.
//
// The same tweets can be written in the three tab-separated layouts the application reads:
//   CorpusFormat::kTwitter    six columns with a header line, oldest first, a few neighbouring
//                             lines swapped, a few tweets split by a stray tab;
//   CorpusFormat::kTwitter11  sixteen columns, no header, newest first;
//   CorpusFormat::kMonitoring a monitoring-service export of 22 columns with a header,
//                             oldest first, with elapsed hours and the first link in columns.
// About 1% of tweets begin with a double quote or "#", in every layout.
//
// Two more shapes carry the same tweets for the importer, which finds them by their content:
//   CorpusFormat::kTwitterV2Json  X / Twitter API v2 objects, one a line, newest first; texts
//                                 escape "&", "<", ">" as the API does and every non-ASCII
//                                 character as \uXXXX (emoji as surrogate pairs); the author in
//                                 an "author" object; the long form of a link, where the
//                                 sixteen-column layout has one, as the URL entity's
//                                 expanded_url; the sentiment strengths in a "sentiment" object;
//   CorpusFormat::kNamedCsv       a CSV with a header row (id, created_at, username, name, text,
//                                 url, retweet_count, sentiment_positive, sentiment_negative),
//                                 oldest first, fields quoted where RFC 4180 needs it.
//
// Determinism: the output depends only on the options. Random numbers come from
// std::mt19937_64, whose sequence the standard fixes, and from this file's own distributions,
// so a seed gives the same bytes on every platform and library.
//
// Cost: construction plans every tweet (time, author, topic) in about 24 bytes per tweet; the
// texts are produced block by block while writing, so writing a million tweets needs a few tens
// of megabytes and a few seconds.
//
// Times are seconds since 1970-01-01 00:00:00 UTC (the corpus is written as "+0000" times).
// Tweets are numbered 0-based in time order (0 is the oldest).

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sylvora::bench {

inline constexpr std::uint64_t kDefaultCorpusSeed = 20130902;

// The layouts, by the format codes the corpus loader takes; the import shapes have codes of
// their own (20, 21) that no loader reads.
enum class CorpusFormat : int {
  kTwitter = 7,
  kTwitter11 = 8,
  kMonitoring = 9,
  kTwitterV2Json = 20,
  kNamedCsv = 21,
};

// The format of a code 7, 8 or 9; nullopt for any other.
std::optional<CorpusFormat> CorpusFormatFromCode(int code);
// The tail of the file name the tool writes for a format: "_twitter.txt", "_twitter11.txt",
// "_radian6.txt", "_twitter_v2.jsonl", "_twitter.csv".
std::string_view CorpusFileSuffix(CorpusFormat format);

struct CorpusOptions {
  std::size_t tweetCount = 5000;
  std::uint64_t seed = kDefaultCorpusSeed;
  int userCount = 1500;  // besides the ten official accounts; 50..1000000
  int days = 18;         // length of the corpus in days, 7..36600
  // The first day of the corpus (its midnight, UTC).
  int startYear = 2013;
  int startMonth = 9;
  int startDay = 2;
};

// One generated tweet, as every layout carries it.
struct GeneratedTweet {
  std::int64_t time = 0;         // seconds since the epoch, UTC
  std::uint64_t id = 0;          // grows with time
  std::uint32_t user = 0;        // index into CorpusGenerator::Users()
  std::uint32_t userTweets = 0;  // the author's tweet count at this tweet
  int topic = 0;                 // 0 chatter, 1 storm watch, 2 aftermath, 3.. the bursts
  std::string text;              // UTF-8, no tab, no line feed
  std::string link;              // the first link of the text ("http://" or "https://"), or empty
  std::string linkUrl;           // the expanded "http://" form of the link, for about a third of
                                 // the tweets with a link; empty otherwise
  std::string geo;               // "lat,long" or empty
  int sentPos = 1;               // 1..5
  int sentNeg = -1;              // -1..-5
  int retweets = 0;              // retweet count
  // Byte offset in `text` before which the six-column layout writes a stray tab (always just
  // after a space and before an ASCII letter); 0 for none.
  std::size_t strayTab = 0;
  bool swappedWithNext = false;  // written after the next tweet in the six-column layout
};

struct GeneratedUser {
  std::string handle;    // ASCII letters, digits and "_", at most 15 characters
  std::string realName;  // UTF-8, may hold accents
  int followers = 0;
  int following = 0;
  int lists = 0;
  int baseTweets = 0;    // tweets posted before the corpus begins
  std::string timeZone;  // may be empty
  std::string country;   // may be empty
  std::string region;    // may be empty
  bool official = false;
};

// A burst: a stretch of hours whose volume its own topic raises.
struct CorpusBurst {
  std::string name;     // e.g. "landfall"
  std::string hashtag;  // its most frequent hashtag, without "#"
  int topic = 0;
  std::int64_t onset = 0;  // start of the hour the burst begins
  std::int64_t peak = 0;   // start of the hour of its highest volume
};

class CorpusGenerator {
 public:
  // Plans the corpus. Throws sylvora::RangeError for options out of range.
  explicit CorpusGenerator(const CorpusOptions& options);
  ~CorpusGenerator();
  CorpusGenerator(const CorpusGenerator&) = delete;
  CorpusGenerator& operator=(const CorpusGenerator&) = delete;

  const CorpusOptions& Options() const;
  std::size_t TweetCount() const;
  const std::vector<GeneratedUser>& Users() const;
  const std::vector<CorpusBurst>& Bursts() const;
  // Start of the first and end of the last day of the corpus.
  std::int64_t StartTime() const;
  std::int64_t EndTime() const;

  // Visits every tweet oldest first (or newest first). The reference is valid during the call.
  void ForEachTweet(const std::function<void(const GeneratedTweet&)>& visit,
                    bool newestFirst = false) const;

  // Writes the corpus in one layout (tab-separated, LF line ends, UTF-8). Throws sylvora::Error
  // naming the file when it cannot be written. Returns the number of bytes written.
  std::uint64_t WriteFile(CorpusFormat format, const std::filesystem::path& path) const;
  // The same layout as one string (for tests and small corpora).
  std::string WriteString(CorpusFormat format) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// Writes a corpus of `tweetCount` tweets in one layout to `path`, as benchmarks need it; the
// other options keep their defaults. Throws like CorpusGenerator::WriteFile.
std::uint64_t WriteSyntheticCorpus(CorpusFormat format, const std::filesystem::path& path,
                                   std::size_t tweetCount, std::uint64_t seed = kDefaultCorpusSeed);

// The tweet count a benchmark runs at: the environment variable `variable` when set, else
// `fallback`.
std::size_t TweetCountFromEnvironment(const char* variable, std::size_t fallback);

// "sylvora-bench-<tweets><suffix of the layout>" in the temp folder, generated on first use and
// kept for later runs (the benchmarks of one size share it).
std::string CachedCorpusFile(CorpusFormat format, std::size_t tweetCount);

}  // namespace sylvora::bench
