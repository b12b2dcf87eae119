#include "reports/CompareReport.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace {

/**
 * The path of a record below its root as its folder's path, a separator and its name, ordered
 * like the joined bytes without joining them: sorting builds no path.
 */
class PathPieces {
public:
    explicit PathPieces(const ComparisonFile &record) {
        const FolderRef &folder = record.Folder();
        m_pieces[0] = folder ? folder->relativeNativeView() : QByteArrayView();
        m_pieces[1] = m_pieces[0].isEmpty() ? QByteArrayView() : QByteArrayView("/", 1);
        m_pieces[2] = record.NativeName();
    }

    friend bool operator<(const PathPieces &a, const PathPieces &b) {
        std::size_t ai = 0;
        std::size_t bi = 0;
        qsizetype ao = 0;
        qsizetype bo = 0;
        for (;;) {
            a.skipEnded(ai, ao);
            b.skipEnded(bi, bo);
            if (ai == pieceCount || bi == pieceCount)
                return ai == pieceCount && bi != pieceCount;
            const qsizetype n = std::min(a.m_pieces[ai].size() - ao, b.m_pieces[bi].size() - bo);
            if (const int c = std::memcmp(a.m_pieces[ai].data() + ao, b.m_pieces[bi].data() + bo,
                                          std::size_t(n));
                c != 0)
                return c < 0;
            ao += n;
            bo += n;
        }
    }

private:
    static constexpr std::size_t pieceCount = 3;

    void skipEnded(std::size_t &piece, qsizetype &offset) const {
        while (piece < pieceCount && offset == m_pieces[piece].size()) {
            ++piece;
            offset = 0;
        }
    }

    std::array<QByteArrayView, pieceCount> m_pieces;
};

} // namespace

QList<int> ReportPair::codes() const {
    const ComparisonFilePtr &record = source ? source : destination;
    return record ? record->Differences().codes() : QList<int>{code};
}

void CompareReport::describe(const CompareSession::Request &request) {
    source = request.source;
    destination = request.destination;
    comparisons = request.comparisons;
    doCRCLast = request.doCRCLast;
    includeSlack = request.includeSlack;
    timeShifts = request.timeShifts;
    chunkSize = request.chunkSize;
}

void CompareReport::addPair(const ComparisonFilePtr &sourceFile,
                            const ComparisonFilePtr &destinationFile, int code) {
    ++counts[std::clamp<std::size_t>(std::size_t(qMax(code, 0)), 0, counts.size() - 1)];
    if (code == DifferenceCode::Equal && !listAll)
        return;
    if ((sourceFile && sourceFile->HasFileObject()) || destinationFile)
        pairs.push_back({sourceFile, destinationFile, code});
}

void CompareReport::clearPairs() {
    pairs.clear();
    counts.fill(0);
}

void CompareReport::sortPairs() {
    std::sort(pairs.begin(), pairs.end(), [](const ReportPair &a, const ReportPair &b) {
        const ComparisonFile &x = a.named();
        const ComparisonFile &y = b.named();
        // Most neighbours share a folder, and then their names decide.
        if (x.Folder() == y.Folder())
            return x.NativeName() < y.NativeName();
        return PathPieces(x) < PathPieces(y);
    });
}

qint64 CompareReport::pairCount() const {
    return std::accumulate(counts.begin(), counts.end(), qint64(0));
}

void CompareReport::setProblems(const QList<CollectionProblem> &runProblems) {
    problems.clear();
    for (const CollectionProblem &problem : runProblems)
        problems.append({problem.nativePath, problem.reason});
}
