#pragma once

#include <QWidget>

/**
 * The status bar's text panel: one line, elided at the end when it does not fit, never
 * widening the window. It can act as a link (underlined, pointing-hand cursor, clickable with
 * the mouse or, when focused, with Space or Enter).
 */
class StatusText : public QWidget {
    Q_OBJECT

public:
    explicit StatusText(QWidget *parent = nullptr);

    void setText(const QString &text);
    QString text() const { return m_text; }
    void setClickable(bool clickable);
    bool isClickable() const { return m_clickable; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /** A click on the text while it is clickable. */
    void clicked();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QString m_text;
    bool m_clickable = false;
};
