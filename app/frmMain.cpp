#include "frmMain.h"

#include "ReportCommand.h"
#include "ResultListing.h"
#include "Startup.h"
#include "StatusLine.h"
#include "ToolsCommands.h"
#include "frmProblems.h"

#include "engine/ComparisonFileCollection.h"
#include "engine/Pairscope.h"
#include "engine/PathHelpers.h"
#include "engine/TypeNameCache.h"
#include "settings/Options.h"
#include "tools/ComparisonsCombo.h"
#include "tools/FolderCombo.h"
#include "tools/GeneralHelpers.h"
#include "tools/frmFilters.h"
#include "views/BackgroundRelease.h"
#include "views/ColumnLayout.h"
#include "views/ColumnPopup.h"
#include "views/FileListModel.h"
#include "views/ImageList.h"
#include "views/LinkedListings.h"
#include "views/ListSorting.h"
#include "views/ListView.h"
#include "views/frmAbout.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QThreadPool>
#include <QVBoxLayout>

#include <cmath>
#include <sys/stat.h>
#include <tuple>
#include <utility>

namespace {

/** The existing folders among the local paths that a drag carries, in their order. */
QStringList droppedFolders(const QMimeData *data) {
    QStringList folders;
    if (!data || !data->hasUrls())
        return folders;
    for (const QUrl &url : data->urls()) {
        if (!url.isLocalFile())
            continue;
        const QFileInfo info(url.toLocalFile());
        if (info.isDir())
            folders << QDir::cleanPath(info.absoluteFilePath());
    }
    return folders;
}

bool FolderExists(const QString &path) {
    // Through the native form: a folder given on the command line may not be valid UTF-8.
    struct stat status;
    return !path.isEmpty() && ::stat(NativeFromPath(path).constData(), &status) == 0 &&
           S_ISDIR(status.st_mode);
}

const QString compareButtonCaption = QStringLiteral("&Compare");
const QString cancelButtonCaption = QStringLiteral("Cancel");

} // namespace

frmMain::frmMain(QWidget *parent)
    : QMainWindow(parent) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Pairscope"));
    setMinimumSize(440, 320);
    setAcceptDrops(true);

    m_menus = std::make_unique<MainMenuBar>(menuBar());
    auto *central = new QWidget(this);
    auto *column = new QVBoxLayout(central);
    column->setContentsMargins(6, 6, 6, 0);
    column->setSpacing(6);
    BuildCompareBar();
    BuildPanes();
    column->addWidget(edgeCompare);
    column->addWidget(picMain, 1);
    setCentralWidget(central);

    StatusBar1 = new StatusLine(this);
    setStatusBar(StatusBar1);
    connect(StatusBar1, &StatusLine::textClicked, this, &frmMain::ShowProblems);

    m_session.setYieldHook([this] { m_yield(); });
    // Rows are filled from the statx each pair was judged on.
    m_session.setLoadDetails(true);
    connect(&m_session, &CompareSession::attemptStarted, this, &frmMain::StartAttempt);
    connect(&m_session, &CompareSession::stateChanged, this, [this](CompareSession::State state) {
        // With every file listed, each list gets a row per record of its side at least.
        if (state == CompareSession::State::Comparing && Options::viewOptions().allFiles) {
            lvwFiles[0]->files()->reserve(colSourceFiles->Count());
            lvwFiles[1]->files()->reserve(colDestFiles->Count());
        }
    });

    // Enter starts a compare from anywhere in the window, and Esc cancels a running one, as
    // the default and cancel buttons of a dialog would. The press is immediate, not animated:
    // a delayed click could land after the run it meant to cancel and start a new one.
    m_enter = new QShortcut(QKeySequence(Qt::Key_Return), this);
    m_keypadEnter = new QShortcut(QKeySequence(Qt::Key_Enter), this);
    m_escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    m_escape->setEnabled(false);
    for (QShortcut *key : {m_enter, m_keypadEnter, m_escape})
        connect(key, &QShortcut::activated, cmdCompare, &QPushButton::click);
    connect(cmdCompare, &QPushButton::clicked, this, &frmMain::cmdCompare_Click);
    ConnectMenus();

    // The placement is written once a move or resize has come to rest, not for every step.
    m_placementSaver.setSingleShot(true);
    m_placementSaver.setInterval(400);
    connect(&m_placementSaver, &QTimer::timeout, this, &frmMain::SavePosition);

    // The type names of the listings come from the MIME database, whose patterns take a
    // moment to read: that is done while the user picks folders, not during the first compare.
    QThreadPool::globalInstance()->start([] { TypeNameCache::prepare(); });
}

