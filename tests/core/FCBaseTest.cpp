#include <scoremodel/core/FCBool.h>
#include <scoremodel/core/FCByte.h>
#include <scoremodel/core/FCChar.h>
#include <scoremodel/core/FCColor.h>
#include <scoremodel/core/FCDWord.h>
#include <scoremodel/core/FCFloat.h>
#include <scoremodel/core/FCInt.h>
#include <scoremodel/core/FCLong.h>
#include <scoremodel/core/FCPoint.h>
#include <scoremodel/core/FCRect.h>
#include <scoremodel/core/FCSize.h>
#include <scoremodel/core/FCTime.h>
#include <scoremodel/core/FCWord.h>

#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

TEST(FCBase, ByteAndIntBitsCoverExactlyTheirWidth)
{
    FCByte b(0xA5); // 1010 0101
    for (int bit = -1; bit <= 8; ++bit)
        EXPECT_EQ(b.GetBitValue(bit), bit >= 0 && bit < 8 ? (0xA5 >> bit) & 1 : 0) << "bit " << bit;
    b.SetBitValue(1, 1);
    b.SetBitValue(0, 0);
    b.SetBitValue(7, 0);
    b.SetBitValue(6, 0x80); // any non-zero sets
    b.SetBitValue(8, 1);
    b.SetBitValue(-1, 1);
    EXPECT_EQ(b.GetValue(), 0x66) << "a bit outside the byte changes nothing";

    FCInt bits(0);
    bits.SetBitValue(31, 1);
    bits.SetBitValue(0, 1);
    bits.SetBitValue(32, 1);
    bits.SetBitValue(-1, 1);
    EXPECT_EQ(static_cast<unsigned int>(bits.GetValue()), 0x80000001u);
    EXPECT_EQ(bits.GetBitValue(31), 1);
    EXPECT_EQ(bits.GetBitValue(32), 0);
}

TEST(FCBase, IntHalvesAreTheSixteenBitWordsAndSettingOneKeepsTheOther)
{
    FCInt f(INT_MIN);
    EXPECT_EQ(f.GetLowValue(), 0);
    EXPECT_EQ(f.GetHighValue(), 0x8000);
    f = 0x12345678;
    EXPECT_EQ(f.GetLowValue(), 0x5678);
    EXPECT_EQ(f.GetHighValue(), 0x1234);
    f.SetLowValue(0xBEEF);
    EXPECT_EQ(f.GetValue(), 0x1234BEEF);
    f.SetHighValue(0xFFFF);
    EXPECT_EQ(static_cast<unsigned int>(f.GetValue()), 0xFFFFBEEFu);
}

TEST(FCBase, IntegerArithmeticWrapsAndNeverTrapsOnZeroOrMinusOne)
{
    FCWord w(0xFFFF);
    ++w;
    EXPECT_EQ(w.GetValue(), 0);
    w = WORD(10);
    w /= WORD(0);
    w %= WORD(0);
    EXPECT_EQ(w.GetValue(), 10) << "dividing by zero leaves the value";
    EXPECT_EQ(w - WORD(11), 0xFFFF);

    FCLong l(LONG_MIN);
    EXPECT_EQ(l / -1L, LONG_MIN);
    EXPECT_EQ(l % -1L, 0);
    EXPECT_EQ(l - 1L, LONG_MAX);

    FCFloat f(3.0f);
    f /= 0.0f;
    EXPECT_FLOAT_EQ(f.GetValue(), 3.0f);
}

TEST(FCBase, ComparisonsLookAtTheStoredValueOnly)
{
    FCBool t(2), f(0);
    EXPECT_EQ(!t, 0);
    EXPECT_EQ(t & 1, 0) << "& is bitwise on the stored int";
    EXPECT_EQ(f || t, 1);
    EXPECT_FALSE(t == 1) << "equality compares the stored ints";

    EXPECT_TRUE(FCRect(CRect(0, 0, 4, 4)) != CRect(0, 0, 4, 5));

    // A time compares by MCTime's rules, under which bar 2 can come before
    // bar 1 pulse 3; a copy holds a record of its own.
    EXPECT_TRUE(FCTime(MCTime(2, 0, 0, 480)) < FCTime(MCTime(1, 3, 0, 480)));
    FCTime bpt(MCTime(1, 1, 1, 96));
    FCTime copy(bpt);
    EXPECT_NE(copy.GetValue().GetBarPulseTick(), bpt.GetValue().GetBarPulseTick());
}

// ---- Every value member, by the value it wraps ------------------------------

