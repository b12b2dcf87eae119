#pragma once

#include "reports/CompareReport.h"
#include "reports/ReportWriter.h"

#include "engine/CompareSession.h"

#include <QObject>
#include <QString>

class MainMenuBar;
class QAction;
class QWidget;

/**
 * File > Save Report...: writes what the window compared last, its roots, comparison set and
 * options and the pairs its listings show, as one HTML page, JSON, tab-separated values or
 * text, the same reports pairscope-cli writes. The item is enabled only while the last
 * compare is a finished one: not before the first, not while one runs, not after a cancel.
 */
class ReportCommand : public QObject {
    Q_OBJECT

public:
    /** Listens to \a session's compares and serves the item of \a menus over \a window. */
    ReportCommand(const MainMenuBar &menus, const CompareSession &session, QWidget *window);

    /** Takes the roots, comparison set and options of the compare about to run. */
    void setRequest(const CompareSession::Request &request);

    /**
     * The last finished compare as a report: its pairs in the order of their paths, identical
     * ones only while View > Show All Files lists them.
     */
    CompareReport report() const;

    /**
     * Writes report() to \a fileName in \a format, replacing the file only once all is written;
     * on failure returns false and sets \a error to the reason.
     */
    bool save(const QString &fileName, ReportFormat format, QString *error) const;

    /**
     * Asks for a file (HTML unless another type is chosen; the type's extension is added to a
     * name typed without one) and saves the report there, or says in a message box why not.
     */
    void mnuFileSaveReport_Click();

private:
    void stateChanged(CompareSession::State state);

    const CompareSession &m_session;
    QAction *m_item;
    const QAction *m_allFiles;
    QWidget *m_window;
    /** The last compare: its differences listed, every pair counted. */
    CompareReport m_compared;
    QString m_lastFolder;
};
