#include "engine/ManifestWriter.h"

#include "engine/ComparisonSet.h"
#include "engine/FdGuard.h"
#include "engine/LongPath.h"
#include "engine/ManifestFormat.h"
#include "engine/TreeWalker.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

/** Reads of a file that keeps changing under them before it is given up. */
constexpr int checksumTries = 3;
/** Files stated and checksummed ahead of the line being written. */
constexpr int readAheadWindow = 256;

QString systemError(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

QByteArray relativePath(const FolderNode &folder, const QByteArray &name) {
    const QByteArray base = folder.relativeNativePath();
    return base.isEmpty() ? name : base + '/' + name;
}

} // namespace

ManifestWriter::ManifestWriter(Options options)
    : m_options(std::move(options)) {
    m_crc.setChunkSize(m_options.chunkSize);
}

bool ManifestWriter::write(const QByteArray &root, const LineSink &lines,
                           const ProblemSink &problems) {
    m_lines = &lines;
    m_problems = &problems;
    m_failed = false;
    ManifestFormat::Header header;
    header.checksums = m_options.checksums;
    header.gitignore = m_options.filter && m_options.filter->gitignore;
    if (!lines(ManifestFormat::headerLine(header)))
        return false;
    TreeWalker walker({
                          [this] { return m_failed; },
                          [this](const FolderRef &folder, std::vector<QByteArray> &names) {
                              return writeFiles(folder, names);
                          },
                          [this](const FolderRef &folder, int error) {
                              (*m_problems)(folder->nativePath(), systemError(error));
                              writeFolder(folder, true);
                          },
                          [this](const FolderRef &folder) { writeFolder(folder, false); },
                      },
                      m_options.caseRule, m_options.filter);
    QByteArray native = root;
    while (native.size() > 1 && native.endsWith('/'))
        native.chop(1);
    PairTestOptions options;
    options.bits = m_options.checksums ? ComparisonBits::Checksums : 0;
    m_readAhead = std::make_unique<ReadAhead>(ReadAhead::defaultWorkerCount(), options,
                                              m_crc.ChunkSize(), readAheadWindow, m_crc);
    m_readAhead->setChecksumsAlone(m_options.checksums);
    walker.walk(FolderRef::make(native, native.size(), QString::fromLocal8Bit(native)));
    m_readAhead.reset();
    return !m_failed;
}

bool ManifestWriter::writeFolder(const FolderRef &folder, bool unreadable) {
    ManifestEntry entry;
    entry.path = folder->relativeNativePath();
    // Below the root a folder is never a link; the root may be given through one, and is the
    // folder it leads to. A folder that may not be searched still has properties to show.
    entry.stat =
        FileStat::read(folder->parent() ? folder->nativePath() : folder->nativePath() + "/.");
    if (!entry.stat.isValid())
        entry.stat.setMode(S_IFDIR, "", false);
    entry.ignoresCase = folder->ignoresCase();
    entry.unreadable = unreadable;
    if (!m_failed && !(*m_lines)(ManifestFormat::entryLine(entry)))
        m_failed = true;
    return !m_failed;
}

bool ManifestWriter::writeFiles(const FolderRef &folder, const std::vector<QByteArray> &names) {
    const FdGuard fd(LongPath::open(folder->nativePath(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (fd.get() < 0) {
        (*m_problems)(folder->nativePath(), systemError(errno));
        return true;
    }
    // Stats and checksums are taken by the read-ahead workers, the lines written here in order.
    std::size_t queued = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (; queued < names.size() && m_readAhead->space() > 0; ++queued) {
            ReadAhead::Job &job = m_readAhead->next();
            job.sourceFolder = folder;
            job.sourceName = names[queued];
            m_readAhead->add();
        }
        m_readAhead->publish();
        const ReadAhead::Job *job = m_readAhead->waitFront([] { return true; });
        const bool written = writeFile(fd.get(), *folder, names[i], *job);
        m_readAhead->release();
        if (!written) {
            m_failed = true;
            return false;
        }
    }
    return true;
}

bool ManifestWriter::writeFile(int dirFd, const FolderNode &folder, const QByteArray &name,
                               const ReadAhead::Job &job) {
    ManifestEntry entry;
    entry.path = relativePath(folder, name);
    entry.stat = job.sourceStat;
    if (!entry.stat.isValid()) {
        // Deleted since the folder was listed: not part of the tree any more.
        if (entry.stat.error == ENOENT)
            return true;
        (*m_problems)(folder.childNativePath(name), systemError(entry.stat.error));
    } else if (entry.stat.kind == FileKind::Symlink) {
        entry.target = CRC32Object::linkText(dirFd, name.constData(), entry.stat).value_or("");
    }
    if (job.checksummed) {
        entry.checksummed = true;
        entry.checksum = job.sourceChecksum;
        if (entry.checksum.status == CRC32Object::Status::Changed)
            entry.checksum = checksum(dirFd, name, entry.stat);
        if (entry.checksum.status != CRC32Object::Status::Ok)
            (*m_problems)(folder.childNativePath(name),
                          entry.checksum.status == CRC32Object::Status::Changed
                              ? QStringLiteral("kept changing while it was read")
                              : QStringLiteral("could not be read: ") +
                                    systemError(entry.checksum.error));
    }
    return (*m_lines)(ManifestFormat::entryLine(entry));
}

CRC32Object::Result ManifestWriter::checksum(int dirFd, const QByteArray &name, FileStat &stat) {
    CRC32Object::Result result;
    for (int attempt = 0; attempt < checksumTries; ++attempt) {
        result = m_crc.Checksum(dirFd, name, stat);
        if (result.status != CRC32Object::Status::Changed)
            return result;
        // The line must hold the properties the checksum belongs to.
        const FileStat again = FileStat::read(dirFd, name.constData());
        if (!again.isValid())
            return {CRC32Object::Status::Failed, 0, again.error};
        stat = again;
    }
    return result;
}
