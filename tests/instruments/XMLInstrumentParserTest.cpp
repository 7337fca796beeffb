#include "instruments/InstrumentFileTestSupport.h"

#include <scoremodel/instruments/XMLInstrumentParser.h>
#include <scoremodel/platform/CommonPaths.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <algorithm>
#include <random>
#include <sys/stat.h>

using namespace instrumenttest;

namespace
{
const std::vector<std::wstring> kShipped = {L"Guitar", L"7-String Guitar", L"Bass", L"Ukulele", L"Mandolin",
                                            L"Banjo"};

std::vector<int> Tunes(const MCInstrument &i)
{
    return std::vector<int>(i.GetTunes().begin(), i.GetTunes().end());
}

MCInstrument Make(const wchar_t *name, int strings, std::initializer_list<int> tunes)
{
    CArray<int, int> t;
    for (int v : tunes)
        t.Add(v);
    return MCInstrument(name, L"a description", strings, 12, 3, t);
}

std::string Five()
{
    std::string body;
    for (int i = 0; i < 5; ++i)
        body += InstrumentXml("I" + std::to_string(i), i + 1, {40 + i});
    return body;
}

// Files left in the user folder besides the user's file (temporaries).
std::vector<std::string> Leftovers(const std::filesystem::path &folder)
{
    std::vector<std::string> out;
    std::error_code ec;
    for (const auto &entry : std::filesystem::directory_iterator(folder, ec))
        if (entry.path().filename() != "TabInstruments.xml")
            out.push_back(entry.path().filename().string());
    return out;
}
} // namespace

using XMLInstrumentParserTest = InstrumentFileTest;

TEST_F(XMLInstrumentParserTest, WithoutAUserFileTheShippedFileIsRead)
{
    ASSERT_EQ(Parser().ParseStartFile(), 1);
    EXPECT_EQ(Names(0), kShipped);
    const MCInstrument guitar = Parser().GetInstrument(0, 0);
    EXPECT_EQ(guitar.GetStringsCount(), 6);
    EXPECT_EQ(guitar.GetFretsCount(), 24);
    EXPECT_EQ(guitar.GetFingerDistance(), 4);
    EXPECT_FALSE(guitar.GetDescription().IsEmpty());
    EXPECT_EQ(guitar.Initialized(), 1);
    EXPECT_EQ(Tunes(guitar), std::vector<int>(MCInstrument::FretsDefault, MCInstrument::FretsDefault + 6));
    EXPECT_EQ(Tunes(Parser().GetInstrument(1, 0)),
              std::vector<int>(MCInstrument::FretsDefault, MCInstrument::FretsDefault + 7));
    // Every shipped instrument has as many tunes as strings.
    for (MCInstrument *i : Parser().GetInstruments(0))
        EXPECT_EQ(i->GetTunes().GetSize(), i->GetStringsCount()) << i->GetName().ToUtf8();
    EXPECT_TRUE(Messages().empty());
}

TEST_F(XMLInstrumentParserTest, PersistWritesTheUserFileWhichWinsFromThenOn)
{
    ASSERT_EQ(Parser().ParseStartFile(), 1);
    MCInstrument lute = Make(L"Lute", 6, {67, 62, 57, 53, 48, 43});
    EXPECT_EQ(Parser().AddInstrument(lute), 6);
    ASSERT_FALSE(std::filesystem::exists(UserFile()));
    ASSERT_EQ(Parser().Persist(), 1);
    ASSERT_TRUE(std::filesystem::exists(UserFile()));
    EXPECT_TRUE(Leftovers(m_user).empty());

    ASSERT_EQ(Parser().ParseStartFile(), 1);
    std::vector<std::wstring> expected = kShipped;
    expected.push_back(L"Lute");
    EXPECT_EQ(Names(0), expected);
    // The shipped instruments keep their descriptions; the added one has lost
    // its own, as written instruments do.
    EXPECT_FALSE(Parser().GetInstrument(0, 0).GetDescription().IsEmpty());
    const MCInstrument back = Parser().GetInstrument(6, 0);
    EXPECT_FALSE(back == lute); // the distance was not written
    EXPECT_TRUE(back.GetDescription().IsEmpty());
    EXPECT_EQ(back.GetFingerDistance(), -1);
    EXPECT_EQ(back.GetFretsCount(), 12);
    EXPECT_EQ(Tunes(back), Tunes(lute));
}

