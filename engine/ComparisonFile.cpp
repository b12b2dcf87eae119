#include "engine/ComparisonFile.h"

#include "engine/PathHelpers.h"

#include <optional>
#include <sys/stat.h>

struct ComparisonFile::Details {
    qint64 size = 0;
    int attributes = 0;
    quint32 mode = 0;
    FileKind kind = FileKind::Missing;
    FileTime created;
    FileTime modified;
    FileTime accessed;
    // The type name depends on the name alone, so it is found only when first asked for.
    std::optional<QString> type;
    // Display forms set by hand are rare; every listed record carries details, so they live
    // apart.
    struct DisplayForms {
        std::optional<QString> name;
        std::optional<QString> path;
        std::optional<QString> parentFolder;
    };
    std::unique_ptr<DisplayForms> display;

    Details() = default;
    Details(const Details &other)
        : size(other.size)
        , attributes(other.attributes)
        , mode(other.mode)
        , kind(other.kind)
        , created(other.created)
        , modified(other.modified)
        , accessed(other.accessed)
        , type(other.type)
        , display(other.display ? std::make_unique<DisplayForms>(*other.display) : nullptr) {}

    DisplayForms &displayForms() {
        if (!display)
            display = std::make_unique<DisplayForms>();
        return *display;
    }
};

ComparisonFile::ComparisonFile() = default;

ComparisonFile::ComparisonFile(::FileObject file)
    : m_folder(file.folder())
    , m_name(file.nativeName())
    , m_hasFile(!file.isNull()) {}

ComparisonFile::~ComparisonFile() = default;

ComparisonFile::ComparisonFile(const ComparisonFile &other)
    : m_folder(other.m_folder)
    , m_name(other.m_name)
    , m_details(other.m_details ? std::make_unique<Details>(*other.m_details) : nullptr)
    , m_differenceCode(other.m_differenceCode)
    , m_differences(other.m_differences)
    , m_hasFile(other.m_hasFile)
    , m_parentTrailing(other.m_parentTrailing)
    , m_detailsLoaded(other.m_detailsLoaded) {}

ComparisonFile &ComparisonFile::operator=(const ComparisonFile &other) {
    if (this != &other) {
        ComparisonFile copy(other);
        std::swap(m_folder, copy.m_folder);
        std::swap(m_name, copy.m_name);
        std::swap(m_details, copy.m_details);
        m_differenceCode = other.m_differenceCode;
        m_differences = other.m_differences;
        m_hasFile = other.m_hasFile;
        m_parentTrailing = other.m_parentTrailing;
        m_detailsLoaded = other.m_detailsLoaded;
    }
    return *this;
}

ComparisonFile::Details &ComparisonFile::details() {
    if (!m_details)
        m_details = std::make_unique<Details>();
    return *m_details;
}

::FileObject ComparisonFile::FileObject() const {
    return m_hasFile ? ::FileObject(m_folder, m_name) : ::FileObject();
}

void ComparisonFile::setFileObject(const ::FileObject &file) {
    m_hasFile = !file.isNull();
    if (m_hasFile) {
        m_folder = file.folder();
        m_name = file.nativeName();
    }
}

void ComparisonFile::setLocation(FolderRef folder, QByteArray name) {
    m_folder = std::move(folder);
    m_name = std::move(name);
}

QString ComparisonFile::Name() const {
    if (m_details && m_details->display && m_details->display->name)
        return *m_details->display->name;
    return DisplayFromNative(m_name);
}

void ComparisonFile::setName(const QString &name) {
    details().displayForms().name = name;
}

QString ComparisonFile::Path() const {
    if (m_details && m_details->display && m_details->display->path)
        return *m_details->display->path;
    return m_folder ? DisplayFromNative(m_folder->childNativePath(m_name)) : QString();
}

void ComparisonFile::setPath(const QString &path) {
    details().displayForms().path = path;
}

QString ComparisonFile::ParentFolder() const {
    if (m_details && m_details->display && m_details->display->parentFolder)
        return *m_details->display->parentFolder;
    if (!m_folder)
        return {};
    return m_parentTrailing ? AddTrailingSlash(m_folder->displayPath()) : m_folder->displayPath();
}

void ComparisonFile::setParentFolder(const QString &folder) {
    details().displayForms().parentFolder = folder;
}

qint64 ComparisonFile::Size() const {
    return m_details ? m_details->size : 0;
}

void ComparisonFile::setSize(qint64 size) {
    details().size = size;
}

int ComparisonFile::Attributes() const {
    return m_details ? m_details->attributes : 0;
}

void ComparisonFile::setAttributes(int attributes) {
    details().attributes = attributes;
}

