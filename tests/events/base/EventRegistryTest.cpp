// The registry by event id.
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/events/base/ECWithTimeChild.h>
#include <scoremodel/events/base/EventRegistry.h>

#include <gtest/gtest.h>

#include <set>

TEST(EventRegistryTest, RefusedAndUnknownIdsGiveNull)
{
    const std::set<int> refused = {3, 4, 11, 19, 22, 23, 26, 34, 38, 39, 42, 46, 48, 52, 53, 58, 63, 68, 69, 70, 76};
    for (int id = -3; id < 90; ++id)
    {
        if (id >= 0 && id <= 78 && !refused.count(id))
            continue;
        EXPECT_EQ(GetEventRuntimeClass(id), nullptr) << id;
        EXPECT_EQ(CreateEventW(id), nullptr) << id;
    }
}

TEST(EventRegistryTest, ServedIdsMakeEventsThatAnswerTheirId)
{
    // Classes not yet in the library answer null; every one that answers
    // must make an event of its own id, with no holder.
    int served = 0;
    for (int id = 0; id <= 78; ++id)
    {
        CRuntimeClass *cls = GetEventRuntimeClass(id);
        if (!cls)
            continue;
        ++served;
        EXPECT_STREQ(cls->m_lpszClassName, GetEventClassName(id));
        ECBase *e = CreateEventW(id);
        ASSERT_NE(e, nullptr) << id;
        EXPECT_EQ(e->GetEventId(), id) << cls->m_lpszClassName;
        EXPECT_EQ(e->GetRefCount(), 0);
        e->Ref();
        e->Unref(1);
    }
    EXPECT_GE(served, 4) << "at least the four bases are always served";
}

TEST(EventRegistryTest, BasesAreServed)
{
    struct Case
    {
        int id;
        CRuntimeClass *cls;
    };
    const Case cases[] = {{EVENT_ID_BASE, RUNTIME_CLASS(ECBase)},
                          {EVENT_ID_WITH_CHILD, RUNTIME_CLASS(ECWithChild)},
                          {EVENT_ID_WITH_TIME, RUNTIME_CLASS(ECWithTime)},
                          {EVENT_ID_WITH_TIME_CHILD, RUNTIME_CLASS(ECWithTimeChild)}};
    for (const Case &c : cases)
        EXPECT_EQ(GetEventRuntimeClass(c.id), c.cls);
    EXPECT_STREQ(GetEventClassName(EVENT_ID_NOTE), "ECNote");
    EXPECT_STREQ(GetEventClassName(EVENT_ID_METER_ENV), "ECMeterEnv");
    EXPECT_EQ(GetEventClassName(63), nullptr);
}
