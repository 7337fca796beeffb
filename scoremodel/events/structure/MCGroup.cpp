#include <scoremodel/events/structure/MCGroup.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

#include <algorithm>

static_assert(sizeof(MCGroup::tag_group) == 4, "a group record is 4 bytes in the archive");

MCGroup::MCGroup() = default;

MCGroup::~MCGroup() = default;

MCGroup::tag_group MCGroup::MakeRecord(int first, int last, int kind, int id)
{
    tag_group record{static_cast<BYTE>(first), static_cast<BYTE>(last), 0};
    record.SetKind(kind);
    record.SetInUse(1);
    record.SetId(id);
    return record;
}

void MCGroup::CleanTable(GroupTable &table)
{
    for (INT_PTR i = table.GetSize() - 1; i >= 0; --i)
        if (!table[i].InUse())
            table.RemoveAt(i);
}

void MCGroup::UpdateFrom(GroupTable &table, INT_PTR index, int delta)
{
    for (INT_PTR i = index; i < table.GetSize(); ++i)
    {
        table[i].first = static_cast<BYTE>(std::clamp(table[i].first + delta, 0, 255));
        table[i].last = static_cast<BYTE>(std::clamp(table[i].last + delta, 0, 255));
    }
}

int MCGroup::GetNextAvailableID()
{
    bool used[256] = {};
    for (GroupTable *table : {&m_primary, &m_secondary})
        for (INT_PTR i = 0; i < table->GetSize(); ++i)
            if ((*table)[i].InUse())
                used[(*table)[i].Id()] = true;
    for (int id = 0; id < 256; ++id)
        if (!used[id])
            return id;
    return -1;
}

MCGroup::tag_group *MCGroup::Find(int id)
{
    for (GroupTable *table : {&m_primary, &m_secondary})
        for (INT_PTR i = 0; i < table->GetSize(); ++i)
            if ((*table)[i].InUse() && (*table)[i].Id() == id)
                return &(*table)[i];
    return nullptr;
}

void MCGroup::InsertTrack(int track, BYTE kind)
{
    CleanTable(m_primary);
    CleanTable(m_secondary);
    bool first = true;
    for (GroupTable *table : {&m_primary, &m_secondary})
    {
        for (INT_PTR i = 0; i < table->GetSize(); ++i)
        {
            tag_group &record = (*table)[i];
            if (record.first >= track)
            {
                // This record and all behind it (the table is in track
                // order) move up.
                const bool startsHere = record.first == track;
                UpdateFrom(*table, i, 1);
                if (first && startsHere)
                {
                    const int id = GetNextAvailableID();
                    if (id >= 0)
                        table->InsertAt(i, MakeRecord(track, track, kind, id));
                }
                break;
            }
            if (record.last >= track && record.last < 255)
                ++record.last;
        }
        first = false;
    }
}

void MCGroup::RemoveTrack(int track)
{
    CleanTable(m_primary);
    CleanTable(m_secondary);
    for (GroupTable *table : {&m_primary, &m_secondary})
        for (INT_PTR i = table->GetSize() - 1; i >= 0; --i)
        {
            tag_group &record = (*table)[i];
            if (record.first == track && record.last == track)
                table->RemoveAt(i);
            else if (record.first > track)
            {
                --record.first;
                --record.last;
            }
            else if (record.last >= track && record.last > record.first)
                --record.last;
        }
}

int MCGroup::Relation(int first, int last)
{
    bool crossed = false;
    bool partial = false;
    bool partialKindOne = false;
    for (INT_PTR i = 0; i < m_primary.GetSize(); ++i)
    {
        const tag_group &record = m_primary[i];
        if (!record.InUse() || record.Kind() == 2)
            continue;
        const bool fromBelow = record.first < first && record.last >= first;
        const bool toAbove = record.first >= first && record.first <= last && record.last > last;
        if (!fromBelow && !toAbove)
            continue;
        crossed = true;
        if (!(record.first <= first && record.last >= last))
        {
            partial = true;
            partialKindOne = partialKindOne || record.Kind() == 1;
        }
    }
    if (!crossed)
        return 4;
    if (!partial)
        return 0;
    return partialKindOne ? 3 : 1;
}

