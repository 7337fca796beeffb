// Cost of the hidden-window messaging per message: a posted message from the
// post to its delivery by the pump, and a message sent on the owner thread.
// Posted messages are measured two ways. One by one (post, the host's poll of
// the wake-up descriptor, pump) is what a single posted command pays, with
// the descriptor's write and read on every message. In a batch (n posts, one
// pump) those are shared by the whole batch, which is the cost of a burst.
// All should be flat in the number of messages; the program prints the
// per-message time at 1,000,000 messages over that at 10,000.
#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/platform/Window.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <string>

#include <poll.h>
#include <time.h>

namespace
{
long long s_delivered = 0;

LRESULT CountingProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_USER)
    {
        ++s_delivered;
        return (LRESULT)wParam;
    }
    return DefWindowProcW(hWnd, msg, wParam, lParam);
}

HWND BenchWindow()
{
    static HWND s_hWnd = [] {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = CountingProc;
        wc.lpszClassName = L"BenchMessaging";
        RegisterClassW(&wc);
        return CreateWindowExW(0, L"BenchMessaging", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    }();
    return s_hWnd;
}

double ThreadCpuNs()
{
    struct timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return (double)ts.tv_sec * 1e9 + (double)ts.tv_nsec;
}

struct PerMessage
{
    double wallNs;
    double cpuNs;
};
// Per message, of the last run of each benchmark and size.
std::map<std::string, std::map<long, PerMessage>> s_perMessage;

template <typename Body> void Measure(benchmark::State &state, const char *name, Body body)
{
    const long n = (long)state.range(0);
    BenchWindow();
    double wallNs = 0, cpuNs = 0;
    long long messages = 0;
    for (auto _ : state)
    {
        auto start = std::chrono::steady_clock::now();
        double cpuStart = ThreadCpuNs();
        body(n);
        cpuNs += ThreadCpuNs() - cpuStart;
        wallNs += std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
        messages += n;
    }
    s_perMessage[name][n] = PerMessage{wallNs / (double)messages, cpuNs / (double)messages};
    state.counters["per_msg"] =
        benchmark::Counter((double)n, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_PostedOneByOne(benchmark::State &state)
{
    Measure(state, "posted one by one", [](long n) {
        HWND h = BenchWindow();
        struct pollfd wakeup = {MCMessageLoop::GetWakeupFd(), POLLIN, 0};
        long delivered = 0;
        for (long i = 0; i < n; ++i)
        {
            PostMessageW(h, WM_USER, (WPARAM)i, 0);
            if (poll(&wakeup, 1, 0) != 1)
                std::fprintf(stderr, "the wake-up descriptor missed a post\n");
            delivered += MCMessageLoop::ProcessPending();
        }
        if (delivered != n)
            std::fprintf(stderr, "posted %ld, delivered %ld\n", n, delivered);
    });
}

void BM_PostedInABatch(benchmark::State &state)
{
    Measure(state, "posted in a batch", [](long n) {
        HWND h = BenchWindow();
        for (long i = 0; i < n; ++i)
            PostMessageW(h, WM_USER, (WPARAM)i, 0);
        int delivered = MCMessageLoop::ProcessPending();
        if (delivered != n)
            std::fprintf(stderr, "posted %ld, delivered %d\n", n, delivered);
    });
}

void BM_SentOnOwnerThread(benchmark::State &state)
{
    Measure(state, "sent on owner thread", [](long n) {
        HWND h = BenchWindow();
        LRESULT sum = 0;
        for (long i = 0; i < n; ++i)
            sum += SendMessageW(h, WM_USER, (WPARAM)i, 0);
        benchmark::DoNotOptimize(sum);
    });
}
} // namespace

BENCHMARK(BM_PostedOneByOne)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PostedInABatch)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SentOnOwnerThread)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    // CPU time of the measuring thread is the steadier figure on a busy machine.
    for (const auto &[name, sizes] : s_perMessage)
    {
        for (const auto &[n, cost] : sizes)
            std::printf("%s: %ld messages, %.1f ns per message (cpu), %.1f ns (wall)\n", name.c_str(), n,
                        cost.cpuNs, cost.wallNs);
        auto small = sizes.find(10000), large = sizes.find(1000000);
        if (small != sizes.end() && large != sizes.end())
            std::printf("%s: per-message ratio 1,000,000 vs 10,000 = %.2f (cpu), %.2f (wall)\n", name.c_str(),
                        large->second.cpuNs / small->second.cpuNs, large->second.wallNs / small->second.wallNs);
    }
    return 0;
}
