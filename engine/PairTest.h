#pragma once

#include "engine/DifferenceCode.h"
#include "engine/FileStat.h"

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
 * The difference code of a pair from one snapshot of each side, testing in a fixed order and
 * stopping at the first difference: existence, kind, size, checksum (first), dates,
 * attributes (with the permission bits), checksum (last). \a checksumTest is called at most once,
 * only when the checksum decides; it returns a difference code, or 0 when the checksums agree (or
 * cannot apply); a cancelled checksum returns Equal, which is the result so far.
 */
template <typename ChecksumTest>
int comparePair(const FileStat &source, const FileStat &destination, const PairTestOptions &options,
                ChecksumTest &&checksumTest) {
    namespace Code = DifferenceCode;
    const auto has = [&options](int bit) { return (options.bits & bit) != 0; };
    constexpr int sizes = 1, modified = 2, created = 4, accessed = 8, attributes = 16,
                  checksums = 32;
    if (!source.isValid())
        return Code::SourceMissing;
    if (!destination.isValid())
        return Code::DestinationMissing;
    // Different kinds of file are never equal, whatever is compared: the kind is tested before
    // any property that could agree by chance (a FIFO has no content to checksum, a link's
    // text can match a file's bytes). The kind shows in the attributes, hence their code.
    if (source.type() != destination.type())
        return Code::Attributes;
    if (has(sizes) && source.size != destination.size)
        return Code::Size;
    if (has(checksums) && !options.doCRCLast) {
        if (const int code = checksumTest())
            return code;
    }
    const auto dateTest = [&](const FileTime &a, const FileTime &b, int later, int earlier) {
        if (!datesDiffer(a, b, options.includeSlack, options.timeShifts))
            return 0;
        return a > b ? later : earlier;
    };
    if (has(modified)) {
        if (const int code = dateTest(source.modified, destination.modified, Code::SourceNewer,
                                      Code::DestinationNewer))
            return code;
    }
    if (has(created)) {
        if (const int code = dateTest(source.created, destination.created, Code::SourceCreatedLater,
                                      Code::DestinationCreatedLater))
            return code;
    }
    if (has(accessed)) {
        if (const int code = dateTest(source.accessed, destination.accessed,
                                      Code::SourceAccessedLater, Code::DestinationAccessedLater))
            return code;
    }
    if (has(attributes) && (source.attributes != destination.attributes ||
                            source.permissions() != destination.permissions()))
        return Code::Attributes;
    if (has(checksums) && options.doCRCLast) {
        if (const int code = checksumTest())
            return code;
    }
    return Code::Equal;
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
