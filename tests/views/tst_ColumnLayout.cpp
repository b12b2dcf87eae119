#include "settings/SettingsStore.h"
#include "support/TestProfile.h"
#include "views/ColumnLayout.h"
#include "views/ColumnPopup.h"
#include "views/LinkedListings.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace {

/** "#9 200, #1 200, ..." : the shown columns in display order with their widths. */
QString layout(const ListView &list) {
    QStringList parts;
    for (int created : list.ColumnOrder()) {
        const ColumnHeader *column = list.Column(created + 1);
        parts.append(column->Key() + QLatin1Char(' ') + QString::number(column->Width()));
    }
    return parts.join(QLatin1String(", "));
}

QString stored(const QString &key, bool isDestination = false) {
    return SettingsStore::text(isDestination ? QStringLiteral("DestLayout")
                                             : QStringLiteral("SourceLayout"),
                               key, QStringLiteral("<missing>"));
}

const QString DefaultLayout = QStringLiteral("#9 200, #1 200, #2 150, #3 75, #4 150, #5 125");

} // namespace

class tst_ColumnLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void firstStartShowsTheDefaults();
    void roundTrip();
    void hiddenColumnKeepsItsStoredWidth();
    void storedLayouts_data();
    void storedLayouts();
    void matchColumns();
    void popupCommands();
    void popupAppliesToTheClickedListOrBoth_data();
    void popupAppliesToTheClickedListOrBoth();
    void reShownColumnGetsTheDefaultWidth();

private:
    TestProfile m_profile;
};

void tst_ColumnLayout::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_ColumnLayout::init() {
    m_profile.clear();
}

void tst_ColumnLayout::firstStartShowsTheDefaults() {
    ListView list;
    ColumnLayout::LoadLayout(&list, false, false);
    QCOMPARE(layout(list), DefaultLayout);
    // Created in type order, whatever their display position.
    QCOMPARE(list.Column(1)->Key(), QStringLiteral("#1"));
    QCOMPARE(list.Column(6)->Key(), QStringLiteral("#9"));
    QCOMPARE(list.Column(3)->Alignment(), Qt::Alignment(Qt::AlignRight));
}

void tst_ColumnLayout::roundTrip() {
    ListView list;
    ColumnLayout::LoadLayout(&list, true, false);
    list.ColumnByKey(QStringLiteral("#3"))->setWidth(87.5f);
    list.ColumnByKey(QStringLiteral("#3"))->setPosition(0);
    list.AddColumn(QStringLiteral("#8"), QStringLiteral("Attributes"), 61);
    QVERIFY(ColumnLayout::SaveLayout(&list, true));
    QCOMPARE(stored(QStringLiteral("Width3"), true), QStringLiteral("87.5"));
    QCOMPARE(stored(QStringLiteral("Position3"), true), QStringLiteral("0"));
    QCOMPARE(stored(QStringLiteral("Position6"), true), QStringLiteral("-1"));
    QCOMPARE(stored(QStringLiteral("Width6"), true), QStringLiteral("<missing>"));
    // The source section is untouched.
    QCOMPARE(stored(QStringLiteral("Position3")), QStringLiteral("<missing>"));

    ListView again;
    ColumnLayout::LoadLayout(&again, true, false);
    QCOMPARE(layout(again), layout(list));
    QCOMPARE(layout(again),
             QStringLiteral("#3 87.5, #9 200, #1 200, #2 150, #4 150, #5 125, #8 61"));
}

void tst_ColumnLayout::hiddenColumnKeepsItsStoredWidth() {
    ListView list;
    ColumnLayout::LoadLayout(&list, false, false);
    list.ColumnByKey(QStringLiteral("#4"))->setWidth(99);
    QVERIFY(ColumnLayout::SaveLayout(&list, false));
    list.RemoveColumnAt(list.ColumnByKey(QStringLiteral("#4"))->Index());
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
        << QStringLiteral("#1 200, #2 150, #3 75, #4 150, #5 125");
    // Six columns shown: position 9 is out of range, so slot 2 keeps its 0 (which names
    // "Name", already placed) and "In Folder" follows the placed columns.
    QTest::newRow("out-of-range position skipped")
        << QStringList{"Position2", "9"}
        << QStringLiteral("#9 200, #1 200, #3 75, #4 150, #5 125, #2 150");
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
    QCOMPARE(layout(list), expected);
    // Defaults ignore the store.
    ColumnLayout::LoadLayout(&list, false, true);
    QCOMPARE(layout(list), DefaultLayout);
}

