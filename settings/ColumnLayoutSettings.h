#pragma once

#include <QString>

#include <array>
#include <optional>
#include <vector>

/**
 * The column layouts of the two listings: sections "SourceLayout" (list 0) and "DestLayout"
 * (list 1), each with "Width"n and "Position"n for column types n = 1..9. A width is stored
 * in its shortest decimal form ("200", "87.5"); a position is the zero-based display
 * position, or "-1" for a column that is not shown, whose width is then left as it was.
 */
namespace ColumnLayoutSettings {

/** How many column types a layout describes. */
inline constexpr int ColumnTypes = 9;

/** What a section holds for one column type. */
struct StoredColumn {
    /** Missing, or not a number: nothing. */
    std::optional<float> width;
    /** Missing, or not a whole number: nothing (see positionUnreadable). */
    std::optional<int> position;
    /** The position is present but is not a whole number. */
    bool positionUnreadable = false;

    bool operator==(const StoredColumn &) const = default;
};

/** One column to write: its width when it is shown, and its display position or -1. */
struct SavedColumn {
    int type = 0;
    std::optional<float> width;
    int position = -1;
};

/** "DestLayout" or "SourceLayout". */
QString sectionName(bool isDestination);

/** The stored values of column types 1..9 (element 0 is type 1). */
std::array<StoredColumn, ColumnTypes> load(bool isDestination);

/**
 * Writes the columns in one write of the settings file: "Position"n always, "Width"n only
 * when a width is given. Returns false when the file could not be written.
 */
bool save(bool isDestination, const std::vector<SavedColumn> &columns);

} // namespace ColumnLayoutSettings
