#pragma once

#include <QWidget>

class QLabel;

/**
 * The program's mark, name, one line on what it does, the version line and a hint, laid out
 * as the splash and About windows show them.
 */
class IdentityPanel : public QWidget {
    Q_OBJECT
public:
    /** \a hint is the last, quieter line. The version label is filled with VersionText(). */
    explicit IdentityPanel(const QString &hint, QWidget *parent = nullptr);

    QLabel *versionLabel() const { return m_version; }
    QLabel *hintLabel() const { return m_hint; }

private:
    QLabel *m_version = nullptr;
    QLabel *m_hint = nullptr;
};
