// What every test program reads: the core's common headers and QtTest.
#pragma once

#include "zt_pch_core.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
