// The MIDI reader and writer checked against tools nobody here wrote.
//
//   midi_crosscheck CORPUS WORK
//
// For each file of CORPUS/abc and CORPUS/made (scripts/make-midi-corpus.sh
// makes them): the notes (start, end, channel, pitch, velocity), tempi and
// meters the score holds after import equal those of midicsv's listing of
// the file; csvmidi accepts midicsv's listing of what export writes; and a
// second import and export gives the bytes of the first. Each file of
// CORPUS/corrupt must be refused with a reason. Exit 0 when all agree, 1
// with every disagreement on stderr, 77 when midicsv or csvmidi is missing.
#include <SmfDocument.h>

#include "../../tests/midifile/SmfTestFiles.h"

#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/document/MCDocumentOwner.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECTie.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace fs = std::filesystem;

namespace
{
using Note = std::tuple<long, long, int, int, int>; // start, end, channel, pitch, velocity
using Tempo = std::pair<long, long>;                // tick, microseconds
using Meter = std::tuple<long, int, int>;           // tick, numerator, denominator

struct Listing
{
    std::vector<Note> notes;
    std::vector<Tempo> tempi;
    std::vector<Meter> meters;
};

std::vector<uint8_t> ReadFile(const fs::path &path)
{
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

bool Run(const std::string &command, std::string *out = nullptr)
{
    FILE *pipe = popen(command.c_str(), "r");
    if (!pipe)
        return false;
    std::string text;
    char buffer[65536];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        text.append(buffer, n);
    const int status = pclose(pipe);
    if (out)
        *out = std::move(text);
    return status == 0;
}

std::string Quote(const fs::path &path)
{
    return "'" + path.string() + "'";
}

// The last of several changes at one tick is the one in force.
template <class T> void LastPerTick(std::vector<T> &changes)
{
    std::stable_sort(changes.begin(), changes.end(),
                     [](const T &a, const T &b) { return std::get<0>(a) < std::get<0>(b); });
    std::vector<T> kept;
    for (const T &c : changes)
    {
        if (!kept.empty() && std::get<0>(kept.back()) == std::get<0>(c))
            kept.back() = c;
        else
            kept.push_back(c);
    }
    changes.swap(kept);
}

// midicsv's listing: notes paired first in, first out per track, channel
// and pitch, a note left open ending with its track.
Listing FromMidicsv(const std::string &csv)
{
    Listing l;
    std::map<std::tuple<int, int, int>, std::deque<std::pair<long, int>>> open;
    std::istringstream lines(csv);
    std::string line;
    auto closeTrack = [&](int track, long end) {
        for (auto &[key, starts] : open)
            if (std::get<0>(key) == track)
            {
                for (const auto &[start, velocity] : starts)
                    l.notes.emplace_back(start, end, std::get<1>(key), std::get<2>(key), velocity);
                starts.clear();
            }
    };
    while (std::getline(lines, line))
    {
        std::vector<std::string> f;
        std::istringstream fields(line);
        std::string field;
        while (f.size() < 7 && std::getline(fields, field, ','))
            f.push_back(field.substr(field.find_first_not_of(' ')));
        if (f.size() < 3)
            continue;
        const int track = std::stoi(f[0]);
        const long tick = std::stol(f[1]);
        const std::string &type = f[2];
        if ((type == "Note_on_c" || type == "Note_off_c") && f.size() >= 6)
        {
            const int channel = std::stoi(f[3]), pitch = std::stoi(f[4]), velocity = std::stoi(f[5]);
            auto &starts = open[{track, channel, pitch}];
            if (type == "Note_on_c" && velocity > 0)
                starts.emplace_back(tick, velocity);
            else if (!starts.empty())
            {
                l.notes.emplace_back(starts.front().first, tick, channel, pitch, starts.front().second);
                starts.pop_front();
            }
        }
        else if (type == "Tempo" && f.size() >= 4)
            l.tempi.emplace_back(tick, std::stol(f[3]));
        else if (type == "Time_signature" && f.size() >= 5)
        {
            const int d = std::stoi(f[4]);
            if (std::stoi(f[3]) > 0 && d <= 6)
                l.meters.emplace_back(tick, std::stoi(f[3]), 1 << d);
        }
        else if (type == "End_track")
            closeTrack(track, tick);
    }
    LastPerTick(l.tempi);
    LastPerTick(l.meters);
    // The map always starts at 0; the format's default stands there.
    if (l.tempi.empty() || l.tempi.front().first != 0)
        l.tempi.insert(l.tempi.begin(), {0, 500000});
    std::sort(l.notes.begin(), l.notes.end());
    return l;
}

long Tick(const MCTime *t, int division)
{
    return std::lround(static_cast<double>(t->GetSeconds()) * division);
}

using smftest::ChildrenOf;

// What the score holds: tied pieces joined into their note.
Listing FromScore(ECPerformance *doc, int division)
{
    Listing l;
    ECConductorStaff *cs = doc->GetConductor()->GetConductorStaff();
    for (ECTempo *tempo : ChildrenOf<ECTempo>(cs->FindTempoEnv()))
        l.tempi.emplace_back(Tick(tempo->GetTime(), division), std::lround(60000000.0 / tempo->GetTempo(1.0f)));
    for (ECMeter *meter : ChildrenOf<ECMeter>(cs->FindMeterEnv()))
        l.meters.emplace_back(Tick(meter->GetTime(), division), meter->GetNumerator(), meter->GetDenominator());
    for (int staff = 1; staff <= cs->GetMaxStaffNumber(); ++staff)
    {
        ECBase::EventList measures;
        cs->GetMeasures(staff, 1, cs->GetMaxMeasureNumber() + 1, measures);
        for (POSITION mp = measures.GetHeadPosition(); mp;)
            for (ECNote *note : ChildrenOf<ECNote>(measures.GetNext(mp)))
            {
                ECNote *last = note;
                if (note->HasTie())
                {
                    ECTie *tie = nullptr;
                    for (POSITION pp = note->GetParents()->GetHeadPosition(); pp && !tie;)
                        tie = dynamic_cast<ECTie *>(note->GetParents()->GetNext(pp));
                    if (tie->GetChildren()->GetHead() != note)
                        continue;
                    last = static_cast<ECNote *>(tie->GetChildren()->GetTail());
                }
                auto *data = dynamic_cast<SmfEventData *>(note->GetData(smf::kSmfViewCode, 0));
                if (!data)
                    continue;
                l.notes.emplace_back(Tick(note->GetTime(), division),
                                     Tick(last->GetTime(), division) + Tick(last->GetDuration(), division),
                                     data->GetChannel(), data->GetPitch(), data->GetVelocity());
            }
    }
    std::sort(l.notes.begin(), l.notes.end());
    return l;
}

template <class T> std::string Differ(const char *what, const std::vector<T> &ours, const std::vector<T> &theirs)
{
    if (ours == theirs)
        return "";
    std::ostringstream s;
    s << what << ": " << ours.size() << " here, " << theirs.size() << " in midicsv";
    for (size_t i = 0; i < std::min(ours.size(), theirs.size()); ++i)
        if (ours[i] != theirs[i])
        {
            s << "; first difference at " << i << ": tick " << std::get<0>(ours[i]) << " here, "
              << std::get<0>(theirs[i]) << " there";
            break;
        }
    return s.str();
}

std::vector<uint8_t> ExportBytes(ECPerformance *doc)
{
    return smf::Serialize(smf::Export(doc));
}

std::string Check(const fs::path &file, const fs::path &work)
{
    const smf::File midi = smf::Parse(ReadFile(file));
    MCDocumentOwner doc = MCDocumentOwner::Make();
    smf::Import(midi, doc.Get());
    std::string csv;
    if (!Run("midicsv " + Quote(file), &csv))
        return "midicsv refused the file";
    const Listing theirs = FromMidicsv(csv), ours = FromScore(doc.Get(), midi.division);
    std::string problem = Differ("notes", ours.notes, theirs.notes);
    if (problem.empty())
        problem = Differ("tempi", ours.tempi, theirs.tempi);
    if (problem.empty())
        problem = Differ("meters", ours.meters, theirs.meters);
    if (!problem.empty())
        return problem;

    const std::vector<uint8_t> first = ExportBytes(doc.Get());
    const fs::path written = work / file.filename();
    std::ofstream(written, std::ios::binary).write(reinterpret_cast<const char *>(first.data()), first.size());
    if (!Run("midicsv " + Quote(written) + " | csvmidi > " + Quote(work / ("csvmidi-" + file.filename().string()))))
        return "midicsv and csvmidi refused what export wrote";
    std::string again;
    if (!Run("midicsv " + Quote(written), &again))
        return "midicsv refused what export wrote";
    const Listing exported = FromMidicsv(again);
    problem = Differ("notes written", exported.notes, theirs.notes);
    if (problem.empty())
        problem = Differ("tempi written", exported.tempi, theirs.tempi);
    if (!problem.empty())
        return problem;
    MCDocumentOwner second = MCDocumentOwner::Make();
    smf::Import(smf::Parse(first), second.Get());
    if (ExportBytes(second.Get()) != first)
        return "a second import and export changed the file";
    return "";
}
} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
    {
        std::fprintf(stderr, "usage: midi_crosscheck CORPUS WORK\n");
        return 2;
    }
    if (!Run("command -v midicsv >/dev/null && command -v csvmidi >/dev/null"))
    {
        std::fprintf(stderr, "midi_crosscheck: midicsv or csvmidi is missing\n");
        return 77;
    }
    MCCommandMgr::SetDocumentThread();
    smf::RegisterEventData();
    const fs::path corpus = argv[1], work = argv[2];
    fs::create_directories(work);
    int checked = 0, failed = 0;
    for (const char *folder : {"abc", "made", "corrupt"})
    {
        std::vector<fs::path> files;
        for (const auto &entry : fs::directory_iterator(corpus / folder))
            if (entry.path().extension() == ".mid")
                files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        for (const fs::path &file : files)
        {
            ++checked;
            std::string problem;
            const bool corrupt = std::string(folder) == "corrupt";
            try
            {
                problem = Check(file, work);
                if (corrupt)
                    problem = "a corrupt file was read";
            }
            catch (const smf::SmfError &e)
            {
                if (!corrupt)
                    problem = e.what();
                else
                    std::printf("%s: refused: %s\n", file.filename().c_str(), e.what());
            }
            catch (const std::exception &e)
            {
                problem = std::string("unexpected: ") + e.what();
            }
            if (!problem.empty())
            {
                ++failed;
                std::fprintf(stderr, "%s/%s: %s\n", folder, file.filename().c_str(), problem.c_str());
            }
        }
    }
    std::printf("midi_crosscheck: %d files, %d disagree\n", checked, failed);
    return failed == 0 && checked > 0 ? 0 : 1;
}
