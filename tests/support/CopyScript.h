#pragma once

#include "support/TestTree.h"
#include "tools/CopyJob.h"

#include <QDirIterator>
#include <QRandomGenerator>

#include <deque>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>

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
        return !onProgress || onProgress(progress);
    }

private:
    // An unexpected question stops the job visibly.
    static ReplaceAnswer take(std::deque<ReplaceAnswer> &queue) {
        if (queue.empty())
            return ReplaceAnswer::Cancel;
        const ReplaceAnswer answer = queue.front();
        queue.pop_front();
        return answer;
    }
};

inline QByteArray readNative(const QByteArray &path) {
    QFile file;
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0 || !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return "<unreadable>";
    return file.readAll();
}

inline bool existsNative(const QByteArray &path) {
    struct stat st {};
    return ::lstat(path.constData(), &st) == 0;
}

/** Temporary files of the copy left anywhere below \a folder. */
inline QStringList leftovers(const QString &folder) {
    QStringList found;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        if (it.nextFileInfo().fileName().startsWith(QLatin1String(".pairscope-")))
            found.append(it.filePath());
    }
    return found;
}

/** A copy of \a from to \a to below \a tree, each path's first folder its root (made here). */
inline CopyItem item(const TestTree &tree, const QByteArray &from, const QByteArray &to) {
    const auto root = [&tree](const QByteArray &path) {
        return tree.nativePath(path.left(path.indexOf('/')));
    };
    QDir().mkpath(QFile::decodeName(root(to)));
    return {tree.nativePath(from), tree.nativePath(to), root(from), root(to)};
}

inline QByteArray randomBytes(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator(42).fillRange(reinterpret_cast<quint32 *>(bytes.data()), size / 4);
    return bytes;
}

} // namespace
