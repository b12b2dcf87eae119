#include "views/RecordText.h"

#include "engine/PathHelpers.h"
#include "views/ListColumns.h"

#include <QLocale>

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
        return ComparisonFile::AttributesText(file.Attributes(), file.Mode());
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

} // namespace RecordText
