#include "views/PropertyError.h"
#include "views/Splitter.h"

#include <QMouseEvent>
#include <QStandardPaths>
#include <QTest>

#include <cmath>
#include <functional>

/** A container with two bound panes; the container is \a extent long on the split axis. */
struct SplitFixture {
    explicit SplitFixture(int orientation, int extent, int across = 100) {
        container.resize(orientation == Splitter::Horizontal ? QSize(across, extent)
                                                             : QSize(extent, across));
        splitter.setOrientation(orientation);
        splitter.setContainer(&container);
        splitter.Bind(first, second);
        container.show();
    }

    /** A mouse point at \a along on the split axis, in the container's coordinates. */
    QPoint at(int along) const {
        return splitter.Orientation() == Splitter::Horizontal ? QPoint(7, along) : QPoint(along, 7);
    }
    void down(int along) { splitter.MouseDown(Qt::LeftButton, {}, at(along).x(), at(along).y()); }
    void move(int along) { splitter.MouseMove(Qt::LeftButton, {}, at(along).x(), at(along).y()); }
    void up(int along) { splitter.MouseUp(Qt::LeftButton, {}, at(along).x(), at(along).y()); }
    void drag(int to) {
        down(splitter.Position());
        move(to);
        up(to);
    }

    QWidget container;
    QWidget *first = new QWidget;
    QWidget *second = new QWidget;
    Splitter splitter;
};

class tst_Splitter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void clamping_data();
    void clamping();
    void rejectedValues();
    void unchangedSplitterSizeDoesNotLayOut();
    void keepProportion_data();
    void keepProportion();
    void dragModes_data();
    void dragModes();
    void handleTakesTheMouse();
};

void tst_Splitter::initTestCase() {
    QStandardPaths::setTestModeEnabled(true);
}

void tst_Splitter::clamping_data() {
    QTest::addColumn<int>("orientation");
    QTest::addColumn<int>("extent");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("min0");
    QTest::addColumn<int>("min1");
    QTest::addColumn<int>("max0");
    QTest::addColumn<int>("max1");
    QTest::addColumn<int>("mouse");
    QTest::addColumn<int>("position");

    QTest::newRow("first minimum") << 1 << 400 << 4 << 8 << 8 << -1 << -1 << 3 << 8;
    QTest::newRow("container smaller than both minimums")
        << 1 << 100 << 4 << 60 << 60 << -1 << -1 << 50 << 60;
    QTest::newRow("first maximum") << 2 << 400 << 4 << 8 << 8 << 150 << -1 << 300 << 150;
    QTest::newRow("first maximum beats second maximum")
        << 2 << 400 << 4 << 8 << 8 << 200 << 100 << 100 << 200;
    QTest::newRow("second minimum beats first maximum")
        << 2 << 400 << 4 << 8 << 300 << 200 << -1 << 250 << 96;
    QTest::newRow("first minimum beats everything")
        << 2 << 400 << 4 << 80 << 8 << 50 << -1 << 200 << 80;
    QTest::newRow("no minimums, pointer past the end")
        << 1 << 400 << 4 << 0 << 0 << -1 << -1 << 900 << 400;
    QTest::newRow("zero maximum means none") << 2 << 400 << 4 << 8 << 8 << 0 << 0 << 390 << 388;
    QTest::newRow("thick bar") << 2 << 400 << 40 << 8 << 8 << -1 << -1 << 390 << 352;
}

void tst_Splitter::clamping() {
    QFETCH(int, orientation);
    QFETCH(int, extent);
    QFETCH(int, size);
    QFETCH(int, min0);
    QFETCH(int, min1);
    QFETCH(int, max0);
    QFETCH(int, max1);
    QFETCH(int, mouse);
    QFETCH(int, position);

    SplitFixture f(orientation, extent);
    f.splitter.setSplitterSize(size);
    f.splitter.setMinimumSize(0, min0);
    f.splitter.setMinimumSize(1, min1);
    f.splitter.setMaximumSize(0, max0);
    f.splitter.setMaximumSize(1, max1);
    f.splitter.setPosition(extent / 2);
    f.drag(mouse);
    QCOMPARE(f.splitter.Position(), position);
    QVERIFY(!f.splitter.isDragging());
    // The proportion follows the dropped position.
    QCOMPARE(std::lround(f.splitter.Proportion() * extent / 100.0f),
             std::clamp(position, 0, extent));
}

void tst_Splitter::rejectedValues() {
    Splitter splitter;
    const auto refused = [](const std::function<void()> &set) {
        try {
            set();
        } catch (const PropertyError &error) {
            return error.number() == 380 && error.source() == QLatin1String("pairscope.cSplitter");
        }
        return false;
    };
    QVERIFY(refused([&] { splitter.setProportion(-1); }));
    QVERIFY(refused([&] { splitter.setProportion(100.5f); }));
    QVERIFY(refused([&] { splitter.setProportion(std::nanf("")); }));
    QVERIFY(refused([&] { splitter.setSplitterSize(-1); }));
    QVERIFY(refused([&] { splitter.setOrientation(3); }));
    QVERIFY(refused([&] { splitter.setMinimumSize(2, 5); }));
    // A refused value keeps the old one; the limits themselves are accepted.
    QCOMPARE(splitter.Proportion(), 50.0f);
    QCOMPARE(splitter.SplitterSize(), 4);
    QCOMPARE(splitter.Orientation(), 1);
    QVERIFY(!refused([&] { splitter.setProportion(100); }));
    QVERIFY(!refused([&] { splitter.setSplitterSize(0); }));
    QVERIFY(!refused([&] { splitter.setOrientation(2); }));
    QCOMPARE(splitter.Proportion(), 100.0f);
}