frmMain::~frmMain() = default;

void frmMain::BuildCompareBar() {
    edgeCompare = new QFrame(this);
    edgeCompare->setObjectName(QStringLiteral("edgeCompare"));
    // One etched line: the bar reads as a group without a heavy bevel.
    edgeCompare->setFrameStyle(QFrame::Box | QFrame::Sunken);
    auto *grid = new QGridLayout(edgeCompare);
    grid->setContentsMargins(8, 8, 8, 8);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(6);

    const QString captions[2] = {QStringLiteral("&Source:"), QStringLiteral("&Destination:")};
    const QString names[2] = {QStringLiteral("Source folder"),
                              QStringLiteral("Destination folder")};
    for (int i = 0; i < 2; ++i) {
        lblSelectPath[i] = new QLabel(captions[i], edgeCompare);
        lblSelectPath[i]->setObjectName(QStringLiteral("lblSelectPath%1").arg(i));
        cboSelectPath[i] = new QComboBox(edgeCompare);
        cboSelectPath[i]->setObjectName(QStringLiteral("cboSelectPath%1").arg(i));
        cboSelectPath[i]->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        cboSelectPath[i]->setMinimumContentsLength(16);
        cboSelectPath[i]->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        cboSelectPath[i]->setAccessibleName(names[i]);
        m_folders[i] = new FolderCombo(cboSelectPath[i], RecentLists::Side(i));
        lblSelectPath[i]->setBuddy(cboSelectPath[i]);
        grid->addWidget(lblSelectPath[i], i, 0);
        grid->addWidget(cboSelectPath[i], i, 1, 1, 2);
    }

    lblComparisons = new QLabel(QStringLiteral("Compa&risons:"), edgeCompare);
    lblComparisons->setObjectName(QStringLiteral("lblComparisons"));
    cboComparisons = new QComboBox(edgeCompare);
    cboComparisons->setObjectName(QStringLiteral("cboComparisons"));
    cboComparisons->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    cboComparisons->setMinimumContentsLength(16);
    cboComparisons->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    lblComparisons->setBuddy(cboComparisons);
    m_comparisons = new ComparisonsCombo(cboComparisons);
    cmdCompare = new QPushButton(compareButtonCaption, edgeCompare);
    cmdCompare->setObjectName(QStringLiteral("cmdCompare"));
    cmdCompare->setDefault(true);
    // Wide enough for both captions, so the bar does not shift when a run starts.
    cmdCompare->setMinimumWidth(
        qMax(cmdCompare->sizeHint().width(),
             fontMetrics().horizontalAdvance(QStringLiteral("Compare")) + 48));
    grid->addWidget(lblComparisons, 2, 0);
    grid->addWidget(cboComparisons, 2, 1);
    grid->addWidget(cmdCompare, 2, 2);
    grid->setColumnStretch(1, 1);
}

