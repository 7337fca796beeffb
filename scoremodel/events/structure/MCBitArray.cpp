#include <scoremodel/events/structure/MCBitArray.h>

#include <algorithm>

MCBitArray::MCBitArray(const MCBitArray &other)
{
    *this = other;
}

MCBitArray::~MCBitArray()
{
    delete[] m_pWords;
}

void MCBitArray::SetSize(unsigned bits)
{
    const unsigned words = (bits + 15) >> 4;
    if (words != m_nWords)
    {
        WORD *grown = words ? new WORD[words]() : nullptr;
        std::copy_n(m_pWords, std::min(words, m_nWords), grown);
        delete[] m_pWords;
        m_pWords = grown;
        m_nWords = words;
    }
    // Bits past the new size are cleared, so growing again finds them clear.
    if (bits & 15)
        m_pWords[words - 1] = static_cast<WORD>(m_pWords[words - 1] & ((1u << (bits & 15)) - 1));
    m_nBits = bits;
}

int MCBitArray::GetAll() const
{
    return std::any_of(m_pWords, m_pWords + m_nWords, [](WORD w) { return w != 0; }) ? 1 : 0;
}

void MCBitArray::ClearAll()
{
    std::fill_n(m_pWords, m_nWords, WORD(0));
}

MCBitArray &MCBitArray::operator=(const MCBitArray &other)
{
    if (this == &other)
        return *this;
    WORD *copy = other.m_nWords ? new WORD[other.m_nWords] : nullptr;
    std::copy_n(other.m_pWords, other.m_nWords, copy);
    delete[] m_pWords;
    m_pWords = copy;
    m_nWords = other.m_nWords;
    m_nBits = other.m_nBits;
    return *this;
}
