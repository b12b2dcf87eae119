#include "views/ListHelpers.h"

#include "views/ListView.h"

ListItem GetOrAddListItem(ListView *list, const QString &key, const QString &text) {
    return list->ItemByKeyOrAdd(key, text);
}

ListItem GetListItemByKey(const ListView *list, const QString &key) {
    return list->ItemByKey(key);
}

ColumnHeader *GetColumnByKey(const ListView *list, const QString &key) {
    return list->ColumnByKey(key);
}

void RemoveColumn(ListView *list, const QString &key) {
    if (const ColumnHeader *column = list->ColumnByKey(key))
        list->RemoveColumnAt(column->Index());
}
