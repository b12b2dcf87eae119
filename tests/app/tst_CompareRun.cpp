#include "ComparedWindow.h"

#include "app/StatusText.h"
#include "app/frmProblems.h"
#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "views/ListColumns.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QTimer>

class tst_CompareRun : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_profile.clear(); }
    void progressTexts_data() {
        QTest::addColumn<int>("pass");
        QTest::addColumn<int>("current");
        QTest::addColumn<int>("total");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("percentage"); // -1: no bar
        QTest::newRow("no counts yet") << 1 << -1 << -1 << "  Initializing comparison data" << -1;
        QTest::newRow("total known") << 1 << -1 << 40 << "  Analyzing files" << -1;
        QTest::newRow("12.5 rounds to even 12")
            << 2 << 1 << 8 << "  Comparing files - pass 2  (1 of 8)" << 12;
        QTest::newRow("no total: no bar")
            << 2 << 0 << 0 << "  Comparing files - pass 2  (0 of 0)" << -1;
    }
    void progressTexts() {
        QFETCH(int, pass);
        QFETCH(int, current);
        QFETCH(int, total);
        QFETCH(int, percentage);
        ComparedWindow w;
        w.window.oPairscope_CompareProgress(pass, current, total);
        QTest::qWait(StatusLine::paintIntervalMs * 2);
        QTEST(w.status(), "text");
        const QProgressBar *bar = w.statusLine()->ProgressBar1();
        QCOMPARE(bar->isVisibleTo(w.statusLine()) ? bar->value() : -1, percentage);
    }
    void progressTextsThrottled_data() {
        // Work between turns of the event loop: none, or longer than the paint interval.
        QTest::addColumn<int>("workMs");
        QTest::addColumn<bool>("lazy");
        QTest::newRow("event loop after every text") << 0 << false;
        QTest::newRow("event loop later than the interval")
            << StatusLine::paintIntervalMs + 5 << false;
        QTest::newRow("lazy texts, event loop later than the interval")
            << StatusLine::paintIntervalMs + 5 << true;
    }
    void progressTextsThrottled() {
        QFETCH(int, workMs);
        QFETCH(bool, lazy);
        StatusLine line;
        line.show();
        const StatusText *text = line.findChild<StatusText *>();
        QString shown;
        std::vector<qint64> changesMs; // when the shown text changed
        QElapsedTimer running, sinceTurn;
        running.start();
        sinceTurn.start();
        const auto look = [&] {
            if (text->text() != std::exchange(shown, text->text()))
                changesMs.push_back(running.elapsed());
        };
        const auto textOf = [](int n) {
            return QStringLiteral("Building source file list (%1)").arg(n);
        };
        int n = 0, made = 0;
        while (running.elapsed() < 12 * StatusLine::paintIntervalMs) {
            ++n;
            if (lazy)
                line.UpdateProgress([&, n] { return ++made, textOf(n); }, -1);
            else
                line.UpdateStatus(textOf(n), true, -1);
            look();
            if (sinceTurn.elapsed() >= workMs) {
                QCoreApplication::processEvents();
                look();
                sinceTurn.start();
            }
        }
        QVERIFY2(changesMs.size() >= 3, "too few texts painted to judge");
        for (size_t i = 2; i < changesMs.size(); ++i) {
            const qint64 gap = changesMs[i] - changesMs[i - 1];
            QVERIFY2(gap >= StatusLine::paintIntervalMs * 4 / 5, qPrintable(QString::number(gap)));
        }
        QTest::qWait(StatusLine::paintIntervalMs * 2);
        look();
        QCOMPARE(shown, "  " + textOf(n));
        if (lazy)
            QVERIFY2(made <= int(changesMs.size()) + 1, qPrintable(QString::number(made)));
    }
    void finalTextShownAtOnce() {
        StatusLine line;
        line.show();
        const StatusText *text = line.findChild<StatusText *>();
        line.UpdateStatus(QStringLiteral("Comparing files - pass 1  (1 of 2)"), true, 50);
        line.UpdateStatus(QStringLiteral("Comparing files - pass 1  (2 of 2)"), true, 100);
        line.UpdateStatus(QStringLiteral("Compare complete."), false, -1);
        QCOMPARE(text->text(), QStringLiteral("  Compare complete."));
        QVERIFY(!line.ProgressBar1()->isVisibleTo(&line));
        QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(&line);
        QCOMPARE(spoken->text(QAccessible::Name), QStringLiteral("Compare complete."));
        QTest::qWait(StatusLine::paintIntervalMs * 2);
        QCOMPARE(text->text(), QStringLiteral("  Compare complete."));

        // A progress text held back for the interval holds its bar back too.
        const auto agree = [&] {
            return line.ProgressBar1()->value() == (text->text().endsWith("(1 of 4)") ? 25 : 50);
        };
        line.UpdateStatus(QStringLiteral("Comparing files - pass 2  (1 of 4)"), true, 25);
        line.UpdateStatus(QStringLiteral("Comparing files - pass 2  (2 of 4)"), true, 50);
        QVERIFY(agree());
        QTRY_COMPARE(line.ProgressBar1()->value(), 50);
        QVERIFY(agree());
        QCOMPARE(spoken->text(QAccessible::Name),
                 QStringLiteral("Comparing files - pass 2  (2 of 4)"));
    }
    void missingFolderRefused() {
        TestTree tree;
        QVERIFY(tree.mkdir("src"));
        ComparedWindow w(QString(), tree.path("gone"));
        ModalWatcher watcher;
        w.compare(); // both missing: the source is named
        w.folder(0)->setEditText(tree.path("src"));
        w.compare();
        QCOMPARE(watcher.texts(),
                 (QStringList{"Source path does not exist.  Cannot compare.",
                              "Destination path does not exist.  Cannot compare."}));
        QCOMPARE(w.status(), QStringLiteral("  Ready"));
        QVERIFY(!w.window.Files(0));
    }
    void cancelDuringSourceWalk_data() {
        QTest::addColumn<bool>("byKeys");
        QTest::newRow("Cancel clicked") << false;
        QTest::newRow("Enter, then Esc") << true;
    }
    void cancelDuringSourceWalk() {
        QFETCH(bool, byKeys);
        TestTree tree;
        for (int i = 0; i < 400; ++i)
            QVERIFY(tree.write(QStringLiteral("src/d%1/f%2").arg(i / 50).arg(i), "x"));
        QVERIFY(tree.write("dst/f", "x"));
        ComparedWindow w(tree.path("src"), tree.path("dst"));
        QVERIFY(w.focus(w.list(0)));
        // Hooks the new source collection before its walk, to cancel at its 100th file.
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            if (const ComparisonFileCollection *source = w.window.Files(0)) {
                poll.stop();
                connect(
                    source, &ComparisonFileCollection::FileAdded, this, [&w, byKeys](int count) {
                        if (count == 100)
                            byKeys ? QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape)
                                   : w.compare();
                    });
            }
        });
        poll.start(0);
        if (byKeys) {
            QTest::keyClick(w.list(0), Qt::Key_Escape); // idle: does nothing
            QCOMPARE(w.status(), QStringLiteral("  Ready"));
            QTest::keyClick(w.list(0), Qt::Key_Return);
        } else {
            w.compare();
        }
        QTRY_COMPARE(w.status(), QStringLiteral("  Compare cancelled."));
        QCOMPARE(w.window.Files(0)->Count(), 100);
        QCOMPARE(w.window.Files(1)->RootFolder(), QString()); // its walk never began
        QCOMPARE(w.find<QPushButton>("cmdCompare")->text(), QStringLiteral("&Compare"));
        QVERIFY(!w.window.IsBusy());
    }
    void compareThenChangeTheView() {
        TestTree tree;
        for (const QString name : {"a", "b", "c", "d", "e"}) {
            const bool same = name == QLatin1String("b") || name == QLatin1String("d");
            QVERIFY(tree.write("src/" + name, "12") &&
                    tree.write("dst/" + name, same ? "12" : "1"));
            QVERIFY(tree.setTimes("src/" + name, 1600000000) &&
                    tree.setTimes("dst/" + name, 1600000000));
        }
        ComparedWindow w(tree.path("src"), tree.path("dst"));
        w.compare();
        QCOMPARE(w.status(), QStringLiteral("  Compare complete."));
        QVERIFY(!w.statusLine()->textClickable());
        QCOMPARE(w.rows(1), QStringList({"a", "c", "e"}));
        // Show All Files appends the identical pairs; off again, exactly they go.
        w.item("Show A&ll Files")->trigger();
        QCOMPARE(w.rows(0), QStringList({"a", "c", "e", "b", "d"}));
        w.item("Show A&ll Files")->trigger();
        QCOMPARE(w.rows(1), QStringList({"a", "c", "e"}));
        w.item("Show &Full Path")->trigger();
        QCOMPARE(w.list(1)->files()->text(1, ColumnType::InFolder), tree.path("dst"));
        w.item("C&lear Display")->trigger();
        QCOMPARE(w.list(0)->files()->count(), 0);
        w.item("Show A&ll Files")->trigger();
        QCOMPARE(w.rows(1).size(), 5);
    }
    void storedFiltersApply_data() {
        QTest::addColumn<QString>("filters");
        QTest::addColumn<bool>("ignoreShift");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("a pattern") << "*.log\n" << false << QStringList{"hour.txt"};
        QTest::newRow("an hour's shift") << "" << true << QStringList{"a.log"};
    }
    void storedFiltersApply() {
        QFETCH(QString, filters);
        QFETCH(bool, ignoreShift);
        Options::setFilters(filters);
        Options::setIgnoreTimeShift(ignoreShift);
        TestTree tree;
        QVERIFY(tree.write("src/a.log", "1") && tree.write("dst/a.log", "22"));
        QVERIFY(tree.write("src/hour.txt", "1") && tree.write("dst/hour.txt", "1"));
        QVERIFY(tree.setTimes("src/hour.txt", 1700000000) &&
                tree.setTimes("dst/hour.txt", 1700003600));
        ComparedWindow w(tree.path("src"), tree.path("dst"));
        QCOMPARE(w.statusLine()->filtered(), !filters.isEmpty());
        w.compare();
        QTEST(w.rows(0), "rows");
    }
    void problemsOpenFromTheStatus() {
        // Case ignored, two source names differ only in case: one cannot be paired.
        TestTree tree;
        QVERIFY(tree.write("src/a.txt", "1") && tree.write("src/A.txt", "22"));
        QVERIFY(tree.write("dst/a.txt", "333"));
        Options::setLetterCase(QStringLiteral("insensitive"));
        ComparedWindow w(tree.path("src"), tree.path("dst"));
        QVERIFY(w.focus(w.list(0)));
        w.compare();
        QCOMPARE(w.status(), QStringLiteral("  Compare complete.  1 item could not be compared."));
        QVERIFY(w.statusLine()->textClickable());
        QVERIFY(!w.window.findChild<frmProblems *>());

        const ComparisonFileCollection *run = w.window.Files(0);
        auto *text = w.statusLine()->findChild<QWidget *>(QStringLiteral("StatusText"));
        // The link underlines its words, not the blanks that indent them.
        const QImage look = text->grab().toImage();
        int firstInk = look.width();
        for (int y = 0; y < look.height(); ++y)
            for (int x = 0; x < firstInk; ++x)
                firstInk = look.pixel(x, y) != look.pixel(0, 0) ? x : firstInk;
        QVERIFY(firstInk >= text->fontMetrics().horizontalAdvance(QStringLiteral("  ")));
        QTest::mouseClick(text, Qt::LeftButton, {}, QPoint(20, text->height() / 2));
        auto *problems = w.window.findChild<frmProblems *>();
        QVERIFY(problems);
        QTRY_VERIFY(problems->isVisible());
        QVERIFY(!problems->isModal());
        const QStringList lines = problems->ProblemsText().trimmed().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines[0].contains(tree.path("src")), qPrintable(lines[0]));
        QCOMPARE(w.window.Files(0), run); // no new compare started
        QVERIFY(QFile::remove(tree.path("src/A.txt")));
        w.compare();
        QCOMPARE(w.status(), QStringLiteral("  Compare complete."));
        QVERIFY(!w.statusLine()->textClickable());
    }
    void restartWhenAFileVanishes() {
        TestTree tree;
        QVERIFY(tree.write("src/gone.txt", "1") && tree.write("src/keep.txt", "1"));
        QVERIFY(tree.write("dst/keep.txt", "22"));
        ComparedWindow w(tree.path("src"), tree.path("dst"));
        // The first attempt loses a source file during the destination walk: walked again.
        QList<const ComparisonFileCollection *> attempts;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            const ComparisonFileCollection *destination = w.window.Files(1);
            if (!destination || attempts.contains(destination))
                return;
            attempts << destination;
            if (attempts.size() == 1)
                connect(destination, &ComparisonFileCollection::FileAdded, this,
                        [&tree] { QFile::remove(tree.path("src/gone.txt")); });
        });
        poll.start(0);
        w.compare();
        QCOMPARE(attempts.size(), 2);
        QCOMPARE(w.status(), QStringLiteral("  Compare complete."));
        QCOMPARE(w.window.Files(0)->Count(), 1);
        QCOMPARE(w.rows(0), QStringList{"keep.txt"});
        QCOMPARE(w.rows(1), QStringList{"keep.txt"});
    }
    void linkedListsResortedAtTheEnd_data() {
        QTest::addColumn<bool>("linked");
        QTest::addColumn<QStringList>("expected");
        // Sorted on Size descending before the run; linked, both end sorted on In Folder.
        QTest::newRow("linked") << true << QStringList{"c/x2", "b/x1", "a/x3"};
        QTest::newRow("not linked") << false << QStringList{"a/x3", "b/x1", "c/x2"};
    }
    void linkedListsResortedAtTheEnd() {
        QFETCH(bool, linked);
        QFETCH(QStringList, expected);
        Options::setLinkListings(linked);
        TestTree tree;
        for (const auto &[name, content] :
             {std::pair{"a/x3", "22"}, {"b/x1", "333"}, {"c/x2", "1"}}) {
            QVERIFY(tree.write(QStringLiteral("src/") + name, content));
            QVERIFY(tree.write(QStringLiteral("dst/") + name, QByteArray(content) + "-changed"));
        }
        ComparedWindow w(tree.path("src"), tree.path("dst"));
        Q_EMIT w.list(0)->columnClicked(ColumnType::Size);
        Q_EMIT w.list(0)->columnClicked(ColumnType::Size);
        QCOMPARE(w.list(0)->sortOrder(), Qt::DescendingOrder);
        w.compare();
        QCOMPARE(w.rows(0), expected);
        if (linked)
            QCOMPARE(w.rows(1), expected);
    }

private:
    TestProfile m_profile;
};

QTEST_MAIN(tst_CompareRun)
#include "tst_CompareRun.moc"
