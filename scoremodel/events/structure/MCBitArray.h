// MCBitArray: a small set of bits in 16-bit words.
//
// Bit n lies in word n >> 4 at bit n & 15. The index is not checked: the
// caller sizes the array first (SetSize) and stays inside it.
//
// Kept oddities: Get returns the masked bit (bit 17 set gives 2), not 0 or
// 1, and GetAll answers whether any bit is set.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

class SCOREMODEL_API MCBitArray
{
public:
    MCBitArray() = default;
    MCBitArray(const MCBitArray &other);
    ~MCBitArray();

    // Room for `bits` bits; the bits kept keep their values, new ones are
    // clear.
    void SetSize(unsigned bits);
    unsigned GetSize() const { return m_nBits; }
    void Set(unsigned bit) { m_pWords[bit >> 4] = static_cast<WORD>(m_pWords[bit >> 4] | (1u << (bit & 15))); }
    void Clear(unsigned bit) { m_pWords[bit >> 4] = static_cast<WORD>(m_pWords[bit >> 4] & ~(1u << (bit & 15))); }
    // The bit masked in its word: 0 or a power of two.
    unsigned Get(unsigned bit) const { return m_pWords[bit >> 4] & (1u << (bit & 15)); }
    // 1 if any bit is set.
    int GetAll() const;
    void ClearAll();

    MCBitArray &operator=(const MCBitArray &other);

private:
    WORD *m_pWords = nullptr;
    unsigned m_nBits = 0;
    unsigned m_nWords = 0;
};
