#pragma once

struct CompareReport;
class OutputStream;

/** The forms a report can take. */
enum class ReportFormat {
    Text, ///< for people, one aligned row per pair (see writeTextReport)
    Tsv,  ///< for scripts (see writeTsvReport)
    Json, ///< everything, for programs (see writeJsonReport)
    Html, ///< one self-contained page, for people and printing (see writeHtmlReport)
};

/** Writes \a report to \a out in \a format. */
void writeReport(ReportFormat format, const CompareReport &report, OutputStream &out);
