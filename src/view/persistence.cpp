// Property exchange: one routine for load and save, in the order of the persisted form.
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

// Bits 25 to 31 of the option word hold a 7-bit value that every exchange sets to 1: the
// screen metrics bit on, and code completion off.
DWORD ForceHighOptionBits(DWORD word) { return (word & 0x01FFFFFFu) | 0x02000000u; }

}  // namespace

void CZentrelCtrl::DoPropExchange(CPropExchange* pPX) {
    DWORD version = kPersistVersion;
    pPX->ExchangeVersion(version, kPersistVersion, true);
    COleControl::DoPropExchange(pPX);

    PX_Font(pPX, "GutterFont", m_fontGutter.FontRef(), DefaultGutterFont());
    PX_Font(pPX, "SymbolFont", m_fontSymbol.FontRef(), DefaultSymbolFont());
    PX_Font(pPX, "EditFont", m_fontEdit.FontRef(), DefaultEditFont());
    PX_ULong(pPX, "_Options", m_Options, OPTIONS_DEFAULT);
    PX_Short(pPX, "HighlightStyle", m_nHighlightStyle, 1);
    PX_Short(pPX, "TabSize", m_nTabSize, 5);
    PX_Short(pPX, "IndentSize", m_nIndentSize, 60);

    m_Options = ForceHighOptionBits(m_Options);

    // The four scroll settings go through one scratch value: the fields keep their values
    // across a load, and a save writes the scratch value under each name.
    SHORT scratch = 0;
    PX_Short(pPX, "ScrollMarginHorizontal", scratch, 10);
    PX_Short(pPX, "ScrollMarginVertical", scratch, 0);
    PX_Short(pPX, "ScrollByHorizontal", scratch, 10);
    PX_Short(pPX, "ScrollByVertical", scratch, 1);
    LONG columnMax = static_cast<LONG>(m_nColumnMax);
    PX_Long(pPX, "ColumnMax", columnMax, 0x7FFFFFFF);
    m_nColumnMax = columnMax;

    if (m_nTabSize < 1) m_nTabSize = 1;
    if (m_nIndentSize < 0) m_nIndentSize = 0;

    RebuildFontCache();
    if (HasWindow()) Reformat(TRUE);
}

bool CZentrelCtrl::CheckPropertyKinds(const CPropertyBag& bag, std::string* error) const {
    if (!COleControl::CheckPropertyKinds(bag, error)) return false;
    const CPropertyBag::Value* version = bag.Read("_Version");
    if (version && static_cast<DWORD>(std::get<int32_t>(*version)) > kPersistVersion) {
        if (error) *error = "the properties were saved by a newer version of the control";
        return false;
    }
    return bag.CheckKinds({{"GutterFont", PropKind::Font},
                           {"SymbolFont", PropKind::Font},
                           {"EditFont", PropKind::Font},
                           {"_Options", PropKind::Long},
                           {"HighlightStyle", PropKind::Short},
                           {"TabSize", PropKind::Short},
                           {"IndentSize", PropKind::Short},
                           {"ScrollMarginHorizontal", PropKind::Short},
                           {"ScrollMarginVertical", PropKind::Short},
                           {"ScrollByHorizontal", PropKind::Short},
                           {"ScrollByVertical", PropKind::Short},
                           {"ColumnMax", PropKind::Long}},
                          error);
}
