#include "app/Startup.h"
#include "app/StatusLine.h"
#include "app/frmMain.h"
#include "engine/PathHelpers.h"
#include "settings/Options.h"
#include "settings/SettingsStore.h"
#include "support/ComparedWindow.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"

#include <QComboBox>
#include <QDir>
#include <QPointer>
#include <QProcess>
#include <QScopeGuard>
#include <QScreen>
#include <QStandardPaths>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

class tst_Startup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void foldersFromArguments_data();
    void foldersFromArguments();
    void folderNotValidUtf8Opens();
    void defaultPlacement_data();
    void defaultPlacement();

    void shiftSampling_data();
    void shiftSampling();
    void desktopEntry_data();
    void desktopEntry();
    void closingLeavesNoWindow();

private:
    TestProfile m_profile;
};

void tst_Startup::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_Startup::init() {
    m_profile.clear();
}

void tst_Startup::foldersFromArguments_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("destination");

    QTest::newRow("a file is skipped") << QStringList{"src/file.txt", "dst"} << ""
                                       << "dst";
    QTest::newRow("only the second exists") << QStringList{"gone", "dst"} << ""
                                            << "dst";
    QTest::newRow("an empty first argument") << QStringList{"", "dst"} << ""
                                             << "dst";
    QTest::newRow("blanks in the name") << QStringList{"with blanks", "src"} << "with blanks"
                                        << "src";
    QTest::newRow("a third is ignored") << QStringList{"src", "dst", "src"} << "src"
                                        << "dst";
}

void tst_Startup::foldersFromArguments() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, source);
    QFETCH(QString, destination);

    TestTree tree;
    QVERIFY(tree.write("src/file.txt", "x"));
    QVERIFY(tree.mkdir("dst"));
    QVERIFY(tree.mkdir("with blanks"));
    QList<QByteArray> native;
    for (const QString &argument : arguments)
        native << (argument.isEmpty() ? QByteArray() : QFile::encodeName(tree.path(argument)));
    const std::array<QString, 2> folders = FoldersFromArguments(native);
    QCOMPARE(folders[0], source.isEmpty() ? QString() : tree.path(source));
    QCOMPARE(folders[1], destination.isEmpty() ? QString() : tree.path(destination));

    // Named from the working folder, a folder still enters the path box absolute.
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(tree.root()));
    const std::array<QString, 2> relative = FoldersFromArguments({"./dst/", "src"});
    QDir::setCurrent(before);
    QCOMPARE(relative[0], tree.path("dst"));
    QCOMPARE(relative[1], tree.path("src"));
}

void tst_Startup::folderNotValidUtf8Opens() {
    TestTree tree;
    const QByteArray odd = tree.nativePath("caf\xe9");
    QCOMPARE(::mkdir(odd.constData(), 0755), 0);
    // The temporary folder's own clean-up cannot see a name that is not UTF-8.
    const auto removeOdd = qScopeGuard([&odd] {
        ::unlink((odd + "/only-here.txt").constData());
        ::rmdir(odd.constData());
    });
    QVERIFY(tree.writeNative("caf\xe9/only-here.txt", "x"));
    QVERIFY(tree.mkdir("dst"));

    // Named from the working folder, as the shell hands it over: bytes.
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(tree.root()));
    const std::array<QString, 2> folders = FoldersFromArguments({"./caf\xe9/", "dst"});
    QDir::setCurrent(before);
    QCOMPARE(NativeFromPath(folders[0]), odd);

    // The window compares the folder the bytes name, as pairscope-cli does.
    ComparedWindow compared(folders[0], folders[1]);
    compared.compare();
    QCOMPARE(compared.window.StatusBar1->shownText(), QStringLiteral("  Compare complete."));
    QCOMPARE(compared.list(0)->files()->count(), 1);
}

void tst_Startup::defaultPlacement_data() {
    QTest::addColumn<QRect>("screen");
    QTest::addColumn<QRect>("expected");

    QTest::newRow("second screen, odd sizes round down")
        << QRect(1920, 0, 1281, 801) << QRect(2240, 160, 640, 480);
    QTest::newRow("screen smaller than the window")
        << QRect(0, 0, 600, 400) << QRect(-20, -40, 640, 480);
}

void tst_Startup::defaultPlacement() {
    QFETCH(QRect, screen);
    QFETCH(QRect, expected);
    QCOMPARE(frmMain::DefaultPlacement(screen), expected);
}

namespace {

/**
 * A scripted start-up: the clock advances 100 ms per reading, pauses are skipped, and Shift
 * is held during the phases the test names.
 */
struct ScriptedStartup {
    enum Phase { FadeIn, Wait, After };

    ScriptedStartup(QSet<Phase> shiftHeld, QString dataHome)
        : held(std::move(shiftHeld)) {
        env = StartupEnvironment::system();
        env.clockMs = [this] {
            phase = now < Startup::minimumSplashMs ? Wait : After;
            const qint64 t = now;
            now += 100;
            return t;
        };
        env.IsShiftDown = [this] { return held.contains(phase); };
        env.Sleep = [](int) {};
        env.dataFolders = {std::move(dataHome), {}};
    }

    StartupEnvironment env;
    QSet<Phase> held;
    Phase phase = FadeIn;
    qint64 now = 0;
};

} // namespace

