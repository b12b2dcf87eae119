#pragma once

#include <QString>

class QWidget;

/**
 * The desktop's folder browser: a folder dialog with a caption, a prompt above the folder
 * view, an OK text of the caller's choosing, an optional root it cannot leave and a folder
 * preselected.
 */
class BrowseForFolder {
public:
    /** Browse request flags, as the folder browsers of other systems name them. */
    enum : int {
        ReturnOnlyFileSystemFolders = 0x1,
        ReturnFileSystemAncestors = 0x8,
        NewDialogStyle = 0x40, ///< the browser may create folders
        UsageHint = 0x100,
        NoNewFolderButton = 0x200, ///< the browser may not create folders
        IncludeFiles = 0x4000,     ///< files are shown too (only a folder can be chosen)
    };

    /** Special folders, numbered as the desktop's folder identifiers are elsewhere. */
    enum : int {
        Desktop = 0x0000,
        Programs = 0x0002,
        Personal = 0x0005,
        MyMusic = 0x000d,
        MyVideo = 0x000e,
        DesktopDirectory = 0x0010,
        Drives = 0x0011,
        Fonts = 0x0014,
        AppData = 0x001a,
        LocalAppData = 0x001c,
        InternetCache = 0x0020,
        MyPictures = 0x0027,
        Profile = 0x0028,
    };

    /** Caption of the browser window; default empty (the dialog's own caption). */
    QString DialogTitle;
    /** Browse flags; default 329 (file-system folders only, new dialog style). */
    int Flags =
        ReturnOnlyFileSystemFolders | ReturnFileSystemAncestors | NewDialogStyle | UsageHint;
    /** The window the browser is shown over. */
    QWidget *Owner = nullptr;
    /** Text of the OK button when not empty. */
    QString OKText;
    /** When not empty, the browser shows nothing above this folder. */
    QString RootFolder;
    /** The instruction shown above the folders; default "Choose a folder". */
    QString Prompt = QStringLiteral("Choose a folder");
    /**
     * On entry the folder to preselect (a relative path is taken from the current folder);
     * after a successful Browse() the chosen folder.
     */
    QString SelectedFolder;

    /** True when the last Browse() ended without a folder. */
    bool Cancelled() const { return m_cancelled; }

    /** Shows the browser modally; returns true and sets SelectedFolder when one was chosen. */
    bool Browse();

    /** The path of a special folder (Desktop, Personal, ...), or "" when there is none. */
    static QString SpecialFolder(int folder);

private:
    bool m_cancelled = false;
};
