#include "AppProfile.h"

#include "app/MainMenuBar.h"
#include "app/frmMain.h"
#include "settings/Options.h"
#include "settings/SettingsStore.h"
#include "support/TestTree.h"
#include "tools/ShowInFolder.h"
#include "tools/frmSelectDiff.h"
#include "tools/frmSynchronizer.h"
#include "views/ListView.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>
#include <sys/stat.h>

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
    void examineDifferencesPassesRealPaths_data();
    void examineDifferencesPassesRealPaths();
    void selectDiffProgram_data();
    void selectDiffProgram();

private:
    std::unique_ptr<AppProfile> m_profile;
};

namespace {

/** Hands each modal window that opens to a handler, once, while it lives. */
class ModalAnswers {
public:
    explicit ModalAnswers(std::function<void(QWidget *)> handler)
        : m_handler(std::move(handler)) {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            QWidget *modal = QApplication::activeModalWidget();
            if (modal && modal != m_last) {
                m_last = modal;
                m_handler(modal);
            }
        });
        m_timer.start();
    }

private:
    std::function<void(QWidget *)> m_handler;
    QTimer m_timer;
    QPointer<QWidget> m_last;
};

/** Clicks the button with \a button's role in message box \a box, or its default one. */
void answer(QMessageBox *box, QMessageBox::StandardButton button) {
    QAbstractButton *chosen = box->button(button);
    if (!chosen)
        chosen = box->defaultButton();
    chosen->click();
}

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
struct ComparedPair {
    ComparedPair() {
        QVERIFY(tree.write("Src/Report A.txt", "the new report"));
        QVERIFY(tree.write("Src/Sub Dir/New File.txt", "fresh"));
        QVERIFY(tree.write("Src/other/b.txt", "b"));
        QVERIFY(tree.write("Dst/Report A.txt", "old"));
        QVERIFY(tree.write("Dst/Only Dest.txt", "kept"));
        QVERIFY(tree.setTimes("Src/Report A.txt", 1700000000, 123456789));
        QVERIFY(tree.setTimes("Src/Sub Dir/New File.txt", 1600000000, 987654321));
        window.InitializeDisplay();
        window.resize(900, 600);
        window.show();
        window.cboSelectPath[0]->setEditText(root(0));
        window.cboSelectPath[1]->setEditText(root(1));
        window.cmdCompare->click();
        QCOMPARE(window.lvwFiles[0]->ItemCount(), 4);
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    QString root(int side) const { return tree.path(side ? "Dst" : "Src"); }
    QString key(int side, const QString &relative) const {
        return (root(side) + QLatin1Char('/') + relative).toLower();
    }

    /** Selects exactly the rows of \a relatives in list \a side (and, linked, the other). */
    void select(int side, const QStringList &relatives) {
        ListView *list = window.lvwFiles[size_t(side)];
        list->ClearSelections();
        for (const QString &relative : relatives) {
            ListItem row = list->ItemByKey(key(side, relative));
            QVERIFY2(row, qPrintable(relative));
            row.setSelected(true);
        }
    }

    bool focus(QWidget *widget) {
        widget->setFocus(Qt::OtherFocusReason);
        return QTest::qWaitFor([widget] { return widget->hasFocus(); });
    }

    /** Opens the Tools menu from the keyboard, as Alt+T does for a user. */
    QMenu *openTools() {
        QTest::keyClick(&window, Qt::Key_T, Qt::AltModifier);
        if (!QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }))
            return nullptr;
        return qobject_cast<QMenu *>(QApplication::activePopupWidget());
    }

    /** Every row of list \a side: its key and its texts, in order. */
    QStringList rows(int side) const {
        QStringList result;
        const ListView *list = window.lvwFiles[size_t(side)];
        for (int i = 1; i <= list->ItemCount(); ++i) {
            const ListItem row = list->Item(i);
            QStringList texts{row.Key(), row.Text()};
            for (int column = 1; column < list->ColumnCount(); ++column)
                texts << row.SubItems(column);
            result << texts.join(QLatin1Char('|'));
        }
        return result;
    }

    TestTree tree;
    frmMain window;
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

