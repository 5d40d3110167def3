// sylvora-gen-corpus: writes the synthetic tweet corpus in one or more layouts.

#include <charconv>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "generator/corpus_generator.h"

namespace {

using sylvora::bench::CorpusFormat;

constexpr std::string_view kUsage =
    "usage: sylvora-gen-corpus [--tweets N] [--seed S] [--out-dir DIR] [--prefix NAME]\n"
    "                          [--formats 7,8,9,json,csv] [--users N] [--days N]\n"
    "                          [--start YYYY-MM-DD]\n"
    "\n"
    "Writes a synthetic tweet corpus (a storm hitting a made-up coastal town) as\n"
    "  NAME_twitter.txt    format 7: six columns with a header, oldest first\n"
    "  NAME_twitter11.txt  format 8: sixteen columns, no header, newest first\n"
    "  NAME_radian6.txt    format 9: a monitoring export of 22 columns with a header\n"
    "  NAME_twitter_v2.jsonl  json: X / Twitter API v2 objects, one a line, newest first\n"
    "  NAME_twitter.csv    csv: named columns with a header row, oldest first\n"
    "Defaults: --tweets 5000 --seed 20130902 --out-dir . --prefix sample\n"
    "          --formats 7,8,9,json,csv\n"
    "          --users 1500 --days 18 --start 2013-09-02\n";

template <typename T>
bool ParseNumber(std::string_view text, T& value) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool ParseFormats(std::string_view text, std::vector<CorpusFormat>& formats) {
  formats.clear();
  while (!text.empty()) {
    const std::size_t comma = text.find(',');
    const std::string_view item = text.substr(0, comma);
    int code = 0;
    if (item == "json") {
      formats.push_back(CorpusFormat::kTwitterV2Json);
    } else if (item == "csv") {
      formats.push_back(CorpusFormat::kNamedCsv);
    } else {
      if (!ParseNumber(item, code)) return false;
      const auto format = sylvora::bench::CorpusFormatFromCode(code);
      if (!format) return false;
      formats.push_back(*format);
    }
    if (comma == std::string_view::npos) break;
    text.remove_prefix(comma + 1);
  }
  return !formats.empty();
}

bool ParseDate(std::string_view text, sylvora::bench::CorpusOptions& options) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
  return ParseNumber(text.substr(0, 4), options.startYear) &&
         ParseNumber(text.substr(5, 2), options.startMonth) &&
         ParseNumber(text.substr(8, 2), options.startDay);
}

int Fail(const std::string& message) {
  std::fprintf(stderr, "sylvora-gen-corpus: %s\n\n%.*s", message.c_str(),
               static_cast<int>(kUsage.size()), kUsage.data());
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  sylvora::bench::CorpusOptions options;
  std::filesystem::path outDir = ".";
  std::string prefix = "sample";
  std::vector<CorpusFormat> formats = {CorpusFormat::kTwitter, CorpusFormat::kTwitter11,
                                       CorpusFormat::kMonitoring, CorpusFormat::kTwitterV2Json,
                                       CorpusFormat::kNamedCsv};

  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      std::fwrite(kUsage.data(), 1, kUsage.size(), stdout);
      return 0;
    }
    if (i + 1 >= argc) return Fail("missing value after " + std::string(arg));
    const std::string_view value = argv[++i];
    bool ok = true;
    if (arg == "--tweets") {
      ok = ParseNumber(value, options.tweetCount);
    } else if (arg == "--seed") {
      ok = ParseNumber(value, options.seed);
    } else if (arg == "--out-dir") {
      outDir = value;
    } else if (arg == "--prefix") {
      prefix = value;
      ok = !prefix.empty();
    } else if (arg == "--formats") {
      ok = ParseFormats(value, formats);
    } else if (arg == "--users") {
      ok = ParseNumber(value, options.userCount);
    } else if (arg == "--days") {
      ok = ParseNumber(value, options.days);
    } else if (arg == "--start") {
      ok = ParseDate(value, options);
    } else {
      return Fail("unknown option " + std::string(arg));
    }
    if (!ok) return Fail("bad value \"" + std::string(value) + "\" for " + std::string(arg));
  }

  try {
    using Clock = std::chrono::steady_clock;
    const auto planStart = Clock::now();
    const sylvora::bench::CorpusGenerator generator(options);
    const std::chrono::duration<double> planTime = Clock::now() - planStart;
    std::printf("planned %zu tweets by %zu users in %.2f s\n", generator.TweetCount(),
                generator.Users().size(), planTime.count());
    std::filesystem::create_directories(outDir);
    for (CorpusFormat format : formats) {
      const auto path = outDir / (prefix + std::string(sylvora::bench::CorpusFileSuffix(format)));
      const auto start = Clock::now();
      const std::uint64_t bytes = generator.WriteFile(format, path);
      const std::chrono::duration<double> seconds = Clock::now() - start;
      std::printf("wrote %s (format %d, %llu bytes) in %.2f s\n", path.string().c_str(),
                  static_cast<int>(format), static_cast<unsigned long long>(bytes),
                  seconds.count());
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "sylvora-gen-corpus: %s\n", error.what());
    return 1;
  }
  return 0;
}
