#include "app/StatusLine.h"
#include "app/frmMain.h"
#include "app/frmProblems.h"
#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "settings/SettingsStore.h"
#include "support/ComparedWindow.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "views/ListColumns.h"
#include "views/ListSorting.h"
#include "views/ListView.h"

#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

class tst_CompareRun : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void progressTexts_data();
    void progressTexts();
    void missingFolderMessages_data();
    void missingFolderMessages();
    void cancelDuringSourceWalk_data();
    void cancelDuringSourceWalk();
    void identicalTreesListNothing();
    void sourceOnlyFile_data();
    void sourceOnlyFile();
    void refreshKeepsRowOrder();
    void fullPathChangesOnlyFolderTexts();
    void clearDisplayThenToggleShowsLastResult();
    void problemsOpenFromTheStatus_data();
    void problemsOpenFromTheStatus();
    void restartWhenAFileVanishes();
    void linkedListsResortedAtTheEnd_data();
    void linkedListsResortedAtTheEnd();

private:
    TestProfile m_profile;
};

namespace {

using Window = ComparedWindow;

void setOption(const char *key, bool on) {
    SettingsStore::write(QStringLiteral("Options"), QString::fromLatin1(key),
                         on ? QStringLiteral("True") : QStringLiteral("False"));
}

} // namespace

void tst_CompareRun::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_CompareRun::init() {
    m_profile.clear();
}

void tst_CompareRun::progressTexts_data() {
    QTest::addColumn<int>("event"); // 0 source file added, 1 destination, 2 engine progress
    QTest::addColumn<int>("pass");
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("total");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("percentage"); // -1: no bar

    QTest::newRow("source walk") << 0 << 0 << 7 << 0 << "  Building source file list (7)" << -1;
    QTest::newRow("destination walk")
        << 1 << 0 << 12 << 0 << "  Building destination file list (12)" << -1;
    QTest::newRow("no counts yet") << 2 << 1 << -1 << -1 << "  Initializing comparison data" << -1;
    QTest::newRow("total known") << 2 << 1 << -1 << 40 << "  Analyzing files" << -1;
    QTest::newRow("pass 1") << 2 << 1 << 2 << 8 << "  Comparing files - pass 1  (2 of 8)" << 25;
    QTest::newRow("12.5 rounds to even 12")
        << 2 << 2 << 1 << 8 << "  Comparing files - pass 2  (1 of 8)" << 12;
    QTest::newRow("no total: no bar")
        << 2 << 2 << 0 << 0 << "  Comparing files - pass 2  (0 of 0)" << -1;
}

void tst_CompareRun::progressTexts() {
    QFETCH(int, event);
    QFETCH(int, pass);
    QFETCH(int, current);
    QFETCH(int, total);
    QFETCH(QString, text);
    QFETCH(int, percentage);

    frmMain window;
    window.InitializeDisplay();
    window.show();
    if (event == 0)
        window.colSourceFiles_FileAdded(current);
    else if (event == 1)
        window.colDestFiles_FileAdded(current);
    else
        window.oPairscope_CompareProgress(pass, current, total);
    // The text may wait for its paint slot, but it is the one shown in the end.
    QCOMPARE(window.StatusBar1->shownText(), text);
    QTest::qWait(StatusLine::paintIntervalMs * 2);
    QCOMPARE(window.StatusBar1->shownText(), text);
    const QProgressBar *bar = window.StatusBar1->ProgressBar1();
    QCOMPARE(bar->isVisibleTo(window.StatusBar1), percentage != -1);
    if (percentage != -1)
        QCOMPARE(bar->value(), percentage);
}

void tst_CompareRun::missingFolderMessages_data() {
    QTest::addColumn<bool>("sourceExists");
    QTest::addColumn<bool>("destinationExists");
    QTest::addColumn<QString>("message");

    QTest::newRow("both missing: source named")
        << false << false << "Source path does not exist.  Cannot compare.";
    QTest::newRow("destination missing")
        << true << false << "Destination path does not exist.  Cannot compare.";
}

