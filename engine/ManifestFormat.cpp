#include "engine/ManifestFormat.h"

#include "engine/ByteEscaping.h"

#include <array>
#include <cerrno>
#include <charconv>

namespace {

constexpr int fieldCount = 10;
constexpr qint64 nanosecondsPerSecond = 1000000000;

struct KindName {
    const char *word;
    quint32 type;
};

/** "unreadable" is not among them: it names no type but a failed look. */
constexpr KindName kindNames[] = {
    {"file", S_IFREG},    {"folder", S_IFDIR},      {"link", S_IFLNK},         {"fifo", S_IFIFO},
    {"socket", S_IFSOCK}, {"char-device", S_IFCHR}, {"block-device", S_IFBLK},
};
constexpr char unreadableKind[] = "unreadable";

QByteArray timeField(const FileTime &time) {
    if (time.isNull())
        return QByteArrayLiteral("-");
    return QByteArray::number(time.seconds() * nanosecondsPerSecond + time.nanoseconds());
}

template <typename Number> bool parseNumber(QByteArrayView text, Number &value, int base = 10) {
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, base);
    return !text.isEmpty() && result.ec == std::errc() && result.ptr == end;
}

bool parseTime(QByteArrayView text, FileTime &time) {
    if (text == "-") {
        time = FileTime();
        return true;
    }
    qint64 total = 0;
    if (!parseNumber(text, total))
        return false;
    // Floored, so that a date before 1970 keeps its nanoseconds in 0..999,999,999.
    qint64 seconds = total / nanosecondsPerSecond;
    qint64 nanoseconds = total % nanosecondsPerSecond;
    if (nanoseconds < 0) {
        nanoseconds += nanosecondsPerSecond;
        --seconds;
    }
    time = FileTime(seconds, qint32(nanoseconds));
    return true;
}

/** A path below the root: names without NUL, ".", "..", or an empty name. */
bool validPath(const QByteArray &path) {
    if (path.isEmpty() || path.contains('\0'))
        return false;
    for (const QByteArray &name : path.split('/')) {
        if (name.isEmpty() || name == "." || name == "..")
            return false;
    }
    return true;
}

QByteArray flagsField(const ManifestEntry &entry) {
    QByteArray flags;
    if (entry.ignoresCase)
        flags += 'i';
    if (entry.unreadable)
        flags += 'u';
    if (entry.stat.attributes & FileAttributes::Compressed)
        flags += 'c';
    return flags.isEmpty() ? QByteArrayLiteral("-") : flags;
}

QByteArray checksumField(const ManifestEntry &entry) {
    if (!entry.checksummed)
        return QByteArrayLiteral("-");
    if (entry.checksum.status != CRC32Object::Status::Ok)
        return QByteArrayLiteral("?");
    return QByteArray::number(entry.checksum.crc, 16).toUpper().rightJustified(8, '0');
}

bool parseChecksum(QByteArrayView text, ManifestEntry &entry) {
    entry.checksummed = text != "-";
    entry.checksum = {};
    if (text == "-")
        return true;
    if (text == "?") {
        entry.checksum.status = CRC32Object::Status::Failed;
        entry.checksum.error = EIO;
        return true;
    }
    return text.size() == 8 && parseNumber(text, entry.checksum.crc, 16);
}

} // namespace

QByteArray ManifestFormat::headerLine(const Header &header) {
    QByteArray line = QByteArray(Magic) + ' ' + QByteArray::number(header.version);
    if (header.checksums)
        line += " crc";
    if (header.gitignore)
        line += " gitignore";
    return line;
}

