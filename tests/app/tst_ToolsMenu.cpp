#include "ComparedWindow.h"

#include "settings/Options.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/frmSynchronizer.h"
#include "views/ListColumns.h"

#include <QAction>
#include <QCheckBox>
#include <QContextMenuEvent>

/** The Tools menu and the listings' right-click popup in the window, after a real compare. */
namespace {

/**
 * A shown window over a compared pair of trees whose names have capitals and blanks, so that a
 * lower-cased row key handed to the disk would miss: "Report A.txt" on both sides, different;
 * "Sub Dir/New File.txt" and "other/b.txt" in the source alone; "Only Dest.txt" in the
 * destination alone. Linked with placeholders (the defaults), both lists show all four.
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
};

/** A program that records its argument count and arguments, one per line, in \a record. */
QString writeRecordingProgram(const TestTree &tree, const QString &record) {
    const QString program = tree.path("bin dir/record " + QFileInfo(record).fileName());
    QFile file(program);
    if (!QDir().mkpath(tree.path("bin dir")) || !file.open(QIODevice::WriteOnly))
        return {};
    file.write("#!/bin/sh\nout='" + QFile::encodeName(record) +
               "'\nprintf '%s\\n' \"$#\" \"$@\" > \"$out.part\" && mv \"$out.part\" \"$out\"\n");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return program;
}

QByteArray contentsOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

} // namespace

