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
// No lock: the list belongs to the thread that owns its document.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/MCPtrList.h>

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
    // listed when the call began: a handler may add or remove handlers while
    // it runs, and the change applies from the next call.
    int CallCallbacks(ECBase *document, int code, void *argument);
};
