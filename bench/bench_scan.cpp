// Decode rate and time per 480-wide frame of the EAN-13 reader, for clean and
// degraded renders. Also counts heap allocations inside sweeps.
//
// read: read by the still-picture routine (six frames); by edges: read by the
// first reader or its threshold retry alone; median and p90: CPU time of one
// frame as the scan loop handles it, reader made afresh; first: the first
// reader alone.
//
//   bench_scan [codes-per-degradation]

#include "scan/ZTBarcodeValidator.h"
#include "scan/ZTImageManager.h"
#include "scan/ZTSecondaryScanState.h"
#include "scan/ZTStillImageScanner.h"

#include "../tests/support/ZTBarcodeRenderer.h"
#include "../tests/support/ZTImageDegradations.h"

#include <QGuiApplication>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory_resource>
#include <new>
#include <random>
#include <vector>

namespace {
std::atomic<long> s_allocations{0};
}

void *operator new(std::size_t size)
{
    ++s_allocations;
    if (void *p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void *operator new[](std::size_t size)
{
    return operator new(size);
}
void operator delete(void *p) noexcept
{
    std::free(p);
}
void operator delete[](void *p) noexcept
{
    std::free(p);
}
void operator delete(void *p, std::size_t) noexcept
{
    std::free(p);
}
void operator delete[](void *p, std::size_t) noexcept
{
    std::free(p);
}

namespace {

using Degrade = std::function<QImage(const QImage &, unsigned seed)>;
namespace D = ZTImageDegradations;

struct Case {
    const char *name;
    Degrade degrade;
    ZTBarcodeRenderer::Options options;
};

// CPU time of this thread: the machine may be busy with other work, and the
// reader's own cost is what is measured.
double cpuMilliseconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

double percentile(std::vector<double> v, double q)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    return v[std::min(v.size() - 1, size_t(q * double(v.size())))];
}

// Heap allocations made by the sweeps of one frame, with the pass memory set
// up the way a pass does before it sweeps.
long allocationsInSweeps(const QImage &frame)
{
    ZTImageManager manager(frame);
    static std::byte buffer[256 * 1024];
    std::pmr::monotonic_buffer_resource memory(buffer, sizeof buffer, std::pmr::new_delete_resource());
    ZTBarcodeValidator validator(1, &memory);
    ZTBarcodeValidator *const validators[] = {&validator};
    qint64 band[ZTImageManager::s_maxBandSize + 1];
    const long before = s_allocations.load();
    qint64 t = 128;
    t = manager.adjustedThresholdWithValidatorList(validators, band, t, 90, 5);
    t = manager.adjustedThresholdWithValidatorList(validators, band, t, 270, 5);
    return s_allocations.load() - before;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int perCase = argc > 1 ? std::max(1, atoi(argv[1])) : 40;

    ZTBarcodeRenderer::Options plain;
    ZTBarcodeRenderer::Options framed;
    framed.frame = true;
    ZTBarcodeRenderer::Options small;
    small.moduleWidth = 1;
    small.width = 200;
    small.height = 125;
    small.barHeight = 50;
    ZTBarcodeRenderer::Options square; // so that a quarter turn still fits the reader
    square.width = 420;
    square.height = 420;
    ZTBarcodeRenderer::Options standardZones; // 11 modules in front, 7 behind, print beside
    standardZones.quietZone = 11;
    standardZones.quietZoneRight = 7;
    standardZones.trailingMarks = true;
    ZTBarcodeRenderer::Options narrowRight = standardZones;
    narrowRight.quietZoneRight = 6;
    ZTBarcodeRenderer::Options wide;
    wide.moduleWidth = 2;

    const std::vector<Case> cases = {
        {"clean", [](const QImage &i, unsigned) { return i; }, plain},
        {"clean, 2 px modules", [](const QImage &i, unsigned) { return i; }, wide},
        {"framed label", [](const QImage &i, unsigned) { return i; }, framed},
        {"rotated 3 deg", [](const QImage &i, unsigned) { return D::rotate(i, 3); }, plain},
        {"rotated 8 deg", [](const QImage &i, unsigned) { return D::rotate(i, 8); }, plain},
        {"rotated 90", [](const QImage &i, unsigned) { return D::quarterTurn(i, 1); }, square},
        {"rotated 180", [](const QImage &i, unsigned) { return D::quarterTurn(i, 2); }, plain},
        {"rotated 270", [](const QImage &i, unsigned) { return D::quarterTurn(i, 3); }, square},
        {"blur r1", [](const QImage &i, unsigned) { return D::blur(i, 1); }, plain},
        {"blur r2", [](const QImage &i, unsigned) { return D::blur(i, 2); }, plain},
        {"noise s20", [](const QImage &i, unsigned s) { return D::noise(i, 20, s); }, plain},
        {"noise s45", [](const QImage &i, unsigned s) { return D::noise(i, 45, s); }, plain},
        {"low contrast 100-160", [](const QImage &i, unsigned) { return D::lowContrast(i, 100, 160); },
         plain},
        {"uneven light 60%", [](const QImage &i, unsigned) { return D::unevenLight(i, 0.6); }, plain},
        {"perspective 10%", [](const QImage &i, unsigned) { return D::perspective(i, 0.10); }, plain},
        {"jpeg q30", [](const QImage &i, unsigned) { return D::jpeg(i, 30); }, plain},
        {"jpeg q10", [](const QImage &i, unsigned) { return D::jpeg(i, 10); }, plain},
        {"small 1 px modules", [](const QImage &i, unsigned) { return i; }, small},
        {"rotated 15 deg", [](const QImage &i, unsigned) { return D::rotate(i, 15); }, plain},
        {"rotated 25 deg", [](const QImage &i, unsigned) { return D::rotate(i, 25); }, plain},
        {"blur r3", [](const QImage &i, unsigned) { return D::blur(i, 3); }, plain},
        {"noise s70", [](const QImage &i, unsigned s) { return D::noise(i, 70, s); }, plain},
        {"low contrast 118-138", [](const QImage &i, unsigned) { return D::lowContrast(i, 118, 138); },
         plain},
        {"uneven light 85%", [](const QImage &i, unsigned) { return D::unevenLight(i, 0.85); }, plain},
        {"perspective 30%", [](const QImage &i, unsigned) { return D::perspective(i, 0.30); }, plain},
        {"jpeg q3", [](const QImage &i, unsigned) { return D::jpeg(i, 3); }, plain},
        {"shrunk to 0.6 px/mod", [](const QImage &i, unsigned) { return D::shrink(i, 0.3); }, wide},
        {"quiet zones 11/7+print", [](const QImage &i, unsigned) { return i; }, standardZones},
        {"quiet zones 11/6+print", [](const QImage &i, unsigned) { return i; }, narrowRight},
        {"pixel noise, no code",
         [](const QImage &i, unsigned s) { return D::noise(D::lowContrast(i, 128, 128), 90, s); }, plain},
        {"no code (blank)", [](const QImage &i, unsigned) { return D::lowContrast(i, 200, 200); }, plain},
    };

    std::mt19937 random(20261123);
    std::uniform_int_distribution<int> digit(0, 9);
    auto randomCode = [&] {
        QString twelve;
        for (int i = 0; i < 12; ++i)
            twelve += QString::number(digit(random));
        return ZTBarcodeRenderer::withCheckDigit(twelve);
    };
    std::printf("%-22s %6s %8s %10s %10s %10s %12s\n", "degradation", "read", "by edges", "median ms",
                "p90 ms", "first ms", "sweep allocs");
    for (const Case &c : cases) {
        int read = 0, readFirst = 0;
        std::vector<double> frameTimes, firstTimes;
        long sweepAllocations = 0;
        for (int n = 0; n < perCase; ++n) {
            const QString code = randomCode();
            const QImage frame = ZTStillImageScanner::frameFromImage(
                c.degrade(ZTBarcodeRenderer::render(code, c.options), 7u + n));
            if (frame.isNull())
                continue;
            if (ZTStillImageScanner::scanFrame(frame) == code)
                ++read;
            {
                ZTImageManager manager(frame);
                ZTScanContext context;
                readFirst +=
                    ZTStillImageScanner::firstReaderCode(manager, context).value_or(QString()) == code;
            }
            sweepAllocations = std::max(sweepAllocations, allocationsInSweeps(frame));

            // One frame as the loop handles it, reader made afresh; and the
            // first reader alone.
            ZTScanContext context;
            ZTSecondaryScanState votes;
            double started = cpuMilliseconds();
            {
                ZTImageManager manager(frame);
                ZTStillImageScanner::codeForFrame(manager, context, votes);
            }
            frameTimes.push_back(cpuMilliseconds() - started);
            started = cpuMilliseconds();
            {
                ZTImageManager manager(frame);
                manager.scanResultsForScanContext(ZTScanContext());
            }
            firstTimes.push_back(cpuMilliseconds() - started);
        }
        std::printf("%-22s %5.0f%% %7.0f%% %10.3f %10.3f %10.3f %12ld\n", c.name, 100.0 * read / perCase,
                    100.0 * readFirst / perCase, percentile(frameTimes, 0.5), percentile(frameTimes, 0.9),
                    percentile(firstTimes, 0.5), sweepAllocations);
        std::fflush(stdout);
    }

    // Column sweeps read a squeezed, channel-mixed picture; with them on, a
    // quarter-turned code is still not read by the first reader.
    int columns = 0;
    for (int n = 0; n < perCase; ++n) {
        const QString code = randomCode();
        const QImage frame =
            ZTStillImageScanner::frameFromImage(D::quarterTurn(ZTBarcodeRenderer::render(code, square), 1));
        ZTImageManager manager(frame);
        ZTScanContext context;
        context.scanDown = context.scanUp = true;
        context.thresholdMargin = 100;
        const QList<ZTScanResult> results = manager.scanResultsForScanContext(context);
        columns += !results.isEmpty() && results.first().decodedString() == code;
    }
    std::printf("\nrotated 90 with column sweeps on, first reader: %.0f%%\n", 100.0 * columns / perCase);
    return 0;
}
