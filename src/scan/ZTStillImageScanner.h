#pragma once

#include "scan/ZTScanContext.h"

#include <QImage>
#include <QString>

#include <cstddef>
#include <optional>

class ZTImageManager;
struct ZTSecondaryScanState;

// Reads a still picture as the camera loop would if the camera showed it for
// six frames: the picture is scaled to the camera's 480-pixel width, the first
// reader runs, then its retry over thresholds 128 ± 10 k, and the template
// reader votes frame by frame. The command line, the tests and the benchmark
// share it.
class ZTStillImageScanner {
public:
    static constexpr int s_frameWidth = 480;
    static constexpr int s_frames = 6;

    // The picture as a camera frame: opaque, 480 pixels wide. A null image if
    // the picture is empty or the frame would exceed what the reader takes.
    static QImage frameFromImage(const QImage &picture);
    // The first reader and its retry on one frame: the code to send (which
    // may be null, ending the frame) or nothing when the frame goes on to the
    // template reader.
    static std::optional<QString> firstReaderCode(ZTImageManager &imageManager, ZTScanContext &context);
    // One frame as the scan loop handles it: the code it would send, or null.
    // context is the loop's context; votes carry over between frames.
    static QString codeForFrame(ZTImageManager &imageManager, ZTScanContext &context,
                                ZTSecondaryScanState &votes);
    // Six frames of an already scaled frame; null when no code was read.
    static QString scanFrame(const QImage &frame);
    // frameFromImage, then scanFrame.
    static QString scanImage(const QImage &picture);
    // For fuzzing: bytes 0-1 are the width and 2-3 the height (little endian),
    // the rest grey pixels row by row; missing pixels are white. Pictures over
    // 640 in either direction are refused. Never crashes on any input.
    static QString scanRawBytes(const unsigned char *data, size_t size);
};