void frmMain::BuildPanes() {
    picMain = new QSplitter(this);
    picMain->setObjectName(QStringLiteral("picMain"));
    picMain->setHandleWidth(6);
    picMain->setChildrenCollapsible(false);
    ImageList1 = new ImageList(this);
    for (int i = 0; i < 2; ++i) {
        picSide[i] = new QWidget(picMain);
        picSide[i]->setObjectName(QStringLiteral("picSide%1").arg(i));
        auto *pane = new QVBoxLayout(picSide[i]);
        pane->setContentsMargins(0, 0, 0, 0);
        pane->setSpacing(3);
        lblPath[i] = new QLabel(picSide[i]);
        lblPath[i]->setObjectName(QStringLiteral("lblPath%1").arg(i));
        lblPath[i]->setTextFormat(Qt::PlainText);
        lblPath[i]->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        lblPath[i]->setMinimumHeight(lblPath[i]->fontMetrics().height());
        lvwFiles[i] = new ListView(picSide[i]);
        lvwFiles[i]->setObjectName(QStringLiteral("lvwFiles%1").arg(i));
        lvwFiles[i]->setAccessibleName(i == 0 ? QStringLiteral("Source files")
                                              : QStringLiteral("Destination files"));
        // The caption above a list ("Files from ...") labels it for a screen reader too.
        lblPath[i]->setBuddy(lvwFiles[i]);
        lvwFiles[i]->setAcceptDrops(false);
        lvwFiles[i]->viewport()->setAcceptDrops(false);
        lvwFiles[i]->files()->setIcons(ImageList1);
        pane->addWidget(lblPath[i]);
        pane->addWidget(lvwFiles[i], 1);
        picSide[i]->setMinimumSize(60, 60);
        // Equal stretch: the panes share a resize as the user last divided the room.
        picMain->setStretchFactor(i, 1);
    }
    m_listing = std::make_unique<ResultListing>(lvwFiles, ImageList1);
    m_linked = new LinkedListings(
        lvwFiles[0], lvwFiles[1],
        [this](int side) -> const ComparisonFileCollection * {
            return side ? colDestFiles.get() : colSourceFiles.get();
        },
        this);
    m_linked->setYieldHook([this] { m_yield(); });
    m_columnPopup = new ColumnPopup(m_linked, this);
}

void frmMain::ConnectMenus() {
    MainMenuBar &m = *m_menus;
    for (int i = 0; i < 2; ++i)
        connect(m.mnuFileSelectPath[i], &QAction::triggered, this,
                [this, i] { m_folders[i]->Browse(); });
    connect(m.mnuFileCompare, &QAction::triggered, this, &frmMain::cmdCompare_Click);
    connect(m.mnuFileClear, &QAction::triggered, this, &frmMain::ClearDisplay);
    connect(m.mnuFileOptions, &QAction::triggered, this, &frmMain::mnuFileOptions_Click);
    connect(m.mnuFileExit, &QAction::triggered, this, &QWidget::close);
    connect(m.mnuFileIncludeSlack, &QAction::triggered, this,
            [](bool checked) { Options::setIncludeSlack(checked); });
    connect(m.mnuFileIgnoreTimeShift, &QAction::triggered, this,
            [](bool checked) { Options::setIgnoreTimeShift(checked); });
    connect(m.mnuFileFilters, &QAction::triggered, this, [this] {
        if (frmFilters::Edit(this))
            StatusBar1->setFiltered(frmFilters::StoredFilter() != nullptr);
    });

    m_edit = std::make_unique<EditCommands>(m, lvwFiles, this);
    m_tools = std::make_unique<ToolsCommands>(this, m, lvwFiles);
    m_report = std::make_unique<ReportCommand>(m, m_session, this);

    using View = Options::ViewOptions;
    for (const auto &[item, option] : {std::pair{m.mnuViewLink, &View::linkListings},
                                       {m.mnuViewMissing, &View::useMissingPlaceholders},
                                       {m.mnuViewFullPath, &View::fullPath},
                                       {m.mnuViewAllFiles, &View::allFiles},
                                       {m.mnuViewBold, &View::boldDifferences}}) {
        connect(item, &QAction::triggered, this,
                [this, option = option](bool on) { ToggleViewOption(option, on); });
    }
    for (int i = 0; i < 2; ++i) {
        connect(m.mnuViewOrientation[i], &QAction::triggered, this, [this, i] {
            Options::setOrientation(i + 1);
            ApplyOrientation(i + 1);
        });
    }
    for (std::size_t i = 0; i < m.mnuViewCase.size(); ++i) {
        connect(m.mnuViewCase[i], &QAction::triggered, this, [this, i] {
            Options::setLetterCase(caseRuleWord(CaseRule(i)));
            ApplyCaseRule(CaseRule(i));
        });
    }
    connect(m.mnuViewAlwaysOnTop, &QAction::triggered, this, [this](bool checked) {
        Options::setAlwaysOnTop(checked);
        ApplyAlwaysOnTop(checked);
    });

    connect(m.mnuHelpAbout, &QAction::triggered, this,
            [this] { frmAbout::ShowAbout(this, m_alwaysOnTop); });
}

void frmMain::ApplyCaseRule(CaseRule rule) {
    m_caseRule = rule;
    m_menus->mnuViewCase[std::size_t(rule)]->setChecked(true);
}

