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
//                             Baseline: a precomputed pitch-to-byte table.
//                             Goal: ratio <= 20; a search stays cheap enough
//                             that the converter needs no such table (which
//                             every key, layout and custom pitch would have
//                             to rebuild).
#include <scoremodel/instruments/XMLInstrumentParser.h>
#include <scoremodel/pitch/MCHarmonicaConverter.h>
#include <scoremodel/platform/MessageBox.h>

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include "BenchCollector.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

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
    for (auto _ : state)
    {
        pugi::xml_document doc;
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

void BM_PrecomputedTable(benchmark::State &state)
{
    MCHarmonicaConverter converter(0);
    std::array<unsigned char, 256> table{};
    for (int pitch = 0; pitch < 128; ++pitch)
        for (int compression = 0; compression < 2; ++compression)
            table[static_cast<size_t>(pitch * 2 + compression)] =
                converter.GetHarmonicaDescantNotation(static_cast<unsigned char>(pitch), compression);
    for (auto _ : state)
        for (int pitch = 0; pitch < 128; ++pitch)
            for (int compression = 0; compression < 2; ++compression)
            {
                benchmark::DoNotOptimize(table.data());
                benchmark::DoNotOptimize(table[static_cast<size_t>(pitch * 2 + compression)]);
            }
    state.SetItemsProcessed(state.iterations() * 256);
}
BENCHMARK(BM_PrecomputedTable);

using bench::Collector;

void PrintRatio(const char *what, double ours, double base, double goal)
{
    const double ratio = base > 0 ? ours / base : 0.0;
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

    benchmark::Initialize(&argc, argv);
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::Shutdown();

    std::printf("\ngoals (CPU time against the baseline of the same run)\n");
    for (const char *n : {"100", "1000"})
        PrintRatio((std::string("instrument file / bare DOM, n=") + n).c_str(),
                   collector.Get(std::string("BM_ParseInstrumentFile/") + n),
                   collector.Get(std::string("BM_DomOnly/") + n), 2);
    PrintRatio("harmonica search / table", collector.Get("BM_HarmonicaSearch"), collector.Get("BM_PrecomputedTable"),
               20);
    std::error_code ignored;
    std::filesystem::remove_all(g_folder, ignored);
    return 0;
}
