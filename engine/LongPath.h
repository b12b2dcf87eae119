#pragma once

#include <QByteArray>

/**
 * Opening paths of any length. The kernel refuses a path of PATH_MAX bytes or more
 * (ENAMETOOLONG), yet a tree can be deeper than that: such a path is opened a piece at a
 * time, each piece relative to the folder the one before it opened.
 */
namespace LongPath {

/** openat(AT_FDCWD, \a path, \a flags) for a path of any length: -1 with errno on failure. */
int open(const QByteArray &path, int flags);

/**
 * The folder holding the last part of a path, ready for the *at() calls: the working folder
 * and the whole path when the path is short, else the opened folder and the last part.
 */
class Parent {
public:
    /** \a path must outlive the object: name() points into it. */
    explicit Parent(const QByteArray &path);
    ~Parent();
    Parent(const Parent &) = delete;
    Parent &operator=(const Parent &) = delete;

    /** False when the folder could not be opened (errno tells why). */
    bool isOpen() const { return m_fd != -1; }
    int fd() const { return m_fd; }
    const char *name() const { return m_name; }

private:
    int m_fd;
    const char *m_name;
    QByteArray m_folder;
};

} // namespace LongPath
