#include "engine/ComparisonFileCollection.h"
#include "support/TestTree.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/** Walks \a root, read ahead on a thread of its own first when \a prepared. */
void walk(ComparisonFileCollection &files, const QString &root, bool prepared) {
    if (prepared)
        files.prepareRootFolder(root);
    files.setRootFolder(root);
}

/** A walk read ahead must give what a plain one gives: both, for a test that takes rows. */
void walkKinds() {
    QTest::addColumn<bool>("prepared");
    QTest::newRow("plain") << false;
    QTest::newRow("read ahead") << true;
}

QString relativePaths(const ComparisonFileCollection &files) {
    QStringList paths;
    for (const ComparisonFilePtr &record : files)
        paths << record->RelativePath();
    return paths.join(QLatin1Char(' '));
}

} // namespace

class tst_ComparisonFileCollection : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void walkOrder_data() { walkKinds(); }
    void walkOrder() {
        QFETCH(bool, prepared);
        TestTree tree;
        for (const char *name : {"b.txt", "sub/deeper/d.txt", "a.txt", "z/e.txt", "sub/c.txt"})
            QVERIFY(tree.write(QLatin1String(name), "x"));
        ComparisonFileCollection files;
        QSignalSpy added(&files, &ComparisonFileCollection::FileAdded);
        walk(files, tree.root(), prepared);
        // Each folder's files before its subfolders, every list in name order.
        QCOMPARE(relativePaths(files),
                 QStringLiteral("a.txt b.txt sub/c.txt sub/deeper/d.txt z/e.txt"));
        QCOMPARE(added.count(), 5);
        QCOMPARE(added.at(4).at(0).toInt(), 5);
        QCOMPARE(files.Item(3)->Path(), tree.root() + QStringLiteral("/sub/c.txt"));
        QCOMPARE(files.Item(3)->RootPath(), tree.root());
    }
    void interruptedWalk_data() {
        QTest::addColumn<bool>("prepared");
        QTest::addColumn<bool>("cancel");
        QTest::addColumn<QString>("expected");
        // Cancelled at the third file, the walk stops right there.
        const QString cancelled = QStringLiteral("d0/f d1/f d2/f");
        // A rescan asked for at the third file restarts the walk, which meets the new file;
        // files met again are not raised again.
        const QString restarted = QStringLiteral("d0/f d1/f d2/f c/f d3/f d4/f d5/f");
        QTest::newRow("cancelled") << false << true << cancelled;
        QTest::newRow("cancelled, read ahead") << true << true << cancelled;
        QTest::newRow("restarted") << false << false << restarted;
        QTest::newRow("restarted, read ahead") << true << false << restarted;
    }
    void interruptedWalk() {
        QFETCH(bool, prepared);
        QFETCH(bool, cancel);
        TestTree tree;
        for (int i = 0; i < 6; ++i)
            QVERIFY(tree.write(QStringLiteral("d%1/f").arg(i), "x"));
        ComparisonFileCollection files;
        QSignalSpy added(&files, &ComparisonFileCollection::FileAdded);
        bool interrupted = false;
        connect(&files, &ComparisonFileCollection::FileAdded, this, [&](int count) {
            if (count != 3 || std::exchange(interrupted, true))
                return;
            if (cancel)
                return files.Cancel();
            QVERIFY(tree.write(QStringLiteral("c/f"), "x"));
            files.setNeedsRescan(true);
        });
        walk(files, tree.root(), prepared);
        QTEST(relativePaths(files), "expected");
        QCOMPARE(added.count(), files.Count());
        QCOMPARE(files.Cancelled(), cancel);
        QVERIFY(!files.NeedsRescan() && !files.InProgress());

        walk(files, tree.root(), prepared);
        QVERIFY(!files.Cancelled());
        QCOMPARE(files.Count(), cancel ? 6 : 7);
    }
    void listingOfAnotherFolderIsNotTaken() {
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("a/one"), "x"));
        QVERIFY(tree.write(QStringLiteral("b/two"), "x"));
        ComparisonFileCollection files;
        files.prepareRootFolder(tree.path(QStringLiteral("a")));
        files.setRootFolder(tree.path(QStringLiteral("b")));
        QCOMPARE(relativePaths(files), QStringLiteral("two"));
        QCOMPARE(files.Item(1)->RootPath(), tree.path(QStringLiteral("b")));
        // Nor is it kept for later: the tree may have changed by then.
        QVERIFY(tree.write(QStringLiteral("a/new"), "x"));
        files.setRootFolder(tree.path(QStringLiteral("a")));
        QCOMPARE(files.Count(), 2);
    }
    void linksAndFifosAreFiles() {
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("sub/f"), "x"));
        QVERIFY(::symlink(".", tree.nativePath("sub/loop").constData()) == 0);
        QVERIFY(::symlink("..", tree.nativePath("sub/up").constData()) == 0);
        QVERIFY(::mkfifo(tree.nativePath("pipe").constData(), 0644) == 0);
        ComparisonFileCollection files;
        files.setRootFolder(tree.root());
        QCOMPARE(relativePaths(files), QStringLiteral("pipe sub/f sub/loop sub/up"));
        ComparisonFilePtr loop = files.Item(3);
        loop->UpdateDetails();
        QCOMPARE(loop->Kind(), FileKind::Symlink);
        QCOMPARE(loop->Size(), 1);
    }
    void recordDetails() {
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral(".hidden.txt"), "hello"));
        QVERIFY(::chmod(tree.nativePath(".hidden.txt").constData(), 0640) == 0);
        ComparisonFile record(FileObject::fromNativePath(tree.nativePath(".hidden.txt")));
        QCOMPARE(record.Size(), 0);
        record.UpdateDetails();
        QCOMPARE(ComparisonFile::AttributeString(record.Attributes()), QStringLiteral("H"));
        QCOMPARE(record.Mode(), quint32(S_IFREG | 0640));
        // Details are read once: a vanished file keeps what was loaded.
        QVERIFY(QFile::remove(tree.path(QStringLiteral(".hidden.txt"))));
        record.UpdateDetails();
        QCOMPARE(record.Size(), 5);
    }
};

QTEST_GUILESS_MAIN(tst_ComparisonFileCollection)
#include "tst_ComparisonFileCollection.moc"
