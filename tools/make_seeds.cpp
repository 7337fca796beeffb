// make_seeds: writes the documents the document fuzzer starts from, so that
// they always match the records this build writes.
//
//     make_seeds DIR
//
// Each file is a small document: a performance with its conductor and one
// staff holding one measure, and the events under test placed in it.
//
//   class_<id>.smd    one event of every class the registry makes, as it is
//                     made (the constructor's values)
//   fields_<id>.smd   texts, frames, drawings, audio, flow marks and system
//                     messages with values in every field (the tool test
//                     reads these back through dump)
//
// The demo document (scoremodel demo FILE) is written beside them by the
// "seeds" target.
#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/core/FCMidiSysEx.h>
#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/document/MCDocumentOwner.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/marks/ECFlowControl.h>
#include <scoremodel/events/marks/ECSystemMessage.h>
#include <scoremodel/events/media/ECDrawing.h>
#include <scoremodel/events/media/ECFrame.h>
#include <scoremodel/events/media/ECLyric.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/media/ECWave.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/platform/Exceptions.h>

#include <cstdio>
#include <string>

namespace
{
// Saves a document whose one staff's measure holds `event` (or, for an
// event that belongs higher up, the performance does).
bool SaveWith(ECBase *event, const std::string &file)
{
    MCDocumentOwner doc = MCDocumentOwner::Make();
    auto *staff = new ECStaff;
    auto *add = new CCAddTrack(staff, -1);
    add->SetSynchronous(1);
    add->Apply(doc.Get());
    auto *measure = new ECMeasure;
    MCTime bar(0.0f);
    measure->SetTime(&bar);
    staff->AddChild(measure, 1);
    if (!measure->AddChild(event, 1) && !doc->AddChild(event, 1))
    {
        event->Ref();
        event->Unref(1);
    }
    try
    {
        MCDocumentFile::Save(doc.Get(), file.c_str());
    }
    catch (const std::exception &e)
    {
        std::fprintf(stderr, "make_seeds: %s: %s\n", file.c_str(), e.what());
        return false;
    }
    return true;
}

ECBase *WithFields(int id)
{
    switch (id)
    {
    case EVENT_ID_TEXT:
    {
        auto *text = new ECText;
        text->SetText(L"Allegro ma non troppo");
        text->SetTextType(21);
        return text;
    }
    case EVENT_ID_LYRIC:
    {
        auto *lyric = new ECLyric;
        lyric->SetText(L"la-");
        lyric->SetTextType(4);
        return lyric;
    }
    case EVENT_ID_FRAME:
    {
        auto *frame = new ECFrame;
        frame->SetFrame(CRect(10, 20, 300, 400));
        return frame;
    }
    case EVENT_ID_WAVE:
    {
        auto *wave = new ECWave;
        wave->SetMediaFile(MCMediaFile(L"take3.wav", 44100, 88200));
        return wave;
    }
    case EVENT_ID_DRAWING:
    {
        auto *drawing = new ECDrawing;
        drawing->SetShape(1);
        drawing->SetBounds(CRect(5, 6, 70, 80));
        return drawing;
    }
    case EVENT_ID_FLOW_CONTROL:
    {
        auto *flow = new ECFlowControl;
        flow->SetFlowKind(9);
        return flow;
    }
    case EVENT_ID_SYSTEM_MESSAGE:
    {
        auto *message = new ECSystemMessage;
        message->GetMessage().ConvertFromString(L"F0 43 10 4C 00 00 7E 00 F7");
        return message;
    }
    }
    return nullptr;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
    {
        std::fprintf(stderr, "usage: make_seeds DIR\n");
        return 2;
    }
    const std::string dir = argv[1];
    int failed = 0;
    for (int id = 0; id < 128; ++id)
    {
        if (id == EVENT_ID_PERFORMANCE || id == EVENT_ID_CONDUCTOR)
            continue; // the document itself has them
        if (ECBase *event = CreateEventW(id))
            failed += !SaveWith(event, dir + "/class_" + std::to_string(id) + ".smd");
        if (ECBase *event = WithFields(id))
            failed += !SaveWith(event, dir + "/fields_" + std::to_string(id) + ".smd");
    }
    return failed ? 1 : 0;
}
