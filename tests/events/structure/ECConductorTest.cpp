#include "events/structure/TrackTestSupport.h"

#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>

using ConductorTracks = TrackTest;

TEST_F(ConductorTracks, AskingMakesNothingAndKindsOutsideTheTableAnswerZero)
{
    struct Row
    {
        int kind, maxNumber, number;
    };
    for (Row row : {Row{0, 1, 0}, Row{1, 1, 0x7FC}, Row{7, 0, 0}, Row{-1, 0, 0}})
    {
        SCOPED_TRACE(row.kind);
        EXPECT_EQ(m_conductor->GetMaxTrackNumber(row.kind), row.maxNumber);
        EXPECT_EQ(m_conductor->GetTrackNumber(row.kind, nullptr), row.number);
    }
    EXPECT_EQ(m_conductor->GetTrack(7, 1, 1), nullptr);
    EXPECT_EQ(m_conductor->GetMaxTrackNumber(2), 0) << "asking must not make a conductor staff";
    EXPECT_EQ(m_conductor->GetTrack(3, 1, 0), nullptr);

    // A conductor outside a document has no command to make its staves with.
    ECConductor *loose = new ECConductor;
    loose->Ref();
    EXPECT_EQ(loose->GetConductorStaff(), nullptr);
    EXPECT_EQ(loose->GetChordStaff(), nullptr);
    EXPECT_EQ(loose->GetTrack(3, 1, 1), nullptr);
    EXPECT_EQ(loose->GetChildren()->GetCount(), 0);
    loose->Unref(1);
}

TEST_F(ConductorTracks, ConductorAndChordStaffAreMadeOnceThroughACommand)
{
    BeginUndo();
    ECConductorStaff *conductorStaff = m_conductor->GetConductorStaff();
    ECStaff *chordStaff = m_conductor->GetChordStaff();
    EndUndo();
    ASSERT_NE(conductorStaff, nullptr);
    ASSERT_NE(chordStaff, nullptr);
    EXPECT_EQ(m_conductor->GetConductorStaff(), conductorStaff);
    EXPECT_EQ(m_conductor->GetChordStaff(), chordStaff);
    EXPECT_EQ(m_conductor->GetTrack(0, 0, 0), conductorStaff);
    EXPECT_EQ(m_conductor->GetTrack(1, 0, 0), chordStaff);

    EXPECT_EQ(conductorStaff->GetVoice(), 14);
    EXPECT_EQ(conductorStaff->GetTrack(), 0);
    EXPECT_TRUE(*conductorStaff->GetTime() == MCTime::TimeZero());
    EXPECT_EQ(conductorStaff->GetStaff(0, 0), conductorStaff);
    EXPECT_EQ(chordStaff->GetStaffType(), ECStaff::StaffTypeChord);
    EXPECT_EQ(chordStaff->GetTrack(), 0x7FC);
    EXPECT_EQ(chordStaff->IsStaffEmpty(), 0);

    // Both were edits of the open step: one undo takes both away.
    EXPECT_EQ(m_doc->GetUndoCount(), 1);
    conductorStaff->Ref();
    EXPECT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(conductorStaff->GetParents()->GetCount(), 0);
    EXPECT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(m_conductor->GetConductorStaff(), conductorStaff) << "redo brings back the same object";
    conductorStaff->Unref(1);
}

TEST_F(ConductorTracks, StavesAndWaveTracksAreNumberedAndChildrenFollowTheNumbers)
{
    ECConductorStaff *conductorStaff = m_conductor->GetConductorStaff();
    CountedWaveTrack *w1 = AddWave();
    CountedStaff *a = AddStaff();
    CountedStaff *b = AddStaff();
    CountedStaff *c = AddStaff(1);
    CountedWaveTrack *w0 = AddWave(0);

    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{c, a, b}));
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{w0, w1}));
    EXPECT_EQ(a->GetTrack(), 2);
    EXPECT_EQ(b->GetTrack(), 3);
    EXPECT_EQ(w1->GetTrack(), 2) << "a stored wave track number is its place in the array";
    EXPECT_EQ(m_conductor->GetTrackNumber(2, b), 3);
    EXPECT_EQ(m_conductor->GetTrackNumber(3, w0), 1);
    EXPECT_EQ(Children(), (std::vector<ECBase *>{conductorStaff, c, a, b, w0, w1}));

    // A staff whose number changed behind the array's back is put in its
    // place by OrderTracks(1).
    a->SetVoiceTrack(14, 5);
    m_conductor->OrderTracks(1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{c, b, a}));
    EXPECT_EQ(Children(), (std::vector<ECBase *>{conductorStaff, c, b, a, w0, w1}));
}

TEST_F(ConductorTracks, TheChordStaffLeavesTheChildListButStaysHeldAndDiesWithTheConductor)
{
    m_conductor->GetConductorStaff();
    auto *chord = new CountedStaff(ECStaff::StaffTypeChord);
    chord->SetVoiceTrack(14, 0x7FC);
    ASSERT_EQ(CCAddTrack::AddNow(m_doc, chord, -1), chord);
    AddStaff();

    EXPECT_EQ(m_conductor->GetChordStaff(), chord);
    EXPECT_EQ(chord->GetParents()->GetCount(), 0) << "OrderTracks takes the chord staff out";
    EXPECT_EQ(m_conductor->GetChildren()->Find(chord), nullptr);
    EXPECT_EQ(chord->GetTrack(), 0x7FC) << "adding a staff does not renumber the chord staff";
    EXPECT_EQ(g_liveTracks, 2);
    // TearDown checks that it died with the document.
}

