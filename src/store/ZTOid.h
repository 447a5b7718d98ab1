#pragma once

#include <QString>

// Identities of items and shared rows: a lower-case canonical uuid.
class ZTOid {
public:
    static QString uuid();
};
