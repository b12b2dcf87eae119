#include "settings/ColumnLayoutSettings.h"

#include "settings/SettingsStore.h"
#include "settings/SettingsText.h"

#include <QLocale>

#include <cmath>
#include <limits>

namespace ColumnLayoutSettings {

namespace {

QString key(const char *name, int type) {
    return QLatin1String(name) + QString::number(type);
}

std::optional<float> readWidth(const QString &text) {
    // Always '.' as the decimal point, whatever the locale, as the widths are written.
    bool ok = false;
    const float width = QLocale::c().toFloat(text.trimmed(), &ok);
    if (!ok || !std::isfinite(width))
        return std::nullopt;
    return width;
}

} // namespace

QString sectionName(bool isDestination) {
    return isDestination ? QStringLiteral("DestLayout") : QStringLiteral("SourceLayout");
}

std::array<StoredColumn, ColumnTypes> load(bool isDestination) {
    const QString section = sectionName(isDestination);
    std::array<StoredColumn, ColumnTypes> columns;
    for (int type = 1; type <= ColumnTypes; ++type) {
        StoredColumn &column = columns[size_t(type - 1)];
        if (const auto width = SettingsStore::value(section, key("Width", type)))
            column.width = readWidth(*width);
        if (const auto position = SettingsStore::value(section, key("Position", type))) {
            constexpr int unreadable = std::numeric_limits<int>::min();
            const int value = SettingsText::strictInteger(*position, unreadable);
            if (value == unreadable)
                column.positionUnreadable = true;
            else
                column.position = value;
        }
    }
    return columns;
}

bool save(bool isDestination, const std::vector<SavedColumn> &columns) {
    QList<SettingsStore::Entry> entries;
    for (const SavedColumn &column : columns) {
        if (column.width)
            entries.append({key("Width", column.type), SettingsText::floatText(*column.width)});
        entries.append({key("Position", column.type), SettingsText::integerText(column.position)});
    }
    return SettingsStore::write(sectionName(isDestination), entries);
}

} // namespace ColumnLayoutSettings
