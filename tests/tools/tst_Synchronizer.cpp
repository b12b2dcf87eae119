#include "engine/ComparisonFileCollection.h"
#include "support/ChildRun.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/CopyProgressDialog.h"
#include "tools/Synchronizer.h"
#include "tools/frmSynchronizer.h"
#include "views/AddToListview.h"
#include "views/FileListModel.h"
#include "views/ImageList.h"
#include "views/ListView.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTest>
#include <QTreeWidget>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/** A compared pair of trees and a result listing of the from side, as the main window has. */
struct Sides {
    TestTree tree;
    ComparisonFileCollection source;
    ComparisonFileCollection destination;
    ListView listing;

    void walk() {
        source.setRootFolder(tree.path(QStringLiteral("src")));
        destination.setRootFolder(tree.path(QStringLiteral("dst")));
    }
    /** Lists \a from's records, placeholders included. */
    void list(const ComparisonFileCollection &from) {
        listing.files()->clear();
        for (const ComparisonFilePtr &file : from)
            AddToListview(file, &listing, nullptr);
    }
    void select(const QStringList &names) {
        std::vector<bool> wanted;
        for (int row = 0; row < listing.files()->count(); ++row)
            wanted.push_back(names.contains(listing.files()->record(row)->Name()));
        listing.setSelectedRows(wanted);
    }
    QByteArray read(const QString &relative) const {
        QFile file(tree.path(relative));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }
};

} // namespace

class tst_Synchronizer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void countText_data();
    void countText();
    void targetIsTheCounterpartOrBelowTheOtherRoot();
    void rootIsReplacedOnceAtTheStart();
    void reviewListsTheExistingFilesWithIcons();
    void nothingQualifyingSaysNoFilesToCopy();
    void cancelCopiesNothingAndPromptIsRemembered();
    void headerClickSortsAndTogglesOrder();
    void summaryNamesEveryFileNotCopied();
    void reviewTellsWhatTheCopyWillDo_data();
    void reviewTellsWhatTheCopyWillDo();
    void questionIsAboveTheProgressWindow_data();
    void questionIsAboveTheProgressWindow();
    void progressWindowKeepsItsWidth();
    void copiesToFatOverFuse();

private:
    TestProfile m_profile;
    QWidget m_owner;
};

void tst_Synchronizer::initTestCase() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    m_owner.resize(640, 480);
    m_owner.show();
}

void tst_Synchronizer::countText_data() {
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("text");
    QTest::newRow("one") << 1 << QStringLiteral("  1 file to copy.");
    QTest::newRow("thousands") << 1234 << QStringLiteral("  1,234 files to copy.");
}

void tst_Synchronizer::countText() {
    QFETCH(int, count);
    QFETCH(QString, text);
    QCOMPARE(SyncCountText(count), text);
}

void tst_Synchronizer::targetIsTheCounterpartOrBelowTheOtherRoot() {
    Sides s;
    QVERIFY(s.tree.write(QStringLiteral("src/Sub/Report.TXT"), "new"));
    QVERIFY(s.tree.write(QStringLiteral("src/Sub/only here.txt"), "only"));
    QVERIFY(s.tree.write(QStringLiteral("dst/sub/report.txt"), "old"));
    s.source.setCaseRule(CaseRule::Insensitive);
    s.destination.setCaseRule(CaseRule::Insensitive);
    s.walk();
    const ComparisonFilePtr paired =
        s.source.Item(s.tree.path(QStringLiteral("src/Sub/Report.TXT")));
    const ComparisonFilePtr alone =
        s.source.Item(s.tree.path(QStringLiteral("src/Sub/only here.txt")));
    QVERIFY(paired && alone);
    // The pair was matched despite letter case, as a FAT destination would: the existing file
    // is the target, not a twin.
    QCOMPARE(SyncTarget(*paired, s.source, s.destination), s.tree.nativePath("dst/sub/report.txt"));
    QCOMPARE(SyncTarget(*alone, s.source, s.destination),
             s.tree.nativePath("dst/Sub/only here.txt"));
    QVERIFY(SyncTarget(*alone, s.source, ComparisonFileCollection()).isEmpty());
}

