#include "engine/ComparisonFileCollection.h"
#include "support/ChildRun.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/DesktopActions.h"
#include "tools/ListingPopup.h"
#include "tools/ShellContextMenu.h"
#include "tools/ShowInFolder.h"
#include "views/AddToListview.h"
#include "views/FileListModel.h"
#include "views/ListView.h"

#include <QApplication>
#include <QClipboard>
#include <QDBusConnection>
#include <QMenu>
#include <QMimeDatabase>
#include <QProcess>
#include <QTest>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString testType = QStringLiteral("application/x-pairscope-test");

/** Stands in for the desktop's file manager on a private session bus. */
class FakeFileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QList<QStringList> shown;

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &startupId) {
        Q_UNUSED(startupId)
        shown.append(uris);
    }
};

struct MenuEntry {
    QString text;
    bool enabled;
};

QList<MenuEntry> entries(const QMenu *menu) {
    QList<MenuEntry> result;
    for (const QAction *action : menu->actions())
        result.append(
            {action->isSeparator() ? QStringLiteral("-") : action->text(), action->isEnabled()});
    return result;
}

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
    void initTestCase();
    void listingSelection_data();
    void listingSelection();
    void ownItemsOnTopThenDesktopActions_data();
    void ownItemsOnTopThenDesktopActions();
    void openWithListsAndStartsTheTestApplication();
    void copyPathAndMoveToTrash();
    void commandNamesExistingItemsOnly();
    void fileManagerReceivesTheRealPath();

private:
    void selectOnly(const QStringList &names);
    TestProfile m_profile;
    std::unique_ptr<TestTree> m_tree;
    std::unique_ptr<ComparisonFileCollection> m_source;
    std::unique_ptr<ListView> m_listing;
    QString m_record;
};

void tst_ShellIntegration::initTestCase() {
    m_tree = std::make_unique<TestTree>();

    // A MIME type and an application of the test's own, in the test's data folder.
    const QString data = m_profile.dataHome();
    QVERIFY(QDir().mkpath(data + QStringLiteral("/mime/packages")));
    QFile package(data + QStringLiteral("/mime/packages/pairscope-test.xml"));
    QVERIFY(package.open(QIODevice::WriteOnly));
    package.write("<?xml version=\"1.0\"?>\n"
                  "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
                  "  <mime-type type=\"application/x-pairscope-test\">\n"
                  "    <comment>Pairscope test document</comment>\n"
                  "    <glob pattern=\"*.pstest\"/>\n"
                  "  </mime-type>\n"
                  "</mime-info>\n");
    package.close();
    QProcess::execute(QStringLiteral("update-mime-database"), {data + QStringLiteral("/mime")});

    m_record = m_tree->path(QStringLiteral("opened"));
    QVERIFY(m_tree->write(QStringLiteral("bin/viewer"),
                          "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\0' \"$a\"; done > \"" +
                              QFile::encodeName(m_record) + ".part\"\nmv \"" +
                              QFile::encodeName(m_record) + ".part\" \"" +
                              QFile::encodeName(m_record) + "\"\n"));
    QCOMPARE(::chmod(m_tree->nativePath("bin/viewer").constData(), 0755), 0);
    QVERIFY(QDir().mkpath(data + QStringLiteral("/applications")));
    QFile entry(data + QStringLiteral("/applications/pairscope-test-viewer.desktop"));
    QVERIFY(entry.open(QIODevice::WriteOnly));
    entry.write("[Desktop Entry]\nType=Application\nName=Pairscope Test Viewer\nExec=\"" +
                m_tree->nativePath("bin/viewer") + "\" %F\nMimeType=" + testType.toUtf8() + ";\n");
    entry.close();
    // The index that update-desktop-database keeps beside installed entries: GIO looks
    // applications up by type through it.
    QFile index(data + QStringLiteral("/applications/mimeinfo.cache"));
    QVERIFY(index.open(QIODevice::WriteOnly));
    index.write("[MIME Cache]\n" + testType.toUtf8() + "=pairscope-test-viewer.desktop;\n");
    index.close();

    QVERIFY(m_tree->write(QStringLiteral("src/one/a.txt"), "a"));
    QVERIFY(m_tree->write(QStringLiteral("src/one/b.pstest"), "b"));
    QVERIFY(m_tree->write(QStringLiteral("src/One/c.txt"), "c"));
    QVERIFY(m_tree->write(QStringLiteral("src/two/d.txt"), "d"));
    QVERIFY(m_tree->write(QStringLiteral("src/one/gone.txt"), "gone"));
    m_source = std::make_unique<ComparisonFileCollection>();
    m_source->setRootFolder(m_tree->path(QStringLiteral("src")));
    // Listed, then gone from the disk, as a file deleted after the compare.
    QVERIFY(QFile::remove(m_tree->path(QStringLiteral("src/one/gone.txt"))));
    m_listing = std::make_unique<ListView>();
    for (const ComparisonFilePtr &file : *m_source)
        AddToListview(file, m_listing.get(), nullptr);
}

