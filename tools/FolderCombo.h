#pragma once

#include "settings/RecentLists.h"

#include <QObject>

class QComboBox;

/**
 * The logic of one side's path combo: the recent folders, then "  Enter Manually..." and
 * "  Browse...". Choosing a folder, typing one in the dialog, browsing to one or dropping
 * one on the combo makes it the side's path: a new folder goes to the top, one already
 * listed keeps its place, at most six are kept, and the list is stored at once. After a
 * cancelled command the combo shows the previous path again.
 */
class FolderCombo : public QObject {
    Q_OBJECT
public:
    /** Item data of the two command entries; folders carry 0. */
    static constexpr int BrowseItemData = -1;
    static constexpr int EnterManuallyItemData = -2;

    /** Takes charge of \a combo (made editable) for \a side; call Fill() to fill it. */
    FolderCombo(QComboBox *combo, RecentLists::Side side);

    /**
     * Fills the combo from the side's stored folders and selects the stored one when it is
     * in range. With \a useDefaults the list is empty instead, and stored so.
     */
    void Fill(bool useDefaults);

    /**
     * Makes \a folder the side's path through the recent-list rules and stores the list.
     * Returns false (and changes nothing) for an empty text.
     */
    bool SetPath(const QString &folder);

    /** The side's path: the combo's text. */
    QString Path() const;

    /** The recent folders, in list order. */
    QStringList Folders() const;

    /** Runs the folder browser for the side; true when a folder was chosen. */
    bool Browse();

    /** Runs the Enter Folder dialog for the side; true when a folder was entered. */
    bool EnterManually();

    /** "select source folder" or "select destination folder". */
    QString DialogTitle() const;
    /** The browser's prompt for the side. */
    QString Prompt() const;

Q_SIGNALS:
    /** The side's path was set through the list, a dialog or a drop. */
    void PathChanged(const QString &folder);

private:
    void cboSelectPath_CurrentIndexChanged(int index);
    void Refill(const QStringList &folders, int selected);
    void ShowPath(const QString &folder);

    QComboBox *cboSelectPath;
    RecentLists::Side m_side;
    QString m_path;
    bool m_busy = false;
};
