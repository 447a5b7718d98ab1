#include "base/ZTDataExtras.h"

#include <QStringDecoder>

#include <openssl/bio.h>
#include <openssl/evp.h>

#include <climits>
#include <memory>

namespace {

struct BioFree {
    void operator()(BIO *bio) const { BIO_free_all(bio); }
};
using BioChain = std::unique_ptr<BIO, BioFree>;

// A base64 filter on top of a memory BIO; the filter owns the memory BIO once
// pushed, so freeing the chain frees both.
BioChain base64Chain(BIO *memory, ZTBase64Lines lines)
{
    BIO *filter = BIO_new(BIO_f_base64());
    if (!filter || !memory) {
        BIO_free(filter);
        BIO_free(memory);
        return nullptr;
    }
    if (lines == ZTBase64Lines::Unbroken)
        BIO_set_flags(filter, BIO_FLAGS_BASE64_NO_NL);
    return BioChain(BIO_push(filter, memory));
}

QByteArray digest(const EVP_MD *type, const QByteArray &data)
{
    unsigned char out[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    if (!EVP_Digest(data.constData(), size_t(data.size()), out, &size, type, nullptr))
        return QByteArray();
    return QByteArray(reinterpret_cast<const char *>(out), int(size));
}

} // namespace

QString ZTData::base64EncodedString(const QByteArray &data)
{
    BioChain chain = base64Chain(BIO_new(BIO_s_mem()), ZTBase64Lines::Unbroken);
    if (!chain)
        return QString();
    // BIO_write takes an int; feed large inputs in slices.
    for (qsizetype at = 0; at < data.size();) {
        const int slice = int(qMin<qsizetype>(data.size() - at, INT_MAX / 2));
        const int written = BIO_write(chain.get(), data.constData() + at, slice);
        if (written <= 0)
            return QString();
        at += written;
    }
    if (BIO_flush(chain.get()) != 1)
        return QString();
    char *bytes = nullptr;
    const long size = BIO_get_mem_data(BIO_next(chain.get()), &bytes);
    return QString::fromLatin1(bytes, qsizetype(size));
}

QByteArray ZTData::decodeBase64WithNewLines(const QByteArray &base64, ZTBase64Lines lines)
{
    if (base64.size() > INT_MAX)
        return QByteArray();
    BioChain chain = base64Chain(BIO_new_mem_buf(base64.constData(), int(base64.size())), lines);
    if (!chain)
        return QByteArray();
    QByteArray out;
    char buffer[512];
    for (;;) {
        const int read = BIO_read(chain.get(), buffer, int(sizeof buffer));
        if (read <= 0)
            break;
        out.append(buffer, read);
    }
    return out;
}

QString ZTData::htmlString(const QByteArray &data)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(data);
    if (!utf8.hasError())
        return text;
    // Bytes that fail as UTF-8 hold a byte above 127, so they fail as ASCII
    // too: there is no text to give.
    return QString();
}

QByteArray ZTData::md5(const QByteArray &data)
{
    return digest(EVP_md5(), data);
}

QByteArray ZTData::sha1(const QByteArray &data)
{
    return digest(EVP_sha1(), data);
}

QUrl ZTData::ensureSecure(const QUrl &url)
{
    if (url.scheme().compare(QLatin1String("http"), Qt::CaseInsensitive) != 0)
        return url;
    QUrl secure = url;
    secure.setScheme(QStringLiteral("https"));
    return secure;
}

QNetworkRequest ZTData::updatedHeaderRequest(const QNetworkRequest &request)
{
    // There is no Darwin version to read here; the agent text is what every
    // site has been answering, so it goes out on every request.
    QNetworkRequest updated = request;
    updated.setHeader(QNetworkRequest::UserAgentHeader, QByteArray(s_userAgent));
    return updated;
}
