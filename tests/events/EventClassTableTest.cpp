// Every event class against the id table: which ids the registry serves, and
// for each class its id, its base chain and the parents it declares.
#include "events/EventClassTable.h"

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventRegistry.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
// The chain of class names from `name` up to CObject, by the table.
std::vector<std::string> TableChain(const char *name)
{
    std::vector<std::string> chain;
    while (name)
    {
        chain.emplace_back(name);
        const EventClassRow *row = FindEventClassRow(name);
        name = row ? row->base : (chain.back() == "CObject" ? nullptr : "CObject");
    }
    return chain;
}

std::vector<std::string> RuntimeChain(const CRuntimeClass *cls)
{
    std::vector<std::string> chain;
    for (; cls; cls = cls->m_pBaseClass)
        chain.emplace_back(cls->m_lpszClassName);
    return chain;
}

// Checks one made event against its row; the event is released.
void CheckEvent(const EventClassRow &row, ECBase *e)
{
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->GetEventId(), row.id);
    EXPECT_STREQ(e->GetRuntimeClass()->m_lpszClassName, row.name);
    EXPECT_EQ(RuntimeChain(e->GetRuntimeClass()), TableChain(row.name));
    EXPECT_EQ(e->GetRefCount(), 0);
    CArray<int, int> parents;
    int any = e->GetParentTypes(parents);
    std::vector<int> got(parents.GetData(), parents.GetData() + parents.GetSize());
    EXPECT_EQ(got, row.parents);
    EXPECT_EQ(any, row.parents.empty() ? 0 : 1);
    e->Ref();
    e->Unref(1);
}
} // namespace

TEST(EventClassTableTest, RegistryServesNamesAndRefusesExactlyAsTheTableSays)
{
    // Past both ends of the id range too: the lookups must not read outside
    // their table.
    for (int id = -3; id <= EVENT_ID_COUNT + 10; ++id)
    {
        SCOPED_TRACE("id " + std::to_string(id));
        const EventClassRow *row = FindEventClassRow(id);
        const char *name = GetEventClassName(id);
        if (row)
            EXPECT_STREQ(name, row->name) << "refused classes keep their name";
        else
            EXPECT_EQ(name, nullptr);
        if (!row || !row->served)
        {
            EXPECT_EQ(GetEventRuntimeClass(id), nullptr);
            EXPECT_EQ(CreateEventW(id), nullptr);
            continue;
        }
        CRuntimeClass *cls = GetEventRuntimeClass(id);
        ASSERT_NE(cls, nullptr) << row->name << " is not built into the library";
        EXPECT_EQ(cls, CRuntimeClass::FromName(row->name));
        CheckEvent(*row, CreateEventW(id));
    }
}

TEST(EventClassTableTest, RefusedClassesExistWithTheirIdBaseAndParents)
{
    // Made by their owners, never by id, but still real classes.
    for (const EventClassRow &row : EventClassRows())
    {
        if (row.served)
            continue;
        SCOPED_TRACE(row.name);
        CRuntimeClass *cls = CRuntimeClass::FromName(row.name);
        ASSERT_NE(cls, nullptr);
        CheckEvent(row, static_cast<ECBase *>(cls->CreateObject()));
    }
}
