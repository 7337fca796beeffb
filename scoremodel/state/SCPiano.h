// SCPiano: the keys a piano view lights up and lets go, and its labels.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CArray.h>
#include <scoremodel/state/SCBase.h>

class SCOREMODEL_API SCPiano : public SCBase
{
public:
    explicit SCPiano(unsigned int code = 0) : SCBase(code) {}

    // Pitches that went down and up, in the order added.
    void AddPitchOn(unsigned char pitch) { m_pitchesOn.Add(pitch); }
    void AddPitchOff(unsigned char pitch) { m_pitchesOff.Add(pitch); }
    const CByteArray &GetPitchesOn() const { return m_pitchesOn; }
    const CByteArray &GetPitchesOff() const { return m_pitchesOff; }
    // How the keys are labelled; the host's choice of values.
    void SetLabels(int labels) { m_nLabels = labels; }
    int GetLabels() const { return m_nLabels; }

private:
    CByteArray m_pitchesOn;
    CByteArray m_pitchesOff;
    int m_nLabels = 0;
};
