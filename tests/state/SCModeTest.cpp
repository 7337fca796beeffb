// The editing mode's process-wide state: the drawing event it holds by
// reference, the event function behind it, the style bits and the record
// that changes the mode.
#include "events/base/EventTestSupport.h"

#include <scoremodel/state/SCMode.h>

#include <gtest/gtest.h>

namespace
{
ECBase *s_madeFor[2];
int s_askedType = -100;
ECBase *EventForType(int type)
{
    s_askedType = type;
    return s_madeFor[type == 37 ? 0 : 1];
}

// Puts the statics back as the test found them.
class SCModeTest : public ::testing::Test
{
protected:
    void TearDown() override
    {
        SCMode::ClearDrawingEvent();
        SCMode::SetEventFunc(nullptr);
        SCMode::SetEventType(m_type);
        SCMode::SetMode(m_mode);
        SCMode::SetKeyboardWestern(m_western);
        SCMode::SetModeStyle(~0u, 0);
    }
    int m_type = SCMode::GetEventType();
    int m_mode = SCMode::GetMode();
    int m_western = SCMode::IsKeyboardWestern();
};

TEST_F(SCModeTest, TheDrawingEventIsHeldOnceWhileSetAndReleasedWhenReplacedOrCleared)
{
    const int alive = TestLeaf::s_alive;
    TestLeaf *first = TestLeaf::Make(1.0f);
    TestLeaf *second = TestLeaf::Make(2.0f);
    second->Ref(); // the test's own hold, so it can be looked at after release

    SCMode::SetDrawingEvent(first);
    EXPECT_EQ(first->GetRefCount(), 1);
    SCMode::SetDrawingEvent(first);
    EXPECT_EQ(first->GetRefCount(), 1) << "setting the same event again takes no second reference";
    EXPECT_EQ(SCMode::GetEvent(), first);

    SCMode::SetDrawingEvent(second);
    EXPECT_EQ(TestLeaf::s_alive, alive + 1) << "the replaced event had no other holder and dies";
    EXPECT_EQ(second->GetRefCount(), 2);
    EXPECT_EQ(SCMode::GetEvent(), second);

    SCMode::ClearDrawingEvent();
    EXPECT_EQ(second->GetRefCount(), 1);
    EXPECT_EQ(SCMode::GetEvent(), nullptr) << "no event function: nothing";
    SCMode::ClearDrawingEvent();
    EXPECT_EQ(second->GetRefCount(), 1) << "clearing twice releases once";

    // The last release ends the event when the mode was its only holder.
    SCMode::SetDrawingEvent(second);
    second->Unref(1);
    EXPECT_EQ(TestLeaf::s_alive, alive + 1);
    SCMode::SetDrawingEvent(nullptr);
    EXPECT_EQ(TestLeaf::s_alive, alive);
}

TEST_F(SCModeTest, WithoutADrawingEventTheEventFunctionAnswersForTheEventType)
{
    TestLeaf *note = TestLeaf::Make(0.0f);
    TestLeaf *other = TestLeaf::Make(0.0f);
    note->Ref();
    other->Ref();
    s_madeFor[0] = note;
    s_madeFor[1] = other;

    SCMode::SetEventFunc(EventForType);
    SCMode::SetEventType(37);
    EXPECT_EQ(SCMode::GetEventType(), 37);
    EXPECT_EQ(SCMode::GetEvent(), note);
    EXPECT_EQ(s_askedType, 37);
    SCMode::SetEventType(14);
    EXPECT_EQ(SCMode::GetEvent(), other);

    SCMode::SetDrawingEvent(note);
    s_askedType = -100;
    EXPECT_EQ(SCMode::GetEvent(), note) << "a drawing event comes first";
    EXPECT_EQ(s_askedType, -100) << "and the function is not asked";
    SCMode::ClearDrawingEvent();
    EXPECT_EQ(note->GetRefCount(), 1);
    note->Unref(1);
    other->Unref(1);
}

TEST_F(SCModeTest, StyleBitsKeyboardAndTheRecordsMode)
{
    SCMode::SetModeStyle(0x5, 1);
    SCMode::SetModeStyle(0x2, 1);
    SCMode::SetModeStyle(0x4, 0);
    EXPECT_EQ(SCMode::HasModeStyle(0x1), 1);
    EXPECT_EQ(SCMode::HasModeStyle(0x2), 1);
    EXPECT_EQ(SCMode::HasModeStyle(0x4), 0);
    EXPECT_EQ(SCMode::HasModeStyle(0x6), 1) << "any bit of the mask";

    SCMode::SetKeyboardWestern(5);
    EXPECT_EQ(SCMode::IsKeyboardWestern(), 1);
    SCMode::SetKeyboardWestern(0);
    EXPECT_EQ(SCMode::IsKeyboardWestern(), 0);

    SCMode::SetMode(4);
    SCMode keep(1);
    EXPECT_EQ(keep.GetNewMode(), -1);
    keep.DoState();
    EXPECT_EQ(SCMode::GetMode(), 4) << "a record without a mode leaves it";
    SCMode change(1, 0);
    change.DoState();
    EXPECT_EQ(SCMode::GetMode(), 0) << "mode 0 is a mode";
}
} // namespace
