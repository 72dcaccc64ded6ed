// platform/http.h by the toolkit's network: each request has a manager and an event loop on its worker.
#include <QEventLoop>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>
#include <memory>

#include "platform/http.h"
#include "platform/qt/view/theme.h"

namespace zv {

using shell::textOf;
using shell::utf8;

namespace {

constexpr int kLookForCancelMs = 50;

QNetworkRequest networkRequest(const HttpRequest& request) {
    QNetworkRequest made{QUrl(textOf(request.url))};
    for (const auto& [name, value] : request.headers)
        made.setRawHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    made.setTransferTimeout(request.timeoutMs);
    return made;
}

}  // namespace

HttpReply performHttp(const HttpRequest& request, JobWork& work) {
    HttpReply result;
    QFile file(textOf(request.file));
    if (!request.file.empty() && !file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        result.error = utf8(file.errorString());
        return result;
    }
    QNetworkAccessManager network;
    const std::unique_ptr<QNetworkReply> reply(
        network.sendCustomRequest(networkRequest(request), QByteArray::fromStdString(request.method),
                                  QByteArray::fromStdString(request.body)));
    const auto take = [&] {
        const QByteArray bytes = reply->readAll();
        result.bytes += bytes.size();
        if (request.file.empty())
            result.body += bytes.toStdString();
        else if (file.write(bytes) != bytes.size())
            result.error = utf8(file.errorString());
    };
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, take);
    QObject::connect(reply.get(), &QNetworkReply::downloadProgress, &loop, [&](qint64 got, qint64 all) {
        if (all > 0) work.progress(static_cast<int>(got * 100 / all));
    });
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (work.cancelled() || !result.error.empty()) reply->abort();
    });
    look.start(kLookForCancelMs);
    if (!reply->isFinished()) loop.exec();
    take();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    // A whole reply counts whatever its status; one that breaks off does not.
    const bool broken =
        reply->error() != QNetworkReply::NoError && reply->error() < QNetworkReply::ContentAccessDenied;
    if (!broken && result.error.empty()) result.status = status;
    if (broken && result.error.empty()) result.error = utf8(reply->errorString());
    return result;
}

}  // namespace zv
