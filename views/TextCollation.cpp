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

/**
 * A text to sort and its first code units (from an offset on) packed into two numbers, so
 * that most comparisons are decided without reading the texts themselves, which lie
 * scattered in memory.
 */
struct Packed {
    quint64 head;
    quint64 next;
    int index;
};

template <int UnitBits> quint64 pack(const QString &text, qsizetype offset) {
    quint64 word = 0;
    for (int i = 0; i < 64 / UnitBits; ++i) {
        const qsizetype at = offset + i;
        const quint64 unit = at < text.size() ? text.at(at).unicode() : 0;
        word = (word << UnitBits) | unit;
    }
    return word;
}

/**
 * The order of \a texts by their UTF-16 code units, past the \a offset units they all
 * share; \a UnitBits is 16 for any text, 8 when every unit is below 256.
 */
template <int UnitBits>
std::vector<int> packedOrder(const std::vector<QString> &texts, qsizetype offset,
                             Qt::SortOrder sortOrder) {
    constexpr qsizetype unitsPerWord = 64 / UnitBits;
    std::vector<Packed> entries(texts.size());
    for (size_t i = 0; i < texts.size(); ++i) {
        entries[i] = Packed{pack<UnitBits>(texts[i], offset),
                            pack<UnitBits>(texts[i], offset + unitsPerWord), int(i)};
    }
    const qsizetype rest = offset + 2 * unitsPerWord;
    const auto less = [&texts, rest](const Packed &a, const Packed &b) {
        if (a.head != b.head)
            return a.head < b.head;
        if (a.next != b.next)
            return a.next < b.next;
        const QString &x = texts[size_t(a.index)];
        const QString &y = texts[size_t(b.index)];
        return QStringView(x).mid(std::min(rest, x.size())) <
               QStringView(y).mid(std::min(rest, y.size()));
    };
    if (sortOrder == Qt::AscendingOrder)
        std::stable_sort(entries.begin(), entries.end(), less);
    else
        std::stable_sort(entries.begin(), entries.end(),
                         [&less](const Packed &a, const Packed &b) { return less(b, a); });
    std::vector<int> positions(texts.size());
    for (size_t i = 0; i < entries.size(); ++i)
        positions[i] = entries[i].index;
    return positions;
}

/** The number of leading code units every text shares. */
qsizetype commonPrefix(const std::vector<QString> &texts) {
    if (texts.empty())
        return 0;
    qsizetype common = texts.front().size();
    for (const QString &text : texts) {
        qsizetype i = 0;
        const qsizetype limit = std::min(common, text.size());
        while (i < limit && text.at(i) == texts.front().at(i))
            ++i;
        common = i;
    }
    return common;
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
    if (std::all_of(texts.begin(), texts.end(), isDigitText))
        return packedOrder<8>(texts, commonPrefix(texts), sortOrder);
    if (m_plain) {
        std::vector<QString> folded;
        folded.reserve(texts.size());
        for (const QString &text : texts)
            folded.push_back(text.toCaseFolded());
        return packedOrder<16>(folded, commonPrefix(folded), sortOrder);
    }
    // One sort key per text, then cheap key comparisons: a collator comparison per pair
    // would cost n log n full collations.
    std::vector<QCollatorSortKey> keys;
    keys.reserve(texts.size());
    for (const QString &text : texts)
        keys.push_back(m_collator.sortKey(text));
    std::vector<int> positions(texts.size());
    std::iota(positions.begin(), positions.end(), 0);
    const auto less = [&keys](int a, int b) {
        return keys[size_t(a)].compare(keys[size_t(b)]) < 0;
    };
    if (sortOrder == Qt::AscendingOrder)
        std::stable_sort(positions.begin(), positions.end(), less);
    else
        std::stable_sort(positions.begin(), positions.end(),
                         [&less](int a, int b) { return less(b, a); });
    return positions;
}
