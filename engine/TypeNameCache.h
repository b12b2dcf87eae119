#pragma once

#include <QString>

/**
 * The type name of a regular file from its name alone: the description of the MIME type that
 * QMimeDatabase matches by the name's glob patterns (no content sniffing).
 *
 * Asking the database costs tens of microseconds per name, because some of its patterns are
 * matched by compiling a regular expression on every call; a listing of many thousand files
 * would spend seconds there. Most names are matched by their last extension alone, so the
 * answer is remembered per extension. A name that any other kind of pattern could match (an
 * exact name such as "Makefile", a prefix such as "README*", a longer suffix such as
 * "*.tar.gz", a case-sensitive or bracketed pattern) is always asked for in full, so every
 * answer is exactly the database's. Safe to call from any thread.
 */
class TypeNameCache {
public:
    /** The type description of a regular file called \a fileName (a name, not a path). */
    static QString typeOf(const QString &fileName);
    /**
     * Reads the MIME database's patterns now (tens of milliseconds) rather than at the first
     * typeOf(): a window calls it on a worker thread at start so that its first compare
     * does not wait for it.
     */
    static void prepare();
};
