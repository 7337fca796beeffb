// The drum map: lines of the "DrumMap" section read into items (or skipped
// when any field is wrong), the shipped file, and the archive record.
#include "ArchiveBytes.h"

#include <scoremodel/pitch/MCDrumMap.h>
#include <scoremodel/pitch/MapItem.h>

#include <gtest/gtest.h>

#include <string>

using archive_bytes::Bytes;

TEST(MCDrumMap, EachLineGivesAnItemOrIsSkipped)
{
    struct Case
    {
        const char *line;
        int note;
        const wchar_t *name; // null: the line is skipped
        int display, head, play;
    } const cases[] = {
        {"36=Bass Drum 1", 36, L"Bass Drum 1", 36, 0, 36},
        {"36=Bass Drum 1;65", 36, L"Bass Drum 1", 65, 0, 36},
        {"42=Closed Hi-Hat; 79 ; 1", 42, L"Closed Hi-Hat", 79, 1, 42},
        {"44=Pedal;62;4;45", 44, L"Pedal", 62, 4, 45},
        {"0=Lowest", 0, L"Lowest", 0, 0, 0},
        {"127=Highest;127;0;127", 127, L"Highest", 127, 0, 127},
        {"50=Tom;128", 50, nullptr, 0, 0, 0},     // display key out of range
        {"50=Tom;60;5", 50, nullptr, 0, 0, 0},    // no such head
        {"50=Tom;60;0;-1", 50, nullptr, 0, 0, 0}, // not a number
        {"50=Tom;x", 50, nullptr, 0, 0, 0},
        {"50=Tom;1;1;1;1", 50, nullptr, 0, 0, 0}, // a field too many
        {"50=;60", 50, nullptr, 0, 0, 0},         // no name
        {"128=Beyond", 128, nullptr, 0, 0, 0},
        {"Snare=38", -1, nullptr, 0, 0, 0},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.line);
        MCDrumMap map;
        map.LoadText(CStringA((std::string("[DrumMap]\n") + c.line + "\n").c_str()));
        const MapItem *item = map.GetItem(c.note);
        if (!c.name)
        {
            EXPECT_EQ(item, nullptr);
            EXPECT_EQ(map.GetCount(), 0);
            continue;
        }
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(map.GetCount(), 1);
        EXPECT_EQ(item->GetName(), CString(c.name));
        EXPECT_EQ(item->GetDisplayNote(), c.display);
        EXPECT_EQ(item->GetHead(), c.head);
        EXPECT_EQ(item->GetPlayNote(), c.play);
    }
}

TEST(MCDrumMap, OnlyTheDrumMapSectionCountsAndALaterKeyWins)
{
    MCDrumMap map;
    map.LoadText("[Other]\n40=Not a drum\n[DrumMap]\n38=Snare\n38=Snare again;72\n");
    EXPECT_EQ(map.GetCount(), 1);
    EXPECT_EQ(map.GetItem(40), nullptr);
    ASSERT_NE(map.GetItem(38), nullptr);
    EXPECT_EQ(map.GetItem(38)->GetName(), CString(L"Snare again"));
    EXPECT_EQ(map.GetItem(-1), nullptr);
    EXPECT_EQ(map.GetItem(128), nullptr);
    map.RemoveItem(38);
    map.RemoveItem(38);
    map.RemoveItem(500);
    EXPECT_EQ(map.GetCount(), 0);
}

TEST(MCDrumMap, TheShippedFileMapsTheGeneralMidiKit)
{
    MCDrumMap map;
    ASSERT_EQ(map.LoadDefault(), 1);
    EXPECT_EQ(map.GetCount(), 81 - 35 + 1);
    for (int note = 35; note <= 81; ++note)
        EXPECT_NE(map.GetItem(note), nullptr) << note;
    ASSERT_NE(map.GetItem(42), nullptr);
    EXPECT_EQ(map.GetItem(42)->GetHead(), MapItem::HeadCross);

    MCDrumMap missing;
    missing.SetItem(MapItem(1, L"stale"));
    EXPECT_EQ(missing.Load(L"/no/such/Mapping.ini"), 0);
    EXPECT_EQ(missing.GetCount(), 0) << "a failed load leaves the map empty";
}

TEST(MCDrumMap, RecordRoundTripsByteByByteAndRefusesCorruption)
{
    MCDrumMap map;
    MapItem hat(42, L"Hi-Hat \u00e9");
    hat.SetDisplayNote(79);
    hat.SetHead(MapItem::HeadCross);
    hat.SetPlayNote(44);
    map.SetItem(hat);
    map.SetItem(MapItem(36, L"Kick"));

    const Bytes bytes = archive_bytes::Store([&](CArchive &ar) { map.Serialize(ar); });
    const Bytes expected = archive_bytes::Store([](CArchive &ar) {
        ar << WORD(2);
        ar << BYTE(36) << BYTE(36) << BYTE(0) << BYTE(36) << CString(L"Kick");
        ar << BYTE(42) << BYTE(79) << BYTE(1) << BYTE(44) << CString(L"Hi-Hat \u00e9");
    });
    EXPECT_EQ(bytes, expected);

    MCDrumMap loaded;
    archive_bytes::Load(bytes, [&](CArchive &ar) { loaded.Serialize(ar); });
    EXPECT_TRUE(loaded == map);

    struct Case
    {
        const char *what;
        Bytes bytes;
    } const corrupt[] = {
        {"too many", archive_bytes::Store([](CArchive &ar) { ar << WORD(129); })},
        {"a key twice", archive_bytes::Store([](CArchive &ar) {
             ar << WORD(2) << BYTE(36) << BYTE(36) << BYTE(0) << BYTE(36) << CString(L"a");
             ar << BYTE(36) << BYTE(36) << BYTE(0) << BYTE(36) << CString(L"b");
         })},
        {"cut short", Bytes(bytes.begin(), bytes.end() - 3)},
    };
    for (const Case &c : corrupt)
    {
        MCDrumMap target;
        target.SetItem(MapItem(1, L"kept"));
        EXPECT_NE(archive_bytes::CauseOf([&] { archive_bytes::Load(c.bytes, [&](CArchive &ar) { target.Serialize(ar); }); }),
                  -1)
            << c.what;
        EXPECT_NE(target.GetItem(1), nullptr) << c.what << ": a failed load must not half-replace the map";
    }

    // Out-of-range bytes of a record read as safe values.
    const Bytes odd = archive_bytes::Store([](CArchive &ar) {
        ar << WORD(1) << BYTE(200) << BYTE(250) << BYTE(9) << BYTE(255) << CString(L"odd");
    });
    MCDrumMap oddMap;
    archive_bytes::Load(odd, [&](CArchive &ar) { oddMap.Serialize(ar); });
    ASSERT_NE(oddMap.GetItem(0), nullptr);
    EXPECT_EQ(oddMap.GetItem(0)->GetDisplayNote(), 0);
    EXPECT_EQ(oddMap.GetItem(0)->GetHead(), MapItem::HeadNormal);
}
