#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "support/DragDrop.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/DiffProgram.h"
#include "tools/frmSelectDiff.h"
#include "views/AddToListview.h"
#include "views/ListView.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/** Writes an executable shell script. */
bool writeScript(TestTree &tree, const QString &relative, const QByteArray &body) {
    return tree.write(relative, "#!/bin/sh\n" + body) &&
           ::chmod(QFile::encodeName(tree.path(relative)).constData(), 0755) == 0;
}

/** The arguments a recording script saw: NUL-terminated each, as it wrote them. */
QList<QByteArray> recordedArguments(const QString &file) {
    QFile record(file);
    if (!record.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> arguments = record.readAll().split('\0');
    arguments.removeLast(); // after the last terminator
    return arguments;
}

} // namespace

class tst_DiffProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void loadKeepsOnlyAProgram_data();
    void loadKeepsOnlyAProgram();
    void programGetsTwoArgumentsSourceFirst_data();
    void programGetsTwoArgumentsSourceFirst();
    void startFailureIsReported_data();
    void startFailureIsReported();
    void dialogOffersTheDiffProgramsFound();
    void dialogShowsTheProgramInUseAndStoresAsTyped();
    void dropTakesAnExistingFileOnly_data();
    void dropTakesAnExistingFileOnly();

private:
    TestProfile m_profile;
    std::unique_ptr<TestTree> m_tree;
    QWidget m_owner;
};

void tst_DiffProgram::initTestCase() {
    m_tree = std::make_unique<TestTree>();
    QVERIFY(writeScript(*m_tree, QStringLiteral("bin/diff tool"), "exit 0\n"));
    QVERIFY(m_tree->write(QStringLiteral("bin/plain"), "not a program"));
    QVERIFY(m_tree->mkdir(QStringLiteral("bin/folder")));
    QCOMPARE(::symlink("diff tool",
                       QFile::encodeName(m_tree->path(QStringLiteral("bin/link"))).constData()),
             0);
    QVERIFY(m_tree->write(QStringLiteral("bin/no interpreter"), "#!/no/such/shell\n"));
    QCOMPARE(::chmod(m_tree->nativePath("bin/no interpreter").constData(), 0755), 0);
    // Found on PATH by name: a well-known diff program, and one a desktop entry announces.
    QVERIFY(writeScript(*m_tree, QStringLiteral("path/meld"), "exit 0\n"));
    QVERIFY(writeScript(*m_tree, QStringLiteral("path/cmp-gui"), "exit 0\n"));
    QVERIFY(writeScript(*m_tree, QStringLiteral("path/editor"), "exit 0\n"));
    QVERIFY(writeScript(*m_tree, QStringLiteral("path/termdiff"), "exit 0\n"));
    qputenv("PATH",
            QFile::encodeName(m_tree->path(QStringLiteral("path"))) + ':' + qgetenv("PATH"));
    QVERIFY(QDir().mkpath(m_profile.dataHome() + QStringLiteral("/applications")));
    const auto entry = [this](const QString &id, const QByteArray &keys) {
        QFile file(m_profile.dataHome() + QStringLiteral("/applications/") + id);
        return file.open(QIODevice::WriteOnly) &&
               file.write("[Desktop Entry]\nType=Application\n" + keys) > 0;
    };
    QVERIFY(entry("cmp.desktop", "Name=Compare GUI\nExec=cmp-gui %F\nKeywords=merge;Diff;\n"));
    QVERIFY(entry("editor.desktop", "Name=Editor\nExec=editor %F\nKeywords=text;different;\n"));
    QVERIFY(entry("term.desktop", "Name=Term Diff\nExec=termdiff\nTerminal=true\n"
                                  "GenericName=Diff Viewer\n"));
    QVERIFY(entry("boxed.desktop", "Name=Boxed\nExec=env cmp-gui\nCategories=Comparison;\n"));
    m_owner.show();
}

