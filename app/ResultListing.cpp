#include "ResultListing.h"

#include "engine/ComparisonFileCollection.h"
#include "engine/DifferenceCode.h"
#include "engine/PathHelpers.h"
#include "views/AddToListview.h"
#include "views/FileListModel.h"
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

int ResultListing::Add(int side, const ComparisonFilePtr &record, bool fullPath) {
    m_lists[size_t(side)]->files()->setFullPath(fullPath);
    return AddToListview(record, m_lists[size_t(side)], m_icons);
}

void ResultListing::ListPair(const ComparisonFilePtr &sourceFile, const ComparisonFilePtr &destFile,
                             int comparisonResult, const ViewState &view) {
    if (comparisonResult == DifferenceCode::NotPaired)
        return;
    if (comparisonResult == DifferenceCode::Equal) {
        if (view.allFiles) {
            Add(0, sourceFile, view.fullPath);
            Add(1, destFile, view.fullPath);
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
            Add(side, record, view.fullPath);
    }
}

void ResultListing::Refresh(const ComparisonFileCollection &sourceFiles,
                            const ComparisonFileCollection &destFiles, const ViewState &view) {
    const ComparisonFileCollection *collections[2] = {&sourceFiles, &destFiles};
    for (int side = 0; side < 2; ++side) {
        // Rows that stay keep their place, rows that newly qualify are appended, and the rows
        // no record confirmed go.
        std::vector<bool> confirmed(size_t(m_lists[size_t(side)]->files()->count()), false);
        for (const ComparisonFilePtr &record : *collections[side]) {
            if (!IsListed(*record, view.allFiles, view.missingPlaceholders))
                continue;
            const size_t row = size_t(Add(side, record, view.fullPath));
            if (row >= confirmed.size())
                confirmed.resize(row + 1, false);
            confirmed[row] = true;
        }
        m_lists[size_t(side)]->files()->removeRowsIf(
            [&confirmed](int row) { return !confirmed[size_t(row)]; });
    }
}

void ResultListing::UpdateListView(int side, bool fullPath) {
    m_lists[size_t(side)]->files()->setFullPath(fullPath);
}
