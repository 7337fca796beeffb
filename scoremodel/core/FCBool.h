// FCBool: a typed field holding a truth value as an int.
//
// Any non-zero value is true for operator! and operator||; operator& is the
// bitwise and of the stored ints, as on the wrapped type. Equality compares the
// stored ints, so 2 and 1 are not equal.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

class SCOREMODEL_API FCBool : public FCBase
{
    FC_DECLARE_VALUE(FCBool, int, int, 0)

    int operator!() const { return !m_value; }
    int operator&(int value) const { return m_value & value; }
    int operator&(const FCBool &other) const { return m_value & other.m_value; }
    // Both sides are always evaluated: an overloaded || cannot short-circuit.
    int operator||(int value) const { return m_value || value; }
    int operator||(const FCBool &other) const { return m_value || other.m_value; }

    FC_DECLARE_EQUALITY(FCBool, int)
};
