#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/DiffProgram.h"
#include "tools/frmSelectDiff.h"
#include "views/AddToListview.h"
#include "views/ListView.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QUrl>

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
    void startFailureIsReported();
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
    m_owner.show();
}

void tst_DiffProgram::loadKeepsOnlyAProgram_data() {
    QTest::addColumn<QString>("saved");
    QTest::addColumn<bool>("kept");
    QTest::newRow("missing") << QStringLiteral("bin/nothing") << false;
    QTest::newRow("folder") << QStringLiteral("bin/folder") << false;
    QTest::newRow("not executable") << QStringLiteral("bin/plain") << false;
    QTest::newRow("link to a program") << QStringLiteral("bin/link") << true;
}

void tst_DiffProgram::loadKeepsOnlyAProgram() {
    QFETCH(QString, saved);
    QFETCH(bool, kept);
    const QString path = saved.isEmpty() ? QString() : m_tree->path(saved);
    QVERIFY(Options::setDiffEXE(path));
    QAction mnuToolsDiff;
    mnuToolsDiff.setData(QStringLiteral("stale"));
    LoadDiffProgram(&mnuToolsDiff);
    QCOMPARE(mnuToolsDiff.data().toString(), kept ? path : QString());
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

void tst_DiffProgram::startFailureIsReported() {
    QString error;
    QVERIFY(!LaunchDiffProgram(m_tree->path(QStringLiteral("bin/nothing")), {"/a", "/b"}, &error));
    QVERIFY(!error.isEmpty());
    QVERIFY(!LaunchDiffProgram(m_tree->path(QStringLiteral("bin/plain")), {"/a", "/b"}, &error));
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
    QStringList notes;
    for (const Step &step : steps) {
        ModalWatcher watcher([&](QWidget *modal) {
            auto *form = qobject_cast<frmSelectDiff *>(modal);
            if (!form)
                return false;
            shown.append(form->txtDiff->text());
            notes.append(form->lblNote->text());
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
    QCOMPARE(notes.first(), QStringLiteral("folder pairscope sends file information via the "
                                           "command line, source file first."));
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
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(m_tree->path(dropped))});
    for (QWidget *target : {static_cast<QWidget *>(form.txtDiff), static_cast<QWidget *>(&form)}) {
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QCOMPARE(enter.isAccepted(), taken);
        QCOMPARE(enter.dropAction(), taken ? Qt::CopyAction : Qt::IgnoreAction);
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                        Qt::NoModifier);
        QApplication::sendEvent(target, &drop);
        QCOMPARE(form.txtDiff->text(), taken ? m_tree->path(dropped) : QStringLiteral("before"));
    }
}

QTEST_MAIN(tst_DiffProgram)
#include "tst_DiffProgram.moc"
