#include "reports/TextReport.h"

#include "reports/CompareReport.h"
#include "reports/NameEscaping.h"
#include "reports/OutputStream.h"

#include "engine/ComparisonSet.h"

#include <QLocale>
#include <QStringList>

namespace {

/** The words for a code in this report: identical pairs have none of their own. */
QString kindText(int code) {
    return code == DifferenceCode::Equal ? QStringLiteral("identical")
                                         : ComparisonFile::DifferenceText(code);
}

} // namespace

void writeTextReport(const CompareReport &report, OutputStream &out) {
    out << ComparisonDescription(report.comparisons, report.doCRCLast) << '\n';

    qsizetype width = 0;
    for (std::size_t code = 0; code < report.counts.size(); ++code) {
        const bool listed = code != DifferenceCode::Equal || report.listAll;
        if (report.counts[code] != 0 && listed)
            width = qMax(width, kindText(int(code)).size());
    }
    for (const ReportPair &pair : report.pairs)
        out << kindText(pair.code).leftJustified(width + 2) << NameEscaping::readable(pair.path())
            << '\n';

    const QLocale locale = QLocale::system();
    QStringList kinds;
    for (std::size_t code = 0; code < report.counts.size(); ++code) {
        if (report.counts[code] != 0)
            kinds.append(locale.toString(report.counts[code]) + QLatin1Char(' ') +
                         kindText(int(code)));
    }
    const qint64 pairs = report.pairCount();
    QString summary =
        locale.toString(pairs) + (pairs == 1 ? QStringLiteral(" pair") : QStringLiteral(" pairs"));
    summary += kinds.isEmpty()
                   ? QStringLiteral(".")
                   : QLatin1String(": ") + kinds.join(QLatin1String(", ")) + QLatin1Char('.');
    if (!report.problems.isEmpty())
        summary += QStringLiteral("  %1 could not be compared.")
                       .arg(report.problems.size() == 1 ? QStringLiteral("1 item")
                                                        : locale.toString(report.problems.size()) +
                                                              QStringLiteral(" items"));
    out << summary << '\n';
}
