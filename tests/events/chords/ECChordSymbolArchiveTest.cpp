// The chord symbol's record at each version, built byte by byte, and cut
// records.
#include "events/ArchiveTestSupport.h"
#include "events/chords/ChordTestSupport.h"

#include <scoremodel/platform/Exceptions.h>

#include <gtest/gtest.h>

#include <string>

namespace
{
const Bytes kPrefix = TimedRecordPrefix();

Bytes Dword(unsigned value)
{
    return {static_cast<BYTE>(value), static_cast<BYTE>(value >> 8), static_cast<BYTE>(value >> 16),
            static_cast<BYTE>(value >> 24)};
}

// The wide string form: 0xFF, the Unicode mark 0xFFFE, a byte length, the
// UTF-16 units (all texts here are short and in the basic plane).
Bytes Wide(const std::u16string &text)
{
    Bytes out = {0xFF, 0xFE, 0xFF, static_cast<BYTE>(text.size())};
    for (char16_t unit : text)
    {
        out.push_back(static_cast<BYTE>(unit));
        out.push_back(static_cast<BYTE>(unit >> 8));
    }
    return out;
}

using archive_bytes::Concat;

class ChordArchiveTest : public ChordSymbolFixture
{
protected:
    // Loads a record into a new symbol; EXPECTs that every byte was read.
    ECChordSymbol *Load(const Bytes &bytes, int version)
    {
        ECChordSymbol *chord = Make();
        DocumentVersion scope(version);
        EXPECT_EQ(LoadBytes(bytes, [&](CArchive &ar) { chord->Serialize(ar); }), bytes.size());
        return chord;
    }
};
} // namespace

TEST_F(ChordArchiveTest, StoresTheTypeAndBothCustomTexts)
{
    ECChordSymbol *chord = Make();
    MCTime at(2.5f);
    chord->SetTime(&at);
    chord->SetVoiceTrack(3, 17);
    CString text(L"Eb-7/Bb");
    ASSERT_EQ(chord->UpdateFromString(text), 1);
    const Bytes stored = Store([&](CArchive &ar) { chord->Serialize(ar); });
    EXPECT_EQ(stored, Concat({kPrefix, Dword(0x01051206), Wide(u"-7"), Wide(u"")}));

    text = L"f#";
    ASSERT_EQ(chord->UpdateFromString(text), 1);
    chord->SetPhantom(1);
    const Bytes lower = Store([&](CArchive &ar) { chord->Serialize(ar); });
    EXPECT_EQ(lower, Concat({kPrefix, Dword(0x0101000B), Wide(u""), Wide(u"f#")}));

    ECChordSymbol *loaded = Load(lower, ArchiveVersionCurrent);
    EXPECT_TRUE(*loaded == *chord);
    CString out(L"untouched");
    EXPECT_EQ(loaded->GetCustomRoot(out), 1);
    EXPECT_EQ(out, CString(L"f#"));
    EXPECT_EQ(loaded->GetCustomFlavor(out), 0) << "the lower-case mark is not stored";
    EXPECT_EQ(loaded->IsPhantom(), 0);
    EXPECT_TRUE(*loaded->GetTime() == at);
}

TEST_F(ChordArchiveTest, VersionsThreeToEighteenFindTheFlavourByItsText)
{
    struct Case
    {
        std::u16string text;
        int flavour;
    } cases[] = {{u"m7", 5}, {u"maj7 (add 9)", 23}, {u"", 0}, {u"\u00B0", 2}, {u"7 alt", 15}, {u"mystery", 30}};
    for (int version : {3, 18})
        for (const Case &c : cases)
        {
            SCOPED_TRACE(testing::Message() << "v" << version << " flavour " << c.flavour);
            // The stored flavour byte (9) is replaced by what the text says.
            ECChordSymbol *chord = Load(Concat({kPrefix, Dword(0x01090204), Wide(c.text)}), version);
            EXPECT_EQ(chord->GetChordFlavor(), c.flavour);
            EXPECT_EQ(chord->GetChordRoot(), 4);
            EXPECT_EQ(chord->GetChordBass(), 2);
            EXPECT_EQ(chord->GetChordStyle(), 1);
            CString out;
            EXPECT_EQ(chord->GetCustomFlavor(out), 0) << "the display text is no custom text";
        }
}

TEST_F(ChordArchiveTest, VersionsBeforeThreeMapTheOldFlavourNumbers)
{
    const int mapped[19] = {0, 1, 8, 2, 19, 5, 20, 21, 4, 22, 23, 24, 25, 26, 10, 11, 27, 3, 29};
    for (int old = 0; old < 256; ++old)
    {
        ECChordSymbol *chord = Load(Concat({kPrefix, Dword(0x01000001u | (static_cast<unsigned>(old) << 16))}), 2);
        EXPECT_EQ(chord->GetChordFlavor(), old < 19 ? mapped[old] : old) << old;
        EXPECT_EQ(chord->GetChordRoot(), 1);
    }
}

TEST_F(ChordArchiveTest, CutRecordsFailAsArchiveErrors)
{
    const Bytes full = Concat({kPrefix, Dword(0x01051206), Wide(u"-7"), Wide(u"x")});
    for (int version : {2, 10, static_cast<int>(ArchiveVersionCurrent)})
    {
        const size_t whole = version < 3 ? kPrefix.size() + 4 : version < 19 ? full.size() - 6 : full.size();
        for (size_t keep = 0; keep < whole; ++keep)
        {
            ECChordSymbol *chord = Make();
            DocumentVersion scope(version);
            const Bytes cut(full.begin(), full.begin() + static_cast<long>(keep));
            EXPECT_THROW(LoadBytes(cut, [&](CArchive &ar) { chord->Serialize(ar); }), CArchiveException)
                << keep << " bytes, v" << version;
        }
    }
}
