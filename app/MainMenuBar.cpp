#include "MainMenuBar.h"

#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>

namespace {

QAction *checkItem(QMenu *menu, const QString &caption) {
    QAction *item = menu->addAction(caption);
    item->setCheckable(true);
    return item;
}

} // namespace

MainMenuBar::MainMenuBar(QMenuBar *bar) {
    mnuFile = bar->addMenu(QStringLiteral("&File"));
    mnuFileSelectPath[0] = mnuFile->addAction(QStringLiteral("Select &Source Folder..."));
    mnuFileSelectPath[1] = mnuFile->addAction(QStringLiteral("Select &Destination Folder..."));
    mnuFileZ1 = mnuFile->addSeparator();
    mnuFileCompare = mnuFile->addAction(compareCaption());
    showCompareKeyHint(true);
    mnuFileZ2 = mnuFile->addSeparator();
    mnuFileSaveReport = mnuFile->addAction(QStringLiteral("Save Re&port..."));
    mnuFileSaveReport->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    mnuFileSaveReport->setEnabled(false);
    mnuFileClear = mnuFile->addAction(QStringLiteral("C&lear Display"));
    mnuFileZ3 = mnuFile->addSeparator();
    mnuFileIncludeSlack = checkItem(mnuFile, QStringLiteral("Include &2-Second Slack For Dates"));
    mnuFileIgnoreTimeShift = checkItem(mnuFile, QStringLiteral("Ignore 1-&Hour Time Shifts"));
    mnuFileFilters = mnuFile->addAction(QStringLiteral("F&ilters..."));
    mnuFileSelectDiff = mnuFile->addAction(QStringLiteral("Select Di&ff Program..."));
    mnuFileOptions = mnuFile->addAction(QStringLiteral("&Reset Options"));
    mnuFileZ4 = mnuFile->addSeparator();
    mnuFileExit = mnuFile->addAction(QStringLiteral("E&xit"));
    mnuFileExit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));

    mnuEdit = bar->addMenu(QStringLiteral("&Edit"));
    mnuEditSelectAll = mnuEdit->addAction(QStringLiteral("Select &All"));
    mnuEditClearSelections = mnuEdit->addAction(QStringLiteral("&Clear Selections"));
    // The keys of the Linux desktops, given as keys rather than as the platform's standard
    // sequences, which some platform themes leave empty. A text box with the focus keeps
    // Ctrl+A for its text: a widget that handles a key itself is asked first.
    mnuEditSelectAll->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_A));
    mnuEditClearSelections->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A));

    mnuView = bar->addMenu(QStringLiteral("&View"));
    mnuViewLink = checkItem(mnuView, QStringLiteral("&Link File Listings"));
    mnuViewMissing = checkItem(mnuView, QStringLiteral("Use &Missing File Placeholders"));
    mnuViewZ1 = mnuView->addSeparator();
    mnuViewFullPath = checkItem(mnuView, QStringLiteral("Show &Full Path"));
    mnuViewAllFiles = checkItem(mnuView, QStringLiteral("Show A&ll Files"));
    mnuViewBold = checkItem(mnuView, QStringLiteral("Bold Different Files"));
    mnuViewLetterCase = mnuView->addMenu(QStringLiteral("Letter &Case in Names"));
    auto *letterCases = new QActionGroup(mnuViewLetterCase);
    mnuViewCase[0] = checkItem(mnuViewLetterCase, QStringLiteral("&As Each File System Does"));
    mnuViewCase[1] = checkItem(mnuViewLetterCase, QStringLiteral("Always &Tell Apart"));
    mnuViewCase[2] = checkItem(mnuViewLetterCase, QStringLiteral("&Ignore"));
    for (QAction *item : mnuViewCase)
        letterCases->addAction(item);
    mnuViewZ2 = mnuView->addSeparator();
    auto *orientations = new QActionGroup(mnuView);
    mnuViewOrientation[0] = checkItem(mnuView, QStringLiteral("&Horizontal Orientation"));
    mnuViewOrientation[1] = checkItem(mnuView, QStringLiteral("&Vertical Orientation"));
    for (QAction *item : mnuViewOrientation)
        orientations->addAction(item);
    mnuViewZ3 = mnuView->addSeparator();
    mnuViewAlwaysOnTop = checkItem(mnuView, QStringLiteral("&Always On Top"));

    mnuTools = bar->addMenu(QStringLiteral("&Tools"));
    mnuToolsOpenContainingFolder = mnuTools->addAction(QStringLiteral("&Open Containing Folder"));
    mnuToolsDiff = mnuTools->addAction(QStringLiteral("Examine Di&fferences"));
    mnuToolsZ1 = mnuTools->addSeparator();
    mnuToolsCopyToSource = mnuTools->addAction(QStringLiteral("Copy to &Source..."));
    mnuToolsCopyToDest = mnuTools->addAction(QStringLiteral("Copy to &Destination..."));

    mnuHelp = bar->addMenu(QStringLiteral("&Help"));
    mnuHelpAbout = mnuHelp->addAction(QStringLiteral("&About"));

    mnuBadItemPopup = new QMenu(bar);
    mnuBadItemPopup1 = mnuBadItemPopup->addAction(QStringLiteral("No valid files selected"));
    mnuBadItemPopup1->setEnabled(false);
}

QString MainMenuBar::compareCaption() {
    return QStringLiteral("&Compare");
}

void MainMenuBar::showCompareKeyHint(bool shown) {
    // Enter presses the window's default button, and the item shows it as its key hint. The
    // hint is a shortcut of the item rather than text after a tab, so that a screen reader
    // reads the caption alone; scoped to the menu, it never fires, as an open menu takes
    // Enter for itself.
    mnuFileCompare->setShortcutContext(Qt::WidgetShortcut);
    mnuFileCompare->setShortcut(shown ? QKeySequence(Qt::Key_Enter) : QKeySequence());
}

QString MainMenuBar::cancelCaption() {
    return QStringLiteral("Cancel");
}
