#include <scoremodel/pitch/MCPitch.h>

#include <array>

namespace
{
constexpr int kNaturalPitch[7] = {0, 2, 4, 5, 7, 9, 11};
constexpr int kPitchDegree[12] = {0, 0, 1, 1, 2, 3, 3, 4, 4, 5, 5, 6};

// One entry of a spelling table. The correction moves the octave away from
// MIDI pitch / 12: C flat sounds in the octave below its letter (+1), B sharp
// in the octave above (-1).
struct Spelling
{
    signed char degree;     // -1: this alteration cannot spell the pitch class
    signed char alteration;
    signed char correction;
};

// By alteration (-2 to 2, index + 2) and pitch class: the degree whose natural
// pitch class plus the alteration is that pitch class. Built from the rule so
// that the table cannot disagree with it.
constexpr std::array<std::array<Spelling, 12>, 5> kSpellings = [] {
    std::array<std::array<Spelling, 12>, 5> table{};
    for (int alteration = -2; alteration <= 2; ++alteration)
    {
        for (int pc = 0; pc < 12; ++pc)
            table[alteration + 2][pc] = {-1, static_cast<signed char>(alteration), 0};
        for (int degree = 0; degree < 7; ++degree)
        {
            const int sum = kNaturalPitch[degree] + alteration;
            const int correction = sum < 0 ? 1 : (sum >= 12 ? -1 : 0);
            table[alteration + 2][(sum + 12) % 12] = {static_cast<signed char>(degree),
                                                      static_cast<signed char>(alteration),
                                                      static_cast<signed char>(correction)};
        }
    }
    return table;
}();

// By degree and pitch class: the alteration, -5 to 6, that makes the degree
// sound the pitch class.
constexpr Spelling DegreeEntry(int degree, int pc)
{
    int d = pc - kNaturalPitch[degree];
    int correction = 0;
    if (d > 6)
    {
        d -= 12;
        correction = 1;
    }
    else if (d < -5)
    {
        d += 12;
        correction = -1;
    }
    return {static_cast<signed char>(degree), static_cast<signed char>(d),
            static_cast<signed char>(correction)};
}

constexpr Spelling LookUpSpelling(int alteration, int pc)
{
    if (alteration < -2 || alteration > 2)
        return {-1, static_cast<signed char>(alteration), 0};
    return kSpellings[alteration + 2][pc];
}

// The spelling SetPitch gives when asked for a natural: the natural on a
// white key, the sharp on a black one.
constexpr Spelling NaturalOrSharp(int pc)
{
    const Spelling natural = LookUpSpelling(0, pc);
    return natural.degree >= 0 ? natural : LookUpSpelling(1, pc);
}

// The whole outcome of SetPitchByDegree by asked degree and pitch class,
// worked out once: the walks are short but a lookup is what callers on a hot
// path (respelling a whole staff) want.
//
// Past double sharp the degree walks up, wrapping from B to C. Past double
// flat it walks down until it reaches double sharp or more. Where that walk
// would pass below C (E asked for pitch class 0, say) there is no degree left
// to aim at; the pitch then gets the spelling SetPitch gives a natural, C
// natural or C sharp and so on, rather than a wrap to B that would end on
// spellings like A triple sharp.
constexpr std::array<std::array<Spelling, 12>, 7> kByDegree = [] {
    std::array<std::array<Spelling, 12>, 7> table{};
    for (int asked = 0; asked < 7; ++asked)
    {
        for (int pc = 0; pc < 12; ++pc)
        {
            int degree = asked;
            Spelling entry = DegreeEntry(degree, pc);
            if (entry.alteration > 2)
            {
                for (int step = 0; step < 7 && entry.alteration > 2; ++step)
                {
                    degree = (degree + 1) % 7;
                    entry = DegreeEntry(degree, pc);
                }
            }
            else if (entry.alteration < -2)
            {
                while (entry.alteration < 2)
                {
                    if (degree == 0)
                    {
                        entry = NaturalOrSharp(pc);
                        break;
                    }
                    entry = DegreeEntry(--degree, pc);
                }
            }
            table[asked][pc] = entry;
        }
    }
    return table;
}();

// The accidental field holds alteration + 2 in 3 bits, so the walks must end
// within -2 to 5.
constexpr bool ByDegreeFitsTheField()
{
    for (const auto &row : kByDegree)
        for (const Spelling &entry : row)
            if (entry.alteration < -2 || entry.alteration > 3)
                return false;
    return true;
}
static_assert(ByDegreeFitsTheField(), "SetPitchByDegree must end on a storable alteration");

// The next spelling in the enharmonic cycle, by accidental field (0 to 7) and
// pitch class. The step size is chosen per pitch class so that the cycle
// visits every spelling of the class and never the same one twice; when the
// step lands where the alteration cannot spell the class, one further step of
// the same sign follows. Fields the cycles never produce (5 to 7, or a natural
// on a black key, which only the raw setters can make) join the cycle through
// the natural-or-sharp spelling if the rule finds no entry for them.
constexpr std::array<std::array<Spelling, 12>, 8> kNextEnharmonic = [] {
    std::array<std::array<Spelling, 12>, 8> table{};
    for (int field = 0; field < 8; ++field)
    {
        for (int pc = 0; pc < 12; ++pc)
        {
            int step = 0;
            if (field > 2)
                step = (pc == 0 || pc == 5) ? -2 : (pc == 2 || pc == 7 || pc == 9) ? -4 : -1;
            else if (field < 2)
                step = (pc == 4 || pc == 11) ? 2 : 1;
            else if (pc == 0 || pc == 2 || pc == 5 || pc == 7 || pc == 9)
                step = 1;
            else if (pc == 4 || pc == 11)
                step = -1;
            Spelling entry{-1, 0, 0};
            if (step != 0)
            {
                int next = field + step;
                entry = LookUpSpelling(next - 2, pc);
                if (entry.degree < 0)
                {
                    next += step > 0 ? 1 : -1;
                    entry = LookUpSpelling(next - 2, pc);
                }
            }
            if (entry.degree < 0)
                entry = NaturalOrSharp(pc);
            table[field][pc] = entry;
        }
    }
    return table;
}();
} // namespace

