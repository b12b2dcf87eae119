#include "settings/Options.h"
#include "settings/RecentLists.h"
#include "support/ChildRun.h"
#include "support/TestProfile.h"

#include <QScopeGuard>
#include <QTest>

using Options::WindowRect;

namespace {

struct BooleanKey {
    const char *key;
    bool (*read)();
    bool (*write)(bool);
    bool fallback;
};

const BooleanKey booleanOptions[] = {
    {"DoCRCLast", Options::doCRCLast, Options::setDoCRCLast, true},
    {"AlwaysOnTop", Options::alwaysOnTop, Options::setAlwaysOnTop, false},
    {"IncludeSlack", Options::includeSlack, Options::setIncludeSlack, true},
    {"IgnoreTimeShift", Options::ignoreTimeShift, Options::setIgnoreTimeShift, false},
    {"UseGitignore", Options::useGitignore, Options::setUseGitignore, false},
    {"LinkListings", Options::linkListings, Options::setLinkListings, true},
    {"UseMissingPlaceholders", Options::useMissingPlaceholders, Options::setUseMissingPlaceholders,
     true},
    {"FullPath", Options::fullPath, Options::setFullPath, false},
    {"AllFiles", Options::allFiles, Options::setAllFiles, false},
    {"BoldDifferences", Options::boldDifferences, Options::setBoldDifferences, false},
};

const WindowRect defaultRect{100, 50, 640, 480};

} // namespace

