#include "generator/corpus_generator.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <span>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

#include "common/date_time.h"
#include "common/errors.h"
#include "generator/corpus_vocabulary.h"

namespace sylvora::bench {
namespace {

namespace voc = vocabulary;

// ---------------------------------------------------------------------------------------------
// Random numbers. std::mt19937_64's sequence is fixed by the standard; the distributions of
// <random> are not, so the few this generator needs are written here.

constexpr std::uint64_t SplitMix64(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15ULL;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
  return x ^ (x >> 31);
}

class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  // Uniform on [0, 1), from the top 53 bits.
  double Uniform() { return static_cast<double>(engine_() >> 11) * 0x1.0p-53; }
  // Uniform on 0..n-1; n > 0.
  std::size_t Below(std::size_t n) {
    const auto pick = static_cast<std::size_t>(Uniform() * static_cast<double>(n));
    return pick < n ? pick : n - 1;
  }
  // Uniform on lo..hi, both included.
  int Between(int lo, int hi) {
    return lo + static_cast<int>(Below(static_cast<std::size_t>(hi - lo + 1)));
  }
  bool Chance(double p) { return Uniform() < p; }
  // Standard normal, by Box-Muller (one value per call, the second is dropped).
  double Normal() {
    const double u = 1.0 - Uniform();  // (0, 1]
    const double v = Uniform();
    return std::sqrt(-2.0 * std::log(u)) * std::cos(6.283185307179586 * v);
  }
  template <typename T>
  const T& Pick(std::span<const T> items) {
    return items[Below(items.size())];
  }
  template <typename T>
  const T& Pick(const std::vector<T>& items) {
    return items[Below(items.size())];
  }

 private:
  std::mt19937_64 engine_;
};

// Draws indices 0..n-1 by fixed weights, by binary search on the running sums.
class WeightedPicker {
 public:
  WeightedPicker() = default;
  explicit WeightedPicker(const std::vector<double>& weights) {
    cumulative_.reserve(weights.size());
    double sum = 0;
    for (double w : weights) cumulative_.push_back(sum += w);
  }
  std::size_t Pick(Random& rng) const {
    const double target = rng.Uniform() * cumulative_.back();
    const auto it = std::upper_bound(cumulative_.begin(), cumulative_.end(), target);
    return std::min(static_cast<std::size_t>(it - cumulative_.begin()), cumulative_.size() - 1);
  }

 private:
  std::vector<double> cumulative_;
};

// ---------------------------------------------------------------------------------------------
// Calendar arithmetic on days since 1970-01-01 (proleptic Gregorian, after H. Hinnant's
// civil-date algorithms).

struct CivilDate {
  int year;
  int month;
  int day;
};

std::int64_t DaysFromCivil(int year, int month, int day) {
  const int y = year - (month <= 2 ? 1 : 0);
  const int era = (y >= 0 ? y : y - 399) / 400;
  const int yoe = y - era * 400;
  const int mp = (month + 9) % 12;
  const int doy = (153 * mp + 2) / 5 + day - 1;
  const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return static_cast<std::int64_t>(era) * 146097 + doe - 719468;
}

CivilDate CivilFromDays(std::int64_t z) {
  z += 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const auto doe = static_cast<int>(z - era * 146097);
  const int yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int mp = (5 * doy + 2) / 153;
  const int day = doy - (153 * mp + 2) / 5 + 1;
  const int month = mp < 10 ? mp + 3 : mp - 9;
  const auto year = static_cast<int>(yoe + era * 400 + (month <= 2 ? 1 : 0));
  return {year, month, day};
}

constexpr std::int64_t kSecondsPerHour = 3600;
constexpr std::int64_t kSecondsPerDay = 86400;

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) {
  const std::int64_t q = a / b;
  return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

constexpr std::string_view kWeekdayNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::string_view kMonthNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

struct ClockTime {
  CivilDate date;
  int weekday;  // 0 = Sunday
  int hour, minute, second;
};

ClockTime SplitTime(std::int64_t t) {
  const std::int64_t days = FloorDiv(t, kSecondsPerDay);
  const auto secs = static_cast<int>(t - days * kSecondsPerDay);
  const auto weekday = static_cast<int>(((days % 7) + 11) % 7);  // 1970-01-01 was a Thursday
  return {CivilFromDays(days), weekday, secs / 3600, secs / 60 % 60, secs % 60};
}

// ---------------------------------------------------------------------------------------------
// Text helpers.

std::size_t CodePoints(std::string_view s) {
  std::size_t n = 0;
  for (char c : s) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
  return n;
}

// Byte offset of the code point numbered `count` (0-based), or s.size().
std::size_t ByteOffsetOfCodePoint(std::string_view s, std::size_t count) {
  std::size_t seen = 0;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if ((static_cast<unsigned char>(s[i]) & 0xC0) == 0x80) continue;
    if (seen == count) return i;
    ++seen;
  }
  return s.size();
}

constexpr std::size_t kTweetLimit = 140;
constexpr std::string_view kEllipsis = "…";

// Cuts a text longer than a tweet back to its last whole word and marks the cut with "…".
void TruncateTweet(std::string& s) {
  if (CodePoints(s) <= kTweetLimit) return;
  std::size_t cut = ByteOffsetOfCodePoint(s, kTweetLimit - 1);
  const std::size_t space = s.rfind(' ', cut);
  if (space != std::string::npos && space > 0) cut = space;
  s.resize(cut);
  while (!s.empty() && s.back() == ' ') s.pop_back();
  s += kEllipsis;
}

// The first "http://" or "https://" link of a text, up to the next space.
std::string_view FirstLink(std::string_view text) {
  const std::size_t plain = text.find("http://");
  const std::size_t secure = text.find("https://");
  const std::size_t start = std::min(plain, secure);
  if (start == std::string_view::npos) return {};
  const std::size_t end = text.find(' ', start);
  return text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
}

void ReplaceAll(std::string& s, std::string_view from, std::string_view to) {
  std::size_t pos = 0;
  while ((pos = s.find(from, pos)) != std::string::npos) {
    s.replace(pos, from.size(), to);
    pos += to.size();
  }
}

std::string Lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

// Only ASCII letters, digits and "_" survive in a handle.
std::string HandleSafe(std::string_view s) {
  std::string out;
  for (char c : s) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_') {
      out += c;
    }
  }
  return out;
}

constexpr std::string_view kCodeAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

std::string RandomCode(Random& rng, std::size_t length) {
  std::string code(length, ' ');
  for (char& c : code) c = kCodeAlphabet[rng.Below(kCodeAlphabet.size())];
  return code;
}

// ---------------------------------------------------------------------------------------------
// Output through one large buffer.

class Output {
 public:
  explicit Output(std::FILE* file, const std::filesystem::path* path) : file_(file), path_(path) {
    buffer_.reserve(kFlushAt + 64 * 1024);
  }

  void Put(std::string_view s) { buffer_.append(s); }
  void Put(char c) { buffer_.push_back(c); }
  void Tab() { buffer_.push_back('\t'); }
  void Int(std::int64_t value) {
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    buffer_.append(digits, result.ptr);
  }
  void UInt(std::uint64_t value) {
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    buffer_.append(digits, result.ptr);
  }
  void TwoDigits(int value) {
    buffer_.push_back(static_cast<char>('0' + value / 10 % 10));
    buffer_.push_back(static_cast<char>('0' + value % 10));
  }
  void EndLine() {
    buffer_.push_back('\n');
    if (file_ != nullptr && buffer_.size() >= kFlushAt) Flush();
  }
  void Flush() {
    if (file_ == nullptr || buffer_.empty()) return;
    if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) {
      throw Error("cannot write corpus file " + path_->string() + ": " + std::strerror(errno));
    }
    written_ += buffer_.size();
    buffer_.clear();
  }
  std::uint64_t Written() const { return written_ + buffer_.size(); }
  std::string TakeString() { return std::move(buffer_); }

 private:
  static constexpr std::size_t kFlushAt = 4 << 20;
  std::FILE* file_;
  const std::filesystem::path* path_;
  std::string buffer_;
  std::uint64_t written_ = 0;
};