void tst_CompareRun::missingFolderMessages() {
    QFETCH(bool, sourceExists);
    QFETCH(bool, destinationExists);
    QFETCH(QString, message);

    TestTree tree;
    QVERIFY(tree.mkdir("src"));
    Window w(sourceExists ? tree.path("src") : QString(),
             destinationExists ? tree.path("src") : tree.path("gone"));
    ModalWatcher watcher;
    w.compare();
    QCOMPARE(watcher.texts(), QStringList{message});
    // Nothing else changed: still idle, still "Ready".
    QCOMPARE(w.window.cmdCompare->text(), QStringLiteral("&Compare"));
    QCOMPARE(w.window.StatusBar1->shownText(), QStringLiteral("  Ready"));
    QVERIFY(!w.window.colSourceFiles);
}

void tst_CompareRun::cancelDuringSourceWalk_data() {
    QTest::addColumn<bool>("byKeys"); // Enter starts and Esc cancels, or clicks on the button
    QTest::newRow("Cancel clicked") << false;
    QTest::newRow("Enter, then Esc") << true;
}

void tst_CompareRun::cancelDuringSourceWalk() {
    QFETCH(bool, byKeys);
    TestTree tree;
    for (int i = 0; i < 400; ++i)
        QVERIFY(tree.write(QStringLiteral("src/d%1/f%2").arg(i / 50).arg(i), "x"));
    QVERIFY(tree.write("dst/f", "x"));
    Window w(tree.path("src"), tree.path("dst"));
    QVERIFY(w.activate());
    QVERIFY(w.focus(w.window.lvwFiles[0]));

    // The run lets events through once before it walks: hook the new source collection
    // then, and cancel from inside the walk, at its 100th file.
    QTimer poll;
    poll.setInterval(0);
    connect(&poll, &QTimer::timeout, this, [&] {
        ComparisonFileCollection *source = w.window.colSourceFiles.get();
        if (!source)
            return;
        poll.stop();
        connect(source, &ComparisonFileCollection::FileAdded, this, [&w, byKeys](int count) {
            if (count != 100)
                return;
            if (byKeys)
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
            else
                w.window.cmdCompare->click();
        });
    });
    poll.start();
    if (byKeys) {
        // Esc while idle does nothing.
        QTest::keyClick(w.window.lvwFiles[0], Qt::Key_Escape);
        QCOMPARE(w.window.StatusBar1->shownText(), QStringLiteral("  Ready"));
        QTest::keyClick(w.window.lvwFiles[0], Qt::Key_Return);
    } else {
        w.compare();
    }

    QTRY_COMPARE(w.window.StatusBar1->shownText(), QStringLiteral("  Compare cancelled."));
    QVERIFY(w.window.colSourceFiles->Cancelled());
    QCOMPARE(w.window.colSourceFiles->Count(), 100);
    // The destination walk never began.
    QCOMPARE(w.window.colDestFiles->RootFolder(), QString());
    QCOMPARE(w.window.colDestFiles->Count(), 0);
    QVERIFY(!w.window.oPairscope);
    QCOMPARE(w.window.lblPath[0]->text(), QString());
    QCOMPARE(w.window.lblPath[1]->text(), QString());
    QCOMPARE(w.window.cmdCompare->text(), QStringLiteral("&Compare"));
    QVERIFY(w.window.cmdCompare->isEnabled());
    QVERIFY(w.window.cboSelectPath[0]->isEnabled());
    QVERIFY(!w.window.IsBusy());
}

