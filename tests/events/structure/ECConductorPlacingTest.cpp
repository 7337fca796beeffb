// The conductor's placing operations, which the track commands call: what
// they refuse (null, a track placed already, a kind they do not place) and
// where they would put a track back.
#include "events/structure/TrackTestSupport.h"

#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECTrack.h>

namespace
{
// The placing operations are protected, for the track commands; a derived
// class names them so the test can call them on the document's conductor.
struct Placing : ECConductor
{
    static constexpr auto Insert = &Placing::InsertTrack;
    static constexpr auto Remove = &Placing::RemoveTrack;
    static constexpr auto Place = &Placing::GetPlace;
    static constexpr auto InsertWave = &Placing::InsertWaveTrack;
    static constexpr auto RemoveWave = &Placing::RemoveWaveTrack;
    static constexpr auto WaveNumber = &Placing::GetWaveTrackNumber;
};

using ConductorPlacing = TrackTest;

TEST_F(ConductorPlacing, RefusalsLeaveTheTracksAsTheyWere)
{
    ECConductor &c = *m_conductor;
    ECConductorStaff *conductorStaff = c.GetConductorStaff();
    CountedStaff *staff = AddStaff();
    CountedWaveTrack *wave = AddWave();
    const std::vector<ECBase *> before = Children();

    EXPECT_EQ((c.*Placing::Insert)(nullptr, 0), -1);
    EXPECT_EQ((c.*Placing::Insert)(conductorStaff, 0), -1) << "the conductor staff is placed already";
    auto *plain = static_cast<ECTrack *>(CreateEventW(EVENT_ID_TRACK));
    plain->Ref();
    EXPECT_EQ((c.*Placing::Insert)(plain, 0), -1) << "a bare track is no kind the conductor places";
    EXPECT_EQ((c.*Placing::InsertWave)(nullptr, 0), -1);
    EXPECT_EQ((c.*Placing::InsertWave)(wave, 0), -1) << "placed already";

    (c.*Placing::Remove)(nullptr);
    (c.*Placing::Remove)(plain);
    auto *loose = new CountedWaveTrack;
    loose->Ref();
    (c.*Placing::RemoveWave)(loose);
    (c.*Placing::RemoveWave)(nullptr);
    EXPECT_EQ(Children(), before);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{staff}));
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{wave}));

    EXPECT_EQ((c.*Placing::Place)(nullptr), -1);
    EXPECT_EQ((c.*Placing::Place)(plain), -1);
    EXPECT_EQ((c.*Placing::Place)(loose), -1);
    EXPECT_EQ((c.*Placing::WaveNumber)(loose), -1);
    EXPECT_EQ((c.*Placing::Place)(conductorStaff), 0);
    plain->Unref(1);
    loose->Unref(1);
}

TEST_F(ConductorPlacing, APlaceIsWhereInsertPutsTheTrackBack)
{
    ECConductor &c = *m_conductor;
    c.GetConductorStaff();
    AddStaff();
    CountedStaff *second = AddStaff();
    AddStaff();
    AddWave();
    CountedWaveTrack *wave = AddWave();
    const std::vector<ECTrack *> staves = Tracks(2), waves = Tracks(3);

    for (ECTrack *track : std::initializer_list<ECTrack *>{second, wave})
    {
        SCOPED_TRACE(track->GetEventId());
        const int place = (c.*Placing::Place)(track);
        EXPECT_GE(place, 0);
        track->Ref();
        (c.*Placing::Remove)(track);
        EXPECT_EQ((c.*Placing::Place)(track), -1) << "not placed any more";
        EXPECT_GE((c.*Placing::Insert)(track, place), 0);
        track->Unref(1);
        EXPECT_EQ(Tracks(2), staves);
        EXPECT_EQ(Tracks(3), waves);
    }
}
} // namespace

namespace
{
TEST_F(ConductorPlacing, TheStaffArrayAnswersForStrangersAndMakesAStaffOnlyWhenAsked)
{
    ECConductorStaff *cs = m_conductor->GetConductorStaff();
    CountedStaff *first = AddStaff();
    auto *stranger = new CountedStaff;
    stranger->Ref();

    EXPECT_EQ(cs->GetStaffNumber(nullptr), -1);
    EXPECT_EQ(cs->GetStaffNumber(stranger), -1);
    EXPECT_EQ(cs->GetStaffNumber(cs), 0);
    EXPECT_EQ(cs->GetStaff(5, 0), nullptr);
    EXPECT_EQ(cs->GetStaff(-1, 0), nullptr);
    EXPECT_EQ(cs->InsertStaff(nullptr, 1), -1);
    EXPECT_EQ(cs->InsertStaff(first, 1), -1) << "in the array already";
    cs->RemoveStaff(stranger);
    cs->RemoveStaff(cs);
    cs->RemoveStaff(nullptr);
    EXPECT_EQ(cs->GetMaxStaffNumber(), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{first}));

