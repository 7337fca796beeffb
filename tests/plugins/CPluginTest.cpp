// Loading real plug-in libraries (built from fixtures/TestPlugin.cpp into
// folders of their own) and what they leave in the registries.
#include <scoremodel/document/MCFileReader.h>
#include <scoremodel/document/MCFileWriter.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/LCBase.h>
#include <scoremodel/platform/MCLanguageManager.h>
#include <scoremodel/platform/MessageBox.h>
#include <scoremodel/plugins/CPlugin.h>
#include <scoremodel/plugins/CPluginData.h>
#include <scoremodel/plugins/CPluginFileReader.h>
#include <scoremodel/plugins/CPluginFileWriter.h>
#include <scoremodel/plugins/CPluginFilter.h>
#include <scoremodel/plugins/PluginFolder.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace
{
const std::string kFolders = std::string(SCOREMODEL_TEST_BINARY_DIR) + "/tests/plugin-folders/";

std::vector<std::string> g_messages;

int Capture(const CString &text, unsigned)
{
    g_messages.push_back(text.ToUtf8());
    return IDOK;
}

std::string Text(const wchar_t *key)
{
    return MCLanguageManager::GetText(L"TuDataModel_Plugins_CPlugins", key).ToUtf8();
}

bool StartsWith(const std::string &text, const std::string &head)
{
    return text.compare(0, head.size(), head) == 0;
}

// The handle of a library the process holds, without taking a load of it.
void *Loaded(const std::string &path)
{
    void *module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (module)
        ::dlclose(module);
    return module;
}

int InitCalls(const std::string &path)
{
    void *module = Loaded(path);
    auto calls = module ? reinterpret_cast<int (*)()>(::dlsym(module, "PluginInitCalls")) : nullptr;
    return calls ? calls() : -1;
}

std::wstring Wide(const std::string &text)
{
    return std::wstring(CString::FromUtf8(text.c_str()).GetString());
}

class CPluginLoad : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_messages.clear();
        m_previous = MCSetMessageBoxHandler(&Capture);
    }
    void TearDown() override
    {
        MCSetMessageBoxHandler(m_previous);
        MCSetPluginFolderOverride(CString());
    }

    // Walks a fixture folder; the messages of the walk are in g_messages.
    static void Walk(const std::string &folder)
    {
        MCSetPluginFolderOverride(CString::FromUtf8((kFolders + folder).c_str()));
        CPlugin::Initialize();
    }

    // The good folder is walked once per process, so the registries hold
    // exactly one start of each good plug-in, whatever test runs first.
    static const std::vector<std::string> &WalkGoodOnce()
    {
        static bool walked = false;
        static std::vector<std::string> messages;
        if (!walked)
        {
            walked = true;
            Walk("good");
            messages = g_messages;
            g_messages.clear();
        }
        return messages;
    }

    MCMessageBoxHandler m_previous = nullptr;
};
} // namespace

TEST_F(CPluginLoad, GoodPluginsStartOnceAndFillTheRegistriesByTheirRules)
{
    EXPECT_TRUE(WalkGoodOnce().empty());
    for (const char *name : {"alpha.so", "beta.so", "gamma.so"})
        EXPECT_EQ(InitCalls(kFolders + "good/" + name), 1) << name;

    // Readers and writers: the first of a type answers (alpha before beta).
    std::unique_ptr<MCFileReader> reader(CPluginFileReader::CreateReader(1));
    ASSERT_NE(reader, nullptr);
    EXPECT_STREQ(reader->GetRuntimeClass()->m_lpszClassName, "AlphaReader");
    EXPECT_EQ(reader->Parse(), 101);
    std::unique_ptr<MCFileWriter> writer(CPluginFileWriter::CreateWriter(1));
    ASSERT_NE(writer, nullptr);
    EXPECT_STREQ(writer->GetRuntimeClass()->m_lpszClassName, "AlphaWriter");
    std::unique_ptr<MCFileReader> other(CPluginFileReader::CreateReader(2));
    ASSERT_NE(other, nullptr);
    EXPECT_STREQ(other->GetRuntimeClass()->m_lpszClassName, "GammaReader");
    EXPECT_EQ(CPluginFileReader::CreateReader(12345), nullptr);
    EXPECT_EQ(CPluginFileWriter::CreateWriter(12345), nullptr);

    // Filters: the first of a key stays.
    std::unique_ptr<LCBase> filter(CPluginFilter::CreateFilter("Shared"));
    ASSERT_NE(filter, nullptr);
    EXPECT_STREQ(filter->GetRuntimeClass()->m_lpszClassName, "AlphaFilter");

    // Data: the last plug-in for a slot wins.
    std::unique_ptr<DCBase> data(CPluginData::CreateData(9, 1));
    ASSERT_NE(data, nullptr);
    EXPECT_STREQ(data->GetRuntimeClass()->m_lpszClassName, "BetaData");

    // Ids: alpha and gamma give one, beta has no GetPluginID.
    EXPECT_EQ(static_cast<void *>(CPlugin::GetModuleHandleW(7)), Loaded(kFolders + "good/alpha.so"));
    EXPECT_EQ(static_cast<void *>(CPlugin::GetModuleHandleW(8)), Loaded(kFolders + "good/gamma.so"));
    EXPECT_NE(CPlugin::GetModuleHandleW(7), nullptr);
    EXPECT_EQ(CPlugin::GetModuleHandleW(12345), nullptr);
}

