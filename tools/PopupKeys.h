#pragma once

class QComboBox;

/**
 * Keeps Enter, Return and Esc inside \a combo's drop-down while it is open: they pick or
 * dismiss an entry there and never reach the window's shortcuts, which would otherwise start
 * or cancel a compare with the same key press.
 */
void KeepKeysInPopup(QComboBox *combo);
