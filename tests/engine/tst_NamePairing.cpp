#include "engine/ComparisonFileCollection.h"
#include "support/FatImage.h"
#include "support/PairLog.h"
#include "support/TestTree.h"

#include <QDir>
#include <QTest>

#include <unistd.h>

namespace {

using Files = QList<QByteArray>;

/** Writes each "path=content" of \a files below \a root, making folders as needed. */
bool writeFiles(const QString &root, const Files &files) {
    for (const QByteArray &file : files) {
        const QByteArray path = root.toUtf8() + '/' + file.left(file.indexOf('='));
        const qsizetype slash = path.lastIndexOf('/');
        if (!QDir().mkpath(QString::fromUtf8(path.left(slash))))
            return false;
        // Names that are not UTF-8 are written through the bytes themselves.
        FILE *stream = ::fopen(path.constData(), "wb");
        if (!stream)
            return false;
        const QByteArray content = file.mid(file.indexOf('=') + 1);
        const bool written = ::fwrite(content.constData(), 1, std::size_t(content.size()),
                                      stream) == std::size_t(content.size());
        if (::fclose(stream) != 0 || !written)
            return false;
    }
    return true;
}

void removeFiles(const QString &root, const Files &files) {
    // The temporary folders cannot remove names that are not valid UTF-8 themselves.
    for (const QByteArray &file : files)
        ::unlink((root.toUtf8() + '/' + file.left(file.indexOf('='))).constData());
}

/** Both sides of a comparison, walked under one case rule. */
struct Walked {
    ComparisonFileCollection source;
    ComparisonFileCollection destination;

    Walked(const QString &sourceRoot, const QString &destinationRoot, CaseRule rule,
           bool composed = true) {
        source.setCaseRule(rule);
        destination.setCaseRule(rule);
        source.setNormalizesNames(composed);
        destination.setNormalizesNames(composed);
        source.setRootFolder(sourceRoot);
        destination.setRootFolder(destinationRoot);
    }
};

} // namespace

class tst_NamePairing : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void pairs_data();
    void pairs();
    void caseBlindFileSystem_data();
    void caseBlindFileSystem();
};

void tst_NamePairing::pairs_data() {
    QTest::addColumn<Files>("source");
    QTest::addColumn<Files>("destination");
    QTest::addColumn<CaseRule>("rule");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("problems");

    QTest::newRow("case-sensitive trees keep names apart")
        << Files{"Readme.md=a"} << Files{"README.md=a"} << CaseRule::Automatic
        << QStringList{"- | README.md | 2", "Readme.md | - | 3"} << 0;
    // The exact pair is compared: a corrupted twin.txt must not hide behind TWIN.txt.
    QTest::newRow("twins in one tree, the exact pair compared")
        << Files{"TWIN.txt=1", "twin.txt=good"} << Files{"twin.txt=bad!!"} << CaseRule::Automatic
        << QStringList{"TWIN.txt | - | 3", "twin.txt | twin.txt | 4"} << 0;
    QTest::newRow("ignoring case, folders and names")
        << Files{"Docs/Readme.md=a"} << Files{"docs/README.md=a"} << CaseRule::Insensitive
        << QStringList{"Docs/Readme.md | docs/README.md | 1"} << 0;
    QTest::newRow("ignoring case, the exact namesake preferred")
        << Files{"TWIN.txt=1", "twin.txt=good"} << Files{"twin.txt=good"} << CaseRule::Insensitive
        << QStringList{"TWIN.txt | - | 3", "twin.txt | twin.txt | 1"} << 1;
    QTest::newRow("ignoring case, two candidates pair with neither")
        << Files{"A.txt=1", "a.TXT=1"} << Files{"a.txt=1"} << CaseRule::Insensitive
        << QStringList{"- | a.txt | 2", "A.txt | - | 3", "a.TXT | - | 3"} << 3;
    QTest::newRow("ignoring case, no pairing across a case-sensitive rule")
        << Files{"Docs/x=1"} << Files{"docs/x=1"} << CaseRule::Sensitive
        << QStringList{"- | docs/x | 2", "Docs/x | - | 3"} << 0;
    // The escape of a byte that is not UTF-8 must not read like the name that spells it.
    QTest::newRow("a byte and its spelling")
        << Files{"\xff=1", "\\xff=1", "\\xFF=1"} << Files{"\\xff=1"} << CaseRule::Automatic
        << QStringList{"\\xFF | - | 3", "\\xff | \\xff | 1", "\xef\xbf\xbd | - | 3"} << 0;
    // Accents written decomposed (NFD) against composed (NFC): the same name.
    QTest::newRow("decomposed accents")
        << Files{"caf\xc3\xa9=1", "Cafe\xcc\x81=1"} << Files{"cafe\xcc\x81=1"}
        << CaseRule::Automatic
        << QStringList{"Cafe\xcc\x81 | - | 3", "caf\xc3\xa9 | cafe\xcc\x81 | 1"} << 0;
    QTest::newRow("decomposed accents, the exact namesake preferred")
        << Files{"caf\xc3\xa9=1", "cafe\xcc\x81=22"} << Files{"cafe\xcc\x81=1"}
        << CaseRule::Automatic
        << QStringList{"cafe\xcc\x81 | cafe\xcc\x81 | 4", "caf\xc3\xa9 | - | 3"} << 1;
    QTest::newRow("a byte and its spelling, ignoring case")
        << Files{"\xff=1"} << Files{"\\xff=1"} << CaseRule::Insensitive
        << QStringList{"- | \\xff | 2", "\xef\xbf\xbd | - | 3"} << 0;
}

