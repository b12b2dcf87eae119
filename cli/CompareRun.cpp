#include "cli/CompareRun.h"

#include "cli/ProgressLine.h"
#include "engine/ComparisonFileCollection.h"
#include "engine/Pairscope.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <numeric>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace {

/**
 * Why \a nativePath could not be read. The engine reports only that a checksum failed, so the
 * file is opened once more here for the system's reason; when that now succeeds the failure
 * came later, during the read.
 */
QString unreadableReason(const QByteArray &nativePath) {
    const int fd = ::open(nativePath.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return QStringLiteral("could not be read: ") + QString::fromLocal8Bit(std::strerror(errno));
    ::close(fd);
    return QStringLiteral("could not be read");
}

} // namespace

CompareRun::CompareRun(const CliOptions &options)
    : m_options(options) {}

bool CompareRun::run() {
    while (attempt() == Pairscope::StatusRescanNeeded) {
        if (m_restarts == MaxRestarts) {
            m_problems.append({QByteArray(), QStringLiteral("the folders kept changing during "
                                                            "the comparison; gave up after %1 "
                                                            "restarts")
                                                 .arg(MaxRestarts)});
            return false;
        }
        ++m_restarts;
    }
    return true;
}

qint64 CompareRun::pairCount() const {
    return std::accumulate(m_counts.begin(), m_counts.end(), qint64(0));
}

int CompareRun::attempt() {
    m_pairs.clear();
    m_counts.fill(0);
    m_problems.clear();

    // Fresh collections and a fresh engine for every attempt, so that nothing of a walk that
    // went stale survives into the next one.
    ComparisonFileCollection sourceFiles;
    ComparisonFileCollection destFiles;
    sourceFiles.setCaseRule(m_options.caseRule);
    destFiles.setCaseRule(m_options.caseRule);
    walkBoth(sourceFiles, destFiles);

    Pairscope engine;
    // The json report shows the sizes and dates each pair was judged on, not a later look.
    engine.setLoadDetails(m_options.format == OutputFormat::Json);
    QObject::connect(&engine, &Pairscope::FilesCompared, &engine,
                     [this](const ComparisonFilePtr &source, const ComparisonFilePtr &destination,
                            int code) { addPair(source, destination, code); });
    QObject::connect(&engine, &Pairscope::CompareProgress, &engine,
                     [this](int pass, int current, int total) {
                         // A new cycle decides every pair afresh.
                         if (pass == 1 && current == -1 && total == -1) {
                             m_pairs.clear();
                             m_counts.fill(0);
                         }
                         if (m_progress)
                             m_progress->compareProgress(pass, current, total);
                     });
    const int status =
        engine.Compare(sourceFiles, destFiles, m_options.comparisons, m_options.includeSlack,
                       m_options.doCRCLast, m_options.chunkSize);

    collectProblems(sourceFiles);
    collectProblems(destFiles);
    // A placeholder on the unreadable side stands for a file behind a folder that could not
    // be read: that folder is the problem, already listed once.
    for (const ReportPair &pair : m_pairs) {
        if (pair.code == DifferenceCode::SourceUnreadable && pair.source->HasFileObject())
            m_problems.append(
                {pair.source->NativePath(), unreadableReason(pair.source->NativePath())});
        else if (pair.code == DifferenceCode::DestinationUnreadable &&
                 pair.destination->HasFileObject())
            m_problems.append(
                {pair.destination->NativePath(), unreadableReason(pair.destination->NativePath())});
    }
    std::sort(m_pairs.begin(), m_pairs.end(),
              [](const ReportPair &a, const ReportPair &b) { return a.path < b.path; });
    return status;
}

void CompareRun::walkBoth(ComparisonFileCollection &sourceFiles,
                          ComparisonFileCollection &destFiles) {
    // Without a window there is no order of walk events to keep, so the destination is walked
    // on a second thread while the source is walked here: the two trees share no state. The
    // progress line follows the source walk alone.
    std::thread destinationWalk;
    try {
        destinationWalk = std::thread(
            [this, &destFiles] { destFiles.setRootFolderNative(m_options.destination); });
    } catch (const std::system_error &) {
        // No thread to be had: walk one tree after the other.
    }
    if (m_progress)
        QObject::connect(&sourceFiles, &ComparisonFileCollection::FileAdded, &sourceFiles,
                         [this](int count) { m_progress->fileAdded(count); });
    sourceFiles.setRootFolderNative(m_options.source);
    if (destinationWalk.joinable())
        destinationWalk.join();
    else
        destFiles.setRootFolderNative(m_options.destination);
}

void CompareRun::addPair(const ComparisonFilePtr &source, const ComparisonFilePtr &destination,
                         int code) {
    ++m_counts[std::clamp<std::size_t>(std::size_t(qMax(code, 0)), 0, m_counts.size() - 1)];
    const bool listed = code != DifferenceCode::Equal || m_options.listAll;
    if (!listed)
        return;
    const ComparisonFilePtr &named = source && source->HasFileObject() ? source : destination;
    if (named)
        m_pairs.push_back({source, destination, code, named->RelativeNativePath()});
}

void CompareRun::collectProblems(const ComparisonFileCollection &files) {
    for (const CollectionProblem &problem : files.Problems())
        m_problems.append({problem.nativePath, problem.reason});
}
