#include "settings/RecentLists.h"
#include "support/TestProfile.h"

#include <QTest>

using RecentLists::Side;

class tst_RecentLists : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void savedListsReadBack();
    void foldersKeepSixAndClearTheRest();
    void loadFolders_data();
    void loadFolders();
    void loadSelections_data();
    void loadSelections();

private:
    TestProfile m_profile;
};

void tst_RecentLists::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_RecentLists::init() {
    m_profile.clear();
}

void tst_RecentLists::savedListsReadBack() {
    // Each list in a section of its own, a comma in a path kept whole.
    QVERIFY(RecentLists::saveFolders(Side::Source, {"/b", "/x,y"}, 1));
    QVERIFY(RecentLists::saveFolders(Side::Destination, {"/dst"}, 0));
    QVERIFY(RecentLists::saveSelections({63, 0, 3, 2, 31, 16, 1}, 2));
    QCOMPARE(RecentLists::loadFolders(Side::Source).folders, (QStringList{"/b", "/x,y"}));
    QCOMPARE(RecentLists::loadFolders(Side::Source).last, 1);
    QCOMPARE(RecentLists::loadFolders(Side::Destination).folders, QStringList{"/dst"});
    QCOMPARE(RecentLists::loadSelections().values, (QList<int>{63, 0, 3, 2, 31, 16}));
    QCOMPARE(RecentLists::loadSelections().last, 2);
    // Fewer sets later: the ones left over must not come back.
    QVERIFY(RecentLists::saveSelections({3, 2}, 0));
    QCOMPARE(RecentLists::loadSelections().values, (QList<int>{3, 2}));
}

void tst_RecentLists::foldersKeepSixAndClearTheRest() {
    QStringList seven;
    for (int i = 1; i <= 7; ++i)
        seven.append(QStringLiteral("/f%1").arg(i));
    QVERIFY(RecentLists::saveFolders(Side::Destination, seven, 0));
    QCOMPARE(RecentLists::loadFolders(Side::Destination).folders, seven.mid(0, 6));
    QVERIFY(!m_profile.raw().contains("Item7"));

    // A shorter list later must not let the older entries come back.
    QVERIFY(RecentLists::saveFolders(Side::Destination, {"/only"}, 0));
    QCOMPARE(RecentLists::loadFolders(Side::Destination).folders, QStringList{"/only"});
}

void tst_RecentLists::loadFolders_data() {
    QTest::addColumn<QByteArray>("section");
    QTest::addColumn<QStringList>("folders");
    QTest::addColumn<int>("last");
    QTest::newRow("gaps skipped") << QByteArray("Item2=/b\nItem5=/e\nLast=1\n")
                                  << QStringList{"/b", "/e"} << 1;
    QTest::newRow("seventh ignored")
        << QByteArray("Item1=/a\nItem7=/g\nLast=x\n") << QStringList{"/a"} << 0;
    QTest::newRow("megabyte path skipped")
        << "Item1=/" + QByteArray(1 << 20, 'a') + "\nItem2=/ok\nLast=-7\n"
        << QStringList{"/ok"} << -7;
}

void tst_RecentLists::loadFolders() {
    QFETCH(QByteArray, section);
    QFETCH(QStringList, folders);
    QFETCH(int, last);
    QVERIFY(m_profile.edit("[SourceMRU]\n" + section));
    const RecentLists::Folders loaded = RecentLists::loadFolders(Side::Source);
    QCOMPARE(loaded.folders, folders);
    QCOMPARE(loaded.last, last);
}

void tst_RecentLists::loadSelections_data() {
    QTest::addColumn<QByteArray>("section");
    QTest::addColumn<QList<int>>("values");
    QTest::newRow("empty slots") << QByteArray("Item1=-1\nItem2=5\nItem4=6\n") << QList<int>{5, 6};
    QTest::newRow("lenient") << QByteArray("Item1=3 sets\nItem2=abc\nItem3=2.5\n")
                             << QList<int>{3, 0, 2};
    QTest::newRow("no comparison set")
        << QByteArray("Item1=64\nItem2=-2\nItem3=99999999999\n") << QList<int>{};
}

void tst_RecentLists::loadSelections() {
    QFETCH(QByteArray, section);
    QFETCH(QList<int>, values);
    QVERIFY(m_profile.edit("[SelectionsMRU]\n" + section));
    QCOMPARE(RecentLists::loadSelections().values, values);
}

QTEST_GUILESS_MAIN(tst_RecentLists)
#include "tst_RecentLists.moc"
