#include "src/edit/entitytable.h"

const EntityRow g_EntityTable[] = {
    {0x22, "&quot;"}, {0x26, "&amp;"}, {0x3C, "&lt;"}, {0x3E, "&gt;"},
    {0xA0, "&nbsp;"}, {0xA1, "&iexcl;"}, {0xA2, "&cent;"}, {0xA3, "&pound;"},
    {0xA4, "&curren;"}, {0xA5, "&yen;"}, {0xA6, "&brvbar;"}, {0xA7, "&sect;"},
    {0xA8, "&uml;"}, {0xA9, "&copy;"}, {0xAA, "&ordf;"}, {0xAB, "&laquo;"},
    {0xAC, "&not;"}, {0xAD, "&shy;"}, {0xAE, "&reg;"}, {0xAF, "&macr;"},
    {0xB0, "&deg;"}, {0xB1, "&plusmn;"}, {0xB2, "&sup2;"}, {0xB3, "&sup3;"},
    {0xB4, "&acute;"}, {0xB5, "&micro;"}, {0xB6, "&para;"}, {0xB7, "&middot;"},
    {0xB8, "&cedil;"}, {0xB9, "&sup1;"}, {0xBA, "&ordm;"}, {0xBB, "&raquo;"},
    {0xBC, "&frac14;"}, {0xBD, "&frac12;"}, {0xBE, "&frac34;"}, {0xBF, "&iquest;"},
    {0xC0, "&Agrave;"}, {0xC1, "&Aacute;"}, {0xC2, "&Acirc;"}, {0xC3, "&Atilde;"},
    {0xC4, "&Auml;"}, {0xC5, "&Aring;"}, {0xC6, "&AElig;"}, {0xC7, "&Ccedil;"},
    {0xC8, "&Egrave;"}, {0xC9, "&Eacute;"}, {0xCA, "&Ecirc;"}, {0xCB, "&Euml;"},
    {0xCC, "&Igrave;"}, {0xCD, "&Iacute;"}, {0xCE, "&Icirc;"}, {0xCF, "&Iuml;"},
    {0xD0, "&ETH;"}, {0xD1, "&Ntilde;"}, {0xD2, "&Ograve;"}, {0xD3, "&Oacute;"},
    {0xD4, "&Ocirc;"}, {0xD5, "&Otilde;"}, {0xD6, "&Ouml;"}, {0xD7, "&times;"},
    {0xD8, "&Oslash;"}, {0xD9, "&Ugrave;"}, {0xDA, "&Uacute;"}, {0xDB, "&Ucirc;"},
    {0xDC, "&Uuml;"}, {0xDD, "&Yacute;"}, {0xDE, "&THORN;"}, {0xDF, "&szlig;"},
    {0xE0, "&agrave;"}, {0xE1, "&aacute;"}, {0xE2, "&acirc;"}, {0xE3, "&atilde;"},
    {0xE4, "&auml;"}, {0xE5, "&aring;"}, {0xE6, "&aelig;"}, {0xE7, "&ccedil;"},
    {0xE8, "&egrave;"}, {0xE9, "&eacute;"}, {0xEA, "&ecirc;"}, {0xEB, "&euml;"},
    {0xEC, "&igrave;"}, {0xED, "&iacute;"}, {0xEE, "&icirc;"}, {0xEF, "&iuml;"},
    {0xF0, "&eth;"}, {0xF1, "&ntilde;"}, {0xF2, "&ograve;"}, {0xF3, "&oacute;"},
    {0xF4, "&ocirc;"}, {0xF5, "&otilde;"}, {0xF6, "&ouml;"}, {0xF7, "&divide;"},
    {0xF8, "&oslash;"}, {0xF9, "&ugrave;"}, {0xFA, "&uacute;"}, {0xFB, "&ucirc;"},
    {0xFC, "&uuml;"}, {0xFD, "&yacute;"}, {0xFE, "&thorn;"}, {0xFF, "&yuml;"},
    {0, nullptr},
};

const char* LookupEntity(unsigned int ch) {
    const auto c = static_cast<unsigned char>(ch & 0xFF);
    for (const EntityRow* row = g_EntityTable; row->ch != 0; ++row)
        if (row->ch == c) return row->pszEntity;
    return nullptr;
}
