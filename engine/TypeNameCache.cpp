#include "engine/TypeNameCache.h"

#include "engine/PatternSieve.h"

#include <QHash>
#include <QMimeDatabase>
#include <QRegularExpression>

#include <mutex>

namespace {

/**
 * True for "*.ext" with a lower-case extension free of dots and wildcards: such a pattern
 * matches a name exactly when the name's last extension, in lower case, is "ext".
 */
bool matchesByLastExtension(const QString &glob) {
    if (!glob.startsWith(QLatin1String("*.")) || glob.size() < 3)
        return false;
    const QStringView extension = QStringView(glob).mid(2);
    for (const QChar c : extension) {
        if (c == QLatin1Char('.') || c == QLatin1Char('*') || c == QLatin1Char('?') ||
            c == QLatin1Char('[') || c == QLatin1Char(']') || c != c.toLower())
            return false;
    }
    return true;
}

class Cache {
public:
    Cache() {
        // Every pattern that looks at more than the last extension, as one expression. It
        // ignores case even where a pattern does not: a wider net only sends more names the
        // slow way, never a wrong answer.
        QStringList others;
        const QList<QMimeType> types = m_database.allMimeTypes();
        for (const QMimeType &type : types) {
            const QStringList globs = type.globPatterns();
            for (const QString &glob : globs) {
                if (!matchesByLastExtension(glob)) {
                    others << QStringLiteral("(?:%1)").arg(
                        QRegularExpression::wildcardToRegularExpression(glob));
                    m_sieve.add(glob);
                }
            }
        }
        others.removeDuplicates();
        m_others.setPattern(others.isEmpty() ? QStringLiteral("(?!)")
                                             : others.join(QLatin1Char('|')));
        m_others.setPatternOptions(QRegularExpression::CaseInsensitiveOption);
        m_others.optimize();
    }

    QString typeOf(const QString &fileName) {
        if (m_sieve.mayMatch(fileName) && m_others.match(fileName).hasMatch())
            return ask(fileName);
        const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
        const QString extension = dot < 0 ? QString() : fileName.mid(dot + 1).toLower();
        {
            const std::lock_guard lock(m_mutex);
            const auto known = m_byExtension.constFind(extension);
            if (known != m_byExtension.constEnd())
                return *known;
        }
        const QString type = ask(fileName);
        const std::lock_guard lock(m_mutex);
        m_byExtension.insert(extension, type);
        return type;
    }

private:
    QString ask(const QString &fileName) const {
        return m_database.mimeTypeForFile(fileName, QMimeDatabase::MatchExtension).comment();
    }

    QMimeDatabase m_database;
    PatternSieve m_sieve;
    QRegularExpression m_others;
    std::mutex m_mutex;
    QHash<QString, QString> m_byExtension;
};

} // namespace

namespace {
Cache &cache() {
    static Cache instance;
    return instance;
}
} // namespace

QString TypeNameCache::typeOf(const QString &fileName) {
    return cache().typeOf(fileName);
}

void TypeNameCache::prepare() {
    cache();
}
