#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <vector>

/**
 * A quick test that rules out most file names before a set of glob patterns is tried on them
 * in full. Each pattern is reduced to something every name it matches must have: its literal
 * ending, the characters its last bracket accepts, its literal beginning, or a literal piece
 * of its middle. Case is ignored throughout, so the sieve may let through names a
 * case-sensitive pattern would refuse, but never holds back a name some pattern matches.
 */
class PatternSieve {
public:
    /** Adds a glob pattern ("*.tar.gz", "README*", "*.so.[0-9]*", "Makefile"). */
    void add(const QString &glob);

    /** False when no pattern added can match \a name; true when one may. */
    bool mayMatch(const QString &name) const;

private:
    /** A pattern ending in a bracket: the characters the bracket accepts may end a name. */
    void addLastCharacters(const QString &glob);

    /** Literal endings, by their last character (lower case, below 128). */
    std::array<std::vector<QString>, 128> m_suffixes;
    /** Last characters that some pattern accepts through a bracket. */
    std::array<bool, 128> m_lastCharacters{};
    std::vector<QString> m_prefixes;
    std::vector<QString> m_pieces;
    /** Set by a pattern the sieve cannot reduce: every name is let through. */
    bool m_everyName = false;
};
