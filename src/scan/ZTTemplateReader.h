#pragma once

#include <QString>
#include <QtGlobal>

struct ZTSecondaryScanState;

// The second, independent reader of the image manager. It looks in each row
// for the stretch between two wide light gaps, resamples it to whole samples
// per module, matches whole digit templates against it and counts the codes it
// sees; a code is claimed only after votes over six frames.
class ZTTemplateReader {
public:
    static constexpr qint64 s_modules = 95;
    static constexpr qint64 s_maxSamples = 7 * s_modules;

    // Reads one grey row (values 0 to 255) and counts what it decodes.
    // samples, of s_maxSamples + 1 entries, carries over from row to row of
    // one frame: a stretch of an exact multiple of 95 pixels is not copied,
    // and the samples of the row before are decoded instead. That is how the
    // reader has always behaved, and the votes depend on it.
    static void readRow(const qint64 *greyRow, qint64 width, qint64 *samples, ZTSecondaryScanState &state);
    // The frame's decision over the votes so far: a code, or null.
    static QString decide(ZTSecondaryScanState &state);

    static QString codeFromBarBand(const qint64 *barBand, qint64 multiplier);
    static void normalizeBarBand(qint64 *barBand, qint64 count);
    static void thresholdBarBand(qint64 *barBand, qint64 count, qint64 threshold);
};
