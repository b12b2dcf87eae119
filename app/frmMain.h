#pragma once

#include "EditCommands.h"
#include "MainMenuBar.h"
#include "ResultListing.h"
#include "ThrottledYield.h"

#include "engine/CaseRule.h"
#include "engine/CompareSession.h"
#include "engine/ComparisonFile.h"
#include "settings/Options.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>

class ComparisonFileCollection;
class ColumnPopup;
class ComparisonsCombo;
class FolderCombo;
class ImageList;
class LinkedListings;
class ListView;
class Pairscope;
class QComboBox;
class QFrame;
class QLabel;
class QPushButton;
class QShortcut;
class QSplitter;
class ReportCommand;
class StatusLine;
class ToolsCommands;
class frmProblems;

/**
 * The main window: the compare bar (source and destination folders, the comparison set and the
 * Compare button), the two result panes and the status line, under the full menu bar. It runs
 * the compare and keeps the two collections and the engine of the last run.
 * In every control array index 0 is the source side and index 1 the destination side.
 */
class frmMain : public QMainWindow {
    Q_OBJECT

public:
    explicit frmMain(QWidget *parent = nullptr);
    ~frmMain() override;

    /** Prepares the window from the settings before it is first shown. */
    void InitializeDisplay();
    /**
     * Places the window at its stored rectangle, or at 640 x 480 centred on the screen when
     * nothing is stored or \a resetPosition is true. The stored rectangle is applied as it is.
     */
    void LoadPosition(bool resetPosition);
    /** The 640 x 480 rectangle centred on \a screen (whole-pixel division). */
    static QRect DefaultPlacement(const QRect &screen);

    /**
     * Makes \a folder the path of \a side (0 source, 1 destination) as if the user had chosen
     * it: it is recorded in that side's recent list.
     */
    void SelectFolder(int side, const QString &folder);

    /**
     * Writes the status line; see StatusLine::UpdateStatus. \a yield lets the event loop run
     * (at most every ThrottledYield::intervalMs).
     */
    void UpdateStatus(const QString &statusText, bool isProgressMessage, int completionPercentage,
                      bool yield);
    /** The status of a finished compare, clickable when something could not be compared. */
    void ShowComplete(bool yield);
    /** A progress text made only when painted (StatusLine::UpdateProgress); lets events run. */
    void UpdateProgress(const std::function<QString()> &makeText, int completionPercentage);

    /**
     * Lays the panes out for a stored orientation value (1 stacked, 2 side by side) and
     * checks its View item; nothing is stored.
     */
    void ApplyOrientation(int orientation);
    /** Keeps the window above others or not and checks the View item; nothing is stored. */
    void ApplyAlwaysOnTop(bool on);
    /** Sets the five View items' checks from the store and enables them. */
    void ApplyViewOptions();

    /**
     * The listing that has the keyboard focus, or null: the one the Edit and Tools menus act
     * on. While a menu is open from the keyboard it is the listing the user was in.
     */
    ListView *ActiveList() const;
    /** The side (0 source, 1 destination) of ActiveList(), or -1 when neither has the focus. */
    int ActiveSide() const;

    /**
     * File > Reset Options: asks "Set default visuals and clear recent selections?" (No is
     * the default answer) and, unless the answer is No, runs ResetOptions().
     */
    void mnuFileOptions_Click();
    /**
     * Puts back the defaults, in this order: the source and the destination folder lists
     * (emptied), the recent comparison sets, the column layouts of both listings, the pane
     * orientation, Always On Top, the five View options and the date slack; each is stored at
     * once except the layouts, which are written when the window closes as always. The
     * listings are brought in line with the new columns and View options.
     */
    void ResetOptions();

    /** @name The compare run */
    ///@{
    /** Starts a compare when idle, cancels the running one otherwise. */
    void cmdCompare_Click();
    /** Switches between the idle look and the busy look of a run. */
    void SetCompareMode(bool comparing);
    /** True while a compare runs (the Compare button reads "Cancel"). */
    bool IsComparing() const;
    /** True while the window shows the busy pointer (a run or a rebuild). */
    bool IsBusy() const;
    /** A walk added a file: "Building source file list (N)". */
    void colSourceFiles_FileAdded(int FileCount);
    /** A walk added a file: "Building destination file list (N)". */
    void colDestFiles_FileAdded(int FileCount);
    /** The engine's progress as a status text, with a percentage when there is a count. */
    void oPairscope_CompareProgress(int Pass, int CurrentFile, int TotalFiles);
    /** Lists a settled pair by the listing rule. */
    void oPairscope_FilesCompared(const ComparisonFilePtr &SourceFile,
                                  const ComparisonFilePtr &DestFile, int ComparisonResult);
    ///@}

