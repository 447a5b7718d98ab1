#include "store/ZTOid.h"

#include <QRandomGenerator>

#include <array>

namespace {
// Asking the system for fresh randomness costs a system call per uuid, which
// an import of 100,000 rows (one item and several shared rows each) feels. A
// generator per thread, seeded once from the system, gives the same 122 random
// bits of a version 4 uuid without that.
QRandomGenerator64 &generator()
{
    thread_local QRandomGenerator64 random = [] {
        std::array<quint32, 8> seed{};
        QRandomGenerator::system()->fillRange(seed.data(), seed.size());
        return QRandomGenerator64(seed.data(), seed.size());
    }();
    return random;
}
} // namespace

QString ZTOid::uuid()
{
    QRandomGenerator64 &random = generator();
    quint64 high = random.generate64();
    quint64 low = random.generate64();
    high = (high & ~quint64(0xf000)) | 0x4000;                  // version 4
    low = (low & ~(quint64(0xc) << 60)) | (quint64(0x8) << 60); // variant 10xx
    static constexpr char digits[] = "0123456789abcdef";
    QString text(36, Qt::Uninitialized);
    QChar *out = text.data();
    int position = 0;
    auto put = [&](quint64 value, int nibbles) {
        for (int shift = (nibbles - 1) * 4; shift >= 0; shift -= 4) {
            if (position == 8 || position == 13 || position == 18 || position == 23)
                out[position++] = QLatin1Char('-');
            out[position++] = QLatin1Char(digits[(value >> shift) & 0xf]);
        }
    };
    put(high, 16);
    put(low, 16);
    return text;
}
