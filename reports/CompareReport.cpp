#include "reports/CompareReport.h"

#include <algorithm>
#include <numeric>

QList<int> ReportPair::codes() const {
    const ComparisonFilePtr &record = source ? source : destination;
    return record ? record->Differences().codes() : QList<int>{code};
}

void CompareReport::addPair(const ComparisonFilePtr &sourceFile,
                            const ComparisonFilePtr &destinationFile, int code) {
    ++counts[std::clamp<std::size_t>(std::size_t(qMax(code, 0)), 0, counts.size() - 1)];
    if (code == DifferenceCode::Equal && !listAll)
        return;
    const ComparisonFilePtr &named =
        sourceFile && sourceFile->HasFileObject() ? sourceFile : destinationFile;
    if (named)
        pairs.push_back({sourceFile, destinationFile, code, named->RelativeNativePath()});
}

void CompareReport::clearPairs() {
    pairs.clear();
    counts.fill(0);
}

void CompareReport::sortPairs() {
    std::sort(pairs.begin(), pairs.end(),
              [](const ReportPair &a, const ReportPair &b) { return a.path < b.path; });
}

qint64 CompareReport::pairCount() const {
    return std::accumulate(counts.begin(), counts.end(), qint64(0));
}

void CompareReport::setProblems(const QList<CollectionProblem> &runProblems) {
    problems.clear();
    for (const CollectionProblem &problem : runProblems)
        problems.append({problem.nativePath, problem.reason});
}
