#include "engine/PatternSieve.h"

namespace {

bool isWildcard(QChar c) {
    return c == QLatin1Char('*') || c == QLatin1Char('?') || c == QLatin1Char('[') ||
           c == QLatin1Char(']');
}

qsizetype lastIndexOfWildcard(const QString &glob) {
    for (qsizetype i = glob.size() - 1; i >= 0; --i) {
        if (isWildcard(glob[i]))
            return i;
    }
    return -1;
}

qsizetype firstIndexOfWildcard(const QString &glob) {
    for (qsizetype i = 0; i < glob.size(); ++i) {
        if (isWildcard(glob[i]))
            return i;
    }
    return glob.size();
}

/** The longest run of literal characters, outside brackets. */
QString literalPiece(const QString &glob) {
    QString best;
    QString run;
    bool inBracket = false;
    for (const QChar c : glob) {
        if (c == QLatin1Char('['))
            inBracket = true;
        if (inBracket || isWildcard(c)) {
            if (run.size() > best.size())
                best = run;
            run.clear();
        } else {
            run += c;
        }
        if (c == QLatin1Char(']'))
            inBracket = false;
    }
    return run.size() > best.size() ? run : best;
}

} // namespace

void PatternSieve::add(const QString &glob) {
    const QString lower = glob.toLower();
    const QString suffix = lower.mid(lastIndexOfWildcard(lower) + 1);
    if (!suffix.isEmpty()) {
        const char16_t last = suffix.back().unicode();
        if (last >= 128)
            m_everyName = true;
        else
            m_suffixes[last].push_back(suffix);
    } else if (lower.endsWith(QLatin1Char(']'))) {
        addLastCharacters(lower);
    } else if (const QString prefix = lower.left(firstIndexOfWildcard(lower)); !prefix.isEmpty()) {
        m_prefixes.push_back(prefix);
    } else if (const QString piece = literalPiece(lower); !piece.isEmpty()) {
        m_pieces.push_back(piece);
    } else {
        m_everyName = true;
    }
}

void PatternSieve::addLastCharacters(const QString &glob) {
    const qsizetype open = glob.lastIndexOf(QLatin1Char('['));
    const QStringView set =
        open < 0 ? QStringView() : QStringView(glob).mid(open + 1, glob.size() - open - 2);
    // A negated bracket accepts almost anything.
    if (set.isEmpty() || set.front() == QLatin1Char('!') || set.front() == QLatin1Char('^')) {
        m_everyName = true;
        return;
    }
    for (qsizetype i = 0; i < set.size(); ++i) {
        const char16_t from = set[i].unicode();
        char16_t to = from;
        if (i + 2 < set.size() && set[i + 1] == QLatin1Char('-')) {
            to = set[i + 2].unicode();
            i += 2;
        }
        if (from >= 128 || to >= 128) {
            m_everyName = true;
            return;
        }
        for (char16_t c = from; c <= to; ++c)
            m_lastCharacters[QChar(c).toLower().unicode()] = true;
    }
}

bool PatternSieve::mayMatch(const QString &name) const {
    if (m_everyName || name.isEmpty())
        return true;
    const char16_t last = name.back().toLower().unicode();
    if (last >= 128 || m_lastCharacters[last])
        return true;
    for (const QString &suffix : m_suffixes[last]) {
        if (name.endsWith(suffix, Qt::CaseInsensitive))
            return true;
    }
    for (const QString &prefix : m_prefixes) {
        if (name.startsWith(prefix, Qt::CaseInsensitive))
            return true;
    }
    for (const QString &piece : m_pieces) {
        if (name.contains(piece, Qt::CaseInsensitive))
            return true;
    }
    return false;
}
