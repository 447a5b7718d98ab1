#include "scan/ZTTemplateReader.h"

#include "scan/ZTSecondaryScanState.h"

#include <algorithm>
#include <cmath>

namespace {

// Seven modules per digit, 1 for a light module and 0 for a dark one.
const char *const s_tableL[10] = {"1110010", "1100110", "1101100", "1000010", "1011100",
                                  "1001110", "1010000", "1000100", "1001000", "1110100"};
const char *const s_tableG[10] = {"1011000", "1001100", "1100100", "1011110", "1100010",
                                  "1000110", "1111010", "1101110", "1110110", "1101000"};
const char *const s_tableR[10] = {"0001101", "0011001", "0010011", "0111101", "0100011",
                                  "0110001", "0101111", "0111011", "0110111", "0001011"};
// Parities of the six left digits, 0 for L and 1 for G; the index is the
// leading digit.
const char *const s_parities[10] = {"000000", "001011", "001101", "001110", "010011",
                                    "011001", "011100", "010101", "010110", "011010"};

constexpr qint64 s_maxSquares = 5462100; // 84 × 255²: every sample as far off as can be
constexpr double s_worstFit = 0.17;
constexpr qint64 s_leastGap = 94;
constexpr int s_votingFrames = 5;
constexpr qint64 s_restFrames = -5;

qint64 templateDistance(const qint64 *samples, qint64 multiplier, const char *modules)
{
    qint64 sum = 0;
    for (qint64 j = 0; j < 7 * multiplier; ++j) {
        const qint64 expected = modules[j / multiplier] == '1' ? 255 : 0;
        const qint64 d = samples[j] - expected;
        sum += d * d;
    }
    return sum;
}

struct Gap {
    qint64 start = 0; // first light pixel
    qint64 end = 0;   // the dark pixel that ends it
    qint64 width() const { return end - start; }
};

bool isExactLength(qint64 length)
{
    return length % ZTTemplateReader::s_modules == 0;
}

} // namespace

QString ZTTemplateReader::codeFromBarBand(const qint64 *barBand, qint64 multiplier)
{
    if (multiplier < 1)
        return {};
    const qint64 m = multiplier;
    int digits[13];
    QString parity;
    qint64 total = 0;
    for (int k = 0; k < 6; ++k) {
        const qint64 *window = barBand + (3 + 7 * k) * m;
        qint64 best = -1;
        int bestDigit = 0;
        bool bestIsG = false;
        for (int d = 0; d < 10; ++d) {
            const qint64 l = templateDistance(window, m, s_tableL[d]);
            if (best < 0 || l < best)
                best = l, bestDigit = d, bestIsG = false;
            if (k == 0)
                continue;
            const qint64 g = templateDistance(window, m, s_tableG[d]);
            if (g < best)
                best = g, bestDigit = d, bestIsG = true;
        }
        digits[k + 1] = bestDigit;
        parity.append(bestIsG ? QLatin1Char('1') : QLatin1Char('0'));
        total += best;
    }
    digits[0] = -1;
    for (int d = 0; d < 10; ++d) {
        if (parity == QLatin1String(s_parities[d]))
            digits[0] = d;
    }
    if (digits[0] < 0)
        return {};
    for (int k = 0; k < 6; ++k) {
        const qint64 *window = barBand + (50 + 7 * k) * m;
        qint64 best = -1;
        for (int d = 0; d < 10; ++d) {
            const qint64 r = templateDistance(window, m, s_tableR[d]);
            if (best < 0 || r < best)
                best = r, digits[k + 7] = d;
        }
        total += best;
    }
    if (double(total) / double(m * s_maxSquares) >= s_worstFit)
        return {};
    int sum = 0;
    for (int i = 0; i < 12; ++i)
        sum += digits[i] * (i % 2 == 0 ? 1 : 3);
    if ((10 - sum % 10) % 10 != digits[12])
        return {};
    QString code;
    for (int d : digits)
        code.append(QLatin1Char(char('0' + d)));
    return code;
}

void ZTTemplateReader::normalizeBarBand(qint64 *barBand, qint64 count)
{
    qint64 low = 255, high = 0;
    for (qint64 i = 0; i < count; ++i) {
        low = std::min(low, barBand[i]);
        high = std::max(high, barBand[i]);
    }
    if (high <= low)
        return;
    for (qint64 i = 0; i < count; ++i)
        barBand[i] = (barBand[i] - low) * 255 / (high - low);
}

