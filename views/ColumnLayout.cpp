#include "views/ColumnLayout.h"

#include "settings/ColumnLayoutSettings.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <cmath>

namespace ColumnLayout {

void LoadLayout(ListView *list, bool isDestination, bool useDefaults) {
    using ColumnLayoutSettings::StoredColumn;
    std::array<StoredColumn, ColumnTypeCount> stored{};
    if (!useDefaults)
        stored = ColumnLayoutSettings::load(isDestination);

    list->ClearColumns();
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        const StoredColumn &column = stored[size_t(type - 1)];
        if (column.positionUnreadable)
            continue;
        const float width = column.width.value_or(float(DefaultColumnWidth(type)));
        const int position = column.position.value_or(DefaultColumnPosition(type));
        if (position >= 0)
            list->AddColumn(ColumnKey(type), ColumnCaption(type), width, ColumnAlignment(type));
    }

    // Positions of the created columns, in type order, which is their creation order.
    std::vector<int> positions;
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        const StoredColumn &column = stored[size_t(type - 1)];
        int position = column.position.value_or(DefaultColumnPosition(type));
        if (position < 0)
            position = DefaultColumnPosition(type);
        if (list->ColumnByKey(ColumnKey(type)))
            positions.push_back(position);
    }
    if (positions.empty())
        return;
    // Slot p of the order array names the column shown at position p. A position outside
    // the shown columns leaves its slot at 0; SetColumnOrder skips the repeated entry.
    std::vector<int> order(positions.size(), 0);
    for (size_t created = 0; created < positions.size(); ++created) {
        const int position = positions[created];
        if (position >= 0 && size_t(position) < positions.size())
            order[size_t(position)] = int(created);
    }
    list->SetColumnOrder(order);
}

bool SaveLayout(ListView *list, bool isDestination) {
    std::vector<ColumnLayoutSettings::SavedColumn> columns;
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        ColumnLayoutSettings::SavedColumn saved;
        saved.type = type;
        if (const ColumnHeader *column = list->ColumnByKey(ColumnKey(type))) {
            saved.width = column->Width();
            saved.position = GetColumnPosition(list, column);
        }
        columns.push_back(saved);
    }
    return ColumnLayoutSettings::save(isDestination, columns);
}

int GetColumnPosition(const ListView *list, const ColumnHeader *column) {
    if (!column || list->Column(column->Index()) != column)
        return -1;
    const std::vector<int> order = list->ColumnOrder();
    for (size_t slot = 0; slot < order.size(); ++slot) {
        if (order[slot] == column->SubItemIndex())
            return int(slot);
    }
    return -1;
}

void MatchColumns(const ListView *model, ListView *other) {
    for (int i = 1; i <= model->ColumnCount(); ++i) {
        const ColumnHeader *column = model->Column(i);
        if (other->ColumnByKey(column->Key()))
            continue;
        const int type = ColumnTypeFromKey(column->Key());
        // The default position stands where the default width belongs; a type hidden by
        // default (position -1) arrives with no width at all.
        other->AddColumn(column->Key(), column->Text(), float(DefaultColumnPosition(type)),
                         ColumnAlignment(type));
    }
    for (int i = other->ColumnCount(); i >= 1; --i) {
        if (!model->ColumnByKey(other->Column(i)->Key()))
            other->RemoveColumnAt(i);
    }
}

} // namespace ColumnLayout
