#include "reports/HtmlReport.h"

#include "reports/CompareReport.h"
#include "reports/LocalDate.h"
#include "reports/NameEscaping.h"
#include "reports/OutputStream.h"

#include "engine/ComparisonSet.h"

#include <QLocale>
#include <QStringList>

#include <ctime>
#include <numeric>

namespace {

// Each row stays whole on a printed page, and the column headers are repeated on every page.
const char *const styleSheet =
    "body { font-family: sans-serif; font-size: 10pt; color: #222; margin: 1.5em; }\n"
    "h1 { font-size: 1.4em; margin: 0 0 0.6em; }\n"
    "h2 { font-size: 1.1em; margin: 1.4em 0 0.4em; }\n"
    "table { border-collapse: collapse; }\n"
    "th, td { padding: 0.15em 0.5em; text-align: left; vertical-align: top; }\n"
    "table.about th, table.summary th { font-weight: normal; color: #555; }\n"
    "table.summary td { text-align: right; }\n"
    "table.pairs { width: 100%; }\n"
    "table.pairs thead th { background: #eee; border-bottom: 1px solid #888; }\n"
    "table.pairs tbody tr { border-bottom: 1px solid #ddd; }\n"
    "td.path { font-family: monospace; word-break: break-all; }\n"
    "td.number { text-align: right; white-space: nowrap; }\n"
    "td.date { white-space: nowrap; }\n"
    "tr.differs td.difference { color: #b00; }\n"
    "tr.missing td.difference { color: #a50; }\n"
    "tr.unreadable td.difference { color: #730; }\n"
    "tr.same td.difference { color: #070; }\n"
    "@page { margin: 1.5cm; }\n"
    "@media print {\n"
    "  body { margin: 0; font-size: 8pt; }\n"
    "  thead { display: table-header-group; }\n"
    "  tr { break-inside: avoid; page-break-inside: avoid; }\n"
    "  table.pairs thead th { background: none; }\n"
    "}\n";

/** Text as UTF-8 with the five characters that HTML and XML give a meaning escaped. */
QByteArray html(QStringView text) {
    // In UTF-8 every character that needs escaping is ASCII, so the bytes can be escaped one
    // by one.
    const QByteArray utf8 = text.toUtf8();
    QByteArray out;
    out.reserve(utf8.size() + 16);
    for (const char c : utf8) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\'':
            out += "&#39;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

/** A name's bytes as people read them in every report, escaped for HTML. */
QByteArray htmlName(const QByteArray &native) {
    return html(NameEscaping::readable(native));
}

/** What one side shows of a pair; which columns there are depends on what was compared. */
struct SideColumns {
    bool created = false;
    bool accessed = false;
    bool attributes = false;

    explicit SideColumns(int comparisons)
        : created(comparisons & ComparisonBits::Created)
        , accessed(comparisons & ComparisonBits::Accessed)
        , attributes(comparisons & ComparisonBits::Attributes) {}

    int count() const { return 2 + int(created) + int(accessed) + int(attributes); }

    QByteArray headers() const {
        QByteArray out = "<th>Size</th><th>Modified</th>";
        if (created)
            out += "<th>Created</th>";
        if (accessed)
            out += "<th>Accessed</th>";
        if (attributes)
            out += "<th>Attributes</th>";
        return out;
    }

    QByteArray cells(const ComparisonFilePtr &record, const QLocale &locale) const {
        // Only what the pair was judged on: a side that does not exist, or whose properties
        // could not be read when it was judged, has none to show.
        if (!record || !record->HasFileObject() || !record->DetailsLoaded())
            return QByteArray("<td></td>").repeated(count());
        QByteArray out = "<td class=\"number\">" + html(locale.toString(record->Size())) + "</td>";
        const auto date = [&out](const FileTime &time) {
            out += "<td class=\"date\">";
            LocalDate::appendReadable(out, time);
            out += "</td>";
        };
        date(record->DateLastModified());
        if (created)
            date(record->DateCreated());
        if (accessed)
            date(record->DateLastAccessed());
        if (attributes)
            out += "<td>" +
                   html(ComparisonFile::AttributesText(record->Attributes(), record->Mode())) +
                   "</td>";
        return out;
    }
};

/** The row's class, which colours its difference. */
const char *rowClass(int code) {
    switch (code) {
    case DifferenceCode::Equal:
        return "same";
    case DifferenceCode::SourceMissing:
    case DifferenceCode::DestinationMissing:
        return "missing";
    case DifferenceCode::SourceUnreadable:
    case DifferenceCode::DestinationUnreadable:
        return "unreadable";
    default:
        return "differs";
    }
}

/** Every difference of the pair in words, the pair's own first. */
QString differenceText(const ReportPair &pair) {
    if (pair.code == DifferenceCode::Equal)
        return QStringLiteral("identical");
    QStringList texts;
    for (const int code : pair.codes())
        texts.append(ComparisonFile::DifferenceText(code));
    return texts.join(QLatin1String("; "));
}

/** What else decides whether two dates count as equal, and what the listing holds. */
QStringList optionNotes(const CompareReport &report) {
    QStringList notes;
    const int dates = ComparisonBits::Modified | ComparisonBits::Created | ComparisonBits::Accessed;
    if (report.comparisons & dates) {
        if (report.includeSlack)
            notes.append(QStringLiteral("dates up to two seconds apart count as equal"));
        for (const int minutes : report.timeShifts)
            notes.append(QStringLiteral("dates %1 minutes apart count as equal").arg(minutes));
    }
    notes.append(report.listAll ? QStringLiteral("identical pairs are listed")
                                : QStringLiteral("identical pairs are not listed"));
    return notes;
}

void writeHeader(const CompareReport &report, OutputStream &out) {
    const QByteArray source = htmlName(report.source);
    const QByteArray destination = htmlName(report.destination);
    out << "<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">\n<head>\n"
        << "<meta charset=\"utf-8\"/>\n"
        << "<title>Pairscope report: " << source << " and " << destination << "</title>\n"
        << "<style>\n"
        << styleSheet << "</style>\n</head>\n<body>\n"
        << "<h1>Pairscope report</h1>\n<table class=\"about\">\n"
        << "<tr><th>Source</th><td>" << source << "</td></tr>\n"
        << "<tr><th>Destination</th><td>" << destination << "</td></tr>\n"
        << "<tr><th>Comparison</th><td>"
        << html(ComparisonDescription(report.comparisons, report.doCRCLast)) << "</td></tr>\n"
        << "<tr><th>Options</th><td>" << html(optionNotes(report).join(QLatin1String("; ")))
        << "</td></tr>\n</table>\n";
}

void writeSummary(const CompareReport &report, const QLocale &locale, OutputStream &out) {
    const auto &counts = report.counts;
    const qint64 differing =
        std::accumulate(counts.begin() + DifferenceCode::Size,
                        counts.begin() + DifferenceCode::SourceUnreadable, qint64(0));
    const std::pair<const char *, qint64> rows[] = {
        {"Pairs listed", qint64(report.pairs.size())},
        {"Identical", counts[DifferenceCode::Equal]},
        {"Differing", differing},
        {"Only in source", counts[DifferenceCode::DestinationMissing]},
        {"Only in destination", counts[DifferenceCode::SourceMissing]},
        {"Could not be compared", qint64(report.problems.size())},
    };
    out << "<h2>Summary</h2>\n<table class=\"summary\">\n";
    for (const auto &[label, count] : rows)
        out << "<tr><th>" << label << "</th><td>" << html(locale.toString(count)) << "</td></tr>\n";
    out << "</table>\n";
}

void writePairs(const CompareReport &report, const QLocale &locale, OutputStream &out) {
    out << "<h2>Pairs</h2>\n";
    if (report.pairs.empty()) {
        out << "<p>No pair is listed.</p>\n";
        return;
    }
    const SideColumns columns(report.comparisons);
    const QByteArray span = QByteArray::number(columns.count());
    out << "<table class=\"pairs\">\n<thead>\n"
        << "<tr><th rowspan=\"2\">Path</th><th rowspan=\"2\">Difference</th>"
        << "<th colspan=\"" << span << "\">Source</th><th colspan=\"" << span
        << "\">Destination</th></tr>\n"
        << "<tr>" << columns.headers() << columns.headers() << "</tr>\n</thead>\n<tbody>\n";
    for (const ReportPair &pair : report.pairs) {
        out << "<tr class=\"" << rowClass(pair.code) << "\"><td class=\"path\">"
            << htmlName(pair.path()) << "</td><td class=\"difference\">"
            << html(differenceText(pair)) << "</td>" << columns.cells(pair.source, locale)
            << columns.cells(pair.destination, locale) << "</tr>\n";
    }
    out << "</tbody>\n</table>\n";
}

void writeProblems(const CompareReport &report, OutputStream &out) {
    if (report.problems.isEmpty())
        return;
    out << "<h2>Could not be compared</h2>\n<ul class=\"problems\">\n";
    for (const RunProblem &problem : report.problems) {
        out << "<li>";
        if (!problem.path.isEmpty())
            out << "<span class=\"path\">" << htmlName(problem.path) << "</span>: ";
        out << html(problem.reason) << "</li>\n";
    }
    out << "</ul>\n";
}

} // namespace

void writeHtmlReport(const CompareReport &report, OutputStream &out) {
    ::tzset(); // localtime_r needs the zone read once
    const QLocale locale = QLocale::system();
    writeHeader(report, out);
    writeSummary(report, locale, out);
    writePairs(report, locale, out);
    writeProblems(report, out);
    out << "</body>\n</html>\n";
}
