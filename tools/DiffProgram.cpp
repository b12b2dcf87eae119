#include "tools/DiffProgram.h"

#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "tools/DiffProgramFinder.h"
#include "tools/frmSelectDiff.h"
#include "views/ListView.h"

#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QStandardPaths>

#include <gio/gio.h>

namespace {

QByteArray belowRoot(const ComparisonFile &file, const ComparisonFileCollection &other) {
    QByteArray root = other.RootFolderNative();
    if (!root.endsWith('/'))
        root += '/';
    return root + file.RelativeNativePath();
}

} // namespace

QString ResolveDiffProgram(const QString &program) {
    if (program.isEmpty())
        return {};
    if (!program.contains(QLatin1Char('/')))
        return QStandardPaths::findExecutable(program);
    const QFileInfo info(program);
    return info.isFile() && info.isExecutable() ? program : QString();
}

bool IsDiffProgram(const QString &program) {
    return !ResolveDiffProgram(program).isEmpty();
}

QString DiffProgramProblem(const QString &program) {
    if (program.isEmpty())
        return QStringLiteral("No diff program is chosen.");
    if (IsDiffProgram(program))
        return {};
    if (!program.contains(QLatin1Char('/')))
        return QStringLiteral("No program named “%1” is on the PATH.").arg(program);
    const QFileInfo info(program);
    if (!info.exists())
        return QStringLiteral("“%1” does not exist.").arg(program);
    if (info.isDir())
        return QStringLiteral("“%1” is a folder, not a program.").arg(program);
    return QStringLiteral("“%1” is not marked as executable.").arg(program);
}

QString LoadDiffProgram() {
    const QString path = Options::diffEXE();
    return IsDiffProgram(path) ? path : QString();
}

QString SelectDiffProgram(QWidget *owner, const QString &program) {
    frmSelectDiff form(owner);
    form.ShowFound(FindDiffPrograms());
    // The dialog shows the program in use, not the saved text: a saved name that no longer
    // exists opens as an empty box.
    form.txtDiff->setText(program);
    if (!form.ShowOver(owner))
        return program;
    Options::setDiffEXE(form.txtDiff->text());
    return LoadDiffProgram();
}

DiffPair DiffPaths(const ComparisonFile &file, int side, const ComparisonFileCollection &source,
                   const ComparisonFileCollection &destination) {
    const ComparisonFileCollection &other = side == 0 ? destination : source;
    QByteArray otherPath;
    if (const ComparisonFilePtr counterpart =
            other.Counterpart(file, side == 0 ? source : destination))
        otherPath = counterpart->NativePath();
    else
        otherPath = belowRoot(file, other);
    if (side == 0)
        return {file.NativePath(), otherPath};
    return {otherPath, file.NativePath()};
}

bool LaunchDiffProgram(const QString &program, const DiffPair &pair, QString *error) {
    const QString resolved = ResolveDiffProgram(program);
    if (resolved.isEmpty()) {
        if (error)
            *error = DiffProgramProblem(program);
        return false;
    }
    const QByteArray executable = QFile::encodeName(resolved);
    char *argv[] = {const_cast<char *>(executable.constData()),
                    const_cast<char *>(pair.source.constData()),
                    const_cast<char *>(pair.destination.constData()), nullptr};
    // No child pid asked for: GLib starts the program through an intermediate child and
    // reaps it, so the program runs on by itself. An exec failure comes back as an error.
    GError *gerror = nullptr;
    const bool started =
        g_spawn_async(nullptr, argv, nullptr, G_SPAWN_DEFAULT, nullptr, nullptr, nullptr, &gerror);
    if (!started && error) {
        // The file is there, so "not found" means what it needs to run is missing.
        *error = gerror && g_error_matches(gerror, G_SPAWN_ERROR, G_SPAWN_ERROR_NOENT)
                     ? QStringLiteral("“%1” exists, but what it needs to run is missing (for a "
                                      "script, the interpreter its first line names).")
                           .arg(resolved)
                     : QString::fromUtf8(gerror ? gerror->message : "");
    }
    if (gerror)
        g_error_free(gerror);
    return started;
}

void ExamineDifferences(QWidget *owner, const QString &program, const ListView *listing, int side,
                        const ComparisonFileCollection &source,
                        const ComparisonFileCollection &destination) {
    if (program.isEmpty() || !listing || (side != 0 && side != 1))
        return;
    const ComparisonFilePtr file = listing->selectedRecord();
    if (!file)
        return;
    QString error;
    if (!LaunchDiffProgram(program, DiffPaths(*file, side, source, destination), &error))
        QMessageBox::warning(
            owner, QStringLiteral("Pairscope"),
            QStringLiteral("The diff program could not be started:\n%1").arg(error));
}