    /** @name Result listings */
    ///@{
    /** Re-decides both lists from the collections after a View option changed. */
    void RefreshFileListings();
    /** Shows the "In Folder" texts of list \a side as View > Show Full Path says. */
    void UpdateListView(int side);
    /** The status text of a finished compare, naming the items that could not be compared. */
    QString CompleteText() const;
    /** How many items the last run's walks could not take in. */
    int ProblemCount() const;
    /** Opens (or raises) the list of the items that could not be compared. */
    void ShowProblems();
    ///@}

    /** The collection of \a side (0 source, 1 destination) of the last run, or null. */
    const ComparisonFileCollection *Files(int side) const;

protected:
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    std::array<QLabel *, 2> lblSelectPath{};
    std::array<QComboBox *, 2> cboSelectPath{};
    QLabel *lblComparisons = nullptr;
    QComboBox *cboComparisons = nullptr;
    QPushButton *cmdCompare = nullptr;
    QFrame *edgeCompare = nullptr;
    /** The two panes; vertical orientation in the View menu lays them side by side. */
    QSplitter *picMain = nullptr;
    std::array<QWidget *, 2> picSide{};
    std::array<QLabel *, 2> lblPath{};
    std::array<ListView *, 2> lvwFiles{};
    /** The file icons shown by both lists. */
    ImageList *ImageList1 = nullptr;
    StatusLine *StatusBar1 = nullptr;
    std::unique_ptr<MainMenuBar> m_menus;

    /** The source side of the last run; replaced at the start of every run attempt. */
    std::shared_ptr<ComparisonFileCollection> colSourceFiles;
    /** The destination side of the last run. */
    std::shared_ptr<ComparisonFileCollection> colDestFiles;
    /** The engine of the last run; released when a run ends cancelled. */
    std::shared_ptr<Pairscope> oPairscope;

    void BuildCompareBar();
    void BuildPanes();
    void ConnectMenus();
    void SavePosition();
    int SideAt(const QPoint &pos) const;
    /** Stores the View options after \a option (a member of m_view) was set to \a on. */
    void ToggleViewOption(bool Options::ViewOptions::*option, bool on);
    /** Pairs the next compare's names by \a rule and checks its View menu item. */
    void ApplyCaseRule(CaseRule rule);
    void ClearDisplay();

    /** Takes a new attempt's collections and engine and clears the listings for it. */
    void StartAttempt();
    /** Hands the last attempt's collections and engine to the release thread. */
    void ReleaseLastAttempt();
    ResultListing::ViewState CurrentViewState() const;
    void ResortLinkedLists();

    std::unique_ptr<ResultListing> m_listing;
    /** Declared after the menus and released before them and the listings. */
    std::unique_ptr<EditCommands> m_edit;
    /** The Tools menu, Select Diff Program and the listings' popup; released before m_edit. */
    std::unique_ptr<ToolsCommands> m_tools;
    LinkedListings *m_linked = nullptr;
    ColumnPopup *m_columnPopup = nullptr;
    ComparisonsCombo *m_comparisons = nullptr;
    std::array<FolderCombo *, 2> m_folders{};
    QPointer<frmProblems> m_problems;
    ThrottledYield m_yield;
    QTimer m_placementSaver;
    QShortcut *m_enter = nullptr;
    QShortcut *m_keypadEnter = nullptr;
    QShortcut *m_escape = nullptr;
    CaseRule m_caseRule = CaseRule::Automatic;
    /** The five View options as their items show them. */
    Options::ViewOptions m_view{false, false, false, false, false};
    bool m_alwaysOnTop = false;
    /** Set from Cancel until the cancelled run has unwound: no new run starts meanwhile. */
    bool m_cancelling = false;
    CompareSession m_session;
    /** Set when the window was asked to close during a run: it closes once the run unwinds. */
    bool m_closeRequested = false;
    /** True while the run's handler is on the stack. */
    bool m_running = false;
    /**
     * Counts the rebuilds of the listings, the compare attempts and Clear Display: a rebuild
     * that lets the event loop run stops as soon as newer work has taken the lists over.
     */
    quint64 m_listingsWork = 0;
    /** File > Save Report; declared last, so that it goes before the session it listens to. */
    std::unique_ptr<ReportCommand> m_report;
};
