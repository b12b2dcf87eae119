#pragma once

#include <QDialog>

class QLabel;

/**
 * The About window: the program's mark, name and version, and the hint "Hold SHIFT at startup
 * to reset window location.". Closed by its Close button, Escape or Enter.
 */
class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget *parent = nullptr);

    /**
     * Opens a new About window over \a mainWindow (window-modal, not blocking), above all
     * other windows when \a topmost is true; it deletes itself when closed.
     */
    static frmAbout *ShowAbout(QWidget *mainWindow, bool topmost);

    /** Centres the window over \a window, kept inside that window's screen. */
    void PlaceOver(const QWidget *window);

    /** "version 1.3  build 0027". */
    QLabel *lblVersion = nullptr;
    /** "Hold SHIFT at startup to reset window location." */
    QLabel *lblHint = nullptr;
};
