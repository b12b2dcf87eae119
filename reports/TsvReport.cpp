#include "reports/TsvReport.h"

#include "reports/CompareReport.h"
#include "reports/NameEscaping.h"
#include "reports/OutputStream.h"

void writeTsvReport(const CompareReport &report, OutputStream &out) {
    for (const ReportPair &pair : report.pairs) {
        out << pair.code << '\t' << ComparisonFile::DifferenceText(pair.code) << '\t'
            << NameEscaping::tsv(pair.path()) << '\n';
    }
}