class tst_ToolsMenu : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        // The desktop's default application for text files records what it was given.
        const QString opener = writeRecordingProgram(m_bin, m_bin.path("opened"));
        const QString applications = m_profile.dataHome() + QStringLiteral("/applications/");
        QVERIFY(QDir().mkpath(applications) && QDir().mkpath(m_profile.configHome()));
        const QList<QPair<QString, QByteArray>> files = {
            {applications + "opener.desktop", "[Desktop Entry]\nType=Application\nName=Opener\n"
                                              "MimeType=text/plain;\nExec=\"" +
                                                  QFile::encodeName(opener) + "\" %F\n"},
            {applications + "mimeinfo.cache", "[MIME Cache]\ntext/plain=opener.desktop;\n"},
            {m_profile.configHome() + "/mimeapps.list",
             "[Default Applications]\ntext/plain=opener.desktop\n"}};
        for (const auto &[name, content] : files) {
            QFile file(name);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        }
    }
    void init() { m_profile.clear(); }
    void copyToDestinationEndToEnd() {
        ComparedPair pair;
        const QStringList rows = pair.rows(1);
        // The placeholder of "Only Dest.txt" is selected too: it has no file to copy.
        pair.select(0, {"Report A.txt", "Sub Dir/New File.txt", "Only Dest.txt"});
        // Tools acts on the listing with the focus, and there is none in the folder box.
        QVERIFY(pair.focus(pair.folder(0)));
        QMenu *menu = pair.openMenu(Qt::Key_T);
        QVERIFY(!pair.item("Copy to &Destination...")->isEnabled());
        menu->close();
        QVERIFY(pair.focus(pair.list(0)));
        QStringList review, questions;
        bool prompting = false;
        ModalWatcher watcher([&](QWidget *shown) {
            if (auto *form = qobject_cast<frmSynchronizer *>(shown)) {
                review << form->windowTitle() << form->StatusText();
                prompting = form->chkPrompt->isChecked();
                form->cmdOK->click();
                return true;
            }
            auto *box = qobject_cast<QMessageBox *>(shown);
            if (box) {
                questions << box->text();
                box->button(QMessageBox::Yes)->click();
            }
            return box != nullptr;
        });
        QTest::keyClick(pair.openMenu(Qt::Key_T), Qt::Key_D);

        QTRY_VERIFY(!review.isEmpty());
        QCOMPARE(review, (QStringList{"copy to destination", "  2 files to copy."}));
        // Prompting is on: the one file that is replaced is asked about.
        QVERIFY(prompting);
        QTRY_COMPARE(questions.size(), 1);
        QVERIFY2(questions[0].contains("Report A.txt"), qPrintable(questions[0]));
        QTRY_COMPARE(contentsOf(pair.tree.path("Dst/Report A.txt")), QByteArray("the new report"));
        QTRY_COMPARE(contentsOf(pair.tree.path("Dst/Sub Dir/New File.txt")), QByteArray("fresh"));
        QCOMPARE(contentsOf(pair.tree.path("Dst/Only Dest.txt")), QByteArray("kept"));
        QVERIFY(!QFile::exists(pair.tree.path("Src/Only Dest.txt")));
        QVERIFY(!QFile::exists(pair.tree.path("Dst/other/b.txt"))); // not selected
        QCOMPARE(pair.rows(1), rows); // the listings show their compare until the next one
        // The copies kept sizes and times to the nanosecond: a new compare finds those pairs equal.
        pair.compare();
        QStringList left = pair.rows(0);
        left.sort();
        QCOMPARE(left, (QStringList{"Only Dest.txt", "other/b.txt"}));
    }
    void examineOrOpen_data() {
        // How: 0 Tools > Examine Differences, 1 the right-click popup, 2 a double click.
        QTest::addColumn<int>("how");
        QTest::addColumn<int>("side");
        QTest::addColumn<QString>("row");
        // The diff program's two arguments, or the opener's one; <S>, <D> the two roots.
        QTest::addColumn<QString>("arguments");
        // A placeholder's path is still handed over, first, below the source root.
        QTest::newRow("menu, source placeholder") << 0 << 0 << "Only Dest.txt"
                                                  << "2\n<S>/Only Dest.txt\n<D>/Only Dest.txt\n";
        QTest::newRow("popup, destination listing") << 1 << 1 << "Report A.txt"
                                                    << "2\n<S>/Report A.txt\n<D>/Report A.txt\n";
        QTest::newRow("double click, on both sides") << 2 << 1 << "Report A.txt"
                                                     << "2\n<S>/Report A.txt\n<D>/Report A.txt\n";
        QTest::newRow("double click, source only, in the destination's listing")
            << 2 << 1 << "other/b.txt"
            << "1\n<S>/other/b.txt\n";
        QTest::newRow("double click, destination only") << 2 << 0 << "Only Dest.txt"
                                                        << "1\n<D>/Only Dest.txt\n";
    }
    void examineOrOpen() {
        QFETCH(int, how);
        QFETCH(int, side);
        QFETCH(QString, row);
        QFETCH(QString, arguments);
        const QString record = arguments.startsWith('2') ? "diffed" : "opened";
        for (const char *name : {"diffed", "opened"})
            QFile::remove(m_bin.path(QLatin1String(name)));
        // Read at start-up, as a user's saved choice is.
        Options::setDiffEXE(writeRecordingProgram(m_bin, m_bin.path("diffed")));
        ComparedPair pair;
        ListView *list = pair.list(side);
        ModalWatcher watcher([](QWidget *shown) {
            auto *popup = qobject_cast<QMenu *>(shown);
            for (QAction *item : popup ? popup->actions() : QList<QAction *>()) {
                if (item->text() == QLatin1String("Examine Differences"))
                    item->trigger();
            }
            if (popup)
                popup->close();
            return popup != nullptr;
        });
        if (how < 2) {
            pair.select(side, {row});
            // The right-click gives the focus to the listing.
            QVERIFY(pair.focus(how ? static_cast<QWidget *>(pair.folder(0)) : list));
            if (how == 0)
                QTest::keyClick(pair.openMenu(Qt::Key_T), Qt::Key_F);
            QContextMenuEvent click(QContextMenuEvent::Mouse, QPoint(20, 5),
                                    list->viewport()->mapToGlobal(QPoint(20, 5)));
            if (how == 1)
                QApplication::sendEvent(list->viewport(), &click);
            QTRY_COMPARE(pair.window.ActiveSide(), side);
        } else {
            const int position = pair.row(side, row);
            QTRY_VERIFY(list->model()->rowCount() > position); // rows reach the view in batches
            const QModelIndex index = list->model()->index(position, 0);
            list->scrollTo(index);
            // A double click is a click and then the second press, as the window system sends it.
            const QPoint at = list->visualRect(index).center();
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        }
        QTRY_VERIFY(QFile::exists(m_bin.path(record)));
        arguments.replace("<S>", pair.roots[0]).replace("<D>", pair.roots[1]);
        QCOMPARE(QString::fromUtf8(contentsOf(m_bin.path(record))), arguments);
        QTest::qWait(200);
        QCOMPARE(QDir(m_bin.root()).entryList({"diffed", "opened"}), QStringList{record});
    }

private:
    TestProfile m_profile;
    TestTree m_bin;
};

QTEST_MAIN(tst_ToolsMenu)
#include "tst_ToolsMenu.moc"