void tst_ColumnLayout::matchColumns() {
    ListView model;
    ListView other;
    ColumnLayout::LoadLayout(&model, false, true);
    model.AddColumn(QStringLiteral("#8"), QStringLiteral("Attributes"), 60);
    other.AddColumn(QStringLiteral("#2"), QStringLiteral("In Folder"), 150);
    other.AddColumn(QStringLiteral("#7"), QStringLiteral("Date Accessed"), 125);
    ColumnLayout::MatchColumns(&model, &other);
    // Copied columns get the type's default position as their width; a column the model
    // lacks is gone; a column both have keeps its width.
    QStringList columns;
    for (int i = 1; i <= other.ColumnCount(); ++i) {
        const ColumnHeader *column = other.Column(i);
        columns.append(column->Key() + QLatin1Char(' ') + QString::number(column->Width()));
    }
    QCOMPARE(columns, (QStringList{"#2 150", "#1 1", "#3 3", "#4 4", "#5 5", "#9 0", "#8 0"}));
    QCOMPARE(other.ColumnByKey(QStringLiteral("#3"))->Alignment(), Qt::Alignment(Qt::AlignRight));
}

void tst_ColumnLayout::popupCommands() {
    ListView source;
    ListView destination;
    LinkedListings listings(&source, &destination, nullptr);
    ColumnPopup popup(&listings, nullptr);
    ColumnLayout::LoadLayout(&source, false, true);
    QVERIFY(!popup.columnAction(1)->isEnabled());

    popup.Open(&source, QPoint());
    popup.showAllAction()->trigger();
    QCOMPARE(source.ColumnCount(), 9);
    popup.Open(&source, QPoint());
    popup.hideAllAction()->trigger();
    QCOMPARE(source.ColumnCount(), 1);
    QCOMPARE(source.Column(1)->Key(), QStringLiteral("#1"));

    // Reset Layout on the destination's header, unlinked: only that list gets the defaults.
    ColumnLayout::LoadLayout(&destination, true, true);
    destination.RemoveColumnAt(2);
    popup.Open(&destination, QPoint());
    popup.resetLayoutAction()->trigger();
    QCOMPARE(layout(destination), DefaultLayout);
    QCOMPARE(source.ColumnCount(), 1);
    popup.menu()->hide();
}

void tst_ColumnLayout::popupAppliesToTheClickedListOrBoth_data() {
    QTest::addColumn<bool>("linked");
    QTest::addColumn<int>("clicked");
    QTest::addColumn<QList<int>>("updated");
    QTest::newRow("linked, destination header") << true << 1 << QList<int>{0, 1};
    QTest::newRow("not linked, destination header") << false << 1 << QList<int>{1};
}

void tst_ColumnLayout::popupAppliesToTheClickedListOrBoth() {
    QFETCH(bool, linked);
    QFETCH(int, clicked);
    QFETCH(QList<int>, updated);
    ListView source;
    ListView destination;
    LinkedListings listings(&source, &destination, nullptr);
    listings.setLinked(linked);
    ColumnPopup popup(&listings, nullptr);
    QSignalSpy updates(&popup, &ColumnPopup::UpdateListView);
    ColumnLayout::LoadLayout(&source, false, true);
    ColumnLayout::LoadLayout(&destination, true, true);

    popup.Open(listings.list(clicked), QPoint());
    QVERIFY(popup.columnAction(6)->isEnabled());
    QVERIFY(!popup.columnAction(6)->isChecked());
    popup.columnAction(6)->trigger(); // shows "Date Created"
    QList<int> sides;
    for (const QList<QVariant> &signal : updates)
        sides.append(signal.at(0).toInt());
    QCOMPARE(sides, updated);
    for (int side = 0; side < 2; ++side) {
        const bool changed = updated.contains(side);
        QCOMPARE(listings.list(side)->ColumnByKey(QStringLiteral("#6")) != nullptr, changed);
    }
    popup.menu()->hide();
}

void tst_ColumnLayout::reShownColumnGetsTheDefaultWidth() {
    ListView source;
    ListView destination;
    LinkedListings listings(&source, &destination, nullptr);
    ColumnPopup popup(&listings, nullptr);
    ColumnLayout::LoadLayout(&source, false, true);
    source.ColumnByKey(QStringLiteral("#3"))->setWidth(40);
    QVERIFY(ColumnLayout::SaveLayout(&source, false));
    popup.Open(&source, QPoint());
    popup.columnAction(3)->trigger(); // hides Size
    QVERIFY(ColumnLayout::SaveLayout(&source, false));
    popup.Open(&source, QPoint());
    popup.columnAction(3)->trigger(); // shows it again
    const ColumnHeader *size = source.ColumnByKey(QStringLiteral("#3"));
    QCOMPARE(size->Width(), 75.0f);
    // Appended at the right end, left-aligned until the layout is loaded again.
    QCOMPARE(size->Position(), source.ColumnCount() - 1);
    QCOMPARE(size->Alignment(), Qt::Alignment(Qt::AlignLeft));
    QCOMPARE(stored(QStringLiteral("Width3")), QStringLiteral("40"));
    popup.menu()->hide();
}

QTEST_MAIN(tst_ColumnLayout)
#include "tst_ColumnLayout.moc"
