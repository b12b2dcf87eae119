#include "engine/ComparisonFileCollection.h"
#include "support/ChildRun.h"
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

QStringList relativePaths(const ComparisonFileCollection &files) {
    QStringList paths;
    for (const ComparisonFilePtr &record : files)
        paths << record->RelativePath();
    return paths;
}

} // namespace

class tst_ComparisonFileCollection : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void walkOrder_data() { walkKinds(); }
    void walkOrder();
    void emptyAndMissingRoots();
    void cancelDuringWalk_data() { walkKinds(); }
    void cancelDuringWalk();
    void rescanRestartsWithoutDuplicates_data() { walkKinds(); }
    void rescanRestartsWithoutDuplicates();
    void listingOfAnotherFolderIsNotTaken();
    void linksAndFifosAreFiles();
    void nonUtf8Names();
    void itemLookups();
    void placeholders();
    void unreadableFolderRecorded();
};

void tst_ComparisonFileCollection::walkOrder() {
    QFETCH(bool, prepared);
    TestTree tree;
    for (const char *name : {"b.txt", "sub/deeper/d.txt", "a.txt", "z/e.txt", "sub/c.txt"})
        QVERIFY(tree.write(QLatin1String(name), "x"));
    ComparisonFileCollection files;
    QSignalSpy added(&files, &ComparisonFileCollection::FileAdded);
    walk(files, tree.root(), prepared);
    // Each folder's files before its subfolders, every list in name order.
    QCOMPARE(
        relativePaths(files),
        QStringList({QStringLiteral("a.txt"), QStringLiteral("b.txt"), QStringLiteral("sub/c.txt"),
                     QStringLiteral("sub/deeper/d.txt"), QStringLiteral("z/e.txt")}));
    QCOMPARE(added.count(), 5);
    QCOMPARE(added.at(4).at(0).toInt(), 5);
    QVERIFY(!files.InProgress());
    QCOMPARE(files.Item(3)->Path(), tree.root() + QStringLiteral("/sub/c.txt"));
    QCOMPARE(files.Item(3)->ParentFolder(), tree.root() + QStringLiteral("/sub"));
    QCOMPARE(files.Item(3)->RootPath(), tree.root());
}

void tst_ComparisonFileCollection::emptyAndMissingRoots() {
    TestTree tree;
    QVERIFY(tree.mkdir(QStringLiteral("empty")));
    QVERIFY(tree.write(QStringLiteral("one/f"), "x"));
    ComparisonFileCollection files;
    QSignalSpy added(&files, &ComparisonFileCollection::FileAdded);
    files.setRootFolder(tree.path(QStringLiteral("empty")));
    QCOMPARE(files.Count(), 0);
    QCOMPARE(added.count(), 0);

    files.setRootFolder(tree.path(QStringLiteral("one")));
    QCOMPARE(files.Count(), 1);
    QVERIFY(files.Problems().isEmpty());
    // A root that is not a folder (gone since it was chosen) is a problem, not an empty tree.
    for (const QString &root :
         {tree.path(QStringLiteral("missing")), tree.path(QStringLiteral("one/f"))}) {
        files.setRootFolder(root);
        QCOMPARE(files.RootFolder(), root);
        QCOMPARE(files.Count(), 0);
        QCOMPARE(files.Problems().size(), 1);
        QCOMPARE(files.Problems().first().path, root);
    }
}

void tst_ComparisonFileCollection::cancelDuringWalk() {
    QFETCH(bool, prepared);
    TestTree tree;
    for (int i = 0; i < 10; ++i)
        QVERIFY(tree.write(QStringLiteral("d%1/f").arg(i), "x"));
    ComparisonFileCollection files;
    QSignalSpy added(&files, &ComparisonFileCollection::FileAdded);
    connect(&files, &ComparisonFileCollection::FileAdded, this, [&files](int count) {
        if (count == 3)
            files.Cancel();
    });
    walk(files, tree.root(), prepared);
    QVERIFY(files.Cancelled());
    QVERIFY(!files.InProgress());
    QCOMPARE(files.Count(), 3);
    QCOMPARE(added.count(), 3);

    // The next walk starts afresh.
    disconnect(&files, nullptr, this, nullptr);
    walk(files, tree.root(), prepared);
    QVERIFY(!files.Cancelled());
    QCOMPARE(files.Count(), 10);
}

