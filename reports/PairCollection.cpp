#include "reports/PairCollection.h"

#include "reports/CompareReport.h"

#include "engine/Pairscope.h"

void collectPairs(const Pairscope &engine, const QObject *context, CompareReport &report) {
    report.clearPairs();
    QObject::connect(&engine, &Pairscope::FilesCompared, context,
                     [&report](const ComparisonFilePtr &source,
                               const ComparisonFilePtr &destination,
                               int code) { report.addPair(source, destination, code); });
    QObject::connect(&engine, &Pairscope::CompareProgress, context,
                     [&report](int pass, int current, int total) {
                         if (pass == 1 && current == -1 && total == -1)
                             report.clearPairs();
                     });
}
