#include "app/MainMenuBar.h"
#include "app/frmMain.h"
#include "settings/Options.h"
#include "support/ComparedWindow.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/ShowInFolder.h"
#include "tools/frmSynchronizer.h"
#include "views/FileListModel.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <QAction>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QMenu>
#include <QTest>
#include <QTreeWidget>

/** The Tools menu and the listings' right-click popup in the window, after a real compare. */
class tst_ToolsMenu : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void toolsMenuEnabling_data();
    void toolsMenuEnabling();
    void listingPopup_data();
    void listingPopup();
    void copyToDestinationEndToEnd();
    void examineDifferencesFromAPlaceholder();
    void doubleClickExaminesOrOpens_data();
    void doubleClickExaminesOrOpens();

private:
    TestProfile m_profile;
    TestTree m_bin;
};

namespace {

/**
 * A shown main window over a compared pair of trees whose names have capitals and blanks, so
 * that a lower-cased row key handed to the disk would miss:
 *   "Report A.txt"          on both sides, different sizes
 *   "Sub Dir/New File.txt"  source only
 *   "other/b.txt"           source only
 *   "Only Dest.txt"         destination only
 * The listings are linked and show placeholders (the defaults), and so list the same four
 * files on both sides.
 */
struct PairTrees {
    TestTree tree;
};

struct ComparedPair : PairTrees, ComparedWindow {
    ComparedPair()
        : ComparedWindow(writeTrees(tree), tree.path("Dst")) {
        compare();
        QCOMPARE(list(0)->files()->count(), 4);
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    static QString writeTrees(TestTree &tree) {
        const bool written =
            tree.write("Src/Report A.txt", "the new report") &&
            tree.write("Src/Sub Dir/New File.txt", "fresh") && tree.write("Src/other/b.txt", "b") &&
            tree.write("Dst/Report A.txt", "old") && tree.write("Dst/Only Dest.txt", "kept") &&
            tree.setTimes("Src/Report A.txt", 1700000000, 123456789) &&
            tree.setTimes("Src/Sub Dir/New File.txt", 1600000000, 987654321);
        return written ? tree.path("Src") : QString();
    }

    /** Every row of list \a side: its key and its texts, in order. */
    QStringList texts(int side) const {
        QStringList result;
        for (int row = 0; row < list(side)->files()->count(); ++row) {
            QStringList texts{list(side)->files()->record(row)->Key()};
            for (int type = 1; type <= ColumnTypeCount; ++type)
                texts << list(side)->files()->text(row, type);
            result << texts.join(QLatin1Char('|'));
        }
        return result;
    }
};

/** A diff program that records its argument count and arguments, one per line. */
QString writeRecordingProgram(const TestTree &tree, const QString &record) {
    const QString program = tree.path("bin dir/record diff");
    QFile file(program);
    if (!QDir().mkpath(tree.path("bin dir")) || !file.open(QIODevice::WriteOnly))
        return {};
    file.write("#!/bin/sh\nout='" + QFile::encodeName(record) +
               "'\nprintf '%s\\n' \"$#\" \"$@\" > \"$out.part\" && mv \"$out.part\" \"$out\"\n");
    file.close();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return program;
}

QByteArray contentsOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

} // namespace

void tst_ToolsMenu::initTestCase() {
    QVERIFY(m_profile.isValid());
    // The desktop's default application for text files records what it was given.
    const QString program = writeRecordingProgram(m_bin, m_bin.path("opened"));
    QVERIFY(QFile::rename(program, m_bin.path("opener")));
    const QString applications = m_profile.dataHome() + QStringLiteral("/applications/");
    QVERIFY(QDir().mkpath(applications) && QDir().mkpath(m_profile.configHome()));
    const QList<QPair<QString, QByteArray>> files = {
        {applications + "opener.desktop", "[Desktop Entry]\nType=Application\nName=Opener\n"
                                          "MimeType=text/plain;\nExec=\"" +
                                              QFile::encodeName(m_bin.path("opener")) + "\" %F\n"},
        {applications + "mimeinfo.cache", "[MIME Cache]\ntext/plain=opener.desktop;\n"},
        {m_profile.configHome() + "/mimeapps.list",
         "[Default Applications]\ntext/plain=opener.desktop\n"}};
    for (const auto &[name, content] : files) {
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
}

void tst_ToolsMenu::init() {
    m_profile.clear();
}

void tst_ToolsMenu::toolsMenuEnabling_data() {
    QTest::addColumn<int>("focus"); // 0 or 1: that listing; -1: the source folder combo
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("enabled");   // Open, Diff, to Source, to Destination as 0 and 1
    QTest::addColumn<QString>("shownFile"); // Open Containing Folder's item; "" for none

    // A placeholder is a selected row, but there is no file to show.
    QTest::newRow("destination placeholder") << 1 << "Sub Dir/New File.txt"
                                             << "1110"
                                             << "";
    QTest::newRow("folder combo") << -1 << "Report A.txt"
                                  << "0000"
                                  << "";
}

void tst_ToolsMenu::toolsMenuEnabling() {
    QFETCH(int, focus);
    QFETCH(QString, selected);
    QFETCH(QString, enabled);
    QFETCH(QString, shownFile);

    TestTree bin;
    Options::setDiffEXE(writeRecordingProgram(bin, bin.path("record")));
    ComparedPair pair;
    pair.select(focus < 0 ? 0 : focus, {selected});
    QVERIFY(pair.focus(focus < 0 ? static_cast<QWidget *>(pair.window.cboSelectPath[0])
                                 : pair.list(focus)));

    const MainMenuBar &m = *pair.window.menus;
    QMenu *menu = pair.openMenu(Qt::Key_T);
    QCOMPARE(menu, m.mnuTools);
    QString shown;
    for (const QAction *item : {m.mnuToolsOpenContainingFolder, m.mnuToolsDiff,
                                m.mnuToolsCopyToSource, m.mnuToolsCopyToDest})
        shown += item->isEnabled() ? QLatin1Char('1') : QLatin1Char('0');
    QCOMPARE(shown, enabled);
    QCOMPARE(m.mnuToolsOpenContainingFolder->data().toString(),
             shownFile.isEmpty() ? QString()
                                 : ShowInFolder::FileUri(pair.tree.nativePath(shownFile.toUtf8())));
    menu->close();
}

void tst_ToolsMenu::listingPopup_data() {
    QTest::addColumn<int>("side");
    QTest::addColumn<QStringList>("selected");
    QTest::addColumn<QString>("menu");     // the popup's title, or its first item
    QTest::addColumn<QString>("reviewed"); // the review dialog's caption, "" for none

    QTest::newRow("nothing selected") << 0 << QStringList() << "No valid files selected"
                                      << "";
    // An own item of the popup runs its command: here Copy To Source...
    QTest::newRow("copy to source")
        << 1 << QStringList{QStringLiteral("Only Dest.txt")} << "Open Containing Folder"
        << "copy to source";
}

void tst_ToolsMenu::listingPopup() {
    QFETCH(int, side);
    QFETCH(QStringList, selected);
    QFETCH(QString, menu);
    QFETCH(QString, reviewed);

    ComparedPair pair;
    pair.select(side, selected);
    // The focus starts elsewhere: the right-click gives it to the listing.
    QVERIFY(pair.focus(pair.window.cboSelectPath[0]));

    QString seen;
    bool firstEnabled = true;
    QString review;
    ModalWatcher watcher([&](QWidget *shown) {
        if (auto *form = qobject_cast<frmSynchronizer *>(shown)) {
            review = form->windowTitle();
            form->cmdCancel->click();
            return true;
        }
        auto *popup = qobject_cast<QMenu *>(shown);
        if (!popup || popup->actions().isEmpty())
            return false;
        const QAction *first = popup->actions().first();
        seen = popup->title().isEmpty() ? first->text() : popup->title();
        firstEnabled = first->isEnabled();
        for (QAction *item : popup->actions()) {
            if (item->text() == QLatin1String("Copy To Source..."))
                item->trigger();
        }
        popup->close();
        return true;
    });

    ListView *list = pair.list(side);
    QContextMenuEvent click(QContextMenuEvent::Mouse, QPoint(20, 5),
                            list->viewport()->mapToGlobal(QPoint(20, 5)));
    QApplication::sendEvent(list->viewport(), &click);
    QCOMPARE(seen, menu);
    // "No valid files selected" only tells; it is not a command.
    QCOMPARE(firstEnabled, menu != QLatin1String("No valid files selected"));
    QTRY_COMPARE(pair.window.ActiveSide(), side);
    if (!reviewed.isEmpty())
        QTRY_COMPARE(review, reviewed);
    QTest::qWait(50);
    QCOMPARE(review, reviewed);
}

void tst_ToolsMenu::copyToDestinationEndToEnd() {
    ComparedPair pair;
    const QStringList before[2] = {pair.texts(0), pair.texts(1)};
    // The placeholder of "Only Dest.txt" is selected too: it has no file to copy.
    pair.select(0, {QStringLiteral("Report A.txt"), QStringLiteral("Sub Dir/New File.txt"),
                    QStringLiteral("Only Dest.txt")});
    QVERIFY(pair.focus(pair.list(0)));

    QStringList review;
    QStringList questions;
    bool prompting = false;
    ModalWatcher watcher([&](QWidget *shown) {
        if (auto *form = qobject_cast<frmSynchronizer *>(shown)) {
            review << form->windowTitle() << form->StatusText();
            for (int i = 0; i < form->lvwFiles->topLevelItemCount(); ++i) {
                const QTreeWidgetItem *row = form->lvwFiles->topLevelItem(i);
                review << row->text(3) + QStringLiteral(": ") + row->text(2) +
                              QStringLiteral(" from ") + row->text(1);
            }
            prompting = form->chkPrompt->isChecked();
            form->cmdOK->click();
            return true;
        }
        if (auto *box = qobject_cast<QMessageBox *>(shown)) {
            questions << box->text();
            box->button(QMessageBox::Yes)->click();
            return true;
        }
        return false;
    });
    QMenu *menu = pair.openMenu(Qt::Key_T);
    QVERIFY(menu);
    QVERIFY(pair.window.menus->mnuToolsCopyToDest->isEnabled());
    QTest::keyClick(menu, Qt::Key_D);

    QTRY_VERIFY(!review.isEmpty());
    QCOMPARE(review.mid(0, 2), (QStringList{QStringLiteral("copy to destination"),
                                            QStringLiteral("  2 files to copy.")}));
    QStringList targets = review.mid(2);
    targets.sort();
    QCOMPARE(targets, (QStringList{pair.tree.path("Dst/Report A.txt") + ": Copy (overwrite) from " +
                                       pair.roots[0],
                                   pair.tree.path("Dst/Sub Dir/New File.txt") +
                                       ": Copy (new) from " + pair.tree.path("Src/Sub Dir")}));
    // Prompting is on: the one file that is replaced is asked about.
    QVERIFY(prompting);
    QTRY_COMPARE(questions.size(), 1);
    QVERIFY2(questions.first().contains(QStringLiteral("Report A.txt")),
             qPrintable(questions.first()));
    QTRY_COMPARE(contentsOf(pair.tree.path("Dst/Report A.txt")), QByteArray("the new report"));
    QTRY_COMPARE(contentsOf(pair.tree.path("Dst/Sub Dir/New File.txt")), QByteArray("fresh"));
    QCOMPARE(contentsOf(pair.tree.path("Dst/Only Dest.txt")), QByteArray("kept"));
    QVERIFY(!QFile::exists(pair.tree.path("Src/Only Dest.txt")));
    QVERIFY(!QFile::exists(pair.tree.path("Dst/other/b.txt"))); // not selected
    // The listings show the compare they came from until the next one.
    QCOMPARE(pair.texts(0), before[0]);
    QCOMPARE(pair.texts(1), before[1]);
    // The copies kept sizes and times to the nanosecond: a new compare finds those pairs equal.
    pair.compare();
    QStringList rows = pair.rows(0);
    rows.sort();
    QCOMPARE(rows, (QStringList{"Only Dest.txt", "other/b.txt"}));
}

void tst_ToolsMenu::examineDifferencesFromAPlaceholder() {
    TestTree bin;
    const QString record = bin.path("record");
    // Read at start-up, as a user's saved choice is.
    Options::setDiffEXE(writeRecordingProgram(bin, record));
    ComparedPair pair;
    // Missing in the source: its path is still handed over, first, below the source root.
    pair.select(0, {QStringLiteral("Only Dest.txt")});
    QVERIFY(pair.focus(pair.list(0)));
    QMenu *menu = pair.openMenu(Qt::Key_T);
    QVERIFY(menu);
    QVERIFY(pair.window.menus->mnuToolsDiff->isEnabled());
    QTest::keyClick(menu, Qt::Key_F);

    QTRY_VERIFY(QFile::exists(record));
    QCOMPARE(QString::fromUtf8(contentsOf(record)),
             QStringLiteral("2\n%1/Only Dest.txt\n%2/Only Dest.txt\n")
                 .arg(pair.roots[0], pair.roots[1]));
}

void tst_ToolsMenu::doubleClickExaminesOrOpens_data() {
    QTest::addColumn<int>("side");
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("record");    // "diffed" or "opened"
    QTest::addColumn<QString>("arguments"); // <S> and <D> stand for the two roots
    QTest::newRow("on both sides") << 1 << "Report A.txt"
                                   << "diffed"
                                   << "2\n<S>/Report A.txt\n<D>/Report A.txt\n";
    QTest::newRow("source only, in the destination's listing") << 1 << "other/b.txt"
                                                               << "opened"
                                                               << "1\n<S>/other/b.txt\n";
    QTest::newRow("destination only") << 0 << "Only Dest.txt"
                                      << "opened"
                                      << "1\n<D>/Only Dest.txt\n";
}

void tst_ToolsMenu::doubleClickExaminesOrOpens() {
    QFETCH(int, side);
    QFETCH(QString, row);
    QFETCH(QString, record);
    QFETCH(QString, arguments);
    for (const char *name : {"diffed", "opened"})
        QFile::remove(m_bin.path(QLatin1String(name)));
    Options::setDiffEXE(writeRecordingProgram(m_bin, m_bin.path("diffed")));
    ComparedPair pair;
    ListView *list = pair.list(side);
    const int position = pair.row(side, row);
    QVERIFY(position >= 0);
    // Rows reach the view in batches.
    QTRY_VERIFY(list->model()->rowCount() > position);
    const QModelIndex index = list->model()->index(position, 0);
    list->scrollTo(index);
    // A double click is a click and then the second press, as the window system sends it.
    const QPoint at = list->visualRect(index).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);

    QTRY_VERIFY(QFile::exists(m_bin.path(record)));
    arguments.replace(QStringLiteral("<S>"), pair.roots[0]);
    arguments.replace(QStringLiteral("<D>"), pair.roots[1]);
    QCOMPARE(QString::fromUtf8(contentsOf(m_bin.path(record))), arguments);
    QTest::qWait(200);
    QCOMPARE(QDir(m_bin.root()).entryList({"diffed", "opened"}), QStringList{record});
}

QTEST_MAIN(tst_ToolsMenu)
#include "tst_ToolsMenu.moc"