// ---------------------------------------------------------------------------------------------
// The vocabulary, compiled once: polarity annotations split off, template slots resolved.

struct Polarity {
  int pos = 0;  // 0..4
  int neg = 0;  // 0..4, as a strength

  void Merge(Polarity other) {
    pos = std::max(pos, other.pos);
    neg = std::max(neg, other.neg);
  }
};

struct Entry {
  std::string_view text;
  Polarity polarity;
};

Entry ParseEntry(std::string_view raw) {
  Entry entry{raw, {}};
  const std::size_t bar = raw.rfind('|');
  if (bar == std::string_view::npos) return entry;
  entry.text = raw.substr(0, bar);
  std::string_view notes = raw.substr(bar + 1);
  while (!notes.empty()) {
    const char sign = notes.front();
    int strength = 0;
    std::size_t i = 1;
    while (i < notes.size() && notes[i] >= '0' && notes[i] <= '9') {
      strength = strength * 10 + (notes[i] - '0');
      ++i;
    }
    if (sign == '+') entry.polarity.pos = std::max(entry.polarity.pos, strength);
    if (sign == '-') entry.polarity.neg = std::max(entry.polarity.neg, strength);
    while (i < notes.size() && notes[i] == ' ') ++i;
    notes.remove_prefix(i);
  }
  return entry;
}

enum class PieceKind { kLiteral, kList, kNumber, kUser, kOfficial };

struct Piece {
  PieceKind kind = PieceKind::kLiteral;
  std::string_view text;
  std::size_t list = 0;
  int lo = 0;
  int hi = 0;
};

struct Template {
  std::vector<Piece> pieces;
  Polarity polarity;
};

class Vocabulary {
 public:
  Vocabulary() {
    const auto lexicon = voc::Lexicon();
    std::unordered_map<std::string_view, std::size_t> byName;
    for (std::size_t i = 0; i < lexicon.size(); ++i) {
      byName.emplace(lexicon[i].name, i);
      auto& list = lists_.emplace_back();
      for (std::string_view raw : lexicon[i].entries) list.push_back(ParseEntry(raw));
    }
    for (int topic = 0; topic < voc::kTopicCount; ++topic) {
      for (std::string_view raw : voc::Topic(topic).templates) {
        templates_[static_cast<std::size_t>(topic)].push_back(Compile(raw, byName));
      }
    }
    for (std::string_view raw : voc::FestivalHype()) hype_.push_back(Compile(raw, byName));
    for (std::string_view raw : voc::Emoji()) emoji_.push_back(ParseEntry(raw));
    for (int topic = 0; topic < voc::kTopicCount; ++topic) {
      for (std::string_view raw : voc::Tails(topic)) {
        tails_[static_cast<std::size_t>(topic)].push_back(ParseEntry(raw));
      }
    }
  }

  const std::vector<Entry>& List(std::size_t index) const { return lists_[index]; }
  const std::vector<Template>& Templates(int topic) const {
    return templates_[static_cast<std::size_t>(topic)];
  }
  const std::vector<Template>& Hype() const { return hype_; }
  const std::vector<Entry>& Emoji() const { return emoji_; }
  const std::vector<Entry>& Tails(int topic) const {
    return tails_[static_cast<std::size_t>(topic)];
  }

 private:
  static Template Compile(std::string_view raw,
                          const std::unordered_map<std::string_view, std::size_t>& byName) {
    const Entry entry = ParseEntry(raw);
    Template compiled;
    compiled.polarity = entry.polarity;
    std::string_view rest = entry.text;
    while (!rest.empty()) {
      const std::size_t open = rest.find('{');
      if (open == std::string_view::npos) {
        compiled.pieces.push_back({PieceKind::kLiteral, rest});
        break;
      }
      if (open > 0) compiled.pieces.push_back({PieceKind::kLiteral, rest.substr(0, open)});
      const std::size_t close = rest.find('}', open);
      if (close == std::string_view::npos) throw std::logic_error("unclosed slot in template");
      const std::string_view slot = rest.substr(open + 1, close - open - 1);
      compiled.pieces.push_back(CompileSlot(slot, byName));
      rest.remove_prefix(close + 1);
    }
    return compiled;
  }

  static Piece CompileSlot(std::string_view slot,
                           const std::unordered_map<std::string_view, std::size_t>& byName) {
    Piece piece;
    if (slot == "@user") {
      piece.kind = PieceKind::kUser;
    } else if (slot == "@official") {
      piece.kind = PieceKind::kOfficial;
    } else if (slot.starts_with("n:")) {
      piece.kind = PieceKind::kNumber;
      const std::string_view range = slot.substr(2);
      const std::size_t dash = range.find('-');
      std::from_chars(range.data(), range.data() + dash, piece.lo);
      std::from_chars(range.data() + dash + 1, range.data() + range.size(), piece.hi);
    } else {
      const auto found = byName.find(slot);
      if (found == byName.end()) throw std::logic_error("unknown template slot");
      piece.kind = PieceKind::kList;
      piece.list = found->second;
    }
    return piece;
  }

  std::vector<std::vector<Entry>> lists_;
  std::array<std::vector<Template>, voc::kTopicCount> templates_;
  std::vector<Template> hype_;
  std::vector<Entry> emoji_;
  std::array<std::vector<Entry>, voc::kTopicCount> tails_;
};

// ---------------------------------------------------------------------------------------------
// How each topic writes.

struct TopicStyle {
  double tagChance;        // at least one hashtag
  double secondTagChance;  // a second one, given the first
  double linkChance;
  double replyChance;  // opens with "@someone "
  double emojiChance;
  double retweetChance;  // a tweet of the topic is a retweet (when there is something to RT)
  double poolChance;     // an original becomes one that others retweet
};

constexpr std::array<TopicStyle, voc::kTopicCount> kStyles = {{
    {0.10, 0.15, 0.12, 0.14, 0.05, 0.06, 0.010},  // chatter
    {0.45, 0.25, 0.30, 0.08, 0.03, 0.20, 0.050},  // storm watch
    {0.50, 0.25, 0.32, 0.08, 0.04, 0.22, 0.050},  // aftermath
    {0.70, 0.35, 0.28, 0.05, 0.06, 0.30, 0.050},  // festival cancelled
    {0.70, 0.30, 0.25, 0.04, 0.06, 0.32, 0.050},  // landfall
    {0.65, 0.30, 0.25, 0.05, 0.05, 0.25, 0.050},  // power outage
}};

// Share of tweets per hour of the day (clock time as written), before normalising to mean 1.
constexpr std::array<double, 24> kDailyRhythm = {0.55, 0.35, 0.22, 0.15, 0.12, 0.15, 0.30, 0.55,
                                                 0.80, 0.90, 0.95, 1.00, 1.10, 1.05, 1.00, 1.00,
                                                 1.10, 1.25, 1.45, 1.65, 1.80, 1.75, 1.40, 0.95};

// A burst's extra volume per hour, in units of the mean ordinary hourly volume: a quadratic
// ramp over `ramp` hours before the onset, then an exponential decay with a slower tail.
struct BurstShape {
  int topic;
  std::string_view name;
  std::string_view hashtag;
  int onsetHour;  // hours since the start of the corpus
  double amplitude;
  double ramp;
  double tau;
  double tail;
  double tailTau;
  bool followsDay;  // scaled by the daily rhythm (people tweet about it when awake)
};

double BurstVolume(const BurstShape& b, int hour, double rhythm) {
  const double dh = hour - b.onsetHour;
  double v = 0;
  if (dh < 0) {
    if (b.ramp <= 0 || dh < -b.ramp) return 0;
    const double x = (dh + b.ramp) / b.ramp;
    v = 0.7 * b.amplitude * x * x;
  } else {
    v = b.amplitude * std::exp(-dh / b.tau) + b.tail * std::exp(-dh / b.tailTau);
  }
  return b.followsDay ? v * rhythm : v;
}

