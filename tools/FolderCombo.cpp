#include "FolderCombo.h"

#include "BrowseForFolder.h"
#include "GeneralHelpers.h"
#include "PathDropFilter.h"
#include "PopupKeys.h"
#include "frmEnterFolder.h"

#include <QComboBox>
#include <QLineEdit>
#include <QScopedValueRollback>

namespace {

const QString enterManuallyText = QStringLiteral("  Enter Manually...");
const QString browseText = QStringLiteral("  Browse...");
constexpr int folderItemData = 0;

} // namespace

FolderCombo::FolderCombo(QComboBox *combo, RecentLists::Side side)
    : QObject(combo)
    , cboSelectPath(combo)
    , m_side(side) {
    cboSelectPath->setEditable(true);
    // A typed path is used as it stands; it joins the list only once it is chosen.
    cboSelectPath->setInsertPolicy(QComboBox::NoInsert);
    KeepKeysInPopup(cboSelectPath);
    connect(cboSelectPath, &QComboBox::currentIndexChanged, this,
            &FolderCombo::cboSelectPath_CurrentIndexChanged);
    connect(cboSelectPath->lineEdit(), &QLineEdit::textEdited, this,
            [this](const QString &text) { m_path = text; });
    auto *drops = new PathDropFilter(
        PathDropFilter::Accepts::Folder, [this](const QString &folder) { SetPath(folder); }, this);
    drops->Attach(cboSelectPath);
}

void FolderCombo::Fill(bool useDefaults) {
    RecentLists::Folders stored;
    if (!useDefaults)
        stored = RecentLists::loadFolders(m_side);
    const bool inRange = stored.last >= 0 && stored.last < stored.folders.size();
    Refill(stored.folders, inRange ? stored.last : -1);
    m_path = inRange ? stored.folders.at(stored.last) : QString();
    if (useDefaults)
        RecentLists::saveFolders(m_side, {}, -1);
}

bool FolderCombo::SetPath(const QString &folder) {
    const QString path = folder.trimmed();
    if (path.isEmpty())
        return false;
    QStringList folders = Folders();
    // Folder names on this system are case-sensitive: only the same text is the same entry.
    int selected = int(folders.indexOf(path));
    if (selected < 0) {
        folders.prepend(path);
        selected = 0;
    }
    while (folders.size() > RecentLists::Capacity)
        folders.removeLast();
    Refill(folders, selected);
    m_path = path;
    RecentLists::saveFolders(m_side, folders, selected);
    Q_EMIT PathChanged(path);
    return true;
}

QString FolderCombo::Path() const {
    return cboSelectPath->currentText();
}

QStringList FolderCombo::Folders() const {
    QStringList folders;
    for (int i = 0; i < cboSelectPath->count(); ++i) {
        if (cboSelectPath->itemData(i).toInt() == folderItemData)
            folders.append(cboSelectPath->itemText(i));
    }
    return folders;
}

bool FolderCombo::Browse() {
    BrowseForFolder browser;
    browser.DialogTitle = DialogTitle();
    browser.Prompt = Prompt();
    browser.Owner = cboSelectPath->window();
    browser.SelectedFolder = m_path;
    return browser.Browse() && SetPath(browser.SelectedFolder);
}

bool FolderCombo::EnterManually() {
    QWidget *owner = cboSelectPath->window();
    frmEnterFolder dialog(owner);
    dialog.setWindowTitle(DialogTitle());
    dialog.BrowseTitle = DialogTitle();
    dialog.BrowsePrompt = Prompt();
    dialog.SetFolder(m_path, Folders());
    return dialog.ShowOver(owner) && SetPath(dialog.Folder());
}

QString FolderCombo::DialogTitle() const {
    return m_side == RecentLists::Side::Destination ? QStringLiteral("select destination folder")
                                                    : QStringLiteral("select source folder");
}

QString FolderCombo::Prompt() const {
    return m_side == RecentLists::Side::Destination
               ? QStringLiteral("Select a folder to compare to the source.")
               : QStringLiteral("Select a folder for comparison.");
}

void FolderCombo::cboSelectPath_CurrentIndexChanged(int index) {
    if (m_busy || index < 0)
        return;
    const QScopedValueRollback guard(m_busy, true);
    const int itemData = cboSelectPath->itemData(index).toInt();
    if (itemData == folderItemData) {
        SetPath(cboSelectPath->itemText(index));
        return;
    }
    // While a command runs, and after it is cancelled, the combo shows the previous path,
    // never the command's own text.
    ShowPath(m_path);
    if (itemData == BrowseItemData)
        Browse();
    else if (itemData == EnterManuallyItemData)
        EnterManually();
}

void FolderCombo::Refill(const QStringList &folders, int selected) {
    const QScopedValueRollback guard(m_busy, true);
    cboSelectPath->clear();
    for (const QString &folder : folders)
        AddComboItem(cboSelectPath, folder, folderItemData);
    AddComboItem(cboSelectPath, enterManuallyText, EnterManuallyItemData);
    AddComboItem(cboSelectPath, browseText, BrowseItemData);
    cboSelectPath->setCurrentIndex(selected);
    if (selected < 0)
        cboSelectPath->setEditText(QString());
}

void FolderCombo::ShowPath(const QString &folder) {
    const QScopedValueRollback guard(m_busy, true);
    const int index = int(Folders().indexOf(folder));
    cboSelectPath->setCurrentIndex(index);
    if (index < 0)
        cboSelectPath->setEditText(folder);
}
