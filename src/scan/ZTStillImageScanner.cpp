#include "scan/ZTStillImageScanner.h"

#include "scan/ZTImageManager.h"
#include "scan/ZTSecondaryScanState.h"

#include <QPainter>

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>

QImage ZTStillImageScanner::frameFromImage(const QImage &picture)
{
    if (picture.isNull() || picture.width() <= 0 || picture.height() <= 0)
        return {};
    const qint64 height =
        std::max<qint64>(1, qRound64(double(picture.height()) * s_frameWidth / picture.width()));
    if (height > ZTImageManager::s_maxSide)
        return {};
    QImage frame =
        picture.width() == s_frameWidth && picture.height() == height
            ? picture
            : picture.scaled(s_frameWidth, int(height), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (frame.hasAlphaChannel()) {
        // The camera hands over opaque frames; a transparent picture is laid
        // on white, as it would appear on screen.
        QImage opaque(frame.size(), QImage::Format_RGB32);
        opaque.fill(Qt::white);
        QPainter painter(&opaque);
        painter.drawImage(0, 0, frame);
        painter.end();
        frame = opaque;
    }
    return frame;
}

std::optional<QString> ZTStillImageScanner::firstReaderCode(ZTImageManager &imageManager,
                                                            ZTScanContext &context)
{
    const ZTScanContext copy = context;
    const QList<ZTScanResult> results = imageManager.scanResultsForScanContext(copy);
    if (!results.isEmpty() && (!imageManager.hasCalculatedThreshold() || results.size() >= copy.barcodeCount))
        return results.first().decodedString();
    if (imageManager.hasCalculatedThreshold() && results.size() < copy.barcodeCount) {
        // Nothing at the first threshold: try the whole ladder around mid-grey.
        const qint64 oldThreshold = context.threshold;
        context.threshold = 128;
        context.thresholdMargin = 100;
        context.thresholdDelta = 10;
        const QList<ZTScanResult> retried = imageManager.scanResultsForScanContext(context);
        context.threshold = oldThreshold;
        context.thresholdMargin = 0;
        if (!retried.isEmpty())
            return retried.first().decodedString();
    }
    return std::nullopt;
}

QString ZTStillImageScanner::codeForFrame(ZTImageManager &imageManager, ZTScanContext &context,
                                          ZTSecondaryScanState &votes)
{
    if (const std::optional<QString> code = firstReaderCode(imageManager, context))
        return *code;
    return imageManager.secondaryScanCode(votes);
}

QString ZTStillImageScanner::scanFrame(const QImage &frame)
{
    if (frame.isNull() || frame.width() > ZTImageManager::s_maxSide ||
        frame.height() > ZTImageManager::s_maxSide)
        return {};
    try {
        // The first reader and its retry see the same pixels on every frame
        // and answer the same each time, so they run once; only the template
        // reader's votes change from frame to frame.
        ZTImageManager imageManager(frame);
        ZTScanContext context;
        if (const std::optional<QString> code = firstReaderCode(imageManager, context))
            return *code;
        ZTSecondaryScanState votes;
        for (int i = 0; i < s_frames; ++i) {
            const QString code = imageManager.secondaryScanCode(votes);
            if (!code.isEmpty())
                return code;
        }
    } catch (const std::exception &) {
        // The loop drops a frame whose reading failed; every frame would.
    }
    return {};
}

QString ZTStillImageScanner::scanImage(const QImage &picture)
{
    return scanFrame(frameFromImage(picture));
}

QString ZTStillImageScanner::scanRawBytes(const unsigned char *data, size_t size)
{
    if (!data || size < 4)
        return {};
    const int width = data[0] | (data[1] << 8);
    const int height = data[2] | (data[3] << 8);
    if (width <= 0 || height <= 0 || width > ZTImageManager::s_maxSide || height > ZTImageManager::s_maxSide)
        return {};
    QImage frame(width, height, QImage::Format_Grayscale8);
    frame.fill(255);
    size_t next = 4;
    for (int y = 0; y < height && next < size; ++y) {
        uchar *line = frame.scanLine(y);
        const size_t take = std::min<size_t>(size_t(width), size - next);
        std::copy(data + next, data + next + take, line);
        next += take;
    }
    return scanFrame(frame);
}
