// MCGroup: the staff groups of a score (brackets and braces over staves).
//
// Two tables of 4-byte records: the primary groups, which never cross one
// another, and the secondary groups, which nest inside primary ones or stand
// beside them. A record names its first and last track (one byte each) and,
// in one 16-bit word: the group kind (bits 0-1), "in use" (bit 2), the group
// id (bits 3-10) and "bar through the entire group" (bit 11). The conductor
// staff owns one and keeps it in step as staves come and go (InsertTrack,
// RemoveTrack).
//
// Where a new group goes (GroupTracks). Relation compares the range with the
// in-use primary records of a kind other than 2 (kind 2 draws nothing and
// never crosses). A record crosses the range when it starts strictly below
// the range and reaches into it, or when it starts inside the range and
// ends strictly above it. Then:
//   4  nothing crosses                       -> primary, any kind
//   0  every crossing record holds the range -> secondary (nested), any kind
//   1  a record overlaps part of the range,
//      none of them of kind 1                -> primary for a kind other
//                                               than 1; the overlapped
//                                               records move to the
//                                               secondary table
//   3  a record of kind 1 overlaps part of
//      the range                             -> secondary for kind 1
// Any other pair is refused (0): a kind-1 group is never pushed aside, and a
// new kind-1 group does not push others aside. A new kind-2 group pushes
// nothing aside either (it draws nothing), though it goes where the table
// says.
//
// Ids run from 0 to 255, each used once across both tables; a table full of
// ids refuses new groups. Tracks run from 0 to 255 (a byte).
//
// Archive: for each table, primary first, the count (WriteCount), then the
// records as raw 4-byte words (first, last, then the word, low byte first).
// Below document version 3 every loaded record bars the entire group and
// ids are handed out in order: primary record i gets i, secondary record i
// the primary count plus i.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/Types.h>

class CArchive;

class SCOREMODEL_API MCGroup
{
public:
    struct tag_group
    {
        BYTE first;
        BYTE last;
        WORD bits;

        int Kind() const { return bits & 3; }
        int InUse() const { return (bits >> 2) & 1; }
        int Id() const { return (bits >> 3) & 0xFF; }
        int BarEntire() const { return (bits >> 11) & 1; }
        void SetKind(int kind) { bits = static_cast<WORD>((bits & ~3u) | (kind & 3)); }
        void SetInUse(int on) { bits = static_cast<WORD>(on ? bits | 4u : bits & ~4u); }
        void SetId(int id) { bits = static_cast<WORD>((bits & ~(0xFFu << 3)) | ((id & 0xFF) << 3)); }
        void SetBarEntire(int on) { bits = static_cast<WORD>(on ? bits | 0x800u : bits & ~0x800u); }
    };
    typedef CArray<tag_group, tag_group> GroupTable;

    MCGroup();
    virtual ~MCGroup();
    virtual void Serialize(CArchive &ar);

    // A staff enters at `track`: groups that contain it grow, groups behind
    // it move up. In the primary table, a group that starts at `track` gets
    // a new one-track group of `kind` in front of it (the conductor staff
    // passes 1 for a staff of two hands, else 2); the secondary table only
    // grows and moves.
    void InsertTrack(int track, BYTE kind);
    // The reverse: a one-track group of `track` goes, groups that contain
    // it shrink, groups behind it move down.
    void RemoveTrack(int track);
    // Makes a group of the tracks `first` to `last` of `kind`; see the
    // class comment. 1 with `id` set, or 0 (refused, or `last < first`, or
    // a track outside 0 to 255, or no id left).
    int GroupTracks(int first, int last, BYTE kind, int &id);
    // 1 with the group's tracks and kind when an in-use group has the id
    // (primary table first); 0 otherwise.
    int GetGroupInfo(int id, int &first, int &last, int &kind);
    void SetBarEntireGroup(int id, int on);
    int IsBarEntireGroup(int id);
    // 1 when a group of that id was removed.
    int RemoveGroup(int id);
    void RemoveAll();
    GroupTable &GetPrimaryGroup() { return m_primary; }
    GroupTable &GetSecondaryGroup() { return m_secondary; }

protected:
    // 4, 0, 1 or 3 as in the class comment.
    int Relation(int first, int last);
    int GroupPrimary(int first, int last, BYTE kind, int &id);
    int GroupSecondary(int first, int last, BYTE kind, int &id);
    // Moves the primary records that overlap part of the range to the
    // secondary table.
    void PromoteToSecondary(int first, int last);
    // Drops the records not in use.
    static void CleanTable(GroupTable &table);
    // The lowest id no in-use record has; -1 when all 256 are taken.
    int GetNextAvailableID();
    // Moves the records from `index` on by `delta` tracks.
    static void UpdateFrom(GroupTable &table, INT_PTR index, int delta);
    tag_group *Find(int id);
    static void InsertInOrder(GroupTable &table, const tag_group &record);
    static tag_group MakeRecord(int first, int last, int kind, int id);

    GroupTable m_primary;
    GroupTable m_secondary;
};
