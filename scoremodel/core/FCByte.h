// FCByte: a typed field holding one byte, with access to its bits.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

class SCOREMODEL_API FCByte : public FCBase
{
    FC_DECLARE_VALUE(FCByte, BYTE, BYTE, 0)

    // Bit `bit` (0..7) as 0 or 1; 0 for a bit outside the byte.
    BYTE GetBitValue(int bit) const { return (bit < 0 || bit > 7) ? 0 : static_cast<BYTE>((m_value >> bit) & 1); }
    // Sets bit `bit` (0..7) when `value` is non-zero and clears it otherwise.
    // A bit outside the byte changes nothing.
    void SetBitValue(int bit, BYTE value)
    {
        if (bit < 0 || bit > 7)
            return;
        const BYTE mask = static_cast<BYTE>(1u << bit);
        m_value = value ? static_cast<BYTE>(m_value | mask) : static_cast<BYTE>(m_value & ~mask);
    }

    FC_DECLARE_COMPARISONS(FCByte, BYTE)
};
