// Small serializable classes for the archive fuzz target and for the test that
// writes its seed corpus. Include this header in exactly one source of a
// program: it implements the classes.
//
// The graph they form exercises what a document does: a node owns a list of
// children of any class, may point at any object (itself, an ancestor, a
// sibling: shared and cyclic references), and carries strings and counts.
// Nothing here owns anything: a loader frees every object the archive
// created, whatever the graph looks like.
#pragma once

#include <scoremodel/platform/CArchive.h>

#include <vector>

// The expected class of every reference; not serializable itself.
class FuzzItem : public CObject
{
    DECLARE_DYNAMIC(FuzzItem)
};
IMPLEMENT_DYNAMIC(FuzzItem, CObject)

// A leaf of plain fields. Versionable: schema 1 had no name, schema 2 adds it.
class FuzzLeaf : public FuzzItem
{
    DECLARE_SERIAL(FuzzLeaf)
public:
    BYTE m_b = 0;
    WORD m_w = 0;
    DWORD m_dw = 0;
    double m_d = 0;
    CString m_name;

    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
        {
            ar << m_b << m_w << m_dw << m_d << m_name;
            return;
        }
        const UINT schema = ar.GetObjectSchema();
        ar >> m_b >> m_w >> m_dw >> m_d;
        if (schema >= 2)
            ar >> m_name;
    }
};
IMPLEMENT_SERIAL(FuzzLeaf, FuzzItem, VERSIONABLE_SCHEMA | 2)

// A node with a counted list of children, a free reference and a tag.
class FuzzNode : public FuzzItem
{
    DECLARE_SERIAL(FuzzNode)
public:
    std::vector<FuzzItem *> m_children;
    FuzzItem *m_pLink = nullptr;
    CStringA m_tag;

    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
        {
            ar.WriteCount(m_children.size());
            for (FuzzItem *child : m_children)
                ar.WriteObject(child);
            ar.WriteObject(m_pLink);
            ar << m_tag;
            return;
        }
        // The count is checked against the bytes left, so reserving for it
        // can't be made to exhaust memory.
        const DWORD_PTR count = ar.ReadCount();
        m_children.reserve(count);
        for (DWORD_PTR i = 0; i < count; ++i)
            m_children.push_back(static_cast<FuzzItem *>(ar.ReadObject(RUNTIME_CLASS(FuzzItem))));
        m_pLink = static_cast<FuzzItem *>(ar.ReadObject(RUNTIME_CLASS(FuzzItem)));
        ar >> m_tag;
    }
};
IMPLEMENT_SERIAL(FuzzNode, FuzzItem, 1)

// A raw block with its length, as the model stores arrays of words.
class FuzzBlob : public FuzzItem
{
    DECLARE_SERIAL(FuzzBlob)
public:
    std::vector<DWORD> m_words;

    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
        {
            ar.WriteCount(m_words.size());
            ar.Write(m_words.data(), static_cast<UINT>(m_words.size() * sizeof(DWORD)));
            return;
        }
        const DWORD_PTR count = ar.ReadCount();
        if (count > ar.GetBytesRemaining() / sizeof(DWORD))
            throw CArchiveException(CArchiveException::endOfFile);
        m_words.resize(count);
        ar.Read(m_words.data(), static_cast<UINT>(count * sizeof(DWORD)));
    }
};
IMPLEMENT_SERIAL(FuzzBlob, FuzzItem, 1)
