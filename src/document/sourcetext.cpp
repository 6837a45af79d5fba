#include "src/document/sourcetext.h"

const IID IID_ISourceText = MakeGuid("{956FD501-A508-11D0-9726-0000C051C3E3}");
const IID IID_ISourceSyntax = MakeGuid("{C16963C2-ACD7-11D0-9726-0000C051C3E3}");
const IID IID_ISourceTokens = MakeGuid("{953F9461-DC0A-11D0-9726-0000C051C3E3}");
const IID IID_ISourceRangeStep = MakeGuid("{A8486281-6102-11D1-8492-0000C051C3E3}");
const IID IID_ISourceChange = MakeGuid("{661DEFA1-B1D6-11D0-9726-0000C051C3E3}");
const IID IID_ISourceTextSink = MakeGuid("{49FC3801-A613-11D0-9726-0000C051C3E3}");
const IID IID_ISourceRangeSink = MakeGuid("{1BAC4BA1-4976-11D1-8492-0000C051C3E3}");
const IID IID_ISourceTagItem = MakeGuid("{90194702-E26E-11D0-8492-0000C051C3E3}");
const IID IID_ISourceHintItem = MakeGuid("{BC9F81C1-B76E-11D0-9726-0000C051C3E3}");
const IID IID_ISourceDocLink = MakeGuid("{6B3EBDA2-0C3C-11D1-8492-0000C051C3E3}");
const IID IID_ISourceSchema = MakeGuid("{9FFE9C01-8FF4-11D0-9726-0000C051C3E3}");
const IID IID_ISourceSchemaColor = MakeGuid("{15A13621-2EB5-11D1-8492-0000C051C3E3}");
// Identifiers of our own for the interfaces that the contract reaches without a query.
const IID IID_ISourceRange = MakeGuid("{6C1E2A10-3F5B-4D21-9A77-2B8E51D0A101}");
const IID IID_ISourceUndo = MakeGuid("{6C1E2A10-3F5B-4D21-9A77-2B8E51D0A102}");
const IID IID_ISourceSyntaxItem = MakeGuid("{6C1E2A10-3F5B-4D21-9A77-2B8E51D0A103}");
const IID IID_ISourceDocItem = MakeGuid("{6C1E2A10-3F5B-4D21-9A77-2B8E51D0A104}");
