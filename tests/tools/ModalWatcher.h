#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

#include <functional>

/**
 * Answers the modal windows that open while it lives, as a user would: each is first offered
 * to a handler; a message box the handler leaves is recorded (title and text) and closed with
 * its default button (or its escape button when it has no default).
 */
class ModalWatcher {
public:
    using Handler = std::function<bool(QWidget *modal)>;

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
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal || modal == m_last)
            return;
        m_last = modal;
        if (m_handler && m_handler(modal))
            return;
        if (auto *box = qobject_cast<QMessageBox *>(modal)) {
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
