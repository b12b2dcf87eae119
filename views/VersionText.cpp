#include "views/VersionText.h"

#include <QStringList>

QString VersionText(int major, int minor, int revision) {
    // Two blanks before "build" are part of the text.
    return QStringLiteral("version %1.%2  build %3")
        .arg(major)
        .arg(minor)
        .arg(revision, 4, 10, QLatin1Char('0'));
}

QString VersionText() {
    const QStringList parts = QStringLiteral(PAIRSCOPE_VERSION).split(QLatin1Char('.'));
    const auto part = [&parts](qsizetype index) {
        return index < parts.size() ? parts[index].toInt() : 0;
    };
    return VersionText(part(0), part(1), part(2));
}