// ---------------------------------------------------------------------------------------------
// The plan: who tweets what kind of tweet when.

enum class TweetKind : std::uint8_t { kOriginal, kPoolOriginal, kRetweet };

struct PlannedTweet {
  std::int64_t ms = 0;  // milliseconds since the epoch
  std::uint32_t user = 0;
  std::uint32_t userTweets = 0;
  std::int32_t pool = -1;  // index into the topic's pool for kPoolOriginal and kRetweet
  std::uint8_t topic = 0;
  TweetKind kind = TweetKind::kOriginal;
  bool swapWithNext = false;
};

// A composed tweet text with what it carries.
struct Composed {
  std::string text;
  std::string link;      // the link that was appended, or empty
  std::string expanded;  // its long "http://" form
  int sentPos = 1;
  int sentNeg = -1;
};

// An original that others retweet.
struct PoolItem {
  Composed composed;
  std::uint32_t author = 0;
  double popularity = 1;
  std::int64_t originMs = 0;
  int retweets = 0;
};

struct Article {
  std::string longUrl;  // "http://www.site/section/slug-123456"
  std::string secureUrl;
  std::string shortUrl;  // "http://t.co/XXXXXXXX"
  std::string bitlyUrl;  // "http://bit.ly/XXXXXXX"
};

struct Home {
  bool geoEnabled = false;
  int latMicro = 0;  // micro-degrees
  int lonMicro = 0;
};

constexpr std::size_t kBlockSize = 4096;
constexpr std::int64_t kSnowflakeEpochMs = 1288834974657;
constexpr std::int64_t kMsPerHour = kSecondsPerHour * 1000;
constexpr std::size_t kRetweetWindow = 48;
constexpr int kTownLatMicro = 41473100;
constexpr int kTownLonMicro = -71051200;

void AppendMicroDegrees(std::string& out, int micro) {
  if (micro < 0) {
    out += '-';
    micro = -micro;
  }
  out += std::to_string(micro / 1000000);
  out += '.';
  const std::string frac = std::to_string(micro % 1000000);
  out.append(6 - frac.size(), '0');
  out += frac;
}

}  // namespace

// ---------------------------------------------------------------------------------------------

struct CorpusGenerator::Impl {
  CorpusOptions options;
  Vocabulary vocabulary;
  std::vector<GeneratedUser> users;
  std::vector<Home> homes;
  std::uint32_t officialCount = 0;
  WeightedPicker userPicker;  // over ordinary users; picks are offset by officialCount
  std::array<std::vector<Article>, voc::kTopicCount> articles;
  std::array<WeightedPicker, voc::kTopicCount> articlePickers;
  std::array<std::vector<PoolItem>, voc::kTopicCount> pools;
  std::vector<BurstShape> shapes;
  std::vector<CorpusBurst> bursts;
  std::vector<PlannedTweet> plan;
  std::int64_t startTime = 0;
  std::int64_t festivalOnsetMs = 0;
  std::int64_t landfallOnsetMs = 0;

  explicit Impl(const CorpusOptions& opts) : options(opts) {
    Validate();
    startTime =
        DaysFromCivil(options.startYear, options.startMonth, options.startDay) * kSecondsPerDay;
    Random rng(options.seed);
    MakeUsers(rng);
    MakeArticles(rng);
    MakeBursts();
    MakePools(rng);
    PlanTweets(rng);
  }

  void Validate() const {
    if (options.userCount < 50 || options.userCount > 1'000'000) {
      throw RangeError("user count " + std::to_string(options.userCount) +
                       " is outside 50..1000000");
    }
    if (options.days < 7 || options.days > 36600) {
      throw RangeError("corpus length of " + std::to_string(options.days) +
                       " days is outside 7..36600 (a hundred years)");
    }
    if (options.tweetCount > 100'000'000) {
      throw RangeError("tweet count " + std::to_string(options.tweetCount) + " is above 100000000");
    }
    if (!DateTime::FromParts(options.startYear, options.startMonth, options.startDay) ||
        options.startYear < 1950 || options.startYear > 2099) {
      throw RangeError("start date " + std::to_string(options.startYear) + "-" +
                       std::to_string(options.startMonth) + "-" + std::to_string(options.startDay) +
                       " is no date in 1950..2099");
    }
  }

  // --- users -----------------------------------------------------------------------------

  void MakeUsers(Random& rng) {
    std::unordered_set<std::string> taken;
    for (const auto& official : voc::Officials()) {
      GeneratedUser user;
      user.handle = std::string(official.handle);
      user.realName = std::string(official.realName);
      user.followers = official.followers;
      user.following = rng.Between(150, 1800);
      user.lists = official.followers / 60 + rng.Between(0, 40);
      user.baseTweets = rng.Between(2000, 24000);
      user.timeZone = "Eastern Time (US & Canada)";
      user.country = "United States";
      user.region = "New England";
      user.official = true;
      taken.insert(Lower(user.handle));
      users.push_back(std::move(user));
      homes.push_back({});
    }
    officialCount = static_cast<std::uint32_t>(users.size());

    for (int i = 0; i < options.userCount; ++i) {
      users.push_back(MakeUser(rng, taken));
      Home home;
      home.geoEnabled = rng.Chance(0.12);
      home.latMicro = kTownLatMicro + static_cast<int>(rng.Normal() * 25000);
      home.lonMicro = kTownLonMicro + static_cast<int>(rng.Normal() * 35000);
      homes.push_back(home);
    }

    // Zipf-like activity over a random order of the ordinary users.
    const auto count = static_cast<std::size_t>(options.userCount);
    std::vector<std::size_t> rank(count);
    for (std::size_t i = 0; i < count; ++i) rank[i] = i;
    for (std::size_t i = count - 1; i > 0; --i) std::swap(rank[i], rank[rng.Below(i + 1)]);
    std::vector<double> weights(count);
    for (std::size_t i = 0; i < count; ++i) {
      weights[i] = std::pow(static_cast<double>(rank[i]) + 10.0, -1.2);
    }
    userPicker = WeightedPicker(weights);
  }

  static GeneratedUser MakeUser(Random& rng, std::unordered_set<std::string>& taken) {
    // A first name with an accent comes as "Display|Ascii"; handles take the ASCII form.
    const std::string_view rawFirst = rng.Pick(voc::FirstNames());
    const std::size_t bar = rawFirst.find('|');
    const std::string_view display = rawFirst.substr(0, bar);
    const std::string_view ascii =
        bar == std::string_view::npos ? rawFirst : rawFirst.substr(bar + 1);
    GeneratedUser user;
    const std::string_view last = rng.Pick(voc::LastNames());
    const std::string word = std::string(rng.Pick(voc::HandleWords()));
    const std::string word2 = std::string(rng.Pick(voc::HandleWords()));
    const std::string first = HandleSafe(ascii);
    const std::string lastSafe = HandleSafe(last);
    const std::string number = std::to_string(rng.Between(1, 99));

    std::string handle;
    switch (rng.Below(9)) {
      case 0:
        handle = Lower(first + lastSafe);
        break;
      case 1:
        handle = Lower(first) + "_" + Lower(lastSafe.substr(0, 1));
        break;
      case 2:
        handle = Lower(first) + number;
        break;
      case 3:
        handle = word + word2;
        break;
      case 4:
        handle = word + first;
        break;
      case 5:
        handle = "the_" + word;
        break;
      case 6:
        handle = Lower(first.substr(0, 1) + lastSafe);
        break;
      case 7:
        handle = first + lastSafe;
        break;
      default:
        handle = word + "_" + number;
        break;
    }
    if (handle.size() > 15) handle.resize(15);
    // A taken handle gets a number, short at first.
    const std::string base = handle;
    for (int attempt = 0; taken.count(Lower(handle)) != 0; ++attempt) {
      const std::string suffix = std::to_string(rng.Between(1, attempt < 3    ? 99
                                                               : attempt < 20 ? 9999
                                                                              : 9999999));
      handle = base.substr(0, std::min(base.size(), 15 - suffix.size())) + suffix;
    }
    taken.insert(Lower(handle));
    user.handle = handle;

    const double style = rng.Uniform();
    if (style < 0.78) {
      user.realName = std::string(display) + " " + std::string(last);
    } else if (style < 0.86) {
      user.realName = std::string(display);
    } else if (style < 0.93) {
      user.realName = std::string(display) + " " + std::string(last.substr(0, 1)) + ".";
    } else {
      std::string nick = word + " " + word2;
      nick[0] = static_cast<char>(nick[0] - 'a' + 'A');
      nick[word.size() + 1] = static_cast<char>(nick[word.size() + 1] - 'a' + 'A');
      user.realName = nick;
    }

    user.followers = static_cast<int>(std::min(250000.0, std::exp(5.2 + 1.3 * rng.Normal())));
    user.following = static_cast<int>(std::min(5000.0, std::exp(5.6 + 0.9 * rng.Normal())));
    user.lists = user.followers / 150 + rng.Between(0, 3);
    user.baseTweets = static_cast<int>(std::min(150000.0, std::exp(7.3 + 1.3 * rng.Normal())));
    user.timeZone = std::string(rng.Pick(voc::TimeZones()));
    const double where = rng.Uniform();
    if (where < 0.75) {
      user.country = "United States";
      const double region = rng.Uniform();
      user.region = region < 0.6 ? "New England" : region < 0.8 ? "Mid-Atlantic" : "";
    } else if (where < 0.80) {
      user.country = "Canada";
    } else if (where < 0.85) {
      user.country = "United Kingdom";
    }
    return user;
  }