void frmMain::InitializeDisplay() {
    ApplyMessageFont(this);
    m_comparisons->Fill(false);
    m_folders[0]->Fill(false);
    m_folders[1]->Fill(false);
    ApplyOrientation(Options::orientation());
    ApplyAlwaysOnTop(Options::alwaysOnTop());
    m_menus->mnuFileIncludeSlack->setChecked(Options::includeSlack());
    m_menus->mnuFileIgnoreTimeShift->setChecked(Options::ignoreTimeShift());
    StatusBar1->setFiltered(frmFilters::StoredFilter() != nullptr);
    ApplyCaseRule(caseRuleFromWord(Options::letterCase()).value_or(CaseRule::Automatic));
    m_tools->LoadDiffProgram();
    ApplyViewOptions();
    ColumnLayout::LoadLayout(lvwFiles[0], false, false);
    ColumnLayout::LoadLayout(lvwFiles[1], true, false);
    if (m_view.linkListings)
        ColumnLayout::MatchColumns(lvwFiles[0], lvwFiles[1]);
    m_linked->SetLinked(m_view.linkListings);
    cmdCompare->setText(compareButtonCaption);
    cmdCompare->setDefault(true);
    UpdateStatus(QStringLiteral("Ready"), false, -1, false);
}

QRect frmMain::DefaultPlacement(const QRect &screen) {
    return {screen.x() + (screen.width() - 640) / 2, screen.y() + (screen.height() - 480) / 2, 640,
            480};
}

void frmMain::LoadPosition(bool resetPosition) {
    const QScreen *screen = QGuiApplication::primaryScreen();
    const QRect placement = DefaultPlacement(screen ? screen->geometry() : QRect(0, 0, 640, 480));
    Options::WindowRect rect{float(placement.x()), float(placement.y()), float(placement.width()),
                             float(placement.height())};
    if (!resetPosition)
        rect = Options::windowRect(rect);
    // Applied as stored, without testing it against the screens: Shift at start-up is the
    // way back from a rectangle that lies off screen.
    setGeometry(qRound(rect.left), qRound(rect.top), qRound(rect.width), qRound(rect.height));
}

void frmMain::SavePosition() {
    // A maximised or minimised window has no placement of its own to come back to.
    if (windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen))
        return;
    const QRect rect = geometry();
    Options::setWindowRect(
        {float(rect.x()), float(rect.y()), float(rect.width()), float(rect.height())});
}

void frmMain::SelectFolder(int side, const QString &folder) {
    m_folders[size_t(side)]->SetPath(folder);
}

void frmMain::UpdateStatus(const QString &statusText, bool isProgressMessage,
                           int completionPercentage, bool yield) {
    if (!isProgressMessage)
        StatusBar1->setTextClickable(false);
    StatusBar1->UpdateStatus(statusText, isProgressMessage, completionPercentage);
    if (yield)
        m_yield();
}

void frmMain::ApplyOrientation(int orientation) {
    const int index = orientation == Options::HorizontalOrientation ? 0 : 1;
    m_menus->mnuViewOrientation[index]->setChecked(true);
    // The sizes are handed back so that the first pane keeps its share in the new direction.
    const QList<int> sizes = picMain->sizes();
    picMain->setOrientation(index == 0 ? Qt::Vertical : Qt::Horizontal);
    picMain->setSizes(sizes);
}

void frmMain::ApplyAlwaysOnTop(bool on) {
    m_alwaysOnTop = on;
    m_menus->mnuViewAlwaysOnTop->setChecked(on);
    SetTopmost(this, on);
}

void frmMain::ApplyViewOptions() {
    const Options::ViewOptions view = m_view = Options::viewOptions();
    const MainMenuBar &m = *m_menus;
    m.mnuViewLink->setChecked(view.linkListings);
    m.mnuViewMissing->setChecked(view.useMissingPlaceholders);
    m.mnuViewFullPath->setChecked(view.fullPath);
    m.mnuViewAllFiles->setChecked(view.allFiles);
    m.mnuViewBold->setChecked(view.boldDifferences);
    for (QAction *item :
         {m.mnuViewLink, m.mnuViewMissing, m.mnuViewFullPath, m.mnuViewAllFiles, m.mnuViewBold})
        item->setEnabled(true);
    for (ListView *list : lvwFiles)
        list->files()->setBoldDifferent(view.allFiles && view.boldDifferences);
}

