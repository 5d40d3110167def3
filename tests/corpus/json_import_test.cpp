// JSON exports of each shape, hand-written, with their tricky cases and their failures.

#include <gtest/gtest.h>

#include <string>

#include "corpus/corpus_import.h"
#include "corpus/imported_rows.h"

namespace sylvora {
namespace {

constexpr FieldIndex kDate = 0, kUser = 1, kText = 2, kId = 3, kName = 4, kFollowers = 5, kGeo = 9,
                     kUserTweets = 10, kReposts = 11, kLink = 12, kPos = 13, kNeg = 14, kNet = 15;

class JsonImport : public ::testing::Test {
 protected:
  DetectionOutcome Import(const std::string& json, bool skipBad = false, DocIndex maxCount = 0) {
    documents_ = DocumentSet();
    ImportOptions options;
    options.skipBad = skipBad;
    options.maxCount = maxCount;
    return ImportCorpusBytes("posts.json", json, options, documents_, report_);
  }
  std::string Cell(DocIndex doc, FieldIndex field) const { return documents_.Text(doc, field); }

  DocumentSet documents_;
  ImportReport report_;
};

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// --- X / Twitter API v2 ---

const char* const kV2Line =
    R"({"id":"1001","text":"Storm \ud83c\udf00 near caf\u00e9 &amp; pier #Marisol @ann http://t.co/abcdefgh",)"
    R"("created_at":"2013-09-09T21:00:05.000Z","author_id":"42","author":{"id":"42","username":"bob",)"
    R"("name":"Bob \"B\" Jones","public_metrics":{"followers_count":10,"following_count":5,)"
    R"("listed_count":1,"tweet_count":99}},"entities":{"urls":[{"url":"http://t.co/abcdefgh",)"
    R"("expanded_url":"http://www.example.com/storm"}],"hashtags":[{"tag":"Marisol"}],)"
    R"("mentions":[{"username":"ann"}]},"public_metrics":{"retweet_count":3,"like_count":7},)"
    R"("geo":{"coordinates":{"type":"Point","coordinates":[-71.05,41.47]}},)"
    R"("sentiment":{"positive":3,"negative":-2}})";

TEST_F(JsonImport, TwitterV2LineFillsTheTwitter11Fields) {
  ASSERT_EQ(Import(std::string(kV2Line) + "\n"), DetectionOutcome::kImport) << report_.error;
  EXPECT_EQ(report_.detection.shape, ImportShape::kTwitterV2Json);
  EXPECT_EQ(report_.detection.container, JsonContainer::kLines);
  ASSERT_EQ(documents_.DocumentCount(), 1);
  ASSERT_EQ(documents_.FieldCount(), kLayoutFieldCount);
  EXPECT_EQ(documents_.FieldName(2), "Tweet");
  EXPECT_EQ(documents_.FilePath(), "posts.json");
  EXPECT_EQ(Cell(0, kDate), "Mon Sep 09 21:00:05 +0000 2013");
  EXPECT_EQ(Cell(0, kUser), "bob");
  // A surrogate pair and an escaped accent become UTF-8; "&amp;" becomes "&".
  EXPECT_EQ(Cell(0, kText),
            "Storm \xF0\x9F\x8C\x80 near caf\xC3\xA9 & pier #Marisol @ann http://t.co/abcdefgh");
  // The other fields are compared with the tab-separated sample file by the load test.
  EXPECT_EQ(Cell(0, kName), "Bob \"B\" Jones");
  EXPECT_EQ(Cell(0, kGeo), "41.47,-71.05");
  EXPECT_EQ(Cell(0, kLink), "http://www.example.com/storm");
  // A top-level array of posts, and a limit on the count.
  ASSERT_EQ(
      Import(std::string("[\n") + kV2Line + ",\n" + kV2Line + ",\n" + kV2Line + "\n]", false, 2),
      DetectionOutcome::kImport)
      << report_.error;
  EXPECT_EQ(report_.detection.container, JsonContainer::kArray);
  EXPECT_EQ(documents_.DocumentCount(), 2);
  EXPECT_EQ(Cell(1, kLink), "http://www.example.com/storm");
}

TEST_F(JsonImport, TwitterV2PagesTakeUserNamesFromIncludes) {
  const std::string page =
      R"({"data":[{"id":"1","author_id":"7","created_at":"2013-09-09T10:00:00Z","text":"first"},)"
      R"({"id":"2","author_id":"8","created_at":"2013-09-09T11:00:00Z","text":"second",)"
      R"("note_tweet":{"text":"second, the whole long text"}}],)"
      R"("includes":{"users":[{"id":"7","username":"ann","name":"Ann"},)"
      R"({"id":"8","username":"cy","name":"Cy","public_metrics":{"followers_count":4}}]},)"
      R"("meta":{"result_count":2}})";
  // As JSON lines of pages (what collection tools write) ...
  ASSERT_EQ(Import(page + "\n" + page + "\n"), DetectionOutcome::kImport) << report_.error;
  EXPECT_TRUE(report_.detection.linesArePages);
  EXPECT_EQ(report_.detection.containerKey, "data");
  ASSERT_EQ(documents_.DocumentCount(), 4);
  EXPECT_EQ(Cell(0, kUser), "ann");
  EXPECT_EQ(Cell(1, kUser), "cy");
  EXPECT_EQ(Cell(1, kFollowers), "4");
  EXPECT_EQ(Cell(1, kText), "second, the whole long text");
  EXPECT_TRUE(report_.warnings.empty());
  // ... and as one pretty-printed response.
  std::string pretty = page;
  for (std::size_t p = 0; (p = pretty.find(",\"", p)) != std::string::npos; p += 3) {
    pretty.insert(p + 1, "\n  ");
  }
  ASSERT_EQ(Import(pretty), DetectionOutcome::kImport) << report_.error;
  EXPECT_EQ(report_.detection.container, JsonContainer::kObject);
  ASSERT_EQ(documents_.DocumentCount(), 2);
  EXPECT_EQ(Cell(0, kUser), "ann");
}

TEST_F(JsonImport, AuthorWithoutANameKeepsItsIdAndSaysSo) {
  ASSERT_EQ(
      Import(R"({"id":"1","author_id":"777","created_at":"2013-09-09T10:00:00Z","text":"x"})"),
      DetectionOutcome::kImport)
      << report_.error;
  EXPECT_EQ(Cell(0, kUser), "777");
  ASSERT_EQ(report_.warnings.size(), 1u);
  EXPECT_TRUE(Has(report_.warnings[0], "1 posts name their author by id only"));
}

// --- Twitter API v1.1 ---

TEST_F(JsonImport, TwitterV11TakesFullTextAndRebuildsRetweets) {
  const std::string lines =
      R"({"created_at":"Wed Aug 27 13:08:45 +0000 2008","id":1234567890123456789,"id_str":"1234567890123456789",)"
      R"("text":"cut short…","full_text":"The whole text &lt;3 with a\nline break",)"
      R"("user":{"screen_name":"ann","name":"Ann A","followers_count":5,"friends_count":6,)"
      R"("listed_count":0,"statuses_count":70,"time_zone":"London"},)"
      R"("entities":{"urls":[{"url":"https://t.co/x","expanded_url":"https://long.example/page"}]},)"
      R"("retweet_count":2,"coordinates":{"type":"Point","coordinates":[-0.12,51.5]}})"
      "\n"
      R"({"created_at":"Thu Aug 28 09:00:00 +0000 2008","id":2,"text":"RT @ann: The whole text &lt;3 wi…",)"
      R"("user":{"screen_name":"bob"},"retweet_count":2,"entities":{"urls":[]},)"
      R"("retweeted_status":{"created_at":"Wed Aug 27 13:08:45 +0000 2008","id_str":"1",)"
      R"("user":{"screen_name":"ann"},"full_text":"The whole text &lt;3 with more",)"
      R"("entities":{"urls":[{"expanded_url":"https://long.example/page"}]}}})"
      "\n";
  ASSERT_EQ(Import(lines), DetectionOutcome::kImport) << report_.error;
  EXPECT_EQ(report_.detection.shape, ImportShape::kTwitterV11Json);
  ASSERT_EQ(documents_.DocumentCount(), 2);
  EXPECT_EQ(Cell(0, kId), "1234567890123456789");  // id_str: a double would round it
  EXPECT_EQ(Cell(0, kText), "The whole text <3 with a line break");
  EXPECT_EQ(Cell(0, kName), "Ann A");
  EXPECT_EQ(Cell(0, 8), "London");
  EXPECT_EQ(Cell(0, kGeo), "51.5,-0.12");
  EXPECT_EQ(Cell(0, kLink), "https://long.example/page");
  EXPECT_EQ(Cell(1, kUser), "bob");
  EXPECT_EQ(Cell(1, kText), "RT @ann: The whole text <3 with more");
  EXPECT_EQ(Cell(1, kLink), "https://long.example/page");
  // The streaming API's extended tweet.
  ASSERT_EQ(Import(R"({"created_at":"Wed Aug 27 13:08:45 +0000 2008","user":{"screen_name":"a"},)"
                   R"("text":"short…","extended_tweet":{"full_text":"long and whole",)"
                   R"("entities":{"urls":[{"expanded_url":"http://x.example/1"}]}}})"),
            DetectionOutcome::kImport)
      << report_.error;
  EXPECT_EQ(Cell(0, kText), "long and whole");
  EXPECT_EQ(Cell(0, kLink), "http://x.example/1");
}

// --- Mastodon ---

TEST_F(JsonImport, MastodonContentIsHtmlMadePlainAndReblogsBecomeRetweets) {
  const std::string statuses =
      R"([{"id":"109","created_at":"2023-01-05T10:00:00.000Z","account":{"acct":"ann@mastodon.example",)"
      R"("display_name":"Ann","followers_count":12,"following_count":3,"statuses_count":400},)"
      R"("content":"<p>Fish &amp; chips &lt;3 <a href=\"https://mastodon.example/tags/food\" )"
      R"(class=\"mention hashtag\" rel=\"tag\">#<span>food</span></a></p><p>see <a )"
      R"(href=\"https://news.example/a?x=1&amp;y=2\"><span class=\"invisible\">https://</span>)"
      R"(<span>news.example/a</span></a><br />bye</p>","reblogs_count":4,"reblog":null,)"
      R"("tags":[{"name":"food"}],"mentions":[],"url":"https://mastodon.example/@ann/109"},)"
      R"({"id":"110","created_at":"2023-01-05T11:00:00Z","account":{"acct":"bob"},"content":"",)"
      R"("reblog":{"id":"99","created_at":"2023-01-05T09:00:00Z","account":{"acct":"cy"},)"
      R"("content":"<p>original &#8212; words</p>","card":{"url":"https://card.example/"}}}])";
  ASSERT_EQ(Import(statuses), DetectionOutcome::kImport) << report_.error;
  EXPECT_EQ(report_.detection.shape, ImportShape::kMastodonJson);
  ASSERT_EQ(documents_.DocumentCount(), 2);
  EXPECT_EQ(Cell(0, kUser), "ann@mastodon.example");
  EXPECT_EQ(Cell(0, kText), "Fish & chips <3 #food see https://news.example/a bye");
  EXPECT_EQ(Cell(0, kLink), "https://news.example/a?x=1&y=2");
  EXPECT_EQ(Cell(0, kReposts), "4");
  EXPECT_EQ(Cell(1, kText), "RT @cy: original \xE2\x80\x94 words");
  EXPECT_EQ(Cell(1, kLink), "https://card.example/");
  EXPECT_EQ(Cell(1, kDate), "Thu Jan 05 11:00:00 +0000 2023");
}

// --- Bluesky ---

TEST_F(JsonImport, BlueskyPostsFeedItemsAndBareRecords) {
  const std::string feed =
      R"({"feed":[{"post":{"uri":"at://did:plc:abc/app.bsky.feed.post/3k","cid":"bafy",)"
      R"("author":{"did":"did:plc:abc","handle":"ann.bsky.social","displayName":"Ann"},)"
      R"("record":{"$type":"app.bsky.feed.post","text":"Look example.com/lo... \u2728",)"
      R"("createdAt":"2024-03-01T12:00:00.000Z","facets":[{"index":{"byteStart":5,"byteEnd":22},)"
      R"("features":[{"$type":"app.bsky.richtext.facet#mention","did":"did:plc:x"}]},)"
      R"({"index":{"byteStart":5,"byteEnd":22},"features":[{"$type":"app.bsky.richtext.facet#link",)"
      R"("uri":"https://example.com/long/path"}]}]},"repostCount":2,"indexedAt":"2024-03-01T12:00:01Z"}}]})";
  ASSERT_EQ(Import(feed), DetectionOutcome::kImport) << report_.error;
  EXPECT_EQ(report_.detection.shape, ImportShape::kBlueskyJson);
  EXPECT_EQ(report_.detection.containerKey, "feed");
  ASSERT_EQ(documents_.DocumentCount(), 1);
  EXPECT_EQ(Cell(0, kUser), "ann.bsky.social");
  EXPECT_EQ(Cell(0, kText), "Look example.com/lo... \xE2\x9C\xA8");
  EXPECT_EQ(Cell(0, kLink), "https://example.com/long/path");
  EXPECT_EQ(Cell(0, kReposts), "2");

  ASSERT_EQ(
      Import(
          R"({"$type":"app.bsky.feed.post","text":"bare record","createdAt":"2024-03-01T12:00:00Z"})"
          "\n"),
      DetectionOutcome::kImport)
      << report_.error;
  EXPECT_EQ(Cell(0, kText), "bare record");
  EXPECT_EQ(Cell(0, kUser), "");
}

// --- what goes wrong ---

TEST_F(JsonImport, InvalidLineNamesItsNumberAndKeepsNothing) {
  const std::string lines = std::string(kV2Line) + "\n\n" + kV2Line + "\n" +
                            R"({"id":"3","text":"cut)" + "\n" + kV2Line + "\n";
  EXPECT_EQ(Import(lines), DetectionOutcome::kError);
  EXPECT_TRUE(Has(report_.error, "Invalid JSON at 'posts.json' line 4")) << report_.error;
  EXPECT_EQ(documents_.DocumentCount(), 0);
  EXPECT_EQ(documents_.FieldCount(), 0);
  // A broken array cannot be skipped past.
  EXPECT_EQ(Import(std::string("[\n") + kV2Line + ",\n" + kV2Line + ",\n{\"id\": 3,,}\n]", true),
            DetectionOutcome::kError);
  EXPECT_TRUE(Has(report_.error, "cannot be skipped")) << report_.error;
}

TEST_F(JsonImport, SkipBadSkipsAndCountsBadLines) {
  const std::string lines = std::string(kV2Line) + "\n" + R"({"id":"3","text":"cut)" + "\n" +
                            R"({"id":"4","author_id":"1","text":"no date"})" + "\n" +
                            R"({"id":"5","author_id":"1","created_at":"yesterday","text":"x"})" +
                            "\n" + kV2Line + "\n" + kV2Line + " {}\n";
  ASSERT_EQ(Import(lines, true), DetectionOutcome::kImport) << report_.error;
  EXPECT_EQ(documents_.DocumentCount(), 2);
  EXPECT_EQ(report_.skipped, 4);
  ASSERT_EQ(report_.skippedSamples.size(), 4u);
  // Each sample names its line (the reasons are those of the refusal table below).
  for (const auto& [k, line] :
       {std::pair{0, "line 2"}, {1, "line 3"}, {2, "line 4"}, {3, "line 6"}}) {
    EXPECT_TRUE(Has(report_.skippedSamples[k], line)) << report_.skippedSamples[k];
  }
}

