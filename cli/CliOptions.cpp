#include "cli/CliOptions.h"

#include "reports/NameEscaping.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <optional>

namespace {

struct ComparisonName {
    const char *name;
    int bits;
};

constexpr ComparisonName comparisonNames[] = {
    {"existence", 0},
    {"size", ComparisonBits::Sizes},
    {"modified", ComparisonBits::Modified},
    {"created", ComparisonBits::Created},
    {"accessed", ComparisonBits::Accessed},
    {"attributes", ComparisonBits::Attributes},
    {"crc", ComparisonBits::Checksums},
};

QString quoted(const QByteArray &text) {
    // Escaped as names are in a report, so that the message stays one line of the bytes given.
    return QLatin1Char('\'') + NameEscaping::readable(text) + QLatin1Char('\'');
}

std::optional<int> parseComparisons(const QByteArray &list, QString *error) {
    int bits = 0;
    bool existence = false;
    qsizetype items = 0;
    for (const QByteArray &item : list.split(',')) {
        ++items;
        const QByteArray name = item.trimmed().toLower();
        const auto found =
            std::find_if(std::begin(comparisonNames), std::end(comparisonNames),
                         [&name](const ComparisonName &entry) { return name == entry.name; });
        if (found == std::end(comparisonNames)) {
            *error = QStringLiteral("unknown comparison %1 in --compare; choose from size, "
                                    "modified, created, accessed, attributes, crc, existence")
                         .arg(quoted(item.trimmed()));
            return std::nullopt;
        }
        existence = existence || found->bits == 0;
        bits |= found->bits;
    }
    // "existence" means nothing else is compared: beside another comparison it contradicts it.
    if (existence && items > 1) {
        *error = QStringLiteral("existence cannot be combined with other comparisons in "
                                "--compare; give it alone");
        return std::nullopt;
    }
    return bits;
}

std::optional<int> parseChunkSize(const QByteArray &text, QString *error) {
    bool ok = false;
    const qlonglong value = text.trimmed().toLongLong(&ok);
    if (!ok || value < 0) {
        *error = QStringLiteral("invalid --chunk-size %1; give a whole number of bytes")
                     .arg(quoted(text));
        return std::nullopt;
    }
    // A value out of range is refused, not quietly changed: the run would not read as asked.
    if (value < CliOptions::MinChunkSize || value > CliOptions::MaxChunkSize) {
        *error = QStringLiteral("--chunk-size %1 is out of range; give %2 to %3 bytes")
                     .arg(quoted(text))
                     .arg(CliOptions::MinChunkSize)
                     .arg(CliOptions::MaxChunkSize);
        return std::nullopt;
    }
    return int(value);
}

std::optional<int> parseTimeShift(const QByteArray &text, QString *error) {
    bool ok = false;
    const int minutes = text.trimmed().toInt(&ok);
    if (!ok || minutes < 1 || minutes > CliOptions::MaxTimeShift) {
        *error = QStringLiteral("invalid --time-shift %1; give a whole number of minutes, 1 to %2")
                     .arg(quoted(text))
                     .arg(CliOptions::MaxTimeShift);
        return std::nullopt;
    }
    return minutes;
}

std::optional<OutputFormat> parseFormat(const QByteArray &text, QString *error) {
    if (text == "text")
        return OutputFormat::Text;
    if (text == "tsv")
        return OutputFormat::Tsv;
    if (text == "json")
        return OutputFormat::Json;
    if (text == "html")
        return OutputFormat::Html;
    *error =
        QStringLiteral("unknown --format %1; choose text, tsv, json or html").arg(quoted(text));
    return std::nullopt;
}

std::optional<CaseRule> parseCaseRule(const QByteArray &text, QString *error) {
    const std::optional<CaseRule> rule = caseRuleFromWord(QString::fromLatin1(text));
    if (!rule)
        *error = QStringLiteral("unknown --case %1; choose auto, sensitive or insensitive")
                     .arg(quoted(text));
    return rule;
}

/** Walks the argument list, handing out option values that may be attached or separate. */
class ArgumentReader {
public:
    explicit ArgumentReader(const QList<QByteArray> &arguments)
        : m_arguments(arguments) {}

