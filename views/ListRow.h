#pragma once

#include "engine/ComparisonFile.h"

#include <QString>
#include <QVariant>

#include <vector>

/**
 * The data of one row of a ListView. Rows are reached through ListItem handles; only the
 * list's model writes them, so that every change is announced to the view. Read a row's
 * texts through ListModel::text(): a row that shows a record may take them from it.
 */
struct ListRow {
    QString key;
    /** Texts set by hand: texts[0] is the item text, texts[n] sub-item n. */
    std::vector<QString> texts;
    QVariant tag;
    /** One-based index into the list's small-icon image list; 0 for none. */
    int icon = 0;
    /** The file record the row shows, when it shows one. */
    ComparisonFilePtr record;
    /** Zero-based position in the list. */
    int index = 0;
    /**
     * When set, the item text is the record's name and every column of a known type shows
     * the record's text for it, read when painted, except the columns whose bit is set in
     * ownTexts (set by hand since).
     */
    bool textsFromRecord = false;
    quint64 ownTexts = 0;

    /** The text stored for \a column, "" when none was set. */
    const QString &storedText(int column) const {
        static const QString empty;
        return size_t(column) < texts.size() ? texts[size_t(column)] : empty;
    }
};
