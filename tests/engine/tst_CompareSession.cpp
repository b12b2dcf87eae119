#include "engine/CompareSession.h"
#include "support/TestTree.h"

#include <QTest>

#include <unistd.h>

using State = CompareSession::State;

class tst_CompareSession : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void runs_data() {
        QTest::addColumn<bool>("parallel");
        QTest::addColumn<bool>("keepsChanging");
        QTest::addColumn<bool>("cancelWhileWalking");
        QTest::addColumn<QList<State>>("states");
        QTest::newRow("one tree after the other")
            << false << false << false
            << QList<State>{State::WalkingSource, State::WalkingDestination, State::Comparing,
                            State::Complete};
        QTest::newRow("side by side")
            << true << false << false
            << QList<State>{State::WalkingSource, State::Comparing, State::Complete};
        // A file that vanishes before every compare: the session starts again, then gives up.
        QTest::newRow("a tree that keeps changing")
            << true << true << false
            << QList<State>{State::WalkingSource, State::Comparing,     State::WalkingSource,
                            State::Comparing,     State::WalkingSource, State::Comparing,
                            State::GaveUp};
        QTest::newRow("cancelled during the walk")
            << false << false << true << QList<State>{State::WalkingSource, State::Cancelled};
    }
    void runs() {
        QFETCH(bool, parallel);
        QFETCH(bool, keepsChanging);
        QFETCH(bool, cancelWhileWalking);
        QFETCH(QList<State>, states);
        TestTree source;
        TestTree destination;
        QVERIFY(source.write(QStringLiteral("a"), "1") &&
                destination.write(QStringLiteral("a"), "1"));

        CompareSession session;
        session.setParallelWalks(parallel);
        session.setMaxRestarts(2);
        QList<State> seen;
        connect(&session, &CompareSession::stateChanged, this, [&](State state) {
            seen << state;
            if (keepsChanging && state == State::Comparing)
                ::unlink(source.nativePath("vanishing").constData());
        });
        connect(&session, &CompareSession::attemptStarted, this, [&] {
            // Every attempt has collections of its own.
            QVERIFY(session.sourceFiles() && session.sourceFiles()->Count() == 0);
            if (keepsChanging)
                QVERIFY(source.write(QStringLiteral("vanishing"), "x"));
            if (cancelWhileWalking)
                connect(session.sourceFiles().get(), &ComparisonFileCollection::FileAdded, this,
                        [&] { session.cancel(); });
        });
        CompareSession::Request request;
        request.source = source.nativePath("").chopped(1);
        request.destination = destination.nativePath("").chopped(1);
        request.comparisons = 1;
        QCOMPARE(session.run(request), states.last());
        QCOMPARE(seen, states);
        QCOMPARE(session.restarts(), states.count(State::WalkingSource) - 1);
        QVERIFY(!session.isRunning());
        // Giving up is a problem of the run as a whole.
        const QList<CollectionProblem> problems = session.problems();
        QCOMPARE(problems.size(), keepsChanging ? 1 : 0);
        if (keepsChanging)
            QVERIFY(problems.first().path.isEmpty() &&
                    problems.first().reason.contains("2 restarts"));
    }
};

QTEST_GUILESS_MAIN(tst_CompareSession)
#include "tst_CompareSession.moc"
