#include "lookup/ZTFetcher.h"

#include "base/ZTDataExtras.h"
#include "base/ZTNotificationCenter.h"
#include "base/ZTStringExtras.h"
#include "lookup/ZTFetchManager.h"
#include "lookup/ZTSiteOverride.h"
#include "model/ZTCodeFormatter.h"
#include "model/ZTItem.h"
#include "store/ZTPropertyList.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

namespace {

const QString StatusUpdated = QStringLiteral("ZTFetchStatusUpdated");
const QString StatusKey = QStringLiteral("status");
const QString PostURLKey = QStringLiteral("postURL");
const QString PostContentKey = QStringLiteral("postContent");
const QString PostHeadersKey = QStringLiteral("postHeaders");

int initialPause()
{
    bool ok = false;
    const int fromEnvironment = qEnvironmentVariableIntValue("ZETTARY_FETCH_PAUSE_MS", &ok);
    return ok && fromEnvironment >= 0 ? fromEnvironment : 1000;
}

int &pauseStore()
{
    static int s_pause = initialPause();
    return s_pause;
}

QString localized(const char *text)
{
    return QCoreApplication::translate("Localizable", text);
}

} // namespace

ZTFetcher::ZTFetcher(QObject *parent) : QObject(parent) {}

ZTFetcher::~ZTFetcher()
{
    cancelFetch();
}

QString ZTFetcher::type() const
{
    return QString();
}
QString ZTFetcher::name() const
{
    return QString();
}
QString ZTFetcher::locale() const
{
    return QString();
}
QStringList ZTFetcher::fetchableKeys() const
{
    return {};
}
QVariantMap ZTFetcher::fetchKeyIdentifierDictionary() const
{
    return {};
}
QString ZTFetcher::className() const
{
    return QStringLiteral("ZTFetcher");
}
void ZTFetcher::processData() {}
bool ZTFetcher::canFetch()
{
    return true;
}

bool ZTFetcher::canFetchWithMinimumSpacing(double seconds)
{
    const QDateTime now = QDateTime::currentDateTime();
    const qint64 spacing = qint64(seconds * 1000.0);
    if (m_lastFetchDate.isValid()) {
        const qint64 elapsed = m_lastFetchDate.msecsTo(now);
        if (elapsed >= 0 && elapsed < spacing) {
            m_fetchTimer = std::make_unique<QTimer>();
            m_fetchTimer->setSingleShot(true);
            connect(m_fetchTimer.get(), &QTimer::timeout, this, [this] { fetchURLWithCurrentKey(); });
            // Precise and a millisecond late, so the retry never finds itself early.
            m_fetchTimer->setTimerType(Qt::PreciseTimer);
            m_fetchTimer->start(int(spacing - elapsed) + 1);
            return false;
        }
    }
    // Dropped later: the timer may be the caller.
    if (m_fetchTimer)
        m_fetchTimer.release()->deleteLater();
    m_lastFetchDate = now;
    return true;
}

QUrl ZTFetcher::urlForRedirectedURL(const QUrl &url) const
{
    return url;
}

int ZTFetcher::pauseInterval()
{
    return pauseStore();
}

void ZTFetcher::setPauseInterval(int milliseconds)
{
    pauseStore() = qMax(0, milliseconds);
}

QString ZTFetcher::searchingString() const
{
    return localized("Searching %1\u2026").arg(name());
}

QString ZTFetcher::waitingForString() const
{
    return localized("Waiting for %1...").arg(name());
}

QString ZTFetcher::searchCompleteString() const
{
    return localized("%1 search complete.").arg(name());
}

QVariantMap ZTFetcher::userInfoDictWithStatus(const QString &status, const QVariantMap &keyDict) const
{
    QVariantMap info;
    info.insert(StatusKey, status);
    for (auto it = keyDict.constBegin(); it != keyDict.constEnd(); ++it) {
        const QVariant value = m_dict.value(it.value().toString());
        if (value.isValid())
            info.insert(it.key(), value);
    }
    return info;
}

void ZTFetcher::postStatus(const QString &status)
{
    ZTNotificationCenter::defaultCenter().post(
        StatusUpdated, this, userInfoDictWithStatus(status, fetchKeyIdentifierDictionary()));
}

void ZTFetcher::startFetchingWithDictionary(const QVariantMap &dictionary)
{
    // fetchDict keeps the previous code's requests: they are overwritten step by step.
    m_dict = dictionary;
    m_dict.insert(QStringLiteral("locale"), locale());
    m_fetchKeys.clear();
}

void ZTFetcher::fetchURLWithCurrentKey()
{
    if (!m_currentFetchKey.isNull()) {
        if (!canFetch()) {
            postStatus(waitingForString());
            return;
        }
        cancelFetch();
        postStatus(searchingString());
        m_data.reset();
        if (!wait(pauseInterval() / 1000.0))
            return;
        const QVariant description = m_fetchDict.value(m_currentFetchKey);
        if (description.typeId() == QMetaType::QUrl) {
            fetchGETURL(description.toUrl());
            return;
        }
        if (description.typeId() == QMetaType::QVariantMap) {
            const QVariantMap post = description.toMap();
            fetchPOSTURL(post.value(PostURLKey).toUrl(), post.value(PostContentKey).toString(),
                         post.value(PostHeadersKey).toMap());
            return;
        }
    }
    postStatus(searchCompleteString());
    cancelFetch();
    processImageKeys();
    deliver(m_dict);
}

