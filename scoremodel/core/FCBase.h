// FCBase: the root of the typed fields.
//
// A typed field is a small value with two flags beside it, so that events and
// commands can hold an int, a byte, a colour, a rectangle or a MIDI message in
// one shape and tell whether it was changed (dirty) or is forced (override).
// Each member of the family carries the operators of the value it wraps, so it
// reads like that value:
//
//   FCLong count(3);
//   count += 2;                 // 5, flags untouched
//   if (count > 4L) count.SetDirty();
//
// Flags live in bits 0 (dirty) and 1 (override) of one word; bits 2 and 3 are
// reserved, and a subclass may use the bits above (FCMidiSysEx keeps its
// buffer length there). Setting a value never touches the flags: whoever
// changes a field marks it dirty.
//
// Arithmetic follows the wrapped type, with two differences that keep a bad
// operand from trapping: integer arithmetic wraps instead of overflowing, and
// dividing (or taking the remainder) by zero leaves the value as it was.
//
// Threads: none of the family holds a lock; a field belongs to the thread that
// holds its owner.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

#include <type_traits>

class SCOREMODEL_API FCBase
{
public:
    enum : unsigned long
    {
        FlagDirty = 0x1,
        FlagOverride = 0x2,
        // The low bits that belong to the flags; a subclass may use the rest.
        FlagMask = 0xF
    };

    FCBase() : m_flags(0) {}
    FCBase(const FCBase &other) = default;
    // Copies the two flags only. The bits above them belong to a subclass and
    // mean something only beside that subclass's own state (the length of an
    // FCMidiSysEx beside its buffer), so they move with the subclass's own
    // assignment and never through a base reference.
    FCBase &operator=(const FCBase &other)
    {
        m_flags = (m_flags & ~static_cast<unsigned long>(FlagMask)) | (other.m_flags & FlagMask);
        return *this;
    }
    virtual ~FCBase();

    int IsDirty() const { return (m_flags & FlagDirty) != 0; }
    void SetDirty(int dirty = 1) { SetFlag(FlagDirty, dirty); }
    int IsOverride() const { return (m_flags & FlagOverride) != 0; }
    void SetOverride(int override = 1) { SetFlag(FlagOverride, override); }

protected:
    void SetFlag(unsigned long flag, int on)
    {
        if (on)
            m_flags |= flag;
        else
            m_flags &= ~flag;
    }

    // Arithmetic helpers for the members: integers wrap, a zero divisor
    // gives back the dividend, and the one signed quotient that overflows
    // (minimum / -1) wraps to the minimum.
    template <typename T>
    static T Add(T a, T b)
    {
        if constexpr (std::is_integral_v<T>)
            return static_cast<T>(static_cast<unsigned long long>(a) + static_cast<unsigned long long>(b));
        else
            return a + b;
    }
    template <typename T>
    static T Sub(T a, T b)
    {
        if constexpr (std::is_integral_v<T>)
            return static_cast<T>(static_cast<unsigned long long>(a) - static_cast<unsigned long long>(b));
        else
            return a - b;
    }
    template <typename T>
    static T Mul(T a, T b)
    {
        if constexpr (std::is_integral_v<T>)
            return static_cast<T>(static_cast<unsigned long long>(a) * static_cast<unsigned long long>(b));
        else
            return a * b;
    }
    template <typename T>
    static T Div(T a, T b)
    {
        if (b == T(0))
            return a;
        if constexpr (std::is_integral_v<T> && std::is_signed_v<T>)
            if (b == T(-1))
                return Sub(T(0), a);
        return static_cast<T>(a / b);
    }
    template <typename T>
    static T Mod(T a, T b)
    {
        if (b == T(0))
            return a;
        if constexpr (std::is_signed_v<T>)
            if (b == T(-1))
                return T(0);
        return static_cast<T>(a % b);
    }

    // Bits 0..3 are the flags; the rest is free for a subclass.
    unsigned long m_flags;
};