void tst_NamePairing::pairs() {
    QFETCH(Files, source);
    QFETCH(Files, destination);
    QFETCH(CaseRule, rule);
    QFETCH(QStringList, expected);
    QFETCH(int, problems);
    TestTree sourceTree;
    TestTree destinationTree;
    QVERIFY(writeFiles(sourceTree.root(), source));
    QVERIFY(writeFiles(destinationTree.root(), destination));
    Walked w(sourceTree.root(), destinationTree.root(), rule);
    QCOMPARE(comparePairs(w.source, w.destination, 1), expected);
    // Told not to compose names, decomposed accents pair only with the same spelling.
    if (QTest::currentDataTag() == QByteArray("decomposed accents")) {
        Walked spelt(sourceTree.root(), destinationTree.root(), rule, false);
        QCOMPARE(
            comparePairs(spelt.source, spelt.destination, 1),
            (QStringList{"- | cafe\xcc\x81 | 2", "Cafe\xcc\x81 | - | 3", "caf\xc3\xa9 | - | 3"}));
    }
    QCOMPARE(w.source.Problems().size() + w.destination.Problems().size(), problems);
    // The copy tools find their targets through the same look-up.
    for (const ComparisonFilePtr &record : w.source) {
        const ComparisonFilePtr counterpart = w.destination.Counterpart(*record, w.source);
        QVERIFY(counterpart);
        QCOMPARE(counterpart->DifferenceCode(), record->DifferenceCode());
    }
    removeFiles(sourceTree.root(), source);
    removeFiles(destinationTree.root(), destination);
}

void tst_NamePairing::caseBlindFileSystem_data() {
    QTest::addColumn<CaseRule>("rule");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("automatic: asked of the file system")
        << CaseRule::Automatic
        << QStringList{"Docs/Readme.md | DOCS/README.MD | 1", "twin.txt | TWIN.TXT | 4"};
    QTest::newRow("case-sensitive by choice")
        << CaseRule::Sensitive
        << QStringList{"- | DOCS/README.MD | 2", "- | TWIN.TXT | 2", "Docs/Readme.md | - | 3",
                       "twin.txt | - | 3"};
}

void tst_NamePairing::caseBlindFileSystem() {
    QFETCH(CaseRule, rule);
    QFETCH(QStringList, expected);
    FatImage fat;
    if (!fat.isMounted())
        QSKIP(qPrintable(fat.reason()));
    TestTree sourceTree;
    QVERIFY(writeFiles(sourceTree.root(), {"Docs/Readme.md=a", "twin.txt=abc"}));
    QVERIFY(writeFiles(fat.root(), {"DOCS/README.MD=a", "TWIN.TXT=abcd"}));
    Walked w(sourceTree.root(), fat.root(), rule);
    QCOMPARE(comparePairs(w.source, w.destination, 1), expected);
}

QTEST_GUILESS_MAIN(tst_NamePairing)
#include "tst_NamePairing.moc"
