#pragma once

#include "lookup/ZTFetchManager.h"
#include "lookup/ZTFetchSession.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <memory>
#include <optional>

// Whether a multiple-value extraction flattens each value's HTML.
enum class ZTFlatten { No, Yes };
// Which four characters of a year stretch are read.
enum class ZTYearEnd { FromStart, FromEnd };

// The base of every online lookup: one site in one media kind. A run takes a
// dictionary holding one code, walks the plan of requests in fetchKeys (each
// described in fetchDict), cuts attribute values out of the answers into dict
// and finally hands dict, or nothing when the site bails, to its manager.
//
// Everything runs on the thread that owns the fetcher. Before every request
// the fetcher pauses (one second by default) with the event loop turning, so
// other fetchers and the interface go on meanwhile.
class QTimer;

class ZTFetcher : public QObject, protected ZTFetchTaskDelegate {
public:
    explicit ZTFetcher(QObject *parent = nullptr);
    ~ZTFetcher() override;

    // --- What a site says about itself --------------------------------------
    virtual QString type() const;
    virtual QString name() const;
    virtual QString locale() const;
    virtual QStringList fetchableKeys() const;
    // Identifier attribute key to the dict key that holds the searched code.
    virtual QVariantMap fetchKeyIdentifierDictionary() const;
    // The class name results are reported under.
    virtual QString className() const;

    // --- Running ------------------------------------------------------------
    virtual void startFetchingWithDictionary(const QVariantMap &dictionary);
    void fetchURLWithCurrentKey();
    void bail();
    void cancelFetch();

    ZTFetchManager *fetchManager() const { return m_fetchManager; }
    void setFetchManager(ZTFetchManager *manager) { m_fetchManager = manager; }
    int order() const { return m_order; }
    void setOrder(int order) { m_order = order; }
    const QStringList &requestedFetchKeys() const { return m_requestedFetchKeys; }
    void setRequestedFetchKeys(const QStringList &keys) { m_requestedFetchKeys = keys; }
    const QVariantMap &dict() const { return m_dict; }
    const QStringList &fetchKeys() const { return m_fetchKeys; }
    const QString &currentFetchKey() const { return m_currentFetchKey; }
    const QVariantMap &fetchDict() const { return m_fetchDict; }
    const QDateTime &lastFetchDate() const { return m_lastFetchDate; }
    bool isFetching() const { return m_task != nullptr; }

    // --- Shared helpers -----------------------------------------------------
    static bool isValidImage(const QByteArray &data);
    // Three-letter MARC language code to the language's name, read once.
    static const QVariantMap &languageDictionary();
    // UTF-8, else ASCII; null when both fail or there are no bytes.
    static QString stringFromWebData(const std::optional<QByteArray> &data);
    QString processedISBN() const;

    // The pause before each request. Tests shorten it; the environment
    // variable ZETTARY_FETCH_PAUSE_MS does the same for child processes.
    static int pauseInterval();
    static void setPauseInterval(int milliseconds);
    // Bodies larger than this end the transfer as a failure.
    static constexpr qsizetype s_maxResponseBytes = 32 * 1024 * 1024;

    // Status texts, formatted with name().
    QString searchingString() const;
    QString waitingForString() const;
    QString searchCompleteString() const;
    QVariantMap userInfoDictWithStatus(const QString &status, const QVariantMap &keyDict) const;

    // --- Tag extraction: values go to dict when the key is requested ---------
    void updateStringForKey(const QString &key, const QString &text, const QString &startTag,
                            const QString &endTag);
    void updateStringForKey(const QString &key, const QString &text, const QString &startTag,
                            const QString &endTag, const QString &subStartTag, const QString &subEndTag);
    void updateMultipleStringForKey(const QString &key, const QString &text, const QString &startTag,
                                    const QString &endTag, ZTFlatten flatten);
    void updateMultipleStringForKey(const QString &key, const QString &text, const QString &startTag,
                                    const QString &endTag, const QString &subStartTag,
                                    const QString &subEndTag, ZTFlatten flatten);
    void updatePriceForKey(const QString &key, const QString &text, const QString &startTag,
                           const QString &endTag, std::optional<double> divisor);
    void updatePriceForKey(const QString &key, const QString &text, const QString &startTag,
                           const QString &endTag, const QString &subStartTag, const QString &subEndTag,
                           std::optional<double> divisor);
    void updateYearForKey(const QString &key, const QString &text, const QString &startTag,
                          const QString &endTag, ZTYearEnd end);
    void updateYearForKey(const QString &key, const QString &text, const QString &startTag,
                          const QString &endTag, const QString &subStartTag, const QString &subEndTag,
                          ZTYearEnd end);
    void updateIntegerForKey(const QString &key, const QString &text, const QString &startTag,
                             const QString &endTag);
    void updateIntegerForKey(const QString &key, const QString &text, const QString &startTag,
                             const QString &endTag, const QString &subStartTag, const QString &subEndTag);
    // The format is not used: every site writes year-month-day.
    void updateDateForKey(const QString &key, const QString &text, const QString &startTag,
                          const QString &endTag, const QString &dateFormat);
    void updateDateForKey(const QString &key, const QString &text, const QString &startTag,
                          const QString &endTag, const QString &subStartTag, const QString &subEndTag,
                          const QString &dateFormat);

    void processImageKeys();

protected:
    // Called once per step when its response has ended; data() is null after a
    // failed transfer. Implementations end with advanceFetchKey().
    virtual void processData();
    // Rate-limited sites answer false and schedule fetchURLWithCurrentKey themselves.
    virtual bool canFetch();
    // canFetch for a site that allows one request per interval: answers false
    // and calls fetchURLWithCurrentKey again once the interval since
    // lastFetchDate has passed.
    bool canFetchWithMinimumSpacing(double seconds);
    virtual QNetworkRequest urlRequestWithURL(const QUrl &url) const;
    // Where a redirect to url should lead instead; the URL itself by default,
    // and an invalid URL means the same.
    virtual QUrl urlForRedirectedURL(const QUrl &url) const;

    // Steps to the next element of the plan (or past its end) and runs it.
    void advanceFetchKey();
    void fetchGETURL(const QUrl &url);
    void fetchPOSTURL(const QUrl &url, const QString &body, const QVariantMap &headers);
    // False when the fetcher was deleted meanwhile; then nothing of it may be touched.
    bool wait(double seconds);
    bool isRequested(const QString &key) const { return m_requestedFetchKeys.contains(key); }
    void postStatus(const QString &status);

    const std::optional<QByteArray> &data() const { return m_data; }

    // ZTFetchTaskDelegate
    void taskDidReceiveResponse(ZTFetchTask *task) override;
    void taskDidReceiveData(ZTFetchTask *task, const QByteArray &chunk) override;
    QNetworkRequest taskWillPerformRedirection(ZTFetchTask *task, const QNetworkRequest &request) override;
    void taskDidComplete(ZTFetchTask *task, bool failed) override;

    QDateTime m_lastFetchDate;
    QPointer<ZTFetchManager> m_fetchManager;
    QVariantMap m_dict;
    std::optional<QByteArray> m_data;
    QString m_currentFetchKey;
    QStringList m_fetchKeys;
    QStringList m_requestedFetchKeys;
    QVariantMap m_fetchDict;
    int m_order = 0;

private:
    void setDate(const QString &key, const QString &stretch);
    void deliver(const std::optional<QVariantMap> &result);
    ZTFetchSession &session();

    std::unique_ptr<ZTFetchSession> m_urlSession;
    std::unique_ptr<QTimer> m_fetchTimer;
    QPointer<ZTFetchTask> m_task;
};
