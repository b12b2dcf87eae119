#pragma once

#include "settings/Options.h"

#include <QSize>
#include <QString>

#include <memory>

class frmMain;
class ListView;
class QPushButton;

/**
 * The real main window as a user meets it, with View options and a comparison set of the
 * benchmark's choosing, and the clock readings a benchmark needs: a compare from the click to
 * its end, and any command until the window has settled and painted.
 */
class BenchWindow {
public:
    /** What the window is set to before it is built. */
    struct Setup {
        Options::ViewOptions view;
        /** The comparison bit set; it must be one of the combo's entries. */
        int comparisons = 3;
        /** Options::HorizontalOrientation (stacked) or VerticalOrientation (side by side). */
        int orientation = Options::VerticalOrientation;
        QSize size{1280, 800};
    };

    /**
     * Stores \a setup in the settings (the profile must already point at a scratch folder),
     * then builds, prepares and shows the window with \a source and \a destination chosen.
     */
    BenchWindow(const Setup &setup, const QString &source, const QString &destination);
    ~BenchWindow();

    frmMain &window() const { return *m_window; }
    ListView *list(int side) const;
    /** False when the comparison set was not offered by the combo. */
    bool isReady() const { return m_ready; }

    /** Clicks Compare and returns the seconds until the run's handler has returned. */
    double compare();
    /**
     * Seconds until pending events are handled and the window is painted: what a command
     * leaves to the event loop (rows handed to the view, repaints) counts for the command.
     */
    static double settle(frmMain &window);
    /** Runs \a command, then settles; returns the seconds of both. */
    template <typename Command> double timed(Command command) {
        const qint64 start = now();
        command();
        return double(now() - start) / 1e9 + settle(*m_window);
    }
    /** The window's Compare button. */
    static QPushButton *compareButton(const frmMain &window);
    /** The monotonic clock all readings use, in ns. */
    static qint64 now();

    /** Clicks the header of column \a type in list \a side, scrolled into view first. */
    void clickHeader(int side, int type);
    /** The shown status text without its two leading blanks. */
    QString statusText() const;

private:
    std::unique_ptr<frmMain> m_window;
    bool m_ready = false;
};
