#pragma once
// ExpandShortURL over Qt Network: asks a link expansion service for the long form of a short
// link. The request is an HTTP GET of base address + "/v2/expand?url=" + the link as it
// stands (not escaped), + "&title=1" and "&meta-keywords=1" when asked for; the caller waits
// at most the time limit (5 seconds). A reply counts when it arrived in time with status 200
// and holds a long link; otherwise the request is aborted and the result is the short link
// itself with "<no title>" and "<no keys>".
//
// Reply values sit in XML character-data sections: each starts 9 characters after the end of
// its opening tag (the length of "<![CDATA[") and runs to the first "]" after that.
//
// An expander makes its own network access manager and must be used on the thread that made
// it; it runs a local event loop while it waits, so it may be used on a worker thread.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <QString>

class QNetworkAccessManager;

namespace sylvora::app {

struct ExpandedURL {
  std::string longURL;
  std::string title;
  std::string keywords;
};

// The values of a reply; nullopt when it holds no "<long-url>". A missing title or keywords
// tag gives an empty value.
std::optional<ExpandedURL> ParseExpandReply(std::string_view reply);

class ShortUrlExpander {
 public:
  static constexpr int kTimeLimitMs = 5000;

  // `baseAddress` such as "http://127.0.0.1:8080" (a trailing "/" is dropped).
  explicit ShortUrlExpander(const QString& baseAddress, int timeLimitMs = kTimeLimitMs);
  ~ShortUrlExpander();
  ShortUrlExpander(const ShortUrlExpander&) = delete;
  ShortUrlExpander& operator=(const ShortUrlExpander&) = delete;

  // The request text for a link.
  QString RequestAddress(std::string_view shortURL, bool wantTitle, bool wantKeywords) const;

  // Never throws; `stop`, when given, is polled while waiting and aborts the request early.
  ExpandedURL ExpandShortURL(std::string_view shortURL, bool wantTitle, bool wantKeywords,
                             const std::function<bool()>& stop = {});

 private:
  QString baseAddress_;
  int timeLimitMs_;
  std::unique_ptr<QNetworkAccessManager> network_;
};

}  // namespace sylvora::app
