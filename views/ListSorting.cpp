#include "views/ListSorting.h"

#include "engine/ComparisonFileCollection.h"
#include "views/FileListModel.h"
#include "views/ListColumns.h"
#include "views/ListView.h"
#include "views/RecordText.h"

#include <QHeaderView>

bool SortListView(ListView *list, const ComparisonFileCollection *collection, int type,
                  bool ascending) {
    if (type < 1 || type > ColumnTypeCount)
        return false;
    const Qt::SortOrder order = ascending ? Qt::AscendingOrder : Qt::DescendingOrder;
    list->header()->setSortIndicator(FileListModel::columnOf(type), order);
    list->header()->setSortIndicatorShown(true);

    const bool byValue = type == ColumnType::Size || type == ColumnType::DateModified ||
                         type == ColumnType::DateCreated || type == ColumnType::DateAccessed;
    FileListModel *files = list->files();
    const QString root = collection ? collection->RootFolder() : QString();
    std::vector<QString> keys(size_t(files->count()));
    for (int row = 0; row < files->count(); ++row) {
        ComparisonFilePtr record;
        // A row of a record of this very collection needs no look-up by key.
        if (byValue && collection)
            record = files->record(row)->RootPath() == root
                         ? files->record(row)
                         : collection->Item(files->record(row)->Key());
        keys[size_t(row)] = record ? RecordText::SortString(*record, type) : files->text(row, type);
    }
    files->sortByKeys(keys, order);
    return true;
}
