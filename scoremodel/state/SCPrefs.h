// SCPrefs: the preferences changed; the model re-reads its own on delivery.
//
// For code 1600 DoState reads "Selection" of "Settings\Color" (default 255)
// as the selection colour (SCSelection::SetColor) and "UndoLevels" of
// "Settings" (default 250) into MCCommandMgr::SetUndoLevels, before the
// handlers see the record.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/state/SCBase.h>

class SCOREMODEL_API SCPrefs : public SCBase
{
public:
    enum : unsigned int
    {
        CodePreferences = 1600
    };

    explicit SCPrefs(unsigned int code = CodePreferences, unsigned int updateFlag = 0)
        : SCBase(code), m_nUpdateFlag(updateFlag)
    {
    }

    // Which preferences changed; the host's bits.
    unsigned int GetUpdateFlag() const { return m_nUpdateFlag; }
    void DoState() override;

private:
    unsigned int m_nUpdateFlag;
};
