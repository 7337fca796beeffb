// The scoremodel command-line tool: builds, saves, checks and shows
// documents.
//
//   scoremodel demo [FILE]   builds a small document through commands, saves
//                            it (to FILE, or to a temporary file that is
//                            removed afterwards), loads it back and checks
//                            that the two trees are equal
//   scoremodel dump FILE     the event tree of a saved document
//   scoremodel info FILE     a summary of a saved document, or of a MIDI
//                            file (tracks, events, tempo and meter maps,
//                            length in bars and seconds)
//   scoremodel import MIDI FILE   reads a MIDI file into a new document
//   scoremodel export FILE MIDI   writes a document as a MIDI file
//
// FILE may be a file, a pipe or a device, or "-" for standard input; every
// input is read whole first and then checked the same way.
// Errors go to stderr; the exit code is 0 on success, 1 when the work failed
// (a failed write of the output included) and 2 for a wrong command line.
#include <scoremodel/commands/CCAdd.h>
#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/CCRemoveTrack.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/core/MCTime.h>
#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/document/MCDocumentOwner.h>
#include <scoremodel/events/chords/ECChordSymbol.h>
#include <scoremodel/events/envelopes/ECControllerEnvelopes.h>
#include <scoremodel/events/envelopes/ECControllerPoints.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/notes/ECAccent.h>
#include <scoremodel/events/notes/ECBeam.h>
#include <scoremodel/events/notes/ECChord.h>
#include <scoremodel/events/notes/ECSlur.h>
#include <scoremodel/events/notes/ECTie.h>
#include <scoremodel/events/notes/ECGroup.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECRest.h>
#include <scoremodel/events/notes/ECTuplet.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/marks/ECFlowControl.h>
#include <scoremodel/events/marks/ECSystemMessage.h>
#include <scoremodel/events/media/ECDrawing.h>
#include <scoremodel/events/media/ECFrame.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/media/ECVideo.h>
#include <scoremodel/events/media/ECWave.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/instruments/MCInstrument.h>
#include <scoremodel/events/structure/MCStaffCache.h>
#include <scoremodel/platform/CFile.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/version.h>

#include "midi_commands.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>
#include <unordered_map>
#include <unordered_set>