// The comparisons of a member against its own class and against the wrapped
// type. Only the value is compared, never the flags. Results are 0 or 1.
#define FC_DECLARE_EQUALITY(Class, ValueArg)                                                                           \
    int operator==(const Class &other) const { return m_value == other.m_value; }                                     \
    int operator!=(const Class &other) const { return !(m_value == other.m_value); }                                  \
    int operator==(ValueArg value) const { return m_value == value; }                                                 \
    int operator!=(ValueArg value) const { return !(m_value == value); }

#define FC_DECLARE_COMPARISONS(Class, ValueArg)                                                                        \
    FC_DECLARE_EQUALITY(Class, ValueArg)                                                                               \
    int operator<(const Class &other) const { return m_value < other.m_value; }                                       \
    int operator<=(const Class &other) const { return m_value <= other.m_value; }                                     \
    int operator>(const Class &other) const { return m_value > other.m_value; }                                       \
    int operator>=(const Class &other) const { return m_value >= other.m_value; }                                     \
    int operator<(ValueArg value) const { return m_value < value; }                                                   \
    int operator<=(ValueArg value) const { return m_value <= value; }                                                 \
    int operator>(ValueArg value) const { return m_value > value; }                                                   \
    int operator>=(ValueArg value) const { return m_value >= value; }

// + - * / as values of the wrapped type, the compound forms on the field,
// increment and decrement. The flags stay as they were.
#define FC_DECLARE_ARITHMETIC(Class, Type)                                                                             \
    Type operator+(Type value) const { return Add(m_value, value); }                                                  \
    Type operator-(Type value) const { return Sub(m_value, value); }                                                  \
    Type operator*(Type value) const { return Mul(m_value, value); }                                                  \
    Type operator/(Type value) const { return Div(m_value, value); }                                                  \
    Type operator+(const Class &other) const { return Add(m_value, other.m_value); }                                  \
    Type operator-(const Class &other) const { return Sub(m_value, other.m_value); }                                  \
    Type operator*(const Class &other) const { return Mul(m_value, other.m_value); }                                  \
    Type operator/(const Class &other) const { return Div(m_value, other.m_value); }                                  \
    Class &operator+=(Type value) { m_value = Add(m_value, value); return *this; }                                   \
    Class &operator-=(Type value) { m_value = Sub(m_value, value); return *this; }                                   \
    Class &operator*=(Type value) { m_value = Mul(m_value, value); return *this; }                                   \
    Class &operator/=(Type value) { m_value = Div(m_value, value); return *this; }                                   \
    Class &operator+=(const Class &other) { return *this += other.m_value; }                                          \
    Class &operator-=(const Class &other) { return *this -= other.m_value; }                                          \
    Class &operator*=(const Class &other) { return *this *= other.m_value; }                                          \
    Class &operator/=(const Class &other) { return *this /= other.m_value; }                                          \
    Class &operator++() { m_value = Add(m_value, static_cast<Type>(1)); return *this; }                                           \
    Class &operator--() { m_value = Sub(m_value, static_cast<Type>(1)); return *this; }                                           \
    Type operator++(int) { Type old = m_value; ++*this; return old; }                                                 \
    Type operator--(int) { Type old = m_value; --*this; return old; }

// The remainder forms, for integer members only.
#define FC_DECLARE_REMAINDER(Class, Type)                                                                              \
    Type operator%(Type value) const { return Mod(m_value, value); }                                                  \
    Type operator%(const Class &other) const { return Mod(m_value, other.m_value); }                                  \
    Class &operator%=(Type value) { m_value = Mod(m_value, value); return *this; }                                   \
    Class &operator%=(const Class &other) { return *this %= other.m_value; }

// Construction from and assignment of the wrapped value, and its accessors.
#define FC_DECLARE_VALUE(Class, Type, ValueArg, Default)                                                               \
public:                                                                                                                \
    Class(ValueArg value = Default) : m_value(value) {}                                                               \
    Class &operator=(ValueArg value) { m_value = value; return *this; }                                              \
    ValueArg GetValue() const { return m_value; }                                                                      \
    void SetValue(ValueArg value) { m_value = value; }                                                                \
                                                                                                                       \
private:                                                                                                               \
    Type m_value;                                                                                                      \
                                                                                                                       \
public:
