#pragma once

#include "engine/ComparisonFile.h"

#include <QString>
#include <QVariant>

#include <vector>

/**
 * The data of one row of a ListView. Rows are reached through ListItem handles; only the
 * list's model writes them, so that every change is announced to the view.
 */
struct ListRow {
    QString key;
    /** texts[0] is the item text, texts[n] sub-item n; missing entries read as "". */
    std::vector<QString> texts;
    QVariant tag;
    /** One-based index into the list's small-icon image list; 0 for none. */
    int icon = 0;
    /** The file record the row shows, when it shows one. */
    ComparisonFilePtr record;
    /** Zero-based position in the list. */
    int index = 0;

    const QString &text(int column) const {
        static const QString empty;
        return size_t(column) < texts.size() ? texts[size_t(column)] : empty;
    }
};
