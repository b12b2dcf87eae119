#include "engine/ComparisonSet.h"

using namespace ComparisonBits;

QString ComparisonDescription(int comparisons, bool doCRCLast) {
    const auto has = [comparisons](int bit) { return (comparisons & bit) != 0; };
    QString text;
    if (has(Sizes))
        text += QLatin1String(", File Sizes");
    if (has(Checksums) && !doCRCLast)
        text += QLatin1String(", CRC-32 Checksums");

    // The date phrases are deliberately not uniform; each literal stands as users know it.
    if (has(Modified) && has(Created) && has(Accessed))
        text += QLatin1String(", Modified/Created/Accessed Dates");
    else if (has(Modified) && has(Created))
        text += QLatin1String(", Modified/Created Dates");
    else if (has(Modified) && has(Accessed))
        text += QLatin1String(", Modified/Accessed Dates");
    else if (has(Created) && has(Accessed))
        text += QLatin1String(", Date Created/Accessed");
    else if (has(Modified))
        text += QLatin1String(", Date Modified");
    else if (has(Created))
        text += QLatin1String(", Date Created");
    else if (has(Accessed))
        text += QLatin1String(", Date Accessed");

    if (has(Attributes))
        text += QLatin1String(", Attributes");
    if (has(Checksums) && doCRCLast)
        text += QLatin1String(", CRC-32 Checksums");

    if (text.isEmpty())
        text = QLatin1String("File Existence Only");
    else
        text.remove(0, 2);
    return QLatin1String("Compare ") + text;
}
