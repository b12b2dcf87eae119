#pragma once

#include "engine/CRC32Object.h"
#include "engine/CaseRule.h"
#include "engine/FolderNode.h"
#include "engine/ReadAhead.h"
#include "engine/TreeFilter.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

/**
 * Writes the manifest of a tree on disk (see ManifestFormat): walked by a TreeWalker, so that
 * it holds exactly the files a compare of the tree would pair, with the properties and, when
 * asked for, the checksums a compare would judge them on.
 */
class ManifestWriter {
public:
    struct Options {
        bool checksums = false;
        CaseRule caseRule = CaseRule::Automatic;
        std::shared_ptr<const TreeFilter> filter;
        int chunkSize = CRC32Object::DefaultChunkSize;
    };
    /** Takes one line, without its newline; false stops the writing (the output failed). */
    using LineSink = std::function<bool(const QByteArray &line)>;
    /** Takes something that could not be read: its full path and why. */
    using ProblemSink = std::function<void(const QByteArray &path, const QString &reason)>;

    explicit ManifestWriter(Options options);

    /**
     * Writes the manifest of the tree below the folder \a root. What could not be read is
     * written as such and reported; returns false when \a lines stopped the writing.
     */
    bool write(const QByteArray &root, const LineSink &lines, const ProblemSink &problems);

private:
    /** The lines of the files \a names of \a folder; false when the output failed. */
    bool writeFiles(const FolderRef &folder, const std::vector<QByteArray> &names);
    /** The line of \a name, in \a folder open as \a dirFd, from what \a job read. */
    bool writeFile(int dirFd, const FolderNode &folder, const QByteArray &name,
                   const ReadAhead::Job &job);
    bool writeFolder(const FolderRef &folder, bool unreadable);
    /** The checksum of \a name, read again while the file keeps changing under the read. */
    CRC32Object::Result checksum(int dirFd, const QByteArray &name, FileStat &stat);

    Options m_options;
    CRC32Object m_crc;
    std::unique_ptr<ReadAhead> m_readAhead;
    const LineSink *m_lines = nullptr;
    const ProblemSink *m_problems = nullptr;
    bool m_failed = false;
};