struct StatTimes {
    qint64 size = -1;
    timespec modified{};
};

StatTimes statOf(const QString &path) {
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return {};
    return {qint64(st.st_size), st.st_mtim};
}

QByteArray contentsOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

} // namespace

void tst_ToolsMenu::initTestCase() {
    m_profile = std::make_unique<AppProfile>();
    QVERIFY(m_profile->isValid());
}

void tst_ToolsMenu::init() {
    QFile::remove(SettingsStore::fileName());
}

void tst_ToolsMenu::toolsMenuEnabling_data() {
    QTest::addColumn<int>("focus"); // 0 or 1: that listing; -1: the source folder combo
    QTest::addColumn<QStringList>("selected");
    QTest::addColumn<bool>("diffProgram");
    QTest::addColumn<QString>("enabled");   // Open, Diff, to Source, to Destination as 0 and 1
    QTest::addColumn<QString>("shownFile"); // Open Containing Folder's item; "" for none

    const QStringList report{QStringLiteral("Report A.txt")};
    QTest::newRow("source list, diff program") << 0 << report << true << "1101"
                                               << "Src/Report A.txt";
    QTest::newRow("source list, no diff program") << 0 << report << false << "1001"
                                                  << "Src/Report A.txt";
    QTest::newRow("source list, nothing selected") << 0 << QStringList() << true << "0000"
                                                   << "";
    QTest::newRow("destination list") << 1 << report << true << "1110"
                                      << "Dst/Report A.txt";
    // A placeholder is a selected row, but there is no file to show.
    QTest::newRow("destination placeholder")
        << 1 << QStringList{QStringLiteral("Sub Dir/New File.txt")} << true << "1110"
        << "";
    QTest::newRow("folder combo") << -1 << report << true << "0000"
                                  << "";
}

void tst_ToolsMenu::toolsMenuEnabling() {
    QFETCH(int, focus);
    QFETCH(QStringList, selected);
    QFETCH(bool, diffProgram);
    QFETCH(QString, enabled);
    QFETCH(QString, shownFile);

    TestTree bin;
    if (diffProgram)
        Options::setDiffEXE(writeRecordingProgram(bin, bin.path("record")));
    ComparedPair pair;
    const int side = focus < 0 ? 0 : focus;
    pair.select(side, selected);
    QVERIFY(pair.focus(focus < 0 ? static_cast<QWidget *>(pair.window.cboSelectPath[0])
                                 : pair.window.lvwFiles[size_t(focus)]));

    const MainMenuBar &m = *pair.window.menus;
    QMenu *menu = pair.openTools();
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
    QTest::addColumn<QString>("pick");     // an own item to choose, or ""
    QTest::addColumn<QString>("menu");     // the popup's title, or its first item
    QTest::addColumn<QString>("reviewed"); // the review dialog's caption, "" for none

    QTest::newRow("nothing selected") << 0 << QStringList() << ""
                                      << "No valid files selected"
                                      << "";
    QTest::newRow("two folders") << 0
                                 << QStringList{QStringLiteral("Report A.txt"),
                                                QStringLiteral("Sub Dir/New File.txt")}
                                 << ""
                                 << "&Tools"
                                 << "";
    QTest::newRow("only placeholders")
        << 1 << QStringList{QStringLiteral("Sub Dir/New File.txt"), QStringLiteral("other/b.txt")}
        << ""
        << "&Tools"
        << "";
    QTest::newRow("copy to destination")
        << 0 << QStringList{QStringLiteral("Report A.txt")} << "Copy To Destination..."
        << "Open Containing Folder"
        << "copy to destination";
    QTest::newRow("copy to source")
        << 1 << QStringList{QStringLiteral("Only Dest.txt")} << "Copy To Source..."
        << "Open Containing Folder"
        << "copy to source";
}

