// The reader, writer and filter registries with classes of the test program
// itself (the loaded plug-ins are CPluginTest's). Types and keys here are
// their own, so both files can run in one process.
#include <scoremodel/document/MCFileReader.h>
#include <scoremodel/document/MCFileWriter.h>
#include <scoremodel/events/base/LCBase.h>
#include <scoremodel/plugins/CPluginFileReader.h>
#include <scoremodel/plugins/CPluginFileWriter.h>
#include <scoremodel/plugins/CPluginFilter.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace
{
class RegReaderA : public MCFileReader
{
    DECLARE_DYNCREATE(RegReaderA)
};
class RegReaderB : public MCFileReader
{
    DECLARE_DYNCREATE(RegReaderB)
};
class RegWriterA : public MCFileWriter
{
    DECLARE_DYNCREATE(RegWriterA)
};
class RegFilterA : public LCBase
{
    DECLARE_DYNCREATE(RegFilterA)
};
class RegFilterB : public LCBase
{
    DECLARE_DYNCREATE(RegFilterB)
};
// Creatable, but of no registry's base.
class RegStranger : public CObject
{
    DECLARE_DYNCREATE(RegStranger)
};
} // namespace
IMPLEMENT_DYNCREATE(RegReaderA, MCFileReader)
IMPLEMENT_DYNCREATE(RegReaderB, MCFileReader)
IMPLEMENT_DYNCREATE(RegWriterA, MCFileWriter)
IMPLEMENT_DYNCREATE(RegFilterA, LCBase)
IMPLEMENT_DYNCREATE(RegFilterB, LCBase)
IMPLEMENT_DYNCREATE(RegStranger, CObject)

namespace
{
const char *ClassOf(CObject *object)
{
    return object ? object->GetRuntimeClass()->m_lpszClassName : "(null)";
}
} // namespace

TEST(CPluginFileRegistry, TheFirstReaderOfATypeAnswersUntilItIsRemoved)
{
    CPluginFileReader a(501, RUNTIME_CLASS(RegReaderA)), b(501, RUNTIME_CLASS(RegReaderB));
    CPluginFileReader::AddPlugin(nullptr);
    CPluginFileReader::AddPlugin(&a);
    CPluginFileReader::AddPlugin(&b);
    std::unique_ptr<MCFileReader> first(CPluginFileReader::CreateReader(501));
    EXPECT_STREQ(ClassOf(first.get()), "RegReaderA");

    CPluginFileReader::RemovePlugin(&a);
    std::unique_ptr<MCFileReader> second(CPluginFileReader::CreateReader(501));
    EXPECT_STREQ(ClassOf(second.get()), "RegReaderB");
    CPluginFileReader::RemovePlugin(&b);
    CPluginFileReader::RemovePlugin(&b); // twice: nothing left to take out
    EXPECT_EQ(CPluginFileReader::CreateReader(501), nullptr);
}

TEST(CPluginFileRegistry, AnEntryThatCannotMakeItsKindGivesNullAndHidesTheNext)
{
    // Only the first entry of a type ever answers, even when it fails.
    struct Case
    {
        CRuntimeClass *cls;
    } const cases[] = {{nullptr}, {RUNTIME_CLASS(RegStranger)}, {RUNTIME_CLASS(RegFilterA)}, {RUNTIME_CLASS(CObject)}};
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.cls ? c.cls->m_lpszClassName : "null");
        CPluginFileReader bad(502, c.cls), good(502, RUNTIME_CLASS(RegReaderA));
        CPluginFileWriter badWriter(502, c.cls);
        CPluginFileReader::AddPlugin(&bad);
        CPluginFileReader::AddPlugin(&good);
        CPluginFileWriter::AddPlugin(&badWriter);
        EXPECT_EQ(CPluginFileReader::CreateReader(502), nullptr);
        EXPECT_EQ(CPluginFileWriter::CreateWriter(502), nullptr);
        CPluginFileReader::RemovePlugin(&bad);
        CPluginFileReader::RemovePlugin(&good);
        CPluginFileWriter::RemovePlugin(&badWriter);
    }
}

TEST(CPluginFileRegistry, WritersAreKeptApartFromReaders)
{
    CPluginFileWriter w(503, RUNTIME_CLASS(RegWriterA));
    CPluginFileWriter::AddPlugin(&w);
    std::unique_ptr<MCFileWriter> writer(CPluginFileWriter::CreateWriter(503));
    EXPECT_STREQ(ClassOf(writer.get()), "RegWriterA");
    EXPECT_EQ(CPluginFileReader::CreateReader(503), nullptr);
    CPluginFileWriter::RemovePlugin(&w);
    EXPECT_EQ(CPluginFileWriter::CreateWriter(503), nullptr);
}

