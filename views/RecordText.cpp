#include "views/RecordText.h"

#include "engine/PathHelpers.h"
#include "views/ListColumns.h"

#include <QLocale>

#include <sys/stat.h>

namespace {

/** The locale's long time format without its time-zone fields. */
QString longTimeFormatWithoutZone(const QLocale &locale) {
    const QString format = locale.timeFormat(QLocale::LongFormat);
    QString result;
    bool quoted = false;
    for (const QChar c : format) {
        if (c == QLatin1Char('\''))
            quoted = !quoted;
        if (!quoted && c == QLatin1Char('t'))
            continue;
        result += c;
    }
    return result.simplified();
}

/** The locale's date and time formats, worked out once per locale rather than once per row. */
struct DateFormats {
    QLocale locale;
    QString date;
    QString time;
    bool ready = false;
};

const DateFormats &dateFormats() {
    // Kept for the life of the thread and never destroyed: the locale's own data may already be
    // gone when thread-local objects are torn down at exit.
    thread_local DateFormats &cached = *new DateFormats;
    const QLocale current;
    if (!cached.ready || cached.locale != current) {
        cached.locale = current;
        cached.date = current.dateFormat(QLocale::ShortFormat);
        cached.time = longTimeFormatWithoutZone(current);
        cached.ready = true;
    }
    return cached;
}

/** The date a date column shows: 5 modified, 6 created, 7 accessed. */
FileTime dateOfColumn(const ComparisonFile &file, int columnType) {
    switch (columnType) {
    case ColumnType::DateModified:
        return file.DateLastModified();
    case ColumnType::DateCreated:
        return file.DateCreated();
    default:
        return file.DateLastAccessed();
    }
}

} // namespace

namespace RecordText {

QString SortString(const ComparisonFile &file, int SortKey) {
    switch (SortKey) {
    case ColumnType::Name:
        return file.Name();
    case ColumnType::InFolder:
        return file.ParentFolder();
    case ColumnType::Size:
        // Twenty digits, so that sizes beyond a terabyte still sort by value.
        return QString::number(file.Size()).rightJustified(20, QLatin1Char('0'));
    case ColumnType::Type:
        return file.TypeString();
    case ColumnType::DateModified:
    case ColumnType::DateCreated:
    case ColumnType::DateAccessed:
        return QString::asprintf("%025.12f", dateOfColumn(file, SortKey).toOleDate());
    case ColumnType::Attributes:
        return AttributesText(file.Attributes(), file.Mode());
    case ColumnType::Difference:
        return ComparisonFile::DifferenceText(file.DifferenceCode());
    default:
        return {};
    }
}

QString ColumnString(const ComparisonFile &file, int columnType, bool ShowFullPath) {
    switch (columnType) {
    case ColumnType::InFolder: {
        QString folder = file.ParentFolder();
        if (!ShowFullPath) {
            folder = AddTrailingSlash(folder);
            const QString root = AddTrailingSlash(file.RootPath());
            const qsizetype at = folder.indexOf(root, 0, Qt::CaseInsensitive);
            if (at >= 0)
                folder.remove(at, root.size());
        }
        return RemoveTrailingSlash(folder);
    }
    case ColumnType::Size:
        return QLocale().toString(file.Size()) + QLatin1String(" bytes");
    case ColumnType::DateModified:
    case ColumnType::DateCreated:
    case ColumnType::DateAccessed:
        return DateString(dateOfColumn(file, columnType));
    default:
        // Name, type, attributes and difference read the same as their sort keys.
        return SortString(file, columnType);
    }
}

QString DateString(const FileTime &date) {
    QDate day;
    QTime time;
    if (!date.toLocal(&day, &time))
        return {};
    const DateFormats &formats = dateFormats();
    return formats.locale.toString(day, formats.date) + QLatin1Char(' ') +
           formats.locale.toString(time, formats.time);
}

QString PermissionString(quint32 mode) {
    if (mode == 0)
        return {};
    static constexpr struct {
        quint32 type;
        char letter;
    } typeLetters[] = {{S_IFLNK, 'l'}, {S_IFIFO, 'p'}, {S_IFSOCK, 's'},
                       {S_IFCHR, 'c'}, {S_IFBLK, 'b'}, {S_IFDIR, 'd'}};
    QString text(10, QLatin1Char('-'));
    for (const auto &entry : typeLetters) {
        if ((mode & S_IFMT) == entry.type)
            text[0] = QLatin1Char(entry.letter);
    }
    static const char letters[] = "rwxrwxrwx";
    for (int bit = 0; bit < 9; ++bit) {
        if (mode & (0400u >> bit))
            text[bit + 1] = QLatin1Char(letters[bit]);
    }
    // Set-user-ID, set-group-ID and sticky take the place of an execute letter: lower case
    // when that execute bit is set too, upper case when it is not.
    const auto special = [&text, mode](quint32 flag, int at, char letter) {
        if (!(mode & flag))
            return;
        const bool executable = text[at] == QLatin1Char('x');
        text[at] = QLatin1Char(executable ? letter : char(letter - 'a' + 'A'));
    };
    special(S_ISUID, 3, 's');
    special(S_ISGID, 6, 's');
    special(S_ISVTX, 9, 't');
    return text;
}

QString AttributesText(int attributes, quint32 mode) {
    const QString letters = ComparisonFile::AttributeString(attributes);
    const QString permissions = PermissionString(mode);
    if (letters.isEmpty() || permissions.isEmpty())
        return letters + permissions;
    return letters + QLatin1Char(' ') + permissions;
}

} // namespace RecordText
