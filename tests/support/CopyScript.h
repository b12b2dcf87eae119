#pragma once

#include "support/TestTree.h"
#include "tools/CopyJob.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>

#include <deque>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

// What the copy tests share: a scripted user, the items of a test tree, and looks at the disk.
namespace {

/** Answers the job's questions from a script and records them. */
class ScriptedObserver : public CopyObserver {
public:
    std::deque<ReplaceAnswer> answers;
    std::deque<ReplaceAnswer> trashAnswers;
    QList<QByteArray> asked;
    QList<QByteArray> askedWithoutTrash;
    QList<QByteArray> askedAllWithoutTrash;
    std::function<bool(const CopyProgress &)> onProgress;
    CopyProgress last;

    ReplaceAnswer askReplace(const CopyItem &item) override {
        asked.append(item.target);
        return take(answers);
    }
    ReplaceAnswer askReplaceWithoutTrash(const CopyItem &item, const QString &) override {
        askedWithoutTrash.append(item.target);
        return take(trashAnswers);
    }
    ReplaceAnswer askReplaceAllWithoutTrash(const QList<CopyItem> &items,
                                            const QStringList &) override {
        for (const CopyItem &item : items)
            askedAllWithoutTrash.append(item.target);
        return take(trashAnswers);
    }
    bool progress(const CopyProgress &progress) override {
        last = progress;
        return onProgress ? onProgress(progress) : true;
    }

private:
    static ReplaceAnswer take(std::deque<ReplaceAnswer> &queue) {
        if (queue.empty())
            return ReplaceAnswer::Cancel; // an unexpected question stops the job visibly
        const ReplaceAnswer answer = queue.front();
        queue.pop_front();
        return answer;
    }
};

QByteArray readNative(const QByteArray &path) {
    QFile file(QFile::decodeName(path));
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0 || !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return "<unreadable>";
    return file.readAll();
}

bool existsNative(const QByteArray &path) {
    struct stat st {};
    return ::lstat(path.constData(), &st) == 0;
}

/** Temporary files of the copy left anywhere below \a folder. */
QStringList leftovers(const QString &folder) {
    QStringList found;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        if (it.fileName().startsWith(QLatin1String(".pairscope-")))
            found.append(it.filePath());
    }
    return found;
}

/** A copy of \a from to \a to, both below \a tree; each path's first folder is its root. */
CopyItem item(const TestTree &tree, const QByteArray &from, const QByteArray &to) {
    // The roots exist, as they do after a compare.
    QDir().mkpath(QFile::decodeName(tree.nativePath(to.left(to.indexOf('/')))));
    return {tree.nativePath(from), tree.nativePath(to),
            tree.nativePath(from.left(from.indexOf('/'))),
            tree.nativePath(to.left(to.indexOf('/')))};
}

QByteArray randomBytes(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(42);
    generator.fillRange(reinterpret_cast<quint32 *>(bytes.data()), size / 4);
    return bytes;
}

} // namespace