TEST_F(XMLInstrumentParserTest, CacheLagsBehindEditsUntilRefreshed)
{
    ASSERT_EQ(LoadBody(Five()), 1);
    MCInstrument extra = Make(L"Extra", 1, {50});
    EXPECT_EQ(Parser().AddInstrument(extra), 5);
    EXPECT_EQ(Parser().AddInstrument(extra), 5); // still the cached count
    EXPECT_EQ(Parser().GetInstruments(0).GetSize(), 5);
    EXPECT_EQ(Parser().GetInstrumentNameList(0).GetSize(), 5);
    EXPECT_EQ(Parser().GetInstruments(1).GetSize(), 7);
    EXPECT_EQ(Parser().GetInstrumentNameList(0).GetAt(6), L"Extra");

    EXPECT_EQ(Parser().DelInstrument(5), 1);
    EXPECT_EQ(Parser().GetInstruments(0).GetSize(), 7);
    EXPECT_EQ(Parser().GetInstruments(1).GetSize(), 6);
}

TEST_F(XMLInstrumentParserTest, OutOfRangeIndexesGiveInitialValuesOrNothing)
{
    ASSERT_EQ(LoadBody(Five()), 1);
    for (int index : {99, 5, -1, INT_MIN})
    {
        const MCInstrument none = Parser().GetInstrument(index, 0);
        EXPECT_EQ(none.GetStringsCount(), -1) << index;
        EXPECT_EQ(none.GetFretsCount(), -1) << index;
        EXPECT_EQ(none.GetFingerDistance(), -1) << index;
        EXPECT_EQ(Parser().DelInstrument(index), 0) << index;
        EXPECT_EQ(Parser().EditInstrument(index, Make(L"X", 1, {1})), 0) << index;
    }
    EXPECT_EQ(Parser().GetInstruments(1).GetSize(), 5);
}

TEST_F(XMLInstrumentParserTest, EditKeepsThePlaceAndDropsDescriptionAndDistance)
{
    ASSERT_EQ(LoadBody(InstrumentXml("A", 1, {40}) +
                       "<instrument><name>B</name><description>kept?</description><distance>5</distance>"
                       "<strings>2</strings><tune><frequency>41</frequency><frequency>42</frequency></tune>"
                       "</instrument>" +
                       InstrumentXml("C", 1, {43})),
              1);
    const MCInstrument read = Parser().GetInstrument(1, 0);
    EXPECT_EQ(read.GetDescription(), L"kept?");
    EXPECT_EQ(read.GetFingerDistance(), 5);

    MCInstrument edited = Make(L"B2", 3, {1, 2, 3});
    edited.SetDescription(L"new text");
    EXPECT_EQ(Parser().EditInstrument(1, edited), 1);
    EXPECT_EQ(Names(0), (std::vector<std::wstring>{L"A", L"B", L"C"}));
    EXPECT_EQ(Names(1), (std::vector<std::wstring>{L"A", L"B2", L"C"}));
    const MCInstrument back = Parser().GetInstrument(1, 0);
    EXPECT_TRUE(back.GetDescription().IsEmpty());
    EXPECT_EQ(back.GetFingerDistance(), -1);
    EXPECT_EQ(back.GetStringsCount(), 3);
    EXPECT_EQ(Tunes(back), (std::vector<int>{1, 2, 3}));
}