std::optional<ManifestFormat::Header> ManifestFormat::parseHeader(QByteArrayView line,
                                                                  QString *error) {
    const QList<QByteArray> words = line.toByteArray().split(' ');
    if (words.size() < 2 || words.at(0) != Magic) {
        *error = QStringLiteral("not a pairscope manifest: the first line must begin with "
                                "\"%1 %2\"")
                     .arg(QLatin1String(Magic))
                     .arg(Version);
        return std::nullopt;
    }
    Header header;
    if (!parseNumber(QByteArrayView(words.at(1)), header.version) || header.version != Version) {
        *error = QStringLiteral("manifest version %1 is not supported; this program reads "
                                "version %2")
                     .arg(QString::fromLatin1(ByteEscaping::escape(words.at(1))))
                     .arg(Version);
        return std::nullopt;
    }
    for (qsizetype i = 2; i < words.size(); ++i) {
        if (words.at(i) == "crc") {
            header.checksums = true;
        } else if (words.at(i) == "gitignore") {
            header.gitignore = true;
        } else {
            *error = QStringLiteral("unknown word \"%1\" in the manifest's first line")
                         .arg(QString::fromLatin1(ByteEscaping::escape(words.at(i))));
            return std::nullopt;
        }
    }
    return header;
}

QByteArray ManifestFormat::entryLine(const ManifestEntry &entry) {
    const FileStat &stat = entry.stat;
    const char *kind = unreadableKind;
    if (stat.isValid()) {
        for (const KindName &name : kindNames) {
            if (name.type == stat.type())
                kind = name.word;
        }
    }
    QByteArray line =
        entry.path.isEmpty() ? QByteArrayLiteral(".") : ByteEscaping::escape(entry.path);
    for (const QByteArray &field :
         {QByteArray(kind), QByteArray::number(stat.size), timeField(stat.modified),
          timeField(stat.created), timeField(stat.accessed),
          QByteArray::number(stat.permissions(), 8).rightJustified(4, '0'), flagsField(entry),
          checksumField(entry), ByteEscaping::escape(entry.target)}) {
        line += '\t';
        line += field;
    }
    return line;
}

bool ManifestFormat::parseEntry(QByteArrayView line, ManifestEntry &entry, QString *error) {
    std::array<QByteArrayView, fieldCount> fields;
    qsizetype count = 0;
    for (qsizetype start = 0;; ++count) {
        const qsizetype tab = line.indexOf('\t', start);
        if (count < fieldCount)
            fields[std::size_t(count)] = line.sliced(start, (tab < 0 ? line.size() : tab) - start);
        if (tab < 0)
            break;
        start = tab + 1;
    }
    if (++count != fieldCount) {
        *error = QStringLiteral("%1 fields where %2 belong").arg(count).arg(fieldCount);
        return false;
    }
    const auto fail = [error](const char *what) {
        *error = QStringLiteral("bad %1").arg(QLatin1String(what));
        return false;
    };

    entry = ManifestEntry();
    if (fields[0] != ".") {
        const std::optional<QByteArray> path = ByteEscaping::unescape(fields[0]);
        if (!path || !validPath(*path))
            return fail("path");
        entry.path = *path;
    }
    quint32 type = 0;
    for (const KindName &name : kindNames) {
        if (fields[1] == name.word)
            type = name.type;
    }
    if (type == 0 && fields[1] != unreadableKind)
        return fail("kind");
    quint32 permissions = 0;
    if (!parseNumber(fields[6], permissions, 8) || permissions > 07777)
        return fail("permissions");
    bool compressed = false;
    if (fields[7] != "-") {
        for (const char flag : fields[7]) {
            if (flag == 'i')
                entry.ignoresCase = true;
            else if (flag == 'u')
                entry.unreadable = true;
            else if (flag == 'c')
                compressed = true;
            else
                return fail("flags");
        }
    }
    if (type != 0) {
        entry.stat.setMode(type | permissions, entry.path.isEmpty() ? "" : entry.path.constData(),
                           compressed);
    } else {
        // Its properties could not be read when the manifest was written; the reason is not
        // kept, only that it is not a file that has gone.
        entry.stat.error = EIO;
    }
    if (!parseNumber(fields[2], entry.stat.size) || entry.stat.size < 0)
        return fail("size");
    if (!parseTime(fields[3], entry.stat.modified))
        return fail("modified date");
    if (!parseTime(fields[4], entry.stat.created))
        return fail("created date");
    if (!parseTime(fields[5], entry.stat.accessed))
        return fail("accessed date");
    if (!parseChecksum(fields[8], entry))
        return fail("CRC-32");
    const std::optional<QByteArray> target = ByteEscaping::unescape(fields[9]);
    if (!target)
        return fail("link target");
    entry.target = *target;
    return true;
}
