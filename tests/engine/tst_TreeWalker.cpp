#include "engine/TreeWalker.h"
#include "support/TestTree.h"

#include <QTest>

#include <algorithm>
#include <unistd.h>

class tst_TreeWalker : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nameByteOrder();
};

void tst_TreeWalker::nameByteOrder() {
    // Names that tie on their first eight bytes, end within them, or hold bytes past ASCII:
    // each folder must come out in plain byte order, as a byte-wise sort gives it.
    const QList<QByteArray> names = {
        "abcdefgh", "abcdefghi", "abcdefgh\xff", "abcdefgi", "abc", "abc\x01", "abcdefgh\x01",
        "B",        "b",         "\xc3\xa9",     "\xff",     "a b", "ab",      "abcdefghij",
    };
    TestTree tree;
    for (const QByteArray &name : names) {
        QVERIFY(tree.writeNative(name, "x"));
        QVERIFY(tree.writeNative("sub/" + name, "x"));
    }
    QList<QByteArray> walked;
    TreeWalker walker({
        [] { return false; },
        [&walked](const FolderRef &folder, std::vector<QByteArray> &files) {
            for (const QByteArray &name : files)
                walked << folder->relativeNativePath() + '/' + name;
            return true;
        },
        [](const FolderRef &, int) { QFAIL("a folder could not be read"); },
    });
    const QByteArray root = tree.nativePath("").chopped(1);
    walker.walk(FolderRef::make(root, root.size(), tree.root()));

    QList<QByteArray> expected;
    QList<QByteArray> sorted = names;
    std::sort(sorted.begin(), sorted.end());
    for (const QByteArray &folder : {QByteArray(), QByteArray("sub")}) {
        for (const QByteArray &name : sorted)
            expected << folder + '/' + name;
    }
    QCOMPARE(walked, expected);

    // The temporary folder cannot remove names that are not valid UTF-8 itself.
    for (const QByteArray &name : names) {
        ::unlink(tree.nativePath(name).constData());
        ::unlink(tree.nativePath("sub/" + name).constData());
    }
}

QTEST_GUILESS_MAIN(tst_TreeWalker)
#include "tst_TreeWalker.moc"