void tst_Synchronizer::rootIsReplacedOnceAtTheStart() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("Data/x/data/y.txt"), "y"));
    QVERIFY(tree.mkdir(QStringLiteral("Backup")));
    ComparisonFileCollection from;
    ComparisonFileCollection to;
    from.setRootFolder(tree.path(QStringLiteral("data"))
                           .replace(QStringLiteral("/data"), QStringLiteral("/Data")));
    to.setRootFolder(tree.path(QStringLiteral("Backup")));
    QCOMPARE(from.Count(), 1);
    QCOMPARE(SyncTarget(**from.begin(), from, to), tree.nativePath("Backup/x/data/y.txt"));
}

void tst_Synchronizer::reviewListsTheExistingFilesWithIcons() {
    Sides s;
    for (const char *name : {"one/a.txt", "two/b.txt", "one/x.exe", "two/y.exe"})
        QVERIFY(s.tree.write(QStringLiteral("src/") + QLatin1String(name), "data"));
    QVERIFY(s.tree.write(QStringLiteral("dst/c.txt"), "c"));
    s.walk();
    QVERIFY(s.source.AddMissingFile((*s.destination.begin())->FileObject(),
                                    s.destination.RootFolder(), 2));
    s.list(s.source);
    s.select({"a.txt", "b.txt", "x.exe", "y.exe", "c.txt"});

    QStringList rows;
    QList<qint64> icons;
    int images = 0;
    ModalWatcher watcher([&](QWidget *modal) {
        auto *form = qobject_cast<frmSynchronizer *>(modal);
        if (!form)
            return false;
        for (int i = 0; i < form->lvwFiles->topLevelItemCount(); ++i) {
            const QTreeWidgetItem *row = form->lvwFiles->topLevelItem(i);
            rows << row->text(0) + QLatin1Char('|') + row->text(1);
            icons << row->icon(0).cacheKey();
        }
        images = form->ImageList1->Count();
        form->cmdCancel->click();
        return true;
    });
    ShowSynchronizer(&m_owner, SyncDirection::ToDestination, &s.listing, s.source, s.destination);
    // The placeholder of "c.txt" has no file to copy.
    const QString one = s.tree.path(QStringLiteral("src/one"));
    const QString two = s.tree.path(QStringLiteral("src/two"));
    QCOMPARE(rows, (QStringList{"a.txt|" + one, "x.exe|" + one, "b.txt|" + two, "y.exe|" + two}));
    // Documents share their type's icon; each program has its own.
    QCOMPARE(images, 3);
    QCOMPARE(icons[0], icons[2]);
}

void tst_Synchronizer::nothingQualifyingSaysNoFilesToCopy() {
    Sides s;
    QVERIFY(s.tree.write(QStringLiteral("src/a.txt"), "a"));
    QVERIFY(s.tree.write(QStringLiteral("dst/a.txt"), "a"));
    QVERIFY(s.tree.write(QStringLiteral("dst/gone.txt"), "gone"));
    s.walk();
    QVERIFY(s.source.AddMissingFile(
        s.destination.Item(s.tree.path(QStringLiteral("dst/gone.txt")))->FileObject(),
        s.destination.RootFolder(), 2));
    s.list(s.source);
    s.select({QStringLiteral("gone.txt")});

    ModalWatcher watcher;
    ShowSynchronizer(&m_owner, SyncDirection::ToDestination, &s.listing, s.source, s.destination);
    QCOMPARE(watcher.texts(), QStringList{QStringLiteral("No files to copy.")});
    QCOMPARE(watcher.titles(), QStringList{QStringLiteral("Pairscope")});
}

void tst_Synchronizer::cancelCopiesNothingAndPromptIsRemembered() {
    Sides s;
    QVERIFY(s.tree.write(QStringLiteral("src/a.txt"), "a"));
    QVERIFY(s.tree.mkdir(QStringLiteral("dst")));
    s.walk();
    s.list(s.source);
    s.select({QStringLiteral("a.txt")});

    QList<bool> checks;
    for (int run = 0; run < 2; ++run) {
        ModalWatcher watcher([&](QWidget *modal) {
            auto *form = qobject_cast<frmSynchronizer *>(modal);
            if (!form)
                return false;
            checks.append(form->chkPrompt->isChecked());
            form->chkPrompt->setChecked(!form->chkPrompt->isChecked());
            if (run == 0)
                form->cmdCancel->click();
            else
                form->close(); // the close box cancels too
            return true;
        });
        ShowSynchronizer(&m_owner, SyncDirection::ToSource, &s.listing, s.source, s.destination);
    }
    QCOMPARE(checks.size(), 2);
    QCOMPARE(checks[1], !checks[0]);
    QCOMPARE(s.read(QStringLiteral("dst/a.txt")), QByteArray("<missing>"));
}

