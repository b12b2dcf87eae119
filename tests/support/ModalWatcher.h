#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

#include <functional>

/**
 * Answers the modal windows and popup menus that open while it lives, so that tests can drive
 * exec(): each goes first to the handler; a message box it leaves is recorded (title and text)
 * and closed with its default button, else its escape button.
 */
class ModalWatcher {
public:
    /** Returns true when it dealt with the window. */
    using Handler = std::function<bool(QWidget *shown)>;

    explicit ModalWatcher(Handler handler = {})
        : m_handler(std::move(handler)) {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { poll(); });
        m_timer.start(10);
    }

    QStringList titles() const { return m_titles; }
    QStringList texts() const { return m_texts; }

private:
    void poll() {
        QWidget *shown = QApplication::activePopupWidget();
        if (!shown)
            shown = QApplication::activeModalWidget();
        // Forgotten once gone, so that the same menu opened again is seen again.
        if (shown == m_last)
            return;
        m_last = shown;
        if (!shown || (m_handler && m_handler(shown)))
            return;
        auto *box = qobject_cast<QMessageBox *>(shown);
        if (!box)
            return;
        m_titles.append(box->windowTitle());
        m_texts.append(box->text());
        if (QAbstractButton *button =
                box->defaultButton() ? box->defaultButton() : box->escapeButton())
            button->click();
        else
            box->done(0);
    }

    Handler m_handler;
    QTimer m_timer;
    QPointer<QWidget> m_last;
    QStringList m_titles;
    QStringList m_texts;
};
