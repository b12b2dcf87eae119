#pragma once

#include "engine/DifferenceCode.h"
#include "engine/DifferenceList.h"
#include "engine/FileStat.h"

#include <utility>
#include <vector>

/** The selected comparisons of one Compare() call. */
struct PairTestOptions {
    int bits = 0;
    bool includeSlack = true;
    bool doCRCLast = true;
    /** Differences between dates, in seconds, that count as equal too (either direction). */
    std::vector<qint64> timeShifts;
};

/**
 * Whether two dates differ: exactly, or with slack by more than two whole-second boundaries.
 * "No date" equals only "no date".
 */
bool datesDiffer(const FileTime &a, const FileTime &b, bool includeSlack);

/**
 * datesDiffer(), where dates that differ by exactly one of \a shifts (seconds, either
 * direction; within the slack when it is on) are equal too.
 */
bool datesDiffer(const FileTime &a, const FileTime &b, bool includeSlack,
                 const std::vector<qint64> &shifts);

/**
 * Every difference of a pair from one snapshot of each side, in a fixed order of tests:
 * existence, kind, size, checksum (first), dates, attributes (with the permission bits),
 * checksum (last). A missing side ends the tests. \a checksumTest is called at most once, only
 * where the checksum decides the difference code (nothing found before it); it returns a
 * difference code, or 0 when the checksums agree (or cannot apply); a cancelled checksum
 * returns Equal and ends the tests with what was found so far.
 */
template <typename ChecksumTest>
DifferenceList pairDifferences(const FileStat &source, const FileStat &destination,
                               const PairTestOptions &options, ChecksumTest &&checksumTest) {
    namespace Code = DifferenceCode;
    const auto has = [&options](int bit) { return (options.bits & bit) != 0; };
    constexpr int sizes = 1, modified = 2, created = 4, accessed = 8, attributes = 16,
                  checksums = 32;
    DifferenceList found;
    if (!source.isValid())
        return DifferenceList::of(Code::SourceMissing);
    if (!destination.isValid())
        return DifferenceList::of(Code::DestinationMissing);
    // Different kinds of file are never equal, whatever is compared: the kind is tested before
    // any property that could agree by chance (a FIFO has no content to checksum, a link's
    // text can match a file's bytes). The kind shows in the attributes, hence their code.
    if (source.type() != destination.type())
        found.add(Code::Attributes);
    if (has(sizes) && source.size != destination.size)
        found.add(Code::Size);
    // The checksum is read only when it decides: contents are known to differ otherwise.
    const auto checksum = [&] {
        const int code = checksumTest();
        if (code != Code::Equal)
            found.add(code);
        return code != Code::Equal;
    };
    if (has(checksums) && !options.doCRCLast && found.isEmpty() && !checksum())
        return found;
    const auto dateTest = [&](const FileTime &a, const FileTime &b, int later, int earlier) {
        if (datesDiffer(a, b, options.includeSlack, options.timeShifts))
            found.add(a > b ? later : earlier);
    };
    if (has(modified))
        dateTest(source.modified, destination.modified, Code::SourceNewer, Code::DestinationNewer);
    if (has(created))
        dateTest(source.created, destination.created, Code::SourceCreatedLater,
                 Code::DestinationCreatedLater);
    if (has(accessed))
        dateTest(source.accessed, destination.accessed, Code::SourceAccessedLater,
                 Code::DestinationAccessedLater);
    if (has(attributes) && (source.attributes != destination.attributes ||
                            source.permissions() != destination.permissions()))
        found.add(Code::Attributes);
    if (has(checksums) && options.doCRCLast && found.isEmpty())
        checksum();
    return found;
}

/** The difference code of a pair: the first of pairDifferences(). */
template <typename ChecksumTest>
int comparePair(const FileStat &source, const FileStat &destination, const PairTestOptions &options,
                ChecksumTest &&checksumTest) {
    return pairDifferences(source, destination, options, std::forward<ChecksumTest>(checksumTest))
        .first();
}

/** True when comparePair() of this pair would ask for checksums. */
inline bool needsChecksum(const FileStat &source, const FileStat &destination,
                          const PairTestOptions &options) {
    bool asked = false;
    comparePair(source, destination, options, [&asked] {
        asked = true;
        return 0;
    });
    return asked;
}