// Filter entries stay registered for the process: static, as in a plug-in.
TEST(CPluginFilterRegistry, TheFirstFilterOfAKeyStaysAndRemovingDoesNothing)
{
    static CPluginFilter first(RUNTIME_CLASS(RegFilterA), "RegistryTest.Key");
    static CPluginFilter second(RUNTIME_CLASS(RegFilterB), "RegistryTest.Key");
    CPluginFilter::AddPlugin(&first);
    CPluginFilter::AddPlugin(&second);
    CPluginFilter::AddPlugin(nullptr);
    EXPECT_EQ(CPluginFilter::FindPlugin("RegistryTest.Key"), &first);
    std::unique_ptr<LCBase> filter(CPluginFilter::CreateFilter("RegistryTest.Key"));
    EXPECT_STREQ(ClassOf(filter.get()), "RegFilterA");
    // The second entry was never entered, so it cannot be found by class.
    EXPECT_EQ(CPluginFilter::FindPlugin(RUNTIME_CLASS(RegFilterB)), nullptr);
    EXPECT_EQ(CPluginFilter::FindPlugin(RUNTIME_CLASS(RegFilterA)), &first);

    CPluginFilter::RemovePlugin(&first);
    EXPECT_EQ(CPluginFilter::FindPlugin("RegistryTest.Key"), &first);
    EXPECT_EQ(CPluginFilter::FindPlugin(static_cast<const char *>(nullptr)), nullptr);
    EXPECT_EQ(CPluginFilter::FindPlugin("RegistryTest.Missing"), nullptr);
    EXPECT_EQ(CPluginFilter::CreateFilter("RegistryTest.Missing"), nullptr);
    EXPECT_EQ(CPluginFilter::FindPlugin(static_cast<CRuntimeClass *>(nullptr)), nullptr);
}

TEST(CPluginFilterRegistry, KeysAreCutAt51CharactersAndCodesStartAtZero)
{
    const std::string longKey = "RegistryTest." + std::string(60, 'k');
    static CPluginFilter entry(RUNTIME_CLASS(RegFilterB), longKey.c_str());
    EXPECT_EQ(std::string(entry.GetFilterClassKey()), longKey.substr(0, 51));
    EXPECT_EQ(entry.GetFilterCode(), 0u);
    EXPECT_EQ(entry.GetFilterClass(), RUNTIME_CLASS(RegFilterB));
    CPluginFilter::AddPlugin(&entry);
    EXPECT_EQ(CPluginFilter::FindPlugin(longKey.substr(0, 51).c_str()), &entry);
    EXPECT_EQ(CPluginFilter::FindPlugin(longKey.c_str()), nullptr);

    const CPluginFilter blank, nullKey(nullptr, nullptr);
    EXPECT_STREQ(blank.GetFilterClassKey(), "");
    EXPECT_STREQ(nullKey.GetFilterClassKey(), "");
    EXPECT_EQ(blank.GetFilterClass(), nullptr);

    // Every entry has code 0, so a lookup by code gives some registered
    // entry and makes a filter of its class.
    CPluginFilter *byCode = CPluginFilter::FindPlugin(0u);
    ASSERT_NE(byCode, nullptr);
    std::unique_ptr<LCBase> filter(CPluginFilter::CreateFilter(0u));
    EXPECT_NE(filter, nullptr);
    EXPECT_EQ(CPluginFilter::FindPlugin(77u), nullptr);
    EXPECT_EQ(CPluginFilter::CreateFilter(77u), nullptr);
}

TEST(CPluginFilterRegistry, AFilterEntryOfTheWrongClassMakesNothing)
{
    static CPluginFilter stranger(RUNTIME_CLASS(RegStranger), "RegistryTest.Stranger");
    static CPluginFilter empty(nullptr, "RegistryTest.Empty");
    CPluginFilter::AddPlugin(&stranger);
    CPluginFilter::AddPlugin(&empty);
    EXPECT_EQ(CPluginFilter::CreateFilter("RegistryTest.Stranger"), nullptr);
    EXPECT_EQ(CPluginFilter::CreateFilter("RegistryTest.Empty"), nullptr);
}
