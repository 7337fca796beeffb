// Throughput of the archive: scalar fields against memcpy of the same bytes,
// and the cost of one object reference (a pointer-map lookup on store, an
// index lookup on load), also as bandwidth beside memcpy of the bytes that
// part of the stream takes.
//
// Goals: scalar field writing at one fifth of memcpy's bandwidth or better;
// under 100 ns per object reference on load and store. The ratios are printed
// after the table.
#include <scoremodel/platform/CArchive.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace
{
// Bytes per iteration, the same for memcpy and for the archive: 1 MiB stays
// in cache, where memcpy is at its fastest; 32 MiB is a large document, where
// both go to memory.
constexpr int64_t kSmall = 1 << 20;
constexpr int64_t kLarge = 32 << 20;

class BenchItem : public CObject
{
    DECLARE_SERIAL(BenchItem)
public:
    DWORD m_value = 0;
    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
            ar << m_value;
        else
            ar >> m_value;
    }
};
} // namespace
IMPLEMENT_SERIAL(BenchItem, CObject, 1)

namespace
{
// ---- Scalars --------------------------------------------------------------------------

void BM_Memcpy(benchmark::State &state)
{
    const size_t kBytes = static_cast<size_t>(state.range(0));
    std::vector<BYTE> src(kBytes, 1), dst(kBytes);
    for (auto _ : state)
    {
        std::memcpy(dst.data(), src.data(), kBytes);
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}
BENCHMARK(BM_Memcpy)->Arg(kSmall)->Arg(kLarge);

// The file is grown once and rewritten each iteration, so the figure is the
// archive's, not the allocator's.
void BM_WriteDWORD(benchmark::State &state)
{
    const size_t kBytes = static_cast<size_t>(state.range(0));
    CMemFile mem;
    mem.SetLength(kBytes);
    for (auto _ : state)
    {
        mem.SeekToBegin();
        CArchive ar(&mem, CArchive::store);
        for (DWORD i = 0; i < kBytes / 4; ++i)
            ar << i;
        ar.Close();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}
BENCHMARK(BM_WriteDWORD)->Arg(kSmall)->Arg(kLarge);

// A record-like mix: BYTE, WORD, DWORD, float, double (19 bytes).
void BM_WriteMixed(benchmark::State &state)
{
    constexpr size_t kRecord = 1 + 2 + 4 + 4 + 8;
    const size_t kBytes = static_cast<size_t>(state.range(0));
    const size_t kRecords = kBytes / kRecord;
    CMemFile mem;
    mem.SetLength(kBytes);
    for (auto _ : state)
    {
        mem.SeekToBegin();
        CArchive ar(&mem, CArchive::store);
        for (size_t i = 0; i < kRecords; ++i)
            ar << BYTE(i) << WORD(i) << DWORD(i) << float(i) << double(i);
        ar.Close();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kRecords * kRecord));
}
BENCHMARK(BM_WriteMixed)->Arg(kSmall)->Arg(kLarge);

void BM_ReadDWORD(benchmark::State &state)
{
    const size_t kBytes = static_cast<size_t>(state.range(0));
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        for (DWORD i = 0; i < kBytes / 4; ++i)
            ar << i;
    }
    for (auto _ : state)
    {
        mem.SeekToBegin();
        CArchive ar(&mem, CArchive::load);
        DWORD sum = 0, v;
        for (size_t i = 0; i < kBytes / 4; ++i)
        {
            ar >> v;
            sum += v;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}
BENCHMARK(BM_ReadDWORD)->Arg(kSmall)->Arg(kLarge);

// ---- Object graphs --------------------------------------------------------------------

constexpr size_t kObjects = 50000;
constexpr size_t kRefs = 200000;

// References in random order over objects already written, as a document's
// links between events are.
std::vector<size_t> RefOrder()
{
    std::mt19937 rng(7);
    std::uniform_int_distribution<size_t> pick(0, kObjects - 1);
    std::vector<size_t> order(kRefs);
    for (size_t &i : order)
        i = pick(rng);
    return order;
}

void WriteGraph(CArchive &ar, const std::vector<std::unique_ptr<BenchItem>> &items, const std::vector<size_t> &order)
{
    for (const auto &item : items)
        ar << item.get();
    for (size_t i : order)
        ar << items[i].get();
}

std::vector<std::unique_ptr<BenchItem>> MakeItems()
{
    std::vector<std::unique_ptr<BenchItem>> items;
    for (size_t i = 0; i < kObjects; ++i)
    {
        items.push_back(std::make_unique<BenchItem>());
        items.back()->m_value = static_cast<DWORD>(i);
    }
    return items;
}

// The bytes of the two parts of the graph's stream: the objects' first
// occurrences, and the back references after them.
struct GraphBytes
{
    int64_t newObjects;
    int64_t references;
};

const GraphBytes &StreamBytes()
{
    static const GraphBytes s_bytes = [] {
        const auto items = MakeItems();
        CMemFile mem;
        CArchive ar(&mem, CArchive::store);
        for (const auto &item : items)
            ar << item.get();
        ar.Flush();
        const int64_t newObjects = static_cast<int64_t>(mem.GetLength());
        for (size_t i : RefOrder())
            ar << items[i].get();
        ar.Close();
        return GraphBytes{newObjects, static_cast<int64_t>(mem.GetLength()) - newObjects};
    }();
    return s_bytes;
}

// First occurrences: class reference, map insert, the object's Serialize.
void BM_StoreNewObjects(benchmark::State &state)
{
    const auto items = MakeItems();
    CMemFile mem;
    mem.SetLength(kObjects * 8);
    for (auto _ : state)
    {
        mem.SeekToBegin();
        CArchive ar(&mem, CArchive::store);
        for (const auto &item : items)
            ar << item.get();
        ar.Close();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kObjects));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * StreamBytes().newObjects);
}
BENCHMARK(BM_StoreNewObjects);

// Back references: one map lookup and a WORD or a big tag each.
void BM_StoreReferences(benchmark::State &state)
{
    const auto items = MakeItems();
    const auto order = RefOrder();
    CMemFile mem;
    mem.SetLength(kObjects * 8 + kRefs * 6);
    for (auto _ : state)
    {
        state.PauseTiming();
        mem.SeekToBegin();
        auto ar = std::make_unique<CArchive>(&mem, CArchive::store);
        for (const auto &item : items)
            *ar << item.get();
        state.ResumeTiming();
        for (size_t i : order)
            *ar << items[i].get();
        ar->Close();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kRefs));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * StreamBytes().references);
}
BENCHMARK(BM_StoreReferences);