void tst_DiffProgram::loadKeepsOnlyAProgram_data() {
    QTest::addColumn<QString>("saved"); // below the tree when it has a "/"
    QTest::addColumn<bool>("kept");
    QTest::addColumn<QString>("problem"); // "%1" is the saved text
    QTest::newRow("missing") << "bin/nothing" << false << "“%1” does not exist.";
    QTest::newRow("folder") << "bin/folder" << false << "“%1” is a folder, not a program.";
    QTest::newRow("not executable") << "bin/plain" << false << "“%1” is not marked as executable.";
    QTest::newRow("link to a program") << "bin/link" << true << "";
    QTest::newRow("a name on PATH") << "meld" << true << "";
    QTest::newRow("a name not on PATH")
        << "nodiff" << false << "No program named “%1” is on the PATH.";
}

void tst_DiffProgram::loadKeepsOnlyAProgram() {
    QFETCH(QString, saved);
    QFETCH(bool, kept);
    QFETCH(QString, problem);
    const QString text = saved.contains(QLatin1Char('/')) ? m_tree->path(saved) : saved;
    QVERIFY(Options::setDiffEXE(text));
    QAction mnuToolsDiff;
    mnuToolsDiff.setData(QStringLiteral("stale"));
    LoadDiffProgram(&mnuToolsDiff);
    QCOMPARE(mnuToolsDiff.data().toString(), kept ? text : QString());
    QCOMPARE(DiffProgramProblem(text), problem.isEmpty() ? problem : problem.arg(text));
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
    const QString record = tree.path(QStringLiteral("record"));
    QVERIFY(writeScript(tree, QStringLiteral("my tools/record args"),
                        "for a in \"$@\"; do printf '%s\\0' \"$a\"; done > \"" +
                            QFile::encodeName(record) + ".part\"\nmv \"" +
                            QFile::encodeName(record) + ".part\" \"" + QFile::encodeName(record) +
                            "\"\n"));
    // Blanks in every part: the program, both roots, the folders and the name.
    if (paired)
        QVERIFY(tree.writeNative("left side/sub dir/" + name, "left"));
    else
        QVERIFY(tree.mkdir(QStringLiteral("left side")));
    QVERIFY(tree.writeNative("Right Side/sub dir/" + name, "right"));
    ComparisonFileCollection source;
    ComparisonFileCollection destination;
    source.setRootFolder(tree.path(QStringLiteral("left side")));
    destination.setRootFolder(tree.path(QStringLiteral("Right Side")));
    ComparisonFileCollection &own = side == 0 ? source : destination;
    QCOMPARE(own.Count(), 1);

    ListView listing;
    AddToListview(*own.begin(), &listing, nullptr);
    listing.setSelectedRows({true});

    ExamineDifferences(&m_owner, tree.path(QStringLiteral("my tools/record args")), &listing, side,
                       source, destination);
    QTRY_VERIFY(QFile::exists(record));
    QCOMPARE(recordedArguments(record),
             (QList<QByteArray>{tree.nativePath("left side/sub dir/" + name),
                                tree.nativePath("Right Side/sub dir/" + name)}));
    ::unlink(tree.nativePath("Right Side/sub dir/" + name).constData());
    ::unlink(tree.nativePath("left side/sub dir/" + name).constData());
}

void tst_DiffProgram::startFailureIsReported_data() {
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("error"); // what it starts with; "%1" the program
    QTest::newRow("missing") << m_tree->path("bin/nothing") << "“%1” does not exist.";
    QTest::newRow("not on PATH") << "nodiff"
                                 << "No program named “%1” is on the PATH.";
    QTest::newRow("its interpreter is missing")
        << m_tree->path("bin/no interpreter") << "“%1” exists, but what it needs to run is missing";
}

void tst_DiffProgram::startFailureIsReported() {
    QFETCH(QString, program);
    QFETCH(QString, error);
    QString reason;
    QVERIFY(!LaunchDiffProgram(program, {"/a", "/b"}, &reason));
    QVERIFY2(reason.startsWith(error.arg(program)), qPrintable(reason));
}

