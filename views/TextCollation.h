#pragma once

#include <QCollator>
#include <QString>

#include <vector>

/**
 * The order of displayed texts in the listings: the system locale's collation, ignoring
 * case. Sorting is stable, so rows whose texts compare equal keep their order.
 */
class TextCollation {
public:
    TextCollation();

    /** Negative, zero or positive as \a a sorts before, with or after \a b. */
    int compare(const QString &a, const QString &b) const;

    /**
     * The positions of \a texts in sorted order: element i of the result is the index in
     * \a texts of the i-th text. Descending order reverses the comparison but stays stable.
     */
    std::vector<int> order(const std::vector<QString> &texts, Qt::SortOrder sortOrder) const;

private:
    QCollator m_collator;
    bool m_plain;
};
