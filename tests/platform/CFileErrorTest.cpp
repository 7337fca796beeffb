#include <scoremodel/platform/CFile.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <pthread.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

// ---- A seam under write(2) ---------------------------------------------------------
//
// No device makes write(2) return 0 for a non-empty buffer, so the test
// program stands in for the C library's write: calls on the descriptor named
// in g_shortWriteFd accept at most g_shortWriteLimit bytes (0: none), every
// other call goes straight to the kernel. The library, a shared object, finds
// this definition before the C library's.
namespace
{
std::atomic<int> g_shortWriteFd{-1};
std::atomic<long> g_shortWriteLimit{0};
std::atomic<int> g_shortWriteCalls{0};
} // namespace

extern "C" ssize_t write(int fd, const void *buf, size_t count)
{
    if (fd >= 0 && fd == g_shortWriteFd.load())
    {
        ++g_shortWriteCalls;
        count = std::min<size_t>(count, static_cast<size_t>(g_shortWriteLimit.load()));
        if (count == 0)
        {
            // A caller that keeps retrying is told to stop, so a test of it
            // fails instead of spinning.
            if (g_shortWriteCalls > 100)
            {
                errno = EIO;
                return -1;
            }
            return 0;
        }
    }
    return syscall(SYS_write, fd, buf, count);
}

namespace
{

// The cause and errno of the CFileException that `action` throws; a cause
// of -1 when it throws none.
std::pair<int, long> Failure(const std::function<void()> &action)
{
    try
    {
        action();
    }
    catch (const CFileException &e)
    {
        return {e.m_cause, e.m_lOsError};
    }
    return {-1, 0};
}

// A fresh folder per test, removed with what it holds.
class CFileErrorTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_dir = ::testing::TempDir() + "/cfileerror_" + std::to_string(::getpid()) + "_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::create_directories(m_dir);
    }
    void TearDown() override { std::filesystem::remove_all(m_dir); }
    std::string Path(const std::string &leaf) const { return m_dir + "/" + leaf; }

    std::string m_dir;
};

// ---- Interrupted calls ---------------------------------------------------------------

// The number of the system call thread `tid` sleeps in, or nullopt while it
// runs or when /proc does not tell. Lets a test see a thread block without
// guessing how long to wait.
std::optional<long> SleepingIn(long tid)
{
    std::ifstream file("/proc/self/task/" + std::to_string(tid) + "/syscall");
    long call = -1;
    if (!(file >> call)) // "running" is not a number
        return std::nullopt;
    return call;
}

bool ProcShowsSleepingCalls()
{
    std::ifstream file("/proc/self/task/" + std::to_string(syscall(SYS_gettid)) + "/syscall");
    return static_cast<bool>(file);
}

std::atomic<int> g_signals{0};
void CountSignal(int) { ++g_signals; }

// Installs a SIGUSR1 handler without SA_RESTART, so a blocked read or write
// that the signal reaches fails with EINTR instead of being restarted by the
// kernel; puts the old one back afterwards.
class InterruptingSignal
{
public:
    InterruptingSignal()
    {
        struct sigaction sa{};
        sa.sa_handler = CountSignal;
        sigemptyset(&sa.sa_mask);
        sa.sa_flags = 0;
        sigaction(SIGUSR1, &sa, &m_old);
        g_signals = 0;
    }
    ~InterruptingSignal() { sigaction(SIGUSR1, &m_old, nullptr); }
    InterruptingSignal(const InterruptingSignal &) = delete;
    InterruptingSignal &operator=(const InterruptingSignal &) = delete;

    // Waits until `tid` sleeps in `call`, then signals `thread` and waits
    // for the handler to have run, by which time the call has failed with
    // EINTR. Returns false, signalling nothing, once the thread is done.
    static bool Interrupt(std::thread &thread, const std::atomic<long> &tid, const std::atomic<bool> &done,
                          long call)
    {
        while (!done && !(tid && SleepingIn(tid) == call))
            std::this_thread::yield();
        if (done)
            return false;
        const int before = g_signals;
        pthread_kill(thread.native_handle(), SIGUSR1);
        while (g_signals == before)
            std::this_thread::yield();
        return true;
    }

private:
    struct sigaction m_old;
};