void frmMain::ToggleViewOption(bool Options::ViewOptions::*option, bool on) {
    // All five are stored together.
    m_view.*option = on;
    const Options::ViewOptions view = m_view;
    Options::setViewOptions(view);

    using View = Options::ViewOptions;
    if (option == &View::linkListings) {
        m_linked->SwitchLinking(view.linkListings);
        // Placeholder rows stand for the other side's files, so they are decided anew. The
        // sort let the event loop run: the options are read as they stand now.
        if (m_view.useMissingPlaceholders)
            RefreshFileListings();
    } else if (option == &View::useMissingPlaceholders || option == &View::allFiles)
        RefreshFileListings();
    else if (option == &View::fullPath) {
        UpdateListView(0);
        UpdateListView(1);
    }
    // Bold marks differing rows among identical ones, so it needs Show All Files. A rebuild
    // lets the event loop run, so another toggle may have come meanwhile.
    for (ListView *list : lvwFiles)
        list->files()->setBoldDifferent(m_view.allFiles && m_view.boldDifferences);
}

ListView *frmMain::ActiveList() const {
    return m_edit->ActiveList();
}

int frmMain::ActiveSide() const {
    return m_edit->ActiveSide();
}

void frmMain::mnuFileOptions_Click() {
    QMessageBox box(QMessageBox::Question, QStringLiteral("Pairscope"),
                    QStringLiteral("Set default visuals and clear recent selections?"),
                    QMessageBox::Yes | QMessageBox::No, this);
    box.setDefaultButton(QMessageBox::No);
    if (box.exec() == QMessageBox::No)
        return;
    ResetOptions();
}

void frmMain::ResetOptions() {
    const ResultListing::ViewState before = CurrentViewState();
    m_folders[0]->Fill(true);
    m_folders[1]->Fill(true);
    m_comparisons->Fill(true);
    ColumnLayout::LoadLayout(lvwFiles[0], false, true);
    ColumnLayout::LoadLayout(lvwFiles[1], true, true);
    Options::setOrientation(Options::VerticalOrientation);
    ApplyOrientation(Options::VerticalOrientation);
    Options::setAlwaysOnTop(false);
    ApplyAlwaysOnTop(false);
    const Options::ViewOptions view;
    Options::setViewOptions(view);
    ApplyViewOptions();
    Options::setIncludeSlack(true);
    m_menus->mnuFileIncludeSlack->setChecked(true);
    Options::setIgnoreTimeShift(false);
    m_menus->mnuFileIgnoreTimeShift->setChecked(false);
    Options::setLetterCase(caseRuleWord(CaseRule::Automatic));
    ApplyCaseRule(CaseRule::Automatic);

    // The listings follow: linking switched back on couples them as the View item would,
    // a changed listing rule re-decides the rows, and the new columns get their texts.
    if (view.linkListings && !m_linked->isLinked())
        m_linked->SwitchLinking(true);
    if (view.useMissingPlaceholders != before.missingPlaceholders ||
        view.allFiles != before.allFiles)
        RefreshFileListings();
    UpdateListView(0);
    UpdateListView(1);
}

void frmMain::ClearDisplay() {
    // A rebuild still under way stops: the lists are to stay empty.
    ++m_listingsWork;
    const bool rebuilding = !m_running && IsBusy();
    // The collections stay: a View toggle afterwards lists the last result again.
    for (int i = 0; i < 2; ++i) {
        lvwFiles[i]->files()->clear();
        lblPath[i]->setText(QString());
    }
    if (rebuilding) {
        unsetCursor();
        ShowComplete(false);
    }
}

bool frmMain::IsComparing() const {
    return m_session.isRunning();
}

bool frmMain::IsBusy() const {
    return testAttribute(Qt::WA_SetCursor) && cursor().shape() == Qt::WaitCursor;
}

