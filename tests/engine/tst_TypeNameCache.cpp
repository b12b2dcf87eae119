#include "engine/TypeNameCache.h"

#include <QMimeDatabase>
#include <QRegularExpression>
#include <QTest>

namespace {

QString askDatabase(const QString &name) {
    static const QMimeDatabase database;
    return database.mimeTypeForFile(name, QMimeDatabase::MatchExtension).comment();
}

/** A name that \a glob matches: every wildcard replaced by something it accepts. */
QString nameFromGlob(QString glob) {
    static const QRegularExpression bracket(QStringLiteral("\\[([^\\]])[^\\]]*\\]"));
    return glob.replace(bracket, QStringLiteral("\\1"))
        .replace(QLatin1Char('*'), QLatin1String("name"))
        .replace(QLatin1Char('?'), QLatin1Char('x'));
}

} // namespace

/**
 * Every answer must be the database's own: an answer remembered per extension must not reach
 * a name whose type depends on more than its last extension, which the sieve of patterns must
 * never hold back.
 */
class tst_TypeNameCache : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyGlobOfTheDatabase() {
        // Each name right after a plain name with the same last extension, so that a wrongly
        // shared answer would show.
        QStringList names{QStringLiteral("PHOTO.JPG"), QStringLiteral("b.zz9q")};
        for (const QMimeType &type : QMimeDatabase().allMimeTypes()) {
            for (const QString &glob : type.globPatterns())
                names << nameFromGlob(glob);
        }
        if (names.size() == 2)
            QSKIP("the MIME database has no glob patterns on this machine");
        for (const QString &name : names) {
            const QString plain =
                QStringLiteral("plain.") + name.section(QLatin1Char('.'), -1).toLower();
            QCOMPARE(TypeNameCache::typeOf(plain), askDatabase(plain));
            QCOMPARE(TypeNameCache::typeOf(name), askDatabase(name));
        }
    }
};

QTEST_GUILESS_MAIN(tst_TypeNameCache)
#include "tst_TypeNameCache.moc"
