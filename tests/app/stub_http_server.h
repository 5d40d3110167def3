#pragma once
// A tiny HTTP server on 127.0.0.1 for the link expansion tests. It answers each GET with the
// reply its handler chooses for the request target: a status and body, optionally after a
// delay, or never. It lives on the thread that made it and needs that thread's events.

#include <functional>

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QStringList>

class QTcpServer;
class QTcpSocket;

namespace sylvora::testing {

struct StubReply {
  int status = 200;
  QByteArray body;
  int delayMs = 0;
  bool never = false;  // keep the connection open without answering
};

class StubHttpServer final : public QObject {
  Q_OBJECT

 public:
  StubHttpServer();
  ~StubHttpServer() override;

  // Starts listening on a free port; false when it cannot.
  bool Listen();
  // "http://127.0.0.1:<port>".
  QString BaseAddress() const;

  std::function<StubReply(const QString& target)> handler;
  // The request targets received, in order ("/v2/expand?url=...").
  QStringList requests;

  // A base address on which nothing listens (the connection is refused).
  static QString RefusingAddress();

 private:
  void Serve(QTcpSocket* socket);

  QTcpServer* server_;
  QHash<QTcpSocket*, QByteArray> buffers_;  // what each connection has sent so far
};

// An XML reply of the expansion service.
QByteArray ExpandReplyXml(const QByteArray& longUrl, const QByteArray& title = {},
                          const QByteArray& keywords = {});

}  // namespace sylvora::testing
