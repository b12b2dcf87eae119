#include "settings/SettingsStore.h"
#include "support/TestProfile.h"
#include "views/ColumnLayout.h"
#include "views/ColumnPopup.h"
#include "views/FileListModel.h"
#include "views/LinkedListings.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <QAction>
#include <QHeaderView>
#include <QMenu>
#include <QTest>

namespace {

/** "#9 200, #1 200, ..." : the shown columns in display order with their widths. */
QString layout(const ListView &list) {
    QStringList parts;
    const QHeaderView *header = list.header();
    for (int visual = 0; visual < header->count(); ++visual) {
        const int logical = header->logicalIndex(visual);
        if (!header->isSectionHidden(logical))
            parts.append(QStringLiteral("#%1 %2")
                             .arg(FileListModel::typeOf(logical))
                             .arg(header->sectionSize(logical)));
    }
    return parts.join(QLatin1String(", "));
}

QString stored(const QString &key, bool isDestination = false) {
    return SettingsStore::text(isDestination ? QStringLiteral("DestLayout")
                                             : QStringLiteral("SourceLayout"),
                               key, QStringLiteral("<missing>"));
}

/**
 * \a text with every "<n>" replaced by the designed width n as a listing's default width:
 * scaled to the list's font.
 */
QString scaled(QString text) {
    const ListView list;
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        text.replace(
            QStringLiteral("#%1 <%2>").arg(type).arg(DefaultColumnWidth(type)),
            QStringLiteral("#%1 %2").arg(type).arg(ColumnLayout::DefaultWidth(&list, type)));
    }
    return text;
}

const QString DefaultLayout =
    QStringLiteral("#9 <200>, #1 <200>, #2 <150>, #3 <75>, #4 <150>, #5 <125>");

/** Two listings, their coupling and the header menu over them. */
struct Lists {
    Lists() {
        for (int side = 0; side < 2; ++side)
            ColumnLayout::LoadLayout(lists[side], side == 1, true);
    }
    ListView source;
    ListView destination;
    std::array<ListView *, 2> lists{&source, &destination};
    LinkedListings listings{&source, &destination, nullptr};
    ColumnPopup popup{&listings, nullptr};
};

} // namespace

class tst_ColumnLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void roundTrip();
    void hiddenColumnKeepsItsStoredWidth();
    void storedLayouts_data();
    void storedLayouts();
    void matchColumns();
    void popupCommands();
    void popupAppliesToTheClickedListOrBoth_data();
    void popupAppliesToTheClickedListOrBoth();
    void reShownColumnGoesRightWithTheDefaultWidth();
    void defaultWidthsFitTheirTexts_data();
    void defaultWidthsFitTheirTexts();

private:
    TestProfile m_profile;
};

void tst_ColumnLayout::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_ColumnLayout::init() {
    m_profile.clear();
}

void tst_ColumnLayout::roundTrip() {
    ListView list;
    ColumnLayout::LoadLayout(&list, true, false);
    QHeaderView *header = list.header();
    header->resizeSection(FileListModel::columnOf(3), 87);
    header->moveSection(header->visualIndex(FileListModel::columnOf(3)), 0);
    ColumnLayout::ShowColumn(&list, 8, 61);
    QVERIFY(ColumnLayout::SaveLayout(&list, true));
    QCOMPARE(stored(QStringLiteral("Width3"), true), QStringLiteral("87"));
    QCOMPARE(stored(QStringLiteral("Position3"), true), QStringLiteral("0"));
    QCOMPARE(stored(QStringLiteral("Position8"), true), QStringLiteral("6"));
    QCOMPARE(stored(QStringLiteral("Position6"), true), QStringLiteral("-1"));
    QCOMPARE(stored(QStringLiteral("Width6"), true), QStringLiteral("<missing>"));
    // The source section is untouched.
    QCOMPARE(stored(QStringLiteral("Position3")), QStringLiteral("<missing>"));

    ListView again;
    ColumnLayout::LoadLayout(&again, true, false);
    QCOMPARE(layout(again), scaled(QStringLiteral(
                                "#3 87, #9 <200>, #1 <200>, #2 <150>, #4 <150>, #5 <125>, #8 61")));
}

void tst_ColumnLayout::hiddenColumnKeepsItsStoredWidth() {
    ListView list;
    ColumnLayout::LoadLayout(&list, false, false);
    list.header()->resizeSection(FileListModel::columnOf(4), 99);
    QVERIFY(ColumnLayout::SaveLayout(&list, false));
    list.setColumnHidden(FileListModel::columnOf(4), true);
    QVERIFY(ColumnLayout::SaveLayout(&list, false));
    QCOMPARE(stored(QStringLiteral("Position4")), QStringLiteral("-1"));
    QCOMPARE(stored(QStringLiteral("Width4")), QStringLiteral("99"));
}

void tst_ColumnLayout::storedLayouts_data() {
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QString>("expected");
    QTest::newRow("nothing stored") << QStringList{} << DefaultLayout;
    QTest::newRow("hidden by default, shown by the store")
        << QStringList{"Position7", "6", "Width7", "33"} << DefaultLayout + ", #7 33";
    QTest::newRow("shown by default, hidden by the store")
        << QStringList{"Position9", "-1"}
        << QStringLiteral("#1 <200>, #2 <150>, #3 <75>, #4 <150>, #5 <125>");
    QTest::newRow("position that is not a number hides")
        << QStringList{"Position4", "left"}
        << QStringLiteral("#9 <200>, #1 <200>, #2 <150>, #3 <75>, #5 <125>");
    // Six columns shown: position 9 is out of range, so "In Folder" follows the placed ones.
    QTest::newRow("out-of-range position skipped")
        << QStringList{"Position2", "9"}
        << QStringLiteral("#9 <200>, #1 <200>, #3 <75>, #4 <150>, #5 <125>, #2 <150>");
    QTest::newRow("width that is not a number gives the default")
        << QStringList{"Width3", "wide"} << DefaultLayout;
}

