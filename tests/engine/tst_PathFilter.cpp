#include "engine/TreeFilter.h"

#include <QTest>

class tst_PathFilter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void match_data() {
        QTest::addColumn<QString>("rules");
        QTest::addColumn<bool>("folder");
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("excluded");
        QTest::newRow("* stays in a name") << "*.o" << false << "a/b/x.o" << true;
        QTest::newRow("* not across /") << "a/*.o" << false << "a/b/x.o" << false;
        QTest::newRow("** at the start") << "**/cache" << true << "a/b/cache" << true;
        QTest::newRow("** at the start, at the root") << "**/cache" << true << "cache" << true;
        QTest::newRow("** in the middle, no folder") << "a/**/x" << false << "a/x" << true;
        QTest::newRow("** in the middle, two folders") << "a/**/x" << false << "a/b/c/x" << true;
        QTest::newRow("** in the middle, other start") << "a/**/x" << false << "b/a/x" << false;
        QTest::newRow("** at the end: below") << "a/**" << false << "a/b/c" << true;
        QTest::newRow("** at the end: not the folder itself") << "a/**" << true << "a" << false;
        QTest::newRow("trailing /: a folder") << "build/" << true << "x/build" << true;
        QTest::newRow("trailing /: not a file") << "build/" << false << "x/build" << false;
        QTest::newRow("leading /: at the root") << "/TODO" << false << "TODO" << true;
        QTest::newRow("leading /: not below") << "/TODO" << false << "a/TODO" << false;
        QTest::newRow("later rule wins: kept")
            << "*.log\n!keep.log" << false << "a/keep.log" << false;
        QTest::newRow("later rule wins: left out")
            << "!keep.log\n*.log" << false << "keep.log" << true;
        QTest::newRow("? and a class") << "v?.[0-9]" << false << "v1.7" << true;
        QTest::newRow("negated class") << "v[!0-9]" << false << "v1" << false;
        QTest::newRow("comment and quoted #") << "# x\n\\#x" << false << "#x" << true;
    }
    void match() {
        QFETCH(QString, rules);
        QFETCH(bool, folder);
        QFETCH(QString, path);
        TreeFilter filter;
        filter.rules.addLines(rules.toUtf8());
        QTEST(filter.excluded(nullptr, path.toUtf8(), folder), "excluded");
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
        filter.rules.add("a.tmp", false);
        QVERIFY(filter.excluded(sub.get(), "sub/a.tmp", false));
    }
};

QTEST_GUILESS_MAIN(tst_PathFilter)
#include "tst_PathFilter.moc"
