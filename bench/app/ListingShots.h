#pragma once

#include <QString>

/**
 * Pictures of the main window after a finished compare, one for each look of the result
 * listings that a user can choose: panes side by side and stacked, Show All Files off and on
 * with Bold Different Files, full paths, and missing-file placeholders off; each at a
 * comfortable size and at the window's default 640 x 480. They are for looking at, as a user
 * would: icons, alignment, digit grouping, dates, column order.
 */
class ListingShots {
public:
    /** Pictures go to the folder \a output (made when missing); \a comparisons as in the combo. */
    ListingShots(const QString &output, int comparisons);

    /** Compares \a source with \a destination once per look and saves each picture. */
    int grab(const QString &source, const QString &destination) const;

private:
    QString m_output;
    int m_comparisons;
};
