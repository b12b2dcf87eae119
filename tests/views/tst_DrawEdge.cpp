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
    QList<QRect> rects;
    QList<int> modifiers;

protected:
    void drawSides(QPainter &painter, QRect &rect, int edge, int flags) override {
        calls << QStringLiteral("%1:%2").arg(edge).arg(flags & SideMask);
        rects << rect;
        modifiers << (flags & ~SideMask);
        DrawEdge::drawSides(painter, rect, edge, flags);
    }
};

/** A palette whose edge roles are told apart by their colour. */
QPalette markedPalette() {
    QPalette palette;
    palette.setColor(QPalette::Light, QColor(0xff, 0, 0));
    palette.setColor(QPalette::Midlight, QColor(0, 0xff, 0));
    palette.setColor(QPalette::Dark, QColor(0, 0, 0xff));
    palette.setColor(QPalette::Shadow, QColor(0xff, 0xff, 0));
    palette.setColor(QPalette::Button, QColor(0, 0xff, 0xff));
    palette.setColor(QPalette::WindowText, QColor(0x10, 0x10, 0x10));
    palette.setColor(QPalette::Base, QColor(0xfe, 0xfe, 0xfe));
    return palette;
}

const QColor untouched(0x80, 0x40, 0x20);

} // namespace

class tst_DrawEdge : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void defaults();
    void grouping_data();
    void grouping();
    void edgeProperty();
    void adjustShrinksTheSharedRectangle();
    void pictureBlendsTheEdgesIntoTheBackColour();
    void pixels_data();
    void pixels();
    void adjust_data();
    void adjust();
    void inactivePainter();
    void mousePointer();
};

void tst_DrawEdge::initTestCase() {
    QStandardPaths::setTestModeEnabled(true);
}

void tst_DrawEdge::defaults() {
    DrawEdge edge;
    QCOMPARE(edge.EdgeLeft(), 1);
    QCOMPARE(edge.EdgeTop(), 1);
    QCOMPARE(edge.EdgeRight(), 1);
    QCOMPARE(edge.EdgeBottom(), 1);
    QCOMPARE(edge.Edge(), 1);
    QCOMPARE(edge.Flags(), 0);
    QCOMPARE(edge.BackColor(), edge.palette().color(QPalette::Window));
    QCOMPARE(edge.MousePointer(), 0);
    QVERIFY(edge.MouseIcon().isNull());
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
    QTest::newRow("left=bottom") << 1 << 2 << 5 << 1 << "1:9,2:2,5:4";
    QTest::newRow("top=right=bottom") << 1 << 2 << 2 << 2 << "1:1,2:14";
    QTest::newRow("top=bottom, right apart") << 1 << 2 << 5 << 2 << "1:1,2:10,5:4";
    QTest::newRow("right=bottom") << 1 << 2 << 5 << 5 << "1:1,2:2,5:12";
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

    // Each side is set, and drawn, in the order left, top, right, bottom.
    edge.calls.clear();
    edge.setEdge(Etched);
    QCOMPARE(edge.calls.join(QLatin1Char(',')),
             QStringLiteral("6:1,5:2,10:12,6:3,10:12,6:7,10:8,6:15"));
    QCOMPARE(edge.Edge(), Etched);
}

void tst_DrawEdge::adjustShrinksTheSharedRectangle() {
    RecordingEdge edge;
    edge.resize(40, 20);
    edge.setFlags(Adjust);
    edge.setEdgeLeft(Raised);
    edge.setEdgeRight(Raised);
    edge.setEdgeTop(RaisedOuter);
    edge.setEdgeBottom(RaisedOuter);
    edge.rects.clear();
    edge.Refresh();
    // The two-line sides go first, so the one-line sides are drawn inside them.
    QCOMPARE(edge.rects, (QList<QRect>{QRect(0, 0, 40, 20), QRect(2, 0, 36, 20)}));
}

void tst_DrawEdge::pictureBlendsTheEdgesIntoTheBackColour() {
    DrawEdge edge;
    edge.setPalette(markedPalette());
    edge.setBackColor(QColor(0, 0, 0));
    edge.resize(20, 10);
    edge.setEdge(Raised);
    const QImage picture = edge.picture().toImage();
    QCOMPARE(picture.size(), QSize(20, 10));
    QCOMPARE(picture.pixelColor(5, 0), QColor(0, 0x7f, 0));     // midlight
    QCOMPARE(picture.pixelColor(5, 1), QColor(0x7f, 0, 0));     // light
    QCOMPARE(picture.pixelColor(19, 5), QColor(0x7f, 0x7f, 0)); // shadow
    QCOMPARE(picture.pixelColor(18, 5), QColor(0, 0, 0x7f));    // dark
    QCOMPARE(picture.pixelColor(5, 5), QColor(0, 0, 0));
}

