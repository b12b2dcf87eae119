#include "reports/JsonReport.h"

#include "reports/CompareReport.h"
#include "reports/LocalDate.h"
#include "reports/NameEscaping.h"
#include "reports/OutputStream.h"

#include "engine/ComparisonSet.h"
#include "engine/PathHelpers.h"

#include <ctime>
#include <sys/stat.h>

namespace {

QByteArray jsonString(QStringView text) {
    // In UTF-8 every byte that needs escaping is ASCII, so the bytes can be escaped one by one.
    const QByteArray utf8 = text.toUtf8();
    QByteArray out;
    out.reserve(utf8.size() + 2);
    out += '"';
    for (const char c : utf8) {
        if (c == '"')
            out += "\\\"";
        else if (c == '\\')
            out += "\\\\";
        else if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (uchar(c) < 0x20)
            out += "\\u00" + QByteArray::number(uchar(c), 16).rightJustified(2, '0');
        else
            out += c;
    }
    out += '"';
    return out;
}

QByteArray jsonBool(bool value) {
    return value ? QByteArray("true") : QByteArray("false");
}

/** ISO 8601 in local time with its offset, quoted; null for no date. */
QByteArray isoDate(const FileTime &time) {
    QByteArray text;
    text.reserve(40);
    text += '"';
    if (!LocalDate::appendIso(text, time))
        return QByteArray("null");
    return text += '"';
}

/** The kind of file a mode names, in words. */
const char *kindName(quint32 mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return "file";
    case S_IFLNK:
        return "link";
    case S_IFIFO:
        return "fifo";
    case S_IFSOCK:
        return "socket";
    case S_IFCHR:
        return "character device";
    case S_IFBLK:
        return "block device";
    case S_IFDIR:
        return "folder";
    default:
        return "unknown";
    }
}

QByteArray side(const ComparisonFilePtr &record) {
    // Only what the pair was judged on: a side that does not exist, or whose properties could
    // not be read when it was judged, has none to show.
    if (!record || !record->HasFileObject() || !record->DetailsLoaded())
        return QByteArray("null");
    const quint32 mode = record->Mode();
    return "{\"kind\": \"" + QByteArray(kindName(mode)) +
           "\", \"size\": " + QByteArray::number(record->Size()) +
           ", \"modified\": " + isoDate(record->DateLastModified()) +
           ", \"created\": " + isoDate(record->DateCreated()) +
           ", \"accessed\": " + isoDate(record->DateLastAccessed()) + ", \"attributes\": " +
           jsonString(ComparisonFile::AttributeString(record->Attributes())) +
           ", \"permissions\": \"" + QByteArray::number(mode & 07777, 8).rightJustified(4, '0') +
           "\"}";
}

/** `"key": "text"`, and `"keyBytes": "escaped"` beside it when the bytes are not UTF-8. */
QByteArray nameMembers(const char *key, const QByteArray &native) {
    QByteArray out =
        jsonString(QString::fromLatin1(key)) + ": " + jsonString(DisplayFromNative(native));
    if (!IsValidUtf8(native)) {
        out += ", " + jsonString(QString::fromLatin1(key) + QLatin1String("Bytes")) + ": " +
               jsonString(QString::fromLatin1(NameEscaping::bytes(native)));
    }
    return out;
}

/** Every difference of the pair, each with its code and text, in the order of the tests. */
QByteArray differences(const ReportPair &pair) {
    const QList<int> codes = pair.codes();
    QByteArray out = "[";
    for (qsizetype i = 0; i < codes.size(); ++i) {
        out += (i ? ", {\"code\": " : "{\"code\": ") + QByteArray::number(codes.at(i)) +
               ", \"text\": " + jsonString(ComparisonFile::DifferenceText(codes.at(i))) + '}';
    }
    return out + ']';
}

} // namespace

void writeJsonReport(const CompareReport &report, OutputStream &out) {
    ::tzset(); // localtime_r needs the zone read once
    out << "{\n " << nameMembers("source", report.source) << ",\n "
        << nameMembers("destination", report.destination) << ",\n";
    out << " \"comparisons\": {\"bits\": " << report.comparisons << ", \"description\": "
        << jsonString(ComparisonDescription(report.comparisons, report.doCRCLast)) << "},\n";
    out << " \"options\": {\"crcFirst\": " << jsonBool(!report.doCRCLast)
        << ", \"slack\": " << jsonBool(report.includeSlack) << ", \"timeShifts\": [";
    for (qsizetype i = 0; i < report.timeShifts.size(); ++i)
        out << (i ? ", " : "") << report.timeShifts.at(i);
    out << "], \"all\": " << jsonBool(report.listAll) << ", \"chunkSize\": " << report.chunkSize
        << "},\n";

    out << " \"pairs\": [";
    bool first = true;
    for (const ReportPair &pair : report.pairs) {
        out << (first ? "\n  " : ",\n  ");
        first = false;
        out << "{\"code\": " << pair.code
            << ", \"text\": " << jsonString(ComparisonFile::DifferenceText(pair.code))
            << ", \"differences\": " << differences(pair) << ", "
            << nameMembers("path", pair.path()) << ", \"source\": " << side(pair.source)
            << ", \"destination\": " << side(pair.destination) << '}';
    }
    out << (first ? "],\n" : "\n ],\n");

    out << " \"pairsCompared\": " << report.pairCount() << ",\n \"counts\": {";
    first = true;
    for (std::size_t code = 0; code < report.counts.size(); ++code) {
        if (report.counts[code] == 0)
            continue;
        out << (first ? "" : ", ") << '"' << qint64(code) << "\": " << report.counts[code];
        first = false;
    }
    out << "},\n \"problems\": [";
    first = true;
    for (const RunProblem &problem : report.problems) {
        out << (first ? "\n  " : ",\n  ") << '{'
            << (problem.path.isEmpty() ? QByteArray("\"path\": null")
                                       : nameMembers("path", problem.path))
            << ", \"reason\": " << jsonString(problem.reason) << '}';
        first = false;
    }
    out << (first ? "]\n}\n" : "\n ]\n}\n");
}
