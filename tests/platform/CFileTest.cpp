#include <scoremodel/platform/CFile.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace
{
// A fresh folder per test, removed with what it holds.
class CFileTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_dir = ::testing::TempDir() + "/cfiletest_" + std::to_string(::getpid()) + "_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::create_directories(m_dir);
    }
    void TearDown() override { std::filesystem::remove_all(m_dir); }
    std::string Path(const char *leaf) const { return m_dir + "/" + leaf; }

    std::string m_dir;
};

int FileCause(const std::function<void()> &f)
{
    try
    {
        f();
    }
    catch (const CFileException &e)
    {
        return e.m_cause;
    }
    return -1;
}

std::string ReadAll(CFile &f)
{
    f.SeekToBegin();
    std::string s(static_cast<size_t>(f.GetLength()), '\0');
    EXPECT_EQ(f.Read(s.data(), static_cast<UINT>(s.size())), s.size());
    return s;
}
} // namespace

// ---- CFile ------------------------------------------------------------------------------

TEST_F(CFileTest, WrittenBytesReadBackWithPositionAndLength)
{
    CFile f(Path("a.bin").c_str(), CFile::modeCreate | CFile::modeReadWrite | CFile::typeBinary);
    f.Write("hello world", 11);
    EXPECT_EQ(f.GetPosition(), 11u);
    EXPECT_EQ(f.GetLength(), 11u);
    EXPECT_EQ(f.Seek(-5, CFile::end), 6u);
    char buf[16] = {};
    EXPECT_EQ(f.Read(buf, sizeof buf), 5u); // short at the end, not an error
    EXPECT_STREQ(buf, "world");
    EXPECT_EQ(f.Read(buf, sizeof buf), 0u);
    EXPECT_EQ(f.Seek(-3, CFile::current), 8u);
    EXPECT_EQ(FileCause([&] { f.Seek(-1, CFile::begin); }), CFileException::badSeek);
}

TEST_F(CFileTest, SetLengthTruncatesAndExtendsWithZeros)
{
    CFile f(Path("len.bin").c_str(), CFile::modeCreate | CFile::modeReadWrite);
    f.Write("abcdef", 6);
    f.SetLength(3);
    EXPECT_EQ(ReadAll(f), "abc");
    f.SetLength(5);
    EXPECT_EQ(ReadAll(f), std::string("abc\0\0", 5));
}

TEST_F(CFileTest, CreateEmptiesAnExistingFileUnlessNoTruncateIsGiven)
{
    {
        CFile f(Path("t.bin").c_str(), CFile::modeCreate | CFile::modeWrite);
        f.Write("12345", 5);
    }
    {
        CFile f(Path("t.bin").c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite);
        EXPECT_EQ(f.GetLength(), 5u);
    }
    {
        CFile f(Path("t.bin").c_str(), CFile::modeCreate | CFile::modeWrite);
        EXPECT_EQ(f.GetLength(), 0u);
    }
}

