#include "settings/RecentLists.h"
#include "support/TestProfile.h"

#include <QTest>

using RecentLists::Side;

class tst_RecentLists : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(m_profile.isValid()); }
    void init() { m_profile.clear(); }
    void savedListsReadBack() {
        // Each list in a section of its own, a comma in a path kept whole, six kept of seven.
        const QStringList seven{"/1", "/x,y", "/3", "/4", "/5", "/6", "/7"};
        QVERIFY(RecentLists::saveFolders(Side::Source, seven, 1));
        QVERIFY(RecentLists::saveFolders(Side::Destination, {"/dst"}, 0));
        QVERIFY(RecentLists::saveSelections({63, 0, 3, 2, 31, 16, 1}, 2));
        QCOMPARE(RecentLists::loadFolders(Side::Source).folders, seven.mid(0, 6));
        QCOMPARE(RecentLists::loadFolders(Side::Source).last, 1);
        QCOMPARE(RecentLists::loadFolders(Side::Destination).folders, QStringList{"/dst"});
        QCOMPARE(RecentLists::loadSelections().values, (QList<int>{63, 0, 3, 2, 31, 16}));
        QCOMPARE(RecentLists::loadSelections().last, 2);
        QVERIFY(!m_profile.raw().contains("Item7"));
        // Shorter lists later: the entries left over must not come back.
        QVERIFY(RecentLists::saveFolders(Side::Source, {"/only"}, 0));
        QVERIFY(RecentLists::saveSelections({3, 2}, 0));
        QCOMPARE(RecentLists::loadFolders(Side::Source).folders, QStringList{"/only"});
        QCOMPARE(RecentLists::loadSelections().values, (QList<int>{3, 2}));
    }
    void handEditedLists_data() {
        QTest::addColumn<QByteArray>("folders"); // the source list's section
        QTest::addColumn<QByteArray>("selections");
        QTest::addColumn<QStringList>("loadedFolders");
        QTest::addColumn<int>("last");
        QTest::addColumn<QList<int>>("loadedSelections");
        QTest::newRow("gaps and empty slots skipped")
            << QByteArray("Item2=/b\nItem5=/e\nLast=1\n")
            << QByteArray("Item1=-1\nItem2=5\nItem4=6\n") << QStringList{"/b", "/e"} << 1
            << QList<int>{5, 6};
        QTest::newRow("seventh ignored, numbers read leniently")
            << QByteArray("Item1=/a\nItem7=/g\nLast=x\n")
            << QByteArray("Item1=3 sets\nItem2=abc\nItem3=2.5\n") << QStringList{"/a"} << 0
            << QList<int>{3, 0, 2};
        QTest::newRow("megabyte path, no comparison set")
            << "Item1=/" + QByteArray(1 << 20, 'a') + "\nItem2=/ok\nLast=-7\n"
            << QByteArray("Item1=64\nItem2=-2\nItem3=99999999999\n") << QStringList{"/ok"} << -7
            << QList<int>{};
    }
    void handEditedLists() {
        QFETCH(QByteArray, folders);
        QFETCH(QByteArray, selections);
        QVERIFY(m_profile.edit("[SourceMRU]\n" + folders + "[SelectionsMRU]\n" + selections));
        const RecentLists::Folders loaded = RecentLists::loadFolders(Side::Source);
        QTEST(loaded.folders, "loadedFolders");
        QTEST(loaded.last, "last");
        QTEST(RecentLists::loadSelections().values, "loadedSelections");
    }

private:
    TestProfile m_profile;
};

QTEST_GUILESS_MAIN(tst_RecentLists)
#include "tst_RecentLists.moc"
