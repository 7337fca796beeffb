// The id table of the event classes, as the tests check it: for each id that
// belongs to a class, the class name, its direct base, whether the registry
// serves it, and the parents its GetParentTypes declares, in order (an
// accent with its default type, which is no finger type). The ids 63, 68, 69
// and 76 have no row.
#pragma once

#include <scoremodel/events/base/EventIds.h>

#include <cstring>
#include <vector>

struct EventClassRow
{
    int id;
    const char *name;
    const char *base;
    bool served;
    std::vector<int> parents;
};

inline const std::vector<EventClassRow> &EventClassRows()
{
    static const std::vector<EventClassRow> rows = {
        {EVENT_ID_ACCENT, "ECAccent", "ECBase", true, {EVENT_ID_NOTE, EVENT_ID_CHORD, EVENT_ID_GRACE_NOTE}},
        {EVENT_ID_ACCIDENTAL, "ECAccidental", "ECBase", true, {EVENT_ID_NOTE, EVENT_ID_GRACE_NOTE}},
        {EVENT_ID_ARPEGGIO, "ECArpeggio", "ECBase", true, {EVENT_ID_CHORD}},
        {EVENT_ID_BANK_LSB, "ECBankLSB", "ECControlChange", false, {EVENT_ID_STAFF}},
        {EVENT_ID_BANK_MSB, "ECBankMSB", "ECControlChange", false, {EVENT_ID_STAFF}},
        {EVENT_ID_BARLINE, "ECBarline", "ECBase", true, {EVENT_ID_CONDUCTOR_MEASURE}},
        {EVENT_ID_BASE, "ECBase", "CObject", true, {}},
        {EVENT_ID_BEAM, "ECBeam", "ECGroup", true, {EVENT_ID_MEASURE}},
        {EVENT_ID_BRAC, "ECBrac", "ECBase", true, {EVENT_ID_CONDUCTOR_MEASURE}},
        {EVENT_ID_CHANNEL_MODE, "ECChannelMode", "ECControlChange", true, {EVENT_ID_STAFF}},
        {EVENT_ID_CHANNEL_PRESSURE, "ECChannelPressure", "ECEnvPoint", true, {EVENT_ID_CHAN_PRESSURE_ENV}},
        {EVENT_ID_CHAN_PRESSURE_ENV, "ECChanPressureEnv", "ECEnvelope", false, {EVENT_ID_STAFF}},
        {EVENT_ID_CHORD, "ECChord", "ECWithTimeChild", true, {EVENT_ID_MEASURE, EVENT_ID_BEAM, EVENT_ID_TUPLET}},
        {EVENT_ID_CHORD_SYMBOL, "ECChordSymbol", "ECWithTime", true, {EVENT_ID_MEASURE}},
        {EVENT_ID_CLEF, "ECClef", "ECWithTime", true, {EVENT_ID_MEASURE}},
        {EVENT_ID_CONDUCTOR, "ECConductor", "ECWithChild", true, {EVENT_ID_PERFORMANCE}},
        {EVENT_ID_CONDUCTOR_MEASURE, "ECConductorMeasure", "ECMeasure", true, {EVENT_ID_CONDUCTOR_STAFF}},
        {EVENT_ID_CONDUCTOR_STAFF, "ECConductorStaff", "ECStaff", true, {EVENT_ID_CONDUCTOR}},
        {EVENT_ID_CONTROL_CHANGE, "ECControlChange", "ECEnvPoint", true, {EVENT_ID_CONTROLLER_ENV}},
        {EVENT_ID_CONTROLLER_ENV, "ECControllerEnv", "ECEnvelope", false, {EVENT_ID_STAFF, EVENT_ID_TRACK}},
        {EVENT_ID_DOT, "ECDot", "ECBase", true, {EVENT_ID_NOTE, EVENT_ID_CHORD, EVENT_ID_REST}},
        {EVENT_ID_DYNAMIC, "ECDynamic", "ECControlChange", true, {EVENT_ID_ENVELOPE, EVENT_ID_CONTROLLER_ENV}},
        {EVENT_ID_ENVELOPE, "ECEnvelope", "ECWithTimeChild", false,
         {EVENT_ID_CONDUCTOR_STAFF, EVENT_ID_STAFF, EVENT_ID_TRACK, EVENT_ID_WAVE_TRACK}},
        {EVENT_ID_ENV_POINT, "ECEnvPoint", "ECWithTime", false, {EVENT_ID_ENVELOPE}},
        {EVENT_ID_FLOW_CONTROL, "ECFlowControl", "ECWithTimeChild", true, {EVENT_ID_CONDUCTOR_STAFF}},
        {EVENT_ID_FRAME, "ECFrame", "ECWithTime", true, {EVENT_ID_PERFORMANCE}},
        {EVENT_ID_GLISSANDO, "ECGlissando", "ECGroup", false, {EVENT_ID_STAFF}},
        {EVENT_ID_GRACE_NOTE, "ECGraceNote", "ECNote", true, {EVENT_ID_NOTE}},
        {EVENT_ID_GROUP, "ECGroup", "ECWithTimeChild", true, {EVENT_ID_STAFF}},
        {EVENT_ID_KEY, "ECKey", "ECWithTime", true, {EVENT_ID_MEASURE}},
        {EVENT_ID_LYRIC, "ECLyric", "ECText", true, {EVENT_ID_MEASURE}},
        {EVENT_ID_LYRIC_BLOCK, "ECLyricBlock", "ECLyric", true, {EVENT_ID_PERFORMANCE}},
        {EVENT_ID_MEASURE, "ECMeasure", "ECWithTimeChild", true, {EVENT_ID_STAFF}},
        {EVENT_ID_METER, "ECMeter", "ECEnvPoint", true, {EVENT_ID_CONDUCTOR_STAFF}},
        {EVENT_ID_METER_ENV, "ECMeterEnv", "ECEnvelope", false, {EVENT_ID_CONDUCTOR_STAFF}},
        {EVENT_ID_MIRROR, "ECMirror", "ECWithTime", true, {EVENT_ID_CONDUCTOR_STAFF, EVENT_ID_MEASURE}},
        {EVENT_ID_MORDENT, "ECMordent", "ECWithChild", true, {EVENT_ID_NOTE, EVENT_ID_CHORD}},
        {EVENT_ID_NOTE, "ECNote", "ECWithTimeChild", true,
         {EVENT_ID_MEASURE, EVENT_ID_CHORD, EVENT_ID_BEAM, EVENT_ID_TUPLET}},
        {EVENT_ID_NRPN_ENV, "ECNRPNEnv", "ECEnvelope", false, {EVENT_ID_STAFF, EVENT_ID_TRACK}},
        {EVENT_ID_NRPN_POINT, "ECNRPNPoint", "ECEnvPoint", false, {EVENT_ID_NRPN_ENV}},
        {EVENT_ID_ORNAMENT, "ECOrnament", "ECWithChild", true, {EVENT_ID_NOTE}},
        {EVENT_ID_PAN, "ECPan", "ECControlChange", true, {EVENT_ID_ENVELOPE, EVENT_ID_CONTROLLER_ENV}},
        {EVENT_ID_PATCH_ENV, "ECPatchEnv", "ECEnvelope", false, {EVENT_ID_STAFF}},
        {EVENT_ID_PEDAL, "ECPedal", "ECControlChange", true, {EVENT_ID_ENVELOPE, EVENT_ID_CONTROLLER_ENV}},
        {EVENT_ID_PERFORMANCE, "ECPerformance", "ECWithTimeChild", true, {}},
        {EVENT_ID_PITCH_BEND, "ECPitchBend", "ECEnvPoint", true, {EVENT_ID_PITCH_BEND_ENV}},
        {EVENT_ID_PITCH_BEND_ENV, "ECPitchBendEnv", "ECEnvelope", false, {EVENT_ID_STAFF}},
        {EVENT_ID_POLY_PRESSURE, "ECPolyPressure", "ECEnvPoint", true, {EVENT_ID_POLY_PRESSURE_ENV}},
        {EVENT_ID_POLY_PRESSURE_ENV, "ECPolyPressureEnv", "ECEnvelope", false, {EVENT_ID_STAFF}},
        {EVENT_ID_PROGRAM_CHANGE, "ECProgramChange", "ECEnvPoint", true, {EVENT_ID_PATCH_ENV}},
        {EVENT_ID_REPEAT, "ECRepeat", "ECWithTimeChild", true, {EVENT_ID_MEASURE}},
        {EVENT_ID_REST, "ECRest", "ECWithTimeChild", true, {EVENT_ID_MEASURE, EVENT_ID_BEAM, EVENT_ID_TUPLET}},
        {EVENT_ID_RPN_ENV, "ECRPNEnv", "ECEnvelope", false, {EVENT_ID_STAFF}},
        {EVENT_ID_RPN_POINT, "ECRPNPoint", "ECEnvPoint", false, {EVENT_ID_RPN_ENV}},
        {EVENT_ID_SLUR, "ECSlur", "ECGroup", true, {EVENT_ID_STAFF}},
        {EVENT_ID_STAFF, "ECStaff", "ECTrack", true, {EVENT_ID_CONDUCTOR}},
        {EVENT_ID_SYSTEM_MESSAGE, "ECSystemMessage", "ECWithTime", true, {EVENT_ID_CONDUCTOR_STAFF}},
        {EVENT_ID_TEMPO, "ECTempo", "ECEnvPoint", true, {EVENT_ID_TEMPO_ENV}},
        {EVENT_ID_TEMPO_ENV, "ECTempoEnv", "ECEnvelope", false, {EVENT_ID_CONDUCTOR_STAFF}},
        {EVENT_ID_TEXT, "ECText", "ECWithTime", true, {EVENT_ID_STAFF, EVENT_ID_CONDUCTOR_STAFF}},
        {EVENT_ID_TIE, "ECTie", "ECGroup", true, {EVENT_ID_STAFF}},
        {EVENT_ID_TRACK, "ECTrack", "ECWithTimeChild", true, {EVENT_ID_CONDUCTOR}},
        {EVENT_ID_TRANSPOSE, "ECTranspose", "ECEnvPoint", true, {EVENT_ID_ENVELOPE, EVENT_ID_CONTROLLER_ENV}},
        {EVENT_ID_TREMOLO, "ECTremolo", "ECWithTimeChild", true, {EVENT_ID_NOTE, EVENT_ID_CHORD}},
        {EVENT_ID_TRILL, "ECTrill", "ECWithTimeChild", true, {EVENT_ID_NOTE, EVENT_ID_CHORD}},
        {EVENT_ID_TUPLET, "ECTuplet", "ECWithTimeChild", true, {EVENT_ID_MEASURE}},
        {EVENT_ID_TURN, "ECTurn", "ECWithChild", true, {EVENT_ID_NOTE, EVENT_ID_CHORD}},
        {EVENT_ID_VIDEO, "ECVideo", "ECBase", false, {EVENT_ID_CONDUCTOR_STAFF}},
        {EVENT_ID_WAVE, "ECWave", "ECWithTimeChild", true, {EVENT_ID_WAVE_TRACK}},
        {EVENT_ID_WAVE_TRACK, "ECWaveTrack", "ECTrack", true, {EVENT_ID_CONDUCTOR}},
        {EVENT_ID_WITH_CHILD, "ECWithChild", "ECBase", true, {}},
        {EVENT_ID_WITH_TIME, "ECWithTime", "ECBase", true, {}},
        {EVENT_ID_WITH_TIME_CHILD, "ECWithTimeChild", "ECWithChild", true, {}},
        {EVENT_ID_DRAWING, "ECDrawing", "ECBase", true, {EVENT_ID_CONDUCTOR_STAFF}},
        {EVENT_ID_COMPRESS, "ECCompress", "ECEnvPoint", true, {EVENT_ID_ENVELOPE, EVENT_ID_CONTROLLER_ENV}},
    };
    return rows;
}

// The row of an id, or null for an id that belongs to no class.
inline const EventClassRow *FindEventClassRow(int id)
{
    for (const EventClassRow &row : EventClassRows())
        if (row.id == id)
            return &row;
    return nullptr;
}

// The row of a class name, or null for a class outside the table (CObject).
inline const EventClassRow *FindEventClassRow(const char *name)
{
    for (const EventClassRow &row : EventClassRows())
        if (std::strcmp(row.name, name) == 0)
            return &row;
    return nullptr;
}
