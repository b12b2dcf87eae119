#include "RecentLists.h"

#include "SettingsStore.h"
#include "SettingsText.h"

using namespace SettingsText;

namespace {

const QString selectionsSection = QStringLiteral("SelectionsMRU");

// Every comparison bit set: sizes, three dates, attributes, checksums.
constexpr int allComparisons = 63;

QString folderSection(RecentLists::Side side) {
    return side == RecentLists::Side::Destination ? QStringLiteral("DestMRU")
                                                  : QStringLiteral("SourceMRU");
}

QString itemKey(int position) {
    return QStringLiteral("Item") + QString::number(position);
}

int readLast(const QString &section) {
    const std::optional<QString> text = SettingsStore::value(section, QStringLiteral("Last"));
    return text ? lenientInteger(*text, -1) : -1;
}

// Items 1 to Capacity from the given texts, then "Last".
bool writeList(const QString &section, const QStringList &items, const QString &unused, int last) {
    QList<SettingsStore::Entry> entries;
    for (int i = 0; i < RecentLists::Capacity; ++i)
        entries.append({itemKey(i + 1), i < items.size() ? items.at(i) : unused});
    entries.append({QStringLiteral("Last"), integerText(last)});
    return SettingsStore::write(section, entries);
}

} // namespace

namespace RecentLists {

Folders loadFolders(Side side) {
    const QString section = folderSection(side);
    Folders result;
    for (int i = 1; i <= Capacity; ++i) {
        const QString folder = SettingsStore::text(section, itemKey(i));
        if (!folder.isEmpty() && canBePath(folder))
            result.folders.append(folder);
    }
    result.last = readLast(section);
    return result;
}

bool saveFolders(Side side, const QStringList &folders, int last) {
    return writeList(folderSection(side), folders, QString(), last);
}

Selections loadSelections() {
    Selections result;
    for (int i = 1; i <= Capacity; ++i) {
        const std::optional<QString> text = SettingsStore::value(selectionsSection, itemKey(i));
        const int value = text ? lenientInteger(*text, -1) : -1;
        if (value >= 0 && value <= allComparisons)
            result.values.append(value);
    }
    result.last = readLast(selectionsSection);
    return result;
}

bool saveSelections(const QList<int> &values, int last) {
    QStringList items;
    for (int value : values)
        items.append(integerText(value));
    return writeList(selectionsSection, items, integerText(-1), last);
}

} // namespace RecentLists
