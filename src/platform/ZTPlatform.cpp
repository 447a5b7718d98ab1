#include "platform/ZTPlatform.h"

#include <QSysInfo>

QString ZTPlatform::describe() { return QSysInfo::prettyProductName(); }
