#include "cli/TextReport.h"

#include "cli/CliOptions.h"
#include "cli/CompareRun.h"
#include "cli/NameEscaping.h"
#include "cli/OutputStream.h"

#include <QLocale>
#include <QStringList>

namespace {

/** The words for a code in this report: identical pairs have none of their own. */
QString kindText(int code) {
    return code == DifferenceCode::Equal ? QStringLiteral("identical")
                                         : ComparisonFile::DifferenceText(code);
}

} // namespace

void writeTextReport(const CliOptions &options, const CompareRun &run, OutputStream &out) {
    out << ComparisonDescription(options.comparisons, options.doCRCLast) << '\n';

    qsizetype width = 0;
    for (std::size_t code = 0; code < run.counts().size(); ++code) {
        const bool listed = code != DifferenceCode::Equal || options.listAll;
        if (run.counts()[code] != 0 && listed)
            width = qMax(width, kindText(int(code)).size());
    }
    for (const ReportPair &pair : run.pairs())
        out << kindText(pair.code).leftJustified(width + 2) << NameEscaping::readable(pair.path)
            << '\n';

    const QLocale locale = QLocale::system();
    QStringList kinds;
    for (std::size_t code = 0; code < run.counts().size(); ++code) {
        if (run.counts()[code] != 0)
            kinds.append(locale.toString(run.counts()[code]) + QLatin1Char(' ') +
                         kindText(int(code)));
    }
    const qint64 pairs = run.pairCount();
    QString summary =
        locale.toString(pairs) + (pairs == 1 ? QStringLiteral(" pair") : QStringLiteral(" pairs"));
    summary += kinds.isEmpty()
                   ? QStringLiteral(".")
                   : QLatin1String(": ") + kinds.join(QLatin1String(", ")) + QLatin1Char('.');
    if (!run.problems().isEmpty())
        summary += QStringLiteral("  %1 could not be compared.")
                       .arg(run.problems().size() == 1 ? QStringLiteral("1 item")
                                                       : locale.toString(run.problems().size()) +
                                                             QStringLiteral(" items"));
    out << summary << '\n';
}
