// The clipboard exchange: a selection written to its two buffers and read
// back as copies; every cut and every flipped byte of the buffers is refused
// or read without a crash or a leak; buffers that disagree are refused.
#include "ArchiveBytes.h"

#include <scoremodel/commands/MCOleDataIn.h>
#include <scoremodel/commands/MCOleDataInfo.h>
#include <scoremodel/commands/MCOleDataOut.h>
#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/media/ECText.h>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{
using Bytes = std::vector<BYTE>;

ECBase *MakeText(float time, int track, const wchar_t *text)
{
    auto *e = static_cast<ECText *>(CreateEventW(EVENT_ID_TEXT));
    MCTime t(time);
    e->SetTime(&t);
    e->SetVoiceTrack(0, track);
    e->SetText(text);
    e->Ref();
    return e;
}

// A parent with a child, so the copy must bring the child along.
ECBase *MakeGroup(float time, int track)
{
    ECBase *parent = CreateEventW(EVENT_ID_WITH_TIME_CHILD);
    MCTime t(time);
    parent->SetTime(&t);
    parent->SetVoiceTrack(1, track);
    parent->Ref();
    parent->AddChild(CreateEventW(EVENT_ID_WITH_TIME), 0);
    return parent;
}

void Release(ECBase *e)
{
    e->RemoveChildren(1);
    e->Unref(1);
}

struct Selection
{
    std::vector<ECBase *> events;
    Bytes info, data;

    Selection()
    {
        events = {MakeText(4.0f, 3, L"dolce"), MakeGroup(1.5f, 7), MakeText(2.0f, 2, L"rit.")};
        MCOleDataOut out;
        for (ECBase *e : events)
            out.AddEvent(e);
        out.AddEvent(events[0]); // twice: counted once
        out.AddEvent(nullptr);
        EXPECT_EQ(out.GetCount(), 3);
        EXPECT_EQ(out.Render(), 1);
        info = out.GetBuffer(MCOleDataInfo::kInfoFormat);
        data = out.GetBuffer(L"Sonarift Music Data");
        EXPECT_TRUE(out.GetBuffer(L"Some Other Format").empty());
    }
    ~Selection()
    {
        for (ECBase *e : events)
            Release(e);
    }
};

int ReadBack(MCOleDataIn &in, const Bytes &info, const Bytes &data)
{
    in.SetBuffer(MCOleDataInfo::kInfoFormat, info.data(), info.size());
    in.SetBuffer(MCOleDataInfo::kDataFormat, data.data(), data.size());
    return in.Read();
}
} // namespace

TEST(MCOleData, ASelectionComesBackAsCopiesWithItsInfo)
{
    Selection s;
    MCOleDataIn in;
    ASSERT_EQ(ReadBack(in, s.info, s.data), 1) << in.GetError();
    EXPECT_TRUE(in.GetError().empty());
    ASSERT_EQ(in.GetCount(), 3);

    const MCOleDataInfo &info = in.GetInfo();
    EXPECT_EQ(info.GetCount(), 3);
    EXPECT_EQ(info.GetVersion(), ArchiveVersionCurrent);
    EXPECT_TRUE(info.GetStart() == MCTime(1.5f));
    EXPECT_TRUE(info.GetEnd() == MCTime(4.0f));
    EXPECT_EQ(info.GetFirstTrack(), 2);
    EXPECT_EQ(info.GetLastTrack(), 7);

    for (int i = 0; i < 3; ++i)
    {
        ECBase *copy = in.GetEvent(i);
        ASSERT_NE(copy, nullptr);
        EXPECT_NE(copy, s.events[static_cast<size_t>(i)]) << "a paste gets copies";
        EXPECT_EQ(copy->GetRuntimeClass(), s.events[static_cast<size_t>(i)]->GetRuntimeClass());
        EXPECT_TRUE(*copy->GetTime() == *s.events[static_cast<size_t>(i)]->GetTime());
    }
    EXPECT_EQ(static_cast<ECText *>(in.GetEvent(0))->GetText(), CString(L"dolce"));
    EXPECT_EQ(in.GetEvent(1)->GetChildren()->GetCount(), 1);
    EXPECT_EQ(in.GetEvent(3), nullptr);
    EXPECT_EQ(in.GetEvent(-1), nullptr);

    // Read again: the first copies go, new ones come.
    ASSERT_EQ(in.Read(), 1);
    EXPECT_EQ(in.GetCount(), 3);
}

