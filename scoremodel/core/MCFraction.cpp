#include <scoremodel/core/MCFraction.h>

namespace
{
// Products and sums of the fields wrap in 32 bits instead of overflowing a
// signed int; the conversion back to int is modular.
int WrapToInt(unsigned int x)
{
    return static_cast<int>(x);
}

// a / b, with a zero divisor (only a fraction broken by Expand(0) has one)
// giving 0 instead of a trap.
unsigned int SafeQuotient(unsigned int a, unsigned int b)
{
    return b == 0 ? 0 : a / b;
}
} // namespace

MCFraction::MCFraction(int num, unsigned int den) : m_num(num), m_den(den == 0 ? 1 : den)
{
}

float MCFraction::GetResult() const
{
    return static_cast<float>(m_num) / static_cast<float>(m_den);
}

unsigned int MCFraction::Reduce()
{
    const unsigned int g = CalcGCD(static_cast<unsigned int>(m_num), m_den);
    if (g == 0)
        return 0;
    m_num = WrapToInt(static_cast<unsigned int>(m_num) / g);
    m_den /= g;
    return g;
}

void MCFraction::Expand(unsigned int k)
{
    m_num = WrapToInt(static_cast<unsigned int>(m_num) * k);
    m_den *= k;
}

unsigned int MCFraction::CalcGCD(unsigned int a, unsigned int b)
{
    while (b != 0)
    {
        const unsigned int r = a % b;
        a = b;
        b = r;
    }
    return a;
}

unsigned int MCFraction::CalcLCM(unsigned int a, unsigned int b)
{
    return SafeQuotient(a, CalcGCD(a, b)) * b;
}

MCFraction MCFraction::operator+(const MCFraction &b) const
{
    const unsigned int den = CalcLCM(m_den, b.m_den);
    const unsigned int num = static_cast<unsigned int>(m_num) * SafeQuotient(den, m_den) +
                             static_cast<unsigned int>(b.m_num) * SafeQuotient(den, b.m_den);
    return MCFraction(WrapToInt(num), den);
}

MCFraction MCFraction::operator-(const MCFraction &b) const
{
    const unsigned int den = CalcLCM(m_den, b.m_den);
    const unsigned int num = static_cast<unsigned int>(m_num) * SafeQuotient(den, m_den) -
                             static_cast<unsigned int>(b.m_num) * SafeQuotient(den, b.m_den);
    return MCFraction(WrapToInt(num), den);
}

MCFraction MCFraction::operator*(const MCFraction &b) const
{
    return MCFraction(WrapToInt(static_cast<unsigned int>(m_num) * static_cast<unsigned int>(b.m_num)),
                      m_den * b.m_den);
}

MCFraction MCFraction::operator/(const MCFraction &b) const
{
    return MCFraction(WrapToInt(static_cast<unsigned int>(m_num) * b.m_den),
                      m_den * static_cast<unsigned int>(b.m_num));
}

MCFraction MCFraction::operator*(int k) const
{
    return MCFraction(WrapToInt(static_cast<unsigned int>(m_num) * static_cast<unsigned int>(k)), m_den);
}

MCFraction MCFraction::operator/(int k) const
{
    return MCFraction(m_num, m_den * static_cast<unsigned int>(k));
}
