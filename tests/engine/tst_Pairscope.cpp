#include "engine/CompareSession.h"
#include "engine/PairTest.h"
#include "engine/Pairscope.h"
#include "support/ChildRun.h"
#include "support/TestTree.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using State = CompareSession::State;

namespace {

constexpr time_t baseTime = 1700000000;

/** An entry f on each side, the source dated this many seconds later, compared on these bits. */
const struct CodeRow {
    const char *source, *destination;
    int sourceAge, bits, expected;
    bool crcLast;
} codeRows[] = {{"aaaa", "bbbbbb", 0, 33, 4, false}, {"aaaa", "bbbb", 100, 34, 5, false},
                {"aaaa", "bbbb", 100, 34, 7, true},  {"aaaa", "bbbb", -100, 34, 8, true},
                {"aaaa", "aaaa", 0, 63, 1, true},    {"a", "bbbbbb", 100, 0, 1, true},
                {"a", "a", 100, 8, 11, true},        {"fifo", "target", 0, 0, 6, true},
                {"link", "target", 0, 33, 6, true},  {"fifo", "fifo", 0, 63, 1, true},
                {"600 x", "x", 0, 16, 6, true}};

/** A second date this far from a first at .5 s; whether they differ with an hour's shift. */
const struct DateRow {
    int seconds, nanoseconds;
    bool slack, differ;
} dateRows[] = {
    {0, 500000000, false, false},   {2, 500000000, true, false},    {2, 500000000, false, true},
    {3, 500000000, true, true},     {3, 400000000, true, true},     {3600, 500000000, false, false},
    {3600, 500000001, false, true}, {3600, 500000001, true, false}, {-3598, 500000000, true, false},
    {3603, 500000000, true, true},  {1800, 500000000, true, true}};

bool makeEntry(TestTree &tree, const QByteArray &entry) {
    const QByteArray path = tree.nativePath("f");
    if (entry == "fifo")
        return ::mkfifo(path.constData(), 0644) == 0;
    if (entry == "link")
        return ::symlink("target", path.constData()) == 0;
    const bool restricted = entry.startsWith("600 ");
    return tree.writeNative("f", restricted ? entry.mid(4) : entry) &&
           (!restricted || ::chmod(path.constData(), 0600) == 0);
}

struct Fixture {
    TestTree source, destination;
    ComparisonFileCollection sourceFiles, destinationFiles;
    Pairscope engine;
    QStringList events;

    explicit Fixture(int workers = 2) {
        engine.setWorkerCount(workers);
        engine.setLoadDetails(true);
        QObject::connect(
            &engine, &Pairscope::CompareProgress, &engine,
            [this](int pass, int current, int total) {
                events << QStringLiteral("progress %1 %2 %3").arg(pass).arg(current).arg(total);
            });
        QObject::connect(&engine, &Pairscope::FilesCompared, &engine,
                         [this](const ComparisonFilePtr &a, const ComparisonFilePtr &b, int code) {
                             events << QStringLiteral("pair %1 %2 %3 %4 %5/%6")
                                           .arg(a->RelativePath(), b->RelativePath())
                                           .arg(int(a->HasFileObject()) * 2 + b->HasFileObject())
                                           .arg(code)
                                           .arg(a->Size())
                                           .arg(b->Size());
                         });
    }
    bool pair(const char *relative, const QByteArray &inSource, const QByteArray &inDestination) {
        return source.write(QLatin1String(relative), inSource) &&
               destination.write(QLatin1String(relative), inDestination);
    }
    void walk() {
        sourceFiles.setRootFolder(source.root());
        destinationFiles.setRootFolder(destination.root());
    }
    int compare(int bits, bool crcLast = true, int chunk = 65536) {
        events.clear();
        return engine.Compare(sourceFiles, destinationFiles, bits, true, crcLast, chunk);
    }
    int code(int index) const { return sourceFiles.Item(index)->DifferenceCode(); }
};

} // namespace

