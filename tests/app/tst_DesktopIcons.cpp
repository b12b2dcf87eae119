#include "app/DesktopIdentity.h"
#include "support/TestTree.h"
#include "views/FileIconCache.h"

#include <QApplication>
#include <QImage>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/** True when \a icon paints something at \a size: an SVG that failed to load paints nothing. */
bool paints(const QIcon &icon, int size) {
    const QImage image = icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) != 0)
                return true;
        }
    }
    return false;
}

} // namespace

class tst_DesktopIcons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void windowsCarryTheProgramIcon();
    void fileTypesHaveIconsWithoutADesktopTheme_data();
    void fileTypesHaveIconsWithoutADesktopTheme();

private:
    TestTree m_tree;
};

void tst_DesktopIcons::initTestCase() {
    // The offscreen platform names no icon theme, as an unrecognised desktop does not.
    QVERIFY(QIcon::themeName().isEmpty());
    DesktopIdentity::InstallIcons();
}

void tst_DesktopIcons::windowsCarryTheProgramIcon() {
    QWidget window;
    QVERIFY(paints(window.windowIcon(), 48));
    QCOMPARE(window.windowIcon().pixmap(48).toImage(),
             DesktopIdentity::ProgramIcon().pixmap(48).toImage());
}

void tst_DesktopIcons::fileTypesHaveIconsWithoutADesktopTheme_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("iconName");
    QTest::newRow("text") << "notes.txt"
                          << "text-x-generic";
    QTest::newRow("shell script") << "run.sh"
                                  << "text-x-script";
    QTest::newRow("picture") << "photo.PNG"
                             << "image-x-generic";
    QTest::newRow("archive") << "backup.tar.gz"
                             << "package-x-generic";
    QTest::newRow("document") << "paper.pdf"
                              << "x-office-document";
    QTest::newRow("unknown bytes") << "data.bin"
                                   << "application-x-generic";
    QTest::newRow("symbolic link") << "link"
                                   << "inode-symlink";
    QTest::newRow("FIFO") << "pipe"
                          << "inode-x-generic";
}

void tst_DesktopIcons::fileTypesHaveIconsWithoutADesktopTheme() {
    QFETCH(QString, name);
    QFETCH(QString, iconName);
    const QByteArray path = m_tree.nativePath(QFile::encodeName(name));
    if (name == QLatin1String("link"))
        QCOMPARE(::symlink("notes.txt", path.constData()), 0);
    else if (name == QLatin1String("pipe"))
        QCOMPARE(::mkfifo(path.constData(), 0600), 0);
    else
        QVERIFY(m_tree.write(name, "x"));
    const QIcon icon = FileIconCache::GetFileIconPicture(path);
    QCOMPARE(icon.name(), iconName);
    QVERIFY(paints(icon, 16));
}

QTEST_MAIN(tst_DesktopIcons)
#include "tst_DesktopIcons.moc"