class tst_Options : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(m_profile.isValid()); }
    void init() { m_profile.clear(); }
    void booleanKeys_data() {
        QTest::addColumn<int>("index");
        // One key of each default: the rest share the code, and handEditedFile reads them all.
        for (const int i : {0, 1})
            QTest::newRow(booleanOptions[i].key) << i;
    }
    void booleanKeys() {
        QFETCH(int, index);
        const BooleanKey &key = booleanOptions[index];
        const QByteArray name(key.key);

        QCOMPARE(key.read(), key.fallback);
        QVERIFY(!QFile::exists(SettingsStore::fileName())); // reading alone writes nothing

        // Stored as "True"/"False", never as Qt's own "true"/"false": settings files written by
        // earlier versions and edited by hand use these words.
        QVERIFY(key.write(!key.fallback));
        const QByteArray expected = name + '=' + (key.fallback ? "False" : "True") + '\n';
        QVERIFY2(m_profile.raw().contains(expected), m_profile.raw().constData());
        QCOMPARE(key.read(), !key.fallback);

        QVERIFY(m_profile.edit("[Options]\n" + name + "=maybe\n"));
        QCOMPARE(key.read(), key.fallback);
        QVERIFY(m_profile.edit("[Options]\n" + name + "=" + (key.fallback ? "0" : "-1") + "\n"));
        QCOMPARE(key.read(), !key.fallback);
    }
    void outOfRangeValues_data() {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<int>("chunkSize");
        QTest::addColumn<int>("orientation");
        QTest::addColumn<WindowRect>("rect");
        QTest::newRow("too small, unknown, smallest, missing keys")
            << QByteArray("CRCChunkSize=512\nOrientation=3\nWidth=800\nHeight=1\n") << 1024 << 2
            << WindowRect{100, 50, 800, 1};
        QTest::newRow("giant") << QByteArray("CRCChunkSize=2000000000\nOrientation=1\nLeft=1e9\n"
                                             "Width=2000000000\nHeight=1e300\n")
                               << 16777216 << 1 << defaultRect;
        QTest::newRow("beyond 32 bits")
            << QByteArray("CRCChunkSize=99999999999\n") << 65536 << 2 << defaultRect;
    }
    void outOfRangeValues() {
        QFETCH(QByteArray, stored);
        QVERIFY(m_profile.edit("[Options]\n" + stored));
        QTEST(Options::crcChunkSize(), "chunkSize");
        QTEST(Options::orientation(), "orientation");
        QTEST(Options::windowRect(defaultRect), "rect");
    }
    void crcChunkSizeIsNeverWritten() {
        QVERIFY(m_profile.edit("[Options]\nCRCChunkSize=512\n"));
        for (const BooleanKey &key : booleanOptions)
            QVERIFY(key.write(key.fallback));
        QVERIFY(Options::setOrientation(3));
        QVERIFY(Options::setWindowRect(defaultRect));
        QVERIFY(m_profile.raw().contains("CRCChunkSize=512\n"));
        QVERIFY(m_profile.raw().contains("Orientation=2\n"));
    }
    void diffEXEKeepsCommasAndAtSigns() {
        // QSettings would read these back as a list and as a typed value.
        for (const QString &path : {QStringLiteral("/opt/a,b/diff"), QStringLiteral("@diff")}) {
            QVERIFY(Options::setDiffEXE(path));
            QCOMPARE(Options::diffEXE(), path);
        }
    }
    void settingsFileIsAFolder() {
        QVERIFY(QDir().mkpath(SettingsStore::fileName()));
        QCOMPARE(Options::doCRCLast(), true);
        QVERIFY(!Options::setDoCRCLast(false));
        QVERIFY(QDir().rmdir(SettingsStore::fileName()));
    }
    void handEditedFile_data() {
        QTest::addColumn<QByteArray>("content");
        QByteArray binary;
        for (int i = 0; i < 4096; ++i)
            binary.append(char((i * 7919) & 0xff));
        QTest::newRow("not INI at all") << binary;
        QTest::newRow("megabyte values") << "[Options]\nDoCRCLast=" + QByteArray(1 << 20, 'T') +
                                                "\nDiffEXE=" + QByteArray(1 << 20, '/') +
                                                "\nCRCChunkSize=" + QByteArray(1 << 20, '9') +
                                                "\nLeft=" + QByteArray(1 << 20, '5') + "\n";
        QTest::newRow("typed values")
            << QByteArray("[Options]\nDoCRCLast=@Variant(\\0\\0\\0\\x7f)\nDiffEXE=@ByteArray(x)\n");
    }
    void handEditedFile() {
        QFETCH(QByteArray, content);
        QVERIFY(m_profile.edit(content));

        // Whatever the file holds, every reader gives its default.
        for (const BooleanKey &key : booleanOptions)
            QCOMPARE(key.read(), key.fallback);
        QCOMPARE(Options::orientation(), Options::VerticalOrientation);
        QCOMPARE(Options::crcChunkSize(), 65536);
        QCOMPARE(Options::windowRect(defaultRect), defaultRect);
        QVERIFY(Options::diffEXE().size() < 4096);

        QVERIFY(Options::setDoCRCLast(false));
        QVERIFY(!Options::doCRCLast());
    }
    void unwritableFolder_data() {
        QTest::addColumn<bool>("fileExists");
        QTest::newRow("settings file in a read-only folder") << true;
        QTest::newRow("no settings folder, parent read-only") << false;
    }
    void unwritableFolder() {
        // Root writes anywhere: the permissions only bind an ordinary user.
        if (!ChildRun::isChild())
            return ChildRun::run(ChildRun::unprivileged(), "unwritableFolder");
        QFETCH(bool, fileExists);
        const QByteArray content = "[Options]\nDiffEXE=/usr/bin/kept\n\n[SourceMRU]\nItem1=/kept\n";
        QString folder = m_profile.configHome();
        if (fileExists) {
            QVERIFY(m_profile.edit(content));
            folder = QFileInfo(SettingsStore::fileName()).path();
            QVERIFY(QFile::setPermissions(SettingsStore::fileName(), QFile::ReadOwner));
        } else {
            QVERIFY(QDir().mkpath(folder));
        }
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        const auto unlock = qScopeGuard([&] {
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            QFile::setPermissions(SettingsStore::fileName(), QFile::ReadOwner | QFile::WriteOwner);
        });

        QVERIFY(!Options::setAlwaysOnTop(true));
        QVERIFY(!Options::setWindowRect({1, 2, 3, 4}));
        QVERIFY(!RecentLists::saveFolders(RecentLists::Side::Source, {"/new"}, 0));
        if (fileExists) {
            QCOMPARE(Options::diffEXE(), QStringLiteral("/usr/bin/kept"));
            QCOMPARE(m_profile.raw(), content);
        } else {
            QVERIFY(!QFile::exists(SettingsStore::fileName()));
        }
    }

private:
    TestProfile m_profile;
};

QTEST_GUILESS_MAIN(tst_Options)
#include "tst_Options.moc"
