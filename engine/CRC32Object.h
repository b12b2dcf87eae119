#pragma once

#include "engine/FileStat.h"
#include "engine/YieldHook.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <cstddef>
#include <optional>
#include <vector>

/**
 * The standard CRC-32 (as zip and PNG use it) of a whole file, read in chunks of ChunkSize()
 * bytes into one buffer, so that a file of any size costs one chunk of memory. The checksum is
 * computed by libdeflate. A symbolic link is checksummed by its text, never followed; a FIFO,
 * socket or device is never opened. Files are opened without updating their accessed date
 * where the kernel allows it (a link's date is put back after its text is read), and are
 * always closed, cancelled or not. A file whose size or modified date after the read differ
 * from the properties it was judged on has changed while it was read: its checksum belongs to
 * neither state, and is not given.
 */
class CRC32Object {
public:
    /** How a checksum ended. */
    enum class Status {
        /** The checksum of the whole content (0 for an empty file). */
        Ok,
        /** Cancel() arrived; the value is 0. */
        Cancelled,
        /** Not a regular file or symbolic link: no checksum is taken; not an error. */
        Skipped,
        /** The file could not be opened or read; error() says why. */
        Failed,
        /**
         * The file changed between the look at its properties and the end of the read (its
         * size or modified date differ): no checksum; the tree has changed.
         */
        Changed,
    };

    /** The outcome of one checksum. */
    struct Result {
        Status status = Status::Ok;
        quint32 crc = 0;
        /** errno of the failure when status is Failed. */
        int error = 0;
    };

    static constexpr int DefaultChunkSize = 65536;
    static constexpr int MinimumChunkSize = 1024;
    static constexpr int MaximumChunkSize = 16 * 1024 * 1024;

    CRC32Object();

    int ChunkSize() const { return m_chunkSize; }
    /** Clamped to MinimumChunkSize..MaximumChunkSize. */
    void setChunkSize(int NewSize);

    /**
     * Stops the running checksum after its current chunk. Safe to call from any thread; the
     * flag is cleared when the next checksum starts.
     */
    void Cancel() { m_cancel.store(true, std::memory_order_relaxed); }
    bool isCancelRequested() const { return m_cancel.load(std::memory_order_relaxed); }

    /** Eight upper-case hexadecimal digits ("CBF43926"); -1 gives "FFFFFFFF". */
    static QString CRC32String(qint32 CRC32);

    /** The checksum of a file as a signed value; 0 for an empty, cancelled or unreadable file. */
    qint32 CRC32(const QString &path);
    /** Same for a native path. */
    qint32 CRC32(const QByteArray &nativePath);

    /** The checksum of a file with its outcome told apart (read errors are not content). */
    Result Checksum(const QByteArray &nativePath);
    /**
     * Same, for a file whose properties were just read as \a known, so that no second stat is
     * needed: an empty regular file is not even opened.
     */
    Result Checksum(const QByteArray &nativePath, const FileStat &known);
    /** Same for the entry \a name of the folder open as \a dirFd (AT_FDCWD for a path). */
    Result Checksum(int dirFd, const QByteArray &name, const FileStat &known);

    /**
     * The text of the link \a name in the folder open as \a dirFd, whose properties were read
     * as \a known: its accessed date is put back afterwards. Nothing (errno says why) when it
     * cannot be read.
     */
    static std::optional<QByteArray> linkText(int dirFd, const char *name, const FileStat &known);

    /** Continues \a crc (0 to start) over \a size bytes; the chunks of a file in order. */
    static quint32 update(quint32 crc, const void *data, std::size_t size);

    /** Called after every chunk, on the calling thread. */
    void setYieldHook(YieldHook hook) { m_yield = std::move(hook); }

private:
    /**
     * Files from this size on are summed through a memory mapping (see MappedChecksum), in
     * windows of MappedWindow bytes; smaller ones cost less through the buffer.
     */
    static constexpr qint64 MappedMinimum = 1 << 20;
    static constexpr qint64 MappedWindow = 8 << 20;

    Result readRegular(int dirFd, const char *name, const FileStat &known);
    /**
     * Sums the open file \a fd of \a knownSize bytes through mappings, from \a total on, as
     * far as they can be read; false when cancelled.
     */
    bool sumMapped(int fd, qint64 knownSize, quint32 &crc, qint64 &total);
    /**
     * Sums the open file \a fd from \a total on, a chunk at a time, to its end: a result
     * only when it failed or was cancelled.
     */
    std::optional<Result> sumRead(int fd, qint64 knownSize, quint32 &crc, qint64 &total);
    Result readLink(int dirFd, const char *name, const FileStat &known);
    bool yieldAndTest();

    int m_chunkSize = DefaultChunkSize;
    std::atomic<bool> m_cancel{false};
    std::vector<char> m_buffer;
    YieldHook m_yield;
};
