#include "engine/ByteEscaping.h"
#include "support/ChildRun.h"
#include "support/CliResult.h"
#include "support/TestTree.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <numeric>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr time_t Base = 1700000000;

/** A json report without the roots, which name the manifest. */
QJsonObject comparedPart(const QByteArray &json) {
    QJsonObject report = QJsonDocument::fromJson(json).object();
    report.remove(QStringLiteral("source"));
    report.remove(QStringLiteral("destination"));
    return report;
}

/** Odd names, a link, a FIFO, and pairs differing in content, size, mode, case, existence. */
class OddTree {
public:
    OddTree() {
        const QList<QByteArray> odd = {"new\nline",   "tab\there",  "back\\slash",
                                       "bad\xff\xfe", "with space", "sub dir/inner"};
        for (const QByteArray &side : {QByteArray("src/"), QByteArray("dst/")}) {
            for (const QByteArray &name : odd)
                m_tree.writeNative(side + name, name);
            m_tree.writeNative(side + "content.txt", side == "src/" ? "AAAA" : "AAAB");
            m_tree.writeNative(side + "size.txt", side == "src/" ? "1" : "12");
            m_tree.writeNative(side + (side == "src/" ? "Case.txt" : "case.txt"), "c");
            m_tree.writeNative(side + "mode.txt", "m");
            m_tree.setTimes(QString::fromLatin1(side + "content.txt"), Base);
            ::symlink("content.txt", m_tree.nativePath(side + "link").constData());
            ::mkfifo(m_tree.nativePath(side + "fifo").constData(), 0644);
        }
        m_tree.writeNative("src/only-source", "s");
        m_tree.writeNative("dst/b/only-destination", "d");
        ::chmod(m_tree.nativePath("dst/mode.txt").constData(), 0600);
    }
    ~OddTree() {
        for (const char *side : {"src/", "dst/"})
            ::unlink(m_tree.nativePath(QByteArray(side) + "bad\xff\xfe").constData());
    }

    QString path(const char *relative) const { return m_tree.path(QLatin1String(relative)); }
    TestTree &tree() { return m_tree; }

    /** The --crc manifest of one side, written to a file beside the trees. */
    QString manifest(const char *side) {
        const CliResult written = CliResult::run({"--manifest", "--crc", path(side)});
        const QString file = path(side) + ".manifest";
        QFile out(file);
        if (written.exitCode != 0 || !out.open(QIODevice::WriteOnly) ||
            out.write(written.out) != written.out.size())
            qWarning("manifest not written: %s", written.err.constData());
        return file;
    }

private:
    TestTree m_tree;
};