void tst_Synchronizer::headerClickSortsAndTogglesOrder() {
    TestTree tree;
    frmSynchronizer form;
    for (const char *name : {"b", "c", "a"}) {
        const QByteArray n(name);
        // A row with another code than the copy's is left out.
        form.AddRow(QString::fromLatin1(n), QString(),
                    {tree.nativePath("src/" + n), tree.nativePath("dst/" + n),
                     tree.nativePath("src"), tree.nativePath("dst")},
                    n == "c" ? 0 : SyncOperationCode);
    }
    auto order = [&] {
        QByteArray text;
        for (const CopyItem &item : form.CopyList(SyncOperationCode))
            text += item.source.right(1) + item.target.right(1);
        return text;
    };
    QCOMPARE(order(), QByteArray("bbaa"));
    form.SortByColumn(frmSynchronizer::NameColumn);
    QCOMPARE(order(), QByteArray("aabb"));
    form.SortByColumn(frmSynchronizer::NameColumn);
    QCOMPARE(order(), QByteArray("bbaa"));
    // Another column starts ascending; rows added later take their sorted place.
    form.SortByColumn(frmSynchronizer::DestinationColumn);
    form.SortByColumn(frmSynchronizer::NameColumn);
    form.AddRow(QStringLiteral("0"), QString(),
                {tree.nativePath("src/0"), tree.nativePath("dst/0"), tree.nativePath("src"),
                 tree.nativePath("dst")},
                SyncOperationCode);
    QCOMPARE(order(), QByteArray("00aabb"));
}

void tst_Synchronizer::summaryNamesEveryFileNotCopied() {
    CopyJob job(
        {{"/s/a", "/t/a", "/s", "/t"}, {"/s/b", "/t/b", "/s", "/t"}, {"/s/c", "/t/c", "/s", "/t"}});
    QString details;
    QCOMPARE(CopyProgressDialog::SummaryText(
                 job, std::vector<CopyOutcome>(3, {CopyOutcome::Copied, {}}), &details),
             QString());
    const std::vector<CopyOutcome> outcomes = {
        {CopyOutcome::Copied, {}},
        {CopyOutcome::Failed, QStringLiteral("No space left on device.")},
        {CopyOutcome::Skipped, QStringLiteral("Kept the existing file.")}};
    QCOMPARE(CopyProgressDialog::SummaryText(job, outcomes, &details),
             QStringLiteral("1 of 3 files copied; 2 not copied:\n\n"
                            "/t/b: No space left on device.\n/t/c: Kept the existing file."));
}

void tst_Synchronizer::reviewTellsWhatTheCopyWillDo_data() {
    QTest::addColumn<QString>("name");   // the file copied, below src
    QTest::addColumn<QString>("setUp");  // what is in the way below dst
    QTest::addColumn<QString>("action"); // the review's Action starts with it
    QTest::newRow("new") << QStringLiteral("sub/a.txt") << QString()
                         << QStringLiteral("Copy (new)");
    QTest::newRow("overwrite") << QStringLiteral("a.txt") << QStringLiteral("file a.txt")
                               << QStringLiteral("Copy (overwrite)");
    QTest::newRow("a link in a folder of the target")
        << QStringLiteral("sub/a.txt") << QStringLiteral("link sub")
        << QStringLiteral("Not copied: “%1/sub” is a symbolic link");
    QTest::newRow("a folder of the same name")
        << QStringLiteral("a.txt") << QStringLiteral("folder a.txt")
        << QStringLiteral("Not copied: A folder of the same name is in the way.");
    QTest::newRow("a file where a folder goes")
        << QStringLiteral("sub/a.txt") << QStringLiteral("file sub")
        << QStringLiteral("Not copied: “%1/sub” is in the way");
    QTest::newRow("a FIFO") << QStringLiteral("fifo") << QString()
                            << QStringLiteral("Not copied: The source is a special file");
}

