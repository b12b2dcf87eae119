#include "views/ColumnLayout.h"

#include "settings/ColumnLayoutSettings.h"
#include "views/FileListModel.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <QHeaderView>

#include <algorithm>
#include <cmath>
#include <vector>

namespace ColumnLayout {

void LoadLayout(ListView *list, bool isDestination, bool useDefaults) {
    using ColumnLayoutSettings::StoredColumn;
    std::array<StoredColumn, ColumnTypeCount> stored{};
    if (!useDefaults)
        stored = ColumnLayoutSettings::load(isDestination);

    QHeaderView *header = list->header();
    // The shown columns in type order, each with the position it asks for.
    std::vector<int> shown;
    std::vector<int> positions;
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        const StoredColumn &column = stored[size_t(type - 1)];
        const int logical = FileListModel::columnOf(type);
        const int position = column.position.value_or(DefaultColumnPosition(type));
        const bool show = !column.positionUnreadable && position >= 0;
        header->resizeSection(logical, column.width ? int(std::lrint(*column.width))
                                                    : DefaultWidth(list, type));
        header->setSectionHidden(logical, !show);
        if (show) {
            shown.push_back(logical);
            positions.push_back(position);
        }
    }
    // Slot p names the column shown at position p; a position outside the shown columns
    // leaves its slot empty, and the columns no slot names follow at the right end.
    std::vector<int> order(shown.size(), -1);
    for (size_t i = 0; i < shown.size(); ++i) {
        if (positions[i] < int(shown.size()) && order[size_t(positions[i])] < 0)
            order[size_t(positions[i])] = shown[i];
    }
    std::vector<int> sequence;
    for (int logical : order) {
        if (logical >= 0)
            sequence.push_back(logical);
    }
    for (int logical : shown) {
        if (std::find(sequence.begin(), sequence.end(), logical) == sequence.end())
            sequence.push_back(logical);
    }
    for (size_t position = 0; position < sequence.size(); ++position)
        header->moveSection(header->visualIndex(sequence[position]), int(position));
}

bool SaveLayout(const ListView *list, bool isDestination) {
    std::vector<ColumnLayoutSettings::SavedColumn> columns;
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        ColumnLayoutSettings::SavedColumn saved;
        saved.type = type;
        saved.position = GetColumnPosition(list, type);
        if (saved.position >= 0)
            saved.width = float(list->header()->sectionSize(FileListModel::columnOf(type)));
        columns.push_back(saved);
    }
    return ColumnLayoutSettings::save(isDestination, columns);
}

int DefaultWidth(const ListView *list, int type) {
    return int(
        std::lround(DefaultColumnWidth(type) * list->fontMetrics().averageCharWidth() / 5.0));
}

int GetColumnPosition(const ListView *list, int type) {
    const QHeaderView *header = list->header();
    const int logical = FileListModel::columnOf(type);
    if (type < 1 || type > ColumnTypeCount || header->isSectionHidden(logical))
        return -1;
    int position = 0;
    for (int visual = 0; visual < header->visualIndex(logical); ++visual)
        position += header->isSectionHidden(header->logicalIndex(visual)) ? 0 : 1;
    return position;
}

void ShowColumn(ListView *list, int type, int width) {
    QHeaderView *header = list->header();
    const int logical = FileListModel::columnOf(type);
    if (!header->isSectionHidden(logical))
        return;
    header->moveSection(header->visualIndex(logical), header->count() - 1);
    header->showSection(logical);
    header->resizeSection(logical, width);
}

void MatchColumns(const ListView *model, ListView *other) {
    const int narrowest = other->header()->minimumSectionSize();
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        const int logical = FileListModel::columnOf(type);
        if (model->isColumnHidden(logical))
            other->setColumnHidden(logical, true);
        else
            ShowColumn(other, type, std::max(DefaultColumnPosition(type), narrowest));
    }
}

} // namespace ColumnLayout