// A read that a signal cuts short is retried, and the bytes it already had
// are kept: the caller sees every byte, in order, and no exception.
TEST(CFileError, AnInterruptedReadIsRetriedAndKeepsWhatItHad)
{
    if (!ProcShowsSleepingCalls())
        GTEST_SKIP() << "/proc does not show the call a thread sleeps in";
    InterruptingSignal signal;
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    ASSERT_EQ(::write(fds[1], "he", 2), 2);

    std::atomic<long> tid{0};
    std::atomic<bool> done{false};
    char buf[6] = {};
    UINT got = 0;
    std::pair<int, long> failure{-1, 0};
    std::thread reader([&] {
        tid = syscall(SYS_gettid);
        CFile file(fds[0]);
        failure = Failure([&] { got = file.Read(buf, 5); });
        done = true;
    });
    // Sleeping in read with the pipe empty: "he" is taken and the reader
    // waits for the rest. Interrupt it there twice.
    int interrupted = 0;
    while (interrupted < 2 && InterruptingSignal::Interrupt(reader, tid, done, SYS_read))
    {
        int pending = -1;
        ASSERT_EQ(::ioctl(fds[0], FIONREAD, &pending), 0);
        if (pending == 0)
            ++interrupted;
    }
    ASSERT_EQ(::write(fds[1], "llo", 3), 3);
    reader.join();

    EXPECT_EQ(failure.first, -1) << "errno " << failure.second;
    EXPECT_EQ(got, 5u);
    EXPECT_STREQ(buf, "hello");
    EXPECT_GE(g_signals, 2);
    ::close(fds[0]);
    ::close(fds[1]);
}

// A write that blocks on a full pipe and is cut short by a signal before it
// wrote anything is retried, and its bytes arrive once, after the filler.
TEST(CFileError, AnInterruptedWriteIsRetriedAndWritesItsBytesOnce)
{
    if (!ProcShowsSleepingCalls())
        GTEST_SKIP() << "/proc does not show the call a thread sleeps in";
    InterruptingSignal signal;
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    // Fill the pipe so the next write must wait.
    const int flags = ::fcntl(fds[1], F_GETFL);
    ASSERT_EQ(::fcntl(fds[1], F_SETFL, flags | O_NONBLOCK), 0);
    size_t filled = 0;
    const std::string chunk(4096, 'f');
    for (;;)
    {
        const ssize_t n = ::write(fds[1], chunk.data(), chunk.size());
        if (n < 0)
            break;
        filled += static_cast<size_t>(n);
    }
    ASSERT_EQ(errno, EAGAIN);
    ASSERT_EQ(::fcntl(fds[1], F_SETFL, flags), 0);

    std::atomic<long> tid{0};
    std::atomic<bool> done{false};
    std::pair<int, long> failure{-1, 0};
    std::thread writer([&] {
        tid = syscall(SYS_gettid);
        CFile file(fds[1]);
        failure = Failure([&] { file.Write("xyz", 3); });
        done = true;
    });
    InterruptingSignal::Interrupt(writer, tid, done, SYS_write);
    InterruptingSignal::Interrupt(writer, tid, done, SYS_write);

    // Take the filler, which lets the writer finish (or find it failed),
    // then whatever it wrote.
    std::string all;
    char buf[4096];
    while (all.size() < filled)
    {
        const ssize_t n = ::read(fds[0], buf, std::min(sizeof buf, filled - all.size()));
        ASSERT_GT(n, 0);
        all.append(buf, static_cast<size_t>(n));
    }
    writer.join();
    ASSERT_EQ(::fcntl(fds[0], F_SETFL, ::fcntl(fds[0], F_GETFL) | O_NONBLOCK), 0);
    for (ssize_t n; (n = ::read(fds[0], buf, sizeof buf)) > 0;)
        all.append(buf, static_cast<size_t>(n));

    EXPECT_EQ(failure.first, -1) << "errno " << failure.second;
    EXPECT_EQ(all.size(), filled + 3);
    EXPECT_EQ(all.substr(filled), "xyz");
    EXPECT_EQ(all.find_first_not_of('f'), filled);
    EXPECT_EQ(g_signals, 2);
    ::close(fds[0]);
    ::close(fds[1]);
}

