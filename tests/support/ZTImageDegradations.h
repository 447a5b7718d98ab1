#pragma once

// Degradations of test pictures: each a plain function of the picture and a
// fixed parameter or seed, so that every run sees the same pixels.
// Header-only so that bench/ can use it without linking the test support.

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPolygonF>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <random>

namespace ZTImageDegradations {

inline int greyAt(const QImage &image, int x, int y)
{
    return qGray(image.pixel(x, y));
}

// Applies f(x, y, grey) → grey to every pixel of a copy.
template <typename F> QImage mapGrey(const QImage &source, F f)
{
    QImage out = source.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < out.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            const int g = std::clamp(int(std::lround(f(x, y, qGray(line[x])))), 0, 255);
            line[x] = qRgb(g, g, g);
        }
    }
    return out;
}

// Rotation about the centre; the corners that come in are white.
inline QImage rotate(const QImage &source, double degrees)
{
    QImage out(source.size(), QImage::Format_RGB32);
    out.fill(Qt::white);
    QPainter p(&out);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.translate(source.width() / 2.0, source.height() / 2.0);
    p.rotate(degrees);
    p.translate(-source.width() / 2.0, -source.height() / 2.0);
    p.drawImage(0, 0, source);
    return out;
}

// Quarter turns keep every pixel; the picture's size turns with it.
inline QImage quarterTurn(const QImage &source, int quarters)
{
    return source.transformed(QTransform().rotate(90.0 * quarters));
}

// Box blur of the given radius, horizontal then vertical.
inline QImage blur(const QImage &source, int radius)
{
    QImage img = source.convertToFormat(QImage::Format_Grayscale8);
    const int w = img.width(), h = img.height();
    QImage tmp = img;
    for (int pass = 0; pass < 2; ++pass) {
        const bool horizontal = pass == 0;
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                int sum = 0, n = 0;
                for (int k = -radius; k <= radius; ++k) {
                    const int xx = horizontal ? x + k : x, yy = horizontal ? y : y + k;
                    if (xx < 0 || yy < 0 || xx >= w || yy >= h)
                        continue;
                    sum += img.constScanLine(yy)[xx];
                    ++n;
                }
                tmp.scanLine(y)[x] = uchar(sum / n);
            }
        }
        img = tmp;
    }
    return img.convertToFormat(QImage::Format_RGB32);
}

// Gaussian noise of the given standard deviation, from a fixed seed.
inline QImage noise(const QImage &source, double sigma, unsigned seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> n(0.0, sigma);
    return mapGrey(source, [&](int, int, int g) { return g + n(random); });
}

// Squeezes the grey range into [low, high].
inline QImage lowContrast(const QImage &source, int low, int high)
{
    return mapGrey(source, [=](int, int, int g) { return low + (high - low) * g / 255.0; });
}

// Light falling off from left to right: the far side is darkened by `fall`.
inline QImage unevenLight(const QImage &source, double fall)
{
    const double w = source.width();
    return mapGrey(source, [=](int x, int, int g) { return g * (1.0 - fall * x / w); });
}

// A keystone: the top edge shrinks by `amount` of the width, as when the
// camera looks up at the label.
inline QImage perspective(const QImage &source, double amount)
{
    const double w = source.width(), h = source.height(), inset = w * amount / 2;
    QTransform t;
    QTransform::quadToQuad(QPolygonF({{0, 0}, {w, 0}, {w, h}, {0, h}}),
                           QPolygonF({{inset, 0}, {w - inset, 0}, {w, h}, {0, h}}), t);
    QImage out(source.size(), QImage::Format_RGB32);
    out.fill(Qt::white);
    QPainter p(&out);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.setTransform(t);
    p.drawImage(0, 0, source);
    return out;
}

// Real JPEG bytes through Qt's encoder and decoder.
inline QImage jpeg(const QImage &source, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    source.save(&buffer, "JPEG", quality);
    QImage out;
    out.loadFromData(bytes, "JPEG");
    return out;
}

// The picture shrunk by `factor`, as a small code far from the camera.
inline QImage shrink(const QImage &source, double factor)
{
    return source.scaled(std::max(1, int(source.width() * factor)),
                         std::max(1, int(source.height() * factor)), Qt::IgnoreAspectRatio,
                         Qt::SmoothTransformation);
}

} // namespace ZTImageDegradations