void tst_Splitter::unchangedSplitterSizeDoesNotLayOut() {
    SplitFixture f(Splitter::Vertical, 400);
    const QRect moved(1, 2, 3, 4);
    f.first->setGeometry(moved);
    f.splitter.setSplitterSize(4);
    QCOMPARE(f.first->geometry(), moved);
    f.splitter.setSplitterSize(6);
    QCOMPARE(f.first->geometry(), QRect(0, 0, 128, 100));
    QCOMPARE(f.second->geometry(), QRect(134, 0, 266, 100));
}

void tst_Splitter::keepProportion_data() {
    QTest::addColumn<bool>("keep");
    QTest::addColumn<float>("proportion");
    QTest::addColumn<int>("newExtent");
    QTest::addColumn<int>("position");

    QTest::newRow("kept, growing") << true << 25.0f << 800 << 200;
    QTest::newRow("kept, clamped to the first minimum") << true << 1.0f << 300 << 8;
    QTest::newRow("kept, clamped to the second minimum") << true << 100.0f << 300 << 288;
    QTest::newRow("kept, rounded half to even") << true << 12.5f << 100 << 12;
    QTest::newRow("not kept") << false << 25.0f << 800 << 128;
}

void tst_Splitter::keepProportion() {
    QFETCH(bool, keep);
    QFETCH(float, proportion);
    QFETCH(int, newExtent);
    QFETCH(int, position);

    SplitFixture f(Splitter::Vertical, 400);
    f.splitter.setMinimumSize(0, 8);
    f.splitter.setMinimumSize(1, 8);
    f.splitter.setProportion(proportion);
    f.splitter.setKeepProportion(keep);
    f.container.resize(newExtent, 100);
    QCOMPARE(f.splitter.Position(), position);
    QCOMPARE(f.first->width(), std::min(position, newExtent));
}

void tst_Splitter::dragModes_data() {
    QTest::addColumn<bool>("fullDrag");
    QTest::newRow("full drag") << true;
    QTest::newRow("drag bar") << false;
}

void tst_Splitter::dragModes() {
    QFETCH(bool, fullDrag);
    SplitFixture f(Splitter::Horizontal, 400);
    f.splitter.setFullDrag(fullDrag);
    f.down(f.splitter.Position());
    QVERIFY(f.splitter.isDragging());
    QCOMPARE(f.splitter.isBarShown(), !fullDrag);

    f.move(300);
    QCOMPARE(f.splitter.Position(), 300);
    // Full drag moves the panes at once; the bar mode moves only the hatched bar.
    QCOMPARE(f.first->height(), fullDrag ? 300 : 128);
    QCOMPARE(f.splitter.isBarShown(), !fullDrag);
    if (!fullDrag) {
        const QWidget *bar = f.container.findChild<QWidget *>(QStringLiteral("splitterDragBar"));
        QVERIFY(bar);
        QCOMPARE(bar->geometry(), QRect(0, 300, 100, 4));
    }

    f.up(100);
    QVERIFY(!f.splitter.isDragging());
    QVERIFY(!f.splitter.isBarShown());
    QCOMPARE(f.first->height(), 100);
    QCOMPARE(f.second->geometry(), QRect(0, 104, 100, 296));
    QCOMPARE(f.splitter.Proportion(), 25.0f);
}

void tst_Splitter::handleTakesTheMouse() {
    SplitFixture f(Splitter::Vertical, 400);
    auto *handle = f.container.findChild<QWidget *>(QStringLiteral("splitterHandle"));
    QVERIFY(handle);
    QCOMPARE(handle->geometry(), f.splitter.barRect());
    QCOMPARE(handle->cursor().shape(), Qt::SplitHCursor);

    // Points are given in the container's coordinates: the handle moves during a full drag.
    const auto send = [&](QEvent::Type type, QPoint point, Qt::MouseButton button,
                          Qt::MouseButtons buttons) {
        const QPointF local = handle->mapFrom(&f.container, point);
        QMouseEvent event(type, local, handle->mapToGlobal(local), button, buttons, {});
        QCoreApplication::sendEvent(handle, &event);
    };
    send(QEvent::MouseButtonPress, QPoint(130, 50), Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, QPoint(68, 50), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(handle->x(), 68);
    send(QEvent::MouseButtonRelease, QPoint(70, 50), Qt::LeftButton, Qt::NoButton);
    QCOMPARE(f.splitter.Position(), 70);
    QCOMPARE(handle->geometry(), QRect(70, 0, 4, 100));

    f.splitter.setOrientation(Splitter::Horizontal);
    QCOMPARE(handle->cursor().shape(), Qt::SplitVCursor);
}

QTEST_MAIN(tst_Splitter)
#include "tst_Splitter.moc"
