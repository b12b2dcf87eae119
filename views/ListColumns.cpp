#include "views/ListColumns.h"

#include <array>

namespace {

struct ColumnSpec {
    const char *caption;
    int width;
    int position;
};

// In type order. "Difference" leads the default layout so that the reason for each row is
// read first.
constexpr std::array<ColumnSpec, ColumnTypeCount> Columns{{
    {"Name", 200, 1},
    {"In Folder", 150, 2},
    {"Size", 75, 3},
    {"Type", 150, 4},
    {"Date Modified", 125, 5},
    {"Date Created", 125, -1},
    {"Date Accessed", 125, -1},
    {"Attributes", 60, -1},
    {"Difference", 200, 0},
}};

const ColumnSpec *columnDefinition(int type) {
    return type >= 1 && type <= ColumnTypeCount ? &Columns[size_t(type - 1)] : nullptr;
}

} // namespace

QString ColumnCaption(int type) {
    const ColumnSpec *column = columnDefinition(type);
    return column ? QString::fromLatin1(column->caption) : QString();
}

int DefaultColumnWidth(int type) {
    const ColumnSpec *column = columnDefinition(type);
    return column ? column->width : 0;
}

int DefaultColumnPosition(int type) {
    const ColumnSpec *column = columnDefinition(type);
    return column ? column->position : 0;
}

Qt::Alignment ColumnAlignment(int type) {
    return type == ColumnType::Size ? Qt::AlignRight : Qt::AlignLeft;
}
