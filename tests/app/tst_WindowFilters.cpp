#include "app/MainMenuBar.h"
#include "app/StatusLine.h"
#include "settings/Options.h"
#include "support/ComparedWindow.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"

#include <QAction>
#include <QTest>

/** What the window's stored filters and time shift leave out of a compare. */
class tst_WindowFilters : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { m_profile.clear(); }
    void storedChoicesApply_data();
    void storedChoicesApply();

private:
    TestProfile m_profile;
};

void tst_WindowFilters::storedChoicesApply_data() {
    QTest::addColumn<QString>("filters");
    QTest::addColumn<bool>("gitignore");
    QTest::addColumn<bool>("ignoreShift");
    QTest::addColumn<QStringList>("rows");

    // a.log and sub/b.txt differ in size; hour.txt is an hour newer in the destination.
    const QString all[] = {QStringLiteral("a.log"), QStringLiteral("hour.txt"),
                           QStringLiteral("sub/b.txt")};
    QTest::newRow("nothing") << QString() << false << false << QStringList(all, all + 3);
    QTest::newRow("a pattern") << QStringLiteral("*.log\n") << false << false
                               << QStringList{all[1], all[2]};
    QTest::newRow("a folder, kept again below it in vain")
        << QStringLiteral("sub/\n!b.txt\n") << false << false << QStringList{all[0], all[1]};
    QTest::newRow("the trees' .gitignore")
        << QString() << true << false << QStringList{all[0], all[1]};
    QTest::newRow("an hour's shift") << QString() << false << true << QStringList{all[0], all[2]};
}

void tst_WindowFilters::storedChoicesApply() {
    QFETCH(QString, filters);
    QFETCH(bool, gitignore);
    QFETCH(bool, ignoreShift);
    Options::setFilters(filters);
    Options::setUseGitignore(gitignore);
    Options::setIgnoreTimeShift(ignoreShift);
    TestTree tree;
    for (const char *name : {"a.log", "sub/b.txt", "hour.txt"}) {
        QVERIFY(tree.write(QLatin1String("src/") + QLatin1String(name), "1"));
        QVERIFY(
            tree.write(QLatin1String("dst/") + QLatin1String(name), name[0] == 'h' ? "1" : "22"));
        for (const char *side : {"src/", "dst/"})
            QVERIFY(tree.setTimes(QLatin1String(side) + QLatin1String(name), 1700000000));
    }
    QVERIFY(tree.setTimes(QStringLiteral("dst/hour.txt"), 1700000000 + 3600));
    QVERIFY(tree.write(QStringLiteral("src/sub/.gitignore"), "*.txt\n"));
    QVERIFY(tree.write(QStringLiteral("dst/sub/.gitignore"), "*.txt\n"));

    ComparedWindow w(tree.path(QStringLiteral("src")), tree.path(QStringLiteral("dst")));
    QCOMPARE(w.window.menus->mnuFileIgnoreTimeShift->isChecked(), ignoreShift);
    QCOMPARE(w.window.StatusBar1->filtered(), !filters.isEmpty() || gitignore);
    w.compare();
    QTEST(w.rows(0), "rows");
}

QTEST_MAIN(tst_WindowFilters)
#include "tst_WindowFilters.moc"
