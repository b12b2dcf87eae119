#include "engine/ComparisonFileCollection.h"
#include "support/CopyScript.h"
#include "support/FatImage.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/CopyProgressDialog.h"
#include "tools/Synchronizer.h"
#include "tools/frmSynchronizer.h"
#include "views/AddToListview.h"
#include "views/FileListModel.h"
#include "views/ListView.h"

#include <QApplication>
#include <QCheckBox>
#include <QTest>
#include <QTreeWidget>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/** Compares \a from with \a to, selects \a name in the from side's listing and opens the review. */
void review(QWidget *owner, const QString &from, const QString &to, const QString &name) {
    ComparisonFileCollection source, destination;
    source.setRootFolder(from);
    destination.setRootFolder(to);
    ListView listing;
    std::vector<bool> wanted;
    for (const ComparisonFilePtr &file : source) {
        AddToListview(file, &listing, nullptr);
        wanted.push_back(file->Name() == name);
    }
    listing.setSelectedRows(wanted);
    ShowSynchronizer(owner, SyncDirection::ToDestination, &listing, source, destination);
}

} // namespace

class tst_Synchronizer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(m_profile.isValid());
        m_owner.resize(640, 480);
        m_owner.show();
    }
    void targetIsTheCounterpartOrBelowTheOtherRoot() {
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("src/Sub/Report.TXT"), "new"));
        QVERIFY(tree.write(QStringLiteral("src/Sub/only here.txt"), "only"));
        QVERIFY(tree.write(QStringLiteral("dst/sub/report.txt"), "old"));
        ComparisonFileCollection source, destination;
        source.setCaseRule(CaseRule::Insensitive);
        destination.setCaseRule(CaseRule::Insensitive);
        source.setRootFolder(tree.path(QStringLiteral("src")));
        destination.setRootFolder(tree.path(QStringLiteral("dst")));
        const ComparisonFilePtr paired =
            source.Item(tree.path(QStringLiteral("src/Sub/Report.TXT")));
        const ComparisonFilePtr alone =
            source.Item(tree.path(QStringLiteral("src/Sub/only here.txt")));
        QVERIFY(paired && alone);
        // Paired despite letter case, as on a FAT destination: the existing file, not a twin.
        QCOMPARE(SyncTarget(*paired, source, destination), tree.nativePath("dst/sub/report.txt"));
        QCOMPARE(SyncTarget(*alone, source, destination), tree.nativePath("dst/Sub/only here.txt"));
        QVERIFY(SyncTarget(*alone, source, ComparisonFileCollection()).isEmpty());
    }
    void reviewTellsWhatTheCopyWillDo_data() {
        // The file copied, below src; what is in the way below dst; what the review's Action starts
        // with; what the target then holds ("<unreadable>": the review is cancelled).
        QTest::addColumn<QStringList>("copy");
        QTest::newRow("new") << QStringList{"sub/a.txt", "", "Copy (new)", "new"};
        QTest::newRow("overwrite") << QStringList{"a.txt", "file a.txt", "Copy (overwrite)", "new"};
        QTest::newRow("a link in a folder of the target") << QStringList{
            "sub/a.txt", "link sub", "Not copied: “%1/sub” is a symbolic link", "outside"};
        QTest::newRow("cancelled") << QStringList{"a.txt", "", "Copy (new)", "<unreadable>"};
    }
    void reviewTellsWhatTheCopyWillDo() {
        QFETCH(QStringList, copy);
        const QString &name = copy[0], &setUp = copy[1];
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("src/") + name, "new"));
        QVERIFY(tree.write(QStringLiteral("outside/a.txt"), "outside"));
        QVERIFY(tree.mkdir(QStringLiteral("dst")));
        const QString inTheWay = QStringLiteral("dst/") + setUp.section(QLatin1Char(' '), 1);
        if (setUp.startsWith(QLatin1String("file")))
            QVERIFY(tree.write(inTheWay, "old"));
        else if (setUp.startsWith(QLatin1String("link")))
            QCOMPARE(::symlink(tree.nativePath("outside").constData(),
                               tree.nativePath(inTheWay.toUtf8()).constData()),
                     0);
        const QString action = copy[2].contains(QLatin1String("%1"))
                                   ? copy[2].arg(tree.path(QStringLiteral("dst")))
                                   : copy[2];

        QString shownAction, shownCount;
        ModalWatcher watcher([&](QWidget *modal) {
            auto *form = qobject_cast<frmSynchronizer *>(modal);
            if (!form)
                return false;
            shownAction = form->lvwFiles->topLevelItem(0)->text(2);
            shownCount = form->StatusText();
            form->chkPrompt->setChecked(false);
            (copy[3] == QLatin1String("<unreadable>") ? form->cmdCancel : form->cmdOK)->click();
            return true;
        });
        review(&m_owner, tree.path(QStringLiteral("src")), tree.path(QStringLiteral("dst")),
               name.section(QLatin1Char('/'), -1));
        QVERIFY2(shownAction.startsWith(action), qPrintable(shownAction));
        QCOMPARE(shownCount, QStringLiteral("  1 file to copy."));
        QCOMPARE(readNative(tree.nativePath("outside/a.txt")), QByteArray("outside"));
        QCOMPARE(readNative(tree.nativePath("dst/" + name.toUtf8())), copy[3].toUtf8());
        // A copy goes without a word; a refusal is named again in the end report.
        const bool refused = action.startsWith(QLatin1String("Not copied"));
        QCOMPARE(watcher.texts().size(), refused ? 1 : 0);
        if (refused)
            QVERIFY2(watcher.texts().first().contains(shownAction.mid(qstrlen("Not copied: "))),
                     qPrintable(watcher.texts().first()));
    }
    void questionIsAboveTheProgressWindow_data() {
        QTest::addColumn<bool>("progressShown");
        QTest::newRow("progress window already shown") << true;
        QTest::newRow("progress window not shown yet") << false;
    }
    void questionIsAboveTheProgressWindow() {
        QFETCH(bool, progressShown);
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("dst/a.txt"), "old"));
        const CopyItem copied = item(tree, "src/a.txt", "dst/a.txt");
        CopyJob job({copied});
        CopyProgressDialog progress(job, &m_owner);
        if (progressShown) {
            progress.show();
            QVERIFY(QTest::qWaitForWindowActive(&progress));
        }
        QList<bool> seen;
        ModalWatcher watcher([&](QWidget *shown) {
            auto *box = qobject_cast<QMessageBox *>(shown);
            if (!box)
                return false;
            // A child of the progress window, so no window manager puts it below; shown after it,
            // with the keyboard (activation is asynchronous: a busy machine needs a moment).
            seen << (box->parentWidget() == &progress) << progress.isVisible()
                 << QTest::qWaitFor([box] { return QApplication::activeWindow() == box; }, 2000);
            QWidget *focus = QApplication::focusWidget();
            QTest::keyClick(focus && focus->window() == box ? focus : box, Qt::Key_Return);
            return true;
        });
        QCOMPARE(progress.askReplace(copied), ReplaceAnswer::Yes); // Enter picks the default
        QCOMPARE(seen, (QList<bool>{true, true, true}));
    }
    void copiesToFatOverFuse() {
        // A FAT stick as a desktop mounts it: names without regard to case, no permissions, no
        // truncation, no unnamed temporary files.
        FatImage fat;
        if (!fat.isMounted())
            QSKIP(qPrintable(fat.reason()));
        TestTree tree;
        QVERIFY(QDir(fat.root()).mkdir(QStringLiteral("docs")));
        QVERIFY(tree.write(QStringLiteral("src/Docs/x.txt"), "copied"));
        QCOMPARE(::chmod(tree.nativePath("src/Docs/x.txt").constData(), 0640), 0);

        QString destination;
        ModalWatcher watcher([&](QWidget *modal) {
            auto *form = qobject_cast<frmSynchronizer *>(modal);
            if (!form)
                return false;
            destination = form->lvwFiles->topLevelItem(0)->text(3);
            form->cmdOK->click();
            return true;
        });
        review(&m_owner, tree.path(QStringLiteral("src")), fat.root(), QStringLiteral("x.txt"));
        // The existing folder, as the stick spells it, is where the file goes.
        QCOMPARE(destination, fat.root() + QStringLiteral("/docs/x.txt"));
        QCOMPARE(readNative(QFile::encodeName(fat.root()) + "/docs/x.txt"), QByteArray("copied"));
        QCOMPARE(QDir(fat.root()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("docs")});
        QCOMPARE(QDir(fat.root() + QStringLiteral("/docs")).entryList(QDir::Files | QDir::Hidden),
                 QStringList{QStringLiteral("x.txt")});
        QCOMPARE(watcher.texts().size(), 1); // the note: the stick keeps no permissions
        QVERIFY2(watcher.texts().first().contains(QLatin1String("with notes")),
                 qPrintable(watcher.texts().first()));
    }

private:
    TestProfile m_profile;
    QWidget m_owner;
};

QTEST_MAIN(tst_Synchronizer)
#include "tst_Synchronizer.moc"