    bool atEnd() const { return m_next >= m_arguments.size(); }
    QByteArray take() { return m_arguments.at(m_next++); }

    /** The value of \a option: \a attached when there is one, else the next argument. */
    std::optional<QByteArray> value(const QByteArray &option,
                                    const std::optional<QByteArray> &attached, QString *error) {
        if (attached)
            return attached;
        if (atEnd()) {
            *error = QStringLiteral("option %1 needs a value").arg(quoted(option));
            return std::nullopt;
        }
        return take();
    }

private:
    const QList<QByteArray> &m_arguments;
    qsizetype m_next = 0;
};

/** Applies the option \a name (long form without dashes, or a single letter). */
bool applyOption(CliOptions &options, const QByteArray &shown, const QByteArray &name,
                 const std::optional<QByteArray> &attached, ArgumentReader &reader,
                 QString *error) {
    static const QByteArrayList compareOnly = {"c",          "compare",   "format",
                                               "time-shift", "crc-first", "no-slack",
                                               "a",          "all",       "no-normalize"};
    if (options.compareOption.isEmpty() && compareOnly.contains(name))
        options.compareOption = shown;
    const auto flag = [&](bool &target, bool value) {
        if (attached) {
            *error = QStringLiteral("option %1 takes no value").arg(quoted(shown));
            return false;
        }
        target = value;
        return true;
    };
    const auto progress = [&](ProgressMode mode) {
        bool unused = false;
        if (!flag(unused, true))
            return false;
        options.progress = mode;
        return true;
    };

    // An option with a value: read it (attached or the next argument), parse it, store it.
    const auto valued = [&](auto parseValue, auto &target) {
        const auto text = reader.value(shown, attached, error);
        const auto value = text ? parseValue(*text, error) : std::nullopt;
        if (value)
            target = *value;
        return value.has_value();
    };

    if (name == "c" || name == "compare")
        return valued(parseComparisons, options.comparisons);
    if (name == "chunk-size")
        return valued(parseChunkSize, options.chunkSize);
    if (name == "format")
        return valued(parseFormat, options.format);
    if (name == "case")
        return valued(parseCaseRule, options.caseRule);
    if (name == "no-normalize")
        return flag(options.normalizeNames, false);
    if (name == "time-shift") {
        std::optional<int> minutes;
        if (!valued(parseTimeShift, minutes))
            return false;
        options.timeShifts.append(*minutes);
        return true;
    }
    if (name == "exclude" || name == "include") {
        const auto pattern = reader.value(shown, attached, error);
        if (pattern)
            options.filter.rules.add(*pattern, name == "include");
        return pattern.has_value();
    }
    if (name == "exclude-from") {
        const auto path = reader.value(shown, attached, error);
        if (!path)
            return false;
        QFile file(QFile::decodeName(*path));
        if (!file.open(QIODevice::ReadOnly)) {
            *error = QStringLiteral("cannot read --exclude-from %1: %2")
                         .arg(quoted(*path), file.errorString());
            return false;
        }
        options.filter.rules.addLines(file.readAll());
        return true;
    }
    if (name == "manifest")
        return flag(options.writeManifest, true);
    if (name == "crc")
        return flag(options.manifestChecksums, true);
    if (name == "gitignore")
        return flag(options.filter.gitignore, true);
    if (name == "crc-first")
        return flag(options.doCRCLast, false);
    if (name == "no-slack")
        return flag(options.includeSlack, false);
    if (name == "a" || name == "all")
        return flag(options.listAll, true);
    if (name == "q" || name == "quiet")
        return flag(options.quiet, true);
    if (name == "progress")
        return progress(ProgressMode::Always);
    if (name == "no-progress")
        return progress(ProgressMode::Never);
    if (name == "h" || name == "help")
        return flag(options.showHelp, true);
    if (name == "version")
        return flag(options.showVersion, true);
    *error = QStringLiteral("unknown option %1").arg(quoted(shown));
    return false;
}

bool isShortWithValue(char letter) {
    return letter == 'c';
}

} // namespace