void tst_ColumnLayout::storedLayouts() {
    QFETCH(QStringList, entries);
    QFETCH(QString, expected);
    for (qsizetype i = 0; i + 1 < entries.size(); i += 2)
        QVERIFY(SettingsStore::write(QStringLiteral("SourceLayout"), entries[i], entries[i + 1]));
    ListView list;
    ColumnLayout::LoadLayout(&list, false, false);
    QCOMPARE(layout(list), scaled(expected));
    // Defaults ignore the store.
    ColumnLayout::LoadLayout(&list, false, true);
    QCOMPARE(layout(list), scaled(DefaultLayout));
}

void tst_ColumnLayout::matchColumns() {
    Lists l;
    ColumnLayout::ShowColumn(&l.source, 8, 60);
    l.destination.setColumnHidden(FileListModel::columnOf(1), true);
    l.destination.setColumnHidden(FileListModel::columnOf(3), true);
    ColumnLayout::ShowColumn(&l.destination, 7, 125);
    ColumnLayout::MatchColumns(&l.source, &l.destination);
    // Copied columns arrive at the right end as narrow as their default position says, but
    // never too narrow to grab; a column the model lacks is gone; the others keep their width.
    const int narrowest = l.destination.header()->minimumSectionSize();
    QCOMPARE(layout(l.destination),
             scaled(QStringLiteral("#9 <200>, #2 <150>, #4 <150>, #5 <125>, #1 %1, #3 %1, #8 %1"))
                 .arg(narrowest));
}

void tst_ColumnLayout::popupCommands() {
    Lists l;
    QVERIFY(!l.popup.columnAction(1)->isEnabled());
    l.popup.Open(&l.source, QPoint());
    l.popup.showAllAction()->trigger();
    QCOMPARE(l.source.shownCount(), 9);
    l.popup.Open(&l.source, QPoint());
    l.popup.hideAllAction()->trigger();
    QCOMPARE(layout(l.source), scaled(QStringLiteral("#1 <200>")));
    // Reset Layout on the destination's header, unlinked: only that list gets the defaults.
    l.destination.setColumnHidden(FileListModel::columnOf(2), true);
    l.popup.Open(&l.destination, QPoint());
    QVERIFY(!l.popup.columnAction(2)->isChecked());
    l.popup.resetLayoutAction()->trigger();
    QCOMPARE(layout(l.destination), scaled(DefaultLayout));
    QCOMPARE(layout(l.source), scaled(QStringLiteral("#1 <200>")));
    l.popup.menu()->hide();
}

void tst_ColumnLayout::popupAppliesToTheClickedListOrBoth_data() {
    QTest::addColumn<bool>("linked");
    QTest::addColumn<QList<bool>>("changed");
    QTest::newRow("linked, destination header") << true << QList<bool>{true, true};
    QTest::newRow("not linked, destination header") << false << QList<bool>{false, true};
}

void tst_ColumnLayout::popupAppliesToTheClickedListOrBoth() {
    QFETCH(bool, linked);
    QFETCH(QList<bool>, changed);
    Lists l;
    l.listings.setLinked(linked);
    l.popup.Open(&l.destination, QPoint());
    QVERIFY(l.popup.columnAction(6)->isEnabled());
    QVERIFY(!l.popup.columnAction(6)->isChecked());
    l.popup.columnAction(6)->trigger(); // shows "Date Created"
    for (int side = 0; side < 2; ++side)
        QCOMPARE(!l.lists[side]->isColumnHidden(FileListModel::columnOf(6)), changed[side]);
    l.popup.menu()->hide();
}

void tst_ColumnLayout::reShownColumnGoesRightWithTheDefaultWidth() {
    Lists l;
    l.source.header()->resizeSection(FileListModel::columnOf(3), 40);
    l.popup.Open(&l.source, QPoint());
    l.popup.columnAction(3)->trigger(); // hides Size
    QVERIFY(ColumnLayout::SaveLayout(&l.source, false));
    QCOMPARE(stored(QStringLiteral("Width3")), QStringLiteral("<missing>"));
    l.popup.Open(&l.source, QPoint());
    l.popup.columnAction(3)->trigger(); // shows it again
    QCOMPARE(layout(l.source),
             scaled(QStringLiteral("#9 <200>, #1 <200>, #2 <150>, #4 <150>, #5 <125>, #3 <75>")));
    l.popup.menu()->hide();
}

void tst_ColumnLayout::defaultWidthsFitTheirTexts_data() {
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("pointSize");
    QTest::newRow("size") << 3 << "2,000 bytes" << 9;
    QTest::newRow("date, larger font") << 5 << "24 Nov 2026 03:37:12" << 11;
    QTest::newRow("type") << 4 << "plain text document" << 9;
}

void tst_ColumnLayout::defaultWidthsFitTheirTexts() {
    QFETCH(int, type);
    QFETCH(QString, text);
    QFETCH(int, pointSize);
    ListView list;
    QFont font = list.font();
    font.setPointSize(pointSize);
    list.setFont(font);
    ColumnLayout::LoadLayout(&list, false, true);
    QVERIFY(list.fontMetrics().horizontalAdvance(text) <
            list.header()->sectionSize(FileListModel::columnOf(type)));
}

QTEST_MAIN(tst_ColumnLayout)
#include "tst_ColumnLayout.moc"