namespace
{
// The attachment type under which the demo's staff carries its instrument.
constexpr int kTablatureViewCode = 4;

std::string TimeText(const MCTime *time)
{
    char text[64];
    switch (time->GetMode())
    {
    case MCTime::TimeModeBarPulseTick:
        if (const BPTTime *bpt = time->GetBarPulseTick())
        {
            std::snprintf(text, sizeof text, "%d:%d:%d", bpt->bar, bpt->pulse, bpt->tick);
            return text;
        }
        return "?";
    case MCTime::TimeModeClock: std::snprintf(text, sizeof text, "%gs", time->GetSeconds()); return text;
    default:
        if (*time == MCTime::TimeNull())
            return "none";
        std::snprintf(text, sizeof text, "%g", static_cast<double>(time->GetSeconds()));
        return text;
    }
}

// A meter: signature, type, pickup role, pulse and stresses in ticks of the
// 256 grid (length/pulses), the components of a list meter, and where it
// starts in bar.pulse.tick/resolution.
std::string MeterText(ECMeter *meter)
{
    std::string text = " meter=" + std::to_string(meter->GetNumerator()) + "/" +
                       std::to_string(meter->GetDenominator()) + " type=" + std::to_string(meter->GetMeterType()) +
                       " role=" + std::to_string(meter->GetPickupRole()) +
                       " pulse=" + std::to_string(meter->GetPulseTicks(256)) + " stresses=";
    for (unsigned short i = 0; i < meter->GetStressPulsesPerMeasure(); ++i)
    {
        // A loaded count may run past the stored entries: show what is there.
        try
        {
            text += (i ? "," : "") + std::to_string(meter->GetStressTicks(i, 256)) + "/" +
                    std::to_string(meter->GetPulsesPerStress(i));
        }
        catch (const CInvalidArgException &)
        {
            text += (i ? ",?" : "?");
        }
    }
    CByteArray &nums = meter->GetCompoundNumerator();
    CByteArray &dens = meter->GetCompoundDenominator();
    if (!nums.IsEmpty() || !dens.IsEmpty())
    {
        text += " parts=";
        for (INT_PTR i = 0; i < nums.GetSize(); ++i)
            text += (i ? "+" : "") + std::to_string(nums[i]) + "/" +
                    std::to_string(dens.GetSize() > i ? dens[i] : (dens.IsEmpty() ? 0 : dens[0]));
    }
    const BPTTime &at = meter->GetBarPulseTick();
    text += " at=" + std::to_string(at.bar) + "." + std::to_string(at.pulse) + "." + std::to_string(at.tick) + "/" +
            std::to_string(at.ppq);
    return text;
}

// The fields of texts, frames, drawings, audio, video, flow marks and system
// messages.
std::string MediaFields(ECBase *event)
{
    char text[160];
    auto fileText = [&](const MCMediaFile &file) {
        std::snprintf(text, sizeof text, " offset=%lld length=%lld", file.GetOffset(), file.GetLength());
        return " file=\"" + file.GetPath().ToUtf8() + "\"" + text;
    };
    if (event->IsKindOf(RUNTIME_CLASS(ECText)))
    {
        auto *t = static_cast<ECText *>(event);
        return " text=\"" + t->GetText().ToUtf8() + "\" type=" + std::to_string(t->GetTextType());
    }
    if (event->IsKindOf(RUNTIME_CLASS(ECFrame)))
    {
        auto *f = static_cast<ECFrame *>(event);
        const CRect &r = f->GetFrame();
        std::snprintf(text, sizeof text, " frame=%d,%d,%d,%d valid=%d", static_cast<int>(r.left),
                      static_cast<int>(r.top), static_cast<int>(r.right), static_cast<int>(r.bottom), f->IsValid());
        return text;
    }
    if (event->IsKindOf(RUNTIME_CLASS(ECDrawing)))
    {
        auto *d = static_cast<ECDrawing *>(event);
        const CRect &r = d->GetBounds();
        std::snprintf(text, sizeof text, " shape=%d bounds=%d,%d,%d,%d", d->GetShape(), static_cast<int>(r.left),
                      static_cast<int>(r.top), static_cast<int>(r.right), static_cast<int>(r.bottom));
        return text;
    }
    if (event->IsKindOf(RUNTIME_CLASS(ECWave)))
        return fileText(static_cast<ECWave *>(event)->GetMediaFile());
    if (event->IsKindOf(RUNTIME_CLASS(ECVideo)))
        return fileText(static_cast<ECVideo *>(event)->GetMediaFile());
    if (event->IsKindOf(RUNTIME_CLASS(ECFlowControl)))
        return " flow=" + std::to_string(static_cast<ECFlowControl *>(event)->GetFlowKind());
    if (event->IsKindOf(RUNTIME_CLASS(ECSystemMessage)))
        return " sysex=\"" + static_cast<ECSystemMessage *>(event)->GetMessage().ConvertToString().ToUtf8() + "\"";
    return std::string();
}

// The values of the events that carry the music: a note's length and
// tablature place, a rest's type, a group's life bits, a tuplet's ratio, and
// a mark's type byte. Empty for other classes.
std::string NoteText(ECBase *event)
{
    char text[128] = "";
    if (event->IsKindOf(RUNTIME_CLASS(ECNote)))
    {
        auto *note = static_cast<ECNote *>(event);
        std::snprintf(text, sizeof text, " duration=%s string=%d fret=%d notation=0x%02X",
                      TimeText(note->GetDuration()).c_str(), note->GetString(), note->GetFret(),
                      note->GetNotationByte());
    }
    else if (event->IsKindOf(RUNTIME_CLASS(ECRest)))
        std::snprintf(text, sizeof text, " rest=%d", static_cast<ECRest *>(event)->GetRestType());
    else if (event->IsKindOf(RUNTIME_CLASS(ECGroup)))
        std::snprintf(text, sizeof text, " group=0x%02X", static_cast<ECGroup *>(event)->GetGroupType());
    else if (event->IsKindOf(RUNTIME_CLASS(ECTuplet)))
    {
        auto *tuplet = static_cast<ECTuplet *>(event);
        std::snprintf(text, sizeof text, " tuplet=%d:%d units=%d", tuplet->GetIrregular(), tuplet->GetNormal(),
                      tuplet->GetUnits());
    }
    else if (event->IsKindOf(RUNTIME_CLASS(ECAccent)))
        std::snprintf(text, sizeof text, " type=%d", static_cast<ECAccent *>(event)->GetAccentType());
    return text;
}

// One line for an event: class, id, time, voice and track.
std::string EventLine(ECBase *event)
{
    std::string line = event->GetRuntimeClass()->m_lpszClassName;
    line += " id=" + std::to_string(event->GetEventId());
    if (MCTime *time = event->GetTime())
        line += " time=" + TimeText(time);
    if (event->GetVoiceTrack())
        line += " voice=" + std::to_string(event->GetVoice()) + " track=" + std::to_string(event->GetTrack());
    // A point shows its value and style; a tempo its type, tempo and place
    // on the clock.
    if (event->IsKindOf(RUNTIME_CLASS(ECTempo)))
    {
        auto *tempo = static_cast<ECTempo *>(event);
        char text[96];
        std::snprintf(text, sizeof text, " type=%d bpm=%g style=%d clock=", tempo->GetTempoType(),
                      static_cast<double>(tempo->GetValue()), tempo->GetStyle());
        line += text + TimeText(&tempo->GetClockTime());
    }
    else if (event->IsKindOf(RUNTIME_CLASS(ECMeter)))
        line += MeterText(static_cast<ECMeter *>(event));
    else if (std::string notes = NoteText(event); !notes.empty())
        line += notes;
    else if (event->IsKindOf(RUNTIME_CLASS(ECEnvPoint)))
    {
        auto *point = static_cast<ECEnvPoint *>(event);
        char text[64];
        std::snprintf(text, sizeof text, " value=%g style=%d", static_cast<double>(point->GetValue()),
                      point->GetStyle());
        line += text;
    }
    // A key shows its counts, mode and hand; a clef its type and hand; a
    // chord symbol its four value bytes and the user's own texts.
    char text[160];
    if (event->IsKindOf(RUNTIME_CLASS(ECKey)))
    {
        auto *key = static_cast<ECKey *>(event);
        std::snprintf(text, sizeof text, " sharps=%d flats=%d mode=%d hand=%d", key->GetNumSharps(),
                      key->GetNumFlats(), key->GetMode(), key->GetHand());
        line += text;
    }
    else if (event->IsKindOf(RUNTIME_CLASS(ECClef)))
    {
        auto *clef = static_cast<ECClef *>(event);
        std::snprintf(text, sizeof text, " clef=%d hand=%d", clef->GetClefType(), clef->GetHand());
        line += text;
    }
    else if (event->IsKindOf(RUNTIME_CLASS(ECChordSymbol)))
    {
        auto *chord = static_cast<ECChordSymbol *>(event);
        CString flavour, root;
        chord->GetCustomFlavor(flavour);
        chord->GetCustomRoot(root);
        std::snprintf(text, sizeof text, " root=%d bass=%d flavor=%d style=%d", chord->GetChordRoot(),
                      chord->GetChordBass(), chord->GetChordFlavor(), chord->GetChordStyle());
        line += text;
        if (!flavour.IsEmpty())
            line += std::string(" custom-flavor='") + CStringA(flavour).GetString() + "'";
        if (!root.IsEmpty())
            line += std::string(" custom-root='") + CStringA(root).GetString() + "'";
    }
    line += MediaFields(event);
    // The score matrix: a column's rows, a staff's fields, the conductor
    // staff's measures and groups.
    if (event->IsKindOf(RUNTIME_CLASS(ECConductorStaff)))
    {
        auto *score = static_cast<ECConductorStaff *>(event);
        char text[160];
        std::snprintf(text, sizeof text, " staves=%d measures=%d end=%s pickup=%d/%u groups=%d+%d",
                      score->GetMaxStaffNumber(), score->GetMaxMeasureNumber() + 1,
                      TimeText(&score->GetMaxMeasureEndTime()).c_str(), score->GetPickupFraction()->GetNum(),
                      score->GetPickupFraction()->GetDen(),
                      static_cast<int>(score->GetGroup().GetPrimaryGroup().GetSize()),
                      static_cast<int>(score->GetGroup().GetSecondaryGroup().GetSize()));
        line += text;
    }
    else if (event->IsKindOf(RUNTIME_CLASS(ECConductorMeasure)))
    {
        auto *column = static_cast<ECConductorMeasure *>(event);
        char text[64];
        std::snprintf(text, sizeof text, " rows=%d collapse=%d", column->GetMaxTrack() + 1,
                      column->GetCollapseMeasure());
        line += text;
    }
    else if (event->IsKindOf(RUNTIME_CLASS(ECStaff)))
    {
        auto *staff = static_cast<ECStaff *>(event);
        char text[160];
        std::snprintf(text, sizeof text, " type=%d empty=%d size=%d lines=%d perc=0x%03x pitch=%d cache=%d",
                      staff->GetStaffType(), staff->IsStaffEmpty(), staff->GetStaffSize(), staff->GetStaffLines(),
                      staff->GetPercussionStaffMap(), staff->GetPercussionStaffMidiPitch(),
                      staff->GetCache()->GetPointCount());
        line += text;
    }
    // Attachments that the tool knows show their fields.
    for (int slot = 0; slot < event->GetData()->GetSize(); ++slot)
    {
        const DCBase *data = event->GetData()->GetAt(slot);
        if (!data || !data->IsKindOf(RUNTIME_CLASS(MCInstrument)))
            continue;
        auto *instrument = static_cast<const MCInstrument *>(data);
        line += " instrument=\"" + instrument->GetName().ToUtf8() + "\" description=\"" +
                instrument->GetDescription().ToUtf8() + "\" strings=" + std::to_string(instrument->GetStringsCount()) +
                " frets=" + std::to_string(instrument->GetFretsCount()) +
                " distance=" + std::to_string(instrument->GetFingerDistance()) + " tunes=";
        for (INT_PTR i = 0; i < instrument->GetTunes().GetSize(); ++i)
            line += (i ? "," : "") + std::to_string(instrument->GetTunes()[i]);
        line += " initialized=" + std::to_string(instrument->Initialized());
    }
    return line;
}

// Visits the tree depth first, children in order; an event met again
// through another parent is visited but not entered.
void Walk(ECBase *root, const std::function<void(ECBase *, int depth, bool again)> &visit)
{
    std::unordered_set<ECBase *> seen;
    std::function<void(ECBase *, int)> enter = [&](ECBase *event, int depth) {
        const bool again = !seen.insert(event).second;
        visit(event, depth, again);
        if (again || !event->GetChildren())
            return;
        for (POSITION pos = event->GetChildren()->GetHeadPosition(); pos;)
            if (ECBase *child = event->GetChildren()->GetNext(pos))
                enter(child, depth + 1);
    };
    enter(root, 0);
}

// The first difference between two trees (class, flags, time, voice and
// track, children in order, sharing), or "" when they are equal.
std::string Difference(ECBase *a, ECBase *b, std::unordered_map<ECBase *, ECBase *> &pairs)
{
    if (auto it = pairs.find(a); it != pairs.end())
        return it->second == b ? "" : EventLine(a) + ": shared differently";
    pairs[a] = b;
    if (std::strcmp(a->GetRuntimeClass()->m_lpszClassName, b->GetRuntimeClass()->m_lpszClassName) != 0 ||
        (a->GetFlags() & ~ECBase::FlagSelection) != b->GetFlags())
        return EventLine(a) + " became " + EventLine(b);
    if (a->GetTime() && !(*a->GetTime() == *b->GetTime() &&
                          a->GetVoiceTrack()->GetValue() == b->GetVoiceTrack()->GetValue()))
        return EventLine(a) + " became " + EventLine(b);
    const int countA = a->GetChildren() ? a->GetChildren()->GetCount() : 0;
    const int countB = b->GetChildren() ? b->GetChildren()->GetCount() : 0;
    if (countA != countB)
        return EventLine(a) + ": " + std::to_string(countA) + " children became " + std::to_string(countB);
    if (!countA)
        return "";
    POSITION pb = b->GetChildren()->GetHeadPosition();
    for (POSITION pa = a->GetChildren()->GetHeadPosition(); pa;)
    {
        std::string d = Difference(a->GetChildren()->GetNext(pa), b->GetChildren()->GetNext(pb), pairs);
        if (!d.empty())
            return d;
    }
    return "";
}

struct Summary
{
    int events = 0;
    int shared = 0;
    int depth = 0;
    std::map<std::string, int> classes;
};

Summary Summarize(ECPerformance *doc)
{
    Summary s;
    Walk(doc, [&s](ECBase *event, int depth, bool again) {
        if (again)
        {
            ++s.shared;
            return;
        }
        ++s.events;
        ++s.classes[event->GetRuntimeClass()->m_lpszClassName];
        s.depth = std::max(s.depth, depth);
    });
    return s;
}

void PrintSummary(ECPerformance *doc)
{
    const Summary s = Summarize(doc);
    std::printf("  events: %d in %d levels, %d reached twice\n", s.events, s.depth + 1, s.shared);
    for (const auto &[name, count] : s.classes)
        std::printf("    %-22s %d\n", name.c_str(), count);
    if (ECConductor *conductor = doc->GetConductor())
        if (ECConductorStaff *staff = conductor->GetConductorStaff())
            std::printf("  staves: %d\n", staff->GetMaxStaffNumber());
}

// Applies one command synchronously inside its own undo step.
bool Edit(ECPerformance *doc, const wchar_t *name, CCBase *command)
{
    CString text(name);
    MCCommandMgr::BeginUndo(doc, text);
    command->SetSynchronous(1);
    const int applied = command->Apply(doc);
    MCCommandMgr::EndUndo(doc);
    return applied != 0;
}

// A short piece on two staves, built through commands one step each: in the
// 4/4 bars a melody with a slurred beamed pair, a chord, a note tied over
// the bar line, a triplet and rests above a bass line; in the 3/4 bars that
// follow, a melody over rests. Returns the number of steps that failed.
int AddPiece(ECPerformance *doc, ECConductor *conductor, int upperTrack, int lowerTrack)
{
    int failed = 0;
    FCMidi none = FCMidi::MidiNull();
    auto at = [](float beat) { return MCTime(beat); };
    auto measureAt = [&](int track, float beat) { return conductor->GetMeasure(track, at(beat), 1, 1); };
    auto note = [&](int track, float beat, float length, BYTE pitch) {
        auto *n = new ECNote;
        MCTime t(beat), d(length);
        n->SetTime(&t);
        n->SetDuration(&d);
        n->SetMidiPitch(pitch);
        n->SetVoiceTrack(0, track);
        return n;
    };
    auto step = [&](const wchar_t *name, CCAdd *add) { failed += !Edit(doc, name, add); };
    auto addNote = [&](int track, float beat, float length, BYTE pitch) {
        ECNote *n = note(track, beat, length, pitch);
        step(L"Add note", new CCAdd(n, measureAt(track, beat), none));
        return n;
    };
    auto group = [&](const wchar_t *name, ECBase *groupEvent, ECBase *parent, std::initializer_list<ECBase *> members) {
        groupEvent->SetVoiceTrack(0, upperTrack);
        auto *add = new CCAdd(groupEvent, parent, none);
        for (ECBase *member : members)
            add->Add(member, groupEvent, none);
        step(name, add);
    };
    ECStaff *upper = conductor->GetConductorStaff()->GetStaff(upperTrack, 0);

    // Bar 1 (beats 1 to 5): a quarter, a beamed pair of eighths under a
    // slur from the first note, a chord, and a note tied into bar 2.
    ECNote *first = addNote(upperTrack, 1.0f, 1.0f, 72);
    ECNote *pair[2] = {addNote(upperTrack, 2.0f, 0.5f, 74), addNote(upperTrack, 2.5f, 0.5f, 76)};
    auto *beam = new ECBeam;
    MCTime two(2.0f);
    beam->SetTime(&two);
    group(L"Beam", beam, measureAt(upperTrack, 2.0f), {pair[0], pair[1]});
    auto *slur = new ECSlur;
    MCTime one(1.0f);
    slur->SetTime(&one);
    group(L"Slur", slur, upper, {first, pair[0], pair[1]});
    auto *chord = new ECChord;
    MCTime three(3.0f);
    chord->SetTime(&three);
    chord->SetVoiceTrack(0, upperTrack);
    {
        auto *add = new CCAdd(chord, measureAt(upperTrack, 3.0f), none);
        for (BYTE pitch : {60, 64, 67})
        {
            ECNote *n = note(upperTrack, 3.0f, 1.0f, pitch);
            add->Add(n, measureAt(upperTrack, 3.0f), none);
            add->Add(n, chord, none);
        }
        step(L"Chord", add);
    }
    ECNote *tiedFrom = addNote(upperTrack, 4.0f, 1.0f, 79);
    // Bar 2 (beats 5 to 9): the tied note, a triplet of eighths, two rests.
    ECNote *tiedTo = addNote(upperTrack, 5.0f, 1.0f, 79);
    auto *tie = new ECTie;
    MCTime four(4.0f);
    tie->SetTime(&four);
    group(L"Tie", tie, upper, {tiedFrom, tiedTo});
    auto *tuplet = new ECTuplet(3, 2, 3);
    MCTime six(6.0f);
    tuplet->SetTime(&six);
    tuplet->SetVoiceTrack(0, upperTrack);
    {
        auto *add = new CCAdd(tuplet, measureAt(upperTrack, 6.0f), none);
        for (int i = 0; i < 3; ++i)
        {
            ECNote *n = note(upperTrack, 6.0f + i / 3.0f, 0.5f, static_cast<BYTE>(77 - 2 * i));
            add->Add(n, measureAt(upperTrack, 6.0f), none);
            add->Add(n, tuplet, none);
        }
        step(L"Triplet", add);
    }
    for (float beat : {7.0f, 8.0f})
    {
        auto *rest = new ECRest;
        MCTime t(beat);
        rest->SetTime(&t);
        rest->SetRestType(8);
        rest->SetVoiceTrack(0, upperTrack);
        step(L"Add rest", new CCAdd(rest, measureAt(upperTrack, beat), none));
    }
    // The bass: half notes through both 4/4 bars.
    for (float beat : {1.0f, 3.0f, 5.0f, 7.0f})
        addNote(lowerTrack, beat, 2.0f, static_cast<BYTE>(beat < 5.0f ? 48 : 43));
    // The 3/4 bars (beats 9 to 15): a melody above, rests below.
    for (float beat = 9.0f; beat < 15.0f; beat += 1.0f)
    {
        addNote(upperTrack, beat, 1.0f, static_cast<BYTE>(72 - static_cast<int>(beat - 9.0f)));
        if (static_cast<int>(beat - 9.0f) % 3 == 0)
        {
            auto *rest = new ECRest;
            MCTime t(beat);
            rest->SetTime(&t);
            rest->SetRestType(6); // a dotted half: the whole 3/4 bar
            rest->SetVoiceTrack(0, lowerTrack);
            step(L"Add rest", new CCAdd(rest, measureAt(lowerTrack, beat), none));
        }
    }
    return failed;
}

int Demo(const char *path)
{
    std::string file;
    if (path)
        file = path;
    else
    {
        const char *tmp = std::getenv("TMPDIR");
        file = std::string(tmp && *tmp ? tmp : "/tmp") + "/scoremodel-demo-" + std::to_string(::getpid()) + ".smd";
    }

    MCDocumentOwner doc = MCDocumentOwner::Make();
    ECConductor *conductor = doc->GetConductor();
    if (!conductor || !conductor->GetConductorStaff())
    {
        std::fprintf(stderr, "scoremodel: the conductor staff was not made\n");
        return 1;
    }

    // Three staves, one step each; then the second goes, comes back by undo,
    // goes again by redo and comes back once more.
    ECStaff *staves[3] = {};
    for (ECStaff *&staff : staves)
    {
        staff = new ECStaff;
        if (!Edit(doc.Get(), L"Add staff", new CCAddTrack(staff, -1)))
        {
            std::fprintf(stderr, "scoremodel: a staff could not be added\n");
            return 1;
        }
    }
    ECConductorStaff *conductorStaff = conductor->GetConductorStaff();
    const int before = conductorStaff->GetMaxStaffNumber();
    Edit(doc.Get(), L"Remove staff", new CCRemoveTrack(staves[1]));
    const int removed = conductorStaff->GetMaxStaffNumber();
    doc->Undo(1);
    const int undone = conductorStaff->GetMaxStaffNumber();
    doc->Redo(1);
    const int redone = conductorStaff->GetMaxStaffNumber();
    doc->Undo(1);
    const int after = conductorStaff->GetMaxStaffNumber();
    std::printf("staves: %d added; removing one leaves %d, undo %d, redo %d, undo %d\n", before, removed, undone,
                redone, after);
    if (removed != before - 1 || undone != before || redone != removed || after != before ||
        conductorStaff->GetStaffNumber(staves[1]) != 2)
    {
        std::fprintf(stderr, "scoremodel: undo and redo did not bring the staff back in its place\n");
        return 1;
    }

    // A tempo map (a hold, a ramp, a pause) and a controller curve, so that
    // the saved document carries envelopes.
    if (ECTempoEnv *tempi = conductorStaff->GetTempoEnv())
    {
        const struct
        {
            float beat, bpm;
            int style, type;
        } points[] = {{0, 120, 0, 14}, {8, 90, 1, 1}, {16, 140, 0, 1}, {24, 140, 0, 25}, {25, 140, 0, 1}};
        for (const auto &p : points)
        {
            auto *tempo = new ECTempo(static_cast<unsigned char>(p.type), MCTime::TimeZero());
            MCTime at(p.beat);
            tempo->SetTime(&at);
            tempo->SetTempo(p.bpm, 1.0f);
            tempo->SetStyle(p.style);
            tempo->SetAnchorHead(p.type == 25);
            tempi->AddChild(tempo, 1);
        }
    }
    // A meter map that opens with a pickup: a quarter of role 2 before the
    // 4/4 the piece is in (role 1), then 6/8 and a list meter of 3/8 + 2/4.
    ECMeterEnv *meters = conductorStaff->GetMeterEnv();
    if (!meters)
    {
        meters = static_cast<ECMeterEnv *>(RUNTIME_CLASS(ECMeterEnv)->CreateObject());
        meters->SetVoiceTrack(14, 0);
        if (!conductorStaff->AddChild(meters, 1))
        {
            meters->Ref();
            meters->Unref(1);
            meters = nullptr;
        }
    }
    if (meters)
    {
        const struct
        {
            float at;
            int n, d, role;
        } signatures[] = {{0, 1, 4, 2}, {1, 4, 4, 1}, {9, 3, 4, 0}, {15, 0, 0, 0}};
        for (const auto &s : signatures)
        {
            auto *meter = new ECMeter(static_cast<unsigned char>(s.n), static_cast<unsigned char>(s.d), 255);
            if (s.n == 0)
            {
                CByteArray nums, dens;
                nums.Add(3);
                nums.Add(2);
                dens.Add(8);
                dens.Add(4);
                meter->SetMeter(nums, dens, 0);
            }
            MCTime at(s.at);
            meter->SetTime(&at);
            meter->SetPickupRole(static_cast<unsigned char>(s.role));
            meters->AddChild(meter, 1);
        }
    }
    auto *volume = static_cast<ECControllerEnv *>(RUNTIME_CLASS(ECControllerEnv)->CreateObject());
    volume->SetControllerType(7);
    for (int i = 0; i < 3; ++i)
    {
        auto *change = static_cast<ECControlChange *>(RUNTIME_CLASS(ECControlChange)->CreateObject());
        MCTime at(static_cast<float>(i * 4));
        change->SetTime(&at);
        change->SetControllerNum(7);
        change->SetValue(static_cast<float>(100 - i * 20));
        change->SetStyle(i % 2);
        volume->AddChild(change, 1);
    }
    staves[0]->AddChild(volume, 1);

    // A measure of the first staff with a clef, a key and a chord symbol
    // read from what a user types, so the saved document carries them.
    ECMeasure *measure = conductor->GetMeasure(1, MCTime::TimeZero(), 1, 1);
    auto *clef = new ECClef(2);
    auto *key = new ECKey(0, 3, 0);
    auto *chord = new ECChordSymbol();
    CString chordName(L"Eb-7/Bb");
    chord->UpdateFromString(chordName);
    MCTime bar(0.0f);
    for (ECBase *e : {static_cast<ECBase *>(clef), static_cast<ECBase *>(key), static_cast<ECBase *>(chord)})
    {
        e->SetTime(&bar);
        measure->AddChild(e, 1);
    }

    // A tablature instrument carried as an attachment of the first staff (the
    // staff deletes it with itself): a seven-string guitar.
    {
        CArray<int, int> tunes;
        for (int tune : MCInstrument::FretsDefault)
            tunes.Add(tune);
        auto *guitar = new MCInstrument(L"7-String Guitar", L"standard tuning with a low B", 7, 24, 4, tunes);
        guitar->SetTunes(tunes);
        guitar->SetOwner(staves[0]);
        staves[0]->GetData()->SetAtGrow(MCDataArray::TypeToIndex(kTablatureViewCode), guitar);
    }

    // The piece on the first and third staves, once the meters stand.
    if (const int failed = AddPiece(doc.Get(), conductor, 1, 3))
    {
        std::fprintf(stderr, "scoremodel: %d steps of the piece were refused\n", failed);
        return 1;
    }

    MCDocumentFile::Save(doc.Get(), file.c_str());
    struct stat st;
    const long long size = ::stat(file.c_str(), &st) == 0 ? static_cast<long long>(st.st_size) : -1;
    std::printf("saved %s (%lld bytes)\n", file.c_str(), size);

    int version = 0;
    CFile in(file.c_str(), CFile::modeRead);
    MCDocumentOwner loaded(MCDocumentFile::Read(in, &version));
    in.Close();
    if (!path)
        std::remove(file.c_str());
    std::unordered_map<ECBase *, ECBase *> pairs;
    const std::string difference = Difference(doc.Get(), loaded.Get(), pairs);
    if (!difference.empty())
    {
        std::fprintf(stderr, "scoremodel: the loaded document differs: %s\n", difference.c_str());
        return 1;
    }
    std::printf("loaded version %d: the same tree\n", version);
    PrintSummary(loaded.Get());
    return 0;
}

// A document read from a file, a pipe, a device or "-" (standard input). The
// bytes are read whole first, so that an input is refused or accepted for
// what it holds, whatever it is: trailing bytes after the document are
// refused from a pipe as from a file.
class Input
{
public:
    explicit Input(const char *path) : m_name(std::strcmp(path, "-") == 0 ? "standard input" : path)
    {
        const bool standardInput = std::strcmp(path, "-") == 0;
        const int fd = standardInput ? STDIN_FILENO : ::open(path, O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            Fail(errno);
        char chunk[65536];
        for (;;)
        {
            const ssize_t n = ::read(fd, chunk, sizeof chunk);
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0)
            {
                const int err = errno;
                if (!standardInput)
                    ::close(fd);
                Fail(err);
            }
            if (n == 0)
                break;
            m_bytes.insert(m_bytes.end(), chunk, chunk + n);
            if (m_bytes.size() > 0xFFFFFFFFu)
                throw std::runtime_error(m_name + ": larger than 4 GiB, more than a document can be");
        }
        if (!standardInput)
            ::close(fd);
    }

