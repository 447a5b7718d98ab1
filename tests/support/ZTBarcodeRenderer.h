#pragma once

// Deterministic EAN-13 pictures for the scan tests and the scan benchmark.
// Header-only so that bench/ can use it without linking the test support.

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QString>

namespace ZTBarcodeRenderer {

struct Options {
    int moduleWidth = 3;     // pixels per module
    int quietZone = 12;      // light modules on either side
    int quietZoneRight = -1; // light modules on the right, when not quietZone
    int barHeight = 120;     // pixels
    int width = 480;         // picture size; the code is centred
    int height = 300;
    int dark = 0;    // grey of bars
    int light = 255; // grey of spaces and background
    bool humanReadable = false;
    bool frame = false;         // a dark border around the label, as on a printed sticker
    bool trailingMarks = false; // two dark marks behind the right quiet zone, as print beside a code
};

// The digit that makes an EAN-13 sum a multiple of ten.
inline int checkDigit(const QString &twelveDigits)
{
    int sum = 0;
    for (int i = 0; i < 12 && i < twelveDigits.size(); ++i)
        sum += twelveDigits[i].digitValue() * (i % 2 == 0 ? 1 : 3);
    return (10 - sum % 10) % 10;
}

inline QString withCheckDigit(const QString &twelveDigits)
{
    return twelveDigits.left(12) + QString::number(checkDigit(twelveDigits));
}

// The 95 modules of a code, '1' for a dark module.
inline QString modules(const QString &ean13)
{
    static const char *const l[10] = {"0001101", "0011001", "0010011", "0111101", "0100011",
                                      "0110001", "0101111", "0111011", "0110111", "0001011"};
    static const char *const g[10] = {"0100111", "0110011", "0011011", "0100001", "0011101",
                                      "0111001", "0000101", "0010001", "0001001", "0010111"};
    static const char *const parity[10] = {"LLLLLL", "LLGLGG", "LLGGLG", "LLGGGL", "LGLLGG",
                                           "LGGLLG", "LGGGLL", "LGLGLG", "LGLGGL", "LGGLGL"};
    auto complement = [](const char *code) {
        QString s = QString::fromLatin1(code);
        for (QChar &c : s)
            c = c == QLatin1Char('1') ? QLatin1Char('0') : QLatin1Char('1');
        return s;
    };
    const int first = ean13[0].digitValue();
    QString out = QStringLiteral("101");
    for (int i = 1; i <= 6; ++i) {
        const int d = ean13[i].digitValue();
        out += QString::fromLatin1(parity[first][i - 1] == 'L' ? l[d] : g[d]);
    }
    out += QStringLiteral("01010");
    for (int i = 7; i <= 12; ++i)
        out += complement(l[ean13[i].digitValue()]);
    out += QStringLiteral("101");
    return out;
}

// A grey picture of the code, centred, bars as whole pixels.
inline QImage render(const QString &ean13, const Options &o = {})
{
    QImage image(o.width, o.height, QImage::Format_RGB32);
    image.fill(QColor(o.light, o.light, o.light));
    const QString bars = modules(ean13);
    const int right = o.quietZoneRight < 0 ? o.quietZone : o.quietZoneRight;
    const int codeWidth = (95 + o.quietZone + right) * o.moduleWidth;
    const int left = (o.width - codeWidth) / 2 + o.quietZone * o.moduleWidth;
    const int top = (o.height - o.barHeight) / 2;
    QPainter p(&image);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(o.dark, o.dark, o.dark));
    for (int i = 0; i < bars.size(); ++i) {
        if (bars[i] == QLatin1Char('1'))
            p.drawRect(left + i * o.moduleWidth, top, o.moduleWidth, o.barHeight);
    }
    if (o.trailingMarks) {
        const int x = left + (95 + right) * o.moduleWidth;
        p.drawRect(x, top, 3 * o.moduleWidth, o.barHeight);
        p.drawRect(x + 13 * o.moduleWidth, top, 3 * o.moduleWidth, o.barHeight);
    }
    if (o.frame) {
        const int m = o.moduleWidth;
        const QRect label(left - o.quietZone * m - 2 * m, top - 4 * m, codeWidth + 4 * m,
                          o.barHeight + 8 * m);
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(QColor(o.dark, o.dark, o.dark), 2 * m));
        p.drawRect(label);
    }
    if (o.humanReadable) {
        QFont font(QStringLiteral("Helvetica"));
        font.setPixelSize(std::max(8, 3 * o.moduleWidth));
        p.setFont(font);
        p.setPen(QColor(o.dark, o.dark, o.dark));
        p.drawText(QRect(left - o.quietZone * o.moduleWidth, top + o.barHeight, codeWidth, 4 * o.moduleWidth),
                   Qt::AlignCenter, ean13);
    }
    return image;
}

} // namespace ZTBarcodeRenderer
