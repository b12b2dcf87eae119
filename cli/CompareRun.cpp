#include "cli/CompareRun.h"

#include "reports/PairCollection.h"

#include "cli/ProgressLine.h"
#include "engine/CompareSession.h"

CompareRun::CompareRun(const CliOptions &options)
    : m_options(options) {
    m_report.listAll = options.listAll;
}

CompareRun::~CompareRun() = default;

bool CompareRun::run() {
    m_session = std::make_unique<CompareSession>();
    CompareSession &session = *m_session;
    // Without a window there is no order of walk events to keep: the trees are walked side by
    // side. A tree that keeps changing is given up in the end.
    session.setParallelWalks(true);
    session.setMaxRestarts(MaxRestarts);
    // The json and html reports show the sizes and dates each pair was judged on, not a later
    // look.
    session.setLoadDetails(m_options.format == OutputFormat::Json ||
                           m_options.format == OutputFormat::Html);
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
    m_report.describe(request);
    const CompareSession::State state = session.run(request);

    m_restarts = session.restarts();
    m_report.setProblems(session.problems());
    m_report.sortPairs();
    return state != CompareSession::State::GaveUp;
}

void CompareRun::connectAttempt(CompareSession &session) {
    const Pairscope *engine = session.engine().get();
    collectPairs(*engine, engine, m_report);
    if (m_progress) {
        QObject::connect(engine, &Pairscope::CompareProgress, engine,
                         [this](int pass, int current, int total) {
                             m_progress->compareProgress(pass, current, total);
                         });
        const ComparisonFileCollection *source = session.sourceFiles().get();
        QObject::connect(source, &ComparisonFileCollection::FileAdded, source,
                         [this](int count) { m_progress->fileAdded(count); });
    }
}
