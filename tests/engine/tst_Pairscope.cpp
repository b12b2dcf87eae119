#include "engine/ComparisonSet.h"
#include "engine/Pairscope.h"
#include "support/ChildRun.h"
#include "support/TestTree.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr time_t baseTime = 1700000000;

/**
 * Makes \a name in \a tree as \a kind: "file" (text "target"), "file 600", "file 755",
 * "fifo", "socket" or "link" (to "target", so its text is the file's content).
 */
bool makeEntry(TestTree &tree, const QByteArray &kind, const QByteArray &name) {
    const QByteArray path = tree.nativePath(name);
    if (kind.startsWith("file")) {
        const mode_t mode = kind == "file" ? 0644 : mode_t(kind.mid(5).toUInt(nullptr, 8));
        return tree.writeNative(name, "target") && ::chmod(path.constData(), mode) == 0;
    }
    if (kind == "fifo")
        return ::mkfifo(path.constData(), 0644) == 0;
    if (kind == "link")
        return ::symlink("target", path.constData()) == 0;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (kind != "socket" || std::size_t(path.size()) >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool bound =
        fd >= 0 && ::bind(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    if (fd >= 0)
        ::close(fd);
    return bound && ::chmod(path.constData(), 0644) == 0;
}

/** Two walked trees and an engine, with every event written down as text. */
struct Fixture {
    TestTree source;
    TestTree destination;
    ComparisonFileCollection sourceFiles;
    ComparisonFileCollection destinationFiles;
    Pairscope engine;
    QStringList events;

    explicit Fixture(int workers = 2) {
        engine.setWorkerCount(workers);
        QObject::connect(
            &engine, &Pairscope::CompareProgress, &engine,
            [this](int pass, int current, int total) {
                events << QStringLiteral("progress %1 %2 %3").arg(pass).arg(current).arg(total);
            });
        QObject::connect(&engine, &Pairscope::FilesCompared, &engine,
                         [this](const ComparisonFilePtr &a, const ComparisonFilePtr &b, int code) {
                             events
                                 << QStringLiteral("pair %1 %2 %3 %4")
                                        .arg(a->RelativePath(), b->RelativePath())
                                        .arg(int(a->HasFileObject()) * 2 + int(b->HasFileObject()))
                                        .arg(code);
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
    int compare(int bits, bool slack = true, bool crcLast = true, int chunk = 65536) {
        events.clear();
        return engine.Compare(sourceFiles, destinationFiles, bits, slack, crcLast, chunk);
    }
    /** The code of the pair whose source side is at \a relative. */
    int code(const QString &relative) const {
        for (const ComparisonFilePtr &record : sourceFiles) {
            if (record->RelativePath() == relative)
                return record->DifferenceCode();
        }
        return -100;
    }
};

/** Every run on the caller's thread and with read-ahead, for a test that takes rows. */
void workerCounts() {
    QTest::addColumn<int>("workers");
    QTest::newRow("on the caller's thread") << 0;
    QTest::newRow("with read-ahead") << 2;
}

} // namespace

class tst_Pairscope : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void orderOfTests_data();
    void orderOfTests();
    void slack_data();
    void slack();
    void pairingAndEvents_data() { workerCounts(); }
    void pairingAndEvents();
    void detailsFromTheJudgedStat_data();
    void detailsFromTheJudgedStat();
    void workersMatchSequentialRun_data();
    void workersMatchSequentialRun();
    void vanishedFile_data();
    void vanishedFile();
    void fileDeletedDuringWalk();
    void cancelDuringChecksum_data() { workerCounts(); }
    void cancelDuringChecksum();
    void fifoAndLinkLoop();
    void kindsAndPermissions_data();
    void kindsAndPermissions();
    void fileWrittenDuringChecksum();
    void vanishedRoot_data();
    void vanishedRoot();
    void unreadableFiles();
};

void tst_Pairscope::orderOfTests_data() {
    QTest::addColumn<QByteArray>("sourceContent");
    QTest::addColumn<QByteArray>("destinationContent");
    QTest::addColumn<int>("sourceAge");
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("crcLast");
    QTest::addColumn<int>("expected");
    // Size is tested before the checksum wherever the checksum goes.
    QTest::newRow("size+crc, crc last")
        << QByteArray("aaaa") << QByteArray("bbbbbb") << 0 << 33 << true << 4;
    QTest::newRow("size+crc, crc first")
        << QByteArray("aaaa") << QByteArray("bbbbbb") << 0 << 33 << false << 4;
    // A checksum first outranks the dates; last, it only speaks when nothing else differs.
    QTest::newRow("date+crc, crc first")
        << QByteArray("aaaa") << QByteArray("bbbb") << 100 << 34 << false << 5;
    QTest::newRow("date+crc, crc last, source newer")
        << QByteArray("aaaa") << QByteArray("bbbb") << 100 << 34 << true << 7;
    QTest::newRow("date+crc, crc last, destination newer")
        << QByteArray("aaaa") << QByteArray("bbbb") << -100 << 34 << true << 8;
    QTest::newRow("same content") << QByteArray("aaaa") << QByteArray("aaaa") << 0 << 63 << true
                                  << 1;
    QTest::newRow("existence only")
        << QByteArray("a") << QByteArray("bbbbbb") << 100 << 0 << true << 1;
    QTest::newRow("accessed dates") << QByteArray("a") << QByteArray("a") << 100 << 8 << true << 11;
}

void tst_Pairscope::orderOfTests() {
    QFETCH(QByteArray, sourceContent);
    QFETCH(QByteArray, destinationContent);
    QFETCH(int, sourceAge);
    QFETCH(int, bits);
    QFETCH(bool, crcLast);
    QFETCH(int, expected);
    for (const int workers : {0, 2}) {
        Fixture f(workers);
        QVERIFY(f.pair("f", sourceContent, destinationContent));
        QVERIFY(f.source.setTimes(QStringLiteral("f"), baseTime + sourceAge));
        QVERIFY(f.destination.setTimes(QStringLiteral("f"), baseTime));
        f.walk();
        QCOMPARE(f.compare(bits, true, crcLast), int(Pairscope::StatusComplete));
        QCOMPARE(f.code(QStringLiteral("f")), expected);
        QCOMPARE(f.destinationFiles.Item(1)->DifferenceCode(), expected);
    }
}

void tst_Pairscope::slack_data() {
    QTest::addColumn<int>("sourceSeconds");
    QTest::addColumn<int>("sourceNanoseconds");
    QTest::addColumn<bool>("slack");
    QTest::addColumn<int>("expected");
    QTest::newRow("2 s, slack") << 2 << 0 << true << 1;
    QTest::newRow("2 s, exact") << 2 << 0 << false << 7;
    QTest::newRow("3 s, slack") << 3 << 0 << true << 7;
    QTest::newRow("nanoseconds, slack") << 0 << 1 << true << 1;
    // 2.9 s apart but three second boundaries lie between them.
    QTest::newRow("2.9 s over 3 boundaries") << 3 << 900000000 << true << 7;
}

void tst_Pairscope::slack() {
    QFETCH(int, sourceSeconds);
    QFETCH(int, sourceNanoseconds);
    QFETCH(bool, slack);
    QFETCH(int, expected);
    Fixture f;
    QVERIFY(f.pair("f", "x", "x"));
    QVERIFY(f.source.setTimes(QStringLiteral("f"), baseTime + sourceSeconds, sourceNanoseconds));
    const bool boundaryRow = sourceNanoseconds == 900000000;
    QVERIFY(f.destination.setTimes(QStringLiteral("f"), baseTime, boundaryRow ? 999999999 : 0));
    f.walk();
    QCOMPARE(f.compare(2, slack), int(Pairscope::StatusComplete));
    QCOMPARE(f.code(QStringLiteral("f")), expected);
}

void tst_Pairscope::pairingAndEvents() {
    QFETCH(int, workers);
    Fixture f(workers);
    QVERIFY(f.source.write(QStringLiteral("Same.txt"), "x"));
    QVERIFY(f.source.write(QStringLiteral("sub/only-source"), "x"));
    QVERIFY(f.source.write(QStringLiteral("sub/z"), "x"));
    QVERIFY(f.destination.write(QStringLiteral("same.TXT"), "x"));
    QVERIFY(f.destination.write(QStringLiteral("sub/z"), "xy"));
    QVERIFY(f.destination.write(QStringLiteral("zz/only-destination"), "x"));
    f.sourceFiles.setCaseRule(CaseRule::Insensitive);
    f.destinationFiles.setCaseRule(CaseRule::Insensitive);
    f.walk();
    const QStringList expected = {
        QStringLiteral("progress 1 -1 -1"),
        QStringLiteral("progress 1 -1 3"),
        // Where case is ignored, a name that differs only in letter case is the same file.
        QStringLiteral("pair Same.txt same.TXT 3 1"),
        QStringLiteral("progress 1 1 3"),
        QStringLiteral("pair sub/only-source sub/only-source 2 3"),
        QStringLiteral("progress 1 2 3"),
        QStringLiteral("pair sub/z sub/z 3 4"),
        QStringLiteral("progress 1 3 3"),
        QStringLiteral("progress 2 1 4"),
        QStringLiteral("progress 2 2 4"),
        QStringLiteral("pair zz/only-destination zz/only-destination 1 2"),
        QStringLiteral("progress 2 3 4"),
        QStringLiteral("progress 2 4 4"),
    };
    QCOMPARE(f.compare(1), int(Pairscope::StatusComplete));
    QCOMPARE(f.events, expected);
    QCOMPARE(f.sourceFiles.Count(), 4);
    const ComparisonFilePtr placeholder = f.sourceFiles.Item(4);
    QCOMPARE(placeholder->Path(), f.source.root() + QStringLiteral("/zz/only-destination"));
    QCOMPARE(placeholder->ParentFolder(), f.source.root() + QStringLiteral("/zz/"));
    QCOMPARE(placeholder->ColumnString(9, false), QStringLiteral("source does not exist"));

    // Placeholders of the first run are removed first: the second run is the same.
    QCOMPARE(f.compare(1), int(Pairscope::StatusComplete));
    QCOMPARE(f.events, expected);
    QCOMPARE(f.sourceFiles.Count(), 4);
    QCOMPARE(f.destinationFiles.Count(), 4);
    QVERIFY(!f.engine.InProgress());
}

void tst_Pairscope::detailsFromTheJudgedStat_data() {
    QTest::addColumn<int>("workers");
    QTest::addColumn<bool>("load");
    QTest::newRow("on the caller's thread") << 0 << true;
    QTest::newRow("with read-ahead") << 2 << true;
    QTest::newRow("not asked for") << 2 << false;
}

void tst_Pairscope::detailsFromTheJudgedStat() {
    QFETCH(int, workers);
    QFETCH(bool, load);
    Fixture f(workers);
    f.engine.setLoadDetails(load);
    QVERIFY(f.pair("both", "12", "123"));
    QVERIFY(f.source.write(QStringLiteral("only-source"), "1234"));
    QVERIFY(f.destination.write(QStringLiteral("only-destination"), "12345"));
    f.walk();
    // A listing reads the details while handling the pair: they must be there by then.
    QStringList seen;
    QObject::connect(&f.engine, &Pairscope::FilesCompared, &f.engine,
                     [&seen](const ComparisonFilePtr &a, const ComparisonFilePtr &b, int) {
                         for (const ComparisonFilePtr &record : {a, b}) {
                             seen << QStringLiteral("%1 %2 %3")
                                         .arg(record->RelativePath())
                                         .arg(record->DetailsLoaded())
                                         .arg(record->Size());
                         }
                     });
    QCOMPARE(f.compare(ComparisonBits::Sizes), int(Pairscope::StatusComplete));
    const QStringList loaded = {
        QStringLiteral("both 1 2"),
        QStringLiteral("both 1 3"),
        QStringLiteral("only-source 1 4"),
        // A placeholder carries the details of the file it stands for.
        QStringLiteral("only-source 1 4"),
        QStringLiteral("only-destination 1 5"),
        QStringLiteral("only-destination 1 5"),
    };
    const QStringList notLoaded = {
        QStringLiteral("both 0 0"),
        QStringLiteral("both 0 0"),
        QStringLiteral("only-source 0 0"),
        QStringLiteral("only-source 1 4"),
        QStringLiteral("only-destination 1 5"),
        QStringLiteral("only-destination 0 0"),
    };
    QCOMPARE(seen, load ? loaded : notLoaded);
}

void tst_Pairscope::workersMatchSequentialRun_data() {
    QTest::addColumn<int>("files");
    QTest::addColumn<bool>("meddle");
    // The jobs' ring wraps many times, and the destination pass reads only unpaired records.
    QTest::newRow("many more") << 3000 << false;
    // A handler adds placeholders for later records: the look-ups prepared ahead no longer hold.
    QTest::newRow("a handler changes the collections") << 3000 << true;
}

void tst_Pairscope::workersMatchSequentialRun() {
    QFETCH(int, files);
    QFETCH(bool, meddle);
    Fixture f(0);
    QRandomGenerator generator(testSeed());
    auto *random = &generator;
    for (int i = 0; i < files; ++i) {
        const QString name = QStringLiteral("d%1/f%2").arg(i % 7).arg(i);
        const int kind = int(random->bounded(6));
        const QByteArray content = QByteArray::number(i).repeated(int(random->bounded(1, 50)));
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
        QCOMPARE(f.compare(63, true, crcLast), int(Pairscope::StatusComplete));
        const QStringList expected = f.events;
        meddled = false;
        f.engine.setWorkerCount(2);
        QCOMPARE(f.compare(63, true, crcLast), int(Pairscope::StatusComplete));
        QCOMPARE(f.events, expected);
    }
}

void tst_Pairscope::vanishedFile_data() {
    QTest::addColumn<bool>("fromSource");
    QTest::addColumn<bool>("paired");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("code");
    // Without a counterpart the records no longer match the disk: rescan.
    QTest::newRow("source only") << true << false << 1 << 0;
    // With one, the vanished side is simply missing.
    QTest::newRow("paired source") << true << true << 2 << 2;
    QTest::newRow("paired destination") << false << true << 2 << 3;
}

void tst_Pairscope::vanishedFile() {
    QFETCH(bool, fromSource);
    QFETCH(bool, paired);
    QFETCH(int, status);
    QFETCH(int, code);
    Fixture f;
    TestTree &side = fromSource ? f.source : f.destination;
    TestTree &other = fromSource ? f.destination : f.source;
    QVERIFY(side.write(QStringLiteral("gone"), "x"));
    if (paired)
        QVERIFY(other.write(QStringLiteral("gone"), "x"));
    f.walk();
    QVERIFY(QFile::remove(side.path(QStringLiteral("gone"))));
    QCOMPARE(f.compare(1), status);
    ComparisonFileCollection &files = fromSource ? f.sourceFiles : f.destinationFiles;
    QCOMPARE(files.NeedsRescan(), status == 1);
    QCOMPARE(files.Item(1)->DifferenceCode(), code);
}

void tst_Pairscope::fileDeletedDuringWalk() {
    Fixture f;
    QVERIFY(f.source.write(QStringLiteral("a"), "x"));
    QVERIFY(f.destination.write(QStringLiteral("a"), "x"));
    QVERIFY(f.destination.write(QStringLiteral("b"), "x"));
    // A handler deletes each destination file right after it was listed.
    connect(&f.destinationFiles, &ComparisonFileCollection::FileAdded, this, [&f](int count) {
        if (count == 2)
            QFile::remove(f.destinationFiles.Item(count)->Path());
    });
    f.walk();
    QCOMPARE(f.destinationFiles.Count(), 2);
    QCOMPARE(f.compare(3), int(Pairscope::StatusRescanNeeded));
    QVERIFY(f.destinationFiles.NeedsRescan());
    QCOMPARE(f.code(QStringLiteral("a")), 1);
}

void tst_Pairscope::cancelDuringChecksum() {
    QFETCH(int, workers);
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
    QCOMPARE(f.compare(32, true, true, 1024), int(Pairscope::StatusCancelled));
    QVERIFY(f.engine.Cancelled());
    QVERIFY(!f.engine.InProgress());
    // Reading 8 MiB in 1 KiB chunks would take thousands of yields.
    QVERIFY2(yields < 100, qPrintable(QString::number(yields)));
    QCOMPARE(f.code(QStringLiteral("later")), 0);
    QVERIFY(f.code(QStringLiteral("big")) <= 1);
}

void tst_Pairscope::fifoAndLinkLoop() {
    Fixture f;
    for (TestTree *tree : {&f.source, &f.destination}) {
        QVERIFY(tree->write(QStringLiteral("sub/file"), "x"));
        QVERIFY(::mkfifo(tree->nativePath("pipe").constData(), 0644) == 0);
        QVERIFY(::symlink(".", tree->nativePath("sub/loop").constData()) == 0);
    }
    f.walk();
    QCOMPARE(f.compare(1 | 16 | 32), int(Pairscope::StatusComplete));
    QCOMPARE(f.code(QStringLiteral("pipe")), 1);
    QCOMPARE(f.code(QStringLiteral("sub/loop")), 1);
    QCOMPARE(f.code(QStringLiteral("sub/file")), 1);
}

void tst_Pairscope::kindsAndPermissions_data() {
    QTest::addColumn<QByteArray>("sourceKind");
    QTest::addColumn<QByteArray>("destinationKind");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("expected");
    // Different kinds are never identical, whatever is compared.
    QTest::newRow("FIFO and file, checksums")
        << QByteArray("fifo") << QByteArray("file") << 32 << 6;
    QTest::newRow("FIFO and file, existence only")
        << QByteArray("fifo") << QByteArray("file") << 0 << 6;
    QTest::newRow("link and file of its text, sizes and checksums")
        << QByteArray("link") << QByteArray("file") << 33 << 6;
    QTest::newRow("FIFO and socket, attributes")
        << QByteArray("fifo") << QByteArray("socket") << 16 << 6;
    QTest::newRow("FIFO and FIFO") << QByteArray("fifo") << QByteArray("fifo") << 63 << 1;
    // Permission bits are attributes.
    QTest::newRow("600 and 644, attributes")
        << QByteArray("file 600") << QByteArray("file") << 16 << 6;
    QTest::newRow("755 and 644, attributes")
        << QByteArray("file 755") << QByteArray("file") << 16 << 6;
    QTest::newRow("600 and 644, sizes and checksums")
        << QByteArray("file 600") << QByteArray("file") << 33 << 1;
}

void tst_Pairscope::kindsAndPermissions() {
    QFETCH(QByteArray, sourceKind);
    QFETCH(QByteArray, destinationKind);
    QFETCH(int, bits);
    QFETCH(int, expected);
    for (const int workers : {0, 2}) {
        Fixture f(workers);
        QVERIFY(makeEntry(f.source, sourceKind, "entry"));
        QVERIFY(makeEntry(f.destination, destinationKind, "entry"));
        f.walk();
        QCOMPARE(f.compare(bits), int(Pairscope::StatusComplete));
        QCOMPARE(f.code(QStringLiteral("entry")), expected);
    }
}

void tst_Pairscope::fileWrittenDuringChecksum() {
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
    // Not "checksum is different": the walk no longer matches the disk, so the tree is read
    // again, as when a file vanished.
    QCOMPARE(f.compare(32, true, true, 1024), int(Pairscope::StatusRescanNeeded));
    QVERIFY(f.sourceFiles.NeedsRescan());
    QVERIFY2(!f.events.join(QLatin1Char('\n')).contains(QLatin1String("pair big")),
             qPrintable(f.events.join(QLatin1Char('\n'))));
    QVERIFY(yields > 10);

    f.engine.setYieldHook({});
    f.walk();
    QCOMPARE(f.compare(32, true, true, 1024), int(Pairscope::StatusComplete));
    QCOMPARE(f.code(QStringLiteral("big")), 5);
}

void tst_Pairscope::vanishedRoot_data() {
    QTest::addColumn<bool>("sourceGone");
    QTest::newRow("source") << true;
    QTest::newRow("destination") << false;
}

void tst_Pairscope::vanishedRoot() {
    // A root that went away after it was chosen (an unmounted disk): its side has no files,
    // and the other side's still find their place beneath it.
    QFETCH(bool, sourceGone);
    Fixture f;
    QVERIFY(f.pair("sub/f", "x", "x"));
    TestTree &gone = sourceGone ? f.source : f.destination;
    const QString root = gone.root();
    QVERIFY(QDir(root).removeRecursively());
    f.walk();
    ComparisonFileCollection &files = sourceGone ? f.sourceFiles : f.destinationFiles;
    QCOMPARE(files.Problems().size(), 1);
    QCOMPARE(files.Problems().first().path, root);
    QCOMPARE(f.compare(1), int(Pairscope::StatusComplete));
    QCOMPARE(files.Count(), 1);
    QCOMPARE(files.Item(1)->Path(), root + QStringLiteral("/sub/f"));
    // Whether the file is there cannot be known: it could not be read, not "does not exist".
    QCOMPARE(files.Item(1)->DifferenceCode(), sourceGone ? 13 : 14);
}

void tst_Pairscope::unreadableFiles() {
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
    // Sizes and checksums, the checksum last; attributes are not compared.
    QCOMPARE(f.compare(33), int(Pairscope::StatusComplete));
    // The unreadable pair of different sizes is decided without opening either file: had
    // it been opened, it would read "source could not be read" (13) like the second pair.
    QCOMPARE(f.code(QStringLiteral("a-secret-longer")), 4);
    QCOMPARE(f.code(QStringLiteral("b-secret")), 13);
    QCOMPARE(f.code(QStringLiteral("c-open")), 14);
}

QTEST_GUILESS_MAIN(tst_Pairscope)
#include "tst_Pairscope.moc"
