// The data attachment registry: slots by view code and event type.
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/plugins/CPluginData.h>

#include <gtest/gtest.h>

class DCPluginA : public DCBase
{
    DECLARE_DYNCREATE(DCPluginA)
};
IMPLEMENT_DYNCREATE(DCPluginA, DCBase)

class DCPluginB : public DCBase
{
    DECLARE_DYNCREATE(DCPluginB)
};
IMPLEMENT_DYNCREATE(DCPluginB, DCBase)

// Not an attachment at all.
class NotData : public CObject
{
    DECLARE_DYNCREATE(NotData)
};
IMPLEMENT_DYNCREATE(NotData, CObject)

TEST(CPluginDataTest, LaterPluginForTheSameSlotWins)
{
    CPluginData a(RUNTIME_CLASS(DCPluginA), 4, 12), b(RUNTIME_CLASS(DCPluginB), 4, 12);
    CPluginData::AddPlugin(&a);
    CPluginData::AddPlugin(&b);
    EXPECT_EQ(CPluginData::GetDataClass(4, 12), RUNTIME_CLASS(DCPluginB));
    DCBase *data = CPluginData::CreateData(4, 12);
    ASSERT_NE(data, nullptr);
    EXPECT_TRUE(data->IsKindOf(RUNTIME_CLASS(DCPluginB)));
    delete data;
    CPluginData::RemovePlugin(&a); // empties the slot whoever filled it
    EXPECT_EQ(CPluginData::GetDataClass(4, 12), nullptr);
    EXPECT_EQ(CPluginData::CreateData(4, 12), nullptr);
}

TEST(CPluginDataTest, CreateForAnEventUsesItsIdAndOwnsItToIt)
{
    CPluginData entry(RUNTIME_CLASS(DCPluginA), 2, EVENT_ID_WITH_TIME);
    CPluginData::AddPlugin(&entry);
    ECBase *e = CreateEventW(EVENT_ID_WITH_TIME);
    e->Ref();
    DCBase *data = CPluginData::CreateData(2, e);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->GetOwner(), e);
    EXPECT_EQ(e->GetData()->GetAt(1), nullptr) << "the registry does not attach it";
    delete data;
    EXPECT_EQ(CPluginData::CreateData(3, e), nullptr) << "an empty slot gives null";
    EXPECT_EQ(CPluginData::CreateData(2, static_cast<ECBase *>(nullptr)), nullptr);
    CPluginData::RemovePlugin(&entry);
    e->Unref(1);
}

TEST(CPluginDataTest, BadSlotsAndBadClassesGiveNull)
{
    EXPECT_EQ(CPluginData::CreateData(-1, 0), nullptr);
    EXPECT_EQ(CPluginData::CreateData(0, 80), nullptr);
    EXPECT_EQ(CPluginData::CreateData(CPluginData::kViewCodes, 0), nullptr);
    CPluginData::GetDataClass(9999, 0) = RUNTIME_CLASS(DCPluginA);
    EXPECT_EQ(CPluginData::GetDataClass(9999, 0), nullptr) << "writing outside the table registers nothing";

    CPluginData wrong(RUNTIME_CLASS(NotData), 1, 1);
    CPluginData::AddPlugin(&wrong);
    EXPECT_EQ(CPluginData::CreateData(1, 1), nullptr) << "only attachments are made";
    CPluginData::RemovePlugin(&wrong);
    CPluginData::AddPlugin(nullptr);
    CPluginData::RemovePlugin(nullptr);
}
