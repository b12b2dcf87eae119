#include "engine/ComparisonFileCollection.h"
#include "support/FatImage.h"
#include "support/PairLog.h"
#include "support/TestTree.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

namespace {

using Files = QList<QByteArray>;

/** Writes each "PATH=CONTENT" of \a files below \a root, names by their bytes (not all UTF-8). */
bool writeFiles(const QString &root, const Files &files) {
    for (const QByteArray &file : files) {
        const QByteArray path = QFile::encodeName(root) + '/' + file.left(file.indexOf('='));
        QDir().mkpath(QFile::decodeName(path.left(path.lastIndexOf('/'))));
        FILE *stream = ::fopen(path.constData(), "wb");
        const bool written =
            stream && ::fputs(file.mid(file.indexOf('=') + 1).constData(), stream) >= 0;
        if (!stream || ::fclose(stream) != 0 || !written)
            return false;
    }
    return true;
}

/** Both sides of a comparison, walked under one case rule. */
struct Walked {
    ComparisonFileCollection source;
    ComparisonFileCollection destination;

    Walked(const QString &sourceRoot, const QString &destinationRoot, CaseRule rule,
           bool composed = true) {
        for (ComparisonFileCollection *files : {&source, &destination}) {
            files->setCaseRule(rule);
            files->setNormalizesNames(composed);
        }
        source.setRootFolder(sourceRoot);
        destination.setRootFolder(destinationRoot);
    }
};

} // namespace

class tst_NamePairing : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void pairs_data() {
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
            << Files{"TWIN.txt=1", "twin.txt=good"} << Files{"twin.txt=bad!!"}
            << CaseRule::Automatic << QStringList{"TWIN.txt | - | 3", "twin.txt | twin.txt | 4"}
            << 0;
        QTest::newRow("ignoring case, folders and names")
            << Files{"Docs/Readme.md=a"} << Files{"docs/README.md=a"} << CaseRule::Insensitive
            << QStringList{"Docs/Readme.md | docs/README.md | 1"} << 0;
        QTest::newRow("ignoring case, the exact namesake preferred")
            << Files{"TWIN.txt=1", "twin.txt=good"} << Files{"twin.txt=good"}
            << CaseRule::Insensitive << QStringList{"TWIN.txt | - | 3", "twin.txt | twin.txt | 1"}
            << 1;
        QTest::newRow("ignoring case, two candidates pair with neither")
            << Files{"A.txt=1", "a.TXT=1"} << Files{"a.txt=1"} << CaseRule::Insensitive
            << QStringList{"- | a.txt | 2", "A.txt | - | 3", "a.TXT | - | 3"} << 3;
        // The escape of a byte that is not UTF-8 must not read like the name that spells it.
        QTest::newRow("a byte and its spelling")
            << Files{"\xff=1", "\\xff=1", "\\xFF=1"} << Files{"\\xff=1"} << CaseRule::Automatic
            << QStringList{"\\xFF | - | 3", "\\xff | \\xff | 1", "\xef\xbf\xbd | - | 3"} << 0;
        QTest::newRow("a byte and its spelling, ignoring case")
            << Files{"\xff=1"} << Files{"\\xff=1"} << CaseRule::Insensitive
            << QStringList{"- | \\xff | 2", "\xef\xbf\xbd | - | 3"} << 0;
        // Accents written decomposed (NFD) against composed (NFC): the same name.
        QTest::newRow("decomposed accents")
            << Files{"caf\xc3\xa9=1", "Cafe\xcc\x81=1"} << Files{"cafe\xcc\x81=1"}
            << CaseRule::Automatic
            << QStringList{"Cafe\xcc\x81 | - | 3", "caf\xc3\xa9 | cafe\xcc\x81 | 1"} << 0;
        QTest::newRow("decomposed accents, the exact namesake preferred")
            << Files{"caf\xc3\xa9=1", "cafe\xcc\x81=22"} << Files{"cafe\xcc\x81=1"}
            << CaseRule::Automatic
            << QStringList{"cafe\xcc\x81 | cafe\xcc\x81 | 4", "caf\xc3\xa9 | - | 3"} << 1;
    }
    void pairs() {
        QFETCH(Files, source);
        QFETCH(Files, destination);
        QFETCH(CaseRule, rule);
        TestTree sourceTree;
        TestTree destinationTree;
        QVERIFY(writeFiles(sourceTree.root(), source));
        QVERIFY(writeFiles(destinationTree.root(), destination));
        Walked w(sourceTree.root(), destinationTree.root(), rule);
        QTEST(comparePairs(w.source, w.destination, 1), "expected");
        // Told not to compose names, decomposed accents pair only with the same spelling.
        if (QTest::currentDataTag() == QByteArray("decomposed accents")) {
            Walked spelt(sourceTree.root(), destinationTree.root(), rule, false);
            QCOMPARE(comparePairs(spelt.source, spelt.destination, 1),
                     (QStringList{"- | cafe\xcc\x81 | 2", "Cafe\xcc\x81 | - | 3",
                                  "caf\xc3\xa9 | - | 3"}));
        }
        QTEST(int(w.source.Problems().size() + w.destination.Problems().size()), "problems");
        // The copy tools find their targets through the same look-up.
        for (const ComparisonFilePtr &record : w.source) {
            const ComparisonFilePtr counterpart = w.destination.Counterpart(*record, w.source);
            QVERIFY(counterpart);
            QCOMPARE(counterpart->DifferenceCode(), record->DifferenceCode());
        }
        // The temporary folders cannot remove names that are not valid UTF-8 themselves.
        QProcess::execute(QStringLiteral("rm"),
                          {QStringLiteral("-rf"), sourceTree.root(), destinationTree.root()});
    }
    void caseBlindFileSystem_data() {
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
    void caseBlindFileSystem() {
        QFETCH(CaseRule, rule);
        FatImage fat;
        if (!fat.isMounted())
            QSKIP(qPrintable(fat.reason()));
        TestTree sourceTree;
        QVERIFY(writeFiles(sourceTree.root(), {"Docs/Readme.md=a", "twin.txt=abc"}));
        QVERIFY(writeFiles(fat.root(), {"DOCS/README.MD=a", "TWIN.TXT=abcd"}));
        Walked w(sourceTree.root(), fat.root(), rule);
        QTEST(comparePairs(w.source, w.destination, 1), "expected");
    }
};

QTEST_GUILESS_MAIN(tst_NamePairing)
#include "tst_NamePairing.moc"
