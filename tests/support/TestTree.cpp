#include "support/TestTree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

TestTree::TestTree() = default;

QString TestTree::root() const {
    return m_dir.path();
}

QString TestTree::path(const QString &relative) const {
    return m_dir.path() + QLatin1Char('/') + relative;
}

QByteArray TestTree::nativePath(const QByteArray &relative) const {
    return QFile::encodeName(m_dir.path()) + '/' + relative;
}

bool TestTree::write(const QString &relative, const QByteArray &content) {
    return writeNative(QFile::encodeName(relative), content);
}

bool TestTree::writeNative(const QByteArray &relative, const QByteArray &content) {
    const QByteArray full = nativePath(relative);
    const qsizetype slash = full.lastIndexOf('/');
    QDir().mkpath(QFile::decodeName(full.left(slash)));
    const int fd = ::open(full.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return false;
    qsizetype done = 0;
    while (done < content.size()) {
        const ssize_t n = ::write(fd, content.constData() + done, size_t(content.size() - done));
        if (n <= 0) {
            ::close(fd);
            return false;
        }
        done += n;
    }
    return ::close(fd) == 0;
}

bool TestTree::mkdir(const QString &relative) {
    return QDir().mkpath(path(relative));
}

bool TestTree::setTimes(const QString &relative, time_t seconds, long nanoseconds) {
    const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
    return ::utimensat(AT_FDCWD, QFile::encodeName(path(relative)).constData(), times,
                       AT_SYMLINK_NOFOLLOW) == 0;
}

quint32 testSeed() {
    const quint32 seed = qEnvironmentVariableIsSet("PAIRSCOPE_SEED")
                             ? quint32(qEnvironmentVariableIntValue("PAIRSCOPE_SEED"))
                             : QRandomGenerator::system()->generate();
    qInfo("random seed %u (set PAIRSCOPE_SEED=%u to repeat)", seed, seed);
    return seed;
}
