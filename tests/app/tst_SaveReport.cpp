#include "ComparedWindow.h"

#include "engine/ComparisonFileCollection.h"
#include "support/CliResult.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"

#include <QAction>
#include <QFileDialog>
#include <QTimer>

#include <unistd.h>

namespace {

/** A pair of every kind, names that HTML, JSON and TSV escape, and one not UTF-8. */
class ReportTrees {
public:
    ReportTrees() {
        const struct {
            const char *path;
            QByteArray content;
            int age; // seconds after a fixed time
        } files[] = {
            {"src/same.txt", "same", 0},         {"dst/same.txt", "same", 0},
            {"src/a<b>&c.txt", "1234", 0},       {"dst/a<b>&c.txt", "12345", 0},
            {"src/sub/\"newer\".txt", "n", 100}, {"dst/sub/\"newer\".txt", "n", 0},
            {"src/only-source.txt", "s", 0},     {"dst/only-destination\t.txt", "d", 0},
            {"src/content.txt", "AAAA", 0},      {"dst/content.txt", "AAAB", 0},
        };
        for (const auto &file : files) {
            m_tree.write(QLatin1String(file.path), file.content);
            m_tree.setTimes(QLatin1String(file.path), 1700000000 + file.age);
        }
        m_tree.writeNative(notUtf8, "x");
    }
    ~ReportTrees() // the temporary folder cannot remove it itself
    {
        ::unlink(m_tree.nativePath(notUtf8).constData());
    }

    QString source() const { return m_tree.path(QStringLiteral("src")); }
    QString destination() const { return m_tree.path(QStringLiteral("dst")); }
    QString folder() const { return m_tree.root(); }

private:
    static constexpr const char *notUtf8 = "dst/caf\xe9.txt";
    TestTree m_tree;
};

/** Answers the save dialog: the type for \a extension chosen by arrow keys, \a fileName typed. */
ModalWatcher::Handler saveAs(const QString &extension, const QString &fileName) {
    return [=](QWidget *shown) {
        auto *dialog = qobject_cast<QFileDialog *>(shown);
        auto *types =
            dialog ? dialog->findChild<QComboBox *>(QStringLiteral("fileTypeCombo")) : nullptr;
        if (!types)
            return false;
        for (int i = 0; i < types->count(); ++i) {
            if (types->currentText().contains(QLatin1String("*.") + extension))
                break;
            QTest::keyClick(types, Qt::Key_Down);
        }
        dialog->selectFile(fileName);
        static_cast<QDialog *>(dialog)->accept(); // as the Save button does
        return true;
    };
}

} // namespace

/** File > Save Report: what the window compared, as pairscope-cli writes it, when it may. */
class tst_SaveReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_profile.clear(); }
    void savesWhatTheCommandLineWrites_data() {
        QTest::addColumn<int>("comparisons");
        QTest::addColumn<bool>("allFiles");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QStringList>("options");
        QTest::newRow("json, sizes, dates and checksums")
            << 35 << false << "json" << QStringList{"-c", "size,modified,crc", "--format=json"};
        QTest::newRow("html, every pair listed")
            << 3 << true << "html" << QStringList{"--all", "--format=html"};
        QTest::newRow("tsv, existence")
            << 0 << false << "tsv" << QStringList{"-c", "existence", "--format=tsv"};
        QTest::newRow("text, attributes")
            << 16 << false << "txt" << QStringList{"-c", "attributes", "--format=text"};
    }
    void savesWhatTheCommandLineWrites() {
        QFETCH(int, comparisons);
        QFETCH(bool, allFiles);
        QFETCH(QString, extension);
        QFETCH(QStringList, options);
        QVERIFY(m_profile.edit("[SelectionsMRU]\nItem1=" + QByteArray::number(comparisons) +
                               "\nLast=0\n"));
        const ReportTrees trees;
        ComparedWindow w(trees.source(), trees.destination());
        w.compare();
        QCOMPARE(w.status(), QStringLiteral("  Compare complete."));
        if (allFiles) // the View decides after the compare which pairs are reported
            w.item("Show A&ll Files")->trigger();
        // Typed without an extension: the chosen file type adds its own.
        const ModalWatcher watcher(saveAs(extension, trees.folder() + QStringLiteral("/report")));
        w.item("Save Re&port...")->trigger();
        QVERIFY2(watcher.texts().isEmpty(), qPrintable(watcher.texts().join(QLatin1Char('\n'))));
        QFile saved(trees.folder() + QStringLiteral("/report.") + extension);
        QVERIFY2(saved.open(QIODevice::ReadOnly), qPrintable(saved.fileName()));
        const QByteArray expected =
            CliResult::run(options + QStringList{trees.source(), trees.destination()}).out;
        QVERIFY(!expected.isEmpty());
        QCOMPARE(saved.readAll(), expected);
    }
    void enabledOnlyAfterAFinishedCompare() {
        const ReportTrees trees;
        ComparedWindow w(trees.source(), trees.destination());
        const QAction *item = w.item("Save Re&port...");
        QVERIFY(!item->isEnabled());
        // Hooks each run's new source collection, to look at the item inside the walk, and to
        // cancel the second run there.
        bool cancel = false;
        QList<bool> enabledDuringWalk;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            const ComparisonFileCollection *source = w.window.Files(0);
            if (!source || source->Count() != 0)
                return;
            poll.stop();
            connect(source, &ComparisonFileCollection::FileAdded, this, [&](int count) {
                if (count == 1)
                    enabledDuringWalk.append(item->isEnabled());
                if (count == 1 && cancel)
                    w.find<QPushButton>("cmdCompare")->click();
            });
        });
        poll.start(0);
        w.compare();
        QCOMPARE(w.status(), QStringLiteral("  Compare complete."));
        QVERIFY(item->isEnabled());
        cancel = true;
        poll.start(0);
        w.compare();
        QTRY_COMPARE(w.status(), QStringLiteral("  Compare cancelled."));
        QCOMPARE(enabledDuringWalk, QList<bool>({false, false}));
        QVERIFY(!item->isEnabled());
    }
    void failureToWriteIsShown() {
        const ReportTrees trees;
        ComparedWindow w(trees.source(), trees.destination());
        w.compare();
        const QString target = QStringLiteral("/proc/self/report.json");
        const ModalWatcher watcher(saveAs(QStringLiteral("json"), target));
        w.item("Save Re&port...")->trigger();
        QCOMPARE(watcher.titles(), QStringList{QStringLiteral("Pairscope")});
        const QString said = watcher.texts().constFirst();
        const QString prefix =
            QStringLiteral("The report could not be saved to ") + target + ".\n\n";
        QVERIFY2(said.startsWith(prefix) && said.size() > prefix.size(), qPrintable(said));
    }

private:
    TestProfile m_profile;
};

QTEST_MAIN(tst_SaveReport)
#include "tst_SaveReport.moc"