void tst_Synchronizer::reviewTellsWhatTheCopyWillDo() {
    QFETCH(QString, name);
    QFETCH(QString, setUp);
    QFETCH(QString, action);
    Sides s;
    if (name == QLatin1String("fifo")) {
        QVERIFY(s.tree.mkdir(QStringLiteral("src")));
        QCOMPARE(::mkfifo(s.tree.nativePath("src/fifo").constData(), 0644), 0);
    } else {
        QVERIFY(s.tree.write(QStringLiteral("src/") + name, "new"));
    }
    QVERIFY(s.tree.write(QStringLiteral("outside/a.txt"), "outside"));
    QVERIFY(s.tree.mkdir(QStringLiteral("dst")));
    const QString kind = setUp.section(QLatin1Char(' '), 0, 0);
    const QString inTheWay = QStringLiteral("dst/") + setUp.section(QLatin1Char(' '), 1);
    if (kind == QLatin1String("file"))
        QVERIFY(s.tree.write(inTheWay, "old"));
    else if (kind == QLatin1String("folder"))
        QVERIFY(s.tree.mkdir(inTheWay));
    else if (kind == QLatin1String("link"))
        QCOMPARE(::symlink(s.tree.nativePath("outside").constData(),
                           s.tree.nativePath(inTheWay.toUtf8()).constData()),
                 0);
    s.walk();
    s.list(s.source);
    s.select({name.section(QLatin1Char('/'), -1)});
    if (action.contains(QLatin1String("%1")))
        action = action.arg(s.tree.path(QStringLiteral("dst")));

    QString shownAction;
    ModalWatcher watcher([&](QWidget *modal) {
        auto *form = qobject_cast<frmSynchronizer *>(modal);
        if (!form)
            return false;
        shownAction = form->lvwFiles->topLevelItem(0)->text(2);
        form->chkPrompt->setChecked(false);
        form->cmdOK->click();
        return true;
    });
    ShowSynchronizer(&m_owner, SyncDirection::ToDestination, &s.listing, s.source, s.destination);
    QVERIFY2(shownAction.startsWith(action), qPrintable(shownAction));
    QCOMPARE(s.read(QStringLiteral("outside/a.txt")), QByteArray("outside"));
    if (action.startsWith(QLatin1String("Copy"))) {
        QVERIFY(watcher.texts().isEmpty()); // copied without a word
        QCOMPARE(s.read(QStringLiteral("dst/") + name), QByteArray("new"));
    } else {
        // The end report names the same reason.
        QCOMPARE(watcher.texts().size(), 1);
        QVERIFY2(watcher.texts().first().contains(shownAction.mid(qstrlen("Not copied: "))),
                 qPrintable(watcher.texts().first()));
    }
}

void tst_Synchronizer::questionIsAboveTheProgressWindow_data() {
    QTest::addColumn<bool>("progressShown");
    QTest::newRow("progress window already shown") << true;
    QTest::newRow("progress window not shown yet") << false;
}

void tst_Synchronizer::questionIsAboveTheProgressWindow() {
    QFETCH(bool, progressShown);
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("dst/a.txt"), "old"));
    const CopyItem item{tree.nativePath("src/a.txt"), tree.nativePath("dst/a.txt"),
                        tree.nativePath("src"), tree.nativePath("dst")};
    CopyJob job({item});
    CopyProgressDialog progress(job, &m_owner);
    if (progressShown) {
        progress.show();
        QVERIFY(QTest::qWaitForWindowActive(&progress));
    }
    QStringList seen;
    ModalWatcher watcher([&](QWidget *shown) {
        auto *box = qobject_cast<QMessageBox *>(shown);
        if (!box)
            return false;
        // Above the progress window (its child, so no window manager puts it below), with
        // the keyboard, and Enter picks the default.
        if (box->parentWidget() == &progress)
            seen << QStringLiteral("child of the progress window");
        if (progress.isVisible())
            seen << QStringLiteral("progress window shown first");
        // Activation is asynchronous: give it the moment a busy machine needs.
        if (QTest::qWaitFor([box] { return QApplication::activeWindow() == box; }, 2000))
            seen << QStringLiteral("active");
        QWidget *focus = QApplication::focusWidget();
        QTest::keyClick(focus && focus->window() == box ? focus : box, Qt::Key_Return);
        return true;
    });
    QCOMPARE(progress.askReplace(item), ReplaceAnswer::Yes);
    QCOMPARE(seen, (QStringList{QStringLiteral("child of the progress window"),
                                QStringLiteral("progress window shown first"),
                                QStringLiteral("active")}));
}

