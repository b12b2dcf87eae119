#pragma once

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

/**
 * A small FAT file system mounted in user space (fusefat): a folder that resolves names without
 * regard to letter case. isMounted() is false, with a reason, where the machine cannot mount one.
 */
class FatImage {
public:
    FatImage() {
        const QString mkfs = QStandardPaths::findExecutable(
            QStringLiteral("mkfs.vfat"), {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")});
        if (mkfs.isEmpty() || QStandardPaths::findExecutable(QStringLiteral("fusefat")).isEmpty()) {
            m_reason = QStringLiteral("mkfs.vfat and fusefat are not installed");
            return;
        }
        const QString image = m_dir.filePath(QStringLiteral("fat.img"));
        m_mountPoint = m_dir.filePath(QStringLiteral("mnt"));
        m_mounted =
            QDir().mkpath(m_mountPoint) &&
            run(QStringLiteral("truncate"), {QStringLiteral("-s"), QStringLiteral("4M"), image}) &&
            run(mkfs, {image}) &&
            run(QStringLiteral("fusefat"),
                {QStringLiteral("-o"), QStringLiteral("rw+"), image, m_mountPoint});
        if (!m_mounted)
            m_reason = QStringLiteral("a FAT image could not be mounted here (no /dev/fuse?)");
    }
    ~FatImage() {
        if (m_mounted)
            run(QStringLiteral("fusermount"), {QStringLiteral("-u"), m_mountPoint});
    }
    Q_DISABLE_COPY(FatImage)

    bool isMounted() const { return m_mounted; }
    QString reason() const { return m_reason; }
    QString root() const { return m_mountPoint; }

private:
    static bool run(const QString &program, const QStringList &arguments) {
        QProcess process;
        process.start(program, arguments);
        return process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit &&
               process.exitCode() == 0;
    }

    QTemporaryDir m_dir;
    QString m_mountPoint;
    QString m_reason;
    bool m_mounted = false;
};
