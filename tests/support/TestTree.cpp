#include "support/TestTree.h"

#include <QRandomGenerator>

#include <fcntl.h>
#include <sys/stat.h>

bool TestTree::writeNative(const QByteArray &relative, const QByteArray &content) {
    const QByteArray full = nativePath(relative);
    QDir().mkpath(QFile::decodeName(full.left(full.lastIndexOf('/'))));
    // Opened by its bytes: a name that is not UTF-8 would not survive a QString.
    const int fd = ::open(full.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    QFile file;
    return fd >= 0 && file.open(fd, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle) &&
           file.write(content) == content.size() && file.flush();
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
