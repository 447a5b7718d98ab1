#include "store/ZTOid.h"

#include <QUuid>

QString ZTOid::uuid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toLower();
}
