#pragma once

#include <QString>

class QComboBox;
class QWidget;

/**
 * Small helpers shared by the windows of the program: combo entries with item data, the
 * topmost band, centring a dialog and the message font.
 */

/** Appends \a text with \a itemData to \a combo; returns the new entry's index. */
int AddComboItem(QComboBox *combo, const QString &text, int itemData);

/** The index of the first entry whose item data is \a itemData; -1 when there is none. */
int FindComboItemData(const QComboBox *combo, int itemData);

/**
 * Puts \a window into the topmost band (always in front of ordinary windows) or takes it
 * out, without moving or sizing it and without hiding a visible window.
 */
void SetTopmost(QWidget *window, bool on);

/** True when \a window (or the window it lies in) is in the topmost band. */
bool IsTopmost(const QWidget *window);

/**
 * Centres \a form over \a window and keeps it wholly on the screen that \a window is on (on
 * the primary screen when \a window is null or hidden).
 */
void CenterOverWindow(QWidget *form, const QWidget *window);

/** The family of the application's default font, the font every window uses. */
QString GetMessageFontName();

/** Gives \a form and every control on it the font family of GetMessageFontName(). */
void ApplyMessageFont(QWidget *form);
