#include "engine/TreeFilter.h"

#include <QTest>

/** The glob rules of filters, as git applies them. */
class tst_PathFilter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void match_data() {
        QTest::addColumn<QByteArray>("rules");
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("folder");
        QTest::addColumn<bool>("excluded");

        QTest::newRow("* stays in a name")
            << QByteArray("*.o") << QByteArray("a/b/x.o") << false << true;
        QTest::newRow("* not across /")
            << QByteArray("a/*.o") << QByteArray("a/b/x.o") << false << false;
        QTest::newRow("** at the start")
            << QByteArray("**/cache") << QByteArray("a/b/cache") << true << true;
        QTest::newRow("** at the start, at the root")
            << QByteArray("**/cache") << QByteArray("cache") << true << true;
        QTest::newRow("** in the middle, no folder")
            << QByteArray("a/**/x") << QByteArray("a/x") << false << true;
        QTest::newRow("** in the middle, two folders")
            << QByteArray("a/**/x") << QByteArray("a/b/c/x") << false << true;
        QTest::newRow("** in the middle, other start")
            << QByteArray("a/**/x") << QByteArray("b/a/x") << false << false;
        QTest::newRow("** at the end: below")
            << QByteArray("a/**") << QByteArray("a/b/c") << false << true;
        QTest::newRow("** at the end: not the folder itself")
            << QByteArray("a/**") << QByteArray("a") << true << false;
        QTest::newRow("trailing /: a folder")
            << QByteArray("build/") << QByteArray("x/build") << true << true;
        QTest::newRow("trailing /: not a file")
            << QByteArray("build/") << QByteArray("x/build") << false << false;
        QTest::newRow("leading /: at the root")
            << QByteArray("/TODO") << QByteArray("TODO") << false << true;
        QTest::newRow("leading /: not below")
            << QByteArray("/TODO") << QByteArray("a/TODO") << false << false;
        QTest::newRow("later rule wins: kept")
            << QByteArray("*.log\n!keep.log") << QByteArray("a/keep.log") << false << false;
        QTest::newRow("later rule wins: left out")
            << QByteArray("!keep.log\n*.log") << QByteArray("keep.log") << false << true;
        QTest::newRow("? and a class")
            << QByteArray("v?.[0-9]") << QByteArray("v1.7") << false << true;
        QTest::newRow("negated class")
            << QByteArray("v[!0-9]") << QByteArray("v1") << false << false;
        QTest::newRow("comment and quoted #")
            << QByteArray("# x\n\\#x") << QByteArray("#x") << false << true;
    }
    void match() {
        QFETCH(QByteArray, rules);
        QFETCH(QByteArray, path);
        QFETCH(bool, folder);
        TreeFilter filter;
        filter.rules.addLines(rules);
        QTEST(filter.excluded(nullptr, path, folder), "excluded");
    }

    void gitignoreBelowItsFolder() {
        // The root's .gitignore leaves out *.tmp; sub/.gitignore keeps a.tmp and leaves out /b.
        TreeFilter filter;
        filter.gitignore = true;
        auto root = std::make_shared<TreeFilter::Scope>();
        root->rules.addLines("*.tmp\n");
        auto sub = std::make_shared<TreeFilter::Scope>();
        sub->parent = root;
        sub->rules.addLines("!a.tmp\n/b\n");
        sub->baseLength = 4; // "sub/"
        QVERIFY(filter.excluded(root.get(), "a.tmp", false));
        QVERIFY(!filter.excluded(root.get(), "b", false));
        QVERIFY(!filter.excluded(sub.get(), "sub/a.tmp", false));
        QVERIFY(filter.excluded(sub.get(), "sub/c.tmp", false));
        QVERIFY(filter.excluded(sub.get(), "sub/b", false));
        QVERIFY(!filter.excluded(sub.get(), "sub/x/b", false));
        QVERIFY(filter.excluded(root.get(), "x/.git", true));
        // The user's rules win over the tree's.
        filter.rules.add("a.tmp", false);
        QVERIFY(filter.excluded(sub.get(), "sub/a.tmp", false));
    }
};

QTEST_GUILESS_MAIN(tst_PathFilter)
#include "tst_PathFilter.moc"
