#pragma once

#include "engine/DifferenceCode.h"
#include "engine/DifferenceList.h"
#include "engine/FileObject.h"

#include <QMetaType>
#include <QString>

#include <memory>

/**
 * The record of one file on one side of a comparison. A record whose file object is null is a
 * missing placeholder: it stands on this side for a file that exists only on the other, with
 * that file's details and this side's path.
 *
 * The name and folder are kept as the file's own bytes (see NativePath()); Name(), Path() and
 * ParentFolder() are their display forms. Details (size, attributes, type, dates) are loaded
 * by UpdateDetails(), once: call it before reading them when DetailsLoaded() is false. Records
 * are shared (ComparisonFilePtr) so that list rows can keep them.
 */
class ComparisonFile {
public:
    /** An empty record: no file object, no location. */
    ComparisonFile();
    /** The record of \a file, difference code 0, details not loaded. */
    explicit ComparisonFile(::FileObject file);
    ~ComparisonFile();

    ComparisonFile(const ComparisonFile &other);
    ComparisonFile &operator=(const ComparisonFile &other);

    /** The file this record describes; null for a missing placeholder. */
    ::FileObject FileObject() const;
    /**
     * Sets the file object. A null object turns the record into a placeholder and keeps its
     * location (folder and name); a real one also moves the record to that file's location.
     */
    void setFileObject(const ::FileObject &file);
    /** True when the record has a file object (it is not a placeholder). */
    bool HasFileObject() const { return m_hasFile; }

    /** Moves the record to \a name inside \a folder without touching its file object flag. */
    void setLocation(FolderRef folder, QByteArray name);
    /** Marks the parent folder's display form to keep a trailing separator (placeholders). */
    void setParentTrailingSeparator(bool on) { m_parentTrailing = on; }

    QString Name() const;
    void setName(const QString &name);
    /** Full path for display. */
    QString Path() const;
    void setPath(const QString &path);
    /** The containing folder's full path for display. */
    QString ParentFolder() const;
    void setParentFolder(const QString &folder);

    /** Bytes (64-bit); 0 until the details are loaded. */
    qint64 Size() const;
    void setSize(qint64 size);
    /** FileAttributes bits. */
    int Attributes() const;
    void setAttributes(int attributes);
    /** The type name; computed from the name the first time it is asked for. */
    QString TypeString() const;
    void setTypeString(const QString &type);
    FileTime DateCreated() const;
    void setDateCreated(const FileTime &time);
    FileTime DateLastModified() const;
    void setDateLastModified(const FileTime &time);
    FileTime DateLastAccessed() const;
    void setDateLastAccessed(const FileTime &time);
    /** The kind of file the details were loaded from (Missing before). */
    FileKind Kind() const;
    /** The st_mode bits (file type and permissions); 0 before the details are loaded. */
    quint32 Mode() const;
    void setMode(quint32 mode);

    /** The root folder of this record's side, as given to its collection. */
    QString RootPath() const;

    int DifferenceCode() const { return m_differenceCode; }
    /** Sets the code; the pair's differences become that code alone. */
    void setDifferenceCode(int code) {
        m_differenceCode = code;
        m_differences = {};
    }
    /** Every difference of the pair, the difference code first. */
    DifferenceList Differences() const {
        return m_differences.isEmpty() ? DifferenceList::of(m_differenceCode) : m_differences;
    }
    /** Sets the differences of a judged pair, after its code. */
    void setDifferences(DifferenceList differences) { m_differences = differences; }

    bool DetailsLoaded() const { return m_detailsLoaded; }
    /**
     * Loads size, attributes, kind and dates from the file object with one statx. Does
     * nothing for a placeholder or a file that no longer exists.
     */
    void UpdateDetails();
    /** Same, from properties already read (\a stat must describe this record's file). */
    void UpdateDetails(const FileStat &stat);

    /** "RHSAL" letters of the set bits, all lower case when the compressed bit is set. */
    static QString AttributeString(int attributes);
    /** The words for a difference code; "" for codes without text or outside -1..14. */
    static QString DifferenceText(int code);

    /**
     * The record's key: its full path in KeyFromNative form (letter case kept, invalid bytes
     * and backslashes escaped) so that two different names never share a key. Collections and
     * list rows are keyed by it.
     */
    QString Key() const;
    /**
     * The key below the root ("sub/a.txt"): equal for the two records of a pair, except where
     * a folder that ignores letter case paired names spelt differently.
     */
    QString RelativeKey() const;
    /** The full native path: the real path for every disk operation (copy, diff program). */
    QByteArray NativePath() const;
    /** The native path below the root, without a leading separator ("sub/a.txt"). */
    QByteArray RelativeNativePath() const;
    /** The path below the root for display ("sub/a.txt"). */
    QString RelativePath() const;
    /** The name as bytes. */
    const QByteArray &NativeName() const { return m_name; }
    /** The folder the record lives in (this side's folder, also for a placeholder). */
    const FolderRef &Folder() const { return m_folder; }

private:
    struct Details;
    Details &details();

    FolderRef m_folder;
    QByteArray m_name;
    std::unique_ptr<Details> m_details;
    int m_differenceCode = 0;
    DifferenceList m_differences;
    bool m_hasFile = false;
    bool m_parentTrailing = false;
    bool m_detailsLoaded = false;
};

/** Records are shared between their collection and the rows that show them. */
using ComparisonFilePtr = std::shared_ptr<ComparisonFile>;

Q_DECLARE_METATYPE(ComparisonFilePtr)