void tst_DiffProgram::dialogOffersTheDiffProgramsFound() {
    QAction mnuToolsDiff;
    QStringList offered;
    QString problem;
    ModalWatcher watcher([&](QWidget *modal) {
        auto *form = qobject_cast<frmSelectDiff *>(modal);
        if (!form)
            return false;
        form->txtDiff->setText(QStringLiteral("nodiff"));
        problem = form->lblProblem->text();
        for (int i = 0; i < form->lstFound->count(); ++i)
            offered << form->lstFound->item(i)->text();
        form->lstFound->setCurrentRow(offered.size() - 1); // a pick replaces the typed text
        form->cmdOK->click();
        return true;
    });
    SelectDiffProgram(&m_owner, &mnuToolsDiff);
    // Announced by a desktop entry, under its own name, or well known; never a terminal's, a
    // launcher's or one whose words only resemble comparing.
    const QString path = m_tree->path(QStringLiteral("path"));
    QCOMPARE(offered, (QStringList{QStringLiteral("Compare GUI (%1/cmp-gui)").arg(path),
                                   QStringLiteral("Meld (%1/meld)").arg(path)}));
    QCOMPARE(problem, QStringLiteral("No program named “nodiff” is on the PATH."));
    QCOMPARE(Options::diffEXE(), path + QStringLiteral("/meld"));
    QCOMPARE(mnuToolsDiff.data().toString(), path + QStringLiteral("/meld"));
}

void tst_DiffProgram::dialogShowsTheProgramInUseAndStoresAsTyped() {
    const QString program = m_tree->path(QStringLiteral("bin/diff tool"));
    QVERIFY(Options::setDiffEXE(QStringLiteral("/saved/but/gone")));
    QAction mnuToolsDiff;
    mnuToolsDiff.setData(program);

    struct Step {
        QString typed;
        bool ok;
    };
    const QList<Step> steps = {{QStringLiteral("/typed/nowhere"), false},
                               {QStringLiteral("/typed/nowhere"), true},
                               {program, true}};
    QStringList shown;
    for (const Step &step : steps) {
        ModalWatcher watcher([&](QWidget *modal) {
            auto *form = qobject_cast<frmSelectDiff *>(modal);
            if (!form)
                return false;
            shown.append(form->txtDiff->text());
            form->txtDiff->setText(step.typed);
            (step.ok ? form->cmdOK : form->cmdCancel)->click();
            return true;
        });
        SelectDiffProgram(&m_owner, &mnuToolsDiff);
        if (!step.ok) {
            QCOMPARE(Options::diffEXE(), QStringLiteral("/saved/but/gone"));
            QCOMPARE(mnuToolsDiff.data().toString(), program);
        }
    }
    // Saved as typed, but a name that is no program leaves the command without one; the
    // dialog then opens empty.
    QCOMPARE(shown, (QStringList{program, program, QString()}));
    QCOMPARE(Options::diffEXE(), program);
    QCOMPARE(mnuToolsDiff.data().toString(), program);
}

void tst_DiffProgram::dropTakesAnExistingFileOnly_data() {
    QTest::addColumn<QString>("dropped");
    QTest::addColumn<bool>("taken");
    QTest::newRow("any existing file") << QStringLiteral("bin/plain") << true;
    QTest::newRow("folder") << QStringLiteral("bin/folder") << false;
    QTest::newRow("missing") << QStringLiteral("bin/nothing") << false;
}

void tst_DiffProgram::dropTakesAnExistingFileOnly() {
    QFETCH(QString, dropped);
    QFETCH(bool, taken);
    frmSelectDiff form;
    form.txtDiff->setText(QStringLiteral("before"));
    for (QWidget *target : {static_cast<QWidget *>(form.txtDiff), static_cast<QWidget *>(&form)}) {
        QCOMPARE(dragAndDrop(target, m_tree->path(dropped)), taken);
        QCOMPARE(form.txtDiff->text(), taken ? m_tree->path(dropped) : QStringLiteral("before"));
    }
}

QTEST_MAIN(tst_DiffProgram)
#include "tst_DiffProgram.moc"
