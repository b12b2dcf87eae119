#pragma once

#include <QWidget>

class QLabel;
class QTimer;

/**
 * The start-up splash window. It opens fully transparent; FadeIn() brings it to opaque in four
 * 25 ms steps of 64, FadeOut() takes it down in steps of 32. The fade-out ends when the next
 * step would go below zero, at opacity 31 after a full fade-in, and the window then closes
 * and deletes itself: hold it in a QPointer.
 *
 * FadeOut() does not stop a fade-in that is still running: both timers tick until the
 * fade-in has reached 255, so an early fade-out still ends at 31 rather than at 0.
 */
class frmSplash : public QWidget {
    Q_OBJECT
    /** The current opacity, 0 (invisible) to 255 (opaque). */
    Q_PROPERTY(int Alpha READ Alpha NOTIFY AlphaChanged)

public:
    /** The tick interval of both fades, in milliseconds. */
    static constexpr int TickInterval = 25;

    /** Builds the window centred on the primary screen, transparent and not yet shown. */
    explicit frmSplash(QWidget *parent = nullptr);

    /** Starts raising the opacity (enables tmrIn). */
    void FadeIn();
    /** Starts lowering the opacity (enables tmrOut). */
    void FadeOut();
    /** The current opacity. */
    int Alpha() const { return m_alpha; }

    /** One fade-in step: +64, or 255 and stop. */
    void tmrIn_Timer();
    /** One fade-out step: -32, or, when that would go below zero, stop and close. */
    void tmrOut_Timer();

    QTimer *tmrIn = nullptr;
    QTimer *tmrOut = nullptr;
    /** "version 1.3  build 0027". */
    QLabel *lblVersion = nullptr;
    /** "Hold SHIFT to reset window location." */
    QLabel *lblHint = nullptr;

Q_SIGNALS:
    /** The opacity was applied with a new value. */
    void AlphaChanged(int alpha);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void ApplyAlpha();

    quint8 m_alpha = 0;
};
