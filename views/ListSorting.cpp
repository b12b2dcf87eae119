#include "views/ListSorting.h"

#include "engine/ComparisonFileCollection.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

bool SortListView(ListView *list, const ComparisonFileCollection *collection,
                  const ColumnHeader *column, bool ascending) {
    if (!column)
        return false;
    const Qt::SortOrder order = ascending ? Qt::AscendingOrder : Qt::DescendingOrder;
    list->setSorted(false);
    list->setSortKey(column->SubItemIndex());
    list->setSortOrder(order);

    const int type = ColumnTypeFromKey(column->Key());
    switch (type) {
    case ColumnType::Name:
    case ColumnType::InFolder:
    case ColumnType::Type:
    case ColumnType::Attributes:
    case ColumnType::Difference:
        list->setSorted(true);
        list->setSorted(false);
        return true;
    case ColumnType::Size:
    case ColumnType::DateModified:
    case ColumnType::DateCreated:
    case ColumnType::DateAccessed:
        break;
    default:
        return true;
    }

    // Sort keys are handed to the list directly rather than written into the rows and read
    // back: the order is the same, and no row is repainted twice.
    const int subItem = column->SubItemIndex();
    const int count = list->ItemCount();
    const size_t rows = static_cast<size_t>(count);
    std::vector<ComparisonFilePtr> records(rows);
    std::vector<QString> keys(rows);
    for (int i = 0; i < count; ++i) {
        const ListItem item = list->Item(i + 1);
        ComparisonFilePtr record = collection ? collection->Item(item.Key()) : nullptr;
        keys[size_t(i)] = record ? record->SortString(type) : item.SubItems(subItem);
        records[size_t(i)] = std::move(record);
    }
    // The records travel with their rows, so the texts are put back after the sort.
    std::vector<ListItem> items;
    items.reserve(rows);
    for (int i = 0; i < count; ++i)
        items.push_back(list->Item(i + 1));
    list->SortByKeys(keys, order);
    for (int i = 0; i < count; ++i) {
        if (const ComparisonFilePtr &record = records[size_t(i)])
            items[size_t(i)].setSubItems(subItem, record->ColumnString(type, false));
    }
    return true;
}
