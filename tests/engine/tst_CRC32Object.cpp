#include "engine/CRC32Object.h"
#include "engine/ComparisonSet.h"
#include "engine/ReadAhead.h"
#include "support/TestTree.h"

#include <QRandomGenerator>
#include <QTest>
#include <QThread>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

/** The bit-at-a-time definition of CRC-32, to check the library against. */
quint32 referenceCrc(const QByteArray &data) {
    quint32 c = 0xFFFFFFFFu;
    for (const char b : data) {
        c ^= quint8(b);
        for (int k = 0; k < 8; ++k)
            c = (c & 1) ? (c >> 1) ^ 0xEDB88320u : c >> 1;
    }
    return ~c;
}

QByteArray randomBytes(qsizetype size) {
    static QRandomGenerator generator(testSeed());
    QByteArray data(size, Qt::Uninitialized);
    for (char &b : data)
        b = char(generator.bounded(256));
    return data;
}

} // namespace

class tst_CRC32Object : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void checkValue() {
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("check"), "123456789"));
        CRC32Object crc;
        // A chunk size of nothing would never move on.
        crc.setChunkSize(-5);
        QCOMPARE(CRC32Object::CRC32String(crc.CRC32(tree.path(QStringLiteral("check")))),
                 QStringLiteral("CBF43926"));
        // Eight digits always, and the top bit is not a sign.
        QCOMPARE(CRC32Object::CRC32String(0x00ABCDEF), QStringLiteral("00ABCDEF"));
        QCOMPARE(CRC32Object::CRC32String(-1), QStringLiteral("FFFFFFFF"));
    }
    void chunkBoundaries() {
        for (const int size : {1, 1023, 1024, 1025, 3 * 1024 + 7}) {
            TestTree tree;
            const QByteArray data = randomBytes(size);
            QVERIFY(tree.write(QStringLiteral("f"), data));
            CRC32Object crc;
            crc.setChunkSize(1024);
            int chunks = 0;
            crc.setYieldHook([&chunks] { ++chunks; });
            QCOMPARE(quint32(crc.CRC32(tree.nativePath("f"))), referenceCrc(data));
            // Every chunk is full except the last, empty when the size is a multiple.
            QCOMPARE(chunks, size / 1024 + 1);
        }
    }
    void changedWhileRead_data() {
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("after");
        QTest::addColumn<bool>("duringRead");
        // after = -1: the file is left alone.
        QTest::newRow("unchanged") << 1500 << -1 << false;
        QTest::newRow("same size, written since") << 1500 << 1500 << false;
        QTest::newRow("grown within the chunk") << 100 << 150 << false;
        QTest::newRow("shrunk to a chunk") << 1500 << 1024 << false;
        QTest::newRow("same size, written after the first chunk") << 3000 << 3000 << true;
        // Large files are read through a mapping, whose pages past a new end raise SIGBUS.
        QTest::newRow("mapped, cut short") << (3 << 20) << 100 << false;
        QTest::newRow("mapped, written after the first window") << (9 << 20) << (9 << 20) << true;
        QTest::newRow("mapped, unchanged") << (9 << 20) << -1 << false;
    }
    void changedWhileRead() {
        // The pair is judged on the size and date of the stat: content read from a file that was
        // written since belongs to neither state.
        QFETCH(int, before);
        QFETCH(int, after);
        QFETCH(bool, duringRead);
        TestTree tree;
        const QByteArray original = randomBytes(before);
        QVERIFY(tree.write(QStringLiteral("f"), original));
        // An old date, so that a write gives a new one however coarse the clock.
        QVERIFY(tree.setTimes(QStringLiteral("f"), 1700000000));
        const FileStat stat = FileStat::read(tree.nativePath("f"));
        CRC32Object crc;
        crc.setChunkSize(1024);
        const auto rewrite = [&] {
            return after < 0 || tree.write(QStringLiteral("f"), randomBytes(after));
        };
        if (duringRead)
            crc.setYieldHook([&, done = false]() mutable {
                if (!std::exchange(done, true))
                    QVERIFY(rewrite());
            });
        else
            QVERIFY(rewrite());
        const CRC32Object::Result result = crc.Checksum(tree.nativePath("f"), stat);
        QCOMPARE(result.status, after < 0 ? CRC32Object::Status::Ok : CRC32Object::Status::Changed);
        if (after < 0)
            QCOMPARE(result.crc, referenceCrc(original));
    }
    void linksAndSpecialFiles() {
        TestTree tree;
        const QByteArray link = tree.nativePath("link");
        QVERIFY(::symlink("target/text", link.constData()) == 0);
        // An accessed date older than the modified one: reading the text would move it.
        const timespec times[2] = {{1600000000, 5}, {1700000000, 0}};
        QVERIFY(::utimensat(AT_FDCWD, link.constData(), times, AT_SYMLINK_NOFOLLOW) == 0);
        const FileStat stat = FileStat::read(link);
        CRC32Object crc;
        const CRC32Object::Result result = crc.Checksum(link, stat);
        QCOMPARE(result.status, CRC32Object::Status::Ok);
        QCOMPARE(result.crc, referenceCrc("target/text"));
        // A checksum pass leaves the accessed date that a later compare reads as it was.
        QCOMPARE(FileStat::read(link).accessed, stat.accessed);

        // A link pointed elsewhere since its stat has another text: changed, not different.
        QVERIFY(::unlink(link.constData()) == 0);
        QVERIFY(::symlink("elsewhere/longer/text", link.constData()) == 0);
        QCOMPARE(crc.Checksum(link, stat).status, CRC32Object::Status::Changed);

        QVERIFY(::mkfifo(tree.nativePath("fifo").constData(), 0644) == 0);
        // Opening a FIFO would block until a writer comes: it must not even be opened.
        QCOMPARE(crc.Checksum(tree.nativePath("fifo")).status, CRC32Object::Status::Skipped);
        const CRC32Object::Result missing = crc.Checksum(tree.nativePath("missing"));
        QCOMPARE(missing.status, CRC32Object::Status::Failed);
        QCOMPARE(missing.error, ENOENT);
    }
    void hugeSparseFile() {
        // Past 4 GiB, so that a size or offset cut to 32 bits shows.
        TestTree tree;
        const qint64 size = 4LL * 1024 * 1024 * 1024 + 3;
        const QByteArray path = tree.nativePath("sparse");
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        const bool sized = fd >= 0 && ::ftruncate(fd, size) == 0;
        ::close(fd);
        if (!sized)
            QSKIP("the file system refuses a 4 GiB sparse file");
        CRC32Object crc;
        crc.setChunkSize(CRC32Object::MaximumChunkSize);
        const CRC32Object::Result whole = crc.Checksum(path);
        QCOMPARE(whole.status, CRC32Object::Status::Ok);
        const QByteArray zeros(crc.ChunkSize(), '\0');
        quint32 expected = 0;
        for (qint64 left = size; left > 0; left -= zeros.size())
            expected = CRC32Object::update(expected, zeros.constData(),
                                           std::size_t(std::min<qint64>(left, zeros.size())));
        QCOMPARE(whole.crc, expected);
    }
    void readAheadGrowsOnlyForTheDisk() {
        // Files the page cache lost have to come from the disk, which serves many requests at
        // once faster than one: more workers join. From the cache, they stay as they began.
        TestTree tree;
        QVERIFY(tree.mkdir("cold"));
        struct statfs fs {};
        if (::statfs(tree.nativePath("cold").constData(), &fs) != 0 || fs.f_type == TMPFS_MAGIC)
            QSKIP("a file system in memory is never read from a disk");
        const QByteArray data(64 * 1024, 'x');
        QList<QByteArray> names;
        for (int i = 0; i < 64; ++i) {
            names << QByteArray::number(i);
            QVERIFY(tree.write(QStringLiteral("cold/") + QString::number(i), data));
        }
        const FolderRef folder = FolderRef::make(tree.nativePath("cold"), 0, tree.root());
        const auto workersAfterReading = [&] {
            CRC32Object callerCrc;
            PairTestOptions options;
            options.bits = ComparisonBits::Checksums;
            ReadAhead ahead(1, options, 4096, 64, callerCrc);
            for (const QByteArray &name : names) {
                ReadAhead::Job &job = ahead.next();
                job.sourceFolder = job.destinationFolder = folder;
                job.sourceName = job.destinationName = name;
                ahead.add();
            }
            ahead.publish();
            // The worker's turn first: the caller would take on the jobs nobody has claimed.
            QThread::msleep(100);
            for (int i = 0; i < names.size(); ++i) {
                const ReadAhead::Job *job = ahead.waitFront([] { return true; });
                if (!job || job->sourceChecksum.status != CRC32Object::Status::Ok)
                    return -1;
                ahead.release();
                ahead.publish();
            }
            return ahead.workerCount();
        };
        for (const QByteArray &name : names) {
            const int fd = ::open(tree.nativePath("cold/" + name).constData(), O_RDONLY);
            QVERIFY(fd >= 0 && ::fdatasync(fd) == 0);
            QCOMPARE(::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED), 0);
            ::close(fd);
        }
        // Some file systems (overlays, network mounts) keep their pages whatever is advised.
        const int fd = ::open(tree.nativePath("cold/0").constData(), O_RDONLY);
        void *mapped = ::mmap(nullptr, std::size_t(data.size()), PROT_READ, MAP_SHARED, fd, 0);
        unsigned char resident[16] = {};
        const bool evicted = mapped != MAP_FAILED &&
                             ::mincore(mapped, std::size_t(data.size()), resident) == 0 &&
                             std::none_of(std::begin(resident), std::end(resident),
                                          [](unsigned char page) { return page & 1; });
        ::munmap(mapped, std::size_t(data.size()));
        ::close(fd);
        if (!evicted)
            QSKIP("the page cache keeps these files");
        QVERIFY(workersAfterReading() > 1);
        QCOMPARE(workersAfterReading(), 1);
    }
};

QTEST_GUILESS_MAIN(tst_CRC32Object)
#include "tst_CRC32Object.moc"
