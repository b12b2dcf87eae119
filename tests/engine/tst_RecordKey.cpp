#include "engine/ComparisonFileCollection.h"
#include "engine/PathHelpers.h"
#include "engine/RecordIndex.h"
#include "engine/RecordKey.h"
#include "support/TestTree.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

/** Names as keys, folded and hashed name by name, and paths carried between the two roots. */
class tst_RecordKey : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void namesAgainstTextKeys_data() {
        QTest::addColumn<QByteArray>("a");
        QTest::addColumn<QByteArray>("b");
        QTest::newRow("letter case") << QByteArray("File.TXT") << QByteArray("file.txt");
        QTest::newRow("one letter apart") << QByteArray("file.txt") << QByteArray("file.txu");
        QTest::newRow("prefix") << QByteArray("file") << QByteArray("file.txt");
        QTest::newRow("punctuation is not a letter") << QByteArray("a@") << QByteArray("a`");
        // A Kelvin sign lower-cases to an ASCII "k": a byte test alone would call these different.
        QTest::newRow("Kelvin sign") << QByteArray("\xe2\x84\xaa.txt") << QByteArray("k.txt");
        QTest::newRow("Kelvin sign after ASCII")
            << QByteArray("pac\xe2\x84\xaa") << QByteArray("PACK");
        QTest::newRow("accented letters")
            << QByteArray("\xc3\x89t\xc3\xa9") << QByteArray("\xc3\xa9t\xc3\xa9");
        QTest::newRow("accent against ASCII") << QByteArray("\xc3\xa9") << QByteArray("e");
        QTest::newRow("invalid bytes") << QByteArray("n\xfe") << QByteArray("n\xff");
        // The escape of an invalid byte must not read like the four characters that spell it.
        QTest::newRow("escape against its spelling") << QByteArray("\xff") << QByteArray("\\xFF");
        QTest::newRow("backslashes") << QByteArray("a\\B") << QByteArray("A\\b");
        QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80z") << QByteArray("\\xED\\xA0\\x80Z");
        QTest::newRow("longer non-ASCII tail") << QByteArray("ab") << QByteArray("ab\xc3\xa9");
    }
    void namesAgainstTextKeys() {
        QFETCH(QByteArray, a);
        QFETCH(QByteArray, b);
        // The folded key of a name as the text rule defines it: the reference for the fast paths.
        const auto referenceKey = [](const QByteArray &name) {
            return KeyFromNative(name).toLower();
        };
        const bool equal = referenceKey(a) == referenceKey(b);
        QCOMPARE(RecordKey::namesEqualIgnoringCase(a, b), equal);
        QCOMPARE(RecordKey::namesEqualIgnoringCase(b, a), equal);
        // The exact keys are injective.
        QCOMPARE(KeyFromNative(a) == KeyFromNative(b), a == b);
        // Hashing a name must give what hashing its key as text gives, or look-ups by text fail.
        for (const QByteArray &name : {a, b}) {
            const RecordKey::State prefix = RecordKey::feed(RecordKey::Seed, u"sub/");
            QCOMPARE(RecordKey::finish(RecordKey::feedName(prefix, name)),
                     RecordKey::hash(QStringLiteral("sub/") + referenceKey(name)));
        }
    }

    void folderKeysNameByName_data() {
        QTest::addColumn<QByteArray>("root");
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("ASCII") << QByteArray("/Data") << QByteArray("Sub");
        QTest::newRow("root of the file system") << QByteArray("/") << QByteArray("Sub");
        QTest::newRow("accented") << QByteArray("/Data") << QByteArray("\xc3\x89t\xc3\xa9");
        QTest::newRow("Kelvin sign") << QByteArray("/Data") << QByteArray("\xe2\x84\xaa");
        QTest::newRow("invalid byte") << QByteArray("/Data") << QByteArray("D\xff");
        QTest::newRow("root not UTF-8") << QByteArray("/D\xe2\x82") << QByteArray("x");
    }
    void folderKeysNameByName() {
        // A subfolder's node is built from its parent's; it must equal one built from its path.
        QFETCH(QByteArray, root);
        QFETCH(QByteArray, name);
        const QString rootText = DisplayFromNative(root);
        const FolderRef rootNode = FolderRef::make(root, root.size(), rootText);
        const FolderRef child = FolderRef::makeChild(FolderRef::makeChild(rootNode, name), "Inner");
        const QByteArray path = root + (root.endsWith('/') ? "" : "/") + name + "/Inner";
        const FolderRef whole = FolderRef::make(path, root.size(), rootText);
        QCOMPARE(child->nativePath(), whole->nativePath());
        QCOMPARE(child->keyPath(), whole->keyPath());
        QCOMPARE(child->relativeKeyHash(), whole->relativeKeyHash());
        QCOMPARE(child->relativeNativePath(), whole->relativeNativePath());
    }

    void recordsAcrossTrees() {
        // Roots of different depth, names in other letter cases (ignored), a folder not UTF-8:
        // each record finds its counterpart, and the look-up by text agrees.
        TestTree source;
        TestTree destination;
        QVERIFY(source.write(QStringLiteral("Sub/Deeper/File.txt"), "1"));
        QVERIFY(destination.write(QStringLiteral("sub/DEEPER/file.TXT"), "2"));
        QVERIFY(::mkdir(source.nativePath("d\xff").constData(), 0755) == 0);
        QVERIFY(::mkdir(destination.nativePath("D\xff").constData(), 0755) == 0);
        QVERIFY(source.writeNative("d\xff/n\xfe", "3"));
        QVERIFY(destination.writeNative("D\xff/N\xfe", "4"));
        QVERIFY(destination.writeNative("D\xff/N\xff", "5"));
        ComparisonFileCollection sourceFiles;
        ComparisonFileCollection destinationFiles;
        sourceFiles.setCaseRule(CaseRule::Insensitive);
        destinationFiles.setCaseRule(CaseRule::Insensitive);
        sourceFiles.setRootFolder(source.root() + QStringLiteral("/"));
        destinationFiles.setRootFolder(destination.root());
        QCOMPARE(sourceFiles.Count(), 2);
        QCOMPARE(destinationFiles.Count(), 3);
        for (const ComparisonFilePtr &record : sourceFiles) {
            QCOMPARE(RecordIndex::hashOf(*record), RecordKey::hash(record->RelativeKey()));
            const ComparisonFilePtr counterpart =
                destinationFiles.Counterpart(*record, sourceFiles);
            QVERIFY2(counterpart, qPrintable(record->RelativePath()));
            QVERIFY(RecordIndex::sameKeyIgnoringCase(*record, *counterpart));
            QVERIFY(!RecordIndex::sameKey(*record, *counterpart));
            QCOMPARE(destinationFiles.Item(destination.root() + QLatin1Char('/') +
                                           counterpart->RelativeKey()),
                     counterpart);
        }
        QVERIFY(!RecordIndex::sameKeyIgnoringCase(*destinationFiles.Item(1),
                                                  *destinationFiles.Item(2)));
        // The temporary folders cannot remove names that are not valid UTF-8 themselves.
        QProcess::execute(QStringLiteral("rm"),
                          {QStringLiteral("-rf"), QFile::decodeName(source.nativePath("d\xff")),
                           QFile::decodeName(destination.nativePath("D\xff"))});
    }

    void translatePath_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("from");
        QTest::addColumn<bool>("lower");
        QTest::addColumn<QString>("expected");
        // From the root "from" to "/dst".
        QTest::newRow("plain") << "/src/sub/a.txt"
                               << "/src" << false << "/dst/sub/a.txt";
        QTest::newRow("root in another case") << "/Data/Sub/A.txt"
                                              << "/data" << false << "/dst/Sub/A.txt";
        QTest::newRow("lower-cased") << "/Data/Sub/A.txt"
                                     << "/data" << true << "/dst/sub/a.txt";
        QTest::newRow("first occurrence only") << "/x/x/x/a"
                                               << "/x" << false << "/dst/x/x/a";
        QTest::newRow("root must end at a separator") << "/srcdir/a"
                                                      << "/src" << false << "/srcdir/a";
    }
    void translatePath() {
        QFETCH(QString, path);
        QFETCH(QString, from);
        QFETCH(bool, lower);
        QTEST(TranslatePath(path, from, QStringLiteral("/dst"), lower), "expected");
    }

    void pathTextKeepsItsBytes() {
        // A folder typed or chosen in the window is text; one named in bytes that are no UTF-8
        // must still be opened by those bytes.
        const QByteArray native("/media/caf\xe9");
        QCOMPARE(NativeFromPath(PathTextFromNative(native)), native);
    }

    void danglingLinkIsAFile() {
        TestTree tree;
        QVERIFY(::symlink("nowhere", tree.nativePath("dangling").constData()) == 0);
        // A dangling link still exists as a link.
        QVERIFY(IsValidFileObject(FileObject::fromNativePath(tree.nativePath("dangling"))));
        QVERIFY(!IsValidFileObject(FileObject::fromNativePath(tree.nativePath("gone"))));
    }
};

QTEST_GUILESS_MAIN(tst_RecordKey)
#include "tst_RecordKey.moc"
