#pragma once

class ComparisonFileCollection;
class ListView;
class QString;
class QWidget;

/**
 * A double click on the selected row of \a listing (side \a side, 0 source, 1 destination):
 * a file that exists on both sides goes to the diff program \a diffProgram, which is asked
 * for first (and updated) when none is set; a file that exists on one side only opens with
 * the desktop's default application. A failure is told in a message box over \a owner.
 */
void RowDoubleClick(QWidget *owner, QString &diffProgram, const ListView *listing, int side,
                    const ComparisonFileCollection &source,
                    const ComparisonFileCollection &destination);
