#include "ResultListing.h"

#include "engine/ComparisonFileCollection.h"
#include "engine/DifferenceCode.h"
#include "engine/PathHelpers.h"
#include "views/AddToListview.h"
#include "views/FileListModel.h"
#include "views/ListView.h"

namespace {

// Records decided between two chances for the event loop to run. Each may need a look at the
// disk, which takes far longer when the kernel has dropped the tree's inodes meanwhile; the
// chance itself costs next to nothing when the event loop ran only just now.
constexpr int RecordsPerSlice = 64;

} // namespace

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

bool ResultListing::Refresh(const ComparisonFileCollection &sourceFiles,
                            const ComparisonFileCollection &destFiles, const ViewState &view,
                            const CarryOn &carryOn) {
    const ComparisonFileCollection *collections[2] = {&sourceFiles, &destFiles};
    int done = 0;
    // Both at once, before the first slice: Show Full Path may be toggled between slices.
    // Rows that stay keep their place, rows that newly qualify are appended, and the rows no
    // record confirmed go; the marks move with their rows should a sort come between slices.
    for (ListView *list : m_lists) {
        list->files()->setFullPath(view.fullPath);
        list->files()->markAllStale();
    }
    for (int side = 0; side < 2; ++side) {
        for (const ComparisonFilePtr &record : *collections[side]) {
            if (carryOn && ++done % RecordsPerSlice == 0 && !carryOn())
                return false;
            if (!IsListed(*record, view.allFiles, view.missingPlaceholders))
                continue;
            AddToListview(record, m_lists[size_t(side)], m_icons);
        }
        m_lists[size_t(side)]->files()->removeStaleRows();
    }
    return true;
}

void ResultListing::UpdateListView(int side, bool fullPath) {
    m_lists[size_t(side)]->files()->setFullPath(fullPath);
}
