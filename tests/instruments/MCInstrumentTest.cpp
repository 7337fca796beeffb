#include <scoremodel/instruments/GeneralMidiInstrumentList.h>
#include <scoremodel/instruments/MCInstrument.h>

#include "ArchiveBytes.h"

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>
#include <scoremodel/platform/Exceptions.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <set>
#include <string>

using archive_bytes::Bytes;
using archive_bytes::Concat;
using archive_bytes::Le32;
using archive_bytes::Store;

namespace
{
// A wide string of the archive: the Unicode marker, a one-byte length and
// UTF-16LE units (ASCII only here).
Bytes Str(const char *text)
{
    Bytes out = {0xFF, 0xFE, 0xFF, static_cast<BYTE>(std::strlen(text))};
    for (const char *c = text; *c; ++c)
    {
        out.push_back(static_cast<BYTE>(*c));
        out.push_back(0);
    }
    return out;
}

// The DCBase record of a fresh attachment: two zero values, no owner.
const Bytes kDataBase = Concat({Le32(0), Le32(0), Bytes{0x00, 0x00}});

// The tunes array's own record: a WORD count, then the ints.
Bytes TunesRecord(std::initializer_list<int> tunes)
{
    Bytes out = {static_cast<BYTE>(tunes.size()), 0};
    for (int t : tunes)
        out = Concat({out, Le32(t)});
    return out;
}

MCInstrument Bass()
{
    CArray<int, int> tunes;
    for (int t : {43, 38, 33, 28})
        tunes.Add(t);
    return MCInstrument(L"Bass", L"four strings", 4, 20, 4, tunes);
}

// Loads `bytes` into a fresh instrument; returns the bytes used.
ULONGLONG LoadInto(MCInstrument &instrument, const Bytes &bytes)
{
    CMemFile mem(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&mem, CArchive::load);
    instrument.Serialize(ar);
    ar.Close();
    return mem.GetPosition();
}
} // namespace

TEST(MCInstrument, SettingTunesMarksInitialized)
{
    MCInstrument i;
    i.SetTunes(i.GetTunes()); // its own array: nothing copied, still marked
    EXPECT_EQ(i.Initialized(), 1);
    EXPECT_EQ(i.GetTunes().GetSize(), 0);

    MCInstrument b = Bass();
    EXPECT_EQ(b.Initialized(), 0);
    b.SetTunes(1, 40);
    EXPECT_EQ(b.Initialized(), 1);
    EXPECT_EQ(b.GetTunes()[1], 40);
    EXPECT_THROW(b.SetTunes(4, 1), CInvalidArgException);
    EXPECT_THROW(b.SetTunes(-1, 1), CInvalidArgException);
}

TEST(MCInstrument, EqualityIgnoresDescriptionAndInitializedOnly)
{
    const MCInstrument a = Bass();
    MCInstrument b = Bass();
    b.SetDescription(L"other");
    b.SetTunes(b.GetTunes());
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);

    const std::function<void(MCInstrument &)> changes[] = {
        [](MCInstrument &i) { i.SetName(L"bass"); }, // case counts
        [](MCInstrument &i) { i.SetStringsCount(5); },
        [](MCInstrument &i) { i.SetFretsCount(21); },
        [](MCInstrument &i) { i.SetFingerDistance(5); },
        [](MCInstrument &i) { i.SetTunes(3, 23); },
        [](MCInstrument &i) { i.GetTunes().Add(23); }, // longer, same start
        [](MCInstrument &i) { i.GetTunes().SetSize(3); },
    };
    for (size_t k = 0; k < std::size(changes); ++k)
    {
        MCInstrument c = Bass();
        changes[k](c);
        EXPECT_FALSE(a == c) << k;
        EXPECT_TRUE(a != c) << k;
        EXPECT_FALSE(c.Equals(a)) << k;
    }
}

TEST(MCInstrument, CopiesAreDeepAndComplete)
{
    MCInstrument a = Bass();
    a.SetTunes(0, 44);
    MCInstrument b(a);
    MCInstrument c;
    c = a;
    MCInstrument d;
    d.Copy(&a);
    for (MCInstrument *x : {&b, &c, &d})
    {
        EXPECT_TRUE(*x == a);
        EXPECT_EQ(x->GetDescription(), L"four strings");
        EXPECT_EQ(x->Initialized(), 1);
    }
    a.SetTunes(0, 1);
    EXPECT_EQ(b.GetTunes()[0], 44);
}

TEST(MCInstrument, ComplementationFillsOnlyWhatIsUnset)
{
    MCInstrument partial;
    partial.SetName(L"Mine");
    partial.SetFretsCount(12);
    partial.DoComplementationCopy(Bass());
    EXPECT_EQ(partial.GetName(), L"Mine");
    EXPECT_EQ(partial.GetFretsCount(), 12);
    EXPECT_EQ(partial.GetStringsCount(), 4);
    EXPECT_EQ(partial.GetFingerDistance(), 4);
    EXPECT_EQ(partial.GetDescription(), L"four strings");
    EXPECT_EQ(partial.GetTunes().GetSize(), 4);
    EXPECT_EQ(partial.Initialized(), 1);
}

// ---- Archive ------------------------------------------------------------------------

TEST(MCInstrumentArchive, StoresTheNewestLayoutByteByByte)
{
    MCInstrument b = Bass();
    b.SetName(L"Bs");
    b.SetDescription(L"4");
    b.SetTunes(0, 43);
    const Bytes stored = Store([&](CArchive &ar) { b.Serialize(ar); });
    const Bytes expected = Concat({kDataBase, TunesRecord({43, 38, 33, 28}), Str("Bs"), Str("4"), Le32(4), Le32(20),
                                   Le32(4), Le32(4), Le32(43), Le32(38), Le32(33), Le32(28), Le32(1)});
    EXPECT_EQ(stored, expected);
}