TEST_F(ConductorTracks, TheMeterAndTempoLookupsReadTheEnvelopes)
{
    ECConductorStaff *conductorStaff = m_conductor->GetConductorStaff();
    auto *meters = static_cast<ECMeterEnv *>(RUNTIME_CLASS(ECMeterEnv)->CreateObject());
    auto *tempos = static_cast<ECTempoEnv *>(RUNTIME_CLASS(ECTempoEnv)->CreateObject());
    conductorStaff->AddChild(meters, 0);
    conductorStaff->AddChild(tempos, 0);
    ASSERT_EQ(conductorStaff->GetMeterEnv(), meters);
    ASSERT_EQ(conductorStaff->GetTempoEnv(), tempos);

    std::vector<ECMeter *> meter;
    for (float at : {0.0f, 4.0f, 8.0f})
    {
        meter.push_back(static_cast<ECMeter *>(CreateEventW(EVENT_ID_METER)));
        MCTime time(at);
        meter.back()->SetTime(&time);
        meters->AddChild(meter.back(), 1);
    }
    // The first tempo of a map always stands at the start.
    auto *first = static_cast<ECTempo *>(CreateEventW(EVENT_ID_TEMPO));
    auto *tempo = static_cast<ECTempo *>(CreateEventW(EVENT_ID_TEMPO));
    MCTime two(2.0f), one(1.0f);
    first->SetTime(&one);
    tempos->AddChild(first, 1);
    tempo->SetTime(&two);
    tempos->AddChild(tempo, 1);
    EXPECT_TRUE(*first->GetTime() == MCTime::TimeZero());

    MCTime four(4.0f), five(5.0f), minus(-1.0f);
    EXPECT_EQ(m_conductor->GetMeterAtTime(four), meter[1]);
    EXPECT_EQ(m_conductor->GetMeterBeforeTime(four), meter[0]);
    EXPECT_EQ(m_conductor->GetMeterAtTime(five), meter[1]);
    EXPECT_EQ(m_conductor->GetMeterAtTime(minus), nullptr);
    EXPECT_EQ(m_conductor->GetTempoAtTime(two), tempo);
    EXPECT_EQ(m_conductor->GetTempoBeforeTime(two), first);
    MCTime zero;
    EXPECT_EQ(m_conductor->GetTempoBeforeTime(zero), nullptr);
    EXPECT_EQ(m_conductor->GetDocMeter(), meter[0]);

    MCTime start, end;
    m_conductor->GetMeterScope(meter[1], start, end);
    EXPECT_TRUE(start == four);
    EXPECT_TRUE(end == MCTime(8.0f));
    m_conductor->GetMeterScope(meter[2], start, end);
    EXPECT_TRUE(end == m_conductor->GetMaxMeasureEndTime()) << "the last meter runs to the end";

    ECMeter *stranger = static_cast<ECMeter *>(CreateEventW(EVENT_ID_METER));
    m_conductor->GetMeterScope(stranger, start, end);
    EXPECT_TRUE(start == MCTime::TimeNull());
    EXPECT_TRUE(end == MCTime::TimeNull());
    stranger->Unref(1);

    // Forgotten when removed, so no lookup reads a dead envelope.
    conductorStaff->RemoveChild(meters, 1);
    EXPECT_EQ(conductorStaff->GetMeterEnv(), nullptr);
    EXPECT_EQ(m_conductor->GetDocMeter(), nullptr);
}

TEST_F(ConductorTracks, TheDocumentMeterLooksPastAPickup)
{
    ECConductorStaff *conductorStaff = m_conductor->GetConductorStaff();
    auto *meters = static_cast<ECMeterEnv *>(RUNTIME_CLASS(ECMeterEnv)->CreateObject());
    conductorStaff->AddChild(meters, 0);
    auto add = [&](float at, int role) {
        auto *meter = new ECMeter(4, 4, 255);
        MCTime time(at);
        meter->SetTime(&time);
        meter->SetPickupRole(static_cast<unsigned char>(role));
        meters->AddChild(meter, 1);
        return meter;
    };
    ECMeter *pickup = add(0.0f, 2);
    EXPECT_EQ(m_conductor->GetDocMeter(), pickup) << "a lone pickup stands for the document";
    ECMeter *second = add(1.0f, 0);
    EXPECT_EQ(m_conductor->GetDocMeter(), second) << "without a role 1, the second point";
    ECMeter *real = add(9.0f, 1);
    EXPECT_EQ(m_conductor->GetDocMeter(), real);
    EXPECT_EQ(m_conductor->GetMeterByPickupRole(1), real);
    EXPECT_EQ(m_conductor->GetMeterByPickupRole(2), pickup);
    EXPECT_EQ(m_conductor->GetMeterByPickupRole(3), nullptr);
    ECMeter *closing = add(20.0f, 3);
    EXPECT_EQ(m_conductor->GetMeterByPickupRole(3), closing);
    pickup->SetPickupRole(0);
    EXPECT_EQ(m_conductor->GetDocMeter(), pickup) << "an ordinary first meter is the document's";
    conductorStaff->RemoveChild(meters, 1);
}
