#pragma once

#include <sys/types.h>

/**
 * The system calls of a copy whose support differs between file systems (FAT over FUSE
 * refuses permissions, some have no unnamed temporary files or no atomic exchange). They go
 * through this table so that the tests can act as such a file system; the program never
 * changes it.
 */
struct CopySystemCalls {
    int (*fchmod)(int fd, mode_t mode);
    int (*ftruncate)(int fd, off_t length);
    int (*fsync)(int fd);
    /** Opens an unnamed file in the folder \a folderFd (O_TMPFILE). */
    int (*openUnnamed)(int folderFd);
    int (*renameat2)(int fromFolder, const char *from, int toFolder, const char *to,
                     unsigned int flags);
    int (*linkat)(int fromFolder, const char *from, int toFolder, const char *to, int flags);

    /** The table in use; the real calls unless a test replaced some. */
    static CopySystemCalls &current();
    /** The real calls. */
    static CopySystemCalls real();
};
