#pragma once

#include <QStatusBar>
#include <QTimer>

#include <functional>

class QLabel;
class QProgressBar;
class StatusText;

/**
 * The main window's status bar: panel 1 shows the status text, panel 2 holds the progress bar
 * and is shown only while a percentage is reported.
 *
 * Progress texts arrive once per file; they are painted at most every ~30 ms, and the latest
 * one is always painted in the end, so that a fast walk costs no repaint per file. Final
 * texts are shown at once and replace any pending progress text.
 */
class StatusLine : public QStatusBar {
    Q_OBJECT

public:
    explicit StatusLine(QWidget *parent = nullptr);

    /**
     * Shows \a statusText (preceded by two blanks). \a isProgressMessage marks a progress text,
     * \a completionPercentage is 0..100 or -1 for none (the progress panel is hidden then).
     */
    void UpdateStatus(const QString &statusText, bool isProgressMessage, int completionPercentage);

    /**
     * The same for a progress text made by \a makeText, which is called only when the text is
     * painted: a run reporting every file then formats a text per paint, not per file.
     */
    void UpdateProgress(const std::function<QString()> &makeText, int completionPercentage);

    /** The text shown now, with its two leading blanks (a pending progress text counts). */
    QString shownText() const;
    /** The progress bar; visible only while a percentage is shown. */
    QProgressBar *ProgressBar1() const { return m_progress; }
    /** When true, the status text looks like a link and a click on it emits textClicked(). */
    void setTextClickable(bool clickable);
    bool textClickable() const;
    /** Shows "Filtered" at the right while a filter leaves files out of compares. */
    void setFiltered(bool filtered);
    bool filtered() const;

    /** The least time between two painted progress texts. */
    static constexpr int paintIntervalMs = 30;

Q_SIGNALS:
    /** The user clicked the status text while it was clickable. */
    void textClicked();

private:
    void paintPending();
    void showProgressPanel(bool show);
    void showPercentage(int completionPercentage);
    void schedulePending();
    QString pendingText() const;

    StatusText *m_text = nullptr;
    QProgressBar *m_progress = nullptr;
    QLabel *m_filtered = nullptr;
    QString m_pending;
    /** When set, makes the pending text in place of m_pending. */
    std::function<QString()> m_makePending;
    bool m_hasPending = false;
    /** The percentage that goes with the pending text; -1 for none. */
    int m_pendingPercentage = -1;
    /** When a progress text was last painted (coarseMilliseconds()); -1 before the first. */
    qint64 m_lastPaintMs = -1;
    QTimer m_flush;
};