  std::uint32_t PickUser(Random& rng) const {
    return officialCount + static_cast<std::uint32_t>(userPicker.Pick(rng));
  }

  std::uint32_t PickOfficial(Random& rng, int topic) const {
    const auto officials = voc::Topic(topic).officials;
    return static_cast<std::uint32_t>(officials[rng.Below(officials.size())]);
  }

  // --- links -----------------------------------------------------------------------------

  void MakeArticles(Random& rng) {
    constexpr std::string_view kSections[] = {"news", "local", "story", "2013"};
    const std::size_t perTopic = std::clamp<std::size_t>(options.tweetCount / 400, 6, 400);
    for (int topic = 0; topic < voc::kTopicCount; ++topic) {
      const auto& text = voc::Topic(topic);
      auto& list = articles[static_cast<std::size_t>(topic)];
      std::vector<double> weights;
      for (std::size_t k = 0; k < perTopic; ++k) {
        const std::string_view domain = rng.Pick(text.linkDomains);
        std::string path;
        if (domain == "snapgrid.com") {
          path = "/p/" + RandomCode(rng, 7);
        } else if (domain == "vidloop.com") {
          path = "/watch?v=" + RandomCode(rng, 11);
        } else {
          path = "/" + std::string(kSections[rng.Below(std::size(kSections))]) + "/" +
                 std::string(rng.Pick(text.linkSlugs)) + "-" +
                 std::to_string(rng.Between(100000, 999999));
        }
        Article article;
        article.longUrl = "http://www." + std::string(domain) + path;
        article.secureUrl = "https://www." + std::string(domain) + path;
        article.shortUrl = "http://t.co/" + RandomCode(rng, 8);
        article.bitlyUrl = "http://bit.ly/" + RandomCode(rng, 7);
        list.push_back(std::move(article));
        weights.push_back(1.0 / (static_cast<double>(k) + 1.0));
      }
      articlePickers[static_cast<std::size_t>(topic)] = WeightedPicker(weights);
    }
  }

  // The link text of a tweet about `topic`, and its long form.
  void PickLink(Random& rng, int topic, std::string& link, std::string& expanded) const {
    const auto t = static_cast<std::size_t>(topic);
    const Article& article = articles[t][articlePickers[t].Pick(rng)];
    expanded = article.longUrl;
    const double kind = rng.Uniform();
    if (kind < 0.58) {
      link = article.shortUrl;
    } else if (kind < 0.83) {
      link = article.longUrl;
    } else if (kind < 0.95) {
      link = article.secureUrl;
    } else {
      link = article.bitlyUrl;
    }
  }

  // --- time line -------------------------------------------------------------------------

  int TotalHours() const { return options.days * 24; }

  void MakeBursts() {
    const int festivalHour = static_cast<int>(0.2 * options.days) * 24 + 14;
    const int landfallHour = static_cast<int>(0.42 * options.days) * 24 + 21;
    const int outageHour = landfallHour + 7;
    shapes = {
        {voc::kFestival, "festival cancelled", "HarbourLights", festivalHour, 7.0, 0.0, 5.0, 0.5,
         36.0, false},
        {voc::kLandfall, "landfall", "MarisolLandfall", landfallHour, 14.0, 4.0, 4.0, 1.2, 24.0,
         false},
        {voc::kOutage, "power outage", "WrennaOutage", outageHour, 8.0, 0.0, 12.0, 1.5, 48.0, true},
    };
    festivalOnsetMs = (startTime + festivalHour * kSecondsPerHour) * 1000;
    landfallOnsetMs = (startTime + landfallHour * kSecondsPerHour) * 1000;
    for (const BurstShape& shape : shapes) {
      CorpusBurst burst;
      burst.name = std::string(shape.name);
      burst.hashtag = std::string(shape.hashtag);
      burst.topic = shape.topic;
      burst.onset = startTime + shape.onsetHour * kSecondsPerHour;
      int peakHour = shape.onsetHour;
      double best = -1;
      for (int h = 0; h < TotalHours(); ++h) {
        const double v = BurstVolume(shape, h, Rhythm(h));
        if (v > best) best = v, peakHour = h;
      }
      burst.peak = startTime + peakHour * kSecondsPerHour;
      bursts.push_back(std::move(burst));
    }
  }

  static double Rhythm(int hour) {
    static const double mean = [] {
      double sum = 0;
      for (double v : kDailyRhythm) sum += v;
      return sum / 24.0;
    }();
    return kDailyRhythm[static_cast<std::size_t>(hour % 24)] / mean;
  }

  // Ordinary volume of an hour: the daily rhythm, a swell as the storm nears, busier weekends.
  double OrdinaryVolume(int hour) const {
    const double day = hour / 24.0;
    const double landfallDay = shapes[1].onsetHour / 24.0;
    const double swell = 0.8 * std::exp(-std::pow((day - landfallDay) / 2.5, 2.0));
    const ClockTime clock = SplitTime(startTime + hour * kSecondsPerHour);
    const double weekend = (clock.weekday == 0 || clock.weekday == 6) ? 0.1 : 0.0;
    return Rhythm(hour) * (1.0 + swell + weekend);
  }

  // Share of ordinary tweets that talk about the storm.
  double EventShare(int hour) const {
    const double landfall = shapes[1].onsetHour;
    if (hour < landfall) {
      const double progress = hour / landfall;
      return 0.12 + 0.5 * progress * progress;
    }
    return 0.3 + 0.32 * std::exp(-(hour - landfall) / 72.0);
  }

  // --- pools -----------------------------------------------------------------------------

  void MakePools(Random& rng) {
    const std::size_t size = std::clamp<std::size_t>(options.tweetCount / 150, 8, 1500);
    for (int topic = 0; topic < voc::kTopicCount; ++topic) {
      const std::size_t count = topic == voc::kChatter ? std::max<std::size_t>(size / 4, 4) : size;
      auto& pool = pools[static_cast<std::size_t>(topic)];
      pool.resize(count);
      for (PoolItem& item : pool) {
        const bool byOfficial = topic != voc::kChatter && rng.Chance(0.55);
        item.author = byOfficial ? PickOfficial(rng, topic) : PickUser(rng);
        item.popularity = std::exp(0.9 * rng.Normal());
        Compose(rng, topic, /*hypeAllowed=*/false, /*linkChance=*/0.55, item.composed);
      }
    }
  }

