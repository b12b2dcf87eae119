#include "engine/CompareSession.h"

#include "engine/FdGuard.h"
#include "engine/PathHelpers.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace {

/**
 * Why the file of \a record could not be read. The engine records only that a checksum failed, so
 * the file is opened once more for the system's reason; when that now succeeds the failure came
 * later, during the read.
 */
QString unreadableReason(const ComparisonFile &record) {
    if (record.Folder()->recorded())
        return QStringLiteral("could not be read when the manifest was written");
    const QByteArray nativePath = record.NativePath();
    const FdGuard fd(
        ::open(nativePath.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() < 0)
        return QStringLiteral("could not be read: ") + QString::fromLocal8Bit(std::strerror(errno));
    return QStringLiteral("could not be read");
}

} // namespace

CompareSession::CompareSession(QObject *parent)
    : QObject(parent) {}

CompareSession::~CompareSession() = default;

bool CompareSession::isRunning() const {
    return m_state == State::WalkingSource || m_state == State::WalkingDestination ||
           m_state == State::Comparing;
}

void CompareSession::setState(State state) {
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged(state);
}

void CompareSession::cancel() {
    m_cancelRequested = true;
    if (m_source)
        m_source->Cancel();
    if (m_destination)
        m_destination->Cancel();
    if (m_engine)
        m_engine->Cancel();
}

bool CompareSession::cancelled() const {
    return m_cancelRequested || (m_source && m_source->Cancelled()) ||
           (m_destination && m_destination->Cancelled()) || (m_engine && m_engine->Cancelled());
}

CompareSession::State CompareSession::run(const Request &request) {
    m_restarts = 0;
    m_cancelRequested = false;
    m_problems = {};
    m_keptChanging.clear();
    for (;;) {
        const int status = attempt(request);
        State end = State::Idle;
        if (cancelled())
            end = State::Cancelled;
        else if (status != Pairscope::StatusRescanNeeded)
            end = State::Complete;
        else if (m_restarts == m_maxRestarts)
            end = State::GaveUp;
        if (end != State::Idle) {
            // Gathered once: the lists are read again on every refresh of the window.
            collectProblems(end);
            setState(end);
            return m_state;
        }
        ++m_restarts;
    }
}

int CompareSession::attempt(const Request &request) {
    m_source = std::make_shared<ComparisonFileCollection>();
    m_destination = std::make_shared<ComparisonFileCollection>();
    m_engine = std::make_shared<Pairscope>();
    for (ComparisonFileCollection *side : {m_source.get(), m_destination.get()}) {
        side->setCaseRule(request.caseRule);
        side->setNormalizesNames(request.normalizeNames);
        side->setFilter(request.filter);
        side->setYieldHook(m_yield);
    }
    m_source->setRecordedTree(request.sourceRecorded);
    m_destination->setRecordedTree(request.destinationRecorded);
    m_engine->setYieldHook(m_yield);
    m_engine->setLoadDetails(m_loadDetails);
    m_engine->setTimeShifts(request.timeShifts);
    setState(State::WalkingSource);
    Q_EMIT attemptStarted();
    if (m_cancelRequested)
        return Pairscope::StatusCancelled;

    if (m_parallelWalks) {
        walkSideBySide(request);
    } else {
        // The source tree is walked completely before the destination tree is begun, both
        // read from the disk ahead, each on a thread of its own, while records are made here.
        m_source->prepareRootFolder(DisplayFromNative(request.source));
        m_destination->prepareRootFolder(DisplayFromNative(request.destination));
        m_source->setRootFolderNative(request.source);
        if (cancelled()) {
            m_destination->Clear(); // stops reading the destination ahead
            return Pairscope::StatusCancelled;
        }
        setState(State::WalkingDestination);
        m_destination->setRootFolderNative(request.destination);
    }
    if (cancelled())
        return Pairscope::StatusCancelled;

    setState(State::Comparing);
    return m_engine->Compare(*m_source, *m_destination, qMax(request.comparisons, 0),
                             request.includeSlack, request.doCRCLast, request.chunkSize);
}

void CompareSession::walkSideBySide(const Request &request) {
    std::thread destinationWalk;
    try {
        destinationWalk = std::thread(
            [this, &request] { m_destination->setRootFolderNative(request.destination); });
    } catch (const std::system_error &) {
        // No thread to be had: one tree after the other.
    }
    m_source->setRootFolderNative(request.source);
    if (destinationWalk.joinable()) {
        destinationWalk.join();
    } else {
        setState(State::WalkingDestination);
        m_destination->setRootFolderNative(request.destination);
    }
}

void CompareSession::collectProblems(State end) {
    for (int side = 0; side < 2; ++side) {
        const ComparisonFileCollection &files = side == 0 ? *m_source : *m_destination;
        QList<CollectionProblem> &problems = m_problems[std::size_t(side)];
        problems = files.Problems();
        // A record whose contents could not be read; a placeholder in its place stands for a
        // file behind a folder that could not be read, and that folder is already listed.
        const int unreadable =
            side == 0 ? DifferenceCode::SourceUnreadable : DifferenceCode::DestinationUnreadable;
        for (const ComparisonFilePtr &record : files) {
            if (record->DifferenceCode() == unreadable && record->HasFileObject())
                problems.append({CollectionProblem::Kind::UnreadableFile, record->Path(),
                                 record->NativePath(), unreadableReason(*record)});
        }
    }
    m_keptChanging.clear();
    if (end == State::GaveUp)
        m_keptChanging.append({CollectionProblem::Kind::KeptChanging, QString(), QByteArray(),
                               QStringLiteral("the folders kept changing during the comparison; "
                                              "gave up after %1 restarts")
                                   .arg(m_maxRestarts)});
}

QList<CollectionProblem> CompareSession::problems() const {
    return m_problems[0] + m_problems[1] + m_keptChanging;
}
