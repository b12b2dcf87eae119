#include "BrowseForFolder.h"

#include "GeneralHelpers.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QUrl>

namespace {

// A folder made absolute against the current folder and cleaned; "" when it is no folder.
QString existingFolder(const QString &path) {
    if (path.isEmpty())
        return QString();
    const QFileInfo info(path);
    return info.isDir() ? QDir::cleanPath(info.absoluteFilePath()) : QString();
}

bool isInside(const QString &path, const QString &root) {
    const QString cleaned = QDir::cleanPath(path);
    return root == QLatin1String("/") || cleaned == root ||
           cleaned.startsWith(root + QLatin1Char('/'));
}

// The folder dialog, kept inside its root: navigating above it leads back to the root, and
// a folder typed outside it is not accepted. Its "Computer" place lists the file systems but
// is no folder itself, so Choose is off there until one of them is picked.
class FolderDialog : public QFileDialog {
public:
    FolderDialog(QWidget *owner, const QString &root)
        : QFileDialog(owner)
        , m_root(root) {
        setOption(QFileDialog::DontUseNativeDialog);
        setFileMode(QFileDialog::Directory);
        connect(this, &QFileDialog::directoryEntered, this, [this](const QString &folder) {
            if (!m_root.isEmpty() && !isInside(folder, m_root))
                setDirectory(m_root);
            updateChoose();
        });
        if (auto *buttons = findChild<QDialogButtonBox *>())
            m_choose = buttons->button(QDialogButtonBox::Open);
        // The dialog enables its button whenever the typed text changes: undo that here.
        if (m_choose)
            m_choose->installEventFilter(this);
        if (auto *typed = findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
            connect(typed, &QLineEdit::textChanged, this, &FolderDialog::updateChoose);
    }

    void accept() override {
        if (!canChoose())
            return;
        const QStringList chosen = selectedFiles();
        if (!m_root.isEmpty() && (chosen.isEmpty() || !isInside(chosen.first(), m_root))) {
            setDirectory(m_root);
            selectFile(QString());
            return;
        }
        QFileDialog::accept();
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (watched == m_choose && event->type() == QEvent::EnabledChange)
            updateChoose();
        return QFileDialog::eventFilter(watched, event);
    }

private:
    bool canChoose() const {
        const auto *files = findChild<QFileSystemModel *>();
        const auto *typed = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        return !files || !files->rootPath().isEmpty() || (typed && !typed->text().isEmpty());
    }

    void updateChoose() {
        if (m_choose && m_choose->isEnabled() && !canChoose())
            m_choose->setEnabled(false);
    }

    QString m_root;
    QPointer<QPushButton> m_choose;
};

// The widget dialog has no place for an instruction: move its rows down by one and put the
// prompt on top, across the whole width.
void addPrompt(QFileDialog &dialog, const QString &prompt) {
    auto *grid = qobject_cast<QGridLayout *>(dialog.layout());
    if (!grid || prompt.isEmpty())
        return;
    struct Placed {
        QLayoutItem *item;
        int row, column, rowSpan, columnSpan;
    };
    QList<Placed> items;
    while (grid->count() > 0) {
        Placed placed{nullptr, 0, 0, 0, 0};
        grid->getItemPosition(0, &placed.row, &placed.column, &placed.rowSpan, &placed.columnSpan);
        placed.item = grid->takeAt(0);
        items.append(placed);
    }
    for (const Placed &placed : items)
        grid->addItem(placed.item, placed.row + 1, placed.column, placed.rowSpan,
                      placed.columnSpan);
    auto *label = new QLabel(prompt, &dialog);
    label->setObjectName(QStringLiteral("lblPrompt"));
    label->setWordWrap(true);
    grid->addWidget(label, 0, 0, 1, grid->columnCount());
}

} // namespace

bool BrowseForFolder::Browse() {
    m_cancelled = true;
    const QString root = existingFolder(RootFolder);
    FolderDialog dialog(Owner, root);
    dialog.setOption(QFileDialog::ShowDirsOnly, (Flags & IncludeFiles) == 0);
    dialog.setOption(QFileDialog::ReadOnly,
                     (Flags & NewDialogStyle) == 0 || (Flags & NoNewFolderButton) != 0);
    if (!DialogTitle.isEmpty())
        dialog.setWindowTitle(DialogTitle);
    if (!OKText.isEmpty())
        dialog.setLabelText(QFileDialog::Accept, OKText);
    addPrompt(dialog, Prompt);
    if (!root.isEmpty()) {
        dialog.setSidebarUrls({QUrl::fromLocalFile(root)});
        dialog.setDirectory(root);
    }
    // A preselection that is no folder, or lies outside the root, is simply not made.
    const QString preselected = existingFolder(SelectedFolder);
    if (!preselected.isEmpty() && (root.isEmpty() || isInside(preselected, root)))
        dialog.setDirectory(preselected);

    ApplyMessageFont(&dialog);
    if (Owner) {
        CenterOverWindow(&dialog, Owner);
        SetTopmost(&dialog, IsTopmost(Owner));
    }
    if (dialog.exec() != QDialog::Accepted)
        return false;
    const QStringList chosen = dialog.selectedFiles();
    const QString folder = chosen.isEmpty() ? QString() : existingFolder(chosen.first());
    if (folder.isEmpty())
        return false;
    SelectedFolder = folder;
    m_cancelled = false;
    return true;
}

QString BrowseForFolder::SpecialFolder(int folder) {
    QStandardPaths::StandardLocation location;
    switch (folder) {
    case Desktop:
    case DesktopDirectory:
        location = QStandardPaths::DesktopLocation;
        break;
    case Programs:
        location = QStandardPaths::ApplicationsLocation;
        break;
    case Personal:
        location = QStandardPaths::DocumentsLocation;
        break;
    case MyMusic:
        location = QStandardPaths::MusicLocation;
        break;
    case MyVideo:
        location = QStandardPaths::MoviesLocation;
        break;
    case Fonts:
        location = QStandardPaths::FontsLocation;
        break;
    case AppData:
        location = QStandardPaths::GenericConfigLocation;
        break;
    case LocalAppData:
        location = QStandardPaths::GenericDataLocation;
        break;
    case InternetCache:
        location = QStandardPaths::GenericCacheLocation;
        break;
    case MyPictures:
        location = QStandardPaths::PicturesLocation;
        break;
    case Profile:
        location = QStandardPaths::HomeLocation;
        break;
    default:
        // Drives (the computer itself) and unknown numbers have no folder of their own.
        return QString();
    }
    return QStandardPaths::writableLocation(location);
}
