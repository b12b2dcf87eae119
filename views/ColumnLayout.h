#pragma once

class ListView;

/**
 * The columns of a listing and their saved layout: which of the nine column types are shown,
 * their widths and their display order, stored per list ("SourceLayout" for list 0,
 * "DestLayout" for list 1). The list's header holds them; these read and write it.
 */
namespace ColumnLayout {

/**
 * Lays out the columns of \a list: from the defaults when \a useDefaults is set, otherwise
 * from the stored layout (each missing value taken from the defaults, a column whose stored
 * position is not a number left out). The shown columns are placed by their positions; a
 * position outside the shown columns is skipped, and its column goes to the right end.
 */
void LoadLayout(ListView *list, bool isDestination, bool useDefaults);

/**
 * Stores the layout of \a list: width and display position of each shown column type, and
 * position -1 (width left as it was) for each type that is not shown. Returns false when
 * the settings could not be written.
 */
bool SaveLayout(const ListView *list, bool isDestination);

/** The zero-based display position of column type \a type among the shown ones; -1 if hidden. */
int GetColumnPosition(const ListView *list, int type);

/**
 * The default width of column type \a type in \a list: a width in pixels that fits the
 * column's usual texts in a font whose characters average 5 pixels, scaled to the list's
 * font, so that texts such as "2,000 bytes" and dates fit whatever font the desktop uses.
 */
int DefaultWidth(const ListView *list, int type);

/** Shows column type \a type at the right end, \a width wide, when it is hidden. */
void ShowColumn(ListView *list, int type, int width);

/**
 * Gives \a other exactly the column set of \a model. A column \a other lacks is shown at the
 * right end as narrow as its type's default position says (as the program has always done:
 * a copied "Name" arrives narrow), though never narrower than the header lets a user grab.
 */
void MatchColumns(const ListView *model, ListView *other);

} // namespace ColumnLayout
