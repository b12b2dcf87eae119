#include "views/ListSorting.h"

#include "engine/ComparisonFileCollection.h"
#include "views/ListColumns.h"
#include "views/ListModel.h"
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
    ListModel *model = list->listModel();
    model->flush();
    const int subItem = column->SubItemIndex();
    const size_t count = size_t(model->rowTotal());
    std::vector<std::shared_ptr<ListRow>> rows(count);
    std::vector<ComparisonFilePtr> records(count);
    std::vector<QString> keys(count);
    const QString root = collection ? collection->RootFolder() : QString();
    for (size_t i = 0; i < count; ++i) {
        rows[i] = model->row(int(i));
        // A row made from a record of a collection with this very root holds the record the
        // collection finds under the row's key; asking the collection would only cost time.
        const ComparisonFilePtr &own = rows[i]->record;
        ComparisonFilePtr record;
        if (own && collection && own->RootPath() == root)
            record = own;
        else if (collection)
            record = collection->Item(rows[i]->key);
        keys[i] = record ? record->SortString(type) : model->text(*rows[i], subItem);
        records[i] = std::move(record);
    }
    list->SortByKeys(keys, order);
    // The rows were moved, the pointers still name them: their texts are put back. A row
    // that reads its texts from this very record already shows them.
    for (size_t i = 0; i < count; ++i) {
        const ComparisonFilePtr &record = records[i];
        if (record && !(rows[i]->textsFromRecord && rows[i]->record == record))
            model->setText(*rows[i], subItem, record->ColumnString(type, false));
    }
    return true;
}