  // --- composing texts -------------------------------------------------------------------

  void Expand(Random& rng, const Template& tpl, int topic, std::string& out,
              Polarity& polarity) const {
    polarity.Merge(tpl.polarity);
    for (const Piece& piece : tpl.pieces) {
      switch (piece.kind) {
        case PieceKind::kLiteral:
          out += piece.text;
          break;
        case PieceKind::kList: {
          const Entry& entry = rng.Pick(vocabulary.List(piece.list));
          out += entry.text;
          polarity.Merge(entry.polarity);
          break;
        }
        case PieceKind::kNumber:
          out += std::to_string(rng.Between(piece.lo, piece.hi));
          break;
        case PieceKind::kUser:
          out += '@';
          out += users[PickUser(rng)].handle;
          break;
        case PieceKind::kOfficial:
          out += '@';
          out += users[PickOfficial(rng, topic)].handle;
          break;
      }
    }
  }

  void Compose(Random& rng, int topic, bool hypeAllowed, double linkChance, Composed& out) const {
    const TopicStyle& style = kStyles[static_cast<std::size_t>(topic)];
    const auto& tags = voc::Topic(topic).hashtags;
    out.text.clear();
    out.link.clear();
    out.expanded.clear();

    const bool hype = hypeAllowed && rng.Chance(0.3);
    const Template& tpl = rng.Pick(hype ? vocabulary.Hype() : vocabulary.Templates(topic));
    Polarity polarity;

    std::string core;
    if (rng.Chance(style.replyChance)) {
      core += '@';
      core += users[PickUser(rng)].handle;
      core += ' ';
    }
    Expand(rng, tpl, topic, core, polarity);
    if (rng.Chance(0.35)) {
      const Entry& tail = rng.Pick(vocabulary.Tails(topic));
      const char last = core.back();
      if (last == '.' || last == '!' || last == '?') {
        core += ' ';
      } else {
        core += rng.Chance(0.6) ? ". " : " - ";
      }
      core += tail.text;
      polarity.Merge(tail.polarity);
    }

    // Apostrophes: mostly ASCII, sometimes typographic, rarely left HTML-escaped.
    const double apostrophe = rng.Uniform();
    if (apostrophe < 0.05) {
      ReplaceAll(core, "'", "’");
    } else if (apostrophe < 0.054) {
      ReplaceAll(core, "'", "&#039;");
    }

    // About 1% of all tweets (retweets included) open with a quotation or a hashtag.
    const double opening = rng.Uniform();
    if (opening < 0.0065) {
      core = "\"" + core + "\"";
    } else if (opening < 0.013) {
      core = "#" + std::string(rng.Pick(tags)) + " " + core;
    }

    // Extras in order of priority; each joins only when the tweet still fits.
    std::string link;
    std::string expanded;
    std::string via;
    if (rng.Chance(linkChance)) {
      PickLink(rng, topic, link, expanded);
      if (topic != voc::kChatter && rng.Chance(0.3)) {
        via = " via @" + users[PickOfficial(rng, topic)].handle;
      }
    }
    std::string tagText;
    if (rng.Chance(style.tagChance)) {
      const std::string_view first = rng.Pick(tags);
      tagText = " #" + std::string(first);
      if (rng.Chance(style.secondTagChance)) {
        const std::string_view second = rng.Pick(tags);
        if (second != first) tagText += " #" + std::string(second);
      }
    }
    std::string emoji;
    Polarity emojiPolarity;
    if (rng.Chance(style.emojiChance)) {
      const Entry& e = rng.Pick(vocabulary.Emoji());
      emoji = " " + std::string(e.text);
      emojiPolarity = e.polarity;
    }

    std::size_t used = CodePoints(core);
    const bool withVia = !via.empty() && used + via.size() + 1 + link.size() <= kTweetLimit;
    if (withVia) used += via.size();
    const bool withLink = !link.empty() && used + 1 + link.size() <= kTweetLimit;
    if (withLink) used += 1 + link.size();
    const bool withTags = !tagText.empty() && used + CodePoints(tagText) <= kTweetLimit;
    if (withTags) used += CodePoints(tagText);
    const bool withEmoji = !emoji.empty() && used + CodePoints(emoji) <= kTweetLimit;
    if (withEmoji) polarity.Merge(emojiPolarity);

    out.text = std::move(core);
    if (withEmoji) out.text += emoji;
    if (withTags) out.text += tagText;
    if (withVia) out.text += via;
    if (withLink) {
      out.text += ' ';
      out.text += link;
      out.link = std::move(link);
      out.expanded = std::move(expanded);
    }

    out.sentPos = std::clamp(1 + polarity.pos + (rng.Chance(0.12) ? 1 : 0), 1, 5);
    out.sentNeg = -std::clamp(1 + polarity.neg + (rng.Chance(0.12) ? 1 : 0), 1, 5);
  }

  // --- the plan --------------------------------------------------------------------------

  void PlanTweets(Random& rng) {
    const int hours = TotalHours();
    const std::size_t n = options.tweetCount;

    // Volume per hour and topic.
    std::vector<std::array<double, voc::kTopicCount>> topicVolume(static_cast<std::size_t>(hours));
    std::vector<double> hourVolume(static_cast<std::size_t>(hours));
    double total = 0;
    for (int h = 0; h < hours; ++h) {
      auto& v = topicVolume[static_cast<std::size_t>(h)];
      v.fill(0);
      const double ordinary = OrdinaryVolume(h);
      const double share = EventShare(h);
      v[voc::kChatter] = ordinary * (1.0 - share);
      // Talk turns from preparing to cleaning up on the morning after landfall.
      const bool afterLandfall = h >= shapes[1].onsetHour + 9;
      v[afterLandfall ? voc::kAftermath : voc::kStormWatch] = ordinary * share;
      for (const BurstShape& shape : shapes) {
        v[static_cast<std::size_t>(shape.topic)] += BurstVolume(shape, h, Rhythm(h));
      }
      // Real hours are noisy: each hour's volume varies by about 20% around its curve.
      const double noise = std::exp(0.2 * rng.Normal());
      double sum = 0;
      for (double& x : v) sum += (x *= noise);
      hourVolume[static_cast<std::size_t>(h)] = sum;
      total += sum;
    }

    // Tweets per hour, rounded so that they add up to n; times uniform inside each hour.
    plan.resize(n);
    std::size_t next = 0;
    double running = 0;
    for (int h = 0; h < hours && next < n; ++h) {
      running += hourVolume[static_cast<std::size_t>(h)];
      std::size_t upTo =
          h == hours - 1 ? n
                         : std::min(n, static_cast<std::size_t>(
                                           std::floor(running / total * static_cast<double>(n))));
      const std::size_t first = next;
      const std::int64_t hourStartMs = (startTime + h * kSecondsPerHour) * 1000;
      for (; next < upTo; ++next) {
        plan[next].ms = hourStartMs + static_cast<std::int64_t>(rng.Below(kMsPerHour));
      }
      std::sort(plan.begin() + static_cast<std::ptrdiff_t>(first),
                plan.begin() + static_cast<std::ptrdiff_t>(next),
                [](const PlannedTweet& a, const PlannedTweet& b) { return a.ms < b.ms; });
    }

    // Topic, kind and author of each tweet, in time order.
    std::array<std::vector<std::uint32_t>, voc::kTopicCount> originated;
    std::array<std::size_t, voc::kTopicCount> nextPoolItem{};
    std::vector<std::uint32_t> tweetsSoFar(users.size(), 0);
    std::vector<double> windowWeights;
    for (std::size_t i = 0; i < n; ++i) {
      PlannedTweet& p = plan[i];
      const auto hour = static_cast<std::size_t>((p.ms / 1000 - startTime) / kSecondsPerHour);
      const auto& v = topicVolume[hour];
      double pick = rng.Uniform() * hourVolume[hour];
      int topic = 0;
      while (topic < voc::kTopicCount - 1 && pick >= v[static_cast<std::size_t>(topic)]) {
        pick -= v[static_cast<std::size_t>(topic)];
        ++topic;
      }
      const auto t = static_cast<std::size_t>(topic);
      p.topic = static_cast<std::uint8_t>(topic);
      const TopicStyle& style = kStyles[t];
      auto& pool = pools[t];

      if (!originated[t].empty() && rng.Chance(style.retweetChance)) {
        // Retweet a recent popular original of the same topic.
        const std::size_t from =
            originated[t].size() > kRetweetWindow ? originated[t].size() - kRetweetWindow : 0;
        windowWeights.clear();
        for (std::size_t k = from; k < originated[t].size(); ++k) {
          const PoolItem& item = pool[originated[t][k]];
          const double ageHours = static_cast<double>(p.ms - item.originMs) / kMsPerHour;
          windowWeights.push_back(item.popularity * std::exp(-ageHours / 6.0));
        }
        const std::uint32_t chosen = originated[t][from + WeightedPicker(windowWeights).Pick(rng)];
        p.kind = TweetKind::kRetweet;
        p.pool = static_cast<std::int32_t>(chosen);
        p.user = PickUser(rng);
        ++pool[chosen].retweets;
      } else if (nextPoolItem[t] < pool.size() && rng.Chance(style.poolChance)) {
        const auto chosen = static_cast<std::uint32_t>(nextPoolItem[t]++);
        p.kind = TweetKind::kPoolOriginal;
        p.pool = static_cast<std::int32_t>(chosen);
        p.user = pool[chosen].author;
        pool[chosen].originMs = p.ms;
        originated[t].push_back(chosen);
      } else {
        p.kind = TweetKind::kOriginal;
        const bool official = topic != voc::kChatter && rng.Chance(0.03);
        p.user = official ? PickOfficial(rng, topic) : PickUser(rng);
      }
      p.userTweets = ++tweetsSoFar[p.user];
    }

    // A few neighbours change places in the six-column layout, mostly across an hour, so that
    // the file is out of time order where it shows.
    for (std::size_t i = 0; i + 1 < n; ++i) {
      if (i > 0 && plan[i - 1].swapWithNext) continue;
      if ((i + 1) % kBlockSize == 0) continue;
      const bool acrossHour = plan[i].ms / kMsPerHour != plan[i + 1].ms / kMsPerHour;
      plan[i].swapWithNext = rng.Chance(acrossHour ? 0.05 : 0.002);
    }
  }

