#include "reports/OutputStream.h"

#include <QIODevice>

#include <cerrno>

namespace {
// Large enough that a report of many thousand lines costs few system calls.
constexpr qsizetype FlushThreshold = 256 * 1024;
} // namespace

OutputStream::OutputStream(std::FILE *file)
    : m_file(file) {
    m_buffer.reserve(FlushThreshold + 4096);
}

OutputStream::OutputStream(QIODevice *device)
    : m_device(device) {
    m_buffer.reserve(FlushThreshold + 4096);
}

OutputStream::~OutputStream() {
    flush();
}

OutputStream &OutputStream::operator<<(QByteArrayView bytes) {
    m_buffer.append(bytes);
    if (m_buffer.size() >= FlushThreshold)
        flush();
    return *this;
}

OutputStream &OutputStream::operator<<(const QString &text) {
    return *this << QByteArrayView(text.toUtf8());
}

OutputStream &OutputStream::operator<<(char c) {
    m_buffer.append(c);
    return *this;
}

OutputStream &OutputStream::operator<<(qint64 number) {
    return *this << QByteArrayView(QByteArray::number(number));
}

bool OutputStream::flush() {
    const auto failed = [this] {
        if (m_error == 0)
            m_error = errno != 0 ? errno : EIO;
    };
    if (!m_buffer.isEmpty()) {
        const qint64 written =
            m_device
                ? m_device->write(m_buffer)
                : qint64(std::fwrite(m_buffer.constData(), 1, size_t(m_buffer.size()), m_file));
        if (written != m_buffer.size())
            failed();
        m_buffer.clear();
    }
    if (m_file && std::fflush(m_file) != 0)
        failed();
    return m_error == 0;
}
