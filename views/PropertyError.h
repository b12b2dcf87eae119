#pragma once

#include <QString>

#include <stdexcept>

/**
 * Thrown by a property setter of one of our own classes when it is given a value it does not
 * accept (run-time error 380, "Invalid property value"). The object keeps its old value.
 */
class PropertyError : public std::invalid_argument {
public:
    /** The error number of an invalid property value. */
    static constexpr int InvalidPropertyValue = 380;

    /** \a source names the class that refused the value, for example "pairscope.cSplitter". */
    explicit PropertyError(const QString &source)
        : std::invalid_argument("Invalid property value")
        , m_source(source) {}

    /** The error number: always 380. */
    int number() const { return InvalidPropertyValue; }
    /** The program's name followed by the class that raised the error. */
    const QString &source() const { return m_source; }
    /** The error's description, "Invalid property value". */
    QString description() const { return QString::fromLatin1(what()); }

private:
    QString m_source;
};