  // --- tweets ----------------------------------------------------------------------------

  std::size_t BlockCount() const { return (plan.size() + kBlockSize - 1) / kBlockSize; }

  // Produces the tweets of one block in time order. Each block has its own random stream, so a
  // block reads the same whichever order the blocks are produced in.
  void GenerateBlock(std::size_t block, std::vector<GeneratedTweet>& out) const {
    const std::size_t first = block * kBlockSize;
    const std::size_t last = std::min(plan.size(), first + kBlockSize);
    out.resize(last - first);
    Random rng(SplitMix64(options.seed ^ SplitMix64(block + 1)));
    Composed composed;
    for (std::size_t i = first; i < last; ++i) {
      MakeTweet(rng, i, composed, out[i - first]);
    }
  }

  void MakeTweet(Random& rng, std::size_t i, Composed& composed, GeneratedTweet& t) const {
    const PlannedTweet& p = plan[i];
    const int topic = p.topic;
    t.time = FloorDiv(p.ms, 1000);
    t.user = p.user;
    t.userTweets = static_cast<std::uint32_t>(users[p.user].baseTweets) + p.userTweets;
    t.topic = topic;
    t.swappedWithNext = p.swapWithNext;

    const Composed* source = &composed;
    switch (p.kind) {
      case TweetKind::kOriginal:
        Compose(rng, topic, topic == voc::kStormWatch && p.ms < festivalOnsetMs,
                kStyles[static_cast<std::size_t>(topic)].linkChance, composed);
        t.text = composed.text;
        t.retweets = rng.Chance(0.08) ? rng.Between(1, 3) : 0;
        break;
      case TweetKind::kPoolOriginal: {
        const PoolItem& item =
            pools[static_cast<std::size_t>(topic)][static_cast<std::size_t>(p.pool)];
        source = &item.composed;
        t.text = item.composed.text;
        t.retweets = item.retweets + rng.Between(0, 4);
        break;
      }
      case TweetKind::kRetweet: {
        const PoolItem& item =
            pools[static_cast<std::size_t>(topic)][static_cast<std::size_t>(p.pool)];
        source = &item.composed;
        t.text = "RT @";
        t.text += users[item.author].handle;
        t.text += ": ";
        t.text += item.composed.text;
        TruncateTweet(t.text);
        t.retweets = item.retweets;
        break;
      }
    }
    t.sentPos = source->sentPos;
    t.sentNeg = source->sentNeg;
    t.link = std::string(FirstLink(t.text));
    t.linkUrl.clear();
    if (!t.link.empty() && t.link == source->link && rng.Chance(1.0 / 3.0)) {
      t.linkUrl = source->expanded;
    }

    t.geo.clear();
    const Home& home = homes[p.user];
    if (home.geoEnabled && rng.Chance(0.7)) {
      AppendMicroDegrees(t.geo, home.latMicro + static_cast<int>(rng.Normal() * 2000));
      t.geo += ',';
      AppendMicroDegrees(t.geo, home.lonMicro + static_cast<int>(rng.Normal() * 2000));
    }

    const auto sequence = static_cast<std::uint64_t>(i);
    t.id = (static_cast<std::uint64_t>(p.ms - kSnowflakeEpochMs) << 22) |
           ((sequence % 1024) << 12) | (sequence / 1024 % 4096);

    t.strayTab = 0;
    if (rng.Chance(0.002) && !t.text.empty() && t.text[0] != '#' && t.text[0] != '"') {
      std::vector<std::size_t> candidates;
      for (std::size_t k = 1; k + 1 < t.text.size(); ++k) {
        const char c = t.text[k + 1];
        if (t.text[k] == ' ' && ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) {
          candidates.push_back(k + 1);
        }
      }
      if (!candidates.empty()) t.strayTab = candidates[rng.Below(candidates.size())];
    }
  }

  // --- layouts ---------------------------------------------------------------------------

  void WriteTwitter(Output& out) const {
    out.Put("DateTime\tUser\tTweet\tSent+\tSent-\tSentSum");
    out.EndLine();
    std::vector<GeneratedTweet> block;
    for (std::size_t b = 0; b < BlockCount(); ++b) {
      GenerateBlock(b, block);
      for (std::size_t k = 0; k < block.size(); ++k) {
        if (block[k].swappedWithNext && k + 1 < block.size()) {
          WriteTwitterLine(out, block[k + 1]);
          WriteTwitterLine(out, block[k]);
          ++k;
        } else {
          WriteTwitterLine(out, block[k]);
        }
      }
    }
  }

  void WriteTwitterLine(Output& out, const GeneratedTweet& t) const {
    const ClockTime c = SplitTime(t.time);
    out.Int(c.date.year);
    out.TwoDigits(c.date.month);
    out.TwoDigits(c.date.day);
    out.Put('T');
    out.TwoDigits(c.hour);
    out.Put(':');
    out.TwoDigits(c.minute);
    out.Put(':');
    out.TwoDigits(c.second);
    out.Put('Z');
    out.Tab();
    out.Put(users[t.user].handle);
    out.Tab();
    if (t.strayTab != 0) {
      const std::string_view text = t.text;
      out.Put(text.substr(0, t.strayTab));
      out.Tab();
      out.Put(text.substr(t.strayTab));
    } else {
      out.Put(t.text);
    }
    out.Tab();
    out.Int(t.sentPos);
    out.Tab();
    out.Int(t.sentNeg);
    out.Tab();
    out.Int(t.sentPos + t.sentNeg);
    out.EndLine();
  }

