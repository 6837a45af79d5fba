#include "platform/gdi/printer.h"

#include <utility>

namespace {

IPrintBackend*& Backend() {
    static IPrintBackend* backend = nullptr;
    return backend;
}

}  // namespace

IPrintBackend* SetPrintBackend(IPrintBackend* backend) { return std::exchange(Backend(), backend); }
IPrintBackend* GetPrintBackend() { return Backend(); }