void tst_ComparisonFileCollection::rescanRestartsWithoutDuplicates() {
    QFETCH(bool, prepared);
    TestTree tree;
    for (int i = 0; i < 6; ++i)
        QVERIFY(tree.write(QStringLiteral("f%1").arg(i), "x"));
    ComparisonFileCollection files;
    QSignalSpy added(&files, &ComparisonFileCollection::FileAdded);
    bool restarted = false;
    connect(&files, &ComparisonFileCollection::FileAdded, this, [&](int count) {
        if (count == 4 && !restarted) {
            restarted = true;
            QVERIFY(tree.write(QStringLiteral("e-new"), "x"));
            files.setNeedsRescan(true);
        }
    });
    walk(files, tree.root(), prepared);
    QVERIFY(restarted);
    QVERIFY(!files.NeedsRescan());
    QCOMPARE(files.Count(), 7);
    // Files met again after the restart are not raised again.
    QCOMPARE(added.count(), 7);
    QCOMPARE(files.Item(5)->Name(), QStringLiteral("e-new"));
}

void tst_ComparisonFileCollection::linksAndFifosAreFiles() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("sub/f"), "x"));
    QVERIFY(::symlink(".", tree.nativePath("sub/loop").constData()) == 0);
    QVERIFY(::symlink("..", tree.nativePath("sub/up").constData()) == 0);
    QVERIFY(::mkfifo(tree.nativePath("pipe").constData(), 0644) == 0);
    ComparisonFileCollection files;
    files.setRootFolder(tree.root());
    QCOMPARE(relativePaths(files),
             QStringList({QStringLiteral("pipe"), QStringLiteral("sub/f"),
                          QStringLiteral("sub/loop"), QStringLiteral("sub/up")}));
    ComparisonFilePtr loop = files.Item(3);
    loop->UpdateDetails();
    QCOMPARE(loop->Kind(), FileKind::Symlink);
    QCOMPARE(loop->Size(), 1);
    QCOMPARE(loop->AttributeString(loop->Attributes()), QStringLiteral("L"));
    ComparisonFilePtr pipe = files.Item(1);
    pipe->UpdateDetails();
    QCOMPARE(pipe->AttributeString(pipe->Attributes()), QStringLiteral("S"));
}

void tst_ComparisonFileCollection::nonUtf8Names() {
    TestTree tree;
    QVERIFY(tree.writeNative("n\xfe", "1"));
    QVERIFY(tree.writeNative("n\xff", "2"));
    // The folder is made by its bytes: decoding the name would lose them.
    QVERIFY(::mkdir(tree.nativePath("d\xff").constData(), 0755) == 0);
    QVERIFY(tree.writeNative("d\xff/inner", "3"));
    ComparisonFileCollection files;
    files.setRootFolder(tree.root());
    QCOMPARE(files.Count(), 3);
    QCOMPARE(files.Item(3)->NativePath(), tree.nativePath("d\xff/inner"));
    // Both names show the same replacement, yet keep distinct keys.
    QCOMPARE(files.Item(1)->Name(), files.Item(2)->Name());
    QVERIFY(files.Item(files.Item(1)->Key()) == files.Item(1));
    QVERIFY(files.Item(files.Item(2)->Key()) == files.Item(2));
}

void tst_ComparisonFileCollection::itemLookups() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("Sub/File.TXT"), "x"));
    ComparisonFileCollection files;
    files.setRootFolder(tree.root() + QLatin1Char('/'));
    QCOMPARE(files.RootFolder(), tree.root() + QLatin1Char('/'));
    QVERIFY(files.Item(0) == nullptr);
    QVERIFY(files.Item(2) == nullptr);
    const ComparisonFilePtr record = files.Item(1);
    QVERIFY(record);
    QCOMPARE(record->Path(), tree.root() + QStringLiteral("/Sub/File.TXT"));
    // Keys keep letter case: on Linux the upper-case path names another file.
    QVERIFY(files.Item(record->Path().toUpper()) == nullptr);
    QCOMPARE(files.Item(record->Key()), record);
    QVERIFY(files.Item(tree.root() + QStringLiteral("/Sub/other")) == nullptr);
    QVERIFY(files.Item(QStringLiteral("/elsewhere/Sub/File.TXT")) == nullptr);

    files.Clear();
    QCOMPARE(files.Count(), 0);
    QCOMPARE(files.RootFolder(), QString());
    QVERIFY(files.Item(record->Key()) == nullptr);
}