void tst_ToolsMenu::listingPopup() {
    QFETCH(int, side);
    QFETCH(QStringList, selected);
    QFETCH(QString, pick);
    QFETCH(QString, menu);
    QFETCH(QString, reviewed);

    ComparedPair pair;
    pair.select(side, selected);
    // The focus starts elsewhere: the right-click gives it to the listing.
    QVERIFY(pair.focus(pair.window.cboSelectPath[0]));

    QString seen;
    bool firstEnabled = true;
    QTimer closer;
    closer.setInterval(10);
    connect(&closer, &QTimer::timeout, &closer, [&] {
        auto *popup = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!popup || popup->actions().isEmpty())
            return;
        closer.stop();
        const QAction *first = popup->actions().first();
        seen = popup->title().isEmpty() ? first->text() : popup->title();
        firstEnabled = first->isEnabled();
        for (QAction *item : popup->actions()) {
            if (!pick.isEmpty() && item->text() == pick)
                item->trigger();
        }
        popup->close();
    });
    closer.start();
    QString review;
    ModalAnswers answers([&review](QWidget *modal) {
        if (auto *form = qobject_cast<frmSynchronizer *>(modal)) {
            review = form->windowTitle();
            form->cmdCancel->click();
        }
    });

    ListView *list = pair.window.lvwFiles[size_t(side)];
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
    const QStringList before[2] = {pair.rows(0), pair.rows(1)};
    // The placeholder of "Only Dest.txt" is selected too: it has no file to copy.
    pair.select(0, {QStringLiteral("Report A.txt"), QStringLiteral("Sub Dir/New File.txt"),
                    QStringLiteral("Only Dest.txt")});
    QVERIFY(pair.focus(pair.window.lvwFiles[0]));

    QStringList review;
    QStringList questions;
    ModalAnswers answers([&](QWidget *modal) {
        if (auto *form = qobject_cast<frmSynchronizer *>(modal)) {
            review << form->windowTitle() << form->StatusText();
            for (int i = 1; i <= form->lvwFiles->ItemCount(); ++i)
                review << form->lvwFiles->Item(i).SubItems(3) + QStringLiteral(": ") +
                              form->lvwFiles->Item(i).SubItems(2);
            QVERIFY(form->chkPrompt->isChecked());
            form->cmdOK->click();
        } else if (auto *box = qobject_cast<QMessageBox *>(modal)) {
            questions << box->text();
            answer(box, QMessageBox::Yes);
        }
    });
    QMenu *menu = pair.openTools();
    QVERIFY(menu);
    QVERIFY(pair.window.menus->mnuToolsCopyToDest->isEnabled());
    QTest::keyClick(menu, Qt::Key_D);

    QTRY_VERIFY(!review.isEmpty());
    QCOMPARE(review.mid(0, 2), (QStringList{QStringLiteral("copy to destination"),
                                            QStringLiteral("  2 files to copy.")}));
    QStringList targets = review.mid(2);
    targets.sort();
    QCOMPARE(targets, (QStringList{pair.tree.path("Dst/Report A.txt") + ": Copy (overwrite)",
                                   pair.tree.path("Dst/Sub Dir/New File.txt") + ": Copy (new)"}));
    // Prompting is on: the one file that is replaced is asked about.
    QTRY_COMPARE(questions.size(), 1);
    QVERIFY2(questions.first().contains(QStringLiteral("Report A.txt")),
             qPrintable(questions.first()));

    for (const char *relative : {"Report A.txt", "Sub Dir/New File.txt"}) {
        const QString from = pair.tree.path(QStringLiteral("Src/") + QLatin1String(relative));
        const QString to = pair.tree.path(QStringLiteral("Dst/") + QLatin1String(relative));
        QTRY_COMPARE(contentsOf(to), contentsOf(from));
        const StatTimes source = statOf(from);
        const StatTimes target = statOf(to);
        QCOMPARE(target.modified.tv_sec, source.modified.tv_sec);
        QCOMPARE(target.modified.tv_nsec, source.modified.tv_nsec);
    }
    QCOMPARE(contentsOf(pair.tree.path("Dst/Only Dest.txt")), QByteArray("kept"));
    QVERIFY(!QFile::exists(pair.tree.path("Src/Only Dest.txt")));
    // The listings show the compare they came from until the next one.
    QCOMPARE(pair.rows(0), before[0]);
    QCOMPARE(pair.rows(1), before[1]);
}