CliOptions CliOptions::parse(const QList<QByteArray> &arguments, QString *error) {
    error->clear();
    CliOptions options;
    QList<QByteArray> roots;
    ArgumentReader reader(arguments);
    bool optionsEnded = false;

    while (!reader.atEnd()) {
        const QByteArray argument = reader.take();
        if (optionsEnded || argument == "-" || !argument.startsWith('-')) {
            roots.append(argument);
        } else if (argument == "--") {
            optionsEnded = true;
        } else if (argument.startsWith("--")) {
            const qsizetype equals = argument.indexOf('=');
            const QByteArray shown = equals < 0 ? argument : argument.left(equals);
            std::optional<QByteArray> attached;
            if (equals >= 0)
                attached = argument.mid(equals + 1);
            if (!applyOption(options, shown, shown.mid(2), attached, reader, error))
                return {};
        } else {
            // Short options may be bundled ("-aq"); a letter that takes a value ends the bundle
            // and takes the rest of the argument ("-csize,crc") or the next one.
            for (qsizetype i = 1; i < argument.size(); ++i) {
                const char letter = argument.at(i);
                const QByteArray name(1, letter);
                // "-a=1": a flag given a value, as "--all=1" would be.
                if (i + 1 < argument.size() && argument.at(i + 1) == '=' &&
                    !isShortWithValue(letter)) {
                    *error = QStringLiteral("option %1 takes no value").arg(quoted('-' + name));
                    return {};
                }
                std::optional<QByteArray> attached;
                const bool takesValue = isShortWithValue(letter);
                if (takesValue && i + 1 < argument.size())
                    attached = argument.mid(i + 1);
                if (!applyOption(options, '-' + name, name, attached, reader, error))
                    return {};
                if (takesValue)
                    break;
            }
        }
    }

    if (options.showHelp || options.showVersion)
        return options;
    if (options.manifestChecksums && !options.writeManifest) {
        *error = QStringLiteral("--crc belongs with --manifest; to compare checksums give "
                                "-c crc");
        return {};
    }
    if (options.writeManifest) {
        if (roots.size() != 1 || roots.at(0).isEmpty() || roots.at(0) == "-") {
            *error = QStringLiteral("--manifest takes one folder, ROOT");
            return {};
        }
        if (!options.compareOption.isEmpty()) {
            *error = QStringLiteral("%1 belongs to a compare; a manifest records everything")
                         .arg(quoted(options.compareOption));
            return {};
        }
        options.source = roots.at(0);
        return options;
    }
    if (roots.size() == 2 && roots.at(0) == "-" && roots.at(1) == "-") {
        *error = QStringLiteral("standard input (-) can stand for one side only");
        return {};
    }
    if (roots.size() != 2) {
        *error = roots.size() < 2
                     ? QStringLiteral("expected two folders, SOURCE and DESTINATION")
                     : QStringLiteral("too many arguments: %1 after SOURCE and DESTINATION")
                           .arg(quoted(roots.at(2)));
        return {};
    }
    // An empty argument names no folder; it is most often a shell variable that was not set.
    const char *const sides[] = {"SOURCE", "DESTINATION"};
    for (int side = 0; side < 2; ++side) {
        if (roots.at(side).isEmpty()) {
            *error = QStringLiteral("%1 is an empty argument; give a folder")
                         .arg(QLatin1String(sides[side]));
            return {};
        }
    }
    options.source = roots.at(0);
    options.destination = roots.at(1);
    return options;
}

