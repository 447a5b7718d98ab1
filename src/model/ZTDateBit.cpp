#include "model/ZTDateBit.h"

ZTDateBit ZTDateBit::fromVariant(const QVariant &stored)
{
    bool ok = false;
    const qint64 value = stored.toLongLong(&ok);
    return ok ? fromStored(value) : ZTDateBit();
}
