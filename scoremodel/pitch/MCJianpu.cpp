#include <scoremodel/pitch/MCJianpu.h>

MCJianpu::MCJianpu(int mode, const Pair &pair) : m_pair(pair)
{
    SetMode(mode);
}

void MCJianpu::SetMode(int mode)
{
    if (mode >= ModeFirst && mode < ModeCount)
        m_nMode = mode;
}

void MCJianpu::SetPair(int first, int second)
{
    m_pair.first = first;
    m_pair.second = second;
}
