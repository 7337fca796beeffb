// FCInt: a typed field holding an int, with access to its 16-bit halves and
// to its bits. Many model words pack two small numbers or a set of switches
// into one int; this reads and writes them without masks at the call site.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

class SCOREMODEL_API FCInt : public FCBase
{
    FC_DECLARE_VALUE(FCInt, int, int, 0)

    // Bits 0..15.
    WORD GetLowValue() const { return static_cast<WORD>(static_cast<unsigned int>(m_value) & 0xFFFFu); }
    // Replaces bits 0..15, keeping the high half.
    void SetLowValue(WORD low)
    {
        m_value = static_cast<int>((static_cast<unsigned int>(m_value) & 0xFFFF0000u) | low);
    }
    // Bits 16..31.
    WORD GetHighValue() const { return static_cast<WORD>(static_cast<unsigned int>(m_value) >> 16); }
    // Replaces bits 16..31, keeping the low half.
    void SetHighValue(WORD high)
    {
        m_value = static_cast<int>((static_cast<unsigned int>(m_value) & 0xFFFFu) |
                                   (static_cast<unsigned int>(high) << 16));
    }

    // Bit `bit` (0..31) as 0 or 1; 0 for a bit outside the int.
    BYTE GetBitValue(int bit) const
    {
        return (bit < 0 || bit > 31) ? 0 : static_cast<BYTE>((static_cast<unsigned int>(m_value) >> bit) & 1u);
    }
    // Sets bit `bit` (0..31) when `value` is non-zero and clears it otherwise.
    // A bit outside the int changes nothing.
    void SetBitValue(int bit, BYTE value)
    {
        if (bit < 0 || bit > 31)
            return;
        const unsigned int mask = 1u << bit;
        const unsigned int word = static_cast<unsigned int>(m_value);
        m_value = static_cast<int>(value ? (word | mask) : (word & ~mask));
    }

    FC_DECLARE_COMPARISONS(FCInt, int)
};
