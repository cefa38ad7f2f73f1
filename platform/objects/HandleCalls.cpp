#include "platform/Wait.h"
#include "platform/objects/HandleTable.h"

BOOL CloseHandle(HANDLE hObject) {
    const auto object = platform::RemoveHandle(hObject);
    return object ? object->Close() : FALSE;
}
