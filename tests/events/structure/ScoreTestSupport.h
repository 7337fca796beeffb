// A document with a score matrix: staves placed by the track command,
// columns made through the conductor staff's lookups, and a way into the
// measure operations the commands use.
#pragma once

#include "events/structure/TrackTestSupport.h"

#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <gtest/gtest.h>

using EventList = ECBase::EventList;

// The measure operations are protected (the measure commands call them).
struct MatrixAccess : ECConductorStaff
{
    static int Insert(ECConductorStaff *s, int at, int count, MCTime start, ECMeter *meter = nullptr)
    {
        return (s->*static_cast<int (ECConductorStaff::*)(int, int, MCTime, ECMeter *)>(
                        &MatrixAccess::InsertMeasures))(at, count, start, meter);
    }
    static int InsertList(ECConductorStaff *s, int at, EventList &list, MCTime start, ECMeter *meter = nullptr)
    {
        return (s->*static_cast<int (ECConductorStaff::*)(int, EventList &, MCTime, ECMeter *)>(
                        &MatrixAccess::InsertMeasures))(at, list, start, meter);
    }
    static int Remove(ECConductorStaff *s, int at, int count)
    {
        return (s->*&MatrixAccess::RemoveMeasures)(at, count);
    }
};

class ScoreTest : public TrackTest
{
protected:
    void SetUp() override
    {
        TrackTest::SetUp();
        m_score = m_conductor->GetConductorStaff();
        ASSERT_NE(m_score, nullptr);
    }

    // `staves` staves and `columns` columns of 4.0.
    void Build(int staves, int columns)
    {
        for (int i = 0; i < staves; ++i)
            AddStaff();
        if (columns > 0)
        {
            MCTime last(4.0f * columns - 1.0f);
            ASSERT_NE(m_score->GetConductorMeasureAtTime(last, 1, 1), nullptr);
        }
    }

    ECConductorMeasure *Column(int index) { return m_score->GetConductorMeasures().GetAt(index); }

    // Every column has a measure in every row at its time, each row's
    // measure is a child of its staff with the row's track, and the columns
    // are children of the conductor staff.
    void ExpectMatrix()
    {
        const int columns = m_score->GetMaxMeasureNumber() + 1;
        ASSERT_EQ(m_score->GetConductorMeasures().GetSize(), columns);
        for (int c = 0; c < columns; ++c)
        {
            SCOPED_TRACE(::testing::Message() << "column " << c);
            ECConductorMeasure *column = Column(c);
            ASSERT_NE(column, nullptr);
            ASSERT_EQ(column->GetMaxTrack(), m_score->GetMaxStaffNumber());
            EXPECT_NE(column->GetParents()->Find(m_score), nullptr);
            for (int row = 0; row <= m_score->GetMaxStaffNumber(); ++row)
            {
                ECMeasure *measure = column->GetMeasureOnTrack(row);
                ASSERT_NE(measure, nullptr) << "row " << row;
                EXPECT_TRUE(*measure->GetTime() == *column->GetTime()) << "row " << row;
                if (row == 0)
                    continue;
                EXPECT_EQ(measure->GetTrack(), row);
                EXPECT_NE(measure->GetParents()->Find(m_score->GetStaff(row, 0)), nullptr) << "row " << row;
            }
        }
    }

    ECConductorStaff *m_score = nullptr;
};
