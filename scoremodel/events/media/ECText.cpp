#include <scoremodel/events/media/ECText.h>

#include <scoremodel/events/notes/MirrorLinks.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECText, ECWithTime, VERSIONABLE_SCHEMA | 3)

namespace
{
// The schema that brought the text and its type.
constexpr UINT kSchemaTextFields = 3;
} // namespace

ECText::~ECText()
{
    RemoveMirrors();
}

void ECText::AddMirror(ECMirror *mirror)
{
    mirror_links::Add(m_mirrors, mirror, this);
}

void ECText::RemoveMirror(ECMirror *mirror)
{
    mirror_links::Remove(m_mirrors, mirror);
}

void ECText::RemoveMirrors()
{
    mirror_links::RemoveAll(m_mirrors);
}

ECText &ECText::operator=(const ECText &other)
{
    if (this != &other)
    {
        ECWithTime::operator=(other);
        m_text = other.m_text;
        m_nTextType = other.m_nTextType;
    }
    return *this;
}

int ECText::operator==(const ECText &other) const
{
    return ECWithTime::operator==(other) && m_text == other.m_text && m_nTextType == other.m_nTextType;
}

CObject *ECText::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECText)))
        *this = *static_cast<ECText *>(src);
    return this;
}

int ECText::GetEventId() const
{
    return EVENT_ID_TEXT;
}

int ECText::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}

void ECText::SetTextType(int type)
{
    if (type >= 0)
        m_nTextType = type;
}

int ECText::IsMirrorText() const
{
    return m_nTextType == kMirrorTextFirst || m_nTextType == kMirrorTextSecond;
}

void ECText::Serialize(CArchive &ar)
{
    // The stored schema is read before the base part, whose loading may read
    // other objects and so replace it. Lyrics share this schema number.
    const UINT schema = ar.IsStoring() ? kSchemaTextFields : ar.GetObjectSchema();
    ECWithTime::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << m_text << static_cast<LONG>(m_nTextType);
        return;
    }
    // No stored schema (the object was not read by ReadObject): newest.
    if (schema != static_cast<UINT>(-1) && schema < kSchemaTextFields)
        return;
    LONG type = 0;
    ar >> m_text >> type;
    m_nTextType = type < 0 ? 0 : type;
}
