#include "reports/ReportWriter.h"

#include "reports/HtmlReport.h"
#include "reports/JsonReport.h"
#include "reports/TextReport.h"
#include "reports/TsvReport.h"

void writeReport(ReportFormat format, const CompareReport &report, OutputStream &out) {
    switch (format) {
    case ReportFormat::Text:
        writeTextReport(report, out);
        break;
    case ReportFormat::Tsv:
        writeTsvReport(report, out);
        break;
    case ReportFormat::Json:
        writeJsonReport(report, out);
        break;
    case ReportFormat::Html:
        writeHtmlReport(report, out);
        break;
    }
}