void tst_ShellIntegration::selectOnly(const QStringList &names) {
    std::vector<bool> wanted;
    for (int row = 0; row < m_listing->files()->count(); ++row)
        wanted.push_back(names.contains(m_listing->files()->record(row)->Name()));
    m_listing->setSelectedRows(wanted);
}

void tst_ShellIntegration::listingSelection_data() {
    QTest::addColumn<QStringList>("selected");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("files");
    QTest::newRow("one folder") << QStringList{QStringLiteral("a.txt"), QStringLiteral("b.pstest")}
                                << int(ListingSelection::ShellMenu) << 2;
    // On Linux "one" and "One" are two folders.
    QTest::newRow("folders differing in case only")
        << QStringList{QStringLiteral("a.txt"), QStringLiteral("c.txt")}
        << int(ListingSelection::ToolsMenu) << 0;
    QTest::newRow("two folders") << QStringList{QStringLiteral("a.txt"), QStringLiteral("d.txt")}
                                 << int(ListingSelection::ToolsMenu) << 0;
    QTest::newRow("only a placeholder")
        << QStringList{QStringLiteral("gone.txt")} << int(ListingSelection::ToolsMenu) << 0;
}

void tst_ShellIntegration::listingSelection() {
    QFETCH(QStringList, selected);
    QFETCH(int, kind);
    QFETCH(int, files);
    selectOnly(selected);
    const ListingSelection selection = ListingSelection::Of(m_listing.get());
    QCOMPARE(int(selection.kind), kind);
    QCOMPARE(selection.files.size(), files);
    if (files > 0) // real paths, not the lower-cased keys
        QVERIFY(selection.files.contains(m_tree->nativePath("src/one/a.txt")));
}

void tst_ShellIntegration::ownItemsOnTopThenDesktopActions_data() {
    QTest::addColumn<int>("side");
    QTest::addColumn<bool>("diff");
    QTest::addColumn<QString>("enabled"); // open folder, examine, to source, to destination
    QTest::newRow("source listing") << 0 << true << QStringLiteral("1101");
    QTest::newRow("destination listing, no diff program") << 1 << false << QStringLiteral("1010");
}

void tst_ShellIntegration::ownItemsOnTopThenDesktopActions() {
    QFETCH(int, side);
    QFETCH(bool, diff);
    QFETCH(QString, enabled);
    ShellContextMenu shell;
    AddListingItems(shell, side, diff);
    shell.AddFile(m_tree->nativePath("src/one/a.txt"));
    shell.AddFile(m_tree->nativePath("src/one/a.txt")); // kept once
    QCOMPARE(shell.Files().size(), 1);
    shell.setUseShellDefault(true);
    QWidget owner;
    std::unique_ptr<QMenu> menu(shell.BuildMenu(&owner));
    const QList<MenuEntry> items = entries(menu.get());
    QStringList texts;
    for (const MenuEntry &item : items)
        texts.append(item.text);
    QCOMPARE(texts, (QStringList{QStringLiteral("Open Containing Folder"),
                                 QStringLiteral("Examine Differences"), QStringLiteral("-"),
                                 QStringLiteral("Copy To Source..."),
                                 QStringLiteral("Copy To Destination..."), QStringLiteral("-"),
                                 QStringLiteral("&Open"), QStringLiteral("Open &With"),
                                 QStringLiteral("-"), QStringLiteral("Copy &Path"),
                                 QStringLiteral("Move to &Trash"), QStringLiteral("-"),
                                 QStringLiteral("P&roperties")}));
    const QString flags = QString::number(items[0].enabled) + QString::number(items[1].enabled) +
                          QString::number(items[3].enabled) + QString::number(items[4].enabled);
    QCOMPARE(flags, enabled);
    QCOMPARE(menu->defaultAction(), actionNamed(menu.get(), QStringLiteral("&Open")));

    shell.setUseShellDefault(false);
    menu.reset(shell.BuildMenu(&owner));
    QCOMPARE(menu->defaultAction(), nullptr);
}

