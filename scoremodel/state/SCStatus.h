// SCStatus: a message and a progress report for the host's status line.
//
// A message is a text, or the id of a text of the host's resources; the
// record keeps whichever was given last. s_actionCount is the host's count
// of long actions running, which it shows as busy while above 0.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>
#include <scoremodel/state/SCBase.h>

class SCOREMODEL_API SCStatus : public SCBase
{
public:
    explicit SCStatus(unsigned int code = 0) : SCBase(code) {}

    // The text; the resource id becomes 0.
    void SetMessage(const CString &message)
    {
        m_message = message;
        m_nMessageId = 0;
    }
    // A text of the host's resources; the text becomes empty.
    void SetMessage(unsigned int resourceId)
    {
        m_message.Empty();
        m_nMessageId = resourceId;
    }
    const CString &GetMessageW() const { return m_message; }
    unsigned int GetMessageId() const { return m_nMessageId; }

    int GetProgressStep() const { return m_nProgressStep; }
    void SetProgressStep(int step) { m_nProgressStep = step; }
    int GetProgressRange() const { return m_nProgressRange; }
    void SetProgressRange(int range) { m_nProgressRange = range; }

    static int s_actionCount;

private:
    CString m_message;
    unsigned int m_nMessageId = 0;
    int m_nProgressStep = 0;
    int m_nProgressRange = 0;
};
