#include <scoremodel/events/base/EventRegistry.h>

#include <scoremodel/events/base/ECBase.h>

namespace
{
struct EventClassEntry
{
    const char *name; // null: the id belongs to no class
    bool served;
};

constexpr EventClassEntry kEventClasses[EVENT_ID_COUNT] = {
    {"ECAccent", true},            // 0
    {"ECAccidental", true},        // 1
    {"ECArpeggio", true},          // 2
    {"ECBankLSB", false},          // 3
    {"ECBankMSB", false},          // 4
    {"ECBarline", true},           // 5
    {"ECBase", true},              // 6
    {"ECBeam", true},              // 7
    {"ECBrac", true},              // 8
    {"ECChannelMode", true},       // 9
    {"ECChannelPressure", true},   // 10
    {"ECChanPressureEnv", false},  // 11
    {"ECChord", true},             // 12
    {"ECChordSymbol", true},       // 13
    {"ECClef", true},              // 14
    {"ECConductor", true},         // 15
    {"ECConductorMeasure", true},  // 16
    {"ECConductorStaff", true},    // 17
    {"ECControlChange", true},     // 18
    {"ECControllerEnv", false},    // 19
    {"ECDot", true},               // 20
    {"ECDynamic", true},           // 21
    {"ECEnvelope", false},         // 22
    {"ECEnvPoint", false},         // 23
    {"ECFlowControl", true},       // 24
    {"ECFrame", true},             // 25
    {"ECGlissando", false},        // 26
    {"ECGraceNote", true},         // 27
    {"ECGroup", true},             // 28
    {"ECKey", true},               // 29
    {"ECLyric", true},             // 30
    {"ECLyricBlock", true},        // 31
    {"ECMeasure", true},           // 32
    {"ECMeter", true},             // 33
    {"ECMeterEnv", false},         // 34
    {"ECMirror", true},            // 35
    {"ECMordent", true},           // 36
    {"ECNote", true},              // 37
    {"ECNRPNEnv", false},          // 38
    {"ECNRPNPoint", false},        // 39
    {"ECOrnament", true},          // 40
    {"ECPan", true},               // 41
    {"ECPatchEnv", false},         // 42
    {"ECPedal", true},             // 43
    {"ECPerformance", true},       // 44
    {"ECPitchBend", true},         // 45
    {"ECPitchBendEnv", false},     // 46
    {"ECPolyPressure", true},      // 47
    {"ECPolyPressureEnv", false},  // 48
    {"ECProgramChange", true},     // 49
    {"ECRepeat", true},            // 50
    {"ECRest", true},              // 51
    {"ECRPNEnv", false},           // 52
    {"ECRPNPoint", false},         // 53
    {"ECSlur", true},              // 54
    {"ECStaff", true},             // 55
    {"ECSystemMessage", true},     // 56
    {"ECTempo", true},             // 57
    {"ECTempoEnv", false},         // 58
    {"ECText", true},              // 59
    {"ECTie", true},               // 60
    {"ECTrack", true},             // 61
    {"ECTranspose", true},         // 62
    {nullptr, false},              // 63
    {"ECTremolo", true},           // 64
    {"ECTrill", true},             // 65
    {"ECTuplet", true},            // 66
    {"ECTurn", true},              // 67
    {nullptr, false},              // 68
    {nullptr, false},              // 69
    {"ECVideo", false},            // 70
    {"ECWave", true},              // 71
    {"ECWaveTrack", true},         // 72
    {"ECWithChild", true},         // 73
    {"ECWithTime", true},          // 74
    {"ECWithTimeChild", true},     // 75
    {nullptr, false},              // 76
    {"ECDrawing", true},           // 77
    {"ECCompress", true},          // 78
};
} // namespace

const char *GetEventClassName(int id)
{
    if (id < 0 || id >= EVENT_ID_COUNT)
        return nullptr;
    return kEventClasses[id].name;
}

CRuntimeClass *GetEventRuntimeClass(int id)
{
    if (id < 0 || id >= EVENT_ID_COUNT || !kEventClasses[id].served)
        return nullptr;
    CRuntimeClass *eventClass = CRuntimeClass::FromName(kEventClasses[id].name);
    if (!eventClass || !eventClass->IsDerivedFrom(RUNTIME_CLASS(ECBase)))
        return nullptr;
    return eventClass;
}

ECBase *CreateEventW(int id)
{
    CRuntimeClass *eventClass = GetEventRuntimeClass(id);
    if (!eventClass)
        return nullptr;
    CObject *object = eventClass->CreateObject();
    return object ? static_cast<ECBase *>(object) : nullptr;
}
