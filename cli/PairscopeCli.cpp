#include "cli/PairscopeCli.h"

#include "reports/OutputStream.h"
#include "reports/ReportWriter.h"

#include "cli/CliOptions.h"
#include "cli/CompareRun.h"
#include "cli/ProgressLine.h"
#include "engine/ManifestWriter.h"
#include "engine/RecordedTree.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
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

/** \a root as a problem names it. */
QByteArray shownRoot(const QByteArray &root) {
    return root == "-" ? QByteArrayLiteral("standard input") : root;
}

/**
 * Checks \a root, a folder or a manifest ("-" for standard input), and reads a manifest into
 * \a recorded; says why not.
 */
bool openRoot(const QByteArray &root, std::shared_ptr<const RecordedTree> &recorded,
              std::FILE *err) {
    const bool standardInput = root == "-";
    struct stat status;
    if (!standardInput) {
        if (::stat(root.constData(), &status) != 0) {
            reportProblem(err, {root, systemError(errno)});
            return false;
        }
        if (S_ISDIR(status.st_mode))
            return true;
    }
    std::FILE *in = standardInput ? stdin : std::fopen(root.constData(), "rbe");
    if (!in) {
        reportProblem(err, {root, systemError(errno)});
        return false;
    }
    QString error;
    bool foreign = false;
    recorded = RecordedTree::read(in, &error, &foreign);
    if (!standardInput)
        std::fclose(in);
    if (!recorded) {
        // A file given by mistake for a folder is told as such, not as a broken manifest.
        if (foreign && !standardInput)
            error = QStringLiteral("not a folder");
        reportProblem(err, {shownRoot(root), error});
        return false;
    }
    return true;
}

/**
 * Checks that the manifest \a recorded of \a root (none for a folder) holds what the
 * comparison needs, and says what it lacks.
 */
bool holdsWhatIsCompared(const CliOptions &options, const QByteArray &root,
                         const RecordedTree *recorded, std::FILE *err) {
    if (!recorded)
        return true;
    QString lack;
    if ((options.comparisons & ComparisonBits::Checksums) && !recorded->header().checksums)
        lack = QStringLiteral("the manifest holds no checksums to compare (it was written "
                              "without --crc)");
    else if ((options.comparisons & ComparisonBits::Created) && recorded->lacksCreatedDates())
        lack = QStringLiteral("the manifest holds no created date for some files (their file "
                              "system keeps none); leave created out of --compare");
    else if (options.filter.gitignore && !recorded->header().gitignore)
        lack = QStringLiteral("the manifest was written without --gitignore, so its .gitignore "
                              "files cannot apply");
    if (lack.isEmpty())
        return true;
    reportProblem(err, {shownRoot(root), lack});
    return false;
}

/** `--manifest`: the manifest of options.source on \a out. */
int writeManifest(const CliOptions &options, std::FILE *out, std::FILE *err) {
    if (!isFolder(options.source, err))
        return PairscopeCli::Trouble;
    ManifestWriter::Options writing;
    writing.checksums = options.manifestChecksums;
    writing.caseRule = options.caseRule;
    writing.chunkSize = options.chunkSize;
    if (options.filter.isActive())
        writing.filter = std::make_shared<const TreeFilter>(options.filter);
    OutputStream stream(out);
    bool troubled = false;
    ManifestWriter writer(writing);
    writer.write(
        options.source,
        [&stream](const QByteArray &line) {
            stream << line << '\n';
            return stream.error() == 0;
        },
        [&](const QByteArray &path, const QString &reason) {
            troubled = true;
            reportProblem(err, {path, reason});
        });
    if (!stream.flush()) {
        reportProblem(err, {QByteArray("standard output"), systemError(stream.error())});
        return PairscopeCli::Trouble;
    }
    return troubled ? PairscopeCli::Trouble : PairscopeCli::NoDifferences;
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

int PairscopeCli::run(const QList<QByteArray> &arguments, std::FILE *out, std::FILE *err,
                      Ending ending) {
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

    if (options.writeManifest)
        return writeManifest(options, out, err);

    // Both roots are checked, and manifests read, before anything is walked, so that both
    // sides' mistakes show at once.
    std::array<std::shared_ptr<const RecordedTree>, 2> recorded;
    const bool sourceOk = openRoot(options.source, recorded[0], err) &&
                          holdsWhatIsCompared(options, options.source, recorded[0].get(), err);
    const bool destinationOk =
        openRoot(options.destination, recorded[1], err) &&
        holdsWhatIsCompared(options, options.destination, recorded[1].get(), err);
    if (!sourceOk || !destinationOk)
        return Trouble;

    std::optional<ProgressLine> progress;
    if (showsProgress(options, err))
        progress.emplace(err);
    CompareRun run(options);
    run.setRecordedTree(0, std::move(recorded[0]));
    run.setRecordedTree(1, std::move(recorded[1]));
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

    const auto &counts = run.counts();
    const bool differs = std::any_of(counts.begin() + DifferenceCode::SourceMissing, counts.end(),
                                     [](qint64 count) { return count > 0; });
    int status = differs ? Differences : NoDifferences;
    if (!written || !run.problems().isEmpty())
        status = Trouble;
    if (ending == Ending::ExitProcess) {
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}
