#pragma once

#include "engine/DifferenceCode.h"

#include <QList>
#include <QtGlobal>

/**
 * Every difference found in a pair, in the order of the tests: difference codes, each at most
 * once. The first is the pair's difference code. Packed four bits a code into one word, since
 * every record carries one.
 */
class DifferenceList {
public:
    static constexpr int Capacity = 8;

    DifferenceList() = default;
    /** The list of one code; empty for Equal and NotPaired. */
    static DifferenceList of(int code) {
        DifferenceList list;
        if (code > DifferenceCode::Equal)
            list.add(code);
        return list;
    }

    /** Appends \a code (2..15) unless it is already listed. */
    void add(int code) {
        const int n = size();
        if (contains(code) || n == Capacity || code < 2 || code > 15)
            return;
        m_packed |= quint32(code) << (4 * n);
    }
    bool isEmpty() const { return m_packed == 0; }
    int size() const {
        int n = 0;
        while (n < Capacity && at(n) != 0)
            ++n;
        return n;
    }
    int at(int i) const { return int((m_packed >> (4 * i)) & 0xF); }
    bool contains(int code) const {
        for (int i = 0; i < Capacity && at(i) != 0; ++i) {
            if (at(i) == code)
                return true;
        }
        return false;
    }
    /** The pair's difference code: the first difference, or Equal when there is none. */
    int first() const { return isEmpty() ? DifferenceCode::Equal : at(0); }
    QList<int> codes() const {
        QList<int> list;
        for (int i = 0; i < size(); ++i)
            list.append(at(i));
        return list;
    }

    friend bool operator==(DifferenceList, DifferenceList) = default;

private:
    quint32 m_packed = 0;
};
