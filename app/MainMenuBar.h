#pragma once

#include <QObject>

#include <array>

class QAction;
class QMenu;
class QMenuBar;

/**
 * The main window's menu bar: every menu and item with its caption, access key, separators and
 * check items. The window connects the items to its handlers; this class only builds them.
 *
 * Beside the access keys, four items carry the desktop's usual shortcuts: Save Report (Ctrl+S),
 * Exit (Ctrl+Q), Select All (Ctrl+A) and Clear Selections (Ctrl+Shift+A). Enter (Compare) and Esc
 * (Cancel) belong to the window.
 */
class MainMenuBar {
public:
    /** Builds the whole menu bar into \a bar. Check items start unchecked. */
    explicit MainMenuBar(QMenuBar *bar);

    /** File > Compare's caption for the idle state: the Enter key starts a compare. */
    static QString compareCaption();
    /** File > Compare's caption while a run is in progress. */
    static QString cancelCaption();
    /** Shows Enter as File > Compare's key hint (idle), or no hint (while a compare runs). */
    void showCompareKeyHint(bool shown);

    QMenu *mnuFile = nullptr;
    std::array<QAction *, 2> mnuFileSelectPath{};
    QAction *mnuFileZ1 = nullptr;
    QAction *mnuFileCompare = nullptr;
    QAction *mnuFileZ2 = nullptr;
    /** Disabled until a compare has finished; see ReportCommand. */
    QAction *mnuFileSaveReport = nullptr;
    QAction *mnuFileClear = nullptr;
    QAction *mnuFileZ3 = nullptr;
    QAction *mnuFileIncludeSlack = nullptr;
    QAction *mnuFileIgnoreTimeShift = nullptr;
    QAction *mnuFileFilters = nullptr;
    QAction *mnuFileSelectDiff = nullptr;
    QAction *mnuFileOptions = nullptr;
    QAction *mnuFileZ4 = nullptr;
    QAction *mnuFileExit = nullptr;

    QMenu *mnuEdit = nullptr;
    QAction *mnuEditSelectAll = nullptr;
    QAction *mnuEditClearSelections = nullptr;

    QMenu *mnuView = nullptr;
    QAction *mnuViewLink = nullptr;
    QAction *mnuViewMissing = nullptr;
    QAction *mnuViewZ1 = nullptr;
    QAction *mnuViewFullPath = nullptr;
    QAction *mnuViewAllFiles = nullptr;
    QAction *mnuViewBold = nullptr;
    /** Letter case in names: CaseRule's order (automatic, sensitive, insensitive). */
    QMenu *mnuViewLetterCase = nullptr;
    std::array<QAction *, 3> mnuViewCase{};
    QAction *mnuViewZ2 = nullptr;
    /** Index 0 stacks the panes, index 1 puts them side by side; exactly one is checked. */
    std::array<QAction *, 2> mnuViewOrientation{};
    QAction *mnuViewZ3 = nullptr;
    QAction *mnuViewAlwaysOnTop = nullptr;

    QMenu *mnuTools = nullptr;
    QAction *mnuToolsOpenContainingFolder = nullptr;
    QAction *mnuToolsDiff = nullptr;
    QAction *mnuToolsZ1 = nullptr;
    QAction *mnuToolsCopyToSource = nullptr;
    QAction *mnuToolsCopyToDest = nullptr;

    QMenu *mnuHelp = nullptr;
    QAction *mnuHelpAbout = nullptr;

    /**
     * Never on the menu bar: the popup of a right-click in a listing with no selected row. Its
     * single item, "No valid files selected", is grayed: it only tells.
     */
    QMenu *mnuBadItemPopup = nullptr;
    QAction *mnuBadItemPopup1 = nullptr;
};