// ---- Short and empty writes ---------------------------------------------------------

TEST_F(CFileErrorTest, AWriteThatAcceptsNothingIsADiskFull)
{
    CFile file(Path("full.bin").c_str(), CFile::modeCreate | CFile::modeWrite);
    g_shortWriteCalls = 0;
    g_shortWriteLimit = 0;
    g_shortWriteFd = file.m_hFile;
    const auto failure = Failure([&] { file.Write("abc", 3); });
    g_shortWriteFd = -1;
    EXPECT_EQ(failure.first, CFileException::diskFull);
    EXPECT_EQ(failure.second, 0);
    EXPECT_EQ(g_shortWriteCalls, 1) << "a write that makes no progress must not be retried forever";
    EXPECT_EQ(file.GetLength(), 0u);
}

// A write the system takes a few bytes at a time continues where the last
// part stopped; the file holds every byte once.
TEST_F(CFileErrorTest, AShortWriteContinuesWithTheRest)
{
    CFile file(Path("short.bin").c_str(), CFile::modeCreate | CFile::modeReadWrite);
    g_shortWriteCalls = 0;
    g_shortWriteLimit = 3;
    g_shortWriteFd = file.m_hFile;
    const auto failure = Failure([&] { file.Write("0123456789", 10); });
    g_shortWriteFd = -1;
    EXPECT_EQ(failure.first, -1);
    EXPECT_EQ(g_shortWriteCalls, 4);
    EXPECT_EQ(file.GetPosition(), 10u);
    file.SeekToBegin();
    char buf[16] = {};
    EXPECT_EQ(file.Read(buf, sizeof buf), 10u);
    EXPECT_STREQ(buf, "0123456789");
}

// ---- A closed file ----------------------------------------------------------------

TEST_F(CFileErrorTest, EveryOperationOnAClosedFileIsAnInvalidFile)
{
    CFile opened(Path("c.bin").c_str(), CFile::modeCreate | CFile::modeReadWrite);
    opened.Write("abc", 3);
    opened.Close();
    CFile never;
    for (CFile *file : {&opened, &never})
    {
        EXPECT_FALSE(file->IsOpen());
        EXPECT_EQ(file->m_hFile, CFile::hFileNull);
        char c;
        const std::pair<const char *, std::function<void()>> operations[] = {
            {"Read", [&] { file->Read(&c, 1); }},
            {"Read of nothing", [&] { file->Read(&c, 0); }},
            {"Write", [&] { file->Write("x", 1); }},
            {"Seek", [&] { file->Seek(0, CFile::begin); }},
            {"GetPosition", [&] { file->GetPosition(); }},
            {"GetLength", [&] { file->GetLength(); }},
            {"SetLength", [&] { file->SetLength(0); }},
        };
        for (const auto &[name, operation] : operations)
            EXPECT_EQ(Failure(operation), std::make_pair(int(CFileException::invalidFile), 0L)) << name;
        // Ending what has ended is harmless.
        EXPECT_NO_THROW(file->Flush());
        EXPECT_NO_THROW(file->Close());
        EXPECT_NO_THROW(file->Abort());
    }
    // The bytes written before the close are there.
    CFile again(Path("c.bin").c_str(), CFile::modeRead);
    EXPECT_EQ(again.GetLength(), 3u);
}