  void WriteTwitter11(Output& out) const {
    std::vector<GeneratedTweet> block;
    for (std::size_t b = BlockCount(); b-- > 0;) {
      GenerateBlock(b, block);
      for (std::size_t k = block.size(); k-- > 0;) WriteTwitter11Line(out, block[k]);
    }
  }

  void WriteTwitter11Line(Output& out, const GeneratedTweet& t) const {
    const GeneratedUser& user = users[t.user];
    const ClockTime c = SplitTime(t.time);
    out.Put(kWeekdayNames[static_cast<std::size_t>(c.weekday)]);
    out.Put(' ');
    out.Put(kMonthNames[static_cast<std::size_t>(c.date.month - 1)]);
    out.Put(' ');
    out.TwoDigits(c.date.day);
    out.Put(' ');
    out.TwoDigits(c.hour);
    out.Put(':');
    out.TwoDigits(c.minute);
    out.Put(':');
    out.TwoDigits(c.second);
    out.Put(" +0000 ");
    out.Int(c.date.year);
    out.Tab();
    out.Put(user.handle);
    out.Tab();
    out.Put(t.text);
    out.Tab();
    out.UInt(t.id);
    out.Tab();
    out.Put(user.realName);
    out.Tab();
    out.Int(user.followers);
    out.Tab();
    out.Int(user.following);
    out.Tab();
    out.Int(user.lists);
    out.Tab();
    out.Put(user.timeZone);
    out.Tab();
    out.Put(t.geo);
    out.Tab();
    out.Int(t.userTweets);
    out.Tab();
    out.Int(t.retweets);
    out.Tab();
    out.Put(t.linkUrl);
    out.Tab();
    out.Int(t.sentPos);
    out.Tab();
    out.Int(t.sentNeg);
    out.Tab();
    out.Int(t.sentPos + t.sentNeg);
    out.EndLine();
  }

  void WriteMonitoring(Output& out) const {
    out.Put(
        "ARTICLE_ID\tHEADLINE\tAUTHOR\tCONTENT\tARTICLE_URL\tMEDIA_PROVIDER\tPUBLISH_DATE\t"
        "SUBJECT\tLANGUAGE\tCOUNTRY\tREGION\tFOLLOWERS\tFOLLOWING\tUPDATES\tINFLUENCE\t"
        "MEDIA_TYPE\tSENTIMENT\tRETWEETS\tELAPSED_HOURS\tLINK\tSENT_POS\tSENT_NEG");
    out.EndLine();
    if (plan.empty()) return;
    const std::int64_t firstHour = FloorDiv(FloorDiv(plan.front().ms, 1000), kSecondsPerHour);
    std::vector<GeneratedTweet> block;
    for (std::size_t b = 0; b < BlockCount(); ++b) {
      GenerateBlock(b, block);
      for (std::size_t k = 0; k < block.size(); ++k) {
        WriteMonitoringLine(out, block[k], b * kBlockSize + k, firstHour);
      }
    }
  }

  void WriteMonitoringLine(Output& out, const GeneratedTweet& t, std::size_t index,
                           std::int64_t firstHour) const {
    const GeneratedUser& user = users[t.user];
    const ClockTime c = SplitTime(t.time);
    out.UInt(7302518000ULL + index * 4 + t.id % 4);
    out.Tab();
    // Tweets have no headline; the column is there for news articles.
    out.Tab();
    out.Put(user.handle);
    out.Tab();
    out.Put(t.text);
    out.Tab();
    out.Put("http://twitter.com/");
    out.Put(user.handle);
    out.Put("/statuses/");
    out.UInt(t.id);
    out.Tab();
    out.Put("TWITTER");
    out.Tab();
    out.TwoDigits(c.date.day);
    out.Put('/');
    out.TwoDigits(c.date.month);
    out.Put('/');
    out.Int(c.date.year);
    out.Put(' ');
    out.TwoDigits(c.hour);
    out.Put(':');
    out.TwoDigits(c.minute);
    out.Tab();
    out.Put(voc::Topic(t.topic).subject);
    out.Tab();
    out.Put("English");
    out.Tab();
    out.Put(user.country);
    out.Tab();
    out.Put(user.region);
    out.Tab();
    out.Int(user.followers);
    out.Tab();
    out.Int(user.following);
    out.Tab();
    out.Int(t.userTweets);
    out.Tab();
    out.Int(static_cast<int>(std::lround(10.0 * std::log10(user.followers + 1.0))));
    out.Tab();
    out.Put("Microblog");
    out.Tab();
    const int net = t.sentPos + t.sentNeg;
    out.Put(net > 0 ? "positive" : net < 0 ? "negative" : "neutral");
    out.Tab();
    out.Int(t.retweets);
    out.Tab();
    out.Int(FloorDiv(t.time, kSecondsPerHour) - firstHour);
    out.Tab();
    out.Put(t.link);
    out.Tab();
    out.Int(t.sentPos);
    out.Tab();
    out.Int(t.sentNeg);
    out.EndLine();
  }

  void WriteTwitterV2Json(Output& out) const {
    std::vector<GeneratedTweet> block;
    for (std::size_t b = BlockCount(); b-- > 0;) {
      GenerateBlock(b, block);
      for (std::size_t k = block.size(); k-- > 0;) WriteTwitterV2Line(out, block[k]);
    }
  }

  // A JSON string as the v2 API writes tweet texts: "&", "<", ">" as entities; here also
  // every non-ASCII character as \uXXXX, so that the sample exercises escapes and surrogates.
  static void PutJsonString(Output& out, std::string_view text, bool tweetText) {
    static constexpr char kHex[] = "0123456789abcdef";
    const auto unit = [&out](unsigned value) {
      out.Put("\\u");
      for (int shift = 12; shift >= 0; shift -= 4) out.Put(kHex[(value >> shift) & 0xF]);
    };
    out.Put('"');
    for (std::size_t i = 0; i < text.size(); ++i) {
      const auto c = static_cast<unsigned char>(text[i]);
      if (c == '"' || c == '\\') {
        out.Put('\\');
        out.Put(static_cast<char>(c));
      } else if (tweetText && c == '&') {
        out.Put("&amp;");
      } else if (tweetText && c == '<') {
        out.Put("&lt;");
      } else if (tweetText && c == '>') {
        out.Put("&gt;");
      } else if (c < 0x20) {
        unit(c);
      } else if (c < 0x80 || !tweetText) {
        out.Put(static_cast<char>(c));
      } else {
        const int extra = c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : 1;
        unsigned cp = c & (0x3Fu >> extra);
        for (int k = 0; k < extra && i + 1 < text.size(); ++k) {
          cp = (cp << 6) | (static_cast<unsigned char>(text[++i]) & 0x3Fu);
        }
        if (cp >= 0x10000) {
          cp -= 0x10000;
          unit(0xD800 + (cp >> 10));
          unit(0xDC00 + (cp & 0x3FF));
        } else {
          unit(cp);
        }
      }
    }
    out.Put('"');
  }

