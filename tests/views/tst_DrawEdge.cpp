#include "views/DrawEdge.h"
#include "views/EdgeStyle.h"
#include "views/PropertyError.h"

#include <QImage>
#include <QPainter>
#include <QStandardPaths>
#include <QTest>

using namespace EdgeStyle;

namespace {

/** Records every group of sides the repaint draws, as "style:sides" with the rectangle. */
class RecordingEdge : public DrawEdge {
public:
    QStringList calls;
    QList<int> modifiers;

protected:
    void drawSides(QPainter &painter, QRect &rect, int edge, int flags) override {
        calls << QStringLiteral("%1:%2").arg(edge).arg(flags & SideMask);
        modifiers << (flags & ~SideMask);
        DrawEdge::drawSides(painter, rect, edge, flags);
    }
};

} // namespace

class tst_DrawEdge : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void grouping_data();
    void grouping();
    void edgeProperty();
    void adjust_data();
    void adjust();
};

void tst_DrawEdge::initTestCase() {
    QStandardPaths::setTestModeEnabled(true);
}

void tst_DrawEdge::grouping_data() {
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("top");
    QTest::addColumn<int>("right");
    QTest::addColumn<int>("bottom");
    QTest::addColumn<QString>("calls");

    QTest::newRow("all equal") << 1 << 1 << 1 << 1 << "1:15";
    QTest::newRow("left=right, top=bottom") << 5 << 10 << 5 << 10 << "5:5,10:10";
    QTest::newRow("all different") << 1 << 2 << 5 << 10 << "1:1,2:2,5:4,10:8";
    QTest::newRow("left=top, right=bottom") << 6 << 6 << 9 << 9 << "6:3,9:12";
    QTest::newRow("top=right=bottom") << 1 << 2 << 2 << 2 << "1:1,2:14";
    QTest::newRow("only bottom apart") << 6 << 6 << 6 << 9 << "6:7,9:8";
}

void tst_DrawEdge::grouping() {
    QFETCH(int, left);
    QFETCH(int, top);
    QFETCH(int, right);
    QFETCH(int, bottom);
    QFETCH(QString, calls);

    RecordingEdge edge;
    edge.resize(40, 20);
    edge.setFlags(Soft | Top);
    edge.setEdgeLeft(left);
    edge.setEdgeTop(top);
    edge.setEdgeRight(right);
    edge.setEdgeBottom(bottom);
    edge.calls.clear();
    edge.modifiers.clear();
    edge.Refresh();
    QCOMPARE(edge.calls.join(QLatin1Char(',')), calls);
    // The modifiers reach every call; side bits in Flags never add a side.
    for (int modifier : edge.modifiers)
        QCOMPARE(modifier, Soft);
}

void tst_DrawEdge::edgeProperty() {
    RecordingEdge edge;
    edge.setEdge(Sunken);
    QCOMPARE(edge.Edge(), Sunken);
    QCOMPARE(edge.EdgeBottom(), Sunken);
    edge.setEdgeTop(Raised);
    QCOMPARE(edge.Edge(), -1);
    QCOMPARE(edge.EdgeLeft(), Sunken);
    edge.setEdge(Etched);
    QCOMPARE(edge.Edge(), Etched);
}

void tst_DrawEdge::adjust_data() {
    QTest::addColumn<int>("edge");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QRect>("after");

    QTest::newRow("two lines all round") << Raised << (Rect | Adjust) << QRect(2, 2, 6, 6);
    QTest::newRow("left only") << Raised << (Left | Adjust) << QRect(2, 0, 8, 10);
    QTest::newRow("bottom and right") << Etched << (Bottom | Right | Adjust) << QRect(0, 0, 8, 8);
    QTest::newRow("diagonal never adjusts")
        << Raised << (Diagonal | Top | Left | Adjust) << QRect(0, 0, 10, 10);
}

void tst_DrawEdge::adjust() {
    QFETCH(int, edge);
    QFETCH(int, flags);
    QFETCH(QRect, after);

    QImage image(10, 10, QImage::Format_RGB32);
    QPainter painter(&image);
    QRect rect(0, 0, 10, 10);
    drawEdge(painter, rect, edge, flags);
    QCOMPARE(rect, after);
}

QTEST_MAIN(tst_DrawEdge)
#include "tst_DrawEdge.moc"
