#include "stub_http_server.h"

#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace sylvora::testing {

StubHttpServer::StubHttpServer() : server_(new QTcpServer(this)) {
  connect(server_, &QTcpServer::newConnection, this, [this] {
    while (QTcpSocket* socket = server_->nextPendingConnection()) {
      socket->setParent(this);
      connect(socket, &QObject::destroyed, this, [this, socket] { buffers_.remove(socket); });
      connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Serve(socket); });
    }
  });
}

StubHttpServer::~StubHttpServer() = default;

bool StubHttpServer::Listen() { return server_->listen(QHostAddress::LocalHost, 0); }

QString StubHttpServer::BaseAddress() const {
  return QStringLiteral("http://127.0.0.1:%1").arg(server_->serverPort());
}

QString StubHttpServer::RefusingAddress() {
  QTcpServer probe;
  probe.listen(QHostAddress::LocalHost, 0);
  const quint16 port = probe.serverPort();
  probe.close();
  return QStringLiteral("http://127.0.0.1:%1").arg(port);
}

void StubHttpServer::Serve(QTcpSocket* socket) {
  QByteArray& buffer = buffers_[socket];
  buffer += socket->readAll();
  if (!buffer.contains("\r\n\r\n") || socket->property("served").toBool()) return;
  socket->setProperty("served", true);
  const QByteArray requestLine = buffer.left(buffer.indexOf("\r\n"));
  const QList<QByteArray> parts = requestLine.split(' ');
  const QString target = parts.size() >= 2 ? QString::fromUtf8(parts[1]) : QString();
  requests.push_back(target);
  const StubReply reply = handler ? handler(target) : StubReply{404, {}, 0, false};
  if (reply.never) return;
  const QByteArray reason = reply.status == 200   ? "OK"
                            : reply.status == 404 ? "Not Found"
                                                  : "Error";
  QByteArray response =
      "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + reason +
      "\r\nContent-Type: text/xml\r\nContent-Length: " + QByteArray::number(reply.body.size()) +
      "\r\nConnection: close\r\n\r\n" + reply.body;
  QPointer<QTcpSocket> guarded(socket);
  QTimer::singleShot(reply.delayMs, this, [guarded, response] {
    if (!guarded) return;
    guarded->write(response);
    guarded->disconnectFromHost();
  });
}

QByteArray ExpandReplyXml(const QByteArray& longUrl, const QByteArray& title,
                          const QByteArray& keywords) {
  QByteArray xml = "<?xml version=\"1.0\"?><response>";
  if (!longUrl.isNull()) xml += "<long-url><![CDATA[" + longUrl + "]]></long-url>";
  if (!title.isNull()) xml += "<title><![CDATA[" + title + "]]></title>";
  if (!keywords.isNull()) xml += "<meta-keywords><![CDATA[" + keywords + "]]></meta-keywords>";
  return xml + "</response>";
}

}  // namespace sylvora::testing