void MCGroup::InsertInOrder(GroupTable &table, const tag_group &record)
{
    // Tables stay in order of first track, so InsertTrack can stop at the
    // first record behind the track.
    INT_PTR at = 0;
    while (at < table.GetSize() && table[at].first <= record.first)
        ++at;
    table.InsertAt(at, record);
}

int MCGroup::GroupPrimary(int first, int last, BYTE kind, int &id)
{
    const int newId = GetNextAvailableID();
    if (newId < 0)
        return 0;
    // A kind-2 group draws no bracket, so it pushes nothing aside.
    if (kind != 2)
        PromoteToSecondary(first, last);
    InsertInOrder(m_primary, MakeRecord(first, last, kind, newId));
    id = newId;
    return 1;
}

int MCGroup::GroupSecondary(int first, int last, BYTE kind, int &id)
{
    const int newId = GetNextAvailableID();
    if (newId < 0)
        return 0;
    InsertInOrder(m_secondary, MakeRecord(first, last, kind, newId));
    id = newId;
    return 1;
}

void MCGroup::PromoteToSecondary(int first, int last)
{
    for (INT_PTR i = m_primary.GetSize() - 1; i >= 0; --i)
    {
        const tag_group record = m_primary[i];
        if (!record.InUse() || record.Kind() == 2)
            continue;
        const bool overlaps = record.first <= last && record.last >= first;
        const bool holds = record.first <= first && record.last >= last;
        const bool inside = record.first >= first && record.last <= last;
        if (overlaps && !holds && !inside)
        {
            m_primary.RemoveAt(i);
            InsertInOrder(m_secondary, record);
        }
    }
}

int MCGroup::GroupTracks(int first, int last, BYTE kind, int &id)
{
    if (last < first || first < 0 || last > 255)
        return 0;
    const int relation = Relation(first, last);
    if (relation == 4 || (relation == 1 && kind != 1))
        return GroupPrimary(first, last, kind, id);
    if (relation == 0 || (relation == 3 && kind == 1))
        return GroupSecondary(first, last, kind, id);
    return 0;
}

int MCGroup::GetGroupInfo(int id, int &first, int &last, int &kind)
{
    const tag_group *record = Find(id);
    if (!record)
        return 0;
    first = record->first;
    last = record->last;
    kind = record->Kind();
    return 1;
}

void MCGroup::SetBarEntireGroup(int id, int on)
{
    if (tag_group *record = Find(id))
        record->SetBarEntire(on);
}

int MCGroup::IsBarEntireGroup(int id)
{
    const tag_group *record = Find(id);
    return record ? record->BarEntire() : 0;
}

int MCGroup::RemoveGroup(int id)
{
    for (GroupTable *table : {&m_primary, &m_secondary})
        for (INT_PTR i = 0; i < table->GetSize(); ++i)
            if ((*table)[i].InUse() && (*table)[i].Id() == id)
            {
                table->RemoveAt(i);
                return 1;
            }
    return 0;
}

void MCGroup::RemoveAll()
{
    m_primary.RemoveAll();
    m_secondary.RemoveAll();
}

void MCGroup::Serialize(CArchive &ar)
{
    if (ar.IsStoring())
    {
        for (GroupTable *table : {&m_primary, &m_secondary})
        {
            ar.WriteCount(table->GetSize());
            for (INT_PTR i = 0; i < table->GetSize(); ++i)
            {
                const tag_group &record = (*table)[i];
                const BYTE raw[4] = {record.first, record.last, static_cast<BYTE>(record.bits & 0xFF),
                                     static_cast<BYTE>(record.bits >> 8)};
                ar.Write(raw, 4);
            }
        }
        return;
    }
    const bool old = ActiveArchiveVersion() < ArchiveVersionAttachmentSlots;
    int nextId = 0;
    for (GroupTable *table : {&m_primary, &m_secondary})
    {
        table->RemoveAll();
        const DWORD_PTR count = ar.ReadCount();
        // Grown record by record: a damaged count runs out of bytes (an
        // archive error) long before it could exhaust the memory.
        for (DWORD_PTR i = 0; i < count; ++i)
        {
            BYTE raw[4];
            ar.Read(raw, 4);
            tag_group record{raw[0], raw[1], static_cast<WORD>(raw[2] | (raw[3] << 8))};
            if (old)
            {
                record.SetBarEntire(1);
                record.SetId(nextId++);
            }
            table->Add(record);
        }
    }
}
