#include "library/ZTLayout.h"

#include "store/ZTPropertyList.h"

#include <QCoreApplication>
#include <QDir>

namespace {
const QString s_name = QStringLiteral("name");
const QString s_fontSize = QStringLiteral("fontSize");
const QString s_rowHeight = QStringLiteral("rowHeight");
const QString s_columns = QStringLiteral("columns");
} // namespace

QVariantMap ZTLayout::dictionary() const
{
    QVariantMap map{{s_name, name}, {s_rowHeight, rowHeight}, {s_columns, ZTWindowDisplay::arrayFromColumns(columns)}};
    if (fontSize > 0)
        map.insert(s_fontSize, fontSize);
    return map;
}

ZTLayout ZTLayout::fromDictionary(const QVariantMap &dictionary)
{
    ZTLayout layout;
    layout.name = dictionary.value(s_name).toString();
    bool ok = false;
    const double fontSize = dictionary.value(s_fontSize).toDouble(&ok);
    if (ok && fontSize >= 4 && fontSize <= 96)
        layout.fontSize = fontSize;
    const double rowHeight = dictionary.value(s_rowHeight).toDouble(&ok);
    if (ok && rowHeight >= 8 && rowHeight <= 512)
        layout.rowHeight = rowHeight;
    layout.columns = ZTWindowDisplay::columnsFromArray(dictionary.value(s_columns).toList());
    return layout;
}

ZTLayout ZTLayout::fromDisplay(const QString &name, const ZTWindowDisplay &display)
{
    ZTLayout layout;
    layout.name = name;
    layout.fontSize = display.fontSize;
    layout.rowHeight = display.rowHeight;
    layout.columns = display.columns;
    return layout;
}

void ZTLayout::applyTo(ZTWindowDisplay &display) const
{
    display.fontSize = fontSize;
    display.rowHeight = rowHeight;
    // A layout without columns would leave an empty table: keep what is shown.
    if (!columns.isEmpty())
        display.columns = columns;
}

QList<ZTLayout> ZTLayouts::layoutsFromArray(const QVariantList &array)
{
    QList<ZTLayout> layouts;
    for (const QVariant &entry : array)
        if (entry.typeId() == QMetaType::QVariantMap)
            layouts.append(ZTLayout::fromDictionary(entry.toMap()));
    return layouts;
}

ZTLayouts ZTLayouts::load(const QString &packagePath)
{
    ZTLayouts result;
    result.m_layouts =
        layoutsFromArray(ZTPropertyList::readFile(QDir(packagePath).filePath(fileName())).toList());
    return result;
}

bool ZTLayouts::save(const QString &packagePath) const
{
    QVariantList array;
    for (const ZTLayout &layout : m_layouts)
        array.append(layout.dictionary());
    return ZTPropertyList::writeFile(QDir(packagePath).filePath(fileName()), array, ZTPropertyList::Format::Binary);
}

bool ZTLayouts::ensureOne(const ZTWindowDisplay &present)
{
    if (!m_layouts.isEmpty())
        return false;
    m_layouts.append(ZTLayout::fromDisplay(QCoreApplication::translate("Localizable", "Layout"), present));
    m_current = 0;
    return true;
}

int ZTLayouts::addLayout(const ZTWindowDisplay &present)
{
    m_layouts.append(ZTLayout::fromDisplay(QCoreApplication::translate("Localizable", "<layout>"), present));
    return int(m_layouts.size()) - 1;
}

bool ZTLayouts::removeLayout(int index)
{
    if (index < 0 || index >= m_layouts.size())
        return false;
    m_layouts.removeAt(index);
    if (m_current > index || m_current >= m_layouts.size())
        m_current = qMax(0, m_current - 1);
    return true;
}

bool ZTLayouts::renameLayout(int index, const QString &name)
{
    if (index < 0 || index >= m_layouts.size() || name.trimmed().isEmpty())
        return false;
    m_layouts[index].name = name.trimmed();
    return true;
}

int ZTLayouts::switchLayout()
{
    if (m_layouts.isEmpty())
        return -1;
    m_current = (m_current + 1) % int(m_layouts.size());
    return m_current;
}

bool ZTLayouts::setCurrentIndex(int index)
{
    if (index < 0 || index >= m_layouts.size())
        return false;
    m_current = index;
    return true;
}

void ZTLayouts::updateCurrent(const ZTWindowDisplay &present)
{
    if (m_current < 0 || m_current >= m_layouts.size())
        return;
    ZTLayout &layout = m_layouts[m_current];
    layout = ZTLayout::fromDisplay(layout.name, present);
}

const ZTLayout *ZTLayouts::current() const
{
    return m_current >= 0 && m_current < m_layouts.size() ? &m_layouts[m_current] : nullptr;
}