void ZTFetcher::advanceFetchKey()
{
    const qsizetype index = m_fetchKeys.indexOf(m_currentFetchKey);
    if (index < 0 || index + 1 >= m_fetchKeys.size())
        m_currentFetchKey = QString();
    else
        m_currentFetchKey = m_fetchKeys.at(index + 1);
    fetchURLWithCurrentKey();
}

void ZTFetcher::bail()
{
    cancelFetch();
    deliver(std::nullopt);
}

void ZTFetcher::deliver(const std::optional<QVariantMap> &result)
{
    if (m_fetchManager)
        m_fetchManager->handleFetchDictionary(result, this);
}

void ZTFetcher::cancelFetch()
{
    if (m_task) {
        ZTFetchTask *task = m_task;
        m_task = nullptr;
        task->cancel();
    }
}

bool ZTFetcher::wait(double seconds)
{
    // Whoever owns the fetcher may delete it while the loop turns.
    QPointer<ZTFetcher> self(this);
    QEventLoop loop;
    QTimer::singleShot(qMax(0, int(seconds * 1000.0)), &loop, &QEventLoop::quit);
    loop.exec();
    if (!self)
        return false;
    m_lastFetchDate = QDateTime::currentDateTime();
    return true;
}

ZTFetchSession &ZTFetcher::session()
{
    if (!m_urlSession)
        m_urlSession = ZTFetchSession::create();
    return *m_urlSession;
}

QNetworkRequest ZTFetcher::urlRequestWithURL(const QUrl &url) const
{
    // A site pointed at a local server for debugging is asked exactly there.
    const QUrl overridden = ZTSiteOverride::overriddenURL(url);
    QNetworkRequest request(overridden.isValid() ? overridden : ZTData::ensureSecure(url));
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    return ZTData::updatedHeaderRequest(request);
}

void ZTFetcher::fetchGETURL(const QUrl &url)
{
    cancelFetch();
    m_task = session().startTask(urlRequestWithURL(url), this);
}

void ZTFetcher::fetchPOSTURL(const QUrl &url, const QString &, const QVariantMap &)
{
    // The form body and headers never leave: what goes out is a plain GET of
    // the same URL. The one site that posts has always been answered that
    // way, and its reader is written against that answer.
    fetchGETURL(url);
}

void ZTFetcher::taskDidReceiveResponse(ZTFetchTask *task)
{
    if (task != m_task)
        return;
    m_data = QByteArray();
}

void ZTFetcher::taskDidReceiveData(ZTFetchTask *task, const QByteArray &chunk)
{
    if (task != m_task)
        return;
    if (!m_data)
        m_data = QByteArray();
    if (m_data->size() + chunk.size() > s_maxResponseBytes) {
        // A page this large is no product page; end it as a failed transfer.
        m_data.reset();
        task->cancel();
        return;
    }
    m_data->append(chunk);
}

QNetworkRequest ZTFetcher::taskWillPerformRedirection(ZTFetchTask *, const QNetworkRequest &request)
{
    const QUrl target = request.url();
    if (!target.isValid())
        return request;
    QUrl rewritten = urlForRedirectedURL(target);
    if (!rewritten.isValid())
        rewritten = target;
    const QUrl overridden = ZTSiteOverride::overriddenURL(rewritten);
    QNetworkRequest next = request;
    next.setUrl(overridden.isValid() ? overridden : rewritten);
    return next;
}

void ZTFetcher::taskDidComplete(ZTFetchTask *task, bool failed)
{
    // A transfer cancelled from outside (not replaced by a newer one) still
    // reaches processData, with no data, as any failed transfer does.
    if (task != m_task && m_task)
        return;
    if (failed || task != m_task)
        m_data.reset();
    processData();
}

bool ZTFetcher::isValidImage(const QByteArray &data)
{
    return !data.isNull() && ZTItem::isValidImage(data);
}

const QVariantMap &ZTFetcher::languageDictionary()
{
    static const QVariantMap s_languages = [] {
        QFile file(QStringLiteral(":/LS.plist"));
        if (!file.open(QIODevice::ReadOnly))
            return QVariantMap();
        return ZTPropertyList::deserialize(file.readAll()).toMap();
    }();
    return s_languages;
}

QString ZTFetcher::stringFromWebData(const std::optional<QByteArray> &data)
{
    if (!data)
        return QString();
    return ZTData::htmlString(*data);
}

QString ZTFetcher::processedISBN() const
{
    const QString original = m_dict.value(QStringLiteral("originalIsbn")).toString();
    if (original.isEmpty())
        return QString();
    const QString stripped = ZTText::stringByStrippingDashesAndWhitespace(original);
    if (ZTCodeFormatter::isValidEAN(stripped, QStringLiteral("978")))
        return ZTCodeFormatter::isbnFromEAN(stripped);
    return stripped;
}

void ZTFetcher::processImageKeys()
{
    struct Fold {
        QString key;
        QStringList variants;
    };
    const Fold folds[] = {
        {QStringLiteral("imageUrl"),
         {QStringLiteral("imageUrlLarge"), QStringLiteral("imageUrlMedium"),
          QStringLiteral("imageUrlSmall")}},
        {QStringLiteral("image"),
         {QStringLiteral("imageLarge"), QStringLiteral("imageMedium"), QStringLiteral("imageSmall")}},
    };
    for (const Fold &fold : folds) {
        if (!isRequested(fold.key))
            continue;
        for (const QString &variant : fold.variants) {
            if (m_dict.contains(variant)) {
                m_dict.insert(fold.key, m_dict.value(variant));
                break;
            }
        }
        for (const QString &variant : fold.variants)
            m_dict.remove(variant);
    }
}
