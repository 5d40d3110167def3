#include "app/short_url_expander.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

namespace sylvora::app {
namespace {

// The length of "<![CDATA[", which follows each opening tag.
constexpr std::size_t kCharacterDataMarker = 9;
// How often a wait looks at the stop request.
constexpr int kStopPollMs = 100;

std::optional<std::string> TagValue(std::string_view reply, std::string_view tag) {
  const std::size_t at = reply.find(tag);
  if (at == std::string_view::npos) return std::nullopt;
  const std::size_t start = at + tag.size() + kCharacterDataMarker;
  if (start > reply.size()) return std::string();
  const std::size_t end = reply.find(']', start);
  return std::string(reply.substr(start, end == std::string_view::npos ? end : end - start));
}

ExpandedURL Failed(std::string_view shortURL) {
  return {std::string(shortURL), "<no title>", "<no keys>"};
}

}  // namespace

std::optional<ExpandedURL> ParseExpandReply(std::string_view reply) {
  auto longURL = TagValue(reply, "<long-url>");
  if (!longURL) return std::nullopt;
  ExpandedURL result;
  result.longURL = std::move(*longURL);
  result.title = TagValue(reply, "<title>").value_or(std::string());
  result.keywords = TagValue(reply, "<meta-keywords>").value_or(std::string());
  return result;
}

ShortUrlExpander::ShortUrlExpander(const QString& baseAddress, int timeLimitMs)
    : baseAddress_(baseAddress),
      timeLimitMs_(timeLimitMs),
      network_(std::make_unique<QNetworkAccessManager>()) {
  while (baseAddress_.endsWith(u'/')) baseAddress_.chop(1);
}

ShortUrlExpander::~ShortUrlExpander() = default;

QString ShortUrlExpander::RequestAddress(std::string_view shortURL, bool wantTitle,
                                         bool wantKeywords) const {
  QString address = baseAddress_ + QStringLiteral("/v2/expand?url=") +
                    QString::fromUtf8(shortURL.data(), static_cast<qsizetype>(shortURL.size()));
  if (wantTitle) address += QStringLiteral("&title=1");
  if (wantKeywords) address += QStringLiteral("&meta-keywords=1");
  return address;
}

ExpandedURL ShortUrlExpander::ExpandShortURL(std::string_view shortURL, bool wantTitle,
                                             bool wantKeywords, const std::function<bool()>& stop) {
  const QUrl url(RequestAddress(shortURL, wantTitle, wantKeywords), QUrl::TolerantMode);
  if (!url.isValid() || url.scheme().isEmpty()) return Failed(shortURL);
  QNetworkRequest request(url);
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                       QNetworkRequest::ManualRedirectPolicy);
  QNetworkReply* reply = network_->get(request);

  QEventLoop loop;
  QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
  QTimer limit;
  limit.setSingleShot(true);
  limit.setTimerType(Qt::PreciseTimer);
  QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
  QTimer poll;
  if (stop) {
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
      if (stop()) loop.quit();
    });
    poll.start(kStopPollMs);
  }
  limit.start(timeLimitMs_);
  if (!reply->isFinished()) loop.exec(QEventLoop::ExcludeUserInputEvents);

  ExpandedURL result = Failed(shortURL);
  if (reply->isFinished() && reply->error() == QNetworkReply::NoError &&
      reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == 200) {
    const QByteArray body = reply->readAll();
    if (auto parsed = ParseExpandReply(
            std::string_view(body.constData(), static_cast<std::size_t>(body.size())))) {
      result = std::move(*parsed);
    }
  } else if (!reply->isFinished()) {
    reply->abort();
  }
  delete reply;
  return result;
}

}  // namespace sylvora::app