void tst_DrawEdge::pixels_data() {
    QTest::addColumn<int>("edge");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("role"); // -1: left as it was

    const int L = QPalette::Light, M = QPalette::Midlight, D = QPalette::Dark, S = QPalette::Shadow,
              B = QPalette::Button;
    // The rectangle is 10 × 10 at the origin.
    QTest::newRow("raised outer, top") << RaisedOuter << Rect << QPoint(5, 0) << M;
    QTest::newRow("raised outer, top left") << RaisedOuter << Rect << QPoint(0, 0) << M;
    QTest::newRow("raised outer, top right") << RaisedOuter << Rect << QPoint(9, 0) << S;
    QTest::newRow("raised outer, bottom left") << RaisedOuter << Rect << QPoint(0, 9) << S;
    QTest::newRow("raised outer, one line") << RaisedOuter << Rect << QPoint(5, 1) << -1;
    QTest::newRow("sunken, outer top") << Sunken << Rect << QPoint(5, 0) << D;
    QTest::newRow("sunken, inner top") << Sunken << Rect << QPoint(5, 1) << S;
    QTest::newRow("sunken, outer bottom") << Sunken << Rect << QPoint(5, 9) << L;
    QTest::newRow("sunken, inner bottom") << Sunken << Rect << QPoint(5, 8) << M;
    QTest::newRow("raised, inner top") << Raised << Rect << QPoint(5, 1) << L;
    QTest::newRow("soft raised, outer top") << Raised << (Rect | Soft) << QPoint(5, 0) << L;
    QTest::newRow("soft raised, inner top") << Raised << (Rect | Soft) << QPoint(5, 1) << M;
    QTest::newRow("soft sunken, outer top") << Sunken << (Rect | Soft) << QPoint(5, 0) << S;
    QTest::newRow("etched, inner bottom") << Etched << Rect << QPoint(5, 8) << D;
    QTest::newRow("inner alone moves out") << RaisedInner << Rect << QPoint(5, 0) << L;
    QTest::newRow("both outer bits draw nothing") << 3 << Rect << QPoint(5, 0) << -1;
    QTest::newRow("flat, outer") << Raised << (Rect | Flat) << QPoint(5, 9) << D;
    QTest::newRow("flat, inner") << Raised << (Rect | Flat) << QPoint(5, 1) << B;
    QTest::newRow("mono") << Raised << (Rect | Mono) << QPoint(0, 5) << int(QPalette::WindowText);
    QTest::newRow("middle filled") << Raised << (Rect | Middle) << QPoint(5, 5) << B;
    QTest::newRow("left side only, top untouched") << RaisedOuter << Left << QPoint(5, 0) << -1;
    QTest::newRow("left side only, corner") << RaisedOuter << Left << QPoint(0, 9) << M;
    QTest::newRow("left only, inner line at the top") << Raised << Left << QPoint(1, 0) << L;
    QTest::newRow("diagonal to top right, start")
        << RaisedOuter << (Diagonal | Top | Right) << QPoint(0, 9) << M;
    QTest::newRow("diagonal to bottom right, middle")
        << RaisedOuter << (Diagonal | Bottom | Right) << QPoint(5, 5) << S;
    QTest::newRow("diagonal, off the line")
        << RaisedOuter << (Diagonal | Bottom | Right) << QPoint(8, 1) << -1;
}

void tst_DrawEdge::pixels() {
    QFETCH(int, edge);
    QFETCH(int, flags);
    QFETCH(QPoint, point);
    QFETCH(int, role);

    const QPalette palette = markedPalette();
    QImage image(10, 10, QImage::Format_RGB32);
    image.fill(untouched);
    QPainter painter(&image);
    QRect rect(0, 0, 10, 10);
    QVERIFY(drawEdge(painter, rect, edge, flags, palette));
    painter.end();
    const QColor expected = role < 0 ? untouched : palette.color(QPalette::ColorRole(role));
    QCOMPARE(image.pixelColor(point), expected);
}

void tst_DrawEdge::adjust_data() {
    QTest::addColumn<int>("edge");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QRect>("after");

    QTest::newRow("two lines all round") << Raised << (Rect | Adjust) << QRect(2, 2, 6, 6);
    QTest::newRow("one line all round") << SunkenOuter << (Rect | Adjust) << QRect(1, 1, 8, 8);
    QTest::newRow("left only") << Raised << (Left | Adjust) << QRect(2, 0, 8, 10);
    QTest::newRow("bottom and right") << Etched << (Bottom | Right | Adjust) << QRect(0, 0, 8, 8);
    QTest::newRow("flat") << Raised << (Rect | Flat | Adjust) << QRect(2, 2, 6, 6);
    QTest::newRow("without adjust") << Raised << Rect << QRect(0, 0, 10, 10);
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

void tst_DrawEdge::inactivePainter() {
    QPainter painter;
    QRect rect(0, 0, 10, 10);
    QVERIFY(!drawEdge(painter, rect, Raised, Rect | Adjust));
    QCOMPARE(rect, QRect(0, 0, 10, 10));
}

void tst_DrawEdge::mousePointer() {
    // A child, because a window never drops its cursor.
    QWidget window;
    DrawEdge &edge = *new DrawEdge(&window);
    edge.setMousePointer(11);
    QCOMPARE(edge.cursor().shape(), Qt::WaitCursor);
    QVERIFY(edge.testAttribute(Qt::WA_SetCursor));
    QPixmap icon(16, 16);
    icon.fill(Qt::red);
    edge.setMouseIcon(icon);
    edge.setMousePointer(DrawEdge::CustomPointer);
    QCOMPARE(edge.cursor().shape(), Qt::BitmapCursor);
    edge.setMousePointer(0);
    QVERIFY(!edge.testAttribute(Qt::WA_SetCursor));
    QVERIFY_THROWS_EXCEPTION(PropertyError, edge.setMousePointer(16));
    QCOMPARE(edge.MousePointer(), 0);
}

QTEST_MAIN(tst_DrawEdge)
#include "tst_DrawEdge.moc"
