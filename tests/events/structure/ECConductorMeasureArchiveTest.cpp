// A conductor measure's column comes back from the second section: the
// measure array is written by PostSerialize after the tree, itself at row 0
// as a reference, the staves' measures after it.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/actions/ACPostSerialize.h>
#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <gtest/gtest.h>

namespace
{
// The highest row is protected: the measure commands raise it.
struct Column : ECConductorMeasure
{
    static constexpr auto MaxTrack = &Column::m_nMaxTrack;
};

TEST(ECConductorMeasureArchiveTest, TheColumnComesBackFromTheSecondSection)
{
    auto *column = static_cast<ECConductorMeasure *>(CreateEventW(EVENT_ID_CONDUCTOR_MEASURE));
    column->Ref();
    ECBase *row1 = CreateEventW(EVENT_ID_MEASURE);
    row1->Ref();
    MCTime two(2.0f);
    row1->SetTime(&two);
    column->SetCollapseMeasure(3);
    column->GetMeasures().SetAtGrow(1, static_cast<ECMeasure *>(row1));
    column->*Column::MaxTrack = 1;
    const INT_PTR size = column->GetMeasures().GetSize();

    const Bytes bytes = Store([&](CArchive &ar) {
        ar.WriteObject(column);
        ACPostSerialize post(ar);
        post.Apply(column);
    });

    ECConductorMeasure *loaded = nullptr;
    const ULONGLONG used = LoadBytes(bytes, [&](CArchive &ar) {
        ar >> loaded;
        ASSERT_NE(loaded, nullptr);
        ACPostSerialize post(ar);
        post.Apply(loaded);
    });
    ASSERT_NE(loaded, nullptr);
    loaded->Ref();
    EXPECT_EQ(used, bytes.size()) << "both sections read to their end";
    EXPECT_EQ(loaded->GetMaxTrack(), 1);
    EXPECT_EQ(loaded->GetCollapseMeasure(), 3);
    EXPECT_EQ(loaded->GetMeasures().GetSize(), size);
    EXPECT_EQ(loaded->GetMeasureOnTrack(0), loaded) << "row 0 is the conductor measure itself";
    ECMeasure *loadedRow1 = loaded->GetMeasureOnTrack(1);
    ASSERT_NE(loadedRow1, nullptr);
    EXPECT_NE(static_cast<ECBase *>(loadedRow1), row1);
    EXPECT_TRUE(*loadedRow1->GetTime() == MCTime(2.0f));
    EXPECT_EQ(loaded->GetMeasureOnTrack(2), nullptr);

    loadedRow1->Ref();
    loadedRow1->Unref(1);
    loaded->Unref(1);
    row1->Unref(1);
    column->Unref(1);
}
} // namespace