void frmMain::SetCompareMode(bool comparing) {
    const bool e = !comparing;
    MainMenuBar &m = *m_menus;
    for (int i = 0; i < 2; ++i) {
        lblSelectPath[i]->setEnabled(e);
        cboSelectPath[i]->setEnabled(e);
        lblPath[i]->setEnabled(e);
        m.mnuFileSelectPath[i]->setEnabled(e);
    }
    lblComparisons->setEnabled(e);
    cboComparisons->setEnabled(e);
    cmdCompare->setText(e ? compareButtonCaption : cancelButtonCaption);
    m.mnuFileCompare->setText(e ? MainMenuBar::compareCaption() : MainMenuBar::cancelCaption());
    m.showCompareKeyHint(e);
    m_escape->setEnabled(comparing);
    m_cancelling = false;
    cmdCompare->setEnabled(true);
    m.mnuFileClear->setEnabled(e);
    m.mnuFileOptions->setEnabled(e);
    if (comparing) {
        for (QAction *item :
             {m.mnuViewAllFiles, m.mnuViewBold, m.mnuViewFullPath, m.mnuViewLink, m.mnuViewMissing})
            item->setEnabled(false);
    } else {
        ApplyViewOptions();
    }
}

void frmMain::cmdCompare_Click() {
    if (IsComparing()) {
        m_cancelling = true;
        cmdCompare->setEnabled(false);
        m_session.cancel();
        return;
    }
    if (m_cancelling)
        return;

    if (!FolderExists(cboSelectPath[0]->currentText())) {
        QMessageBox::information(this, QStringLiteral("Pairscope"),
                                 QStringLiteral("Source path does not exist.  Cannot compare."));
        return;
    }
    if (!FolderExists(cboSelectPath[1]->currentText())) {
        QMessageBox::information(
            this, QStringLiteral("Pairscope"),
            QStringLiteral("Destination path does not exist.  Cannot compare."));
        return;
    }

    SetCompareMode(true);
    setCursor(Qt::WaitCursor);
    m_running = true;
    CompareSession::Request request;
    request.source = NativeFromPath(cboSelectPath[0]->currentText());
    request.destination = NativeFromPath(cboSelectPath[1]->currentText());
    request.comparisons = m_comparisons->Comparisons();
    request.includeSlack = Options::includeSlack();
    request.doCRCLast = Options::doCRCLast();
    request.chunkSize = Options::crcChunkSize();
    request.caseRule = m_caseRule;
    if (Options::ignoreTimeShift())
        request.timeShifts = {60};
    request.filter = frmFilters::StoredFilter();
    m_report->setRequest(request);
    // A tree that keeps changing is compared again for as long as the user lets it.
    const bool cancelled = m_session.run(request) == CompareSession::State::Cancelled;
    m_running = false;
    if (m_closeRequested) {
        // The window was closed during the run: it goes now, without being restored.
        QTimer::singleShot(0, this, &QWidget::close);
        return;
    }

    if (cancelled) {
        UpdateStatus(QStringLiteral("Compare cancelled."), false, -1, true);
        oPairscope.reset();
    } else {
        ShowComplete(true);
        lblPath[0]->setText(QStringLiteral("Files from ") + colSourceFiles->RootFolder());
        lblPath[1]->setText(QStringLiteral("Files from ") + colDestFiles->RootFolder());
    }
    SetCompareMode(false);
    if (!cancelled && m_view.linkListings)
        ResortLinkedLists();
    unsetCursor();
    if (m_problems)
        m_problems->SetProblems(m_session.problemsOf(0), m_session.problemsOf(1));
}

void frmMain::ReleaseLastAttempt() {
    const std::array<QObject *, 3> last = {colSourceFiles.get(), colDestFiles.get(),
                                           oPairscope.get()};
    for (QObject *object : last) {
        if (!object)
            continue;
        object->disconnect(this);
        // Deleted on the release thread, they must belong to no thread.
        object->moveToThread(nullptr);
    }
    ReleaseInBackground(
        std::make_tuple(std::move(colSourceFiles), std::move(colDestFiles), std::move(oPairscope)));
}