namespace
{
// Per member: distinct values that differ only a little (one coordinate, one
// high bit), so that a member comparing or storing less than its whole value
// shows; and, for the ordered members, a low and a high value whose order
// would flip if the value were stored signed or narrowed.
template <typename Field>
struct Sample;

// The platform's 32-bit coordinate limits.
constexpr LONG kLongMin = std::numeric_limits<LONG>::min();
constexpr LONG kLongMax = std::numeric_limits<LONG>::max();

#define SAMPLE(Field, Type, low, high, ...)                                                                           \
    template <>                                                                                                        \
    struct Sample<Field>                                                                                               \
    {                                                                                                                  \
        static std::vector<Type> Distinct() { return {__VA_ARGS__}; }                                                  \
        static Type Low() { return low; }                                                                              \
        static Type High() { return high; }                                                                            \
    };
// The char's high value is above 16 bits, the colour's negative if held as a
// signed 32-bit value; a float member truncating to an integer sees its two equal.
SAMPLE(FCChar, wchar_t, L'z', static_cast<wchar_t>(0x1F600), L'a', L'b', static_cast<wchar_t>(0x10061), WCHAR_MAX)
SAMPLE(FCColor, unsigned long, 0x00FFFFFF, 0xFF000000, 0x00FF00, 0x01FF00, 0x8000FF00, ULONG_MAX)
SAMPLE(FCDWord, unsigned long, 5, ULONG_MAX, 1, 2, 0x80000001, ULONG_MAX)
SAMPLE(FCFloat, float, -1.5f, 0.25f, 0.5f, 0.5000001f, -0.5f, std::numeric_limits<float>::max())
SAMPLE(FCLong, long, LONG_MIN, 3, 3, 4, LONG_MIN, LONG_MAX)
SAMPLE(FCPoint, CPoint, CPoint(), CPoint(), CPoint(1, 2), CPoint(1, 3), CPoint(0, 2), CPoint(kLongMin, 2))
SAMPLE(FCSize, CSize, CSize(), CSize(), CSize(4, 5), CSize(4, 6), CSize(3, 5), CSize(4, kLongMax))
// Bar/pulse/tick values make the copies and the destructor handle the record.
SAMPLE(FCTime, MCTime, MCTime(), MCTime(), MCTime(1.0f), MCTime(1.5f), MCTime(1, 2, 3, 480), MCTime(1, 2, 4, 480))
#undef SAMPLE

template <typename Field>
using ValueOf = std::decay_t<decltype(std::declval<Field>().GetValue())>;

template <typename Field>
class FCValueField : public testing::Test
{
};
using ValueFields = testing::Types<FCChar, FCColor, FCDWord, FCFloat, FCLong, FCPoint, FCSize, FCTime>;
TYPED_TEST_SUITE(FCValueField, ValueFields);

template <typename Field>
class FCOrderedField : public testing::Test
{
};
using OrderedFields = testing::Types<FCChar, FCColor, FCDWord, FCFloat, FCLong>;
TYPED_TEST_SUITE(FCOrderedField, OrderedFields);

template <typename Field>
class FCArithmeticField : public testing::Test
{
};
using ArithmeticFields = testing::Types<FCChar, FCDWord, FCFloat, FCLong, FCWord>;
TYPED_TEST_SUITE(FCArithmeticField, ArithmeticFields);
} // namespace

TYPED_TEST(FCValueField, HoldsItsWholeValueKeepsItsFlagsAndComparesTheValueOnly)
{
    using Field = TypeParam;
    const Field fresh;
    EXPECT_TRUE(fresh == ValueOf<Field>()) << "a new field holds the zero value";
    EXPECT_FALSE(fresh.IsDirty() || fresh.IsOverride()) << "a new field is clean";

    const auto values = Sample<Field>::Distinct();
    for (size_t i = 0; i < values.size(); ++i)
    {
        SCOPED_TRACE("value " + std::to_string(i));
        Field field;
        field.SetDirty();
        EXPECT_TRUE(field.IsDirty() && !field.IsOverride()) << "the flags are independent";
        field.SetOverride();
        field = values[i];
        EXPECT_TRUE(field.IsDirty() && field.IsOverride()) << "assigning a value keeps the flags";
        field.SetValue(values[i]);
        EXPECT_TRUE(field.IsDirty() && field.IsOverride()) << "setting a value keeps the flags";
        EXPECT_TRUE(field.GetValue() == values[i]);

        Field copy(field), assigned;
        assigned = field;
        EXPECT_TRUE(copy.IsDirty() && copy.IsOverride() && assigned.IsDirty() && assigned.IsOverride())
            << "a copy carries the flags";
        EXPECT_TRUE(copy == values[i] && assigned == values[i]);

        const Field clean(values[i]);
        EXPECT_TRUE(field == clean && !(field != clean)) << "flags do not count in a comparison";
        EXPECT_TRUE(field == values[i] && !(field != values[i]));
        for (size_t j = 0; j < values.size(); ++j)
        {
            if (j == i)
                continue;
            EXPECT_TRUE(field != Field(values[j]) && !(field == Field(values[j]))) << "against value " << j;
            EXPECT_TRUE(field != values[j] && !(field == values[j])) << "against value " << j;
        }
        field.SetDirty(0);
        EXPECT_TRUE(!field.IsDirty() && field.IsOverride()) << "clearing one flag leaves the other";
        std::unique_ptr<FCBase> owned(new Field(values[i])); // deleted through the base
    }
}

