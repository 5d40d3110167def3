// Short-link expansion: the host rule, the reply parsing, requests against a stub service on
// 127.0.0.1 (long link, too slow, refused), and the offer inside the
// load workflow with the resolution of the corpus and its "_" file.
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QUrlQuery>

#include <functional>
#include <memory>
#include <tuple>

#include "app/job_runner.h"
#include "app/misc_functions.h"
#include "app/short_url_expander.h"
#include "stub_http_server.h"
#include "support/qt_test_main.h"
#include "window_fixture.h"

using namespace sylvora;
using namespace sylvora::testing;
using app::ExpandedURL;
using app::ShortUrlExpander;

namespace {

// The link asked for in a request target.
QString AskedLink(const QString& target) {
  const qsizetype at = target.indexOf(QStringLiteral("url="));
  if (at < 0) return {};
  QString link = target.mid(at + 4);
  const qsizetype amp = link.indexOf(u'&');
  return amp < 0 ? link : link.left(amp);
}

// A stub service: ab.cd/x expands, t.co/404 is unknown, everything else has no long link.
StubReply Service(const QString& target) {
  const QString link = AskedLink(target);
  if (link == QStringLiteral("http://ab.cd/x")) {
    return {200,
            ExpandReplyXml("http://www.example-news.org/storm/marisol-landfall.html", "Landfall"),
            0, false};
  }
  if (link == QStringLiteral("http://t.co/404")) return {404, "not here", 0, false};
  return {200, "<response><error>unknown</error></response>", 0, false};
}

// A Twitter1.1 line: date, user, text, 9 more columns, link column 12, sentiment 13..15.
QByteArray Line(const char* user, const char* text, const char* link) {
  return QByteArray("Mon Sep 02 10:00:00 +0000 2013\t") + user + '\t' + text +
         QByteArray(10, '\t') + link + "\t1\t-1\t0\n";
}

QString WriteCorpus(const QString& folder) {
  const QString path = folder + QStringLiteral("/links.txt");
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(Line("ann", "Storm surge expected along the harbour this evening, stay safe",
                  "http://ab.cd/x"));
  file.write(Line("bob", "Read the full story about the storm and the harbour tonight",
                  "http://www.abcdefgh.ij/x"));
  file.write(
      Line("cy", "Second link to the same short story about the harbour storm", "http://ab.cd/x"));
  file.write(Line("dee", "A link the service has never seen in the storm coverage today",
                  "http://t.co/404"));
  file.write(
      Line("eve", "And one more that gives no long link at all for the harbour", "http://ef.gh/q"));
  return path;
}

// The corpus's tweets share one time: the sort by elapsed time still gives its notice.
void DropSortNotices(RecordingPlatform& platform) {
  platform.boxes.removeIf([](const RecordedBox& box) {
    return box.text == QStringLiteral("Documents need to be sorted. This might take a moment...");
  });
}

// A window whose link service is a stub, and the five-line corpus in its folder.
struct LinkWindow {
  explicit LinkWindow(std::function<StubReply(const QString&)> handler = Service) {
    server.handler = std::move(handler);
    server.Listen();
    options.shortUrlService = server.BaseAddress();
    f = std::make_unique<WindowFixture>(options);
    path = WriteCorpus(f->Folder());
    f->Find<QLineEdit>(QStringLiteral("MinDocLen"))->setText(QStringLiteral("10"));
  }
  StubHttpServer server;
  WindowOptions options;
  std::unique_ptr<WindowFixture> f;
  QString path;
};

}  // namespace

class ShortUrlTest : public QObject {
  Q_OBJECT

 private slots:
  void Domain() {
    const std::tuple<const char*, bool, const char*> cases[] = {
        {"http://www.ab.cd/xyz", true, "ab.cd"},
        {"http://news.abcdefgh.ij/x", true, "abcdefgh.ij"},
        {"http://news.abcdefgh.ij/x", false, "news.abcdefgh.ij"},
        {"http://t.co", true, "t.co"},
        {"https://t.co/x", true, "t.co"},
        {"www.a.www.b/c", false, "a.b"},
        {"", true, ""}};
    for (const auto& [url, strip, host] : cases) {
      QCOMPARE(app::GetURLDomain(url, strip), std::string(host));
    }
  }

  void ParsesReplies() {
    const auto full = app::ParseExpandReply(
        "<r><long-url><![CDATA[http://long.example/a]]></long-url><title><![CDATA[A "
        "title]]></title>"
        "<meta-keywords><![CDATA[storm, harbour]]></meta-keywords></r>");
    QVERIFY(full.has_value());
    QCOMPARE(full->longURL, std::string("http://long.example/a"));
    QCOMPARE(full->title, std::string("A title"));
    QCOMPARE(full->keywords, std::string("storm, harbour"));
    const auto bare = app::ParseExpandReply("<long-url><![CDATA[http://l.example/b]]></long-url>");
    QVERIFY(bare.has_value());
    QCOMPARE(bare->title, std::string());
    QCOMPARE(bare->keywords, std::string());
    // The value runs to the first "]", wherever the marker is. (A reply without a long link: the
    // fuzz checks.)
    QCOMPARE(app::ParseExpandReply("<long-url>123456789abc]def")->longURL, std::string("abc"));
  }

  void RequestAddressKeepsTheLinkAsItStands() {
    const ShortUrlExpander expander(QStringLiteral("http://svc.example/"));
    QCOMPARE(expander.RequestAddress("http://ab.cd/x?a=1", false, false),
             QStringLiteral("http://svc.example/v2/expand?url=http://ab.cd/x?a=1"));
    QCOMPARE(
        expander.RequestAddress("http://ab.cd/x", true, true),
        QStringLiteral("http://svc.example/v2/expand?url=http://ab.cd/x&title=1&meta-keywords=1"));
  }