// Elements other than "instrument" under the root are skipped when reading,
// and an index of the cache still names the element it was read from.
TEST_F(XMLInstrumentParserTest, ForeignElementsNeitherCountNorMove)
{
    ASSERT_EQ(LoadBody("<sound>piano</sound>" + InstrumentXml("A", 1, {40}) + "<!-- note --><group/>" +
                       InstrumentXml("B", 1, {41}) + "text" + InstrumentXml("C", 1, {42})),
              1);
    EXPECT_EQ(Names(0), (std::vector<std::wstring>{L"A", L"B", L"C"}));
    EXPECT_EQ(Parser().DelInstrument(1), 1);
    EXPECT_EQ(Names(1), (std::vector<std::wstring>{L"A", L"C"}));
    EXPECT_EQ(Parser().EditInstrument(1, Make(L"C2", 1, {1})), 1);
    EXPECT_EQ(Names(1), (std::vector<std::wstring>{L"A", L"C2"}));
    ASSERT_EQ(Parser().Persist(), 1);
    const std::string saved = ReadAll(UserFile());
    EXPECT_NE(saved.find("<sound>piano</sound>"), std::string::npos);
    EXPECT_NE(saved.find("<group"), std::string::npos);
}

TEST_F(XMLInstrumentParserTest, DeletionNeedsTheCachedInstrument)
{
    ASSERT_EQ(LoadBody(Five()), 1);
    MCInstrument added = Make(L"New", 1, {1});
    Parser().AddInstrument(added);
    EXPECT_EQ(Parser().DelInstrument(5), 0); // not in the cache yet
    EXPECT_EQ(Parser().DelInstrument(0), 1);
    // The cache still says I0 is at 0, the document now holds I1 there.
    EXPECT_EQ(Parser().DelInstrument(0), 1);
    EXPECT_EQ(Names(1), (std::vector<std::wstring>{L"I2", L"I3", L"I4", L"New"}));
}

TEST_F(XMLInstrumentParserTest, DecimalTextsReadLikeThePlatform)
{
    const struct
    {
        const char *text;
        int value;
    } cases[] = {{"12", 12},           {"  7", 7},        {"\n\t-3", -3}, {"+5", 5},
                 {"12abc", 12},        {"abc", 0},        {"", 0},        {"0x10", 0},
                 {"99999999999", INT_MAX}, {"-99999999999", INT_MIN}, {"2147483647", INT_MAX},
                 {"-2147483648", INT_MIN}, {"- 4", 0},    {"1 2", 1}};
    std::string body;
    for (const auto &c : cases)
        body += std::string("<instrument><strings>") + c.text + "</strings><frets>" + c.text +
                "</frets><distance>" + c.text + "</distance><tune><frequency>" + c.text +
                "</frequency></tune></instrument>";
    ASSERT_EQ(LoadBody(body), 1);
    ASSERT_EQ(Parser().GetInstruments(0).GetSize(), static_cast<INT_PTR>(std::size(cases)));
    for (size_t k = 0; k < std::size(cases); ++k)
    {
        const MCInstrument i = Parser().GetInstrument(static_cast<int>(k), 0);
        EXPECT_EQ(i.GetStringsCount(), cases[k].value) << cases[k].text;
        EXPECT_EQ(i.GetFretsCount(), cases[k].value) << cases[k].text;
        EXPECT_EQ(i.GetFingerDistance(), cases[k].value) << cases[k].text;
        EXPECT_EQ(Tunes(i), std::vector<int>{cases[k].value}) << cases[k].text;
    }
}

TEST_F(XMLInstrumentParserTest, InstrumentWithoutFieldsIsStillListed)
{
    ASSERT_EQ(LoadBody("<instrument/><instrument><name>Ünïcødé ✓</name><tune/></instrument>"), 1);
    EXPECT_EQ(Names(0), (std::vector<std::wstring>{L"", L"Ünïcødé ✓"}));
    EXPECT_EQ(Parser().GetInstrument(0, 0).Initialized(), 0); // no tune element
    EXPECT_EQ(Parser().GetInstrument(1, 0).Initialized(), 1); // an empty one
}

