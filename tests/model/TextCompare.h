#pragma once

#include <QtTest>

// A null string means "no value" to the item, so null and empty are different
// answers and both must match.
#define COMPARE_TEXT(actual, expected)                                                                       \
    do {                                                                                                     \
        const QString text = (actual);                                                                       \
        QCOMPARE(text, expected);                                                                            \
        QCOMPARE(text.isNull(), (expected).isNull());                                                        \
    } while (false)