    // The document in the input; its reasons for a refusal name the input.
    ECPerformance *Read(int *version)
    {
        CMemFile file(m_bytes.data(), static_cast<UINT>(m_bytes.size()));
        try
        {
            return MCDocumentFile::Read(file, version);
        }
        catch (const std::exception &e)
        {
            throw std::runtime_error(m_name + ": " + e.what());
        }
    }
    const std::string &Name() const { return m_name; }
    size_t Size() const { return m_bytes.size(); }

private:
    [[noreturn]] void Fail(int err) const { throw std::runtime_error(m_name + ": " + std::strerror(err)); }

    std::string m_name;
    std::vector<BYTE> m_bytes;
};

int Dump(const char *path)
{
    Input input(path);
    MCDocumentOwner doc(input.Read(nullptr));
    Walk(doc.Get(), [](ECBase *event, int depth, bool again) {
        std::printf("%*s%s%s\n", depth * 2, "", EventLine(event).c_str(), again ? " (again)" : "");
    });
    return 0;
}

int Info(const char *path)
{
    Input input(path);
    int version = 0;
    MCDocumentOwner doc(input.Read(&version));
    std::printf("%s: document version %d, %llu bytes\n", input.Name().c_str(), version,
                static_cast<unsigned long long>(input.Size()));
    PrintSummary(doc.Get());
    return 0;
}

int Usage(FILE *out)
{
    std::fprintf(out, "usage: scoremodel --version\n"
                      "       scoremodel demo [FILE]   build, save, load and check a small document\n"
                      "       scoremodel dump FILE     print the event tree of a document\n"
                      "       scoremodel info FILE     print a summary of a document or a MIDI file\n"
                      "       scoremodel import MIDI FILE  read a MIDI file into a new document\n"
                      "       scoremodel export FILE MIDI  write a document as a MIDI file\n"
                      "FILE may be a pipe or a device; \"-\" reads standard input.\n"
                      "\n"
                      "Exit codes: 0 success; 1 the work failed (an unreadable or refused\n"
                      "document, a failed save, output that could not be written); 2 a wrong\n"
                      "command line.\n"
                      "\n"
                      "Environment:\n"
                      "  SCOREMODEL_DATA_DIR   folder of the shipped data (language files)\n"
                      "  SCOREMODEL_USER_DIR   one folder for every user file (preferences)\n"
                      "  XDG_CONFIG_HOME       user files go to $XDG_CONFIG_HOME/scoremodel\n"
                      "  SCOREMODEL_NODE_POOL  \"heap\" takes every list node from the heap\n"
                      "  TMPDIR                where demo saves when no FILE is given\n");
    return out == stdout ? 0 : 2;
}

// Output that could not be written (a full disk, a closed pipe) fails the
// run: buffered output is only known to be lost when it is flushed.
int FinishOutput(int code)
{
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
    {
        std::fprintf(stderr, "scoremodel: cannot write the output: %s\n", std::strerror(errno));
        return 1;
    }
    return code;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc < 2)
        return Usage(stderr);
    const std::string command = argv[1];
    if (command == "--version")
    {
        std::printf("scoremodel %s\n", MCGetLibraryVersion());
        return FinishOutput(0);
    }
    if (command == "--help" || command == "-h")
        return FinishOutput(Usage(stdout));
    // Edits run on the thread that pumps the loop: this one, named before any
    // other library call.
    MCCommandMgr::SetDocumentThread();
    try
    {
        if (command == "demo" && argc <= 3)
            return FinishOutput(Demo(argc == 3 ? argv[2] : nullptr));
        if (command == "dump" || command == "info")
            LoadPlugins();
        if (command == "dump" && argc == 3)
            return FinishOutput(Dump(argv[2]));
        if (command == "info" && argc == 3)
            return FinishOutput(IsMidiFile(argv[2]) ? MidiInfo(argv[2]) : Info(argv[2]));
        if (command == "import" && argc == 4)
            return FinishOutput(ImportMidi(argv[2], argv[3]));
        if (command == "export" && argc == 4)
            return FinishOutput(ExportMidi(argv[2], argv[3]));
    }
    catch (const std::exception &e)
    {
        std::fprintf(stderr, "scoremodel: %s\n", e.what());
        return 1;
    }
    if (command == "demo" || command == "dump" || command == "info" || command == "import" || command == "export")
        std::fprintf(stderr, "scoremodel: wrong arguments for '%s'\n", command.c_str());
    else
        std::fprintf(stderr, "scoremodel: unknown command '%s'\n", command.c_str());
    return Usage(stderr);
}
