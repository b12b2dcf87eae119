#pragma once

#include <QtGlobal>

/**
 * The CRC-32 of a range of an open file, read through a memory mapping: the bytes are summed
 * where the page cache holds them instead of being copied into a buffer first, which halves
 * the work on a large file.
 *
 * A file cut short while it is mapped makes the kernel raise SIGBUS on the pages past its new
 * end, and so does a page that cannot be read from the disk. The signal is caught on the
 * thread that touched the page and the range reported as not read, as a read() would have come
 * up short; a SIGBUS anywhere else goes where it went before.
 */
class MappedChecksum {
public:
    /**
     * Updates \a crc with the \a length bytes of \a fd from \a offset (a multiple of the page
     * size); false, with \a crc as it was, when the range could not be mapped or read whole.
     */
    static bool update(int fd, qint64 offset, qint64 length, quint32 &crc);
};