class tst_Pairscope : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void codes_data() {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("workers");
        for (int row = 0; row < int(std::size(codeRows)); ++row)
            for (const int workers : {0, 2}) {
                const CodeRow &r = codeRows[row];
                QTest::addRow("%s vs %s, %+d s, bits %d%s, %d workers", r.source, r.destination,
                              r.sourceAge, r.bits, r.crcLast ? ", crc last" : "", workers)
                    << row << workers;
            }
    }
    void codes() {
        QFETCH(int, row);
        QFETCH(int, workers);
        const auto &[source, destination, sourceAge, bits, expected, crcLast] = codeRows[row];
        Fixture f(workers);
        QVERIFY(makeEntry(f.source, source) && makeEntry(f.destination, destination));
        QVERIFY(f.source.setTimes(QStringLiteral("f"), baseTime + sourceAge));
        QVERIFY(f.destination.setTimes(QStringLiteral("f"), baseTime));
        f.walk();
        QCOMPARE(f.compare(bits, crcLast), int(Pairscope::StatusComplete));
        QCOMPARE(f.code(1), expected);
        QCOMPARE(f.destinationFiles.Item(1)->DifferenceCode(), expected);
    }
    void pairingAndEvents() {
        for (const int workers : {0, 2}) {
            Fixture f(workers);
            QVERIFY(f.pair("sub/z", "x", "xy"));
            QVERIFY(f.pair("Same.txt", "x", "x"));
            QVERIFY(f.source.write(QStringLiteral("sub/only-source"), "abc"));
            QVERIFY(f.destination.write(QStringLiteral("zz/only-destination"), "abcd"));
            f.walk();
            const QString expected = QStringLiteral(
                "progress 1 -1 -1, progress 1 -1 3, pair Same.txt Same.txt 3 1 1/1, "
                "progress 1 1 3, pair sub/only-source sub/only-source 2 3 3/3, progress 1 2 3, "
                "pair sub/z sub/z 3 4 1/2, progress 1 3 3, progress 2 1 4, progress 2 2 4, "
                "pair zz/only-destination zz/only-destination 1 2 4/4, progress 2 3 4, "
                "progress 2 4 4");
            QCOMPARE(f.compare(1), int(Pairscope::StatusComplete));
            QCOMPARE(f.events.join(QStringLiteral(", ")), expected);
            QCOMPARE(f.sourceFiles.Item(4)->Path(),
                     f.source.root() + QStringLiteral("/zz/only-destination"));
            QCOMPARE(f.compare(1), int(Pairscope::StatusComplete));
            QCOMPARE(f.events.join(QStringLiteral(", ")), expected);
            QCOMPARE(f.sourceFiles.Count() + f.destinationFiles.Count(), 8);
            QVERIFY(!f.engine.InProgress());
        }
    }
    void workersMatchSequentialRun() {
        for (const bool meddle : {false, true}) {
            Fixture f(0);
            QRandomGenerator random(testSeed());
            for (int i = 0; i < 3000; ++i) {
                const QString name = QStringLiteral("d%1/f%2").arg(i % 7).arg(i);
                const int kind = int(random.bounded(6));
                const QByteArray content =
                    QByteArray::number(i).repeated(int(random.bounded(1, 50)));
                if (kind != 0)
                    QVERIFY(f.source.write(name, content));
                if (kind != 1)
                    QVERIFY(f.destination.write(name, kind == 2 ? content + "!" : content));
                if (kind == 3) {
                    QVERIFY(f.destination.write(name, QByteArray(content).replace('1', '2')));
                    QVERIFY(f.destination.setTimes(name, baseTime + i));
                }
                if (kind == 4)
                    QVERIFY(f.source.setTimes(name, baseTime - i));
            }
            f.walk();
            bool meddled = false;
            if (meddle) {
                connect(&f.engine, &Pairscope::CompareProgress, this,
                        [&](int pass, int current, int) {
                            if (meddled || pass != 1 || current != f.sourceFiles.Count() / 3)
                                return;
                            meddled = true;
                            for (int i = current + 1; i <= f.sourceFiles.Count(); ++i) {
                                const ComparisonFilePtr record = f.sourceFiles.Item(i);
                                if (!f.destinationFiles.Counterpart(*record, f.sourceFiles))
                                    f.destinationFiles.AddMissingFile(
                                        record->FileObject(), f.sourceFiles.RootFolder(), 3);
                            }
                        });
            }
            for (const bool crcLast : {false, true}) {
                meddled = false;
                f.engine.setWorkerCount(0);
                QCOMPARE(f.compare(63, crcLast), int(Pairscope::StatusComplete));
                const QStringList expected = f.events;
                meddled = false;
                f.engine.setWorkerCount(2);
                QCOMPARE(f.compare(63, crcLast), int(Pairscope::StatusComplete));
                QCOMPARE(f.events, expected);
            }
        }
    }
    void vanishedFile() {
        for (const int row : {0, 1, 2, 3}) {
            const bool fromSource = row < 2, paired = row % 2;
            const int status = paired ? 2 : 1, code = !paired ? 0 : fromSource ? 2 : 3;
            Fixture f;
            TestTree &side = fromSource ? f.source : f.destination;
            QVERIFY(side.write(QStringLiteral("gone"), "x"));
            if (paired)
                QVERIFY((fromSource ? f.destination : f.source).write(QStringLiteral("gone"), "x"));
            f.walk();
            QVERIFY(QFile::remove(side.path(QStringLiteral("gone"))));
            QCOMPARE(f.compare(1), status);
            ComparisonFileCollection &files = fromSource ? f.sourceFiles : f.destinationFiles;
            QCOMPARE(files.NeedsRescan(), status == 1);
            QCOMPARE(files.Item(1)->DifferenceCode(), code);
        }
    }
    void cancelDuringChecksum() {
        for (const int workers : {0, 2}) {
            Fixture f(workers);
            const QByteArray content(4 * 1024 * 1024, 'x');
            QVERIFY(f.pair("big", content, content));
            QVERIFY(f.pair("later", "x", "x"));
            f.walk();
            int yields = 0;
            f.engine.setYieldHook([&] {
                if (++yields == 3)
                    f.engine.Cancel();
            });
            QCOMPARE(f.compare(32, true, 1024), int(Pairscope::StatusCancelled));
            QVERIFY2(yields < 100, qPrintable(QString::number(yields)));
            QCOMPARE(f.code(2), 0);
            QVERIFY(f.code(1) <= 1);
        }
    }
    void fileWrittenDuringChecksum() {
        Fixture f(0);
        const QByteArray content(64 * 1024, 'x');
        QVERIFY(f.pair("big", content, content));
        QVERIFY(f.source.setTimes(QStringLiteral("big"), baseTime));
        QVERIFY(f.destination.setTimes(QStringLiteral("big"), baseTime));
        f.walk();
        int yields = 0;
        f.engine.setYieldHook([&] {
            if (++yields == 10)
                QVERIFY(f.source.write(QStringLiteral("big"), QByteArray(content.size(), 'y')));
        });
        QCOMPARE(f.compare(32, true, 1024), int(Pairscope::StatusRescanNeeded));
        QVERIFY(f.sourceFiles.NeedsRescan());
        QVERIFY2(!f.events.join(QLatin1Char('\n')).contains(QLatin1String("pair big")),
                 qPrintable(f.events.join(QLatin1Char('\n'))));
        QVERIFY(yields > 10);
    }
    void unreadableFiles() {
        if (!ChildRun::isChild())
            return ChildRun::run(ChildRun::unprivileged(), "unreadableFiles");
        Fixture f;
        QVERIFY(f.pair("a-secret-longer", "0123456789", "01234"));
        QVERIFY(f.pair("b-secret", "0123456789", "0123456789"));
        QVERIFY(f.pair("c-open", "0123456789", "0123456789"));
        QVERIFY(::chmod(f.source.nativePath("a-secret-longer").constData(), 0) == 0);
        QVERIFY(::chmod(f.source.nativePath("b-secret").constData(), 0) == 0);
        QVERIFY(::chmod(f.destination.nativePath("c-open").constData(), 0) == 0);
        f.walk();
        QCOMPARE(f.compare(33), int(Pairscope::StatusComplete));
        QCOMPARE(f.code(1), 4);
        QCOMPARE(f.code(2), 13);
        QCOMPARE(f.code(3), 14);
    }
    void datesDiffer_data() {
        QTest::addColumn<int>("row");
        for (int row = 0; row < int(std::size(dateRows)); ++row)
            QTest::addRow("%+d s %d ns%s", dateRows[row].seconds, dateRows[row].nanoseconds,
                          dateRows[row].slack ? ", slack" : "")
                << row;
    }
    void datesDiffer() {
        QFETCH(int, row);
        const auto &[seconds, nanoseconds, slack, differ] = dateRows[row];
        const FileTime a(1700000000, 500000000);
        const FileTime b(a.seconds() + seconds, nanoseconds);
        QCOMPARE(::datesDiffer(a, b, slack, {3600}), differ);
        QCOMPARE(::datesDiffer(b, a, slack, {3600}), differ);
        QCOMPARE(::datesDiffer(a, b, slack, {}), differ || qAbs(seconds) >= 1800);
        QVERIFY(::datesDiffer(a, FileTime(), slack, {3600}));
    }
    void sessionRuns_data() {
        using enum State;
        QTest::addColumn<bool>("parallel");
        QTest::addColumn<bool>("keepsChanging");
        QTest::addColumn<bool>("cancelWhileWalking");
        QTest::addColumn<QList<State>>("states");
        QTest::newRow("one tree after the other")
            << false << false << false
            << QList<State>{WalkingSource, WalkingDestination, Comparing, Complete};
        QTest::newRow("side by side")
            << true << false << false << QList<State>{WalkingSource, Comparing, Complete};
        QTest::newRow("a tree that keeps changing")
            << true << true << false
            << QList<State>{WalkingSource, Comparing, WalkingSource, Comparing,
                            WalkingSource, Comparing, GaveUp};
        QTest::newRow("cancelled during the walk")
            << false << false << true << QList<State>{WalkingSource, Cancelled};
    }
    void sessionRuns() {
        QFETCH(bool, parallel);
        QFETCH(bool, keepsChanging);
        QFETCH(bool, cancelWhileWalking);
        QFETCH(QList<State>, states);
        TestTree source, destination;
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
        const QList<CollectionProblem> problems = session.problems();
        QCOMPARE(problems.size(), keepsChanging ? 1 : 0);
        if (keepsChanging)
            QVERIFY(problems.first().path.isEmpty() &&
                    problems.first().reason.contains("2 restarts"));
    }
};

QTEST_GUILESS_MAIN(tst_Pairscope)
#include "tst_Pairscope.moc"
