#include "views/TextCollation.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <numeric>

/**
 * The fast orderings (packed prefixes, digit keys compared as bytes) against a plain stable
 * sort by the collation's own comparison, on random texts built to share long prefixes.
 */
class tst_TextCollation : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void matchesTheReference_data() {
        QTest::addColumn<QString>("alphabet");
        QTest::addColumn<bool>("fixedWidth");
        QTest::newRow("letters of both cases") << "aAbBzZ" << false;
        QTest::newRow("letters and digits, varied lengths") << "a1B2." << false;
        QTest::newRow("zero-padded numbers") << "0123456789" << true;
        QTest::newRow("beyond Latin-1") << QStringLiteral("a\u00e9\u0416\u4e2d") << false;
    }
    void matchesTheReference() {
        QFETCH(QString, alphabet);
        QFETCH(bool, fixedWidth);
        QRandomGenerator random(42);
        const TextCollation collation;
        for (int round = 0; round < 20; ++round) {
            std::vector<QString> texts;
            // A shared head longer than the packed prefix, so that ties reach the tails.
            const QString head(int(random.bounded(12)), alphabet.at(0));
            for (int i = 0; i < 300; ++i) {
                QString text = head;
                const int length = fixedWidth ? 8 : int(random.bounded(10));
                for (int j = 0; j < length; ++j)
                    text += alphabet.at(int(random.bounded(int(alphabet.size()))));
                texts.push_back(text);
            }
            for (Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
                std::vector<int> expected(texts.size());
                std::iota(expected.begin(), expected.end(), 0);
                std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) {
                    const int c = collation.compare(texts[size_t(a)], texts[size_t(b)]);
                    return order == Qt::AscendingOrder ? c < 0 : c > 0;
                });
                QCOMPARE(collation.order(texts, order), expected);
            }
        }
    }
};

QTEST_MAIN(tst_TextCollation)
#include "tst_TextCollation.moc"
