#include "sharing/http/HTTPMessage.h"

#include <ctime>

namespace {
bool isTokenChar(char c)
{
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
        return true;
    switch (c) {
    case '!':
    case '#':
    case '$':
    case '%':
    case '&':
    case '\'':
    case '*':
    case '+':
    case '-':
    case '.':
    case '^':
    case '_':
    case '`':
    case '|':
    case '~':
        return true;
    default:
        return false;
    }
}

bool isToken(QByteArrayView text)
{
    if (text.isEmpty())
        return false;
    for (char c : text)
        if (!isTokenChar(c))
            return false;
    return true;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

HTTPMessage HTTPMessage::response(int statusCode, QByteArrayView description, QByteArrayView version)
{
    HTTPMessage message;
    message.m_isRequest = false;
    message.m_headerComplete = true;
    message.m_statusCode = statusCode;
    message.m_description = description.toByteArray();
    message.m_version = version.toByteArray();
    return message;
}

bool HTTPMessage::appendData(QByteArrayView line)
{
    if (!m_isRequest || m_headerComplete)
        return false;
    if (line.endsWith('\n'))
        line.chop(1);
    if (line.endsWith('\r'))
        line.chop(1);
    if (m_method.isEmpty()) {
        // Clients may send stray line ends between requests; they are skipped.
        if (line.isEmpty())
            return true;
        return parseRequestLine(line);
    }
    if (line.isEmpty()) {
        m_headerComplete = true;
        return true;
    }
    return parseHeaderLine(line);
}

bool HTTPMessage::parseRequestLine(QByteArrayView line)
{
    const qsizetype firstSpace = line.indexOf(' ');
    if (firstSpace <= 0)
        return false;
    const qsizetype lastSpace = line.lastIndexOf(' ');
    if (lastSpace == firstSpace)
        return false;
    const QByteArrayView method = line.first(firstSpace);
    const QByteArrayView target = line.sliced(firstSpace + 1, lastSpace - firstSpace - 1);
    const QByteArrayView version = line.sliced(lastSpace + 1);
    if (!isToken(method) || target.isEmpty())
        return false;
    for (char c : target) {
        const auto u = static_cast<unsigned char>(c);
        if (u <= 0x20 || u == 0x7f)
            return false;
    }
    // "HTTP/" DIGIT "." DIGIT; an unknown version number is answered later, a
    // malformed one is a bad request.
    if (version.size() != 8 || !version.startsWith("HTTP/") || !isDigit(version[5]) || version[6] != '.' ||
        !isDigit(version[7]))
        return false;
    m_method = method.toByteArray();
    m_target = target.toByteArray();
    m_version = version.toByteArray();
    return true;
}

bool HTTPMessage::parseHeaderLine(QByteArrayView line)
{
    // Folded continuation lines are obsolete and a known smuggling vector.
    if (line.front() == ' ' || line.front() == '\t')
        return false;
    const qsizetype colon = line.indexOf(':');
    if (colon <= 0)
        return false;
    const QByteArrayView name = line.first(colon);
    if (!isToken(name))
        return false;
    const QByteArrayView value = trimmedWhitespace(line.sliced(colon + 1));
    for (char c : value) {
        const auto u = static_cast<unsigned char>(c);
        if ((u < 0x20 && c != '\t') || u == 0x7f)
            return false;
    }
    // Two differing lengths make the framing ambiguous.
    if (name.compare("Content-Length", Qt::CaseInsensitive) == 0 && hasHeaderField(name) &&
        headerField(name) != value)
        return false;
    m_fields.append({name.toByteArray(), value.toByteArray()});
    return true;
}

QUrl HTTPMessage::url() const
{
    return QUrl::fromEncoded(m_target, QUrl::TolerantMode);
}

QByteArray HTTPMessage::headerField(QByteArrayView name) const
{
    for (const auto &field : m_fields)
        if (QByteArrayView(field.first).compare(name, Qt::CaseInsensitive) == 0)
            return field.second;
    return {};
}

bool HTTPMessage::hasHeaderField(QByteArrayView name) const
{
    for (const auto &field : m_fields)
        if (QByteArrayView(field.first).compare(name, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

void HTTPMessage::setHeaderField(QByteArrayView name, QByteArrayView value)
{
    for (auto &field : m_fields) {
        if (QByteArrayView(field.first).compare(name, Qt::CaseInsensitive) == 0) {
            field.second = value.toByteArray();
            return;
        }
    }
    m_fields.append({name.toByteArray(), value.toByteArray()});
}

QByteArray HTTPMessage::messageData() const
{
    QByteArray data;
    data.reserve(256);
    if (m_isRequest) {
        data += m_method + ' ' + m_target + ' ' + m_version + "\r\n";
    } else {
        data += m_version + ' ' + QByteArray::number(m_statusCode) + ' ' + m_description + "\r\n";
    }
    for (const auto &field : m_fields)
        data += field.first + ": " + field.second + "\r\n";
    data += "\r\n";
    return data;
}

QByteArrayView HTTPMessage::trimmedWhitespace(QByteArrayView text)
{
    while (!text.isEmpty() && (text.front() == ' ' || text.front() == '\t'))
        text = text.sliced(1);
    while (!text.isEmpty() && (text.back() == ' ' || text.back() == '\t'))
        text.chop(1);
    return text;
}

QByteArray HTTPMessage::dateString(qint64 secondsSinceEpoch)
{
    static const char *const s_days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char *const s_months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const time_t t = static_cast<time_t>(secondsSinceEpoch);
    struct tm parts {};
    if (!gmtime_r(&t, &parts))
        return {};
    char buffer[64];
    const int n = snprintf(buffer, sizeof buffer, "%s, %02d %s %d %02d:%02d:%02d GMT", s_days[parts.tm_wday],
                           parts.tm_mday, s_months[parts.tm_mon], parts.tm_year + 1900, parts.tm_hour,
                           parts.tm_min, parts.tm_sec);
    return QByteArray(buffer, n);
}