void BM_LoadNewObjects(benchmark::State &state)
{
    const auto items = MakeItems();
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        for (const auto &item : items)
            ar << item.get();
    }
    for (auto _ : state)
    {
        mem.SeekToBegin();
        CArchive ar(&mem, CArchive::load);
        for (size_t i = 0; i < kObjects; ++i)
            ar.ReadObject(RUNTIME_CLASS(BenchItem));
        state.PauseTiming();
        for (CObject *p : ar.GetLoadedObjects())
            delete p;
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kObjects));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * StreamBytes().newObjects);
}
BENCHMARK(BM_LoadNewObjects);

void BM_LoadReferences(benchmark::State &state)
{
    const auto items = MakeItems();
    const auto order = RefOrder();
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        WriteGraph(ar, items, order);
    }
    for (auto _ : state)
    {
        state.PauseTiming();
        mem.SeekToBegin();
        auto ar = std::make_unique<CArchive>(&mem, CArchive::load);
        for (size_t i = 0; i < kObjects; ++i)
            ar->ReadObject(RUNTIME_CLASS(BenchItem));
        state.ResumeTiming();
        for (size_t i = 0; i < kRefs; ++i)
            benchmark::DoNotOptimize(ar->ReadObject(RUNTIME_CLASS(BenchItem)));
        state.PauseTiming();
        for (CObject *p : ar->GetLoadedObjects())
            delete p;
        ar.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kRefs));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * StreamBytes().references);
}
BENCHMARK(BM_LoadReferences);

