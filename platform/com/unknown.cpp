#include "platform/com/unknown.h"
#include "platform/com/propnotify.h"

const IID IID_IUnknown = MakeGuid("{00000000-0000-0000-C000-000000000046}");
const IID IID_IPropertyNotifySink = MakeGuid("{9BFBBC02-EFF1-101A-84ED-00AA00341D07}");