TEST_F(CFileTest, OpenReportsTheCauseOfFailure)
{
    CFile f;
    CFileException error(CFileException::none, 0, "");
    EXPECT_FALSE(f.Open(Path("missing.bin").c_str(), CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::fileNotFound);
    EXPECT_EQ(error.m_lOsError, ENOENT);
    EXPECT_EQ(error.m_strFileName, Path("missing.bin"));
    EXPECT_FALSE(f.IsOpen());

    EXPECT_FALSE(f.Open(m_dir.c_str(), CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::accessDenied);

    EXPECT_EQ(FileCause([&] { CFile g(Path("missing.bin").c_str(), CFile::modeRead); }),
              CFileException::fileNotFound);
}

TEST_F(CFileTest, AFileOpenedForOneDirectionRefusesTheOther)
{
    {
        CFile w(Path("d.bin").c_str(), CFile::modeCreate | CFile::modeWrite);
        w.Write("x", 1);
        char c;
        EXPECT_EQ(FileCause([&] { w.Read(&c, 1); }), CFileException::accessDenied);
    }
    CFile r(Path("d.bin").c_str(), CFile::modeRead);
    EXPECT_EQ(FileCause([&] { r.Write("y", 1); }), CFileException::accessDenied);
    EXPECT_EQ(ReadAll(r), "x");
}

TEST_F(CFileTest, AClosedFileRefusesWorkAndClosingTwiceIsHarmless)
{
    CFile f(Path("c.bin").c_str(), CFile::modeCreate | CFile::modeWrite);
    f.Close();
    f.Close();
    EXPECT_EQ(FileCause([&] { f.Write("x", 1); }), CFileException::invalidFile);
}

TEST_F(CFileTest, AWideNameIsTheSameFileAsItsUtf8Spelling)
{
    const std::wstring wide = std::wstring(m_dir.begin(), m_dir.end()) + L"/Fl\u00F6te.bin";
    {
        CFile f(wide.c_str(), CFile::modeCreate | CFile::modeWrite);
        f.Write("ok", 2);
        EXPECT_TRUE(f.GetFileName() == CString(L"Fl\u00F6te.bin"));
        EXPECT_TRUE(f.GetFilePath() == CString(wide.c_str()));
    }
    struct stat st;
    EXPECT_EQ(::stat(Path("Fl\xC3\xB6te.bin").c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 2);
}

TEST_F(CFileTest, APipeHasNoLength)
{
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    CFile reader(fds[0]);
    CFile writer(fds[1]);
    writer.Write("abc", 3);
    writer.Close();
    EXPECT_THROW(reader.GetLength(), CFileException);
    char buf[8];
    EXPECT_EQ(reader.Read(buf, sizeof buf), 3u);
    reader.Close();
}

// ---- CMemFile -------------------------------------------------------------------------

TEST(CMemFile, ManySmallWritesKeepEveryByte)
{
    CMemFile mem(16);
    for (int i = 0; i < 100000; ++i)
    {
        const DWORD v = static_cast<DWORD>(i) * 2654435761u;
        mem.Write(&v, sizeof v);
    }
    mem.SeekToBegin();
    for (int i = 0; i < 100000; ++i)
    {
        DWORD v;
        ASSERT_EQ(mem.Read(&v, sizeof v), 4u);
        ASSERT_EQ(v, static_cast<DWORD>(i) * 2654435761u);
    }
}

TEST(CMemFile, AWritePastTheEndFillsTheGapWithZeros)
{
    CMemFile mem;
    mem.Write("ab", 2);
    mem.SetLength(1000); // room that holds old bytes after a shrink
    mem.SetLength(2);
    mem.Seek(6, CFile::begin);
    mem.Write("z", 1);
    EXPECT_EQ(ReadAll(mem), std::string("ab\0\0\0\0z", 7));
    EXPECT_EQ(FileCause([&] { mem.Seek(-8, CFile::current); }), CFileException::badSeek);
}

TEST(CMemFile, DetachHandsOverTheBlockAndLeavesTheFileEmpty)
{
    CMemFile mem;
    mem.Write("payload", 7);
    const ULONGLONG n = mem.GetLength();
    BYTE *p = mem.Detach();
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(p), static_cast<size_t>(n)), "payload");
    std::free(p);
    EXPECT_EQ(mem.GetLength(), 0u);
    mem.Write("again", 5); // usable afterwards
    EXPECT_EQ(ReadAll(mem), "again");
}

TEST(CMemFile, AnAttachedFixedBufferIsReadAndOverwrittenInPlaceButNeverGrown)
{
    BYTE buf[4] = {'a', 'b', 'c', 'd'};
    CMemFile mem(buf, sizeof buf);
    EXPECT_EQ(mem.GetLength(), 4u);
    mem.Seek(1, CFile::begin);
    mem.Write("XY", 2);
    EXPECT_EQ(std::memcmp(buf, "aXYd", 4), 0);
    EXPECT_EQ(FileCause([&] { mem.Write("123", 3); }), CFileException::diskFull);
    EXPECT_EQ(std::memcmp(buf, "aXYd", 4), 0);
    EXPECT_EQ(mem.Detach(), buf);
}

TEST(CMemFile, AnAttachedGrowableBufferMovesOutWhenOutgrownAndLeavesTheCallersAlone)
{
    BYTE buf[4] = {'.', '.', '.', '.'};
    CMemFile mem(buf, sizeof buf, 64);
    EXPECT_EQ(mem.GetLength(), 0u);
    mem.Write("ab", 2);
    EXPECT_EQ(std::memcmp(buf, "ab..", 4), 0);
    mem.Write("cdef", 4);
    EXPECT_EQ(ReadAll(mem), "abcdef");
    EXPECT_EQ(std::memcmp(buf, "ab..", 4), 0);
}

TEST(CMemFile, AConstBufferIsReadOnly)
{
    static const BYTE data[] = {1, 2, 3};
    CMemFile mem(data, sizeof data);
    BYTE out[3];
    EXPECT_EQ(mem.Read(out, 3), 3u);
    EXPECT_EQ(FileCause([&] { mem.Write(out, 1); }), CFileException::accessDenied);
    EXPECT_EQ(FileCause([&] { mem.SetLength(0); }), CFileException::accessDenied);
}

// Every cause reads as a reason of its own, with or without an errno.
TEST(CFileExceptionTest, EveryCauseGivesAReadableReason)
{
    std::set<std::string> reasons;
    for (int cause = CFileException::none; cause <= CFileException::endOfFile; ++cause)
    {
        const CFileException e(cause, 0, "x.smd");
        const std::string text = e.what();
        const std::string prefix = "file error on 'x.smd': ";
        ASSERT_EQ(text.rfind(prefix, 0), 0u) << text;
        EXPECT_GT(text.size(), prefix.size() + 4) << cause;
        EXPECT_TRUE(reasons.insert(text).second) << "two causes read alike: " << text;
    }
    EXPECT_NE(std::string(CFileException(CFileException::badSeek, ENOSPC, "x").what()).find(std::strerror(ENOSPC)),
              std::string::npos);
}
