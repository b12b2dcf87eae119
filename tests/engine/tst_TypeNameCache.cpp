#include "engine/PatternSieve.h"
#include "engine/TypeNameCache.h"

#include <QMimeDatabase>
#include <QTest>

/**
 * Every answer must be the database's own: an answer remembered per extension must not reach
 * a name whose type depends on more than its last extension. The sieve that picks those names
 * may let a name through needlessly, never hold back one that a pattern matches.
 */
class tst_TypeNameCache : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void sieve_data();
    void sieve();
    void everyGlobOfTheDatabase();
};

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

void tst_TypeNameCache::sieve_data() {
    QTest::addColumn<QStringList>("globs");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("expected");
    const QStringList globs = {"*.tar.gz", "README*", "*.so.[0-9]*", "*.anim[1-9j]",
                               "Makefile", "*~",      "*.C",         "[0-9][0-9][0-9].vdr"};
    QTest::newRow("longer suffix") << globs << "backup.TAR.GZ" << true;
    QTest::newRow("prefix") << globs << "readme.md" << true;
    QTest::newRow("piece in the middle") << globs << "libc.so.6" << true;
    QTest::newRow("bracket letter at the end") << globs << "walk.ANIMJ" << true;
    QTest::newRow("exact name") << globs << "makefile" << true;
    QTest::newRow("case-sensitive pattern, other case") << globs << "prog.c" << true;
    QTest::newRow("bracket before a literal ending") << globs << "001.vdr" << true;
    QTest::newRow("non-ASCII last letter") << globs << QString::fromUtf8("caf\u00e9") << true;
    QTest::newRow("plain extension") << globs << "photo.jpg" << false;
    QTest::newRow("digit no bracket takes") << globs << "file0" << false;
    QTest::newRow("negated bracket") << QStringList{"*.[!a]"} << "photo.jpg" << true;
    QTest::newRow("bare wildcard") << QStringList{"*"} << "photo.jpg" << true;
}

void tst_TypeNameCache::sieve() {
    QFETCH(QStringList, globs);
    QFETCH(QString, name);
    PatternSieve sieve;
    for (const QString &glob : globs)
        sieve.add(glob);
    QTEST(sieve.mayMatch(name), "expected");
}

void tst_TypeNameCache::everyGlobOfTheDatabase() {
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

QTEST_GUILESS_MAIN(tst_TypeNameCache)
#include "tst_TypeNameCache.moc"
