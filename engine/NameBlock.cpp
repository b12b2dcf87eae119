#include "engine/NameBlock.h"

#include <cstring>

NameBlock::NameBlock(qsizetype bytes)
    : m_block(bytes, Qt::Uninitialized)
    // Taken while the block is not yet shared: later, data() would copy it first.
    , m_data(m_block.data()) {}

QByteArray NameBlock::add(const char *data, qsizetype length) {
    Q_ASSERT(m_used + length + 1 <= m_block.size());
    char *start = m_data + m_used;
    std::memcpy(start, data, std::size_t(length));
    start[length] = '\0';
    m_used += length + 1;
    // A copy of the block's data pointer takes a reference; narrowed to the name, it reads
    // as a QByteArray of its own.
    QByteArray::DataPointer name = m_block.data_ptr();
    name.ptr = start;
    name.size = length;
    return QByteArray(std::move(name));
}