TEST(MCOleData, AnEmptySelectionIsAValidClipboard)
{
    MCOleDataOut out;
    ASSERT_EQ(out.Render(), 1);
    MCOleDataIn in;
    ASSERT_EQ(ReadBack(in, out.GetBuffer(MCOleDataInfo::kInfoFormat), out.GetBuffer(MCOleDataInfo::kDataFormat)), 1);
    EXPECT_EQ(in.GetCount(), 0);
    EXPECT_TRUE(in.GetInfo().GetStart() == MCTime::TimeNull());
    EXPECT_EQ(in.GetInfo().GetFirstTrack(), 0x7FF);
}

TEST(MCOleData, BuffersThatDisagreeOrAreMissingAreRefused)
{
    Selection s;
    MCOleDataOut one;
    one.AddEvent(s.events[0]);
    ASSERT_EQ(one.Render(), 1);

    struct Case
    {
        const char *what;
        Bytes info, data;
    } const cases[] = {
        {"info of one event, data of three", one.GetBuffer(MCOleDataInfo::kInfoFormat), s.data},
        {"no info", Bytes(), s.data},
        {"no data", s.info, Bytes()},
        {"data after the events", s.info, archive_bytes::Concat({s.data, Bytes{0}})},
        {"a newer version", archive_bytes::Concat({Bytes{0xFF, 0x00}, Bytes(s.info.begin() + 2, s.info.end())}),
         s.data},
    };
    for (const Case &c : cases)
    {
        MCOleDataIn in;
        EXPECT_EQ(ReadBack(in, c.info, c.data), 0) << c.what;
        EXPECT_EQ(in.GetCount(), 0) << c.what;
        EXPECT_FALSE(in.GetError().empty()) << c.what;
    }
    MCOleDataIn in;
    EXPECT_EQ(in.SetBuffer(L"Unknown", s.info.data(), s.info.size()), 0);
    EXPECT_EQ(in.SetBuffer(nullptr, s.info.data(), s.info.size()), 0);
    EXPECT_EQ(in.SetBuffer(MCOleDataInfo::kInfoFormat, nullptr, 4), 0);
}

TEST(MCOleData, EveryCutAndRandomDamageIsRefusedOrReadWithoutHarm)
{
    Selection s;
    for (size_t n = 0; n < s.data.size(); ++n)
    {
        MCOleDataIn in;
        EXPECT_EQ(ReadBack(in, s.info, Bytes(s.data.begin(), s.data.begin() + n)), 0) << "cut at " << n;
    }
    for (size_t n = 0; n < s.info.size(); ++n)
    {
        MCOleDataIn in;
        EXPECT_EQ(ReadBack(in, Bytes(s.info.begin(), s.info.begin() + n), s.data), 0) << "info cut at " << n;
    }
    std::mt19937 random(2201);
    for (int round = 0; round < 3000; ++round)
    {
        Bytes data = s.data;
        const int flips = 1 + static_cast<int>(random() % 4);
        for (int f = 0; f < flips; ++f)
            data[random() % data.size()] ^= static_cast<BYTE>(1 + random() % 255);
        MCOleDataIn in;
        if (ReadBack(in, s.info, data))
            for (int i = 0; i < in.GetCount(); ++i)
                EXPECT_NE(in.GetEvent(i), nullptr);
        else
            EXPECT_EQ(in.GetCount(), 0);
    }
}