QString CliOptions::usage() {
    return QStringLiteral(
        "Usage: pairscope-cli [options] SOURCE DESTINATION\n"
        "       pairscope-cli --manifest [--crc] [filter options] ROOT\n"
        "\n"
        "Compares two folder trees file by file: every file is paired with the file at the\n"
        "same path below the other folder, and the pairs that differ are listed with the\n"
        "reason. Letter case counts where the file system tells names apart by it.\n"
        "\n"
        "Either side may be a manifest instead of a folder: a file written by --manifest,\n"
        "or - to read one from standard input (one side only). It is compared like the\n"
        "tree it records, its checksums taken from it; a comparison it holds nothing for\n"
        "(crc without --crc, created dates its file system did not keep) is refused.\n"
        "  ssh host pairscope-cli --manifest --crc /data | pairscope-cli -c size,crc - ~/data\n"
        "\n"
        "Options:\n"
        "  -c, --compare LIST   what to compare, separated by commas: size, modified,\n"
        "                       created, accessed, attributes (with permissions), crc;\n"
        "                       or existence alone\n"
        "                       (default: size,modified)\n"
        "      --crc-first      compare checksums right after sizes (default: last, only\n"
        "                       for pairs that are equal in everything else)\n"
        "      --no-slack       dates must be exactly equal (default: dates up to two\n"
        "                       seconds apart count as equal)\n"
        "      --time-shift MINUTES\n"
        "                       dates exactly MINUTES apart, either way, count as equal\n"
        "                       (within the two seconds unless --no-slack), as on FAT\n"
        "                       or across a daylight-saving change; repeatable\n"
        "      --exclude PATTERN, --include PATTERN\n"
        "                       leave out, or keep, what PATTERN matches below either\n"
        "                       root; repeatable, the last matching pattern wins. As in\n"
        "                       git: * and ? stay within a name, ** crosses folders, a\n"
        "                       trailing / matches folders only, a leading / anchors at\n"
        "                       the root. A folder left out is not read at all\n"
        "      --exclude-from FILE\n"
        "                       patterns from FILE, one a line, as in .gitignore (# for\n"
        "                       comments, ! to keep)\n"
        "      --gitignore      each tree's .gitignore files apply in and below their\n"
        "                       folder, and .git folders are left out; the options above\n"
        "                       win over them\n"
        "  -a, --all            list identical pairs too\n"
        "      --case RULE      letter case in names: auto (default: as each folder's file\n"
        "                       system does), sensitive, or insensitive (names that differ\n"
        "                       only in case pair, an exact namesake preferred)\n"
        "      --no-normalize   names spelt with decomposed accents (as some systems write\n"
        "                       them) pair only with the same spelling (default: names\n"
        "                       equal once composed pair when no exact namesake exists)\n"
        "      --chunk-size BYTES\n"
        "                       read files for checksums in chunks of BYTES\n"
        "                       (1024 to 16777216; default 65536)\n"
        "      --format FORMAT  text (default), tsv, json or html\n"
        "  -q, --quiet          write nothing to standard output; only the exit status\n"
        "                       tells\n"
        "      --progress       show a progress line on standard error\n"
        "      --no-progress    never show it (default: shown while standard error is a\n"
        "                       terminal)\n"
        "      --manifest       write ROOT's manifest to standard output instead of\n"
        "                       comparing: a line \"pairscope-manifest 1\", then one line\n"
        "                       per entry in walk order (the filter and --case options\n"
        "                       apply); see pairscope-cli(1) for the format\n"
        "      --crc            with --manifest: take every file's CRC-32 too\n"
        "  -h, --help           show this help and exit\n"
        "      --version        show the version and exit\n"
        "\n"
        "Formats:\n"
        "  text  the comparison, one aligned row per pair, and a summary (follows the locale)\n"
        "  tsv   code TAB difference TAB relative path, one line per pair, sorted by path;\n"
        "        tab, newline and backslash in names are written \\t, \\n and \\\\\n"
        "  json  one object with the roots, the comparison, the options and every pair\n"
        "        with all its differences and both sides' size, dates (ISO 8601) and\n"
        "        attributes\n"
        "  html  one self-contained page for a browser or printing: both roots, the\n"
        "        comparison, the counts, and a row per pair with its differences and both\n"
        "        sides' size and dates (follows the locale)\n"
        "\n"
        "Exit status: 0 when no listed pair differs, 1 when some differ, 2 on trouble (bad\n"
        "arguments, a root that is not a folder, folders or files that could not be read, a\n"
        "tree that kept changing, a malformed manifest or one that lacks what the comparison\n"
        "needs). Each problem is one line on standard error; whatever could be compared is\n"
        "still listed. --manifest exits 0 when the whole tree was written, else 2.\n");
}
