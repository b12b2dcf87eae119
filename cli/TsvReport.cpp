#include "cli/TsvReport.h"

#include "cli/CompareRun.h"
#include "cli/NameEscaping.h"
#include "cli/OutputStream.h"

void writeTsvReport(const CompareRun &run, OutputStream &out) {
    for (const ReportPair &pair : run.pairs()) {
        out << pair.code << '\t' << ComparisonFile::DifferenceText(pair.code) << '\t'
            << NameEscaping::tsv(pair.path) << '\n';
    }
}
