#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdio>

class QIODevice;

/**
 * Buffered writing to a C stream or an open device, remembering whether any write failed (a
 * full disk, a closed pipe) so that the caller can report it instead of going on as if all
 * had been written.
 */
class OutputStream {
public:
    explicit OutputStream(std::FILE *file);
    /** Writes to \a device, which must be open for writing; its errorString() tells why not. */
    explicit OutputStream(QIODevice *device);
    ~OutputStream();

    OutputStream(const OutputStream &) = delete;
    OutputStream &operator=(const OutputStream &) = delete;

    /** Bytes as they are. */
    OutputStream &operator<<(QByteArrayView bytes);
    OutputStream &operator<<(const QByteArray &bytes) { return *this << QByteArrayView(bytes); }
    OutputStream &operator<<(const char *bytes) { return *this << QByteArrayView(bytes); }
    /** Text as UTF-8. */
    OutputStream &operator<<(const QString &text);
    OutputStream &operator<<(char c);
    /** A number in plain decimal digits, whatever the locale. */
    OutputStream &operator<<(qint64 number);
    OutputStream &operator<<(int number) { return *this << qint64(number); }

    /** Writes out what is buffered; false when this or any earlier write failed. */
    bool flush();
    /** The system's error number of the first failed write (EIO for a device), 0 when none. */
    int error() const { return m_error; }

private:
    std::FILE *m_file = nullptr;
    QIODevice *m_device = nullptr;
    QByteArray m_buffer;
    int m_error = 0;
};