void tst_ComparisonFileCollection::placeholders() {
    TestTree source;
    TestTree destination;
    QVERIFY(source.write(QStringLiteral("sub/a.txt"), "abc"));
    QVERIFY(destination.write(QStringLiteral("kept"), "x"));
    ComparisonFileCollection sourceFiles;
    ComparisonFileCollection destinationFiles;
    sourceFiles.setRootFolder(source.root());
    destinationFiles.setRootFolder(destination.root());
    QSignalSpy added(&destinationFiles, &ComparisonFileCollection::FileAdded);

    const ComparisonFilePtr counterpart = sourceFiles.Item(1);
    const ComparisonFilePtr placeholder =
        destinationFiles.AddMissingFile(counterpart->FileObject(), source.root(), 3);
    QVERIFY(placeholder);
    QVERIFY(!placeholder->HasFileObject());
    QCOMPARE(placeholder->Path(), destination.root() + QStringLiteral("/sub/a.txt"));
    QCOMPARE(placeholder->ParentFolder(), destination.root() + QStringLiteral("/sub/"));
    QCOMPARE(placeholder->ColumnString(2, false), QStringLiteral("sub"));
    QCOMPARE(placeholder->NativePath(), destination.nativePath("sub/a.txt"));
    QCOMPARE(placeholder->Size(), 3);
    QCOMPARE(placeholder->DifferenceCode(), 3);
    QCOMPARE(destinationFiles.Count(), 2);
    QCOMPARE(added.count(), 0);
    QCOMPARE(destinationFiles.Counterpart(*counterpart, sourceFiles), placeholder);
    // A second placeholder for the same key is refused.
    QVERIFY(!destinationFiles.AddMissingFile(counterpart->FileObject(), source.root(), 3));

    destinationFiles.RemoveMissingFiles();
    QCOMPARE(destinationFiles.Count(), 1);
    QCOMPARE(destinationFiles.Item(1)->Name(), QStringLiteral("kept"));
    QVERIFY(!destinationFiles.Counterpart(*counterpart, sourceFiles));
}

void tst_ComparisonFileCollection::listingOfAnotherFolderIsNotTaken() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("a/one"), "x"));
    QVERIFY(tree.write(QStringLiteral("b/two"), "x"));
    QVERIFY(tree.write(QStringLiteral("b/three"), "x"));
    ComparisonFileCollection files;
    files.prepareRootFolder(tree.path(QStringLiteral("a")));
    files.setRootFolder(tree.path(QStringLiteral("b")));
    QCOMPARE(relativePaths(files), QStringList({QStringLiteral("three"), QStringLiteral("two")}));
    QCOMPARE(files.Item(1)->RootPath(), tree.path(QStringLiteral("b")));
    // Nor is it kept for later: the tree may have changed by then.
    QVERIFY(tree.write(QStringLiteral("a/new"), "x"));
    files.setRootFolder(tree.path(QStringLiteral("a")));
    QCOMPARE(files.Count(), 2);
}

void tst_ComparisonFileCollection::unreadableFolderRecorded() {
    // Root reads every folder: only an ordinary user can meet one it may not read.
    if (!ChildRun::isChild())
        return ChildRun::run(ChildRun::unprivileged(), "unreadableFolderRecorded");
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("open/f"), "x"));
    QVERIFY(tree.write(QStringLiteral("locked/g"), "x"));
    QVERIFY(tree.write(QStringLiteral("z"), "x"));
    QVERIFY(::chmod(tree.nativePath("locked").constData(), 0) == 0);
    for (const bool prepared : {false, true}) {
        ComparisonFileCollection files;
        walk(files, tree.root(), prepared);
        // The walk goes on past the locked folder and says which one and why.
        QCOMPARE(files.Count(), 2);
        QCOMPARE(files.Problems().size(), 1);
        const QString problem = files.Problems().first().toString();
        QVERIFY2(problem.startsWith(tree.path(QStringLiteral("locked: Permission denied"))),
                 qPrintable(problem));
    }
    ::chmod(tree.nativePath("locked").constData(), 0755);
}

QTEST_GUILESS_MAIN(tst_ComparisonFileCollection)
#include "tst_ComparisonFileCollection.moc"