  void WriteTwitterV2Line(Output& out, const GeneratedTweet& t) const {
    const GeneratedUser& user = users[t.user];
    const ClockTime c = SplitTime(t.time);
    const std::uint64_t authorId = 2000000000ULL + t.user;
    out.Put("{\"id\":\"");
    out.UInt(t.id);
    out.Put("\",\"created_at\":\"");
    out.Int(c.date.year);
    out.Put('-');
    out.TwoDigits(c.date.month);
    out.Put('-');
    out.TwoDigits(c.date.day);
    out.Put('T');
    out.TwoDigits(c.hour);
    out.Put(':');
    out.TwoDigits(c.minute);
    out.Put(':');
    out.TwoDigits(c.second);
    out.Put(".000Z\",\"author_id\":\"");
    out.UInt(authorId);
    out.Put("\",\"author\":{\"id\":\"");
    out.UInt(authorId);
    out.Put("\",\"username\":");
    PutJsonString(out, user.handle, false);
    out.Put(",\"name\":");
    PutJsonString(out, user.realName, false);
    out.Put(",\"public_metrics\":{\"followers_count\":");
    out.Int(user.followers);
    out.Put(",\"following_count\":");
    out.Int(user.following);
    out.Put(",\"listed_count\":");
    out.Int(user.lists);
    out.Put(",\"tweet_count\":");
    out.Int(t.userTweets);
    out.Put("}},\"text\":");
    PutJsonString(out, t.text, true);
    if (!t.link.empty()) {
      out.Put(",\"entities\":{\"urls\":[{\"url\":");
      PutJsonString(out, t.link, false);
      if (!t.linkUrl.empty()) {
        out.Put(",\"expanded_url\":");
        PutJsonString(out, t.linkUrl, false);
      }
      out.Put("}]}");
    }
    out.Put(",\"public_metrics\":{\"retweet_count\":");
    out.Int(t.retweets);
    out.Put('}');
    const std::size_t comma = t.geo.find(',');
    if (comma != std::string::npos) {
      out.Put(",\"geo\":{\"coordinates\":{\"type\":\"Point\",\"coordinates\":[");
      out.Put(std::string_view(t.geo).substr(comma + 1));
      out.Put(',');
      out.Put(std::string_view(t.geo).substr(0, comma));
      out.Put("]}}");
    }
    out.Put(",\"sentiment\":{\"positive\":");
    out.Int(t.sentPos);
    out.Put(",\"negative\":");
    out.Int(t.sentNeg);
    out.Put("}}");
    out.EndLine();
  }

  static void PutCsvField(Output& out, std::string_view text) {
    if (text.find_first_of(",\"\n\r") == std::string_view::npos) {
      out.Put(text);
      return;
    }
    out.Put('"');
    for (const char ch : text) {
      if (ch == '"') out.Put('"');
      out.Put(ch);
    }
    out.Put('"');
  }

  void WriteNamedCsv(Output& out) const {
    out.Put(
        "id,created_at,username,name,text,url,retweet_count,sentiment_positive,"
        "sentiment_negative");
    out.EndLine();
    std::vector<GeneratedTweet> block;
    for (std::size_t b = 0; b < BlockCount(); ++b) {
      GenerateBlock(b, block);
      for (const GeneratedTweet& t : block) {
        const ClockTime c = SplitTime(t.time);
        out.UInt(t.id);
        out.Put(',');
        out.Int(c.date.year);
        out.Put('-');
        out.TwoDigits(c.date.month);
        out.Put('-');
        out.TwoDigits(c.date.day);
        out.Put(' ');
        out.TwoDigits(c.hour);
        out.Put(':');
        out.TwoDigits(c.minute);
        out.Put(':');
        out.TwoDigits(c.second);
        out.Put(',');
        PutCsvField(out, users[t.user].handle);
        out.Put(',');
        PutCsvField(out, users[t.user].realName);
        out.Put(',');
        PutCsvField(out, t.text);
        out.Put(',');
        PutCsvField(out, t.linkUrl);
        out.Put(',');
        out.Int(t.retweets);
        out.Put(',');
        out.Int(t.sentPos);
        out.Put(',');
        out.Int(t.sentNeg);
        out.EndLine();
      }
    }
  }

  void Write(CorpusFormat format, Output& out) const {
    switch (format) {
      case CorpusFormat::kTwitterV2Json:
        WriteTwitterV2Json(out);
        break;
      case CorpusFormat::kNamedCsv:
        WriteNamedCsv(out);
        break;
      case CorpusFormat::kTwitter:
        WriteTwitter(out);
        break;
      case CorpusFormat::kTwitter11:
        WriteTwitter11(out);
        break;
      case CorpusFormat::kMonitoring:
        WriteMonitoring(out);
        break;
    }
  }
};

// ---------------------------------------------------------------------------------------------

std::optional<CorpusFormat> CorpusFormatFromCode(int code) {
  switch (code) {
    case 7:
      return CorpusFormat::kTwitter;
    case 8:
      return CorpusFormat::kTwitter11;
    case 9:
      return CorpusFormat::kMonitoring;
    default:
      return std::nullopt;
  }
}

std::string_view CorpusFileSuffix(CorpusFormat format) {
  switch (format) {
    case CorpusFormat::kTwitter:
      return "_twitter.txt";
    case CorpusFormat::kTwitter11:
      return "_twitter11.txt";
    case CorpusFormat::kMonitoring:
      return "_radian6.txt";
    case CorpusFormat::kTwitterV2Json:
      return "_twitter_v2.jsonl";
    case CorpusFormat::kNamedCsv:
      return "_twitter.csv";
  }
  return "";
}

CorpusGenerator::CorpusGenerator(const CorpusOptions& options)
    : impl_(std::make_unique<Impl>(options)) {}

CorpusGenerator::~CorpusGenerator() = default;

const CorpusOptions& CorpusGenerator::Options() const { return impl_->options; }
std::size_t CorpusGenerator::TweetCount() const { return impl_->plan.size(); }
const std::vector<GeneratedUser>& CorpusGenerator::Users() const { return impl_->users; }
const std::vector<CorpusBurst>& CorpusGenerator::Bursts() const { return impl_->bursts; }
std::int64_t CorpusGenerator::StartTime() const { return impl_->startTime; }
std::int64_t CorpusGenerator::EndTime() const {
  return impl_->startTime + static_cast<std::int64_t>(impl_->options.days) * kSecondsPerDay;
}

void CorpusGenerator::ForEachTweet(const std::function<void(const GeneratedTweet&)>& visit,
                                   bool newestFirst) const {
  std::vector<GeneratedTweet> block;
  const std::size_t blocks = impl_->BlockCount();
  for (std::size_t n = 0; n < blocks; ++n) {
    impl_->GenerateBlock(newestFirst ? blocks - 1 - n : n, block);
    if (newestFirst) {
      for (std::size_t k = block.size(); k-- > 0;) visit(block[k]);
    } else {
      for (const GeneratedTweet& t : block) visit(t);
    }
  }
}

std::uint64_t CorpusGenerator::WriteFile(CorpusFormat format,
                                         const std::filesystem::path& path) const {
  struct Closer {
    void operator()(std::FILE* f) const { std::fclose(f); }
  };
  std::unique_ptr<std::FILE, Closer> file(std::fopen(path.c_str(), "wb"));
  if (!file) {
    throw Error("cannot create corpus file " + path.string() + ": " + std::strerror(errno));
  }
  Output out(file.get(), &path);
  impl_->Write(format, out);
  out.Flush();
  const std::uint64_t written = out.Written();
  if (std::fclose(file.release()) != 0) {
    throw Error("cannot write corpus file " + path.string() + ": " + std::strerror(errno));
  }
  return written;
}

std::string CorpusGenerator::WriteString(CorpusFormat format) const {
  Output out(nullptr, nullptr);
  impl_->Write(format, out);
  return out.TakeString();
}

std::uint64_t WriteSyntheticCorpus(CorpusFormat format, const std::filesystem::path& path,
                                   std::size_t tweetCount, std::uint64_t seed) {
  CorpusOptions options;
  options.tweetCount = tweetCount;
  options.seed = seed;
  return CorpusGenerator(options).WriteFile(format, path);
}

std::size_t TweetCountFromEnvironment(const char* variable, std::size_t fallback) {
  const char* text = std::getenv(variable);
  return text != nullptr ? std::strtoull(text, nullptr, 10) : fallback;
}

std::string CachedCorpusFile(CorpusFormat format, std::size_t tweetCount) {
  const auto file =
      std::filesystem::temp_directory_path() /
      ("sylvora-bench-" + std::to_string(tweetCount) + std::string(CorpusFileSuffix(format)));
  if (!std::filesystem::exists(file)) WriteSyntheticCorpus(format, file, tweetCount);
  return file.string();
}

}  // namespace sylvora::bench