QByteArray readAll(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/** Manifests written by pairscope-cli --manifest and compared in place of a tree. */
class tst_Manifest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void escapingRoundTrip() {
        QByteArray every(255, 0);
        std::iota(every.begin(), every.end(), char(1));
        const QByteArray escaped = ByteEscaping::escape(every);
        QVERIFY(!escaped.contains('\t') && !escaped.contains('\n'));
        QCOMPARE(ByteEscaping::unescape(escaped), std::optional<QByteArray>(every));
        for (const char *broken : {"a\\", "\\x4", "\\xg0", "\\q", "raw\ttab"})
            QCOMPARE(ByteEscaping::unescape(broken), std::nullopt);
    }
    void sameAsTheTree_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<bool>("manifestIsSource");
        QTest::addColumn<bool>("fromStandardInput");
        const QStringList everything{"-a", "-c", "size,modified,accessed,attributes,crc"};
        QTest::newRow("source from a file") << everything << true << false;
        QTest::newRow("destination from standard input") << everything << false << true;
        QTest::newRow("letter case ignored, from standard input")
            << QStringList{"--case", "insensitive", "-c", "crc"} << true << true;
        QTest::newRow("filtered") << QStringList{"--exclude", "sub*/"} << false << false;
    }
    void sameAsTheTree() {
        QFETCH(QStringList, options);
        QFETCH(bool, manifestIsSource);
        QFETCH(bool, fromStandardInput);
        OddTree trees;
        const QString manifest = trees.manifest(manifestIsSource ? "src" : "dst");
        options << "--format=json";
        QStringList roots{trees.path("src"), trees.path("dst")};
        const CliResult direct = CliResult::run(options + roots);
        QCOMPARE(direct.exitCode, 1);
        roots[manifestIsSource ? 0 : 1] = fromStandardInput ? "-" : manifest;
        const CliResult recorded =
            CliResult::run(options + roots, fromStandardInput ? readAll(manifest) : QByteArray());
        QCOMPARE(recorded.err, direct.err);
        QCOMPARE(recorded.exitCode, direct.exitCode);
        QCOMPARE(comparedPart(recorded.out), comparedPart(direct.out));
    }
    void refusedBeforeAnyWork_data() {
        QTest::addColumn<QStringList>("comparing");
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QByteArray>("reason");
        const QStringList none;
        QTest::newRow("crc without checksums")
            << QStringList{"-c", "size,crc"} << QByteArray(" crc\n") << QByteArray("\n")
            << QByteArray("holds no checksums");
        QTest::newRow("bad size") << none << QByteArray("\tfile\t1\t")
                                  << QByteArray("\tfile\tone\t") << QByteArray("line 3: bad size");
        QTest::newRow("newer version")
            << none << QByteArray("pairscope-manifest 1") << QByteArray("pairscope-manifest 2")
            << QByteArray("line 1: manifest version 2 is not supported");
        QTest::newRow("file before its folder")
            << none << QByteArray("\nsub dir\tfolder") << QByteArray("\nsub dir/inner\tfolder")
            << QByteArray("has no line before it");
        QTest::newRow("cut short")
            << none << QByteArray() << QByteArray() << QByteArray("cut short");
    }
    void refusedBeforeAnyWork() {
        QFETCH(QStringList, comparing);
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QByteArray, reason);
        OddTree trees;
        QByteArray text = readAll(trees.manifest("src"));
        if (from.isEmpty()) {
            text.chop(1);
        } else {
            const qsizetype at = text.indexOf(from);
            QVERIFY(at >= 0);
            text.replace(at, from.size(), to);
        }
        const CliResult result =
            CliResult::run(comparing + QStringList{"-", trees.path("dst")}, text);
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.out, QByteArray());
        QVERIFY2(result.err.contains(reason) && result.err.count('\n') == 1,
                 result.err.constData());
    }
    void checksumFindsWhatSizeAndDateMiss() {
        OddTree trees;
        const QString manifest = trees.manifest("src");
        QVERIFY(trees.tree().write("src/content.txt", "ZZZZ"));
        QVERIFY(trees.tree().setTimes("src/content.txt", Base));
        const QStringList roots{manifest, trees.path("src")};
        QCOMPARE(CliResult::run(roots).exitCode, 0);
        const CliResult crc = CliResult::run(QStringList{"-c", "crc", "--format=tsv"} + roots);
        QCOMPARE(crc.out, QByteArray("5\tchecksum is different\tcontent.txt\n"));
        QCOMPARE(crc.exitCode, 1);
    }
    void letterCaseAsRecorded() {
        // The root's flag "i" records a case-blind tree: Case.txt pairs with case.txt.
        OddTree trees;
        QByteArray text = readAll(trees.manifest("src"));
        const qsizetype root = text.indexOf("\n.\tfolder\t");
        const qsizetype flags = text.indexOf("\t-\t", root);
        QVERIFY(root >= 0 && flags > root && flags < text.indexOf('\n', root + 1));
        const QStringList options{"--format=tsv", "-", trees.path("dst")};
        QVERIFY(CliResult::run(options, text).out.contains("\tCase.txt\n"));
        text[flags + 1] = 'i';
        const CliResult caseBlind = CliResult::run(options, text);
        QCOMPARE(caseBlind.exitCode, 1);
        QVERIFY2(!caseBlind.out.contains("ase.txt\n"), caseBlind.out.constData());
    }
    void unreadableStaysUnknown() {
        if (::geteuid() != 0)
            QSKIP("needs root to make files that the program, run unprivileged, may not read");
        const QStringList launcher = ChildRun::unprivileged();
        if (const QString reason = ChildRun::refusal(launcher); !reason.isEmpty())
            QSKIP(qPrintable(reason));
        OddTree trees;
        for (const char *path : {"src/locked/inside.txt", "dst/locked/inside.txt"})
            QVERIFY(trees.tree().write(QLatin1String(path), "x"));
        QProcess::execute("chmod", {"-R", "a+rX", trees.tree().root()});
        QCOMPARE(::chmod(QFile::encodeName(trees.path("src/locked")).constData(), 0700), 0);
        QCOMPARE(::chmod(QFile::encodeName(trees.path("src/size.txt")).constData(), 0600), 0);

        const CliResult written =
            CliResult::run({"--manifest", "--crc", trees.path("src")}, {}, {}, launcher);
        QCOMPARE(written.exitCode, 2);
        QCOMPARE(written.err.count('\n'), 2);
        // Behind an unreadable folder nothing is known, which is not "missing".
        const CliResult compared =
            CliResult::run({"--format=tsv", "-c", "crc", "-", trees.path("dst")}, written.out);
        QCOMPARE(compared.exitCode, 2);
        QVERIFY2(compared.out.contains("13\tsource could not be read\tlocked/inside.txt\n") &&
                     compared.out.contains("13\tsource could not be read\tsize.txt\n"),
                 compared.out.constData());
    }
};

QTEST_GUILESS_MAIN(tst_Manifest)
#include "tst_Manifest.moc"
