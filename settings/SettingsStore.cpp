#include "SettingsStore.h"

#include <QSettings>
#include <QStringList>

namespace {

// The INI format keeps every value as the text we hand it, as long as we hand it a QString:
// "True" stays "True", an empty path stays "Item1=". Typed values would be written in Qt's
// own forms ("true", "@Variant(...)"), which other tools and hand editing do not expect.
QSettings openStore() {
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Pairscope"),
                     QStringLiteral("Pairscope"));
}

QString sectionKey(const QString &section, const QString &key) {
    return section + QLatin1Char('/') + key;
}

} // namespace

QString SettingsStore::fileName() {
    return openStore().fileName();
}

std::optional<QString> SettingsStore::value(const QString &section, const QString &key) {
    const QSettings store = openStore();
    const QVariant stored = store.value(sectionKey(section, key));
    if (!stored.isValid())
        return std::nullopt;
    // A hand-written value with an unquoted comma is parsed as a list; rejoin it so that a
    // folder named "a,b" reads back as that name.
    if (stored.typeId() == QMetaType::QStringList)
        return stored.toStringList().join(QLatin1Char(','));
    if (stored.canConvert<QString>())
        return stored.toString();
    return QString();
}

QString SettingsStore::text(const QString &section, const QString &key, const QString &fallback) {
    return value(section, key).value_or(fallback);
}

bool SettingsStore::write(const QString &section, const QList<Entry> &entries) {
    QSettings store = openStore();
    for (const Entry &entry : entries)
        store.setValue(sectionKey(section, entry.first), entry.second);
    // The file is replaced atomically, so a write that fails (a read-only folder, a full
    // disk) leaves the previous file whole. A format error only means the old file was not
    // clean INI; the keys are still written.
    store.sync();
    return store.status() != QSettings::AccessError;
}

bool SettingsStore::write(const QString &section, const QString &key, const QString &text) {
    return write(section, {Entry(key, text)});
}
