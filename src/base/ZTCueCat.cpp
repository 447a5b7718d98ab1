// Decoding of what a CueCat keyboard-wedge scanner types: ".serial.type.code."
// where every field is written in the scanner's own base64 alphabet and every
// byte is scrambled.
#include "base/ZTStringExtras.h"

namespace {

const QLatin1String s_cueCatAlphabet("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-");

// The scanner flips bits 0, 1 and 6 of each byte; undoing it maps the code
// back into printable ASCII.
QChar unscrambled(int value)
{
    const int flipped = value ^ 3;
    const int shifted = flipped + 64 <= 128 ? flipped + 64 : flipped - 64;
    return QChar(char16_t(shifted & 0xFF));
}

// Up to four characters, 6 bits each, give up to three bytes, most
// significant first. An unknown character in the first two places spoils the
// whole group; one later on cuts the group short.
QString decodedCueCatToken(QStringView token)
{
    if (token.size() < 2)
        return QString();
    int values[4] = {0, 0, 0, 0};
    qsizetype known = 0;
    for (; known < token.size() && known < 4; ++known) {
        const qsizetype at = s_cueCatAlphabet.indexOf(token.at(known));
        if (at < 0)
            break;
        values[known] = int(at);
    }
    if (known < 2)
        return QString();
    QString out;
    out.append(unscrambled(((values[0] << 2) | (values[1] >> 4)) & 0xFF));
    if (known >= 3)
        out.append(unscrambled(((values[1] << 4) | (values[2] >> 2)) & 0xFF));
    if (known >= 4)
        out.append(unscrambled(((values[2] << 6) | values[3]) & 0xFF));
    return out;
}

} // namespace

bool ZTText::isValidEncodedCueCatCode(const QString &text)
{
    return text.size() >= 2 && text.at(0) == QLatin1Char('.');
}

QString ZTText::decodedValueFromValidEncodedCueCatCode(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() < 4)
        return QString();
    const QString &code = parts.at(3);
    QString decoded(QLatin1String(""));
    for (qsizetype at = 0; at < code.size(); at += 4)
        decoded += decodedCueCatToken(QStringView(code).mid(at, 4));
    return decoded;
}
