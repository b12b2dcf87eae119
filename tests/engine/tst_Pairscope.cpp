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

/** Makes "f": "fifo", "link" (to "target"), or a file of \a entry, mode 600 after "600 ". */
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

/** Two walked trees and an engine, with every event written down as text. */
struct Fixture {
    TestTree source;
    TestTree destination;
    ComparisonFileCollection sourceFiles;
    ComparisonFileCollection destinationFiles;
    Pairscope engine;
    QStringList events;

    /** On the caller's thread with no workers, else reading ahead on that many threads. */
    explicit Fixture(int workers = 2) {
        engine.setWorkerCount(workers);
        // A listing reads the details while handling the pair: they must be there by then.
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
    /** Writes the file at \a relative on both sides. */
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
    /** The code of the pair of the source's record at \a index. */
    int code(int index) const { return sourceFiles.Item(index)->DifferenceCode(); }
};

} // namespace

class tst_Pairscope : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void codes_data() {
        QTest::addColumn<QString>("source");
        QTest::addColumn<int>("sourceAge");
        QTest::addColumn<QString>("destination");
        QTest::addColumn<int>("bits");
        QTest::addColumn<bool>("crcLast");
        QTest::addColumn<int>("expected");
        // Size is tested before a checksum, even one that goes first.
        QTest::newRow("size, crc first") << "aaaa" << 0 << "bbbbbb" << 33 << false << 4;
        // A checksum first outranks the dates; last, it only speaks when nothing else differs.
        QTest::newRow("date+crc, crc first") << "aaaa" << 100 << "bbbb" << 34 << false << 5;
        QTest::newRow("date+crc, crc last, source newer")
            << "aaaa" << 100 << "bbbb" << 34 << true << 7;
        QTest::newRow("date+crc, crc last, destination newer")
            << "aaaa" << -100 << "bbbb" << 34 << true << 8;
        QTest::newRow("same content") << "aaaa" << 0 << "aaaa" << 63 << true << 1;
        QTest::newRow("existence only") << "a" << 100 << "bbbbbb" << 0 << true << 1;
        QTest::newRow("accessed dates") << "a" << 100 << "a" << 8 << true << 11;
        // Different kinds are never identical, whatever is compared.
        QTest::newRow("FIFO and file, existence only") << "fifo" << 0 << "target" << 0 << true << 6;
        QTest::newRow("link and file of its text, sizes and checksums")
            << "link" << 0 << "target" << 33 << true << 6;
        QTest::newRow("FIFO and FIFO, all") << "fifo" << 0 << "fifo" << 63 << true << 1;
        // Permission bits are attributes.
        QTest::newRow("600 and 644, attributes") << "600 x" << 0 << "x" << 16 << true << 6;
    }
    void codes() {
        QFETCH(QString, source);
        QFETCH(int, sourceAge);
        QFETCH(QString, destination);
        QFETCH(int, bits);
        QFETCH(bool, crcLast);
        QFETCH(int, expected);
        for (const int workers : {0, 2}) {
            Fixture f(workers);
            QVERIFY(makeEntry(f.source, source.toUtf8()) &&
                    makeEntry(f.destination, destination.toUtf8()));
            QVERIFY(f.source.setTimes(QStringLiteral("f"), baseTime + sourceAge));
            QVERIFY(f.destination.setTimes(QStringLiteral("f"), baseTime));
            f.walk();
            QCOMPARE(f.compare(bits, crcLast), int(Pairscope::StatusComplete));
            QCOMPARE(f.code(1), expected);
            QCOMPARE(f.destinationFiles.Item(1)->DifferenceCode(), expected);
        }
    }

    void pairingAndEvents() {
        for (const int workers : {0, 2}) {
            Fixture f(workers);
            QVERIFY(f.pair("sub/z", "x", "xy"));
            QVERIFY(f.pair("Same.txt", "x", "x"));
            QVERIFY(f.source.write(QStringLiteral("sub/only-source"), "abc"));
            QVERIFY(f.destination.write(QStringLiteral("zz/only-destination"), "abcd"));
            f.walk();
            // A placeholder carries the details of the file it stands for.
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
            // Placeholders of the first run are removed first: the second run is the same.
            QCOMPARE(f.compare(1), int(Pairscope::StatusComplete));
            QCOMPARE(f.events.join(QStringLiteral(", ")), expected);
            QCOMPARE(f.sourceFiles.Count() + f.destinationFiles.Count(), 8);
            QVERIFY(!f.engine.InProgress());
        }
    }

    void workersMatchSequentialRun_data() {
        QTest::addColumn<bool>("meddle");
        // The jobs' ring wraps many times, and the destination pass reads only unpaired records.
        QTest::newRow("many files") << false;
        // A handler adds placeholders for later records: the look-ups made ahead no longer hold.
        QTest::newRow("a handler changes the collections") << true;
    }
    void workersMatchSequentialRun() {
        QFETCH(bool, meddle);
        Fixture f(0);
        QRandomGenerator random(testSeed());
        for (int i = 0; i < 3000; ++i) {
            const QString name = QStringLiteral("d%1/f%2").arg(i % 7).arg(i);
            const int kind = int(random.bounded(6));
            const QByteArray content = QByteArray::number(i).repeated(int(random.bounded(1, 50)));
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
            connect(&f.engine, &Pairscope::CompareProgress, this, [&](int pass, int current, int) {
                if (meddled || pass != 1 || current != f.sourceFiles.Count() / 3)
                    return;
                meddled = true;
                for (int i = current + 1; i <= f.sourceFiles.Count(); ++i) {
                    const ComparisonFilePtr record = f.sourceFiles.Item(i);
                    if (!f.destinationFiles.Counterpart(*record, f.sourceFiles))
                        f.destinationFiles.AddMissingFile(record->FileObject(),
                                                          f.sourceFiles.RootFolder(), 3);
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

    void vanishedFile_data() {
        QTest::addColumn<bool>("fromSource");
        QTest::addColumn<bool>("paired");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("code");
        // Without a counterpart the records no longer match the disk: rescan.
        QTest::newRow("source only") << true << false << 1 << 0;
        QTest::newRow("destination only") << false << false << 1 << 0;
        // With one, the vanished side is simply missing.
        QTest::newRow("paired source") << true << true << 2 << 2;
        QTest::newRow("paired destination") << false << true << 2 << 3;
    }
    void vanishedFile() {
        QFETCH(bool, fromSource);
        QFETCH(bool, paired);
        QFETCH(int, status);
        QFETCH(int, code);
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
            // Reading 8 MiB in 1 KiB chunks would take thousands of yields.
            QVERIFY2(yields < 100, qPrintable(QString::number(yields)));
            QCOMPARE(f.code(2), 0);
            QVERIFY(f.code(1) <= 1);
        }
    }

    void fileWrittenDuringChecksum() {
        // On the caller's thread, so that the write lands between two chunks of the source.
        Fixture f(0);
        const QByteArray content(64 * 1024, 'x');
        QVERIFY(f.pair("big", content, content));
        QVERIFY(f.source.setTimes(QStringLiteral("big"), baseTime));
        QVERIFY(f.destination.setTimes(QStringLiteral("big"), baseTime));
        f.walk();
        // Two yields start the comparison; the source is then read in 64 chunks, each with one.
        int yields = 0;
        f.engine.setYieldHook([&] {
            if (++yields == 10)
                QVERIFY(f.source.write(QStringLiteral("big"), QByteArray(content.size(), 'y')));
        });
        // Not "checksum is different": the tree is read again, as when a file vanished.
        QCOMPARE(f.compare(32, true, 1024), int(Pairscope::StatusRescanNeeded));
        QVERIFY(f.sourceFiles.NeedsRescan());
        QVERIFY2(!f.events.join(QLatin1Char('\n')).contains(QLatin1String("pair big")),
                 qPrintable(f.events.join(QLatin1Char('\n'))));
        QVERIFY(yields > 10);
    }

    void unreadableFiles() {
        // Root reads everything: the files can only be unreadable to an ordinary user.
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
        // The unreadable pair of different sizes is decided without opening either file: had
        // it been opened, it would read "source could not be read" (13) like the second pair.
        QCOMPARE(f.code(1), 4);
        QCOMPARE(f.code(2), 13);
        QCOMPARE(f.code(3), 14);
    }

    // When two dates differ: exactly, within the slack of two second boundaries, or by a shift.
    void datesDiffer_data() {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<int>("nanoseconds");
        QTest::addColumn<bool>("slack");
        QTest::addColumn<bool>("differ");
        // a is x.5 s; b is a + seconds, at the given nanoseconds; the shift is one hour.
        QTest::newRow("equal") << 0 << 500000000 << false << false;
        QTest::newRow("2 s, slack") << 2 << 500000000 << true << false;
        QTest::newRow("2 s, exact") << 2 << 500000000 << false << true;
        QTest::newRow("3 s, slack") << 3 << 500000000 << true << true;
        QTest::newRow("2.9 s over 3 boundaries") << 3 << 400000000 << true << true;
        QTest::newRow("an hour later") << 3600 << 500000000 << false << false;
        QTest::newRow("an hour and a nanosecond, exact") << 3600 << 500000001 << false << true;
        QTest::newRow("an hour and a nanosecond, slack") << 3600 << 500000001 << true << false;
        QTest::newRow("an hour less 2 s, slack") << -3598 << 500000000 << true << false;
        QTest::newRow("an hour and 3 s, slack") << 3603 << 500000000 << true << true;
        QTest::newRow("two hours") << 7200 << 500000000 << true << true;
        QTest::newRow("half an hour") << 1800 << 500000000 << true << true;
    }
    void datesDiffer() {
        QFETCH(int, seconds);
        QFETCH(int, nanoseconds);
        QFETCH(bool, slack);
        QFETCH(bool, differ);
        const FileTime a(1700000000, 500000000);
        const FileTime b(a.seconds() + seconds, nanoseconds);
        QCOMPARE(::datesDiffer(a, b, slack, {3600}), differ);
        QCOMPARE(::datesDiffer(b, a, slack, {3600}), differ);
        // Without the shift, dates half an hour or more apart always differ.
        QCOMPARE(::datesDiffer(a, b, slack, {}), differ || qAbs(seconds) >= 1800);
        // "No date" equals only "no date".
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
        // A file that vanishes before every compare: the session starts again, then gives up.
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

QTEST_GUILESS_MAIN(tst_Pairscope)
#include "tst_Pairscope.moc"
