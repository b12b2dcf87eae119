#include "engine/TypeNameCache.h"

#include <QMimeDatabase>
#include <QTest>

namespace {

QString askDatabase(const QString &name) {
    static const QMimeDatabase database;
    return database.mimeTypeForFile(name, QMimeDatabase::MatchExtension).comment();
}

/** A name that \a glob matches: every wildcard replaced by something it accepts. */
QString nameFromGlob(const QString &glob) {
    QString name;
    for (qsizetype i = 0; i < glob.size(); ++i) {
        if (glob[i] == QLatin1Char('*')) {
            name += QLatin1String("name");
        } else if (glob[i] == QLatin1Char('?')) {
            name += QLatin1Char('x');
        } else if (glob[i] == QLatin1Char('[')) {
            const qsizetype close = glob.indexOf(QLatin1Char(']'), i + 1);
            if (close < 0)
                return {};
            name += glob[i + 1];
            i = close;
        } else {
            name += glob[i];
        }
    }
    return name;
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
            for (const QString &glob : type.globPatterns()) {
                if (const QString name = nameFromGlob(glob); !name.isEmpty())
                    names << name;
            }
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
