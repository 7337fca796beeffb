// MCFraction: an exact ratio of two integers, as meters, tuplets and note
// values use it.
//
// The numerator is signed, the denominator unsigned and never 0: the
// constructor and SetDen turn a 0 into 1. Expand(0) is the one way to break
// that, and it is kept because callers rely on Expand being a plain multiply.
//
// No operation reduces its result: 1/2 + 1/2 is 2/2, and a meter of 6/8 stays
// 6/8. Call Reduce when a lowest form is wanted, and only on fractions that
// are not negative (it reads the numerator as unsigned). Ordering compares
// the float quotients, so fractions closer than float precision are equal.
// There is no == or !=: ask for the fields.
//
// Integer overflow in the arithmetic wraps silently (32-bit), as it must for
// the stored fields to keep their width.
#pragma once

#include <scoremodel/Export.h>

class SCOREMODEL_API MCFraction
{
public:
    // A den of 0 is stored as 1. The default is 0/1.
    MCFraction(int num = 0, unsigned int den = 1);
    MCFraction(const MCFraction &other) = default;
    MCFraction &operator=(const MCFraction &other) = default;

    int GetNum() const { return m_num; }
    unsigned int GetDen() const { return m_den; }
    void SetNum(int num) { m_num = num; }
    // A den of 0 is stored as 1.
    void SetDen(unsigned int den) { m_den = den == 0 ? 1 : den; }

    // num / den in float, the denominator taken as unsigned.
    float GetResult() const;
    operator float() const { return GetResult(); }

    // Divides both fields by their greatest common divisor and returns it.
    // REQUIRES: num >= 0 (a negative numerator is read as unsigned and comes
    // out meaningless). A 0/0 fraction is left alone and gives 0.
    unsigned int Reduce();
    // Multiplies both fields by k. A k of 0 leaves den at 0.
    void Expand(unsigned int k);

    // Euclid on unsigned values; CalcGCD(a, 0) is a.
    static unsigned int CalcGCD(unsigned int a, unsigned int b);
    // a / gcd * b, wrapping on overflow; 0 when both are 0.
    static unsigned int CalcLCM(unsigned int a, unsigned int b);

    // Over the least common denominator of the two, unreduced.
    MCFraction operator+(const MCFraction &b) const;
    MCFraction operator-(const MCFraction &b) const;
    // Numerators times numerators over denominators times denominators.
    MCFraction operator*(const MCFraction &b) const;
    // a.num * b.den over a.den * b.num, the latter taken as unsigned (so a
    // negative divisor gives a huge denominator); a zero product becomes 1.
    MCFraction operator/(const MCFraction &b) const;
    MCFraction operator*(int k) const;
    // num over den * k (unsigned); a zero product becomes 1.
    MCFraction operator/(int k) const;

    int operator<(const MCFraction &b) const { return GetResult() < b.GetResult(); }
    int operator<=(const MCFraction &b) const { return GetResult() <= b.GetResult(); }
    int operator>(const MCFraction &b) const { return GetResult() > b.GetResult(); }
    int operator>=(const MCFraction &b) const { return GetResult() >= b.GetResult(); }

private:
    int m_num;
    unsigned int m_den;
};
