// Writes the control's type library listing in IDL form, made from its automation table.
// Usage: zentrel-idl OUT.idl
#include <cstdio>
#include <fstream>

#include "platform/com/typeinfo.h"
#include "src/view/zentrelctrl.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s OUT.idl\n", argv[0]);
        return 2;
    }
    std::ofstream out(argv[1], std::ios::binary);
    out << WriteIdlListing(ZentrelClassInfo());
    return out.good() ? 0 : 1;
}