TEST_F(JsonImport, PostsWithoutDateOrTextOrWithAnotherDateLayoutAreRefused) {
  const std::pair<std::string, std::string> cases[] = {
      {R"({"id":"1","author_id":"2","text":"no date"})", "the post has no date (created_at)"},
      {R"({"id":"1","author_id":"2","created_at":"2013-09-09T10:00:00Z"})",
       "the post has no text (text)"},
      {R"({"id":"1","author_id":"2","created_at":"09/09/2013 10:00","text":"x"})",
       "the date \"09/09/2013 10:00\" is not in the ISO 8601 layout"},
      {R"({"user":{"screen_name":"a"},"text":"x","created_at":"2013-09-09T10:00:00Z"})",
       "the date \"2013-09-09T10:00:00Z\" is not in the layout \"Www Mmm DD HH:MM:SS +ZZZZ "
       "YYYY\""},
      {R"({"account":{"acct":"a"},"created_at":"2023-01-05T10:00:00Z","reblog":null})",
       "the post has no text (content)"},
      {R"({"record":{"text":"x"},"author":{"handle":"a"}})",
       "the post has no date (record.createdAt)"},
  };
  for (const auto& [json, message] : cases) {
    EXPECT_EQ(Import(json + "\n"), DetectionOutcome::kError) << json;
    EXPECT_TRUE(Has(report_.error, "'posts.json' line 1: " + message)) << report_.error;
    EXPECT_EQ(documents_.DocumentCount(), 0);
  }
}

