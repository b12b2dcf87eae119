#include "views/PropertyError.h"
#include "views/Splitter.h"

#include <QMouseEvent>
#include <QStandardPaths>
#include <QTest>

#include <cmath>
#include <memory>

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
    void initialValues();
    void clamping_data();
    void clamping();
    void layout_data();
    void layout();
    void rejectedValues_data();
    void rejectedValues();
    void unchangedSplitterSizeDoesNotLayOut();
    void keepProportion_data();
    void keepProportion();
    void dragModes_data();
    void dragModes();
    void cancelledDrag();
    void interruptedDragLeavesNoBar_data();
    void interruptedDragLeavesNoBar();
    void handleTakesTheMouse();
};

void tst_Splitter::initTestCase() {
    QStandardPaths::setTestModeEnabled(true);
}

void tst_Splitter::initialValues() {
    Splitter splitter;
    QCOMPARE(splitter.FullDrag(), true);
    QCOMPARE(splitter.Orientation(), 1);
    QCOMPARE(splitter.Proportion(), 50.0f);
    QCOMPARE(splitter.Position(), 128);
    QCOMPARE(splitter.KeepProportion(), false);
    QCOMPARE(splitter.SplitterSize(), 4);
    QCOMPARE(splitter.MinimumSize(0), 8);
    QCOMPARE(splitter.MinimumSize(1), 8);
    QCOMPARE(splitter.MaximumSize(0), -1);
    QCOMPARE(splitter.MaximumSize(1), -1);
    QCOMPARE(splitter.Container(), nullptr);
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

    QTest::newRow("free") << 1 << 400 << 4 << 8 << 8 << -1 << -1 << 200 << 200;
    QTest::newRow("first minimum") << 1 << 400 << 4 << 8 << 8 << -1 << -1 << 3 << 8;
    QTest::newRow("second minimum") << 1 << 400 << 4 << 8 << 8 << -1 << -1 << 395 << 388;
    QTest::newRow("container smaller than both minimums")
        << 1 << 100 << 4 << 60 << 60 << -1 << -1 << 50 << 60;
    QTest::newRow("first maximum") << 2 << 400 << 4 << 8 << 8 << 150 << -1 << 300 << 150;
    QTest::newRow("second maximum") << 2 << 400 << 4 << 8 << 8 << -1 << 100 << 100 << 296;
    QTest::newRow("first maximum beats second maximum")
        << 2 << 400 << 4 << 8 << 8 << 200 << 100 << 100 << 200;
    QTest::newRow("second minimum beats first maximum")
        << 2 << 400 << 4 << 8 << 300 << 200 << -1 << 250 << 96;
    QTest::newRow("first minimum beats everything")
        << 2 << 400 << 4 << 80 << 8 << 50 << -1 << 200 << 80;
    QTest::newRow("no minimums, pointer before the start")
        << 1 << 400 << 4 << 0 << 0 << -1 << -1 << -40 << 0;
    QTest::newRow("no minimums, pointer past the end")
        << 1 << 400 << 4 << 0 << 0 << -1 << -1 << 900 << 400;
    QTest::newRow("negative minimum means none") << 2 << 400 << 4 << -5 << 8 << -1 << -1 << 2 << 2;
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

void tst_Splitter::layout_data() {
    QTest::addColumn<int>("orientation");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("margin");
    QTest::addColumn<QRect>("first");
    QTest::addColumn<QRect>("second");
    QTest::addColumn<QRect>("bar");

    // The container is 300 wide and 200 high; the bar is 4 thick.
    QTest::newRow("stacked") << 1 << 50 << 0 << QRect(0, 0, 300, 50) << QRect(0, 54, 300, 146)
                             << QRect(0, 50, 300, 4);
    QTest::newRow("side by side") << 2 << 50 << 0 << QRect(0, 0, 50, 200) << QRect(54, 0, 246, 200)
                                  << QRect(50, 0, 4, 200);
    QTest::newRow("inside a margin") << 2 << 50 << 10 << QRect(10, 10, 50, 180)
                                     << QRect(64, 10, 226, 180) << QRect(60, 10, 4, 180);
    QTest::newRow("position past the end") << 1 << 1000 << 0 << QRect(0, 0, 300, 200)
                                           << QRect(0, 200, 300, 0) << QRect(0, 1000, 300, 4);
    QTest::newRow("negative position")
        << 2 << -30 << 0 << QRect(0, 0, 0, 200) << QRect(0, 0, 300, 200) << QRect(-30, 0, 4, 200);
}

void tst_Splitter::layout() {
    QFETCH(int, orientation);
    QFETCH(int, position);
    QFETCH(int, margin);
    QFETCH(QRect, first);
    QFETCH(QRect, second);
    QFETCH(QRect, bar);

    QWidget container;
    container.setContentsMargins(margin, margin, margin, margin);
    container.resize(300, 200);
    auto *one = new QWidget(&container);
    auto *two = new QWidget(&container);
    Splitter splitter;
    splitter.setOrientation(orientation);
    splitter.setContainer(&container);
    splitter.Bind(one, two);
    splitter.setPosition(position);
    QCOMPARE(one->geometry(), first);
    QCOMPARE(two->geometry(), second);
    QCOMPARE(splitter.barRect(), bar);
}

void tst_Splitter::rejectedValues_data() {
    QTest::addColumn<QString>("property");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("proportion -1") << "Proportion" << -1.0 << false;
    QTest::newRow("proportion 0") << "Proportion" << 0.0 << true;
    QTest::newRow("proportion 100") << "Proportion" << 100.0 << true;
    QTest::newRow("proportion 100.5") << "Proportion" << 100.5 << false;
    QTest::newRow("proportion NaN") << "Proportion" << std::nan("") << false;
    QTest::newRow("size -1") << "SplitterSize" << -1.0 << false;
    QTest::newRow("size 0") << "SplitterSize" << 0.0 << true;
    QTest::newRow("orientation 0") << "Orientation" << 0.0 << false;
    QTest::newRow("orientation 2") << "Orientation" << 2.0 << true;
    QTest::newRow("orientation 3") << "Orientation" << 3.0 << false;
    QTest::newRow("minimum of pane 2") << "MinimumSize(2)" << 5.0 << false;
    QTest::newRow("maximum of pane -1") << "MaximumSize(-1)" << 5.0 << false;
}

void tst_Splitter::rejectedValues() {
    QFETCH(QString, property);
    QFETCH(double, value);
    QFETCH(bool, accepted);

    Splitter splitter;
    const auto read = [&] {
        if (property == QLatin1String("Proportion"))
            return double(splitter.Proportion());
        if (property == QLatin1String("SplitterSize"))
            return double(splitter.SplitterSize());
        if (property == QLatin1String("Orientation"))
            return double(splitter.Orientation());
        return 0.0;
    };
    const double before = read();
    try {
        if (property == QLatin1String("Proportion"))
            splitter.setProportion(float(value));
        else if (property == QLatin1String("SplitterSize"))
            splitter.setSplitterSize(int(value));
        else if (property == QLatin1String("Orientation"))
            splitter.setOrientation(int(value));
        else if (property == QLatin1String("MinimumSize(2)"))
            splitter.setMinimumSize(2, int(value));
        else
            splitter.setMaximumSize(-1, int(value));
        QVERIFY2(accepted, "the value should have been refused");
        QCOMPARE(read(), property.startsWith(QLatin1Char('P')) ? value : std::floor(value));
    } catch (const PropertyError &error) {
        QVERIFY2(!accepted, "the value should have been accepted");
        QCOMPARE(error.number(), 380);
        QCOMPARE(error.source(), QStringLiteral("pairscope.cSplitter"));
        QCOMPARE(read(), before);
    }
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
    QTest::newRow("kept, shrinking") << true << 25.0f << 200 << 50;
    QTest::newRow("kept, clamped to the first minimum") << true << 1.0f << 300 << 8;
    QTest::newRow("kept, clamped to the second minimum") << true << 100.0f << 300 << 288;
    QTest::newRow("kept, rounded half to even") << true << 12.5f << 100 << 12;
    QTest::newRow("not kept") << false << 25.0f << 800 << 128;
    QTest::newRow("not kept, not clamped either") << false << 25.0f << 100 << 128;
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

void tst_Splitter::cancelledDrag() {
    SplitFixture f(Splitter::Vertical, 400);
    QPoint reported;
    bool refuse = true;
    QObject::connect(&f.splitter, &Splitter::DragStarting, &f.splitter,
                     [&](bool &cancel, int x, int y) {
                         reported = QPoint(x, y);
                         cancel = refuse;
                     });
    f.down(130);
    QCOMPARE(reported, QPoint(130, 7));
    QVERIFY(!f.splitter.isDragging());
    f.move(300);
    f.up(300);
    QCOMPARE(f.splitter.Position(), 128);

    // Only the left button drags.
    refuse = false;
    f.splitter.MouseDown(Qt::RightButton, {}, 130, 7);
    QVERIFY(!f.splitter.isDragging());
    f.down(130);
    QVERIFY(f.splitter.isDragging());
}

void tst_Splitter::interruptedDragLeavesNoBar_data() {
    QTest::addColumn<bool>("byHiding");
    QTest::newRow("container hidden") << true;
    QTest::newRow("button released elsewhere") << false;
}

void tst_Splitter::interruptedDragLeavesNoBar() {
    QFETCH(bool, byHiding);
    SplitFixture f(Splitter::Vertical, 400);
    f.splitter.setFullDrag(false);
    f.down(130);
    f.move(250);
    QVERIFY(f.splitter.isBarShown());
    if (byHiding)
        f.container.hide();
    else
        f.splitter.MouseMove(Qt::NoButton, {}, 260, 7);
    QVERIFY(!f.splitter.isDragging());
    QVERIFY(!f.splitter.isBarShown());
    // The drag ends where the bar was last drawn.
    QCOMPARE(f.first->width(), 250);
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
