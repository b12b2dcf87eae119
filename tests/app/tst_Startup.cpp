#include "ComparedWindow.h"

#include "app/DesktopIdentity.h"
#include "app/Startup.h"
#include "engine/PathHelpers.h"
#include "settings/Options.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "views/FileIconCache.h"

#include <QImage>
#include <QPointer>
#include <QProcess>
#include <QScopeGuard>
#include <QScreen>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

/** True when \a icon paints something at \a size: an SVG that failed to load paints nothing. */
static bool paints(const QIcon &icon, int size) {
    const QImage image = icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
    QImage blank(image.size(), QImage::Format_ARGB32);
    blank.fill(Qt::transparent);
    return !image.isNull() && image != blank;
}

class tst_Startup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        // The offscreen platform names no icon theme, as a desktop that is not recognised.
        QVERIFY(QIcon::themeName().isEmpty());
        DesktopIdentity::InstallIcons();
    }
    void init() { m_profile.clear(); }
    void folderNotValidUtf8Opens() {
        TestTree tree;
        const QByteArray odd = tree.nativePath("caf\xe9");
        QCOMPARE(::mkdir(odd.constData(), 0755), 0);
        // The temporary folder's own clean-up cannot see a name that is not UTF-8.
        const auto removeOdd = qScopeGuard([&odd] {
            ::unlink((odd + "/only-here.txt").constData());
            ::rmdir(odd.constData());
        });
        QVERIFY(tree.writeNative("caf\xe9/only-here.txt", "x") && tree.mkdir("dst"));

        // Named from the working folder, as the shell hands it over: bytes, kept absolute.
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(tree.root()));
        const std::array<QString, 2> folders = FoldersFromArguments({"./caf\xe9/", "dst"});
        // Only a folder counts: not a file, nor a name that is not there.
        const std::array<QString, 2> neither =
            FoldersFromArguments({"caf\xe9/only-here.txt", "gone"});
        QDir::setCurrent(before);
        QVERIFY(neither[0].isEmpty() && neither[1].isEmpty());
        QCOMPARE(NativeFromPath(folders[0]), odd);
        QCOMPARE(folders[1], tree.path("dst"));

        // The window compares the folder the bytes name, as pairscope-cli does.
        ComparedWindow compared(folders[0], folders[1]);
        compared.compare();
        QCOMPARE(compared.status(), QStringLiteral("  Compare complete."));
        QCOMPARE(compared.list(0)->files()->count(), 1);
    }
    void shiftSampling_data() {
        QTest::addColumn<bool>("duringFadeIn");
        QTest::addColumn<bool>("duringWait");
        QTest::newRow("never held") << false << false;
        QTest::newRow("held while the splash fades in") << true << false;
        QTest::newRow("held only during the 500 ms wait") << false << true;
    }
    void shiftSampling() {
        QFETCH(bool, duringFadeIn);
        QFETCH(bool, duringWait);
        // A scripted start-up: the clock reads 0, 100, 200... ms, and pauses are skipped.
        qint64 now = -1; // no reading yet: the splash fades in
        StartupEnvironment env = StartupEnvironment::system();
        env.clockMs = [&now] { return now = now < 0 ? 0 : now + 100; };
        env.isShiftDown = [&] {
            return now < 0 ? duringFadeIn : duringWait && now < Startup::minimumSplashMs;
        };
        env.sleep = [](int) {};
        env.dataFolders = {m_profile.dataHome(), {}};
        QVERIFY(Options::setWindowRect({10, 20, 700, 500}));

        Startup startup(env);
        QPointer<frmMain> window = startup.Main({});
        QVERIFY(window);
        QCOMPARE(startup.ResetPosition(), duringFadeIn || duringWait);
        QCOMPARE(window->geometry(),
                 startup.ResetPosition()
                     ? frmMain::DefaultPlacement(QGuiApplication::primaryScreen()->geometry())
                     : QRect(10, 20, 700, 500));
        QCOMPARE(now, qint64(Startup::minimumSplashMs)); // the wait ran until then, and no longer
        window->close();
        QTRY_VERIFY(!window);
        QTRY_VERIFY2(std::none_of(QApplication::topLevelWidgets().cbegin(),
                                  QApplication::topLevelWidgets().cend(),
                                  [](QWidget *w) { return w->isVisible(); }),
                     "a window is still open");
        // A reset does not erase the stored placement.
        QCOMPARE(Options::windowRect({}), (Options::WindowRect{10, 20, 700, 500}));
    }
    void placement() {
        const QRect screen(1920, 0, 1280, 800);
        QCOMPARE(frmMain::DefaultPlacement(screen).center(), screen.center());
        frmMain window;
        window.InitializeDisplay();
        window.LoadPosition(false); // nothing stored: the default
        QCOMPARE(window.geometry(),
                 frmMain::DefaultPlacement(QGuiApplication::primaryScreen()->geometry()));
        // Loading a placement is not a move by the user: nothing is written.
        QTest::qWait(600);
        QCOMPARE(Options::windowRect({1, 2, 3, 4}), (Options::WindowRect{1, 2, 3, 4}));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        // A move is written once it has come to rest.
        window.setGeometry(33, 44, 700, 520);
        QTRY_COMPARE(Options::windowRect({}), (Options::WindowRect{33, 44, 700, 520}));
    }
    void desktopEntry_data() {
        QTest::addColumn<QString>("executable"); // below the tree
        QTest::addColumn<QString>("userEntry");  // what the user's folder holds before
        QTest::addColumn<bool>("systemEntry");   // whether the system folder holds an entry
        QTest::addColumn<int>("result");
        QTest::addColumn<QString>("userEntryAfter"); // "" gone, "new" written at start-up
        const QString installed = QStringLiteral("[Desktop Entry]\nName=installed\n");
        const QString written = QStringLiteral("X-Pairscope-Written-At-Start-Up=true\n");
        const auto r = [](Registration registration) { return int(registration); };
        QTest::newRow("unpacked elsewhere") << "opt/my $tools/pairscope"
                                            << "" << false << r(Registration::Written) << "new";
        QTest::newRow("installed for everyone") << "opt/pairscope"
                                                << "" << true << r(Registration::Installed) << "";
        QTest::newRow("installed for the user")
            << "opt/pairscope" << installed << false << r(Registration::Installed) << installed;
        QTest::newRow("installed after a start wrote one")
            << "opt/pairscope" << written << true << r(Registration::Installed) << "";
        QTest::newRow("a build folder") << "build/app/pairscope"
                                        << "" << false << r(Registration::BuildFolder) << "";
    }
    void desktopEntry() {
        QFETCH(QString, executable);
        QFETCH(QString, userEntry);
        QFETCH(bool, systemEntry);
        QFETCH(QString, userEntryAfter);
        TestTree tree;
        const QString name = QStringLiteral("/applications/org.pairscope.Pairscope.desktop");
        QVERIFY(tree.write("build/CMakeCache.txt", ""));
        QVERIFY(userEntry.isEmpty() || tree.write("user" + name, userEntry.toUtf8()));
        QVERIFY(!systemEntry || tree.write("system" + name, "[Desktop Entry]\n"));
        const DataFolders folders{tree.path("user"), {tree.path("none"), tree.path("system")}};

        QTEST(int(RegisterDesktopEntry(tree.path(executable), folders)), "result");
        QFile entry(tree.path("user" + name));
        if (userEntryAfter.isEmpty()) {
            QVERIFY(!entry.exists());
            return;
        }
        QVERIFY(entry.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(entry.readAll());
        if (userEntryAfter != QLatin1String("new")) {
            QCOMPARE(text, userEntryAfter);
            return;
        }
        // Written: it runs this program, names an icon that is there, and passes the validator.
        const QString exec = QStringLiteral("\nExec=\"%1\" %F\n");
        QVERIFY2(text.contains(exec.arg(tree.path(executable).replace("$", "\\\\$"))),
                 qPrintable(text));
        QVERIFY(QFile::exists(
            tree.path("user/icons/hicolor/scalable/apps/org.pairscope.Pairscope.svg")));
        if (!QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate")).isEmpty())
            QCOMPARE(QProcess::execute(QStringLiteral("desktop-file-validate"), {entry.fileName()}),
                     0);
        // A folder that cannot be made is no error for start-up: the entry is simply not there.
        QVERIFY(tree.write("blocked", "a file, not a folder"));
        QCOMPARE(RegisterDesktopEntry(tree.path(executable), {tree.path("blocked/data"), {}}),
                 Registration::Failed);
    }
    void windowsCarryTheProgramIcon() {
        QWidget window;
        QVERIFY(paints(window.windowIcon(), 48));
        QCOMPARE(window.windowIcon().pixmap(48).toImage(),
                 DesktopIdentity::ProgramIcon().pixmap(48).toImage());
    }
    void fileTypesHaveIcons_data() {
        QTest::addColumn<QString>("iconName"); // of the file the row names
        QTest::newRow("run.sh") << "text-x-script";
        QTest::newRow("data.bin") << "application-x-generic";
        QTest::newRow("link") << "inode-symlink";
        QTest::newRow("pipe") << "inode-x-generic";
    }
    void fileTypesHaveIcons() {
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        TestTree tree;
        const QByteArray path = tree.nativePath(QFile::encodeName(name));
        if (name == QLatin1String("link"))
            QCOMPARE(::symlink("run.sh", path.constData()), 0);
        else if (name == QLatin1String("pipe"))
            QCOMPARE(::mkfifo(path.constData(), 0600), 0);
        else
            QVERIFY(tree.write(name, "x"));
        const QIcon icon = FileIconCache::GetFileIconPicture(path);
        QTEST(icon.name(), "iconName");
        QVERIFY(paints(icon, 16));
    }

private:
    TestProfile m_profile;
};

QTEST_MAIN(tst_Startup)
#include "tst_Startup.moc"