TEST(MCInstrumentArchive, EachVersionBranchReadsItsFields)
{
    const Bytes fields = Concat({Str("Bs"), Str("4"), Le32(4), Le32(20), Le32(3)});
    const Bytes tunes = Concat({Le32(2), Le32(40), Le32(45), Le32(1)});
    const Bytes full = Concat({kDataBase, TunesRecord({}), fields, tunes});
    {
        archive_bytes::VersionScope v(4); // only the two records before the fields
        MCInstrument i;
        EXPECT_EQ(LoadInto(i, full), kDataBase.size() + 2);
        EXPECT_TRUE(i.GetName().IsEmpty());
        EXPECT_EQ(i.GetStringsCount(), -1);
        EXPECT_EQ(i.Initialized(), 0);
    }
    {
        archive_bytes::VersionScope v(5); // fields, no tunes
        MCInstrument i;
        EXPECT_EQ(LoadInto(i, full), full.size() - tunes.size());
        EXPECT_EQ(i.GetName(), L"Bs");
        EXPECT_EQ(i.GetDescription(), L"4");
        EXPECT_EQ(i.GetStringsCount(), 4);
        EXPECT_EQ(i.GetFretsCount(), 20);
        EXPECT_EQ(i.GetFingerDistance(), 3);
        EXPECT_EQ(i.GetTunes().GetSize(), 0);
        EXPECT_EQ(i.Initialized(), 0);
    }
    for (int version : {6, static_cast<int>(ArchiveVersionCurrent)})
    {
        archive_bytes::VersionScope v(version);
        MCInstrument i = Bass(); // the loaded tunes replace what was there
        EXPECT_EQ(LoadInto(i, full), full.size());
        ASSERT_EQ(i.GetTunes().GetSize(), 2);
        EXPECT_EQ(i.GetTunes()[0], 40);
        EXPECT_EQ(i.GetTunes()[1], 45);
        EXPECT_EQ(i.Initialized(), 1);
    }
}

TEST(MCInstrumentArchive, RoundTripsAsAnObject)
{
    MCInstrument b = Bass();
    b.SetName(L"Bässe ✓");
    b.SetTunes(b.GetTunes());
    const Bytes stored = Store([&](CArchive &ar) { ar << &b; });
    archive_bytes::Load(stored, [&](CArchive &ar) {
        CObject *o = ar.ReadObject(RUNTIME_CLASS(DCBase));
        ASSERT_TRUE(o && o->IsKindOf(RUNTIME_CLASS(MCInstrument)));
        auto *back = static_cast<MCInstrument *>(o);
        EXPECT_TRUE(*back == b);
        EXPECT_EQ(back->GetDescription(), b.GetDescription());
        EXPECT_EQ(back->Initialized(), 1);
    });
}

// Every truncation of a stored instrument, and a negative tune count, end in
// an archive exception, never a crash or a huge allocation.
TEST(MCInstrumentArchive, CorruptRecordsThrow)
{
    MCInstrument b = Bass();
    const Bytes stored = Store([&](CArchive &ar) { b.Serialize(ar); });
    for (size_t n = 0; n < stored.size(); ++n)
    {
        const Bytes cut(stored.begin(), stored.begin() + static_cast<std::ptrdiff_t>(n));
        EXPECT_NE(archive_bytes::CauseOf([&] {
                      MCInstrument i;
                      LoadInto(i, cut);
                  }),
                  -1)
            << n;
    }
    const Bytes negative = Concat({kDataBase, TunesRecord({}), Str(""), Str(""), Le32(1), Le32(1), Le32(1),
                                   Le32(-5), Le32(0)});
    EXPECT_EQ(archive_bytes::CauseOf([&] {
                  MCInstrument i;
                  LoadInto(i, negative);
              }),
              CArchiveException::badIndex);
    const Bytes huge = Concat({kDataBase, TunesRecord({}), Str(""), Str(""), Le32(1), Le32(1), Le32(1),
                               Le32(0x7FFFFFFF), Le32(0)});
    EXPECT_EQ(archive_bytes::CauseOf([&] {
                  MCInstrument i;
                  LoadInto(i, huge);
              }),
              CArchiveException::endOfFile);
}

// ---- General MIDI names -----------------------------------------------------------

TEST(GeneralMidiInstrumentList, AllProgramsInOrder)
{
    const struct
    {
        unsigned long program;
        const wchar_t *name;
    } spots[] = {{0, L"Acoustic Grand Piano"}, {21, L"Accordion"},          {22, L"Harmonica"},
                 {24, L"Acoustic Guitar (nylon)"}, {33, L"Electric Bass (finger)"}, {40, L"Violin"},
                 {56, L"Trumpet"},  {73, L"Flute"},  {105, L"Banjo"}, {127, L"Gunshot"}};
    for (const auto &s : spots)
        EXPECT_EQ(GeneralMidiInstrumentList::GetInstrumentName(s.program), s.name) << s.program;
    std::set<std::wstring> names;
    for (unsigned long p = 0; p < GeneralMidiInstrumentList::kCount; ++p)
    {
        const CString &name = GeneralMidiInstrumentList::GetInstrumentName(p);
        EXPECT_FALSE(name.IsEmpty()) << p;
        names.insert(name.Str());
    }
    EXPECT_EQ(names.size(), 128u);
    EXPECT_THROW(GeneralMidiInstrumentList::GetInstrumentName(128), CInvalidArgException);
}
