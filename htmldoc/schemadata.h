// The generated HTML schema data: records one a line (see schemadata.tsv for the format).
#pragma once

extern const char kHtmlSchemaData[];
extern const unsigned long kHtmlSchemaDataSize;