  // A long link against the stub; then a reply after the time limit and a refused connection,
  // which keep the link (the stop request: the cancel inside the load, below).
  void ExpandsOrKeepsTheLink() {
    {
      StubHttpServer server;
      server.handler = Service;
      QVERIFY(server.Listen());
      const ExpandedURL result =
          ShortUrlExpander(server.BaseAddress()).ExpandShortURL("http://ab.cd/x", true, false);
      QCOMPARE(result.longURL + "|" + result.title,
               std::string("http://www.example-news.org/storm/marisol-landfall.html|Landfall"));
      QCOMPARE(server.requests,
               QStringList{QStringLiteral("/v2/expand?url=http://ab.cd/x&title=1")});
    }
    for (const bool refused : {false, true}) {
      StubHttpServer server;
      server.handler = [](const QString&) {
        return StubReply{200, ExpandReplyXml("http://late.example/x"), 2000, false};
      };
      QVERIFY(server.Listen());
      ShortUrlExpander expander(refused ? StubHttpServer::RefusingAddress() : server.BaseAddress(),
                                100);
      const ExpandedURL result = expander.ExpandShortURL("http://ab.cd/slow", false, false);
      QCOMPARE(result.longURL + result.title + result.keywords,
               std::string("http://ab.cd/slow<no title><no keys>"));
      QCOMPARE(server.requests.size(), refused ? 0 : 1);
    }
  }

  void OfferInsideTheLoadRunsTheResolution() {
    LinkWindow w;
    WindowFixture& f = *w.f;
    const QString& path = w.path;
    f.platform.answers.push_back(Answer::kYes);
    QSignalSpy progress(&f.Page(), &app::LoadIndexPage::loadProgressChanged);
    QVERIFY(f.Load(path));
    DropSortNotices(f.platform);
    QCOMPARE(f.platform.boxes.size(), 1);
    QVERIFY(f.platform.boxes[0].question &&
            f.platform.boxes[0].text.contains(path + QStringLiteral("_ .")));
    // Long links are not asked for: three requests for four links, one long link found, used
    // for both tweets that hold its short link, and saved to the "_" file.
    QCOMPARE(w.server.requests.size(), 3);
    const DocumentSet& documents = f.Window().CurrentSession().Documents();
    int replaced = 0;
    for (DocIndex d = 0; d < documents.DocumentCount(); ++d) {
      const std::string cell(documents.Cell(d, documents.URLField()));
      QVERIFY(cell.find("http://ab.cd/x") == std::string::npos);
      replaced += cell.find("marisol-landfall") != std::string::npos;
    }
    QCOMPARE(replaced, 2);
    QVERIFY(Strings(progress).contains(
        QStringLiteral("Attempting to resolve Short URLs:\r\nProcessed 4 out of 4 URLs\r\n"
                       "Attempted resolutions: 3\r\nSuccessful resolutions: 1")));

    // The saved file loads, with the long links, without a new offer.
    f.platform.boxes.clear();
    QVERIFY(f.Load(path + QStringLiteral("_")));
    DropSortNotices(f.platform);
    QCOMPARE(f.platform.boxes.size(), 0);
    QVERIFY(std::string(documents.Cell(0, documents.URLField())).find("ab.cd/x") ==
            std::string::npos);
  }

  void NoAnswerNoRequests() {
    LinkWindow w;
    WindowFixture& f = *w.f;
    const QString& path = w.path;
    f.platform.answers.push_back(Answer::kNo);
    QVERIFY(f.Load(path));
    QCOMPARE(w.server.requests.size(), 0);
    QVERIFY(!QFile::exists(path + QStringLiteral("_")));
  }

  void UnwritableSaveSaysSoAndKeepsTheCorpus() {
    LinkWindow w;
    WindowFixture& f = *w.f;
    const QString& path = w.path;
    QVERIFY(QDir().mkpath(path + QStringLiteral("_")));  // a folder where the file should go
    f.platform.answers.push_back(Answer::kYes);
    QVERIFY(f.Load(path));
    DropSortNotices(f.platform);
    QCOMPARE(f.platform.boxes.size(), 2);
    QVERIFY2(f.platform.boxes[1].text.endsWith(QStringLiteral("The loaded corpus is kept.")),
             qPrintable(f.platform.boxes[1].text));
    QCOMPARE(f.Window().CurrentSession().Documents().DocumentCount(), 5);
  }

  void CancelDuringExpansionEmptiesTheSet() {
    LinkWindow w([](const QString&) { return StubReply{200, {}, 0, true}; });  // never answers
    WindowFixture& f = *w.f;
    const QString& path = w.path;
    // With a ten-minute limit per link only the cancel can end the wait.
    f.Page().SetShortUrlTimeLimit(600'000);
    f.Find<QCheckBox>(QStringLiteral("Radian"))->setChecked(false);
    f.Find<QLineEdit>(QStringLiteral("CorpusFilePath"))->setText(path);
    f.platform.answers.push_back(Answer::kYes);
    QVERIFY(f.Page().LoadCorpus_Click());
    QTRY_VERIFY_WITH_TIMEOUT(!w.server.requests.isEmpty(), 60000);
    f.Window().Jobs().Cancel();
    QVERIFY(f.WaitIdle());
    QCOMPARE(f.Window().CurrentSession().Documents().DocumentCount(), 0);
    QVERIFY(!QFile::exists(path + QStringLiteral("_")));
  }
};

SYLVORA_QT_TEST_MAIN(ShortUrlTest)
#include "short_url_test.moc"