void tst_ToolsMenu::examineDifferencesPassesRealPaths_data() {
    QTest::addColumn<int>("side");
    QTest::addColumn<QString>("file");

    QTest::newRow("pair, from the source list") << 0 << "Report A.txt";
    QTest::newRow("pair, from the destination list") << 1 << "Report A.txt";
    // Missing on the other side: that path is still handed over, below the other root.
    QTest::newRow("source only") << 0 << "Sub Dir/New File.txt";
    QTest::newRow("destination only, from its placeholder") << 0 << "Only Dest.txt";
    QTest::newRow("destination only") << 1 << "Only Dest.txt";
}

void tst_ToolsMenu::examineDifferencesPassesRealPaths() {
    QFETCH(int, side);
    QFETCH(QString, file);

    TestTree bin;
    const QString record = bin.path("record");
    // Read at start-up, as a user's saved choice is.
    Options::setDiffEXE(writeRecordingProgram(bin, record));
    ComparedPair pair;
    pair.select(side, {file});
    QVERIFY(pair.focus(pair.window.lvwFiles[size_t(side)]));
    QMenu *menu = pair.openTools();
    QVERIFY(menu);
    QVERIFY(pair.window.menus->mnuToolsDiff->isEnabled());
    QTest::keyClick(menu, Qt::Key_F);

    QTRY_VERIFY(QFile::exists(record));
    const QString expected =
        QStringList{QStringLiteral("2"), pair.root(0) + QLatin1Char('/') + file,
                    pair.root(1) + QLatin1Char('/') + file}
            .join(QLatin1Char('\n')) +
        QLatin1Char('\n');
    QCOMPARE(QString::fromUtf8(contentsOf(record)), expected);
}

void tst_ToolsMenu::selectDiffProgram_data() {
    QTest::addColumn<QString>("typed"); // "program", "folder" or a missing name
    QTest::addColumn<bool>("usable");

    QTest::newRow("a program") << "program" << true;
    QTest::newRow("a folder") << "folder" << false;
    QTest::newRow("a missing name") << "no such program" << false;
}

void tst_ToolsMenu::selectDiffProgram() {
    QFETCH(QString, typed);
    QFETCH(bool, usable);

    ComparedPair pair;
    const QString program = writeRecordingProgram(pair.tree, pair.tree.path("record"));
    const QString path = typed == QLatin1String("program")  ? program
                         : typed == QLatin1String("folder") ? pair.root(0)
                                                            : pair.tree.path(typed);
    const MainMenuBar &m = *pair.window.menus;
    QVERIFY(m.mnuToolsDiff->data().toString().isEmpty());
    QVERIFY(m.mnuFileSelectDiff->isEnabled());

    QString shownFirst = QStringLiteral("<not shown>");
    ModalAnswers answers([&](QWidget *modal) {
        if (auto *form = qobject_cast<frmSelectDiff *>(modal)) {
            shownFirst = form->txtDiff->text();
            form->txtDiff->setText(path);
            form->cmdOK->click();
        }
    });
    m.mnuFileSelectDiff->trigger();
    QCOMPARE(shownFirst, QString());
    // Saved as typed; only a program becomes the command's.
    QCOMPARE(Options::diffEXE(), path);
    QCOMPARE(m.mnuToolsDiff->data().toString(), usable ? path : QString());

    pair.select(0, {QStringLiteral("Report A.txt")});
    pair.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&pair.window));
    QVERIFY(pair.focus(pair.window.lvwFiles[0]));
    QMenu *menu = pair.openTools();
    QVERIFY(menu);
    QCOMPARE(m.mnuToolsDiff->isEnabled(), usable);
    menu->close();
}

QTEST_MAIN(tst_ToolsMenu)
#include "tst_ToolsMenu.moc"
