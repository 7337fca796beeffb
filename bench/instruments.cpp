// Cost of the instrument file and of the accordion tablature search.
//
//   BM_ParseInstrumentFile/N  reads a file of N instruments into the parser
//                             (DOM and cached instruments). Baseline: the
//                             same file loaded into a bare DOM, the part no
//                             reader can skip. Goal: ratio <= 2, i.e. making
//                             the instruments costs at most as much again as
//                             reading the XML.
//   BM_HarmonicaSearch        finds the button of every pitch in both bellows
//                             directions (rows 1, 0, 2, 3, up to 46 buttons).
//                             Baseline: one pass over the 46 buttons held flat
//                             in the same order, the least a search without
//                             an index can cost. Goal: ratio <= 2, i.e. the
//                             row order and per-row tables cost at most as
//                             much again; the converter then needs no index
//                             that every key, layout and custom pitch would
//                             have to rebuild.
#include <scoremodel/instruments/XMLInstrumentParser.h>
#include <scoremodel/pitch/MCHarmonicaConverter.h>
#include <scoremodel/platform/MessageBox.h>

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include "BenchReport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{
std::filesystem::path g_folder;

std::string FileOf(int count)
{
    const std::filesystem::path file = g_folder / ("instruments-" + std::to_string(count) + ".xml");
    if (!std::filesystem::exists(file))
    {
        std::ofstream out(file);
        out << "<?xml version=\"1.0\"?>\n<instruments>\n";
        for (int i = 0; i < count; ++i)
        {
            out << "  <instrument>\n    <name>Instrument " << i << "</name>\n"
                << "    <description>generated for the benchmark</description>\n"
                << "    <strings>6</strings>\n    <frets>24</frets>\n    <distance>4</distance>\n    <tune>\n";
            for (int s = 0; s < 6; ++s)
                out << "      <frequency>" << 64 - 5 * s + i % 3 << "</frequency>\n";
            out << "    </tune>\n  </instrument>\n";
        }
        out << "</instruments>\n";
    }
    return file.string();
}

void BM_ParseInstrumentFile(benchmark::State &state)
{
    const std::string file = FileOf(static_cast<int>(state.range(0)));
    const CString path = CString::FromUtf8(file.c_str());
    XMLInstrumentParser *parser = XMLInstrumentParser::GetInstance();
    for (auto _ : state)
    {
        const int ok = parser->ParseXMLFromFile(path);
        benchmark::DoNotOptimize(ok);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ParseInstrumentFile)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void BM_DomOnly(benchmark::State &state)
{
    const std::string file = FileOf(static_cast<int>(state.range(0)));
    // One document, emptied and loaded again, as the parser keeps its own.
    pugi::xml_document doc;
    for (auto _ : state)
    {
        doc.reset();
        const bool ok = doc.load_file(file.c_str());
        benchmark::DoNotOptimize(ok);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_DomOnly)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void BM_HarmonicaSearch(benchmark::State &state)
{
    MCHarmonicaConverter converter(0);
    for (auto _ : state)
        for (int pitch = 0; pitch < 128; ++pitch)
            for (int compression = 0; compression < 2; ++compression)
                benchmark::DoNotOptimize(
                    converter.GetHarmonicaDescantNotation(static_cast<unsigned char>(pitch), compression));
    state.SetItemsProcessed(state.iterations() * 256);
}
BENCHMARK(BM_HarmonicaSearch);

// The least any search without an index can do: one pass over the 46
// buttons of a direction, held flat in the search's row order.
void BM_FlatScan(benchmark::State &state)
{
    MCHarmonicaConverter converter(0);
    std::array<std::vector<unsigned char>, 2> flat;
    for (int compression = 0; compression < 2; ++compression)
        for (int row : {1, 0, 2, 3})
            for (int button = 0; button < MCHarmonicaConverter::ButtonCount(4, row); ++button)
                flat[static_cast<size_t>(compression)].push_back(converter.GetDescantMidiPitch(
                    MCHarmonicaConverter::CombineToNotationByte(compression, row >= 2,
                                                                static_cast<unsigned char>(button * 2 + row + 2))));
    for (auto _ : state)
        for (int pitch = 0; pitch < 128; ++pitch)
            for (int compression = 0; compression < 2; ++compression)
            {
                const std::vector<unsigned char> &buttons = flat[static_cast<size_t>(compression)];
                benchmark::DoNotOptimize(std::find(buttons.begin(), buttons.end(), pitch) - buttons.begin());
            }
    state.SetItemsProcessed(state.iterations() * 256);
}
BENCHMARK(BM_FlatScan);

using bench::Collector;

void PrintRatio(const char *what, double ours, double base, double goal)
{
    if (ours <= 0 || base <= 0)
    {
        std::printf("  %-34s not measured in this run\n", what);
        return;
    }
    const double ratio = ours / base;
    std::printf("  %-34s ratio %6.2f  goal <= %-4g %s\n", what, ratio, goal, ratio <= goal ? "met" : "MISSED");
}

int Quiet(const CString &, unsigned)
{
    return IDOK;
}
} // namespace

int main(int argc, char **argv)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "scoremodel-bench-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        return 1;
    g_folder = pattern;
    // The parser's first use reads the start file; none of the user's files
    // are touched.
    ::setenv("SCOREMODEL_USER_DIR", (g_folder / "user").c_str(), 1);
    MCSetMessageBoxHandler(&Quiet);

    // Freed memory stays in the heap: otherwise the allocator hands the
    // DOM's pages back to the system after each load and faults them in again,
    // which would be charged to whichever side frees last.
    mallopt(M_TRIM_THRESHOLD, 64 << 20);
    mallopt(M_MMAP_THRESHOLD, 64 << 20);
    benchmark::Initialize(&argc, argv);
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::Shutdown();

    std::printf("\ngoals (CPU time against the baseline of the same run)\n");
    for (const char *n : {"100", "1000"})
        PrintRatio((std::string("instrument file / bare DOM, n=") + n).c_str(),
                   collector.Get(std::string("BM_ParseInstrumentFile/") + n),
                   collector.Get(std::string("BM_DomOnly/") + n), 2);
    PrintRatio("harmonica search / flat scan", collector.Get("BM_HarmonicaSearch"), collector.Get("BM_FlatScan"), 2);
    std::error_code ignored;
    std::filesystem::remove_all(g_folder, ignored);
    return 0;
}
