// MCFuncList: the list of handlers that commands and states call back.
//
// One handler type serves both:
//
//     int handler(ECBase *document, int code, void *argument, void *userData);
//
// Each entry is a record of four words: the function, two reserved words
// (always 0) and the user word given when the handler was added. The list owns
// its records and frees them in RemoveCallbacks and in its destructor.
//
// RemoveCallback(fn) looks for the function pointer among the record
// pointers, so it never finds anything and removes nothing. Hosts have always
// removed their handlers with RemoveCallbacks; the behaviour is kept so that
// nobody starts relying on a removal that older documents' hosts never saw.
//
// A call pass (CallCallbacks, or a Pass of the owner's own) calls the
// records listed when it began, in order, and skips any record that a handler
// removed in the meantime: a view closed by another view's handler is not
// called with its freed user data. Records removed during a pass are freed
// when the last pass ends. The list must outlive its passes; the model's
// owners hold a reference on the document for the length of a call.
//
// No lock: the list belongs to the thread that owns its document.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/MCPtrList.h>

#include <cstddef>
#include <vector>

class ECBase;

class SCOREMODEL_API MCFuncList : public MCPtrList
{
public:
    typedef int (*CALLBACK_FUNC)(ECBase *document, int code, void *argument, void *userData);

    // One handler record, in the order of its four words.
    struct CALLBACK_REC
    {
        CALLBACK_FUNC pfn;
        void *reserved1;
        void *reserved2;
        void *userData;
    };

    explicit MCFuncList(int nBlockSize = 10) : MCPtrList(nBlockSize) {}
    ~MCFuncList() override;

    // Appends a record; returns its position, or null when memory ran out.
    POSITION AddCallback(CALLBACK_FUNC pfn, void *userData);
    // Inserts a record before `pos`, or at the head when `pos` is null.
    POSITION InsertCallback(CALLBACK_FUNC pfn, void *userData, POSITION pos);
    // Searches for `pfn` itself among the record pointers: finds nothing and
    // removes nothing (see the header comment). Returns 0.
    int RemoveCallback(CALLBACK_FUNC pfn);
    // Frees every record and empties the list.
    void RemoveCallbacks();
    // Calls every handler from the head with the three arguments and its user
    // word. The results are ignored; returns 0. The handlers called are those
    // listed when the call began and not removed since: a handler added while
    // it runs is called from the next call on, a handler removed is not called
    // any more. An exception from a handler leaves at once.
    int CallCallbacks(ECBase *document, int code, void *argument);

    // One walk over the records, for an owner that needs the handlers'
    // answers (the command manager). Next gives the records listed when the
    // pass began, skipping those removed since, and null at the end.
    class Pass
    {
    public:
        explicit Pass(MCFuncList &list);
        ~Pass();
        Pass(const Pass &) = delete;
        Pass &operator=(const Pass &) = delete;
        const CALLBACK_REC *Next();

    private:
        MCFuncList &m_list;
        std::vector<CALLBACK_REC *> m_records;
        size_t m_next = 0;
    };

private:
    // Passes running now, and the records removed while they run: kept, with
    // their function cleared, until the last pass ends.
    int m_nPasses = 0;
    std::vector<CALLBACK_REC *> m_retired;
};
