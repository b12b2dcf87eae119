#include "engine/IconKey.h"
#include "engine/PathHelpers.h"
#include "support/TestTree.h"

#include <QTest>

#include <unistd.h>

class tst_PathHelpers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void translatePath_data();
    void translatePath();
    void separators_data();
    void separators();
    void keyFromNative_data();
    void keyFromNative();
    void iconKey();
    void validFileObject();
};

void tst_PathHelpers::translatePath_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("lower");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain") << "/src/sub/a.txt"
                           << "/src"
                           << "/dst" << false << "/dst/sub/a.txt";
    QTest::newRow("root in another case") << "/Data/Sub/A.txt"
                                          << "/data"
                                          << "/Other" << false << "/Other/Sub/A.txt";
    QTest::newRow("lower-cased") << "/Data/Sub/A.txt"
                                 << "/data"
                                 << "/Other" << true << "/other/sub/a.txt";
    QTest::newRow("first occurrence only") << "/x/x/x/a"
                                           << "/x"
                                           << "/y" << false << "/y/x/x/a";
    QTest::newRow("root must end at a separator") << "/srcdir/a"
                                                  << "/src"
                                                  << "/dst" << false << "/srcdir/a";
}

void tst_PathHelpers::translatePath() {
    QFETCH(QString, path);
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(bool, lower);
    QFETCH(QString, expected);
    QCOMPARE(TranslatePath(path, from, to, lower), expected);
}

void tst_PathHelpers::separators_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("added");
    QTest::addColumn<QString>("removed");
    QTest::newRow("none") << "/a"
                          << "/a/"
                          << "/a";
    QTest::newRow("two: only one removed") << "/a//"
                                           << "/a//"
                                           << "/a/";
    QTest::newRow("empty") << ""
                           << "/"
                           << "";
}

void tst_PathHelpers::separators() {
    QFETCH(QString, path);
    QFETCH(QString, added);
    QFETCH(QString, removed);
    QCOMPARE(AddBackslash(path), added);
    QCOMPARE(RemoveBackslash(path), removed);
}

void tst_PathHelpers::keyFromNative_data() {
    QTest::addColumn<QByteArray>("native");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("display");
    QTest::newRow("valid UTF-8") << QByteArray("caf\xc3\xa9") << QString::fromUtf8("café")
                                 << QString::fromUtf8("café");
    QTest::newRow("invalid byte") << QByteArray("a\xff.txt") << "a\\xFF.txt"
                                  << QString::fromUtf8("a\xEF\xBF\xBD.txt");
    QTest::newRow("truncated sequence")
        << QByteArray("\xc3") << "\\xC3" << QString(QChar::ReplacementCharacter);
    QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80z") << "\\xED\\xA0\\x80z" << QString();
}

void tst_PathHelpers::keyFromNative() {
    QFETCH(QByteArray, native);
    QFETCH(QString, key);
    QFETCH(QString, display);
    QCOMPARE(KeyFromNative(native), key);
    if (!display.isNull())
        QCOMPARE(DisplayFromNative(native), display);
}

void tst_PathHelpers::iconKey() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("notes.txt"), "x"));
    QVERIFY(tree.write(QStringLiteral("sub/Tool.EXE"), "x"));
    QVERIFY(tree.mkdir(QStringLiteral("folder")));
    QVERIFY(::symlink("folder", tree.nativePath("link").constData()) == 0);
    const QString fallback = QStringLiteral("fallback");

    QCOMPARE(IconKey(tree.path(QStringLiteral("folder")), fallback), QStringLiteral(":"));
    QCOMPARE(IconKey(tree.path(QStringLiteral("notes.txt")), fallback),
             QStringLiteral("plain text document"));
    QCOMPARE(IconKey(tree.path(QStringLiteral("sub/Tool.EXE")), fallback),
             tree.path(QStringLiteral("sub/Tool.EXE")).toLower());
    QCOMPARE(IconKey(tree.path(QStringLiteral("gone.txt")), fallback), fallback);
    // A link to a folder is listed as a file, so its icon is not the folder's.
    QVERIFY(IconKey(tree.path(QStringLiteral("link")), fallback) != QStringLiteral(":"));
}

void tst_PathHelpers::validFileObject() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("a"), "x"));
    QVERIFY(::symlink("nowhere", tree.nativePath("dangling").constData()) == 0);
    QVERIFY(IsValidFileObject(FileObject::fromNativePath(tree.nativePath("a"))));
    // A dangling link still exists as a link.
    QVERIFY(IsValidFileObject(FileObject::fromNativePath(tree.nativePath("dangling"))));
    QVERIFY(!IsValidFileObject(FileObject::fromNativePath(tree.nativePath("b"))));
    QVERIFY(!IsValidFileObject(FileObject()));
}

QTEST_GUILESS_MAIN(tst_PathHelpers)
#include "tst_PathHelpers.moc"