void ZTTemplateReader::thresholdBarBand(qint64 *barBand, qint64 count, qint64 threshold)
{
    for (qint64 i = 0; i < count; ++i)
        barBand[i] = barBand[i] >= threshold ? 1 : 0;
}

void ZTTemplateReader::readRow(const qint64 *greyRow, qint64 width, qint64 *samples,
                               ZTSecondaryScanState &state)
{
    if (width <= 0)
        return;
    qint64 bits[s_maxSamples];
    const qint64 n = std::min(width, s_maxSamples);
    std::copy(greyRow, greyRow + n, bits);
    normalizeBarBand(bits, n);
    thresholdBarBand(bits, n, 128);

    // Keep three gaps; a newcomer always enters and pushes out the narrowest
    // of A and the others, so the two wide quiet zones tend to stay.
    Gap kept[3];
    int filled = 0;
    bool inLight = false;
    qint64 lightStart = 0;
    for (qint64 x = 0; x < n; ++x) {
        if (bits[x] == 1) {
            if (!inLight)
                inLight = true, lightStart = x;
            continue;
        }
        if (!inLight)
            continue;
        inLight = false;
        const Gap gap{lightStart, x};
        if (filled < 3) {
            kept[filled++] = gap;
            continue;
        }
        int drop = 2;
        if (kept[0].width() < kept[1].width() && kept[0].width() < kept[2].width())
            drop = 0;
        else if (kept[1].width() < kept[2].width())
            drop = 1;
        for (int i = drop; i < 2; ++i)
            kept[i] = kept[i + 1];
        kept[2] = gap;
    }
    if (filled < 2)
        return;

    const Gap &a = kept[0], &b = kept[1];
    qint64 length = b.start - a.end - 1;
    if (length - 1 < s_leastGap || length > s_maxSamples)
        return;
    if (!isExactLength(length)) {
        // Resample so that every module gets a whole number of samples.
        const qint64 count = (length / s_modules) * s_modules + s_modules;
        const double r = double(length) / double(count);
        double acc = 0, pos = 0, rem = 1;
        qint64 k = 0;
        for (qint64 x = a.end + 1; x < b.start;) {
            const double g = double(greyRow[x]);
            const double avail = r - pos;
            if (avail >= rem) {
                acc += g * rem;
                pos += rem;
                rem = 1;
                ++x;
            } else {
                acc += g * avail;
                pos += avail;
                rem -= avail;
            }
            if (pos >= r) {
                if (k < s_maxSamples)
                    samples[k++] = qint64(std::lround(acc / r));
                acc = 0;
                pos = 0;
            }
        }
        length = count;
    }
    normalizeBarBand(samples, length);
    const qint64 multiplier = length / s_modules;
    const QString code = codeFromBarBand(samples, multiplier);
    if (!code.isNull())
        state.sightings[code] += 1;
    // Once more one sample later, in case the stretch began a pixel early.
    qint64 shifted[s_maxSamples + 1];
    shifted[0] = 0;
    std::copy(samples, samples + length, shifted + 1);
    const QString late = codeFromBarBand(shifted, multiplier);
    if (!late.isNull())
        state.sightings[late] += 1;
}

QString ZTTemplateReader::decide(ZTSecondaryScanState &state)
{
    const qint64 frame = state.frameCounter++;
    if (frame < s_votingFrames) {
        // After a success the counter starts below zero: the sightings of
        // those frames are thrown away.
        if (state.frameCounter < 0)
            state.sightings.clear();
        return {};
    }
    if (state.sightings.isEmpty()) {
        state.frameCounter = 0;
        return {};
    }
    qint64 best = 0, runnerUp = 0;
    bool unique = true;
    QString bestCode;
    for (auto it = state.sightings.cbegin(); it != state.sightings.cend(); ++it) {
        if (it.value() > best) {
            unique = true;
            runnerUp = best;
            best = it.value();
            bestCode = it.key();
        } else if (it.value() == best) {
            unique = false;
        }
    }
    state.sightings.clear();
    if (runnerUp + 1 < best && unique && best >= 2) {
        state.frameCounter = s_restFrames;
        return bestCode;
    }
    state.frameCounter = 0;
    return {};
}
