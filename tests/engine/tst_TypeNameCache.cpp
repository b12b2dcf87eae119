#include "engine/TypeNameCache.h"

#include <QMimeDatabase>
#include <QTest>

/**
 * Every answer must be the database's own: the danger of remembering answers per extension
 * is that a name whose type depends on more than its last extension gets the answer of an
 * earlier, plainer name.
 */
class tst_TypeNameCache : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void sameAnswerAfterPlainerName_data();
    void sameAnswerAfterPlainerName();
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
        const QChar c = glob[i];
        if (c == QLatin1Char('*')) {
            name += QLatin1String("name");
        } else if (c == QLatin1Char('?')) {
            name += QLatin1Char('x');
        } else if (c == QLatin1Char('[')) {
            const qsizetype close = glob.indexOf(QLatin1Char(']'), i + 1);
            if (close < 0)
                return {};
            name += glob[i + 1];
            i = close;
        } else {
            name += c;
        }
    }
    return name;
}

QString lastExtension(const QString &name) {
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : name.mid(dot + 1);
}

} // namespace

void tst_TypeNameCache::sameAnswerAfterPlainerName_data() {
    QTest::addColumn<QString>("plain");
    QTest::addColumn<QString>("name");
    // Patterns of the database itself are everyGlobOfTheDatabase's.
    QTest::newRow("extension in capitals") << "photo.jpg"
                                           << "PHOTO.JPG";
    QTest::newRow("unknown extension") << "a.zz9q"
                                       << "b.zz9q";
}

void tst_TypeNameCache::sameAnswerAfterPlainerName() {
    QFETCH(QString, plain);
    QFETCH(QString, name);
    QCOMPARE(TypeNameCache::typeOf(plain), askDatabase(plain));
    QCOMPARE(TypeNameCache::typeOf(name), askDatabase(name));
    QCOMPARE(TypeNameCache::typeOf(name), askDatabase(name));
}

void tst_TypeNameCache::everyGlobOfTheDatabase() {
    // A name for every pattern the database knows, each asked right after a plain name with
    // the same last extension, so that a wrongly shared answer would show.
    const QMimeDatabase database;
    int checked = 0;
    const QList<QMimeType> types = database.allMimeTypes();
    for (const QMimeType &type : types) {
        const QStringList globs = type.globPatterns();
        for (const QString &glob : globs) {
            const QString name = nameFromGlob(glob);
            if (name.isEmpty())
                continue;
            const QString plain = QStringLiteral("plain.") + lastExtension(name).toLower();
            QCOMPARE(TypeNameCache::typeOf(plain), askDatabase(plain));
            QCOMPARE(TypeNameCache::typeOf(name), askDatabase(name));
            ++checked;
        }
    }
    if (checked == 0)
        QSKIP("the MIME database has no glob patterns on this machine");
}

QTEST_GUILESS_MAIN(tst_TypeNameCache)
#include "tst_TypeNameCache.moc"