// Unreadable and damaged files: the right message, an empty list, and a
// parser that still takes, lists and saves instruments.
TEST_F(XMLInstrumentParserTest, BadFilesShowTheirMessageAndLeaveAUsableEmptyList)
{
    const std::filesystem::path folder = m_dir / "afolder";
    std::filesystem::create_directories(folder);
    const struct
    {
        const char *what;
        std::string content; // written to the file unless "missing" or "folder"
        const wchar_t *text;
    } cases[] = {
        {"missing", "", L"The instrument file could not be loaded."},
        {"folder", "", L"The instrument file could not be loaded."},
        {"empty", "", L"The instrument file could not be read completely; it may be damaged."},
        {"cut", "<instruments><instrument><name>A</name>", L"The instrument file could not be read completely; it may be damaged."},
        {"two roots", "<a/><b/>", L"The instrument file could not be read completely; it may be damaged."},
        {"binary", std::string("\x00\xff\xfe\x01<", 5), L"The instrument file could not be read completely; it may be damaged."},
        {"bad tag", "<instruments><instrument></tune></instruments>", L"The instrument file could not be read completely; it may be damaged."},
    };
    for (const auto &c : cases)
    {
        SCOPED_TRACE(c.what);
        ASSERT_EQ(LoadBody(Five()), 1);
        Messages().clear();
        std::filesystem::path file = m_dir / "bad.xml";
        if (std::string(c.what) == "folder")
            file = folder;
        else if (std::string(c.what) == "missing")
            file = m_dir / "nothing-here.xml";
        else
            WriteAll(file, c.content);
        EXPECT_EQ(Parser().ParseXMLFromFile(CString::FromUtf8(file.c_str())), 0);
        ASSERT_EQ(Messages().size(), 1u);
        EXPECT_EQ(Messages()[0], c.text);
        EXPECT_EQ(Parser().GetInstruments(0).GetSize(), 0);
        EXPECT_EQ(Parser().GetInstruments(1).GetSize(), 0);
        MCInstrument one = Make(L"One", 1, {60});
        EXPECT_EQ(Parser().AddInstrument(one), 0);
        EXPECT_EQ(Names(1), std::vector<std::wstring>{L"One"});
    }
    EXPECT_EQ(Parser().ParseXMLFromFile(nullptr), 0);
    EXPECT_EQ(Parser().ParseXMLFromFile(L""), 0);
}

// The writer fails at each of its steps in turn: the save reports it, the
// previous user file keeps every byte, and no temporary file is left.
TEST_F(XMLInstrumentParserTest, FailedSaveLeavesThePreviousFileIntact)
{
    ASSERT_EQ(LoadBody(Five()), 1);
    ASSERT_EQ(Parser().Persist(), 1);
    const std::string before = ReadAll(UserFile());
    ASSERT_FALSE(before.empty());
    MCInstrument added = Make(L"Added", 2, {1, 2});
    Parser().AddInstrument(added);

    for (InstrumentPersistFault fault : {InstrumentPersistFault::CreateTemporary, InstrumentPersistFault::WriteHalf,
                                         InstrumentPersistFault::Sync, InstrumentPersistFault::Rename})
    {
        SCOPED_TRACE(static_cast<int>(fault));
        Messages().clear();
        SetInstrumentPersistFault(fault);
        EXPECT_EQ(Parser().Persist(), 0);
        EXPECT_EQ(ReadAll(UserFile()), before);
        EXPECT_TRUE(Leftovers(m_user).empty());
        ASSERT_EQ(Messages().size(), 1u);
        EXPECT_EQ(Messages()[0], L"The file " + CString::FromUtf8(UserFile().c_str()).Str() + L" could not be saved.");
    }
    SetInstrumentPersistFault(InstrumentPersistFault::None);
    ASSERT_EQ(Parser().Persist(), 1);
    ASSERT_EQ(Parser().ParseStartFile(), 1);
    EXPECT_EQ(Names(0).size(), 6u);
}

TEST_F(XMLInstrumentParserTest, SaveFailsCleanlyWhereNoFolderCanBe)
{
    const std::filesystem::path blocker = m_dir / "plainfile";
    WriteAll(blocker, "x");
    ::setenv("SCOREMODEL_USER_DIR", (blocker / "sub").c_str(), 1);
    ASSERT_EQ(LoadBody(Five()), 1);
    EXPECT_EQ(Parser().Persist(), 0);
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_NE(Messages()[0].find(L"could not be saved"), std::wstring::npos);
    EXPECT_EQ(ReadAll(blocker), "x");
}