// ---- Construction and copying --------------------------------------------------

MCPitch::MCPitch()
    : m_dirty(1), m_userSpelled(0), m_reserved(0), m_showAccidental(1), m_degree(0), m_accidental(2),
      m_octave(0), m_mappingType(0), m_midiPitch(0)
{
}

MCPitch::MCPitch(unsigned char pitch, char accidental) : MCPitch()
{
    SetPitch(pitch, accidental, 1);
}

MCPitch::MCPitch(const MCPitch &other)
    : m_dirty(other.m_dirty), m_userSpelled(0), m_reserved(other.m_reserved),
      m_showAccidental(other.m_showAccidental), m_degree(other.m_degree), m_accidental(other.m_accidental),
      m_octave(other.m_octave), m_mappingType(other.m_mappingType), m_midiPitch(other.m_midiPitch)
{
}

MCPitch &MCPitch::operator=(const MCPitch &other)
{
    m_dirty = other.m_dirty;
    m_reserved = other.m_reserved;
    m_showAccidental = other.m_showAccidental;
    m_degree = other.m_degree;
    m_accidental = other.m_accidental;
    m_octave = other.m_octave;
    m_mappingType = other.m_mappingType;
    m_midiPitch = other.m_midiPitch;
    return *this;
}

MCPitch::~MCPitch() = default;

// ---- Fixed tables ------------------------------------------------------------------

int MCPitch::PitchToDegree(unsigned int pitchClass)
{
    return pitchClass < 12 ? kPitchDegree[pitchClass] : 0;
}

int MCPitch::DegreeToPitch(unsigned int degree)
{
    return degree < 7 ? kNaturalPitch[degree] : 0;
}

// ---- Spelling ------------------------------------------------------------------------

void MCPitch::StoreSpelling(int alteration, int degree, int correction, unsigned char pitch)
{
    m_accidental = (alteration + 2) & 0x7;
    m_degree = degree & 0x7;
    m_octave = (pitch / 12 + correction) & 0xF;
    m_midiPitch = pitch;
}

void MCPitch::SetPitch(unsigned char pitch, char accidental, int showAccidental)
{
    const int pc = pitch % 12;
    int alteration = static_cast<signed char>(accidental);
    Spelling entry = LookUpSpelling(alteration, pc);
    if (entry.degree < 0)
    {
        alteration = alteration == 0 ? 1 : 0;
        entry = LookUpSpelling(alteration, pc);
    }
    // A second miss is kept as degree 7 rather than guessed, so that the
    // caller can see the spelling it asked for does not exist.
    StoreSpelling(alteration, entry.degree < 0 ? 7 : entry.degree, entry.degree < 0 ? 0 : entry.correction,
                  pitch);
    m_showAccidental = showAccidental & 1;
    m_dirty = 0;
}

void MCPitch::SetPitchByDegree(unsigned char pitch, unsigned char degree)
{
    if (degree >= 7)
        return;
    const Spelling &entry = kByDegree[degree][pitch % 12];
    StoreSpelling(entry.alteration, entry.degree, entry.correction, pitch);
    m_showAccidental = 1;
    m_dirty = 0;
}

void MCPitch::ToggleEnharmonic()
{
    const Spelling &entry = kNextEnharmonic[m_accidental][m_midiPitch % 12];
    StoreSpelling(entry.alteration, entry.degree, entry.correction, m_midiPitch);
}

void MCPitch::UpdateMidiPitch()
{
    m_midiPitch = static_cast<unsigned char>(DegreeToPitch(m_degree) + m_octave * 12 + GetAccidental());
}

// ---- Mapping -----------------------------------------------------------------------------

void MCPitch::SetMappingType(unsigned char type, unsigned char staffPosition)
{
    if (type > MappingDegree)
        return;
    m_mappingType = type;
    if (type != MappingNone)
        SetDegree(staffPosition);
}

// ---- Comparison --------------------------------------------------------------------------

int MCPitch::Order(const MCPitch &other) const
{
    const int primary = m_mappingType == MappingNone ? m_midiPitch - other.m_midiPitch : m_octave - other.m_octave;
    return primary != 0 ? primary : m_degree - other.m_degree;
}

int MCPitch::operator==(const MCPitch &other) const
{
    if (m_mappingType == MappingNone)
        return m_midiPitch == other.m_midiPitch && m_degree == other.m_degree;
    return m_octave == other.m_octave;
}

int MCPitch::operator!=(const MCPitch &other) const
{
    return !(*this == other);
}

int MCPitch::operator<(const MCPitch &other) const
{
    return Order(other) < 0;
}

int MCPitch::operator<=(const MCPitch &other) const
{
    return Order(other) <= 0;
}

int MCPitch::operator>(const MCPitch &other) const
{
    return Order(other) > 0;
}

int MCPitch::operator>=(const MCPitch &other) const
{
    return Order(other) >= 0;
}
