#include "htmldoc/htmldocfactory.h"

#include "htmldoc/htmldocument.h"

IDispatch* ZentrelCreateHtmlDocument() {
    return static_cast<IDispatch*>(CreateHtmlDocument().Detach());
}