// Random adds, deletes, edits and refreshes against a plain model of the
// list; after every refresh, and after a save and a new start, the cache
// must equal the model.
TEST_F(XMLInstrumentParserTest, RandomEditsMatchAModel)
{
    std::mt19937 rng(2113);
    for (int round = 0; round < 20; ++round)
    {
        ASSERT_EQ(LoadBody(Five()), 1);
        std::vector<MCInstrument> model;
        for (MCInstrument *i : Parser().GetInstruments(0))
            model.push_back(*i);
        std::vector<MCInstrument> cached = model;
        for (int step = 0; step < 40; ++step)
        {
            const int op = static_cast<int>(rng() % 4);
            const int index = static_cast<int>(rng() % (cached.size() + 2)) - 1;
            const std::wstring name = L"N" + std::to_wstring(rng() % 1000);
            MCInstrument i = Make(name.c_str(), static_cast<int>(rng() % 8), {static_cast<int>(rng() % 127)});
            if (op == 0)
            {
                EXPECT_EQ(Parser().AddInstrument(i), static_cast<int>(cached.size()));
                MCInstrument written = i;
                written.SetFingerDistance(-1);
                model.push_back(written);
            }
            else if (op == 1)
            {
                // The cache decides whether it goes; the document position
                // decides which element does.
                const bool known = index >= 0 && index < static_cast<int>(cached.size());
                const bool removable = known && index < static_cast<int>(model.size());
                EXPECT_EQ(Parser().DelInstrument(index), removable ? 1 : 0);
                if (removable)
                    model.erase(model.begin() + index);
            }
            else if (op == 2)
            {
                const bool present = index >= 0 && index < static_cast<int>(model.size());
                EXPECT_EQ(Parser().EditInstrument(index, i), present ? 1 : 0);
                if (present)
                {
                    model[index] = i;
                    model[index].SetFingerDistance(-1);
                }
            }
            else
            {
                cached.clear();
                for (MCInstrument *c : Parser().GetInstruments(1))
                    cached.push_back(*c);
                ASSERT_EQ(cached.size(), model.size());
                for (size_t k = 0; k < model.size(); ++k)
                    ASSERT_TRUE(cached[k] == model[k]) << k;
            }
        }
        ASSERT_EQ(Parser().Persist(), 1);
        ASSERT_EQ(Parser().ParseStartFile(), 1);
        ASSERT_EQ(Parser().GetInstruments(0).GetSize(), static_cast<INT_PTR>(model.size()));
        for (size_t k = 0; k < model.size(); ++k)
            ASSERT_TRUE(Parser().GetInstrument(static_cast<int>(k), 0) == model[k]) << k;
    }
}

// The saved file read by a reader that shares no code with this library.
TEST_F(XMLInstrumentParserTest, SavedFileIsReadAlikeByAnIndependentParser)
{
    if (std::system("python3 -c 'import xml.etree.ElementTree' >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "python3 with xml.etree is not installed";
    ASSERT_EQ(Parser().ParseStartFile(), 1);
    MCInstrument odd = Make(L"A&B <\"quoted\"> ✓", 2, {-1, 200});
    Parser().AddInstrument(odd);
    ASSERT_EQ(Parser().Persist(), 1);
    const std::filesystem::path out = m_dir / "independent.txt";
    const std::string command =
        "python3 -c \"import sys, xml.etree.ElementTree as E\n"
        "r = E.parse(sys.argv[1]).getroot()\n"
        "with open(sys.argv[2], 'w', encoding='utf-8') as o:\n"
        "  for i in r.findall('instrument'):\n"
        "    o.write(i.findtext('name') + '|' + i.findtext('strings') + '|' + "
        "','.join(f.text for f in i.find('tune').findall('frequency')) + '\\n')\" '" +
        UserFile().string() + "' '" + out.string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::string expected;
    for (MCInstrument *i : Parser().GetInstruments(1))
    {
        expected += i->GetName().ToUtf8() + "|" + std::to_string(i->GetStringsCount()) + "|";
        for (INT_PTR k = 0; k < i->GetTunes().GetSize(); ++k)
            expected += (k ? "," : "") + std::to_string(i->GetTunes()[k]);
        expected += "\n";
    }
    EXPECT_EQ(ReadAll(out), expected);
    EXPECT_NE(expected.find("A&B <\"quoted\"> ✓|2|-1,200"), std::string::npos);
}