TEST_F(JsonImport, UnknownShapeListsTheKeysFoundAndTheShapesKnown) {
  EXPECT_EQ(Import(R"({"title":"x","when":"2013","body":"y"})"
                   "\n"),
            DetectionOutcome::kError);
  EXPECT_TRUE(Has(report_.error,
                  "JSON of an unknown shape: its first post has the keys title, "
                  "when, body; the shapes known are X / Twitter API v2"))
      << report_.error;
  EXPECT_TRUE(Has(report_.error, "Mastodon (created_at, account, content)"));
  EXPECT_EQ(Import("[]"), DetectionOutcome::kError);
  EXPECT_TRUE(Has(report_.error, "empty JSON array")) << report_.error;
  EXPECT_EQ(Import("[1, 2]"), DetectionOutcome::kError);
  EXPECT_TRUE(Has(report_.error, "first element is not an object")) << report_.error;
}

TEST_F(JsonImport, InvalidUtf8IsInvalidJsonAndTabSeparatedTextIsLeftToTheLoader) {
  std::string line = kV2Line;
  line.replace(line.find("Storm"), 1, "\xC3");
  EXPECT_EQ(Import(line + "\n"), DetectionOutcome::kError);
  EXPECT_TRUE(Has(report_.error, "line 1")) << report_.error;
  EXPECT_EQ(Import("Wed Aug 27 13:08:45 +0000 2008\tann\thello, world\n"),
            DetectionOutcome::kTabSeparated);
  EXPECT_TRUE(report_.error.empty());
}

}  // namespace
}  // namespace sylvora