void tst_Startup::shiftSampling_data() {
    QTest::addColumn<bool>("duringFadeIn");
    QTest::addColumn<bool>("duringWait");
    QTest::addColumn<bool>("expectReset");

    QTest::newRow("never held") << false << false << false;
    QTest::newRow("held while the splash fades in") << true << false << true;
    QTest::newRow("held only during the 500 ms wait") << false << true << true;
}

void tst_Startup::shiftSampling() {
    QFETCH(bool, duringFadeIn);
    QFETCH(bool, duringWait);
    QFETCH(bool, expectReset);

    const QRect stored(10, 20, 700, 500);
    QVERIFY(Options::setWindowRect({10, 20, 700, 500}));
    QSet<ScriptedStartup::Phase> held;
    if (duringFadeIn)
        held << ScriptedStartup::FadeIn;
    if (duringWait)
        held << ScriptedStartup::Wait;
    ScriptedStartup script(held, m_profile.dataHome());
    Startup startup(script.env);
    QPointer<frmMain> window = startup.Main({});
    QVERIFY(window);
    QCOMPARE(startup.resetPosition(), expectReset);
    const QRect expected =
        expectReset ? frmMain::DefaultPlacement(QGuiApplication::primaryScreen()->geometry())
                    : stored;
    QCOMPARE(window->geometry(), expected);
    // The wait ran until the clock said 500 ms, and no longer.
    QCOMPARE(script.now, qint64(Startup::minimumSplashMs + 100));
    window->close();
    QTRY_VERIFY(!window);
    // The stored placement is not erased by a reset.
    QCOMPARE(Options::windowRect({}), (Options::WindowRect{10, 20, 700, 500}));
}

void tst_Startup::desktopEntry_data() {
    QTest::addColumn<QString>("executable"); // below the tree
    QTest::addColumn<QString>("userEntry");  // what the user's folder holds before
    QTest::addColumn<bool>("systemEntry");   // whether the system folder holds an entry
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("userEntryAfter"); // "" gone, "start-up" written at start-up
    const QString mine = QStringLiteral("start-up");
    const QString installed = QStringLiteral("[Desktop Entry]\nName=installed\n");
    const QString written = QStringLiteral("X-Pairscope-Written-At-Start-Up=true\n");
    const auto r = [](Registration registration) { return int(registration); };
    QTest::newRow("unpacked elsewhere") << "opt/my $tools/pairscope"
                                        << "" << false << r(Registration::Written) << mine;
    QTest::newRow("installed for everyone") << "opt/pairscope"
                                            << "" << true << r(Registration::Installed) << "";
    QTest::newRow("installed for the user")
        << "opt/pairscope" << installed << false << r(Registration::Installed) << installed;
    QTest::newRow("installed after a start wrote one")
        << "opt/pairscope" << written << true << r(Registration::Installed) << "";
    QTest::newRow("a build folder") << "build/app/pairscope"
                                    << "" << false << r(Registration::BuildFolder) << "";
}

void tst_Startup::desktopEntry() {
    QFETCH(QString, executable);
    QFETCH(QString, userEntry);
    QFETCH(bool, systemEntry);
    QFETCH(int, result);
    QFETCH(QString, userEntryAfter);
    TestTree tree;
    const QString name = QStringLiteral("/applications/org.pairscope.Pairscope.desktop");
    QVERIFY(tree.write("build/CMakeCache.txt", ""));
    if (!userEntry.isEmpty())
        QVERIFY(tree.write("user" + name, userEntry.toUtf8()));
    if (systemEntry)
        QVERIFY(tree.write("system" + name, "[Desktop Entry]\n"));
    const DataFolders folders{tree.path("user"), {tree.path("none"), tree.path("system")}};

    QCOMPARE(int(RegisterAppPath(tree.path(executable), folders)), result);
    QFile entry(tree.path("user" + name));
    if (userEntryAfter.isEmpty()) {
        QVERIFY(!entry.exists());
        return;
    }
    QVERIFY(entry.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(entry.readAll());
    if (userEntryAfter != QLatin1String("start-up")) {
        QCOMPARE(text, userEntryAfter);
        return;
    }
    // Written: it runs this program, names an icon that is there, and passes the validator.
    QVERIFY2(
        text.contains(
            QStringLiteral("\nExec=\"%1\" %F\n").arg(tree.path(executable).replace("$", "\\\\$"))),
        qPrintable(text));
    QVERIFY(
        QFile::exists(tree.path("user/icons/hicolor/scalable/apps/org.pairscope.Pairscope.svg")));
    if (!QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate")).isEmpty())
        QCOMPARE(QProcess::execute(QStringLiteral("desktop-file-validate"), {entry.fileName()}), 0);

    // A folder that cannot be made is no error for start-up: the entry is simply not there.
    QVERIFY(tree.write("blocked", "a file, not a folder"));
    QCOMPARE(RegisterAppPath(tree.path(executable), {tree.path("blocked/data"), {}}),
             Registration::Failed);
}

void tst_Startup::closingLeavesNoWindow() {
    ScriptedStartup script({}, m_profile.dataHome());
    Startup startup(script.env);
    QPointer<frmMain> window = startup.Main({});
    QVERIFY(window);
    window->close();
    QTRY_VERIFY(!window);
    QTRY_VERIFY2(QApplication::topLevelWidgets().isEmpty() ||
                     std::none_of(QApplication::topLevelWidgets().cbegin(),
                                  QApplication::topLevelWidgets().cend(),
                                  [](QWidget *w) { return w->isVisible(); }),
                 "a window is still open");
}

QTEST_MAIN(tst_Startup)
#include "tst_Startup.moc"
