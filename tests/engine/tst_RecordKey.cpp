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

class tst_RecordKey : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void namesAgainstTextKeys_data() {
        QTest::addColumn<QByteArray>("a");
        QTest::addColumn<QByteArray>("b");
        const QList<QByteArray> rows =
            QByteArray("File.TXT|file.txt|file|file.txt|a@|a`|\xe2\x84\xaa.txt|k.txt|"
                       "pac\xe2\x84\xaa|PACK|\xc3\x89t\xc3\xa9|\xc3\xa9t\xc3\xa9|\xc3\xa9|e|"
                       "n\xfe|n\xff|\xff|\\xFF|a\\B|A\\b|\xed\xa0\x80z|\\xED\\xA0\\x80Z|ab|"
                       "ab\xc3\xa9")
                .split('|');
        for (qsizetype i = 0; i < rows.size(); i += 2)
            QTest::addRow("%s %s", rows[i].constData(), rows[i + 1].constData())
                << rows[i] << rows[i + 1];
    }
    void namesAgainstTextKeys() {
        QFETCH(QByteArray, a);
        QFETCH(QByteArray, b);
        const auto referenceKey = [](const QByteArray &name) {
            return KeyFromNative(name).toLower();
        };
        const bool equal = referenceKey(a) == referenceKey(b);
        QCOMPARE(RecordKey::namesEqualIgnoringCase(a, b), equal);
        QCOMPARE(RecordKey::namesEqualIgnoringCase(b, a), equal);
        QCOMPARE(KeyFromNative(a) == KeyFromNative(b), a == b);
        for (const QByteArray &name : {a, b}) {
            const RecordKey::State prefix = RecordKey::feed(RecordKey::Seed, u"sub/");
            QCOMPARE(RecordKey::finish(RecordKey::feedName(prefix, name)),
                     RecordKey::hash(QStringLiteral("sub/") + referenceKey(name)));
        }
    }
    void folderKeysNameByName_data() {
        QTest::addColumn<QByteArray>("root");
        QTest::addColumn<QByteArray>("name");
        const QList<QByteArray> rows =
            QByteArray("/|Sub|/Data|\xc3\x89t\xc3\xa9|/Data|D\xff|/D\xe2\x82|x").split('|');
        for (qsizetype i = 0; i < rows.size(); i += 2)
            QTest::addRow("%s %s", rows[i].constData(), rows[i + 1].constData())
                << rows[i] << rows[i + 1];
    }
    void folderKeysNameByName() {
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
        TestTree source, destination;
        QVERIFY(source.write(QStringLiteral("Sub/Deeper/File.txt"), "1"));
        QVERIFY(destination.write(QStringLiteral("sub/DEEPER/file.TXT"), "2"));
        QVERIFY(::mkdir(source.nativePath("d\xff").constData(), 0755) == 0);
        QVERIFY(::mkdir(destination.nativePath("D\xff").constData(), 0755) == 0);
        QVERIFY(source.writeNative("d\xff/n\xfe", "3"));
        QVERIFY(destination.writeNative("D\xff/N\xfe", "4"));
        QVERIFY(destination.writeNative("D\xff/N\xff", "5"));
        ComparisonFileCollection sourceFiles, destinationFiles;
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
        QProcess::execute(QStringLiteral("rm"),
                          {QStringLiteral("-rf"), QFile::decodeName(source.nativePath("d\xff")),
                           QFile::decodeName(destination.nativePath("D\xff"))});
    }
    void translatePath_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("from");
        QTest::addColumn<bool>("lower");
        QTest::addColumn<QString>("expected");
        QTest::addRow("below the root") << "/src/sub/a.txt"
                                        << "/src" << false << "/dst/sub/a.txt";
        QTest::addRow("root in other case") << "/Data/Sub/A.txt"
                                            << "/data" << false << "/dst/Sub/A.txt";
        QTest::addRow("lowered") << "/Data/Sub/A.txt"
                                 << "/data" << true << "/dst/sub/a.txt";
        QTest::addRow("root's name again below") << "/x/x/x/a"
                                                 << "/x" << false << "/dst/x/x/a";
        QTest::addRow("not below the root") << "/srcdir/a"
                                            << "/src" << false << "/srcdir/a";
    }
    void translatePath() {
        QFETCH(QString, path);
        QFETCH(QString, from);
        QFETCH(bool, lower);
        QTEST(TranslatePath(path, from, QStringLiteral("/dst"), lower), "expected");
    }
    void pathTextKeepsItsBytes() {
        const QByteArray native("/media/caf\xe9");
        QCOMPARE(NativeFromPath(PathTextFromNative(native)), native);
    }
    void danglingLinkIsAFile() {
        TestTree tree;
        QVERIFY(::symlink("nowhere", tree.nativePath("dangling").constData()) == 0);
        QVERIFY(IsValidFileObject(FileObject::fromNativePath(tree.nativePath("dangling"))));
        QVERIFY(!IsValidFileObject(FileObject::fromNativePath(tree.nativePath("gone"))));
    }
};

QTEST_GUILESS_MAIN(tst_RecordKey)
#include "tst_RecordKey.moc"