TYPED_TEST(FCOrderedField, OrdersByTheWrappedTypeAgainstFieldsAndValues)
{
    using Field = TypeParam;
    using Value = ValueOf<Field>;
    const Value low = Sample<Field>::Low(), high = Sample<Field>::High();
    const std::pair<Value, Value> pairs[] = {{low, high}, {high, low}, {low, low}, {high, high}};
    for (const auto &[x, y] : pairs)
    {
        Field a(x);
        const Field b(y);
        a.SetDirty(); // flags never take part
        SCOPED_TRACE(std::string(x < y ? "low, high" : (x > y ? "high, low" : "equal")));
        EXPECT_EQ((std::vector<int>{a < b, a <= b, a > b, a >= b, a < y, a <= y, a > y, a >= y}),
                  (std::vector<int>{x < y, x <= y, x > y, x >= y, x < y, x <= y, x > y, x >= y}));
    }
}

TYPED_TEST(FCArithmeticField, OperatorsComputeAsTheWrappedTypeAndKeepTheFlags)
{
    using Field = TypeParam;
    using Value = ValueOf<Field>;
    const Value a = Value(12), b = Value(5);
    // Each operator with a plain value and with a field on the right: the
    // result, and what the field holds afterwards.
    const auto check = [&](const char *expression, auto apply, Value result, Value after) {
        for (bool fieldOperand : {false, true})
        {
            Field field(a);
            field.SetOverride();
            const Value got = fieldOperand ? Value(apply(field, Field(b))) : Value(apply(field, b));
            SCOPED_TRACE(std::string(expression) + (fieldOperand ? " field" : " value"));
            EXPECT_EQ(got, result);
            EXPECT_EQ(field.GetValue(), after);
            EXPECT_TRUE(field.IsOverride() && !field.IsDirty()) << "the flags changed";
        }
    };
    check("f + b", [](Field &f, auto x) { return f + x; }, Value(a + b), a);
    check("f - b", [](Field &f, auto x) { return f - x; }, Value(a - b), a);
    check("f * b", [](Field &f, auto x) { return f * x; }, Value(a * b), a);
    check("f / b", [](Field &f, auto x) { return f / x; }, Value(a / b), a);
    check("f += b", [](Field &f, auto x) { return (f += x).GetValue(); }, Value(a + b), Value(a + b));
    check("f -= b", [](Field &f, auto x) { return (f -= x).GetValue(); }, Value(a - b), Value(a - b));
    check("f *= b", [](Field &f, auto x) { return (f *= x).GetValue(); }, Value(a * b), Value(a * b));
    check("f /= b", [](Field &f, auto x) { return (f /= x).GetValue(); }, Value(a / b), Value(a / b));
    check("++f", [](Field &f, auto) { return (++f).GetValue(); }, Value(a + 1), Value(a + 1));
    check("--f", [](Field &f, auto) { return (--f).GetValue(); }, Value(a - 1), Value(a - 1));
    check("f++", [](Field &f, auto) { return f++; }, a, Value(a + 1));
    check("f--", [](Field &f, auto) { return f--; }, a, Value(a - 1));
    if constexpr (std::is_integral_v<Value>)
    {
        check("f % b", [](Field &f, auto x) { return f % x; }, Value(a % b), a);
        check("f %= b", [](Field &f, auto x) { return (f %= x).GetValue(); }, Value(a % b), Value(a % b));
    }
}

TEST(FCPointAndSize, PointsAndSizesMoveAndMeasureTheRightWayRound)
{
    // The difference of two points is a size, a point moved by a size is a
    // point: overloads on the POINT and SIZE bases that picked the other one
    // would still compile.
    static_assert(std::is_same_v<decltype(CPoint() - CPoint()), CSize>);
    static_assert(std::is_same_v<decltype(CPoint() - CSize()), CPoint>);
    static_assert(std::is_same_v<decltype(CPoint() + CSize()), CPoint>);
    static_assert(std::is_same_v<decltype(CSize() + CPoint()), CPoint>);
    struct Row
    {
        const char *expression;
        POINT result, expected;
    };
    const CPoint p(10, -4), q(3, 7);
    const CSize s(2, -6);
    CPoint moved = p;
    moved -= q;
    CPoint shifted = p;
    shifted -= s;
    const Row rows[] = {
        {"p - q", CPoint(p - q), {7, -11}},
        {"p + s", p + s, {12, -10}},
        {"p - s", p - s, {8, 2}},
        {"s + p", s + p, {12, -10}},
        {"s - p", s - p, {-8, -2}},
        {"p -= q", moved, {7, -11}},
        {"p -= s", shifted, {8, 2}},
        {"-p", -p, {-10, 4}},
        {"s - s", CPoint(s - CSize(5, 5)), {-3, -11}},
        {"far + s wraps", CPoint(kLongMax, kLongMin) + CSize(1, -1), {kLongMin, kLongMax}},
    };
    for (const Row &row : rows)
        EXPECT_TRUE(CPoint(row.result) == row.expected)
            << row.expression << " gave " << row.result.x << "," << row.result.y;

    FCPoint field(p);
    field.SetDirty();
    field = field.GetValue() + s;
    EXPECT_TRUE(field == CPoint(12, -10) && field.IsDirty());
}