void tst_CompareRun::identicalTreesListNothing() {
    TestTree tree;
    for (const char *name : {"a.txt", "sub/b.txt"}) {
        QVERIFY(tree.write(QStringLiteral("src/") + QLatin1String(name), "same"));
        QVERIFY(tree.write(QStringLiteral("dst/") + QLatin1String(name), "same"));
        QVERIFY(tree.setTimes(QStringLiteral("src/") + QLatin1String(name), 1'600'000'000));
        QVERIFY(tree.setTimes(QStringLiteral("dst/") + QLatin1String(name), 1'600'000'000));
    }
    Window w(tree.path("src"), tree.path("dst"));
    w.compare();
    QCOMPARE(w.window.StatusBar1->shownText(), QStringLiteral("  Compare complete."));
    QVERIFY(!w.window.StatusBar1->textClickable());
    QCOMPARE(w.window.lvwFiles[0]->files()->count(), 0);
    QCOMPARE(w.window.lvwFiles[1]->files()->count(), 0);
    QCOMPARE(w.window.lblPath[0]->text(), QStringLiteral("Files from ") + tree.path("src"));
    QCOMPARE(w.window.lblPath[1]->text(), QStringLiteral("Files from ") + tree.path("dst"));
    QCOMPARE(w.window.colSourceFiles->Count(), 2);
}

void tst_CompareRun::sourceOnlyFile_data() {
    QTest::addColumn<bool>("placeholders");
    QTest::newRow("placeholders on") << true;
    QTest::newRow("placeholders off") << false;
}

void tst_CompareRun::sourceOnlyFile() {
    QFETCH(bool, placeholders);
    setOption("UseMissingPlaceholders", placeholders);
    TestTree tree;
    QVERIFY(tree.write("src/only.txt", "x"));
    QVERIFY(tree.mkdir("dst"));
    Window w(tree.path("src"), tree.path("dst"));
    w.compare();
    QCOMPARE(w.rows(0), QStringList{"only.txt"});
    QCOMPARE(w.rows(1), placeholders ? QStringList{"only.txt"} : QStringList());
}

void tst_CompareRun::refreshKeepsRowOrder() {
    TestTree tree;
    // a, c and e differ in size; b and d are identical.
    for (const char *name : {"a", "b", "c", "d", "e"}) {
        const QString n = QString::fromLatin1(name);
        const bool same = n == QLatin1String("b") || n == QLatin1String("d");
        QVERIFY(tree.write("src/" + n, "12"));
        QVERIFY(tree.write("dst/" + n, same ? "12" : "123"));
        QVERIFY(tree.setTimes("src/" + n, 1'600'000'000));
        QVERIFY(tree.setTimes("dst/" + n, 1'600'000'000));
    }
    Window w(tree.path("src"), tree.path("dst"));
    w.compare();
    QCOMPARE(w.rows(0), QStringList({"a", "c", "e"}));

    // Show All Files: the identical pairs are appended, the others stay where they were.
    w.window.menus->mnuViewAllFiles->trigger();
    QVERIFY(Options::allFiles());
    QCOMPARE(w.rows(0), QStringList({"a", "c", "e", "b", "d"}));
    QCOMPARE(w.window.StatusBar1->shownText(), QStringLiteral("  Compare complete."));
    // And off again: exactly the identical rows go.
    w.window.menus->mnuViewAllFiles->trigger();
    QCOMPARE(w.rows(0), QStringList({"a", "c", "e"}));
    QCOMPARE(w.rows(1), QStringList({"a", "c", "e"}));
}

void tst_CompareRun::fullPathChangesOnlyFolderTexts() {
    TestTree tree;
    QVERIFY(tree.write("src/sub/a", "1") && tree.write("dst/sub/a", "22"));
    QVERIFY(tree.write("src/b", "1") && tree.write("dst/b", "22"));
    Window w(tree.path("src"), tree.path("dst"));
    w.compare();
    // Every text of every row, the folder column's set apart.
    const auto rows = [&w](int side, QStringList *folders) {
        QStringList all;
        const QAbstractItemModel *model = w.list(side)->model();
        for (int i = 0; i < model->rowCount(); ++i) {
            QStringList row;
            for (int type = 1; type <= ColumnTypeCount; ++type) {
                (type == ColumnType::InFolder ? *folders : row)
                    << model->index(i, FileListModel::columnOf(type)).data().toString();
            }
            all << row.join(QLatin1Char('|'));
        }
        return all;
    };
    QStringList folders[2];
    QStringList fullFolders[2];
    const QStringList before[2] = {rows(0, &folders[0]), rows(1, &folders[1])};
    w.window.menus->mnuViewFullPath->trigger();
    QVERIFY(Options::fullPath());
    for (int side = 0; side < 2; ++side) {
        QCOMPARE(rows(side, &fullFolders[side]), before[side]);
        const QString root = tree.path(side ? "dst" : "src");
        QStringList expected;
        for (const QString &folder : folders[side])
            expected << (folder.isEmpty() ? root : root + QLatin1Char('/') + folder);
        QCOMPARE(fullFolders[side], expected);
    }
}

void tst_CompareRun::clearDisplayThenToggleShowsLastResult() {
    TestTree tree;
    QVERIFY(tree.write("src/a", "1"));
    QVERIFY(tree.write("dst/a", "22"));
    Window w(tree.path("src"), tree.path("dst"));
    w.compare();
    QCOMPARE(w.window.lvwFiles[0]->files()->count(), 1);
    w.window.menus->mnuFileClear->trigger();
    QCOMPARE(w.window.lvwFiles[0]->files()->count(), 0);
    QCOMPARE(w.window.lblPath[0]->text(), QString());
    w.window.menus->mnuViewAllFiles->trigger();
    QCOMPARE(w.window.lvwFiles[0]->files()->count(), 1);
    QCOMPARE(w.window.lvwFiles[1]->files()->count(), 1);
}

void tst_CompareRun::problemsOpenFromTheStatus_data() {
    QTest::addColumn<int>("key"); // 0: a click with the mouse

    QTest::newRow("click") << 0;
}

void tst_CompareRun::problemsOpenFromTheStatus() {
    QFETCH(int, key);

    // Letter case ignored, two names that differ only in case: one of them cannot be paired.
    TestTree tree;
    QVERIFY(tree.write("src/a.txt", "1"));
    QVERIFY(tree.write("src/A.txt", "22"));
    QVERIFY(tree.write("dst/a.txt", "333"));
    Options::setLetterCase(QStringLiteral("insensitive"));
    Window w(tree.path("src"), tree.path("dst"));
    QVERIFY(w.activate());
    w.compare();
    QCOMPARE(w.window.StatusBar1->shownText(),
             QStringLiteral("  Compare complete.  1 item could not be compared."));
    QVERIFY(w.window.StatusBar1->textClickable());
    QVERIFY(!w.window.findChild<frmProblems *>());
    // What a screen reader finds: the status text and the two lists by name.
    QCOMPARE(QAccessible::queryAccessibleInterface(w.window.StatusBar1)->text(QAccessible::Name),
             QStringLiteral("Compare complete.  1 item could not be compared."));
    QCOMPARE(w.window.lvwFiles[1]->accessibleName(), QStringLiteral("Destination files"));
    // A menu item is read by its caption alone, not with its key hint after a tab.
    QAccessibleInterface *file = QAccessible::queryAccessibleInterface(w.window.menus->mnuFile);
    QStringList items;
    for (int i = 0; i < file->childCount(); ++i)
        items << file->child(i)->text(QAccessible::Name);
    QVERIFY2(items.contains(QStringLiteral("Compare")), qPrintable(items.join(QLatin1Char('|'))));
    QCOMPARE(w.window.menus->mnuFileCompare->shortcut(), QKeySequence(Qt::Key_Enter));

    const ComparisonFileCollection *run = w.window.colSourceFiles.get();
    auto *text = w.window.StatusBar1->findChild<QWidget *>(QStringLiteral("StatusText"));
    QVERIFY(text);
    if (key) {
        text->setFocus(Qt::TabFocusReason);
        QTRY_VERIFY(text->hasFocus());
        QTest::keyClick(text, Qt::Key(key));
    } else {
        QTest::mouseClick(text, Qt::LeftButton, {}, QPoint(20, text->height() / 2));
    }
    auto *problems = w.window.findChild<frmProblems *>();
    QVERIFY(problems);
    QTRY_VERIFY(problems->isVisible());
    QVERIFY(!problems->isModal());
    const QStringList lines = problems->ProblemsText().trimmed().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines[0].contains(tree.path("src")), qPrintable(lines[0]));
    // The key opened the list and started no new compare.
    QCOMPARE(w.window.colSourceFiles.get(), run);

    // A new run without problems leaves a plain text.
    QVERIFY(QFile::remove(tree.path("src/A.txt")));
    w.compare();
    QCOMPARE(w.window.StatusBar1->shownText(), QStringLiteral("  Compare complete."));
    QVERIFY(!w.window.StatusBar1->textClickable());
}

void tst_CompareRun::restartWhenAFileVanishes() {
    TestTree tree;
    QVERIFY(tree.write("src/gone.txt", "1"));
    QVERIFY(tree.write("src/keep.txt", "1"));
    QVERIFY(tree.write("dst/keep.txt", "22"));
    Window w(tree.path("src"), tree.path("dst"));

    // Each attempt makes new collections and lets events through before it walks: the first
    // attempt loses a source file while it walks the destination, after the source walk saw
    // it, so the engine finds it gone and asks for the trees to be walked again.
    QList<const ComparisonFileCollection *> attempts;
    QTimer poll;
    poll.setInterval(0);
    connect(&poll, &QTimer::timeout, this, [&] {
        ComparisonFileCollection *destination = w.window.colDestFiles.get();
        if (!destination || attempts.contains(destination))
            return;
        attempts << destination;
        if (attempts.size() == 1) {
            connect(destination, &ComparisonFileCollection::FileAdded, this,
                    [&tree] { QFile::remove(tree.path("src/gone.txt")); });
        }
    });
    poll.start();
    w.compare();

    QCOMPARE(attempts.size(), 2);
    QCOMPARE(w.window.StatusBar1->shownText(), QStringLiteral("  Compare complete."));
    QCOMPARE(w.window.colSourceFiles->Count(), 1);
    QCOMPARE(w.rows(0), QStringList{"keep.txt"});
    QCOMPARE(w.rows(1), QStringList{"keep.txt"});
    QCOMPARE(w.window.lblPath[0]->text(), QStringLiteral("Files from ") + tree.path("src"));
}

void tst_CompareRun::linkedListsResortedAtTheEnd_data() {
    QTest::addColumn<bool>("linked");
    QTest::addColumn<QStringList>("expected"); // rows of both lists

    // The source list is sorted on "Size", descending, before the run. At the end a linked
    // run sorts both lists on the header whose index is that sort key, "In Folder",
    // descending; an unlinked run leaves the rows in the order they were settled.
    QTest::newRow("linked") << true << QStringList{"c/x2", "b/x1", "a/x3"};
    QTest::newRow("not linked") << false << QStringList{"a/x3", "b/x1", "c/x2"};
}

void tst_CompareRun::linkedListsResortedAtTheEnd() {
    QFETCH(bool, linked);
    QFETCH(QStringList, expected);

    setOption("LinkListings", linked);
    TestTree tree;
    const QList<std::pair<QString, QByteArray>> files = {
        {"a/x3", "22"}, {"b/x1", "333"}, {"c/x2", "1"}};
    for (const auto &[name, content] : files) {
        QVERIFY(tree.write("src/" + name, content));
        QVERIFY(tree.write("dst/" + name, content + "-changed"));
    }
    Window w(tree.path("src"), tree.path("dst"));
    ListView *source = w.window.lvwFiles[0];
    Q_EMIT source->columnClicked(ColumnType::Size);
    Q_EMIT source->columnClicked(ColumnType::Size);
    QCOMPARE(source->sortType(), int(ColumnType::Size));
    QCOMPARE(source->sortOrder(), Qt::DescendingOrder);

    w.compare();
    QCOMPARE(w.rows(0), expected);
    if (linked)
        QCOMPARE(w.rows(1), expected);
}

QTEST_MAIN(tst_CompareRun)
#include "tst_CompareRun.moc"