QString ComparisonFile::TypeString() const {
    if (!m_details)
        return {};
    if (!m_details->type) {
        if (!m_detailsLoaded)
            return {};
        m_details->type = ::FileObject::typeName(DisplayFromNative(m_name), m_details->mode);
    }
    return *m_details->type;
}

void ComparisonFile::setTypeString(const QString &type) {
    details().type = type;
}

FileTime ComparisonFile::DateCreated() const {
    return m_details ? m_details->created : FileTime();
}

void ComparisonFile::setDateCreated(const FileTime &time) {
    details().created = time;
}

FileTime ComparisonFile::DateLastModified() const {
    return m_details ? m_details->modified : FileTime();
}

void ComparisonFile::setDateLastModified(const FileTime &time) {
    details().modified = time;
}

FileTime ComparisonFile::DateLastAccessed() const {
    return m_details ? m_details->accessed : FileTime();
}

void ComparisonFile::setDateLastAccessed(const FileTime &time) {
    details().accessed = time;
}

FileKind ComparisonFile::Kind() const {
    return m_details ? m_details->kind : FileKind::Missing;
}

quint32 ComparisonFile::Mode() const {
    return m_details ? m_details->mode : 0;
}

void ComparisonFile::setMode(quint32 mode) {
    details().mode = mode;
}

QString ComparisonFile::RootPath() const {
    return m_folder ? m_folder->rootPath() : QString();
}

void ComparisonFile::UpdateDetails() {
    if (!m_hasFile || !m_folder)
        return;
    const FileStat stat = ::FileObject(m_folder, m_name).Stat();
    if (stat.isValid())
        UpdateDetails(stat);
}

void ComparisonFile::UpdateDetails(const FileStat &stat) {
    if (!stat.isValid())
        return;
    Details &d = details();
    d.size = stat.size;
    d.attributes = stat.attributes;
    d.mode = stat.mode;
    d.kind = stat.kind;
    d.created = stat.created;
    d.modified = stat.modified;
    d.accessed = stat.accessed;
    d.type.reset();
    m_detailsLoaded = true;
}

QString ComparisonFile::AttributeString(int attributes) {
    QString text;
    if (attributes & FileAttributes::ReadOnly)
        text += QLatin1Char('R');
    if (attributes & FileAttributes::Hidden)
        text += QLatin1Char('H');
    if (attributes & FileAttributes::System)
        text += QLatin1Char('S');
    if (attributes & FileAttributes::Archive)
        text += QLatin1Char('A');
    if (attributes & FileAttributes::Alias)
        text += QLatin1Char('L');
    if (attributes & FileAttributes::Compressed)
        text = text.toLower();
    return text;
}

QString ComparisonFile::PermissionString(quint32 mode) {
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

QString ComparisonFile::AttributesText(int attributes, quint32 mode) {
    const QString letters = AttributeString(attributes);
    const QString permissions = PermissionString(mode);
    if (letters.isEmpty() || permissions.isEmpty())
        return letters + permissions;
    return letters + QLatin1Char(' ') + permissions;
}

QString ComparisonFile::DifferenceText(int code) {
    static const char *const texts[] = {
        "file does not exist",
        "",
        "",
        "source does not exist",
        "destination does not exist",
        "size is different",
        "checksum is different",
        "attributes are different",
        "source is newer",
        "destination is newer",
        "source created more recently",
        "destination created more recently",
        "source accessed more recently",
        "destination accessed more recently",
        "source could not be read",
        "destination could not be read",
    };
    const int index = code + 1;
    if (index < 0 || index >= int(std::size(texts)))
        return {};
    return QLatin1String(texts[index]);
}

QString ComparisonFile::Key() const {
    if (m_details && m_details->display && m_details->display->path)
        return *m_details->display->path;
    if (!m_folder)
        return {};
    return m_folder->keyPath() + KeyFromNative(m_name);
}

QString ComparisonFile::RelativeKey() const {
    if (!m_folder)
        return {};
    const QStringView folder = m_folder->relativeKey();
    const QString name = KeyFromNative(m_name);
    QString key;
    key.reserve(folder.size() + name.size());
    key.append(folder);
    key.append(name);
    return key;
}

QByteArray ComparisonFile::NativePath() const {
    return m_folder ? m_folder->childNativePath(m_name) : QByteArray();
}

QByteArray ComparisonFile::RelativeNativePath() const {
    if (!m_folder)
        return m_name;
    const QByteArray folder = m_folder->relativeNativePath();
    return folder.isEmpty() ? m_name : folder + '/' + m_name;
}

QString ComparisonFile::RelativePath() const {
    return DisplayFromNative(RelativeNativePath());
}
