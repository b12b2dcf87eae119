#include "engine/PatternSieve.h"

#include <QTest>

/**
 * The sieve may let a name through needlessly, but must never hold back one that a pattern
 * matches: that name would get the type of its last extension instead of its own.
 */
class tst_PatternSieve : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void mayMatch_data();
    void mayMatch();
};

void tst_PatternSieve::mayMatch_data() {
    QTest::addColumn<QStringList>("globs");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("expected");
    const QStringList globs = {"*.tar.gz", "README*", "*.so.[0-9]*", "*.anim[1-9j]",
                               "Makefile", "*~",      "*.C",         "[0-9][0-9][0-9].vdr"};
    QTest::newRow("longer suffix") << globs << "backup.TAR.GZ" << true;
    QTest::newRow("prefix") << globs << "readme.md" << true;
    QTest::newRow("piece in the middle") << globs << "libc.so.6" << true;
    QTest::newRow("bracket range at the end") << globs << "walk.anim7" << true;
    QTest::newRow("bracket letter at the end") << globs << "walk.ANIMJ" << true;
    QTest::newRow("exact name") << globs << "makefile" << true;
    QTest::newRow("tilde") << globs << "notes.txt~" << true;
    QTest::newRow("case-sensitive pattern, other case") << globs << "prog.c" << true;
    QTest::newRow("bracket before a literal ending") << globs << "001.vdr" << true;
    QTest::newRow("plain extension") << globs << "photo.jpg" << false;
    QTest::newRow("same last letter, other ending") << globs << "quiz" << false;
    QTest::newRow("digit a bracket takes, let through needlessly") << globs << "file2" << true;
    QTest::newRow("digit no bracket takes") << globs << "file0" << false;
    QTest::newRow("no extension") << globs << "notes" << false;
    QTest::newRow("non-ASCII last letter") << globs << QString::fromUtf8("caf\u00e9") << true;
    QTest::newRow("negated bracket lets all through")
        << QStringList{"*.[!a]"} << "photo.jpg" << true;
    QTest::newRow("bare wildcard lets all through") << QStringList{"*"} << "photo.jpg" << true;
}

void tst_PatternSieve::mayMatch() {
    QFETCH(QStringList, globs);
    QFETCH(QString, name);
    QFETCH(bool, expected);
    PatternSieve sieve;
    for (const QString &glob : globs)
        sieve.add(glob);
    QCOMPARE(sieve.mayMatch(name), expected);
}

QTEST_GUILESS_MAIN(tst_PatternSieve)
#include "tst_PatternSieve.moc"
