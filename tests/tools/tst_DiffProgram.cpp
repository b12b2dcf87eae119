#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/DiffProgram.h"
#include "views/AddToListview.h"
#include "views/ListView.h"

#include <QDir>
#include <QTest>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>

class tst_DiffProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void onlyAProgramIsKeptAndStarted_data();
    void onlyAProgramIsKeptAndStarted();
    void programGetsTwoArgumentsSourceFirst_data();
    void programGetsTwoArgumentsSourceFirst();

private:
    bool writeScript(const QString &relative, const QByteArray &text) {
        return m_tree->write(relative, text) &&
               ::chmod(m_tree->nativePath(relative.toUtf8()).constData(), 0755) == 0;
    }
    TestProfile m_profile;
    std::unique_ptr<TestTree> m_tree;
    QWidget m_owner;
};

void tst_DiffProgram::initTestCase() {
    m_tree = std::make_unique<TestTree>();
    QVERIFY(writeScript(QStringLiteral("bin/no interpreter"), "#!/no/such/shell\n"));
    QVERIFY(m_tree->write(QStringLiteral("bin/plain"), "not a program"));
    QVERIFY(m_tree->mkdir(QStringLiteral("bin/folder")));
    // Records its arguments, NUL-terminated each; blanks in the program's path too.
    const QByteArray record = m_tree->nativePath("record");
    QVERIFY(writeScript(QStringLiteral("my tools/record args"),
                        "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\0' \"$a\"; done > \"" + record +
                            ".part\"\nmv \"" + record + ".part\" \"" + record + "\"\n"));
    QCOMPARE(::symlink("../path/meld", m_tree->nativePath("bin/link").constData()), 0);
    QVERIFY(writeScript(QStringLiteral("path/meld"), "#!/bin/sh\nexit 0\n"));
    qputenv("PATH", m_tree->nativePath("path") + ':' + qgetenv("PATH"));
    m_owner.show();
}

void tst_DiffProgram::onlyAProgramIsKeptAndStarted_data() {
    QTest::addColumn<QString>("saved"); // below the tree when it has a "/"
    QTest::addColumn<bool>("kept");
    QTest::addColumn<QString>("error"); // what a start reports first; "%1" the saved text
    QTest::newRow("missing") << "bin/nothing" << false << "“%1” does not exist.";
    QTest::newRow("folder") << "bin/folder" << false << "“%1” is a folder, not a program.";
    QTest::newRow("not executable") << "bin/plain" << false << "“%1” is not marked as executable.";
    QTest::newRow("a name not on PATH")
        << "nodiff" << false << "No program named “%1” is on the PATH.";
    QTest::newRow("link to a program") << "bin/link" << true << "";
    QTest::newRow("a name on PATH") << "meld" << true << "";
    QTest::newRow("its interpreter is missing")
        << "bin/no interpreter" << true << "“%1” exists, but what it needs to run is missing";
}

void tst_DiffProgram::onlyAProgramIsKeptAndStarted() {
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

void tst_DiffProgram::programGetsTwoArgumentsSourceFirst_data() {
    QTest::addColumn<int>("side");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("paired");
    QTest::newRow("source listing, pair") << 0 << QByteArray("a file.txt") << true;
    QTest::newRow("destination listing, pair") << 1 << QByteArray("a file.txt") << true;
    QTest::newRow("destination only, name not UTF-8")
        << 1 << QByteArray("only \xff here.txt") << false;
}

void tst_DiffProgram::programGetsTwoArgumentsSourceFirst() {
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
    ComparisonFileCollection source;
    ComparisonFileCollection destination;
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

QTEST_MAIN(tst_DiffProgram)
#include "tst_DiffProgram.moc"
