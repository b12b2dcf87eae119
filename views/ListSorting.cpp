#include "views/ListSorting.h"

#include "engine/ComparisonFileCollection.h"
#include "views/BackgroundRelease.h"
#include "views/FileListModel.h"
#include "views/ListColumns.h"
#include "views/ListView.h"
#include "views/RecordText.h"
#include "views/TextCollation.h"

#include <QHeaderView>
#include <QScopeGuard>

#include <chrono>
#include <future>

namespace {

// Rows whose sort keys are read between two chances for the event loop to run.
constexpr int KeysPerSlice = 4096;

} // namespace

bool SortListView(ListView *list, const ComparisonFileCollection *collection, int type,
                  bool ascending, const YieldHook &yield) {
    if (type < 1 || type > ColumnTypeCount)
        return false;
    const Qt::SortOrder order = ascending ? Qt::AscendingOrder : Qt::DescendingOrder;
    list->header()->setSortIndicator(FileListModel::columnOf(type), order);
    list->header()->setSortIndicatorShown(true);

    const bool byValue = type == ColumnType::Size || type == ColumnType::DateModified ||
                         type == ColumnType::DateCreated || type == ColumnType::DateAccessed;
    FileListModel *files = list->files();
    const QString root = collection ? collection->RootFolder() : QString();
    const quint64 rows = files->rowsGeneration();
    const auto rowsMoved = [files, rows] { return files->rowsGeneration() != rows; };
    std::vector<QString> keys(size_t(files->count()));
    // Texts of hundreds of thousands of rows take the window a noticeable while to free.
    const auto releaseKeys = qScopeGuard([&keys] { ReleaseInBackground(std::move(keys)); });
    for (int row = 0; row < files->count(); ++row) {
        if (yield && row % KeysPerSlice == KeysPerSlice - 1) {
            yield();
            if (rowsMoved())
                return true;
        }
        ComparisonFilePtr record;
        // A row of a record of this very collection needs no look-up by key.
        if (byValue && collection)
            record = files->record(row)->RootPath() == root
                         ? files->record(row)
                         : collection->Item(files->record(row)->Key());
        keys[size_t(row)] = record ? RecordText::SortString(*record, type) : files->text(row, type);
    }
    if (!yield) {
        list->applyOrder(TextCollation().order(keys, order));
        return true;
    }
    // The collator is the costly part; it runs on a thread of its own while events are
    // handled here. The keys stay untouched until it has finished, even when the sort gives
    // way meanwhile.
    std::future<std::vector<int>> sorted = std::async(
        std::launch::async, [&keys, order] { return TextCollation().order(keys, order); });
    while (sorted.wait_for(std::chrono::milliseconds(2)) != std::future_status::ready)
        yield();
    const std::vector<int> positions = sorted.get();
    if (!rowsMoved())
        list->applyOrder(positions);
    return true;
}
