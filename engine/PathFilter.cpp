#include "engine/PathFilter.h"

namespace {

using Iterator = const char *;

/** Matches one character against the bracket at \a p (just past the `[`); moves \a p past it. */
bool classMatch(Iterator &p, Iterator end, char c) {
    Iterator q = p;
    const bool negated = q != end && (*q == '!' || *q == '^');
    if (negated)
        ++q;
    bool found = false;
    bool first = true;
    for (; q != end && (first || *q != ']'); first = false) {
        char low = *q++;
        if (low == '\\' && q != end)
            low = *q++;
        char high = low;
        if (q + 1 < end && *q == '-' && q[1] != ']') {
            high = q[1];
            q += 2;
        }
        found = found || (uchar(c) >= uchar(low) && uchar(c) <= uchar(high));
    }
    if (q == end)
        return false; // no closing bracket: the caller takes the `[` literally
    p = q + 1;
    return found != negated;
}

bool wild(Iterator p, Iterator pend, Iterator t, Iterator tend, Iterator pstart) {
    while (p != pend) {
        const char c = *p;
        if (c == '*') {
            const bool globstar = p + 1 != pend && p[1] == '*' && (p == pstart || p[-1] == '/') &&
                                  (p + 2 == pend || p[2] == '/');
            if (globstar) {
                // "x/**" matches everything below x; "**/" any number of whole folders.
                if (p + 2 == pend)
                    return true;
                const Iterator rest = p + 3;
                if (wild(rest, pend, t, tend, pstart))
                    return true;
                for (Iterator q = t; q != tend; ++q) {
                    if (*q == '/' && wild(rest, pend, q + 1, tend, pstart))
                        return true;
                }
                return false;
            }
            while (p != pend && *p == '*')
                ++p;
            for (Iterator q = t;; ++q) {
                if (wild(p, pend, q, tend, pstart))
                    return true;
                if (q == tend || *q == '/')
                    return false;
            }
        }
        if (t == tend)
            return false;
        if (c == '?') {
            if (*t == '/')
                return false;
            ++p;
        } else if (c == '[') {
            Iterator q = p + 1;
            const char *const before = q;
            if (*t != '/' && classMatch(q, pend, *t)) {
                p = q;
            } else if (q == before && *t == '[') {
                ++p; // an unclosed bracket is a literal `[`
            } else {
                return false;
            }
        } else {
            if (c == '\\' && p + 1 != pend)
                ++p;
            if (*p != *t)
                return false;
            ++p;
        }
        ++t;
    }
    return t == tend;
}

} // namespace

bool PathFilter::globMatch(QByteArrayView glob, QByteArrayView text) {
    return wild(glob.begin(), glob.end(), text.begin(), text.end(), glob.begin());
}

void PathFilter::add(QByteArrayView pattern, bool include) {
    Rule rule{pattern.toByteArray(), include, false, false};
    if (rule.glob.endsWith('/')) {
        rule.foldersOnly = true;
        rule.glob.chop(1);
    }
    rule.anchored = rule.glob.contains('/');
    if (rule.glob.startsWith('/'))
        rule.glob.remove(0, 1);
    if (!rule.glob.isEmpty())
        m_rules.push_back(std::move(rule));
}

void PathFilter::addLines(QByteArrayView text) {
    while (!text.isEmpty()) {
        const qsizetype end = text.indexOf('\n');
        QByteArrayView line = end < 0 ? text : text.first(end);
        text = end < 0 ? QByteArrayView() : text.sliced(end + 1);
        if (line.endsWith('\r'))
            line.chop(1);
        while (line.endsWith(' ') && !line.endsWith("\\ "))
            line.chop(1);
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const bool include = line.startsWith('!');
        if (include)
            line = line.sliced(1);
        else if (line.startsWith("\\#") || line.startsWith("\\!"))
            line = line.sliced(1);
        add(line, include);
    }
}

PathFilter::Match PathFilter::match(QByteArrayView path, bool folder) const {
    const qsizetype slash = path.lastIndexOf('/');
    const QByteArrayView name = slash < 0 ? path : path.sliced(slash + 1);
    for (auto rule = m_rules.rbegin(); rule != m_rules.rend(); ++rule) {
        if (rule->foldersOnly && !folder)
            continue;
        if (globMatch(rule->glob, rule->anchored ? path : name))
            return rule->include ? Match::Included : Match::Excluded;
    }
    return Match::None;
}