TEST_F(CFileErrorTest, OpeningAnOpenFileFailsAndLeavesItOpen)
{
    CFile file(Path("a.bin").c_str(), CFile::modeCreate | CFile::modeWrite);
    CFileException error(CFileException::none, 0, "");
    EXPECT_FALSE(file.Open(Path("b.bin").c_str(), CFile::modeCreate | CFile::modeWrite, &error));
    EXPECT_EQ(error.m_cause, CFileException::genericException);
    EXPECT_TRUE(file.IsOpen());
    EXPECT_TRUE(file.GetFilePath() == CString(Path("a.bin").c_str()));
    EXPECT_FALSE(std::filesystem::exists(Path("b.bin")));
}

// A descriptor that is not open (or closed behind the object's back) is an
// invalid file with EBADF, for every call that reaches the system.
TEST(CFileError, ADescriptorThatIsNotOpenIsAnInvalidFile)
{
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    ::close(fds[0]);
    ::close(fds[1]);
    CFile file(fds[0]);
    char c;
    const std::pair<int, long> badf{CFileException::invalidFile, EBADF};
    EXPECT_EQ(Failure([&] { file.Read(&c, 1); }), badf);
    EXPECT_EQ(Failure([&] { file.Write("x", 1); }), badf);
    EXPECT_EQ(Failure([&] { file.Seek(0, CFile::begin); }), badf);
    EXPECT_EQ(Failure([&] { file.GetLength(); }), badf);
    EXPECT_EQ(Failure([&] { file.SetLength(0); }), badf);
    EXPECT_EQ(Failure([&] { file.Close(); }), badf);
    EXPECT_FALSE(file.IsOpen()) << "a failed Close still leaves the file closed";
}

// ---- From errno to cause ------------------------------------------------------------

TEST(CFileError, EachErrnoMapsToItsCause)
{
    const std::pair<long, int> cases[] = {
        {0, CFileException::none},
        {ENOENT, CFileException::fileNotFound},
        {ENOTDIR, CFileException::badPath},
        {ENAMETOOLONG, CFileException::badPath},
        {ELOOP, CFileException::badPath},
        {EMFILE, CFileException::tooManyOpenFiles},
        {ENFILE, CFileException::tooManyOpenFiles},
        {EACCES, CFileException::accessDenied},
        {EPERM, CFileException::accessDenied},
        {EROFS, CFileException::accessDenied},
        {EISDIR, CFileException::accessDenied},
        {EBADF, CFileException::invalidFile},
        {ESPIPE, CFileException::badSeek},
        {EINVAL, CFileException::badSeek},
        {EIO, CFileException::hardIO},
        {EBUSY, CFileException::sharingViolation},
        {ETXTBSY, CFileException::sharingViolation},
        {ENOSPC, CFileException::diskFull},
        {EDQUOT, CFileException::diskFull},
        {EAGAIN, CFileException::genericException},
        {EINTR, CFileException::genericException},
        {EEXIST, CFileException::genericException},
        {-1, CFileException::genericException},
    };
    for (const auto &[osError, cause] : cases)
        EXPECT_EQ(CFileException::OsErrorToCause(osError), cause) << "errno " << osError;
}

