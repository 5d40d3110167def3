// JSON exports of posts, read with simdjson's On Demand API. Each post object is walked once,
// field by field in file order, into a Post; the Post becomes one row of the "Twitter1.1"
// layout. JSON lines are parsed one line at a time, so a bad line has a line number and can be
// skipped, and a line's cells are written over its own bytes once it has been read.
//
// simdjson reports errors through exceptions in this file only; every one is caught at the
// level of a line (or of the whole document) and turned into a message.

#include "corpus/json_import.h"

#include <simdjson.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <unordered_map>

#include "corpus/html_text.h"
#include "corpus/import_dates.h"

namespace sylvora {
namespace {

namespace od = simdjson::ondemand;

constexpr std::string_view kContainerKeys[] = {"data", "statuses", "posts", "feed"};
constexpr std::size_t kSkippedSamples = 5;
constexpr std::int64_t kProgressEvery = 8192;

bool IsContainerKey(std::string_view key) {
  return std::find(std::begin(kContainerKeys), std::end(kContainerKeys), key) !=
         std::end(kContainerKeys);
}

std::string_view TrimToken(std::string_view token) {
  while (!token.empty() && (token.back() == ' ' || token.back() == '\n' || token.back() == '\r' ||
                            token.back() == '\t')) {
    token.remove_suffix(1);
  }
  return token;
}

// A scalar as text into `out`: strings unescaped, numbers and booleans as written; "" for null
// and for objects and arrays (which the walk then skips). Writing into a kept string spares an
// allocation per field.
void ScalarTo(od::value& value, std::string& out) {
  switch (value.type()) {
    case od::json_type::string:
      out.assign(std::string_view(value.get_string()));
      break;
    case od::json_type::number:
    case od::json_type::boolean:
      out.assign(TrimToken(value.raw_json_token()));
      break;
    default:
      out.clear();
  }
}

std::string ScalarText(od::value& value) {
  std::string text;
  ScalarTo(value, text);
  return text;
}

bool IsObject(od::value& value) { return value.type() == od::json_type::object; }
bool IsArray(od::value& value) { return value.type() == od::json_type::array; }
bool IsString(od::value& value) { return value.type() == od::json_type::string; }

std::string_view Key(od::field& field) { return field.unescaped_key(); }

// One post as read, before it becomes a row.
struct Post {
  std::string date, id, user, realName, followers, following, lists, userTweets, timeZone, geo;
  std::string reposts, link, text, sentPositive, sentNegative, authorId;
  std::string repostUser, repostText, repostLink;
  int textRank = 0;  // which text field was seen: 3 full_text, 2 extended/note, 1 text
  bool hasDate = false, hasText = false, isRepost = false;

