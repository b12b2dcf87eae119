#include "cli/PairscopeCli.h"

#include "reports/OutputStream.h"
#include "reports/ReportWriter.h"

#include "cli/CliOptions.h"
#include "cli/CompareRun.h"
#include "cli/ProgressLine.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void reportProblem(std::FILE *err, const RunProblem &problem) {
    const QByteArray line = "pairscope-cli: " + problem.line() + '\n';
    std::fwrite(line.constData(), 1, std::size_t(line.size()), err);
}

QString systemError(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

/** Checks that \a root names a folder (a link to one counts), and says why not. */
bool isFolder(const QByteArray &root, std::FILE *err) {
    struct stat status;
    if (::stat(root.constData(), &status) != 0) {
        reportProblem(err, {root, systemError(errno)});
        return false;
    }
    if (!S_ISDIR(status.st_mode)) {
        reportProblem(err, {root, QStringLiteral("not a folder")});
        return false;
    }
    return true;
}

bool showsProgress(const CliOptions &options, std::FILE *err) {
    switch (options.progress) {
    case ProgressMode::Always:
        return true;
    case ProgressMode::Never:
        return false;
    case ProgressMode::Auto:
        break;
    }
    return !options.quiet && ::isatty(::fileno(err));
}

} // namespace

int PairscopeCli::run(const QList<QByteArray> &arguments, std::FILE *out, std::FILE *err) {
    QString error;
    const CliOptions options = CliOptions::parse(arguments, &error);
    if (!error.isEmpty()) {
        reportProblem(err, {QByteArray(), error + QLatin1String(" (see pairscope-cli --help)")});
        return Trouble;
    }
    if (options.showHelp || options.showVersion) {
        OutputStream stream(out);
        if (options.showHelp)
            stream << CliOptions::usage();
        else
            stream << "pairscope-cli " PAIRSCOPE_VERSION "\n";
        return stream.flush() ? NoDifferences : Trouble;
    }

    // Both roots are checked before anything is walked, so that both mistakes show at once.
    const bool sourceOk = isFolder(options.source, err);
    const bool destinationOk = isFolder(options.destination, err);
    if (!sourceOk || !destinationOk)
        return Trouble;

    std::optional<ProgressLine> progress;
    if (showsProgress(options, err))
        progress.emplace(err);
    CompareRun run(options);
    run.setProgressLine(progress ? &*progress : nullptr);
    run.run();
    if (progress)
        progress->clear();

    bool written = true;
    if (!options.quiet) {
        OutputStream stream(out);
        writeReport(options.format, run.report(), stream);
        written = stream.flush();
        if (!written)
            reportProblem(err, {QByteArray("standard output"), systemError(stream.error())});
    }
    for (const RunProblem &problem : run.problems())
        reportProblem(err, problem);

    if (!written || !run.problems().isEmpty())
        return Trouble;
    const auto &counts = run.counts();
    const bool differs = std::any_of(counts.begin() + DifferenceCode::SourceMissing, counts.end(),
                                     [](qint64 count) { return count > 0; });
    return differs ? Differences : NoDifferences;
}
