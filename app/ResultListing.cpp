#include "ResultListing.h"

#include "engine/ComparisonFileCollection.h"
#include "engine/DifferenceCode.h"
#include "engine/PathHelpers.h"
#include "views/AddToListview.h"
#include "views/ListColumns.h"
#include "views/ListModel.h"
#include "views/ListView.h"

ResultListing::ResultListing(std::array<ListView *, 2> lists, ImageList *icons)
    : m_lists(lists)
    , m_icons(icons) {}

bool ResultListing::IsListed(const ComparisonFile &record, bool allFiles,
                             bool missingPlaceholders) {
    if (record.DifferenceCode() == DifferenceCode::Equal)
        return allFiles;
    // A placeholder is cheap to tell apart; only a real record needs the look at the disk.
    if (record.HasFileObject() && IsValidFileObject(record.FileObject()))
        return true;
    return missingPlaceholders;
}

void ResultListing::add(int side, const ComparisonFilePtr &record, bool fullPath) {
    AddToListview(record, m_lists[size_t(side)], m_icons, fullPath);
}

void ResultListing::ListPair(const ComparisonFilePtr &sourceFile, const ComparisonFilePtr &destFile,
                             int comparisonResult, const ViewState &view) {
    if (comparisonResult == DifferenceCode::NotPaired)
        return;
    if (comparisonResult == DifferenceCode::Equal) {
        if (view.allFiles) {
            add(0, sourceFile, view.fullPath);
            add(1, destFile, view.fullPath);
        }
        return;
    }
    const ComparisonFilePtr records[2] = {sourceFile, destFile};
    for (int side = 0; side < 2; ++side) {
        const ComparisonFilePtr &record = records[side];
        if (!record)
            continue;
        // The engine loaded the record's details from the statx the pair was just judged on:
        // that answers whether the file exists without another look at the disk.
        const bool valid = record->HasFileObject() &&
                           (record->DetailsLoaded() ? record->Kind() != FileKind::Missing
                                                    : IsValidFileObject(record->FileObject()));
        if (valid || view.missingPlaceholders)
            add(side, record, view.fullPath);
    }
}

void ResultListing::Refresh(const ComparisonFileCollection &sourceFiles,
                            const ComparisonFileCollection &destFiles, const ViewState &view) {
    for (ListView *list : m_lists) {
        for (int i = 1, count = list->ItemCount(); i <= count; ++i)
            list->Item(i).setTag(UnconfirmedTag);
    }
    const ComparisonFileCollection *collections[2] = {&sourceFiles, &destFiles};
    for (int side = 0; side < 2; ++side) {
        for (const ComparisonFilePtr &record : *collections[side]) {
            if (IsListed(*record, view.allFiles, view.missingPlaceholders))
                add(side, record, view.fullPath);
        }
    }
    // One pass per list keeps the order of the rows that stay.
    for (ListView *list : m_lists) {
        list->RemoveItemsIf([](const ListRow &row) { return row.tag.toInt() == UnconfirmedTag; });
    }
}

void ResultListing::UpdateListView(int side, const ComparisonFileCollection *files, bool fullPath) {
    ListView *list = m_lists[size_t(side)];
    if (files) {
        list->listModel()->setFullPathTexts(fullPath);
        for (int i = 1, count = list->ItemCount(); i <= count; ++i) {
            ListItem item = list->Item(i);
            const ComparisonFilePtr record = files->Item(item.Key());
            if (!record)
                continue;
            // A row of this very record shows every column as it is now once it reads its
            // texts from the record.
            if (record == item.Record()) {
                item.setRecord(record, true);
                continue;
            }
            for (int c = 1, columns = list->ColumnCount(); c <= columns; ++c) {
                const ColumnHeader *header = list->Column(c);
                if (header->SubItemIndex() != 0)
                    item.setSubItems(
                        header->SubItemIndex(),
                        record->ColumnString(ColumnTypeFromKey(header->Key()), fullPath));
            }
        }
    }
    for (int c = 1, columns = list->ColumnCount(); c <= columns; ++c)
        list->Column(c)->setTag(false);
}