  // Empties every field, keeping the strings' storage for the next post.
  void Clear() {
    for (std::string* field : {&date, &id, &user, &realName, &followers, &following, &lists,
                               &userTweets, &timeZone, &geo, &reposts, &link, &text, &sentPositive,
                               &sentNegative, &authorId, &repostUser, &repostText, &repostLink}) {
      field->clear();
    }
    textRank = 0;
    hasDate = hasText = isRepost = false;
  }
};

struct UserInfo {
  std::string username, name, followers, following, lists, tweets;
};

// Texts of a higher rank win: full_text (3) over extended or note texts (2) over text (1).
bool TakeText(Post& post, int rank) {
  if (rank < post.textRank) return false;
  post.textRank = rank;
  post.hasText = true;
  post.text.clear();
  return true;
}

void SetText(Post& post, int rank, const std::string& text) {
  if (TakeText(post, rank)) post.text = text;
}

void TweetTextTo(od::value& value, std::string& out) {
  out.clear();
  if (IsString(value)) AppendTweetText(std::string_view(value.get_string()), out);
}

void SetTweetText(Post& post, int rank, od::value& value) {
  if (TakeText(post, rank)) TweetTextTo(value, post.text);
}

void OneLineTo(od::value& value, std::string& out) {
  out.clear();
  if (IsString(value)) AppendOneLine(std::string_view(value.get_string()), out);
}

std::string OneLine(od::value& value) {
  std::string text;
  OneLineTo(value, text);
  return text;
}

// [longitude, latitude] as "latitude,longitude", numbers as written.
std::string Coordinates(od::value& value) {
  if (!IsArray(value)) return {};
  std::string parts[2];
  int n = 0;
  for (auto element : value.get_array()) {
    od::value item = element.value();
    if (n < 2) parts[n] = ScalarText(item);
    ++n;
  }
  return n == 2 ? parts[1] + "," + parts[0] : std::string();
}

// {"coordinates": [lon, lat]} (GeoJSON point), or v2's {"coordinates": {"coordinates": [...]}}.
std::string GeoOf(od::value& value) {
  if (!IsObject(value)) return {};
  std::string geo;
  for (od::field field : value.get_object()) {
    if (Key(field) != "coordinates") continue;
    od::value inner = field.value();
    if (IsArray(inner)) {
      geo = Coordinates(inner);
    } else if (IsObject(inner)) {
      geo = GeoOf(inner);
    }
  }
  return geo;
}

void ReadSentiment(od::value& value, Post& post) {
  if (!IsObject(value)) return;
  for (od::field field : value.get_object()) {
    const std::string_view key = Key(field);
    if (key == "positive") ScalarTo(field.value(), post.sentPositive);
    if (key == "negative") ScalarTo(field.value(), post.sentNegative);
  }
}

// The first expanded_url of entities.urls (the platform's own expansion of its short links).
void ReadEntityLinks(od::value& value, std::string& link) {
  if (!IsObject(value)) return;
  for (od::field field : value.get_object()) {
    if (Key(field) != "urls" || !IsArray(field.value())) continue;
    for (auto element : field.value().get_array()) {
      od::value url = element.value();
      if (!IsObject(url)) continue;
      for (od::field f : url.get_object()) {
        if (Key(f) == "expanded_url" && link.empty()) OneLineTo(f.value(), link);
      }
    }
  }
}

// --- X / Twitter API v2 ---

void ReadV2PublicMetrics(od::value& value, UserInfo& user) {
  if (!IsObject(value)) return;
  for (od::field field : value.get_object()) {
    const std::string_view key = Key(field);
    if (key == "followers_count") user.followers = ScalarText(field.value());
    if (key == "following_count") user.following = ScalarText(field.value());
    if (key == "listed_count") user.lists = ScalarText(field.value());
    if (key == "tweet_count") user.tweets = ScalarText(field.value());
  }
}

UserInfo ReadV2User(od::value& value, std::string* id) {
  UserInfo user;
  if (!IsObject(value)) return user;
  for (od::field field : value.get_object()) {
    const std::string_view key = Key(field);
    if (key == "username") user.username = OneLine(field.value());
    if (key == "name") user.name = OneLine(field.value());
    if (key == "id" && id != nullptr) *id = ScalarText(field.value());
    if (key == "public_metrics") ReadV2PublicMetrics(field.value(), user);
  }
  return user;
}

// An embedded author object, written straight into the post.
void ReadV2Author(od::value& value, Post& post) {
  if (!IsObject(value)) return;
  for (od::field field : value.get_object()) {
    const std::string_view key = Key(field);
    if (key == "username") OneLineTo(field.value(), post.user);
    if (key == "name") OneLineTo(field.value(), post.realName);
    if (key == "public_metrics" && IsObject(field.value())) {
      for (od::field metric : field.value().get_object()) {
        const std::string_view name = Key(metric);
        if (name == "followers_count") ScalarTo(metric.value(), post.followers);
        if (name == "following_count") ScalarTo(metric.value(), post.following);
        if (name == "listed_count") ScalarTo(metric.value(), post.lists);
        if (name == "tweet_count") ScalarTo(metric.value(), post.userTweets);
      }
    }
  }
}

void ApplyUser(const UserInfo& user, Post& post) {
  post.user = user.username;
  post.realName = user.name;
  post.followers = user.followers;
  post.following = user.following;
  post.lists = user.lists;
  post.userTweets = user.tweets;
}

void ReadV2(od::object object, Post& post) {
  for (od::field field : object) {
    const std::string_view key = Key(field);
    od::value value = field.value();
    if (key == "id") {
      ScalarTo(value, post.id);
    } else if (key == "text") {
      SetTweetText(post, 1, value);
    } else if (key == "note_tweet" && IsObject(value)) {
      // Long posts carry their whole text here; "text" holds its first 280 characters.
      for (od::field f : value.get_object()) {
        if (Key(f) == "text") SetTweetText(post, 2, f.value());
      }
    } else if (key == "created_at") {
      ScalarTo(value, post.date);
      post.hasDate = true;
    } else if (key == "author_id") {
      ScalarTo(value, post.authorId);
    } else if (key == "author") {
      ReadV2Author(value, post);
    } else if (key == "entities") {
      ReadEntityLinks(value, post.link);
    } else if (key == "public_metrics" && IsObject(value)) {
      for (od::field f : value.get_object()) {
        if (Key(f) == "retweet_count") ScalarTo(f.value(), post.reposts);
      }
    } else if (key == "geo") {
      post.geo = GeoOf(value);
    } else if (key == "sentiment") {
      ReadSentiment(value, post);
    }
  }
}

// --- Twitter API v1.1 ---

void ReadV11User(od::value& value, Post& post) {
  if (!IsObject(value)) return;
  for (od::field field : value.get_object()) {
    const std::string_view key = Key(field);
    if (key == "screen_name") post.user = OneLine(field.value());
    if (key == "name") post.realName = OneLine(field.value());
    if (key == "followers_count") post.followers = ScalarText(field.value());
    if (key == "friends_count") post.following = ScalarText(field.value());
    if (key == "listed_count") post.lists = ScalarText(field.value());
    if (key == "statuses_count") post.userTweets = ScalarText(field.value());
    if (key == "time_zone") post.timeZone = OneLine(field.value());
  }
}

void ReadV11(od::object object, Post& post, bool nested) {
  std::string idNumber;
  for (od::field field : object) {
    const std::string_view key = Key(field);
    od::value value = field.value();
    if (key == "created_at") {
      post.date = ScalarText(value);
      post.hasDate = true;
    } else if (key == "id_str") {
      post.id = ScalarText(value);
    } else if (key == "id") {
      idNumber = ScalarText(value);
    } else if (key == "full_text") {
      SetTweetText(post, 3, value);
    } else if (key == "text") {
      SetTweetText(post, 1, value);
    } else if (key == "extended_tweet" && IsObject(value)) {
      for (od::field f : value.get_object()) {
        const std::string_view k = Key(f);
        if (k == "full_text") SetTweetText(post, 2, f.value());
        if (k == "entities") ReadEntityLinks(f.value(), post.link);
      }
    } else if (key == "user") {
      ReadV11User(value, post);
    } else if (key == "entities") {
      ReadEntityLinks(value, post.link);
    } else if (key == "retweet_count") {
      post.reposts = ScalarText(value);
    } else if (key == "coordinates") {
      post.geo = GeoOf(value);
    } else if (key == "sentiment") {
      ReadSentiment(value, post);
    } else if (key == "retweeted_status" && !nested && IsObject(value)) {
      Post original;
      ReadV11(value.get_object(), original, true);
      post.isRepost = true;
      post.repostUser = original.user;
      post.repostText = original.text;
      post.repostLink = original.link;
    }
  }
  if (post.id.empty()) post.id = idNumber;
}

// --- Mastodon ---

void ReadMastodonAccount(od::value& value, Post& post) {
  if (!IsObject(value)) return;
  for (od::field field : value.get_object()) {
    const std::string_view key = Key(field);
    if (key == "acct") post.user = OneLine(field.value());
    if (key == "display_name") post.realName = OneLine(field.value());
    if (key == "followers_count") post.followers = ScalarText(field.value());
    if (key == "following_count") post.following = ScalarText(field.value());
    if (key == "statuses_count") post.userTweets = ScalarText(field.value());
  }
}

void ReadMastodon(od::object object, Post& post, bool nested) {
  std::string cardLink;
  for (od::field field : object) {
    const std::string_view key = Key(field);
    od::value value = field.value();
    if (key == "id") {
      post.id = ScalarText(value);
    } else if (key == "created_at") {
      post.date = ScalarText(value);
      post.hasDate = true;
    } else if (key == "content") {
      std::string link;
      SetText(post, 1,
              IsString(value) ? HtmlToPlainText(std::string_view(value.get_string()), &link)
                              : std::string());
      if (post.link.empty()) post.link = link;
    } else if (key == "account") {
      ReadMastodonAccount(value, post);
    } else if (key == "reblogs_count") {
      post.reposts = ScalarText(value);
    } else if (key == "card" && IsObject(value)) {
      for (od::field f : value.get_object()) {
        if (Key(f) == "url") cardLink = OneLine(f.value());
      }
    } else if (key == "sentiment") {
      ReadSentiment(value, post);
    } else if (key == "reblog" && !nested && IsObject(value)) {
      Post original;
      ReadMastodon(value.get_object(), original, true);
      post.isRepost = true;
      post.repostUser = original.user;
      post.repostText = original.text;
      post.repostLink = original.link;
    }
  }
  if (post.link.empty()) post.link = cardLink;
}

// --- Bluesky ---

void ReadFacets(od::value& value, std::string& link) {
  if (!IsArray(value)) return;
  for (auto facetResult : value.get_array()) {
    od::value facet = facetResult.value();
    if (!IsObject(facet)) continue;
    for (od::field f : facet.get_object()) {
      if (Key(f) != "features" || !IsArray(f.value())) continue;
      for (auto featureResult : f.value().get_array()) {
        od::value feature = featureResult.value();
        if (!IsObject(feature)) continue;
        std::string type, uri;
        for (od::field ff : feature.get_object()) {
          const std::string_view k = Key(ff);
          if (k == "$type") type = ScalarText(ff.value());
          if (k == "uri") uri = OneLine(ff.value());
        }
        if (link.empty() && type.ends_with("#link")) link = uri;
      }
    }
  }
}

void ReadBlueskyAuthor(od::value& value, Post& post) {
  if (!IsObject(value)) return;
  for (od::field field : value.get_object()) {
    const std::string_view key = Key(field);
    if (key == "handle") post.user = OneLine(field.value());
    if (key == "displayName") post.realName = OneLine(field.value());
    if (key == "followersCount") post.followers = ScalarText(field.value());
    if (key == "followsCount") post.following = ScalarText(field.value());
    if (key == "postsCount") post.userTweets = ScalarText(field.value());
  }
}

// The record part of a post: {"text", "createdAt", "facets"}; also the top level of a bare
// record.
bool ReadBlueskyRecordField(std::string_view key, od::value& value, Post& post) {
  if (key == "text") {
    SetText(post, 1, OneLine(value));
  } else if (key == "createdAt") {
    post.date = ScalarText(value);
    post.hasDate = true;
  } else if (key == "facets") {
    ReadFacets(value, post.link);
  } else {
    return false;
  }
  return true;
}

void ReadBluesky(od::object object, Post& post) {
  for (od::field field : object) {
    const std::string_view key = Key(field);
    od::value value = field.value();
    if (ReadBlueskyRecordField(key, value, post)) continue;
    if (key == "post" && IsObject(value)) {  // a feed item wrapping the post
      ReadBluesky(value.get_object(), post);
    } else if (key == "uri") {
      post.id = ScalarText(value);
    } else if (key == "author") {
      ReadBlueskyAuthor(value, post);
    } else if (key == "record" && IsObject(value)) {
      for (od::field f : value.get_object()) {
        ReadBlueskyRecordField(Key(f), f.value(), post);
      }
    } else if (key == "repostCount") {
      post.reposts = ScalarText(value);
    } else if (key == "sentiment") {
      ReadSentiment(value, post);
    }
  }
}

// --- shapes by their keys ---

bool Has(const std::vector<std::string>& keys, std::string_view key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

std::optional<ImportShape> ShapeOfKeys(const std::vector<std::string>& keys) {
  if (Has(keys, "author_id") || Has(keys, "edit_history_tweet_ids") ||
      (Has(keys, "public_metrics") && Has(keys, "text"))) {
    return ImportShape::kTwitterV2Json;
  }
  if (Has(keys, "user") &&
      (Has(keys, "text") || Has(keys, "full_text") || Has(keys, "extended_tweet"))) {
    return ImportShape::kTwitterV11Json;
  }
  if (Has(keys, "account") && (Has(keys, "content") || Has(keys, "reblog"))) {
    return ImportShape::kMastodonJson;
  }
  if (Has(keys, "record") || Has(keys, "post") || Has(keys, "createdAt")) {
    return ImportShape::kBlueskyJson;
  }
  return std::nullopt;
}

constexpr const char* kKnownShapes =
    "X / Twitter API v2 (created_at, author_id, text), Twitter API v1.1 (created_at, user, "
    "full_text or text), Mastodon (created_at, account, content), Bluesky (record or text, "
    "createdAt, author)";

std::string JoinKeys(const std::vector<std::string>& keys) {
  if (keys.empty()) return "none";
  std::string text;
  for (const auto& key : keys) text += (text.empty() ? "" : ", ") + key;
  return text;
}

std::string DescribeError(const simdjson::simdjson_error& error) {
  return simdjson::error_message(error.error());
}

// True when nothing but blanks follows the value just walked.
bool AtEnd(od::document& document) {
  return document.current_location().error() != simdjson::SUCCESS;
}

std::int64_t LineOf(const char* base, const char* at) { return 1 + std::count(base, at, '\n'); }

// The keys of an object; `elementKeys` gets those of the first element of a container array,
// `containerKey` its key.
void CollectKeys(od::object object, std::vector<std::string>& keys,
                 std::vector<std::string>& elementKeys, std::string& containerKey) {
  for (od::field field : object) {
    const std::string key(Key(field));
    keys.push_back(key);
    od::value value = field.value();
    if (containerKey.empty() && IsContainerKey(key) && IsArray(value)) {
      for (auto element : value.get_array()) {
        od::value first = element.value();
        if (IsObject(first)) {
          std::vector<std::string> nested;
          std::string none;
          CollectKeys(first.get_object(), elementKeys, nested, none);
          containerKey = key;
        }
        break;
      }
    }
  }
}

const char* SkipBlanks(const char* p, const char* end) {
  if (end - p >= 3 && std::memcmp(p, "\xEF\xBB\xBF", 3) == 0) p += 3;
  while (p < end && (*p == ' ' || *p == '\n' || *p == '\r' || *p == '\t')) ++p;
  return p;
}

bool IsBlank(const char* p, std::size_t size) { return SkipBlanks(p, p + size) == p + size; }

// --- the importer ---

class JsonImporter {
 public:
  JsonImporter(const std::string& name, const ImportDetection& detection,
               const ImportOptions& options, ImportedRows& rows, ImportReport& report,
               const ProgressCallback& progress)
      : name_(name),
        detection_(detection),
        options_(options),
        rows_(rows),
        report_(report),
        progress_(progress) {}

  bool Run(ByteBuffer&& input) {
    const std::size_t size = input.Size();
    const std::size_t capacity = input.Capacity();
    char* base = rows_.AdoptInput(std::move(input));
    const bool ok = detection_.container == JsonContainer::kLines
                        ? ReadLines(base, size, capacity)
                        : ReadDocument(base, size, capacity);
    if (!ok) return false;
    if (missingUserNames_ > 0) {
      report_.warnings.push_back(std::to_string(missingUserNames_) +
                                 " posts name their author by id only (author_id, no "
                                 "includes.users or author object): the id stands as user name");
    }
    return true;
  }

 private:
  bool Full() const { return options_.maxCount > 0 && rows_.RowCount() >= options_.maxCount; }

  bool Fail(std::string message) {
    report_.error = std::move(message);
    return false;
  }

  bool Cancelled(std::int64_t done, std::int64_t total) {
    return progress_ && !progress_("Reading " + name_, done, total);
  }

  // A bad record: skipped when the user asked for it, else the end of the import.
  bool Bad(const std::string& where, const std::string& reason) {
    const std::string message = where + ": " + reason;
    if (!options_.skipBad) return Fail(message);
    ++report_.skipped;
    if (report_.skippedSamples.size() < kSkippedSamples) report_.skippedSamples.push_back(message);
    return true;
  }

  std::string At(std::int64_t line) const { return "'" + name_ + "' line " + std::to_string(line); }

  void ReadPost(od::object object, Post& post) {
    post.Clear();
    switch (detection_.shape) {
      case ImportShape::kTwitterV2Json:
        ReadV2(object, post);
        break;
      case ImportShape::kTwitterV11Json:
        ReadV11(object, post, false);
        break;
      case ImportShape::kMastodonJson:
        ReadMastodon(object, post, false);
        break;
      case ImportShape::kBlueskyJson:
        ReadBluesky(object, post);
        break;
      case ImportShape::kNamedCsv:
        break;
    }
  }

  std::string_view DateKey() const {
    switch (detection_.shape) {
      case ImportShape::kBlueskyJson:
        return "record.createdAt";
      default:
        return "created_at";
    }
  }

  std::string_view TextKey() const {
    switch (detection_.shape) {
      case ImportShape::kTwitterV11Json:
        return "full_text or text";
      case ImportShape::kMastodonJson:
        return "content";
      case ImportShape::kBlueskyJson:
        return "record.text";
      default:
        return "text";
    }
  }

  // Fills `row` from `post`; an empty result, or the reason the post cannot be a document.
  std::string ToRow(Post& post, ImportedRows::Row& row) {
    if (!post.hasDate || post.date.empty()) {
      return "the post has no date (" + std::string(DateKey()) + ")";
    }
    if (!post.hasText) return "the post has no text (" + std::string(TextKey()) + ")";
    const bool twitterLayout = detection_.shape == ImportShape::kTwitterV11Json;
    const auto instant =
        twitterLayout ? ParseTwitterInstant(post.date) : ParseIsoInstant(post.date);
    if (!instant) {
      return "the date \"" + post.date + "\" is not in the " +
             (twitterLayout ? "layout \"Www Mmm DD HH:MM:SS +ZZZZ YYYY\""
                            : "ISO 8601 layout \"YYYY-MM-DDTHH:MM:SSZ\"");
    }
    if (post.user.empty() && !post.authorId.empty()) {
      const auto user = users_.find(post.authorId);
      if (user != users_.end()) {
        ApplyUser(user->second, post);
      } else {
        post.user = post.authorId;
        ++missingUserNames_;
      }
    }
    if (post.isRepost) {
      post.text = "RT @" + post.repostUser + ": " + post.repostText;
      if (post.link.empty()) post.link = post.repostLink;
    }
    // A text key whose value is no string, or an empty one, leaves nothing to index.
    if (post.text.empty()) return "the post has no text (" + std::string(TextKey()) + ")";
    // Copies keep the storage of both the post and the row for the next post.
    auto set = [&row](LayoutField field, const std::string& text) {
      row[static_cast<std::size_t>(field)].assign(text);
    };
    std::string& date = row[static_cast<std::size_t>(LayoutField::kDateTime)];
    date.clear();
    AppendTwitterDateTime(*instant, date);
    set(LayoutField::kUserName, post.user);
    set(LayoutField::kTweet, post.text);
    set(LayoutField::kTweetId, post.id);
    set(LayoutField::kRealName, post.realName);
    set(LayoutField::kFollowers, post.followers);
    set(LayoutField::kFollowing, post.following);
    set(LayoutField::kPublicLists, post.lists);
    set(LayoutField::kTimeZone, post.timeZone);
    set(LayoutField::kGeo, post.geo);
    set(LayoutField::kUserTweets, post.userTweets);
    set(LayoutField::kRetweeted, post.reposts);
    set(LayoutField::kLinkUrl, post.link);
    std::string net;
    long long positive = 0, negative = 0;
    const auto whole = [](const std::string& text, long long& value) {
      const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
      return !text.empty() && ec == std::errc() && end == text.data() + text.size();
    };
    if (whole(post.sentPositive, positive) && whole(post.sentNegative, negative)) {
      net = std::to_string(positive + negative);
    }
    set(LayoutField::kSentPositive, post.sentPositive);
    set(LayoutField::kSentNegative, post.sentNegative);
    set(LayoutField::kNetSent, net);
    return {};
  }

  void ReadIncludes(od::value& value) {
    if (!IsObject(value)) return;
    for (od::field field : value.get_object()) {
      if (Key(field) != "users" || !IsArray(field.value())) continue;
      for (auto element : field.value().get_array()) {
        od::value user = element.value();
        std::string id;
        UserInfo info = ReadV2User(user, &id);
        if (!id.empty()) users_[id] = std::move(info);
      }
    }
  }

  // The posts of one object: itself, or the array under its container key (with the page's
  // includes.users read first). Rows go to `out` (count in `produced`); a bad post is
  // reported through Bad() with `where`.
  template <typename Object>
  bool ReadObject(Object& document, bool page, const std::string& where,
                  std::vector<ImportedRows::Row>& out, std::size_t& produced) {
    if (!page) {
      ReadPost(document.get_object(), post_);
      return Accept(where, out, produced);
    }
    for (od::field field : document.get_object()) {
      if (Key(field) == "includes") ReadIncludes(field.value());
    }
    document.rewind();
    std::int64_t index = 0;
    for (od::field field : document.get_object()) {
      if (Key(field) != detection_.containerKey || !IsArray(field.value())) continue;
      for (auto element : field.value().get_array()) {
        ++index;
        od::value item = element.value();
        if (Full()) break;
        if (!IsObject(item)) {
          if (!Bad(where + ", post " + std::to_string(index), "not an object")) return false;
          continue;
        }
        ReadPost(item.get_object(), post_);
        if (!Accept(where + ", post " + std::to_string(index), out, produced)) return false;
      }
    }
    return true;
  }

  bool Accept(const std::string& where, std::vector<ImportedRows::Row>& out,
              std::size_t& produced) {
    if (produced == out.size()) out.emplace_back();
    const std::string reason = ToRow(post_, out[produced]);
    if (!reason.empty()) return Bad(where, reason);
    ++produced;
    return true;
  }

  bool ReadLines(char* base, std::size_t size, std::size_t capacity) {
    std::int64_t line = 0;
    std::size_t pos = 0;
    std::vector<ImportedRows::Row> lineRows;
    while (pos < size && !Full()) {
      char* start = base + pos;
      const void* newline = std::memchr(start, '\n', size - pos);
      const std::size_t length =
          newline != nullptr ? static_cast<std::size_t>(static_cast<const char*>(newline) - start)
                             : size - pos;
      ++line;
      const std::size_t next = pos + length + 1;
      if (line % kProgressEvery == 0 &&
          Cancelled(static_cast<std::int64_t>(pos), static_cast<std::int64_t>(size))) {
        return Fail("Loading cancelled");
      }
      if (IsBlank(start, length)) {
        pos = next;
        continue;
      }
      std::size_t produced = 0;
      const std::string where = At(line);
      try {
        od::document document =
            parser_.iterate(simdjson::padded_string_view(start, length, capacity - pos));
        const bool page = detection_.linesArePages;
        if (document.type() != od::json_type::object) {
          if (!Bad(where, "not a JSON object")) return false;
          pos = next;
          continue;
        }
        const std::size_t skippedBefore = static_cast<std::size_t>(report_.skipped);
        if (!ReadObject(document, page, where, lineRows, produced)) return false;
        if (!AtEnd(document)) {
          // Something follows the object on the same line: the line is no JSON value.
          report_.skipped = static_cast<std::int64_t>(skippedBefore);
          if (!Bad(where, "invalid JSON: more than one value on the line")) return false;
          pos = next;
          continue;
        }
      } catch (const simdjson::simdjson_error& error) {
        if (!Bad("Invalid JSON at " + where, DescribeError(error))) return false;
        pos = next;
        continue;
      }
      rows_.AddRows(lineRows.data(), produced, start, length);
      pos = next;
    }
    return true;
  }

  bool ReadDocument(char* base, std::size_t size, std::size_t capacity) {
    // An object is a page of posts, or (without a container key) a single post.
    const bool object = detection_.container == JsonContainer::kObject;
    const bool page = object && !detection_.containerKey.empty();
    std::vector<ImportedRows::Row> rows;
    std::size_t produced = 0;
    od::document document;
    try {
      document = parser_.iterate(simdjson::padded_string_view(base, size, capacity));
      if (object) {
        if (!ReadObject(document, page, "'" + name_ + "'", rows, produced)) return false;
        Flush(rows, produced);
      } else {
        std::int64_t index = 0;
        for (auto element : document.get_array()) {
          od::value item = element.value();
          ++index;
          if (Full()) break;
          const std::string where = At(LineOf(base, item.current_location().value_unsafe())) +
                                    " (post " + std::to_string(index) + ")";
          if (!IsObject(item)) {
            if (!Bad(where, "not an object")) return false;
            continue;
          }
          ReadPost(item.get_object(), post_);
          if (!Accept(where, rows, produced)) return false;
          Flush(rows, produced);
          if (index % kProgressEvery == 0 && Cancelled(index, 0)) {
            return Fail("Loading cancelled");
          }
        }
      }
      if (!Full() && !AtEnd(document)) {
        return Fail("Invalid JSON in '" + name_ + "': more than one value in the file");
      }
    } catch (const simdjson::simdjson_error& error) {
      std::string where = "'" + name_ + "'";
      const auto location = document.current_location();
      if (!location.error()) where = At(LineOf(base, location.value_unsafe()));
      return Fail("Invalid JSON at " + where + ": " + DescribeError(error) +
                  (options_.skipBad ? " (a broken document cannot be skipped)" : ""));
    }
    return true;
  }

  void Flush(std::vector<ImportedRows::Row>& rows, std::size_t& produced) {
    for (std::size_t r = 0; r < produced; ++r) rows_.AddRow(rows[r]);
    produced = 0;
  }

  const std::string& name_;
  const ImportDetection& detection_;
  const ImportOptions& options_;
  ImportedRows& rows_;
  ImportReport& report_;
  const ProgressCallback& progress_;
  od::parser parser_;
  std::unordered_map<std::string, UserInfo> users_;
  Post post_;
  std::int64_t missingUserNames_ = 0;
};

}  // namespace

DetectionOutcome DetectJsonShape(const std::string& name, const char* bytes, std::size_t size,
                                 std::size_t capacity, ImportDetection& detection,
                                 std::string& error) {
  const char* start = SkipBlanks(bytes, bytes + size);
  const std::size_t offset = static_cast<std::size_t>(start - bytes);
  od::parser parser;
  std::vector<std::string> keys, elementKeys;
  std::string containerKey;
  try {
    if (*start == '[') {
      detection.container = JsonContainer::kArray;
      od::document document =
          parser.iterate(simdjson::padded_string_view(start, size - offset, capacity - offset));
      for (auto element : document.get_array()) {
        od::value first = element.value();
        if (!IsObject(first)) {
          error = "'" + name + "' is a JSON array whose first element is not an object";
          return DetectionOutcome::kError;
        }
        std::string none;
        CollectKeys(first.get_object(), keys, elementKeys, none);
        break;
      }
      if (keys.empty()) {
        error = "'" + name + "' is an empty JSON array: it holds no posts";
        return DetectionOutcome::kError;
      }
    } else {
      // JSON lines when the first line alone is a whole object, else one object in the file.
      const char* newline = static_cast<const char*>(std::memchr(start, '\n', size - offset));
      const std::size_t lineLength =
          newline != nullptr ? static_cast<std::size_t>(newline - start) : size - offset;
      bool lines = false;
      try {
        od::document first =
            parser.iterate(simdjson::padded_string_view(start, lineLength, capacity - offset));
        CollectKeys(first.get_object(), keys, elementKeys, containerKey);
        lines = AtEnd(first);
      } catch (const simdjson::simdjson_error&) {
        lines = false;
      }
      if (!lines) {
        keys.clear();
        elementKeys.clear();
        containerKey.clear();
        od::document document =
            parser.iterate(simdjson::padded_string_view(start, size - offset, capacity - offset));
        CollectKeys(document.get_object(), keys, elementKeys, containerKey);
      }
      detection.container = lines ? JsonContainer::kLines : JsonContainer::kObject;
    }
  } catch (const simdjson::simdjson_error& failure) {
    error = "Invalid JSON at '" + name + "' line 1: " + DescribeError(failure);
    return DetectionOutcome::kError;
  }
  // A page of posts: the shape is that of its first post.
  if (!containerKey.empty() && !ShapeOfKeys(keys)) {
    detection.containerKey = containerKey;
    detection.linesArePages = detection.container == JsonContainer::kLines;
    keys = elementKeys;
  }
  detection.keys = keys;
  const auto shape = ShapeOfKeys(keys);
  if (!shape) {
    error = "'" + name + "' is JSON of an unknown shape: its first post has the keys " +
            JoinKeys(keys) + "; the shapes known are " + kKnownShapes;
    return DetectionOutcome::kError;
  }
  detection.shape = *shape;
  return DetectionOutcome::kImport;
}

bool ImportJsonPosts(const std::string& name, ByteBuffer&& input, const ImportDetection& detection,
                     const ImportOptions& options, ImportedRows& rows, ImportReport& report,
                     const ProgressCallback& progress) {
  JsonImporter importer(name, detection, options, rows, report, progress);
  return importer.Run(std::move(input));
}

}  // namespace sylvora