    // Asked to make one, it adds a staff at the end, whatever number was asked.
    ECStaff *made = cs->GetStaff(7, 1);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(cs->GetStaffNumber(made), 2);
    EXPECT_EQ(made->GetTrack(), 2);
    stranger->Unref(1);
}

TEST_F(ConductorPlacing, TheEnvelopeShortcutsFollowAddingAndRemoving)
{
    ECConductorStaff *cs = m_conductor->GetConductorStaff();
    ECBase *tempoEnv = static_cast<ECBase *>(CRuntimeClass::FromName("ECTempoEnv")->CreateObject());
    ECBase *meterEnv = static_cast<ECBase *>(CRuntimeClass::FromName("ECMeterEnv")->CreateObject());
    ECBase *text = CreateEventW(EVENT_ID_TEXT);
    ASSERT_TRUE(cs->AddChild(tempoEnv, 0));
    ASSERT_TRUE(cs->AddChild(meterEnv, 0));
    ASSERT_TRUE(cs->AddChild(text, 0));
    EXPECT_EQ(static_cast<ECBase *>(cs->GetTempoEnv()), tempoEnv);
    EXPECT_EQ(static_cast<ECBase *>(cs->GetMeterEnv()), meterEnv);

    EXPECT_TRUE(cs->RemoveChild(text, 0));
    EXPECT_EQ(static_cast<ECBase *>(cs->GetTempoEnv()), tempoEnv) << "another child leaves both";
    EXPECT_TRUE(cs->RemoveChild(meterEnv, 0));
    EXPECT_EQ(cs->FindMeterEnv(), nullptr);
    EXPECT_EQ(static_cast<ECBase *>(cs->GetTempoEnv()), tempoEnv);
    EXPECT_TRUE(cs->RemoveChild(tempoEnv, 0));
    EXPECT_EQ(cs->FindTempoEnv(), nullptr);
    ECTempoEnv *made = cs->GetTempoEnv();
    ASSERT_NE(made, nullptr) << "a tempo map is made again at first use";
    EXPECT_EQ(made->GetParents()->GetHead(), static_cast<ECBase *>(cs));
    EXPECT_EQ(cs->FindTempoEnv(), made);
    ECBase *stranger = CreateEventW(EVENT_ID_TEXT);
    stranger->Ref();
    EXPECT_FALSE(cs->RemoveChild(stranger, 0)) << "not a child";
    stranger->Unref(1);
}
} // namespace

namespace
{
TEST_F(ConductorPlacing, TrackNumbersOfTheWrongKindAreAbsent)
{
    ECConductor &c = *m_conductor;
    CountedStaff *staff = AddStaff();
    CountedWaveTrack *wave = AddWave();
    EXPECT_EQ(c.GetTrackNumber(ECConductor::TrackStaff, staff), 1);
    EXPECT_EQ(c.GetTrackNumber(ECConductor::TrackStaff, wave), -1);
    EXPECT_EQ(c.GetTrackNumber(ECConductor::TrackWave, staff), -1);
    EXPECT_EQ(c.GetTrackNumber(ECConductor::TrackWave, wave), 1);
    EXPECT_EQ(c.GetTrackNumber(ECConductor::TrackChordStaff, staff), ECConductor::kChordStaffTrack);
    EXPECT_EQ(c.GetTrack(ECConductor::TrackWave, 2, 0), nullptr);
    EXPECT_EQ(c.GetTrack(ECConductor::TrackStaff, 2, 0), nullptr);
}

TEST_F(ConductorPlacing, AConductorWithoutStructureAnswersEmpty)
{
    auto *loose = new ECConductor;
    loose->Ref();
    MCTime t(1.0f), start, end;
    EXPECT_EQ(loose->GetMaxMeasureNumber(), 0);
    EXPECT_TRUE(loose->GetMaxMeasureEndTime() == MCTime::TimeZero());
    EXPECT_EQ(loose->GetTempoAtTime(t), nullptr);
    EXPECT_EQ(loose->GetTempoBeforeTime(t), nullptr);
    EXPECT_EQ(loose->GetMeterAtTime(t), nullptr);
    EXPECT_EQ(loose->GetMeterBeforeTime(t), nullptr);
    EXPECT_EQ(loose->GetDocMeter(), nullptr);
    EXPECT_EQ(loose->GetMeterByPickupRole(1), nullptr);
    loose->GetMeterScope(nullptr, start, end);
    EXPECT_TRUE(start == MCTime::TimeNull());
    EXPECT_TRUE(end == MCTime::TimeNull());
    EXPECT_EQ(loose->GetTrackNumber(ECConductor::TrackStaff, nullptr), -1);
    EXPECT_EQ(loose->GetPerformance(), nullptr);
    loose->Unref(1);
}
} // namespace
