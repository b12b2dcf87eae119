#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

/**
 * Rules that leave files and folders out of a walk, written as git writes them: `*` and `?`
 * stay within a name, `**` as a whole part of a path crosses folders, a trailing `/` matches
 * folders only, and a pattern with a `/` before its end is anchored at the rules' folder (a
 * leading `/` only anchors); any other pattern matches a name at any depth. The last rule that
 * matches decides.
 */
class PathFilter {
public:
    enum class Match { None, Excluded, Included };

    /** Adds a rule that leaves out what \a pattern matches, or keeps it when \a include. */
    void add(QByteArrayView pattern, bool include);
    /**
     * Adds the lines of a .gitignore: blank lines and `#` comments are skipped, `!` keeps what
     * the line matches, `\` quotes a leading `#` or `!`, trailing blanks are dropped.
     */
    void addLines(QByteArrayView text);
    bool isEmpty() const { return m_rules.empty(); }

    /**
     * The decision of the last rule matching \a path, relative to the rules' folder with `/`
     * between names; \a folder tells whether it names a folder.
     */
    Match match(QByteArrayView path, bool folder) const;

    /** Whether \a glob matches all of \a text (no rule parsing: `/` is literal text). */
    static bool globMatch(QByteArrayView glob, QByteArrayView text);

private:
    struct Rule {
        QByteArray glob;
        bool include;
        bool foldersOnly;
        /** Matched against the whole path, else against the last name only. */
        bool anchored;
    };
    std::vector<Rule> m_rules;
};
