#pragma once

#include <QByteArray>

/**
 * The file names of one folder listing in one allocation, each followed by a NUL, handed out
 * as QByteArrays that share it. A name with an allocation of its own costs a heap block with
 * a 16-byte header, 48 bytes for a typical name; a shared one costs its length and the NUL.
 *
 * A handed-out name holds a reference to the block, so it stays valid however long it is
 * kept, and Qt copies it before any change while the block is shared. Kept names keep their
 * whole block alive; that is one folder listing at most.
 */
class NameBlock {
public:
    /** Room for names of \a bytes in all, counting one NUL after each. */
    explicit NameBlock(qsizetype bytes);

    /** Copies \a length bytes of \a data into the block and returns them as a shared name. */
    QByteArray add(const char *data, qsizetype length);

private:
    QByteArray m_block;
    char *m_data;
    qsizetype m_used = 0;
};
