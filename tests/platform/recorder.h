// A message handler for tests: records every message and can react through a callback.
#pragma once
#include <functional>
#include <vector>

#include "platform/window/window.h"

class CRecorder : public IMessageHandler {
public:
    using Reaction = std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)>;

    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override {
        log.push_back({hwnd, message, wParam, lParam});
        return react ? react(hwnd, message, wParam, lParam) : 0;
    }

    std::vector<UINT> Messages() const {
        std::vector<UINT> numbers;
        for (const MSG& m : log) numbers.push_back(m.message);
        return numbers;
    }
    // The messages with the given number, in order.
    std::vector<MSG> Of(UINT message) const {
        std::vector<MSG> found;
        for (const MSG& m : log)
            if (m.message == message) found.push_back(m);
        return found;
    }

    std::vector<MSG> log;
    Reaction react;
};
