// ISBNs behind links to the Submarino shop, whose URLs carry only the shop's
// own product id: the product page is read once and remembered.
#include "model/ZTCodeFormatter.h"

#include "base/ZTStringExtras.h"
#include "model/ZTCodeSites.h"

#include <QHash>
#include <QMutex>
#include <QStringDecoder>

namespace {

// The cache is never emptied while the program runs: a product's ISBN does
// not change, and fetches block their caller for up to 30 seconds. Fetch
// threads share it, so it is guarded; the lock is not held while fetching.
struct PageState {
    QMutex mutex;
    ZTCodeFormatter::PageGetter getter;
    QHash<QString, QVariantMap> cache;
};

PageState &pageState()
{
    static PageState s_state;
    return s_state;
}

QString between(const QString &text, const QString &first, const QString &second)
{
    return ZTText::rangeBetweenString(text, first, second).of(text);
}

QString decodedPage(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

} // namespace

void ZTCodeFormatter::setPageGetter(PageGetter getter)
{
    QMutexLocker lock(&pageState().mutex);
    pageState().getter = std::move(getter);
}

void ZTCodeFormatter::clearPageCache()
{
    QMutexLocker lock(&pageState().mutex);
    pageState().cache.clear();
}

QString ZTCodeFormatter::isbnFromSubmarinoURL(const QString &url)
{
    // Cover pictures are named after the product id: ".../img1/123456.jpg".
    QString typeId;
    QString productId =
        between(between(url, QStringLiteral("/images/books/cover/img"), QStringLiteral("jpg")),
                QStringLiteral("/"), QStringLiteral("."));
    if (productId.isEmpty()) {
        typeId = between(url, QStringLiteral("ProdTypeId="), QStringLiteral("&"));
        if (typeId.isNull())
            return QString();
        const QString query =
            QLatin1String("Query=ProductPage&ProdTypeId=") + typeId + QLatin1String("&ProdId=");
        productId = between(url, QLatin1String("/books_productdetails.asp?") + query, QStringLiteral("&"));
        if (productId.isEmpty())
            productId = between(url, QLatin1String("javascript:openPopUp('/AllProdsBigImage.asp?") + query,
                                QStringLiteral("&"));
    }
    if (productId.isEmpty())
        return QString();
    if (typeId.isNull())
        typeId = QStringLiteral("1");

    const QString productUrl =
        QStringLiteral("https://%1/books_productdetails.asp?Query=ProductPage&ProdTypeId=%2&ProdId=%3")
            .arg(ZTCodeSites::submarinoWebHost(), typeId, productId);

    PageGetter getter;
    {
        QMutexLocker lock(&pageState().mutex);
        const auto cached = pageState().cache.constFind(productUrl);
        if (cached != pageState().cache.constEnd())
            return cached->value(QStringLiteral("isbn")).toString();
        getter = pageState().getter;
    }
    if (!getter)
        return QString();
    const QByteArray page = getter(QUrl(productUrl));
    if (page.isNull())
        return QString();
    // Taken as the page states it; the caller validates.
    const QString isbn =
        between(decodedPage(page), QStringLiteral("<strong>ISBN: </strong>"), QStringLiteral("</li>"));
    if (isbn.isNull())
        return QString();
    QMutexLocker lock(&pageState().mutex);
    pageState().cache.insert(productUrl, {{QStringLiteral("isbn"), isbn}});
    return isbn;
}
