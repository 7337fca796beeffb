// ECVideo: a video on the conductor staff.
//
// The video plays a stretch of a video file (MCMediaFile); a new one names
// no file. operator= copies the file.
//
// Archive record (schema 3): that of ECBase, then the file (MCMediaFile
// record). Records of schema 2 end after the ECBase part.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/media/MCMediaFile.h>

class SCOREMODEL_API ECVideo : public ECBase
{
    DECLARE_SERIAL(ECVideo)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 70.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    const MCMediaFile &GetMediaFile() const { return m_file; }
    void SetMediaFile(const MCMediaFile &file) { m_file = file; }

    ECVideo &operator=(const ECVideo &other)
    {
        ECBase::operator=(other);
        m_file = other.m_file;
        return *this;
    }
    int operator==(const ECVideo &other) const { return ECBase::operator==(other) && m_file == other.m_file; }
    int operator!=(const ECVideo &other) const { return !(*this == other); }

protected:
    ~ECVideo() override;

    MCMediaFile m_file;
};
