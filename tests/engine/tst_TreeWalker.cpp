#include "engine/TreeWalker.h"
#include "support/TestTree.h"

#include <QProcess>
#include <QScopeGuard>
#include <QTest>

#include <algorithm>
#include <unistd.h>

namespace {

/** Every file below \a root as "FOLDER/NAME", in the order the walker gives them. */
QList<QByteArray> walk(const QByteArray &root, const QString &rootText) {
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
    walker.walk(FolderRef::make(root, root.size(), rootText));
    return walked;
}

bool run(const QString &program, const QStringList &arguments) {
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

} // namespace

class tst_TreeWalker : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nameByteOrder() {
        // Names that tie on their first eight bytes, end within them, or hold bytes past ASCII:
        // each folder must come out in plain byte order, as a byte-wise sort gives it.
        QList<QByteArray> names = QByteArray("abcdefgh|abcdefghi|abcdefgh\xff|abcdefgi|abc|abc\x01|"
                                             "abcdefgh\x01|B|b|\xc3\xa9|\xff|a b|ab|abcdefghij")
                                      .split('|');
        TestTree tree;
        for (const QByteArray &name : names)
            QVERIFY(tree.writeNative(name, "x") && tree.writeNative("sub/" + name, "x"));
        const QList<QByteArray> walked = walk(tree.nativePath("").chopped(1), tree.root());
        std::sort(names.begin(), names.end());
        QList<QByteArray> expected;
        for (const QByteArray &folder : {QByteArray(), QByteArray("sub")}) {
            for (const QByteArray &name : names)
                expected << folder + '/' + name;
        }
        QCOMPARE(walked, expected);
        // The temporary folder cannot remove names that are not valid UTF-8 itself.
        for (const QByteArray &name : names) {
            ::unlink(tree.nativePath(name).constData());
            ::unlink(tree.nativePath("sub/" + name).constData());
        }
    }

    void listingWithoutTypes() {
        // A file system without file types in its folders (ext4 made without "filetype") lists
        // every entry as of unknown type: each must still be walked as what it is.
        TestTree tree;
        const QString image = tree.path(QStringLiteral("ext.img"));
        const QString mountPoint = tree.path(QStringLiteral("mnt"));
        QVERIFY(tree.mkdir(QStringLiteral("mnt")));
        if (!run(QStringLiteral("truncate"), {QStringLiteral("-s"), QStringLiteral("4M"), image}) ||
            !run(QStringLiteral("mkfs.ext4"), {QStringLiteral("-q"), QStringLiteral("-O"),
                                               QStringLiteral("^filetype,^has_journal"), image}) ||
            !run(QStringLiteral("mount"),
                 {QStringLiteral("-o"), QStringLiteral("loop"), image, mountPoint}))
            QSKIP("an ext4 image cannot be made and mounted here (needs root and a loop device)");
        const auto unmount = qScopeGuard([&] { run(QStringLiteral("umount"), {mountPoint}); });
        QVERIFY(tree.write(QStringLiteral("mnt/sub/inner"), "x"));
        QVERIFY(tree.write(QStringLiteral("mnt/top"), "x"));
        QCOMPARE(walk(tree.nativePath("mnt"), mountPoint),
                 (QList<QByteArray>{"/top", "sub/inner"}));
    }
};

QTEST_GUILESS_MAIN(tst_TreeWalker)
#include "tst_TreeWalker.moc"