void frmMain::StartAttempt() {
    ++m_listingsWork;
    ReleaseLastAttempt();
    colSourceFiles = m_session.sourceFiles();
    colDestFiles = m_session.destinationFiles();
    oPairscope = m_session.engine();
    connect(colSourceFiles.get(), &ComparisonFileCollection::FileAdded, this,
            &frmMain::colSourceFiles_FileAdded);
    connect(colDestFiles.get(), &ComparisonFileCollection::FileAdded, this,
            &frmMain::colDestFiles_FileAdded);
    connect(oPairscope.get(), &Pairscope::CompareProgress, this,
            &frmMain::oPairscope_CompareProgress);
    connect(oPairscope.get(), &Pairscope::FilesCompared, this, &frmMain::oPairscope_FilesCompared);

    for (int i = 0; i < 2; ++i) {
        lvwFiles[i]->files()->clear();
        lblPath[i]->setText(QString());
    }
    repaint();
    m_yield.now();
    if (m_closeRequested)
        m_session.cancel();
}

void frmMain::UpdateProgress(const std::function<QString()> &makeText, int completionPercentage) {
    StatusBar1->UpdateProgress(makeText, completionPercentage);
    m_yield();
}

void frmMain::colSourceFiles_FileAdded(int FileCount) {
    UpdateProgress(
        [FileCount] { return QStringLiteral("Building source file list (%1)").arg(FileCount); },
        -1);
}

void frmMain::colDestFiles_FileAdded(int FileCount) {
    UpdateProgress(
        [FileCount] {
            return QStringLiteral("Building destination file list (%1)").arg(FileCount);
        },
        -1);
}

void frmMain::oPairscope_CompareProgress(int Pass, int CurrentFile, int TotalFiles) {
    if (CurrentFile != -1) {
        const int percentage =
            TotalFiles == 0 ? -1 : int(std::lrint(double(CurrentFile) / TotalFiles * 100.0));
        UpdateProgress(
            [Pass, CurrentFile, TotalFiles] {
                return QStringLiteral("Comparing files - pass %1  (%2 of %3)")
                    .arg(Pass)
                    .arg(CurrentFile)
                    .arg(TotalFiles);
            },
            percentage);
    } else if (TotalFiles != -1) {
        UpdateStatus(QStringLiteral("Analyzing files"), true, -1, true);
    } else {
        UpdateStatus(QStringLiteral("Initializing comparison data"), true, -1, true);
    }
}

void frmMain::oPairscope_FilesCompared(const ComparisonFilePtr &SourceFile,
                                       const ComparisonFilePtr &DestFile, int ComparisonResult) {
    const ResultListing::ViewState view = CurrentViewState();
    m_listing->ListPair(SourceFile, DestFile, ComparisonResult, view);
}

void frmMain::ResortLinkedLists() {
    // Both lists are re-sorted on the header whose index equals the list's sort key as it
    // stands, and both with the source collection: the order the program has always shown.
    for (ListView *list : lvwFiles) {
        SortListView(list, colSourceFiles.get(), list->shownType(list->sortKey()),
                     list->sortOrder() == Qt::AscendingOrder, [this] { m_yield(); });
    }
}

ResultListing::ViewState frmMain::CurrentViewState() const {
    ResultListing::ViewState view;
    view.allFiles = m_view.allFiles;
    view.missingPlaceholders = m_view.useMissingPlaceholders;
    view.fullPath = m_view.fullPath;
    return view;
}

const ComparisonFileCollection *frmMain::Files(int side) const {
    return (side == 0 ? colSourceFiles : colDestFiles).get();
}

int frmMain::ProblemCount() const {
    return int(m_session.problems().size());
}

QString frmMain::CompleteText() const {
    const int problems = ProblemCount();
    if (problems == 0)
        return QStringLiteral("Compare complete.");
    return problems == 1
               ? QStringLiteral("Compare complete.  1 item could not be compared.")
               : QStringLiteral("Compare complete.  %1 items could not be compared.").arg(problems);
}

void frmMain::ShowProblems() {
    if (!colSourceFiles || !colDestFiles)
        return;
    if (!m_problems) {
        m_problems = new frmProblems(this);
        SetTopmost(m_problems, m_alwaysOnTop);
        CenterOverWindow(m_problems, this);
    }
    m_problems->SetProblems(m_session.problemsOf(0), m_session.problemsOf(1));
    m_problems->show();
    m_problems->raise();
    m_problems->activateWindow();
}

