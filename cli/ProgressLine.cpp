#include "cli/ProgressLine.h"

#include <cmath>

namespace {
constexpr qint64 RedrawIntervalMs = 100;
}

ProgressLine::ProgressLine(std::FILE *stream)
    : m_stream(stream) {}

void ProgressLine::fileAdded(int count) {
    if (due())
        show(QStringLiteral("Building source file list (%1)").arg(count));
}

void ProgressLine::compareProgress(int pass, int current, int total) {
    // The start of a cycle is always shown: it is rare and tells that the walks are over.
    if (current != -1 && !due())
        return;
    if (current == -1) {
        show(total == -1 ? QStringLiteral("Initializing comparison data")
                         : QStringLiteral("Analyzing files"));
        return;
    }
    QString text =
        QStringLiteral("Comparing files - pass %1  (%2 of %3)").arg(pass).arg(current).arg(total);
    if (total > 0)
        text += QStringLiteral("  %1%").arg(std::lrint(100.0 * current / total));
    show(text);
}

void ProgressLine::clear() {
    if (m_shownLength == 0)
        return;
    std::fprintf(m_stream, "\r%*s\r", int(m_shownLength), "");
    std::fflush(m_stream);
    m_shownLength = 0;
}

bool ProgressLine::due() {
    return !m_sinceShown.isValid() || m_sinceShown.elapsed() >= RedrawIntervalMs;
}

void ProgressLine::show(const QString &text) {
    m_sinceShown.start();
    const QByteArray line = text.toLocal8Bit();
    // Pad with blanks rather than an erase sequence, so that a forced --progress into a file
    // or pipe stays plain text.
    const int padding = int(qMax<qsizetype>(0, m_shownLength - line.size()));
    std::fprintf(m_stream, "\r%s%*s", line.constData(), padding, "");
    std::fflush(m_stream);
    m_shownLength = line.size();
}
