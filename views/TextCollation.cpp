#include "views/TextCollation.h"

#include <QLocale>

#include <algorithm>
#include <numeric>

namespace {

// Digits and the decimal point have single weights in every collation, in the same order as
// their code points, so texts made of nothing else (the zero-padded sort keys of sizes and
// dates) collate exactly as their bytes compare. Skipping the collator for them keeps a
// header click on a large list quick.
bool isDigitText(const QString &text) {
    for (QChar c : text) {
        const char16_t u = c.unicode();
        if ((u < u'0' || u > u'9') && u != u'.')
            return false;
    }
    return true;
}

template <typename Less>
std::vector<int> stableOrder(size_t count, Qt::SortOrder sortOrder, Less less) {
    std::vector<int> positions(count);
    std::iota(positions.begin(), positions.end(), 0);
    if (sortOrder == Qt::AscendingOrder)
        std::stable_sort(positions.begin(), positions.end(), less);
    else
        std::stable_sort(positions.begin(), positions.end(),
                         [&less](int a, int b) { return less(b, a); });
    return positions;
}

} // namespace

TextCollation::TextCollation()
    : m_collator(QLocale::system()) {
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    // The C locale has no collation: the collator's sort keys would then be the raw
    // (case-sensitive) bytes, so case-folded texts are compared instead.
    m_plain = QLocale::system().language() == QLocale::C;
}

int TextCollation::compare(const QString &a, const QString &b) const {
    if (m_plain)
        return a.compare(b, Qt::CaseInsensitive);
    return m_collator.compare(a, b);
}

std::vector<int> TextCollation::order(const std::vector<QString> &texts,
                                      Qt::SortOrder sortOrder) const {
    if (std::all_of(texts.begin(), texts.end(), isDigitText)) {
        return stableOrder(texts.size(), sortOrder,
                           [&texts](int a, int b) { return texts[size_t(a)] < texts[size_t(b)]; });
    }
    if (m_plain) {
        std::vector<QString> folded;
        folded.reserve(texts.size());
        for (const QString &text : texts)
            folded.push_back(text.toCaseFolded());
        return stableOrder(texts.size(), sortOrder, [&folded](int a, int b) {
            return folded[size_t(a)] < folded[size_t(b)];
        });
    }
    // One sort key per text, then cheap key comparisons: a collator comparison per pair
    // would cost n log n full collations.
    std::vector<QCollatorSortKey> keys;
    keys.reserve(texts.size());
    for (const QString &text : texts)
        keys.push_back(m_collator.sortKey(text));
    return stableOrder(texts.size(), sortOrder, [&keys](int a, int b) {
        return keys[size_t(a)].compare(keys[size_t(b)]) < 0;
    });
}
