#pragma once

#include <QList>
#include <QString>

#include <optional>
#include <utility>

/**
 * The per-user settings file of Pairscope: sections of keys whose values are plain text
 * ("True", "65536", "/home/me/photos"). This is the only place that opens the file; every
 * reader and writer of a setting goes through it.
 *
 * Each call opens the store afresh, so a file edited by hand while the program runs is
 * picked up, and several writers never hold stale copies of each other's keys.
 */
class SettingsStore {
public:
    /** One key and the text to store under it. */
    using Entry = std::pair<QString, QString>;

    /** The full path of the settings file (it need not exist yet). */
    static QString fileName();

    /**
     * The text stored under \a key in \a section, or nothing when the key is missing or the
     * file cannot be read. A value the file holds in some other shape (a list, a typed value
     * written by another program) is returned as its text.
     */
    static std::optional<QString> value(const QString &section, const QString &key);

    /** The stored text, or \a fallback when the key is missing. */
    static QString text(const QString &section, const QString &key,
                        const QString &fallback = QString());

    /**
     * Stores \a entries in \a section in one write of the file. Returns false when the file
     * could not be written; the file then keeps exactly its earlier content.
     */
    static bool write(const QString &section, const QList<Entry> &entries);

    /** Stores one key; see write(). */
    static bool write(const QString &section, const QString &key, const QString &text);
};
