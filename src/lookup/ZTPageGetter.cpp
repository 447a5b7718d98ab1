#include "lookup/ZTPageGetter.h"

#include "base/ZTDataExtras.h"
#include "lookup/ZTSiteOverride.h"
#include "model/ZTCodeFormatter.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

QByteArray ZTPageGetter::fetch(const QUrl &url)
{
    if (!url.isValid())
        return {};
    QUrl target = ZTSiteOverride::overriddenURL(url);
    if (!target.isValid()) {
        target = url;
        if (target.scheme() == QLatin1String("http"))
            target.setScheme(QStringLiteral("https"));
    }
    QNetworkAccessManager manager;
    manager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    QNetworkRequest request = ZTData::updatedHeaderRequest(QNetworkRequest(target));
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferCache);
    request.setTransferTimeout(30000);
    QNetworkReply *reply = manager.get(request);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(31000, &loop, &QEventLoop::quit);
    loop.exec();
    QByteArray bytes;
    if (reply->isFinished() && reply->error() == QNetworkReply::NoError)
        bytes = reply->readAll();
    reply->abort();
    reply->deleteLater();
    return bytes.isEmpty() ? QByteArray() : bytes;
}

void ZTPageGetter::install()
{
    ZTCodeFormatter::setPageGetter(&ZTPageGetter::fetch);
}
