#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

#include <functional>

/**
 * Answers the modal windows and popup menus that open while it lives, as a user would, so that
 * tests can drive what a command shows with exec(). Each is first offered to the handler; a
 * message box the handler leaves is recorded (title and text) and closed with its default
 * button (or its escape button when it has none).
 */
class ModalWatcher {
public:
    /** Returns true when it dealt with the window. */
    using Handler = std::function<bool(QWidget *shown)>;

    explicit ModalWatcher(Handler handler = {})
        : m_handler(std::move(handler)) {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { poll(); });
        m_timer.start();
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
        if (auto *box = qobject_cast<QMessageBox *>(shown)) {
            m_titles.append(box->windowTitle());
            m_texts.append(box->text());
            QAbstractButton *button = box->defaultButton();
            if (!button)
                button = box->escapeButton();
            if (button)
                button->click();
            else
                box->done(0);
        }
    }

    Handler m_handler;
    QTimer m_timer;
    QPointer<QWidget> m_last;
    QStringList m_titles;
    QStringList m_texts;
};