void frmMain::RefreshFileListings() {
    // A compare lists its pairs with the options in force as each one is settled.
    if (m_running)
        return;
    if (!colSourceFiles || !colDestFiles || colSourceFiles->Count() == 0 ||
        colDestFiles->Count() == 0)
        return;
    // Rebuilt in slices with the event loop running between them: an earlier rebuild still
    // under way gives way to this one, and this one to a compare, a later rebuild or Clear
    // Display. A compare replaces the collections, so the rebuild keeps its own.
    const quint64 rebuild = ++m_listingsWork;
    std::shared_ptr<ComparisonFileCollection> sources = colSourceFiles;
    std::shared_ptr<ComparisonFileCollection> destinations = colDestFiles;
    const auto current = [this, rebuild] { return rebuild == m_listingsWork; };
    UpdateStatus(QStringLiteral("Rebuilding display..."), false, -1, true);
    bool finished = current();
    if (finished) {
        setCursor(Qt::WaitCursor);
        repaint();
        // The first slice always lets the events in, however recently they last ran: a short
        // rebuild would otherwise finish before any command given during it is seen.
        bool firstSlice = true;
        finished = m_listing->Refresh(*sources, *destinations, CurrentViewState(),
                                      [this, &current, &firstSlice] {
                                          if (std::exchange(firstSlice, false))
                                              m_yield.now();
                                          else
                                              m_yield();
                                          return current();
                                      });
    }
    // A compare started meanwhile has handed them to the release thread already, which
    // gets these last references too.
    if (sources != colSourceFiles || destinations != colDestFiles)
        ReleaseInBackground(std::make_pair(std::move(sources), std::move(destinations)));
    if (!finished)
        return;
    unsetCursor();
    ShowComplete(true);
}

void frmMain::ShowComplete(bool yield) {
    UpdateStatus(CompleteText(), false, -1, yield);
    // The text opens the list of what could not be compared, when there is one.
    StatusBar1->setTextClickable(ProblemCount() > 0);
}

void frmMain::UpdateListView(int side) {
    m_listing->UpdateListView(side, m_view.fullPath);
}

void frmMain::closeEvent(QCloseEvent *event) {
    if (m_running) {
        // A close during a run acts as Cancel; the window goes once the run has unwound.
        m_closeRequested = true;
        cmdCompare_Click();
        event->ignore();
        return;
    }
    if (m_placementSaver.isActive()) {
        m_placementSaver.stop();
        SavePosition();
    }
    ColumnLayout::SaveLayout(lvwFiles[0], false);
    ColumnLayout::SaveLayout(lvwFiles[1], true);
    event->accept();
    UnloadAllForms(false);
}

void frmMain::moveEvent(QMoveEvent *event) {
    QMainWindow::moveEvent(event);
    if (isVisible())
        m_placementSaver.start();
}

void frmMain::resizeEvent(QResizeEvent *event) {
    QMainWindow::resizeEvent(event);
    if (isVisible())
        m_placementSaver.start();
}

int frmMain::SideAt(const QPoint &pos) const {
    const QWidget *target = childAt(pos);
    for (const QWidget *w : {static_cast<const QWidget *>(lblSelectPath[1]),
                             static_cast<const QWidget *>(cboSelectPath[1]),
                             static_cast<const QWidget *>(picSide[1])}) {
        if (target && (target == w || w->isAncestorOf(target)))
            return 1;
    }
    return 0;
}

void frmMain::dragEnterEvent(QDragEnterEvent *event) {
    if (!droppedFolders(event->mimeData()).isEmpty() && !IsComparing())
        event->acceptProposedAction();
}

void frmMain::dragMoveEvent(QDragMoveEvent *event) {
    if (!droppedFolders(event->mimeData()).isEmpty() && !IsComparing())
        event->acceptProposedAction();
    else
        event->ignore();
}

void frmMain::dropEvent(QDropEvent *event) {
    const QStringList folders = droppedFolders(event->mimeData());
    if (folders.isEmpty() || IsComparing())
        return;
    event->acceptProposedAction();
    // Two folders fill both sides; one folder goes to the side it was dropped on.
    if (folders.size() >= 2) {
        SelectFolder(0, folders[0]);
        SelectFolder(1, folders[1]);
    } else {
        SelectFolder(SideAt(event->position().toPoint()), folders[0]);
    }
}
