// Dates and texts of imported posts: the layouts read, the layout written, HTML to plain text.

#include <gtest/gtest.h>

#include "corpus/html_text.h"
#include "corpus/import_dates.h"

namespace sylvora {
namespace {

// Each reader of a layout, with texts it takes and texts it refuses ("" expected): ISO 8601
// layouts in UTC or with an offset, the Twitter layout with its offset, and the reader that
// tries every layout in turn (epoch seconds and milliseconds, quoted, day first).
TEST(ImportDates, LayoutsBecomeTheTwitter11LayoutInUtc) {
  using Reader = std::optional<std::int64_t> (*)(std::string_view);
  struct Case {
    Reader read;
    const char* text;
    const char* expected;
  };
  const Reader iso = ParseIsoInstant, twitter = ParseTwitterInstant, any = ParseAnyInstant;
  const Case cases[] = {
      {iso, "2013-09-09T21:00:05.000Z", "Mon Sep 09 21:00:05 +0000 2013"},
      {iso, "2013-09-09T21:00:05Z", "Mon Sep 09 21:00:05 +0000 2013"},
      {iso, "2013-09-09 21:00:05", "Mon Sep 09 21:00:05 +0000 2013"},
      {iso, "2013-09-09T21:00", "Mon Sep 09 21:00:00 +0000 2013"},
      {iso, "2013-09-09T23:30:00+02:00", "Mon Sep 09 21:30:00 +0000 2013"},
      {iso, "2013-09-09T01:30:00-0300", "Mon Sep 09 04:30:00 +0000 2013"},
      {iso, "2013-09-01T00:30:00+01", "Sat Aug 31 23:30:00 +0000 2013"},
      {iso, "2024-02-29T12:00:00.123456789Z", "Thu Feb 29 12:00:00 +0000 2024"},
      {iso, "1969-12-31T23:59:59Z", "Wed Dec 31 23:59:59 +0000 1969"},
      {iso, "2013-02-29T10:00:00Z", ""},
      {iso, "2013-09-09T25:00:00Z", ""},
      {iso, "2013-09-09T21:00:05+25:00", ""},
      {iso, "2013-09-09T21:00:05 UTC", ""},
      {iso, "2013-09-09", ""},
      {iso, "09/09/2013 21:00", ""},
      {twitter, "Wed Aug 27 13:08:45 +0000 2008", "Wed Aug 27 13:08:45 +0000 2008"},
      {twitter, "Wed Aug 27 13:08:45 +0200 2008", "Wed Aug 27 11:08:45 +0000 2008"},
      {twitter, "Wed Aug 27 23:08:45 -0200 2008", "Thu Aug 28 01:08:45 +0000 2008"},
      {twitter, "Wed Foo 27 13:08:45 +0000 2008", ""},
      {twitter, "Xyz Aug 27 13:08:45 +0000 2008", ""},
      {twitter, "Wed Aug 27 13:08:45 2008", ""},
      {twitter, "2008-08-27T13:08:45Z", ""},
      {any, "1378760405", "Mon Sep 09 21:00:05 +0000 2013"},     // seconds
      {any, "1378760405123", "Mon Sep 09 21:00:05 +0000 2013"},  // milliseconds
      {any, "\"2013-09-09T21:00:05Z\"", "Mon Sep 09 21:00:05 +0000 2013"},
      {any, "Mon Sep 09 21:00:05 +0000 2013", "Mon Sep 09 21:00:05 +0000 2013"},
      {any, "09/09/2013 21:00:05", "Mon Sep 09 21:00:05 +0000 2013"},  // day first
      {any, "12345", ""},
      {any, "yesterday", ""},
      {any, "", ""},
  };
  for (const auto& c : cases) {
    const auto instant = c.read(c.text);
    if (*c.expected == '\0') {
      EXPECT_FALSE(instant.has_value()) << c.text;
    } else {
      ASSERT_TRUE(instant.has_value()) << c.text;
      EXPECT_EQ(TwitterDateTime(*instant), c.expected) << c.text;
    }
  }
}

TEST(HtmlText, MastodonContentBecomesPlainText) {
  const std::pair<const char*, const char*> cases[] = {
      {"<p>Hello world</p>", "Hello world"},
      {"<p>One</p><p>Two</p>", "One Two"},
      {"<p>line<br>break<br />again</p>", "line break again"},
      {"<p>Fish &amp; chips &lt;3 &quot;yum&quot; &#39;ok&#39; caf&#233; &#x1F600;</p>",
       "Fish & chips <3 \"yum\" 'ok' caf\xC3\xA9 \xF0\x9F\x98\x80"},
      {"<p>a&nbsp;b &hellip; &unknown; &#xZZ; & c</p>", "a b \xE2\x80\xA6 &unknown; &#xZZ; & c"},
      {"<p><a href=\"https://x.social/tags/storm\" class=\"mention hashtag\" rel=\"tag\">"
       "#<span>storm</span></a> hits <span class=\"h-card\"><a href=\"https://x.social/@ann\" "
       "class=\"u-url mention\">@<span>ann</span></a></span></p>",
       "#storm hits @ann"},
      {"<p>see <a href=\"https://example.com/a?b=1&amp;c=2\" rel=\"nofollow\"><span "
       "class=\"invisible\">https://</span><span class=\"ellipsis\">example.com/a</span><span "
       "class=\"invisible\">?b=1&amp;c=2</span></a></p>",
       "see https://example.com/a?b=1&c=2"},
      {"a < b and c > d", "a < b and c > d"},
      {"  <p>\n padded \t</p>  ", "padded"},
  };
  for (const auto& [html, text] : cases) EXPECT_EQ(HtmlToPlainText(html), text) << html;
}

TEST(HtmlText, FirstOrdinaryLinkIsFoundPastMentionsAndHashtags) {
  std::string link;
  HtmlToPlainText(
      "<p><a href=\"https://m.s/tags/x\" class=\"mention hashtag\">#x</a> <a "
      "href=\"https://m.s/@y\" class=\"u-url mention\">@y</a> <a "
      "href=\"https://a.example/1?p=1&amp;q=2\">"
      "first</a> <a href='https://b.example/2'>second</a></p>",
      &link);
  EXPECT_EQ(link, "https://a.example/1?p=1&q=2");
  link.clear();
  HtmlToPlainText("<p>no links <b>here</b></p>", &link);
  EXPECT_EQ(link, "");
}

TEST(HtmlText, TweetTextDecodesTheThreeEscapesOnceAndStaysOnOneLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"Fish &amp; chips", "Fish & chips"},
      {"&lt;3 &gt;_&lt;", "<3 >_<"},
      {"&amp;lt; stays escaped once", "&lt; stays escaped once"},
      {"&quot;other&quot; entities stay", "&quot;other&quot; entities stay"},
      {"two\nlines\r\nand\ttab", "two lines  and tab"},
      {"a & b", "a & b"},
  };
  for (const auto& [raw, expected] : cases) {
    std::string out;
    AppendTweetText(raw, out);
    EXPECT_EQ(out, expected) << raw;
  }
}

TEST(HtmlText, Utf8EncodingCoversEveryLengthAndReplacesSurrogates) {
  std::string out;
  for (const char32_t cp : {U'A', U'\u00E9', U'\u20AC', U'\U0001F300'}) AppendUtf8(cp, out);
  AppendUtf8(0xD800, out);
  AppendUtf8(0x110000, out);
  EXPECT_EQ(out, "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\x80\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace sylvora
