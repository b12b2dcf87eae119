#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "support/ChildRun.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/DesktopActions.h"
#include "tools/DiffProgram.h"
#include "tools/ListingPopup.h"
#include "tools/ShellContextMenu.h"
#include "tools/ShowInFolder.h"
#include "views/AddToListview.h"
#include "views/FileListModel.h"
#include "views/ListView.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDBusConnection>
#include <QMenu>
#include <QTest>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/** Stands in for the desktop's file manager on a private session bus. */
class FakeFileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QList<QStringList> shown;

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &) { shown.append(uris); }
};

QAction *actionNamed(const QMenu *menu, const QString &text) {
    for (QAction *action : menu->actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

} // namespace

class tst_ShellIntegration : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        m_tree = std::make_unique<TestTree>();
        for (const char *name :
             {"one/a.txt", "one/b.txt", "One/c.txt", "two/d.txt", "one/gone.txt"})
            QVERIFY(m_tree->write(QStringLiteral("src/") + QLatin1String(name), "x"));
        m_source = std::make_unique<ComparisonFileCollection>();
        m_source->setRootFolder(m_tree->path(QStringLiteral("src")));
        // Listed, then gone from the disk, as a file deleted after the compare.
        QVERIFY(QFile::remove(m_tree->path(QStringLiteral("src/one/gone.txt"))));
        m_listing = std::make_unique<ListView>();
        for (const ComparisonFilePtr &file : *m_source)
            AddToListview(file, m_listing.get(), nullptr);

        // Diff programs, and one that records its arguments, NUL-terminated each; blanks in the
        // program's path too.
        QVERIFY(writeScript(QStringLiteral("bin/no interpreter"), "#!/no/such/shell\n"));
        QVERIFY(m_tree->write(QStringLiteral("bin/plain"), "not a program"));
        QVERIFY(m_tree->mkdir(QStringLiteral("bin/folder")));
        const QByteArray record = m_tree->nativePath("record");
        QVERIFY(writeScript(QStringLiteral("my tools/record args"),
                            "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\0' \"$a\"; done > \"" +
                                record + ".part\"\nmv \"" + record + ".part\" \"" + record +
                                "\"\n"));
        QCOMPARE(::symlink("../path/meld", m_tree->nativePath("bin/link").constData()), 0);
        QVERIFY(writeScript(QStringLiteral("path/meld"), "#!/bin/sh\nexit 0\n"));
        qputenv("PATH", m_tree->nativePath("path") + ':' + qgetenv("PATH"));
        m_owner.show();
    }
    void listingSelection_data() {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<bool>("shellMenu");
        QTest::newRow("one folder") << QStringList{"a.txt", "b.txt"} << true;
        // On Linux "one" and "One" are two folders.
        QTest::newRow("folders differing in case only") << QStringList{"a.txt", "c.txt"} << false;
        QTest::newRow("two folders") << QStringList{"a.txt", "d.txt"} << false;
        QTest::newRow("only a placeholder") << QStringList{"gone.txt"} << false;
    }
    void listingSelection() {
        QFETCH(QStringList, selected);
        QFETCH(bool, shellMenu);
        selectOnly(selected);
        const ListingSelection selection = ListingSelection::Of(m_listing.get());
        QCOMPARE(selection.kind,
                 shellMenu ? ListingSelection::ShellMenu : ListingSelection::ToolsMenu);
        QCOMPARE(selection.files.size(), shellMenu ? 2 : 0);
        if (shellMenu) // real paths, not the lower-cased keys
            QVERIFY(selection.files.contains(m_tree->nativePath("src/one/a.txt")));
    }
    void copyPathAndMoveToTrash() {
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("Mixed Case/Trash Me.txt"), "bye"));
        const QByteArray path = tree.nativePath("Mixed Case/Trash Me.txt");
        ShellContextMenu shell;
        shell.AddFile(path);
        QWidget owner;
        std::unique_ptr<QMenu> menu(shell.BuildMenu(&owner));
        actionNamed(menu.get(), QStringLiteral("Copy &Path"))->trigger();
        QCOMPARE(QApplication::clipboard()->text(), QFile::decodeName(path));
        actionNamed(menu.get(), QStringLiteral("Move to &Trash"))->trigger();
        QVERIFY(!QFile::exists(QFile::decodeName(path)));
        QVERIFY(QFile::exists(m_profile.trashFiles() + QStringLiteral("/Trash Me.txt")));
        QVERIFY(DesktopActions::PropertiesText(path).contains(QLatin1String("no longer exists")));
    }
    void commandNamesExistingItemsOnly() {
        QCOMPARE(ShowInFolder::Command(m_tree->nativePath("src/one/gone.txt")), QString());
        QCOMPARE(ShowInFolder::FileUri("/a b/\xff%.txt"),
                 QStringLiteral("file:///a%20b/%FF%25.txt"));
        const auto commandFor = [&](const QString &text) {
            selectOnly({text});
            return ShowInFolder::CommandForSelection(m_listing.get());
        };
        QCOMPARE(commandFor(QStringLiteral("gone.txt")), QString());
        QCOMPARE(commandFor(QString()), QString());
        QCOMPARE(commandFor(QStringLiteral("c.txt")), // the real path: "One", not the key's "one"
                 QStringLiteral("file://") + m_tree->path(QStringLiteral("src/One/c.txt")));
    }
    void fileManagerReceivesTheRealPath() {
        if (!ChildRun::isChild()) {
            ChildRun::run({QStringLiteral("dbus-run-session"), QStringLiteral("--")},
                          "fileManagerReceivesTheRealPath");
            return;
        }
        TestTree tree;
        const QByteArray name = "Mixed Case Folder/Some File \xe9\xff.TXT";
        QVERIFY(tree.writeNative(name, "x"));
        const QString command = ShowInFolder::Command(tree.nativePath(name));
        QVERIFY(!command.isEmpty());

        // No file manager on the bus yet: the folder is opened instead.
        QList<QUrl> opened;
        const auto fallback = [&](const QUrl &folder) { opened.append(folder); };
        ShowInFolder::OpenContainingFolder(command, fallback);
        QTRY_COMPARE(opened.size(), 1);
        QCOMPARE(opened.first().toString(QUrl::FullyEncoded),
                 ShowInFolder::FileUri(tree.nativePath("Mixed Case Folder")));

        // A file manager on its own connection, so the call really travels through the bus.
        const QString connection = QStringLiteral("fake file manager");
        QDBusConnection fake =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, connection);
        FakeFileManager manager;
        QVERIFY(fake.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
                                    QDBusConnection::ExportAllSlots));
        QVERIFY(fake.registerService(QStringLiteral("org.freedesktop.FileManager1")));
        ShowInFolder::OpenContainingFolder(command, fallback);
        QTRY_COMPARE(manager.shown.size(), 1);
        QCOMPARE(manager.shown.first().size(), 1);
        const QString uri = manager.shown.first().first();
        QVERIFY(uri.startsWith(QLatin1String("file:///")));
        QCOMPARE(QByteArray::fromPercentEncoding(uri.mid(7).toLatin1()), tree.nativePath(name));
        QCOMPARE(opened.size(), 1); // no fallback this time
        ::unlink(tree.nativePath(name).constData());
        QDBusConnection::disconnectFromBus(connection);
    }
    void onlyAProgramIsKeptAndStarted_data() {
        QTest::addColumn<QString>("saved"); // below the tree when it has a "/"
        QTest::addColumn<bool>("kept");
        QTest::addColumn<QString>("error"); // what a start reports first; "%1" the saved text
        QTest::newRow("missing") << "bin/nothing" << false << "“%1” does not exist.";
        QTest::newRow("folder") << "bin/folder" << false << "“%1” is a folder, not a program.";
        QTest::newRow("not executable")
            << "bin/plain" << false << "“%1” is not marked as executable.";
        QTest::newRow("a name not on PATH")
            << "nodiff" << false << "No program named “%1” is on the PATH.";
        QTest::newRow("link to a program") << "bin/link" << true << "";
        QTest::newRow("a name on PATH") << "meld" << true << "";
        QTest::newRow("its interpreter is missing")
            << "bin/no interpreter" << true << "“%1” exists, but what it needs to run is missing";
    }
    void onlyAProgramIsKeptAndStarted() {
        QFETCH(QString, saved);
        QFETCH(bool, kept);
        QFETCH(QString, error);
        const QString text = saved.contains(QLatin1Char('/')) ? m_tree->path(saved) : saved;
        QVERIFY(Options::setDiffEXE(text));
        QCOMPARE(LoadDiffProgram(), kept ? text : QString());
        QString reason;
        QCOMPARE(LaunchDiffProgram(text, {"/a", "/b"}, &reason), error.isEmpty());
        QVERIFY2(error.isEmpty() ? reason.isEmpty() : reason.startsWith(error.arg(text)),
                 qPrintable(reason));
    }
    void programGetsTwoArgumentsSourceFirst_data() {
        QTest::addColumn<int>("side");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("paired");
        QTest::newRow("source listing, pair") << 0 << QByteArray("a file.txt") << true;
        QTest::newRow("destination listing, pair") << 1 << QByteArray("a file.txt") << true;
        QTest::newRow("destination only, name not UTF-8")
            << 1 << QByteArray("only \xff here.txt") << false;
    }
    void programGetsTwoArgumentsSourceFirst() {
        QFETCH(int, side);
        QFETCH(QByteArray, name);
        QFETCH(bool, paired);
        TestTree tree;
        // Blanks in every part: both roots, the folders and the name.
        const QByteArray left = tree.nativePath("left side/sub dir/" + name);
        const QByteArray right = tree.nativePath("Right Side/sub dir/" + name);
        QVERIFY(paired ? tree.writeNative("left side/sub dir/" + name, "left")
                       : tree.mkdir(QStringLiteral("left side")));
        QVERIFY(tree.writeNative("Right Side/sub dir/" + name, "right"));
        ComparisonFileCollection source, destination;
        source.setRootFolder(tree.path(QStringLiteral("left side")));
        destination.setRootFolder(tree.path(QStringLiteral("Right Side")));
        ListView listing;
        AddToListview(*(side == 0 ? source : destination).begin(), &listing, nullptr);
        listing.setSelectedRows({true});

        QFile record(m_tree->path(QStringLiteral("record")));
        record.remove();
        ExamineDifferences(&m_owner, m_tree->path(QStringLiteral("my tools/record args")), &listing,
                           side, source, destination);
        QTRY_VERIFY(record.exists());
        QVERIFY(record.open(QIODevice::ReadOnly));
        QCOMPARE(record.readAll(), left + '\0' + right + '\0');
        ::unlink(left.constData());
        ::unlink(right.constData());
    }

private:
    void selectOnly(const QStringList &names) {
        std::vector<bool> wanted;
        for (int row = 0; row < m_listing->files()->count(); ++row)
            wanted.push_back(names.contains(m_listing->files()->record(row)->Name()));
        m_listing->setSelectedRows(wanted);
    }
    bool writeScript(const QString &relative, const QByteArray &text) {
        return m_tree->write(relative, text) &&
               ::chmod(m_tree->nativePath(relative.toUtf8()).constData(), 0755) == 0;
    }
    TestProfile m_profile;
    QWidget m_owner;
    std::unique_ptr<TestTree> m_tree;
    std::unique_ptr<ComparisonFileCollection> m_source;
    std::unique_ptr<ListView> m_listing;
};

QTEST_MAIN(tst_ShellIntegration)
#include "tst_ShellIntegration.moc"
