#include "reports/CompareReport.h"
#include "reports/HtmlReport.h"
#include "reports/NameEscaping.h"
#include "reports/OutputStream.h"
#include "reports/PairCollection.h"

#include "engine/CompareSession.h"
#include "support/TestTree.h"

#include <QBuffer>
#include <QLocale>
#include <QMap>
#include <QTest>
#include <QXmlStreamReader>

namespace {

/** What a reader of the page finds in it. */
struct ReadPage {
    QString error;
    QString title;
    QStringList paths;
    QMap<QString, QString> summary;
    QStringList problems;
};

ReadPage readPage(const QByteArray &page) {
    ReadPage read;
    QXmlStreamReader reader(page);
    QString table;
    QString heading;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QStringView name = reader.name();
        const QStringView kind = reader.attributes().value(QLatin1String("class"));
        if (name == QLatin1String("table"))
            table = kind.toString();
        if (name == QLatin1String("title"))
            read.title = reader.readElementText();
        else if (name == QLatin1String("td") && kind == QLatin1String("path"))
            read.paths.append(reader.readElementText());
        else if (name == QLatin1String("th") && table == QLatin1String("summary"))
            heading = reader.readElementText();
        else if (name == QLatin1String("td") && table == QLatin1String("summary"))
            read.summary.insert(heading, reader.readElementText());
        else if (name == QLatin1String("li"))
            read.problems.append(reader.readElementText(QXmlStreamReader::IncludeChildElements));
    }
    if (reader.hasError())
        read.error =
            QStringLiteral("line %1: %2").arg(reader.lineNumber()).arg(reader.errorString());
    return read;
}

} // namespace

/** The HTML report: a page any XML reader takes whatever the names hold, with the right counts. */
class tst_HtmlReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oddNamesStayText_data() {
        QTest::addColumn<bool>("listAll");
        QTest::addColumn<int>("comparisons");
        QTest::newRow("differences, sizes and dates") << false << 3;
        QTest::newRow("every pair, every property") << true << 31;
    }
    void oddNamesStayText() {
        QFETCH(bool, listAll);
        QFETCH(int, comparisons);
        // Roots and names with every character that means something in HTML, a byte that is not
        // UTF-8 and a newline. Written together, the identical pair's dates are within the slack.
        const QByteArray src = "src <&> \"'";
        const QByteArray dst = "dst \xc3\xa9&amp;";
        const QByteArray same = "same.txt";
        const QByteArray sized = "a<b>&c.txt";
        const QByteArray sourceOnly = "\"quoted\" 'single'.txt";
        const QByteArray destinationOnly = "caf\xe9 <td>.txt";
        const QByteArray broken = "line\nbreak&#60;.txt";
        TestTree tree;
        for (const QByteArray &name : {same, sized, broken}) {
            QVERIFY(tree.writeNative(src + '/' + name, "1234"));
            QVERIFY(tree.writeNative(dst + '/' + name, name == same ? "1234" : "12345"));
        }
        QVERIFY(tree.writeNative(src + '/' + sourceOnly, "s"));
        QVERIFY(tree.writeNative(dst + '/' + destinationOnly, "d"));

        CompareReport report;
        report.source = tree.nativePath(src);
        report.destination = tree.nativePath(dst);
        report.comparisons = comparisons;
        report.listAll = listAll;
        CompareSession session;
        session.setLoadDetails(true);
        connect(&session, &CompareSession::attemptStarted, this,
                [&] { collectPairs(*session.engine(), this, report); });
        CompareSession::Request request;
        request.source = report.source;
        request.destination = report.destination;
        request.comparisons = comparisons;
        QCOMPARE(session.run(request), CompareSession::State::Complete);
        report.sortPairs();
        report.problems.append({"locked <dir>\xfe", QStringLiteral("Permission denied & more")});
        report.problems.append({QByteArray(), QStringLiteral("the trees kept changing")});

        QBuffer page;
        QVERIFY(page.open(QIODevice::WriteOnly));
        {
            OutputStream out(&page);
            writeHtmlReport(report, out);
            QVERIFY(out.flush());
        }
        const ReadPage read = readPage(page.data());
        QVERIFY2(read.error.isEmpty(), qPrintable(read.error));

        QVERIFY(read.title.contains(NameEscaping::readable(report.source)));
        QVERIFY(read.title.contains(NameEscaping::readable(report.destination)));
        QList<QByteArray> listed = {sized, sourceOnly, destinationOnly, broken};
        if (listAll)
            listed.append(same);
        std::sort(listed.begin(), listed.end());
        QStringList expected;
        for (const QByteArray &name : listed)
            expected.append(NameEscaping::readable(name));
        QCOMPARE(read.paths, expected);

        const QLocale locale = QLocale::system();
        const QMap<QString, QString> summary = {
            {QStringLiteral("Pairs listed"), locale.toString(listed.size())},
            {QStringLiteral("Identical"), locale.toString(1)},
            {QStringLiteral("Differing"), locale.toString(2)},
            {QStringLiteral("Only in source"), locale.toString(1)},
            {QStringLiteral("Only in destination"), locale.toString(1)},
            {QStringLiteral("Could not be compared"), locale.toString(2)},
        };
        QCOMPARE(read.summary, summary);
        QCOMPARE(read.problems,
                 QStringList({QStringLiteral("locked <dir>\\xfe: Permission denied & more"),
                              QStringLiteral("the trees kept changing")}));
        // Self-contained: nothing is fetched from anywhere when the page is opened.
        for (const char *fetch : {"src=", "href=", "url(", "@import"})
            QVERIFY2(!page.data().contains(fetch), fetch);
    }
};

QTEST_GUILESS_MAIN(tst_HtmlReport)
#include "tst_HtmlReport.moc"
