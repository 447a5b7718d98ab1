#include "base/ZTSettings.h"

#include <QStandardPaths>

std::unique_ptr<QSettings> &ZTSettings::instance()
{
    static std::unique_ptr<QSettings> settings;
    return settings;
}

QSettings &ZTSettings::store()
{
    auto &s = instance();
    if (!s) {
        QString path = qEnvironmentVariable("ZETTARY_SETTINGS_FILE");
        if (path.isEmpty())
            path = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                   QStringLiteral("/Zettary/Zettary.conf");
        s = std::make_unique<QSettings>(path, QSettings::IniFormat);
    }
    return *s;
}

void ZTSettings::setFilePath(const QString &path)
{
    instance() = std::make_unique<QSettings>(path, QSettings::IniFormat);
}

QString ZTSettings::filePath()
{
    return store().fileName();
}

QVariant ZTSettings::value(const QString &key, const QVariant &fallback)
{
    return store().value(key, fallback);
}

void ZTSettings::setValue(const QString &key, const QVariant &value)
{
    store().setValue(key, value);
}

void ZTSettings::remove(const QString &key)
{
    store().remove(key);
}

bool ZTSettings::contains(const QString &key)
{
    return store().contains(key);
}

void ZTSettings::synchronize()
{
    store().sync();
}