TEST_F(CPluginLoad, EachFaultIsToldOrSkippedAsItShouldAndTheWalkGoesOn)
{
    Walk("faults");
    // In name order: noinit.so, notalibrary.so (folder.so is a folder and
    // noversion.so and version0.so are skipped without a word).
    ASSERT_EQ(g_messages.size(), 2u);
    EXPECT_TRUE(StartsWith(g_messages[0], Text(L"IDD_DM_MB_TEXT3"))) << g_messages[0];
    EXPECT_NE(g_messages[0].find("noinit.so"), std::string::npos) << g_messages[0];
    EXPECT_TRUE(StartsWith(g_messages[1], Text(L"IDD_DM_MB_TEXT2"))) << g_messages[1];
    EXPECT_NE(g_messages[1].find("notalibrary.so"), std::string::npos) << g_messages[1];
    EXPECT_FALSE(Text(L"IDD_DM_MB_TEXT2").empty()) << "the language file lacks the texts";

    struct Case
    {
        const char *file;
        const char *filterKey;
        unsigned id;
        bool loaded, started;
    } const cases[] = {
        {"version0.so", "Version0", 20, true, false},   // loaded, never started
        {"noinit.so", "NoInit", 21, true, false},       // told, and not filed under its id
        {"noversion.so", "NoVersion", 22, true, false}, // skipped silently
        {"zlast.so", "ZLast", 23, true, true},          // after all the faults
        {"notalibrary.so", nullptr, 0, false, false},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.file);
        const std::string path = kFolders + "faults/" + c.file;
        EXPECT_EQ(Loaded(path) != nullptr, c.loaded);
        EXPECT_EQ(IsModuleLoaded(Wide(path).c_str()), c.loaded ? 1 : 0);
        if (!c.filterKey)
            continue;
        EXPECT_EQ(CPluginFilter::FindPlugin(c.filterKey) != nullptr, c.started);
        EXPECT_EQ(CPlugin::GetModuleHandleW(c.id) != nullptr, c.started);
        // noinit.so has no counter at all.
        EXPECT_EQ(InitCalls(path), c.started ? 1 : c.file == std::string("noinit.so") ? -1 : 0);
    }
}

TEST_F(CPluginLoad, AFolderWithoutPluginsIsToldOnce)
{
    for (const char *folder : {"empty", "no-such-folder"})
    {
        SCOPED_TRACE(folder);
        g_messages.clear();
        Walk(folder);
        ASSERT_EQ(g_messages.size(), 1u);
        EXPECT_EQ(g_messages[0], Text(L"IDD_DM_MB_TEXT1"));
    }
}

TEST_F(CPluginLoad, TheDefaultFolderIsPlugInsBesideTheModule)
{
    char *self = ::realpath("/proc/self/exe", nullptr);
    ASSERT_NE(self, nullptr);
    std::string folder(self);
    std::free(self);
    folder.erase(folder.rfind('/'));
    folder += "/PlugIns";
    EXPECT_EQ(CPlugin::GetPluginFolder().ToUtf8(), folder);

    CPlugin::Initialize();
    EXPECT_TRUE(g_messages.empty());
    EXPECT_EQ(static_cast<void *>(CPlugin::GetModuleHandleW(30)), Loaded(folder + "/beside.so"));
    EXPECT_NE(CPlugin::GetModuleHandleW(30), nullptr);
    std::unique_ptr<LCBase> filter(CPluginFilter::CreateFilter("Beside"));
    EXPECT_NE(filter, nullptr);
}

TEST_F(CPluginLoad, BadNamesGiveAMessageOrNothingButNeverACrash)
{
    std::wstring missing = L"no-such-plugin.so";
    EXPECT_EQ(CPlugin::InitPlugin(missing.data()), 0);
    ASSERT_EQ(g_messages.size(), 1u);
    EXPECT_TRUE(StartsWith(g_messages[0], Text(L"IDD_DM_MB_TEXT2")));
    EXPECT_EQ(CPlugin::InitPlugin(nullptr), 0);
    EXPECT_EQ(g_messages.size(), 2u);

    EXPECT_EQ(CPlugin::FreePlugin(missing.data()), 1);
    EXPECT_EQ(CPlugin::FreePlugin(nullptr), 1);
    EXPECT_EQ(IsModuleLoaded(nullptr), 0);
    EXPECT_EQ(IsModuleLoaded(L""), 0);
    EXPECT_EQ(IsModuleLoaded(missing.c_str()), 0);
}

TEST_F(CPluginLoad, FreeingDropsOnlyTheLoadsThePluginLoaderTook)
{
    // A library the program needs, freed by its full name as often as one
    // likes: the loader never took it, so nothing happens to it.
    Dl_info info{};
    ASSERT_NE(::dladdr(reinterpret_cast<void *>(&std::strlen), &info), 0);
    const std::wstring libc = Wide(info.dli_fname);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(CPlugin::FreePlugin(const_cast<wchar_t *>(libc.c_str())), 1);
    EXPECT_EQ(IsModuleLoaded(libc.c_str()), 1);
    EXPECT_EQ(IsModuleLoaded(L"libc.so.6"), 1);

    // A plug-in freed, even more often than it was loaded: what it
    // registered still answers, since its code stays mapped.
    WalkGoodOnce();
    MCSetPluginFolderOverride(CString::FromUtf8((kFolders + "good").c_str()));
    CPlugin::UnInitialize();
    std::wstring gamma = L"gamma.so";
    EXPECT_EQ(CPlugin::FreePlugin(gamma.data()), 1);
    EXPECT_TRUE(g_messages.empty());
    std::unique_ptr<LCBase> filter(CPluginFilter::CreateFilter("Gamma"));
    ASSERT_NE(filter, nullptr);
    EXPECT_STREQ(filter->GetRuntimeClass()->m_lpszClassName, "GammaFilter");
    std::unique_ptr<MCFileReader> reader(CPluginFileReader::CreateReader(2));
    EXPECT_NE(reader, nullptr);
}
