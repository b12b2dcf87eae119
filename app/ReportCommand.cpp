#include "ReportCommand.h"

#include "MainMenuBar.h"
#include "reports/OutputStream.h"
#include "reports/PairCollection.h"

#include "views/BackgroundRelease.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QSaveFile>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

struct FileType {
    ReportFormat format;
    const char *filter;
    const char *extension;
};

// The first is offered first: a page anyone can open and print.
constexpr FileType fileTypes[] = {
    {ReportFormat::Html, "HTML page (*.html *.htm)", "html"},
    {ReportFormat::Json, "JSON (*.json)", "json"},
    {ReportFormat::Tsv, "Tab-separated values (*.tsv)", "tsv"},
    {ReportFormat::Text, "Text (*.txt)", "txt"},
};

const FileType &typeOfFilter(const QString &filter) {
    const auto found =
        std::find_if(std::begin(fileTypes), std::end(fileTypes), [&filter](const FileType &type) {
            return filter == QLatin1String(type.filter);
        });
    return found == std::end(fileTypes) ? fileTypes[0] : *found;
}

/** The format \a fileName asks for by its extension, in any case; else \a chosen. */
ReportFormat formatOf(const QString &fileName, ReportFormat chosen) {
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (suffix == QLatin1String("htm"))
        return ReportFormat::Html;
    for (const FileType &type : fileTypes) {
        if (suffix == QLatin1String(type.extension))
            return type.format;
    }
    return chosen;
}

} // namespace

ReportCommand::ReportCommand(const MainMenuBar &menus, const CompareSession &session,
                             QWidget *window)
    : m_session(session)
    , m_item(menus.mnuFileSaveReport)
    , m_allFiles(menus.mnuViewAllFiles)
    , m_window(window)
    , m_lastFolder(QDir::homePath()) {
    m_item->setEnabled(false);
    connect(m_item, &QAction::triggered, this, &ReportCommand::mnuFileSaveReport_Click);
    connect(&session, &CompareSession::attemptStarted, this,
            [this] { collectPairs(*m_session.engine(), this, m_compared); });
    connect(&session, &CompareSession::stateChanged, this, &ReportCommand::stateChanged);
}

void ReportCommand::setRequest(const CompareSession::Request &request) {
    // The pairs of a large compare take the window a noticeable while to free.
    ReleaseInBackground(std::exchange(m_compared, {}));
    m_compared.describe(request);
}

void ReportCommand::stateChanged(CompareSession::State state) {
    const bool finished = state == CompareSession::State::Complete;
    m_item->setEnabled(finished);
    if (finished)
        m_compared.setProblems(m_session.problems());
}

CompareReport ReportCommand::report() const {
    CompareReport shown = m_compared;
    shown.listAll = m_allFiles->isChecked();
    const auto &sources = m_session.sourceFiles();
    const auto &destinations = m_session.destinationFiles();
    if (shown.listAll && sources && destinations) {
        // The identical pairs were only counted as they were decided, so that a large tree
        // costs nothing for each; they are found again as Show All Files finds them for the
        // listings, every identical source record with its counterpart.
        for (const ComparisonFilePtr &record : *sources) {
            if (record->DifferenceCode() == DifferenceCode::Equal) {
                shown.pairs.push_back(
                    {record, destinations->Counterpart(*record, *sources), DifferenceCode::Equal});
            }
        }
    }
    // Sorted when written: the end of a compare that is never saved does not wait for it.
    shown.sortPairs();
    return shown;
}

bool ReportCommand::save(const QString &fileName, ReportFormat format, QString *error) const {
    QSaveFile file(fileName);
    bool written = file.open(QIODevice::WriteOnly);
    if (written) {
        OutputStream out(&file);
        writeReport(format, report(), out);
        written = out.flush() && file.commit();
    }
    if (!written)
        *error = file.errorString();
    return written;
}

void ReportCommand::mnuFileSaveReport_Click() {
    if (!m_item->isEnabled())
        return;
    QFileDialog dialog(m_window, QStringLiteral("Save Report"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    QStringList filters;
    for (const FileType &type : fileTypes)
        filters.append(QLatin1String(type.filter));
    dialog.setNameFilters(filters);
    dialog.setDirectory(m_lastFolder);
    dialog.setDefaultSuffix(QLatin1String(fileTypes[0].extension));
    dialog.selectFile(QStringLiteral("pairscope-report.") + QLatin1String(fileTypes[0].extension));
    // The dialog adds the chosen type's extension to a name typed without one, so that it
    // also asks before replacing a file of that name.
    connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog](const QString &filter) {
        dialog.setDefaultSuffix(QLatin1String(typeOfFilter(filter).extension));
    });
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;

    const FileType &chosen = typeOfFilter(dialog.selectedNameFilter());
    QString fileName = dialog.selectedFiles().constFirst();
    // A dialog of the desktop's own may hand the name back as typed.
    if (QFileInfo(fileName).suffix().isEmpty())
        fileName += QLatin1Char('.') + QLatin1String(chosen.extension);
    m_lastFolder = QFileInfo(fileName).absolutePath();
    QString error;
    if (!save(fileName, formatOf(fileName, chosen.format), &error)) {
        QMessageBox::warning(m_window, QStringLiteral("Pairscope"),
                             QStringLiteral("The report could not be saved to %1.\n\n%2")
                                 .arg(QDir::toNativeSeparators(fileName), error));
    }
}