// Keeps the rates of the runs so the ratios can be printed after the table.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
        {
            if (run.run_type != Run::RT_Iteration)
                continue;
            const std::string name = run.benchmark_name();
            auto bytes = run.counters.find("bytes_per_second");
            if (bytes != run.counters.end())
                m_bytesPerSecond[name] = bytes->second.value;
            auto items = run.counters.find("items_per_second");
            if (items != run.counters.end())
                m_itemsPerSecond[name] = items->second.value;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void PrintRatios() const
    {
        std::printf("\n");
        for (int64_t size : {kSmall, kLarge})
        {
            // Strings are appended to rather than added to a literal: GCC 12
            // misreads the latter as an overlapping copy (-Wrestrict).
            const std::string suffix = std::string("/").append(std::to_string(size));
            const double memcpyRate = Rate(m_bytesPerSecond, std::string("BM_Memcpy").append(suffix).c_str());
            for (const char *name : {"BM_WriteDWORD", "BM_WriteMixed", "BM_ReadDWORD"})
            {
                const double rate = Rate(m_bytesPerSecond, std::string(name).append(suffix).c_str());
                if (memcpyRate <= 0 || rate <= 0)
                    continue;
                const bool write = std::strncmp(name, "BM_Write", 8) == 0;
                std::printf("%-14s %3lld MiB %7.2f GB/s = %.3f of memcpy (%.2f GB/s)%s\n", name,
                            static_cast<long long>(size >> 20), rate / 1e9, rate / memcpyRate, memcpyRate / 1e9,
                            !write ? "" : rate / memcpyRate >= 0.2 ? "  goal >= 0.2: met" : "  goal >= 0.2: missed");
            }
        }
        for (const char *name : {"BM_StoreNewObjects", "BM_StoreReferences", "BM_LoadNewObjects", "BM_LoadReferences"})
        {
            const double rate = Rate(m_itemsPerSecond, name);
            if (rate <= 0)
                continue;
            const bool references = std::strstr(name, "References") != nullptr;
            const int64_t bytes = references ? StreamBytes().references : StreamBytes().newObjects;
            const double byteRate = Rate(m_bytesPerSecond, name);
            const double memcpyRate = Rate(m_bytesPerSecond, ("BM_Memcpy/" + std::to_string(bytes)).c_str());
            std::printf("%-20s %8.1f ns per object%s\n", name, 1e9 / rate,
                        !references ? "" : 1e9 / rate < 100 ? "  goal < 100 ns: met" : "  goal < 100 ns: MISSED");
            if (byteRate > 0 && memcpyRate > 0)
                std::printf("%-20s %8.3f GB/s over %lld bytes = %.3f of memcpy (%.2f GB/s)\n", "", byteRate / 1e9,
                            static_cast<long long>(bytes), byteRate / memcpyRate, memcpyRate / 1e9);
        }
    }

private:
    static double Rate(const std::map<std::string, double> &rates, const char *name)
    {
        auto it = rates.find(name);
        return it == rates.end() ? 0 : it->second;
    }

    std::map<std::string, double> m_bytesPerSecond;
    std::map<std::string, double> m_itemsPerSecond;
};
} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    // memcpy of exactly the bytes each part of the graph's stream takes, so
    // the graph figures have their own yardstick beside the 1 MiB one.
    benchmark::RegisterBenchmark("BM_Memcpy", BM_Memcpy)
        ->Arg(StreamBytes().newObjects)
        ->Arg(StreamBytes().references);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios();
    benchmark::Shutdown();
    return 0;
}