void tst_Synchronizer::progressWindowKeepsItsWidth() {
    const QByteArray name = QByteArray(251, 'n') + ".txt";
    CopyJob job({{"/s/" + name, "/t/" + QByteArray(200, 'f') + '/' + name, "/s", "/t"}});
    CopyProgressDialog progress(job, &m_owner);
    CopyProgress state;
    state.filesTotal = 1;
    state.current = 0;
    progress.progress(state);
    progress.show();
    QVERIFY(QTest::qWaitForWindowExposed(&progress));
    QVERIFY2(progress.width() <= 640, qPrintable(QString::number(progress.width())));
    QVERIFY(progress.labelText().contains(QChar(0x2026))); // shortened in the middle
    const auto *cancel = progress.findChild<QPushButton *>();
    QVERIFY(cancel);
    QVERIFY(progress.rect().contains(cancel->geometry()));
}

void tst_Synchronizer::copiesToFatOverFuse() {
    // A FAT stick as a desktop mounts it without privileges: names without regard to case,
    // no permissions, no truncation, no unnamed temporary files.
    if (!ChildRun::isChild()) {
        ChildRun::run({QStringLiteral("unshare"), QStringLiteral("-m")}, "copiesToFatOverFuse");
        return;
    }
    if (QStandardPaths::findExecutable(QStringLiteral("fusefat")).isEmpty() ||
        QStandardPaths::findExecutable(QStringLiteral("mkfs.vfat")).isEmpty())
        QSKIP("this needs fusefat and mkfs.vfat (Debian packages fusefat, dosfstools)");
    Sides s;
    const QString image = s.tree.path(QStringLiteral("fat.img"));
    QVERIFY(s.tree.mkdir(QStringLiteral("dst")));
    QFile file(image);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(8 * 1024 * 1024));
    file.close();
    QCOMPARE(QProcess::execute(QStringLiteral("mkfs.vfat"), {image}), 0);
    const QString mountPoint = s.tree.path(QStringLiteral("dst"));
    if (QProcess::execute(QStringLiteral("fusefat"),
                          {QStringLiteral("-o"), QStringLiteral("rw+"), image, mountPoint}) != 0)
        QSKIP("FUSE is refused here");
    auto unmount = qScopeGuard([&] {
        QProcess::execute(QStringLiteral("fusermount"), {QStringLiteral("-u"), mountPoint});
    });
    QVERIFY(s.tree.mkdir(QStringLiteral("dst/docs")));
    QVERIFY(s.tree.write(QStringLiteral("src/Docs/x.txt"), "copied"));
    QCOMPARE(::chmod(s.tree.nativePath("src/Docs/x.txt").constData(), 0640), 0);
    s.walk();
    s.list(s.source);
    s.select({QStringLiteral("x.txt")});

    QString destination;
    ModalWatcher watcher([&](QWidget *modal) {
        auto *form = qobject_cast<frmSynchronizer *>(modal);
        if (!form)
            return false;
        destination = form->lvwFiles->topLevelItem(0)->text(3);
        form->cmdOK->click();
        return true;
    });
    ShowSynchronizer(&m_owner, SyncDirection::ToDestination, &s.listing, s.source, s.destination);
    // The existing folder, as the stick spells it, is where the file goes.
    QCOMPARE(destination, s.tree.path(QStringLiteral("dst/docs/x.txt")));
    QCOMPARE(s.read(QStringLiteral("dst/docs/x.txt")), QByteArray("copied"));
    QCOMPARE(QDir(s.tree.path(QStringLiteral("dst")))
                 .entryList(QDir::Dirs | QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot)
                 .filter(QStringLiteral("docs"), Qt::CaseInsensitive),
             QStringList{QStringLiteral("docs")});
    QCOMPARE(QDir(s.tree.path(QStringLiteral("dst/docs"))).entryList(QDir::Files | QDir::Hidden),
             QStringList{QStringLiteral("x.txt")});
    QCOMPARE(watcher.texts().size(), 1); // the note: the stick keeps no permissions
    QVERIFY2(watcher.texts().first().contains(QLatin1String("with notes")),
             qPrintable(watcher.texts().first()));
}

QTEST_MAIN(tst_Synchronizer)
#include "tst_Synchronizer.moc"
