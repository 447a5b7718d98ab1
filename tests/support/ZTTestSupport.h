#pragma once

#include <QString>
#include <QTemporaryDir>

// Shared helpers for the test programs.
namespace ZTTestSupport {
// Points the settings store at a fresh file inside dir, so no test reads or
// writes the user's settings.
void useTemporarySettings(const QTemporaryDir &dir);
QString fixturePath(const QString &relative);
QString cliPath();
}
