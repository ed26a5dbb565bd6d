// A record that is one byte too long.
#define OLD_EVENT_HEADER_TAIL UChar_t fTail;
#include "EventHeader5.h"
