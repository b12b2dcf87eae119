#include "cli/CompareRun.h"

#include "cli/ProgressLine.h"
#include "engine/CompareSession.h"

#include <algorithm>
#include <numeric>

CompareRun::CompareRun(const CliOptions &options)
    : m_options(options) {}

bool CompareRun::run() {
    CompareSession session;
    // Without a window there is no order of walk events to keep: the trees are walked side by
    // side. A tree that keeps changing is given up in the end.
    session.setParallelWalks(true);
    session.setMaxRestarts(MaxRestarts);
    // The json report shows the sizes and dates each pair was judged on, not a later look.
    session.setLoadDetails(m_options.format == OutputFormat::Json);
    QObject::connect(&session, &CompareSession::attemptStarted, &session,
                     [this, &session] { connectAttempt(session); });
    CompareSession::Request request;
    request.source = m_options.source;
    request.destination = m_options.destination;
    request.comparisons = m_options.comparisons;
    request.includeSlack = m_options.includeSlack;
    request.doCRCLast = m_options.doCRCLast;
    request.chunkSize = m_options.chunkSize;
    request.caseRule = m_options.caseRule;
    request.normalizeNames = m_options.normalizeNames;
    request.timeShifts = m_options.timeShifts;
    request.sourceRecorded = m_recorded[0];
    request.destinationRecorded = m_recorded[1];
    if (m_options.filter.isActive())
        request.filter = std::make_shared<const TreeFilter>(m_options.filter);
    const CompareSession::State state = session.run(request);

    m_restarts = session.restarts();
    m_problems.clear();
    for (const CollectionProblem &problem : session.problems())
        m_problems.append({problem.nativePath, problem.reason});
    std::sort(m_pairs.begin(), m_pairs.end(),
              [](const ReportPair &a, const ReportPair &b) { return a.path < b.path; });
    return state != CompareSession::State::GaveUp;
}

qint64 CompareRun::pairCount() const {
    return std::accumulate(m_counts.begin(), m_counts.end(), qint64(0));
}

void CompareRun::connectAttempt(CompareSession &session) {
    m_pairs.clear();
    m_counts.fill(0);
    const Pairscope *engine = session.engine().get();
    QObject::connect(engine, &Pairscope::FilesCompared, engine,
                     [this](const ComparisonFilePtr &source, const ComparisonFilePtr &destination,
                            int code) { addPair(source, destination, code); });
    QObject::connect(engine, &Pairscope::CompareProgress, engine,
                     [this](int pass, int current, int total) {
                         // A new cycle decides every pair afresh.
                         if (pass == 1 && current == -1 && total == -1) {
                             m_pairs.clear();
                             m_counts.fill(0);
                         }
                         if (m_progress)
                             m_progress->compareProgress(pass, current, total);
                     });
    if (m_progress) {
        const ComparisonFileCollection *source = session.sourceFiles().get();
        QObject::connect(source, &ComparisonFileCollection::FileAdded, source,
                         [this](int count) { m_progress->fileAdded(count); });
    }
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