void tst_ShellIntegration::openWithListsAndStartsTheTestApplication() {
    const QByteArray file = m_tree->nativePath("src/one/b.pstest");
    if (DesktopActions::MimeType(file) != testType)
        QSKIP("the MIME database does not read the test's own type here");
    ShellContextMenu shell;
    shell.AddFile(file);
    QWidget owner;
    std::unique_ptr<QMenu> menu(shell.BuildMenu(&owner));
    QMenu *openWith = actionNamed(menu.get(), QStringLiteral("Open &With"))->menu();
    QVERIFY(openWith && openWith->isEnabled());
    QAction *viewer = actionNamed(openWith, QStringLiteral("Pairscope Test Viewer"));
    QVERIFY2(viewer, "the test application is not offered");

    QFile::remove(m_record);
    viewer->trigger();
    QTRY_VERIFY(QFile::exists(m_record));
    QFile record(m_record);
    QVERIFY(record.open(QIODevice::ReadOnly));
    QCOMPARE(record.readAll(), file + '\0');

    // A type no application is registered for: nothing to offer, and no failure.
    ShellContextMenu unknown;
    QVERIFY(m_tree->write(QStringLiteral("src/x.no-such-type-here"), "x"));
    unknown.AddFile(m_tree->nativePath("src/x.no-such-type-here"));
    std::unique_ptr<QMenu> plain(unknown.BuildMenu(&owner));
    QMenu *none = actionNamed(plain.get(), QStringLiteral("Open &With"))->menu();
    QVERIFY(!actionNamed(none, QStringLiteral("Pairscope Test Viewer")));
}

void tst_ShellIntegration::copyPathAndMoveToTrash() {
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

void tst_ShellIntegration::commandNamesExistingItemsOnly() {
    QCOMPARE(ShowInFolder::Command(m_tree->nativePath("src/one/gone.txt")), QString());
    QCOMPARE(ShowInFolder::Command(QByteArray()), QString());
    QCOMPARE(ShowInFolder::Command(m_tree->nativePath("src/one/a.txt")),
             QStringLiteral("file://") + m_tree->path(QStringLiteral("src/one/a.txt")));
    QCOMPARE(ShowInFolder::FileUri("/a b/\xff%.txt"), QStringLiteral("file:///a%20b/%FF%25.txt"));

    const auto commandFor = [&](const QString &text) {
        selectOnly({text});
        return ShowInFolder::CommandForSelection(m_listing.get());
    };
    QCOMPARE(commandFor(QStringLiteral("gone.txt")), QString());
    QCOMPARE(commandFor(QString()), QString());
    QCOMPARE(commandFor(QStringLiteral("c.txt")), // the real path: "One", not the key's "one"
             QStringLiteral("file://") + m_tree->path(QStringLiteral("src/One/c.txt")));
}

void tst_ShellIntegration::fileManagerReceivesTheRealPath() {
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
    QDBusConnection fake = QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                                         QStringLiteral("fake file manager"));
    QVERIFY(fake.isConnected());
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
    QDBusConnection::disconnectFromBus(QStringLiteral("fake file manager"));
}

QTEST_MAIN(tst_ShellIntegration)
#include "tst_ShellIntegration.moc"
