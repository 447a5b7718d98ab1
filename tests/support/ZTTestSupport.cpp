#include "support/ZTTestSupport.h"

#include "base/ZTSettings.h"

void ZTTestSupport::useTemporarySettings(const QTemporaryDir &dir)
{
    ZTSettings::setFilePath(dir.filePath(QStringLiteral("settings.conf")));
}

QString ZTTestSupport::fixturePath(const QString &relative)
{
    return QStringLiteral(ZT_FIXTURES_DIR) + QLatin1Char('/') + relative;
}

QString ZTTestSupport::cliPath()
{
    return QStringLiteral(ZT_CLI_PATH);
}
