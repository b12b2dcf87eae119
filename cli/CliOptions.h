#pragma once

#include "reports/ReportWriter.h"

#include "engine/CaseRule.h"
#include "engine/ComparisonSet.h"
#include "engine/TreeFilter.h"

#include <QByteArray>
#include <QList>
#include <QString>

/** How the report is written to standard output. */
using OutputFormat = ReportFormat;

/** Whether the progress line is drawn on standard error. */
enum class ProgressMode {
    Auto,   ///< only while standard error is a terminal
    Always, ///< `--progress`
    Never,  ///< `--no-progress`
};

/** Everything the command line of pairscope-cli asks for, with the defaults of a bare run. */
struct CliOptions {
    /**
     * The two roots exactly as given: native bytes, not necessarily UTF-8. Either may name a
     * manifest instead of a folder, or be "-" for a manifest on standard input.
     */
    QByteArray source;
    QByteArray destination;
    int comparisons = ComparisonBits::Sizes | ComparisonBits::Modified;
    bool doCRCLast = true;
    bool includeSlack = true;
    /** `--time-shift`: date differences of exactly these minutes count as equal. */
    QList<int> timeShifts;
    /** `--exclude`, `--include`, `--exclude-from` in their order, and `--gitignore`. */
    TreeFilter filter;
    bool listAll = false;
    CaseRule caseRule = CaseRule::Automatic;
    bool normalizeNames = true;
    int chunkSize = 65536;
    OutputFormat format = OutputFormat::Text;
    bool quiet = false;
    ProgressMode progress = ProgressMode::Auto;
    /** `--manifest`: write the manifest of the one root (source) instead of comparing. */
    bool writeManifest = false;
    /** `--crc` with `--manifest`: the manifest holds every file's checksum. */
    bool manifestChecksums = false;
    /** The first option given that only a compare uses, as written: refused with --manifest. */
    QByteArray compareOption;
    bool showHelp = false;
    bool showVersion = false;

    /** Smallest and largest checksum chunk; a value outside is refused. */
    static constexpr int MinChunkSize = 1024;
    static constexpr int MaxChunkSize = 16 * 1024 * 1024;
    /** The largest time shift: a week, in minutes. */
    static constexpr int MaxTimeShift = 7 * 24 * 60;

    /**
     * Parses the arguments that follow the program name. On failure returns the defaults and
     * sets \a error to a one-line reason; on success \a error is left empty.
     */
    static CliOptions parse(const QList<QByteArray> &arguments, QString *error);

    /** The text of `--help`. */
    static QString usage();
};