// The same mapping reached through real failures of the system.
TEST_F(CFileErrorTest, RealFailuresCarryTheirErrnoAndCause)
{
    { std::ofstream(Path("plain.bin")) << "x"; }
    ASSERT_EQ(::symlink("loop2", Path("loop1").c_str()), 0);
    ASSERT_EQ(::symlink("loop1", Path("loop2").c_str()), 0);
    std::filesystem::create_directories(Path("sub"));

    struct Case
    {
        std::string path;
        UINT flags;
        int cause;
        long osError;
    };
    const Case cases[] = {
        {Path("missing.bin"), CFile::modeRead, CFileException::fileNotFound, ENOENT},
        {Path("no/such/dir.bin"), CFile::modeCreate | CFile::modeWrite, CFileException::fileNotFound, ENOENT},
        {Path("plain.bin/x"), CFile::modeRead, CFileException::badPath, ENOTDIR},
        {Path(std::string(300, 'n')), CFile::modeRead, CFileException::badPath, ENAMETOOLONG},
        {Path("loop1"), CFile::modeRead, CFileException::badPath, ELOOP},
        {Path("sub"), CFile::modeWrite, CFileException::accessDenied, EISDIR},
        {Path("sub"), CFile::modeRead, CFileException::accessDenied, EISDIR},
        {"", CFile::modeRead, CFileException::badPath, ENOENT},
        {Path("plain.bin"), 3u, CFileException::genericException, EINVAL}, // no such access mode
    };
    for (const Case &c : cases)
    {
        CFile file;
        CFileException error(CFileException::none, 0, "");
        EXPECT_FALSE(file.Open(c.path.c_str(), c.flags, &error)) << c.path;
        EXPECT_EQ(error.m_cause, c.cause) << c.path;
        EXPECT_EQ(error.m_lOsError, c.osError) << c.path;
        EXPECT_EQ(error.m_strFileName, c.path);
        EXPECT_FALSE(file.IsOpen());
    }

    // A file the user may not read; root reads everything.
    if (::geteuid() != 0)
    {
        ASSERT_EQ(::chmod(Path("plain.bin").c_str(), 0), 0);
        EXPECT_EQ(Failure([&] { CFile f(Path("plain.bin").c_str(), CFile::modeRead); }),
                  std::make_pair(int(CFileException::accessDenied), long(EACCES)));
    }

    CFile plain(Path("plain.bin").c_str(), CFile::modeRead);
    EXPECT_EQ(Failure([&] { plain.Seek(-1, CFile::begin); }),
              std::make_pair(int(CFileException::badSeek), long(EINVAL)));
    EXPECT_EQ(Failure([&] { plain.Seek(0, 7); }), std::make_pair(int(CFileException::badSeek), 0L));

    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    CFile pipeEnd(fds[0]);
    EXPECT_EQ(Failure([&] { pipeEnd.Seek(0, CFile::begin); }),
              std::make_pair(int(CFileException::badSeek), long(ESPIPE)));
    pipeEnd.Close();
    ::close(fds[1]);
}

TEST(CFileError, AFullDeviceIsADiskFull)
{
    CFile full;
    if (!full.Open("/dev/full", CFile::modeWrite))
        GTEST_SKIP() << "no /dev/full";
    EXPECT_EQ(Failure([&] { full.Write("x", 1); }), std::make_pair(int(CFileException::diskFull), long(ENOSPC)));
}

// With no descriptor left, Open reports too many open files and no
// descriptor leaks; the limit is put back at once.
TEST_F(CFileErrorTest, RunningOutOfDescriptorsIsTooManyOpenFiles)
{
    { std::ofstream(Path("f.bin")) << "x"; }
    // The same failing road runs once before the limit drops: the undefined
    // behaviour sanitizer needs a descriptor the first time it checks an
    // object's type, and remembers the answer.
    CFile file;
    CFileException error(CFileException::none, 0, "");
    ASSERT_FALSE(file.Open(Path("missing.bin").c_str(), CFile::modeRead, &error));
    struct rlimit old;
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &old), 0);
    // The lowest free descriptor is the next one open would hand out; a
    // limit at it leaves none.
    const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(next, 0);
    ::close(next);
    struct rlimit tight = old;
    tight.rlim_cur = static_cast<rlim_t>(next);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
    const BOOL opened = file.Open(Path("f.bin").c_str(), CFile::modeRead, &error);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &old), 0);

    EXPECT_FALSE(opened);
    EXPECT_EQ(error.m_cause, CFileException::tooManyOpenFiles);
    EXPECT_EQ(error.m_lOsError, EMFILE);
    EXPECT_TRUE(file.Open(Path("f.bin").c_str(), CFile::modeRead)) << "the file opens once a descriptor is free";
}

} // namespace
