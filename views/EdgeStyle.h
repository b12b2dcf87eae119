#pragma once

#include <QPalette>
#include <QRect>

class QPainter;

/**
 * Edge styles and modifier flags for drawEdge(), with the bit values of the classic Windows
 * edge function so that stored styles keep their meaning.
 */
namespace EdgeStyle {
/** The outer line, lit from the top left. */
inline constexpr int RaisedOuter = 0x0001;
/** The outer line, lit from the bottom right. */
inline constexpr int SunkenOuter = 0x0002;
/** The inner line, lit from the top left. */
inline constexpr int RaisedInner = 0x0004;
/** The inner line, lit from the bottom right. */
inline constexpr int SunkenInner = 0x0008;
inline constexpr int Raised = RaisedOuter | RaisedInner;
inline constexpr int Sunken = SunkenOuter | SunkenInner;
inline constexpr int Etched = SunkenOuter | RaisedInner;
inline constexpr int Bump = RaisedOuter | SunkenInner;

inline constexpr int Left = 0x0001;
inline constexpr int Top = 0x0002;
inline constexpr int Right = 0x0004;
inline constexpr int Bottom = 0x0008;
/** All four sides. */
inline constexpr int Rect = Left | Top | Right | Bottom;
/** One diagonal line instead of sides; the side bits name the corner it ends in. */
inline constexpr int Diagonal = 0x0010;
/** Also fills the inside with the button face (the base colour with Mono). */
inline constexpr int Middle = 0x0800;
/** Swaps the two top-left colours, for a softer raised or deeper sunken look. */
inline constexpr int Soft = 0x1000;
/** Shrinks the rectangle by the width of the drawn sides. */
inline constexpr int Adjust = 0x2000;
/** One flat colour instead of light and shadow. */
inline constexpr int Flat = 0x4000;
/** Text-coloured lines, as for a monochrome display. */
inline constexpr int Mono = 0x8000;
/** The bits of an edge style that select lines. */
inline constexpr int StyleMask = 0x000F;
/** The side bits among the flags. */
inline constexpr int SideMask = Rect;
} // namespace EdgeStyle

/**
 * Draws the edges of \a rect selected by the side bits of \a flags in the style \a edge, with
 * the light, midlight, dark and shadow colours of \a palette. With EdgeStyle::Adjust in
 * \a flags, \a rect is shrunk by the drawn lines so that a following call draws inside them.
 * Returns false when nothing can be drawn (an inactive painter).
 */
bool drawEdge(QPainter &painter, QRect &rect, int edge, int flags,
              const QPalette &palette = QPalette());
